#include "direct/direct_kit.h"
#include "run/driver.h"

using namespace morlen;

int main(int argc, char** argv)
{
  const direct::DirectKit kit;
  return RunMorlen(argc, argv, kit);
}
