#include <cmath>
#include <optional>
#include <set>
#include <string>
#include <utility>

#include "check/checks.h"
#include "check/joined.h"
#include "check/recorder.h"
#include "common/shortest.h"
#include "model/material.h"
#include "model/material_symmetry.h"
#include "model/node.h"
#include "numeric/matriu.h"
#include "problem/problem.h"

namespace morlen::check {
namespace {

// Makes the matrices that depend on the material only. Their functions refuse missing values.
void MakeStiffness(const Elem& elem, const Material& material, PROBLEMTYPE problem)
{
  if (elem.ElemType() == Linear) {
    Matriu K11, K12, K22;
    material.ConstructLocalK(elem.Num(), K11, K12, K22, dist2(elem(0), elem(1)), problem, 11);
  } else if (elem.ElemType() == Triangle) {
    Matriu Dm(3, 3), Db(3, 3), Ds(2, 2);
    material.GiveDMatrix(elem.Num(), Dm, Db, Ds);
  } else {
    Matriu D(6, 6);
    material.GiveDMatrixTetra(elem.Num(), D);
  }
}

// The nuYX with which an orthotropic material is symmetric, as a remark; empty without one.
std::string PassingRatio(const Material& material)
{
  Material symmetric = material;
  symmetric.nuYX = material.nuXY * material.E1 / material.E2;
  if (!IsSymmetric(symmetric))
    return {};
  std::string text = ": nuXY=";
  AppendNumber(text, symmetric.nuXY);
  text += " needs nuYX=";
  AppendNumber(text, symmetric.nuYX);
  return text;
}

// Makes the local axes, whose functions refuse angles that do not fit the element.
void MakeAxes(const Elem& elem, const Material& material, PROBLEMTYPE problem)
{
  Matriu T, bigT;
  if (elem.ElemType() == Linear)
    elem.CalcTransfMatrixBeam(T, &material, problem);
  else if (elem.ElemType() == Triangle)
    elem.CalcTransfMatrixTriangle(T, bigT, &material);
}

// Solids are isotropic and use E1 and nuXY only. Other moduli and ratios that differ from these are
// errors in a numbered material, and warnings in one that the items of an element have changed.
void CheckIsotropy(const Elem& elem, const Material& material, Recorder& recorder)
{
  struct Value
  {
    const char* name;
    double given;
    const char* usedName;
    double used;
    double rounding;  ///< the relative difference that rounding explains
  };
  const bool isNumbered = material.number > 0;
  const Value values[] = {
      {"Ey", material.E2, "Ex", material.E1, 1e-9},
      {"nuYX", material.nuYX, "nuXY", material.nuXY, 1e-9},
      {"G", material.Gxy, "E/(2+2nu)", material.E1 / (2.0 + 2.0 * material.nuXY), 0.01}};
  for (const Value& value : values) {
    if (value.given == 0.0 ||
        std::fabs(value.given - value.used) <= value.rounding * std::fabs(value.used))
      continue;
    const std::string about =
        Joined("solids ignore ", value.name, ", whose value differs from ", value.usedName,
               isNumbered ? Joined("=", Rounded(value.used, 6)) : std::string(), ", which is used");
    if (isNumbered)
      recorder.Error(Code::ItemsContradict, PlaceOfMaterial(elem, recorder), about);
    else
      recorder.Warn(Code::KeyIgnored, PlaceOfMaterial(elem, recorder), about);
  }
}

}  // namespace

// A material is judged once for each kind of element, at the first of them.
void CheckSections(const Subject& subject, Recorder& recorder)
{
  std::set<std::pair<const Material*, ElemType>> judged;
  for (const Elem* elem : subject.elements) {
    const Material* material = elem->GiveMaterial(&subject.problem.materials);
    if (!material)
      continue;
    const std::ptrdiff_t place = recorder.PlaceOf(ReadItem::Element, elem->Num());
    if (material->eulerGiven)
      recorder.AttemptAt(Code::AxesRefused, place,
                         [&] { MakeAxes(*elem, *material, subject.problem.problemType); });
    if (!judged.insert({material, elem->ElemType()}).second)
      continue;
    if (elem->ElemType() == Tetrahedra && material->E1 > 0.0)
      CheckIsotropy(*elem, *material, recorder);
    recorder.AttemptAt(
        Code::SectionIncomplete, PlaceOfMaterial(*elem, recorder),
        [&] { MakeStiffness(*elem, *material, subject.problem.problemType); },
        [&](std::optional<ReadEvent> reason) {
          return reason == ReadEvent::AsymmetricMaterial ? PassingRatio(*material) : std::string();
        });
  }
}

}  // namespace morlen::check
