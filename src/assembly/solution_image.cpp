#include "assembly/solution_image.h"

#include <climits>
#include <cstddef>
#include <cstdint>

#include "assembly/solution.h"
#include "base/byte_archive.h"

namespace morlen {

namespace {

/// Changes with every change of the image.
constexpr std::uint64_t kMark = 0x4d6f726c656e1001;

constexpr ReaVecV Solution::*kVectors[] = {&Solution::displacements, &Solution::displacementRests,
                                           &Solution::elementForces, &Solution::supportLoads,
                                           &Solution::reactions,     &Solution::nodalStresses};
constexpr ReaVecV MeshResults::*kMeshVectors[] = {&MeshResults::strengths, &MeshResults::mainAngles,
                                                  &MeshResults::mainStrengths};

void Put(const ReaVecV& vector, BytePutter& put)
{
  put.PutList(vector.Data(), static_cast<std::size_t>(vector.Size()));
}

void Get(ByteGetter& get, ReaVecV& vector)
{
  const std::size_t count = get.GetCount(sizeof(double));
  if (count > INT_MAX)
    RefuseBytes();
  vector.resize(static_cast<int>(count), 0.0);
  get.CopyTo(vector.Data(), count * sizeof(double));
}

}  // namespace

std::vector<char> ImageOf(const Solution& solution)
{
  std::vector<char> bytes;
  BytePutter put(bytes);
  put(kMark);
  put(solution.elementLoads);
  put(solution.accuracy);
  for (ReaVecV Solution::*vector : kVectors)
    Put(solution.*vector, put);
  put(solution.results.size());
  for (const MeshResults& results : solution.results) {
    put(results.numbers);
    put(results.blockSize);
    put(results.points);
    for (ReaVecV MeshResults::*vector : kMeshVectors)
      Put(results.*vector, put);
  }
  return bytes;
}

void ReadImage(std::span<const char> image, Solution& solution)
{
  ByteGetter get(image);
  if (get.Get<std::uint64_t>() != kMark)
    RefuseBytes();
  get(solution.elementLoads);
  get(solution.accuracy);
  for (ReaVecV Solution::*vector : kVectors)
    Get(get, solution.*vector);
  solution.results.resize(get.GetCount(1));
  for (MeshResults& results : solution.results) {
    get(results.numbers);
    get(results.blockSize);
    get(results.points);
    for (ReaVecV MeshResults::*vector : kMeshVectors)
      Get(get, results.*vector);
  }
  if (!get.AtEnd())
    RefuseBytes();
}

}  // namespace morlen
