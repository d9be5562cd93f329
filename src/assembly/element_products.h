#pragma once

class Matriu;
class ReaVecV;

// Products of strain blocks B (strains × components of a node) and elasticity matrices D. At
// most six strains and six components. Nothing is allocated.

/// K ← K + weight·Biᵀ·D·Bj, in the leading rows and columns of K.
void AddtoKMatrix(Matriu& K, const Matriu& Bi, const Matriu& D, const Matriu& Bj, double weight);

/// res(offset + 1, ...) += D·(B·u).
void AddToStrengthVec(ReaVecV& res, int offset, const Matriu& D, const Matriu& B, const double* u);
