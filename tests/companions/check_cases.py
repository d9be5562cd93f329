#!/usr/bin/env python3
"""Runs morlen-cases on an example and judges its files.

    check_cases.py MORLEN MORLEN_CASES MORLEN_CHECK EXAMPLES

The case with the loads of the model has the bytes of the program's own results. Combinations and
envelopes are computed again from the CSV files of the cases. Wrong moves are refused with status 2.
"""

import csv
import json
import pathlib
import re
import shutil
import subprocess
import sys
import tempfile
import xml.etree.ElementTree as tree

MORLEN, CASES, CHECK, EXAMPLES = (str(pathlib.Path(name).resolve()) for name in sys.argv[1:5])


def require(condition, *what):
    if not condition:
        sys.exit("check_cases: " + " ".join(str(part) for part in what))


def run(folder, *arguments):
    return subprocess.run(arguments, cwd=folder, text=True, capture_output=True)


def rows_of(file):
    with open(file, newline="") as stream:
        return list(csv.reader(stream))


def values_of(file, keys):
    """Rows of numbers by the first `keys` columns."""
    return {tuple(row[:keys]): [float(cell) for cell in row[keys:]] for row in rows_of(file)[1:]}


def shortest(text):
    number = float(text)
    return len(text) <= len(repr(number)) and float(text) == number


def factors_of(listing):
    """Factors of every combination, from the list of --check."""
    combinations = {}
    for name, terms in re.findall(r"^combination (.*?) = (.*)$", listing, re.M):
        factors = {}
        for sign, factor, case in re.findall(r"(^|[-+] ?)([\d.e+-]+) (\w+)", terms):
            factors[case] = float(factor) * (-1 if sign.startswith("-") else 1)
        combinations[name] = factors
    return combinations


def check_run(folder):
    listing = run(folder, CASES, "hall.cases", "--check")
    require(listing.returncode == 0 and not (folder / "hall.results").exists(), listing.stderr)
    combinations = factors_of(listing.stdout)
    cases = re.findall(r"^case (\w+)", listing.stdout, re.M)
    for case in cases:
        combinations[case] = {case: 1.0}
    members = dict((name, names.split(", "))
                   for name, names in re.findall(r"^envelope (\w+): (.*)$", listing.stdout, re.M))
    require(len(combinations) == 8 + 66 and len(members) == 3, len(combinations), len(members))

    done = run(folder, CASES, "hall.cases")
    require(done.returncode == 0, done.stderr)
    written = sorted(path.name for path in (folder / "hall.results").iterdir())
    require(written == sorted(["run.csv"] + [f"{e}.{t}" for e in members for t in (
        "beam_forces.csv", "displacements.csv", "reactions.csv", "summary.txt")]), written)
    head, facts = (line.split(",") for line in (folder / "hall.results" / "run.csv").read_text().splitlines())
    facts = dict(zip(head, facts))
    require(facts["solver"] == "SkyLine" and 0 < float(facts["residual [1]"]) < 1e-12
            and 0 < float(facts["estimated_error [1]"]) < 1e-10, facts)
    done = run(folder, CASES, "hall.cases", "-o", "all", "--formats", "csv,json,text,post,vtu", "--write", "*")
    require(done.returncode == 0, done.stderr)
    results = folder / "all"
    require(not list(results.glob("*tmp*")), "temporary files remain")

    require(run(folder, MORLEN, "hall_frame.dat", "own.txt").returncode == 0, "morlen")
    for ours, own in (("file.txt", "own.txt"), ("file.morlen.res", "hall_frame.morlen.res")):
        require((results / ours).read_bytes() == (folder / own).read_bytes(), ours, "has other bytes")
    check_combinations(results, combinations, cases)
    for name, names in members.items():
        check_envelope(results, name, names, combinations)
    check_collection(results, len(combinations))


