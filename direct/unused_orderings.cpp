// The orderings that MUMPS could call, and never does here: the solver gives its own by PERM_IN.
// One of them ends the process on some matrices. Their libraries are therefore not linked; a call
// would end the run with a message.

#include "base/errorwriter.h"

namespace {

[[noreturn]] void Refuse()
{
  morlen::Fatal("error: the solver Direct has no such ordering\n");
}

}  // namespace

extern "C" {
// PORD
void SPACE_ordering()
{
  Refuse();
}
void firstPostorder()
{
  Refuse();
}
void nextPostorder()
{
  Refuse();
}
void freeElimTree()
{
  Refuse();
}
// Scotch
void esmumps()
{
  Refuse();
}
void esmumpsv()
{
  Refuse();
}
void SCOTCH_graphBuild()
{
  Refuse();
}
void SCOTCH_graphExit()
{
  Refuse();
}
void SCOTCH_graphInit()
{
  Refuse();
}
void SCOTCH_graphOrder()
{
  Refuse();
}
void SCOTCH_stratInit()
{
  Refuse();
}
void SCOTCH_stratExit()
{
  Refuse();
}
void scotchfgraphbuild_()
{
  Refuse();
}
void scotchfgraphexit_()
{
  Refuse();
}
void scotchfgraphpart_()
{
  Refuse();
}
void scotchfstratinit_()
{
  Refuse();
}
void scotchfstratexit_()
{
  Refuse();
}
}
