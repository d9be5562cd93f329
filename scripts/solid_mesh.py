"""Meshes of tetrahedra from mapped blocks, and their problem files. Used by the generators
of examples and benchmarks and by verify_solids.py; needs the standard library only."""

import itertools

# The edges of nodes 5 to 10 of an element, by corners from 0.
EDGES = ((0, 1), (1, 2), (0, 2), (0, 3), (1, 3), (2, 3))


def subtract(a, b):
    return tuple(x - y for x, y in zip(a, b))


def six_volumes(corners):
    a, b, c = (subtract(p, corners[0]) for p in corners[1:])
    return (a[0] * (b[1] * c[2] - b[2] * c[1]) + a[1] * (b[2] * c[0] - b[0] * c[2])
            + a[2] * (b[0] * c[1] - b[1] * c[0]))


class SolidMesh:
    """Nodes and elements are numbered from 1. Blocks that touch share their nodes; where two
    of them meet, their parameters must run the same way along the face."""

    def __init__(self, ten_nodes, tolerance=1e-6):
        self.ten_nodes, self.tolerance = ten_nodes, tolerance
        self.nodes, self.elements, self.numbers = [], [], {}

    def node(self, place):
        key = tuple(round(x / self.tolerance) for x in place)
        if key not in self.numbers:
            self.nodes.append(tuple(map(float, place)))
            self.numbers[key] = len(self.nodes)
        return self.numbers[key]

    def add_block(self, cells, place):
        """Cuts a block into cells of six tetrahedra. `place` maps parameters (u, v, w), each
        from 0 to 1, to a point; with ten nodes edges follow it, curved ones too."""
        def number(at):  # in half cells
            if at not in known:
                known[at] = self.node(place(*(x / (2 * n) for x, n in zip(at, cells))))
            return known[at]

        known = {}
        for cell in itertools.product(*(range(n) for n in cells)):
            for order in itertools.permutations(range(3)):
                at = [2 * x for x in cell]
                corners = [tuple(at)]
                for axis in order:
                    at[axis] += 2
                    corners.append(tuple(at))
                if six_volumes([self.nodes[number(c) - 1] for c in corners]) < 0.0:
                    corners[1], corners[2] = corners[2], corners[1]
                element = [number(c) for c in corners]
                if self.ten_nodes:
                    element += [number(tuple((x + y) // 2 for x, y in zip(corners[a], corners[b])))
                                for a, b in EDGES]
                self.elements.append(element)

    def sort_nodes(self, key):
        """Numbers the nodes by this key of their places; neighbours should get close numbers."""
        order = sorted(range(len(self.nodes)), key=lambda i: key(self.nodes[i]))
        new = {old + 1: i + 1 for i, old in enumerate(order)}
        self.nodes = [self.nodes[i] for i in order]
        self.elements = [[new[n] for n in element] for element in self.elements]
        self.numbers = {k: new[n] for k, n in self.numbers.items()}

    def place(self, node):
        return self.nodes[node - 1]

    def nodes_where(self, picks):
        return [n for n, place in enumerate(self.nodes, 1) if picks(*place)]

    def sides_where(self, picks):
        """(element, face, centre of its corners) of the faces on the surface whose corners are
        all picked."""
        owners = {}
        for number, element in enumerate(self.elements, 1):
            for face in range(4):
                corners = [element[(face + i) % 4] for i in range(3)]
                owners.setdefault(tuple(sorted(corners)), []).append((number, face))
        for corners, found in owners.items():
            places = [self.place(n) for n in corners]
            if len(found) == 1 and all(picks(*p) for p in places):
                yield (*found[0], tuple(sum(x) / 3.0 for x in zip(*places)))


def numbers(values):
    return " ".join(f"{value:.10g}" for value in values)


def write_problem(out, mesh, title, material, supports, side_loads=(), settings=()):
    """`supports`: {node: (flags, values, items)}; `side_loads`: (keyword, [(element, face,
    values)]), ..."""
    out.write("problem type: 3d\n")
    out.writelines(f"# {line}\n" for line in title)
    out.writelines(line + "\n" for line in settings)
    nnode = 10 if mesh.ten_nodes else 4
    out.write(f"mesh dimension = 3 elemtype Tetrahedra nnode = {nnode}\ncoordinates\n")
    out.writelines(f"{n} {numbers(x)}\n" for n, x in enumerate(mesh.nodes, 1))
    out.write("end coordinates\nelements\n")
    out.writelines(f"{n} {' '.join(map(str, element))} 1\n"
                   for n, element in enumerate(mesh.elements, 1))
    out.write(f"end elements\nmaterials\n1 {material}\nend materials\nconstraints\n")
    out.writelines(f"{node} {flags} {numbers(given)} {items}".rstrip() + "\n"
                   for node, (flags, given, items) in sorted(supports.items()))
    out.write("end constraints\n")
    for keyword, records in side_loads:
        out.write(keyword + "\n")
        out.writelines(f"{element} {face} {numbers(given)}\n" for element, face, given in records)
        out.write(f"end {keyword}\n")
