#include <cblas.h>

#include <cstddef>
#include <vector>

#include "dgemm.h"
#include "measure.h"

extern "C" void openblas_set_num_threads(int threads);

namespace morlen {

double DgemmRate()
{
  constexpr int kRows = 1500;
  constexpr int kRepetitions = 5;
  const std::vector<double> a(static_cast<std::size_t>(kRows) * kRows, 1.0);
  const std::vector<double> b = a;
  std::vector<double> c = a;
  openblas_set_num_threads(1);
  const auto multiply = [&] {
    cblas_dgemm(CblasRowMajor, CblasNoTrans, CblasNoTrans, kRows, kRows, kRows, 1.0, a.data(),
                kRows, b.data(), kRows, 0.0, c.data(), kRows);
  };
  multiply();
  return 2.0 * kRows * kRows * kRows / Seconds(kRepetitions, multiply);
}

}  // namespace morlen
