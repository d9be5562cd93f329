"""The readers of .msh files, and files that meshio reads: contents written by hand, and faults with their places."""

import struct

import numpy as np
import pytest
from small_meshes import SOLID, SOLID_MAP

from morlen_import.fault import Fault
from morlen_import.msh import read_msh

# The same mesh in 4.1: the triangle of two groups once, on an entity with both.
SOLID41 = """$MeshFormat
4.1 0 8
$EndMeshFormat
$PhysicalNames
6
0 1 "tip"
2 2 "foot"
2 3 "top"
2 4 "also top"
3 5 "body"
2 6 "inner"
$EndPhysicalNames
$Entities
1 0 3 1
1 1 1 1 1 1
1 0 0 0 1 1 0 1 2 0
2 0 0 0 1 1 1 2 3 4 0
3 0 0 0 1 1 1 1 -6 0
1 0 0 0 1 1 1 1 5 3 1 2 3
$EndEntities
$Nodes
2 6 2 12
0 1 0 1
10
1 1 1
3 1 0 5
2
4
6
8
12
0 0 0
1 0 0
0 1 0
0 0 1
9 9 9
$EndNodes
$Elements
5 6 1 7
0 1 15 1
1 10
2 1 2 1
2 2 4 6
2 2 2 1
3 10 8 4
2 3 2 1
5 4 6 8
3 1 4 2
6 2 4 6 8
7 4 6 8 10
$EndElements
"""

PLACES = {2: (0, 0, 0), 4: (1, 0, 0), 6: (0, 1, 0), 8: (0, 0, 1), 10: (1, 1, 1), 12: (9, 9, 9)}


def binary22(order="<"):
    """SOLID as binary, the two tetrahedra under one head, in one order of bytes."""
    rows = [
        (15, [(1, 1, 1, 10)]),
        (2, [(2, 2, 1, 2, 4, 6)]),
        (2, [(3, 3, 1, 10, 8, 4)]),
        (2, [(4, 4, 1, 4, 8, 10)]),
        (2, [(5, 6, 1, 4, 6, 8)]),
        (4, [(6, 5, 1, 2, 4, 6, 8), (7, 5, 1, 4, 6, 8, 10)]),
    ]
    text = b"$MeshFormat\n2.2 1 8\n" + struct.pack(order + "i", 1) + b"\n$EndMeshFormat\n"
    text += SOLID[SOLID.index("$Phys") : SOLID.index("$Nodes")].encode() + b"$Nodes\n6\n"
    text += (
        b"".join(struct.pack(order + "i3d", number, *place) for number, place in PLACES.items())
        + b"\n$EndNodes\n$Elements\n7\n"
    )
    for kind, elements in rows:
        text += struct.pack(order + "3i", kind, len(elements), 2)
        text += b"".join(struct.pack(f"{order}{len(row)}i", *row) for row in elements)
    return text + b"\n$EndElements\n"


def binary41(order="<"):
    """SOLID41 as binary."""

    def sizes(*values):
        return struct.pack(f"{order}{len(values)}Q", *values)

    def ints(*values):
        return struct.pack(f"{order}{len(values)}i", *values)

    def reals(*values):
        return struct.pack(f"{order}{len(values)}d", *values)

    text = b"$MeshFormat\n4.1 1 8\n" + ints(1) + b"\n$EndMeshFormat\n"
    text += SOLID[SOLID.index("$Phys") : SOLID.index("$Nodes")].encode()
    text += b"$Entities\n" + sizes(1, 0, 3, 1) + ints(1) + reals(1, 1, 1) + sizes(1) + ints(1)
    for tag, groups in ((1, [2]), (2, [3, 4]), (3, [-6])):
        text += ints(tag) + reals(*[0] * 6) + sizes(len(groups)) + ints(*groups) + sizes(0)
    text += ints(1) + reals(*[0] * 6) + sizes(1) + ints(5) + sizes(3) + ints(1, 2, 3) + b"\n$EndEntities\n"
    text += b"$Nodes\n" + sizes(2, 6, 2, 12) + ints(0, 1, 0) + sizes(1, 10) + reals(1, 1, 1)
    text += (
        ints(3, 1, 0)
        + sizes(5, 2, 4, 6, 8, 12)
        + reals(0, 0, 0, 1, 0, 0, 0, 1, 0, 0, 0, 1, 9, 9, 9)
        + b"\n$EndNodes\n"
    )
    text += b"$Elements\n" + sizes(5, 6, 1, 7)
    for dimension, entity, kind, rows in (
        (0, 1, 15, [(1, 10)]),
        (2, 1, 2, [(2, 2, 4, 6)]),
        (2, 2, 2, [(3, 10, 8, 4)]),
        (2, 3, 2, [(5, 4, 6, 8)]),
        (3, 1, 4, [(6, 2, 4, 6, 8), (7, 4, 6, 8, 10)]),
    ):
        text += ints(dimension, entity, kind) + sizes(len(rows)) + b"".join(sizes(*row) for row in rows)
    return text + b"\n$EndElements\n"


