#include "support/judged.h"

#include <gtest/gtest.h>

#include <cctype>
#include <chrono>
#include <cstdio>
#include <memory>

#include "support/messages.h"
#include "support/run_ended.h"

namespace morlen {

std::string Judged::Text() const
{
  char text[200];
  std::snprintf(text, sizeof text,
                "%s, %s, %.2f s: displacements %.1e, rotations %.1e, forces %.1e, moments %.1e, "
                "reactions %.1e, their moments %.1e",
                direct ? "direct" : "iterated", warned ? "warned" : "no warning", seconds,
                errors.displacement, errors.rotation, errors.force, errors.moment, errors.reaction,
                errors.reactionMoment);
  return IsSolved() ? text : message;
}

Judged Judge(const Structure& structure, const std::string& settings, const PreciseResults* exact)
{
  const std::string problem = structure.Text(settings);
  Judged judged;
  std::unique_ptr<Solved> solved;
  testing::internal::CaptureStderr();
  const auto begin = std::chrono::steady_clock::now();
  judged.info = MessagesOf([&](std::FILE* info) {
    judged.message = FatalCaught([&] { solved = std::make_unique<Solved>(problem, true, info); });
  });
  const std::chrono::duration<double> time = std::chrono::steady_clock::now() - begin;
  judged.seconds = time.count();
  const std::string errors = testing::internal::GetCapturedStderr();
  judged.warned = (judged.info + errors).find("warning") != std::string::npos;
  if (!solved)
    return judged;
  judged.message.clear();
  judged.direct = solved->Model().solverSettings.type == SolverType::SkyLine;
  if (exact)
    judged.errors = ErrorsOf(*solved, structure, *exact);
  return judged;
}

std::string TestName(const std::string& text)
{
  std::string name;
  bool begins = true;
  for (const char c : text) {
    const auto letter = static_cast<unsigned char>(c);
    if (std::isalnum(letter) != 0)
      name += begins ? static_cast<char>(std::toupper(letter)) : c;
    begins = std::isalnum(letter) == 0;
  }
  return name;
}

}  // namespace morlen
