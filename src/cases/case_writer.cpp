#include "cases/case_writer.h"

#include "results/kiv_results.h"
#include "results/text_results.h"

namespace morlen {

CaseWriter::CaseWriter(Problem& problem_, const ElementFamilies& families_,
                       const ResultLayout& layout, std::span<const double> column)
    : problem(problem_),
      families(families_),
      solution(layout.SolutionOf(column)),
      spanLoads(layout.SpanLoadsOf(column)),
      inPlace(problem_, spanLoads)
{
}

void CaseWriter::WriteText(std::ostream& out) const
{
  WriteResults(problem, families, solution, out);
}

void CaseWriter::WritePost(std::ostream& out) const
{
  WriteKivResults(problem, families, solution, out, nullptr);
}

}  // namespace morlen