def contents(mesh):
    """Places by node number, nodes by element number, element numbers by group."""
    numbers = mesh.numbers
    nodes = dict(zip(numbers.tolist(), mesh.places.tolist()))
    elements = {
        number: set(numbers[row].tolist())
        for cells in mesh.cells.values()
        for number, row in zip(cells.numbers.tolist(), cells.nodes)
    }
    groups = {
        group.label: sorted(
            n for kind, rows in group.cells.items() for n in mesh.cells[kind].numbers[rows].tolist()
        )
        for group in mesh.groups
    }
    return nodes, elements, groups


EXPECTED = (
    {2: [0, 0, 0], 4: [1, 0, 0], 6: [0, 1, 0], 8: [0, 0, 1], 10: [1, 1, 1], 12: [9, 9, 9]},
    {1: {10}, 2: {2, 4, 6}, 3: {4, 8, 10}, 5: {4, 6, 8}, 6: {2, 4, 6, 8}, 7: {4, 6, 8, 10}},
    # Element 4 has the nodes of 3: 3 is in both groups.
    {"0:tip": [1], "2:foot": [2], "2:top": [3], "2:also top": [3], "2:inner": [5], "3:body": [6, 7]},
)


@pytest.mark.parametrize(
    "data",
    [
        pytest.param(SOLID.encode(), id="2.2"),
        pytest.param(SOLID.replace("\n", "\r\n").encode(), id="2.2 with carriage returns"),
        pytest.param(SOLID.replace("5 2 2 6 1", "5 2 2 -6 1").encode(), id="2.2 with a reversed group"),
        pytest.param(SOLID41.encode(), id="4.1"),
        pytest.param(binary22(), id="2.2 binary"),
        pytest.param(binary22(">"), id="2.2 big-endian"),
        pytest.param(binary41(), id="4.1 binary"),
        pytest.param(binary41(">"), id="4.1 big-endian"),
    ],
)
def test_contents(data):
    assert contents(read_msh("a.msh", data)) == EXPECTED


def test_other_sections_are_passed_over():
    data = SOLID + '$NodeData\n1\n"x"\n$EndNodeData\n'
    assert (
        contents(
            read_msh(
                "a.msh",
                data.replace("$PhysicalNames", "$Comments\na\n$EndComments\n$PhysicalNames", 1).encode(),
            )
        )
        == EXPECTED
    )


def test_parametric_nodes():
    data = SOLID41.replace("3 1 0 5", "2 1 1 5").replace(
        "\n0 0 0\n1 0 0\n0 1 0\n0 0 1\n9 9 9\n", "\n0 0 0 7 7\n1 0 0 7 7\n0 1 0 7 7\n0 0 1 7 7\n9 9 9 7 7\n"
    )
    assert contents(read_msh("a.msh", data.encode())) == EXPECTED


