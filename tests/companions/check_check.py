#!/usr/bin/env python3
"""Checks morlen-check as an executable: its streams, its exit status, and that it agrees with the program.

    check_check.py MORLEN MORLEN_CHECK EXAMPLES
"""

import json
import pathlib
import re
import subprocess
import sys
import tempfile
import unittest

MORLEN, CHECK, EXAMPLES = sys.argv[1:4]


def beam_with_a_loose_end(beams):
    """A continuous beam, three equations for each node, whose last beam hangs from node 1 by a hinge."""
    nodes = "".join(f"{k} {k} 0\n" for k in range(1, beams + 1)) + f"{beams + 1} 1 -1\n"
    elements = "".join(f"{k} {k} {k + 1} 1\n" for k in range(1, beams)) + f"{beams} 1 {beams + 1} 1\n"
    supports = "".join(f"{k} 110 0 0 0\n" for k in range(1, beams + 1))
    return (f"problem type: 2d\nmesh dimension = 2 elemtype Linear nnode = 2\ncoordinates\n{nodes}end coordinates\n"
            f"elements\n{elements}end elements\nmaterials\n1 E = 2e8 A = 0.01 Iz = 1e-4\nend materials\n"
            f"constraints\n{supports}end constraints\nelem_rotules\n{beams} 01\nend elem_rotules\n"
            "nodal_point_loads\n2 0 0 1\nend nodal_point_loads\n")


