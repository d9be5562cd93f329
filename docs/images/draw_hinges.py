#!/usr/bin/env python3
"""Draws hinges.svg of the manual from the program's results of three examples with hinges.

    docs/images/draw_hinges.py build/release/morlen >docs/images/hinges.svg

Bending moments on the side of the tension, deformed shapes, hinges as circles.
"""

import pathlib
import sys

from draw_results import BLUE, INK, RED, Results, View, label


def polylines(results, view, moment_scale, scale):
    """Diagrams, members and deformed shape."""
    out = ""
    for number, diagram in zip(results.beams, results.moved("Z'_Momentus", moment_scale)):
        a, b = results.beams[number]
        out += view.line([a, *diagram, b], RED, 1.2, "#f7dcd8")
    out += "".join(view.line(ends, INK, 2.5) for ends in results.beams.values())
    return out + "".join(view.line(points, BLUE, 1.4)
                         for points in results.moved("BDisplacements", scale))


def hinge(view, point):
    x, y = view(point)
    return f'  <circle cx="{x:.1f}" cy="{y:.1f}" r="4.5" fill="#ffffff" stroke="{INK}" stroke-width="1.8"/>\n'


def support(view, point):
    x, y = view(point)
    return f'  <path d="M {x:.1f} {y + 4:.1f} l 8 14 h -16 z" fill="#ffffff" stroke="{INK}" stroke-width="1.5"/>\n'


def moments(results, view, places, moment_scale):
    """Largest values: (element, point) beside the diagram."""
    out = ""
    for number, k in places:
        values = results.blocks["Z'_Momentus"][number]
        point = results.points(number, len(values))[k]
        x, y = view([p + moment_scale * v for p, v in zip(point, (values[k][:2] + [0.0]))])
        dx, dy = values[k][0], values[k][1]
        sideways = abs(dx) > abs(dy)
        out += label(x + (6 if dx > 0 else -6) * sideways, y + (5 if sideways else -6 if dy > 0 else 15),
                     f"{abs(values[k][-1]):.0f}", RED,
                     "middle" if not sideways else "start" if dx > 0 else "end")
    return out


def draw(results, view, supports, hinges, places, moment_scale, scale):
    out = "".join(support(view, results.nodes[node]) for node in supports)
    out += polylines(results, view, moment_scale, scale)
    out += "".join(hinge(view, point) for point in hinges)
    return out + moments(results, view, places, moment_scale)


def main():
    program = pathlib.Path(sys.argv[1]).resolve()
    examples = pathlib.Path(__file__).resolve().parents[2] / "examples"
    gerber, timber, hall = (Results(program, examples / f"{name}.dat")
                            for name in ("gerber_beam", "three_hinged_frame", "hall_frame"))
    flat = lambda scale, x, y: View((1.0, 0.0), (0.0, -1.0), (0.0, 0.0), scale, (x, y))
    body = draw(gerber, flat(11.5, 60.0, 90.0), (1, 2, 6, 7), [gerber.nodes[3], gerber.nodes[5]],
                [(1, 8), (1, -1), (3, -1), (5, -1), (6, 12)], 0.0022, 60)
    body += label(450, 158, "gerber_beam.dat, displacements 60 times")
    body += draw(timber, flat(14.0, 80.0, 352.0), (1, 5), [timber.nodes[n] for n in (1, 3, 5)],
                 [(1, -1), (4, 0)], 0.008, 25)
    body += label(248, 400, "three_hinged_frame.dat, displacements 25 times")
    side = 0.45
    ends = [(x + s * side, y, 0) for x, s in ((18, 1), (24, -1)) for y in (3.5, 6)]
    body += draw(hall, flat(14.5, 515.0, 352.0), (1, 6, 7), [hall.nodes[n] for n in (1, 6, 7)] + ends,
                 [(1, -1), (2, -1), (3, -1), (8, 10), (9, 10)], 0.0065, 20)
    body += label(690, 400, "hall_frame.dat, displacements 20 times")
    sys.stdout.write(
        '<svg xmlns="http://www.w3.org/2000/svg" viewBox="0 0 900 415" width="900" height="415" '
        'font-family="DejaVu Sans, Arial, sans-serif">\n'
        '  <rect width="900" height="415" fill="#ffffff"/>\n' + body + "</svg>\n")


if __name__ == "__main__":
    main()