# Dimension and number of the entity of each node, and its parameters: one on a curve, two on a surface.
ENTITIES = {2: (0, 1), 4: (1, 7, 0.5), 6: (2, 3, 0.5, 0.25), 8: (3, 1), 10: (1, 2, 0.25), 12: (0, 2)}
PARAMETRIC = SOLID[: SOLID.index("$Nodes")] + "$ParametricNodes\n6\n"
PARAMETRIC += "".join(f"{n} {' '.join(map(str, (*PLACES[n], *ENTITIES[n])))}\n" for n in PLACES)
PARAMETRIC += "$EndParametricNodes\n" + SOLID[SOLID.index("$Elements") :]


def parametric22(places, entities, order="<"):
    """binary22 with other nodes, in a section of parametric nodes."""
    data = binary22(order)
    text = data[: data.index(b"$Nodes")] + b"$ParametricNodes\n%d\n" % len(places)
    for number, place in places.items():
        dimension, entity, *own = entities[number]
        text += struct.pack(f"{order}i3d2i{len(own)}d", number, *place, dimension, entity, *own)
    return text + b"\n$EndParametricNodes\n" + data[data.index(b"$Elements") :]


@pytest.mark.parametrize("data", [PARAMETRIC.encode(), *(parametric22(PLACES, ENTITIES, o) for o in "<>")])
def test_parametric_nodes_of_the_old_format(data):
    assert contents(read_msh("a.msh", data)) == EXPECTED


def test_runs_of_parametric_nodes():
    random = np.random.default_rng(3)
    dimensions = np.repeat(random.integers(4, size=60), random.integers(1, 40, size=60))
    places = PLACES | {20 + k: tuple(random.random(3)) for k in range(len(dimensions))}
    parameters = {0: (), 1: (0.5,), 2: (0.5, 0.25), 3: ()}
    entities = ENTITIES | {20 + k: (int(d), 1, *parameters[int(d)]) for k, d in enumerate(dimensions)}
    nodes = contents(read_msh("a.msh", parametric22(places, entities)))[0]
    assert nodes == {number: list(place) for number, place in places.items()}


def test_faults_of_binary_parametric_nodes():
    data = parametric22(PLACES, ENTITIES)
    begin = data.index(b"$ParametricNodes\n6\n") + len(b"$ParametricNodes\n6\n")
    # The second node: its dimension has the place 28 of its record, its x the place 4.
    second = begin + 36
    for place, value, message in (
        (second + 28, struct.pack("<i", 4), "a node on an entity of dimension 4"),
        (second + 4, struct.pack("<d", float("nan")), "a coordinate is no finite number"),
    ):
        with pytest.raises(Fault) as error:
            read_msh("a.msh", data[:place] + value + data[place + len(value) :])
        assert error.value.lines == [f"a.msh: error: offset {second}: {message}"]


