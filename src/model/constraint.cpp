#include "model/constraint.h"

#include <algorithm>
#include <cmath>

#include "base/constants.h"
#include "base/errorwriter.h"
#include "base/stprintf.h"
#include "model/euler.h"
#include "numeric/matriu.h"
#include "numeric/reavecv.h"

namespace morlen {

void Constraint::EnterValuesAndFlags(const int* newFlags, const double* newValues, int n,
                                     double forceFactor, double lengthFactor)
{
  for (int i = 0; i < n; ++i) {
    if (newFlags[i] == kFree)
      continue;
    const bool translation = i < translations;
    flags[i] = newFlags[i];
    values[i] = newValues[i];
    if (flags[i] == kSpring)
      values[i] *= translation ? forceFactor / lengthFactor : forceFactor * lengthFactor;
    else if (translation)
      values[i] *= lengthFactor;
  }
}

void Constraint::EnterEulerAngles(const double angles[3])
{
  localAxes = true;
  std::copy_n(angles, 3, euler.begin());
}

int Constraint::CalcTransfMatFromEuler(int node, Matriu& T, int n, int check) const
{
  if (!localAxes)
    return 1;
  const Axes axes = AxesFromEuler(euler.data());
  if (n == 3 && check) {
    const double tilts[] = {axes.x(3), axes.y(3), axes.z(1), axes.z(2), 1.0 - axes.z(3)};
    for (const double tilt : tilts) {
      if (!(std::fabs(tilt) < EPSILON))
        Fatal("error: Local z axe must be (0,0,1) for 2D problems.Node: ", node, "\n");
    }
  }
  FillFrame(axes, n, T);
  return 0;
}

void Constraint::AddToReaction(int i, double r)
{
  if (Carries(i))
    reactions[i - 1] += r;
}

void Constraint::AddToReaction(const ReaVecV& r, int n)
{
  for (int i = 1; i <= n; ++i)
    AddToReaction(i, r(i));
}

void Constraint::TransferYourReaction(int n, Constraint* a, Constraint* b)
{
  for (int i = 0; i < n; ++i) {
    if (!Carries(i + 1))
      continue;
    a->reactions[i] += reactions[i] / 2.0;
    b->reactions[i] += reactions[i] / 2.0;
    reactions[i] = 0.0;
  }
}

void Constraint::PrintTo(std::ostream& out, int n) const
{
  out << "flags=";
  for (int i = 0; i < n; ++i)
    out << flags[i];
  out << " values=";
  for (int i = 0; i < n; ++i)
    stprintf(out, i == 0 ? "%g" : " %g", values[i]);
  if (localAxes)
    stprintf(out, " Euler1=%g Euler2=%g Euler3=%g", euler[0], euler[1], euler[2]);
  out << '\n';
}

std::unique_ptr<Constraint> MergeTwoConstraints(int n, const Constraint* a, const Constraint* b,
                                                double)
{
  if (!a || !b || a->localAxes != b->localAxes)
    return nullptr;
  if (a->localAxes && !AreEulerAnglesEqual(a->euler.data(), b->euler.data(), EPSILONB))
    return nullptr;
  if (n > 100)
    Fatal("error in MergeTwoConstraints\n");
  auto merged = std::make_unique<Constraint>(*a);
  merged->reactions.fill(0.0);
  bool any = false;
  for (int i = 0; i < n; ++i) {
    const bool common = a->flags[i] == b->flags[i] && a->flags[i] != Constraint::kFree;
    merged->flags[i] = common ? a->flags[i] : Constraint::kFree;
    merged->values[i] = common ? (a->values[i] + b->values[i]) / 2.0 : 0.0;
    any = any || common;
  }
  if (!any)
    return nullptr;
  if (a->localAxes)
    MeanEulerAngles(a->euler.data(), b->euler.data(), merged->euler.data());
  return merged;
}

}  // namespace morlen
