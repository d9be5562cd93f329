"""The map: what every key makes of a group, and the messages with its keys."""

import re

import numpy as np
import pytest
from small_meshes import SHELL, SHELL_MAP, SOLID, SOLID_MAP
from solved import block_rows, solve

LOCAL, GLOBAL, FACE = "local_pressure_loads", "global_pressure_loads", "face_loads"


def run(imported, folder, mesh, text, *options):
    (folder / "a.msh").write_text(mesh)
    (folder / "a.map").write_text(text)
    return imported("a.msh", "a.map", "-o", "a.dat", *options)


def accepted(imported, folder, mesh, text):
    status, out, err = run(imported, folder, mesh, text)
    assert (status, out) == (0, "wrote a.dat\n"), err
    return (folder / "a.dat").read_text()


def test_solid(imported, build, tmp_path):
    text = accepted(imported, tmp_path, SOLID, SOLID_MAP)
    assert "# The groups are used as a.map says." in text
    # Numbers are contiguous, and those of the mesh are in comments.
    assert re.findall(r"(?m)^(\d) \S+ \S+ \S+ # (\d+)$", text) == [(str(k), str(2 * k)) for k in range(1, 6)]
    assert re.findall(r"(?m)^(\d) \d \d \d \d 1 # (\d)$", text) == [("1", "6"), ("2", "7")]
    assert block_rows(text, "constraints") == [[n, "111", "0", "0", "0"] for n in "123"]
    # Corners 4 8 10 are the nodes 2 4 5, of element 2 (2 3 4 5 or turned).
    [[element, side, *values]] = block_rows(text, LOCAL)
    nodes = block_rows(text, "elements")[1][1:5]
    corners = [(0, 1, 2), (1, 2, 3), (2, 3, 0), (3, 0, 1)][int(side)]
    assert (element, {nodes[k] for k in corners}, values) == ("2", {"2", "4", "5"}, ["0", "0", "-6"])
    # The pressure acts along the inward normal: the reactions are the outward normal times area times pressure.
    area = 0.5 * np.cross([-1, 0, 1], [0, 1, 1])  # from (1,0,0) to (0,0,1) and (1,1,1)
    outward = area * np.sign(area @ (np.array([1, 0, 0]) - [0, 1, 0]))
    np.testing.assert_allclose(
        solve(build, tmp_path / "a.dat").reaction_sum(), 6 * outward, rtol=1e-5, atol=1e-5
    )


def test_a_map_with_a_mark_of_the_order_of_bytes(imported, tmp_path):
    plain = accepted(imported, tmp_path, SOLID, SOLID_MAP)
    assert accepted(imported, tmp_path, SOLID, "\ufeff" + SOLID_MAP) == plain


def test_unused_parts_are_listed(imported, tmp_path):
    err = run(imported, tmp_path, SOLID, SOLID_MAP)[2]
    assert err.splitlines() == [
        "a.msh: warning: groups that are not used: 0:tip, 2:also top, 2:inner",
        "a.msh: warning: 1 point has no material or other use: 1",
        "a.msh: warning: 1 triangle has no material or other use: 5",
        "a.msh: warning: 1 node is left out, because no element with a material has it: 12",
    ]


@pytest.mark.parametrize(
    "load, block, rows",
    [
        ('groups = ["also top"]\npressure = 6', LOCAL, [["2", "{top}", "0", "0", "-6"]]),
        ('groups = ["2:top", "2:4"]\npressure = 6', LOCAL, [["2", "{top}", "0", "0", "-6"]]),
        ('groups = ["2:3"]\ntraction = [1, 2, -3.5]', GLOBAL, [["2", "{top}", "1", "2", "-3.5"]]),
        ('groups = ["tip"]\ntotal = [0, 0, -1e4]', "nodal_point_loads", [["5", "0", "0", "-10000"]]),
        ('groups = ["top"]\ntotal = [0, 0, -9]', "nodal_point_loads", [[n, "0", "0", "-3"] for n in "245"]),
        (
            'groups = ["top", "tip"]\neach = [0, 0, -9]',
            "nodal_point_loads",
            [[n, "0", "0", "-9"] for n in "245"],
        ),
    ],
)
def test_loads_on_solids(imported, tmp_path, load, block, rows):
    text = accepted(imported, tmp_path, SOLID, SOLID_MAP.replace('groups = ["top"]\npressure = 6', load))
    nodes = block_rows(text, "elements")[1][1:5]
    top = [
        k
        for k, c in enumerate([(0, 1, 2), (1, 2, 3), (2, 3, 0), (3, 0, 1)])
        if {nodes[i] for i in c} == {"2", "4", "5"}
    ]
    assert block_rows(text, block) == [
        [str(top[0]) if word == "{top}" else word for word in row] for row in rows
    ]