WORDS_OF_ENDS = "comes before all lines that the section should have"
NODE, LAST = "8 0 0 1", "6 4 2 5 1 2 4 6 8"
NOT_READ = ": meshes in parts, or with parameters, are not read"
PARAMETRIC_NODE = "a node: number, x, y, z, dimension, entity, parameters"
# Mesh, text that is replaced, its replacement, the text in whose line the fault is (None: the replacement), the message.
FAULTS = [
    (SOLID, "$MeshFormat", "$Mesh", None, "the file does not begin with $MeshFormat"),
    (SOLID, "2.2 0 8", "4.0 0 8", None, "the format 4.0 is not read"),
    (SOLID, "2.2 0 8", "2.2 0 4", None, "numbers of 4 bytes are not read, only of 8"),
    (SOLID, NODE, "8 0 0", None, "a node: number, x, y, z: 4 numbers needed, not 3"),
    (SOLID, NODE, "8 0 0 1 1", None, "a node: number, x, y, z: 4 numbers needed, not 5"),
    (SOLID, NODE, "8 0 0 1,0", None, "'1,0' is no number (a node: number, x, y, z)"),
    (SOLID, NODE, "8 0 0 nan", None, "'nan' is no number (a node: number, x, y, z)"),
    (SOLID, NODE, "8.5 0 0 1", None, "'8.5' is no whole number (a node: number, x, y, z)"),
    (SOLID, NODE, "6 0 0 1", None, "node 6 is given twice"),
    (SOLID, "\n6\n2 0 0", "\n7\n2 0 0", "$EndNodes", f"$EndNodes {WORDS_OF_ENDS}"),
    (SOLID, "\n6\n2 0 0", "\n5\n2 0 0", "12 9 9 9", "$EndNodes is needed here, not '12 9 9 9'"),
    (SOLID, "\n6\n2 0 0", "\n-6\n2 0 0", "-6", "count of nodes: -6 is negative"),
    (SOLID, "\n6\n2 0 0", "\n600\n2 0 0", "$EndElements", "the file ends early inside $Nodes"),
    (
        SOLID,
        LAST,
        "6 4 2 5 1 2 4 6",
        None,
        "an element of type 4 with so many tags has another count of numbers",
    ),
    (SOLID, LAST, "6 4 2 5 1 2 4 6 x", None, "'x' is no whole number (an element)"),
    (SOLID, LAST, "6 4 2 5 1 2 4 6 7", None, "element 6 has node 7, which the file does not have"),
    (SOLID, LAST, "6 4 2 5 1 2 4 6 6", None, "element 6 has a node twice"),
    (SOLID, LAST, "6 99 2 5 1 2 4 6 8", None, "unknown element type 99"),
    (
        SOLID,
        LAST,
        "6 3 2 5 1 2 4 6 8",
        None,
        "elements that cannot be taken over: 1 of the kind quadrangle."
        " Only lines, triangles and tetrahedra of first and second order can",
    ),
    (SOLID, "$EndElements\n", "", "7 4 2 5 1 4 6 8 10", "the file ends early inside $Elements"),
    (SOLID, SOLID[SOLID.index("$Elements") :], "", "$EndNodes", "the file ends without a section $Elements"),
    (
        SOLID,
        '2 2 "foot"',
        "2 2 foot",
        None,
        "a dimension, a number and a name in \" are needed, not '2 2 foot'",
    ),
    (
        SOLID41,
        "1 0 0 0 1 1 0 1 2 0",
        "1 0 0 0 1 1 0 1 2 1",
        None,
        "the line of an entity has 10 numbers in place of 11",
    ),
    (SOLID41, "2 6 2 12", "2 7 2 12", "9 9 9", "the section has 6 nodes in place of 7"),
    (
        SOLID41,
        "3 1 0 5\n2\n4\n6\n8\n12\n0 0 0",
        "3 1 0 6\n2\n4\n6\n8\n12\n0 0 0",
        "0 0 0\n1 0 0\n",
        "the number of a node: 1 number needed, not 3",
    ),
    (SOLID41, "3 1 4 2", "3 1 77 2", None, "no head of a block of elements: dimension 3, type 77"),
    (SOLID, "2.2 0 8", "2.2 2 8", None, "the kind of file is 0 or 1, not '2'"),
    (SOLID, "2.2 0 8", "2.2 0", None, "version, kind and size are needed here"),
    (SOLID, "$Nodes", "Nodes", None, "a section is needed here, not 'Nodes'"),
    (SOLID41, "$Entities", "$ParametricNodes", None, f"$ParametricNodes{NOT_READ}"),
    (SOLID, "$Nodes", "$GhostElements", None, f"$GhostElements{NOT_READ}"),
    (PARAMETRIC, "4 1 0 0 1 7 0.5", "4 1 0 0 1", None, f"{PARAMETRIC_NODE}: at least 6 numbers needed"),
    (PARAMETRIC, "4 1 0 0 1 7 0.5", "4 1 0 0 1 7", None, f"{PARAMETRIC_NODE}: another count of parameters"),
    (
        PARAMETRIC,
        "4 1 0 0 1 7 0.5",
        "4 1 0 0 1 7 0.5 1",
        None,
        f"{PARAMETRIC_NODE}: another count of parameters",
    ),
    (PARAMETRIC, "4 1 0 0 1 7 0.5", "4 1 0 0 4 7 0.5", None, f"{PARAMETRIC_NODE}: no dimension"),
    (PARAMETRIC, "4 1 0 0 1 7 0.5", "4 1 0 0 -1 7 0.5", None, f"{PARAMETRIC_NODE}: no dimension"),
    (PARAMETRIC, "4 1 0 0 1 7 0.5", "4.5 1 0 0 1 7 0.5", None, f"{PARAMETRIC_NODE}: a number is not whole"),
    (PARAMETRIC, "4 1 0 0 1 7 0.5", "4 1 x 0 1 7 0.5", None, f"'x' is no number ({PARAMETRIC_NODE})"),
    (PARAMETRIC, "4 1 0 0 1 7 0.5\n", "", "$EndParam", f"$EndParametricNodes {WORDS_OF_ENDS}"),
    (
        PARAMETRIC,
        "$Elements",
        "$Nodes\n0\n$EndNodes\n$Elements",
        "$Nodes",
        "a second section $Nodes",
    ),
    (SOLID, '2 2 "foot"', '2 3 "foot"', '2 3 "top"', "group 2:3 has two names"),
    (SOLID, "\n6\n0 1", "\n-6\n0 1", "-6", "the count of names is negative"),
    (
        SOLID + SOLID[SOLID.index("$Nodes") : SOLID.index("$Elements")],
        "$Nodes",
        "$Nodes",
        None,
        "a second section $Nodes",
    ),
    (SOLID41, "1 1 1 1 1 1", "1 1 1 1 9 1", None, "an entity cannot have 9 groups"),
    (
        SOLID41,
        "2 0 0 0 1 1 1 2 3 4 0",
        "1 0 0 0 1 1 1 2 3 4 0",
        None,
        "entity 1 of dimension 2 is given twice",
    ),
    (SOLID41, "3 1 0 5", "4 1 0 5", None, "no head of a block of nodes"),
    (SOLID41, "5 6 1 7", "5 7 1 7", "7 4 6 8 10", "the section has 6 elements in place of 7"),
    (SOLID41, "7 4 6 8 10\n", "", "$EndElements", f"$EndElements {WORDS_OF_ENDS}"),
]


