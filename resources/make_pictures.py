# SPDX-License-Identifier: GPL-3.0-or-later
# Copyright 2026 The Gavelscope developers
"""Draws every picture the window loads by name and writes it beside this script.

`make_pictures.py [--output DIR]` rewrites the files; the same script always gives the same bytes,
so the committed pictures change only when the drawing does. The shapes are plain geometry: a shape
is a test "is this point inside?", sampled at pixel centres for the 16-colour GIFs and on a 4x4 grid
per pixel for the anti-aliased PNGs.
"""
from __future__ import annotations

import argparse
import math
import pathlib
import struct
import sys
import zlib

HERE = pathlib.Path(__file__).resolve().parent
sys.path.insert(0, str(HERE.parent / "sandbox"))
sys.dont_write_bytecode = True  # keep the stand-in sites' folder clean
import gifwriter  # noqa: E402  (lives with the stand-in sites, which write GIF banners too)
from gifwriter import Frame  # noqa: E402

# Palette indices of gifwriter.PALETTE, named once so the drawings read as colours.
WHITE, BLACK, NAVY, RED, YELLOW = 0, 1, 2, 4, 5
ORANGE, DARK_GREY, LIGHT_BLUE = 9, 13, 14


# --- shapes -----------------------------------------------------------------------------------

def rect(x0, y0, x1, y1):
    return lambda x, y: x0 <= x < x1 and y0 <= y < y1


def circle(cx, cy, r):
    return lambda x, y: (x - cx) ** 2 + (y - cy) ** 2 <= r * r


def polygon(points):
    def inside(x, y):
        hit = False
        for (ax, ay), (bx, by) in zip(points, points[1:] + points[:1]):
            if (ay > y) != (by > y) and x < ax + (y - ay) * (bx - ax) / (by - ay):
                hit = not hit
        return hit
    return inside


def segment(ax, ay, bx, by, width):
    length2 = (bx - ax) ** 2 + (by - ay) ** 2

    def inside(x, y):
        t = max(0.0, min(1.0, ((x - ax) * (bx - ax) + (y - ay) * (by - ay)) / length2))
        px, py = ax + t * (bx - ax), ay + t * (by - ay)
        return (x - px) ** 2 + (y - py) ** 2 <= (width / 2) ** 2
    return inside


def octagon(cx, cy, r):
    # Flat top and bottom, like a road sign.
    return polygon([(cx + r * math.cos(math.radians(22.5 + 45 * k)),
                     cy + r * math.sin(math.radians(22.5 + 45 * k))) for k in range(8)])


def union(*shapes):
    return lambda x, y: any(s(x, y) for s in shapes)


class Gavel:
    """A gavel turned about the end of its handle: `angle` 0 has the handle level and the head
    upright, pointing left; larger angles lift the head."""

    def __init__(self, pivot, angle, scale=1.0):
        self.px, self.py = pivot
        a = math.radians(angle)
        self.dx, self.dy = -math.cos(a), -math.sin(a)   # along the handle, towards the head
        self.nx, self.ny = -self.dy, self.dx            # across it, towards the striking face
        self.scale = scale

    # Each part as (u0, u1, v0, v1): along the handle from the pivot, and across it.
    HANDLE = (0, 29, -1.6, 1.6)
    HEAD = (27, 37, -10, 10)
    BANDS = ((27, 37, -7.5, -5.5), (27, 37, 5.5, 7.5))

    def part(self, u0, u1, v0, v1, margin=0.0):
        s, m = self.scale, margin

        def inside(x, y):
            u = ((x - self.px) * self.dx + (y - self.py) * self.dy) / s
            v = ((x - self.px) * self.nx + (y - self.py) * self.ny) / s
            return u0 - m <= u <= u1 + m and v0 - m <= v <= v1 + m
        return inside

    def corners(self, u0, u1, v0, v1, margin=0.0):
        """The same part as a quadrilateral, for drawings that want outlines rather than a test."""
        s = self.scale
        return [(self.px + s * (u * self.dx + v * self.nx), self.py + s * (u * self.dy + v * self.ny))
                for u, v in ((u0 - margin, v0 - margin), (u1 + margin, v0 - margin),
                             (u1 + margin, v1 + margin), (u0 - margin, v1 + margin))]

    def handle(self, margin=0.0):
        return self.part(*self.HANDLE, margin)

    def head(self, margin=0.0):
        return self.part(*self.HEAD, margin)

    def bands(self):
        return union(*(self.part(*band) for band in self.BANDS))


