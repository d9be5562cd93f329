#!/usr/bin/env python3
"""Runs the program and morlen-export on a problem file and reads their files back.

    check_export.py MORLEN MORLEN_EXPORT model.dat

The VTU file is read by VTK, the CSV and JSON files by Python; they are compared with the
result files, which this script reads itself, with relations among the values (von Mises
stress, end forces of beams), and with lengths, areas and volumes of the cells. Values that
cannot exist are NaN. Exit status 77 when VTK for Python is not installed.
"""

import cmath
import csv
import json
import math
import pathlib
import subprocess
import sys
import tempfile

try:
    import numpy
    import vtk
except ImportError:
    print("VTK or NumPy for Python is missing (python3-vtk9, python3-numpy)")
    sys.exit(77)

POLY_LINE, TRIANGLE, QUADRATIC_TETRA, VERTEX = 4, 5, 24, 1


def require(condition, *what):
    if not condition:
        sys.exit("check_export: " + " ".join(str(part) for part in what))


def require_close(found, expected, what, tolerance=1e-9):
    require(len(found) == len(expected), what, "has", len(found), "values, not", len(expected))
    scale = max([abs(value) for value in expected] + [1e-300])
    for i, (a, b) in enumerate(zip(found, expected)):
        require(abs(a - b) <= tolerance * scale, f"{what}, value {i}: {a} instead of {b}")


def flat(rows):
    return [value for row in rows for value in row]


def dot(a, b):
    return sum(x * y for x, y in zip(a, b))


def is_nan(rows):
    return all(math.isnan(value) for value in flat(rows))


def turned(forces, axes, to):
    """Nx' Ny' Nxy' Mx' My' Mxy' Qx' Qy' along axes turned about the normal, by complex numbers."""
    angle = math.atan2(dot(to[0], axes[1]) - dot(to[1], axes[0]), dot(to[0], axes[0]) + dot(to[1], axes[1]))
    found = []
    for x, y, xy in (forces[:3], forces[3:6]):
        deviator = complex((x - y) / 2, xy) * cmath.exp(-2j * angle)
        found += [(x + y) / 2 + deviator.real, (x + y) / 2 - deviator.real, deviator.imag]
    shear = complex(*forces[6:]) * cmath.exp(-1j * angle)
    return found + [shear.real, shear.imag]


def factors_at_origin(places, degree):
    """Of the polynomial of least squares, by the pseudo-inverse; nothing when it is not determined."""
    x, y = (numpy.array(places) / numpy.abs(places).max()).T
    terms = [numpy.ones_like(x), x, y] + ([x * x, x * y, y * y] if degree == 2 else [])
    matrix = numpy.stack(terms, axis=1)
    return numpy.linalg.pinv(matrix)[0] if numpy.linalg.matrix_rank(matrix, 1e-6) == len(terms) else None


def recovered(places, values):
    """The value at the origin of values at Gauss points of shells with three of them."""
    factors = factors_at_origin(places, 2)
    if factors is None or factors @ factors > 1.0:
        factors = factors_at_origin(places, 1)
    values = numpy.array(values)
    least, largest = values.min(axis=0), values.max(axis=0)
    margin = 0.5 * (largest - least) if len(values) > 3 else numpy.inf
    return numpy.clip(factors @ values, least - margin, largest + margin)


def read_post(path):
    """Blocks by name: lists of [number, rows of values], in the order of the file."""
    blocks, block, skip = {}, None, 0
    for line in path.read_text().splitlines():
        if skip:
            skip -= 1
        elif "4 1.0 Estatic" in line:
            name, fields = line.split("4 1.0 Estatic")
            kind, _, named = (int(word) for word in fields.split()[:3])
            skip = {1: 1, 2: 3, 3: 6}[kind] if named == 1 else 0
            block = blocks.setdefault(name.strip(), [])
        elif block is not None:
            values = [float(word) for word in line.split()]
            if line.startswith(" "):
                block[-1][1].append(values)
            else:
                block.append([int(values[0]), [values[1:]]])
    return blocks


