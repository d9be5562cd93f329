#include "run/driver.h"

using namespace morlen;

int main(int argc, char** argv)
{
  return RunMorlen(argc, argv);
}
