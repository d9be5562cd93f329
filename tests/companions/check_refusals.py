#!/usr/bin/env python3
"""Checks the refusals of morlen-export, its exit status and the files that remain.

    check_refusals.py MORLEN MORLEN_EXPORT
"""

import csv
import json
import os
import pathlib
import subprocess
import sys
import tempfile
import unittest
import xml.etree.ElementTree

MORLEN, EXPORT = sys.argv[1:3]

CANTILEVER = """problem type: 2d
units_names
S k"N,<&> m Pa 1000 1
end units_names
units_mesh m
units_mat_and_load S
units_res S
NumOfDivisions 4
mesh dimension = 2 elemtype Linear nnode = 2
coordinates
1 0 0
2 2 0
end coordinates
elements
{element} 1
end elements
materials
1 E=1e6 A=0.1 Iz=0.01
end materials
constraints
1 111 0 0 0
end constraints
nodal_point_loads
2 {load} -3 0
end nodal_point_loads
"""


class Refusals(unittest.TestCase):
    def setUp(self):
        self.temporary = tempfile.TemporaryDirectory()
        self.addCleanup(self.temporary.cleanup)
        self.folder = pathlib.Path(self.temporary.name)
        self.model = self.folder / "m.dat"

    def solve(self, name="m", **values):
        model = self.folder / (name + ".dat")
        model.write_text(CANTILEVER.format(**({"element": "7 1 2", "load": 5} | values)))
        subprocess.run([MORLEN, model, model.with_suffix(".txt")], check=True)

    def export(self, *arguments):
        return subprocess.run([EXPORT, *arguments], capture_output=True, text=True, cwd=self.folder)

    def refuse(self, message, *arguments):
        before = sorted(self.folder.rglob("*"))
        run = self.export(*arguments)
        self.assertIn(message, run.stderr)
        self.assertEqual((run.returncode, run.stdout), (2, ""))
        self.assertEqual(sorted(self.folder.rglob("*")), before)

    def test_help_and_version_on_standard_output(self):
        for option, beginning in (("--help", "Writes the results"), ("--version", "morlen-export ")):
            run = self.export(option)
            self.assertEqual((run.returncode, run.stderr), (0, ""))
            self.assertTrue(run.stdout.startswith(beginning), run.stdout)

    def test_wrong_command_lines(self):
        self.solve()
        self.refuse("model is required")
        self.refuse("--xml", "m.dat", "--xml", "a")
        self.refuse("nothing to write", "m.dat")
        self.refuse("can't open file none.dat", "none.dat", "--json", "a.json")

    def test_missing_results(self):
        self.solve()
        os.remove(self.folder / "m.morlen.res")
        self.refuse("The results are missing: run morlen m.dat first", "m.dat", "--json", "a.json")

    def test_older_results(self):
        self.solve()
        time = os.stat(self.model).st_mtime
        os.utime(self.folder / "m.morlen.res", (time - 5, time - 5))
        self.refuse("error: m.morlen.res is older than m.dat", "m.dat", "--json", "a.json")
        run = self.export("m.dat", "--json", "a.json", "--any-time")
        self.assertEqual((run.returncode, run.stdout), (0, "wrote a.json\n"))

    def test_results_of_other_models(self):
        self.solve("other", element="8 1 2")
        self.solve("turned", element="7 2 1")
        self.solve()
        for arguments, message in (
                (["--text", "other.txt"], "other.txt:9: error: the model has no such element"),
                (["--results", "other.morlen.res"],
                 "other.morlen.res:10: error: the model has no such element"),
                (["--text", "turned.txt"], "error: element 7 has other nodes in the model")):
            self.refuse(message, "m.dat", "--any-time", "--vtu", "a.vtu", *arguments)

    def test_files_of_different_runs(self):
        self.solve("other", load=6)
        self.solve()
        self.refuse("they are of different runs",
                    "m.dat", "--text", "other.txt", "--any-time", "--vtu", "a.vtu")

    def test_damaged_results(self):
        self.solve()
        results = self.folder / "m.morlen.res"
        whole = results.read_text()
        for position in [*range(0, len(whole), 37), len(whole) - 1]:
            results.write_text(whole[:position])
            run = self.export("m.dat", "--json", "a.json")
            self.assertEqual((run.returncode, run.stdout), (2, ""), whole[:position])
            self.assertIn("m.morlen.res:", run.stderr)

    def test_a_text_file_that_is_something_else_is_left_alone(self):
        self.solve()
        (self.folder / "m.txt").write_text("Notes\n")
        self.assertEqual(self.export("m.dat", "--csv", "out").returncode, 0)
        with open(self.folder / "out" / "displacements.csv", newline="") as file:
            self.assertEqual(next(csv.reader(file)), ["node", "ux [m]", "uy [m]"])
        self.refuse("m.txt:1: error: these are no text results", "m.dat", "--text", "m.txt", "--json", "b")

    def test_what_is_read_or_no_file_is_not_written(self):
        self.solve()
        for name in ("m.dat", "m.txt", "./m.morlen.res"):
            self.refuse("is read and can't be written", "m.dat", "--json", name)
        (self.folder / "taken").mkdir()
        self.refuse("can't write file taken: it is no regular file", "m.dat", "--json", "taken")
        self.refuse("it is no regular file", "m.dat", "--vtu", "/dev/null")
        self.refuse("can't open file no/a.json\nhint: No such file or directory\n", "m.dat", "--json", "no/a.json")
        (self.folder / "other.dat").write_text("# a model\nproblem type: 2d\n")
        self.refuse("error: other.dat is a problem file and would be written over\n", "m.dat", "--json", "other.dat")
        self.refuse("can't make folder m.dat", "m.dat", "--csv", "m.dat")

    def test_names_of_units_are_quoted_in_every_format(self):
        self.solve()
        run = self.export("m.dat", "--vtu", "a.vtu", "--csv", "csv", "--json", "a.json")
        self.assertEqual(run.returncode, 0, run.stderr)
        force = 'k"N,<&>'
        with open(self.folder / "csv" / "reactions.csv", newline="") as file:
            rows = list(csv.reader(file))
        self.assertEqual(rows[0], ["node", f"Px [{force}]", f"Py [{force}]", f"M [{force}*m]"])
        self.assertEqual([float(x) for x in rows[1]], [1, -5, 3, 6])
        data = json.loads((self.folder / "a.json").read_text())
        self.assertEqual(data["units"], {"force": force, "length": "m", "pressure": "Pa", "angle": "rad"})
        arrays = xml.etree.ElementTree.parse(self.folder / "a.vtu").iter("DataArray")
        self.assertIn(f"N [{force}]", [array.get("Name") for array in arrays])

    def test_names_in_other_encodings_leave_files_that_can_be_read(self):
        self.solve()
        results = {name: (self.folder / name).read_bytes() for name in ("m.txt", "m.morlen.res")}
        self.model.write_bytes(self.model.read_bytes().replace(b" Pa ", b" N/m\xb2 "))
        for name, content in results.items():
            (self.folder / name).write_bytes(content)
        run = self.export("m.dat", "--vtu", "a.vtu", "--csv", "csv", "--json", "a.json")
        self.assertEqual(run.returncode, 0, run.stderr)
        self.assertEqual(json.loads((self.folder / "a.json").read_text())["units"]["pressure"], "N/m?")
        xml.etree.ElementTree.parse(self.folder / "a.vtu")
        self.assertIn("Ex [N/m?]", (self.folder / "csv" / "materials.csv").read_text(encoding="utf-8"))

    def test_results_by_the_formulas_of_a_cantilever(self):
        self.solve()
        self.export("m.dat", "--csv", "csv")
        with open(self.folder / "csv" / "displacements.csv", newline="") as file:
            tip = [float(x) for x in list(csv.reader(file))[2]]
        ei = 1e6 * 0.01
        expected = [2, 5 * 2 / (1e6 * 0.1), -3 * 2**3 / (3 * ei), -3 * 2**2 / (2 * ei)]
        for found, value in zip(tip, expected):
            self.assertAlmostEqual(found, value, delta=1e-5 * abs(value))
        with open(self.folder / "csv" / "beam_diagrams.csv", newline="") as file:
            rows = [[float(x) for x in row] for row in list(csv.reader(file))[1:]]
        for i, row in enumerate(rows):
            x = 0.5 * i
            for found, value in zip(row[2:4] + row[6:], [x, 0.0, 5.0, 3.0, -3.0 * (2.0 - x)]):
                self.assertAlmostEqual(found, value, delta=1e-5)


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1])
