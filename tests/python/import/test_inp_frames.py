"""Beams and shells of .inp files: closed forms."""

import math
import re

import numpy as np
import pytest
from solved import block_rows, solve

E, NU = 2.0e5, 0.25
G = E / (2 * (1 + NU))
LENGTH, FORCE = 2000.0, 7.0
MATERIAL = f"*MATERIAL, NAME=M\n*ELASTIC\n{E}, {NU}\n*DENSITY\n8e-9\n"


def cantilever(section, direction, kind="B31", n1=None, step="*CLOAD\n2, {component}, 7.\n", component=1):
    """A beam from the origin; the free end is node 2."""
    end = np.array(direction, dtype=float) * LENGTH / np.linalg.norm(direction)
    middle = 0.5 * end
    nodes = "1, 0, 0, 0\n2, %.17g, %.17g, %.17g\n" % tuple(end)
    elements = "1, 1, 2\n"
    if kind.startswith("B32"):
        nodes += "3, %.17g, %.17g, %.17g\n" % tuple(middle)
        elements = "1, 1, 3, 2\n"
    return (
        f"*NODE\n{nodes}*ELEMENT, TYPE={kind}, ELSET=B\n{elements}{MATERIAL}"
        f"*BEAM SECTION, ELSET=B, MATERIAL=M, SECTION={section}"
        + ("\n" + n1 if n1 else "")
        + "\n*BOUNDARY\n1, 1, 6\n*STEP\n*STATIC\n"
        + step.format(component=component)
        + "*END STEP\n"
    )


def moved(imported, build, folder, text, node=2):
    (folder / "frame.inp").write_text(text)
    status, _, err = imported("frame.inp", "--units", "mm,N", "-o", "frame.dat")
    assert status == 0, err
    assert "no shear deformation" in err
    return solve(build, folder / "frame.dat").displacements[node - 1]


def bending(second_moment):
    return FORCE * LENGTH**3 / (3 * E * second_moment)


RECT = "RECT\n30., 80."  # 30 along n1, 80 along n2
ALONG_N1, ALONG_N2 = 30**3 * 80 / 12, 30 * 80**3 / 12


# J = beta a b^3 with a >= b (S. P. Timoshenko, J. N. Goodier, Theory of Elasticity, 1951, chapter 11), three digits.
@pytest.mark.parametrize("ratio, beta", [(1.0, 0.1406), (1.2, 0.166), (1.5, 0.196), (2.5, 0.249), (10.0, 0.312)])
def test_torsion_of_rectangles(imported, build, tmp_path, ratio, beta):
    for widths in (f"{20 * ratio}, 20.", f"20., {20 * ratio}"):
        moved(imported, build, tmp_path, cantilever(f"RECT\n{widths}", (1, 0, 0), "B31", "0, 1, 0"))
        record = (tmp_path / "frame.dat").read_text()
        J = float(re.search(r"\bJ\s*=?\s*(\S+)", record).group(1))
        assert J == pytest.approx(beta * 20 * ratio * 20**3, rel=5e-3)


# The widths are no longer in the numbers of the record: a reader of the problem file finds them above it.
@pytest.mark.parametrize(
    "section, words",
    [
        ("RECT\n30., 80.", "RECT, 30 along y', 80 along z'"),
        ("CIRC\n25.5, 25.5", "CIRC, diameter 25.5"),
        ("PIPE\n30., 2.", "PIPE, outer radius 30, wall 2"),
        ("GENERAL\n10., 1., 0., 2., 3.", "GENERAL"),
    ],
)
def test_the_shape_of_a_section_is_a_comment(imported, build, tmp_path, section, words):
    moved(imported, build, tmp_path, cantilever(section, (1, 0, 0), n1="0, 1, 0"))
    lines = (tmp_path / "frame.dat").read_text().splitlines()
    assert lines[lines.index("materials") + 1] == f"# Beam section of B: M; {words}"


