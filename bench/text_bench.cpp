#include <benchmark/benchmark.h>

#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <memory>
#include <random>
#include <string>
#include <vector>

#include "base/number_format.h"
#include "base/number_text.h"
#include "base/text_out.h"
#include "base/textscan.h"
#include "measure.h"
#include "model/elem.h"
#include "model/material.h"
#include "model/mesh.h"
#include "model/node.h"
#include "numeric/plex_range.h"

namespace morlen {

// Formatting and reading of numbers, and reading of whole mesh blocks with their objects. Counters:
//   items_per_second  numbers or objects
//   bytes_per_second  bytes of text
//   libc_ratio        time over that of snprintf or strtod on the same numbers in the same run

namespace {

constexpr int kNumbers = 100000;
constexpr int kRepeats = 5;

/// Numbers like those of results: normally distributed over several magnitudes, every fifth is 0.
std::vector<double> Results()
{
  std::mt19937_64 random(1);
  std::normal_distribution<double> normal;
  std::uniform_int_distribution<int> magnitude(-6, 5);
  std::vector<double> numbers;
  for (int i = 0; i < kNumbers; ++i)
    numbers.push_back(i % 5 ? normal(random) * std::pow(10.0, magnitude(random)) : 0.0);
  return numbers;
}

/// Some numbers as text, with a blank after each.
std::string TextOf(const std::vector<double>& numbers, const char* format)
{
  std::string text;
  for (const double number : numbers) {
    char digits[64];
    std::snprintf(digits, sizeof digits, format, number);
    text += digits;
    text += ' ';
  }
  return text;
}

void Count(benchmark::State& state, std::size_t items, std::size_t bytes)
{
  state.SetItemsProcessed(state.iterations() * static_cast<std::int64_t>(items));
  state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(bytes));
}

/// Runs the action and compares its time with that of another action on the same numbers.
template <class Action, class Other>
void Compare(benchmark::State& state, Action action, Other other)
{
  for (auto _ : state)
    action();
  state.counters["libc_ratio"] = Seconds(kRepeats, action) / Seconds(kRepeats, other);
}

template <char* (*write)(char*, double)>
void Format(benchmark::State& state, const char* format)
{
  const std::vector<double> numbers = Results();
  const std::size_t bytes = TextOf(numbers, format).size();
  std::vector<char> buffer(kNumbers * (kLongestNumber + 1));
  const auto ours = [&] {
    char* next = buffer.data();
    for (const double number : numbers) {
      next = write(next, number);
      *next++ = ' ';
    }
    benchmark::DoNotOptimize(buffer.data());
  };
  const auto theirs = [&] {
    char* next = buffer.data();
    for (const double number : numbers) {
      next += std::snprintf(next, kLongestNumber, format, number);
      *next++ = ' ';
    }
    benchmark::DoNotOptimize(buffer.data());
  };
  Compare(state, ours, theirs);
  Count(state, kNumbers, bytes);
}

void FormatGeneralNumbers(benchmark::State& state)
{
  Format<FormatGeneral>(state, "%g");
}
BENCHMARK(FormatGeneralNumbers);

void FormatScientificNumbers(benchmark::State& state)
{
  Format<FormatScientific>(state, "%.6e");
}
BENCHMARK(FormatScientificNumbers);

/// Writes lines of three numbers by TextOut to /dev/null.
void WriteLines(benchmark::State& state)
{
  const std::vector<double> numbers = Results();
  std::ofstream file("/dev/null");
  TextOut out(file);
  for (auto _ : state) {
    for (std::size_t i = 0; i + 2 < numbers.size(); i += 3)
      out << ' ' << numbers[i] << ' ' << numbers[i + 1] << ' ' << numbers[i + 2] << '\n';
  }
  Count(state, kNumbers, TextOf(numbers, "%g").size());
}
BENCHMARK(WriteLines);

/// Reads numbers. Argument: their significant digits.
void ReadNumbers(benchmark::State& state)
{
  const std::string format = "%." + std::to_string(state.range(0)) + "g";
  const std::string text = TextOf(Results(), format.c_str());
  double sum = 0.0;
  const auto ours = [&] {
    TextScan scan(text);
    for (double number; scan.ReadDouble(number);)
      sum += number;
  };
  const auto theirs = [&] {
    const char* next = text.c_str();
    for (int i = 0; i < kNumbers; ++i) {
      char* end = nullptr;
      sum += std::strtod(next, &end);
      next = end;
    }
  };
  Compare(state, ours, theirs);
  benchmark::DoNotOptimize(sum);
  Count(state, kNumbers, text.size());
}
BENCHMARK(ReadNumbers)->Arg(6)->Arg(10)->Arg(17);

/// A mesh block: a grid of n³ nodes, and an element of the first nodes of each cell.
std::string MeshText(int n, int nnode)
{
  std::string text = "dimension = 3 elemtype " + std::string(nnode == 2 ? "Linear" : "Tetrahedra") +
                     " nnode = " + std::to_string(nnode) + "\ncoordinates\n";
  const int count = n * n * n;
  for (int i = 0; i < count; ++i) {
    char line[96];
    std::snprintf(line, sizeof line, "%d %.10g %.10g %.10g\n", i + 1, i % n / 7.0, i / n % n / 3.0,
                  i / n / n * 0.25);
    text += line;
  }
  text += "end coordinates\nelements\n";
  const int steps[] = {0, 1, n, n * n};
  for (int i = 0; i + n * n < count; ++i) {
    text += std::to_string(i + 1);
    for (int k = 0; k < nnode; ++k)
      text += ' ' + std::to_string(i + 1 + steps[k]);
    text += " 1\n";
  }
  return text + "end elements\n";
}

/// Reads lines of nodes and elements into the objects of a mesh. Items are objects.
void ReadMesh(benchmark::State& state)
{
  constexpr int kSide = 40;
  const std::string content = MeshText(kSide, static_cast<int>(state.range(0)));
  int objects = 0;
  for (auto _ : state) {
    Mesh mesh(100, 100, 0, ElemType(0), 0);
    TextScan text(content);
    mesh.ReadFromAscii(text, nullptr);
    objects = mesh.GiveNodePlex()->Count() + mesh.GiveElemPlex()->Count();
    state.PauseTiming();
    mesh.ClearAllElems();
    mesh.ClearAllNodes();
    state.ResumeTiming();
  }
  Count(state, static_cast<std::size_t>(objects), content.size());
}
BENCHMARK(ReadMesh)->Arg(2)->Arg(4)->Unit(benchmark::kMillisecond);

/// Makes and deletes objects.
void MakeNodes(benchmark::State& state)
{
  std::vector<std::unique_ptr<Node>> nodes(kNumbers);
  for (auto _ : state) {
    for (auto& node : nodes)
      node = std::make_unique<Node>(3);
    for (auto& node : nodes)
      node.reset();
  }
  Count(state, kNumbers, kNumbers * sizeof(Node));
}
BENCHMARK(MakeNodes);

void MakeElements(benchmark::State& state)
{
  std::vector<std::unique_ptr<Elem>> elems(kNumbers);
  for (auto _ : state) {
    Mesh mesh(100, 100, 0, ElemType(0), 0);
    for (auto& elem : elems)
      elem = std::make_unique<Elem>(static_cast<int>(state.range(0)), &mesh, nullptr);
    for (auto& elem : elems)
      elem.reset();
  }
  Count(state, kNumbers, kNumbers * sizeof(Elem));
}
BENCHMARK(MakeElements)->Arg(2)->Arg(4)->Arg(10);

/// Finds the materials of elements by their numbers.
void FindMaterials(benchmark::State& state)
{
  VoidPlex materials(100);
  for (int number = 1; number <= 1000; ++number)
    Store(materials, number, std::make_unique<Material>()).number = number;
  Elem elem(2, nullptr, nullptr);
  int sum = 0;
  for (auto _ : state) {
    for (int i = 0; i < kNumbers; ++i) {
      elem.NewMaterial(1 + i * 617 % 1000);
      sum += elem.GiveMaterial(&materials)->number;
    }
  }
  benchmark::DoNotOptimize(sum);
  DeleteAll<Material>(materials);
  Count(state, kNumbers, 0);
}
BENCHMARK(FindMaterials);

}  // namespace

}  // namespace morlen
