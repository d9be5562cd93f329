#!/usr/bin/env python3
"""Writes space_frame.dat, a braced concrete frame of several storeys.

    ./generate_space_frame.py >space_frame.dat
    ./generate_space_frame.py --bays 10 8 --storeys 25 >large_frame.dat

The default is the committed example. Columns stand on a grid of bays along X and Y; Z is
upwards. One bay of the facade y = 0 has a steel diagonal in every storey, so that wind
along X also twists the frame. Floor loads and wind are nodal loads by tributary areas.
"""

import argparse
import sys

BAY_X = 6.0  # m
BAY_Y = 5.0
FIRST_STOREY = 4.0
STOREY = 3.2
FLOOR_LOAD = 8.5  # kN/m2, dead and live load of a floor
ROOF_LOAD = 6.0
WIND = 1.0  # kN/m2 on the facade x = 0, along X

LOWER_COLUMN, UPPER_COLUMN, BEAM, BRACE = 1, 2, 3, 4

MATERIALS = """\
materials
# concrete C30/37: columns of the lower and of the upper storeys, beams
  1   E = 3.3e7   G = 1.375e7   widthY = 0.45   widthZ = 0.45
  2   E = 3.3e7   G = 1.375e7   widthY = 0.35   widthZ = 0.35
# local z of a beam points upwards, so that its depth is widthZ
  3   E = 3.3e7   G = 1.375e7   widthY = 0.30   widthZ = 0.50
# steel tube 168.3 x 8, in N and mm
  4   units = N-mm   E = 210000   G = 80769   A = 4029   Iy = 12.97e6   Iz = 12.97e6   J = 25.95e6
end materials
"""


def header(nx, ny, storeys, vertical, wind):
    return f"""\
problem type: 3d
# Concrete frame of {storeys} storeys, {nx} x {ny} bays of {BAY_X:g} x {BAY_Y:g} m, with a steel diagonal in one bay
# of the facade y = 0 in every storey. Written by generate_space_frame.py.
#
# Units: coordinates, loads and results in kN and m; the steel section in N and mm.
# Expect: {vertical:g} kN of floor loads and {wind:g} kN of wind along X in the sum of the
# reactions; the roof moves along X, more at the facade that has no diagonals.

units_names
# system, force, length, pressure, size of the force, size of the length
  kN-m   kN  m   kPa   1000  1
  N-mm   N   mm  MPa   1     0.001
end
units_mesh m
units_mat_and_load kN-m
units_res kN-m
"""


class Grid:
    """Numbers of the columns' nodes, storey by storey from the ground (level 0)."""

    def __init__(self, nx, ny, storeys):
        self.nx, self.ny, self.storeys = nx, ny, storeys

    def node(self, i, j, level):
        return 1 + i + (self.nx + 1) * (j + (self.ny + 1) * level)

    def height(self, level):
        return FIRST_STOREY + STOREY * (level - 1) if level else 0.0

    def nodes(self, levels):
        """(i, j, level) of every node of some levels, in the order of the numbers."""
        return [(i, j, level) for level in levels
                for j in range(self.ny + 1) for i in range(self.nx + 1)]

    def levels(self):
        return range(self.storeys + 1)

    def floors(self):
        return range(1, self.storeys + 1)


def half_or_whole(k, last):
    """Share of a bay that belongs to line k of a grid whose last line is last."""
    return 0.5 if k in (0, last) else 1.0


def elements(grid):
    """(first node, second node, material) of columns, beams and diagonals."""
    columns = [(grid.node(i, j, k - 1), grid.node(i, j, k),
                LOWER_COLUMN if k <= (grid.storeys + 1) // 2 else UPPER_COLUMN)
               for i, j, k in grid.nodes(grid.floors())]
    beams_x = [(grid.node(i, j, k), grid.node(i + 1, j, k), BEAM)
               for i, j, k in grid.nodes(grid.floors()) if i < grid.nx]
    beams_y = [(grid.node(i, j, k), grid.node(i, j + 1, k), BEAM)
               for i, j, k in grid.nodes(grid.floors()) if j < grid.ny]
    bay = grid.nx // 2
    braces = [(grid.node(bay, 0, k - 1), grid.node(bay + 1, 0, k), BRACE) for k in grid.floors()]
    return [("columns", columns), ("beams along X", beams_x), ("beams along Y", beams_y),
            ("diagonals", braces)]


def loads(grid):
    """(node, force along X, force along Z) of every node above the ground."""
    result = []
    for i, j, k in grid.nodes(grid.floors()):
        width = BAY_Y * half_or_whole(j, grid.ny)
        area = BAY_X * half_or_whole(i, grid.nx) * width
        pressure = ROOF_LOAD if k == grid.storeys else FLOOR_LOAD
        above = 0.0 if k == grid.storeys else STOREY
        facade = width * ((grid.height(k) - grid.height(k - 1)) + above) / 2.0
        result.append((grid.node(i, j, k), WIND * facade if i == 0 else 0.0, -pressure * area))
    return result


def write(grid, out):
    nodal = loads(grid)
    vertical = -sum(fz for _, _, fz in nodal)
    wind = sum(fx for _, fx, _ in nodal)
    out.write(header(grid.nx, grid.ny, grid.storeys, vertical, wind))

    out.write("\nmesh dimension = 3 elemtype Linear nnode = 2\ncoordinates\n")
    for i, j, k in grid.nodes(grid.levels()):
        out.write(f"{grid.node(i, j, k):5} {i * BAY_X:8g} {j * BAY_Y:8g} {grid.height(k):8g}\n")
    out.write("end coordinates\nelements\n")
    number = 0
    for name, group in elements(grid):
        out.write(f"# {name}\n")
        for first, second, material in group:
            number += 1
            out.write(f"{number:5} {first:5} {second:5}   {material}\n")
    out.write("end elements\n\n" + MATERIALS)

    out.write("\nconstraints\n# fixed feet\n")
    for i, j, k in grid.nodes([0]):
        out.write(f"{grid.node(i, j, k):5}   111111   0 0 0 0 0 0\n")
    out.write("end constraints\n\nnodal_point_loads\n# node, Fx, Fy, Fz, Mx, My, Mz\n")
    for node, fx, fz in nodal:
        out.write(f"{node:5} {fx:8g}  0 {fz:8g}   0 0 0\n")
    out.write("end nodal_point_loads\n")


def main():
    parser = argparse.ArgumentParser(description=__doc__,
                                     formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("--bays", type=int, nargs=2, default=(3, 2), metavar=("NX", "NY"))
    parser.add_argument("--storeys", type=int, default=6)
    options = parser.parse_args()
    write(Grid(*options.bays, options.storeys), sys.stdout)


if __name__ == "__main__":
    main()
