#include <string>

#include "check/checks.h"
#include "check/recorder.h"
#include "model/node.h"

namespace morlen::check {

void CheckConnectivity(const Subject& subject, Recorder& recorder)
{
  for (std::size_t i = 1; i < subject.parts.size(); ++i) {
    const std::vector<const Node*>& nodes = subject.parts[i].nodes;
    const int number = nodes.front()->number;
    recorder.Warn(Code::SeparateParts, recorder.PlaceOf(ReadItem::Node, number),
                  "the part of node ", number, " (", nodes.size(),
                  " nodes) is not connected with that of node ",
                  subject.parts.front().nodes.front()->number);
  }
}

}  // namespace morlen::check