@pytest.mark.parametrize("number", range(len(FAULTS)))
def test_faults_of_texts(number):
    text, old, new, place, message = FAULTS[number]
    changed = text.replace(old, new, 1)
    line = (
        changed[: changed.rindex(place or new) if old == new else changed.index(place or new)].count("\n") + 1
    )
    with pytest.raises(Fault) as error:
        read_msh("a.msh", changed.encode())
    assert error.value.lines[0] == f"a.msh:{line}: error: {message}"


def test_every_cut_is_refused():
    meshes = (SOLID.encode(), SOLID41.encode(), PARAMETRIC.encode(), binary22(), binary41())
    for data in (*meshes, parametric22(PLACES, ENTITIES)):
        # Up to the last character of $EndElements.
        for end in range(len(data) - 1):
            with pytest.raises(Fault) as error:
                read_msh("a.msh", data[:end])
            assert (
                ":" in error.value.lines[0].removeprefix("a.msh") and error.value.lines[0] != "a.msh: error"
            )


def test_offsets_of_binary_files():
    data = binary22()
    place = data.index(struct.pack("<i3d", 8, 0, 0, 1))
    with pytest.raises(Fault) as error:
        read_msh("a.msh", data[:place] + struct.pack("<i3d", 8, 0, np.inf, 1) + data[place + 28 :])
    assert error.value.lines[0] == f"a.msh: error: offset {place}: a coordinate is no finite number"
    place = data.index(struct.pack("<7i", 6, 5, 1, 2, 4, 6, 8))
    with pytest.raises(Fault) as error:
        read_msh("a.msh", data[:place] + struct.pack("<7i", 6, 5, 1, 2, 4, 6, 7) + data[place + 28 :])
    assert (
        error.value.lines[0]
        == f"a.msh: error: offset {place}: element 6 has node 7, which the file does not have"
    )
    place = data.index(struct.pack("<3i", 4, 2, 2))
    with pytest.raises(Fault) as error:
        read_msh("a.msh", data[:place] + struct.pack("<3i", 4, 200, 2) + data[place + 12 :])
    assert (
        error.value.lines[0]
        == f"a.msh: error: offset {place}: no head of elements: type 4, count 200, tags 2"
    )


