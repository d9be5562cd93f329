#include "cases/case_loads.h"

#include "assembly/six_nodes.h"
#include "base/errorwriter.h"
#include "problem/beam_span.h"
#include "problem/elem_loads.h"
#include "problem/problem.h"

namespace morlen {

namespace {

class SpanSum : public BaseElemLoads
{
public:
  explicit SpanSum(const SpanLoad& load) : sum(load) {}

  void ReadYourLoad(int, PROBLEMTYPE, const RecordText&, const Units&, ElemType) override
  {
    Refuse();
  }
  void AddToSpanLoad(const BeamSpan&, SpanLoad& load) const override
  {
    for (int k = 0; k < 4; ++k)
      load.q[k] += sum.q[k];
    load.strain += sum.strain;
  }
  void AddToLoadVectorTriangle(const Elem&, const Matriu&, ReaVecV&) const override { Refuse(); }
  void AddToLoadVectorTetra(const Elem&, ReaVecV&) const override { Refuse(); }
  ElemLoadRecord Describe() const override { return {"", std::nullopt, {}, -1}; }
  std::unique_ptr<BaseElemLoads> Copy() const override { return std::make_unique<SpanSum>(sum); }

private:
  [[noreturn]] static void Refuse() { Fatal("error: a sum of loads is on a beam only\n"); }

  SpanLoad sum;
};

}  // namespace

std::unique_ptr<BaseElemLoads> MakeSpanSum(const SpanLoad& sum)
{
  return std::make_unique<SpanSum>(sum);
}

CaseInPlace::CaseInPlace(Problem& problem, LoadSet& set) : loads(problem, set)
{
  SetMiddleValues(problem);
}

}  // namespace morlen
