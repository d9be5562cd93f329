#include "problem/record_items.h"

#include "base/errorwriter.h"
#include "base/read_observer.h"
#include "base/textscan.h"

namespace morlen {

RecordItems ReadRecordItems(std::string_view tail, const Units& units, AngleItems angleItems,
                            const char* misread, int number)
{
  RecordItems found{.ratios = units.DefaultRatios()};
  ItemScanner items(tail);
  for (std::string_view key = items.Key(); !key.empty(); key = items.Key()) {
    const std::string_view value = items.Value();
    if (value.empty())
      Fatal(misread, number, "\n");
    const int angle = angleItems == AngleItems::kRead ? EulerIndex(key) : -1;
    if (angle >= 0) {
      found.anglesGiven = true;
      found.angles[angle] = NumberOfItem(value);
    } else if (HasPrefix(key, "units")) {
      found.ratios = units.RatiosOf(*units.GiveUnitsBase(value));
    } else {
      Note(ReadEvent::IgnoredKey, key);
    }
  }
  return found;
}

}  // namespace morlen
