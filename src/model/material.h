#pragma once

#include <iosfwd>

#include "base/constants.h"
#include "base/textscan.h"

namespace morlen {

class Matriu;
class Units;

/// Elastic constants of a material, which may be orthotropic, and the section values of the
/// beams or shells made of it, in the units of the results.
///
/// The items that follow an element make a material that the element owns: it is unset by
/// SetToNegative, reads the items, and takes the other values from the numbered material
/// (ComposeMaterial). The values that were read carry a mark, since any number can be given.
class Material
{
public:
  Material() = default;
  Material(const Material& m);  ///< copies all but the number, which becomes 0
  Material& operator=(const Material& m) = default;

  /// Reads "number items"; returns 0 when there is no number, else 1.
  int ReadFromAscii(TextScan& stream, const Units* units);
  /// Reads key and value items. Returns 1, or -1 when there is no item, or 0 at a key
  /// without value, where reading stops. Fatal at an unknown key.
  int ReadFromAsciiNoNum(const RecordText& record, const Units* units);

  /// Makes every value -1 and not given; the angles are not given either.
  void SetToNegative();
  /// Sets a value (one of the 13 numbers E1 to t) and marks it as given.
  void Enter(double Material::*field, double value);
  /// Copies the values that are not given from `base`; a null base makes them 0. A value without
  /// a mark, assigned to its member, counts as given unless it is -1.
  void ComposeMaterial(const Material* base);
  /// Enters A, Iy, Iz and J of a rectangular section from its widths along local y and z.
  void CalcOtherParametersForRecSec(double widthY, double widthZ);
  /// Makes A, Iy, Iz and J -1 and not given.
  void ForgetSection();

  void GiveEI(double& EIy, double& EIz, double& EA) const;
  /// Copies the angles and returns 0; returns 1 when there are none. Not used by the analysis
  /// itself.
  int GiveEulerAngles(double angles[3]) const;
  /// Fills the 3×3 T, whose columns are the axes of the material, and returns 0; returns 1 when
  /// there are no angles. Not used by the analysis itself.
  int CalcTransfMatFromEuler(Matriu& T) const;

  /// Stress-strain matrices of a shell, integrated over its thickness: membrane Dm and bending
  /// Db (3×3), transverse shear Ds (2×2). The caller gives matrices of these sizes. Fatal for a
  /// value that is missing, for moduli and Poisson's ratios without symmetry (IsSymmetric), and
  /// for ratios with which a strain would release energy.
  void GiveDMatrix(int elemNumber, Matriu& Dm, Matriu& Db, Matriu& Ds) const;
  /// Stress-strain matrix of an isotropic solid from E1 and nuXY; order εx, εy, εz, γxy, γxz,
  /// γyz. The caller gives a 6×6 matrix. Fatal when E1 is missing or nuXY is not between -1 and
  /// 0.5.
  void GiveDMatrixTetra(int elemNumber, Matriu& D) const;

  /// Stiffness blocks of a beam in its local axes: Kij between its nodes i and j (1 or 2), 3×3
  /// in plane problems and 6×6 in space. L2 is the squared length of the beam; the hinge code is
  /// that of HingeCode, and other values leave the blocks as they are. Fatal for a value of
  /// material or section that is missing.
  void ConstructLocalK(int elemNumber, Matriu& K11, Matriu& K12, Matriu& K22, double L2,
                       PROBLEMTYPE type, int hingeCode) const;
  /// The same for one hinge code each. Not used by the analysis itself.
  void ConstructLocalK11(int elemNumber, Matriu& K11, Matriu& K12, Matriu& K22, double L2,
                         PROBLEMTYPE type) const;
  void ConstructLocalK10(int elemNumber, Matriu& K11, Matriu& K12, Matriu& K22, double L2,
                         PROBLEMTYPE type) const;
  void ConstructLocalK1(int elemNumber, Matriu& K11, Matriu& K12, Matriu& K22, double L2,
                        PROBLEMTYPE type) const;
  void ConstructLocalK0(int elemNumber, Matriu& K11, Matriu& K12, Matriu& K22, double L2,
                        PROBLEMTYPE type) const;

  /// One line with the number and the values, without the angles. Not used by the analysis
  /// itself.
  void PrintTo(std::ostream& out) const;

  /// Takes the values that were not given from the base again, after a change of the base. Of a
  /// material after ComposeMaterial only. Not used by the analysis itself.
  void RecomposeMaterial(const Material& base);

  /// Calls visit(member) for every data member, in a fixed order. Not used by the analysis itself.
  template <class Visit>
  void VisitMembers(Visit& visit)
  {
    visit(number);
    for (double* value : {&E1, &E2, &nuXY, &nuYX, &Iy, &Iz, &Gxy, &Gxz, &Gyz, &J, &A, &Weight, &t})
      visit(*value);
    visit(eulerGiven);
    for (double& angle : Euler)
      visit(angle);
    visit(given);
    visit(eulerOfBase);
  }

  int number = 0;     ///< 0 for a material that an element owns
  double E1 = 0.0;    ///< Young's modulus along local x
  double E2 = 0.0;    ///< Young's modulus along local y
  double nuXY = 0.0;  ///< -εx/εy under a stress along y: ν21 of textbooks
  double nuYX = 0.0;  ///< -εy/εx under a stress along x: ν12 of textbooks
  double Iy = 0.0;    ///< second moment of area about local y
  double Iz = 0.0;
  double Gxy = 0.0;
  double Gxz = 0.0;
  double Gyz = 0.0;
  double J = 0.0;  ///< torsion constant
  double A = 0.0;
  double Weight = 0.0;                ///< force per volume
  double t = 0.0;                     ///< thickness of a shell
  int eulerGiven = 0;                 ///< 1 when there are angles
  double Euler[3] = {0.0, 0.0, 0.0};  ///< of the local axes, in radians

private:
  unsigned given = 0;        ///< a bit for each value that was entered
  bool eulerOfBase = false;  ///< true when the angles are those of the numbered material
};

}  // namespace morlen
