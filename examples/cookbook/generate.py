#!/usr/bin/env python3
"""Writes the larger problem files of the cookbook.

    generate.py MODEL [--size SIZE] > MODEL.dat

Models: beam_on_bedding, slab_on_bedding, girder_under_slab, hinged_line, wall_temperature, slab_temperature,
block_temperature.
--size is the distance of the nodes.
"""

import argparse
import itertools
import pathlib
import sys

sys.path.append(str(pathlib.Path(__file__).resolve().parents[1]))
from panels import Model, block, panel  # noqa: E402


def head(kind, text):
    print(f"problem type: {kind}\n# {text}\n# Units: kN, m. Written by generate.py.")


def mesh(element, nnode, coordinates, elements):
    print(f"mesh dimension = 3 elemtype {element} nnode = {nnode}")
    block("coordinates", coordinates)
    block("elements", elements)


def numbered(rows, first=1):
    return [" ".join(f"{x:.9g}" for x in (n, *row)) for n, row in enumerate(rows, first)]


def beam_on_bedding(size=0.5):
    length, bedding = 24, 20000
    count = round(length / size)
    head("2d", "Elastic bedding: a strip of 24 m, 1 m wide, on 20,000 kN/m3, with 500 kN in the middle.")
    mesh("Linear", 2, numbered((i * size, 0, 0) for i in range(count + 1)),
         numbered((i, i + 1, 1) for i in range(1, count + 1)))
    block("materials", ["# 1 m by 0.50 m", "1 E=3e7 A=0.5 Iz=0.010416667"])
    springs = [bedding * size / (2 if i in (0, count) else 1) for i in range(count + 1)]
    block("constraints", ["# the middle does not move along the strip"] +
          [f"{i} {'120' if 2 * i == count + 2 else '020'} 0 {k:g} 0" for i, k in enumerate(springs, 1)])
    block("nodal_point_loads", [f"{count // 2 + 1} 0 -500 0"])


def slab_on_bedding(size=0.5):
    side, bedding = 5, 20000
    count = round(side / size)
    head("3d", "Elastic bedding: a quarter of a slab of 10 m by 10 m, 0.20 m thick, 100 kN in its middle.")
    print("ShellFormulation Refined\nConvertTo6Nodes\n")
    model = Model()
    triangles = list(panel(model, (0, 0, 0), (side, 0, 0), (0, side, 0), count, count))
    mesh("Triangle", 3, numbered(model.nodes), numbered((*t, 1) for t in triangles))
    block("materials", ["1 E=3e7 nu=0.2 G=1.25e7 t=0.20"])
    area = [0.0] * len(model.nodes)
    for triangle in triangles:
        for node in triangle:
            area[node - 1] += size * size / 6
    rows = []
    for n, (x, y, _) in enumerate(model.nodes, 1):
        flags = [x == 0, y == 0, 2, y == 0, x == 0, x == 0 or y == 0]
        rows.append(f"{n} {''.join(str(int(f)) for f in flags)} 0 0 {bedding * area[n - 1]:.9g} 0 0 0")
    block("constraints", ["# springs of a third of each triangle; symmetry at x = 0 and y = 0"] + rows)
    block("nodal_point_loads", ["# a quarter of the load", f"{model.node(0, 0, 0)} 0 0 -25 0 0 0"])


def girder_under_slab(size=0.5):
    length, width, offset = 6, 1, 0.28
    count = round(length / size)
    head("3d", "Offset: a girder of 0.25 m by 0.40 m under a strip of slab, 1 m by 0.16 m; span 6 m, 10 kN/m2.")
    print("ShellFormulation Refined\nConvertTo6Nodes\n")
    model = Model()
    triangles = list(panel(model, (0, -width / 2, 0), (length, 0, 0), (0, width, 0), count, 2))
    axis = [(model.node(i * size, 0, 0), model.node(i * size, 0, -offset)) for i in range(count + 1)]
    girder = [(a[1], b[1], 2) for a, b in zip(axis, axis[1:])]
    links = [(*pair, 3) for pair in axis]
    mesh("Triangle", 3, numbered(model.nodes), numbered((*t, 1) for t in triangles))
    mesh("Linear", 2, [], ["# girder"] + numbered(girder, 1001) + ["# links"] + numbered(links, 2001))
    block("materials", ["1 E=3e7 nu=0 G=1.5e7 t=0.16",
                        "2 E=3e7 G=1.5e7 widthY=0.25 widthZ=0.40",
                        "# the links: the section of the girder, 1,000 times as stiff",
                        "3 E=3e10 G=1.5e10 widthY=0.25 widthZ=0.40"])
    block("constraints", [f"{axis[0][1]} 111100 0 0 0 0 0 0", f"{axis[-1][1]} 011100 0 0 0 0 0 0"])
    block("global_pressure_loads", [f"{n} 0 0 -10" for n in range(1, len(triangles) + 1)])


def hinged_line(size=0.5):
    half, gap, width = 3, 0.01, 1
    count = round(half / size)
    head("3d", "A hinge along a line: a strip of slab of 6 m by 1 m, clamped at its ends, hinged in the middle; 10 kN/m2.")
    print("ShellFormulation Refined\nConvertTo6Nodes\n")
    model = Model()
    triangles = [t for x in (0, half + gap) for t in panel(model, (x, 0, 0), (half, 0, 0), (0, width, 0), count, 2)]
    pairs = [(model.node(half, y, 0), model.node(half + gap, y, 0), 2) for y in (0, width / 2, width)]
    mesh("Triangle", 3, numbered(model.nodes), numbered((*t, 1) for t in triangles))
    mesh("Linear", 2, [], ["# links across the gap"] + numbered(pairs, 1001))
    block("materials", ["1 E=3e7 nu=0 G=1.5e7 t=0.20", "# the links: 0.2 m by 0.2 m",
                        "2 E=3e7 G=1.5e7 widthY=0.2 widthZ=0.2"])
    block("constraints", [f"{n} 111111 0 0 0 0 0 0" for n, (x, _, _) in enumerate(model.nodes, 1)
                          if x in (0, 2 * half + gap)])
    block("elem_rotules", ["# the second end of every link is hinged"] + [f"{1001 + k} 10" for k in range(len(pairs))])
    block("global_pressure_loads", [f"{n} 0 0 -10" for n in range(1, len(triangles) + 1)])


