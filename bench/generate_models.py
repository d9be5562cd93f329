#!/usr/bin/env python3
"""Writes the problem file of a large model to standard output.

    generate_models.py [--setting LINE ...] [--peer SOLVER] FAMILY NUMBER...

    frame3d NX NY STOREYS    building of NX by NY bays, concrete columns and beams
    portal2d BAYS STOREYS    plane steel frame of a building
    plate N                  square plate of 2 N^2 three-node shells, simply supported
    sheet N                  the same, thinner than its elements are wide
    plate6 N                 the plate as six-node shells
    roof N                   cylindrical roof of 2 N^2 three-node shells on two diaphragms
    roof6 N                  the roof as six-node shells
    block N                  cube of 6 N^3 four-node tetrahedra, held on one side
    block10 N                the same of ten-node tetrahedra

The same arguments always give the same file. A setting is a separate line after the
header, for example --setting "Solver SkyLine". With --peer the same model is written as an
input file of CalculiX for the solver of that name, for example --peer SPOOLES.
"""

import argparse
import dataclasses
import itertools
import math
import pathlib
import sys

sys.path.insert(0, str(pathlib.Path(__file__).resolve().parents[1] / "scripts"))
import peer_input  # noqa: E402
from solid_mesh import SolidMesh  # noqa: E402


@dataclasses.dataclass
class Model:
    """The model of a family. Nodes are numbered from 1 in the order of `coordinates`; supports
    and loads are (node, flags or values), materials the texts after their numbers, from 1."""

    title: str
    header: str  # 2d or 3d
    element: str  # type and number of nodes, as the mesh block names them
    materials: list
    coordinates: list = dataclasses.field(default_factory=list)
    elements: list = dataclasses.field(default_factory=list)  # (nodes, material)
    supports: list = dataclasses.field(default_factory=list)
    loads: list = dataclasses.field(default_factory=list)
    settings: list = dataclasses.field(default_factory=list)  # lines after the header

    def components(self):
        """Of a support or a load."""
        return 3 if self.header == "2d" or self.element.startswith("Tetrahedra") else 6


def tributary(k, last):
    """Share of a spacing that belongs to line k of the lines 0 to last."""
    return 0.5 if k in (0, last) else 1.0


def storey_height(level, first, other):
    return level and first + (level - 1) * other


# ---------------------------------------------------------------- families

def frame3d(nx, ny, storeys):
    """Columns on a grid of bays along x and y, a beam between neighbours on every floor. The
    columns are stronger in the lower half. Floor loads and wind along x act on the nodes."""
    bay_x, bay_y, first, other = 6.0, 5.0, 4.2, 3.3
    lower, upper, beam_x, beam_y = 1, 2, 3, 4
    model = Model(
        f"Concrete frame, {nx} x {ny} bays of {bay_x:g} x {bay_y:g} m, {storeys} storeys; N and m.",
        "3d", "Linear nnode = 2",
        ["E = 3.3e10 G = 1.375e10 widthY = 0.70 widthZ = 0.70",
         "E = 3.3e10 G = 1.375e10 widthY = 0.50 widthZ = 0.50",
         "E = 3.3e10 G = 1.375e10 widthY = 0.30 widthZ = 0.60",
         "E = 3.3e10 G = 1.375e10 widthY = 0.30 widthZ = 0.50"])

    def node(i, j, k):
        return 1 + i + (nx + 1) * (j + (ny + 1) * k)

    def places(levels):
        return ((i, j, k) for k, j, i in itertools.product(levels, range(ny + 1), range(nx + 1)))

    floors = range(1, storeys + 1)
    height = [storey_height(k, first, other) for k in range(storeys + 1)]
    model.coordinates = [(i * bay_x, j * bay_y, height[k]) for i, j, k in places(range(storeys + 1))]
    for i, j, k in places(floors):
        column = lower if 2 * k <= storeys else upper
        model.elements.append(((node(i, j, k - 1), node(i, j, k)), column))
    model.elements += [((node(i, j, k), node(i + 1, j, k)), beam_x)
                       for i, j, k in places(floors) if i < nx]
    model.elements += [((node(i, j, k), node(i, j + 1, k)), beam_y)
                       for i, j, k in places(floors) if j < ny]
    model.supports = [(node(i, j, 0), "111111") for i, j, _ in places([0])]
    for i, j, k in places(floors):
        width = bay_y * tributary(j, ny)
        wind = 1000.0 * (1.0 + height[k] / height[-1]) * width * other if i == 0 else 0.0
        weight = 8500.0 * bay_x * tributary(i, nx) * width
        model.loads.append((node(i, j, k), (wind, 0.0, -weight, 0.0, 0.0, 0.0)))
    return model