@pytest.mark.parametrize("kind", ["B31", "B31R", "B32", "B32R"])
@pytest.mark.parametrize(
    "direction, n1, across, expected",
    [
        # The force acts along a global axis; n1 or n2 is that axis.
        ((1, 0, 0), None, 3, ALONG_N1),  # default n1 = (0, 0, -1)
        ((1, 0, 0), None, 2, ALONG_N2),
        ((1, 0, 0), "0, 1, 0", 2, ALONG_N1),
        ((1, 0, 0), "0, 1, 0", 3, ALONG_N2),
        ((-1, 0, 0), "0, 1., 0.", 2, ALONG_N1),
        ((0, 1, 0), "1, 0, 0", 1, ALONG_N1),
        ((0, 1, 0), "1, 0, 0", 3, ALONG_N2),
        ((0, 0, 1), "1, 0, 0", 1, ALONG_N1),
        ((0, 0, 1), "0, 1, 0", 1, ALONG_N2),
        ((0, 0, -1), "0, 1, 0", 2, ALONG_N1),
        ((0, 0, -1), "0, -1, 0", 1, ALONG_N2),
        ((3, 4, 0), "0, 0, 1", 3, ALONG_N1),
        ((3, 4, 0), "1, 0, 0", 3, ALONG_N2),  # n1 not at right angles to the beam
        ((3, 4, 0), "5, 0, 0", 3, ALONG_N2),  # nor of length 1
    ],
)
def test_n1(imported, build, tmp_path, kind, direction, n1, across, expected):
    got = moved(imported, build, tmp_path, cantilever(RECT, direction, kind, n1, component=across))
    np.testing.assert_allclose(got[across - 1], bending(expected), rtol=1e-5)  # six digits are printed


@pytest.mark.parametrize(
    "direction, n1, has_angles",
    [
        ((1, 0, 0), "0, 1, 0", False),
        ((1, 0, 0), "0, -1, 0", True),
        ((1, 0, 0), None, True),
        ((-1, 0, 0), "0, -1, 0", False),
        ((0, 0, 1), "1, 0, 0", False),
        ((0, 0, -1), "1, 0, 0", False),
        ((0, 0, 1), "0, 1, 0", True),
        ((3, 4, 0), "-4, 3, 0", False),
    ],
)
def test_angles_only_where_axes_differ(imported, build, tmp_path, direction, n1, has_angles):
    # Without angles y' is horizontal and z' upwards; the y' of a vertical beam is X.
    moved(imported, build, tmp_path, cantilever(RECT, direction, "B31", n1))
    assert ("Euler1" in (tmp_path / "frame.dat").read_text()) == has_angles


def turned(angles):
    """Axes as rows: the global axes turned clockwise by a1 about Z, by a2 about X, by a3 about Z."""

    def about(axis, angle):
        first, second = [k for k in range(3) if k != axis]
        matrix = np.eye(3)
        matrix[first, first] = matrix[second, second] = math.cos(angle)
        matrix[first, second], matrix[second, first] = math.sin(angle), -math.sin(angle)
        return matrix

    a1, a2, a3 = angles
    return (about(2, a3) @ about(0, a2) @ about(2, a1)).T


def test_euler_angles():
    from morlen_import.inp_sections import euler_angles

    random = np.random.default_rng(1)
    axes = [np.linalg.qr(random.normal(size=(3, 3)))[0] for _ in range(50)]
    axes = [a * np.linalg.det(a) for a in axes]
    axes += [np.eye(3), np.diag([-1, -1, 1]), np.diag([1, -1, -1]), np.diag([-1, 1, -1])]
    axes += [np.roll(np.eye(3), k, axis=0) for k in (1, 2)]
    for own, angles in zip(axes, euler_angles(np.array(axes))):
        np.testing.assert_allclose(turned(angles), own, atol=1e-12)  # sines and cosines of rounded angles


