"""The model and the cases of an `.inp` file with materials, sections and steps."""

import numpy as np

from morlen_import.apply_map import warn_of_lost_nodes
from morlen_import.fault import Fault, count_of, numbered, warn
from morlen_import.inp_mesh import MESH_KEYWORDS, InpMesh, refuse_keyword
from morlen_import.inp_sections import SECTION_TYPES, MaterialTable, SectionReader
from morlen_import.inp_steps import StepReader
from morlen_import.mesh import KINDS, Cells, check_middles, turn_tetrahedra
from morlen_import.model import Case, ElementLoads, Model, NodalLoads, Supports
from morlen_import.structure import Structure
from morlen_import.writer import number_text

_SECTION_CARDS = ("MATERIAL", "ELASTIC", "DENSITY", *SECTION_TYPES)
_STEP_CARDS = ("SURFACE", "BOUNDARY", "STEP", "STATIC", "CLOAD", "DLOAD", "DSLOAD", "END STEP")
KEYWORDS = (*_SECTION_CARDS, *_STEP_CARDS)
_LINES = np.array([(0, 2), (2, 1)])  # the two beams of a line of three nodes


def read_model(path, length, force, skip, read_file):
    """The model of a file, and its cases when it has several steps."""
    return _Conversion(path, length, force, skip, read_file).result()


