#!/usr/bin/env python3
"""Compares the recipes of docs/cookbook.md with closed forms.

    check_cookbook.py COOKBOOK FOLDER_OF_MODELS FOLDER_OF_PROGRAMS...

Every problem file of the folder is solved. Each row of the page's tables | result | program | by hand | is
checked twice: the program's value against the formula, and both against the digits of the page. Indented
blocks must be lines of the files that their section names, and morlen-check must find nothing in any file.
Beams, bedding and symmetry are independent of the program: the formulas are those of the recipes.
"""

import math
import os
import pathlib
import re
import shutil
import subprocess
import sys
import tempfile
from math import exp, radians, sqrt, tan


class Results:
    """Results of a run: displacements, end forces and reactions by number, and the blocks of points."""

    def __init__(self, folder, name, text=None):
        path = pathlib.Path(folder) / name
        if text is not None:
            path.write_text(text)
        run = subprocess.run(["morlen", "-i", "-", name, "out.txt"], cwd=folder, text=True, capture_output=True)
        if run.returncode:
            sys.exit(f"{name}: {run.stderr}")
        self.log = run.stdout
        self.sections = {}
        rows, element = None, None
        for line in (pathlib.Path(folder) / "out.txt").read_text().splitlines():
            if re.match(r"[A-Z]{4}", line):
                rows = self.sections.setdefault(line.split(" (")[0], {})
            elif line.startswith("Element "):
                element = int(line.split()[1])
                rows[element] = []
            elif line.strip():
                values = [float(word) for word in line.split()]
                if element is not None and "STRENGTH" in list(self.sections)[-1]:
                    rows[element].append(values)
                else:
                    rows[int(values[0])] = values[1:]
        self.res = path.with_suffix(".morlen.res").read_text()

    def moved(self, node):
        return self.sections["NODAL DISPLACEMENTS"][node]

    def ends(self, element):
        """Forces of the nodes on the element: two ends, local axes."""
        return self.sections["ELEMENT STRENGTH"][element]

    def reaction(self, node):
        return self.sections["REACTIONS"][node]

    def block(self, name):
        """{number: [values of each point]} of a block of the post-process file."""
        rows, inside = {}, False
        for line in self.res.splitlines():
            if " Estatic " in line:
                inside = line.split(" 4 1.0 ")[0].strip() == name
            elif inside and re.match(r" ?-?\d", line):
                values = [float(word) for word in line.split()]
                if not line.startswith(" "):
                    current = rows.setdefault(int(values.pop(0)), [])
                current.append(values)
        return rows

    def estimated_error(self):
        return float(re.findall(r"error of the displacements= (\S+),", self.log)[-1])


E, STEEL_I, GIRDER_I = 2.1e8, 5696e-8, 11770e-8


def rigid_link(r, _):
    load, h, e, area = 40, 6, 0.5, 78.08e-4
    return [("deflection of node 3", -r.moved(3)[1],
             load * e * e * h / (E * STEEL_I) + load * h / (E * area), 2e-5, 1e3),
            ("sway of node 2", r.moved(2)[0], load * e * h * h / (2 * E * STEEL_I), 1e-5, 1e3)]


def composite():
    """Second moment of area of the girder with its strip of slab."""
    e, slab, girder = 0.28, 0.16, 0.25 * 0.40
    return slab**3 / 12 + 0.25 * 0.40**3 / 12 + e * e * slab * girder / (slab + girder)


def girder_under_slab(r, _):
    q, length, e, slab, girder = 10, 6, 0.28, 0.16, 0.25 * 0.40
    inertia = composite()
    moment = q * length**2 / 8
    axial = moment * e / inertia * slab * girder / (slab + girder)
    # 5 %: the girder follows the moment in steps between the links (the table of the page), and the slab lags.
    return [("deflection in the middle", -r.moved(middle_of_girder(r))[2], 5 * q * length**4 / (384 * 3e7 * inertia),
             0.05, 1e3),
            ("tension of the girder", max(ends[1][0] for n, ends in r.sections["ELEMENT STRENGTH"].items()
                                          if 1000 < n < 2000), axial, 0.03, 1)]


