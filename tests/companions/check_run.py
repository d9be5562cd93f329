#!/usr/bin/env python3
"""Runs morlen-run as a user does and judges its files, its words and its ends.

    check_run.py MORLEN MORLEN_RUN MORLEN_EXPORT MORLEN_REPORT MORLEN_CASES EXAMPLES GENERATE_MODELS

The results must be those of the single programs, byte for byte. A run that is refused or interrupted must leave the
folder as it was.
"""

import csv
import fcntl
import json
import os
import pathlib
import pty
import re
import select
import shutil
import signal
import struct
import subprocess
import sys
import tempfile
import termios
import time
import unittest

MORLEN, RUN, EXPORT, REPORT, CASES, EXAMPLES, GENERATE = (str(pathlib.Path(name).resolve()) for name in sys.argv[1:8])
CASES_OF = 'model = "{}"\n[cases.A]\nfrom_model = true\n[envelopes]\nE = ["A"]\n'
RESULTS = ["txt", "morlen.res", "html", "morlen.run"]


def fnv1a64(data):
    value = 14695981039346656037
    for byte in data:
        value = (value ^ byte) * 1099511628211 % 2**64
    return f"{value:016x}"


def content(folder):
    return {str(p.relative_to(folder)): p.read_bytes() for p in folder.rglob("*") if p.is_file()}


def example(name):
    return (pathlib.Path(EXAMPLES) / name).read_text()


def slow_model(cells=100, solver="Sparse 1e-14 1e-13 1000000"):
    """A plate whose iteration takes seconds."""
    return subprocess.run([sys.executable, GENERATE, "--setting", f"Solver: {solver}", "plate", str(cells)], check=True,
                          capture_output=True, text=True).stdout