class _Conversion:
    def __init__(self, path, length, force, skip, read_file):
        self._path = path
        self._units = length, force
        self._source = InpMesh(path, read_file)
        turn_tetrahedra(self._source.mesh)
        check_middles(self._source.mesh)
        self._read_sections(skip)
        self._assign_sections()
        self._make_structure()
        self._read_steps()

    def result(self):
        """The model and its cases."""
        source, structure, steps = self._source, self._structure, self._steps.steps
        self._warn_of_unused()
        model = Model(
            source.path,
            self._comments(),
            *self._units,
            source.mesh.numbers[structure.kept_nodes],
            source.mesh.places[structure.kept_nodes],
            structure.parts,
            self._table.materials,
        )
        if structure.has("tri3") or structure.has("tri6"):
            model.settings.append(("ShellFormulation", "Refined"))
        by_weight = self._set_weight(model)
        self._require_equal_supports()
        if len(steps) == 1:
            model.supports = self._supports(steps[0], steps[0].held, steps[0].prescribed)
            model.nodal, model.elements = self._loads(steps[0], by_weight)
            return model, []
        model.supports = self._supports(steps[0], steps[0].held, np.zeros_like(steps[0].prescribed))
        return model, [self._case(step, by_weight) for step in steps]

    def _read_sections(self, skip):
        reader = SectionReader()
        self._step_cards = []
        in_step = False
        known = (*MESH_KEYWORDS, *KEYWORDS, "INCLUDE")
        for card in self._source.others:
            in_step = (in_step or card.keyword == "STEP") and card.keyword != "END STEP"
            if card.keyword in reader.readers:
                if in_step:
                    raise card.fault("it belongs before the steps")
                reader.readers[card.keyword](card)
            elif card.keyword in _STEP_CARDS:
                self._step_cards.append(card)
            else:
                refuse_keyword(card, skip, known)
        self._sections = reader.finish()
        if not self._sections:
            raise Fault(
                self._path,
                "the file has no sections",
                line=1,
                hint="give a map of its groups in place of --units",
            )

    def _assign_sections(self):
        source = self._source
        self._section_of = np.full(len(source.numbers), -1)
        for k, section in enumerate(self._sections):
            card = section.card
            name = card.parameters["ELSET"]
            if name not in source.element_sets:
                raise card.fault(f"there is no set {name} of elements")
            elements = source.elements_of_set(name)
            wrong = elements[~np.isin(source.types[elements], SECTION_TYPES[card.keyword])]
            if len(wrong):
                raise card.fault(
                    f"element {source.numbers[wrong[0]]} is of the type {source.types[wrong[0]]}; such a section"
                    f" is for {', '.join(SECTION_TYPES[card.keyword])}"
                )
            double = elements[self._section_of[elements] >= 0]
            if len(double):
                raise card.fault(
                    f"element {source.numbers[double[0]]} has a section already, in line"
                    f" {self._sections[self._section_of[double[0]]].card.line}"
                )
            self._section_of[elements] = k

    def _make_structure(self):
        """Divides lines of three nodes into two, gives all cells their materials, and numbers the elements."""
        source, mesh = self._source, self._source.mesh
        self._solids = bool((np.char.startswith(source.types, "C3D") & (self._section_of >= 0)).any())
        self._table = MaterialTable()
        # Cells of an element: its kind and the first row; lines of three nodes have two rows.
        self._cell_kind = np.array(source.kind_names, dtype="U8")[source.kinds]
        self._cell_row = source.rows.copy()
        self._cell_count = np.ones(len(source.rows), dtype=np.int64)
        self._divide_lines()
        materials = {kind: np.zeros(len(cells.numbers), dtype=np.int64) for kind, cells in mesh.cells.items()}
        for k, section in enumerate(self._sections):
            elements = np.flatnonzero(self._section_of == k)
            for kind in np.unique(self._cell_kind[elements]):
                rows = self._rows(elements[self._cell_kind[elements] == kind])
                materials[kind][rows] = self._materials_of(section, kind, rows)
        self._structure = Structure(mesh, materials, self._sections[0].card.fault)

    def _divide_lines(self):
        mesh = self._source.mesh
        if "line3" not in mesh.cells:
            return
        long = mesh.cells.pop("line3")
        short = mesh.cells.get("line2", Cells(np.zeros(0, dtype=np.int64), np.zeros((0, 2), dtype=np.int64)))
        mesh.cells["line2"] = Cells(
            np.concatenate([short.numbers, np.repeat(long.numbers, 2)]),
            np.concatenate([short.nodes, long.nodes[:, _LINES].reshape(-1, 2)]),
        )
        divided = self._cell_kind == "line3"
        self._cell_kind[divided] = "line2"
        self._cell_row[divided] = len(short.numbers) + 2 * self._cell_row[divided]
        self._cell_count[divided] = 2

    def _rows(self, elements):
        """Rows of the cells of elements of one kind."""
        rows = np.repeat(self._cell_row[elements], self._cell_count[elements])
        second = np.zeros(len(rows), dtype=np.int64)
        second[np.cumsum(self._cell_count[elements]) - 1] = self._cell_count[elements] - 1
        return rows + second

    def _materials_of(self, section, kind, rows):
        mesh = self._source.mesh
        if kind != "line2":
            return self._table.add(section, len(rows))
        cells = mesh.cells[kind]
        ends = mesh.places[cells.nodes[rows]]
        tangents = ends[:, 1] - ends[:, 0]
        length = np.linalg.norm(tangents, axis=1)
        if not (length > 0).all():
            raise section.card.fault(f"element {cells.numbers[rows[np.argmin(length)]]} has no length")
        return self._table.add_beams(section, tangents / length[:, None], cells.numbers[rows])

    def _read_steps(self):
        self._steps = StepReader(
            self._source, self._solids, self._section_of >= 0, self._structure.node_index >= 0
        )
        # Surfaces may be used before they are defined.
        for card in sorted(self._step_cards, key=lambda card: card.keyword != "SURFACE"):
            self._steps.readers[card.keyword](card)
        self._steps.finish()

    def _comments(self):
        comments = [self._source.heading] if self._source.heading else []
        if self._structure.has("line2"):
            text = "beams (B31, B32) have no shear deformation in this model"
            comments.append(text[0].upper() + text[1:] + ".")
            warn(self._path, text)
        return comments

    def _warn_of_unused(self):
        source = self._source
        lost = source.numbers[self._section_of < 0]
        if len(lost):
            warn(
                self._path,
                numbered(
                    lost,
                    "element has no section and is left out",
                    "elements have no section and are left out",
                ),
            )
        warn_of_lost_nodes(source.mesh, self._structure)

    def _set_weight(self, model):
        """Makes weight and direction of a gravity that all elements have in all steps; true if there is one."""
        steps = self._steps.steps
        if self._steps.gravity_card:
            self._require_density()
        own = steps[0].gravity[self._section_of >= 0]
        uniform = (
            own.any()
            and (own == own[0]).all()
            and all(
                step.gravity is steps[0].gravity or np.array_equal(step.gravity, steps[0].gravity)
                for step in steps
            )
        )
        if not uniform:
            return False
        size = float(np.linalg.norm(own[0]))
        model.settings.append(("GravityDirection", " ".join(map(number_text, own[0] / size + 0.0))))
        for material, section in zip(model.materials, self._table.sections):
            material.values["Weight"] = section.substance.density * size
        return True

    def _require_density(self):
        card, path, line = self._steps.gravity_card
        loaded = np.zeros(len(self._section_of), dtype=bool)
        for step in self._steps.steps:
            loaded |= step.gravity.any(axis=1)
        for k in np.unique(self._section_of[loaded]):
            substance = self._sections[k].substance
            if substance.density is None:
                raise card.fault(f"GRAV needs the *DENSITY of {substance.name}", line, path)

    def _require_equal_supports(self):
        first = self._steps.steps[0]
        for step in self._steps.steps[1:]:
            if step.held is first.held or np.array_equal(step.held, first.held):
                continue
            node, component = np.argwhere(step.held != first.held)[0]
            raise step.support_card.fault(
                f"component {component + 1} of node {self._source.mesh.numbers[node]} is held in some"
                " steps only: all steps need the same supports"
            )

    def _supports(self, step, held, values):
        """Supports with the given values, or None without any."""
        components = 3 if self._solids else 6
        nodes = np.flatnonzero(held.any(axis=1))
        if not len(nodes):
            return None
        index = self._structure.index_of(nodes)
        order = np.argsort(index)
        nodes = nodes[order]
        flags = held[nodes][:, :components].astype(np.int64)
        label = "*BOUNDARY"
        return Supports(
            index[order],
            flags,
            values[nodes][:, :components],
            np.zeros((len(nodes), 3)),
            np.full(len(nodes), label, dtype=object),
        )

    def _case(self, step, by_weight):
        case = Case(f"Step {step.number}", step.title, gravity=by_weight)
        case.nodal, case.elements = self._loads(step, by_weight)
        case.prescribed = self._supports(step, step.prescribed != 0, step.prescribed)
        return case

    def _loads(self, step, by_weight):
        nodal = []
        nodes = np.flatnonzero(step.forces.any(axis=1))
        if len(nodes):
            index = self._structure.index_of(nodes)
            order = np.argsort(index)
            components = 3 if self._solids else 6
            nodal.append(NodalLoads("*CLOAD", index[order], step.forces[nodes[order]][:, :components]))
        elements = list(self._face_loads(step))
        if not by_weight:
            elements += self._gravity_loads(step)
        return nodal, elements

    def _face_loads(self, step):
        loaded = np.flatnonzero(step.faces.any(axis=1))
        places, values = [], []
        for kind in np.unique(self._cell_kind[loaded]):
            own = loaded[self._cell_kind[loaded] == kind]
            table = self._structure.elements[kind][self._cell_row[own], 0]
            for side in range(4):
                given = step.faces[own, side] != 0
                if not given.any():
                    continue
                is_solid = KINDS[kind].dimension == 3
                columns = [table[given]] + ([np.full(int(given.sum()), side)] if is_solid else [])
                places.append(np.column_stack(columns))
                values.append(step.faces[own[given], side] * (-1.0 if is_solid else 1.0))
        if not places:
            return
        places, values = np.concatenate(places), np.concatenate(values)
        order = np.lexsort(places.T[::-1])
        zero = np.zeros(len(values))
        yield ElementLoads(
            "local_pressure_loads", "pressures", places[order], np.column_stack([zero, zero, values])[order]
        )

    def _gravity_loads(self, step):
        """Gravity as forces per volume, area or length of each element."""
        loaded = np.flatnonzero(step.gravity.any(axis=1) & (self._section_of >= 0))
        for kind in np.unique(self._cell_kind[loaded]):
            own = loaded[self._cell_kind[loaded] == kind]
            sections = self._section_of[own]
            mass = np.array(
                [
                    0.0 if s.substance.density is None else s.substance.density * s.mass_factor()
                    for s in self._sections
                ]
            )
            rows = self._rows(own)
            numbers = self._structure.elements[kind][rows, 0]
            values = np.repeat(step.gravity[own] * mass[sections][:, None], self._cell_count[own], axis=0)
            order = np.argsort(numbers, kind="stable")
            places = numbers[order][:, None]
            if KINDS[kind].dimension == 3:
                places = np.column_stack([places, np.full(len(order), -1)])
            yield ElementLoads(
                "global_pressure_loads", f"GRAV on {count_of(len(own), 'element')}", places, values[order]
            )
