#pragma once

class Material;

/// Whether the ratios of an orthotropic material make its matrix symmetric: Ex*nuXY = Ey*nuYX,
/// to an absolute 1e-15, which is exact for all but the smallest moduli.
bool IsSymmetric(const Material& material);
