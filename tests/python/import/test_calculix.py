"""Decks of tetrahedra, run by CalculiX: the same displacements, and the same reactions.

CalculiX prints at a supported node the force of the elements, which is the reaction and the loads on that node. The
loads are computed here: of a pressure p on a flat face with the area A, and of a force f per volume on a tetrahedron of
volume V with straight edges,
    first order:  p A / 3 at each corner,                f V / 4 at each corner;
    second order: p A / 3 at each middle node (corners 0), -f V / 20 at corners and f V / 5 at middle nodes.
"""

import re
import shutil
import subprocess
import tomllib

import numpy as np
import pytest
from gmsh_runs import NEEDS_GMSH, run_gmsh
from solved import Results, solve

pytestmark = [
    pytest.mark.skipif(not shutil.which("ccx"), reason="ccx is not installed"),
    NEEDS_GMSH,
]

GEO = """
SetFactory("OpenCASCADE");
Box(1) = {0,0,0, 4,1,1}; Box(2) = {4,0,0, 2,1,1.5}; Coherence; Mesh.MeshSizeMax = 0.7;
Physical Volume("one", 1) = {1}; Physical Volume("two", 2) = {2};
"""
# Local nodes of P1 to P4, and the middle nodes of these faces.
FACES = [(0, 1, 2), (0, 3, 1), (1, 3, 2), (2, 3, 0)]
MIDDLES = [(4, 5, 6), (7, 8, 4), (8, 9, 5), (9, 7, 6)]

SECTIONS = """
*MATERIAL, NAME=Steel
*ELASTIC
 2.1E5, 0.3
*DENSITY
7.85E-9,
*Material, name = soft
*Elastic, type=iso
7.d4, .33
*Density
2.7e-9
*SOLID SECTION, ELSET=one, MATERIAL=STEEL
*solid section, elset = TWO, material = soft
"""
OUTPUT = "*NODE PRINT, NSET=EVERY\nU, RF\n*END STEP\n"
STEPS = {
    "pressure": ["*DLOAD\nSIDE, P2, 0.05\n 7, P4, 0.2\n7, P4, 0.1\n"],
    "surface": ["*DSLOAD\nTOP, P, 0.3\n"],
    "gravity": ["*DLOAD\nALLE, GRAV, 9810., 0.6, 0., -0.8\n"],
    "gravity on a part": ["*DLOAD\ntwo, GRAV, 9810., 0., 0., -2.\n"],
    "forces": ["*CLOAD\nEND, 3, -10.\nCLAMP, 2, 1.5\nEND, 3, -5.\nEND, 1, 1.D1\n"],
    "settlement": ["*BOUNDARY\nCLAMP, 3, 3, -0.01\n*CLOAD\nEND, 2, 3.\n"],
    "steps": [
        "*CLOAD\nEND, 3, -10.\nCLAMP, 2, 1.5\n*DLOAD\nSIDE, P2, 0.05\nALLE, GRAV, 9810., 0., 0., -1.\n",
        "*CLOAD\nEND, 3, -4.\nEND, 2, 7.\n",
        "*CLOAD, OP=NEW\nEND, 1, 5.\n*BOUNDARY\nCLAMP, 3, 3, -0.01\n",
        "*DLOAD, OP=NEW\nSIDE, P3, 0.02\n",
        "*DSLOAD\nTOP, P, 0.1\n*BOUNDARY\nCLAMP, 3, 3, 0.02\n",
    ],
}


