#!/usr/bin/env python3
"""Draws cookbook.svg: the models of eight recipes of docs/cookbook.md.

    docs/images/draw_cookbook.py FOLDER

Each sketch has 225 by 165 pixels: members black, links and soft parts blue, loads red.
"""

import math
import pathlib
import sys

from draw_signs import BLUE, GREEN, GREY, INK, PALE, RED, Drawing

WIDTH, HEIGHT = 225, 170


class Sketch:
    """A part of the picture with its corner at an origin."""

    def __init__(self, picture, origin):
        self.picture, self.origin = picture, origin

    def at(self, point):
        return (self.origin[0] + point[0], self.origin[1] + point[1])

    def member(self, *points, color=INK, width=4):
        for a, b in zip(points, points[1:]):
            self.picture.line(self.at(a), self.at(b), color, width)

    def dots(self, *points, radius=4):
        for point in points:
            self.picture.dot(self.at(point), radius)

    def load(self, a, b):
        self.picture.arrow(self.at(a), self.at(b), RED, 2.2)

    def loads(self, first, last, y, count=6):
        """A distributed load downwards on a horizontal line."""
        self.member((first, y - 20), (last, y - 20), color=RED, width=1.5)
        for k in range(count):
            x = first + (last - first) * k / (count - 1)
            self.picture.arrow(self.at((x, y - 20)), self.at((x, y - 3)), RED, 1.5)

    def clamp(self, x, y):
        self.member((x - 14, y), (x + 14, y), width=5)

    def support(self, x, y, turn=0.0):
        """A triangle under a point, turned counter-clockwise by an angle; a line under it if it rolls."""
        def turned(dx, dy):
            c, s = math.cos(turn), math.sin(turn)
            return self.at((x + c * dx + s * dy, y - s * dx + c * dy))
        self.picture.polygon([turned(0, 3), turned(-9, 18), turned(9, 18)], "#ffffff")
        return turned

    def roller(self, x, y, turn=0.0):
        turned = self.support(x, y, turn)
        self.picture.line(turned(-13, 22), turned(13, 22), INK, 2)

    def spring(self, x, y, length=26):
        points = [(x, y)] + [(x + (5 if k % 2 else -5), y + 5 + k * (length - 10) / 5) for k in range(6)] + [(x, y + length)]
        self.member(*points, color=BLUE, width=1.6)

    def title(self, text):
        self.picture.word(self.origin[0] + WIDTH / 2, self.origin[1] + HEIGHT - 8, text, size=13)


def rigid_link(s):
    s.clamp(80, 140)
    s.member((80, 140), (80, 45))
    s.member((80, 45), (140, 45), color=BLUE, width=6)
    s.load((140, 8), (140, 38))
    s.dots((80, 140), (80, 45), (140, 45))


def girder_under_slab(s):
    s.loads(30, 195, 45, 9)
    s.member((30, 48), (195, 48), width=8, color=GREY)
    s.member((30, 100), (195, 100), width=5)
    for k in range(7):
        x = 30 + 165 * k / 6
        s.member((x, 48), (x, 100), color=BLUE, width=3)
        s.dots((x, 48), (x, 100), radius=3)
    s.support(30, 100)
    s.roller(195, 100)


def bedding(s):
    s.member((25, 70), (200, 70), width=5)
    s.load((112, 25), (112, 64))
    for k in range(8):
        s.spring(25 + 25 * k, 72)
    s.member((15, 99), (210, 99), width=1.5)


def symmetry(s):
    s.member((40, 140), (40, 55), (112, 55))
    s.member((112, 55), (185, 55), (185, 140), color=GREY, width=1.5)
    s.clamp(40, 140)
    s.loads(40, 112, 50, 5)
    s.picture.line(s.at((112, 20)), s.at((112, 140)), BLUE, 1.5, "7 4")
    s.dots((40, 140), (40, 55), (112, 55))
    s.picture.word(*s.at((120, 76)), "101", BLUE, 13, anchor="start")


def gradient(s):
    s.picture.polygon([s.at(p) for p in ((25, 62), (200, 62), (200, 90), (25, 90))], PALE)
    s.picture.word(*s.at((112, 54)), "+20 K", RED, 13)
    s.picture.word(*s.at((112, 108)), "0 K", BLUE, 13)
    for x, side in ((22, -1), (203, 1)):
        low, high = s.at((x + side * 4, 98)), s.at((x + side * 4, 54))
        s.picture.path(f"M {low[0]} {low[1]} A 24 24 0 0 {int(side < 0)} {high[0]} {high[1]}", color=GREEN)
        s.picture.tip(low, (-side, 0.7), GREEN)
    s.picture.word(*s.at((112, 134)), "M = E I α ΔT / h at both ends", GREEN, 12)


def inclined(s):
    s.support(35, 70)
    s.member((35, 70), (185, 70))
    s.roller(185, 70, math.radians(30))
    s.load((110, 25), (110, 64))
    s.dots((35, 70), (110, 70), (185, 70))


def floor(s):
    corners = [(40, 75), (150, 75), (190, 45), (80, 45)]
    for x, y in corners:
        s.member((x, y), (x, y + 65), width=3)
        s.member((x - 9, y + 65), (x + 9, y + 65))
    for a, b in ((0, 1), (1, 2), (2, 3), (3, 0), (0, 2), (1, 3)):
        s.member(corners[a], corners[b], color=BLUE, width=2.5)
    for corner in corners:
        s.picture.dot(s.at(corner), 4, "#ffffff", BLUE)
    s.load((74, 100), (97, 80))


def tie(s):
    s.clamp(45, 140)
    s.clamp(180, 140)
    s.member((45, 140), (45, 55))
    s.member((180, 140), (180, 55))
    s.member((45, 55), (180, 55), color=BLUE, width=2.5)
    for x in (45, 180):
        s.picture.dot(s.at((x, 55)), 4, "#ffffff", BLUE)
    s.picture.word(*s.at((112, 47)), "strain −0.002", BLUE, 12)


def main():
    recipes = (("rigid link", rigid_link), ("girder under a slab", girder_under_slab), ("elastic bedding", bedding),
               ("symmetry", symmetry), ("warmer on top", gradient), ("inclined support", inclined),
               ("rigid floor", floor), ("prestressed tie", tie))
    picture = Drawing(4 * WIDTH, 2 * HEIGHT)
    for k, (title, draw) in enumerate(recipes):
        sketch = Sketch(picture, (k % 4 * WIDTH, k // 4 * HEIGHT))
        draw(sketch)
        sketch.title(title)
    picture.write(pathlib.Path(sys.argv[1]) / "cookbook.svg")


if __name__ == "__main__":
    main()
