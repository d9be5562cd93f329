#!/usr/bin/env python3
"""Checks the page, the output and the refusals of morlen-report, without a browser.

    check_report.py MORLEN MORLEN_REPORT MODEL
"""

import base64
import html.parser
import json
import os
import pathlib
import shutil
import struct
import subprocess
import sys
import tempfile
import unittest

MORLEN, REPORT, MODEL = sys.argv[1:4]


class Page(html.parser.HTMLParser):
    """The title, the data block and all addresses of a page."""

    def __init__(self, text):
        super().__init__()
        self.texts, self.addresses, self.open = {}, [], None
        self.feed(text)

    def handle_starttag(self, tag, attributes):
        attributes = dict(attributes)
        self.open = attributes.get("id", tag)
        self.addresses += [attributes[key] for key in ("src", "href") if key in attributes]

    def handle_endtag(self, tag):
        self.open = None

    def handle_data(self, data):
        if self.open:
            self.texts[self.open] = self.texts.get(self.open, "") + data


class Report(unittest.TestCase):
    def setUp(self):
        temporary = tempfile.TemporaryDirectory()
        self.addCleanup(temporary.cleanup)
        self.folder = pathlib.Path(temporary.name)
        shutil.copy(MODEL, self.folder / "m.dat")

    def solve(self):
        subprocess.run([MORLEN, "m.dat", "m.txt"], cwd=self.folder, check=True)

    def report(self, *arguments):
        return subprocess.run([REPORT, *arguments], capture_output=True, text=True, cwd=self.folder)

    def refuse(self, message, *arguments):
        before = {file: file.read_bytes() for file in self.folder.iterdir()}
        run = self.report(*arguments)
        self.assertEqual((run.returncode, run.stdout), (2, ""))
        self.assertIn(message, run.stderr)
        self.assertEqual({file: file.read_bytes() for file in self.folder.iterdir()}, before)

    def test_help_and_version_on_standard_output(self):
        for option, beginning in (("--help", "Writes the results"), ("--version", "morlen-report ")):
            run = self.report(option)
            self.assertEqual((run.returncode, run.stderr), (0, ""))
            self.assertTrue(run.stdout.startswith(beginning), run.stdout)

    def test_refusals(self):
        self.refuse("model is required")
        self.refuse("run morlen m.dat first", "m.dat")
        self.solve()
        self.refuse("can't open file none.dat", "none.dat")
        for name in ("m.dat", "m.txt", "./m.morlen.res"):
            self.refuse("is read and can't be written", "m.dat", "-o", name)
        self.refuse("can't open file no/r.html", "m.dat", "-o", "no/r.html")
        time = os.stat(self.folder / "m.dat").st_mtime
        os.utime(self.folder / "m.morlen.res", (time - 5, time - 5))
        self.refuse("error: m.morlen.res is older than m.dat", "m.dat")

    def test_one_file_with_the_tables(self):
        self.solve()
        for arguments, name in ((["m.dat"], "m.html"), (["m.dat", "-o", "r.html"], "r.html")):
            run = self.report(*arguments)
            self.assertEqual((run.returncode, run.stderr), (0, ""))
            lines = run.stdout.splitlines()
            self.assertEqual(lines[0], "wrote " + name)
            self.assertLess(float(lines[1].removeprefix("residual of equilibrium: ")), 1e-5)
            page = Page((self.folder / name).read_text())
            self.assertEqual(page.texts["title"], "m.dat")
            self.assertEqual([a for a in page.addresses if not a.startswith("data:")], [])
            self.check_reactions(json.loads(page.texts["data"]))

    def test_errors_of_the_problem_file(self):
        text = (self.folder / "m.dat").read_text()
        self.assertIn("78.08e-4", text)
        (self.folder / "m.dat").write_text(text.replace("78.08e-4", "78,08e-4"))
        self.solve()
        run = self.report("m.dat")
        self.assertEqual((run.returncode, run.stderr),
                         (0, "warning: errors in the problem file, 1: see morlen-check m.dat\n"))
        data = json.loads(Page((self.folder / "m.html").read_text()).texts["data"])
        self.assertEqual([finding["error"] for finding in data["check"]], [True])
        self.assertTrue(data["check"][0]["text"].startswith("data lost: '78,08e-4'"), data["check"])

    def test_a_model_without_results(self):
        text = (self.folder / "m.dat").read_text()
        self.assertNotIn("elem_rotules", text)
        # All beams are hinged at both ends.
        hinges = "".join(f"{i} 00\n" for i in range(1, 6))
        (self.folder / "m.dat").write_text(text + f"elem_rotules\n{hinges}end elem_rotules\n")
        run = subprocess.run([MORLEN, "m.dat", "m.txt"], cwd=self.folder, capture_output=True)
        self.assertNotEqual(run.returncode, 0)
        run = self.report("m.dat")
        self.assertEqual((run.returncode, run.stdout), (1, "wrote m.html\n"))
        self.assertTrue(run.stderr.startswith("warning: there are no results of this model"))
        data = json.loads(Page((self.folder / "m.html").read_text()).texts["data"])
        self.assertIsNone(data["equilibrium"])
        self.assertEqual({table["name"] for table in data["tables"]},
                         {"nodes", "elements", "materials", "supports", "nodal_loads"})
        self.assertTrue(any("motion" in finding for finding in data["check"]))
        # Older results are those of another state of the model; named ones are taken or refused.
        (self.folder / "m.morlen.res").write_text("old")
        time = os.stat(self.folder / "m.dat").st_mtime
        os.utime(self.folder / "m.morlen.res", (time - 5, time - 5))
        self.assertEqual(self.report("m.dat").returncode, 1)
        self.refuse("is older than", "m.dat", "--results", "m.morlen.res")

    def check_reactions(self, data):
        table = next(table for table in data["tables"] if table["name"] == "reactions")
        columns = {column["name"]: self.unpack(column) for column in table["columns"]}
        text = (self.folder / "m.txt").read_text().split("REACTIONS")[1].splitlines()[1:]
        rows = [[float(value) for value in line.split()] for line in text if line.strip()]
        self.assertEqual(table["rows"], len(rows))
        for k, values in enumerate(columns.values()):
            for row, value in zip(rows, values):
                self.assertAlmostEqual(value, row[k], delta=1e-6 * abs(row[k]))

    @staticmethod
    def unpack(column):
        data = base64.b64decode(column["data"])
        kind = {"i4": "i", "f4": "f", "f8": "d"}[column["type"]]
        return struct.unpack(f"<{len(data) // struct.calcsize(kind)}{kind}", data)


unittest.main(argv=sys.argv[:1])
