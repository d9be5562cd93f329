#!/usr/bin/env python3
"""Writes box_girder.dat: a steel box girder with a load over one of its webs.

    generate_box_girder.py [--size 0.5] [--formulation Refined] > box_girder.dat

The girder is 24 m long. The box is 2.5 m wide and 1.5 m deep between the middles of its plates; flanges
20 mm, webs 12 mm. Diaphragms of 12 mm are at the ends, where they rest on line bearings, and every 6 m. The
triangles have three nodes. --size: about the side of a cell.
"""

import argparse

from panels import Model, block, panel

LENGTH, WIDTH, DEPTH, SPACING, LOAD = 24.0, 2.5, 1.5, 6.0, 20.0


def mesh(coordinates, elements):
    print("mesh dimension = 3 elemtype Triangle nnode = 3")
    block("coordinates", coordinates)
    block("elements", elements)


def main():
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("--size", type=float, default=0.5)
    parser.add_argument("--formulation", choices=["Refined", "Standard"], default="Refined")
    options = parser.parse_args()

    def parts(length):
        return max(2, round(length / options.size))

    model = Model()
    along = parts(SPACING) * round(LENGTH / SPACING)
    x, y, z = (LENGTH, 0, 0), (0, WIDTH, 0), (0, 0, DEPTH)
    flanges = [t for origin in ((0, 0, DEPTH), (0, 0, 0)) for t in panel(model, origin, x, y, along, parts(WIDTH))]
    webs = [t for origin in ((0, 0, 0), (0, WIDTH, 0)) for t in panel(model, origin, x, z, along, parts(DEPTH))]
    diaphragms = [t for k in range(round(LENGTH / SPACING) + 1)
                  for t in panel(model, (k * SPACING, 0, 0), y, z, parts(WIDTH), parts(DEPTH))]

    print("problem type: 3d\n# Steel box girder of 24 m, 2.5 m x 1.5 m, with diaphragms every 6 m.\n"
          "# Lengths in m, materials in N and mm, results in kN and m. Written by generate_box_girder.py.\n"
          f"# A load of {LOAD:g} kN/m over the web y = 0, on the edges of its triangles. No self-weight.\n"
          "units_names\n  kN-m kN m kPa 1000 1\n  N-mm N mm MPa 1 0.001\nend units_names\n"
          "units_mesh m\nunits_mat_and_load kN-m\nunits_res kN-m\n\n"
          f"ShellFormulation {options.formulation}\nDoSmoothing 0.1\n")
    mesh((f"{n} {a:g} {b:g} {c:g}" for n, (a, b, c) in enumerate(model.nodes, 1)),
         (f"{n} {a} {b} {c} 1" for n, (a, b, c) in enumerate(flanges, 1)))
    first = len(flanges) + 1
    mesh([], (f"{n} {a} {b} {c} 2" for n, (a, b, c) in enumerate(webs, first)))
    mesh([], (f"{n} {a} {b} {c} 2" for n, (a, b, c) in enumerate(diaphragms, first + len(webs))))
    block("materials", ["# flanges; webs and diaphragms",
                        "1 units=N-mm E=210000 nu=0.3 G=80769.2 t=20",
                        "2 units=N-mm E=210000 nu=0.3 G=80769.2 t=12"])
    bearings = {n: "001000" for n, (a, _, c) in enumerate(model.nodes, 1) if a in (0, LENGTH) and c == 0}
    bearings |= {model.node(0, 0, 0): "111000", model.node(0, WIDTH, 0): "101000", model.node(LENGTH, 0, 0): "011000"}
    block("constraints", (f"{n} {flags} 0 0 0 0 0 0" for n, flags in sorted(bearings.items())))
    loaded = []
    for n, corners in enumerate(webs, first):
        for edge in range(3):
            ends = [model.nodes[corners[(edge + k) % 3] - 1] for k in (0, 1)]
            if all(place[1] == 0 and place[2] == DEPTH for place in ends):
                loaded.append(f"{n} {edge} 0 0 {-LOAD:g}")
    block("face_loads", loaded)


if __name__ == "__main__":
    main()
