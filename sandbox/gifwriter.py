# SPDX-License-Identifier: GPL-3.0-or-later
# Copyright 2026 The Gavelscope developers
"""A small GIF89a writer: 16 fixed colours, any number of frames, no compression to speak of."""
from __future__ import annotations

import struct
from dataclasses import dataclass

PALETTE = (
    (255, 255, 255), (0, 0, 0), (20, 40, 120), (140, 194, 27), (230, 30, 40), (250, 200, 20),
    (0, 120, 200), (120, 120, 120), (200, 200, 200), (255, 140, 0), (90, 0, 140), (0, 150, 80),
    (255, 230, 200), (60, 60, 60), (180, 220, 255), (255, 0, 255),
)
LZW_MIN_CODE_SIZE = 4  # 16 colours


@dataclass(frozen=True)
class Frame:
    left: int
    top: int
    width: int
    height: int
    pixels: bytes        # palette indices, row by row
    delay: int = 50      # hundredths of a second
    disposal: int = 1
    transparent: int | None = None


def _lzw_literal(pixels: bytes) -> bytes:
    # Literal codes only, with a clear code before the decoder's table grows to the next code
    # width (two codes early, for decoders that switch one code early): valid LZW that every
    # decoder reads, for almost no code.
    clear, width = 1 << LZW_MIN_CODE_SIZE, LZW_MIN_CODE_SIZE + 1
    run = clear - 4
    codes = []
    for start in range(0, len(pixels), run):
        codes.append(clear)
        codes.extend(pixels[start:start + run])
    codes.append(clear + 1)
    data, buffer, bits = bytearray(), 0, 0
    for code in codes:
        buffer |= code << bits
        bits += width
        while bits >= 8:
            data.append(buffer & 0xFF)
            buffer >>= 8
            bits -= 8
    if bits:
        data.append(buffer)
    blocks = b"".join(bytes([len(data[i:i + 255])]) + data[i:i + 255]
                      for i in range(0, len(data), 255))
    return bytes([LZW_MIN_CODE_SIZE]) + blocks + b"\x00"


def gif(width: int, height: int, frames, background: int = 0, comment: str = "") -> bytes:
    """A GIF89a file over PALETTE; several frames make it an endlessly looping animation."""
    out = bytearray(b"GIF89a")
    out += struct.pack("<HHBBB", width, height, 0xF0 | 3, background, 0)
    out += b"".join(bytes(rgb) for rgb in PALETTE)
    if len(frames) > 1:
        out += b"\x21\xFF\x0BNETSCAPE2.0\x03\x01\x00\x00\x00"
    if comment:
        text = comment.encode("ascii")
        out += b"\x21\xFE" + bytes([len(text)]) + text + b"\x00"
    for f in frames:
        flags = f.disposal << 2 | (f.transparent is not None)
        out += b"\x21\xF9\x04" + struct.pack("<BHB", flags, f.delay, f.transparent or 0) + b"\x00"
        out += b"\x2C" + struct.pack("<HHHHB", f.left, f.top, f.width, f.height, 0)
        out += _lzw_literal(f.pixels)
    return bytes(out + b"\x3B")
