"""The rules of .inp files: what is read, what is refused, and where the message points."""

import re
import tomllib

import numpy as np
import pytest
from solved import block_rows, coordinates

BASE = """*HEADING
 two tetrahedra
*NODE, NSET=ALL
1, 0, 0, 0
2, 1, 0, 0
3, 0, 1, 0
4, 0, 0, 1
5, 1, 1, 1
*ELEMENT, TYPE=C3D4, ELSET=BODY
10, 1, 2, 3, 4
20, 2, 3, 4, 5
*NSET, NSET=FEET
1, 2, 3
*MATERIAL, NAME=STEEL
*ELASTIC
2.1E5, 0.3
*SOLID SECTION, ELSET=BODY, MATERIAL=STEEL
*BOUNDARY
FEET, 1, 3
*STEP
*STATIC
*CLOAD
5, 3, -4.
*END STEP
"""


def run(imported, folder, text, *options):
    (folder / "a.inp").write_text(text)
    return imported("a.inp", "--units", "mm,N", "-o", "a.dat", *options)


def accepted(imported, folder, text, *options):
    status, out, err = run(imported, folder, text, *options)
    assert status == 0, err
    return (folder / "a.dat").read_text()


def records(text):
    """The problem file without comments and units."""
    lines = [line.split("#")[0].split() for line in text.splitlines()]
    return [line for line in lines if line]


SAME = {
    "small letters": (lambda t: t.lower()),
    "blanks": (lambda t: re.sub(r"([=,*])", r" \1 ", t).replace(" * ", "*")),
    "tabs": (lambda t: t.replace(", ", ",\t")),
    "carriage returns": (lambda t: t.replace("\n", "\r\n")),
    "comments": (lambda t: t.replace("\n", "\n** , a comment\n")),
    "blank lines": (lambda t: t.replace("\n", "\n\n")),
    "Fortran exponents": (
        lambda t: t.replace("2.1E5", "2.1d+5").replace("-4.", "-4.D0").replace("0, 1, 0\n", "0, 1.d0, 0\n")
    ),
    "trailing commas": (lambda t: re.sub(r"(?m)^([0-9].*)$", r"\1,", t)),
    # Lines of elements (10, 20) may go on after a comma, and are left alone.
    "several trailing commas": (lambda t: re.sub(r"(?m)^(?!10,|20,)([0-9A-Z].*)$", r"\1,, ,", t)),
    "trailing commas of keywords": (lambda t: re.sub(r"(?m)^(\*.*)$", r"\1,", t)),
    "trailing commas before comments and blank lines": (
        lambda t: re.sub(r"(?m)^(\*.*)$", r"\1 ,\t\n** OP=NEW, a comment\n\n", t)
    ),
    "left-out coordinates": (
        lambda t: t.replace("1, 0, 0, 0", "1")
        .replace("2, 1, 0, 0", "2, 1")
        .replace("4, 0, 0, 1", "4, , , 1")
        .replace("3, 0, 1, 0", "3,,1.")
    ),
    "keyword on two lines": (lambda t: t.replace("TYPE=C3D4, ", "TYPE=C3D4,\n")),
    "keyword on four lines with a comment": (
        lambda t: t.replace("TYPE=C3D4, ELSET=BODY", "\n** ELSET=OTHER\n  type = C3D4 ,\n\tElset=BODY,")
    ),
    "a word without value on the next line": (
        lambda t: t.replace("NSET=FEET\n1, 2, 3", "NSET=FEET,\n generate,\n1, 3")
    ),
    "a step's parameters on the next line": (
        lambda t: t.replace("*STEP\n", "*STEP,\nNLGEOM=NO, INC=10\n").replace(
            "*STATIC\n", "*STATIC,\nDIRECT\n"
        )
    ),
    "a trailing comma before the title of a step": (lambda t: t.replace("*STEP\n", "*STEP,\n Name plate\n")),
    "element on two lines": (lambda t: t.replace("10, 1, 2, 3, 4", "10, 1, 2,\n3, 4")),
    "quoted names": (lambda t: t.replace("STEEL", '"STEEL"')),
    "sets of sets": (
        lambda t: t.replace("1, 2, 3\n*MAT", "ONE, OTHERS\n*NSET, NSET=ONE\n1\n*NSET, NSET=OTHERS\n2,3\n*MAT")
    ),
    "generated": (lambda t: t.replace("NSET=FEET\n1, 2, 3", "NSET=FEET, GENERATE\n1, 3")),
    "generated in steps": (
        lambda t: t.replace("NSET=FEET\n1, 2, 3", "NSET=FEET, GENERATE\n1, 3, 2\n2, 2, 1")
    ),
    "a set that grows": (lambda t: t.replace("1, 2, 3\n*MAT", "1\n*NSET, NSET=feet\n2, 3\n*MAT")),
    "a mark of the order of bytes": (lambda t: "\ufeff" + t),
    "an internal set": (lambda t: t.replace("NSET=FEET", "NSET=FEET, INTERNAL")),
    "a set with a number for a name": (
        lambda t: t.replace("NSET=FEET\n", "NSET=7\n").replace("FEET, 1, 3", '"7", 1, 3')
    ),
    "output requests": (
        lambda t: t.replace(
            "*END STEP",
            "*NODE FILE\nU\n*EL FILE\nS\n*NODE PRINT, NSET=ALL\nU\n*OUTPUT, FIELD\n"
            "*ELEMENT OUTPUT\nS\n*END STEP",
        )
    ),
    "components one by one": (lambda t: t.replace("FEET, 1, 3", "FEET, 1\nFEET, 2, 2\nFEET, 3, 3, 0.")),
    "pinned": (lambda t: t.replace("FEET, 1, 3", "FEET, PINNED")),
    "times of a step": (
        lambda t: t.replace("*STATIC\n", "*STATIC\n0.1, 1.\n").replace("*STEP", "*STEP, NLGEOM=NO, INC=10")
    ),
    "parts of a load": (lambda t: t.replace("5, 3, -4.", "5, 3, -1.\n5, 3, -3.")),
    "thickness of a solid": (lambda t: t.replace("MATERIAL=STEEL\n*BOU", "MATERIAL=STEEL\n1.,\n*BOU")),
    "the material last": (
        lambda t: t.replace("*MATERIAL, NAME=STEEL\n*ELASTIC\n2.1E5, 0.3\n", "").replace(
            "*STEP", "*MATERIAL, NAME=STEEL\n*ELASTIC\n2.1E5, 0.3\n*STEP"
        )
    ),
}