class Run(unittest.TestCase):
    def setUp(self):
        temporary = tempfile.TemporaryDirectory()
        self.addCleanup(temporary.cleanup)
        self.folder = pathlib.Path(temporary.name) / "work"
        self.folder.mkdir()
        self.environment = {**os.environ, "TERM": "xterm"}
        self.environment.pop("NO_COLOR", None)

    def copy(self, *names):
        for name in names:
            shutil.copy(pathlib.Path(EXAMPLES) / name, self.folder)

    def call(self, *arguments, program=RUN, folder=None, **options):
        return subprocess.run([program, *arguments], capture_output=True, text=True, cwd=folder or self.folder,
                              env=self.environment, timeout=120, **options)

    def done(self, *arguments, status=0, **options):
        run = self.call(*arguments, **options)
        self.assertEqual(run.returncode, status, run.stderr)
        return run

    def refused(self, message, *arguments, **options):
        before = content(self.folder)
        run = self.done(*arguments, status=2, **options)
        self.assertEqual(run.stdout, "")
        self.assertIn(message, run.stderr)
        self.assertEqual(content(self.folder), before)
        return run

    # --- Results ---

    def test_same_results_as_the_single_programs(self):
        for name in ("portal_frame", "slab_and_wall", "connecting_rod"):
            self.copy(name + ".dat")
            self.done(name + ".dat", "--vtu", "--csv", "--json")
            ours = content(self.folder)
            other = self.folder / "other"
            other.mkdir()
            shutil.copy(self.folder / (name + ".dat"), other)
            self.call(f"{name}.dat", f"{name}.txt", program=MORLEN, folder=other)
            shutil.copy(self.folder / (name + ".morlen.run"), other)
            self.call(f"{name}.dat", program=REPORT, folder=other)
            self.call(f"{name}.dat", "--vtu", f"{name}.vtu", "--csv", f"{name}_csv", "--json", f"{name}.json",
                      program=EXPORT, folder=other)
            theirs = content(other)
            self.assertEqual(set(ours), set(theirs))
            for file in ours:
                theirs[file] = theirs[file].replace(b'"name":"morlen-export"', b'"name":"morlen-run"')
                self.assertEqual(ours[file], theirs[file], file)
            shutil.rmtree(other)
            for file in ours:
                (self.folder / file).unlink()
            os.rmdir(self.folder / (name + "_csv"))

    def test_summary_and_plain_lines(self):
        self.copy("truss.dat")
        run = self.done("truss.dat")
        self.assertEqual(run.stderr, "truss.dat: checking\n"
                         "truss.dat: solving 36 equations with SkyLine: the usual method below 15000 equations\n"
                         "truss.dat: writing the results and the report\n")
        lines = run.stdout.splitlines()
        self.assertEqual(lines[:4], ["wrote truss." + ending for ending in RESULTS])
        labels = dict(line.split(":", 1) for line in lines[4:])
        # Bars of a truss have no moments.
        self.assertEqual(list(labels), ["solver", "why", "accuracy", "balance", "displacement", "N", "warnings", "time"])
        self.assertEqual(labels["solver"].strip(), "SkyLine, 36 equations")
        self.assertEqual(labels["why"].strip(), "the usual method below 15000 equations")
        self.assertEqual(labels["warnings"].strip(), "none")
        # Of the text results: the node that moves most, and the largest normal force of a bar's end.
        text = (self.folder / "truss.txt").read_text()
        nodes = re.search(r"DISPLACEMENTS.*\n((?:\d.*\n)*)", text)[1].splitlines()
        u = {int(node): (float(x) ** 2 + float(y) ** 2) ** 0.5 for node, x, y, _ in map(str.split, nodes)}
        most = max(u, key=u.get)
        self.assertEqual(labels["displacement"].strip(), f"{u[most]:.4g} m at node {most}")
        ends = [float(line.split()[0]) for line in re.findall(r"nodes: .*\n(.*)\n", text)]
        value = float(labels["N"].split()[0])
        self.assertAlmostEqual(abs(value), max(map(abs, ends)), delta=1e-3 * abs(value))

    def test_record_is_last_and_matches(self):
        self.copy("truss.dat")
        self.done("truss.dat")
        record = json.loads((self.folder / "truss.morlen.run").read_text())
        self.assertEqual((record["format"], record["formatVersion"], record["program"]["name"]),
                         ("morlen-run", 1, "morlen-run"))
        self.assertEqual((record["solver"], record["why"], record["iterations"], record["equations"]),
                         ("SkyLine", "the usual method below 15000 equations", 0, 36))
        self.assertLess(record["estimatedError"], 1e-10)
        for file in record["inputs"] + record["results"]:
            data = (self.folder / file["file"]).read_bytes()
            self.assertEqual((file["size"], file["fnv1a64"]), (len(data), fnv1a64(data)))
        self.assertEqual([file["file"] for file in record["results"]], ["truss." + e for e in RESULTS[:3]])
        times = {path.name: path.stat().st_mtime_ns for path in self.folder.glob("truss.*")}
        self.assertEqual(max(times, key=times.get), "truss.morlen.run")

    def test_export_and_report_know_the_run(self):
        self.copy("truss.dat")
        self.done("truss.dat")
        text = (self.folder / "truss.dat").read_text()

        def state():
            self.call("truss.dat", "--any-time", "--csv", "t", "--json", "t.json", program=EXPORT)
            self.call("truss.dat", "--any-time", "-o", "t.html", program=REPORT)
            run = json.loads((self.folder / "t.json").read_text())["run"]
            page = (self.folder / "t.html").read_text()
            self.assertIn('"run":' + json.dumps(run, separators=(",", ":")), page)
            self.assertEqual(list(run), ["state", "version", "solver", "why", "iterations", "residual", "estimatedError",
                                         "equations"])
            with open(self.folder / "t" / "run.csv", newline="") as table:
                head, row = csv.reader(table)
            self.assertEqual(head, ["solver", "why", "iterations [1]", "residual [1]", "estimated_error [1]",
                                    "equations [1]"])
            if run["state"] == "matches":
                self.assertEqual(row[:3] + row[5:], ["SkyLine", run["why"], "0", "36"])
                self.assertEqual(float(row[4]), run["estimatedError"])
            else:
                self.assertEqual(row, ["unknown"] * 6)
                self.assertEqual([value for key, value in run.items() if key != "state"], [None] * 7)
            return run["state"]

        self.assertEqual(state(), "matches")
        (self.folder / "truss.dat").write_text(text + "# changed\n")
        self.assertEqual(state(), "differs")
        (self.folder / "truss.dat").write_text(text)
        self.assertEqual(state(), "matches")
        results = (self.folder / "truss.txt").read_text()
        (self.folder / "truss.txt").write_text(results + "\n")
        self.assertEqual(state(), "differs")
        (self.folder / "truss.txt").write_text(results)
        for damaged in ("", "{}", "[1]", '{"format": "morlen-run", "formatVersion": 2}'):
            (self.folder / "truss.morlen.run").write_text(damaged)
            self.assertEqual(state(), "differs", damaged)
        (self.folder / "truss.morlen.run").unlink()
        self.assertEqual(state(), "absent")

    def check_envelopes(self, summary, results):
        """The summary tells the largest value of each envelope that its tables have."""
        lines = re.findall(r"(?:envelope (\w+):|^) +(displacement of nodes|N|M) (\S+) \[\S+\] (?:at|in) \w+ (\d+) \((\S+)\)$",
                           summary, re.MULTILINE)
        self.assertEqual(len(lines), 9, summary)
        name = ""
        for begins, label, value, number, combination in lines:
            name = begins or name
            table, component, owner = {"displacement of nodes": ("displacements", "u [length]", "node"),
                                       "N": ("beam_forces", "N [force]", "element"),
                                       "M": ("beam_forces", "Mz [force*length]", "element")}[label]
            with open(results / f"{name}.{table}.csv", encoding="utf-8", newline="") as file:
                rows = [row for row in csv.DictReader(file) if row["component"] == component.split()[0]]
            largest = max(abs(float(row[component])) for row in rows)
            self.assertAlmostEqual(abs(float(value)) / largest, 1, delta=6e-4)  # four digits
            self.assertTrue(any(row[owner] == number and row["combination"] == combination
                                and abs(float(row[component])) > largest * (1 - 1e-9) for row in rows),
                            f"{name} {label} {number} {combination}")

    def test_moments_of_reactions_are_no_moments_of_beams(self):
        # Torque 5 and shear 2 at the top of a column of 2: moments of 4 in beam 7, reaction 5 about Z.
        (self.folder / "column.dat").write_text(
            "problem type: 3d\nmesh dimension = 3 elemtype Linear nnode = 2\ncoordinates\n1 0 0 0\n2 0 0 2\n"
            "end coordinates\nelements\n7 1 2 1\nend elements\nmaterials\n1 E=1e8 G=4e7 A=0.1 Iy=1e-3 Iz=1e-3 J=1e-3\n"
            "end materials\nconstraints\n1 111111 0 0 0 0 0 0\nend constraints\n"
            "nodal_point_loads\n2 2 0 0 0 0 5\nend nodal_point_loads\n")
        (self.folder / "column.cases").write_text(CASES_OF.format("column.dat"))
        summary = self.done("column.cases").stdout
        self.assertRegex(summary, r"\nM: +-?4 \[force\*length\] in beam 7, case A\n")
        self.assertRegex(summary, r"\n +M -?4 \[force\*length\] in beam 7 \(A\)\n")

    def test_load_cases(self):
        self.copy("hall.cases", "hall_frame.dat")
        run = self.done("hall.cases", "-o", "out", "--vtu", "--csv")
        self.assertIn("hall.cases: solving 27 equations", run.stderr)
        self.assertRegex(run.stdout, r"\ndisplacement: [\d.]+ \[length\] in beam \d+, case \w+\n")
        self.check_envelopes(run.stdout, self.folder / "out" / "hall.results")
        self.done("hall.cases", "-o", "all", "--formats", "csv,vtu", "--write", "*", program=CASES)
        ours, theirs = content(self.folder / "out" / "hall.results"), content(self.folder / "all")
        self.assertGreater(sum(name.endswith(".vtu") for name in ours), 5)
        for name in ours.keys() - {"hall.pvd"}:
            self.assertEqual(ours[name], theirs[name], name)
        self.done("hall.cases", program=REPORT)
        self.assertEqual((self.folder / "out" / "hall.html").read_bytes(), (self.folder / "hall.html").read_bytes())
        record = json.loads((self.folder / "out" / "hall.morlen.run").read_text())
        self.assertEqual([file["file"] for file in record["inputs"][:2]], ["hall.cases", "hall_frame.dat"])
        written = {file["file"]: (file["size"], file["fnv1a64"]) for file in record["results"]}
        self.assertEqual(written, {name: (len(data), fnv1a64(data)) for name, data in content(self.folder / "out").items()
                                   if name != "hall.morlen.run"})
        text = (self.folder / "hall.cases").read_text()
        (self.folder / "bad.cases").write_text(text.replace("hall_frame.dat", "hall_farme.dat"))
        self.refused("bad.cases: not solved: ", "bad.cases")

    # --- Standard input and output ---

    def test_standard_input(self):
        text = example("truss.dat")
        self.done("-", input=text)
        self.assertEqual(set(content(self.folder)), {"stdin." + ending for ending in RESULTS})
        self.copy("truss.dat")
        self.done("truss.dat")
        self.assertEqual((self.folder / "stdin.txt").read_bytes(), (self.folder / "truss.txt").read_bytes())
        shutil.rmtree(self.folder)
        self.folder.mkdir()
        self.done("/dev/stdin", input=text)
        self.assertEqual(set(content(self.folder)), {"stdin." + ending for ending in RESULTS})
        self.done("-", "-o", "there", input=text)
        self.assertTrue((self.folder / "there" / "stdin.html").exists())

    def test_standard_output_has_the_text_results_only(self):
        self.copy("truss.dat")
        self.done("truss.dat", "-o", "there")
        before = content(self.folder)
        run = self.done("truss.dat", "-o", "-")
        self.assertEqual(run.stdout, (self.folder / "there" / "truss.txt").read_text())
        self.assertIn("\nsolver:       SkyLine", run.stderr)
        self.assertEqual(content(self.folder), before)
        self.assertEqual(self.done("-", "-o", "-", input=example("truss.dat")).stdout, run.stdout)
        for arguments in (["truss.dat", "there"], ["truss.dat", "--vtu"], ["truss.dat", "--open"], ["a.cases"]):
            self.refused("error: -o - ", *arguments, "-o", "-")
        self.refused("standard input can be read once only", "-", "-")

    def test_full_standard_output(self):
        self.copy("truss.dat")
        for arguments in (["truss.dat"], ["truss.dat", "-o", "-"]):
            with open("/dev/full", "w") as full:
                run = subprocess.run([RUN, *arguments], stdout=full, stderr=subprocess.PIPE, text=True, cwd=self.folder)
            self.assertEqual(run.returncode, 2, arguments)
            self.assertIn("error: can't write to standard output", run.stderr)

    # --- Refusals ---

    def test_refusals(self):
        self.copy("truss.dat", "hall_frame.dat")
        self.refused("models is required")
        self.refused("can't read file none.dat: No such file or directory\n", "none.dat")
        (self.folder / "sub").mkdir()
        self.refused("can't read file sub: it is a folder\n", "sub")
        self.refused("-j", "truss.dat", "-j", "0")
        shutil.copy(self.folder / "truss.dat", self.folder / "sub")
        run = self.refused("error: truss.dat and sub/truss.dat would write the same results, out/truss.html\n",
                           "truss.dat", "sub/truss.dat", "-o", "out")
        self.assertNotIn("checking", run.stderr)
        self.refused("would write the same results", "truss.dat", "./truss.dat")
        (self.folder / "x.txt").write_text(example("truss.dat"))
        self.refused("error: x.txt is an input, and a result of x.txt would replace it\n", "x.txt")
        (self.folder / "hall_frame.html").write_text(example("truss.dat"))
        self.refused("is a problem file and would be written over", "hall_frame.dat")
        self.refused("can't make folder truss.dat", "truss.dat", "-o", "truss.dat")
        (self.folder / "truss_csv").write_text("a file")
        self.refused("can't make folder truss_csv", "truss.dat", "--csv")
        (self.folder / "truss.html").mkdir()
        run = self.refused("can't write file truss.html: it is no regular file\n", "truss.dat")
        self.assertNotIn("solving", run.stderr)

    def test_check_stops_the_run(self):
        text = example("truss.dat")
        for name, new, severity in (("error", text.replace("elements\n", "elements\n  999 1 1000 1\n", 1), "error"),
                                    ("lost", re.sub(r"(?m)^(\s*2\s+)3(?=\s)", r"\g<1>3,0", text, count=1), "error: data lost")):
            (self.folder / f"{name}.dat").write_text(new)
            check = self.call(f"{name}.dat", program=RUN.replace("morlen-run", "morlen-check"))
            run = self.refused(f"{name}.dat: not solved: ", f"{name}.dat")
            self.assertIn(": " + severity, run.stderr)
            findings = [line for line in check.stderr.splitlines()]
            self.assertEqual(run.stderr.splitlines()[1:-1], findings)
        warned = text.replace("\nmaterials\n", "\nmaterials\n  9 E=2.1e8 A=1 Iz=1\n", 1)
        (self.folder / "warned.dat").write_text(warned)
        run = self.done("warned.dat", "--strict", status=2)
        self.assertTrue(run.stderr.endswith("warned.dat: not solved: 0 errors, 1 warning\n"), run.stderr)
        self.assertEqual(run.stdout, "wrote warned.html: the model with the findings of the check, no results\n")
        run = self.done("warned.dat")
        self.assertIn("warnings:     1 of the check, 0 of the analysis\n", run.stdout)

    def test_bad_accuracy_is_status_1(self):
        (self.folder / "m.dat").write_text(example("space_frame.dat").replace(
            "problem type: 3d", "problem type: 3d\nSolver: Sparse 0.3 0.9 20", 1))
        self.copy("truss.dat")
        run = self.done("m.dat", status=1)
        self.assertIn("\nwarning: loads and reactions are not in equilibrium. ", run.stderr)
        self.assertRegex(run.stderr, r"\nwarning: the displacements have an estimated error of 0.\d+, more than 0.0001\n")
        self.assertTrue((self.folder / "m.morlen.run").exists())
        run = self.done("truss.dat", "m.dat", "none.dat", status=2)
        self.assertTrue(run.stdout.endswith("3 files: 1 solved, 1 solved with a bad balance or error, 1 not solved\n"))

    def test_structures_that_can_move_keep_old_results(self):
        self.copy("truss.dat")
        self.done("truss.dat")
        text = example("truss.dat")
        loose = re.sub(r"(?ms)^constraints$.*?^end", "constraints\n  1 110 0 0 0\nend", text, count=1)
        self.assertNotEqual(loose, text)
        old = content(self.folder)
        (self.folder / "truss.dat").write_text(loose)
        run = self.done("truss.dat", status=2)
        self.assertEqual(run.stdout, "wrote truss.html: the model with the findings of the check, no results\n")
        self.assertTrue(run.stderr.endswith(
            "truss.dat: not solved: 1 error, 0 warnings\n"
            "truss.dat: the results of an earlier run stay, and the page does not show them: truss.txt, truss.morlen.res\n"))
        new = content(self.folder)
        for name in ("truss.txt", "truss.morlen.res", "truss.morlen.run"):
            self.assertEqual(new[name], old[name])
        page = new["truss.html"].decode()
        self.assertNotEqual(new["truss.html"], old["truss.html"])
        self.assertIn('"motion"', page)
        results = b'{"name":"displacements"'
        self.assertEqual((results in old["truss.html"], results in new["truss.html"]), (True, False))
        (self.folder / "truss.dat").write_text(text)
        self.done("truss.dat")
        self.assertEqual(content(self.folder)["truss.html"], old["truss.html"])
        # Nothing is left of it without files, and no page of a text that cannot be read.
        (self.folder / "truss.dat").write_text(loose)
        self.refused("not solved: ", "truss.dat", "-o", "-")
        (self.folder / "truss.dat").write_text(text.replace("\nmaterials\n", "\nmatreials\n", 1))
        run = self.refused("not solved: ", "truss.dat", "--open")
        self.assertIn("truss.dat: the results of an earlier run stay: truss.txt, truss.morlen.res, truss.html\n", run.stderr)
        self.assertIn("truss.dat: there is no new page to open\n", run.stderr)

    def test_motions_that_the_analysis_finds_are_on_the_page(self):
        # Two bars in one line: nothing but the torsion of each holds the hinge between them across it.
        text = subprocess.run([sys.executable, GENERATE, "frame3d", "9", "9", "26"], check=True, capture_output=True,
                              text=True).stdout
        nodes = [int(n) for n in re.findall(r"(?m)^(\d+) ", re.search(r"(?ms)^coordinates(.*?)^end", text)[1])]
        elements = [int(n) for n in re.findall(r"(?m)^(\d+) ", re.search(r"(?ms)^elements(.*?)^end", text)[1])]
        node, element = max(nodes) + 1, max(elements) + 1
        text = text.replace("\ncoordinates\n", f"\ncoordinates\n{node} 3 0 0.5\n", 1)
        text = text.replace("\nelements\n", f"\nelements\n{element} 1 {node} 1\n{element + 1} {node} 2 1\n", 1)
        text += f"\nelem_rotules\n{element} 00\n{element + 1} 00\nend elem_rotules\n"
        (self.folder / "m.dat").write_text(text)
        run = self.done("m.dat", status=2)
        self.assertRegex(run.stderr, r"\nm.dat: solving \d{5} equations")
        self.assertRegex(run.stderr, r"\nm.dat: not solved: \d errors?, ")
        self.assertEqual(run.stdout, "wrote m.html: the model with the findings of the check, no results\n")
        self.assertIn('"motion"', (self.folder / "m.html").read_text())

    def test_load_cases_of_a_loose_model_give_its_page(self):
        text = example("truss.dat")
        (self.folder / "truss.dat").write_text(
            re.sub(r"(?ms)^constraints$.*?^end", "constraints\n  1 110 0 0 0\nend", text, count=1))
        (self.folder / "all.cases").write_text(CASES_OF.format("truss.dat"))
        run = self.done("all.cases", status=2)
        self.assertEqual(run.stdout, "wrote all.html: the model with the findings of the check, no results\n", run.stderr)
        self.assertEqual(set(content(self.folder)), {"truss.dat", "all.cases", "all.html"})

    def test_folders_that_cannot_be_made_are_told_with_the_reason(self):
        self.copy("truss.dat")
        for folder in ("truss.dat", "truss.dat/results"):
            run = self.call("truss.dat", "-o", folder)
            self.assertEqual(run.returncode, 2)
            self.assertRegex(run.stderr, f"can't make folder {folder}\nhint: [^\n]+\n")

    def test_tables_of_older_runs_are_removed_and_named(self):
        self.copy("truss.dat")
        (self.folder / "truss_csv").mkdir()
        (self.folder / "truss_csv" / "shell_forces.csv").write_text("old\n")
        run = self.done("truss.dat", "--csv")
        self.assertIn("removed truss_csv/shell_forces.csv, which is of an earlier run\n", run.stdout)
        self.assertFalse((self.folder / "truss_csv" / "shell_forces.csv").exists())

    def test_older_files_are_named_and_stay(self):
        self.copy("truss.dat", "hall.cases", "hall_frame.dat")
        self.assertNotIn("older files", self.done("truss.dat", "--vtu", "--csv", "--json").stdout)
        run = self.done("truss.dat", "--json")
        self.assertIn("\nolder files:  truss.vtu, truss_csv are not of this run\n", run.stdout)
        self.assertTrue((self.folder / "truss.vtu").exists())
        self.assertIn("\nolder files:  truss.vtu, truss_csv, truss.json are not of this run\n", self.done("truss.dat").stdout)
        (self.folder / "truss.cases").write_text(CASES_OF.format("truss.dat"))
        self.assertNotIn("\nreplaced:", run.stdout)
        self.assertIn("\nreplaced:     the report and the record of truss.dat\n", self.done("truss.cases").stdout)
        self.assertNotIn("\nreplaced:", self.done("truss.cases").stdout)
        self.done("hall.cases", "--json")
        run = self.done("hall.cases")
        self.assertRegex(run.stdout, r"\nolder files:  (hall.results/\w+.json(, )?){3} are not of this run\n")

    # --- Folders and several files ---

    def test_read_only_folder(self):
        self.copy("truss.dat")
        out = self.folder.parent / "out" / "deep"
        os.chmod(self.folder, 0o555)
        try:
            self.done("truss.dat", "-o", str(out))
            self.assertEqual(set(content(out)), {"truss." + ending for ending in RESULTS})
            if os.geteuid() != 0:
                self.refused("can't open file truss.txt", "truss.dat")
        finally:
            os.chmod(self.folder, 0o755)
        self.assertEqual(set(content(self.folder)), {"truss.dat"})

    def test_several_files_in_parallel(self):
        names = ["truss", "portal_frame", "grid"]
        self.copy(*(name + ".dat" for name in names))
        (self.folder / "bad.dat").write_text("no problem\n")
        run = self.done("truss.dat", "bad.dat", "portal_frame.dat", "grid.dat", "-j", "2", status=2)
        for line in run.stderr.splitlines():
            self.assertRegex(line, r"^(truss|portal_frame|grid|bad)\.dat:")
        # In the order of the command line, whatever ends first.
        self.assertEqual(re.findall(r"(?m)^(\w+)\.dat:$", run.stdout), names)
        for name in names:
            self.assertIn(f"{name}.dat:\nwrote {name}.txt\n", run.stdout)
            self.call(name + ".dat", "own.txt", program=MORLEN)
            self.assertEqual((self.folder / "own.txt").read_bytes(), (self.folder / (name + ".txt")).read_bytes())
        self.assertTrue(run.stdout.endswith("\n4 files: 3 solved, 1 not solved\n"))

    # --- Signals ---

    def interrupt(self, *arguments, number=signal.SIGINT):
        process = subprocess.Popen([RUN, *arguments], cwd=self.folder, stdout=subprocess.PIPE, stderr=subprocess.PIPE,
                                   text=True, env=self.environment)
        for line in process.stderr:
            if "solving" in line:
                break
        time.sleep(0.2)
        process.send_signal(number)
        output, messages = process.communicate(timeout=20)
        self.assertEqual((process.returncode, output), (-number, ""), messages)
        return messages

    def test_interruption_leaves_old_results_whole(self):
        self.copy("truss.dat")
        self.done("truss.dat")
        (self.folder / "truss.dat").write_text(slow_model())
        before = content(self.folder)
        for number in (signal.SIGINT, signal.SIGTERM):
            self.assertIn("morlen-run: ended by a signal: ", self.interrupt("truss.dat", "--csv", number=number))
            self.assertEqual(content(self.folder), before)
            self.assertFalse((self.folder / "truss_csv").exists())
        (self.folder / "all.cases").write_text(CASES_OF.format("truss.dat"))
        before = content(self.folder)
        self.interrupt("all.cases", "--vtu")
        self.assertEqual(content(self.folder), before)
        self.assertFalse((self.folder / "all.results").exists())
        (self.folder / "b.dat").write_text(slow_model())
        before = content(self.folder)
        self.interrupt("truss.dat", "b.dat", "-j", "2")
        self.assertEqual(content(self.folder), before)

    def test_killed_run_leaves_no_process(self):
        (self.folder / "m.dat").write_text(slow_model())
        self.interrupt("m.dat", number=signal.SIGKILL)
        deadline = time.time() + 10
        while list(self.folder.glob(".*")) and time.time() < deadline:
            time.sleep(0.05)
        self.assertEqual(set(content(self.folder)), {"m.dat"})

    # --- Terminal ---

    def on_terminal(self, *arguments, stop=None, **variables):
        """What a terminal of 60 columns shows on standard error. stop: Ctrl-C after this text."""
        main, side = pty.openpty()
        fcntl.ioctl(side, termios.TIOCSWINSZ, struct.pack("HHHH", 24, 60, 0, 0))
        process = subprocess.Popen([RUN, *arguments], cwd=self.folder, stdin=side, stdout=subprocess.DEVNULL, stderr=side,
                                   env={**self.environment, **variables}, start_new_session=True,
                                   preexec_fn=lambda: fcntl.ioctl(0, termios.TIOCSCTTY, 0))
        os.close(side)
        shown, deadline = b"", time.time() + 60
        while time.time() < deadline:
            if select.select([main], [], [], 0.1)[0]:
                try:
                    part = os.read(main, 4096)
                except OSError:
                    break
                if not part:
                    break
                shown += part
                if stop and stop in shown:
                    os.write(main, b"\x03")
                    stop = None
        os.close(main)
        return process.wait(timeout=20), shown.decode()

    def test_progress_line_on_a_terminal(self):
        (self.folder / "m.dat").write_text(slow_model())
        status, shown = self.on_terminal("m.dat", stop=b"about")
        self.assertEqual(status, -signal.SIGINT)
        parts = shown.split("\r\x1b[K")
        self.assertIn("m.dat: checking", parts)
        self.assertTrue(any(re.match(r"m\.dat: iteration \d+, residual \S+ of 1.0e-14, about", part) for part in parts), parts)
        self.assertTrue(all(len(part.split("^C")[0]) < 60 for part in parts if part.startswith("m.dat: ")), parts)
        self.assertEqual(set(content(self.folder)), {"m.dat"})

    def test_colours(self):
        (self.folder / "bad.dat").write_text("no problem\n")
        self.assertIn("\x1b[31m", self.on_terminal("bad.dat")[1])
        self.assertNotIn("\x1b[31m", self.on_terminal("bad.dat", NO_COLOR="1")[1])
        status, shown = self.on_terminal("bad.dat", TERM="dumb")
        self.assertEqual((status, "\x1b" in shown), (2, False))

    def test_open(self):
        self.copy("truss.dat")
        programs = self.folder.parent / "bin"
        programs.mkdir()
        (programs / "xdg-open").write_text('#!/bin/sh\n(echo "$1"; grep -E "^Sig(Blk|Ign)" /proc/self/status) >"$0.log.new"; mv "$0.log.new" "$0.log"; exec sleep 5\n')
        (programs / "xdg-open").chmod(0o755)
        self.environment["PATH"] = f"{programs}:{os.environ['PATH']}"
        start = time.time()
        self.done("truss.dat", "--open")
        self.assertLess(time.time() - start, 30)
        log = programs / "xdg-open.log"
        while not log.exists() and time.time() - start < 30:
            time.sleep(0.05)
        page, *signals = log.read_text().splitlines()
        self.assertEqual(page, str(self.folder / "truss.html"))
        usual = 0x7fffffff  # beyond them are two of the C library
        self.assertEqual([int(line.split()[1], 16) & usual for line in signals], [0, 0])
        log.unlink()
        (self.folder / "loose.dat").write_text(
            re.sub(r"(?ms)^constraints$.*?^end", "constraints\n  1 110 0 0 0\nend", example("truss.dat"), count=1))
        self.done("loose.dat", "--open", status=2)
        while not log.exists() and time.time() - start < 30:
            time.sleep(0.05)
        self.assertEqual(log.read_text().splitlines()[0], str(self.folder / "loose.html"))
        self.environment["PATH"] = str(self.folder)
        run = self.done("truss.dat", "--open")
        self.assertIn("can't open truss.html: xdg-open: No such file or directory. Open it in a browser\n", run.stderr)


unittest.main(argv=sys.argv[:1])