@pytest.mark.parametrize(
    "load, block, rows",
    [
        # Lines are elements 1 and 2, the triangles 3 and 4.
        ('groups = ["slab"]\npressure = 5', LOCAL, [["3", "0", "0", "-5"], ["4", "0", "0", "-5"]]),
        ('groups = ["slab"]\ntraction = [0, 1, -5]', GLOBAL, [["3", "0", "1", "-5"], ["4", "0", "1", "-5"]]),
        # 3 2 is edge 1 of 1 2 3; 3 4 is edge 1 of 1 3 4.
        (
            'groups = ["edge"]\ntraction = [0, 1, -5]',
            FACE,
            [["3", "1", "0", "1", "-5"], ["4", "1", "0", "1", "-5"]],
        ),
        ('groups = ["rib"]\ntraction = [0, 1, -5]', GLOBAL, [["1", "0", "1", "-5"]]),
        (
            'groups = ["tip"]\neach = [0, 1, -5, 7, 8, 9]',
            "nodal_point_loads",
            [["3", "0", "1", "-5", "7", "8", "9"]],
        ),
        (
            'groups = ["edge"]\ntotal = [0, 1.5, -6]',
            "nodal_point_loads",
            [[n, "0", "0.5", "-2", "0", "0", "0"] for n in "234"],
        ),
    ],
)
def test_loads_on_shells_and_beams(imported, build, tmp_path, load, block, rows):
    text = accepted(imported, tmp_path, SHELL, SHELL_MAP + "[loads.x]\n" + load)
    assert block_rows(text, block) == rows
    expected = {
        LOCAL: [0, 0, 20],
        GLOBAL: [0, -4, 20] if "slab" in load else [0, -(8**0.5), 5 * 8**0.5],
        FACE: [0, -4, 20],
        "nodal_point_loads": [0, -1, 5] if "each" in load else [0, -1.5, 6],
    }[block]
    # Areas of 4, edges of 2 + 2, a rib of the root of 8; reactions are against the loads.
    np.testing.assert_allclose(
        solve(build, tmp_path / "a.dat").reaction_sum(), expected, atol=1e-4
    )  # six digits


def test_lines_of_three_nodes_become_two_beams(imported, tmp_path):
    mesh = SHELL.replace("5\n1 0 0 1", "6\n6 0 0 0.5\n1 0 0 1").replace(
        "4 1 2 4 1 5 1\n", "4 8 2 4 1 5 1 6\n"
    )
    hinges = '[hinges.column]\ngroups = ["column"]\ncode = "01"\n'
    # The slab on a hinge can turn: without the check.
    assert run(imported, tmp_path, mesh, SHELL_MAP + hinges, "--no-check")[0] == 0
    text = (tmp_path / "a.dat").read_text()
    assert [row[:3] for row in block_rows(text, "elements")[:3]] == [
        ["1", "1", "3"],
        ["2", "5", "6"],
        ["3", "6", "1"],
    ]
    assert block_rows(text, "elem_rotules") == [["2", "01"], ["3", "11"]]


def test_supports(imported, tmp_path):
    extra = (
        '[supports.spring]\ngroups = ["tip"]\nflags = "001200"\nvalues = [0, 0, -0.01, 50, 0, 0]\nEuler1 = 0.5\n'
        '[supports.edge]\ngroups = ["column"]\nflags = "100000"\n'
    )
    text = accepted(imported, tmp_path, SHELL, SHELL_MAP + extra)
    assert block_rows(text, "constraints") == [
        ["1", "100000", *"000000"],
        [
            "3",
            "001200",
            "0",
            "0",
            "-0.01",
            "50",
            "0",
            "0",
            "Euler1",
            "=",
            "0.5",
            "Euler2",
            "=",
            "0",
            "Euler3",
            "=",
            "0",
        ],
        ["5", "111111", *"000000"],
    ]
    assert "# supports.foot and supports.edge\n" in text


