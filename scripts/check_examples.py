#!/usr/bin/env python3
"""Compares the program's results of the examples with an independent computation.

    scripts/check_examples.py build/release/morlen [model.dat ...]

The computation shares nothing with the program: beams by inverting the flexibility of a
cantilever, a full matrix without renumbering, supports by elimination with multipliers. It
reads as much of the problem file as the examples of frames need. For every model it prints
the largest differences in displacements, end forces and reactions, relative to the largest
of their kind, and what is left of the equilibrium of loads and reactions. Exit status 1
when one exceeds the tolerance. Needs numpy.
"""

import math
import pathlib
import re
import subprocess
import sys
import tempfile

import numpy as np

TOLERANCE = 2e-5  # the text results have six digits


class Model:
    """What a problem file says, in the units of its results."""

    def __init__(self, text):
        self.nodes, self.elements, self.materials = {}, {}, {}
        self.supports, self.loads = [], []
        self.systems, self.mesh_length, self.default, self.result = {}, 1.0, (1.0, 1.0), (1.0, 1.0)
        lines = iter(re.sub(r"#.*", "", text).splitlines())
        self.plane = "2d" in next(lines)
        for line in lines:
            self.read(line.split(), lines)

    def read(self, words, lines):
        blocks = {"units_names": self.read_system, "coordinates": self.read_node,
                  "elements": self.read_element, "materials": self.read_material,
                  "constraints": self.read_support, "nodal_point_loads": self.read_load}
        if not words or words[0] == "end":
            return
        if words[0] in blocks:
            for line in lines:
                record = line.replace("=", " ").split()
                if record and record[0] == "end":
                    return
                if record:
                    blocks[words[0]](record)
        elif words[0] == "units_mesh":
            self.mesh_length = next(m for _, m, name in self.systems.values() if name == words[1])
        elif words[0] == "units_mat_and_load":
            self.default = self.systems[words[1]][:2]
        elif words[0] == "units_res":
            self.result = self.systems[words[1]][:2]

    def ratios(self, items):
        force, length = self.systems[items["units"]][:2] if "units" in items else self.default
        return force / self.result[0], length / self.result[1]

    def read_system(self, r):
        self.systems[r[0]] = (float(r[4]), float(r[5]), r[2])

    def read_node(self, r):
        self.nodes[int(r[0])] = np.array(
            ([float(x) for x in r[1:]] + [0.0])[:3]) * self.mesh_length / self.result[1]

    def read_element(self, r):
        own = dict(zip(r[4::2], r[5::2]))
        self.elements[int(r[0])] = (int(r[1]), int(r[2]), int(r[3]), self.material(own))

    def read_material(self, r):
        self.materials[int(r[0])] = self.material(dict(zip(r[1::2], r[2::2])))

    def material(self, items):
        force, length = self.ratios(items)
        v = {key: float(value) for key, value in items.items() if key != "units"}
        if "widthY" in v:
            a, b = v.pop("widthY"), v.pop("widthZ")
            r = max(a, b) / min(a, b)
            table = [(1, .141), (1.5, .196), (2, .229), (2.5, .249), (3, .263), (4, .281)]
            beta = min(table, key=lambda row: abs(row[0] - r))[1]
            v |= {"A": a * b, "Iy": a * b**3 / 12, "Iz": a**3 * b / 12,
                  "J": beta * max(a, b) * min(a, b)**3}
        powers = {"E": (1, -2), "G": (1, -2), "A": (0, 2), "Iy": (0, 4), "Iz": (0, 4), "J": (0, 4)}
        return {k: x * force**powers[k][0] * length**powers[k][1] for k, x in v.items()}

    def read_support(self, r):
        n = 3 if self.plane else 6
        items = dict(zip(r[2 + n::2], r[3 + n::2]))
        force, length = self.ratios(items)
        angles = [float(items.get(f"Euler{k}", 0)) for k in (1, 2, 3)]
        self.supports.append((int(r[0]), r[1], [float(x) for x in r[2:2 + n]], force, length, angles))

    def read_load(self, r):
        n = 3 if self.plane else 6
        force, length = self.ratios(dict(zip(r[1 + n::2], r[2 + n::2])))
        values = np.array([float(x) for x in r[1:1 + n]])
        moments = 2 if self.plane else 3
        values *= force
        values[moments:] *= length
        self.loads.append((int(r[0]), values))


def turn(axis, angle):
    """Right-handed rotation about a global axis (0, 1, 2)."""
    c, s = math.cos(angle), math.sin(angle)
    i, j = (axis + 1) % 3, (axis + 2) % 3
    R = np.eye(3)
    R[i, i] = R[j, j] = c
    R[i, j], R[j, i] = -s, s
    return R


def plane_components(plane):
    return [0, 1, 5] if plane else [0, 1, 2, 3, 4, 5]


def beam_axes(d, plane):
    """Columns: the local axes of a beam with the direction d."""
    x = d / np.linalg.norm(d)
    if plane:
        return np.column_stack([x, [-x[1], x[0], 0], [0, 0, 1]])
    y = np.cross([0, 0, 1], x)
    y = np.array([1.0, 0, 0]) if np.linalg.norm(y) < 1e-9 else y / np.linalg.norm(y)
    return np.column_stack([x, y, np.cross(x, y)])


def cantilever_flexibility(m, L):
    """Displacements of the free end for unit forces on it, in local axes."""
    ei_z, ei_y = m["E"] * m["Iz"], m["E"] * m.get("Iy", 1.0)
    F = np.diag([L / (m["E"] * m["A"]), L**3 / (3 * ei_z), L**3 / (3 * ei_y),
                 L / (m.get("G", 1.0) * m.get("J", 1.0)), L / ei_y, L / ei_z])
    F[1, 5] = F[5, 1] = L**2 / (2 * ei_z)
    F[2, 4] = F[4, 2] = -L**2 / (2 * ei_y)
    return F


