#include "support/result_files.h"

#include <sstream>

namespace morlen {

namespace {

std::vector<double> Numbers(const std::string& line)
{
  std::istringstream in(line);
  std::vector<double> numbers;
  for (double value = 0.0; in >> value;)
    numbers.push_back(value);
  return numbers;
}

// Removes the number of the node or element at the beginning of a line, and returns it.
int RemoveFirst(std::vector<double>& numbers)
{
  const int first = static_cast<int>(numbers.front());
  numbers.erase(numbers.begin());
  return first;
}

bool IsKivHeader(const std::string& line)
{
  return line.find("4 1.0 Estatic") != std::string::npos;
}

}  // namespace

TextResults ParseTextResults(std::string_view text)
{
  TextResults results;
  std::istringstream in{std::string(text)};
  std::map<int, std::vector<double>>* section = nullptr;
  for (std::string line; std::getline(in, line);) {
    if (line.starts_with("NODAL"))
      section = &results.displacements;
    else if (line.starts_with("REACTIONS"))
      section = &results.reactions;
    else if (line.starts_with("Element ")) {
      std::array<std::vector<double>, 2>& ends =
          results.endForces[std::stoi(line.substr(sizeof "Element"))];
      for (std::vector<double>& end : ends) {
        std::getline(in, line);
        end = Numbers(line);
      }
    } else if (std::vector<double> numbers = Numbers(line); section && !numbers.empty()) {
      const int node = RemoveFirst(numbers);
      (*section)[node] = numbers;
    }
  }
  return results;
}

std::vector<std::string> KivBlockNames(std::string_view text)
{
  std::vector<std::string> names;
  std::istringstream in{std::string(text)};
  for (std::string line; std::getline(in, line);) {
    if (!IsKivHeader(line))
      continue;
    line.erase(line.find("4 1.0"));
    line.erase(line.find_last_not_of(' ') + 1);
    names.push_back(line);
  }
  return names;
}

std::map<int, std::vector<std::vector<double>>> KivBlock(std::string_view text,
                                                         std::string_view name)
{
  std::map<int, std::vector<std::vector<double>>> block;
  std::istringstream in{std::string(text)};
  bool inside = false;
  int current = 0;
  for (std::string line; std::getline(in, line);) {
    if (IsKivHeader(line)) {
      inside = line.starts_with(name);
      continue;
    }
    std::vector<double> numbers = Numbers(line);
    if (!inside || numbers.empty())
      continue;
    if (line[0] != ' ')
      current = RemoveFirst(numbers);
    block[current].push_back(numbers);
  }
  return block;
}

}  // namespace morlen