@pytest.mark.parametrize("name", SAME)
def test_spellings(imported, tmp_path, name):
    plain = accepted(imported, tmp_path, BASE)
    changed = SAME[name](BASE)
    assert changed != BASE
    assert records(accepted(imported, tmp_path, changed)) == records(plain)


def test_what_is_written(imported, tmp_path):
    text = accepted(imported, tmp_path, BASE)
    assert "# two tetrahedra\n" in text
    assert "1 1 2 3 4 1 # 10\n" in text
    assert block_rows(text, "constraints") == [[n, "111", "0", "0", "0"] for n in "123"]
    assert block_rows(text, "nodal_point_loads") == [["5", "0", "0", "-4"]]
    assert "1  E = 210000  nu = 0.3\n" in text


def test_include(imported, tmp_path):
    (tmp_path / "parts").mkdir()
    (tmp_path / "parts" / "rest.inp").write_text(BASE[BASE.index("*MATERIAL") :])
    (tmp_path / "parts" / "nodes.txt").write_text("4, 0, 0, 1\n5, 1, 1, 1\n")
    text = BASE[: BASE.index("*MATERIAL")].replace(
        "4, 0, 0, 1\n5, 1, 1, 1\n", "*INCLUDE, INPUT=parts/nodes.txt\n"
    )
    plain = accepted(imported, tmp_path, BASE)
    assert records(accepted(imported, tmp_path, text + "*include, input=parts/rest.inp\n")) == records(plain)


