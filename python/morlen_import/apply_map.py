"""A mesh and a map make a model."""

import numpy as np

from morlen_import.fault import Fault, did_you_mean, numbered, warn
from morlen_import.group_map import EULER
from morlen_import.mesh import KINDS
from morlen_import.model import ElementLoads, Hinges, Material, Model, NodalLoads, Supports
from morlen_import.structure import Structure

_DIMENSIONS = ("points", "lines", "triangles", "tetrahedra")


def apply_map(mesh, group_map):
    """The model of a mesh whose groups are used as the map says."""
    return _Application(mesh, group_map).model()


class _Groups:
    """The groups of a mesh by the names that a map uses."""

    def __init__(self, mesh, path):
        self._mesh = mesh
        self._path = path
        self._used = set()

    def find(self, rule):
        """The groups that a rule names."""
        return [self._find(rule, name) for name in rule.groups]

    def unused(self):
        """The groups that no rule has named."""
        return [group for k, group in enumerate(self._mesh.groups) if k not in self._used]

    def _find(self, rule, name):
        for fold in (False, True) if not self._mesh.names_have_case else (False,):
            found = [k for k, group in enumerate(self._mesh.groups) if self._matches(group, name, fold)]
            if found:
                break
        key = f"{rule.key}.groups"
        if not found:
            known = [group.label for group in self._mesh.groups]
            known += [group.name for group in self._mesh.groups if group.name is not None]
            raise Fault(
                self._path,
                f"'{name}' is no group of {self._mesh.path}{did_you_mean(name, known)}",
                key=key,
                hint=f"its groups: {_listed([group.label for group in self._mesh.groups])}",
            )
        if len(found) > 1:
            labels = " or ".join(f"'{self._mesh.groups[k].label}'" for k in found)
            raise Fault(self._path, f"several groups have the name '{name}': write {labels}", key=key)
        self._used.add(found[0])
        return self._mesh.groups[found[0]]

    def _matches(self, group, name, fold):
        names = [group.name, f"{group.dimension}:{group.name}"] if group.name is not None else []
        if group.number is not None:
            names.append(f"{group.dimension}:{group.number}")
        return (name.upper() in [n.upper() for n in names]) if fold else name in names


def _listed(labels, limit=20):
    if not labels:
        return "none"
    return ", ".join(labels[:limit]) + (", ..." if len(labels) > limit else "")


