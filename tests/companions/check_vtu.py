#!/usr/bin/env python3
"""Checks the arrays of VTU files against closed forms and equilibrium, as VTK reads them.

    check_vtu.py MORLEN MORLEN_EXPORT [MORLEN_CASES]

Exit status 77 when VTK for Python is not installed.
"""

import csv
import math
import pathlib
import subprocess
import sys
import tempfile
import unittest

try:
    import vtk
except ImportError:
    print("VTK for Python is missing (python3-vtk9)")
    sys.exit(77)

MORLEN, EXPORT, *CASES = (str(pathlib.Path(name).resolve()) for name in sys.argv[1:4])


class Grid:
    """A VTU file; arrays by name without their units, as lists of tuples."""

    def __init__(self, path):
        reader = vtk.vtkXMLUnstructuredGridReader()
        reader.SetFileName(str(path))
        reader.Update()
        self.grid = reader.GetOutput()
        self.units = {}
        self.points = self.arrays(self.grid.GetPointData())
        self.cells = self.arrays(self.grid.GetCellData())

    def arrays(self, data):
        found = {}
        for i in range(data.GetNumberOfArrays()):
            array = data.GetArray(i)
            name, _, unit = array.GetName().partition(" [")
            found[name] = [array.GetTuple(k) for k in range(array.GetNumberOfTuples())]
            self.units[name] = unit.rstrip("]")
        return found

    def place(self, point):
        return self.grid.GetPoint(point)

    def points_of(self, cell):
        ids = self.grid.GetCell(cell).GetPointIds()
        return [ids.GetId(i) for i in range(ids.GetNumberOfIds())]

    def size(self, cell):
        """Length, area or volume."""
        measure = vtk.vtkCellSizeFilter()
        measure.SetInputData(self.grid)
        measure.Update()
        data = measure.GetOutput().GetCellData()
        return sum(data.GetArray(name).GetValue(cell) for name in ("Length", "Area", "Volume"))


def grid_mesh(nx, ny, length, width, material=lambda i, j: 1):
    """Nodes and triangles of a rectangle in the plane z = 0; diagonals in turn."""
    nodes = [(length * i / nx, width * j / ny, 0.0) for j in range(ny + 1) for i in range(nx + 1)]
    triangles = []
    for j in range(ny):
        for i in range(nx):
            a = 1 + i + j * (nx + 1)
            b, c, d = a + 1, a + nx + 2, a + nx + 1
            both = [(a, b, c), (a, c, d)] if (i + j) % 2 == 0 else [(a, b, d), (b, c, d)]
            triangles += [(*one, material(i, j)) for one in both]
    return nodes, triangles


def shell_model(nodes, triangles, materials, supports, loads, settings="ShellFormulation Refined\nConvertTo6Nodes\n"):
    def lines(rows):
        return "".join(" ".join(str(x) for x in row) + "\n" for row in rows)

    return ("problem type: 3d\n" + settings + "mesh dimension = 3 elemtype Triangle nnode = 3\ncoordinates\n"
            + lines((i + 1, *x) for i, x in enumerate(nodes)) + "end\nelements\n"
            + lines((i + 1, *t) for i, t in enumerate(triangles)) + "end\nmaterials\n" + materials
            + "end\nconstraints\n" + lines(supports) + "end\n" + loads)


def cross(a, b):
    return [a[1] * b[2] - a[2] * b[1], a[2] * b[0] - a[0] * b[2], a[0] * b[1] - a[1] * b[0]]


