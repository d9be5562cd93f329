#pragma once

namespace morlen {

class Matriu;

/// Which way a frame T, whose columns are the local axes, turns components.
enum class Turn
{
  ToGlobal,
  ToLocal
};

// Blocks and vectors of nodes have 3 or 6 components: one or two triples, each turned by the
// same 3×3 frame. Only the leading 3×3 block of T is read, so that T may be the frame itself or
// a diagonal of copies of it. Nothing is allocated.

/// K ← T·K (to global) or Tᵀ·K (to local).
void TurnRows(const Matriu& T, Turn turn, Matriu& K);

/// K ← K·Tᵀ (to global) or K·T (to local).
void TurnColumns(const Matriu& T, Turn turn, Matriu& K);

/// The n components at v (n = 3 or 6) ← T·v (to global) or Tᵀ·v (to local).
void TurnVector(const Matriu& T, Turn turn, int n, double* v);

}  // namespace morlen