def test_settings_and_units(imported, tmp_path):
    text = accepted(
        imported,
        tmp_path,
        SHELL,
        SHELL_MAP.replace(
            '"Refined"',
            '"Refined"\nConvertTo6Nodes = true\n'
            'GravityDirection = [0, 0, -1]\nNumOfDivisions = 4\nSolver = "SkyLine"',
        ).replace("t = 0.2", "t = 0.2\nWeight = 25"),
    )
    settings = re.search(r"(?s)# Settings\n(.*?)\n\n", text).group(1).split("\n")
    assert settings == [
        "ShellFormulation Refined",
        "ConvertTo6Nodes 1",
        "GravityDirection 0 0 -1",
        "NumOfDivisions 4",
        "Solver SkyLine",
    ]
    assert (
        "  kN-m  kN m kPa  1000 1\n" in text
        and "units_mesh m\nunits_mat_and_load kN-m\nunits_res kN-m\n" in text
    )


def solid_map(old, new):
    assert old in SOLID_MAP
    return SOLID_MAP.replace(old, new, 1)


@pytest.mark.parametrize(
    "length, force, line",
    [
        ("mm", "N", "N-mm  N mm MPa  1 0.001"),
        ("cm", "kN", "kN-cm  kN cm kN/cm2  1000 0.01"),
        ("km", "MN", "MN-km  MN km MN/km2  1000000 1000"),
        # An inch is 25.4 mm, a foot 12 inches, a pound 0.45359237 kg under 9.80665 m/s2, a kip 1000 pounds.
        ("in", "lbf", f"lbf-in  lbf in psi  {0.45359237 * 9.80665:.14g} {0.0254:g}"),
        ("ft", "kip", f"kip-ft  kip ft kip/ft2  {453.59237 * 9.80665:.14g} {12 * 0.0254:g}"),
    ],
)
def test_units(imported, tmp_path, length, force, line):
    text = SOLID_MAP.replace('"mm"', f'"{length}"').replace('"N"', f'"{force}"')
    assert f"\n  {line}\n" in accepted(imported, tmp_path, SOLID, text)