FRAME_WITH_SLAB = """problem type: 3d
units_names
kN-m kN m kPa 1000 1
end
units_mesh m
units_mat_and_load kN-m
units_res kN-m
NumOfDivisions 4
mesh dimension = 3 elemtype Linear nnode = 2
coordinates
1 0 0 0
2 3 0 1
3 3 4 1
4 0 4 0
5 3 0 -2
6 9 9 9
end
elements
11 1 2 1
12 4 3 1
13 5 2 1
end
mesh dimension = 3 elemtype Triangle nnode = 3
coordinates
end
elements
21 1 2 3 2
22 1 3 4 2
end
materials
1 E=3e7 G=1e7 widthY=0.3 widthZ=0.4
2 E=3e7 nu=0.2 G=1.25e7 t=0.2
end
constraints
1 111000 0 0 0 0 0 0
4 111222 0 0 0 70 80 90
5 111111 0 0 -0.001 0 0 0.002
6 111111 0 0 0 0 0 0
end
nodal_point_loads
2 1 2 -3 0.5 0 0
2 1 0 0 0 0 0
end
local_pressure_loads
11 1 2 -5 0.25
21 1 0 -2
end
global_projected_pressure_loads
11 0 0 -7
22 0 3 -4
end
global_pressure_loads
12 1 1 1
21 0 0 -1
end
face_loads
22 1 0 0 -12
end
temperature_loads
13 1.2e-5 30
end
"""

SOLID = """problem type: 3d
mesh dimension = 3 elemtype Tetrahedra nnode = 4
coordinates
1 0 0 0
2 2 0 0
3 0 3 0
4 0.5 0.5 1.5
end
elements
5 1 2 3 4 1
end
materials
1 E=1000 nu=0.2
end
constraints
1 111 0 0 0
2 111 0 0 0
3 111 0 0 0
end
local_pressure_loads
5 0 0 0 -2
5 1 1 2 -4
5 2 -1 0 3
end
global_projected_pressure_loads
5 3 1 2 -8
end
global_pressure_loads
5 -1 1 2 -30
end
"""


