"""Ten models, meshed by gmsh, in eight files each: six forms, .msh as text and binary.

`map` has groups as {dimension:name}; `check` gets the results and the coordinates of the nodes, and compares them with
closed forms.
"""

import re
from dataclasses import dataclass

import numpy as np
import pytest
from gmsh_runs import run_gmsh

FORMS = ("22.msh", "22b.msh", "41.msh", "41b.msh", "vtk", "inp", "med", "vtu")
_GMSH = {
    "22.msh": ["-format", "msh2"],
    "22b.msh": ["-format", "msh2", "-bin"],
    "41.msh": ["-format", "msh41"],
    "41b.msh": ["-format", "msh41", "-bin"],
    "vtk": ["-format", "vtk"],
    "inp": ["-format", "inp", "-setnumber", "Mesh.SaveGroupsOfNodes", "1"],
}


@dataclass
class GmshModel:
    """Geometry, order of the elements, map, and the comparison with closed forms."""

    name: str
    order: int
    geo: str
    map: str
    check: object


def _at(xyz, **place):
    chosen = np.ones(len(xyz), dtype=bool)
    for axis, value in place.items():
        chosen &= np.abs(xyz[:, "xyz".index(axis)] - value) < 1e-6
    assert chosen.any()
    return chosen


def _near(value, expected, tolerance=2e-5):
    # The results have six digits; coordinates in .inp files of gmsh have six as well.
    np.testing.assert_allclose(value, expected, rtol=tolerance, atol=tolerance * np.max(np.abs(expected)))


def _bar(r, xyz):
    _near(r.displacements[_at(xyz, x=4), 0], 3.0 * 4 / 2000)  # sigma L / E
    _near(r.reaction_sum(), [-3.0, 0, 0])


def _hanging(r, xyz):
    _near(r.displacements[_at(xyz, z=0), 2], -0.5 * 7.0 * 3**2 / 1000)  # weight L^2 / (2 E)
    _near(r.reaction_sum(), [0, 0, 7.0 * 3])


def _cylinder(r, xyz):
    # The pressure acts on the end, the traction on the side; quadratic edges follow the circle to 0.2 per cent.
    _near(r.reaction_sum(), [0, -2.0 * np.pi * 2, 5.0 * np.pi * 0.5**2], 2e-3)


def _series(r, xyz):
    _near(r.displacements[_at(xyz, x=1), 0], 2.0 * 1 / 1000)
    _near(r.displacements[_at(xyz, x=3), 0], 2.0 * (1 / 1000 + 2 / 4000))


def _membrane(r, xyz):
    _near(r.displacements[_at(xyz, x=3), 0], 6.0 * 3 / (3000 * 0.1))  # q L / (E t)
    _near(r.reaction_sum(), [-6.0 * 2, 0, 0])


def _plate(r, xyz):
    # z' is upwards: a pressure acts downwards.
    # The rim is 6 long.
    _near(r.reaction_sum(), [0, -0.5 * 6, 4.0 * 2 * 1])


def _cantilever(r, xyz):
    _near(r.displacements[_at(xyz, x=2), 2], -12.0 * 2**4 / (8 * 1e6 * 2e-4))  # q L^4 / (8 E I)
    _near(r.reaction_sum(), [0, 0, 12.0 * 2])


def _hinged_beam(r, xyz):
    # Two halves of 3, joined by a hinge, clamped outside: each a cantilever under half the force.
    _near(r.displacements[_at(xyz, x=3), 2], -4.0 * 3**3 / (3 * 1e6 * 2e-4))
    _near(r.reaction_sum(), [0, 0, 8.0])


def _table(r, xyz):
    _near(r.reaction_sum(), [1.0, 0, 5.0 * 2 * 2])


def _roof(r, xyz):
    # The forces follow flat triangles: chords for the arc.
    _near(r.reaction_sum(), [0, 0, 1.5 * np.pi * 1.0 * 3], 0.03)


