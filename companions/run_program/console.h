#pragma once

#include <chrono>
#include <string>
#include <string_view>

namespace morlen::run {

/// The words that the user sees: messages and progress on standard error, results on standard
/// output.
///
/// On a terminal the progress is one line that changes; it vanishes before other words appear.
/// Elsewhere each stage is a line, and of a long stage one line in half a minute. Colours are for
/// terminals only, and not when NO_COLOR is set.
class Console
{
public:
  /// several: messages begin with the name of their file.
  explicit Console(bool several);

  /// A line of a run on standard error, without its newline.
  void Message(const std::string& file, const std::string& line);
  void Stage(const std::string& file, const std::string& text);
  void Advance(const std::string& file, const std::string& text);
  /// Shows the time that the present stage has taken. To be called about every second.
  void Tick();
  /// Removes the line of the progress.
  void Clear();

  /// Prints a text on standard output. False when it cannot be written.
  bool Output(std::string_view text);

  bool HasTerminal() const { return terminal; }

private:
  using Clock = std::chrono::steady_clock;

  void Draw();
  std::string Named(const std::string& file, const std::string& line) const;
  std::string Coloured(const std::string& line) const;

  bool several;
  bool terminal;  ///< standard error is one that can change a line
  bool colours;
  bool drawn = false;
  std::string stageOf, stage, state;
  Clock::time_point begin = Clock::now();     ///< of the stage
  Clock::time_point lastLine = Clock::now();  ///< where there is no terminal
};

}  // namespace morlen::run
