#pragma once

#include <array>
#include <memory>
#include <optional>

#include "base/constants.h"
#include "base/object_pool.h"
#include "base/textscan.h"
#include "model/elem.h"

namespace morlen {

class Matriu;
class ReaVecV;
class Units;
struct BeamSpan;
struct SpanLoad;
enum class PreassureLT_type : int;

/// An element load as data, in the units of the results.
struct ElemLoadRecord
{
  const char* keyword;                       ///< of the block
  std::optional<PreassureLT_type> pressure;  ///< none for a change of temperature
  std::array<double, 6> values;              ///< after the rotation by the record's Euler angles
  int face;                                  ///< index of the face or edge; -1 without one
};

/// A distributed load on an element, or a change of its temperature. The loads on one element form
/// a chain in the order of the file.
class BaseElemLoads
{
public:
  BaseElemLoads() = default;
  BaseElemLoads& operator=(const BaseElemLoads&) = delete;
  virtual ~BaseElemLoads();

  /// Reads the values from the rest of a record and converts them to the units of the results.
  virtual void ReadYourLoad(int elemNumber, PROBLEMTYPE type, const RecordText& record,
                            const Units& units, ElemType elemType) = 0;

  /// Adds the load to the sum of the loads on a beam.
  virtual void AddToSpanLoad(const BeamSpan& beam, SpanLoad& load) const = 0;

  /// Adds the equivalent nodal loads to the load vector by equation. T: the frame (3×3) of
  /// the triangle.
  virtual void AddToLoadVectorTriangle(const Elem& elem, const Matriu& T, ReaVecV& loads) const = 0;

  /// The same for a tetrahedron.
  virtual void AddToLoadVectorTetra(const Elem& elem, ReaVecV& loads) const = 0;

  virtual ElemLoadRecord Describe() const = 0;

  /// A copy of this load alone, without the chain.
  virtual std::unique_ptr<BaseElemLoads> Copy() const = 0;

  /// Appends a load to the chain that begins here.
  void Append(std::unique_ptr<BaseElemLoads> load);
  const BaseElemLoads* Next() const { return next.get(); }
  /// The last load of the chain that begins here.
  const BaseElemLoads& Last() const { return *last; }

protected:
  BaseElemLoads(const BaseElemLoads&) {}  ///< begins another chain

private:
  std::unique_ptr<BaseElemLoads> next;
  BaseElemLoads* last = this;  ///< of the chain; kept in its first load only
};

/// Change of temperature of a beam: its free strain is the product of the two values, the
/// coefficient of expansion and the change of temperature.
class TemperatureLT : public BaseElemLoads, public Pooled<TemperatureLT>
{
public:
  void ReadYourLoad(int elemNumber, PROBLEMTYPE type, const RecordText& record, const Units& units,
                    ElemType elemType) override;
  void AddToSpanLoad(const BeamSpan& beam, SpanLoad& load) const override;
  /// Fatal: beams only.
  void AddToLoadVectorTriangle(const Elem& elem, const Matriu& T, ReaVecV& loads) const override;
  void AddToLoadVectorTetra(const Elem& elem, ReaVecV& loads) const override;

  ElemLoadRecord Describe() const override;
  std::unique_ptr<BaseElemLoads> Copy() const override;

  double values[2] = {};
};

}  // namespace morlen