BEAM = """
E = 1e6
G = 4e5
A = 0.01
Iy = 2e-4
Iz = 1e-4
J = 1e-4
"""
SOLID = 'SetFactory("OpenCASCADE");\n'

MODELS = [
    GmshModel(
        "bar of first order",
        1,
        SOLID
        + """
Box(1) = {0,0,0, 4,1,1}; Mesh.MeshSizeMax = 0.6;
Physical Volume("body", 1) = {1}; Physical Surface("left", 2) = {1}; Physical Surface("right", 3) = {2};
""",
        """
units = { length = "mm", force = "N" }
[materials.steel]
groups = ["{3:body}"]
E = 2000
nu = 0
[supports.wall]
groups = ["{2:left}"]
flags = "111"
[loads.pull]
groups = ["{2:right}"]
pressure = -3
""",
        _bar,
    ),
    GmshModel(
        "hanging bar of second order",
        2,
        SOLID
        + """
Box(1) = {0,0,0, 1,1,3}; Mesh.MeshSizeMax = 0.8;
Physical Volume("body", 1) = {1}; Physical Surface("top", 2) = {6};
""",
        """
units = { length = "m", force = "kN" }
[settings]
GravityDirection = [0, 0, -1]
[materials.steel]
groups = ["{3:body}"]
E = 1000
nu = 0.0
Weight = 7
[supports.wall]
groups = ["{2:top}"]
flags = "111"
""",
        _hanging,
    ),
    GmshModel(
        "cylinder",
        2,
        SOLID
        + """
Cylinder(1) = {0,0,0, 0,0,2, 0.5}; Mesh.MeshSizeMax = 0.35;
Physical Volume("body", 9) = {1}; Physical Surface("base", 5) = {3};
Physical Surface("top", 6) = {2}; Physical Surface("wind", 7) = {1};
""",
        """
units = { length = "cm", force = "kN" }
[materials.steel]
groups = ["{3:body}"]
E = 1000
nu = 0.3
[supports.base]
groups = ["{2:base}"]
flags = "111"
[loads.press]
groups = ["{2:top}"]
pressure = 5
[loads.push]
groups = ["{2:wind}"]
traction = [0, 2, 0]
""",
        _cylinder,
    ),
    GmshModel(
        "two materials in series",
        1,
        SOLID
        + """
Box(1) = {0,0,0, 1,1,1}; Box(2) = {1,0,0, 2,1,1}; Coherence; Mesh.MeshSizeMax = 0.5;
Physical Volume("soft", 3) = {1}; Physical Volume("stiff", 4) = {2};
left() = Surface In BoundingBox {-0.1,-1,-1, 0.1,2,2}; right() = Surface In BoundingBox {2.9,-1,-1, 3.1,2,2};
Physical Surface("left", 1) = {left()}; Physical Surface("right", 2) = {right()};
""",
        """
units = { length = "in", force = "lbf" }
[materials.soft]
groups = ["{3:soft}"]
E = 1000
nu = 0
[materials.stiff]
groups = ["{3:stiff}"]
E = 4000
nu = 0
[supports.wall]
groups = ["{2:left}"]
flags = "111"
[loads.pull]
groups = ["{2:right}"]
traction = [2, 0, 0]
""",
        _series,
    ),
    GmshModel(
        "membrane pulled at its edge",
        1,
        SOLID
        + """
Rectangle(1) = {0,0,0, 3,2}; Mesh.MeshSizeMax = 0.7;
Physical Surface("sheet", 1) = {1}; Physical Curve("left", 2) = {4}; Physical Curve("right", 3) = {2};
""",
        """
units = { length = "m", force = "MN" }
[settings]
ShellFormulation = "Refined"
[materials.sheet]
groups = ["{2:sheet}"]
E = 3000
nu = 0
G = 1500
t = 0.1
[supports.wall]
groups = ["{1:left}"]
flags = "111111"
[loads.pull]
groups = ["{1:right}"]
traction = [6, 0, 0]
""",
        _membrane,
    ),
    GmshModel(
        "plate of second order under pressure",
        2,
        SOLID
        + """
Rectangle(1) = {0,0,0, 2,1}; Mesh.MeshSizeMax = 0.4;
Physical Surface("plate", 1) = {1}; Physical Curve("rim", 2) = {1,2,3,4};
""",
        """
units = { length = "ft", force = "kip" }
[settings]
ShellFormulation = "Refined"
[materials.plate]
groups = ["{2:plate}"]
E = 3000
nu = 0.2
G = 1250
t = 0.1
[supports.rim]
groups = ["{1:rim}"]
flags = "111000"
[loads.snow]
groups = ["{2:plate}"]
pressure = 4
[loads.rim]
groups = ["{1:rim}"]
traction = [0, 0.5, 0]
""",
        _plate,
    ),
    GmshModel(
        "cantilever",
        1,
        """
Point(1) = {0,0,0}; Point(2) = {2,0,0}; Line(1) = {1,2}; Transfinite Curve{1} = 5;
Physical Curve("beam", 4) = {1}; Physical Point("foot", 5) = {1};
""",
        """
units = { length = "m", force = "kN" }
[materials.beam]
groups = ["{1:beam}"]
"""
        + BEAM
        + """[supports.foot]
groups = ["{0:foot}"]
flags = "111111"
[loads.floor]
groups = ["{1:beam}"]
traction = [0, 0, -12]
""",
        _cantilever,
    ),
    GmshModel(
        "hinged beams of second order",
        2,
        """
Point(1) = {0,0,0}; Point(2) = {3,0,0}; Point(3) = {6,0,0}; Line(1) = {1,2}; Line(2) = {2,3};
Transfinite Curve{1,2} = 2;
Physical Curve("west", 4) = {1}; Physical Curve("east", 5) = {2};
Physical Point("ends", 6) = {1,3}; Physical Point("middle", 7) = {2};
""",
        """
units = { length = "m", force = "kN" }
[materials.beam]
groups = ["{1:west}", "{1:east}"]
"""
        + BEAM
        + """[hinges.joint]
groups = ["{1:west}"]
code = "10"
[supports.ends]
groups = ["{0:ends}"]
flags = "111111"
[loads.force]
groups = ["{0:middle}"]
each = [0, 0, -8]
""",
        _hinged_beam,
    ),
    GmshModel(
        "slab on columns",
        1,
        """
Point(1) = {0,0,3, 0.6}; Point(2) = {2,0,3, 0.6}; Point(3) = {2,2,3, 0.6}; Point(4) = {0,2,3, 0.6};
Line(1) = {1,2}; Line(2) = {2,3}; Line(3) = {3,4}; Line(4) = {4,1};
Curve Loop(1) = {1,2,3,4}; Plane Surface(1) = {1};
Point(11) = {0,0,0, 1}; Point(12) = {2,0,0, 1}; Point(13) = {2,2,0, 1}; Point(14) = {0,2,0, 1};
Line(11) = {11,1}; Line(12) = {12,2}; Line(13) = {13,3}; Line(14) = {14,4};
Physical Surface("slab", 1) = {1}; Physical Curve("columns", 2) = {11,12,13,14};
Physical Point("feet", 3) = {11,12,13,14}; Physical Curve("edge", 4) = {4};
""",
        """
units = { length = "m", force = "kN" }
[settings]
ShellFormulation = "Refined"
[materials.slab]
groups = ["{2:slab}"]
E = 3e7
nu = 0.2
G = 1.25e7
t = 0.2
[materials.columns]
groups = ["{1:columns}"]
E = 3e7
G = 1.25e7
widthY = 0.3
widthZ = 0.3
[supports.feet]
groups = ["{0:feet}"]
flags = "111111"
[loads.live]
groups = ["{2:slab}"]
pressure = 5
[loads.wind]
groups = ["{1:edge}"]
total = [-1, 0, 0]
""",
        _table,
    ),
    GmshModel(
        "barrel roof of second order",
        2,
        """
Point(1) = {0,0,0}; Point(2) = {0,1,0}; Point(3) = {0,0,1}; Point(4) = {0,-1,0};
Circle(1) = {2,1,3}; Circle(2) = {3,1,4};
s() = Extrude {3,0,0} { Curve{1,2}; }; Mesh.MeshSizeMax = 0.5;
feet() = Curve In BoundingBox {-0.1,-1.1,-0.1, 3.1,1.1,0.01};
Physical Surface("roof", 1) = {s[1], s[5]}; Physical Curve("feet", 2) = {feet()};
""",
        """
units = { length = "km", force = "N" }
[settings]
ShellFormulation = "Refined"
NumOfDivisions = 4
[materials.roof]
groups = ["{2:roof}"]
E = 3e7
nu = 0.2
G = 1.25e7
t = 0.1
[supports.feet]
groups = ["{1:feet}"]
flags = "111000"
[loads.snow]
groups = ["{2:roof}"]
traction = [0, 0, -1.5]
""",
        _roof,
    ),
]