def portal2d(bays, storeys):
    """Columns and beams in the plane; floor loads and wind act on the nodes."""
    bay, first, other = 6.0, 4.0, 3.2
    column, beam = 1, 2
    model = Model(
        f"Plane steel frame of {bays} bays of {bay:g} m and {storeys} storeys; N and m.",
        "2d", "Linear nnode = 2",
        ["E = 2.1e11 A = 0.0149 Iz = 2.517e-4", "E = 2.1e11 A = 0.00845 Iz = 2.313e-4"])

    def node(i, k):
        return 1 + i + (bays + 1) * k

    levels, floors, lines = range(storeys + 1), range(1, storeys + 1), range(bays + 1)
    model.coordinates = [(i * bay, storey_height(k, first, other)) for k in levels for i in lines]
    model.elements = [((node(i, k - 1), node(i, k)), column) for k in floors for i in lines]
    model.elements += [((node(i, k), node(i + 1, k)), beam) for k in floors for i in range(bays)]
    model.supports = [(node(i, 0), "111") for i in lines]
    model.loads = [(node(i, k), (4000.0 if i == 0 else 0.0, -30000.0 * bay * tributary(i, bays), 0.0))
                   for k in floors for i in lines]
    return model


def shell_grid(n, title, material, place):
    """Triangles over a square of n by n cells, each cut along a diagonal that turns from cell
    to cell. `place` maps parameters from 0 to 1 to a point. Returns the model and the number
    of the node on the lines i and j."""
    model = Model(title, "3d", "Triangle nnode = 3", [material])

    def node(i, j):
        return 1 + i + (n + 1) * j

    model.coordinates = [place(i / n, j / n) for j in range(n + 1) for i in range(n + 1)]
    for j, i in itertools.product(range(n), repeat=2):
        a, b, c, d = node(i, j), node(i + 1, j), node(i + 1, j + 1), node(i, j + 1)
        cut = ((a, b, d), (b, c, d)) if (i + j) % 2 else ((a, b, c), (a, c, d))
        model.elements += [(triangle, 1) for triangle in cut]
    return model, node


def load_area(model, pressure):
    """A third of every triangle's pressure, along -z, to each of its nodes."""
    forces = [0.0] * len(model.coordinates)
    for triangle, _ in model.elements:
        a, b, c = (model.coordinates[k - 1] for k in triangle)
        u, v = ([q - p for p, q in zip(a, other)] for other in (b, c))
        area = 0.5 * math.hypot(u[1] * v[2] - u[2] * v[1], u[2] * v[0] - u[0] * v[2],
                                u[0] * v[1] - u[1] * v[0])
        for k in triangle:
            forces[k - 1] -= pressure * area / 3.0
    model.loads = [(k, (0.0, 0.0, f, 0.0, 0.0, 0.0)) for k, f in enumerate(forces, 1)]


def plate(n, thickness=0.22):
    side, lines = 8.0, range(n + 1)
    model, node = shell_grid(n, f"Concrete slab of {side:g} x {side:g} m; N and m.",
                             f"E = 3.1e10 nu = 0.2 G = 1.2916667e10 t = {thickness:g}",
                             lambda u, v: (side * u, side * v, 0.0))
    edge = {node(i, j) for i in lines for j in lines if i in (0, n) or j in (0, n)}
    model.supports = [(k, "111000") for k in sorted(edge)]
    load_area(model, 6000.0)
    return model


def sheet(n):
    return plate(n, 0.02)


def plate6(n):
    model = plate(n)
    model.settings = ["ConvertTo6Nodes"]
    return model


