#pragma once

namespace morlen {

class Material;

/// Whether the ratios of an orthotropic material make its matrix symmetric: Ex*nuXY = Ey*nuYX,
/// to 1e-12 of the larger product.
bool IsSymmetric(const Material& material);

}  // namespace morlen
