#!/usr/bin/env python3
"""Draws the figures of docs/axes_and_signs.md, and the families of structures of docs/manual.md.

    docs/images/draw_signs.py FOLDER

writes plane_beams.svg, space_beams.svg, euler_angles.svg, end_forces.svg, diagram_signs.svg, shell_signs.svg
and families.svg. Local axes are computed by the rules of the page, and projected. All pictures have a white ground, so
that they can be read on a dark one too.
"""

import math
import pathlib
import sys

INK, GREY, PALE = "#222222", "#767676", "#eef1f5"
RED, GREEN, BLUE = "#c0392b", "#1e8449", "#1f5fa8"
COLORS = (RED, GREEN, BLUE)
GLOBAL = ((1, 0, 0), (0, 1, 0), (0, 0, 1))


class Drawing:
    """A picture: lines, arrows and words in pixels, y downwards."""

    def __init__(self, width, height):
        self.size, self.parts = (width, height), []

    def line(self, a, b, color=INK, width=2.0, dashes=""):
        style = f' stroke-dasharray="{dashes}"' if dashes else ""
        self.parts.append(f'<line x1="{a[0]:.1f}" y1="{a[1]:.1f}" x2="{b[0]:.1f}" y2="{b[1]:.1f}" '
                          f'stroke="{color}" stroke-width="{width}"{style}/>')

    def polygon(self, points, fill=PALE, color=INK, width=1.5):
        path = " ".join(f"{x:.1f},{y:.1f}" for x, y in points)
        self.parts.append(f'<polygon points="{path}" fill="{fill}" stroke="{color}" stroke-width="{width}" '
                          'stroke-linejoin="round"/>')

    def path(self, text, fill="none", color=INK, width=2.0):
        self.parts.append(f'<path d="{text}" fill="{fill}" stroke="{color}" stroke-width="{width}"/>')

    def dot(self, at, radius=5.0, fill=INK, color=INK):
        self.parts.append(f'<circle cx="{at[0]:.1f}" cy="{at[1]:.1f}" r="{radius}" fill="{fill}" stroke="{color}" '
                          'stroke-width="1.5"/>')

    def tip(self, at, along, color):
        """The head of an arrow that ends at a place in a direction."""
        length = math.hypot(*along)
        ux, uy = along[0] / length, along[1] / length
        back = (at[0] - 9 * ux, at[1] - 9 * uy)
        self.polygon([at, (back[0] - 3.8 * uy, back[1] + 3.8 * ux), (back[0] + 3.8 * uy, back[1] - 3.8 * ux)], color,
                     color, 0.5)

    def arrow(self, a, b, color, width=2.5, tips=1):
        along = (b[0] - a[0], b[1] - a[1])
        share = 7 / math.hypot(*along)
        self.line(a, (b[0] - share * along[0], b[1] - share * along[1]), color, width)
        for k in range(tips):
            self.tip((b[0] - k * 1.15 * share * along[0], b[1] - k * 1.15 * share * along[1]), along, color)

    def word(self, x, y, text, color=INK, size=14, bold=False, anchor="middle"):
        weight = ' font-weight="bold"' if bold else ""
        self.parts.append(f'<text x="{x:.1f}" y="{y:.1f}" fill="{color}" font-size="{size}" '
                          f'text-anchor="{anchor}"{weight}>{text}</text>')

    def write(self, path):
        width, height = self.size
        path.write_text(
            f'<svg xmlns="http://www.w3.org/2000/svg" viewBox="0 0 {width} {height}" width="{width}" height="{height}" '
            'font-family="DejaVu Sans, Arial, sans-serif">\n'
            f'  <rect width="{width}" height="{height}" fill="#ffffff"/>\n'
            + "".join(f"  {part}\n" for part in self.parts) + "</svg>\n")


def project(v):
    """Space onto the page: X towards the reader, Y to the right, Z upwards."""
    x, y, z = v
    return (-0.62 * x + 0.95 * y, 0.42 * x + 0.17 * y - z)


def at(origin, v, scale):
    px, py = project(v)
    return (origin[0] + scale * px, origin[1] + scale * py)


def cross(a, b):
    return (a[1] * b[2] - a[2] * b[1], a[2] * b[0] - a[0] * b[2], a[0] * b[1] - a[1] * b[0])


def unit(v):
    length = math.sqrt(sum(c * c for c in v))
    return tuple(c / length for c in v)