def middle_of_girder(r):
    return min((u[2], n) for n, u in r.sections["NODAL DISPLACEMENTS"].items())[1]


def girder_as_arch():
    """Thrust of the girder whose axis, z below that of the whole section, is held at both ends."""
    area, z = 0.16 + 0.25 * 0.40, 0.28 * 0.16 / (0.16 + 0.25 * 0.40)
    return z * 10 * 6**2 / 12 / (composite() / area + z * z)


def half_restraint(r, _):
    q, length, k = 20, 6, 10000
    return [("moment at the ends", r.reaction(1)[2], q * length**2 / 12 / (1 + 2 * E * GIRDER_I / (k * length)), 1e-5, 1)]


def spring_joint(r, _):
    q, length, k = 20, 6, 10000
    # 1 %: the shear of the beam bends the short beams too.
    return [("moment at the ends", abs(r.ends(2)[0][2]),
             q * length**2 / 12 / (1 + 2 * E * GIRDER_I / (k * length)), 1e-2, 1)]


def triangular_load(r, _):
    q, length, pieces = 12, 6, 6
    reaction = r.reaction(7)[1]
    # The pieces carry uniform loads, whose resultants are not those of the triangle.
    assert abs(q * length / 3 - reaction - q * length / (12 * pieces**2)) < 1e-4
    return [("moment in the middle", abs(r.ends(3)[1][2]), q * length**2 / 16, 1e-5, 1),
            ("Py of the right support", reaction, q * length / 3, 1e-2, 1)]


def beam_on_bedding(r, _):
    load, k, ei, half = 500, 20000, 3e7 * 0.010416667, 12
    lam = (k / (4 * ei))**0.25
    assert exp(-lam * half) < 0.02  # the free ends are far away
    # 1 %: the springs are 0.5 m apart, and the beam ends.
    return [("deflection under the load", -r.moved(25)[1], load * lam / (2 * k), 1e-2, 1e3),
            ("moment under the load", abs(r.ends(24)[1][2]), load / (4 * lam), 1.5e-2, 1)]


def slab_on_bedding(r, _):
    load, k, d = 100, 20000, 3e7 * 0.2**3 / 12 / (1 - 0.2**2)
    # 7 %: shear deformation under the load; series() leaves it out.
    return [("deflection under the load", -r.moved(1)[2], load / (8 * sqrt(k * d)), 0.07, 1e3),
            ("sum of the springs, a quarter", sum(v[2] for v in r.sections["REACTIONS"].values()), load / 4, 1e-5, 1)]


def symmetric_half(r, _):
    q, length, h = 12, 8, 5
    k = GIRDER_I * h / (STEEL_I * length)
    corner = q * length**2 / (6 * (k + 2))
    return [("moment of the corner", abs(r.ends(1)[1][2]), corner, 2e-5, 1),
            ("moment of the foot", abs(r.reaction(1)[2]), corner / 2, 2e-5, 1),
            ("moment in the middle of the girder", abs(r.reaction(3)[2]), q * length**2 / 8 - corner, 2e-5, 1)]


def antisymmetric_half(r, _):
    load, length, h = 20, 8, 5
    k = GIRDER_I * h / (STEEL_I * length)
    return [("moment of the corner", abs(r.ends(1)[1][2]), load * h / 2 * 3 * k / (6 * k + 1), 2e-5, 1),
            ("moment of the foot", abs(r.reaction(1)[2]), load * h / 2 * (3 * k + 1) / (6 * k + 1), 2e-5, 1)]


