# SPDX-License-Identifier: GPL-3.0-or-later
# Copyright 2026 The Gavelscope developers
"""Draws the desktop's icons of Gavelscope into packaging/icons/hicolor, from the window's own icon.

`make_icons.py [--output DIR]` writes scalable/apps/gavelscope.svg and the PNG sizes that
desktops ask for. The layers come from resources/make_pictures.py, so the SVG, every PNG and the
window's gavelscope.png are one drawing. The 48 px PNG is that very file, installed from
resources/; it is not written twice. Like make_pictures.py, the same run always gives the same
bytes: rerun both after changing the drawing and commit what they write.
"""
from __future__ import annotations

import argparse
import pathlib
import sys

HERE = pathlib.Path(__file__).resolve().parent
sys.path.insert(0, str(HERE.parent / "resources"))
sys.dont_write_bytecode = True  # keep the source tree clean
import make_pictures  # noqa: E402

PNG_SIZES = (16, 32, 64, 128, 256)


def number(value):
    return f"{value:.3f}".rstrip("0").rstrip(".")


def colour(rgb):
    return "#" + "".join(f"{round(c):02x}" for c in rgb)


def svg():
    definitions, shapes = [], []
    for outlines, fill in make_pictures.icon_layers():
        if fill[0] == "vertical":
            _, top, bottom, y0, y1 = fill
            name = f"shade{len(definitions) + 1}"
            # In user space, like the PNG's gradient, which follows the picture and not the shape.
            definitions.append(
                f'    <linearGradient id="{name}" gradientUnits="userSpaceOnUse" x1="0" y1="{number(y0)}"'
                f' x2="0" y2="{number(y1)}">\n'
                f'      <stop offset="0" stop-color="{colour(top)}"/>\n'
                f'      <stop offset="1" stop-color="{colour(bottom)}"/>\n'
                f'    </linearGradient>')
            paint = f"url(#{name})"
        else:
            paint = colour(fill)
        for kind, *values in outlines:
            if kind == "circle":
                cx, cy, r = values
                shapes.append(f'  <circle cx="{number(cx)}" cy="{number(cy)}" r="{number(r)}" fill="{paint}"/>')
            elif kind == "rect":
                x0, y0, x1, y1 = values
                shapes.append(f'  <rect x="{number(x0)}" y="{number(y0)}" width="{number(x1 - x0)}"'
                              f' height="{number(y1 - y0)}" fill="{paint}"/>')
            else:
                gavel, part, margin = values
                points = " ".join(f"{number(x)},{number(y)}" for x, y in gavel.corners(*part, margin))
                shapes.append(f'  <polygon points="{points}" fill="{paint}"/>')
    units = make_pictures.ICON_UNITS
    return "\n".join([
        '<?xml version="1.0" encoding="UTF-8"?>',
        "<!-- SPDX-License-Identifier: GPL-3.0-or-later -->",
        "<!-- Written by packaging/make_icons.py from the layers of resources/make_pictures.py -->",
        f'<svg xmlns="http://www.w3.org/2000/svg" width="{units}" height="{units}" viewBox="0 0 {units} {units}">',
        "  <defs>",
        *definitions,
        "  </defs>",
        *shapes,
        "</svg>",
        "",
    ]).encode("utf-8")


def main():
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    parser.add_argument("--output", type=pathlib.Path, default=HERE / "icons" / "hicolor")
    output = parser.parse_args().output
    files = {pathlib.Path("scalable/apps/gavelscope.svg"): svg()}
    for size in PNG_SIZES:
        files[pathlib.Path(f"{size}x{size}/apps/gavelscope.png")] = make_pictures.icon_png(size)
    for name, data in files.items():
        (output / name).parent.mkdir(parents=True, exist_ok=True)
        (output / name).write_bytes(data)


if __name__ == "__main__":
    main()
