#include "report/page.h"

#include "common/atomic_file.h"
#include "report/viewer_page.h"

namespace morlen {

namespace {

// The page up to a mark, which is taken out with it.
std::string_view TakeUpTo(std::string_view mark, std::string_view& page)
{
  const std::size_t position = page.find(mark);
  const std::string_view part = page.substr(0, position);
  page.remove_prefix(position + mark.size());
  return part;
}

// Malformed UTF-8 would make the whole page doubtful; what is not ASCII there is shown as "?".
bool IsUtf8(std::string_view text)
{
  for (std::size_t i = 0; i < text.size();) {
    const auto byte = static_cast<unsigned char>(text[i]);
    const std::size_t length = byte < 0x80   ? 1
                               : byte < 0xc2 ? 0
                               : byte < 0xe0 ? 2
                               : byte < 0xf0 ? 3
                               : byte < 0xf5 ? 4
                                             : 0;
    if (length == 0 || i + length > text.size())
      return false;
    for (std::size_t k = 1; k < length; ++k) {
      if ((static_cast<unsigned char>(text[i + k]) & 0xc0) != 0x80)
        return false;
    }
    i += length;
  }
  return true;
}

}  // namespace

std::string HtmlText(std::string_view text)
{
  const bool utf8 = IsUtf8(text);
  std::string html;
  for (const char c : text) {
    if (c == '<')
      html += "&lt;";
    else if (c == '>')
      html += "&gt;";
    else if (c == '&')
      html += "&amp;";
    else if (c == '"')
      html += "&quot;";
    else
      html += utf8 || static_cast<unsigned char>(c) < 0x80 ? c : '?';
  }
  return html;
}

void WritePage(const std::filesystem::path& file, std::string_view title, std::string_view data)
{
  std::string_view page = ViewerPage();
  AtomicFile out(file);
  out.Write(TakeUpTo("@TITLE@", page));
  out.Write(HtmlText(title));
  out.Write(TakeUpTo("@DATA@", page));
  out.Write(data);
  out.Write(page);
  out.Commit();
}

}  // namespace morlen
