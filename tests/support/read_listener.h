#pragma once

#include <functional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "base/read_observer.h"

namespace morlen {

using Notices = std::vector<std::pair<ReadEvent, std::string>>;
using Items = std::vector<std::pair<ReadItem, int>>;

/// Records the places of the notices and the stored items of its thread; runs the steps unchanged.
class ReadListener : public ReadObserver
{
public:
  bool Attempt(TextScan*, const std::function<void()>& step) override
  {
    ++attempts;
    step();
    return true;
  }
  bool AttemptOn(ReadItem, int, const std::function<void()>& step) override
  {
    step();
    return true;
  }
  void Notice(ReadEvent event, std::string_view place, std::string_view detail) override
  {
    lastDetail = detail;
    notices.emplace_back(event, place);
  }
  void Entered(ReadTopic) override {}
  void Stored(ReadItem item, int number) override { stored.emplace_back(item, number); }

  Notices notices;
  Items stored;
  std::string lastDetail;
  int attempts = 0;

private:
  ObserverScope scope{*this};
};

}  // namespace morlen
