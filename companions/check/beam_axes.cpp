// Beams that are almost vertical.
//
// The local y of a beam in space is horizontal and at right angles to the beam; only for a
// vertical beam it is the global X axis. A column whose ends differ a little in x or y therefore
// gets a y that may lie anywhere in the horizontal plane: Iy and Iz, local loads and results
// refer to other directions than those of the columns beside it.

#include <cmath>
#include <string>

#include "check/checks.h"
#include "check/recorder.h"
#include "model/material.h"
#include "numeric/matriu.h"
#include "problem/problem.h"

namespace morlen::check {
namespace {

// Larger leans are those of inclined members.
constexpr double kMeantAsVertical = 1e-3;
constexpr int kDigits = 3;

// A component of a direction, to three decimals and without the sign of a zero.
std::string Component(double value)
{
  return Rounded(std::round(value * 1000.0) / 1000.0 + 0.0, kDigits);
}

std::string LocalY(const Elem& beam, const Material* material)
{
  Matriu T;
  beam.CalcTransfMatrixBeam(T, material, kSpace);
  return Joined("(", Component(T(1, 2)), ", ", Component(T(2, 2)), ", 0)");
}

void CheckLean(const Elem& beam, const Material* material, Recorder& recorder)
{
  const double lean = beam.Lean();
  if (!(lean > Elem::kVerticalLean && lean <= kMeantAsVertical))
    return;
  recorder.Warn(Code::NearVerticalBeam, recorder.PlaceOf(ReadItem::Element, beam.Num()), "element ",
                beam.Num(), " leans by ", Rounded(lean, kDigits), " of its length: its local y is ",
                LocalY(beam, material),
                ", horizontal across the lean; a vertical beam has (1, 0, 0). If it is meant to be "
                "vertical, give both ends the same x and y");
}

}  // namespace

void CheckBeamAxes(const Subject& subject, Recorder& recorder)
{
  if (subject.problem.problemType != kSpace)
    return;
  for (const Elem* elem : subject.elements) {
    const Material* material = elem->GiveMaterial(&subject.problem.materials);
    if (elem->ElemType() == Linear && !(material && material->eulerGiven))
      CheckLean(*elem, material, recorder);
  }
}

}  // namespace morlen::check
