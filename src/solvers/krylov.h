#pragma once

#include <cstdio>

namespace morlen {

class Preconditioner;
class SystemMatrix;

// Preconditioned iterative methods for A·x = b over plain arrays with one number for each row of A.
// The analysis itself uses none of them: it iterates with CgSystem.
//
// x is the initial guess and becomes the result. tol is the relative residual ‖b − A·x‖/‖b‖
// (‖b‖ = 0 counts as 1) at which to stop; on return it is the one that was reached. The result is
// 0 when that is at most tol; max_iter is then the number of iterations done. The result is 1 when
// max_iter iterations were not enough, and after a breakdown: a quantity was not finite, or a
// divisor was 0 (for CG: not positive). A breakdown leaves tol negative. Messages go to info when
// it is not null.

/// Conjugate gradients, for symmetric positive definite A and M. Progress every 10 iterations.
int CG(const SystemMatrix& A, double* x, const double* b, const Preconditioner& M, int& max_iter,
       double& tol, std::FILE* info);

/// Biconjugate gradients, which also uses the transposes of A and M.
int BiCG(const SystemMatrix& A, double* x, const double* b, const Preconditioner& M, int& max_iter,
         double& tol, std::FILE* info);

/// Conjugate gradients squared.
int CGS(const SystemMatrix& A, double* x, const double* b, const Preconditioner& M, int& max_iter,
        double& tol);

/// Stabilised biconjugate gradients.
int BiCGSTAB(const SystemMatrix& A, double* x, const double* b, const Preconditioner& M,
             int& max_iter, double& tol, std::FILE* info);

/// Euclidean norm; correct even where its square is beyond the range of numbers.
double norm(const double* x, int n);
double dot(const double* x, const double* y, int n);

// Not used by the analysis itself.
void fill_Real_array(double* a, int n, double value);
void fill_int_array(int* a, int n, int value);

}  // namespace morlen