def tetrahedron_of_ten(corners, order=range(6)):
    """A file with one tetrahedron of second order, its middle nodes in an order of the edges."""
    corners = np.array(corners, dtype=float)
    edges = [(0, 1), (1, 2), (2, 0), (3, 0), (2, 3), (1, 3)]  # the order of .msh
    nodes = list(corners) + [0.5 * (corners[edges[k][0]] + corners[edges[k][1]]) for k in order]
    text = "$MeshFormat\n2.2 0 8\n$EndMeshFormat\n$Nodes\n10\n"
    text += "".join(f"{k + 1} {x} {y} {z}\n" for k, (x, y, z) in enumerate(nodes))
    text += "$EndNodes\n$Elements\n1\n1 11 2 1 1 1 2 3 4 5 6 7 8 9 10\n$EndElements\n"
    return text.encode()


def test_wrong_order_of_middle_nodes():
    corners = [[0, 0, 0], [1, 0, 0], [0, 1, 0], [0, 0, 1]]
    cells = read_msh("a.msh", tetrahedron_of_ten(corners)).cells["tet10"]
    assert cells.nodes.tolist() == [[0, 1, 2, 3, 4, 5, 6, 7, 9, 8]]
    with pytest.raises(Fault) as error:
        read_msh("a.msh", tetrahedron_of_ten(corners, [0, 1, 2, 3, 5, 4]))
    assert (
        "element 1, a tetrahedron of ten nodes: its middle nodes are not on its edges" in error.value.lines[0]
    )


def test_turned_tetrahedra_of_second_order():
    mesh = read_msh("a.msh", tetrahedron_of_ten([[0, 0, 0], [0, 1, 0], [1, 0, 0], [0, 0, 1]]))
    [row] = mesh.cells["tet10"].nodes
    a, b, c, d = mesh.places[row[:4]]
    assert np.linalg.det([b - a, c - a, d - a]) > 0
    # The order of the manual.
    expected = [0.5 * (p + q) for p, q in ((a, b), (b, c), (a, c), (a, d), (b, d), (c, d))]
    np.testing.assert_allclose(mesh.places[row[4:]], expected)


def test_turned_tetrahedra(imported, tmp_path):
    (tmp_path / "a.msh").write_text(SOLID.replace("6 4 2 5 1 2 4 6 8", "6 4 2 5 1 2 4 8 6"))
    (tmp_path / "a.map").write_text(SOLID_MAP)
    status, _, err = imported("a.msh", "a.map", "-o", "a.dat")
    assert status == 0
    assert (
        "a.msh: warning: the corners of 1 tetrahedron run the other way: the second and the third were exchanged"
        in err
    )
    assert "\n1 1 4 2 3 1 # 6\n" in (tmp_path / "a.dat").read_text()


@pytest.mark.parametrize(
    "name, data, message",
    [
        ("a.foo", b"", "meshes with the ending '.foo' are not read"),
        ("a.vtkk", b"", "meshes with the ending '.vtkk' are not read; did you mean '.vtk'?"),
        ("a.vtk", b"nothing", "cannot be read by meshio: "),
        ("a.vtu", b"<xml>", "cannot be read by meshio: "),
        ("a.med", b"nothing", "cannot be read by meshio: "),
        ("a.stl", b"solid\nendsolid\n", ""),
    ],
)
def test_files_that_meshio_does_not_read(imported, tmp_path, name, data, message):
    pytest.importorskip("meshio")
    (tmp_path / name).write_bytes(data)
    (tmp_path / "a.map").write_text(SOLID_MAP)
    status, out, err = imported(name, "a.map", "-o", "a.dat")
    assert (status, out) == (2, "")
    assert err.startswith((f"{name}: error: {message}", "a.map: error: "))


