#include "run_program/progress.h"

#include <unistd.h>

#include <algorithm>
#include <cmath>

namespace morlen::run {

ProgressSender::ProgressSender(int descriptor_) : descriptor(descriptor_)
{
  stream = fopencookie(this, "w",
                       {.read = nullptr, .write = Receive, .seek = nullptr, .close = nullptr});
}

ProgressSender::~ProgressSender()
{
  if (stream)
    std::fclose(stream);
}

ssize_t ProgressSender::Receive(void* cookie, const char* text, size_t size)
{
  auto& sender = *static_cast<ProgressSender*>(cookie);
  for (const char c : std::string_view(text, size)) {
    if (c != '\n') {
      sender.line += c;
      continue;
    }
    sender.Hear(sender.line);
    sender.line.clear();
  }
  return static_cast<ssize_t>(size);
}

void ProgressSender::Hear(const std::string& text)
{
  int first = 0;
  int second = 0;
  double residual = 0.0;
  double tolerance = 0.0;
  char solver[20];
  int rest = 0;
  if (text.starts_with("warning: "))
    ++warnings;
  else if (std::sscanf(text.c_str(), "iteration number %d resid=%lf tol=%lf", &first, &residual,
                       &tolerance) == 3)
    Iterate(first, residual, tolerance);
  else if (std::sscanf(text.c_str(), "Solving degree %d of %d", &first, &second) == 2)
    Advance("factorising, equation " + std::to_string(first) + " of " + std::to_string(second));
  else if (std::sscanf(text.c_str(), "Solver %19s taken: %n", solver, &rest) == 1 && rest > 0)
    StageOfSolver(solver, text.substr(static_cast<std::size_t>(rest)));
  else if (text == "Factorisation")
    Advance("factorising");
}

void ProgressSender::StageOfSolver(const std::string& solver, const std::string& reason)
{
  std::string text = "solving ";
  if (equations > 0)
    text += std::to_string(equations) + " equations ";
  Stage(text + "with " + solver + ": " + reason);
}

void ProgressSender::Iterate(int iteration, double residual, double tolerance)
{
  if (iteration <= lastIteration || startResidual == 0.0) {
    start = Clock::now();
    startResidual = leastResidual = residual;
  }
  lastIteration = iteration;
  leastResidual = std::min(leastResidual, residual);
  const double seconds = std::chrono::duration<double>(Clock::now() - start).count();
  const double left = SecondsLeft(startResidual, leastResidual, tolerance, seconds);
  char text[160];
  std::snprintf(text, sizeof text, "iteration %d, residual %.1e of %.1e", iteration, residual,
                tolerance);
  std::string message = text;
  if (left >= 0.0) {
    std::snprintf(text, sizeof text, ", about %.0f s left", std::ceil(left));
    message += text;
  }
  if (equations > 0)
    message += ", " + std::to_string(equations) + " equations";
  Advance(message);
}

double SecondsLeft(double first, double present, double goal, double seconds)
{
  if (!(present < first) || !(present > goal) || !(goal > 0.0))
    return -1.0;
  return seconds * std::log(present / goal) / std::log(first / present);
}

void ProgressSender::Advance(std::string_view text)
{
  constexpr std::chrono::milliseconds kLeast(100);
  const Clock::time_point now = Clock::now();
  if (now - lastAdvance < kLeast)
    return;
  lastAdvance = now;
  Send(kAdvance, text);
}

// Whoever shows the progress may have ended: the run goes on.
void ProgressSender::Send(char kind, std::string_view text)
{
  std::string message = {kMark, kind};
  message += text;
  message += '\n';
  if (write(descriptor, message.data(), message.size()) < 0)
    return;
}

}  // namespace morlen::run
