#include "problem/driver.h"

int main(int argc, char** argv)
{
  return RunMorlen(argc, argv);
}