class Deck:
    """A mesh with sections and sets; `text` gives the file with steps."""

    def __init__(self, folder, order):
        (folder / "two.geo").write_text(GEO)
        run_gmsh(folder, "-3", "-order", str(order), "two.geo", "-format", "inp", "-o", "two.inp")
        # Not the lines and triangles, which CalculiX would want sections for.
        cards = re.split(r"(?m)^(?=\*[A-Za-z])", (folder / "two.inp").read_text())
        kept = [
            card for card in cards if re.match(r"\*NODE|\*ELEMENT, type=C3D|\*ELSET,ELSET=(one|two)", card)
        ]
        mesh = re.sub(r"(?m)^\*\*.*\n", "", "".join(kept))
        self.nodes = {
            int(row[0]): np.array(row[1:], dtype=float)
            for row in _rows(re.search(r"\*NODE\n([^*]*)", mesh).group(1))
        }
        self.elements = {}
        for data in re.findall(r"\*ELEMENT[^\n]*\n([^*]*)", mesh):
            self.elements.update({int(row[0]): [int(node) for node in row[1:]] for row in _rows(data)})
        self.sets = {
            name.upper(): [int(word) for row in _rows(data) for word in row]
            for name, data in re.findall(r"\*ELSET,ELSET=(\w+)\n([^*]*)", mesh)
        }
        self.sets["SIDE"] = sorted(self.elements)[:40]
        self.sets["ALLE"] = sorted(self.elements)
        self.clamp = sorted(n for n, x in self.nodes.items() if x[0] < 1e-6)
        end = sorted(n for n, x in self.nodes.items() if x[0] > 6 - 1e-6)
        self.top = self._faces_at(2, 1.5)
        self._mesh = mesh + SECTIONS + "*BOUNDARY\nCLAMP, 1, 3\n"
        self._mesh = self._mesh.replace(
            SECTIONS,
            "".join(
                [
                    "*NSET, NSET=CLAMP\n",
                    _lines(self.clamp),
                    "*NSET, NSET=HALF\n",
                    _lines(end[::2]),
                    "*NSET, NSET=OTHER\n",
                    _lines(end[1::2]),
                    "*NSET, NSET=END\nHALF,\nOTHER\n",
                    "*NSET, NSET=EVERY, GENERATE\n1, %d, 1\n" % len(self.nodes),
                    "*ELSET, ELSET=SIDE\n",
                    _lines(self.sets["SIDE"]),
                    "*ELSET, ELSET=ALLE\none, two\n",
                    "*SURFACE, NAME=TOP\n",
                    "".join(f"{element}, S{face + 1}\n" for element, face in self.top),
                    SECTIONS,
                ]
            ),
        )

    def _faces_at(self, axis, value):
        return [
            (element, face)
            for element, nodes in self.elements.items()
            for face, corners in enumerate(FACES)
            if all(abs(self.nodes[nodes[k]][axis] - value) < 1e-6 for k in corners)
        ]

    def text(self, steps):
        """The deck with these steps; elements of a set of sets are written out for CalculiX where it needs them."""
        return self._mesh + "".join(f"*STEP\n*STATIC\n{step}{OUTPUT}" for step in steps)

    def pressure(self, forces, element, face, value):
        """Adds the forces of a pressure."""
        nodes = self.elements[element]
        a, b, c = (self.nodes[nodes[k]] for k in FACES[face])
        outward = 0.5 * np.cross(b - a, c - a)
        inner = next(self.nodes[nodes[k]] for k in range(4) if k not in FACES[face])
        outward *= np.sign(outward @ (a - inner))
        for k in FACES[face] if len(nodes) == 4 else MIDDLES[face]:
            forces[nodes[k]] -= value * outward / 3.0

    def gravity(self, forces, elements, acceleration):
        """Adds the forces of gravity."""
        for element in elements:
            nodes = self.elements[element]
            a, b, c, d = (self.nodes[n] for n in nodes[:4])
            weight = abs(np.cross(b - a, c - a) @ (d - a)) / 6.0 * np.array(acceleration)
            weight = weight * (7.85e-9 if element in self.sets["ONE"] else 2.7e-9)
            for k, node in enumerate(nodes):
                forces[node] += weight * (0.25 if len(nodes) == 4 else -0.05 if k < 4 else 0.2)

    def forces(self):
        """No forces, at all nodes."""
        return {node: np.zeros(3) for node in self.nodes}


def _rows(text):
    return [
        [word for word in line.replace(" ", "").split(",") if word]
        for line in text.splitlines()
        if line.strip()
    ]


def _lines(numbers):
    return "".join(", ".join(map(str, numbers[k : k + 8])) + ",\n" for k in range(0, len(numbers), 8))


def _loads(deck, name, step):
    """The forces at all nodes of a step, by the rules of the deck worked out by hand."""
    f = deck.forces()
    end = [n for n, x in deck.nodes.items() if x[0] > 6 - 1e-6]

    def at(nodes, force):
        for node in nodes:
            f[node] += force

    def side(face, value):
        for element in deck.sets["SIDE"]:
            deck.pressure(f, element, face, value)

    if name == "pressure":
        side(1, 0.05)
        deck.pressure(f, 7 if 7 in deck.elements else sorted(deck.elements)[6], 3, 0.3)
    elif name == "surface" or (name == "steps" and step == 4):
        for element, face in deck.top:
            deck.pressure(f, element, face, 0.3 if name == "surface" else 0.1)
    elif name == "gravity":
        deck.gravity(f, deck.elements, np.array([0.6, 0, -0.8]) * 9810)
    elif name == "gravity on a part":
        deck.gravity(f, deck.sets["TWO"], [0, 0, -9810])
    elif name == "forces":
        at(end, [10, 0, -15])
        at(deck.clamp, [0, 1.5, 0])
    elif name == "settlement":
        at(end, [0, 3, 0])
    if name == "steps":
        if step < 3:
            side(1, 0.05)
            deck.gravity(f, deck.elements, [0, 0, -9810])
        else:
            side(2, 0.02)
        at(end, [[0, 0, -10], [0, 7, -4], [5, 0, 0], [5, 0, 0], [5, 0, 0]][step])
        if step < 2:
            at(deck.clamp, [0, 1.5, 0])
    return f