def check_direct(folder):
    """With Solver Direct, where the program has it, a case has the bytes of its problem file too."""
    text = (folder / "hall_frame.dat").read_text()
    head, rest = text.split("\n", 1)
    (folder / "direct.dat").write_text(f"{head}\nSolver Direct\n{rest}")
    own = run(folder, MORLEN, "direct.dat", "direct.txt")
    if own.returncode != 0:
        require("built without the solver Direct" in own.stderr, own.stderr)
        return
    (folder / "direct.cases").write_text('model = "direct.dat"\n[cases.all]\nfrom_model = true\n')
    done = run(folder, CASES, "direct.cases", "-o", "direct", "--formats", "text,post", "--write", "*")
    require(done.returncode == 0, done.stderr)
    for ours, other in (("all.txt", "direct.txt"), ("all.morlen.res", "direct.morlen.res")):
        require((folder / "direct" / ours).read_bytes() == (folder / other).read_bytes(), ours, "has other bytes")


def file_of(name):
    return re.sub(r"[^A-Za-z0-9._-]", "_", name)


def check_combinations(results, combinations, cases):
    for table, keys in (("beam_diagrams", 4), ("reactions", 1), ("beam_end_forces", 2), ("displacements", 1)):
        of_case = {case: values_of(results / f"{case}.{table}.csv", keys) for case in cases}
        linear = 3 if table == "displacements" else None  # the length of the translation follows
        for name, factors in combinations.items():
            found = values_of(results / f"{file_of(name)}.{table}.csv", keys)
            sizes = [max(abs(row[k]) for row in found.values()) for k in range(len(next(iter(found.values()))))]
            for key, row in found.items():
                sums = [sum(f * of_case[c][key][k] for c, f in factors.items()) for k in range(len(row))]
                for k, value in enumerate(row[:linear]):
                    require(abs(value - sums[k]) <= 1e-12 * sizes[k] + 1e-300, name, table, key, k)
            if linear:
                require(all(abs(r[3] - (r[0] ** 2 + r[1] ** 2) ** 0.5) <= 1e-12 * r[3] + 1e-300 for r in found.values()),
                        name, "length of the displacement")
    data = json.loads((results / "6.10_3.json").read_text())
    require(data["run"]["solver"] == "SkyLine" and 0 < data["run"]["estimatedError"] < 1e-10, data["run"])
    require(data["name"] == "6.10/3" and data["factors"] == {"G": 1.35, "Q": 1.5}, data["factors"])
    table = [[float(cell) for cell in row] for row in rows_of(results / "6.10_3.reactions.csv")[1:]]
    require(data["tables"]["reactions"]["rows"] == table, "JSON and CSV differ")


def check_envelope(results, name, members, combinations):
    points = {table: {one: values_of(results / f"{file_of(one)}.{source}.csv", keys) for one in members}
              for table, source, keys in (("beam_forces", "beam_diagrams", 4), ("reactions", "reactions", 1),
                                          ("displacements", "displacements", 1))}
    for table, of_member in points.items():
        head, *rows = rows_of(results / f"{name}.{table}.csv")
        start = 5 if table == "beam_forces" else 4
        names = [re.sub(r" \[.*", "", column) for column in head[start:]]
        if table == "beam_forces":  # the diagrams have ux, uy, N, Vy, Mz after x, y
            of_member = {one: {key[:2]: row[2:] for key, row in values.items()} for one, values in of_member.items()}
        require(all("[" in column for column in head[start:]), "no units:", head)
        sizes = [max(abs(row[k]) for values in of_member.values() for row in values.values())
                 for k in range(len(names))]
        require(len(rows) == 2 * len(names) * len(next(iter(of_member.values()))), table, "has", len(rows), "rows")
        for row in rows:
            key, component, extreme, governing = tuple(row[:start - 3]), *row[start - 3:start]
            k = names.index(component)
            all_values = [of_member[one][key][k] for one in members]
            best = min(all_values) if extreme == "min" else max(all_values)
            tie = 1e-12 * sizes[k]
            first = next(one for one, value in zip(members, all_values) if abs(value - best) <= tie)
            require(governing == first, name, table, key, component, extreme, governing, "instead of", first)
            require([float(cell) for cell in row[start:]] == of_member[governing][key], name, table, key)
            require(all(shortest(cell) for cell in row[start:]), row)
        data = json.loads((results / f"{name}.json").read_text())
        require(data["format"] == "morlen-envelope", data["format"])
        require(data["run"]["solver"] == "SkyLine" and 0 < data["run"]["residual"] < 1e-12, data["run"])
        require([c["name"] for c in data["combinations"]] == members, "members")
        require(all(c["factors"] == combinations[c["name"]] for c in data["combinations"]), "factors")
        require([[str(cell) for cell in row[:start]] for row in data["tables"][table]["rows"]] ==
                [row[:start] for row in rows], "JSON and CSV differ")
    summary = (results / f"{name}.summary.txt").read_text()
    require("largest Mz" in summary and all(f"  {one} = " in summary for one in members), summary)


