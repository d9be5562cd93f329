#pragma once

namespace morlen {

class Material;

/// True when the Poisson ratios make the stress-strain matrix symmetric: Ex·nuXY = Ey·nuYX, to
/// 1e-12 of the larger product.
bool IsSymmetric(const Material& material);

}  // namespace morlen