# --- GIF pictures (16 fixed colours) ----------------------------------------------------------

class Indexed:
    def __init__(self, width, height, fill=WHITE):
        self.width, self.height = width, height
        self.pixels = bytearray([fill]) * (width * height)

    def paint(self, shape, colour):
        for y in range(self.height):
            for x in range(self.width):
                if shape(x + 0.5, y + 0.5):
                    self.pixels[y * self.width + x] = colour

    def frame(self, delay=50, disposal=1):
        return Frame(0, 0, self.width, self.height, bytes(self.pixels), delay=delay, disposal=disposal)


FLAG_W, FLAG_H = 40, 22


def usa_flag(canvas, inset):
    w, h = canvas.width - 2 * inset, canvas.height - 2 * inset
    # Eleven stripes rather than thirteen: at this height thirteen would blur into pink.
    edges = [inset + round(i * h / 11) for i in range(12)]
    canvas.paint(rect(inset, inset, inset + w, inset + h), WHITE)
    for top, bottom in zip(edges[0::2], edges[1::2]):
        canvas.paint(rect(inset, top, inset + w, bottom), RED)
    union_w, union_bottom = round(w * 0.42), edges[6]
    canvas.paint(rect(inset, inset, inset + union_w, union_bottom), NAVY)
    # Stars as single pixels, rows staggered the way the real field is.
    for row, y in enumerate(range(inset + 1, union_bottom - 1, 2)):
        for x in range(inset + 1 + row % 2, inset + union_w - 1, 3):
            canvas.paint(rect(x, y, x + 1, y + 1), WHITE)


def uk_flag(canvas, inset):
    x0, y0 = inset, inset
    x1, y1 = canvas.width - inset, canvas.height - inset
    cx, cy = (x0 + x1) / 2, (y0 + y1) / 2
    canvas.paint(rect(x0, y0, x1, y1), NAVY)
    inside = rect(x0, y0, x1, y1)
    diagonals = union(segment(x0, y0, x1, y1, 5), segment(x0, y1, x1, y0, 5))
    canvas.paint(lambda x, y: inside(x, y) and diagonals(x, y), WHITE)
    red_diagonals = union(segment(x0, y0, x1, y1, 1.6), segment(x0, y1, x1, y0, 1.6))
    canvas.paint(lambda x, y: inside(x, y) and red_diagonals(x, y), RED)
    canvas.paint(union(rect(x0, cy - 4, x1, cy + 4), rect(cx - 4, y0, cx + 4, y1)), WHITE)
    canvas.paint(union(rect(x0, cy - 2, x1, cy + 2), rect(cx - 2, y0, cx + 2, y1)), RED)


def frame_ring(width, height, thickness):
    inner = rect(thickness, thickness, width - thickness, height - thickness)
    return lambda x, y: not inner(x, y)


def flag_gifs(draw):
    still = Indexed(FLAG_W, FLAG_H)
    draw(still, 1)
    still.paint(frame_ring(FLAG_W, FLAG_H, 1), DARK_GREY)
    plain = gifwriter.gif(FLAG_W, FLAG_H, [still.frame()])

    # The chosen site's flag glows: its frame pulses between two warm colours.
    frames = []
    for colour, delay in ((YELLOW, 50), (ORANGE, 50)):
        canvas = Indexed(FLAG_W, FLAG_H)
        draw(canvas, 2)
        canvas.paint(frame_ring(FLAG_W, FLAG_H, 2), colour)
        frames.append(canvas.frame(delay=delay))
    return plain, gifwriter.gif(FLAG_W, FLAG_H, frames)