class _Application:
    def __init__(self, mesh, group_map):
        self._mesh = mesh
        self._map = group_map
        self._groups = _Groups(mesh, group_map.path)
        self._used = {kind: np.zeros(len(cells.nodes), dtype=bool) for kind, cells in mesh.cells.items()}
        self._structure = Structure(
            mesh, self._assign_materials(), lambda text: Fault(group_map.path, text, key="materials")
        )

    def model(self):
        structure, mesh = self._structure, self._mesh
        model = Model(
            mesh.path,
            [f"The groups are used as {self._map.path} says."],
            self._map.length,
            self._map.force,
            mesh.numbers[structure.kept_nodes] if mesh.has_numbers else None,
            mesh.places[structure.kept_nodes],
            structure.parts,
            self._materials(),
            list(self._map.settings),
        )
        model.supports = self._supports(model.components)
        model.hinges = [self._hinge(rule) for rule in self._map.hinges]
        for rule in self._map.loads:
            self._load(rule, model)
        self._warn_of_unused()
        return model

    def _fault(self, rule, key, text, hint=None):
        return Fault(self._map.path, text, key=f"{rule.key}.{key}" if key else rule.key, hint=hint)

    def _cells(self, rule):
        """The cells of a rule's groups, by kind, each once."""
        found = {}
        for group in self._groups.find(rule):
            for kind, cells in group.cells.items():
                found.setdefault(kind, []).append(cells)
        cells = {kind: np.unique(np.concatenate(parts)) for kind, parts in found.items()}
        for kind, indices in cells.items():
            self._used[kind][indices] = True
        return cells

    def _assign_materials(self):
        materials = {
            kind: np.zeros(len(cells.nodes), dtype=np.int64)
            for kind, cells in self._mesh.cells.items()
            if KINDS[kind].dimension
        }
        for number, rule in enumerate(self._map.materials, 1):
            cells = self._cells(rule)
            if not any(kind in materials for kind in cells):
                raise self._fault(rule, "groups", "the groups have no lines, triangles or tetrahedra")
            for kind, indices in cells.items():
                if kind == "point":
                    raise self._fault(rule, "groups", "points have no material")
                double = indices[materials[kind][indices] > 0]
                if len(double):
                    other = self._map.materials[materials[kind][double[0]] - 1]
                    raise self._fault(
                        rule,
                        "groups",
                        self._numbered(
                            kind,
                            double,
                            f"has a material already, that of {other.key}",
                            f"have a material already, that of {other.key}",
                        ),
                    )
                materials[kind][indices] = number
        return materials

    def _materials(self):
        return [
            Material(f"{rule.name}: {', '.join(rule.groups)}", rule.values) for rule in self._map.materials
        ]

    def _nodes(self, rule):
        """The nodes of a rule's groups as indices in the model, in rising order."""
        parts = [np.zeros(0, dtype=np.int64)]
        for group in self._groups.find(rule):
            if group.nodes is not None:
                parts.append(group.nodes)
        for kind, cells in self._cells(rule).items():
            parts.append(self._mesh.cells[kind].nodes[cells].ravel())
        nodes = np.unique(np.concatenate(parts))
        index = self._structure.index_of(nodes)
        lost = nodes[index < 0]
        if len(lost):
            raise self._fault(
                rule,
                "groups",
                numbered(
                    self._mesh.numbers[lost],
                    "node belongs to no element with a material",
                    "nodes belong to no element with a material",
                ),
            )
        if not len(nodes):
            raise self._fault(rule, "groups", "the groups have no nodes")
        return np.sort(index)

    def _supports(self, components):
        merger = SupportMerger(len(self._structure.kept_nodes), components)
        for rule in self._map.supports:
            flags = rule.values["flags"]
            if len(flags) != components:
                raise self._fault(
                    rule, "flags", f"{components} digits are needed for this model, not {len(flags)}"
                )
            nodes = self._nodes(rule)
            angles = [rule.values.get(key, 0.0) for key in EULER]
            if components == 3 and any(angles[1:]):
                raise self._fault(
                    rule,
                    "Euler2" if angles[1] else "Euler3",
                    "supports of solids are turned about z only," " by Euler1",
                )
            values = rule.values.get("values") or [0.0] * components
            clash = merger.add(rule.key, nodes, flags, values, angles)
            if clash:
                node, other = clash
                raise self._fault(
                    rule,
                    "groups",
                    f"node {self._number(node)} has another support already, that of {other},"
                    " and the two differ",
                )
        return merger.result()

    def _number(self, node):
        return self._mesh.numbers[self._structure.kept_nodes[node]]

    def _hinge(self, rule):
        cells = self._cells(rule)
        elements = []
        for kind, indices in cells.items():
            if KINDS[kind].dimension != 1 or not self._structure.is_element(kind, indices).all():
                raise self._fault(rule, "groups", "hinges are only for lines with a material")
        code = rule.values["code"]
        hinges = []
        if "line2" in cells:
            hinges.append((self._structure.elements_of("line2", cells["line2"]), code))
        if "line3" in cells:
            pairs = self._structure.elements["line3"][cells["line3"]]
            hinges += [(pairs[:, 0], code[0] + "1"), (pairs[:, 1], "1" + code[1])]
        if not hinges:
            raise self._fault(rule, "groups", "the groups have no lines")
        elements = np.concatenate([found for found, _ in hinges])
        codes = np.concatenate([np.full(len(found), own) for found, own in hinges])
        order = np.argsort(elements)
        return Hinges(rule.key, elements[order], codes[order])

    def _load(self, rule, model):
        kind, value = rule.values["kind"], rule.values["value"]
        if kind in ("total", "each"):
            self._nodal_load(rule, kind, value, model)
            return
        found = []
        for cells, indices in self._cells_with_area(rule, kind):
            found += self._records(rule, kind, cells, indices)
        if kind == "pressure":
            vectors = {"local_pressure_loads": [0.0, 0.0, -float(value)]}
        else:
            vectors = dict.fromkeys(("global_pressure_loads", "face_loads"), [float(v) for v in value])
        for block, places in found:
            order = np.lexsort(places.T[::-1])
            values = np.tile(np.array(vectors[block]), (len(places), 1))
            model.elements.append(ElementLoads(block, rule.key, places[order], values))

    def _nodal_load(self, rule, kind, value, model):
        if len(value) > model.components:
            raise self._fault(rule, kind, "nodes of solids take three forces and no moments")
        nodes = self._nodes(rule)
        row = np.zeros(model.components)
        row[: len(value)] = value
        if kind == "total":
            row /= len(nodes)
        model.nodal.append(NodalLoads(rule.key, nodes, np.tile(row, (len(nodes), 1))))

    def _cells_with_area(self, rule, kind):
        cells = self._cells(rule)
        if not cells:
            raise self._fault(
                rule, "groups", f"a {kind} needs lines, triangles or shells; for nodes take total or each"
            )
        for name, indices in cells.items():
            dimension = KINDS[name].dimension
            if dimension in (0, 3) or (dimension == 1 and kind == "pressure"):
                raise self._fault(
                    rule,
                    kind,
                    f"no {kind} acts on {_DIMENSIONS[dimension]}",
                    hint="take total, each or traction" if dimension == 1 else None,
                )
            yield name, indices

    def _records(self, rule, kind, cells, indices):
        """Blocks and places (element, or element and side) of a load on lines or triangles."""
        structure = self._structure
        inside = structure.is_element(cells, indices)
        block = "local_pressure_loads" if kind == "pressure" else "global_pressure_loads"
        records = []
        if inside.any():
            records.append((block, structure.elements_of(cells, indices[inside])[:, None]))
        rest = indices[~inside]
        if not len(rest):
            return records
        is_line = KINDS[cells].dimension == 1
        owners, sides, count = (structure.edges if is_line else structure.faces)(cells, rest)
        lost = rest[count == 0]
        if len(lost):
            side, owner = ("edge", "shells") if is_line else ("face", "tetrahedra")
            raise self._fault(
                rule,
                "groups",
                self._numbered(
                    cells,
                    lost,
                    f"has no material and is no {side} of {owner}",
                    f"have no material and are no {side}s of {owner}",
                ),
            )
        if kind == "pressure" and (count > 1).any():
            inner = rest[count > 1]
            raise self._fault(
                rule,
                "groups",
                self._numbered(
                    cells,
                    inner,
                    "is inside the solid, where a pressure has no direction",
                    "are inside the solid, where a pressure has no direction",
                ),
            )
        records.append(("face_loads" if is_line else block, np.column_stack([owners, sides])))
        return records

    def _numbered(self, kind, cells, one, many):
        """'1 triangle is ...: 5', '3 triangles are ...: 5, 7-8'."""
        names = KINDS[kind]
        return numbered(
            self._mesh.cells[kind].numbers[cells], f"{names.name} {one}", f"{names.plural} {many}"
        )

    def _warn_of_unused(self):
        mesh = self._mesh
        unused = self._groups.unused()
        if unused:
            warn(mesh.path, f"groups that are not used: {_listed([group.label for group in unused])}")
        for kind, used in self._used.items():
            left = np.flatnonzero(~used)
            if len(left):
                text = "no material or other use"
                warn(mesh.path, self._numbered(kind, left, f"has {text}", f"have {text}"))
        warn_of_lost_nodes(mesh, self._structure)


