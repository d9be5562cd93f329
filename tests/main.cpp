// The tests with options that choose the vector instructions and the solver with which they solve:
//
//   morlen_tests [--processor=plain|avx2|avx512] [--solver=Direct] [options of GoogleTest]
//
// The status is 77 when this machine lacks the instructions, or the program the solver.

#include <gtest/gtest.h>

#include <cstdio>
#include <optional>
#include <string_view>

#include "support/processor.h"
#include "support/tested_solver.h"

using namespace morlen;

namespace {

constexpr int kLacking = 77;
constexpr std::string_view kProcessorOption = "--processor=";
constexpr std::string_view kDirectOption = "--solver=Direct";

Processor tested = ThisProcessor();
bool testsDirect = false;

std::optional<Processor> Named(std::string_view name)
{
  static constexpr struct
  {
    std::string_view name;
    Processor processor;
  } all[] = {
      {"plain", Processor::kPlain}, {"avx2", Processor::kAvx2}, {"avx512", Processor::kAvx512}};
  for (const auto& each : all) {
    if (each.name == name)
      return each.processor;
  }
  return std::nullopt;
}

// Returns false for an unknown option.
bool ReadOption(std::string_view option)
{
  if (option == kDirectOption) {
    testsDirect = true;
    return true;
  }
  const std::optional<Processor> named = option.starts_with(kProcessorOption)
                                             ? Named(option.substr(kProcessorOption.size()))
                                             : std::nullopt;
  tested = named.value_or(tested);
  return named.has_value();
}

}  // namespace

Processor morlen::TestedProcessor()
{
  return tested;
}

bool morlen::TestsDirect()
{
  return testsDirect;
}

void morlen::SetTestedSolver(SolverSettings& settings)
{
  if (testsDirect &&
      (settings.type == SolverType::SkyLine || settings.type == SolverType::Automatic))
    settings.type = SolverType::Direct;
}

int main(int argc, char** argv)
{
  testing::InitGoogleTest(&argc, argv);
  for (int i = 1; i < argc; ++i) {
    if (!ReadOption(argv[i])) {
      std::fprintf(stderr, "unknown option %s\n", argv[i]);
      return 2;
    }
  }
  if (tested > ThisProcessor() || (testsDirect && &TestedKit() == &kPlainKit)) {
    std::puts("not on this processor, or not in this program");
    return kLacking;
  }
  return RUN_ALL_TESTS();
}