def group_numbers(geo):
    """The numbers of the physical groups of a geometry, by 'dimension:name'."""
    dimensions = {"Point": 0, "Curve": 1, "Surface": 2, "Volume": 3}
    found = re.findall(r'Physical (\w+)\("(\w+)", (\d+)\)', geo)
    return {f"{dimensions[what]}:{name}": int(number) for what, name, number in found}


def map_text(model, form):
    """The map of a model for a form: .vtk and .vtu have no names of groups."""
    numbers = group_numbers(model.geo)

    def label(match):
        key = match.group(1)
        return f"{key[0]}:{numbers[key]}" if form in ("vtk", "vtu") else key

    return re.sub(r"\{(\d:\w+)\}", label, model.map)


def make_files(model, folder):
    """All files of a model by their form."""
    (folder / "model.geo").write_text(model.geo)
    run_gmsh(folder, "model.geo", "-3", "-order", str(model.order), *_GMSH["41.msh"], "-o", "mesh.41.msh")
    for form, options in _GMSH.items():
        if form != "41.msh":
            run_gmsh(folder, "mesh.41.msh", "-save", *options, "-o", f"mesh.{form}")
    _by_meshio(folder, group_numbers(model.geo))
    return {form: folder / f"mesh.{form}" for form in FORMS}


