// The tests with an option that chooses the vector instructions with which they solve:
//
//   morlen_tests [--processor=plain|avx2|avx512] [options of GoogleTest]
//
// The status is 77 when this machine lacks them.

#include <gtest/gtest.h>

#include <cstdio>
#include <optional>
#include <string_view>

#include "support/processor.h"

using namespace morlen;

namespace {

constexpr int kLacking = 77;
constexpr std::string_view kOption = "--processor=";

Processor tested = ThisProcessor();

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

}  // namespace

Processor morlen::TestedProcessor()
{
  return tested;
}

int main(int argc, char** argv)
{
  testing::InitGoogleTest(&argc, argv);
  for (int i = 1; i < argc; ++i) {
    const std::string_view option = argv[i];
    const std::optional<Processor> named =
        option.starts_with(kOption) ? Named(option.substr(kOption.size())) : std::nullopt;
    if (!named) {
      std::fprintf(stderr, "unknown option %s\n", argv[i]);
      return 2;
    }
    tested = *named;
  }
  if (tested > ThisProcessor()) {
    std::puts("not on this processor");
    return kLacking;
  }
  return RUN_ALL_TESTS();
}