@pytest.mark.parametrize(
    "old, new, line, message",
    [
        (
            "2, 1, 0, 0\n",
            "2, 1, 0, 0, 7\n",
            5,
            "*NODE: a field too many: a node has a number and three coordinates",
        ),
        (
            "2, 1, 0, 0\n",
            "2, 1, 0, 0,, 7,,\n",
            5,
            "*NODE: a field too many: a node has a number and three coordinates",
        ),
        (
            "10, 1, 2, 3, 4\n",
            "10, 1, 2, 3, 4,,\n",
            10,
            "*ELEMENT: an empty field: only one comma at the end of a line says that the element goes on",
        ),
        ("2, 1, 0, 0\n", "2, 1, 0 0\n", 5, "*NODE: '0 0' is no number (coordinate)"),
        ("2, 1, 0, 0\n", "2, x, 0, 0\n", 5, "*NODE: 'x' is no number (coordinate)"),
        ("2, 1, 0, 0\n", "2, nan, 0, 0\n", 5, "*NODE: 'nan' is no number (coordinate)"),
        ("2, 1, 0, 0\n", "2, 1e999, 0, 0\n", 5, "*NODE: '1e999' is no number (coordinate)"),
        ("2, 1, 0, 0\n", "2.5, 1, 0, 0\n", 5, "*NODE: the number of a node is not whole"),
        ("2, 1, 0, 0\n", "1, 1, 0, 0\n", 5, "node 1 is given twice"),
        (
            "10, 1, 2, 3, 4\n",
            "10, 1, 2, 3, 4, 5\n",
            10,
            "*ELEMENT: a field too many: an element of type C3D4 has a number and 4 nodes",
        ),
        (
            "10, 1, 2, 3, 4\n",
            "10, 1, 2, 3\n",
            10,
            "*ELEMENT: fields are missing: an element of type C3D4 has a number and 4 nodes",
        ),
        ("10, 1, 2, 3, 4\n", "10, 1, 2, 3, 9\n", 10, "element 10 has node 9, which the file does not have"),
        ("10, 1, 2, 3, 4\n", "10, 1, 2, 3, 3\n", 10, "element 10 has a node twice"),
        ("10, 1, 2, 3, 4\n", "20, 1, 2, 3, 4\n", 11, "element 20 is given twice"),
        ("TYPE=C3D4", "TYPE=C3D99", 9, "*ELEMENT: elements of the type C3D99 cannot be taken over"),
        ("TYPE=C3D4, ", "", 9, "*ELEMENT: TYPE= is missing"),
        ("1, 2, 3\n*M", "1, 2, 30\n*M", 13, "the set FEET has 30, which is not among the nodes"),
        ("1, 2, 3\n*M", "1, NONE\n*M", 13, "there is no set NONE of nodes"),
        ("1, 2, 3\n*M", "FEET\n*M", 13, "the set FEET contains itself"),
        (
            "NSET=FEET\n1, 2, 3",
            "NSET=FEET, GENERATE\n3, 1",
            13,
            "*NSET: no numbers from 3 to 1 in steps of 1",
        ),
        ("2.1E5, 0.3", "2.1E5", 16, "*ELASTIC: 2 numbers needed: Young's modulus and Poisson's ratio"),
        (
            "2.1E5, 0.3",
            "2.1E5, 0.3, 20.",
            16,
            "*ELASTIC: 2 numbers needed: Young's modulus and Poisson's ratio",
        ),
        (
            "2.1E5, 0.3",
            "2.1E5, 0.3\n2e5, 0.3",
            17,
            "*ELASTIC: one line is needed: Young's modulus and Poisson's ratio",
        ),
        ("*ELASTIC", "*ELASTIC, TYPE=ORTHO", 15, "*ELASTIC: only TYPE=ISO is read"),
        ("*ELASTIC\n2.1E5, 0.3\n", "", 14, "*MATERIAL: STEEL has no *ELASTIC"),
        ("MATERIAL=STEEL", "MATERIAL=WOOD", 17, "*SOLID SECTION: there is no material WOOD"),
        (
            "MATERIAL=STEEL",
            "MATERIAL=STEEL, ORIENTATION=O",
            17,
            "*SOLID SECTION: the parameter ORIENTATION is not read",
        ),
        (
            "*SOLID SECTION",
            "*SHELL SECTION",
            17,
            "*SHELL SECTION: one line is needed: the thickness, and perhaps the count of points",
        ),
        ("FEET, 1, 3\n", "FEET, 1, 7\n", 19, "*BOUNDARY: no components 1 to 7: they are 1 to 6"),
        ("FEET, 1, 3\n", "FEET, 1, 3, 0.1\n", 19, "*BOUNDARY: a value other than 0 belongs into a step"),
        ("FEET, 1, 3\n", "HANDS, 1, 3\n", 19, "*BOUNDARY: there is no node or set of nodes HANDS"),
        ("*STEP\n", "*STEP, NLGEOM\n", 20, "*STEP: NLGEOM: only small displacements are computed"),
        ("*STEP\n", "*STEP, NLGEOM=YES\n", 20, "*STEP: NLGEOM: only small displacements are computed"),
        ("*STEP\n", "*STEP, PERTURBATION\n", 20, "*STEP: PERTURBATION is not read"),
        ("*STATIC\n", "", 20, "*STEP: the step has no *STATIC"),
        ("*END STEP\n", "", 20, "*STEP: the step has no *END STEP"),
        ("*STATIC\n", "*FREQUENCY\n", 21, "the keyword *FREQUENCY is not read"),
        ("*STATIC\n", "*STATC\n", 21, "the keyword *STATC is not read; did you mean 'STATIC'?"),
        ("*CLOAD\n", "*CLOAD, AMPLITUDE=A\n", 22, "*CLOAD: the parameter AMPLITUDE is not read"),
        ("5, 3, -4.", "5, 4, -4.", 23, "*CLOAD: no component 4 in this model"),
        ("5, 3, -4.", "6, 3, -4.", 23, "*CLOAD: there is no node 6"),
        ("5, 3, -4.", "5, 3", 23, "*CLOAD: a line has a node or a set, a component and a force"),
        ("5, 3, -4.", "5, 3, -4,0", 23, "*CLOAD: a line has a node or a set, a component and a force"),
        (
            "*CLOAD\n5, 3, -4.",
            "*DLOAD\nBODY, P5, 1.",
            23,
            "*DLOAD: the load P5 is not read on these elements: P1 to P4 act on tetrahedra,"
            " P on shells, GRAV on all",
        ),
        (
            "*CLOAD\n5, 3, -4.",
            "*DLOAD\nBODY, GRAV, 9810., 0, 0, -1",
            23,
            "*DLOAD: GRAV needs the *DENSITY of STEEL",
        ),
        ("*CLOAD\n5, 3, -4.", "*DLOAD\nBODY, GRAV, 9810., 0, 0, 0", 23, "*DLOAD: GRAV has no direction"),
        ("*CLOAD\n5, 3, -4.", "*DSLOAD\nTOP, P, 1.", 23, "*DSLOAD: there is no surface TOP"),
        ("*HEADING\n", "*PART, NAME=P\n", 1, "*PART: files of parts and instances are not read"),
        ("*HEADING\n", "*ASSEMBLY, NAME=A\n", 1, "*ASSEMBLY: files of parts and instances are not read"),
        ("*HEADING\n", "*INCLUDE, INPUT=none.inp\n", 1, "*INCLUDE: there is no file none.inp"),
        ("*HEADING\n", "*INCLUDE, INPUT=a.inp\n", 1, "*INCLUDE: a.inp includes itself"),
        ("*HEADING\n", "", 1, "data before the first keyword"),
        (
            "*CLOAD\n",
            "*CLOAD,\nOP, 3, -4.\n",
            23,
            "*CLOAD: after a comma this line can be data, or parameters of the keyword",
        ),
        (
            "*CLOAD\n",
            "*CLOAD,\n** comment\nOP=NEW, 3, -4.\n",
            24,
            "*CLOAD: after a comma this line can be data, or parameters of the keyword",
        ),
        (
            "*STEP\n",
            "*STEP,\n a title, load = 5\n",
            21,
            "*STEP: after a comma this line can be data, or parameters of the keyword",
        ),
        (
            "MATERIAL=STEEL\n",
            "MATERIAL=STEEL,\nORIENTATION=O\n",
            18,
            "*SOLID SECTION: the parameter ORIENTATION is not read",
        ),
        (
            "*CLOAD\n",
            "*CLOAD,\nOP=NEW, AMPLITUDE=A\n",
            22,
            "*CLOAD: the parameter AMPLITUDE is not read",
        ),
        ("*CLOAD\n", "*CLOAD,,\n", 22, "*CLOAD: a parameter is missing between commas"),
        ("*END STEP\n", "*END STEP,\n7\n", 25, "*END STEP: no data belong here"),
        ("*STATIC\n", "*EQUATION\n", 21, "the keyword *EQUATION is not read"),
        ("*STATIC\n", "*PLASTIC\n", 21, "the keyword *PLASTIC is not read"),
        (
            "*SOLID SECTION",
            "*SOLID SECTOIN",
            17,
            "the keyword *SOLID SECTOIN is not read; did you mean 'SOLID SECTION'?",
        ),
    ],
)
def test_refusals(imported, tmp_path, old, new, line, message):
    assert old in BASE
    status, out, err = run(imported, tmp_path, BASE.replace(old, new, 1))
    assert (status, out) == (2, "")
    assert err.splitlines()[0] == f"a.inp:{line}: error: {message}", err
    assert not (tmp_path / "a.dat").exists()


