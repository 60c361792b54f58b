# SPDX-License-Identifier: GPL-3.0-or-later
# Copyright 2026 The Gavelscope developers
"""Self-check of the stand-in sites, and of their hostile modes: each one really misbehaves, and only where
it says. Run with /usr/bin/python3 -m unittest discover tests/sandbox"""
import ftplib
import itertools
import re
import select
import socket
import sys
import tempfile
import threading
import unittest
from pathlib import Path

sys.path.insert(0, str(Path(__file__).resolve().parents[2] / "sandbox"))

from hostile import Hostile  # noqa: E402
from sandbox import FTP_HOST, FtpThread, Tally, fill_ftp_root, quiet_ftp_logging  # noqa: E402
from sitegen import SiteGenerator  # noqa: E402

KNOBS = dict(categories=4, subcategories=3, keywords=4, items=6, pages=3)
NEXT = re.compile(rb'<a href="([^"]+)">Next <img [^>]*title="Continue"')
VENDOR, UK_LIST, BANNERS = "www.gavelscope.example", "/CategoryListUK.txt", "/GavelscopeBanners.txt"


def listing_path(sub, page=1):
    return f"{sub.path}/list/_W0QQsocmdZListingItemList" + (f"QQfrpgZ{page}" if page > 1 else "")


