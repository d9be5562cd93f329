#pragma once

#include "numeric/reavec.h"
#include "problem/elem_loads.h"

namespace morlen {

/// In which axes the values of a distributed load are given.
enum class PreassureLT_type : int
{
  Local,  ///< of the element
  Global,
  GlobalProjected,  ///< global, per length or area projected across the load
  Face              ///< global, on a face or an edge
};

/// The keyword of the blocks with such loads.
constexpr const char* KeywordOf(PreassureLT_type type)
{
  constexpr const char* kKeywords[] = {"local_pressure_loads", "global_pressure_loads",
                                       "global_projected_pressure_loads", "face_loads"};
  return kKeywords[static_cast<int>(type)];
}

/// Load per length of a beam or an edge, per area of a shell or a face, per volume of a solid.
class PreassureLT : public BaseElemLoads, public Pooled<PreassureLT>
{
public:
  explicit PreassureLT(PreassureLT_type loadType) : type(loadType) {}

  void ReadYourLoad(int elemNumber, PROBLEMTYPE problem, std::string_view text, const Units& units,
                    ElemType elemType) override;
  void AddToSpanLoad(const BeamSpan& beam, SpanLoad& load) const override;
  void AddToLoadVectorTriangle(const Elem& elem, const Matriu& T, ReaVecV& loads) const override;
  void AddToLoadVectorTetra(const Elem& elem, ReaVecV& loads) const override;
  ElemLoadRecord Describe() const override;

  /// Makes this the self-weight of an element: its weight per length (area, volume) along
  /// the unit vector of gravity. Fatal in a plane problem with gravity along +z.
  void EnterWeight(double weight, const ReaVec& gravity, PROBLEMTYPE problem);

  PreassureLT_type type;
  int face = -1;          ///< index of the face or edge; -1 without one
  double values[6] = {};  ///< forces along x, y, z and moments, in the units of the results

private:
  /// A load per length on the edge `face`, from node `face` (from 0) to the next corner.
  void AddToLoadVectorFaceTriangle(const Elem& elem, ReaVecV& loads) const;
  /// A load per area on the face `face`, whose corners are the nodes `face`, `face` + 1 and
  /// `face` + 2 (from 0, cyclically).
  void AddToLoadVectorFaceTetra(const Elem& elem, ReaVecV& loads) const;
  ReaVec OnSurface(const ReaVec& normal) const;
};

}  // namespace morlen