def beam_axes(direction):
    """Local axes of a beam in space: y' horizontal, or along X for a vertical beam."""
    x = unit(direction)
    y = (1.0, 0.0, 0.0) if math.hypot(x[0], x[1]) <= 1e-6 else unit(cross((0, 0, 1), x))
    return x, y, cross(x, y)


def euler_axes(a1, a2, a3):
    """Global axes turned clockwise by a1 about Z, a2 about X, a3 about Z."""
    def turn(v, angle, i, j):
        w = list(v)
        w[i], w[j] = (v[i] * math.cos(angle) + v[j] * math.sin(angle), v[j] * math.cos(angle) - v[i] * math.sin(angle))
        return tuple(w)
    return tuple(turn(turn(turn(v, a1, 0, 1), a2, 1, 2), a3, 0, 1) for v in GLOBAL)


def triad(picture, origin, axes, names, length, colors=COLORS, size=15, bold=True):
    for axis, name, color in zip(axes, names, colors):
        end = at(origin, axis, length)
        picture.arrow(origin, end, color, 2.5 if bold else 1.8)
        far = at(origin, axis, length + 17)
        picture.word(far[0], far[1] + 5, name, color, size, bold)


def global_triad(picture, origin, length=42):
    triad(picture, origin, GLOBAL, "XYZ", length, (GREY,) * 3, 14, False)


def member(picture, a, b, number=True):
    picture.line(a, b, INK, 5)
    picture.dot(a)
    picture.dot(b)


def plane_beams():
    picture = Drawing(790, 240)
    picture.arrow((30, 225), (72, 225), GREY, 1.8)
    picture.arrow((30, 225), (30, 183), GREY, 1.8)
    picture.word(83, 230, "X", GREY)
    picture.word(30, 177, "Y", GREY)
    for a, b, text, numbers in (((110, 130), (260, 130), "horizontal", ((110, 152), (260, 152))),
                                ((330, 180), (450, 75), "inclined", ((322, 200), (462, 68))),
                                ((560, 195), (560, 45), "vertical, upwards", ((577, 200), (577, 44))),
                                ((695, 45), (695, 195), "downwards", ((678, 44), (678, 200)))):
        member(picture, a, b)
        middle = ((a[0] + b[0]) / 2, (a[1] + b[1]) / 2)
        ux, uy = unit((b[0] - a[0], b[1] - a[1]))
        for (dx, dy), name, color, length in (((ux, uy), "x'", RED, 58), ((uy, -ux), "y'", GREEN, 62)):
            picture.arrow(middle, (middle[0] + length * dx, middle[1] + length * dy), color)
            beside = 17 if name == "x'" else 0
            picture.word(middle[0] + (length + 14 - beside) * dx - beside * uy,
                         middle[1] + (length + 14 - beside) * dy + beside * ux + 5, name, color, 15, True)
        picture.word(middle[0], 229, text, size=13)
        for k, place in enumerate(numbers, 1):
            picture.word(*place, str(k))
    return picture


def space_beams():
    picture = Drawing(900, 235)
    global_triad(picture, (60, 150))
    for x, direction, length, text in ((205, (1, 0, 0), 70, "along X"), (385, (0, 1, 0), 70, "along Y"),
                                       (560, (0, -0.8, 0.6), 85, "inclined: y' horizontal"),
                                       (720, (0, 0, 1), 70, "vertical, upwards"), (840, (0, 0, -1), 70, "downwards")):
        middle = (x, 110)
        ends = [at(middle, [k * c for c in direction], length) for k in (-1, 1)]
        member(picture, *ends)
        x_axis, y_axis, z_axis = beam_axes(direction)
        triad(picture, middle, (y_axis, z_axis), ("y'", "z'"), 52, (GREEN, BLUE))
        end = at(middle, x_axis, 42)
        picture.arrow(middle, end, RED)
        px, py = unit((ends[1][0] - ends[0][0], ends[1][1] - ends[0][1]))
        picture.word(end[0] - 17 * py, end[1] + 17 * px + 5, "x'", RED, 15, True)
        for k, (place, sign) in enumerate(zip(ends, (-1, 1)), 1):
            picture.word(place[0] + sign * 5 * px + 15 * py, place[1] + sign * 5 * py - 15 * px + 5, str(k))
        picture.word(x, 222, text, size=13)
    return picture