@pytest.mark.parametrize("held", ["FEET, 1, 6", "FEET, ENCASTRE"])
def test_rotations_of_solids(imported, tmp_path, held):
    plain = accepted(imported, tmp_path, BASE)
    status, _, err = run(imported, tmp_path, BASE.replace("FEET, 1, 3", held))
    warning = "a.inp:19: warning: nodes of solids have no rotations: components 4 to 6 are left out\n"
    assert (status, err) == (0, warning)
    assert (tmp_path / "a.dat").read_text() == plain


def test_sets_with_numbers_for_names(imported, tmp_path):
    # The number of a node comes first; nothing is said of a set in quotation marks.
    text = BASE.replace("NSET=FEET\n1, 2, 3", "NSET=2\n1, 2, 3")
    for old, held, said in (
        ('"2", 1, 3', ["1", "2", "3"], ""),
        (
            "2, 1, 3",
            ["2"],
            'a.inp:19: warning: 2 is the number of a node; the set of this name is written "2"\n',
        ),
    ):
        status, _, err = run(imported, tmp_path, text.replace("FEET, 1, 3", old), "--no-check")
        assert (status, err) == (0, said)
        written = (tmp_path / "a.dat").read_text()
        assert [row[0] for row in block_rows(written, "constraints")] == held
    text = BASE.replace("NSET=FEET\n1, 2, 3", "NSET=77\n1, 2, 3").replace("FEET, 1, 3", "77, 1, 3")
    assert run(imported, tmp_path, text)[2].splitlines() == [
        "a.inp:19: error: *BOUNDARY: there is no node 77",
        'hint: 77 is the number of a node; the set of this name is written "77"',
    ]


def test_gravity_of_the_whole_model(imported, tmp_path):
    text = TWO.replace("*SOLID", "*DENSITY\n8e-9\n*SOLID")
    written = [
        accepted(
            imported, tmp_path, text.replace("*CLOAD\n5, 3, -4.", f"*DLOAD\n{name}, GRAV, 9810., 0, 0, -1")
        )
        for name in ("BODY", "")
    ]
    # Element 30 has no section, and no weight.
    assert written[0] == written[1] and "GravityDirection 0 0 -1\n" in written[0]
    status, _, err = run(imported, tmp_path, text.replace("*CLOAD\n5, 3, -4.", "*DLOAD\n, P1, 3."))
    assert status == 2 and "*DLOAD: there is no element or set of elements" in err


DECK = """*Heading
** Job name: bracket  Model name: Model-1
*Preprint, echo=NO, model=NO, history=NO, contact=NO
**
*Node, nset=ALL
*Include, input=parts/nodes.inc
*Element, type=C3D10,
Elset=Eall
*Include, input=parts/elements.inc
*Nset, nset=_PickedSet4, internal, generate
 1, 5, 2
*Nset, nset="Held nodes"
 4, _PickedSet4
*Elset, elset=_Face_S3, internal, generate
 1, 1, 1
*Surface, type=ELEMENT, name=Face, internal
_Face_S3, S3
*Material, name=Steel-1
*Density
 7.85e-09,
*Elastic,
 210000., 0.3
*Solid Section, elset=Eall, material=Steel-1
,
*Boundary
"Held nodes", ENCASTRE
*Step, name=Step-1, nlgeom=NO, inc=1000
pull
*Static
1., 1., 1e-05, 1.
*Cload
2, 1, 1000.
*Dload
, GRAV, 9810., 0., 0., -1.
*Dsload
Face, P, 2.
*Restart, write, frequency=0
*Output, field, variable=PRESELECT
*Output, history,
variable=PRESELECT
*End Step
"""
NODES = """1, 0., 0., 0.
2, 100., 0., 0.
3, 0., 80., 0.
** comments and nested files
*INCLUDE, INPUT=more/rest.inc
"""
REST = "4,,,60.\n5,50.\n6,50.,40.\n7,,40.\n8,,,30.\n9,5.d1,,30.\n10,,40.,30."


