// What acts on the model: loads at nodes, self-weight and loads on elements.

#include <cmath>

#include "base/constants.h"
#include "base/read_observer.h"
#include "model/elem.h"
#include "model/material.h"
#include "model/mesh.h"
#include "model/nodal_load.h"
#include "model/node.h"
#include "numeric/matriu.h"
#include "numeric/plex_range.h"
#include "problem/pressure_load.h"
#include "problem/project.h"

namespace morlen {

void Project::AddNodalLoads()
{
  for (const Node& node : Each<Node>(GiveNodes())) {
    if (!node.load)
      continue;
    for (int k = 1; k <= freeDegrees; ++k)
      displacements(Equation(node, k)) += node.load->values[k - 1];
  }
}

BeamSpan Project::SpanOf(const Elem& elem, Matriu& T) const
{
  const Material& material = RequireMaterial(elem);
  elem.CalcTransfMatrixBeam(T, &material, problemType);
  BeamSpan beam{.elem = elem,
                .material = material,
                .T = T,
                .type = problemType,
                .hingeCode = GiveHingeCode(elem.Num()),
                .L = std::sqrt(dist2(elem(0), elem(1))),
                .EIy = 0.0,
                .EIz = 0.0,
                .EA = 0.0};
  material.GiveEI(beam.EIy, beam.EIz, beam.EA);
  return beam;
}

SpanLoad Project::LoadOn(const BeamSpan& beam) const
{
  SpanLoad sum;
  const double weight = beam.material.Weight * beam.material.A;
  if (weight > 0.0) {
    PreassureLT selfWeight(PreassureLT_type::Global);
    selfWeight.EnterWeight(weight, gravityDirection, problemType);
    selfWeight.AddToSpanLoad(beam, sum);
  }
  for (const BaseElemLoads* load = Find<BaseElemLoads>(elemLoads, beam.elem.Num()); load;
       load = load->Next())
    load->AddToSpanLoad(beam, sum);
  return sum;
}

void Project::AddLoadsOnBeams(Mesh* mesh)
{
  Matriu T;
  for (const Elem& elem : Each<Elem>(*mesh->GiveElemPlex()))
    AttemptOn(ReadItem::Element, elem.Num(), [&] { AddLoadsOnBeam(elem, T); });
}

void Project::AddLoadsOnBeam(const Elem& elem, Matriu& T)
{
  const BeamSpan beam = SpanOf(elem, T);
  const SpanLoad load = LoadOn(beam);
  if (!load.IsZero())
    load.AddToLoadVectorBeam(beam, Equation(*elem(0), 1), Equation(*elem(1), 1), displacements);
}

void Project::AddLoadsOnTriangles(Mesh* mesh)
{
  Matriu T, Tbig;
  for (const Elem& elem : Each<Elem>(*mesh->GiveElemPlex()))
    AttemptOn(ReadItem::Element, elem.Num(), [&] { AddLoadsOnTriangle(elem, T, Tbig); });
}

void Project::AddLoadsOnTriangle(const Elem& elem, Matriu& T, Matriu& Tbig)
{
  const Material& material = RequireMaterial(elem);
  const double weight = material.Weight * material.t;
  const BaseElemLoads* load = Find<BaseElemLoads>(elemLoads, elem.Num());
  if (!(weight > 0.0) && !load)
    return;
  elem.CalcTransfMatrixTriangle(T, Tbig, &material);
  if (weight > 0.0) {
    PreassureLT selfWeight(PreassureLT_type::Global);
    selfWeight.EnterWeight(weight, gravityDirection, problemType);
    selfWeight.AddToLoadVectorTriangle(elem, T, displacements);
  }
  for (; load; load = load->Next())
    load->AddToLoadVectorTriangle(elem, T, displacements);
}

void Project::AddLoadsOnTetras(Mesh* mesh)
{
  for (const Elem& elem : Each<Elem>(*mesh->GiveElemPlex()))
    AttemptOn(ReadItem::Element, elem.Num(), [&] { AddLoadsOnTetra(elem); });
}

void Project::AddLoadsOnTetra(const Elem& elem)
{
  const double weight = RequireMaterial(elem).Weight;
  if (weight > 0.0) {
    PreassureLT selfWeight(PreassureLT_type::Global);
    selfWeight.EnterWeight(weight, gravityDirection, kSpace);  // whatever the header says
    selfWeight.AddToLoadVectorTetra(elem, displacements);
  }
  for (const BaseElemLoads* load = Find<BaseElemLoads>(elemLoads, elem.Num()); load;
       load = load->Next())
    load->AddToLoadVectorTetra(elem, displacements);
}

}  // namespace morlen
