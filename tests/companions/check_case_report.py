#!/usr/bin/env python3
"""Checks the pages of load cases without a browser: sizes, output and refusals.

    check_case_report.py MORLEN_REPORT EXAMPLES GENERATOR

GENERATOR is bench/generate_models.py.
"""

import base64
import json
import os
import pathlib
import re
import shutil
import struct
import subprocess
import sys
import tempfile
import unittest

REPORT, EXAMPLES, GENERATOR = (str(pathlib.Path(name).resolve()) for name in sys.argv[1:4])


def data_of(page):
    return json.loads(re.search(r'id="data">(.*?)</script>', page.read_text(), re.S).group(1))


def unpacked(column):
    code = {"i4": "i", "f4": "f", "f8": "d"}[column["type"]]
    data = base64.b64decode(column["data"])
    return struct.unpack(f"<{len(data) // struct.calcsize(code)}{code}", data)


class CaseReport(unittest.TestCase):
    def setUp(self):
        temporary = tempfile.TemporaryDirectory()
        self.addCleanup(temporary.cleanup)
        self.folder = pathlib.Path(temporary.name)
        for name in ("hall.cases", "hall_frame.dat"):
            shutil.copy(pathlib.Path(EXAMPLES) / name, self.folder)

    def report(self, *arguments):
        return subprocess.run([REPORT, *arguments], capture_output=True, text=True, cwd=self.folder)

    def refuse(self, message, *arguments):
        before = {file: file.read_bytes() for file in self.folder.iterdir()}
        run = self.report(*arguments)
        self.assertEqual((run.returncode, run.stdout), (2, ""))
        self.assertIn(message, run.stderr)
        self.assertEqual({file: file.read_bytes() for file in self.folder.iterdir()}, before)

    def test_output(self):
        run = self.report("hall.cases")
        self.assertEqual((run.returncode, run.stderr), (0, ""))
        self.assertRegex(run.stdout, r"^wrote hall.html\nresidual of equilibrium: \S+, the largest of all cases, of '\w+'\n$")
        run = self.report("hall.cases", "-o", "other.html")
        self.assertEqual((run.returncode, (self.folder / "hall.html").read_bytes()),
                         (0, (self.folder / "other.html").read_bytes()))
        data = data_of(self.folder / "hall.html")
        self.assertNotIn("loads", data)
        self.assertEqual([one["name"] for one in data["study"]["cases"]],
                         ["G", "Q", "S", "WL", "WR", "I", "C", "file"])
        self.assertTrue(all(one["equilibrium"]["balanced"] for one in data["study"]["cases"]))

    def test_refusals(self):
        self.refuse("can't read file none.cases", "none.cases")
        for option in (["--any-time"], ["--text", "hall_frame.dat"], ["--results", "hall_frame.dat"]):
            self.refuse("are for problem files: load cases are solved", "hall.cases", *option)
        for name in ("hall.cases", "hall_frame.dat", "./hall.cases"):
            self.refuse("is read and can't be written", "hall.cases", "-o", name)
        self.refuse("can't open file no/r.html", "hall.cases", "-o", "no/r.html")
        shutil.copy(self.folder / "hall_frame.dat", self.folder / "wrong.cases")
        self.refuse("is a problem file, not a file of load cases", "wrong.cases")
        text = (self.folder / "hall.cases").read_text()
        (self.folder / "bad.cases").write_text(text.replace("gravity = true", "gravty = true"))
        self.refuse("did you mean 'gravity'?", "bad.cases")
        (self.folder / "empty.cases").write_text("")
        self.refuse("empty.cases", "empty.cases")

    def test_errors_of_the_files_are_in_the_page(self):
        text = (self.folder / "hall_frame.dat").read_text()
        self.assertIn("E = 2.1e8", text)
        (self.folder / "hall_frame.dat").write_text(text.replace("E = 2.1e8", "E = 2,1e8", 1))
        run = self.report("hall.cases")
        self.assertIn("errors in the problem file", run.stderr)
        check = data_of(self.folder / "hall.html")["check"]
        self.assertTrue(any(one["error"] and "2,1e8" in one["text"] for one in check), check)

    def test_values_along_beams_are_few(self):
        """A uniform load makes moments of the second and deflections of the fourth degree."""
        self.report("hall.cases")
        tables = {table["name"]: table for table in data_of(self.folder / "hall.html")["study"]["tables"]}
        diagrams = tables["beam_diagrams"]
        beams = diagrams["rows"] // 21
        columns = {column["name"]: column for column in diagrams["columns"]}
        for name, most in (("N", 2), ("Vy", 2), ("Mz", 3), ("ux", 5), ("uy", 5)):
            for case in columns[name]["cases"]:
                self.assertLessEqual(case["points"], most, name)
                self.assertEqual(len(unpacked(case)), beams * case["points"])

    def test_a_frame_of_1000_members_stays_below_20_mb(self):
        model = subprocess.run([sys.executable, GENERATOR, "--setting", "NumOfDivisions 40",
                                "frame3d", "5", "5", "11"], stdout=subprocess.PIPE, text=True, check=True).stdout
        self.assertGreaterEqual(len(re.search(r"\nelements\n(.*?)\nend elements", model, re.S).group(1).splitlines()), 1000)
        (self.folder / "frame.dat").write_text(model)
        nodes = len(re.search(r"\ncoordinates\n(.*?)\nend coordinates", model, re.S).group(1).splitlines())
        lines = ['model = "frame.dat"']
        for case in range(10):
            loads = "\n".join(f"{1 + (37 * k + case) % nodes} {k} {case} -{k + 1} 0 0 0" for k in range(50))
            lines.append(f"[cases.C{case}]\ngravity = {'true' if case < 2 else 'false'}\ntext = '''\n"
                         f"nodal_point_loads\n{loads}\nend nodal_point_loads\n'''")
        lines.append("[combinations]")
        for number in range(200):
            factors = ", ".join(f"C{case} = {1 + 0.01 * number + 0.1 * case:.2f}" for case in range(10))
            lines.append(f"K{number} = {{ {factors} }}")
        lines.append('[envelopes]\nall = ["K*"]')
        (self.folder / "frame.cases").write_text("\n".join(lines) + "\n")
        run = self.report("frame.cases")
        self.assertEqual(run.returncode, 0, run.stderr)
        size = os.path.getsize(self.folder / "frame.html")
        print(f"page of ten cases and 200 combinations: {size / 1e6:.1f} MB", file=sys.stderr)
        self.assertLess(size, 20e6)


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1], verbosity=2)