def wall_temperature(size=1.0):
    length, height, t, free_force = 6, 3, 0.20, 3e7 * 0.20 * 1e-5 * 25 / (1 - 0.2)
    nx, nz = round(length / size), round(height / size)
    head("3d", "Temperature of shells: a wall of 6 m by 3 m, 0.20 m thick, between rigid blocks, 25 K warmer.")
    print(f"# E t alpha dT / (1 - nu) = {free_force:g} kN/m\nShellFormulation Refined\nConvertTo6Nodes\n")
    model = Model()
    triangles = list(panel(model, (0, 0, 0), (length, 0, 0), (0, 0, height), nx, nz))
    mesh("Triangle", 3, numbered(model.nodes), numbered((*tri, 1) for tri in triangles))
    block("materials", ["1 E=3e7 nu=0.2 G=1.25e7 t=0.20"])
    ends = [(n, p) for n, p in enumerate(model.nodes, 1) if p[0] in (0, length)]
    block("constraints", [f"{n} 11{int(p == (0, 0, 0))}111 0 0 0 0 0 0" for n, p in ends])
    loads = []
    for n, nodes in enumerate(triangles, 1):
        for edge in range(3):
            a, b = (model.nodes[nodes[k % 3] - 1] for k in (edge, edge + 1))
            for z, sign in ((0, -1), (height, 1)):
                if a[2] == b[2] == z:
                    loads.append(f"{n} {edge} 0 0 {sign * free_force:g}")
    block("face_loads", ["# triangle, edge, force per length: outwards on the free edges"] + loads)


def slab_temperature(size=1.0):
    half, t, moment = 2, 0.20, 3e7 * 0.20**2 * 1e-5 * 20 / (12 * (1 - 0.2))
    count = round(2 * half / size)
    head("3d", "Temperature of slabs: a free slab of 4 m by 4 m, 0.20 m thick, its top 20 K warmer than its bottom.")
    print(f"# E t2 alpha dT / (12 (1 - nu)) = {moment:g} kN m/m\nShellFormulation Refined\n")
    model = Model()
    triangles = list(panel(model, (-half, -half, 0), (2 * half, 0, 0), (0, 2 * half, 0), count, count))
    mesh("Triangle", 3, numbered(model.nodes), numbered((*tri, 1) for tri in triangles))
    block("materials", [f"1 E=3e7 nu=0.2 G=1.25e7 t={t:.2f}"])
    block("constraints", ["# the middle", f"{model.node(0, 0, 0)} 111111 0 0 0 0 0 0"])

    def side(place):
        return (place > 0) - (place < 0) if abs(place) == half else 0

    rows = []
    for n, (x, y, _) in enumerate(model.nodes, 1):
        along_x, along_y = (size / 2 if side(place) else size for place in (x, y))
        moments = -side(y) * moment * along_x, side(x) * moment * along_y
        if any(moments):
            rows.append(f"{n} 0 0 0 {moments[0]:g} {moments[1]:g} 0")
    block("nodal_point_loads", ["# the moment times the length of edge of each node: tension on top"] + rows)


def block_temperature(size=1.0):
    traction = 3e7 * 1e-5 * 25 / (1 - 2 * 0.2)
    head("3d", "Temperature of solids: a block between two rigid walls, X = 0 and X = size, 25 K warmer.")
    print(f"# E alpha dT / (1 - 2 nu) = {traction:g} kN/m2\n")
    corners = list(itertools.product((0, size), repeat=3))
    tetrahedra = [[(0, 0, 0)] for _ in range(6)]
    for path, order in zip(tetrahedra, itertools.permutations(range(3))):
        for axis in order:
            path.append(tuple(size if k == axis else x for k, x in enumerate(path[-1])))
        if order in ((0, 2, 1), (1, 0, 2), (2, 1, 0)):  # these run the other way
            path[1], path[2] = path[2], path[1]
    print("mesh dimension = 3 elemtype Tetrahedra nnode = 4")
    block("coordinates", numbered(corners))
    block("elements", numbered([*(corners.index(p) + 1 for p in path), 1] for path in tetrahedra))
    block("materials", ["1 E=3e7 nu=0.2"])
    block("constraints", [f"{n} 1{int(y == z == 0)}{int(z == 0 and (y == 0 or x == 0))} 0 0 0"
                          for n, (x, y, z) in enumerate(corners, 1)])
    faces = ((0, 1, 2), (1, 2, 3), (2, 3, 0), (3, 0, 1))
    loads = []
    for n, path in enumerate(tetrahedra, 1):
        for number, face in enumerate(faces):
            for axis in (1, 2):
                if len({path[k][axis] for k in face}) == 1:
                    loads.append(f"{n} {number} 0 0 {traction:g}")
    block("local_pressure_loads", ["# tetrahedron, face, along the outward normal of the free faces"] + loads)


if __name__ == "__main__":
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("model")
    parser.add_argument("--size", type=float)
    options = parser.parse_args()
    writers = (beam_on_bedding, slab_on_bedding, girder_under_slab, hinged_line, wall_temperature, slab_temperature,
               block_temperature)
    writer = {function.__name__: function for function in writers}
    writer[options.model](*([options.size] if options.size else []))
