# SPDX-License-Identifier: GPL-3.0-or-later
# Copyright 2026 The Gavelscope developers
"""Self-check of the stand-in sites: run with /usr/bin/python3 -m unittest discover tests/sandbox"""
import re
import sys
import unittest
from pathlib import Path

sys.path.insert(0, str(Path(__file__).resolve().parents[2] / "sandbox"))

from sitegen import SiteGenerator  # noqa: E402

KNOBS = dict(categories=4, subcategories=3, keywords=4, items=6, pages=3)


class SiteGeneratorTest(unittest.TestCase):
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

    def test_default_sites_are_full_size(self):
        generator = SiteGenerator()
        for content in (generator.usa, generator.uk):
            self.assertGreaterEqual(len(content.categories), 30)
            self.assertGreaterEqual(sum(len(category.subs) for category in content.categories), 300)


if __name__ == "__main__":
    unittest.main()
