#!/usr/bin/env python3
"""Writes slab_and_wall.dat: a concrete building of slabs, walls and columns.

    generate_slab_and_wall.py [--storeys 2] [--size 1.0] > slab_and_wall.dat

Plan 8 m by 6 m, storeys of 3 m. One wall stands along x = 0, one along half of y = 0, three
columns at the other corners and in the middle of y = 6. --size is the side of the grid.
"""

import argparse

from panels import Model, block, panel

WIDTH, DEPTH, HEIGHT = 8.0, 6.0, 3.0
COLUMNS = [(8.0, 0.0), (8.0, 6.0), (4.0, 6.0)]


def mesh(kind, nnode, coordinates, elements):
    print(f"mesh dimension = 3 elemtype {kind} nnode = {nnode}")
    block("coordinates", coordinates)
    block("elements", elements)


def main():
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("--storeys", type=int, default=2)
    parser.add_argument("--size", type=float, default=1.0)
    options = parser.parse_args()

    def parts(length):
        return max(2, 2 * round(length / options.size / 2))

    model = Model()
    walls, slabs, columns = [], [], []
    for storey in range(options.storeys):
        z = storey * HEIGHT
        walls += panel(model, (0, 0, z), (0, DEPTH, 0), (0, 0, HEIGHT), parts(DEPTH), parts(HEIGHT))
        walls += panel(model, (WIDTH / 2, 0, z), (-WIDTH / 2, 0, 0), (0, 0, HEIGHT), parts(WIDTH) // 2, parts(HEIGHT))
        slabs += panel(model, (0, 0, z + HEIGHT), (WIDTH, 0, 0), (0, DEPTH, 0), parts(WIDTH), parts(DEPTH))
        columns += [(model.node(x, y, z), model.node(x, y, z + HEIGHT)) for x, y in COLUMNS]
    wall_along_y = 2 * parts(DEPTH) * parts(HEIGHT)
    per_storey = len(walls) // options.storeys

    print(f"problem type: 3d\n# Concrete building of {options.storeys} storeys: slabs, walls and columns."
          "\n# Units: kN, m. Written by generate_slab_and_wall.py.\n"
          "# Self-weight, 3 kN/m2 on the slabs, wind of 1 kN/m2 on the wall x = 0.\n"
          "ConvertTo6Nodes\nGravityDirection 0 0 -1\nNumOfDivisions 4\n")
    mesh("Triangle", 3, (f"{n} {x:g} {y:g} {z:g}" for n, (x, y, z) in enumerate(model.nodes, 1)),
         (f"{n} {a} {b} {c} 1" for n, (a, b, c) in enumerate(walls, 1)))
    mesh("Triangle", 3, [], (f"{n} {a} {b} {c} 2" for n, (a, b, c) in enumerate(slabs, len(walls) + 1)))
    first = len(walls) + len(slabs) + 1
    mesh("Linear", 2, [], (f"{n} {a} {b} 3" for n, (a, b) in enumerate(columns, first)))
    block("materials", ["# walls 20 cm, slabs 22 cm, columns 30 cm x 30 cm",
                        "1 E=3.1e7 nu=0.2 G=1.29e7 t=0.20 Weight=25",
                        "2 E=3.1e7 nu=0.2 G=1.29e7 t=0.22 Weight=25",
                        "3 E=3.1e7 G=1.29e7 widthY=0.3 widthZ=0.3 Weight=25"])
    block("constraints", (f"{n} 111111 0 0 0 0 0 0" for n, node in enumerate(model.nodes, 1) if node[2] == 0))
    wind = (n for n in range(1, len(walls) + 1) if (n - 1) % per_storey < wall_along_y)
    block("global_pressure_loads", [f"{n} 0 0 -3" for n in range(len(walls) + 1, first)] + [f"{n} 1 0 0" for n in wind])


if __name__ == "__main__":
    main()
