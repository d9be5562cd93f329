#include "report/page.h"

#include <ostream>

#include "common/utf8.h"
#include "report/viewer_page.h"

namespace morlen {

namespace {

// Returns the page up to a mark, and removes both from it.
std::string_view ConsumeUpTo(std::string_view mark, std::string_view& page)
{
  const std::size_t position = page.find(mark);
  const std::string_view part = page.substr(0, position);
  page.remove_prefix(position + mark.size());
  return part;
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

void WritePage(std::ostream& out, std::string_view title, std::string_view data)
{
  std::string_view page = ViewerPage();
  out << ConsumeUpTo("@TITLE@", page);
  out << HtmlText(title);
  out << ConsumeUpTo("@DATA@", page);
  out << data << page;
}

void WritePage(const std::filesystem::path& file, std::string_view title, std::string_view data,
               AtomicFile::By writer)
{
  AtomicFile out(file, writer);
  WritePage(out.Stream(), title, data);
  out.Commit();
}

}  // namespace morlen