def check_collection(results, count):
    sets = tree.parse(results / "hall.pvd").getroot().findall("Collection/DataSet")
    require(len(sets) == count, len(sets), "data sets")
    for one in sets:
        root = tree.parse(results / one.get("file")).getroot()
        require(root.get("type") == "UnstructuredGrid", one.get("file"))


def check_refusals(folder):
    (folder / "bad.cases").write_text('model = "hall_frame.dat"\n[cases.G]\ngravty = true\n[envelopes]\nE = ["G", "H"]\n')
    (folder / "syntax.cases").write_text('model = \n')
    for arguments, message in (
            (["bad.cases"], "bad.cases:3:1: error: unknown key 'gravty' of a case; did you mean 'gravity'?\n"
                            "bad.cases:5:11: error: there is no case or combination 'H'\n"),
            (["none.cases"], "can't read file none.cases\n"),
            (["hall_frame.dat"], "error: hall_frame.dat is a problem file, not a file of load cases\n"),
            (["hall.cases", "--write", "ULS", "XLS*", "--check"],
             "error: --write 'XLS*' matches no case, combination or envelope\n"),
            (["hall.cases", "-o", "hall_frame.dat"], "can't make folder hall_frame.dat\nhint: it is a file\n")):
        done = run(folder, CASES, *arguments)
        require(done.returncode == 2 and done.stderr == message, arguments, done.returncode, done.stderr)
    done = run(folder, CASES, "syntax.cases")
    require(done.returncode == 2 and done.stderr.startswith("syntax.cases:1:") and done.stderr.count("\n") == 1,
            done.stderr)
    done = run(folder, CHECK, "hall.cases", "bad.cases")
    require(done.returncode == 1 and "bad.cases:3:1: error: " in done.stderr, done.returncode, done.stderr)
    require("8 cases, 66 combinations, 3 envelopes" in done.stdout, done.stdout)
    data = json.loads(run(folder, CHECK, "--json", "hall.cases").stdout)
    require(data["summary"] == {"model": "hall_frame.dat", "cases": 8, "combinations": 66, "envelopes": 3}, data)


def check_inputs_stay(folder):
    """A result never replaces a file of loads, the model or the case file."""
    (folder / "B.txt").write_text("nodal_point_loads\n1 1 0 0 0 0 0\nend nodal_point_loads\n")
    (folder / "own.cases").write_text('model = "model.dat"\n[cases.B]\nloads = "B.txt"\n')
    (folder / "model.dat").write_text(
        "problem type: 3d\nmesh dimension = 3 elemtype Linear nnode = 2\ncoordinates\n1 0 0 0\n"
        "2 1 0 0\nend coordinates\nelements\n1 1 2 1\nend elements\nmaterials\n"
        "1 E=1 G=1 A=1 Iy=1 Iz=1 J=1\nend materials\nconstraints\n2 111111 0 0 0 0 0 0\n"
        "end constraints\n")
    before = (folder / "B.txt").read_text()
    for where in (".", str(folder), "../" + folder.name):
        refused = run(folder, CASES, "own.cases", "-o", where, "--write", "B", "--formats", "text")
        require(refused.returncode == 2 and "B.txt is read and can't be written" in refused.stderr,
                refused.stderr)
        require("hint: " in refused.stderr and "-o" in refused.stderr, refused.stderr)
        require((folder / "B.txt").read_text() == before, "an input has been replaced")
    require(run(folder, CASES, "own.cases", "--write", "B").returncode == 0, "another folder")


def main():
    with tempfile.TemporaryDirectory() as name:
        folder = pathlib.Path(name)
        for example in ("hall.cases", "hall_frame.dat"):
            shutil.copy(pathlib.Path(EXAMPLES) / example, folder)
        check_run(folder)
        check_direct(folder)
        check_refusals(folder)
        check_inputs_stay(folder)


main()