def temperature_gradient(r, _):
    m0, length = 3.3e7 * 3.125e-3 * 1e-5 * 20 / 0.5, 8
    # The second end of a beam that sags has a positive moment; M0 is tension on top.
    return [("moment over the middle support", r.ends(1)[1][2] + m0, 1.5 * m0, 1e-5, 1),
            ("Py of the middle support", r.reaction(2)[1], -3 * m0 / length, 1e-5, 1)]


def wall_temperature(r, _):
    free = 3e7 * 0.2 * 1e-5 * 25 / (1 - 0.2)
    points = [p for points in r.block("Axial Force").values() for p in points]
    assert max(p[0] for p in points) - min(p[0] for p in points) < 1e-3
    # x' is against X on a wall with the normal -Y or +Y: N does not depend on that.
    return [("N along the wall", points[0][0] - free, -3e7 * 0.2 * 1e-5 * 25, 1e-5, 1),
            ("N upwards", points[0][1] - free, 0, 1e-3, 1)]


def slab_temperature(r, text):
    curvature, half, moment = 1e-5 * 20 / 0.20, 2, 3e7 * 0.20**2 * 1e-5 * 20 / (12 * (1 - 0.2))

    def largest(r):
        return max((abs(m - moment) for points in r.block("Momentus").values() for p in points for m in p[:2]))

    with tempfile.TemporaryDirectory() as folder:  # the page tells that six nodes are worse at the edges
        six = Results(folder, "six.dat", text.replace("Refined", "Refined\nConvertTo6Nodes"))
        assert 0.6 * moment < largest(six) < 0.67 * moment
    return [("fall of the corners", -r.moved(1)[2], curvature * half**2, 1e-5, 1e3),
            ("largest Mx or My", largest(r), 0, 1e-3, 1)]


def block_temperature(r, _):
    pressure = 3e7 * 1e-5 * 25 / (1 - 2 * 0.2)
    stress = r.block("Strengths")[8][0]
    return [("Sx", stress[0] - pressure, -3e7 * 1e-5 * 25, 1e-5, 1),
            ("Sy", stress[1] - pressure, 0, 0.1, 1),
            ("rise of the top", r.moved(8)[2], 1.2 * 1e-5 * 25, 1e-5, 1e3)]


def inclined_roller(r, _):
    return [("Py of the roller", r.reaction(3)[1], 30, 1e-5, 1),
            ("Px of the roller", r.reaction(3)[0], -30 * tan(radians(30)), 1e-5, 1),
            ("Px of the pin", r.reaction(1)[0], 30 * tan(radians(30)), 1e-5, 1)]


def inclined_roller_in_space(r, _):
    return [("Pz of the roller", r.reaction(3)[2], 30, 1e-5, 1),
            ("Py of the roller", r.reaction(3)[1], -30 * tan(radians(30)), 1e-5, 1)]


def settlement(r, _):
    ei, length, sunk = 3.3e7 * 3.125e-3, 8, 0.010
    return [("moment over the middle support", abs(r.ends(1)[1][2]), 3 * ei * sunk / length**2, 1e-5, 1),
            ("Py of the middle support", r.reaction(2)[1], -6 * ei * sunk / length**3, 1e-5, 1)]


def prestressed_tie(r, _):
    h, length, short, area = 4, 6, 0.012, 4.52e-4
    force = short / (length / (E * area) + 2 * h**3 / (3 * E * STEEL_I))
    return [("force of the tie", r.ends(2)[1][0], force, 1e-5, 1),
            ("moment of the foot", abs(r.reaction(1)[2]), force * h, 1e-5, 1)]


def parabolic_tendon(r, _):
    force, sag, length, ei = 1200, 0.30, 12, 3.4e7 * 0.0149333
    up = 8 * force * sag / length**2
    return [("rise in the middle", r.moved(2)[1], 5 * up * length**4 / (384 * ei), 1e-5, 1e3),
            ("moment in the middle", abs(r.ends(1)[1][2]), force * sag, 1e-5, 1)]