REFUSED = [
    (
        solid_map("length =", "lenght ="),
        [
            "a.map: error: units.lenght: unknown key; did you mean 'length'?",
            "a.map: error: units.length: this unit is missing",
        ],
    ),
    (
        "units = 5\n" + solid_map('units = { length = "mm", force = "N" }', ""),
        [
            "a.map: error: units: a table is needed",
            "a.map: error: units.length: this unit is missing",
            "a.map: error: units.force: this unit is missing",
        ],
    ),
    (
        SOLID_MAP + "[supports]\nx = 1\n",
        ["a.map: error: supports.x: a table is needed, as in: [supports.name]"],
    ),
    (SOLID_MAP + "[hinges]\nx = 1\n", ["a.map: error: hinges.x: a table is needed, as in: [hinges.name]"]),
    ("loads = 5\n" + SOLID_MAP[: SOLID_MAP.index("[loads")], ["a.map: error: loads: a table is needed"]),
    (solid_map("E = 2.1e5\nnu = 0.3\n", ""), ["a.map: error: materials.steel: the material has no values"]),
    (
        SOLID_MAP + "[settings]\nNumOfDivisions = 2.5\nGravityDirection = [0, 0, 0]\n",
        [
            "a.map: error: settings.NumOfDivisions: a whole number is needed",
            "a.map: error: settings.GravityDirection: a direction is not 0 0 0",
        ],
    ),
    (
        SOLID_MAP + '[settings]\nDoSmoothing = "x"\n',
        ["a.map: error: settings.DoSmoothing: a finite number is needed, not 'x'"],
    ),
    (
        'units = { length = "mm", force = "N" }\n',
        ["a.map: error: materials: no material is given: elements need one"],
    ),
    ("x = " + "[" * 5000, ["a.map:1: error: no TOML: nested too deeply"]),
    (SOLID_MAP + "[loads.x\n", ["a.map:13: error: no TOML: Expected ']' at the end of a table declaration"]),
    (SOLID_MAP + "x = \n", ["a.map:13: error: no TOML: Invalid value"]),
    (SOLID_MAP + "[loads.top]\n", ["a.map:13: error: no TOML: Cannot declare ('loads', 'top') twice"]),
    (
        SOLID_MAP + "[loads",
        ["a.map:13: error: no TOML: Expected ']' at the end of a table declaration at the end of the file"],
    ),
    (SOLID_MAP + "[load.x]\n", ["a.map: error: load: unknown key; did you mean 'loads'?"]),
    (
        solid_map("nu = 0.3", "nu = 0.3\nweigth = 1"),
        ["a.map: error: materials.steel.weigth: unknown key; did you mean 'Weight'?"],
    ),
    (
        solid_map("nu = 0.3", "nu = 0.3\nWeight = 1"),
        [
            "a.map: error: materials.steel.Weight: a weight needs its direction, as in [settings]: GravityDirection = [0, 0, -1]"
        ],
    ),
    (
        solid_map("2.1e5", '"2.1e5"'),
        ["a.map: error: materials.steel.E: a finite number is needed, not '2.1e5'"],
    ),
    (solid_map("2.1e5", "nan"), ["a.map: error: materials.steel.E: a finite number is needed, not nan"]),
    (solid_map("2.1e5", "true"), ["a.map: error: materials.steel.E: a finite number is needed, not True"]),
    (
        solid_map('["body"]', '"body"'),
        ['a.map: error: materials.steel.groups: a list of names is needed, as in: groups = ["top"]'],
    ),
    (
        solid_map('["body"]', "[5]"),
        ['a.map: error: materials.steel.groups: a list of names is needed, as in: groups = ["top"]'],
    ),
    (
        solid_map('"mm"', '"dm"'),
        ["a.map: error: units.length: 'dm' is no unit of length: use one of mm, cm, m, km, in, ft"],
    ),
    (
        solid_map('units = { length = "mm", force = "N" }', ""),
        ['a.map: error: units: the units are missing, as in: units = { length = "mm", force = "N" }'],
    ),
    (
        solid_map('"111"', '"121"'),
        ["a.map: error: supports.clamp.values: flag 2 needs the stiffness of its spring"],
    ),
    (
        solid_map('"111"', '"113"'),
        [
            'a.map: error: supports.clamp.flags: three or six digits 0, 1 or 2 are needed, as in: flags = "111"'
        ],
    ),
    (
        solid_map('"111"', "111"),
        [
            'a.map: error: supports.clamp.flags: three or six digits 0, 1 or 2 are needed, as in: flags = "111"'
        ],
    ),
    (
        solid_map('"111"', '"110"\nvalues = [0, 0, 1]'),
        ["a.map: error: supports.clamp.values: value 3 is of a component that flag 0 leaves free"],
    ),
    (
        solid_map('"111"', '"111111"'),
        ["a.map: error: supports.clamp.flags: 3 digits are needed for this model, not 6"],
    ),
    (
        solid_map('"111"', '"111"\nEuler2 = 1'),
        ["a.map: error: supports.clamp.Euler2: supports of solids are turned about z only, by Euler1"],
    ),
    (
        solid_map("pressure = 6", "presure = 6"),
        [
            "a.map: error: loads.top.presure: unknown key; did you mean 'pressure'?",
            "a.map: error: loads.top: one of pressure, traction, total, each is needed",
        ],
    ),
    (
        solid_map("pressure = 6", "pressure = 6\ntotal = [0, 0, 1]"),
        ["a.map: error: loads.top: one of pressure, traction, total, each is needed, not several"],
    ),
    (
        solid_map("pressure = 6", "pressure = [6]"),
        ["a.map: error: loads.top.pressure: a finite number is needed, not [6]"],
    ),
    (
        solid_map("pressure = 6", "traction = [6, 0]"),
        ["a.map: error: loads.top.traction: a list of 3 finite numbers is needed, not [6, 0]"],
    ),
    (
        solid_map("pressure = 6", "total = [0, 0, 1, 0, 0, 1]"),
        ["a.map: error: loads.top.total: nodes of solids take three forces and no moments"],
    ),
    (
        solid_map('["top"]', '["tpo"]'),
        [
            "a.map: error: loads.top.groups: 'tpo' is no group of a.msh; did you mean 'top'?",
            "hint: its groups: 0:tip, 2:foot, 2:top, 2:also top, 2:inner, 3:body",
        ],
    ),
    (
        solid_map('["top"]', '["inner"]'),
        [
            "a.map: error: loads.top.groups: 1 triangle is inside the solid, where a pressure has no direction: 5"
        ],
    ),
    (solid_map('["top"]', '["body"]'), ["a.map: error: loads.top.pressure: no pressure acts on tetrahedra"]),
    (solid_map('["top"]', '["tip"]'), ["a.map: error: loads.top.pressure: no pressure acts on points"]),
    (
        SOLID_MAP + '[settings]\nSolvr = "SkyLine"\n',
        ["a.map: error: settings.Solvr: unknown key; did you mean 'Solver'?"],
    ),
    (
        SOLID_MAP + "[settings]\nConvertTo6Nodes = 1\n",
        ["a.map: error: settings.ConvertTo6Nodes: true or false is needed"],
    ),
    (
        SOLID_MAP + '[settings]\nSolver = "Sky\\nLine"\n',
        ["a.map: error: settings.Solver: a text of one line is needed"],
    ),
    (
        SOLID_MAP + '[hinges.x]\ngroups = ["top"]\ncode = "2"\n',
        [
            'a.map: error: hinges.x.code: the code is "00", "01", "10" or "11": a digit for each end, 0 for a hinge'
        ],
    ),
    (
        SOLID_MAP + '[hinges.x]\ngroups = ["top"]\ncode = "01"\n',
        ["a.map: error: hinges.x.groups: hinges are only for lines with a material"],
    ),
    (
        SOLID_MAP + '[supports.y]\ngroups = ["top"]\nflags = "100"\nvalues = [0.1, 0, 0]\n',
        [
            "a.map: error: supports.y.groups: node 4 has another support already, that of supports.clamp, and the two differ"
        ],
    ),
    (
        SOLID_MAP + '[supports.y]\ngroups = ["top"]\nflags = "100"\nEuler1 = 0.3\n',
        [
            "a.map: error: supports.y.groups: node 4 has another support already, that of supports.clamp, and the two differ"
        ],
    ),
    (
        SOLID_MAP + '[materials.other]\ngroups = ["body"]\nE = 1\n',
        [
            "a.map: error: materials.other.groups: 2 tetrahedra have a material already, that of materials.steel: 6, 7"
        ],
    ),
    (
        solid_map('["body"]', '["tip"]'),
        ["a.map: error: materials.steel.groups: the groups have no lines, triangles or tetrahedra"],
    ),
    (
        SOLID_MAP + '[materials.skin]\ngroups = ["foot"]\nE = 1\n',
        ["a.map: error: materials: tetrahedra cannot be combined with beams or shells in one model"],
    ),
]


