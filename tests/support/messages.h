#pragma once

#include <cstdio>
#include <string>

namespace morlen {

/// The text that the action writes to the information stream that it gets.
template <class Action>
std::string MessagesOf(Action action)
{
  std::FILE* file = std::tmpfile();
  action(file);
  std::rewind(file);
  std::string text;
  for (int c; (c = std::fgetc(file)) != EOF;)
    text += static_cast<char>(c);
  std::fclose(file);
  return text;
}

}  // namespace morlen