def beam_stiffness(model, element):
    """(stiffness in global axes 12x12, axes)"""
    a, b, number, own = element
    d = model.nodes[b] - model.nodes[a]
    material = model.materials[number] | own
    T = beam_axes(d, model.plane)
    T6 = np.kron(np.eye(2), T)
    at_b = T6 @ np.linalg.inv(cantilever_flexibility(material, np.linalg.norm(d))) @ T6.T
    lever = np.array([[0, d[2], -d[1]], [-d[2], 0, d[0]], [d[1], -d[0], 0]])
    rigid = np.eye(6)  # movement of b when it goes along rigidly with a
    rigid[:3, 3:] = lever
    relative = np.hstack([-rigid, np.eye(6)])
    return relative.T @ at_b @ relative, T


def solve(model):
    """Displacements, end forces and reactions, by number."""
    keep = plane_components(model.plane)
    n = len(keep)
    place = {number: k for k, number in enumerate(sorted(model.nodes))}
    size = n * len(place)
    dofs = lambda node: np.arange(n) + n * place[node]
    K, f = np.zeros((size, size)), np.zeros(size)
    beams = {}
    both = keep + [6 + k for k in keep]
    for number, element in model.elements.items():
        k, T = beam_stiffness(model, element)
        k = k[np.ix_(both, both)]
        e = np.concatenate([dofs(element[0]), dofs(element[1])])
        K[np.ix_(e, e)] += k
        beams[number] = (k, T, e)
    for node, values in model.loads:
        f[dofs(node)] += values
    full = K.copy()
    rows, prescribed = [], []
    for node, flags, values, force, length, angles in model.supports:
        T = turn(2, -angles[2]) @ turn(0, -angles[1]) @ turn(2, -angles[0])
        T = np.kron(np.eye(2), T)[np.ix_(keep, keep)]
        moments = 2 if model.plane else 3
        for i, flag in enumerate(flags):
            row = np.zeros(size)
            row[dofs(node)] = T[:, i]
            if flag == "1":
                rows.append(row)
                prescribed.append(values[i] * (length if i < moments else 1.0))
            elif flag == "2":
                full += np.outer(row, row) * values[i] * (
                    force / length if i < moments else force * length)
    C = np.array(rows)
    scale = abs(K).max()
    zero = np.zeros((len(C), len(C)))
    u = np.linalg.solve(np.block([[full, scale * C.T], [scale * C, zero]]),
                        np.concatenate([f, scale * np.array(prescribed)]))[:size]
    turned = lambda T: np.kron(np.eye(4), T)[np.ix_(both, both)]
    forces = {number: (turned(T).T @ (k @ u[e])).reshape(2, n) for number, (k, T, e) in beams.items()}
    reactions = {node: (K @ u - f)[dofs(node)] for node, *_ in model.supports}
    return {node: u[dofs(node)] for node in place}, forces, reactions


def read_results(text):
    """The three sections of a text results file."""
    displacements, rest = text.split("\n\nELEMENT STRENGTH", 1)
    strengths, reactions = rest.split("\n\nREACTIONS", 1)
    table = lambda part: {int(w[0]): np.array(w[1:], float)
                          for w in map(str.split, part.strip().splitlines()[1:])}
    lines = strengths.splitlines()[1:]
    forces = {int(lines[k].split()[1]): np.array([lines[k + 1].split(), lines[k + 2].split()], float)
              for k in range(0, len(lines), 3)}
    return table(displacements), forces, table(reactions)


def largest_difference(computed, printed, moments):
    """Relative to the largest translation or force, and rotation or moment, apart.

    What is only rounding errors of zero is left out.
    """
    assert computed.keys() == printed.keys()
    a = np.array([np.atleast_2d(computed[k]) for k in computed])
    b = np.array([np.atleast_2d(printed[k]) for k in computed])
    parts = [slice(None, moments), slice(moments, None)]
    return max(abs(a[..., p] - b[..., p]).max() / abs(a[..., p]).max() for p in parts
               if abs(a[..., p]).max() > 1e-9 * abs(a).max())


def imbalance(model, reactions):
    """Sum of loads and reactions, forces and moments about the origin, relative."""
    keep = plane_components(model.plane)
    total, size = np.zeros(6), 0.0
    for node, values in model.loads + list(reactions.items()):
        force = np.zeros(6)
        force[keep] = values
        force[3:] += np.cross(model.nodes[node], force[:3])
        total += force
        size = max(size, abs(force).max())
    return abs(total).max() / size


def check(program, path):
    model = Model(path.read_text())
    with tempfile.TemporaryDirectory() as folder:
        copy = pathlib.Path(folder) / path.name
        copy.write_text(path.read_text())
        subprocess.run([program, copy, copy.with_suffix(".txt")], check=True)
        printed = read_results(copy.with_suffix(".txt").read_text())
    moments = 2 if model.plane else 3
    results = [largest_difference(*pair, moments) for pair in zip(solve(model), printed)]
    results.append(imbalance(model, printed[2]))
    print(f"{path.name:24}" + "".join(f" {x:9.1e}" for x in results))
    return max(results) < TOLERANCE


def main():
    program = pathlib.Path(sys.argv[1]).resolve()
    examples = pathlib.Path(__file__).resolve().parent.parent / "examples"
    models = [pathlib.Path(p) for p in sys.argv[2:]] or sorted(examples.glob("*.dat"))
    print(f"{'model':24} displacem. end forces reactions equilibrium")
    sys.exit(0 if all([check(program, model) for model in models]) else 1)


if __name__ == "__main__":
    main()