class Vtu(unittest.TestCase):
    def setUp(self):
        temporary = tempfile.TemporaryDirectory()
        self.addCleanup(temporary.cleanup)
        self.folder = pathlib.Path(temporary.name)

    def run_program(self, *command):
        run = subprocess.run(command, cwd=self.folder, capture_output=True, text=True, check=False)
        self.assertEqual(run.returncode, 0, run.stdout + run.stderr)
        return run

    def grid_of(self, text):
        (self.folder / "m.dat").write_text(text)
        self.run_program(MORLEN, "m.dat", "m.txt")
        self.run_program(EXPORT, "m.dat", "--vtu", "m.vtu", "--csv", "tables")
        return Grid(self.folder / "m.vtu")

    def table(self, name):
        with open(self.folder / "tables" / f"{name}.csv", newline="", encoding="utf-8") as file:
            return list(csv.reader(file))

    def largest_in_table(self, column):
        head, *rows = self.table("shell_forces")
        at = [name.split(" ")[0] for name in head].index(column)
        return max(abs(float(row[at])) for row in rows)

    def test_the_peak_of_a_plate_is_kept(self):
        """A square plate on simple supports under a uniform load, Poisson's ratio 0.3: by Navier's
        series both moments in the middle are 0.0479 q a² (S. Timoshenko, S. Woinowsky-Krieger,
        Theory of Plates and Shells, 1959, table 8)."""
        n, a, load = 8, 4.0, 10.0
        nodes, triangles = grid_mesh(n, n, a, a)
        border = [i + 1 for i, x in enumerate(nodes) if x[0] in (0, a) or x[1] in (0, a)]
        supports = [(i, "001000", *[0] * 6) for i in border if i not in (1, n + 1)]
        supports += [(1, "111000", *[0] * 6), (n + 1, "011000", *[0] * 6)]
        grid = self.grid_of(shell_model(
            nodes, triangles, "1 E=3e7 nu=0.3 G=1.1538e7 t=0.04\n", supports,
            "global_pressure_loads\n" + "".join(f"{i + 1} 0 0 {-load}\n" for i in range(len(triangles))) + "end\n"))
        exact = 0.0479 * load * a * a
        middle = grid.points["Node"].index((float(1 + n // 2 + n // 2 * (n + 1)),))
        self.assertEqual(grid.units["Moment"], "force*length/length")
        # The mesh of 8 by 8 cells has an error of 3 %.
        for component in (0, 1):
            self.assertAlmostEqual(-grid.points["Moment"][middle][component], exact, delta=0.03 * exact)
            gauss = self.largest_in_table(("Mx'", "My'")[component])
            largest = max(abs(row[component]) for row in grid.points["Moment"])
            self.assertAlmostEqual(largest, gauss, delta=0.06 * gauss)

    def test_the_peak_at_a_clamped_edge_is_kept(self):
        """A strip with two clamped ends in cylindrical bending: the moment there is q L² / 12."""
        nx, length, load = 16, 4.0, 10.0
        nodes, triangles = grid_mesh(nx, 4, length, 1.0)
        supports = [(i + 1, "111111" if x[0] in (0, length) else "010101", *[0] * 6) for i, x in enumerate(nodes)]
        grid = self.grid_of(shell_model(
            nodes, triangles, "1 E=3e7 nu=0 G=1.5e7 t=0.1\n", supports,
            "global_pressure_loads\n" + "".join(f"{i + 1} 0 0 {-load}\n" for i in range(len(triangles))) + "end\n"))
        exact = load * length**2 / 12
        largest = max(row[0] for row in grid.points["Moment"])
        gauss = self.largest_in_table("Mx'")
        mean = max(row[0] for row in grid.cells["Mean moment"])
        # Sixteen cells to the span have an error of 5 %; the means lose another tenth.
        self.assertAlmostEqual(largest, exact, delta=0.06 * exact)
        self.assertAlmostEqual(largest, gauss, delta=0.02 * gauss)
        self.assertLess(mean, 0.92 * gauss)
        self.assertEqual(max(row[0] for row in grid.cells["Extreme moment"]), gauss)

    def test_three_node_shells_reach_the_clamped_edge(self):
        """Their points are inside: at 8 cells to the span the last one has 0.73 of q L² / 12."""
        nx, length, load = 8, 4.0, 10.0
        nodes, triangles = grid_mesh(nx, 4, length, 1.0)
        supports = [(i + 1, "111111" if x[0] in (0, length) else "010101", *[0] * 6) for i, x in enumerate(nodes)]
        grid = self.grid_of(shell_model(
            nodes, triangles, "1 E=3e7 nu=0 G=1.5e7 t=0.1\n", supports,
            "global_pressure_loads\n" + "".join(f"{i + 1} 0 0 {-load}\n" for i in range(len(triangles))) + "end\n",
            "ShellFormulation Refined\n"))
        exact = load * length**2 / 12
        at_edge = [row[0] for i, row in enumerate(grid.points["Moment"]) if grid.place(i)[0] in (0, length)]
        # The mesh of 8 cells has an error of some percent.
        self.assertAlmostEqual(sum(at_edge) / len(at_edge), exact, delta=0.1 * exact)
        self.assertLess(self.largest_in_table("Mx'"), 0.8 * exact)
        self.assertNotIn("Extreme moment", grid.cells)

    def test_a_wall_in_bending(self):
        """A cantilever in its plane, three-node shells: Nx' = P (L - x) y 12 / h³ (beam theory)."""
        nx, ny, length, force = 16, 4, 4.0, 10.0
        nodes, triangles = grid_mesh(nx, ny, length, 1.0)
        supports = [(i + 1, "111111" if x[0] == 0 else "001110", *[0] * 6) for i, x in enumerate(nodes)]
        ends = [i + 1 for i, x in enumerate(nodes) if x[0] == length]
        shares = [0.5 if node in (ends[0], ends[-1]) else 1.0 for node in ends]
        grid = self.grid_of(shell_model(
            nodes, triangles, "1 E=3e7 nu=0 G=1.5e7 t=0.1\n", supports, "nodal_point_loads\n"
            + "".join(f"{node} 0 {force * share / ny} 0 0 0 0\n" for node, share in zip(ends, shares)) + "end\n",
            "ShellFormulation Refined\n"))
        largest = 12 * force * length / 2
        inside = [i for i in range(grid.grid.GetNumberOfPoints()) if 1.0 <= grid.place(i)[0] <= 3.0]
        self.assertGreater(len(inside), 40)
        for i in inside:
            x, y, _ = grid.place(i)
            exact = -12 * force * (length - x) * (y - 0.5)
            # Four elements to the depth: some percent. The mean of the shells at a node is 15 % off.
            self.assertAlmostEqual(grid.points["Membrane force"][i][0], exact, delta=0.05 * largest)

    def test_shears_and_moments_at_a_line_support(self):
        """A strip over two spans: at the middle support the moment is q L² / 8, and the shear jumps
        from -5/8 q L to 5/8 q L."""
        n, length, load = 32, 4.0, 10.0
        nodes, triangles = grid_mesh(2 * n, 4, 2 * length, 1.0)
        flags = {0.0: "011101", length: "111101", 2 * length: "011101"}
        supports = [(i + 1, flags.get(x[0], "010101"), *[0] * 6) for i, x in enumerate(nodes)]
        grid = self.grid_of(shell_model(
            nodes, triangles, "1 E=3e7 nu=0 G=1.5e7 t=0.1\n", supports,
            "global_pressure_loads\n" + "".join(f"{i + 1} 0 0 {-load}\n" for i in range(len(triangles))) + "end\n",
            "ShellFormulation Refined\n"))
        moment, shear = load * length**2 / 8, 5 / 8 * load * length
        line = [i for i in range(grid.grid.GetNumberOfPoints()) if grid.place(i)[0] == length]
        self.assertEqual(len(line), 2 * 5)
        shears = sorted(grid.points["Shear force"][i][0] for i in line)
        # With 32 elements to the span.
        for found, exact in zip(shears, [-shear] * 5 + [shear] * 5):
            self.assertAlmostEqual(found, exact, delta=0.1 * shear)
        for i in line:
            self.assertAlmostEqual(abs(grid.points["Moment"][i][0]), moment, delta=0.03 * moment)

    def test_principal_values_at_points(self):
        """They are the eigenvalues of the point's own components, with their directions in space."""
        grid, _, _ = self.stretched(math.radians(10))
        for name, of, direction in (("Principal membrane force at nodes", "Membrane force", "Direction of N1"),
                                    ("Principal moment at nodes", "Moment", "Direction of M1")):
            for i, (first, second) in enumerate(grid.points[name]):
                x, y, xy = grid.points[of][i]
                self.assertGreaterEqual(first, second)
                self.assertAlmostEqual(first + second, x + y, delta=1e-9)
                self.assertAlmostEqual(first * second, x * y - xy * xy, delta=1e-6)
                self.assertAlmostEqual(math.hypot(*grid.points[direction][i]), 1.0, places=12)
        # 300, 100 and 50 along the global axes, whatever the local ones: the tensor times the vector.
        for i, (first, _) in enumerate(grid.points["Principal membrane force at nodes"]):
            u, v, w = grid.points["Direction of N1"][i]
            self.assertAlmostEqual(first, 200 + math.hypot(100, 50), delta=2e-3)  # six digits
            self.assertAlmostEqual(300 * u + 50 * v, first * u, delta=1e-2)
            self.assertAlmostEqual(50 * u + 100 * v, first * v, delta=1e-2)
            self.assertEqual(w, 0.0)
        self.assertEqual([grid.units[name] for name in ("Principal moment at nodes", "Direction of M1",
                                                        "Shear force vector")],
                         ["force*length/length", "", "force/length"])

    def test_the_shear_vector_is_in_space(self):
        grid = self.grid_of(FRAME_WITH_SLAB)
        cell = [int(row[0]) for row in grid.cells["Element"]].index(21)
        x, y = grid.cells["Local x"][cell], grid.cells["Local y"][cell]
        for point in grid.points_of(cell):
            qx, qy = grid.points["Shear force"][point]
            for found, a, b in zip(grid.points["Shear force vector"][point], x, y):
                self.assertAlmostEqual(found, qx * a + qy * b, delta=1e-12 * (abs(qx) + abs(qy)))
        beam = [int(row[0]) for row in grid.cells["Element"]].index(11)
        self.assertEqual(grid.points["Shear force vector"][grid.points_of(beam)[0]], (0.0,) * 3)

    def stretched(self, angle):
        """A sheet under uniform tension in two directions and shear. Every second square has a
        material whose x' is turned by the angle. Supports are at one corner and along one line."""
        n, forces = 4, (300.0, 100.0, 50.0)
        nodes, triangles = grid_mesh(n, n, 2.0, 2.0, lambda i, j: 1 + (i + j) % 2)
        at = {place[:2]: i + 1 for i, place in enumerate(nodes)}
        loads = {}
        for k in range(n):
            for fixed in (0.0, 2.0):
                sign = 1.0 if fixed else -1.0
                for start, along_x in (((fixed, 0.5 * k), False), ((0.5 * k, fixed), True)):
                    end = (start[0] + 0.5, fixed) if along_x else (fixed, start[1] + 0.5)
                    line = (forces[2], forces[1]) if along_x else (forces[0], forces[2])
                    for node in (at[start], at[end]):
                        sums = loads.setdefault(node, [0.0, 0.0])
                        for c in (0, 1):
                            sums[c] += sign * line[c] * 0.25
        supports = [(i + 1, "001110", *[0] * 6) for i in range(len(nodes))]
        supports[0] = (1, "111110", *[0] * 6)
        supports[n] = (n + 1, "011110", *[0] * 6)
        section = "E=1000 nu=0.25 G=400 t=0.1"
        model = shell_model(
            nodes, triangles, f"1 {section}\n2 {section} Euler1={-angle} Euler2=0 Euler3=0\n", supports,
            "nodal_point_loads\n" + "".join(f"{i} {x} {y} 0 0 0 0\n" for i, (x, y) in loads.items()) + "end\n",
            "")
        return self.grid_of(model), len(nodes), forces

    def test_averages_are_in_one_frame(self):
        """Uniform forces are the same along all axes of a frame, whatever the frames of neighbours."""
        grid, nodes, forces = self.stretched(math.radians(10))
        # Neighbours share their points, and the values are those along x' of one of the two materials.
        self.assertEqual(grid.grid.GetNumberOfPoints(), nodes)
        allowed = [self.along(forces, angle) for angle in (0.0, math.radians(10))]
        self.assertGreater(abs(allowed[1][0] - allowed[0][0]), 10.0)
        for row in grid.points["Membrane force"]:
            # Results have six digits.
            self.assertLess(min(max(abs(a - b) for a, b in zip(row, one)) for one in allowed), 2e-3, row)

    def test_axes_that_differ_more_have_separate_points(self):
        grid, nodes, forces = self.stretched(math.radians(20))
        self.assertGreater(grid.grid.GetNumberOfPoints(), nodes)
        for cell in range(grid.grid.GetNumberOfCells()):
            expected = self.along(forces, math.radians(20) if grid.cells["Material"][cell] == (2.0,) else 0.0)
            for point in grid.points_of(cell):
                for a, b in zip(grid.points["Membrane force"][point], expected):
                    self.assertAlmostEqual(a, b, delta=2e-3)

    @staticmethod
    def along(forces, angle):
        """Components along axes turned by an angle (Mohr's circle)."""
        x, y, xy = forces
        c, s = math.cos(2 * angle), math.sin(2 * angle)
        mean, half = (x + y) / 2, (x - y) / 2
        return mean + half * c + xy * s, mean - half * c - xy * s, xy * c - half * s

    def require_balance(self, grid, loads):
        """loads: pairs of an array of cells and a function that gives the size it acts on."""
        for axis in range(3):
            parts = [row[axis] for name in ("Nodal force", "Reaction force") for row in grid.points.get(name, [])]
            for name, size in loads.items():
                parts += [row[axis] * size(cell) for cell, row in enumerate(grid.cells[name])
                          if not math.isnan(row[axis])]
            self.assertGreater(len([part for part in parts if part]), 1)
            # Reactions have six digits.
            self.assertAlmostEqual(sum(parts), 0.0, delta=1e-5 * sum(abs(part) for part in parts))

    @staticmethod
    def edge(grid, cell, first):
        ids = grid.points_of(cell)
        return math.dist(grid.place(ids[first]), grid.place(ids[(first + 1) % 3]))

    def test_loads_and_reactions_are_in_balance(self):
        grid = self.grid_of(FRAME_WITH_SLAB)
        self.require_balance(grid, {"Line load": grid.size, "Surface load": grid.size,
                                    "Edge load, edge 2": lambda cell: self.edge(grid, cell, 1)})
        element = [int(row[0]) for row in grid.cells["Element"]]
        self.assertEqual(grid.cells["Line torque"][element.index(11)], (0.25,))
        self.assertAlmostEqual(grid.cells["Free strain"][element.index(13)][0], 1.2e-5 * 30)
        self.assertEqual([grid.units[name] for name in ("Line load", "Surface load", "Edge load, edge 2", "Nodal force",
                                                        "Nodal moment", "Line torque", "Free strain")],
                         ["kN/m", "kN/m2", "kN/m", "kN", "kN*m", "kN*m/m", ""])
        node = [int(row[0]) for row in grid.points["Node"]]
        self.assertEqual(grid.points["Nodal force"][node.index(2)], (2.0, 2.0, -3.0))
        self.assertEqual(grid.points["Nodal moment"][node.index(2)], (0.5, 0.0, 0.0))

    def test_loads_on_solids_are_in_balance(self):
        grid = self.grid_of(SOLID)

        def face_area(first):
            def area(cell):
                ids = grid.points_of(cell)
                a, b, c = (grid.place(ids[(first + k) % 4]) for k in range(3))
                return math.hypot(*cross([y - x for x, y in zip(a, b)], [y - x for x, y in zip(a, c)])) / 2
            return area

        self.require_balance(grid, {"Volume load": grid.size}
                             | {f"Face load, face {face + 1}": face_area(face) for face in range(4)})
        self.assertEqual(self.table("element_loads")[0][3:6],
                         [f"value{k} [force/length2 or force/length3]" for k in (1, 2, 3)])

    def test_what_does_not_exist_is_not_a_number(self):
        grid = self.grid_of(FRAME_WITH_SLAB)
        element = [int(row[0]) for row in grid.cells["Element"]]
        shells = [element.index(21), element.index(22)]
        beams = [element.index(number) for number in (11, 12, 13)]
        vertex = len(element) - 1
        nodes_of_shells = {point for cell in shells for point in grid.points_of(cell)}
        points_of_beams = {point for cell in beams for point in grid.points_of(cell)}
        for name in ("Membrane force", "Moment", "Shear force"):
            self.nan_outside(grid.points[name], nodes_of_shells)
            self.nan_outside(grid.cells[f"Mean {name.lower()}"], set(shells))
        for name in ("N", "Vy", "Vz", "T", "My", "Mz"):
            self.nan_outside(grid.points[name], points_of_beams)
        for name in ("A", "Iy", "Iz", "J"):
            self.nan_outside(grid.cells[f"Material {name}"], set(beams))
        for name in ("t", "Ey", "nuXY"):
            self.nan_outside(grid.cells[f"Material {name}"], set(shells))
        self.nan_outside(grid.cells["Material Ex"], set(beams + shells))
        for name in ("Principal membrane force at nodes", "Principal moment at nodes"):
            self.nan_outside(grid.points[name], nodes_of_shells)
        for name in ("Displacement", "Reaction force", "Nodal force", "Direction of M1", "Shear force vector"):
            self.nan_outside(grid.points[name], set(range(grid.grid.GetNumberOfPoints())))
        for name in ("Surface load", "Edge load, edge 2"):
            self.nan_outside(grid.cells[name], set(shells))
        for name in ("Line load", "Line torque", "Free strain"):
            self.nan_outside(grid.cells[name], set(beams))
        self.assertEqual(grid.cells["Local x"][vertex], (0.0,) * 3)

    def nan_outside(self, rows, inside):
        for i, row in enumerate(rows):
            self.assertEqual([math.isnan(value) for value in row], [i not in inside] * len(row))

    def test_supports_have_flags_axes_and_values(self):
        grid = self.grid_of(FRAME_WITH_SLAB)
        node = [int(row[0]) for row in grid.points["Node"]]
        of = lambda name, number: grid.points[name][node.index(number)]
        self.assertEqual(of("Support", 4), (1, 1, 1, 2, 2, 2))
        self.assertEqual(of("Support", 2), (0,) * 6)
        self.assertEqual(of("Rotational spring stiffness", 4), (70.0, 80.0, 90.0))
        self.assertEqual(of("Prescribed displacement", 5), (0.0, 0.0, -0.001))
        self.assertEqual(of("Prescribed rotation", 5), (0.0, 0.0, 0.002))
        self.assertTrue(all(math.isnan(x) for x in of("Prescribed rotation", 1) + of("Prescribed displacement", 2)))
        self.assertEqual([grid.units[name] for name in ("Prescribed displacement", "Prescribed rotation",
                                                        "Rotational spring stiffness")], ["m", "rad", "kN*m/rad"])
        self.assertEqual(self.table("supports")[0][7:13], [f"value{k} [m or kN/m]" for k in (1, 2, 3)]
                         + [f"value{k} [rad or kN*m/rad]" for k in (4, 5, 6)])

    def test_the_reaction_of_a_roller_is_along_its_normal(self):
        grid = self.grid_of("""problem type: 2d
mesh dimension = 2 elemtype Linear nnode = 2
coordinates
1 0 0
2 4 0
end
elements
1 1 2 1
end
materials
1 E=1000 A=1 Iz=1
end
constraints
1 110 0 0 0
2 010 0 0 0 Euler1=-0.5235988
end
nodal_point_loads
2 3 -5 0
end
""")
        x, y = grid.points["Support x"][1], grid.points["Support y"][1]
        self.assertAlmostEqual(x[0], math.cos(math.pi / 6), places=6)
        self.assertAlmostEqual(x[1], 0.5, places=6)
        reaction = grid.points["Reaction force"][1]
        self.assertAlmostEqual(sum(a * b for a, b in zip(x, reaction)), 0.0, delta=1e-4)
        self.assertGreater(sum(a * b for a, b in zip(y, reaction)), 1.0)

    def test_files_of_load_cases_have_no_loads(self):
        """The loads of the model file are not those of a case."""
        if not CASES:
            self.skipTest("morlen-cases is not built")
        (self.folder / "m.dat").write_text(FRAME_WITH_SLAB)
        (self.folder / "m.cases").write_text(
            'model = "m.dat"\n[cases.G]\ntext = "nodal_point_loads\\n2 0 0 1 0 0 0\\nend"\n')
        self.run_program(*CASES, "m.cases", "--formats", "vtu", "--write", "G")
        grid = Grid(self.folder / "m.results" / "G.vtu")
        self.assertIn("Support", grid.points)
        self.assertIn("Moment", grid.points)
        for name in ("Nodal force", "Prescribed displacement"):
            self.assertNotIn(name, grid.points)
        self.assertFalse({"Line load", "Surface load"} & set(grid.cells))

    def test_meshio_reads_the_same(self):
        try:
            import meshio
        except ImportError:
            self.skipTest("meshio is missing")
        grid = self.grid_of(FRAME_WITH_SLAB)
        mesh = meshio.read(self.folder / "m.vtu")
        for name, rows in grid.points.items():
            full = f"{name} [{grid.units[name]}]" if grid.units[name] else name
            found = mesh.point_data[full].reshape(len(rows), -1)
            for a, b in zip(found, rows):
                self.assertTrue(all(x == y or (x != x and y != y) for x, y in zip(a, b)), name)


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1])
