#!/usr/bin/env python3
"""Writes cylindrical_vault.dat: a concrete vault with edge beams under its weight and snow.

    generate_cylindrical_vault.py [--around 12] [--formulation Refined] > cylindrical_vault.dat

The vault is 24 m long and 15.4 m wide, 8 cm thick, with a radius of 12 m. Diaphragms at both ends hold it in
their planes. --around: cells across the vault, an even number; the cells are about as long as they are wide.
"""

import argparse
import math

RADIUS, LENGTH, HALF_ANGLE = 12.0, 24.0, math.radians(40)


def block(name, lines):
    print(name, *lines, "end " + name, "", sep="\n")


def main():
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("--around", type=int, default=12)
    parser.add_argument("--formulation", choices=["Refined", "Standard"], default="Refined")
    options = parser.parse_args()
    across = options.around
    along = 2 * round(LENGTH / (2 * RADIUS * HALF_ANGLE / across) / 2)

    def node(i, j):
        return 1 + i + j * (across + 1)

    def place(i, j):
        angle = HALF_ANGLE * (2 * i / across - 1)
        return (f"{RADIUS * math.sin(angle):.9f} {LENGTH * j / along:.9f} "
                f"{RADIUS * (math.cos(angle) - math.cos(HALF_ANGLE)):.9f}")

    triangles = []
    for j in range(along):
        for i in range(across):
            a, b, c, d = node(i, j), node(i + 1, j), node(i + 1, j + 1), node(i, j + 1)
            triangles += [(a, b, c), (a, c, d)] if (i + j) % 2 == 0 else [(a, b, d), (b, c, d)]
    beams = [(node(i, j), node(i, j + 1)) for i in (0, across) for j in range(along)]

    print("problem type: 3d\n# Concrete vault, 24 m by 15.4 m, 8 cm thick, with edge beams 30 cm x 100 cm.\n"
          "# Units: kN, m. Written by generate_cylindrical_vault.py.\n"
          "# Self-weight, and snow of 0.75 kN/m2 of the ground. Diaphragms at y = 0 and y = 24.\n"
          "units_names\n  kN-m kN m kPa 1000 1\nend units_names\nunits_mesh m\nunits_mat_and_load kN-m\nunits_res kN-m\n\n"
          f"ShellFormulation {options.formulation}\nConvertTo6Nodes\n"
          "GravityDirection 0 0 -1\nDoSmoothing 0.2\nMainAndLocalStresses\nNumOfDivisions 2\n")
    print("mesh dimension = 3 elemtype Triangle nnode = 3")
    block("coordinates", (f"{node(i, j)} {place(i, j)}" for j in range(along + 1) for i in range(across + 1)))
    block("elements", (f"{n} {a} {b} {c} 1" for n, (a, b, c) in enumerate(triangles, 1)))
    print("mesh dimension = 3 elemtype Linear nnode = 2")
    block("coordinates", [])
    block("elements", (f"{n} {a} {b} 2" for n, (a, b) in enumerate(beams, len(triangles) + 1)))
    block("materials", ["# vault, with x' along it on all triangles; edge beams",
                        "1 E=3.0e7 nu=0.2 G=1.25e7 t=0.08 Weight=25 Euler1=-1.5707963",
                        "2 E=3.0e7 G=1.25e7 widthY=0.3 widthZ=1.0 Weight=25"])
    held = {node(i, j): "101000" for j in (0, along) for i in range(across + 1)}
    held[node(across // 2, along // 2)] = "010000"
    block("constraints", (f"{n} {flags} 0 0 0 0 0 0" for n, flags in sorted(held.items())))
    block("global_projected_pressure_loads", (f"{n} 0 0 -0.75" for n in range(1, len(triangles) + 1)))


if __name__ == "__main__":
    main()