def test_section_at_any_angle(imported, build, tmp_path):
    # n1 at 30 degrees in the plane of Y and Z: a force along Z bends the beam about both principal axes.
    angle = math.radians(30)
    got = moved(
        imported,
        build,
        tmp_path,
        cantilever(RECT, (1, 0, 0), "B31", f"0, {math.cos(angle)}, {math.sin(angle)}", component=3),
    )
    along1, along2 = bending(ALONG_N1) * math.sin(angle), bending(ALONG_N2) * math.cos(angle)
    np.testing.assert_allclose(
        got[1:3],
        [
            along1 * math.cos(angle) - along2 * math.sin(angle),
            along1 * math.sin(angle) + along2 * math.cos(angle),
        ],
        rtol=1e-5,
    )


@pytest.mark.parametrize(
    "section, second_moments, torsion",
    [
        ("CIRC\n40., 40.", (math.pi * 20**4 / 4,) * 2, math.pi * 20**4 / 2),
        ("PIPE\n20., 3.", (math.pi * (20**4 - 17**4) / 4,) * 2, math.pi * (20**4 - 17**4) / 2),
        ("GENERAL\n1000., 2e5, 0., 5e4, 6e4", (5e4, 2e5), 6e4),
        ("general\n1000., 2d5, 0, 5.D4, 6e4,", (5e4, 2e5), 6e4),
    ],
)
def test_shapes(imported, build, tmp_path, section, second_moments, torsion):
    # I11 is bending about n1, and so for forces along n2.
    for component, expected in ((2, second_moments[0]), (3, second_moments[1])):
        got = moved(
            imported, build, tmp_path, cantilever(section, (1, 0, 0), "B31", "0, 1, 0", component=component)
        )
        np.testing.assert_allclose(got[component - 1], bending(expected), rtol=1e-5)
    got = moved(imported, build, tmp_path, cantilever(section, (1, 0, 0), "B31", "0, 1, 0", component=4))
    np.testing.assert_allclose(got[3], FORCE * LENGTH / (G * torsion), rtol=1e-5)


def second_moments_of(a, b):
    """About the axes along a and b of a rectangle, and its torsion constant.

    J by the double Fourier series of Prandtl's stress function (S. P. Timoshenko, J. N. Goodier, Theory of Elasticity,
    1951, chapter 11): 256/pi^6 a b sum of 1/(m^2 n^2 (m^2/a^2 + n^2/b^2)) over odd m and n.
    """
    m, n = np.meshgrid(np.arange(1, 800, 2.0), np.arange(1, 800, 2.0))
    series = (1 / (m**2 * n**2 * (m**2 / a**2 + n**2 / b**2))).sum()
    return a * b**3 / 12, a**3 * b / 12, 256 / math.pi**6 * a * b * series


