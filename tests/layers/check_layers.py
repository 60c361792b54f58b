#!/usr/bin/python3
# SPDX-License-Identifier: GPL-3.0-or-later
# Copyright 2026 The Gavelscope developers
"""Fails when a folder of src/ includes one it must not: the folders are layers, each built as a
library that links only the ones below it, and an include against that order is the first step of
a loop. Only src/ui includes Qt.

    check_layers.py SRC_DIR      prints every offending include, exits 1 when there is one
"""
import pathlib
import re
import sys

# What each folder may include besides itself: everything below it.
BELOW = {
    "base": set(),
    "standin": {"base"},
    "net": {"base"},
    "sites": {"base", "net"},
    "keywords": {"base", "net", "sites"},
    "auctions": {"base", "net", "sites"},
    "hotitems": {"base", "net", "sites"},
    "banner": {"base", "net", "sites"},
    "query": {"base", "net", "sites", "hotitems"},
    "insights": {"base", "net", "sites", "keywords", "auctions", "hotitems", "query"},
    "store": {"base", "net", "sites", "keywords", "auctions", "hotitems", "query", "insights"},
    "app": {"base", "net", "sites", "keywords", "auctions", "hotitems", "query", "standin"},
}
BELOW["cli"] = set(BELOW) - {"cli"}
BELOW["ui"] = set(BELOW) - {"ui", "cli"} | {"banner"}

PROJECT_INCLUDE = re.compile(r'^\s*#\s*include\s*"([^"/]+)/')
QT_INCLUDE = re.compile(r"^\s*#\s*include\s*[<\"]Q")


def offences(src: pathlib.Path):
    for path in sorted(src.rglob("*")):
        if path.suffix not in (".h", ".cpp") or path.parent == src:
            continue
        folder = path.relative_to(src).parts[0]
        allowed = BELOW.get(folder)
        for number, line in enumerate(path.read_text(encoding="utf-8").splitlines(), 1):
            where = f"{path.relative_to(src)}:{number}"
            if allowed is None:
                yield f"{where}: folder {folder}/ has no place among the layers"
                break
            included = PROJECT_INCLUDE.match(line)
            if included and included.group(1) != folder and included.group(1) not in allowed:
                yield f"{where}: {folder}/ includes {included.group(1)}/, which is not below it"
            if QT_INCLUDE.match(line) and folder != "ui":
                yield f"{where}: Qt outside ui/"


def main(argv) -> int:
    found = list(offences(pathlib.Path(argv[1])))
    for offence in found:
        print(offence)
    return 1 if found else 0


if __name__ == "__main__":
    sys.exit(main(sys.argv))
