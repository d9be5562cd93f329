#!/usr/bin/env python3
"""Writes stiffened_plate.dat: a steel plate on stiffeners under water pressure.

    generate_stiffened_plate.py [--divisions 3] > stiffened_plate.dat

The plate is 4.5 m by 2.4 m, its edges simply supported; three stiffeners run along x, one girder
along y in the middle. Their axes lie in the plane of the plate. --divisions: triangles' sides on
the width between two stiffeners.
"""

import argparse

LENGTH, WIDTH, BAYS = 4.5, 2.4, 4


def block(name, lines):
    print(name, *lines, "end " + name, "", sep="\n")


def main():
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("--divisions", type=int, default=3)
    options = parser.parse_args()
    ny = BAYS * options.divisions
    nx = 2 * round(LENGTH / WIDTH * ny / 2)

    def node(i, j):
        return 1 + i + j * (nx + 1)

    triangles = []
    for j in range(ny):
        for i in range(nx):
            a, b, c, d = node(i, j), node(i + 1, j), node(i + 1, j + 1), node(i, j + 1)
            triangles += [(a, b, c), (a, c, d)] if (i + j) % 2 == 0 else [(a, b, d), (b, c, d)]
    stiffeners = [(node(i, j), node(i + 1, j)) for j in range(options.divisions, ny, options.divisions) for i in range(nx)]
    girder = [(node(nx // 2, j), node(nx // 2, j + 1)) for j in range(ny)]

    print("problem type: 3d\n# Steel plate 4.5 m x 2.4 m x 10 mm with three stiffeners and a girder under 20 kN/m2.\n"
          "# Lengths in m, sections and materials in N and mm, results in kN and m."
          " Written by generate_stiffened_plate.py.\n"
          "units_names\n  kN-m kN m kPa 1000 1\n  N-mm N mm MPa 1 0.001\nend units_names\n"
          "units_mesh m\nunits_mat_and_load kN-m\nunits_res kN-m\n\n"
          "ConvertTo6Nodes\nMainAndLocalStresses\nDoSmoothing 0.1\nNumOfDivisions 2\n")
    print("mesh dimension = 3 elemtype Triangle nnode = 3")
    block("coordinates", (f"{node(i, j)} {LENGTH * i / nx:g} {WIDTH * j / ny:g} 0" for j in range(ny + 1) for i in range(nx + 1)))
    block("elements", (f"{n} {a} {b} {c} 1" for n, (a, b, c) in enumerate(triangles, 1)))
    first = len(triangles) + 1
    for beams, material in ((stiffeners, 2), (girder, 3)):
        print("mesh dimension = 3 elemtype Linear nnode = 2")
        block("coordinates", [])
        block("elements", (f"{n} {a} {b} {material}" for n, (a, b) in enumerate(beams, first)))
        first += len(beams)
    block("materials", ["# plate; stiffeners: flat bars 120 x 12; girder: IPE 240",
                        "1 units=N-mm E=210000 nu=0.3 G=80769 t=10",
                        "2 units=N-mm E=210000 G=80769 widthY=12 widthZ=120",
                        "3 units=N-mm E=210000 G=80769 A=3912 Iy=38.92e6 Iz=2.836e6 J=128800"])
    edge = [node(i, j) for j in range(ny + 1) for i in range(nx + 1) if i in (0, nx) or j in (0, ny)]
    held = {n: "001000" for n in edge}
    held[node(0, 0)] = "111000"
    held[node(nx, 0)] = "011000"
    block("constraints", (f"{n} {flags} 0 0 0 0 0 0" for n, flags in sorted(held.items())))
    block("global_pressure_loads", (f"{n} 0 0 -20" for n in range(1, len(triangles) + 1)))


if __name__ == "__main__":
    main()