@pytest.mark.parametrize("kind", ["B31", "B32"])
@pytest.mark.parametrize(
    "section, about_n1, torsion",
    [
        ("RECT\n30., 80.", *second_moments_of(30, 80)[::2]),
        ("RECT\n80., 30.", *second_moments_of(80, 30)[::2]),
        ("PIPE\n20., 3.", math.pi * (20**4 - 17**4) / 4, math.pi * (20**4 - 17**4) / 2),
    ],
    ids=["upright", "flat", "pipe"],
)
def test_torsion_frame(imported, build, tmp_path, kind, section, about_n1, torsion):
    """A girder from (0, 0) to (2a, 0), clamped at both ends, and an arm of length b at its middle with a load along Z.

    The load bends the arm, P b^3/(3 E I), and the girder, P (2a)^3/(192 E I), and its moment P b twists both halves
    of the girder by P b a/(2 G J), which the arm's length b makes a deflection. n1 is horizontal in both.
    """
    a, b = 1500.0, 900.0
    places = [(0, 0), (a / 2, 0), (a, 0), (1.5 * a, 0), (2 * a, 0), (a, b / 2), (a, b)]
    nodes = "".join(f"{k}, {x}, {y}, 0.\n" for k, (x, y) in enumerate(places, 1))
    halves = ([(1, 2, 3), (3, 4, 5)], [(3, 6, 7)])
    cards, number = "", 0
    for name, n1, members in zip(("GIRDER", "ARM"), ("0., 1., 0.", "-1., 0., 0."), halves):
        rows = members if kind == "B32" else [pair for m in members for pair in (m[:2], m[1:])]
        cards += f"*ELEMENT, TYPE={kind}, ELSET={name}\n"
        for row in rows:
            number += 1
            cards += f"{number}, " + ", ".join(map(str, row)) + "\n"
        cards += f"*BEAM SECTION, ELSET={name}, MATERIAL=M, SECTION={section}\n{n1}\n"
    text = (
        f"*NODE\n{nodes}{MATERIAL}{cards}*BOUNDARY\n1, ENCASTRE\n5, ENCASTRE\n"
        "*STEP\n*STATIC\n*CLOAD\n7, 3, -7.\n*END STEP\n"
    )
    moved(imported, build, tmp_path, text)
    results = solve(build, tmp_path / "frame.dat")
    bent = FORCE * (b**3 / 3 + (2 * a) ** 3 / 192) / (E * about_n1)
    twist = FORCE * b * a / (2 * G * torsion)
    got = results.displacements
    # Six digits are printed; the series of J is cut off at 1e-6.
    np.testing.assert_allclose(got[6][2], -(bent + twist * b), rtol=1e-5)
    np.testing.assert_allclose(got[2][3], -twist, rtol=1e-5)
    # Each half takes half of the load and of the torque; the sign is that of the reaction.
    np.testing.assert_allclose(results.reactions[1][2:4], [FORCE / 2, FORCE * b / 2], rtol=1e-5)
    np.testing.assert_allclose(results.reactions[5][2:4], [FORCE / 2, FORCE * b / 2], rtol=1e-5)


@pytest.mark.parametrize("kind", ["B31", "B32"])
@pytest.mark.parametrize("elements", ["B", "1", ""])
def test_weight(imported, build, tmp_path, kind, elements):
    step = f"*DLOAD\n{elements}, GRAV, 9810., 0, 0, -3\n"
    got = moved(imported, build, tmp_path, cantilever(RECT, (1, 0, 0), kind, "0, 1, 0", step))
    weight = 8e-9 * 9810 * 30 * 80
    np.testing.assert_allclose(got[2], -weight * LENGTH**4 / (8 * E * ALONG_N2), rtol=1e-5)


def test_weight_of_a_part_is_a_load(imported, build, tmp_path):
    text = cantilever(RECT, (1, 0, 0), "B32", "0, 1, 0", "*DLOAD\n2, GRAV, 9810., 0, 0, -1\n")
    text = text.replace(
        "*ELEMENT, TYPE=B32", "4, 2000, 0, 1000\n5, 2000, 0, 500\n*ELEMENT, TYPE=B32"
    ).replace("1, 1, 3, 2\n", "1, 1, 3, 2\n2, 2, 5, 4\n")
    text = text.replace("MATERIAL=M, SECTION", "MATERIAL=M, SECTION")
    got = moved(imported, build, tmp_path, text)
    assert "GravityDirection" not in (tmp_path / "frame.dat").read_text()
    rows = block_rows((tmp_path / "frame.dat").read_text(), "global_pressure_loads")
    load = 8e-9 * 9810 * 30 * 80
    assert [row[0] for row in rows] == ["3", "4"]
    np.testing.assert_allclose([float(row[3]) for row in rows], -load)
    np.testing.assert_allclose(got[2], -load * 1000 * LENGTH**3 / (3 * E * ALONG_N2), rtol=1e-5)


