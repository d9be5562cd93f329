#!/usr/bin/env python3
"""Writes the problem file of a connecting rod, the example connecting_rod.dat, to standard output.

    generate_connecting_rod.py [--fineness N]

Half of a steel rod (z = 0 is its middle plane) between a crank pin at the origin and a gudgeon
pin at x = 150 mm; N and mm. Both ends are rings, the shank between them is thinner. The gudgeon
pin pushes with 20 kN, 10 kN on this half, as a cosine of pressure on the near half of its
bore. The crank pin carries the near half of its bore: rollers along the bore, each in its own
axes. N is the number of elements through half the thickness, 2 unless given.
"""

import argparse
import math
import pathlib
import sys

sys.path.insert(0, str(pathlib.Path(__file__).resolve().parents[1] / "scripts"))
from solid_mesh import SolidMesh, write_problem  # noqa: E402

DISTANCE = 150.0
BIG = {"centre": 0.0, "inner": 24.0, "outer": 36.0, "half": 12.0}  # half: of the thickness
SMALL = {"centre": DISTANCE, "inner": 11.0, "outer": 18.0, "half": 10.0}
SHANK_HALF = 6.0
HALF_ANGLE = math.pi / 4  # of the part of a ring on which the shank stands
FORCE = 10000.0


def ring_place(ring, turn):
    """Parameters: radius, angle once around from the shank's part on, thickness. `turn`: where
    the shank stands, 1 towards +x, -1 towards -x; both rings run from -y to +y there."""
    def place(u, v, w):
        radius = ring["inner"] + (ring["outer"] - ring["inner"]) * u
        angle = -HALF_ANGLE + 2 * math.pi * v
        return (ring["centre"] + turn * radius * math.cos(angle), radius * math.sin(angle),
                ring["half"] * w)
    return place


def shank_place(u, v, w):
    """From the outside of the big ring to that of the small one."""
    angle = HALF_ANGLE * (2 * v - 1)
    start, end = (ring_place(ring, turn)(1.0, (angle + HALF_ANGLE) / (2 * math.pi), 0.0)
                  for ring, turn in ((BIG, 1), (SMALL, -1)))
    edge = min(1.0, 5.0 * u, 5.0 * (1.0 - u))
    full = (1 - u) * BIG["half"] + u * SMALL["half"]
    # Flat in the middle, with a smooth rise to the thickness of the rings.
    half = full + (SHANK_HALF - full) * edge * edge * (3.0 - 2.0 * edge)
    return (1 - u) * start[0] + u * end[0], (1 - u) * start[1] + u * end[1], half * w


def make_mesh(fineness):
    mesh = SolidMesh(ten_nodes=True)
    around = 16 * fineness  # a quarter of it carries the shank
    mesh.add_block((fineness + 1, around, fineness), ring_place(BIG, 1))
    mesh.add_block((fineness + 1, around, fineness), ring_place(SMALL, -1))
    mesh.add_block((10 * fineness, around // 4, fineness), shank_place)
    mesh.sort_nodes(lambda p: p)
    return mesh


def on_bore(ring, x, y):
    return abs(math.hypot(x - ring["centre"], y) - ring["inner"]) < 1e-6


def make_supports(mesh):
    """Radial rollers in the big bore, rollers in the middle plane and on the line of the pins."""
    free = (0.0, 0.0, 0.0)
    supports = {}
    for node, (x, y, z) in enumerate(mesh.nodes, 1):
        flat = "1" if abs(z) < 1e-6 else "0"
        if on_bore(BIG, x, y) and x > -1e-6:
            # Local x along the radius; a positive Euler1 turns the axes clockwise.
            supports[node] = ("10" + flat, free, f"Euler1={-math.atan2(y, x):.10g}")
        elif abs(y) < 1e-6 and abs(x - SMALL["centre"] - SMALL["outer"]) < 1e-6:
            supports[node] = ("01" + flat, free, "")
        elif flat == "1":
            supports[node] = ("001", free, "")
    return supports


def make_pressures(mesh):
    """A cosine on the half of the small bore that faces the shank, with the sum FORCE."""
    # The integral of p cos² over half a circle is p π/2 for a radius and thickness of 1.
    top = FORCE / (math.pi / 2 * SMALL["inner"] * SMALL["half"])
    bore = mesh.sides_where(lambda x, y, z: on_bore(SMALL, x, y))
    records = []
    for element, face, (x, y, _) in bore:
        cosine = (SMALL["centre"] - x) / math.hypot(x - SMALL["centre"], y)
        if cosine > 0.0:
            records.append((element, face, (0.0, 0.0, -top * cosine)))
    return [("local_pressure_loads", records)]


def main():
    parser = argparse.ArgumentParser(description=__doc__,
                                     formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("--fineness", type=int, default=2)
    mesh = make_mesh(max(1, parser.parse_args().fineness))
    title = ["Connecting rod of steel: half of it, between its middle plane z = 0 and its side.",
             "The gudgeon pin at x = 150 mm pushes with 10 kN; the crank pin at the origin holds.",
             f"N and mm. {len(mesh.nodes)} nodes, {len(mesh.elements)} ten-node tetrahedra, "
             f"{3 * len(mesh.nodes)} equations.",
             "Written by generate_connecting_rod.py."]
    write_problem(sys.stdout, mesh, title, "E = 210000 nu = 0.3", make_supports(mesh),
                  make_pressures(mesh))


if __name__ == "__main__":
    main()