class StandInTest(unittest.TestCase):
    def setUp(self):
        self.generator = SiteGenerator(**KNOBS)

    def test_listing_pages_chain_to_the_page_count_and_stop(self):
        sub = next(iter(self.generator.uk.subs_by_id.values()))
        url, pages = sub.url + "QQsosortpropertyZ1", 0
        while url:
            page = self.generator.http_get("listings.ebay.co.uk", url.split(".co.uk", 1)[1])
            pages += 1
            self.assertEqual(page.count(b'<td align="center" width="50">'), KNOBS["items"])
            self.assertEqual(page.count(b">\xa3"), KNOBS["items"])
            found = NEXT.search(page)
            url = found and "http://listings.ebay.co.uk" + found[1].decode()
        self.assertEqual(pages, KNOBS["pages"])

    def test_a_later_day_moves_counts_top_keywords_and_listing_rows_on(self):
        self.assertEqual(SiteGenerator(**KNOBS, day=0).uk.category_list(), self.generator.uk.category_list())
        days = [SiteGenerator(**KNOBS, day=day) for day in range(1, 6)]
        self.assertTrue(all(g.uk.auction_rows() != self.generator.uk.auction_rows() for g in days))
        self.assertTrue(any(g.uk.top100() != self.generator.uk.top100() for g in days))
        # Each row's item has a page from the day it was listed on, and none before.
        later, earlier = days[-1], days[-2]
        sub = next(iter(later.uk.subs_by_id.values()))
        items = [later.uk.item(sub, page, row) for page in (1, 2) for row in range(KNOBS["items"])]
        self.assertGreater(sum(item.number != self.generator.uk.item(sub, item.page, item.row).number
                               for item in items), 0)
        for item in items:
            self.assertEqual(later.uk.item_by_number(str(item.number)), item)
            listed = later.uk.listed_day(sub, item.page, item.row)
            self.assertEqual(earlier.uk.item_by_number(str(item.number)) is None, listed == 5)

    def get(self, modes, host, path, chunks=4):
        answer = Hostile(self.generator, modes).http_get(host, path)
        return b"".join(itertools.islice(answer.chunks, chunks)).decode("cp1252")

    def test_home_page_modes_start_with_the_honest_page(self):
        page = self.generator.uk.home_page().decode("cp1252")
        endless = self.get(["endless-home"], "listings.ebay.co.uk", "/")
        self.assertTrue(endless.startswith(page))
        self.assertGreater(endless.count(re.search(r'<a href="/[^"]+/list/">', page)[0]), 10)
        drip = Hostile(self.generator, ["drip-home"]).http_get("listings.ebay.co.uk", "/")
        self.assertEqual((drip.length, drip.pause), (10_000_000, 0.9))
        self.assertEqual(b"|".join(itertools.islice(drip.chunks, 3)), b"<|h|t")

    def test_category_list_modes_give_endless_lines_categories_or_keywords(self):
        line = self.get(["endless-line"], VENDOR, UK_LIST)
        self.assertTrue(line.isprintable() and len(line) > 500_000)
        second = self.get(["endless-cat"], VENDOR, UK_LIST, 2).split("\r\n")[1]
        head = "~CAT~Category 2~|~http://listings.ebay.co.uk/Category-2/list/~|~"
        self.assertTrue(second.startswith(head))
        self.assertEqual(second.count("~|~"), 14002)
        honest = self.generator.uk.category_list().decode("cp1252").split("\r\n")
        lines = self.get(["endless-keyword"], VENDOR, UK_LIST).split("\r\n")[:-1]
        self.assertEqual(lines[:2], [next(line for line in honest if line.startswith(marker))
                                     for marker in ("~CAT~", "~SUBCAT~")])
        self.assertGreater(len(lines), 100)
        self.assertTrue(all(line.startswith("~KEYWORD~k") and line.count("~|~") == 200
                            for line in lines[2:]))

    def test_userinfo_next_changes_only_the_next_address(self):
        site = Hostile(self.generator, ["userinfo-next"])
        sub = self.generator.uk.categories[1].subs[2]
        for page in range(1, KNOBS["pages"] + 1):
            honest = self.generator.http_get("listings.ebay.co.uk", listing_path(sub, page))
            spoilt = site.http_get("listings.ebay.co.uk", listing_path(sub, page))
            if page == KNOBS["pages"]:
                self.assertEqual(spoilt, honest)
                continue
            href = f"@evil.example/next?page={page + 1}".encode()
            self.assertEqual(NEXT.search(spoilt)[1], href)
            self.assertEqual(spoilt.replace(href, NEXT.search(honest)[1]), honest)
        self.assertIn("evil.example", site.http_hosts())
        first = self.generator.usa.categories[0].subs[0]
        self.assertEqual(site.http_get("evil.example", "/next?page=2"),
                         self.generator.http_get("listings.ebay.com", listing_path(first)))

    def test_banners_of_no_minutes_and_pictures_of_an_absurd_screen(self):
        site = Hostile(self.generator, ["zero-minute-banners", "absurd-gif"])
        honest = self.generator.banner_list().split(b"\r\n")[:-1]
        spoilt = site.http_get(VENDOR, BANNERS).split(b"\r\n")[:-1]
        self.assertEqual([line.split(b"|", 1)[1] for line in spoilt],
                         [line.split(b"|", 1)[1] for line in honest])
        self.assertTrue(all(int(line.split(b"|")[0]) <= 0 for line in spoilt))
        for name in (line.split(b"|")[2].decode() for line in honest):
            picture = site.ftp_files()[name]
            self.assertLess(len(picture), 2000)
            self.assertEqual(picture[:10], b"GIF89a\x44\x16\x44\x16")  # 5700 x 5700
            # Each frame: a control block with a delay of 10, then a 1 x 1 image at 0, 0.
            frames = re.findall(rb"\x21\xF9\x04.\x0A\x00.\x00\x2C\0\0\0\0\x01\0\x01\0", picture,
                                re.DOTALL)
            self.assertEqual(len(frames), 50)
    def test_the_history_download_never_connects_and_others_still_do(self):
        site, seen = Hostile(self.generator, ["silent-history"]), Tally(threading.Event())
        root = self.enterContext(tempfile.TemporaryDirectory())
        fill_ftp_root(root, site.ftp_files())
        quiet_ftp_logging()
        server = FtpThread(root, site, seen)
        server.start()
        self.addCleanup(server.stop)
        client = ftplib.FTP()  # not as a context: its QUIT would wait for the silent server
        self.addCleanup(client.close)
        client.connect("127.0.0.1", server.port, timeout=10)
        client.login("gavelscope", "h0tlist")
        client.set_pasv(False)
        chunks = []
        client.retrbinary("RETR KeywordsBanner.gif", chunks.append)
        self.assertEqual(b"".join(chunks), site.ftp_files()["KeywordsBanner.gif"])
        listener = self.enterContext(socket.create_server(("127.0.0.1", 0)))
        port = listener.getsockname()[1]
        client.sendcmd(f"PORT 127,0,0,1,{port >> 8},{port & 255}")
        # Exactly this answer, so also none left over from the download before.
        self.assertEqual(client.sendcmd("RETR HotItemList.txt"), "150 Opening data connection.")
        # A connection would have been started before that answer went out.
        self.assertEqual(select.select([listener], [], [], 0)[0], [])
        self.assertEqual([seen.wait((FTP_HOST, "/" + name), 0)
                          for name in ("HotItemList.txt", "KeywordsBanner.gif")], [1, 1])


if __name__ == "__main__":
    unittest.main()