def test_curved_arch_has_axes_of_each_half(imported, build, tmp_path):
    # A quarter circle as a cantilever, its end loaded out of its plane: u = P R^3 (k1 / (E I) + k2 / (G J)) with
    # k1 = pi/4 and k2 = 3 pi/4 - 2 (Castigliano).
    count, radius = 40, 1000.0
    angles = np.linspace(0, math.pi / 2, 2 * count + 1)
    nodes = "".join(
        f"{k + 1}, {radius * math.sin(a)}, 0., {radius * math.cos(a)}\n" for k, a in enumerate(angles)
    )
    elements = "".join(f"{k + 1}, {2 * k + 1}, {2 * k + 2}, {2 * k + 3}\n" for k in range(count))
    text = (
        f"*NODE\n{nodes}*ELEMENT, TYPE=B32, ELSET=B\n{elements}{MATERIAL}*BEAM SECTION, ELSET=B, MATERIAL=M, SECTION=GENERAL\n"
        f"1000., 2e5, 0., 5e4, 6e4\n0, 1, 0\n*BOUNDARY\n1, ENCASTRE\n*STEP\n*STATIC\n*CLOAD\n{2 * count + 1}, 2, 7.\n*END STEP\n"
    )
    got = moved(imported, build, tmp_path, text, 2 * count + 1)
    # A force along Y = n1 bends the arch about n2: I22.
    expected = FORCE * radius**3 * (math.pi / 4 / (E * 5e4) + (3 * math.pi / 4 - 2) / (G * 6e4))
    np.testing.assert_allclose(got[1], expected, rtol=2e-4)  # 80 chords for the arc


SHELL = """*NODE
1, 0, 0
2, 1000
3, 1000, 1000
4, 0., 1000.
{middles}*ELEMENT, TYPE={kind}, ELSET=PLATE
{elements}
{material}*SHELL SECTION, ELSET=PLATE, MATERIAL=M
20., 5
*BOUNDARY
1, 1, 6
2, 1, 6
3, 1, 6
4, 1, 6
*SURFACE, NAME=ABOVE
PLATE, SPOS
*SURFACE, NAME=BELOW
PLATE, SNEG
*STEP
*STATIC
{load}*END STEP
"""


@pytest.mark.parametrize("kind", ["S3", "S6"])
@pytest.mark.parametrize(
    "load, total",
    [
        ("*DLOAD\nPLATE, P, 0.002\n", 2000.0),  # along +z', here +Z
        ("*DSLOAD\nABOVE, P, 0.002\n", -2000.0),
        ("*DSLOAD\nBELOW, P, 0.002\n", 2000.0),
        ("*DSLOAD\nBELOW, P, 0.002\n*DLOAD\nPLATE, P, 0.001\n", 3000.0),
        ("*DLOAD\nPLATE, GRAV, 9810., 0, 0, 1\n", 8e-9 * 9810 * 20 * 1e6),
        ("*DLOAD\n1, GRAV, 9810., 0, 0, 1\n", 8e-9 * 9810 * 20 * 5e5),
    ],
)
def test_shells(imported, build, tmp_path, kind, load, total):
    middles = "5, 500, 0\n6, 1000, 500\n7, 500, 1000\n8, 0, 500\n9, 500, 500\n" if kind == "S6" else ""
    elements = "1, 1, 2, 3, 5, 6, 9\n2, 1, 3, 4, 9, 7, 8" if kind == "S6" else "1, 1, 2, 3\n2, 1, 3, 4"
    (tmp_path / "shell.inp").write_text(
        SHELL.format(kind=kind, middles=middles, elements=elements, material=MATERIAL, load=load)
    )
    status, _, err = imported("shell.inp", "--units", "mm,N", "-o", "shell.dat")
    assert status == 0, err
    np.testing.assert_allclose(
        solve(build, tmp_path / "shell.dat").reaction_sum(), [0, 0, -total], atol=1e-5 * abs(total)
    )
