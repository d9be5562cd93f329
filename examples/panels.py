"""Rectangles of triangles over shared nodes, and blocks of a problem file, for the generators."""


class Model:
    def __init__(self):
        self.numbers, self.nodes = {}, []

    def node(self, x, y, z):
        key = (round(x, 6), round(y, 6), round(z, 6))
        if key not in self.numbers:
            self.nodes.append(key)
            self.numbers[key] = len(self.nodes)
        return self.numbers[key]


def panel(model, origin, u, v, nu, nv):
    """Triangles of a rectangle with the sides u and v; the normal is u × v."""

    def at(i, j):
        return model.node(*(o + i / nu * a + j / nv * b for o, a, b in zip(origin, u, v)))

    for j in range(nv):
        for i in range(nu):
            a, b, c, d = at(i, j), at(i + 1, j), at(i + 1, j + 1), at(i, j + 1)
            yield from ([(a, b, c), (a, c, d)] if (i + j) % 2 == 0 else [(a, b, d), (b, c, d)])


def block(name, lines):
    print(name, *lines, "end " + name, "", sep="\n")