def about_gif():
    size = 64
    block = (rect(6, 48, 42, 56), rect(2, 56, 46, 60))
    pivot = (56, 38)
    frames = []
    for angle, delay, struck in ((45, 70, False), (22, 8, False), (0, 45, True), (12, 15, False)):
        canvas = Indexed(size, size)
        canvas.paint(union(*block), NAVY)
        canvas.paint(rect(6, 48, 42, 49), LIGHT_BLUE)
        gavel = Gavel(pivot, angle)
        canvas.paint(union(gavel.handle(1), gavel.head(1)), BLACK)
        canvas.paint(gavel.handle(), ORANGE)
        canvas.paint(gavel.head(), ORANGE)
        canvas.paint(lambda x, y, g=gavel: g.head()(x, y) and g.bands()(x, y), DARK_GREY)
        if struck:
            for (ax, ay, bx, by), colour in (((16, 46, 12, 41), YELLOW), ((15, 47.5, 8, 46), RED),
                                             ((32, 46, 36, 41), YELLOW), ((33, 47.5, 40, 46), RED)):
                canvas.paint(segment(ax, ay, bx, by, 1.8), colour)
        frames.append(canvas.frame(delay=delay))
    return gifwriter.gif(size, size, frames)


# --- PNG pictures (anti-aliased, 8-bit RGB or RGBA) -------------------------------------------

def png(width, height, rows, alpha):
    def chunk(kind, data):
        return struct.pack(">I", len(data)) + kind + data + struct.pack(">I", zlib.crc32(kind + data))
    raw = b"".join(b"\x00" + bytes(row) for row in rows)
    header = struct.pack(">IIBBBBB", width, height, 8, 6 if alpha else 2, 0, 0, 0)
    return (b"\x89PNG\r\n\x1a\n" + chunk(b"IHDR", header) + chunk(b"IDAT", zlib.compress(raw, 9))
            + chunk(b"IEND", b""))


class Smooth:
    """Straight (not premultiplied) RGBA in floats, transparent to start with."""
    SAMPLES = [(i + 0.5) / 4 for i in range(4)]

    def __init__(self, width, height):
        self.width, self.height = width, height
        self.pixels = [[0.0, 0.0, 0.0, 0.0] for _ in range(width * height)]

    def paint(self, shape, colour, opacity=1.0):
        """colour is (r, g, b) or a function of the point giving one."""
        for y in range(self.height):
            for x in range(self.width):
                hits = sum(shape(x + sx, y + sy) for sy in self.SAMPLES for sx in self.SAMPLES)
                if hits:
                    rgb = colour(x + 0.5, y + 0.5) if callable(colour) else colour
                    self._blend(self.pixels[y * self.width + x], rgb, opacity * hits / 16)

    @staticmethod
    def _blend(pixel, rgb, a):
        out = a + pixel[3] * (1 - a)
        for i in range(3):
            pixel[i] = (rgb[i] * a + pixel[i] * pixel[3] * (1 - a)) / out
        pixel[3] = out

    def rows(self, recolour=lambda rgb: rgb):
        for y in range(self.height):
            row = []
            for p in self.pixels[y * self.width:(y + 1) * self.width]:
                r, g, b = recolour(p[:3])
                row += [round(r), round(g), round(b), round(p[3] * 255)]
            yield row


def vertical(top, bottom, y0, y1):
    def colour(_x, y):
        t = max(0.0, min(1.0, (y - y0) / (y1 - y0)))
        return tuple(a + (b - a) * t for a, b in zip(top, bottom))
    return colour


# 5x7 capitals, only those the pictures spell.
GLYPHS = {
    "S": ("01111", "10000", "10000", "01110", "00001", "00001", "11110"),
    "T": ("11111", "00100", "00100", "00100", "00100", "00100", "00100"),
    "O": ("01110", "10001", "10001", "10001", "10001", "10001", "01110"),
    "P": ("11110", "10001", "10001", "11110", "10000", "10000", "10000"),
}


def text(word, left, top):
    cells = [rect(left + 6 * i + col, top + row, left + 6 * i + col + 1, top + row + 1)
             for i, letter in enumerate(word)
             for row, bits in enumerate(GLYPHS[letter])
             for col, bit in enumerate(bits) if bit == "1"]
    return union(*cells)


def background_png():
    # Deep teal with a soft diagonal weave; every period divides 64, so the tile repeats without seams.
    size = 64
    rows = []
    for y in range(size):
        row = []
        for x in range(size):
            weave = math.sin(2 * math.pi * (x + y) / 16) * math.sin(2 * math.pi * (x - y) / 32)
            swell = math.cos(2 * math.pi * y / 64) * 0.5
            grain = ((x * 73856093 ^ y * 19349663) * 2654435761 >> 7) % 5 - 2
            shade = 7 * weave + 4 * swell + grain
            row += [round(16 + shade * 0.6), round(58 + shade), round(84 + shade * 1.2)]
        rows.append(row)
    return png(size, size, rows, alpha=False)


