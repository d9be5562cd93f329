#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <string>

namespace morlen::direct {

/// The sizes that the analysis foretells, for all processes together.
struct MumpsSizes
{
  double entries = 0.0;          ///< of the factors
  double operations = 0.0;       ///< of the factorisation
  std::uint64_t bytes = 0;       ///< memory with the factors in it
  std::uint64_t bytesLeast = 0;  ///< memory with the factors in files
  std::uint64_t fileBytes = 0;   ///< of these files
};

/// Bytes as the information stream counts them.
double Megabytes(std::uint64_t bytes);

// The steps of the solver on the information stream; nothing is written without one. entries: of
// the matrix.
void ReportAnalysis(int equations, std::int64_t entries, std::FILE* info);
void ReportSizes(const MumpsSizes& sizes, std::FILE* info);
void ReportFiles(const std::string& folder, std::uint64_t memoryLeft, std::FILE* info);
void ReportSolution(std::size_t sides, std::FILE* info);

}  // namespace morlen::direct
