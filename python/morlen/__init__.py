"""Static linear analysis of frames, shells and solids by finite elements.

    import morlen
    model = morlen.read("frame.dat")
    results = model.solve()
    print(results.displacements)

Values are in the units of the results of the problem file, components and signs as in its result
files. Arrays cannot be written to.
"""

from ._core import __version__ as __version__
from ._builder import Builder
from ._cases import Cases, Envelope, Extremes, SolvedCases, read_cases
from ._checks import Finding, check, check_text
from ._error import Error, ModelWarning
from ._model import Elements, Material, Materials, Model, Nodes, Units, parse, read
from ._results import BeamResults, Results, ShellResults, SolidResults

__all__ = [
    "BeamResults",
    "Builder",
    "Cases",
    "Elements",
    "Envelope",
    "Error",
    "Extremes",
    "Finding",
    "Material",
    "Materials",
    "Model",
    "ModelWarning",
    "Nodes",
    "Results",
    "ShellResults",
    "SolidResults",
    "SolvedCases",
    "Units",
    "check",
    "check_text",
    "parse",
    "read",
    "read_cases",
]