@pytest.mark.parametrize("end", ["\n", "\r\n"])
def test_a_deck_as_other_programs_write_it(imported, tmp_path, end):
    (tmp_path / "parts" / "more").mkdir(parents=True)
    files = {
        "parts/nodes.inc": NODES,
        "parts/more/rest.inc": REST,
        "parts/elements.inc": "1, 1,\t2, 3, 4, 5, 6,\n** inside an element\n 7, 8, 9, 10\n",
        "a.inp": DECK,
    }
    for name, text in files.items():
        (tmp_path / name).write_text(text.replace("\n", end), newline="")
    status, _, err = imported("a.inp", "--units", "mm,N", "-o", "a.dat")
    warning = "nodes of solids have no rotations: components 4 to 6 are left out"
    assert (status, re.findall(r"(?m)^a.inp:\d+: (.*)", err)) == (0, [f"warning: {warning}"]), err
    written = (tmp_path / "a.dat").read_text()
    assert [row[0] for row in block_rows(written, "constraints")] == ["1", "3", "4", "5"]
    # S3 has the corners 2, 4, 3.
    element, side, *values = block_rows(written, "local_pressure_loads")[0]
    assert (element, side, values) == ("1", "1", ["0", "0", "-2"])
    np.testing.assert_allclose(coordinates(written)[[3, 8]], [[0, 0, 60], [50, 0, 30]])
    assert "GravityDirection 0 0 -1\n" in written
    assert [row[:3] for row in block_rows(written, "nodal_point_loads")] == [["2", "1000", "0"]]


def test_hint_on_a_set_of_elements(imported, tmp_path):
    err = run(imported, tmp_path, BASE.replace("FEET, 1, 3", "BODY, 1, 3"))[2]
    assert (
        "hint: BODY is a set of elements: *NSET, NSET=name, ELSET=BODY makes a set of its nodes"
        in err.splitlines()
    )
    text = BASE.replace("FEET, 1, 3", "SOME, 1, 3").replace(
        "*BOUNDARY", "*NSET, NSET=SOME, ELSET=LAST\n*ELSET, ELSET=LAST\n20\n*BOUNDARY"
    )
    written = accepted(imported, tmp_path, text)
    assert [row[0] for row in block_rows(written, "constraints")] == ["2", "3", "4", "5"]


def test_flat_files_are_asked_for(imported, tmp_path):
    err = run(imported, tmp_path, "*INSTANCE, NAME=I, PART=P\n" + BASE)[2]
    assert "hint: write a flat file, without parts and assemblies" in err


def test_elements_that_cannot_be_taken_over_are_counted(imported, tmp_path):
    nodes = "6,2\n7,3\n8,4\n9,5\n*ELEMENT"
    cubes = "*ELEMENT, TYPE=C3D8\n30, 1,2,3,4,5,6,7,8\n31, 2,3,4,5,6,7,8,9\n*NSET, NSET=FEET"
    status, _, err = run(
        imported, tmp_path, BASE.replace("*ELEMENT", nodes, 1).replace("*NSET, NSET=FEET", cubes)
    )
    assert (status, err.splitlines()[0][:66]) == (
        2,
        "a.inp:17: error: elements that cannot be taken over: 2 of the kind",
    )


def test_skip(imported, tmp_path):
    text = BASE.replace("*STEP\n", "*AMPLITUDE, NAME=A\n0., 0.\n*STEP\n")
    assert run(imported, tmp_path, text)[2].splitlines() == [
        "a.inp:20: error: the keyword *AMPLITUDE is not read",
        "hint: --skip leaves such keywords out",
    ]
    status, _, err = run(imported, tmp_path, text, "--skip")
    assert (status, err) == (0, "a.inp:20: warning: *AMPLITUDE is left out\n")


BEAM = """*NODE
1
2, 100.
*ELEMENT, TYPE=B31, ELSET=B
1, 1, 2
*MATERIAL, NAME=M
*ELASTIC
2e5, 0.3
*BEAM SECTION, ELSET=B, MATERIAL=M, SECTION={section}
{data}
*BOUNDARY
1, 1, 6
"""


@pytest.mark.parametrize(
    "section, data, line, message",
    [
        ("CIRC", "10., 12.", 10, "the two diameters differ: ellipses are not read"),
        ("CIRC", "10.", 10, "2 numbers needed: two diameters"),
        ("RECT", "10., 0.", 10, "a width is not positive"),
        ("PIPE", "10., 12.", 10, "the wall is not between 0 and the outer radius"),
        ("GENERAL", "10., 1., 0., 1.", 10, "5 numbers needed: A, I11, I12, I22 and the torsion constant"),
        ("GENERAL", "10., 1., 0.1, 1., 1.", 10, "I12 is not 0: turn the section to its principal axes"),
        ("BOX", "10., 1., 1., 1., 1., 1.", 9, "SECTION=BOX is not read, only RECT, CIRC, PIPE, GENERAL"),
        ("RECT, OFFSET1=0.5", "10., 1.", 9, "the parameter OFFSET1 is not read"),
        ("RECT", "10., 1.\n1, 0, 0", 9, "n1 is along element 1"),
        ("RECT", "10., 1.\n0, 0, 0", 11, "n1 is 0"),
        ("RECT", "10., 1.\n0, 1", 11, "n1 has three components"),
    ],
)
def test_beam_sections_that_are_refused(imported, tmp_path, section, data, line, message):
    status, _, err = run(imported, tmp_path, BEAM.format(section=section, data=data))
    assert (status, err.splitlines()[0]) == (2, f"a.inp:{line}: error: *BEAM SECTION: {message}")


