#include "run_program/console.h"

#include <sys/ioctl.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>

namespace morlen::run {

namespace {

// Sequences of ANSI X3.64 (ECMA-48): erase to the end of the line, colours.
constexpr const char* kEraseLine = "\r\033[K";
constexpr const char* kRed = "\033[31m";
constexpr const char* kYellow = "\033[33m";
constexpr const char* kPlain = "\033[0m";

bool IsSet(const char* variable)
{
  const char* value = std::getenv(variable);
  return value && *value;
}

bool CanChangeLines()
{
  const char* kind = std::getenv("TERM");
  return isatty(STDERR_FILENO) && kind && *kind && std::strcmp(kind, "dumb") != 0;
}

std::size_t WidthOfTerminal()
{
  constexpr std::size_t kUsual = 80;
  winsize size = {};
  return ioctl(STDERR_FILENO, TIOCGWINSZ, &size) == 0 && size.ws_col > 0 ? size.ws_col : kUsual;
}

void Print(const std::string& text)
{
  std::fputs(text.c_str(), stderr);
  std::fflush(stderr);
}

}  // namespace

Console::Console(bool several_)
    : several(several_), terminal(CanChangeLines()), colours(terminal && !IsSet("NO_COLOR"))
{
}

std::string Console::Named(const std::string& file, const std::string& line) const
{
  return several && !line.starts_with(file) ? file + ": " + line : line;
}

std::string Console::Coloured(const std::string& line) const
{
  if (!colours)
    return line;
  const auto has = [&](const char* word) {
    return line.starts_with(word) || line.find(std::string(": ") + word) != std::string::npos;
  };
  const char* colour = has("error") || has("not solved") ? kRed
                       : has("warning: ")                ? kYellow
                                                         : nullptr;
  return colour ? colour + line + kPlain : line;
}

void Console::Message(const std::string& file, const std::string& line)
{
  Clear();
  Print(Coloured(Named(file, line)) + "\n");
}

void Console::Stage(const std::string& file, const std::string& text)
{
  stageOf = file;
  stage = text;
  state.clear();
  begin = lastLine = Clock::now();
  if (terminal)
    Draw();
  else
    Print(file + ": " + text + "\n");
}

void Console::Advance(const std::string& file, const std::string& text)
{
  constexpr std::chrono::seconds kBetween(30);
  state = text;
  if (terminal) {
    Draw();
  } else if (Clock::now() - lastLine > kBetween) {
    lastLine = Clock::now();
    Print(file + ": " + text + "\n");
  }
}

void Console::Tick()
{
  if (drawn)
    Draw();
}

// A line that fills the last column would make some terminals begin another one.
void Console::Draw()
{
  const auto seconds = std::chrono::duration_cast<std::chrono::seconds>(Clock::now() - begin);
  std::string line = stageOf + ": " + (state.empty() ? stage : state);
  if (seconds.count() > 0)
    line += " (" + std::to_string(seconds.count()) + " s)";
  if (line.size() >= WidthOfTerminal())
    line.resize(WidthOfTerminal() - 1);
  Print(kEraseLine + line);
  drawn = true;
}

void Console::Clear()
{
  if (drawn)
    Print(kEraseLine);
  drawn = false;
}

bool Console::Output(std::string_view text)
{
  Clear();
  const bool written = std::fwrite(text.data(), 1, text.size(), stdout) == text.size();
  return std::fflush(stdout) == 0 && written;
}

}  // namespace morlen::run
