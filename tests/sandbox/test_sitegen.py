# SPDX-License-Identifier: GPL-3.0-or-later
# Copyright 2026 The Gavelscope developers
"""Self-check of the stand-in sites: run with /usr/bin/python3 -m unittest discover tests/sandbox"""
import re
import sys
import unittest
from pathlib import Path

sys.path.insert(0, str(Path(__file__).resolve().parents[2] / "sandbox"))

from sitegen import NO_KNOWN_KEYWORDS, SiteGenerator, decode_entities  # noqa: E402

KNOBS = dict(categories=4, subcategories=3, keywords=4, items=6, pages=3)


def every_body(generator):
    for content in (generator.usa, generator.uk):
        host = content.site.listing_host
        yield content.home_page()
        yield content.category_list()
        for sub in content.subs_by_id.values():
            path = sub.url.split(host, 1)[1]
            for page in range(1, generator.pages + 1):
                yield generator.http_get(host, f"{path}QQfrpgZ{page}")
    yield from generator.ftp_files().values()


def read_category_list(text: str):
    """The categories, with [name, keyword array or None] per sub-category, as the program reads
    the list file: a keyword line's unfinished last pair is dropped, a later line replaces one."""
    categories, item = [], None
    for line in text.split("\r\n"):
        marker, _, rest = line.partition("~")[2].partition("~")
        fields = rest.split("~|~")[:-1]  # text after the last separator is no field
        if marker == "CAT":
            categories.append((fields[0], []))
            item = None
        elif marker == "SUBCAT":
            item = [fields[0], None]
            categories[-1][1].append(item)
        elif marker == "KEYWORD" and item is not None:
            item[1] = fields[0:len(fields) // 2 * 2:2]
    return categories


def top100(categories) -> list:
    taken = []
    for _name, subs in categories:
        for name, keywords in subs:
            if keywords is None:
                return taken
            if name and keywords and keywords[0] not in taken + [NO_KNOWN_KEYWORDS]:
                taken.append(keywords[0])
    return taken


class SiteGeneratorTest(unittest.TestCase):
    def test_same_knobs_give_the_same_bytes(self):
        first = list(every_body(SiteGenerator(**KNOBS)))
        self.assertEqual(first, list(every_body(SiteGenerator(**KNOBS))))

    def test_listing_pages_chain_to_the_page_count_and_stop(self):
        generator = SiteGenerator(**KNOBS)
        sub = next(iter(generator.uk.subs_by_id.values()))
        url, pages = sub.url + "QQsosortpropertyZ1", 0
        while url:
            page = generator.http_get("listings.ebay.co.uk", url.split(".co.uk", 1)[1])
            pages += 1
            self.assertEqual(page.count(b'<td align="center" width="50">'), KNOBS["items"])
            self.assertEqual(page.count(b">\xa3"), KNOBS["items"])
            found = re.search(rb'<a href="([^"]+)">Next <img [^>]*title="Continue"', page)
            url = found and "http://listings.ebay.co.uk" + found[1].decode()
        self.assertEqual(pages, KNOBS["pages"])

    def test_query_oracle_drops_just_the_empty_times_and_foreign_prices_of_the_pages(self):
        generator = SiteGenerator(**KNOBS)
        for site, content in (("usa", generator.usa), ("uk", generator.uk)):
            pages = [generator.http_get(content.site.listing_host, sub.path + "/list/")
                     for sub in content.categories[0].subs]
            kept = sum(page.count(b'width="50">') - page.count(b'width="100"></td>')
                       - len(re.findall(rb">(?:AU |C |GBP |EUR )", page)) for page in pages)
            self.assertEqual(len(generator.query_rows(site, [content.categories[0].name], 1)), kept)

    def test_default_list_files_and_home_pages_give_the_expected_exports(self):
        # The export oracles come from the catalogue, not from the files: the two must agree.
        generator = SiteGenerator()
        for site, content in (("usa", generator.usa), ("uk", generator.uk)):
            categories = read_category_list(content.category_list().decode("cp1252"))
            self.assertGreaterEqual(len(categories), 30)
            self.assertGreaterEqual(sum(len(subs) for _name, subs in categories), 300)
            expected = "\tTodays Top 100 Keywords\r\n\r\nPosition\t\t\tKeyword\r\n\r\n" + "".join(
                f"{n}\t\t\t\t{keyword}\r\n" for n, keyword in enumerate(top100(categories), 1))
            self.assertEqual(generator.top100_export(site), expected.encode("cp1252"))
            # A count left without its ")" reads as empty.
            shown = re.findall(r'ListingItemList">(.*?)</a> \((?:([^)<]*)\))?',
                               content.home_page().decode("cp1252"))
            rows = generator.auctions_export(site).decode("cp1252").split("\r\n")[4:-1]
            self.assertCountEqual([row.split("\t\t")[1:] for row in rows],
                                  [[count, decode_entities(name)] for name, count in shown])

    def test_history_file_reads_back_as_its_exports(self):
        generator = SiteGenerator()
        lines = generator.hot_item_list().decode("cp1252").split("\n")[:-1]
        fields = [(line.removesuffix("\r").split("~|~")[:-1] + [""] * 5)[:5] for line in lines]
        rows = [(date.strip(), title, price, bids) for _link, date, title, price, bids in fields]
        for site in ("usa", "uk"):
            mine = sorted((row for row in rows if ("GBP" in row[2]) == (site == "uk")), key=lambda
                          row: (row[3] != "", int(row[3].replace("-", "0") or 0)))
            body = "".join(f"{e}\t\t\t{b}\t\t\t{p}\t\t\t{t}\r\n" for e, t, p, b in mine)
            self.assertEqual(generator.history_export(site).decode("cp1252").split("\r\n\r\n")[2],
                             body)


if __name__ == "__main__":
    unittest.main()