def euler_angles():
    picture = Drawing(900, 260)
    global_triad(picture, (60, 150))
    quarter = math.pi / 2
    for x, angles, title, text in ((190, (0, 0, 0), "0, 0, 0", "global axes"),
                                   (375, (math.pi / 6, 0, 0), "Euler1 = 0.5236", "30° clockwise about Z"),
                                   (575, (0, quarter, 0), "Euler2 = 1.5708", "beam along X, rolled by 90°"),
                                   (775, (quarter, quarter, 0), "Euler1 = Euler2 = 1.5708",
                                    "the default of a vertical beam")):
        origin = (x, 120)
        for axis in GLOBAL:
            picture.line(origin, at(origin, axis, 68), GREY, 1.2, "4 3")
        triad(picture, origin, euler_axes(*angles), ("x'", "y'", "z'"), 66)
        picture.word(x, 224, title, size=13, bold=True)
        picture.word(x, 244, text, size=12)
    return picture


def arc(picture, centre, radius, first, last, color=BLUE):
    """An arrow along a circle, angles in degrees, counter-clockwise on the page when last > first."""
    a, b = (tuple(c + radius * f(math.radians(t)) * s for c, f, s in zip(centre, (math.cos, math.sin), (1, -1)))
            for t in (first, last))
    picture.path(f"M {a[0]:.1f} {a[1]:.1f} A {radius} {radius} 0 0 {int(last < first)} {b[0]:.1f} {b[1]:.1f}",
                 color=color, width=2.5)
    turn, end = (1 if last > first else -1), math.radians(last)
    picture.tip(b, (-turn * math.sin(end), -turn * math.cos(end)), color)


def end_forces():
    picture = Drawing(900, 285)
    picture.word(215, 24, "plane problems", size=15, bold=True)
    member(picture, (110, 150), (320, 150))
    picture.arrow((215, 150), (262, 150), RED, 2)
    picture.arrow((215, 150), (215, 110), GREEN, 2)
    picture.word(268, 168, "x'", RED)
    picture.word(203, 112, "y'", GREEN)
    for k, x, side in ((1, 110, -1), (2, 320, 1)):
        start = x + 14 if side > 0 else x - 62
        picture.arrow((start, 150), (start + 48, 150), RED, 3)
        picture.word(x + side * 54, 172, f"Px{k}", RED)
        picture.arrow((x, 205), (x, 160), GREEN, 3)
        picture.word(x + 22, 200, f"Py{k}", GREEN)
        arc(picture, (x, 150), 34, *((130, 230) if side < 0 else (-50, 50)))
        picture.word(x + side * 44, 116, f"M{k}", BLUE)
        picture.word(x, 128, str(k))
    picture.word(215, 250, "All positive as drawn: forces along the local axes,", size=13)
    picture.word(215, 268, "moments counter-clockwise, at both ends alike.", size=13)

    picture.word(680, 24, "space problems", size=15, bold=True)
    axes = ((0, 1, 0), (-1, 0, 0), (0, 0, 1))  # of a beam along Y
    ends = [at((680, 160), (0, y, 0), 98) for y in (-1, 1)]
    member(picture, *ends)
    for k, (end, side) in enumerate(zip(ends, (-1, 1)), 1):
        for axis, name, color in zip(axes, "xyz", COLORS):
            near = 14 if name != "x" or side > 0 else -120
            for first, length, letter, tips, width in ((near, 46, "P", 1, 3), (near + 54, 44, "M", 2, 2)):
                if name == "x" and side < 0:
                    first = -60 if letter == "P" else -114
                a, b = at(end, axis, first), at(end, axis, first + length)
                picture.arrow(a, b, color, width, tips)
                dx, dy = {"x": (0, 20 if side > 0 else -10), "y": (22, 10), "z": (22, 4)}[name]
                picture.word((a[0] + b[0]) / 2 + dx, (a[1] + b[1]) / 2 + dy, f"{letter}{name}{k}", color, 13)
        picture.word(end[0] - 4, end[1] + 24, str(k))
    picture.word(680, 272, "Double tips: moments, right-handed about the axis.", size=13)
    return picture


