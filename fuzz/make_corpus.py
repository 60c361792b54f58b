# SPDX-License-Identifier: GPL-3.0-or-later
# Copyright 2026 The Gavelscope developers
"""Writes the fuzz targets' seed corpora into fuzz/corpus/<target>/.

The pages, lists and pictures come from the stand-in sites' generator with small knobs, so the seeds
carry every awkward row and line it is built to hold while staying a few KB each. The query files
are written here in the archive format, with the tag forms a reader must also accept. The same run
always writes the same bytes.

    python3 fuzz/make_corpus.py
"""
from __future__ import annotations

import pathlib
import shutil
import struct
import sys

HERE = pathlib.Path(__file__).resolve().parent
sys.path.insert(0, str(HERE.parent / "sandbox"))

import sitegen  # noqa: E402  (found through the path above)

CORPUS = HERE / "corpus"


# --- Query files ---------------------------------------------------------------------------------

NEW_CLASS = 0xFFFF
CLASS_TAG = 0x8000
BIG_OBJECT = 0x7FFF
SETTINGS_SCHEMA = 0x80000002


def word(value: int) -> bytes:
    return struct.pack("<H", value)


def int32(value: int) -> bytes:
    return struct.pack("<i", value)


def string(text: bytes) -> bytes:
    if len(text) < 0xFF:
        return bytes([len(text)]) + text
    if len(text) < 0xFFFE:
        return b"\xff" + word(len(text)) + text
    return b"\xff" + word(0xFFFF) + int32(len(text)) + text


def wide_string(text: str) -> bytes:
    units = text.encode("utf-16-le")
    return b"\xff" + word(0xFFFE) + bytes([len(units) // 2]) + units


def class_record(schema: int, name: bytes) -> bytes:
    return word(NEW_CLASS) + word(schema & 0xFFFF) + word(len(name)) + name


def settings(count: int, keywords: bytes, flags=(1, 0, 1, 1), bounds=None, depth: int = 2) -> bytes:
    # The bounds in file order: nine test flags, twelve bounds, five sort flags; the depth last.
    bounds = bounds or (1, 0, 0, 0, 0, 1, 0, 0, 0, 30, -1, -1, -1, -1, -1, 5, 200, -1, -1, -1, -1,
                        0, 1, 0, 0, 0)
    return (class_record(SETTINGS_SCHEMA, b"CMySettings") + int32(count)
            + b"".join(int32(f) for f in flags) + keywords
            + b"".join(int32(b) for b in bounds) + int32(depth))


def category_class() -> bytes:
    return class_record(0x80000004, b"CCategoryNameObject")


def query_files() -> dict:
    # Class record 1, the settings 2, the category class 3, then the categories from 4 on.
    return {
        "two_categories.sbqry": settings(2, string(b"lamp, brass")) + category_class()
        + string(b"Antiques") + word(CLASS_TAG | 3) + string(b"Art"),
        "no_categories.sbqry": settings(0, string(b""), flags=(0, 0, 0, 0), depth=3),
        # A reference to a category read earlier, then a null category.
        "reference_and_null.sbqry": settings(3, string(b"vase")) + category_class()
        + string(b"Books &amp; More") + word(4) + word(0),
        # The long object tag for a new category, and keywords written as a wide string.
        "long_tag_wide_keywords.sbqry": settings(2, wide_string("brass \u00a3 lamp"))
        + category_class() + string(b"Coins") + word(BIG_OBJECT) + int32(-0x80000000 | 3)
        + string(b"Stamps"),
        # A name long enough for the two-byte length prefix.
        "long_name.sbqry": settings(1, string(b"x" * 300)) + category_class() + string(b"N" * 260),
    }


# --- The rest, from the stand-in sites ---------------------------------------------------------

def escaped(text: bytes) -> bytes:
    """One string as FuzzedDataProvider.ConsumeRandomLengthString reads it: a backslash doubled,
    and a backslash with another byte after it ending the string."""
    return text.replace(b"\\", b"\\\\") + b"\\;"


def listing_seed(content, uk: bool, cat, sub) -> bytes:
    # The listing target reads, from the end, the site byte and three filter choices (one byte
    # each, 0 meaning "any"); from the front the keywords and the category link; the rest is the
    # page, here the home page followed by the first page of a listing (which has a "Next"
    # link), so every scan finds something.
    listing = content.listing_page(sub, "list", sitegen.LISTING_COMMAND.lstrip("/"))
    head = escaped(b"") + escaped(f"{cat.path}/list/".encode())
    return head + content.home_page() + listing + bytes([0, 0, 0, 1 if uk else 0])


def write(target: str, files: dict) -> int:
    folder = CORPUS / target
    if folder.exists():
        shutil.rmtree(folder)
    folder.mkdir(parents=True)
    for name, data in files.items():
        (folder / name).write_bytes(data)
    return sum(len(data) for data in files.values())


def main() -> int:
    small = sitegen.SiteGenerator(categories=4, subcategories=3, keywords=3, items=6, pages=2,
                                  history=40)
    odd = sitegen.SiteGenerator(categories=5, subcategories=4, keywords=2, items=1, pages=1,
                                history=0)
    usa, uk = small.usa, small.uk
    usa_sub, uk_sub = usa.categories[0].subs[0], uk.categories[1].subs[1]
    usa_item, uk_item = usa.item(usa_sub, 1, 2), uk.item(uk_sub, 1, 1)

    corpora = {
        "query_file": query_files(),
        "gif_blocks": {
            "banner.gif": sitegen.banner_gif(12, 4, 1, 2),
            "small.gif": sitegen.small_gif(3),
        },
        "category_line": {
            "usa.txt": usa.category_list(),
            # Its knobs reach every odd keyword line the generator holds.
            "odd_lines.txt": odd.uk.category_list(),
        },
        "history_line": {"history.txt": small.hot_item_list()},
        "banner_line": {"banners.txt": small.banner_list()},
        "category_anchors": {"usa.html": usa.home_page(), "uk.html": uk.home_page()},
        "auction_scan": {"usa.html": usa.home_page(), "uk.html": uk.home_page()},
        "listing_scan": {
            "usa_page1": listing_seed(usa, False, usa.categories[0], usa_sub),
            "uk_page1": listing_seed(uk, True, uk.categories[1], uk_sub),
        },
        "item_page": {"usa.html": usa.item_page(usa_item), "uk.html": uk.item_page(uk_item)},
    }
    total = 0
    for target, files in corpora.items():
        size = write(target, files)
        total += size
        print(f"{target}: {len(files)} files, {size} bytes")
    print(f"total: {total} bytes")
    return 0


if __name__ == "__main__":
    sys.exit(main())