def one_axis_hinge(r, _):
    load, length = 15, 6
    # 2 %: the hinge is 20 mm long.
    return [("deflection", -r.moved(3)[2], load / 2 * (length / 2)**3 / (3 * E * STEEL_I), 2e-2, 1e3),
            ("sway", r.moved(3)[1], load * length**3 / (192 * E * 2003e-8), 1e-5, 1e3),
            ("My at the clamped end", abs(r.reaction(1)[4]), load / 2 * length / 2, 2e-2, 1)]


def hinged_line(r, _):
    q, half, ei = 10, 3, 3e7 * 0.2**3 / 12
    # 0.5 %: the slab deforms by shear too (0.018 mm), and the gap is 10 mm wide.
    return [("deflection of the hinge", -min(u[2] for u in r.sections["NODAL DISPLACEMENTS"].values()),
             q * half**4 / (8 * ei), 5e-3, 1e3),
            ("moment of the left end", -sum(min(v[4], 0) for v in r.sections["REACTIONS"].values()), q * half**2 / 2,
             5e-3, 1)]


def tension_diagonal(r, text):
    load, length, h, girder, bar = 30, 6, 4, 42.96e-4, 3.142e-4
    diagonal = (length**2 + h**2)**0.5
    sway = load / E * (length / girder + (diagonal / length)**2 * diagonal / bar + (h / length)**2 * h / girder)
    both = text.replace("# 5   4   2   2", "  5   4   2   2").replace("  4   00\n", "  4   00\n  5   00\n")
    with tempfile.TemporaryDirectory() as folder:
        assert Results(folder, "both.dat", both).ends(5)[1][0] < 0  # the first run
    return [("force of the diagonal", r.ends(4)[1][0], load * diagonal / length, 1e-5, 1),
            ("sway of node 2", r.moved(2)[0], sway, 1e-5, 1e3)]


def diaphragm(r, _):
    wind, width, depth, ratio = 80, 8, 6, (0.40 / 0.30)**4
    # Stiffness 1 for the columns at x = 8, `ratio` for those at x = 0; the wind acts at x = 4.
    centre = 2 * width / (2 * ratio + 2)
    about = 2 * ratio * centre**2 + 2 * (width - centre)**2 + (2 * ratio + 2) * (depth / 2)**2
    turn = wind * (width / 2 - centre) / about
    shift = wind / (2 * ratio + 2)
    # 0.2 %: the bars of the floor stretch a little.
    return [("shear of columns 1 and 4", -r.reaction(1)[1], ratio * (shift - turn * centre), 2e-3, 1),
            ("shear of columns 2 and 3", -r.reaction(2)[1], shift + turn * (width - centre), 2e-3, 1),
            ("Px of columns 1 and 2, by the twist", -r.reaction(1)[0], ratio * turn * depth / 2, 5e-3, 1)]


def generated(folder, models, name, size, change=lambda text: text):
    """Results of a model of generate.py."""
    text = subprocess.run([sys.executable, "-B", models / "generate.py", name, "--size", str(size)], text=True,
                          capture_output=True, check=True).stdout
    return Results(folder, f"{name}.dat", change(text))