def _by_meshio(folder, numbers):
    """Writes .vtu with numbers, and .med with names of families: cells that are given twice become one in two groups."""
    meshio = pytest.importorskip("meshio")
    pytest.importorskip("h5py")
    mesh = meshio.read(folder / "mesh.22.msh")
    physical = mesh.cell_data["gmsh:physical"]
    meshio.Mesh(mesh.points, mesh.cells, cell_data={"gmsh:physical": physical}).write(folder / "mesh.vtu")
    dimensions = {"vertex": 0, "line": 1, "line3": 1, "triangle": 2, "triangle6": 2, "tetra": 3, "tetra10": 3}
    names = {(int(key[0]), number): key[2:] for key, number in numbers.items()}
    cells, tags, families = [], [], {}
    for kind in dict.fromkeys(block.type for block in mesh.cells):
        nodes, groups = [], {}
        for block, own in zip(mesh.cells, physical):
            if block.type == kind:
                for row, number in zip(block.data.tolist(), own.tolist()):
                    groups.setdefault(tuple(row), []).append(names[dimensions[kind], number])
        for row, own in groups.items():
            nodes.append(row)
            families.setdefault((dimensions[kind], tuple(sorted(own))), -1 - len(families))
        cells.append((kind, np.array(nodes)))
        tags.append(np.array([families[dimensions[kind], tuple(sorted(own))] for own in groups.values()]))
    med = meshio.Mesh(mesh.points, cells, cell_data={"cell_tags": tags})
    med.cell_tags = {number: list(own) for (_, own), number in families.items()}
    med.point_tags = {}
    med.write(folder / "mesh.med")