def test_default_n1_along_a_column(imported, tmp_path):
    text = BEAM.format(section="RECT", data="10., 1.").replace("2, 100.", "2, 0, 0, 100.")
    assert "n1 (the default 0, 0, -1) is along element 1" in run(imported, tmp_path, text)[2]


STEPS = (
    BASE.replace("-4.\n*END STEP", "-4.\n5, 1, 1.\n*END STEP")
    + """*STEP
 the second
*STATIC
*CLOAD
5, 3, -6.
*DLOAD
BODY, P2, 1.
*END STEP
*STEP
*STATIC
*CLOAD, OP=NEW
4, 2, 1.
*BOUNDARY
FEET, 2, 2, 0.5
*END STEP
"""
)


def test_steps_become_cases(imported, tmp_path):
    text = accepted(imported, tmp_path, STEPS)
    assert "nodal_point_loads" not in text
    table = tomllib.loads((tmp_path / "a.cases").read_text())
    cases = table["cases"]
    assert (table["model"], list(cases), cases["Step 2"]["title"]) == (
        "a.dat",
        ["Step 1", "Step 2", "Step 3"],
        "the second",
    )
    loads = [block_rows(case["text"], "nodal_point_loads") for case in cases.values()]
    assert loads == [[["5", "1", "0", "-4"]], [["5", "1", "0", "-6"]], [["4", "0", "1", "0"]]]
    # Elements 10 and 20 are 1 and 2; the corners of the second run the other way.
    sides = [block_rows(case["text"], "local_pressure_loads") for case in cases.values()]
    assert sides[0] == [] and len(sides[1]) == 2 and sides[2] == sides[1]
    assert block_rows(cases["Step 3"]["text"], "constraints") == [[n, "010", "0", "0.5", "0"] for n in "123"]


@pytest.mark.parametrize(
    "new, message",
    [
        ("*BOUNDARY\nFEET, 2, 2, 0.5\n4, 1, 1", "component 1 of node 4"),
        ("*BOUNDARY, OP=NEW\nFEET, 1, 2", "component 3 of node 1"),
    ],
)
def test_supports_of_some_steps_only(imported, tmp_path, new, message):
    old = "*BOUNDARY\nFEET, 2, 2, 0.5"
    line = STEPS[: STEPS.index(old)].count("\n") + 1
    status, _, err = run(imported, tmp_path, STEPS.replace(old, new))
    assert (status, err) == (
        2,
        f"a.inp:{line}: error: *BOUNDARY: {message} is held in some steps only: all steps need the same"
        " supports\n",
    )


def test_two_values_in_one_step(imported, tmp_path):
    text = BASE.replace("*CLOAD", "*BOUNDARY\nFEET, 1, 1, 0.5\n2, 1, 1, 0.25\n*CLOAD")
    assert run(imported, tmp_path, text)[2].splitlines() == [
        "a.inp:24: error: *BOUNDARY: node 2 has another value for component 1 in the same step"
    ]


def test_a_turned_tetrahedron_keeps_its_faces(imported, tmp_path):
    # Faces of element 10 by their nodes: P1 to P4 are 123, 142, 243, 341, whatever the order of the corners.
    faces = [{1, 2, 3}, {1, 4, 2}, {2, 4, 3}, {3, 4, 1}]
    sides = [{0, 1, 2}, {1, 2, 3}, {2, 3, 0}, {3, 0, 1}]
    for corners in ([1, 2, 3, 4], [1, 3, 2, 4]):
        for k, face in enumerate(faces):
            text = BASE.replace("10, 1, 2, 3, 4", "10, " + ", ".join(map(str, corners)))
            text = text.replace("*CLOAD\n5, 3, -4.", f"*DLOAD\n10, P{k + 1}, 2.")
            written = accepted(imported, tmp_path, text)
            element, side, *values = block_rows(written, "local_pressure_loads")[0]
            nodes = [int(word) for word in block_rows(written, "elements")[0][1:5]]
            assert (element, values) == ("1", ["0", "0", "-2"])
            assert {nodes[c] for c in sides[int(side)]} == {
                corners[list([1, 2, 3, 4]).index(n)] for n in face
            }
            xyz = coordinates(written)[np.array(nodes) - 1]
            assert np.linalg.det(xyz[1:] - xyz[0]) > 0


def test_a_map_for_a_file_with_sections(imported, tmp_path):
    (tmp_path / "a.inp").write_text(BASE)
    (tmp_path / "a.map").write_text(
        'units = { length = "mm", force = "N" }\n[materials.m]\ngroups = ["BODY"]\nE = 1\n'
    )
    status, _, err = imported("a.inp", "a.map", "-o", "a.dat")
    assert (status, err.splitlines()[0]) == (
        2,
        "a.inp:14: error: *MATERIAL: the file has materials, sections or steps itself, and takes no map",
    )


def test_a_file_without_sections_needs_a_map(imported, tmp_path):
    status, _, err = run(imported, tmp_path, BASE[: BASE.index("*MATERIAL")])
    assert (status, err.splitlines()) == (
        2,
        ["a.inp:1: error: the file has no sections", "hint: give a map of its groups in place of --units"],
    )