def _calculix(folder, text):
    """Displacements and forces by node for each step."""
    (folder / "ccx").mkdir()
    (folder / "ccx" / "deck.inp").write_text(text)
    run = subprocess.run(
        ["ccx", "-i", "deck"], cwd=folder / "ccx", capture_output=True, text=True, check=False
    )
    assert "*ERROR" not in run.stdout, run.stdout
    tables = {"displacements": [], "forces": []}
    for part in re.split(r"\n (?=displacements|forces)", "\n" + (folder / "ccx" / "deck.dat").read_text()):
        rows = [line.split() for line in part.splitlines() if re.match(r"\s+\d+\s", line)]
        if rows:
            table = tables["displacements" if part.startswith("displacements") else "forces"]
            table.append({int(row[0]): np.array([float(word) for word in row[1:4]]) for row in rows})
    return list(zip(tables["displacements"], tables["forces"]))


def _merged(folder, steps):
    """Problem files of all steps: the model with the text of the case in place of its own loads."""
    if steps == 1:
        return [folder / "model.dat"]
    cases = tomllib.loads((folder / "model.cases").read_text())
    assert cases["model"] == "model.dat"
    assert list(cases["cases"]) == [f"Step {k + 1}" for k in range(steps)]
    model = (folder / "model.dat").read_text()
    paths = []
    for k, case in enumerate(cases["cases"].values()):
        paths.append(folder / f"case{k}.dat")
        text = model if case.get("gravity") else re.sub(r"Weight = \S+", "", model)
        paths[-1].write_text(text + case["text"])
    return paths


def _by_cases(build, folder, count):
    """Text results of the cases by morlen-cases; None without the program."""
    program = build / "companions" / "morlen-cases"
    if count == 1 or not program.exists():
        return None
    command = [program, "model.cases", "-o", "results", "--write", "Step *", "--formats", "text"]
    run = subprocess.run(command, cwd=folder, capture_output=True, text=True, check=False)
    assert run.returncode == 0, run.stderr
    return [Results((folder / "results" / f"Step_{k + 1}.txt").read_text()) for k in range(count)]


@pytest.fixture(scope="module", params=[1, 2], ids=["C3D4", "C3D10"])
def deck(request, tmp_path_factory):
    return Deck(tmp_path_factory.mktemp("deck"), request.param)


@pytest.mark.parametrize("name", STEPS)
def test_same_as_calculix(deck, name, imported, build, tmp_path):
    steps = STEPS[name]
    number = 7 if 7 in deck.elements else sorted(deck.elements)[6]
    text = deck.text(
        [step.replace(" 7, P4", f" {number}, P4").replace("\n7, P4", f"\n{number}, P4") for step in steps]
    )
    (tmp_path / "deck.inp").write_text(text)
    status, _, err = imported("deck.inp", "--units", "mm,N", "-o", "model.dat")
    assert status == 0, err
    others = _calculix(tmp_path, text)
    paths = _merged(tmp_path, len(steps))
    assert len(others) == len(paths) == len(steps)
    cases = _by_cases(build, tmp_path, len(steps))
    for k, (path, (moved, forces)) in enumerate(zip(paths, others)):
        ours = solve(build, path)
        if cases:
            size = np.abs(ours.displacements).max()
            # Six digits are printed.
            np.testing.assert_allclose(cases[k].displacements, ours.displacements, atol=2e-6 * size)
        theirs = np.array([moved[node] for node in sorted(moved)])
        np.testing.assert_allclose(ours.displacements, theirs, atol=1e-4 * np.abs(theirs).max())
        loads = _loads(deck, name, k)
        assert sorted(ours.reactions) == deck.clamp
        reactions = {node: forces[node] - loads[node] for node in deck.clamp}
        largest = max(np.abs(row).max() for row in reactions.values())
        for node, row in reactions.items():
            np.testing.assert_allclose(ours.reactions[node], row, atol=1e-4 * largest)
        total = sum(loads.values())
        # Single reactions have six digits.
        np.testing.assert_allclose(ours.reaction_sum(), -total, atol=1e-5 * largest * len(deck.clamp) ** 0.5)