def foreign_mesh(meshio):
    """The mesh of SOLID without its point: triangles 1 to 4, tetrahedra 5 and 6."""
    nodes = np.array([[0, 0, 0], [1, 0, 0], [0, 1, 0], [0, 0, 1], [1, 1, 1]], dtype=float)
    triangles = np.array([[0, 1, 2], [4, 3, 1], [1, 3, 4], [1, 2, 3]])
    return meshio.Mesh(nodes, [("triangle", triangles), ("tetra", np.array([[0, 1, 2, 3], [1, 2, 3, 4]]))])


def test_families_of_med(tmp_path):
    meshio = pytest.importorskip("meshio")
    pytest.importorskip("h5py")
    from morlen_import.foreign import read_foreign

    mesh = foreign_mesh(meshio)
    mesh.cell_data = {"cell_tags": [np.array([-1, -2, -3, 0]), np.array([-4, -5])]}
    mesh.cell_tags = {
        -1: ["foot"],
        -2: ["top", "skin"],
        -3: ["also top"],
        -4: ["body"],
        -5: ["body", "upper"],
    }
    mesh.point_data = {"point_tags": np.array([2, 0, 0, 0, 3])}
    mesh.point_tags = {2: ["corner"], 3: ["corner", "tip"]}
    mesh.write(tmp_path / "a.med")
    groups = read_foreign(tmp_path / "a.med").groups
    found = {
        g.label: sorted(v for rows in g.cells.values() for v in rows.tolist())
        for g in groups
        if g.nodes is None
    }
    # Triangles 2 and 3 are one, and the first of them stays.
    assert found == {
        "2:foot": [0],
        "2:top": [1],
        "2:skin": [1],
        "2:also top": [1],
        "3:body": [0, 1],
        "3:upper": [1],
    }
    assert {g.label: g.nodes.tolist() for g in groups if g.nodes is not None} == {
        "0:corner": [0, 4],
        "0:tip": [4],
    }


@pytest.mark.parametrize(
    "name, data",
    [
        ("a.mesh", "medit:ref"),
        ("a.bdf", "nastran:ref"),
        ("a.vtu", "gmsh:physical"),
        ("b.vtu", "CellEntityIds"),
        ("b.vtk", "CellEntityIds"),
        ("c.vtu", "medit:ref"),
    ],
)
def test_group_numbers(imported, build, tmp_path, name, data):
    meshio = pytest.importorskip("meshio")
    mesh = foreign_mesh(meshio)
    mesh.cell_data = {data: [np.array([2, 3, 4, 6], dtype=np.int32), np.array([5, 5], dtype=np.int32)]}
    mesh.write(tmp_path / name)
    (tmp_path / "a.map").write_text(
        SOLID_MAP.replace('"body"', '"3:5"').replace('"foot"', '"2:2"').replace('"top"', '"2:4"')
    )
    status, out, err = imported(name, "a.map", "-o", "a.dat")
    assert (status, out) == (0, "wrote a.dat\n"), err
    text = (tmp_path / "a.dat").read_text()
    assert "local_pressure_loads" in text and f"# Made by morlen-import from {name}.\n" in text
    # Files of other formats have no numbers: none are in comments.
    assert "number in" not in text


def test_other_elements_of_meshio_are_counted(imported, tmp_path):
    meshio = pytest.importorskip("meshio")
    nodes = [[0, 0, 0], [1, 0, 0], [1, 1, 0], [0, 1, 0], [2, 0, 0], [2, 1, 0]]
    meshio.Mesh(np.array(nodes, dtype=float), [("quad", np.array([[0, 1, 2, 3], [1, 4, 5, 2]]))]).write(
        tmp_path / "a.vtk"
    )
    (tmp_path / "a.map").write_text(SOLID_MAP)
    status, _, err = imported("a.vtk", "a.map", "-o", "a.dat")
    assert status == 2
    assert err.startswith("a.vtk: error: elements that cannot be taken over: 2 of the kind quad.")