def diagram_signs():
    picture = Drawing(1000, 240)
    panels = ((125, "X'_Shear: axial force", ["positive: tension"]),
              (365, "Y'_Shear, Z'_Shear",
               ["positive: along the local axis on the", "side of end 1, against it on the other"]),
              (615, "Y'_Momentus, Z'_Momentus",
               ["positive: tension on the side of", "−z' (Y'_Momentus), −y' (Z'_Momentus)"]),
              (870, "X'_Momentus: torsion", ["positive: moment along +x'", "on the side of end 1"]))
    for k, (x, title, lines) in enumerate(panels):
        picture.word(x, 24, title, bold=True)
        for row, text in enumerate(lines):
            picture.word(x, 196 + 17 * row, text, size=12.5)
        if k == 2:
            picture.path(f"M {x - 45} 70 Q {x} 90 {x + 45} 70 L {x + 45} 104 Q {x} 124 {x - 45} 104 Z", PALE, INK, 1.5)
            arc(picture, (x - 48, 88), 32, 240, 120)
            arc(picture, (x + 48, 88), 32, -60, 60)
        else:
            picture.polygon([(x - 45, 73), (x + 45, 73), (x + 45, 107), (x - 45, 107)])
        picture.word(x, 103 if k == 2 else 96, "+", size=18)
        picture.arrow((x - 14, 165), (x + 24, 165), GREY, 1.5)
        picture.word(x + 35, 170, "x'", GREY, 12)
        if k in (1, 2):
            picture.arrow((x - 14, 165), (x - 14, 136), GREY, 1.5)
            picture.word(x - 46, 148, "y' or z'", GREY, 12)
    picture.arrow((75, 90), (27, 90), RED, 3)
    picture.arrow((175, 90), (223, 90), RED, 3)
    picture.arrow((309, 125), (309, 58), GREEN, 3)
    picture.arrow((421, 58), (421, 125), GREEN, 3)
    picture.arrow((772, 90), (820, 90), RED, 2.5, 2)
    picture.arrow((968, 90), (920, 90), RED, 2.5, 2)
    return picture


def shell_signs():
    picture = Drawing(790, 290)
    corners, middles = ((60, 220), (250, 200), (130, 60)), ((155, 210), (190, 130), (95, 140))
    picture.polygon(corners, width=2)
    for k, (corner, place) in enumerate(zip(corners, ((46, 236), (264, 216), (116, 56))), 1):
        picture.dot(corner)
        picture.word(*place, str(k))
    for k, (middle, place) in enumerate(zip(middles, ((155, 230), (206, 126), (79, 140))), 4):
        picture.dot(middle, 4, "#ffffff")
        picture.word(*place, str(k), GREY, 13)
    picture.arrow((147, 160), (207, 160), RED)
    picture.arrow((147, 160), (147, 108), GREEN)
    picture.word(214, 178, "x'", RED, 15, True)
    picture.word(161, 116, "y'", GREEN, 15, True)
    picture.dot((147, 160), 7, "#ffffff", BLUE)
    picture.dot((147, 160), 2.5, BLUE, BLUE)
    picture.word(130, 176, "z'", BLUE, 15, True)
    picture.word(150, 264, "seen from z': nodes counter-clockwise", size=13)

    picture.polygon([(370, 95), (460, 95), (460, 185), (370, 185)], width=2)
    for a, b, color in (((460, 140), (500, 140), RED), ((370, 140), (330, 140), RED), ((415, 95), (415, 55), GREEN),
                        ((415, 185), (415, 225), GREEN), ((468, 179), (468, 101), BLUE), ((376, 87), (454, 87), BLUE),
                        ((362, 101), (362, 179), BLUE), ((454, 193), (376, 193), BLUE)):
        picture.arrow(a, b, color)
    picture.word(514, 134, "Nx'", RED)
    picture.word(438, 67, "Ny'", GREEN)
    picture.word(494, 109, "Nxy'", BLUE)
    picture.word(415, 264, "membrane forces, seen from z'", size=13)

    picture.polygon([(600, 130), (710, 130), (710, 156), (600, 156)], width=2)
    for a, b, color in (((724, 178), (724, 108), BLUE), ((586, 108), (586, 178), BLUE), ((710, 134), (744, 134), RED),
                        ((744, 152), (710, 152), RED), ((600, 134), (566, 134), RED), ((566, 152), (600, 152), RED),
                        ((655, 116), (655, 70), BLUE), ((665, 196), (710, 196), RED)):
        picture.arrow(a, b, color)
    picture.word(750, 118, "Qx'", BLUE)
    picture.word(762, 162, "Mx'", RED)
    picture.word(670, 80, "z'", BLUE, 15, True)
    picture.word(722, 201, "x'", RED, 15, True)
    picture.word(655, 264, "moments: tension on the side of z'", size=13)
    return picture


