#!/usr/bin/env python3
"""Draws results.svg of the README from the program's results of two examples.

    docs/images/draw_results.py build/release/morlen >docs/images/results.svg

On the left the space frame: undeformed in grey, deformed with enlarged displacements. On
the right the portal frame: its bending moments, on the side of the tension, and its
deformed shape. Everything drawn is read from the post-process results files.
"""

import pathlib
import shutil
import subprocess
import sys
import tempfile

INK, GREY, BLUE, RED = "#222222", "#b5b5b5", "#1f5fa8", "#c0392b"


class Results:
    """Nodes and elements of a model, and the blocks of its post-process results."""

    def __init__(self, program, model):
        with tempfile.TemporaryDirectory() as folder:
            copy = pathlib.Path(folder) / model.name
            shutil.copy(model, copy)
            subprocess.run([program, copy], check=True)
            self.blocks = dict(self.read_blocks(copy.with_suffix(".morlen.res").read_text()))
        text = model.read_text()
        self.nodes = {n: (v + [0.0])[:3] for n, v in self.read_table(text, "coordinates")}
        self.beams = {n: [self.nodes[int(k)] for k in v[:2]]
                      for n, v in self.read_table(text, "elements")}

    @staticmethod
    def read_table(text, name):
        lines = text.split(f"\n{name}\n")[1].split("\nend")[0].splitlines()
        for words in (line.split() for line in lines if not line.startswith("#")):
            yield int(words[0]), [float(w) for w in words[1:]]

    @staticmethod
    def read_blocks(text):
        """(name, {element: list of the values of its points}) of every block of beams."""
        name, block = None, {}
        for line in text.splitlines():
            if " Estatic " in line:
                if name:
                    yield name, block
                name, block = line.split(" 4 1.0 ")[0][:15].strip(), {}
            elif name and not line[0].isalpha():
                values = [float(w) for w in line.split()]
                if not line.startswith(" "):
                    current = block.setdefault(int(values.pop(0)), [])
                current.append(values)
        yield name, block

    def points(self, number, count):
        """Points at equal distances along a beam."""
        a, b = self.beams[number]
        return [[p + (q - p) * i / (count - 1) for p, q in zip(a, b)] for i in range(count)]

    def moved(self, block, scale):
        """Beams as polylines, each point moved along the first components of its values."""
        for number, values in self.blocks[block].items():
            yield [[x + scale * d for x, d in zip(point, (v + [0.0])[:3])]
                   for point, v in zip(self.points(number, len(values)), values)]


class View:
    """Projects points of a model onto the page."""

    def __init__(self, x_axis, y_axis, z_axis, scale, origin):
        self.axes, self.scale, self.origin = (x_axis, y_axis, z_axis), scale, origin

    def __call__(self, point):
        return tuple(o + self.scale * sum(c * axis[k] for c, axis in zip(point, self.axes))
                     for k, o in enumerate(self.origin))

    def line(self, points, color, width, fill="none"):
        path = " ".join(f"{x:.1f},{y:.1f}" for x, y in map(self, points))
        return (f'  <polyline points="{path}" fill="{fill}" stroke="{color}" '
                f'stroke-width="{width}" stroke-linejoin="round"/>\n')


def label(x, y, text, color=INK, anchor="middle", size=13):
    return (f'  <text x="{x:.1f}" y="{y:.1f}" fill="{color}" font-size="{size}" '
            f'text-anchor="{anchor}">{text}</text>\n')


def draw_space_frame(results):
    view = View((0.93, 0.16), (0.52, -0.26), (0.0, -1.0), 13.0, (42.0, 318.0))
    scale = 400
    out = "".join(view.line(ends, GREY, 1) for ends in results.beams.values())
    out += "".join(view.line(points, BLUE, 1.6) for points in results.moved("BDisplacements", scale))
    return out + label(200, 392, f"space frame: displacements, {scale} times")


def draw_portal(results):
    view = View((1.0, 0.0), (0.0, -1.0), (0.0, 0.0), 34.0, (490.0, 312.0))
    moment_scale, scale = 0.012, 25
    out = ""
    for number, diagram in zip(results.beams, results.moved("Z'_Momentus", moment_scale)):
        a, b = results.beams[number]
        out += view.line([a, *diagram, b], RED, 1.2, "#f7dcd8")
    out += "".join(view.line(ends, INK, 2.5) for ends in results.beams.values())
    out += "".join(view.line(points, BLUE, 1.4) for points in results.moved("BDisplacements", scale))
    for number, values in results.blocks["Z'_Momentus"].items():
        points = results.points(number, len(values))
        for k in (0, -1) if number in (1, 5) else (-1,) if number in (2, 3) else ():
            moment = values[k][-1]
            dx, dy = (v * moment_scale + 0.3 * v / abs(moment) for v in values[k][:2])
            x, y = view((points[k][0] + dx, points[k][1] + dy, 0))
            out += label(x, y + 5, f"{abs(moment):.1f}", RED,
                         "middle" if abs(dy) > abs(dx) else "start" if dx > 0 else "end")
    for node in (1, 6):
        x, y = view(results.nodes[node])
        out += f'  <path d="M {x - 14:.1f} {y:.1f} h 28" stroke="{INK}" stroke-width="4"/>\n'
    return out + label(645, 392, f"portal frame: bending moments in kN m, displacements {scale} times")


def main():
    program = pathlib.Path(sys.argv[1]).resolve()
    examples = pathlib.Path(__file__).resolve().parents[2] / "examples"
    sys.stdout.write(
        '<svg xmlns="http://www.w3.org/2000/svg" viewBox="0 0 900 405" width="900" height="405" '
        'font-family="DejaVu Sans, Arial, sans-serif">\n'
        '  <rect width="900" height="405" fill="#ffffff"/>\n'
        + draw_space_frame(Results(program, examples / "space_frame.dat"))
        + draw_portal(Results(program, examples / "portal_frame.dat")) + "</svg>\n")


if __name__ == "__main__":
    main()
