// Solves a problem file and prints the displacement of a node along x: sway model.dat node

#include <cstdio>
#include <cstdlib>
#include <fstream>

#include "model/node.h"
#include "run/project.h"

using namespace morlen;

int main(int argc, char** argv)
{
  if (argc != 3)
    return 2;
  std::ifstream in(argv[1]);
  Project project(100);
  project.ReadFromAscii(in);
  project.Calc(1, nullptr);
  const Node* node = project.FindNode(std::atoi(argv[2]));
  if (!node)
    return 2;
  std::printf("%g\n", project.solution.displacements(project.Equation(*node, 1)));
}
