#pragma once

#include <iosfwd>
#include <string_view>

#include "base/constants.h"

namespace morlen {

class Matriu;
class TextScan;
class Units;

/// Elastic constants of a material, which may be orthotropic, with the section values
/// of the beams or shells made of it, in the units of the results.
///
/// An element's own material begins as SetToNegative leaves it and is completed by
/// ComposeMaterial.
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
  int ReadFromAsciiNoNum(std::string_view text, const Units* units);

  /// Marks every value as not given.
  void SetToNegative();
  /// Takes the values that are not given from the base; without a base they become 0.
  void ComposeMaterial(const Material* base);
  /// Sets A, Iy, Iz and J of a rectangular section, its widths along local y and z.
  void CalcOtherParametersForRecSec(double widthY, double widthZ);

  void GiveEI(double& EIy, double& EIz, double& EA) const;
  /// Copies the angles and returns 0; returns 1 when there are none.
  int GiveEulerAngles(double angles[3]) const;
  /// Fills the 3×3 T, its columns the axes of the material; returns 1 when it has none.
  int CalcTransfMatFromEuler(Matriu& T) const;

  /// Shell matrices, already of their sizes: membrane Dm and bending Db (3×3), shear Ds
  /// (2×2), all multiplied by the thickness. Fatal when a value is missing or unfit.
  void GiveDMatrix(int elemNumber, Matriu& Dm, Matriu& Db, Matriu& Ds) const;
  /// Solid matrix, already 6×6, isotropic from E1 and nuXY; strains εx, εy, εz, γxy, γxz,
  /// γyz. Fatal when a value is missing or unfit.
  void GiveDMatrixTetra(int elemNumber, Matriu& D) const;

  /// Stiffness blocks of a beam in its local axes, between its first (1) and second (2)
  /// node; L2 is its squared length. The digits of the hinge code stand for its ends:
  /// 1 continuous, 0 hinged. Other codes leave the blocks as they are.
  void ConstructLocalK(int elemNumber, Matriu& K11, Matriu& K12, Matriu& K22, double L2,
                       PROBLEMTYPE type, int hingeCode) const;
  void ConstructLocalK11(int elemNumber, Matriu& K11, Matriu& K12, Matriu& K22, double L2,
                         PROBLEMTYPE type) const;
  void ConstructLocalK10(int elemNumber, Matriu& K11, Matriu& K12, Matriu& K22, double L2,
                         PROBLEMTYPE type) const;
  void ConstructLocalK1(int elemNumber, Matriu& K11, Matriu& K12, Matriu& K22, double L2,
                        PROBLEMTYPE type) const;
  void ConstructLocalK0(int elemNumber, Matriu& K11, Matriu& K12, Matriu& K22, double L2,
                        PROBLEMTYPE type) const;

  /// One line with the number and the values, without the angles.
  void PrintTo(std::ostream& out) const;

  int number = 0;   ///< 0 for an element's own material
  double E1 = 0.0;  ///< Young's modulus along local x
  double E2 = 0.0;  ///< and along local y
  double nuXY = 0.0;
  double nuYX = 0.0;
  double Iy = 0.0;  ///< second moment of area about local y
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
};

}  // namespace morlen
