# SPDX-License-Identifier: GPL-3.0-or-later
# Copyright 2026 The Gavelscope developers
"""Servers that misbehave: what `sandbox.py --hostile MODE` answers in place of the honest sites.

Each mode spoils only the resources it names. Endless and huge answers are produced as they are
read, from a block of at most a few hundred kilobytes, so that the sandbox stays small whatever a
client takes from it.
"""
from __future__ import annotations

import itertools
import re
import string
from typing import Iterator, NamedTuple

from gifwriter import Frame, gif
from sitegen import BANNERS, LISTING_COMMAND, VENDOR_HOST, SiteGenerator

HISTORY_NAME = "HotItemList.txt"
EVIL_HOST = "evil.example"
HUGE_HISTORY_SIZE = 2 << 30
DRIP_LENGTH = 10_000_000
DRIP_PAUSE = 0.9
BLOCK = 256 * 1024  # big enough that an endless answer costs a few system calls per megabyte

MODES = ("endless-home", "drip-home", "endless-line", "endless-cat", "endless-keyword",
         "userinfo-next", "zero-minute-banners", "absurd-gif", "huge-history", "endless-history",
         "silent-history")
# Modes that spoil the same resource in different ways.
RIVALS = (("endless-home", "drip-home"), ("endless-line", "endless-cat", "endless-keyword"),
          ("huge-history", "endless-history", "silent-history"))

FILLER = (string.ascii_letters + string.digits + " ").encode()
# The pager's Next link; only its address changes, so the scanner still finds it by its marker.
NEXT_LINK = re.compile(rb'<a href="[^"]*QQfrpgZ([0-9]+)">(Next <img [^>]*title="Continue")')


class Stream(NamedTuple):
    """An answer produced while it is sent: its chunks, the length its headers promise (None: no
    length, it ends when the connection closes) and the pause after each chunk."""
    chunks: Iterator[bytes]
    length: int | None = None
    pause: float = 0.0


