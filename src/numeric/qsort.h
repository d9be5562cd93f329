#pragma once

namespace morlen {

class ReaVec;

// Sort in increasing order the n elements of a from position `start` on (from 0); b is moved along
// with a. Equal keys keep no particular order; keys that are no numbers come last. Of these, the
// analysis itself uses the overload for int keys with doubles; the others are for other programs.

void QSort(double* a, int start, int n);
void QSort(int* a, int start, int n);
void QSort(int* a, int* b, int start, int n);
void QSort(int* a, double* b, int start, int n);
/// Positions from 1.
void QSort(ReaVec& v, int start, int n);

}  // namespace morlen
