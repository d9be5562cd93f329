#pragma once

#include <string_view>

namespace morlen {

/// The page of the viewer, from viewer/dist/report.html: everything but the title and the data,
/// which go to the marks @TITLE@ and @DATA@, in this order.
std::string_view ViewerPage();

}  // namespace morlen
