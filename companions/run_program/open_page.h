#pragma once

#include <filesystem>

namespace morlen::run {

/// Opens a page in the browser of the user by xdg-open, and does not wait for it. Tells on standard
/// error when there is no xdg-open.
void OpenPage(const std::filesystem::path& page);

}  // namespace morlen::run
