#pragma once

#include "numeric/reavec.h"
#include "problem/elem_loads.h"

namespace morlen {

/// The axes of the values of a distributed load.
enum class PreassureLT_type : int
{
  Local,  ///< of the element
  Global,
  GlobalProjected,  ///< global, per length or area projected at right angles to the load
  Face              ///< global, on a face or an edge
};

/// The keyword of the blocks with loads of this type.
constexpr const char* KeywordOf(PreassureLT_type type)
{
  constexpr const char* kKeywords[] = {"local_pressure_loads", "global_pressure_loads",
                                       "global_projected_pressure_loads", "face_loads"};
  return kKeywords[static_cast<int>(type)];
}

/// A load per length of a beam or an edge, per area of a shell or a face, or per volume of a solid.
class PreassureLT : public BaseElemLoads, public Pooled<PreassureLT>
{
public:
  explicit PreassureLT(PreassureLT_type loadType) : type(loadType) {}

  void ReadYourLoad(int elemNumber, PROBLEMTYPE problem, const RecordText& record,
                    const Units& units, ElemType elemType) override;
  void AddToSpanLoad(const BeamSpan& beam, SpanLoad& load) const override;
  void AddToLoadVectorTriangle(const Elem& elem, const Matriu& T, ReaVecV& loads) const override;
  void AddToLoadVectorTetra(const Elem& elem, ReaVecV& loads) const override;
  ElemLoadRecord Describe() const override;
  std::unique_ptr<BaseElemLoads> Copy() const override;

  /// Makes this the self-weight of an element. weight: per length, area or volume; gravity: unit
  /// vector. Fatal in a plane problem with gravity along +z.
  void EnterWeight(double weight, const ReaVec& gravity, PROBLEMTYPE problem);

  PreassureLT_type type;
  int face = -1;          ///< index of the face or edge; -1 without one
  double values[6] = {};  ///< forces along x, y, z and moments, in the units of the results

private:
  /// Adds a load per length of the edge from corner `face` (from 0) to the next one.
  void AddToLoadVectorFaceTriangle(const Elem& elem, ReaVecV& loads) const;
  /// Adds a load per area of the face with the corners `face`, `face` + 1 and `face` + 2 (from 0,
  /// modulo 4).
  void AddToLoadVectorFaceTetra(const Elem& elem, ReaVecV& loads) const;
  /// The load per area in global axes on a surface with this unit normal.
  ReaVec OnSurface(const ReaVec& normal) const;
};

}  // namespace morlen