TWO = BASE.replace(
    "*BOUNDARY", "*ELEMENT, TYPE=CPS3, ELSET=SKIN\n30, 1, 2, 3\n*SURFACE, NAME=LOW\nBODY, S1\n*BOUNDARY", 1
)
# Text of TWO, its replacement, the text in whose line the fault is (None: the replacement), the message.
MORE = [
    ("*END STEP\n", "*END STEP\n7\n", "7\n", "*END STEP: no data belong here"),
    ("*STATIC\n", "*STEP\n*STATIC\n", "*STEP\n*STATIC", "*STEP: the step before it has no *END STEP"),
    ("*STEP\n", "*CLOAD\n5, 3, 1.\n*STEP\n", None, "*CLOAD: it belongs between *STEP and *END STEP"),
    ("*CLOAD\n", "*CLOAD, OP=OLD\n", None, "*CLOAD: OP=OLD is not read"),
    ("*CLOAD\n", "*CLOAD, OP=NEW, OP=NEW\n", None, "*CLOAD: the parameter OP is given twice"),
    ("*CLOAD\n", "*CLOAD,, OP=NEW\n", None, "*CLOAD: a parameter is missing between commas"),
    ("*CLOAD\n", "*\n", None, "a keyword is missing after *"),
    (
        "*CLOAD\n5, 3, -4.",
        "*MATERIAL, NAME=X\n*CLOAD\n5, 3, -4.",
        None,
        "*MATERIAL: it belongs before the steps",
    ),
    ("*CLOAD\n5, 3, -4.", "*DLOAD\n99, P1, 1.", "99, P1", "*DLOAD: there is no element 99"),
    (
        "*CLOAD\n5, 3, -4.",
        "*DLOAD\nNONE, P1, 1.",
        "NONE, P1",
        "*DLOAD: there is no element or set of elements NONE",
    ),
    (
        "*CLOAD\n5, 3, -4.",
        "*DLOAD\nBODY",
        "BODY\n*END",
        "*DLOAD: a line has an element or a set, a kind of load and its values",
    ),
    ("*CLOAD\n5, 3, -4.", "*DLOAD\nBODY, P1", "BODY, P1", "*DLOAD: a pressure has one value"),
    (
        "*CLOAD\n5, 3, -4.",
        "*DLOAD\nBODY, GRAV, 9810.",
        "BODY, GRAV",
        "*DLOAD: GRAV has an acceleration and three components" " of its direction",
    ),
    ("*CLOAD\n5, 3, -4.", "*DLOAD\nSKIN, P, 1.", "SKIN, P", "*DLOAD: element 30 has no section"),
    ("*CLOAD\n5, 3, -4.", "*DSLOAD\nLOW, 1.", "LOW, 1.", "*DSLOAD: a line has a surface, P and a pressure"),
    (
        "*CLOAD\n5, 3, -4.",
        "*BOUNDARY\nFEET, 4, 4, 0.1",
        "FEET, 4",
        "*BOUNDARY: nodes of solids have no rotations",
    ),
    (
        "FEET, 1, 3\n",
        "FEET\n",
        "FEET\n*STEP",
        "*BOUNDARY: a line has a node or a set, the first and the last component, and a value",
    ),
    ("FEET, 1, 3\n", "FEET, PINNED, 1\n", None, "*BOUNDARY: a field too many after PINNED"),
    ("FEET, 1, 3\n", "FEET, a, 3\n", None, "*BOUNDARY: 'a' is no whole number (first component)"),
    ("*BOUNDARY\n", "*BOUNDARY, TYPE=VELOCITY\n", None, "*BOUNDARY: only TYPE=DISPLACEMENT is read"),
    (
        "*SURFACE, NAME=LOW",
        "*SURFACE, NAME=LOW, TYPE=NODE",
        None,
        "*SURFACE: only surfaces of elements are read, TYPE=ELEMENT",
    ),
    (
        "*SURFACE, NAME=LOW\nBODY, S1",
        "*SURFACE, NAME=LOW\nBODY",
        "BODY\n*B",
        "*SURFACE: a line has an element or a set, and a face",
    ),
    (
        "*SURFACE, NAME=LOW\nBODY, S1",
        "*SURFACE, NAME=LOW\nBODY, S5",
        "BODY, S5",
        "*SURFACE: no face S5 on these elements:" " S1 to S4 are of tetrahedra, SPOS and SNEG of shells",
    ),
    (
        "*SURFACE",
        "*SURFACE, NAME=LOW\n*SURFACE",
        "*SURFACE, NAME=LOW\nBODY",
        "*SURFACE: the surface LOW is given twice",
    ),
    (
        "*ELASTIC\n",
        "*ELASTIC\n2E5, 0.3\n*ELASTIC\n",
        "*ELASTIC\n2.1E5",
        "*ELASTIC: the material STEEL has it already",
    ),
    (
        "*MATERIAL, NAME=STEEL\n",
        "*MATERIAL, NAME=Steel\n*MATERIAL, NAME=STEEL\n",
        "*MATERIAL, NAME=STEEL",
        "*MATERIAL: the material STEEL is given twice",
    ),
    ("*MATERIAL, NAME=STEEL\n", "*MATERIAL, NAME=STEEL\n7.\n", "7.\n", "*MATERIAL: it has no data"),
    ("*MATERIAL, NAME=STEEL\n", "", "*ELASTIC", "*ELASTIC: *MATERIAL is missing before it"),
    ("2.1E5, 0.3", "-2.1E5, 0.3", None, "*ELASTIC: Young's modulus is not positive"),
    ("2.1E5, 0.3", "2.1E5, -1.", None, "*ELASTIC: Poisson's ratio is not above -1"),
    ("2.1E5, 0.3\n", "2.1E5, 0.3\n*DENSITY\n0.\n", "0.\n*SOL", "*DENSITY: the density is not positive"),
    (
        "MATERIAL=STEEL\n*EL",
        "MATERIAL=STEEL\n1., 2.\n*EL",
        "1., 2.",
        "*SOLID SECTION: a section of tetrahedra has no data",
    ),
    ("ELSET=BODY, MAT", "ELSET=NONE, MAT", None, "*SOLID SECTION: there is no set NONE of elements"),
    (
        "ELSET=BODY, MAT",
        "ELSET=SKIN, MAT",
        None,
        "*SOLID SECTION: element 30 is of the type CPS3; such a section is for C3D4, C3D10",
    ),
    (
        "*BOUNDARY",
        "*SOLID SECTION, ELSET=BODY, MATERIAL=STEEL\n*BOUNDARY",
        "*SOLID SECTION, ELSET=BODY, MATERIAL=STEEL\n*BOUNDARY",
        "*SOLID SECTION: element 10 has a section already, in line 17",
    ),
    ("NSET=FEET\n1, 2, 3", "NSET=FEET\n1,, 3", "1,, 3", "*NSET: a field is empty"),
    ("NSET=FEET\n1, 2, 3", "NSET=FEET\n1, 2.5", "1, 2.5", "*NSET: '2.5' is no whole number"),
    (
        "NSET=FEET\n1, 2, 3",
        "NSET=FEET, GENERATE\n1",
        "1\n*MAT",
        "*NSET: GENERATE needs the first and the last number, and perhaps a step",
    ),
    ("NSET=FEET\n1, 2, 3", "NSET=FEET, GENERATE\n1, 999999999", "1, 999", "*NSET: the range is too large"),
    ("NSET=FEET\n1, 2, 3", "NSET=FEET, ELSET=NONE", None, "*NSET: there is no set NONE of elements"),
    ("20, 2, 3, 4, 5\n", "20, 2, 3,\n", None, "*ELEMENT: the last element is not complete"),
    (
        "20, 2, 3, 4, 5\n",
        "20, 2, 3, 4., 5.5\n",
        None,
        "*ELEMENT: '4.' is no whole number (an element: its number, its nodes)",
    ),
]


