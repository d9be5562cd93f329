#pragma once

#include <chrono>
#include <cstdio>
#include <string>
#include <string_view>

namespace morlen::run {

/// Sends the progress of a run to the process that shows it, among the messages of the run, whose
/// order it keeps. A line of progress begins with kMark and its kind.
///
/// The analysis writes its progress to Stream(), as it does for the option -i of morlen; the
/// messages that matter to a user become events.
class ProgressSender
{
public:
  static constexpr char kMark = '\1';
  static constexpr char kStage = 'S';    ///< a new stage, at most five in a run
  static constexpr char kAdvance = 'A';  ///< the state of the present stage

  /// descriptor: where the lines are written; borrowed.
  explicit ProgressSender(int descriptor);
  ProgressSender(const ProgressSender&) = delete;
  ProgressSender& operator=(const ProgressSender&) = delete;
  ~ProgressSender();

  /// For the analysis.
  std::FILE* Stream() { return stream; }
  /// The number of equations, for the message about the solver; 0 when it is not known.
  void SetEquations(int count) { equations = count; }

  void Stage(std::string_view text) { Send(kStage, text); }
  /// The warnings of the analysis so far.
  int Warnings() const { return warnings; }

  /// Judges one line of the analysis, without its newline.
  void Hear(const std::string& line);

private:
  static ssize_t Receive(void* sender, const char* text, size_t size);
  void Advance(std::string_view text);
  void StageOfSolver(const std::string& solver, const std::string& reason);
  void Iterate(int iteration, double residual, double tolerance);
  void Send(char kind, std::string_view text);

  using Clock = std::chrono::steady_clock;

  int descriptor;
  std::FILE* stream;
  std::string line;  ///< of which the end has not come
  int equations = 0;
  int warnings = 0;
  Clock::time_point lastAdvance = {};

  // Of the present iteration:
  Clock::time_point start = {};
  double startResidual = 0.0;
  double leastResidual = 0.0;
  int lastIteration = 0;
};

/// The seconds that an iteration still needs when its residual falls as evenly as before: from
/// `first` to `present` in so many seconds. Negative when that cannot be told.
double SecondsLeft(double first, double present, double goal, double seconds);

}  // namespace morlen::run
