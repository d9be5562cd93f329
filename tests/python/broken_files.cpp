// Reads and solves damaged problem files in one process, as the Python package does. Every fatal
// error is an exception that leaves nothing behind: the leak sanitizer, which this program is
// linked with, reports what was lost at the end.
//
//   broken_files COUNT SEED FILE...
//
// The damages are those of a hurried author: cut, lost, doubled and exchanged lines, wrong words.

#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <iterator>
#include <random>
#include <sstream>
#include <string>
#include <vector>

#include "model.h"
#include "places.h"
#include "session.h"

using namespace morlen;

namespace {

using Lines = std::vector<std::string>;

class Vandal
{
public:
  explicit Vandal(unsigned seed) : random(seed) {}

  std::size_t Below(std::size_t limit) { return random() % limit; }

  void Damage(Lines& lines)
  {
    if (lines.empty())
      return;
    std::string& line = lines[Below(lines.size())];
    switch (Below(6)) {
      case 0:
        lines.resize(Below(lines.size()));
        break;
      case 1:
        lines.erase(lines.begin() + static_cast<std::ptrdiff_t>(Below(lines.size())));
        break;
      case 2: {
        const std::string copy = line;
        lines.insert(lines.begin() + static_cast<std::ptrdiff_t>(Below(lines.size())), copy);
        break;
      }
      case 3:
        std::swap(line, lines[Below(lines.size())]);
        break;
      default:
        ReplaceWord(line);
    }
  }

private:
  void ReplaceWord(std::string& line)
  {
    static constexpr const char* kWords[] = {"-1", "0",   "99999999999", "1e999", "nan",    "x",
                                             "",   "end", "#",           "1.5",   "1e-300", "7"};
    std::istringstream in(line);
    Lines words{std::istream_iterator<std::string>(in), {}};
    if (words.empty())
      return;
    words[Below(words.size())] = kWords[Below(std::size(kWords))];
    line.clear();
    for (const std::string& word : words)
      line += word + " ";
  }

  std::mt19937 random;
};

Lines LinesOf(const char* file)
{
  std::ifstream in(file);
  Lines lines;
  for (std::string line; std::getline(in, line);)
    lines.push_back(line);
  return lines;
}

// Returns false when the model is refused.
bool Try(const std::string& text)
{
  python::Session session;
  try {
    python::Model model(text);
    const auto solved = python::Solve(model, {}, nullptr);
    return python::SolvedOf(python::StateOf(*solved))->solution.displacements.Size() > 0;
  } catch (const python::FatalError& error) {
    python::PlaceOf(error, text);
    return false;
  }
}

}  // namespace

int main(int argc, char** argv)
{
  if (argc < 4)
    return 2;
  const int count = std::atoi(argv[1]);
  Vandal vandal(static_cast<unsigned>(std::atoi(argv[2])));
  std::vector<Lines> files;
  for (int k = 3; k < argc; ++k)
    files.push_back(LinesOf(argv[k]));
  int refused = 0;
  for (int k = 0; k < count; ++k) {
    Lines lines = files[vandal.Below(files.size())];
    for (std::size_t damages = 1 + vandal.Below(3); damages > 0; --damages)
      vandal.Damage(lines);
    std::string text;
    for (const std::string& line : lines)
      text += line + "\n";
    refused += Try(text) ? 0 : 1;
  }
  std::printf("%d of %d refused\n", refused, count);
}
