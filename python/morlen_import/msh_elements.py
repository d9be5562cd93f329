"""Element types of `.msh` files."""

import numpy as np

# number of the type: (kind, order of its nodes in a mesh)
TAKEN = {
    15: ("point", [0]),
    1: ("line2", [0, 1]),
    8: ("line3", [0, 1, 2]),
    2: ("tri3", [0, 1, 2]),
    9: ("tri6", [0, 1, 2, 3, 4, 5]),
    4: ("tet4", [0, 1, 2, 3]),
    11: ("tet10", [0, 1, 2, 3, 4, 5, 6, 7, 9, 8]),
}
# number of the type: (name in messages, nodes)
REFUSED = {
    3: ("quadrangle", 4),
    5: ("hexahedron", 8),
    6: ("prism", 6),
    7: ("pyramid", 5),
    10: ("quadrangle of 9 nodes", 9),
    12: ("hexahedron of 27 nodes", 27),
    13: ("prism of 18 nodes", 18),
    14: ("pyramid of 14 nodes", 14),
    16: ("quadrangle of 8 nodes", 8),
    17: ("hexahedron of 20 nodes", 20),
    18: ("prism of 15 nodes", 15),
    19: ("pyramid of 13 nodes", 13),
    20: ("triangle of 9 nodes", 9),
    21: ("triangle of 10 nodes", 10),
    22: ("triangle of 12 nodes", 12),
    23: ("triangle of 15 nodes", 15),
    24: ("incomplete triangle of 15 nodes", 15),
    25: ("triangle of 21 nodes", 21),
    26: ("line of 4 nodes", 4),
    27: ("line of 5 nodes", 5),
    28: ("line of 6 nodes", 6),
    29: ("tetrahedron of 20 nodes", 20),
    30: ("tetrahedron of 35 nodes", 35),
    31: ("tetrahedron of 56 nodes", 56),
    92: ("hexahedron of 64 nodes", 64),
    93: ("hexahedron of 125 nodes", 125),
}


def node_count(number):
    """Nodes of an element type, or None for an unknown one."""
    if number in TAKEN:
        return len(TAKEN[number][1])
    return REFUSED[number][1] if number in REFUSED else None


def add_elements(builder, number, tags, nodes, marks):
    """Adds elements of one type to a builder; gives (kind, index of the first), or None when they are refused."""
    if number in REFUSED:
        builder.refuse(REFUSED[number][0], len(tags), int(marks[0]))
        return None
    kind, order = TAKEN[number]
    return kind, builder.add_cells(kind, tags, np.ascontiguousarray(nodes[:, order]), marks)