def series(folder, models):
    """Rows of the other tables: the beginning of the row, its numbers in the units of the page, and a judgement."""
    text = (models / "rigid_link.dat").read_text()
    for power, label, percent in ((0, "1", 2.7), (2, "100", 0.027), (4, "10,000", 0.0003), (8, "1e8", 0)):
        r = Results(folder, "link.dat", text.replace("2.1e12", f"2.1e{8 + power}"))
        deflection = rigid_link(r, text)[0]
        error = deflection[1] / deflection[2] - 1
        own = 40 * 0.5**3 / (3 * E * 10**power * STEEL_I) / deflection[2]
        # Six digits are printed: 3e-6 of the deflection.
        sound = abs(error - own) < 3e-6 and r.estimated_error() < 1e-10
        yield f"| {label} | {percent:g} %" if percent else f"| {label} | none", [], sound
    for size, percent in ((1, 10), (0.5, 4), (0.25, 3), (0.125, 2)):
        r = generated(folder, models, "girder_under_slab", size)
        deflection = girder_under_slab(r, None)[0]
        yield f"| {size:g} m |", [deflection[1] * 1e3], round(100 * (deflection[1] / deflection[2] - 1)) == percent
    held = generated(folder, models, "girder_under_slab", 0.5, lambda text: text.replace("52 011100", "52 111100"))
    thrust = held.reaction(40)[0]
    # 2 %: the slab deforms by shear, and the girder follows the moment in steps.
    yield "a thrust of", [thrust], abs(thrust / girder_as_arch() - 1) < 0.02
    sunk = -held.moved(middle_of_girder(held))[2]
    yield "and sinks by only", [sunk * 1e3], sunk < 0.65 * girder_under_slab(
        generated(folder, models, "girder_under_slab", 0.5), None)[0][1]
    for length, percent, words in ((0.02, 0.8, "0.8 % too small with l = L/300"), (0.06, 2.5, "2.5 % with L/100")):
        moment = spring_of_length(folder, models, length)
        exact = spring_joint(moment, None)[0][2]
        error = 100 * (1 - abs(moment.ends(2)[0][2]) / exact)
        yield words, [], abs(error - percent) < 0.05
    for size, percent in ((2, 9), (1, 2), (0.5, 0.5)):
        r = generated(folder, models, "beam_on_bedding", size)
        moment = max(abs(ends[1][2]) for ends in r.sections["ELEMENT STRENGTH"].values())
        error = 100 * (1 - moment * 4 * (20000 / (4 * 3e7 * 0.010416667))**0.25 / 500)
        yield f"| {size:g} m | {moment:.1f} kN m |", [], abs(error - percent) < 0.5
    for size, words in ((0.5, "the program gives"), (0.25, "0.584 mm, and")):
        r = generated(folder, models, "slab_on_bedding", size,
                      lambda text: text.replace("G=1.25e7", "G=1.25e7 Gxz=1.25e9 Gyz=1.25e9"))
        _, program, exact, _, _ = slab_on_bedding(r, None)[0]
        yield words, [program * 1e3], abs(program / exact - 1) < 0.2 * size**2 + 0.01


def spring_of_length(folder, models, length):
    """Results of spring_joint.dat with other lengths of the short beams."""
    text = (models / "spring_joint.dat").read_text()
    for old, new in (("-0.02", -length), ("6.02", 6 + length), ("9.5238095e-7", 10000 * length / E)):
        text = text.replace(old, f"{new:.9g}")
    return Results(folder, "spring.dat", text)


def refused_link(folder, models):
    """Whether the stiffest link of the page's table is refused as too rough."""
    text = (models / "rigid_link.dat").read_text().replace("2.1e12", "2.1e20")
    (pathlib.Path(folder) / "link.dat").write_text(text)
    run = subprocess.run(["morlen", "link.dat"], cwd=folder, text=True, capture_output=True)
    return run.returncode == 2 and "The model is too rough" in run.stderr


def written(models):
    """{name: text} of the models of generate.py."""
    names = re.findall(r"(?m)^def (\w+)\(size=", (models / "generate.py").read_text())
    return {name: subprocess.run([sys.executable, "-B", models / "generate.py", name], text=True, capture_output=True,
                                 check=True).stdout for name in names}


def excerpts(text, name):
    """Indented blocks of a section that follow the name of a file, up to the next file."""
    part = re.split(r"/cookbook/\w+\.dat\)", text.split(f"/cookbook/{name}.dat)", 1)[1])[0]
    return [re.sub(r"(?m)^    ", "", block) for block in re.findall(r"(?m)(?:^    .*\n)+", part)]


