#!/usr/bin/env python3
"""Compares the program's results of the examples with an independent computation.

    scripts/check_examples.py build/release/morlen [model.dat ...]

The computation shares nothing with the program: beams by inverting the flexibility of a
cantilever, loads on them by its deflection, hinges by elimination from the matrices of the
beam, a full matrix without renumbering, supports by elimination with multipliers. It reads
as much of the problem file as the examples of frames need. For every model it prints
the largest differences in displacements, end forces and reactions, relative to the largest
of their kind, and the residual of the equilibrium of loads and reactions. Exit status 1
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
    """The data of a problem file, in the units of its results."""

    def __init__(self, text):
        self.nodes, self.elements, self.materials = {}, {}, {}
        self.supports, self.loads = [], []
        self.beam_loads, self.strains = [], []
        self.hinged_nodes, self.codes = set(), {}
        self.gravity = np.array([0.0, 0.0, 1.0])
        self.systems, self.mesh_length, self.default, self.result = {}, 1.0, (1.0, 1.0), (1.0, 1.0)
        lines = iter(re.sub(r"#.*", "", text).splitlines())
        self.plane = "2d" in next(lines)
        for line in lines:
            self.read(line.split(), lines)

    def read(self, words, lines):
        blocks = {"units_names": self.read_system, "coordinates": self.read_node,
                  "elements": self.read_element, "materials": self.read_material,
                  "constraints": self.read_support, "nodal_point_loads": self.read_load,
                  "rotules": lambda r: self.hinged_nodes.add(int(r[0])),
                  "elem_rotules": lambda r: self.codes.update({int(r[0]): int(r[1])}),
                  "temperature_loads": self.read_temperature}
        for kind in ("global", "global_projected", "local"):
            blocks[f"{kind}_pressure_loads"] = lambda r, kind=kind: self.read_beam_load(kind, r)
        if not words or words[0] == "end":
            return
        if words[0] in blocks:
            for line in lines:
                record = line.replace("=", " ").split()
                if record and record[0] == "end":
                    return
                if record:
                    blocks[words[0]](record)
        elif words[0] == "GravityDirection":
            g = np.array([float(x) for x in words[1:4]])
            self.gravity = g / np.linalg.norm(g)
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
        powers = {"Weight": (1, -3), "E": (1, -2), "G": (1, -2), "A": (0, 2), "Iy": (0, 4), "Iz": (0, 4), "J": (0, 4)}
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

    def read_temperature(self, r):
        self.strains.append((int(r[0]), float(r[1]) * float(r[2])))

    def read_beam_load(self, kind, r):
        count = 2 if self.plane else 3
        if kind == "local" and not self.plane and len(r) > 4 and r[4][0] in "-.0123456789":
            count = 4
        force, length = self.ratios(dict(zip(r[1 + count::2], r[2 + count::2])))
        q = np.zeros(4)
        q[:count] = [float(x) * force / length for x in r[1:1 + count]]
        self.beam_loads.append((int(r[0]), kind, q))

    def section(self, element):
        return self.materials[element[2]] | element[3]

    def hinges(self, number):
        """Whether the first and the second end of a beam are hinged."""
        element, code = self.elements[number], self.codes.get(number, 11)
        return [element[0] in self.hinged_nodes or code // 10 == 0,
                element[1] in self.hinged_nodes or code % 10 == 0]

    def hinged_only(self):
        """Nodes at which no beam is continuous; their rotations are fixed."""
        held = {self.elements[number][end] for number in self.elements for end in (0, 1)
                if not self.hinges(number)[end]}
        return [node for node in self.nodes if (self.hinged_nodes or self.codes) and node not in held]

    def load_on(self, number, T, d):
        """Forces and torque per length of a beam in its local axes, and its free strain."""
        L, q = np.linalg.norm(d), np.zeros(4)
        for kind, values in [(k, v) for e, k, v in self.beam_loads if e == number]:
            if kind == "global_projected":  # the shadow of the beam on a plane across the load
                n = values[:3] / np.linalg.norm(values[:3])
                values = values * np.linalg.norm(d - n * (n @ d)) / L
            q += values if kind == "local" else np.append(T.T @ values[:3], 0)
        m = self.section(self.elements[number])
        q[:3] += T.T @ self.gravity * m.get("Weight", 0.0) * m["A"]
        return q, sum(strain for e, strain in self.strains if e == number)


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
    if np.linalg.norm(y) <= 1e-6:  # vertical
        y = np.array([1.0, 0, 0]) - x[0] * x
    y = y / np.linalg.norm(y)
    return np.column_stack([x, y, np.cross(x, y)])


def cantilever_flexibility(m, L):
    """Displacements of the free end for unit forces on it, in local axes."""
    ei_z, ei_y = m["E"] * m["Iz"], m["E"] * m.get("Iy", 1.0)
    F = np.diag([L / (m["E"] * m["A"]), L**3 / (3 * ei_z), L**3 / (3 * ei_y),
                 L / (m.get("G", 1.0) * m.get("J", 1.0)), L / ei_y, L / ei_z])
    F[1, 5] = F[5, 1] = L**2 / (2 * ei_z)
    F[2, 4] = F[4, 2] = -L**2 / (2 * ei_y)
    return F


def end_of_cantilever(m, L, q, strain):
    """Displacements of the free end under loads along the cantilever, in local axes."""
    ei_z, ei_y = m["E"] * m["Iz"], m["E"] * m.get("Iy", 1.0)
    return np.array([q[0] * L**2 / (2 * m["E"] * m["A"]) + strain * L,
                     q[1] * L**4 / (8 * ei_z), q[2] * L**4 / (8 * ei_y),
                     q[3] * L**2 / (2 * m.get("G", 1.0) * m.get("J", 1.0)),
                     -q[2] * L**3 / (6 * ei_y), q[1] * L**3 / (6 * ei_z)])


def release(k, forces, hinged, axial):
    """The same beam with hinges: bending moments of those ends are eliminated.

    A load along a beam with one hinge is shared 5 to 3, as the program does.
    """
    r = [6 * end + i for end in (0, 1) for i in (4, 5) if hinged[end]]
    if r:
        solved = np.linalg.solve(k[np.ix_(r, r)], np.column_stack([k[r], forces[r]]))
        k, forces = k - k[:, r] @ solved[:, :-1], forces - k[:, r] @ solved[:, -1]
    if hinged[0] != hinged[1]:
        shift = axial / 8 * (1 if hinged[1] else -1)
        forces = forces - shift * np.eye(12)[0] + shift * np.eye(12)[6]
    return k, forces


def beam_matrices(model, number):
    """Stiffness and end forces under the loads on the fixed beam, both in local axes; axes."""
    a, b, *_ = model.elements[number]
    m, d = model.section(model.elements[number]), model.nodes[b] - model.nodes[a]
    T, L = beam_axes(d, model.plane), np.linalg.norm(d)
    at_b = np.linalg.inv(cantilever_flexibility(m, L))
    rigid = np.eye(6)  # motion of b when the beam moves rigidly with a
    rigid[1, 5], rigid[2, 4] = L, -L
    relative = np.hstack([-rigid, np.eye(6)])
    q, strain = model.load_on(number, T, d)
    forces = -relative.T @ at_b @ end_of_cantilever(m, L, q, strain)
    forces[:6] += [-q[0] * L, -q[1] * L, -q[2] * L, -q[3] * L, q[2] * L**2 / 2, -q[1] * L**2 / 2]
    k, forces = release(relative.T @ at_b @ relative, forces, model.hinges(number), q[0] * L)
    return k, forces, T


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
        k, fixed, T = beam_matrices(model, number)
        T = np.kron(np.eye(4), T)[np.ix_(both, both)]
        k, fixed = k[np.ix_(both, both)], fixed[both]
        e = np.concatenate([dofs(element[0]), dofs(element[1])])
        K[np.ix_(e, e)] += T @ k @ T.T
        f[e] -= T @ fixed
        beams[number] = (k, fixed, T, e)
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
    moments = 2 if model.plane else 3
    springs = {(node, i) for node, flags, *_ in model.supports
               for i, flag in enumerate(flags) if flag != "0"}
    for node in model.hinged_only():
        for i in range(moments, n):
            if (node, i) not in springs:
                rows.append(np.eye(size)[dofs(node)[i]])
                prescribed.append(0.0)
    C = np.array(rows)
    scale = abs(K).max()
    zero = np.zeros((len(C), len(C)))
    u = np.linalg.solve(np.block([[full, scale * C.T], [scale * C, zero]]),
                        np.concatenate([f, scale * np.array(prescribed)]))[:size]
    forces = {number: (k @ T.T @ u[e] + fixed).reshape(2, n)
              for number, (k, fixed, T, e) in beams.items()}
    supported = [node for node, *_ in model.supports] + model.hinged_only()
    reactions = {node: (K @ u - f)[dofs(node)] for node in supported}
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

    Rounding errors of zero are left out.
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
    actions = []
    for node, values in model.loads + list(reactions.items()):
        actions.append((model.nodes[node], np.zeros(6)))
        actions[-1][1][keep] = values
    for number, (a, b, *_) in model.elements.items():
        a, b = model.nodes[a], model.nodes[b]
        T = beam_axes(b - a, model.plane)
        q, _ = model.load_on(number, T, b - a)
        force = np.concatenate([T @ q[:3], T[:, 0] * q[3]]) * np.linalg.norm(b - a)
        actions.append(((a + b) / 2, force))
    for place, force in actions:
        force[3:] += np.cross(place, force[:3])
    return abs(sum(f for _, f in actions)).max() / max(abs(f).max() for _, f in actions)


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
    models = [pathlib.Path(p) for p in sys.argv[2:]] or [
        p for p in sorted(examples.glob("*.dat")) if "elemtype T" not in p.read_text()]
    print(f"{'model':24} displacem. end forces reactions equilibrium")
    sys.exit(0 if all([check(program, model) for model in models]) else 1)


if __name__ == "__main__":
    main()