def warn_of_lost_nodes(mesh, structure):
    """Lists the nodes that belong to no element with a material."""
    lost = mesh.numbers[structure.node_index < 0]
    if len(lost):
        warn(
            mesh.path,
            numbered(
                lost,
                "node is left out, because no element with a material has it",
                "nodes are left out, because no element with a material has them",
            ),
        )


class SupportMerger:
    """Collects supports of nodes; those of one node must not contradict each other."""

    def __init__(self, nodes, components):
        self._flags = np.zeros((nodes, components), dtype=np.int64)
        self._values = np.zeros((nodes, components))
        self._angles = np.zeros((nodes, 3))
        self._owner = np.zeros(nodes, dtype=np.int64)  # labels as an index; 0: no support
        self._labels = [()]

    def add(self, label, nodes, flags, values, angles):
        """Adds a support; gives a node and the label of its other support where they contradict, else None."""
        flags = np.array([int(flag) for flag in flags])
        values = np.where(flags > 0, np.array(values, dtype=float), 0.0)
        old = self._flags[nodes]
        both = (old > 0) & (flags > 0)
        wrong = (both & ((old != flags) | (self._values[nodes] != values) | (flags == 2))).any(axis=1)
        wrong |= (old > 0).any(axis=1) & (self._angles[nodes] != np.array(angles, dtype=float)).any(axis=1)
        if wrong.any():
            node = nodes[np.argmax(wrong)]
            return node, self._text(self._owner[node])
        self._flags[nodes] = np.where(flags > 0, flags, old)
        self._values[nodes] = np.where(flags > 0, values, self._values[nodes])
        self._angles[nodes] = angles
        self._relabel(label, nodes)
        return None

    def _relabel(self, label, nodes):
        owners = self._owner[nodes]
        for owner in np.unique(owners):
            self._labels.append((*self._labels[owner], label))
            self._owner[nodes[owners == owner]] = len(self._labels) - 1

    def _text(self, owner):
        return " and ".join(self._labels[owner])

    def result(self):
        """All supports, or None without any."""
        rows = np.flatnonzero((self._flags > 0).any(axis=1))
        if not len(rows):
            return None
        labels = [self._text(owner) for owner in range(len(self._labels))]
        return Supports(
            rows,
            self._flags[rows],
            self._values[rows],
            self._angles[rows],
            np.array(labels, dtype=object)[self._owner[rows]],
        )