def box(picture, origin, scale, low, high, fills):
    """The three faces of a box that show: towards X, towards Y, on top."""
    (x0, y0, z0), (x1, y1, z1) = low, high
    for fill, corners in zip(fills, (((x1, y0, z0), (x1, y1, z0), (x1, y1, z1), (x1, y0, z1)),
                                     ((x0, y1, z0), (x1, y1, z0), (x1, y1, z1), (x0, y1, z1)),
                                     ((x0, y0, z1), (x1, y0, z1), (x1, y1, z1), (x0, y1, z1)))):
        picture.polygon([at(origin, c, scale) for c in corners], fill, INK, 1)


def draw_frame(picture, origin):
    for x in (0, 4):
        for y in (0, 5):
            foot, head = at(origin, (x, y, 0), 19), at(origin, (x, y, 5), 19)
            picture.line(foot, head, INK, 4)
            picture.polygon([foot, (foot[0] - 7, foot[1] + 11), (foot[0] + 7, foot[1] + 11)], "#ffffff")
    for z in (3, 5):
        corners = [at(origin, (x, y, z), 19) for x, y in ((0, 0), (4, 0), (4, 5), (0, 5))]
        for a, b in zip(corners, corners[1:] + corners[:1]):
            picture.line(a, b, INK, 4)
    picture.line(at(origin, (4, 0, 0), 19), at(origin, (4, 5, 3), 19), BLUE, 3)
    for x in (0, 4):
        for y in (0, 5):
            for z in (3, 5):
                picture.dot(at(origin, (x, y, z), 19), 4)


def draw_shell(picture, origin):
    count, radius = 8, 5.6
    def point(i, j):
        a = math.radians(58) * (2 * i / count - 1)
        return at(origin, (j * 1.05 - 2, radius * math.sin(a), radius * math.cos(a) - 3), 19)
    for j in range(6):
        for i in range(count):
            a, b, c, d = point(i, j), point(i + 1, j), point(i + 1, j + 1), point(i, j + 1)
            shade = ("#f3f6fa", "#e6edf5", "#d5e1ee", "#c3d4e7")[abs(2 * i + 1 - count) // 2]
            first = (i + j) % 2 == 0
            for triangle in ([a, b, c], [a, c, d]) if first else ([a, b, d], [b, c, d]):
                picture.polygon(triangle, shade, INK, 0.9)


def draw_solid(picture, origin):
    fills = ("#d5e1ee", "#c3d4e7", "#eef1f5")
    box(picture, origin, 19, (0, 0, 0), (4, 2, 5), fills)
    box(picture, origin, 19, (0, 2, 0), (4, 6, 1.6), fills)
    for k in range(1, 5):  # the edges of some tetrahedra
        z = 5 * k / 5
        picture.line(at(origin, (4, 0, z), 19), at(origin, (4, 2, z - 1), 19), INK, 0.8)
        picture.line(at(origin, (4, 0, z), 19), at(origin, (4, 2, z), 19), INK, 0.8)
    picture.line(at(origin, (4, 0, 5), 19), at(origin, (4, 2, 4), 19), INK, 0.8)
    for y in (3, 4, 5):
        picture.line(at(origin, (4, y, 0), 19), at(origin, (4, y, 1.6), 19), INK, 0.8)
    for y in (2, 3, 4, 5):
        picture.line(at(origin, (4, y, 0), 19), at(origin, (4, y + 1, 1.6), 19), INK, 0.8)
        picture.line(at(origin, (0, y, 1.6), 19), at(origin, (4, y + 1, 1.6), 19), INK, 0.8)
        picture.line(at(origin, (0, y + 1, 1.6), 19), at(origin, (4, y + 1, 1.6), 19), INK, 0.8)
    picture.line(at(origin, (0, 2, 1.6), 19), at(origin, (4, 2, 1.6), 19), INK, 0.8)


def families():
    picture = Drawing(900, 250)
    draw_frame(picture, (120, 138))
    draw_shell(picture, (440, 120))
    draw_solid(picture, (720, 148))
    for x, title, text in ((140, "frames", "beams: N, V, M, T along every member"),
                           (440, "shells", "triangles: membrane forces, moments, shear"),
                           (745, "solids", "tetrahedra: stresses")):
        picture.word(x, 222, title, size=15, bold=True)
        picture.word(x, 241, text, size=12.5)
    return picture


def main():
    for draw in (plane_beams, space_beams, euler_angles, end_forces, diagram_signs, shell_signs, families):
        draw().write(pathlib.Path(sys.argv[1]) / f"{draw.__name__}.svg")


if __name__ == "__main__":
    main()
