#!/usr/bin/env python3
"""Checks the refusals of morlen-export, its exit status, its outputs and the files that remain;
and the standard output of morlen-report.

    check_refusals.py MORLEN MORLEN_EXPORT MORLEN_REPORT
"""

import csv
import json
import os
import pathlib
import subprocess
import sys
import tempfile
import time
import unittest
import xml.etree.ElementTree

MORLEN, EXPORT, REPORT = (str(pathlib.Path(name).resolve()) for name in sys.argv[1:4])

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
        self.refuse("can't open file no/a.json\nhint: No such file or directory\n", "m.dat", "--json", "no/a.json")
        (self.folder / "other.dat").write_text("# a model\nproblem type: 2d\n")
        self.refuse("error: other.dat is a problem file and would be written over\n", "m.dat", "--json", "other.dat")
        self.refuse("can't make folder m.dat", "m.dat", "--csv", "m.dat")
        for names in (("-", "/dev/stdout"), ("a", "a")):
            self.refuse("error: two outputs are written to ", "m.dat", "--vtu", names[0], "--json", names[1])
        for name in ("-", "/dev/stdout", "/dev/fd/1"):
            self.refuse(f"error: {name} is the standard output, and a folder is needed\n", "m.dat", "--csv", name)

    def written(self, *arguments):
        """The content of a file that is written by these arguments, without the line on it."""
        run = self.export("m.dat", *arguments)
        self.assertEqual((run.returncode, run.stderr), (0, ""))
        return (self.folder / arguments[-1]).read_text()

    def test_standard_output_has_nothing_but_the_data(self):
        self.solve()
        for option in ("--json", "--vtu"):
            expected = self.written(option, "file")
            for name in ("-", "/dev/stdout", "/dev/fd/1", "/proc/self/fd/1"):
                run = self.export("m.dat", option, name)
                self.assertEqual((run.returncode, run.stderr, run.stdout), (0, "", expected), name)
        run = self.export("m.dat", "--vtu", "other", "--csv", "tables", "--json", "-")
        self.assertEqual((run.returncode, run.stdout), (0, self.written("--json", "file")))
        self.assertEqual(run.stderr.splitlines()[0], "wrote other")
        self.assertEqual(len(run.stderr.splitlines()), 1 + len(list((self.folder / "tables").iterdir())))
        self.assertFalse((self.folder / "-").exists())
        self.written("--json", "./-")

    def test_standard_output_is_appended_to_a_file(self):
        self.solve()
        expected = self.written("--json", "file")
        for name in ("-", "/dev/stdout"):
            (self.folder / "log").write_text("before\n")
            with open(self.folder / "log", "a") as log:
                subprocess.run([EXPORT, "m.dat", "--json", name], stdout=log, check=True, cwd=self.folder)
            self.assertEqual((self.folder / "log").read_text(), "before\n" + expected)

    def test_pipes_and_devices_are_written(self):
        self.solve()
        expected = self.written("--json", "file")
        run = subprocess.run(["bash", "-c", f"'{EXPORT}' m.dat --json >(cat >copy) && wait $!"], cwd=self.folder,
                             capture_output=True, text=True, check=True)
        self.assertRegex(run.stdout, "^wrote /dev/fd/[0-9]+\n$")
        self.wait_for("copy", expected)
        os.mkfifo(self.folder / "fifo")
        reader = subprocess.Popen(["cat", "fifo"], stdout=subprocess.PIPE, text=True, cwd=self.folder)
        run = self.export("m.dat", "--json", "fifo")
        self.assertEqual((run.returncode, run.stdout, run.stderr), (0, "wrote fifo\n", ""))
        self.assertEqual(reader.communicate(timeout=30)[0], expected)
        self.assertEqual(self.export("m.dat", "--json", "/dev/null").returncode, 0)

    def wait_for(self, name, text):
        end = time.monotonic() + 30
        while (self.folder / name).read_text() != text and time.monotonic() < end:
            time.sleep(0.05)
        self.assertEqual((self.folder / name).read_text(), text)

    def test_a_full_standard_output_ends_with_status_2(self):
        self.solve()
        message = "error: can't write to standard output\nhint: No space left on device\n"
        for arguments in (["m.dat", "--json", "a"], ["m.dat", "--csv", "b"], ["m.dat", "--json", "-"], ["--help"]):
            with open("/dev/full", "w") as full:
                run = subprocess.run([EXPORT, *arguments], stdout=full, stderr=subprocess.PIPE, text=True,
                                     cwd=self.folder, check=False)
            self.assertEqual((run.returncode, run.stderr), (2, message), arguments)
        self.assertTrue((self.folder / "a").exists())

    def test_the_report_on_standard_output(self):
        self.solve()
        run = subprocess.run([REPORT, "m.dat", "-o", "-"], capture_output=True, text=True, cwd=self.folder, check=True)
        self.assertTrue(run.stdout.startswith("<!doctype html>"), run.stdout[:80])
        self.assertTrue(run.stdout.rstrip().endswith("</html>"))
        self.assertRegex(run.stderr, "^residual of equilibrium: \\S+\n$")
        self.assertFalse((self.folder / "-").exists())

    def test_stale_tables_are_removed(self):
        self.solve()
        (self.folder / "csv").mkdir()
        for name in ("shell_forces.csv", "stresses.csv", "element_loads.csv", "own.csv", "other.nodes.csv"):
            (self.folder / "csv" / name).write_text("of an earlier run\n")
        run = self.export("m.dat", "--csv", "csv")
        self.assertEqual(run.returncode, 0, run.stderr)
        self.assertEqual({line for line in run.stdout.splitlines() if line.startswith("removed")},
                         {f"removed csv/{name}.csv, which is of an earlier run"
                          for name in ("shell_forces", "stresses", "element_loads")})
        found = {path.name for path in (self.folder / "csv").iterdir()}
        self.assertTrue({"own.csv", "other.nodes.csv", "nodes.csv"} <= found)
        self.assertFalse({"shell_forces.csv", "stresses.csv", "element_loads.csv"} & found)

    def test_reactions_of_rotations_that_the_program_holds(self):
        """Both beams are hinged at node 2: it holds the rotation there, and takes the moment."""
        self.model.write_text("""problem type: 2d
mesh dimension = 2 elemtype Linear nnode = 2
coordinates
1 0 0
2 1 0
3 2 0
end
elements
1 1 2 1
2 2 3 1
end
materials
1 E=1e6 A=0.1 Iz=0.01
end
constraints
1 111 0 0 0
3 111 0 0 0
end
rotules
1 10
2 01
end
nodal_point_loads
2 0 -3 7
end
""")
        subprocess.run([MORLEN, self.model, self.model.with_suffix(".txt")], check=True)
        self.assertEqual(self.export("m.dat", "--csv", "csv").returncode, 0)
        with open(self.folder / "csv" / "reactions.csv", newline="") as file:
            rows = [[float(x) for x in row] for row in list(csv.reader(file))[1:]]
        self.assertEqual([row[0] for row in rows], [1, 2, 3])
        self.assertEqual(rows[1], [2, 0, 0, -7])

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
