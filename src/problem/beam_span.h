#pragma once

#include "base/constants.h"
#include "base/node_components.h"
#include "model/hinge_code.h"

namespace morlen {

class Elem;
class Material;
class Matriu;
class ReaVecV;

// These functions treat a beam of length L under a load q that is uniform along it. Its hinge code
// gives the end conditions: 11 both ends clamped, 10 the second hinged, 1 the first hinged, 0 both
// hinged.

/// An internal force or displacement of the beam.
enum class SpanPart : int
{
  Axial = 1,
  Shear,
  Bending,
  Torsion
};

/// Internal force at the relative abscissa t (0 at the first end, 1 at the second). In a beam with
/// one hinge the ends share an axial load 5/8 to 3/8, as they share a load across the beam. Fatal
/// for other parts and codes.
double GiveLocalStrength(SpanPart part, double t, double L, double q, int hingeCode);

/// Displacement at t of the beam whose ends do not move. Axial: along the beam, stiffness EA.
/// Shear: across the beam, stiffness EI. Fatal for other parts and codes.
double GiveLocalDisplacement(SpanPart part, double t, double L, double q, double stiffness,
                             int hingeCode);

/// A beam with the values that its loads need. The beam, its material and its frame T are borrowed.
struct BeamSpan
{
  const Elem& elem;
  const Material& material;
  const Matriu& T;
  PROBLEMTYPE type;
  HingeCode hingeCode;
  double L;
  double EIy, EIz, EA;

  NodeComponents Components() const { return ComponentsOf(type); }
};

/// The sum of the loads on a beam between its ends, in its local axes.
///
/// The internal forces are those of the beam whose ends are fixed or hinged by its code. The
/// equivalent nodal loads are their values at the ends, so that diagrams, end forces and load
/// vector agree.
struct SpanLoad
{
  double q[4] = {};     ///< per length: axial, along y, along z, torque
  double strain = 0.0;  ///< free thermal strain

  bool IsZero() const;
  SpanLoad operator*(double factor) const;

  /// Adds the equivalent nodal loads, in global axes, to a vector whose entries from
  /// `first` and `second` on belong to the two nodes.
  void AddToLoadVectorBeam(const BeamSpan& beam, int first, int second, ReaVecV& loads) const;

  /// Adds minus the equivalent nodal loads of the two nodes, in local axes.
  void AddToReactionsVecs(const BeamSpan& beam, double* R1, double* R2) const;

  /// Adds to the internal force `component` (from 1) at t.
  void AddToStrengthVectors(const BeamSpan& beam, int component, double t, double& strength) const;

  /// Adds the translations at t of the beam whose ends do not move, in global axes.
  void AddToDisplacementVectors(const BeamSpan& beam, double t, double* displacement) const;

private:
  double Strength(const BeamSpan& beam, int component, double t) const;
};

}  // namespace morlen
