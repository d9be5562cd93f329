"""Types of arrays."""

from __future__ import annotations

import numpy as np
import numpy.typing as npt

Floats = npt.NDArray[np.float64]
Ints = npt.NDArray[np.int32]
Texts = npt.NDArray[np.object_]