@pytest.mark.parametrize("number", range(len(REFUSED)))
def test_refusals(imported, tmp_path, number):
    text, messages = REFUSED[number]
    status, out, err = run(imported, tmp_path, SOLID, text)
    assert (status, out) == (2, "")
    assert [line for line in err.splitlines() if "warning" not in line] == messages
    assert not (tmp_path / "a.dat").exists()


@pytest.mark.parametrize(
    "load, message",
    [
        ('groups = ["rib"]\npressure = 5', "loads.x.pressure: no pressure acts on lines"),
        (
            'groups = ["loose"]\ntraction = [1, 0, 0]',
            "loads.x.groups: 1 line has no material and is no edge of shells: 9",
        ),
        ('groups = ["foot"]\ntraction = [1, 0, 0]', "loads.x.traction: no traction acts on points"),
    ],
)
def test_refusals_on_shells(imported, tmp_path, load, message):
    status, _, err = run(imported, tmp_path, SHELL, SHELL_MAP + "[loads.x]\n" + load)
    assert status == 2
    assert f"a.map: error: {message}" in err.splitlines()


def test_a_name_of_two_dimensions(imported, tmp_path):
    mesh = SOLID.replace('"foot"', '"body"')
    status, _, err = run(imported, tmp_path, mesh, SOLID_MAP.replace('"foot"', '"2:body"'))
    message = "a.map: error: materials.steel.groups: several groups have the name 'body': write '2:body' or '3:body'"
    assert (status, err.splitlines()[-1]) == (2, message)
    accepted(
        imported, tmp_path, mesh, SOLID_MAP.replace('"foot"', '"2:body"').replace('["body"]', '["3:body"]')
    )


def test_nodes_of_no_element(imported, tmp_path):
    mesh = SOLID.replace("1 15 2 1 1 10", "1 15 2 1 1 12")
    status, _, err = run(
        imported,
        tmp_path,
        mesh,
        SOLID_MAP.replace('groups = ["top"]\npressure = 6', 'groups = ["tip"]\neach = [1, 0, 0]'),
    )
    message = "a.map: error: loads.top.groups: 1 node belongs to no element with a material: 12"
    assert (status, err.splitlines()[-1]) == (2, message)