def read_text(path):
    """Displacements and reactions by node, end forces by element."""
    parts, part, element = {"NODAL": {}, "ELEMENT": {}, "REACTIONS": {}}, None, None
    for line in path.read_text().splitlines():
        words = line.split()
        if words and words[0] in parts:
            part = words[0]
        elif words and words[0] == "Element":
            element = parts["ELEMENT"].setdefault(int(words[1]), [])
        elif words and part == "ELEMENT":
            element.append([float(word) for word in words])
        elif words:
            parts[part][int(words[0])] = [float(word) for word in words[1:]]
    return parts["NODAL"], parts["ELEMENT"], parts["REACTIONS"]


class Grid:
    """A VTU file as VTK reads it; arrays by name without their units."""

    def __init__(self, path):
        self.faults = []
        reader = vtk.vtkXMLUnstructuredGridReader()
        reader.AddObserver("ErrorEvent", lambda *_: self.faults.append("error"))
        reader.SetFileName(str(path))
        reader.Update()
        require(not self.faults, "VTK does not read", path)
        self.grid = reader.GetOutput()
        self.points = self.arrays(self.grid.GetPointData())
        self.cells = self.arrays(self.grid.GetCellData())

    @staticmethod
    def arrays(data):
        found = {}
        for i in range(data.GetNumberOfArrays()):
            array = data.GetArray(i)
            name, _, unit = array.GetName().partition(" [")
            rows = [array.GetTuple(k) for k in range(array.GetNumberOfTuples())]
            found[name] = (rows, unit.rstrip("]"))
        return found

    def point(self, name):
        return self.points[name][0]

    def cell(self, name):
        return self.cells[name][0]

    def types(self):
        return [self.grid.GetCellType(i) for i in range(self.grid.GetNumberOfCells())]

    def points_of(self, cell):
        ids = self.grid.GetCell(cell).GetPointIds()
        return [ids.GetId(k) for k in range(ids.GetNumberOfIds())]

    def sizes(self, name):
        measure = vtk.vtkCellSizeFilter()
        measure.SetInputData(self.grid)
        measure.Update()
        array = measure.GetOutput().GetCellData().GetArray(name)
        return [array.GetValue(i) for i in range(array.GetNumberOfTuples())]


