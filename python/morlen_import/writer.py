"""The text of a problem file."""

import re

import numpy as np

from morlen_import import units
from morlen_import.fault import shown

_POINT_ZERO = re.compile(r"\.0(?=[ \n])")


def number_text(value):
    """A number in the fewest digits that read back to it."""
    text = repr(float(value))
    return text[:-2] if text.endswith(".0") else text


def table_text(formats, columns):
    """Lines of columns; '%d' for whole numbers, '%r' for others."""
    columns = [np.asarray(column) for column in columns]
    rows = len(columns[0])
    if not rows:
        return ""
    line = " ".join(formats) + "\n"
    flat = [None] * (rows * len(columns))
    for k, column in enumerate(columns):
        flat[k :: len(columns)] = column.tolist()
    return _POINT_ZERO.sub("", (line * rows) % tuple(flat))


def _matrix_columns(matrix):
    return [matrix[:, k] for k in range(matrix.shape[1])]


def problem_text(model):
    """The whole problem file."""
    parts = [_head(model)]
    parts += [_mesh_text(model, part) for part in model.parts]
    parts.append(_materials(model))
    if model.supports is not None:
        parts.append(supports_text(model.supports, "constraints"))
    if model.hinges:
        parts.append(_hinges(model))
    parts.append(loads_text(model.nodal, model.elements))
    return "".join(parts)


def _head(model):
    lines = ["problem type: 3d", f"# Made by morlen-import from {shown(model.source, 200)}."]
    lines += [f"# {shown(comment, 200)}" for comment in model.comments]
    lines += ["", "# All values are in these units."]
    lines += units.unit_lines(model.length, model.force)
    if model.settings:
        lines += ["", "# Settings"]
        lines += [f"{name} {text}" for name, text in model.settings]
    return "\n".join(lines) + "\n"


def _differs(numbers, first):
    return numbers is not None and not np.array_equal(numbers, np.arange(first, first + len(numbers)))


def _mesh_text(model, part):
    lines = [
        "",
        f"mesh dimension = 3 elemtype {part.element_type} nnode = {part.nodes.shape[1]}",
        "coordinates",
    ]
    count = len(model.places)
    text = "\n".join(lines) + "\n"
    if part.first == 1:
        text += _with_numbers(
            "# node, x, y, z",
            ["%d", "%r", "%r", "%r"],
            [np.arange(1, count + 1), *_matrix_columns(model.places)],
            model.numbers if _differs(model.numbers, 1) else None,
            model.source,
        )
    text += "end coordinates\nelements\n"
    nodes = part.nodes.shape[1]
    numbers = part.numbers if model.numbers is not None and _differs(part.numbers, part.first) else None
    text += _with_numbers(
        f"# element, {nodes} nodes, material",
        ["%d"] * (nodes + 2),
        [
            np.arange(part.first, part.first + len(part.nodes)),
            *_matrix_columns(part.nodes + 1),
            part.materials,
        ],
        numbers,
        model.source,
    )
    return text + "end elements\n"


def _with_numbers(title, formats, columns, numbers, source):
    """A table with its title; the numbers of the source, if given, are comments at the ends of the lines."""
    if numbers is None:
        return title + "\n" + table_text(formats, columns)
    title += f"    # number in {shown(source, 200)}"
    return title + "\n" + table_text([*formats, "# %d"], [*columns, numbers])


def _materials(model):
    lines = ["", "materials"]
    for number, material in enumerate(model.materials, 1):
        lines.append(f"# {shown(material.comment, 200)}")
        items = "  ".join(f"{key} = {number_text(value)}" for key, value in material.values.items())
        lines.append(f"{number}  {items}")
    return "\n".join(lines) + "\nend materials\n"


def supports_text(supports, block):
    """A block of supports; rows with equal labels are together under their label."""
    labels, group = np.unique(supports.labels.astype(str), return_inverse=True)
    order = np.argsort([int(supports.nodes[group == k][0]) for k in range(len(labels))])
    count = supports.flags.shape[1]
    text = f"\n{block}\n# node, flags, {count} values\n"
    for k in order:
        rows = group == k
        text += f"# {shown(labels[k], 200)}\n"
        digits = (supports.flags[rows] * 10 ** np.arange(count - 1, -1, -1)).sum(axis=1)
        formats = ["%d", f"%0{count}d"] + ["%r"] * count
        columns = [supports.nodes[rows] + 1, digits, *_matrix_columns(supports.values[rows])]
        if supports.angles[rows].any():
            formats += ["Euler1 = %r", "Euler2 = %r", "Euler3 = %r"]
            columns += _matrix_columns(supports.angles[rows])
        text += table_text(formats, columns)
    return text + f"end {block}\n"


def _hinges(model):
    text = "\nelem_rotules\n# element, code of its ends: 1 continuous, 0 hinged\n"
    for hinges in model.hinges:
        text += f"# {shown(hinges.label, 200)}\n" + table_text(["%d", "%s"], [hinges.elements, hinges.code])
    return text + "end elem_rotules\n"


def loads_text(nodal, elements):
    """The blocks of loads: one for the nodes, one for each keyword of element loads."""
    text = ""
    if nodal:
        text += (
            "\nnodal_point_loads\n# node, forces"
            + (" and moments" if nodal[0].values.shape[1] == 6 else "")
            + "\n"
        )
        for load in nodal:
            text += f"# {shown(load.label, 200)}\n"
            text += table_text(
                ["%d"] + ["%r"] * load.values.shape[1], [load.nodes + 1, *_matrix_columns(load.values)]
            )
        text += "end nodal_point_loads\n"
    for block in dict.fromkeys(load.block for load in elements):
        text += f"\n{block}\n"
        for load in elements:
            if load.block == block:
                side = {1: "element", 2: "element, side"}[load.places.shape[1]]
                text += f"# {shown(load.label, 200)}: {side}, three values\n"
                text += table_text(
                    ["%d"] * load.places.shape[1] + ["%r"] * 3,
                    [*_matrix_columns(load.places), *_matrix_columns(load.values)],
                )
        text += f"end {block}\n"
    return text