def repeated(block: bytes, size: int = BLOCK) -> bytes:
    return block * max(1, -(-size // len(block)))


def endless_home(page: bytes) -> Iterator[bytes]:
    """The page, then what stands between its body tags, again and again."""
    body = page[page.index(b">", page.index(b"<body")) + 1:page.rindex(b"</body>")]
    yield page
    yield from itertools.repeat(repeated(body))


def drip(page: bytes) -> Stream:
    # Cycled, so the promised length is reached (in about 104 days) rather than the page's end.
    return Stream((page[i:i + 1] for i in itertools.islice(itertools.cycle(range(len(page))),
                                                           DRIP_LENGTH)),
                  DRIP_LENGTH, DRIP_PAUSE)


def keyword_pairs(search_host: str, n: int, count: int) -> str:
    return "".join(f"k{n}_{i}~|~http://{search_host}/k{n}_{i}~|~" for i in range(1, count + 1))


def endless_categories(listing_host: str, search_host: str) -> Iterator[bytes]:
    """Category lines, each with a keyword list of 7,000 pairs on the same line, without end."""
    for n in itertools.count(1):
        yield (f"~CAT~Category {n}~|~http://{listing_host}/Category-{n}/list/~|~~KEYWORD~"
               + keyword_pairs(search_host, n, 7000) + "\r\n").encode()


def endless_keywords(category_list: bytes, search_host: str) -> Iterator[bytes]:
    """The list's first category and sub-category lines, then keyword lines without end."""
    lines = category_list.split(b"\r\n")
    yield b"".join(next(line for line in lines if line.startswith(marker)) + b"\r\n"
                   for marker in (b"~CAT~", b"~SUBCAT~"))
    for first in itertools.count(1, 50):  # 200 KB a write rather than a system call a line
        yield "".join(f"~KEYWORD~{keyword_pairs(search_host, n, 100)}\r\n"
                      for n in range(first, first + 50)).encode()


def userinfo_next(page: bytes) -> bytes:
    """The page with its Next link's address turned into one that, put after the listing root,
    names evil.example as the host and the listing host as a user name."""
    return NEXT_LINK.sub(lambda m: b'<a href="@' + EVIL_HOST.encode() + b"/next?page=" + m[1]
                         + b'">' + m[2], page)


def zero_minute_banners(banner_list: bytes) -> bytes:
    lines = banner_list.splitlines(keepends=True)
    return b"".join((b"0", b"-5")[n % 2] + line[line.index(b"|"):] for n, line in enumerate(lines))


def absurd_gif() -> bytes:
    """A GIF of a thousand bytes or so whose screen a viewer would make 5700 x 5700 pixels."""
    return gif(5700, 5700, [Frame(0, 0, 1, 1, b"\x01", delay=10)] * 50)


class RepeatingFile:
    """A read-only file whose text is a block repeated, up to a size or for ever."""

    def __init__(self, name: str, block: bytes, size: int | None = None):
        self.name = name
        self.size = size
        self.period = len(block)
        # Any read of up to BLOCK bytes is one slice of this, wherever it starts.
        self.window = block * (-(-BLOCK // len(block)) + 1)
        self.position = 0
        self.closed = False

    def read(self, size: int = -1) -> bytes:
        size = BLOCK if size < 0 or size > BLOCK else size  # never all of it: there is no "all"
        if self.size is not None:
            size = max(0, min(size, self.size - self.position))
        start = self.position % self.period
        self.position += size
        return self.window[start:start + size]

    def seek(self, position: int, whence: int = 0):
        self.position = position

    def tell(self) -> int:
        return self.position

    def close(self):
        self.closed = True


class Hostile:
    """The sites as a generator makes them, spoilt by the chosen modes."""

    def __init__(self, generator: SiteGenerator, modes=()):
        self.generator = generator
        self.modes = frozenset(modes)
        unknown = self.modes.difference(MODES)
        if unknown:
            raise ValueError(f"unknown hostile mode {sorted(unknown)[0]}")
        for rivals in RIVALS:
            if len(self.modes.intersection(rivals)) > 1:
                raise ValueError(f"choose one of the hostile modes {', '.join(rivals)}")
        self.history = b""
        if self.modes.intersection(("huge-history", "endless-history")):
            self.history = generator.hot_item_list()
            if not self.history:
                raise ValueError("a repeated history needs at least one history line")
        self.home_hosts = {content.site.listing_host: content
                           for content in (generator.usa, generator.uk)}
        self.list_paths = {"/CategoryListUSA.txt": generator.usa,
                           "/CategoryListUK.txt": generator.uk}

    @property
    def silent_history(self) -> bool:
        return "silent-history" in self.modes

    def http_hosts(self) -> list:
        return sorted(self.generator.http_hosts() + [EVIL_HOST] * ("userinfo-next" in self.modes))

    def http_get(self, host: str, target: str) -> bytes | Stream | None:
        """The body for GET http://host/target, a Stream for one produced while it is sent, or
        None for 404."""
        host, path = host.lower(), target.partition("?")[0]
        modes, generator = self.modes, self.generator
        home = self.home_hosts.get(host)
        if home is not None and path in ("", "/"):
            if "endless-home" in modes:
                return Stream(endless_home(home.home_page()))
            if "drip-home" in modes:
                return drip(home.home_page())
        content = self.list_paths.get(path) if host == VENDOR_HOST else None
        if content is not None:
            site = content.site
            if "endless-line" in modes:
                return Stream(itertools.repeat(repeated(FILLER)))
            if "endless-cat" in modes:
                return Stream(endless_categories(site.listing_host, site.search_host))
            if "endless-keyword" in modes:
                return Stream(endless_keywords(content.category_list(), site.search_host))
        if host == VENDOR_HOST and path == "/GavelscopeBanners.txt" and \
                "zero-minute-banners" in modes:
            return zero_minute_banners(generator.banner_list())
        if "userinfo-next" in modes:
            if host == EVIL_HOST:
                sub = generator.usa.categories[0].subs[0]
                return generator.http_get(sub.site.listing_host,
                                          f"{sub.path}/list/{LISTING_COMMAND}")
            if home is not None:
                body = generator.http_get(host, target)
                return body and userinfo_next(body)
        return generator.http_get(host, target)

    def ftp_files(self) -> dict:
        files = self.generator.ftp_files()
        if "absurd-gif" in self.modes:
            files.update((name, absurd_gif()) for _minutes, _page, name, _look in BANNERS)
        return files

    def history_file(self, name: str) -> RepeatingFile | None:
        """What a download of the history reads, where a mode makes it up; None for the file."""
        if "huge-history" in self.modes:
            return RepeatingFile(name, self.history, HUGE_HISTORY_SIZE)
        if "endless-history" in self.modes:
            return RepeatingFile(name, self.history)
        return None