class Case:
    def __init__(self, morlen, export, example, folder):
        model = folder / example.name
        model.write_bytes(example.read_bytes())
        text = model.with_suffix(".txt")
        subprocess.run([morlen, model, text], check=True)
        command = [export, model, "--vtu", folder / "out.vtu", "--csv", folder / "csv",
                   "--json", folder / "out.json"]
        run = subprocess.run(command, check=True, capture_output=True, text=True)
        require(run.stderr == "", "messages:", run.stderr)
        self.printed = run.stdout.splitlines()
        self.folder = folder
        self.post = read_post(model.with_suffix(".morlen.res"))
        self.displacements, self.ends, self.reactions = read_text(text)
        self.grid = Grid(folder / "out.vtu")
        self.nodes = sorted(self.displacements)
        self.plane = "2d" in model.read_text().split("\n")[0]
        self.tables = {path.stem: self.read_csv(path) for path in (folder / "csv").glob("*.csv")
                       if path.stem != "run"}

    @staticmethod
    def read_csv(path):
        with open(path, newline="", encoding="utf-8") as file:
            rows = list(csv.reader(file))
        require(all(len(row) == len(rows[0]) for row in rows), path, "has rows of unequal length")
        return rows

    def check(self):
        self.check_printed()
        self.check_nodes()
        self.check_json()
        kinds = {row[2] for row in self.tables["elements"][1:]}
        if "beam" in kinds:
            self.check_beams()
        if "shell" in kinds:
            self.check_shells()
        if "solid" in kinds:
            self.check_solids()

    def check_printed(self):
        written = {path for path in self.folder.rglob("*") if path.suffix in (".csv", ".vtu", ".json")}
        require({f"wrote {path}" for path in written} == set(self.printed), "printed", self.printed)
        left = [path for path in self.folder.rglob(".*")]
        require(not left, "left over:", left)

    def space(self, values):
        """The components of a node as two vectors in space."""
        if len(values) == 3 and self.plane:
            return values[:2] + [0.0], [0.0, 0.0, values[2]]
        return values[:3], values[3:]

    def check_nodes(self):
        n = len(self.nodes)
        numbers = [int(row[0]) for row in self.grid.point("Node")]
        divisions = len(self.tables["beam_diagrams"]) - 1 if "beam_diagrams" in self.tables else 0
        copies = numbers[n + divisions:]
        require(numbers[:n] == self.nodes and not any(numbers[n:n + divisions]), "numbers of nodes")
        self.check_copies(n + divisions, [self.nodes.index(number) for number in copies])
        self.check_supports(n, divisions)
        split = [self.space(self.displacements[node]) for node in self.nodes]
        require_close(flat(self.grid.point("Displacement")[:n]), flat(s[0] for s in split), "u", 1e-5)
        zero = [0.0] * len(self.displacements[self.nodes[0]])
        reactions = [self.space(self.reactions.get(node, zero)) for node in self.nodes]
        require_close(flat(self.grid.point("Reaction force")[:n]), flat(r[0] for r in reactions), "R")
        if split[0][1]:
            require_close(flat(self.grid.point("Rotation")[:n]), flat(s[1] for s in split), "rotation")
            require_close(flat(self.grid.point("Reaction moment")[:n]),
                          flat(r[1] for r in reactions), "moments of supports")
        table = self.tables["reactions"]
        held = {row[0] for row in self.tables["supports"][1:]}
        listed = [number for number in self.nodes if str(number) in held or any(self.reactions.get(number, zero))]
        require([int(row[0]) for row in table[1:]] == listed, "rows of reactions.csv")
        require_close([float(x) for x in flat(row[1:] for row in table[1:])],
                      flat(self.reactions[number] for number in listed), "reactions.csv")
        table = self.tables["displacements"]
        require_close([float(x) for x in flat(row[1:] for row in table[1:])],
                      flat(self.displacements[node] for node in self.nodes), "displacements.csv", 1e-5)

    def check_copies(self, first, nodes):
        """Copies have the place and the displacement of their node, and no forces."""
        points = [self.grid.grid.GetPoint(i) for i in range(first + len(nodes))]
        require(points[first:] == [points[i] for i in nodes], "places of copies")
        moved = self.grid.point("Displacement")
        require(moved[first:] == [moved[i] for i in nodes], "displacements of copies")
        for name in ("Reaction force", "Nodal force"):
            if name in self.grid.points:
                require(not any(flat(self.grid.point(name)[len(self.nodes):])), name, "outside nodes")

    def check_supports(self, n, divisions):
        head, *rows = self.tables["supports"]
        count = sum(name.startswith("flag") for name in head)
        flags = {int(row[0]): [int(x) for x in row[1:1 + count]] for row in rows}
        found = [[int(x) for x in row] for row in self.grid.point("Support")]
        require(found[:n] == [flags.get(node, [0] * count) for node in self.nodes], "flags of supports")
        require(not any(flat(found[n:n + divisions])), "supports of division points")
        require(all("[" in name for name in head if name.startswith("value")), "units of supports", head)

    def check_json(self):
        data = json.loads((self.folder / "out.json").read_text(encoding="utf-8"))
        require(data["format"] == "morlen-results" and data["formatVersion"] == 1, "format")
        require(set(data["tables"]) == set(self.tables), "tables", set(data["tables"]))
        for name, table in data["tables"].items():
            head = [c["name"] + (f" [{c['unit']}]" if c["unit"] else "") for c in table["columns"]]
            require(head == self.tables[name][0], name, head)
            rows = self.tables[name][1:]
            require(len(rows) == len(table["rows"]), name, "has other rows in JSON")
            for of_json, of_csv in zip(table["rows"], rows):
                require(all(self.same(a, b) for a, b in zip(of_json, of_csv)), name, of_json, of_csv)

    @staticmethod
    def same(of_json, of_csv):
        if of_json is None or isinstance(of_json, str):
            return (of_json or "") == of_csv
        return float(of_csv) == of_json

    def cells_of(self, *types):
        return [i for i, kind in enumerate(self.grid.types()) if kind in types]

    def check_beams(self):
        names = {"N": "X'_Shear", "Vy": "Y'_Shear", "Vz": "Z'_Shear", "T": "X'_Momentus",
                 "My": "Y'_Momentus", "Mz": "Z'_Momentus"}
        lines = self.cells_of(POLY_LINE)
        blocks = {number: rows for number, rows in self.post["X'_Shear"]}
        numbers = [int(self.grid.cell("Element")[i][0]) for i in lines]
        require(numbers == list(blocks), "beams", numbers)
        ids = [self.grid.points_of(i) for i in lines]
        require([len(i) for i in ids] == [len(rows) for rows in blocks.values()], "points of beams")
        for name in ["N", "Vy", "Mz"] if self.plane else names:
            expected = [row[3] for _, rows in self.post[names[name]] for row in rows]
            require_close([self.grid.point(name)[k][0] for k in flat(ids)], expected, name)
        along = [(row + [0.0])[:3] for _, rows in self.post["BDisplacements"] for row in rows]
        require_close(flat(self.grid.point("Displacement")[k] for k in flat(ids)), flat(along), "beam u")
        require(is_nan(self.grid.point(name)[k] for name in ("N", "Vy", "Mz") for k in range(len(self.nodes))),
                "forces of beams at nodes are not NaN")
        self.check_beam_ends(lines, numbers, ids)

    def check_beam_ends(self, lines, numbers, ids):
        """End forces: N = -Px1 = Px2 and Mz = -Mz1 = Mz2; the ends are at the nodes."""
        largest = max(abs(x) for ends in self.ends.values() for end in ends for x in end)
        lengths = self.grid.sizes("Length")
        places = {int(row[0]): [float(x) for x in row[1:]] for row in self.tables["nodes"][1:]}
        elements = {int(row[0]): row for row in self.tables["elements"][1:]}
        for cell, number, points in zip(lines, numbers, ids):
            for end, sign, point in ((0, -1.0, points[0]), (1, 1.0, points[-1])):
                forces = self.ends[number][end]
                found = [self.grid.point(name)[point][0] for name in ("N", "Mz")]
                expected = [sign * forces[0], sign * forces[-1]]
                error = max(abs(a - b) for a, b in zip(found, expected))
                require(error <= 2e-5 * largest, "end forces of", number, found, expected)
            a, b = (places[int(elements[number][k])] for k in (5, 6))
            require_close([lengths[cell]], [math.dist(a, b)], f"length of {number}")

    def check_shells(self):
        shells = self.cells_of(TRIANGLE)
        numbers = [int(self.grid.cell("Element")[i][0]) for i in shells]
        others = [i for i in range(len(self.grid.types())) if i not in set(shells)]
        for name, block, parts in (("Mean membrane force", "Axial Force", 3), ("Mean moment", "Momentus", 3),
                                   ("Mean shear force", "Shear", 2)):
            values = {number: rows for number, rows in self.post[block]}
            require(sorted(values) == sorted(numbers), "shells of", block)
            means = [[sum(row[k] for row in values[n]) / len(values[n]) for k in range(parts)]
                     for n in numbers]
            require_close(flat(self.grid.cell(name)[i] for i in shells), flat(means), name)
            require(is_nan(self.grid.cell(name)[i] for i in others), name, "of other elements is not NaN")
        self.check_corners(shells, numbers)
        for name, of_beams in (("Material t", False), ("Material A", True)):
            cells = shells if of_beams else self.cells_of(POLY_LINE)
            if name in self.grid.cells:
                require(is_nan(self.grid.cell(name)[i] for i in cells), name, "of a wrong kind is not NaN")
        self.check_materials(shells)
        meshes = {int(row[0]): int(row[1]) for row in self.tables["elements"][1:]}
        require([int(self.grid.cell("Mesh")[i][0]) for i in shells] == [meshes[n] for n in numbers],
                "meshes of shells")
        normals = [self.grid.cell("Local z")[i] for i in shells]
        areas = self.grid.sizes("Area")
        for cell, normal in zip(shells, normals):
            a, b, c = (self.grid.grid.GetPoint(k) for k in self.grid.points_of(cell))
            product = [(b[i] - a[i]) * (c[j] - a[j]) - (b[j] - a[j]) * (c[i] - a[i])
                       for i, j in ((1, 2), (2, 0), (0, 1))]
            require_close(product, [2.0 * areas[cell] * x for x in normal], "normal and area", 1e-6)
        if "Main Momentus" in self.post:
            self.check_principal(shells, numbers)

    def check_materials(self, shells):
        head, *rows = self.tables["materials"]
        column = [name.split(" ")[0] for name in head].index("t")
        thickness = {int(row[0]): float(row[column]) for row in rows}
        for cell in shells:
            number = int(self.grid.cell("Material")[cell][0])
            if number:
                require(self.grid.cell("Material t")[cell] == (thickness[number],), "thickness of", cell)

    def check_corners(self, shells, numbers):
        """Shells that share a point agree. With three Gauss points each, the values are those of a second
        computation. Else they are within the Gauss points around, or exceed them by half of their range at
        most."""
        blocks = [dict(self.post[name]) for name in ("Axial Force", "Momentus", "Shear")]
        values = [[flat(row[:n] for row, n in zip(rows, (3, 3, 2))) for rows in zip(*(block[number] for block in blocks))]
                  for number in numbers]
        axes = [[self.grid.cell(f"Local {axis}")[cell] for axis in "xyz"] for cell in shells]
        around = {}  # by point: places in `shells`
        of_node = {}
        for at, cell in enumerate(shells):
            for corner, point in enumerate(self.grid.points_of(cell)):
                around.setdefault(point, []).append((at, corner))
                of_node.setdefault(int(self.grid.point("Node")[point][0]), set()).add(at)
        fitted = 0
        for point, members in around.items():
            first = members[0][0]
            for at, _ in members:
                require(self.grid.cell("Mesh")[shells[at]] == self.grid.cell("Mesh")[shells[first]], "meshes at", point)
                require(all(dot(axes[at][k], axes[first][k]) > math.cos(math.radians(15)) for k in (0, 2)),
                        "axes at", point)
            found = flat(self.grid.point(name)[point] for name in ("Membrane force", "Moment", "Shear force"))
            near = {at for at, _ in members}
            if len(values[first]) == 1:
                for at, _ in members:
                    for corner in self.grid.points_of(shells[at]):
                        near |= of_node[int(self.grid.point("Node")[corner][0])]
            patch = [turned(row, axes[at], axes[first]) for at in near for row in values[at]]
            if len(values[first]) == 3:
                places = [place for at in near for place in self.gauss_places(shells[at], point, axes[first])]
                require_close(found, list(recovered(places, patch)), f"forces at point {point}", 1e-8)
                fitted += 1
                continue
            for k, (value, *others) in enumerate(zip(found, *patch)):
                margin = 0.5 * (max(others) - min(others)) + 1e-9 * max(map(abs, others))
                require(min(others) - margin <= value <= max(others) + margin, "component", k, "at", point, value)
        require(fitted in (0, len(around)), "shells of two sorts")
        free = [i for i in range(len(self.grid.point("Node"))) if i not in around]
        require(is_nan(self.grid.point("Moment")[i] for i in free), "moments of points without shells are not NaN")
        self.check_extremes(shells, values)

    def gauss_places(self, cell, point, axes):
        """The middles of the edges of a shell, from a point, along x' and y' of some axes."""
        origin = self.grid.grid.GetPoint(point)
        corners = [self.grid.grid.GetPoint(k) for k in self.grid.points_of(cell)]
        middles = [[(a + b) / 2 - o for a, b, o in zip(corners[k], corners[(k + 1) % 3], origin)] for k in range(3)]
        return [(dot(middle, axes[0]), dot(middle, axes[1])) for middle in middles]

    def check_extremes(self, shells, values):
        """Of each component the value of largest size in the element: no peak of the Gauss points is lost."""
        if len(values[0]) == 1:
            require("Extreme moment" not in self.grid.cells, "extremes of one point")
            return
        for name, first, end in (("membrane force", 0, 3), ("moment", 3, 6), ("shear force", 6, 8)):
            found = self.grid.cell("Extreme " + name)
            expected = [max((row[k] for row in rows), key=abs) for rows in values for k in range(first, end)]
            require_close(flat(found[cell] for cell in shells), expected, "Extreme " + name)
            others = set(range(len(found))) - set(shells)
            require(is_nan(found[i] for i in others), "Extreme", name, "of other elements is not NaN")

    def check_principal(self, shells, numbers):
        """The principal values are at their points, in every format."""
        main = {number: rows for number, rows in self.post["Main Momentus"]}
        for point in range(3):
            found = [self.grid.cell(f"Principal moment, point {point + 1}")[i] for i in shells]
            require_close(flat(found), flat(main[n][point][:2] for n in numbers), "principal moments")
        head, *rows = self.tables["shell_forces"]
        first = [name.split(" ")[0] for name in head].index("M11")
        found = [[float(x) for x in row[first:first + 2]] for row in rows]
        require_close(flat(found), flat(row[:2] for n in numbers for row in main[n]), "M11 and M22")

    def check_solids(self):
        stress = self.grid.point("Stress")
        require_close(flat(stress), flat(rows[0] for _, rows in self.post["Strengths"]), "stress")
        mises = [row[0] for row in self.grid.point("von Mises")]
        require_close(mises, [rows[0][0] for _, rows in self.post["Von Misses"]], "von Mises")
        formula = [math.sqrt(0.5 * ((x - y)**2 + (y - z)**2 + (z - x)**2) + 3 * (a * a + b * b + c * c))
                   for x, y, z, a, b, c in stress]
        require_close(mises, formula, "formula of von Mises", 1e-5)
        solids = self.cells_of(QUADRATIC_TETRA)
        require(len(solids) == len(self.tables["elements"]) - 1, "solids")
        volumes = self.grid.sizes("Volume")
        for cell in solids:
            a, b, c, d, *middle = (self.grid.grid.GetPoint(k) for k in self.grid.points_of(cell))
            edges = ((a, b), (b, c), (c, a), (a, d), (b, d), (c, d))
            longest = max(math.dist(p, q) for p, q in edges)
            for (p, q), m in zip(edges, middle):
                centre = [(x + y) / 2 for x, y in zip(p, q)]
                require(math.dist(centre, m) < 0.1 * longest, "node in the middle of an edge of", cell)
            require(volumes[cell] > 0.0, "volume of", cell, volumes[cell])


def main():
    if len(sys.argv) != 4:
        sys.exit(__doc__)
    with tempfile.TemporaryDirectory() as folder:
        Case(sys.argv[1], sys.argv[2], pathlib.Path(sys.argv[3]), pathlib.Path(folder)).check()


if __name__ == "__main__":
    main()