def roof(n):
    radius, half_angle, length = 7.5, math.radians(40.0), 15.0

    def place(u, v):
        angle = half_angle * (2.0 * u - 1.0)
        return radius * math.sin(angle), length * v, radius * math.cos(angle)

    model, node = shell_grid(n, f"Cylindrical roof, radius {radius:g} m, {length:g} m long; N and m.",
                             "E = 3.1e10 nu = 0.2 G = 1.2916667e10 t = 0.08", place)
    # The diaphragms hold x and z; one node keeps the roof from sliding along y.
    model.supports = [(node(i, j), "101000") for j in (0, n) for i in range(n + 1)]
    model.supports[0] = (node(0, 0), "111000")
    load_area(model, 4500.0)
    return model


def roof6(n):
    model = roof(n)
    model.settings = ["ConvertTo6Nodes"]
    return model


def solid_block(n, ten_nodes):
    """A cube of side 1, held at x = 0 and pulled at the nodes of x = 1."""
    mesh = SolidMesh(ten_nodes)
    mesh.add_block((n, n, n), lambda u, v, w: (u, v, w))
    mesh.sort_nodes(lambda p: (p[2], p[1], p[0]))
    model = Model(
        f"Cube of {6 * n ** 3} tetrahedra; N and m.", "3d",
        f"Tetrahedra nnode = {10 if ten_nodes else 4}", ["E = 2.1e11 nu = 0.3"])
    model.coordinates = mesh.nodes
    model.elements = [(nodes, 1) for nodes in mesh.elements]
    pulled = mesh.nodes_where(lambda x, y, z: x > 1.0 - 1e-9)
    model.supports = [(node, "111") for node in mesh.nodes_where(lambda x, y, z: x < 1e-9)]
    model.loads = [(node, (1e6 / len(pulled), 0.0, -5e5 / len(pulled))) for node in pulled]
    return model


def block(n):
    return solid_block(n, False)


def block10(n):
    return solid_block(n, True)


# A row for each family: the function that makes it and the names of its numbers.
FAMILIES = {
    "frame3d": (frame3d, ("nx", "ny", "storeys")),
    "portal2d": (portal2d, ("bays", "storeys")),
    "plate": (plate, ("n",)),
    "sheet": (sheet, ("n",)),
    "plate6": (plate6, ("n",)),
    "roof": (roof, ("n",)),
    "roof6": (roof6, ("n",)),
    "block": (block, ("n",)),
    "block10": (block10, ("n",)),
}


# ---------------------------------------------------------------- the problem file

def values(numbers):
    return " ".join(f"{value:.10g}" for value in numbers)


def write(model, settings, out):
    none = " 0" * model.components()
    out.write(f"problem type: {model.header}\n# {model.title}\n")
    out.writelines(line + "\n" for line in settings)
    out.write(f"mesh dimension = {len(model.coordinates[0])} elemtype {model.element}\ncoordinates\n")
    out.writelines(f"{n} {values(x)}\n" for n, x in enumerate(model.coordinates, 1))
    out.write("end coordinates\nelements\n")
    out.writelines(f"{n} {' '.join(map(str, nodes))} {material}\n"
                   for n, (nodes, material) in enumerate(model.elements, 1))
    out.write("end elements\nmaterials\n")
    out.writelines(f"{n} {text}\n" for n, text in enumerate(model.materials, 1))
    out.write("end materials\nconstraints\n")
    out.writelines(f"{node} {flags}{none}\n" for node, flags in model.supports)
    out.write("end constraints\nnodal_point_loads\n")
    out.writelines(f"{node} {values(load)}\n" for node, load in model.loads)
    out.write("end nodal_point_loads\n")


def main():
    parser = argparse.ArgumentParser(description=__doc__,
                                     formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("--setting", action="append", default=[], metavar="LINE")
    parser.add_argument("--peer", metavar="SOLVER")
    parser.add_argument("family", choices=FAMILIES)
    parser.add_argument("numbers", type=int, nargs="+")
    options = parser.parse_args()
    make, names = FAMILIES[options.family]
    if len(options.numbers) != len(names) or min(options.numbers) < 1:
        parser.error(f"{options.family} takes positive numbers: {' '.join(names)}")
    model = make(*options.numbers)
    if options.peer:
        peer_input.write(model, options.peer, sys.stdout)
    else:
        write(model, model.settings + options.setting, sys.stdout)


if __name__ == "__main__":
    main()