def stop_pngs():
    canvas = Smooth(48, 37)
    cx, cy = 24, 18.5
    canvas.paint(octagon(cx + 0.8, cy + 0.8, 18), (0, 0, 0), opacity=0.35)
    canvas.paint(octagon(cx, cy, 18), (96, 10, 16))
    canvas.paint(octagon(cx, cy, 17), (250, 250, 250))
    canvas.paint(octagon(cx, cy, 14.8), vertical((238, 52, 46), (168, 12, 22), cy - 14, cy + 14))
    canvas.paint(text("STOP", 13, 15), (255, 255, 255))
    active = png(canvas.width, canvas.height, canvas.rows(), alpha=True)

    def greyed(rgb):
        grey = 0.3 * rgb[0] + 0.59 * rgb[1] + 0.11 * rgb[2]
        return (112 + grey * 0.5,) * 3
    idle = png(canvas.width, canvas.height, canvas.rows(greyed), alpha=True)
    return active, idle


ICON_UNITS = 48


def icon_layers():
    """The program's icon on a 48-unit square, bottom layer first, as data rather than tests, so that
    packaging/make_icons.py draws the very same icon as SVG. A layer is (outlines, fill): an outline is
    ("circle", cx, cy, r), ("rect", x0, y0, x1, y1) or ("gavel", gavel, part, margin); a fill is a
    colour or ("vertical", top, bottom, y0, y1), a gradient held at its end colours beyond y0 and y1."""
    gavel = Gavel((39, 27), 14, scale=0.8)
    return [
        ([("circle", 24, 24, 23)], (226, 236, 244)),
        ([("circle", 24, 24, 21.5)], ("vertical", (44, 102, 168), (18, 52, 96), 2, 46)),
        ([("rect", 8, 31, 26, 35)], (238, 238, 238)),
        ([("rect", 6, 35, 28, 38)], (196, 204, 214)),
        ([("gavel", gavel, Gavel.HANDLE, 1.2), ("gavel", gavel, Gavel.HEAD, 1.2)], (20, 24, 40)),
        ([("gavel", gavel, Gavel.HANDLE, 0.0)], (236, 156, 52)),
        ([("gavel", gavel, Gavel.HEAD, 0.0)], ("vertical", (252, 186, 80), (206, 118, 30), 4, 30)),
        ([("gavel", gavel, band, 0.0) for band in Gavel.BANDS], (70, 60, 56)),
    ]


def icon_png(size=ICON_UNITS):
    """The icon drawn at `size` pixels square; at 48 it is the window's own gavelscope.png."""
    k = size / ICON_UNITS

    def outline(kind, *values):
        if kind == "circle":
            return circle(*values)
        if kind == "rect":
            return rect(*values)
        gavel, part, margin = values
        return gavel.part(*part, margin)

    canvas = Smooth(size, size)
    for outlines, fill in icon_layers():
        shape = union(*(outline(*o) for o in outlines))
        if fill[0] == "vertical":
            _, top, bottom, y0, y1 = fill
            fill = vertical(top, bottom, y0 * k, y1 * k)
        canvas.paint(lambda x, y, shape=shape: shape(x / k, y / k), fill)
    return png(canvas.width, canvas.height, canvas.rows(), alpha=True)


def pictures():
    usa, usa_selected = flag_gifs(usa_flag)
    uk, uk_selected = flag_gifs(uk_flag)
    stop_active, stop_idle = stop_pngs()
    return {
        "background.png": background_png(),
        "stop-active.png": stop_active,
        "stop-idle.png": stop_idle,
        "gavelscope.png": icon_png(),
        "usa.gif": usa,
        "usaselected.gif": usa_selected,
        "uk.gif": uk,
        "ukselected.gif": uk_selected,
        "About.gif": about_gif(),
    }


def main():
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    parser.add_argument("--output", type=pathlib.Path, default=HERE)
    output = parser.parse_args().output
    output.mkdir(parents=True, exist_ok=True)
    for name, data in pictures().items():
        (output / name).write_bytes(data)


if __name__ == "__main__":
    main()