@pytest.mark.parametrize("number", range(len(MORE)))
def test_more_refusals(imported, tmp_path, number):
    old, new, place, message = MORE[number]
    assert old in TWO
    text = TWO.replace(old, new, 1)
    line = text[: text.index(place or new)].count("\n") + 1
    status, out, err = run(imported, tmp_path, text)
    assert (status, out) == (2, "")
    errors = [row for row in err.splitlines() if ": warning: " not in row]
    assert errors[0] == f"a.inp:{line}: error: {message}"


def test_elements_and_nodes_without_section(imported, tmp_path):
    text = TWO.replace("5, 1, 1, 1\n", "5, 1, 1, 1\n6, 2, 2, 2\n7, 3, 3, 3\n").replace(
        "FEET, 1, 3", "FEET, 1, 3\n7, 1, 3"
    )
    status, _, err = run(imported, tmp_path, text)
    assert status == 0
    line = text[: text.index("7, 1, 3")].count("\n") + 1
    assert err.splitlines() == [
        f"a.inp:{line}: warning: 1 support is left out, because no element with a section has its node: 7",
        "a.inp: warning: 1 element has no section and is left out: 30",
        "a.inp: warning: 2 nodes are left out, because no element with a material has them: 6, 7",
    ]


def test_counts_of_one_and_of_many(imported, tmp_path):
    one = TWO.replace("5, 1, 1, 1\n", "5, 1, 1, 1\n16, 2, 2, 2\n")
    assert (
        "1 node is left out, because no element with a material has it: 16\n"
        in run(imported, tmp_path, one)[2]
    )
    many = TWO.replace("30, 1, 2, 3\n", "30, 1, 2, 3\n31, 2, 3, 4\n40, 1, 2, 4\n").replace(
        "5, 1, 1, 1\n", "5, 1, 1, 1\n6, 2\n7, 3\n8, 4\n"
    )
    many = many.replace("FEET, 1, 3", "OUTSIDE, 1, 3").replace(
        "*BOUNDARY", "*NSET, NSET=OUTSIDE\n6, 7, 8, 1\n*BOUNDARY"
    )
    line = many[: many.index("OUTSIDE, 1, 3")].count("\n") + 1
    assert run(imported, tmp_path, many, "--no-check")[2].splitlines() == [
        f"a.inp:{line}: warning: 3 supports are left out, because no element with a section has their nodes: 6-8",
        "a.inp: warning: 3 elements have no section and are left out: 30, 31, 40",
        "a.inp: warning: 3 nodes are left out, because no element with a material has them: 6-8",
    ]


def test_a_file_without_steps(imported, tmp_path):
    text = accepted(imported, tmp_path, BASE[: BASE.index("*STEP")])
    assert len(block_rows(text, "constraints")) == 3 and "nodal_point_loads" not in text


def test_elements_on_two_lines_with_other_words(imported, tmp_path):
    # The empty field sends the lines through the slower reader, which says where it is.
    status, _, err = run(imported, tmp_path, BASE.replace("20, 2, 3, 4, 5", "20, 2, 3,, 4, 5"))
    assert (status, err) == (
        2,
        "a.inp:11: error: *ELEMENT: '' is no whole number (an element: its number, its nodes)\n",
    )