def sections(page):
    """{name of a problem file: text of the sections that have it}"""
    found = {}
    for text in re.split(r"(?m)^#+ ", page)[1:]:
        for name in re.findall(r"/cookbook/(\w+)\.dat\)", text):
            found.setdefault(name, text)
    return found


def rows_of(text, name):
    """{label: (program, by hand)} of the table of results of a file; the texts keep their digits."""
    table = text.split(f"/cookbook/{name}.dat)", 1)[1]
    rows = {}
    for row in re.findall(r"(?m)^\| ([^|]+) \| ([^|]+) \| ([^|]+) \|$", table):
        rows.setdefault(row[0], row[1:])
    return rows


def flags_at_planes(page):
    """Faults of the table of symmetry: a mirror turns the displacement across it and the rotations about lines in it."""
    for axis, name in enumerate("XYZ"):
        turned = [int(i == axis) for i in range(3)] + [int(i != axis) for i in range(3)]
        for kind, held in (("symmetric", turned), ("antisymmetric", [1 - flag for flag in turned])):
            plane = "" if name == "Z" else "`" + "".join(str(held[i]) for i in (0, 1, 5)) + "` "
            space, solid = "".join(map(str, held)), "".join(map(str, held[:3]))
            row = f"| {name} = const, {kind} | {plane}| `{space}` | `{solid}` |"
            if row not in page:
                yield f"the page lacks {row}"


def as_printed(value, text):
    """Whether a number is that of the page, at the page's digits."""
    number = re.search(r"[-−]?\d[\d.]*", text)[0].replace("−", "-")
    digits = len(number.partition(".")[2])
    return abs(float(number) - value) <= 0.51 * 10**-digits


def main():
    page = pathlib.Path(sys.argv[1]).read_text()
    models = pathlib.Path(sys.argv[2])
    os.environ["PATH"] = os.pathsep.join([str(pathlib.Path(p).resolve()) for p in sys.argv[3:]] + [os.environ["PATH"]])
    described = sections(page)
    files = sorted(path.stem for path in models.glob("*.dat"))
    faults = [f"{name}: the page lacks it, or the folder" for name in set(files) ^ set(described)]
    faults += flags_at_planes(page)
    with tempfile.TemporaryDirectory() as folder:
        for name in files:
            text = (models / f"{name}.dat").read_text()
            results = globals()[name](Results(folder, f"{name}.dat", text), text)
            if shutil.which("morlen-check"):
                check = subprocess.run(["morlen-check", "--strict", f"{name}.dat"], cwd=folder, capture_output=True)
                if check.returncode:
                    faults.append(f"{name}: {check.stderr.decode()}")
            section = described.get(name, f"/cookbook/{name}.dat)")
            faults += [f"{name}: not in the file:\n{block}" for block in excerpts(section, name) if block not in text]
            rows = rows_of(section, name)
            for label, program, exact, tolerance, factor in results:
                print(f"{name}: {label}: {program * factor:.6g}, by hand {exact * factor:.6g}")
                if abs(program - exact) > tolerance * (abs(exact) or 1):
                    faults.append(f"{name}: {label}: {program} is not {exact}")
                stated = rows.get(label)
                if not stated or not as_printed(program * factor, stated[0]) or not as_printed(exact * factor, stated[1]):
                    faults.append(f"{name}: the page has {stated} for {label}")
        if not refused_link(folder, models):
            faults.append("rigid_link: the factor 1e12 is not refused")
        faults += [f"{name}.dat is not what generate.py writes" for name, text in written(models).items()
                   if text != (models / f"{name}.dat").read_text()]
        for words, numbers, sound in series(folder, models):
            print(words, *numbers)
            place = page.find(words)
            if not sound or place < 0 or not all(as_printed(x, page[place + len(words):]) for x in numbers):
                faults.append(f"the page is wrong in: {words} {numbers}")
    if faults:
        sys.exit("\n".join(faults))


if __name__ == "__main__":
    main()
