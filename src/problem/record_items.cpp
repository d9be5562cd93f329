#include "problem/record_items.h"

#include <algorithm>
#include <string>

#include "base/errorwriter.h"
#include "base/read_observer.h"
#include "base/record_hint.h"
#include "base/textscan.h"
#include "model/elem.h"
#include "model/mesh.h"
#include "model/node.h"
#include "numeric/plex_range.h"
#include "problem/problem.h"

namespace morlen {

namespace {

int LowestElement(const Problem& problem)
{
  int lowest = problem.GiveMaxElmNum();
  for (const auto& mesh : problem.meshes) {
    for (const auto [number, elem] : EachNumbered<Elem>(*mesh->GiveElemPlex())) {
      lowest = std::min(lowest, number);
      break;  // they ascend
    }
  }
  return lowest;
}

std::string ElementNumbers(int lowest, int highest)
{
  if (highest == 0)
    return "the meshes have no elements";
  const std::string last = std::to_string(highest);
  return lowest == highest
             ? "the only element has the number " + last
             : "the elements have numbers from " + std::to_string(lowest) + " to " + last;
}

// The hint for the number of a record, just read, that no mesh has.
template <class Known>
void ExplainNumber(const Problem& problem, const TextScan& text, const Known& known)
{
  const std::string_view word = text.WordAround(text.Here());
  std::string fault = FaultOfNumber(word, NumberKind::kWhole);
  if (fault.empty())
    fault = problem.meshes.empty() ? "no mesh comes before this block" : known();
  Explain(LinePrefix({word, &text}), fault);
}

}  // namespace

RecordItems ReadRecordItems(const RecordText& tail, const Units& units, AngleItems angleItems,
                            const char* misread, int number)
{
  RecordItems found{.ratios = units.DefaultRatios()};
  ItemScanner items(tail.text);
  ItemsSeen seen;
  for (std::string_view key = items.Key(); !key.empty(); key = items.Key()) {
    const std::string_view value = items.Value();
    if (value.empty()) {
      ExplainNoValue(tail.Part(key));
      Fatal(misread, number, "\n");
    }
    const std::string_view item(key.data(), value.data() + value.size());
    const int angle = angleItems == AngleItems::kRead ? EulerIndex(tail.Part(key)) : -1;
    if (angle >= 0) {
      found.anglesGiven = true;
      found.angles[angle] = NumberOfItem(value);
      seen.Add(item, key);
    } else if (HasPrefix(key, "units")) {
      found.ratios = units.RatiosOf(*units.GiveUnitsBase(value));
      seen.Add(item, "units");
    } else {
      Note(ReadEvent::IgnoredKey, key);
    }
  }
  return found;
}

Node& RequireNode(const Problem& problem, int number, const TextScan& text, const char* message)
{
  if (Node* node = problem.FindNode(number))
    return *node;
  ExplainNumber(problem, text, [&] {
    return "the nodes have the numbers 1 to " + std::to_string(problem.GiveNodes().Last());
  });
  Fatal(message);
}

const Elem& RequireElem(const Problem& problem, int number, const TextScan& text,
                        const char* message)
{
  if (const Elem* elem = problem.GiveElem(number))
    return *elem;
  ExplainNumber(problem, text,
                [&] { return ElementNumbers(LowestElement(problem), problem.GiveMaxElmNum()); });
  Fatal(message, number, " and it does not exist\n");
}

}  // namespace morlen
