#pragma once

/// Every is-zero or equality test on material and geometric values.
constexpr double EPSILON = 1e-15;
/// Tests on local axes.
constexpr double EPSILONB = 1e-05;

/// Plane problem (3 degrees of freedom a node) or space problem (6; solids have 3).
enum PROBLEMTYPE : int
{
  kPlane = 0,
  kSpace = 1
};