class Check(unittest.TestCase):
    def setUp(self):
        self.temporary = tempfile.TemporaryDirectory()
        self.addCleanup(self.temporary.cleanup)
        self.folder = pathlib.Path(self.temporary.name)
        self.portal = (pathlib.Path(EXAMPLES) / "portal_frame.dat").read_text()

    def check(self, *arguments, stdin=None):
        return subprocess.run([CHECK, *arguments], capture_output=True, text=True, cwd=self.folder, input=stdin)

    def check_text(self, text, *options):
        (self.folder / "m.dat").write_text(text)
        return self.check("m.dat", *options)

    def test_help_and_version(self):
        for option, beginning in (("--help", "Reports every problem"), ("--version", "morlen-check ")):
            run = self.check(option)
            self.assertEqual((run.returncode, run.stderr), (0, ""))
            self.assertTrue(run.stdout.startswith(beginning), run.stdout)

    def test_examples_have_no_errors(self):
        examples = sorted(pathlib.Path(EXAMPLES).glob("*.dat"))
        self.assertTrue(examples)
        for example in examples:
            run = self.check(example)
            self.assertEqual((run.returncode, run.stderr), (0, ""), example)
            self.assertTrue(run.stdout.endswith("0 errors, 0 warnings\n"))

    def test_warnings_leave_the_status(self):
        run = self.check_text(self.portal.replace("20    0   0", "20    0   0  note=1"))
        self.assertEqual((run.returncode, run.stderr),
                         (0, "m.dat:49:20: warning: ignored: the key 'note'\n"))
        self.assertTrue(run.stdout.endswith("0 errors, 1 warning\n"))

    def test_errors_are_those_of_the_program(self):
        for old, new in (("1   111   0 0 0", "1   100   0 0 0"), ("1   2   1", "1   9   1"),
                         ("constraints\n#", "constrants\n#"), ("A = 78.08e-4", ""),
                         ("problem type: 2d", "problem type: 5d")):
            text = self.portal.replace(old, new, 1).replace("6   111", "6   010")
            run = self.check_text(text)
            self.assertEqual(run.returncode, 1, old)
            self.assertNotIn("nodes:", run.stdout)
            self.assertRegex(run.stderr, r"^m\.dat:\d+:\d+: error: ")
            self.assertEqual(subprocess.run([MORLEN, "m.dat"], cwd=self.folder,
                                            capture_output=True).returncode, 2, old)

    def test_quick(self):
        """Motions inside parts are left to morlen in models of 15,000 equations and more, and only they."""
        for beams in (3, 4998, 4999):
            (self.folder / "loose.dat").write_text(beam_with_a_loose_end(beams))
            full, quick = self.check("loose.dat"), self.check("--quick", "loose.dat")
            found = f"error: node {beams + 1} can turn about z through node 1: the hinges of beam {beams} allow it"
            self.assertEqual(full.returncode, 1)
            self.assertIn(found, full.stderr)
            if 3 * (beams + 1) < 15000:
                self.assertEqual((quick.returncode, quick.stdout, quick.stderr), (1, full.stdout, full.stderr))
                continue
            self.assertEqual((quick.returncode, quick.stderr), (0, ""))
            self.assertTrue(quick.stdout.endswith(
                "mechanisms: not tested: they are left to the analysis\n0 errors, 0 warnings\n"), quick.stdout)
            report = json.loads(self.check("--quick", "--json", "loose.dat").stdout)
            self.assertEqual(report["summary"]["mechanismsNotTested"], "they are left to the analysis")
            run = subprocess.run([MORLEN, "loose.dat"], cwd=self.folder, capture_output=True, text=True)
            self.assertEqual(run.returncode, 2)
            self.assertIn(found.removeprefix("error: "), run.stderr)
            # Everything else is checked as always: supports that let the model move, lost data.
            text = beam_with_a_loose_end(beams).replace(" 110 0 0 0", " 010 0 0 0")
            run = self.check_text(text, "--quick")
            self.assertEqual(run.returncode, 1)
            self.assertIn("the supports let the model move along X", run.stderr)

    def test_json(self):
        run = self.check_text(self.portal.replace("A = 78.08e-4", ""), "--json")
        self.assertEqual((run.returncode, run.stderr), (1, ""))
        report = json.loads(run.stdout)
        self.assertEqual(report["problems"],
                         [{"severity": "error", "line": 36, "column": 3,
                           "message": "section parameter A is 0 for element 1",
                           "code": "section-incomplete",
                           "hint": "of the section and the material only these are above 0: E, Iz"}])
        self.assertIsNone(report["summary"])
        report = json.loads(self.check_text(self.portal, "--json").stdout)
        self.assertEqual((report["errors"], report["summary"]["load"]), (0, [20, -120, 0]))

    def test_a_file_that_cannot_be_read(self):
        for name, kind in (("none.dat", ""), (".", ": it is a folder")):
            for options in ((), ("--json",)):
                run = self.check(name, *options)
                self.assertEqual((run.returncode, run.stdout, run.stderr),
                                 (2, "", f"can't read file {name}{kind}\n"))
        self.assertEqual(self.check().returncode, 2)

    def test_several_files(self):
        (self.folder / "good.dat").write_text(self.portal)
        (self.folder / "note.dat").write_text(self.portal.replace("20    0   0", "20    0   0  note=1"))
        (self.folder / "comma.dat").write_text(self.portal.replace("78.08e-4", "78,08e-4"))
        run = self.check("good.dat", "comma.dat", "note.dat")
        self.assertEqual(run.returncode, 1)
        comma, note = run.stderr.splitlines()
        self.assertRegex(comma, r"^comma\.dat:36:\d+: error: data lost: '78,08e-4' .* mean 78\.08e-4\?$")
        self.assertEqual(note, "note.dat:49:20: warning: ignored: the key 'note'")
        self.assertTrue(run.stdout.startswith("good.dat:\nproblem:"), run.stdout)
        self.assertTrue(run.stdout.endswith("0 errors, 1 warning\n3 files: 1 error, 1 warning\n"), run.stdout)
        run = self.check("good.dat", "none.dat", "comma.dat")
        self.assertEqual(run.returncode, 2)
        self.assertTrue(run.stdout.endswith("3 files, 1 not read: 1 error, 0 warnings\n"), run.stdout)
        reports = json.loads(self.check("good.dat", "comma.dat", "--json").stdout)
        self.assertEqual([(r["file"], r["errors"]) for r in reports], [("good.dat", 0), ("comma.dat", 1)])
        problem = reports[1]["problems"][0]
        self.assertEqual((problem["code"], problem["class"]), ("number-partly-read", "data-lost"))

    def test_standard_input(self):
        run = self.check("-", stdin=self.portal.replace("20    0   0", "20    0   0  note=1"))
        self.assertEqual((run.returncode, run.stderr), (0, "-:49:20: warning: ignored: the key 'note'\n"))
        self.assertEqual(json.loads(self.check("-", "--json", stdin=self.portal).stdout)["file"], "-")

    def test_strict_counts_warnings(self):
        (self.folder / "good.dat").write_text(self.portal)
        (self.folder / "note.dat").write_text(self.portal.replace("20    0   0", "20    0   0  note=1"))
        self.assertEqual(self.check("--strict", "good.dat").returncode, 0)
        self.assertEqual(self.check("--strict", "note.dat").returncode, 1)
        self.assertEqual(self.check("--strict", "note.dat", "good.dat").returncode, 1)

    def test_data_lost_although_the_program_runs(self):
        (self.folder / "m.dat").write_text(self.portal.replace("78.08e-4", "78,08e-4"))
        self.assertEqual(subprocess.run([MORLEN, "m.dat"], cwd=self.folder, capture_output=True).returncode, 0)
        self.assertEqual(self.check("m.dat").returncode, 1)

    def test_every_code_is_in_the_manual(self):
        manual = (pathlib.Path(EXAMPLES).parent / "docs" / "companions.md").read_text()
        source = (pathlib.Path(EXAMPLES).parent / "companions" / "check" / "findings.cpp").read_text()
        codes = re.findall(r'^    "([a-z0-9-]+)",$', source, re.M)
        self.assertGreater(len(codes), 40)
        self.assertEqual([code for code in codes if f"| `{code}` |" not in manual], [])


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1])
