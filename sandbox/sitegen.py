# SPDX-License-Identifier: GPL-3.0-or-later
# Copyright 2026 The Gavelscope developers
"""Deterministic stand-in content for the two eBay sites and the vendor's servers.

Everything follows from six size knobs and a day: the same knobs always give the same bytes, and a page costs
nothing until it is asked for (a 10,000-row listing page is built only when fetched). Only the
catalogue itself (names, counts, keywords) is built up front; it is small even for big sites. The
home pages and category list files, asked for by every run, are kept once built.

`sitegen.py top100 usa|uk [--categories N ...]` prints what the program's Top 100 export must hold
for those knobs; `sitegen.py auctions usa|uk [...]` and `sitegen.py history usa|uk [...]` likewise
for its auction export and its hot item history export; `sitegen.py query-rows --site usa|uk
--category NAME --page-depth N [--keywords TEXT] [filters] [...]` the rows a hot item query
finds (there the keyword knob is spelt --keyword-count).

`--day N` (default 0) moves the sites on by N days: each sub-category's count drifts by up to a fifth,
about one sub-category in eight swaps its first two keywords (so the Top 100 changes), and each day
puts a new item in about one listing row in five. Day 0 is the content the other knobs always gave.

Pages are Windows-1252 text, encoded here and nowhere else: the pound sign is the byte 0xA3.

The markup is what the programs' scanners read, so a few layout rules below look arbitrary but are
load-bearing; each is explained where it is written.
"""
from __future__ import annotations

import argparse
import datetime
import functools
import itertools
import random
import re
import sys
from dataclasses import dataclass
from typing import NamedTuple

from gifwriter import Frame, gif

ENCODING = "cp1252"

VENDOR_HOST = "www.gavelscope.example"
PROBE_HOST = "www.ebay.co.uk"

NO_KNOWN_KEYWORDS = "*** No Known Keywords ***"
LISTING_COMMAND = "_W0QQsocmdZListingItemList"

# Category names as the listing home page writes them (entities included). Sub-categories beyond a
# list, and categories beyond the table, get numbered names.
CATALOGUE = (
    ("Antiques", ("Antiquities", "Architectural &amp; Garden", "Asian Antiques", "Decorative Arts",
                  "Furniture", "Maps, Atlases &amp; Globes", "Rugs &amp; Carpets", "Silver",
                  "Textiles &amp; Linens", "Other Antiques")),
    ("Art", ("Drawings", "Folk Art", "Mixed Media", "Paintings", "Photographic Images", "Posters",
             "Prints", "Sculpture &amp; Carvings", "Self-Representing Artists", "Textile Art")),
    ("Baby", ("Baby Gear", "Bathing &amp; Grooming", "Car Safety Seats", "Diapering", "Feeding",
              "Nursery Bedding", "Nursery Furniture", "Strollers", "Toys for Baby", "Other Baby")),
    ("Books", ("Antiquarian &amp; Collectible", "Audiobooks", "Children&#39;s Books", "Cookbooks",
               "Fiction Books", "Magazines", "Nonfiction Books", "Poetry",
               "Textbooks &amp; Education",
               "Travel Guides")),
    ("Business &amp; Industrial", ("Agriculture &amp; Forestry", "Construction",
                                   "Electrical &amp; Test Equipment", "Healthcare &amp; Lab",
                                   "Industrial Supply, MRO", "Manufacturing &amp; Metalworking",
                                   "Office, Printing &amp; Shipping", "Restaurant &amp; Catering",
                                   "Retail &amp; Services", "Other Industries")),
    ("Cameras &amp; Photo", ("Digital Cameras", "Film Cameras", "Lenses &amp; Filters", "Flashes",
                             "Camcorders", "Binoculars &amp; Telescopes", "Vintage Cameras",
                             "Tripods &amp; Supports", "Darkroom &amp; Developing", "Other Photo")),
    ("Cars, Parts &amp; Vehicles", ("Cars &amp; Trucks", "Motorcycles", "Parts &amp; Accessories",
                                    "Boats", "Caravans &amp; Trailers", "Classic Cars",
                                    "Commercial Vehicles", "Manuals &amp; Literature", "Car Care",
                                    "Other Vehicles")),
    ("Clothing, Shoes &amp; Accessories", ("Men&#39;s Clothing", "Women&#39;s Clothing",
                                           "Children&#39;s Clothing", "Men&#39;s Shoes",
                                           "Women&#39;s Shoes", "Handbags &amp; Bags",
                                           "Men&#39;s Accessories", "Women&#39;s Accessories",
                                           "Vintage Clothing", "Wedding Apparel")),
    ("Coins", ("Coins: US", "Coins: World", "Ancient Coins", "Bullion", "Paper Money: US",
               "Paper Money: World", "Exonumia", "Errors &amp; Varieties", "Coin Supplies",
               "Other Coins")),
    ("Collectibles", ("Advertising", "Animals", "Animation Art &amp; Characters",
                      "Breweriana, Beer", "Clocks", "Comics", "Disneyana", "Kitchen &amp; Home",
                      "Militaria", "Tobacciana")),
    ("Computers &amp; Networking", ("Apple Computers", "Components", "Desktop PCs",
                                    "Drives &amp; Storage", "Laptops", "Monitors", "Networking",
                                    "Printers", "Software", "Vintage Computers")),
    ("Consumer Electronics", ("Car Electronics", "Cell Phones", "DVD Players &amp; Recorders",
                              "Gadgets", "Home Audio", "Home Theater", "MP3 Players",
                              "Portable Audio", "Radios", "Televisions")),
    ("Crafts", ("Beads &amp; Jewelry Making", "Cross Stitch", "Drawing &amp; Painting", "Fabric",
                "Knitting", "Quilting", "Rubber Stamping", "Scrapbooking", "Sewing",
                "Woodworking")),
    ("Dolls &amp; Bears", ("Bears", "Dolls", "Dollhouses", "Doll Clothes", "Dolls&#39; Furniture",
                           "Paper Dolls", "Plush", "Bear Making Supplies", "Vintage Dolls",
                           "Other Dolls")),
    ("DVDs &amp; Movies", ("DVD", "Film", "Laserdisc", "VHS", "Box Sets", "Film Memorabilia",
                           "Home Movies", "Trailers", "Wholesale Lots", "Other Formats")),
    ("Entertainment Memorabilia", ("Autographs", "Movie Memorabilia", "Music Memorabilia",
                                   "Television Memorabilia", "Theater Memorabilia",
                                   "Video Game Memorabilia", "Radio Memorabilia",
                                   "Comic Memorabilia", "Posters", "Other Memorabilia")),
    ("Gift Certificates", ("Restaurants", "Retail Stores", "Travel Vouchers", "Entertainment",
                           "Spa &amp; Beauty", "Department Stores", "Online Shops", "Music Shops",
                           "Book Shops", "Other Vouchers")),
    ("Health &amp; Beauty", ("Bath &amp; Body", "Dietary Supplements", "Fragrances", "Hair Care",
                             "Make-Up", "Massage", "Medical Supplies", "Nail Care", "Skin Care",
                             "Vision Care")),
    ("Home &amp; Garden", ("Bath", "Bedding", "Furniture", "Garden", "Home Decor",
                           "Home Improvement", "Kitchen", "Lamps, Lighting", "Outdoor Living",
                           "Tools")),
    ("Jewelry &amp; Watches", ("Bracelets", "Earrings", "Fashion Jewelry", "Fine Jewelry",
                               "Loose Beads", "Men&#39;s Jewelry", "Necklaces &amp; Pendants",
                               "Rings", "Vintage &amp; Antique", "Watches")),
    ("Music", ("CDs", "Cassettes", "Records", "Vinyl Singles", "DVD Audio", "Music Memorabilia",
               "Sheet Music", "Box Sets", "Wholesale Lots", "Other Formats")),
    ("Musical Instruments", ("Brass", "Electronic", "Equipment", "Guitar", "Instruction Books, CDs",
                             "Keyboard, Piano", "Percussion", "Pro Audio", "String", "Woodwind")),
    ("Pet Supplies", ("Aquarium &amp; Fish", "Bird Supplies", "Cat Supplies", "Dog Supplies",
                      "Horse Supplies", "Reptile Supplies", "Small Animal Supplies",
                      "Pet Clothing", "Pet Memorials", "Other Pet Supplies")),
    ("Pottery &amp; Glass", ("Glass", "Pottery &amp; China", "Art Glass", "Carnival Glass",
                             "Depression Glass", "Paperweights", "Porcelain", "Stoneware",
                             "Studio Pottery", "Other Pottery")),
    ("Real Estate", ("Commercial", "Land", "Residential", "Timeshares", "Holiday Homes",
                     "Manufactured Homes", "Farms &amp; Ranches", "Parking &amp; Garages",
                     "Cemetery Plots", "Other Real Estate")),
    ("Specialty Services", ("Advice &amp; Instruction", "Artistic Services", "Auction Services",
                            "Custom Clothing &amp; Jewelry", "Graphic &amp; Logo Design",
                            "Media Editing &amp; Duplication", "Printing &amp; Personalization",
                            "Restoration &amp; Repair", "Web &amp; Computer Services",
                            "Other Services")),
    ("Sporting Goods", ("Camping", "Cycling", "Fishing", "Fitness", "Golf", "Hunting", "Skiing",
                        "Team Sports", "Tennis", "Water Sports")),
    ("Sports Mem, Cards &amp; Fan Shop", ("Autographs-Original", "Cards",
                                          "Fan Apparel &amp; Souvenirs", "Game Used Memorabilia",
                                          "Vintage Sports Memorabilia", "Baseball", "Basketball",
                                          "Boxing", "Golf", "Hockey")),
    ("Stamps", ("United States", "Great Britain", "Europe", "Asia", "Africa", "Canada",
                "Latin America", "Topical &amp; Specialty", "Worldwide",
                "Publications &amp; Supplies")),
    ("Tickets", ("Concerts", "Sporting Events", "Theater", "Comedy", "Festivals", "Museums",
                 "Experiences", "Travel", "Parking Passes", "Other Tickets")),
    ("Toys &amp; Hobbies", ("Action Figures", "Building Toys", "Diecast, Toy Vehicles",
                            "Educational", "Games", "Model Railroads, Trains", "Models, Kits",
                            "Outdoor Toys", "Radio Control", "Vintage, Antique Toys")),
    ("Video Games", ("Accessories", "Games", "Consoles", "PC Games", "Strategy Guides",
                     "Replacement Parts", "Merchandise", "Vintage Games", "Handheld",
                     "Wholesale Lots")),
    ("Travel", ("Airline", "Car Rental", "Cruises", "Lodging", "Luggage", "Rail",
                "Travel Accessories", "Vacation Packages", "Maps", "Other Travel")),
    ("Everything Else", ("Gifts &amp; Occasions", "Metaphysical", "Weird Stuff", "Genealogy",
                         "Information Products", "Education", "Memberships", "Reward Points",
                         "Personal Security", "Other")),
)

UK_SPELLING = (
    ("Jewelry", "Jewellery"), ("Cell Phones", "Mobile Phones"), ("Theater", "Theatre"),
    ("Coins: US", "Coins: UK"), ("Paper Money: US", "Paper Money: UK"),
    ("United States", "United Kingdom"), ("DVDs &amp; Movies", "DVDs, Films &amp; TV"),
    ("Model Railroads", "Model Railways"), ("Diapering", "Nappies &amp; Changing"),
    ("Strollers", "Pushchairs &amp; Prams"), ("Vacation", "Holiday"),
    ("Cars, Parts &amp; Vehicles", "Motors"), ("Cars &amp; Trucks", "Cars"),
)

# Keyword stems and the words that dress them up into item titles. Search links carry a keyword's
# slug, so they need no escaping.
STEMS = (
    "lego", "nokia", "ipod", "zippo", "pyrex", "wedgwood", "doulton", "hornby", "meccano", "corgi",
    "dinky", "barbie", "beanie babies", "pokemon", "star wars", "beatles", "elvis", "rolex",
    "omega", "seiko", "tiffany", "swarovski", "waterford", "lladro", "hummel", "moorcroft",
    "carnival glass", "cast iron", "sterling silver", "pewter", "mahogany", "teak", "quilt",
    "tapestry", "kimono", "netsuke", "cloisonne", "majolica", "staffordshire", "art deco",
    "art nouveau", "eames", "leica", "nikon", "polaroid", "zeiss", "gibson", "fender", "yamaha",
    "sega", "nintendo", "playstation", "atari", "commodore", "game boy", "first edition",
    "autograph", "comic", "vinyl", "cassette", "tin toy", "teddy bear", "doll house",
    "pocket watch", "fountain pen", "snow globe", "music box", "oil lamp", "brass bell",
    "model train", "caf\u00e9 table",
)
# Moved up to an early top keyword, so that every Top 100 list holds one byte above 0x7F.
ACCENTED_STEM = "caf\u00e9 table"
QUALIFIERS = (
    "vintage", "antique", "rare", "retro", "boxed", "signed", "original", "limited", "large",
    "small", "french", "english", "german", "japanese", "victorian", "edwardian",
)
NOUNS = (
    "Set", "Collection", "Figure", "Lamp", "Vase", "Camera", "Watch", "Guitar", "Console", "Book",
    "Plate", "Clock", "Bundle", "Job Lot", "Box", "Tray", "Jug", "Mirror", "Poster", "Brooch",
    "Caf\u00e9 Set",
)
TAILS = ("NR", "L@@K", "Mint", "Boxed", "c.1920", "No Reserve")
SELLERS = (
    "atticfinds", "bargainbarn", "curiocorner", "oldtimetrader", "kidsattic", "gadgetgarage",
    "retrorepublic", "shelfclearers", "boxfresh", "hobbyhaven",
)
FOREIGN_PRICES = ("GBP ", "AU $", "C $", "EUR ")

NO_PICTURE, CAMERA_ICON, GALLERY_PICTURE = range(3)

GREEN_FONT = '<font color="#009900">'
BIN_ICON = '<img src="/pics/bin.gif" width="46" height="13" alt="Buy It Now" border="0">'
# Endings of titles that hold every entity and tag the scanner decodes.
ENTITY_TAILS = ("Collector&#39;s Piece", "12&quot; Display", "&#34;Mint&#34;", "Tom &#38; Jerry",
                "Extra<wbr>Large</wbr>")

# Rows that a listing scan has to get through, by row number on every listing page, so that a page
# of six rows holds each of them. Row 0 keeps what chance gave it: the first row of a listing stays
# put whatever is added here.
AWKWARD_ROWS = {
    # No bids and no whole day left: on the wrong side of "more than 0" and the right side of
    # "less than 1", for bids and days alike.
    1: dict(bids="-", time_left="23h 59m"),
    # Thousands separators and a price cell with no tags around the price.
    2: dict(bids="0", cents=123_456, markup="{}"),
    # Site USA: a price in another currency, which the price rule rejects. Site UK: a one-character
    # cell between the bids and the time left, which the scanner steps over.
    3: dict(foreign=True, before_time=" "),
    # An empty time-left cell drops the item; on Site UK the cell before it is there, or the
    # scanner would read the cell after it instead.
    4: dict(time_left=""),
    # Site UK: the time left straight after the bids, with no icon cell between.
    5: dict(entities=True, before_time=None),
}


def decode_entities(html: str) -> str:
    """The name or title as the programs show it after cutting it out of a page."""
    for old, new in (("&#34;", '"'), ("&#38;", "&"), ("&#39;", "'"), ("<wbr>", ""), ("</wbr>", ""),
                     ("<b>", ""), ("</b>", ""), ("&amp;", "&"), ("&quot;", '"')):
        html = html.replace(old, new)
    return html


def c_atoi(text: str) -> int:
    """A count text's sort value as the program reads it: "25,487" is 25, an empty text 0."""
    match = re.match(r"[ \t\n\v\f\r]*([+-]?[0-9]+)", text)
    return int(match[1]) if match else 0


def day_mix(*numbers: int) -> int:
    """A well-mixed 32-bit number from a few small ones. The day's changes draw from this rather than
    from the generator's random streams, which must go on giving day 0 exactly as before."""
    value = 0x9E3779B9
    for number in numbers:
        value = ((value ^ number) * 0x85EBCA6B + 0xC2B2AE35) & 0xFFFFFFFF
        value ^= value >> 13
    return value


def upper(text: str) -> str:
    """Upper case as the program's single-byte strings have it: ASCII letters only."""
    return text.encode(ENCODING).upper().decode(ENCODING)


def trim(text: str) -> str:
    return text.strip(" \t\n\v\f\r")


def matches_keywords(title: str, keywords: str) -> bool:
    """The query's keyword test: any comma-separated field, trimmed, inside the title, case
    ignored. An empty field (and so an empty list) matches every title."""
    title = upper(title)
    return any(trim(field) in title for field in upper(trim(keywords)).split(","))


def parse_price(text: str) -> int:
    """A price text's whole currency units as a query reads them; -1 rejects the item."""
    for mark in ("GBP", "EUR", "AU", "$", "\u00a3", ","):
        text = text.replace(mark, "")
    if " " in text:
        return -1
    match = re.match(r"[0-9]+", text)
    return int(match[0]) if match else 0


def parse_days_left(text: str) -> int:
    """Whole days in a time-left text: the digits before the first "d", 0 without one."""
    end = text.find("d")
    if end < 0:
        return 0
    match = re.match(r"[0-9]+", text[:end])
    return int(match[0]) if match else 0


def passes(test, value: int) -> bool:
    """One filter group: None (any), ("gt", n), ("lt", n) or ("range", a, b). A bound of -1
    stands for no bound, as the query settings write an empty one."""
    if test is None:
        return True
    kind, *bounds = test
    if all(bound == -1 for bound in bounds):
        return True
    if kind == "gt":
        return value > bounds[0]
    if kind == "lt":
        return value < bounds[0]
    if kind == "range":
        return bounds[0] <= value <= bounds[1]
    raise ValueError(f"unknown filter {test!r}")


def slug(text: str) -> str:
    return re.sub(r"[^A-Za-z0-9]+", "-", text).strip("-")


def money(cents: int) -> str:
    return f"{cents // 100:,}.{cents % 100:02d}"


def random_title(rng: random.Random, keywords) -> str:
    """An item title around one of the keywords, the better-ranked ones more often."""
    if keywords:
        keyword = rng.choices(keywords, [1 / rank for rank in range(1, len(keywords) + 1)])[0]
    else:
        keyword = rng.choice(STEMS)
    words = []
    if rng.random() < 0.4 and keyword.split()[0] not in QUALIFIERS:
        words.append(rng.choice(QUALIFIERS).title())
    noun = rng.choice(NOUNS)
    words += [keyword.title()] + ([] if keyword.endswith(noun.lower()) else [noun])
    extra = rng.random()
    if extra < 0.12:
        words.append("&amp; " + rng.choice(NOUNS))
    elif extra < 0.25:
        words.append(rng.choice(TAILS))
    title = " ".join(words)
    return "<b>NEW</b> " + title if rng.random() < 0.08 else title


def random_bids(rng: random.Random) -> str:
    draw = rng.random()
    if draw < 0.22:
        return "-"
    if draw < 0.25:
        return "0"
    return str(rng.randint(1, 30) if draw < 0.85 else rng.randint(31, 120))


def random_time_left(rng: random.Random) -> str:
    days, rest = divmod(rng.randint(60, 10 * 86400 - 1), 86400)
    hours, minutes = rest // 3600, rest % 3600 // 60
    if days:
        return f"{days}d {hours:02d}h {minutes:02d}m"
    return f"{hours}h {minutes:02d}m" if hours else f"{minutes}m"


# --- Sites and their catalogue -------------------------------------------------------------------

@dataclass(frozen=True)
class Site:
    index: int           # part of every seed, so the two sites differ
    name: str
    domain: str          # "ebay.com": the domain suffix is "." + domain
    currency_mark: str

    @property
    def listing_host(self) -> str:
        return "listings." + self.domain

    @property
    def item_host(self) -> str:
        return "cgi." + self.domain

    @property
    def sign_in_host(self) -> str:
        return "cgi1." + self.domain

    @property
    def search_host(self) -> str:
        return "search." + self.domain

    @property
    def is_uk(self) -> bool:
        return self.domain.endswith(".uk")


USA = Site(0, "USA", "ebay.com", "$")
UK = Site(1, "UK", "ebay.co.uk", "\u00a3")


@dataclass(frozen=True)
class KeywordLine:
    """One "~KEYWORD~" line of a list file."""
    keywords: tuple      # the well-formed pairs, in rank order
    dangling: str = ""   # a last keyword whose pair lacks its closing separator: readers keep it
                         # with an empty search link


# Sub-categories whose keyword lines a reader of the list file has to get through, by (category,
# sub-category) position. Places beyond the knobs, or in the category left without sub-categories,
# are simply not there.
NONE_KNOWN, DANGLING, REPLACED, LONE_DANGLING = range(4)
ODD_KEYWORD_LINES = {
    (1, 0): NONE_KNOWN,     # the first sub-category of a category, with no known keywords
    (2, 3): DANGLING,       # the last pair lacks its closing separator
    (3, 1): REPLACED,       # two keyword lines: the second one counts
    (4, 2): LONE_DANGLING,  # a lone unfinished pair: one keyword without a search link
}


@dataclass(frozen=True)
class SubCategory:
    site: Site
    cat_index: int
    index: int
    html_name: str
    count_text: str      # as the home page writes it inside "(...)", thousands separators included
    lines: tuple         # its KeywordLines in file order
    category_path: str   # "/Name_W0QQsacatZ1000"

    @functools.cached_property
    def listed(self) -> tuple | None:
        """The keyword array a reader of the list file ends with; None without a keyword line."""
        if not self.lines:
            return None
        last = self.lines[-1]
        return last.keywords + ((last.dangling,) if last.dangling else ())

    @functools.cached_property
    def keywords(self) -> tuple:
        """Its known keywords in rank order, which item titles are made of."""
        return tuple(kw for kw in self.lines[-1].keywords if kw != NO_KNOWN_KEYWORDS) if self.lines else ()

    @property
    def ident(self) -> int:
        return (self.cat_index + 1) * 1000 + self.index + 1

    @property
    def name(self) -> str:
        return decode_entities(self.html_name)

    @property
    def path(self) -> str:
        return f"{self.category_path}/{slug(self.name)}_W0QQsacatZ{self.ident}"

    @property
    def url(self) -> str:
        return f"http://{self.site.listing_host}{self.path}/list/{LISTING_COMMAND}"


@dataclass(frozen=True)
class Category:
    site: Site
    index: int
    html_name: str
    count: int
    subs: tuple
    keywords: tuple

    @property
    def ident(self) -> int:
        return (self.index + 1) * 1000

    @property
    def name(self) -> str:
        return decode_entities(self.html_name)

    @property
    def path(self) -> str:
        return f"/{slug(self.name)}_W0QQsacatZ{self.ident}"

    @property
    def url(self) -> str:
        return f"http://{self.site.listing_host}{self.path}/list/"


@dataclass(frozen=True)
class Item:
    number: int
    sub: SubCategory
    page: int
    row: int
    title: str           # as the listing writes it: entities and bold tags included
    price: str           # as shown, currency mark included
    green_price: bool    # a Buy It Now price, shown in a font tag on Site USA
    bids: str            # "-" when nobody has bid
    time_left: str       # empty in a few rows: the scanner drops those
    picture: int
    seller: str
    price_markup: str    # the price cell's content around "{}", which stands for the price
    before_time: str | None  # Site UK: the cell between bids and time left, None for no cell

    @property
    def link(self) -> str:
        """The item's address as a listing page writes it, with its ampersands as entities."""
        return (f"http://{self.sub.site.item_host}/ws/eBayISAPI.dll?ViewItem&amp;category="
                f"{self.sub.ident}&amp;item={self.number}&amp;rd=1")

    @property
    def bid_count(self) -> int:
        return int(self.bids) if self.bids.isdigit() else 0


class SiteContent:
    """The pages of one site, built from its catalogue on request."""

    def __init__(self, site: Site, knobs: "SiteGenerator"):
        self.site = site
        self.knobs = knobs
        self.preamble = ()  # keywords listed before the first category
        self.categories = self._build_catalogue()
        self._home_page = self._category_list = None  # built when first asked for
        self.subs_by_id = {sub.ident: sub for cat in self.categories for sub in cat.subs}
        self.cats_by_id = {cat.ident: cat for cat in self.categories}

    # -- catalogue --

    def _html_name(self, text: str) -> str:
        if self.site.is_uk:
            for old, new in UK_SPELLING:
                text = text.replace(old, new)
        return text

    def _keyword_count(self, rng: random.Random) -> int:
        # The knob is the most an item gets; the fewest is two fifths of it, rounded up.
        most = self.knobs.keywords
        return rng.randint(max(1, (2 * most + 4) // 5), most)

    def _ranked(self, top: str, rng: random.Random, phrases) -> tuple:
        count = self._keyword_count(rng)
        others = [p for p in rng.sample(phrases, min(len(phrases), count + 1)) if p != top]
        return (top, *others[: count - 1])

    def _build_catalogue(self) -> list:
        knobs = self.knobs
        rng = random.Random(f"catalogue/{self.site.index}")
        phrases = list(STEMS) + [f"{q} {s}" for q in QUALIFIERS for s in STEMS]
        rng.shuffle(phrases)
        phrases.insert(5, phrases.pop(phrases.index(ACCENTED_STEM)))
        # Each item its own top keyword while they last, so that a reader's mistake about which
        # keyword line or pair counts shows in the Top 100 list.
        tops = itertools.cycle(phrases)
        # A category without sub-categories sits just before the last one, so that the first
        # category (what tests reach for) and the last one (whose last count lacks its ")") keep
        # theirs.
        empty = knobs.categories - 2 if knobs.categories >= 3 else -1
        categories = []
        for ci in range(knobs.categories):
            name, sub_names = CATALOGUE[ci] if ci < len(CATALOGUE) else \
                (f"Everything Else {ci + 1}", ())
            name = self._html_name(name)
            subs = [] if ci == empty else self._build_subs(ci, name, sub_names, rng, phrases, tops)
            # A category's top keyword is nobody else's: categories never enter the Top 100.
            top = next(tops)
            pool = list(dict.fromkeys(kw for sub in subs for kw in sub.keywords if kw != top))
            rest = rng.sample(pool or phrases, min(len(pool or phrases),
                                                   self._keyword_count(rng) - 1))
            count = sum(int(sub.count_text.replace(",", "")) for sub in subs)
            categories.append(Category(self.site, ci, name, count or rng.randint(50, 5000),
                                       tuple(subs), (top, *rest)))
        # Keywords that come before the first category belong to the Top 100 item, which the
        # Top 100 list then replaces.
        self.preamble = tuple(next(tops) for _ in range(3))
        return categories

    def _build_subs(self, ci: int, cat_name: str, names, rng, phrases, tops) -> list:
        knobs = self.knobs
        cat_path = f"/{slug(decode_entities(cat_name))}_W0QQsacatZ{(ci + 1) * 1000}"
        subs = []
        for si in range(knobs.subcategories):
            name = self._html_name(names[si]) if si < len(names) else f"More {cat_name} {si + 1}"
            if ci == 0 and " " in name and not any("<b>" in sub.html_name for sub in subs):
                # A bold word inside a name, which the counts reader must strip. Never the last
                # word, or the anchor would end like a top-level category's.
                first, rest = name.split(" ", 1)
                name = f"<b>{first}</b> {rest}"
            count = rng.randint(1000, 99999) if si % 2 == 0 else rng.randint(3, 999)
            ident = (ci + 1) * 1000 + si + 1
            if knobs.day:
                count = count * (80 + day_mix(self.site.index, ident, knobs.day) % 41) // 100
            top = next(tops)
            if ci == 0 and si == 1:
                top = subs[0].keywords[0]  # shared, so listed once in the Top 100
            odd = ODD_KEYWORD_LINES.get((ci, si))
            if odd == NONE_KNOWN or (ci == knobs.categories - 1 and si == knobs.subcategories - 1):
                lines = (KeywordLine((NO_KNOWN_KEYWORDS,)),)  # also the site's very last one
            elif odd == LONE_DANGLING:
                lines = (KeywordLine((), dangling=top),)
            else:
                lines = (KeywordLine(self._ranked(top, rng, phrases)),)
                if odd == DANGLING:
                    lines = (KeywordLine(lines[0].keywords, dangling=rng.choice(phrases)),)
                elif odd == REPLACED:
                    lines = (KeywordLine(self._ranked(next(tops), rng, phrases)), *lines)
                elif knobs.day and day_mix(self.site.index, ident, knobs.day, 1) % 8 == 0:
                    first, *rest = lines[0].keywords
                    lines = (KeywordLine((*rest[:1], first, *rest[1:])),)
            subs.append(SubCategory(self.site, ci, si, name, f"{count:,}", lines, cat_path))
        return subs

    def search_url(self, keyword: str, ident: int) -> str:
        return f"http://{self.site.search_host}/{slug(keyword).lower()}_W0QQsacatZ{ident}"

    # -- items --

    def listed_day(self, sub: SubCategory, page: int, row: int) -> int:
        """The day the item in a listing row was put there: each day after day 0 takes the row
        with a chance of one in five, and the item stays until another day takes the row."""
        for day in range(self.knobs.day, 0, -1):
            if day_mix(self.site.index, sub.ident, page, row, day) % 5 == 0:
                return day
        return 0

    def item(self, sub: SubCategory, page: int, row: int, day: int | None = None) -> Item:
        """One row of a listing: each row has a seed of its own, so any row costs the same. An item
        listed after day 0 (`day`, by default the one the row shows now) has a seed and a number of
        its own."""
        if day is None:
            day = self.listed_day(sub, page, row)
        seed = ((self.site.index * 1_000_000 + sub.ident) * 1000 + page) * 100_000 + row
        rng = random.Random(f"{seed}/{day}" if day else seed)
        title = random_title(rng, sub.keywords)
        cents = max(99, rng.randint(0, 10 ** rng.randint(1, 4)) * 100
                    + rng.choice((99, 0, 50, rng.randint(1, 98))))
        price = self.site.currency_mark + money(cents)
        if not self.site.is_uk and rng.random() < 0.05:
            price = rng.choice(FOREIGN_PRICES) + money(cents)  # queries drop these
        green = rng.random() < 0.15
        bids = random_bids(rng)
        time_left = random_time_left(rng)
        picture = rng.choices((NO_PICTURE, CAMERA_ICON, GALLERY_PICTURE), (4, 3, 3))[0]
        seller = f"{rng.choice(SELLERS)}{rng.randint(1, 99)}"
        # Drawn last, so that the draws above, and so the rows they make, stay as they were.
        draw = rng.random()
        markup = "{}" if draw < 0.15 else "<b>{}</b>"
        if green and not self.site.is_uk:
            markup = (f"{GREEN_FONT}{markup}</font>" if draw < 0.6 else
                      f"<b>{GREEN_FONT}{{}}</font></b>")
        before_time = BIN_ICON if green else ""
        awkward = AWKWARD_ROWS.get(row, {})
        if row == 0 and page > 1:
            # Site USA reads a picture link only in a page's first row: later rows are looked for
            # from their title cell on.
            picture = CAMERA_ICON if page % 2 == 0 else GALLERY_PICTURE
        if "cents" in awkward:
            price = self.site.currency_mark + money(awkward["cents"])
        if awkward.get("foreign") and not self.site.is_uk:
            foreign = FOREIGN_PRICES[(page + sub.index + sub.cat_index) % len(FOREIGN_PRICES)]
            price = foreign + money(cents)
        if awkward.get("entities"):
            title += " " + ENTITY_TAILS[(page + sub.index + sub.cat_index) % len(ENTITY_TAILS)]
        bids = awkward.get("bids", bids)
        time_left = awkward.get("time_left", time_left)
        markup = awkward.get("markup", markup)
        before_time = awkward.get("before_time", before_time)
        # The day goes between the sub-category and the page: at least 8 digits ahead of the last 8,
        # which no sub-category's number reaches, so the two forms never read as each other.
        number = int(f"{sub.ident}{day:04d}{page:03d}{row + 1:05d}" if day else
                     f"{sub.ident}{page:03d}{row + 1:05d}")
        return Item(number, sub, page, row, title, price, green, bids, time_left, picture, seller,
                    markup, before_time)

    def item_by_number(self, number: str) -> Item | None:
        if not number.isdigit() or len(number) < 12:
            return None
        sub, day = self.subs_by_id.get(int(number[:-8])), 0
        if sub is None and len(number) >= 16:
            sub, day = self.subs_by_id.get(int(number[:-12])), int(number[-12:-8])
        page, row = int(number[-8:-5]), int(number[-5:]) - 1
        if sub is None or not 1 <= page <= self.knobs.pages or not 0 <= row < self.knobs.items:
            return None
        # An item replaced since keeps its page; one listed after today has none yet.
        return self.item(sub, page, row, day) if day <= self.knobs.day else None

    def hot_items(self, wanted: int) -> list:
        """Well-bid items priced in the site's own currency, one per sub-category at most."""
        found = []
        for sub in self.subs_by_id.values():
            for row in range(min(self.knobs.items, 200)):
                item = self.item(sub, 1, row)
                if item.bid_count > 30 and item.price.startswith(self.site.currency_mark):
                    found.append(item)
                    break
            if len(found) == wanted:
                break
        return found

    # -- pages --

    def _page(self, title: str, body: str) -> bytes:
        site = self.site
        return (
            "<html>\n<head>\n"
            f"<title>{title}</title>\n"
            '<meta http-equiv="Content-Type" content="text/html; charset=windows-1252">\n'
            "</head>\n<body bgcolor=\"#ffffff\">\n"
            '<table width="100%" border="0" cellpadding="0" cellspacing="0"><tr>\n'
            f'<td><a href="http://{site.listing_host}/"><img src="http://{site.listing_host}'
            '/pics/logo.gif" width="150" height="70" alt="eBay" border="0"></a></td>\n'
            f'<td align="right"><a href="http://{site.sign_in_host}/aw-cgi/eBayISAPI.dll?'
            'MyEbayLogin">Sign in</a></td>\n'
            "</tr></table>\n"
            f"{body}"
            # No parentheses down here: the counts reader looks for the ")" of the page's last
            # count until the end of the page.
            "<p><small>Copyright &copy; 1995-2005 eBay Inc. All Rights Reserved.</small></p>\n"
            "</body>\n</html>\n"
        ).encode(ENCODING)

    def _category_block(self, cat: Category, last_count_open: bool) -> str:
        # The category anchor is relative: its link is what the programs later search the page
        # for, and the first occurrence of the listing host after it must be in the first
        # sub-category link, never in the category's own.
        lines = [f'<p><a href="{cat.path}/list/"><b>{cat.html_name}</b></a> ({cat.count:,})<br>\n']
        for sub in cat.subs:
            close = "" if last_count_open and sub is cat.subs[-1] else ")"
            lines.append(f'<a href="{sub.url}">{sub.html_name}</a> ({sub.count_text}{close}<br>\n')
        # Absolute and without "ListingItemList": this link ends the category for the readers.
        lines.append(f'<a href="{cat.url}">more...</a></p>\n')
        return "".join(lines)

    def home_page(self) -> bytes:
        if self._home_page is None:
            self._home_page = self._build_home_page()
        return self._home_page

    def _build_home_page(self) -> bytes:
        half = (len(self.categories) + 1) // 2
        columns = []
        for part in (self.categories[:half], self.categories[half:]):
            blocks = [self._category_block(cat, cat is self.categories[-1]) for cat in part]
            columns.append('<td valign="top" width="50%">\n' + "".join(blocks) + "</td>\n")
        body = ("<h2>All Categories</h2>\n"
                "<p>Choose a category to see the items listed in it today.</p>\n"
                '<table width="100%" border="0" cellpadding="4" cellspacing="0"><tr>\n'
                + "".join(columns) + "</tr></table>\n")
        return self._page("eBay Listings - All Categories", body)

    def category_page(self, cat: Category) -> bytes:
        body = (f'<p><a href="/">All Categories</a> &gt; <b>{cat.html_name}</b></p>\n'
                f"<h2>{cat.html_name}</h2>\n" + self._category_block(cat, False))
        return self._page(f"eBay: {cat.html_name}", body)

    def _picture_cell(self, item: Item) -> str:
        if item.picture == CAMERA_ICON:
            return (f'<a href="{item.link}"><img src="/pics/camera.gif" width="16" height="15" '
                    'alt="Listing has pictures" border="0"></a>')
        if item.picture == GALLERY_PICTURE:
            # The scanner cuts the title out of this image's title attribute, up to the quote
            # two characters before "alt=".
            plain = re.sub(r"</?(?:b|wbr)>", "", item.title)
            return (f'<a href="{item.link}"><img src="/pics/thumbs/{item.number}.gif" '
                    f'title="{plain}" alt="{plain}" width="64" height="48" border="0"></a>')
        return "&nbsp;"

    def _usa_row(self, item: Item) -> str:
        # One table per item. The next row is looked for from the second cell of the next table,
        # which skips its picture link and lands on its title link. The scanner cuts the price
        # from the ">" before its currency mark to the end of the span and then drops only the
        # closing font and bold tags: nothing else may stand between the mark and "</span>".
        return (
            '<table width="100%" border="0" cellpadding="3" cellspacing="0"><tr>\n'
            f'<td width="70">{self._picture_cell(item)}</td>\n'
            f'<td><a href="{item.link}">{item.title}</a></td>\n'
            f'<td align="right" width="110"><span class="price">'
            f"{item.price_markup.format(item.price)}</span></td>\n"
            f'<td align="center" width="50">{item.bids}</td>\n'
            f'<td align="right" width="100">{item.time_left}</td>\n'
            "</tr></table>\n")

    def _uk_row(self, item: Item) -> str:
        # The cell after the bids, when there is one, holds at most an icon or one character: the
        # scanner then reads the time left from the cell after it. A longer text there (even
        # "&nbsp;") would be taken for the time left. So would the next row's first cell, or the
        # pager's, after an empty time left with no such cell before it.
        before = ("" if item.before_time is None else
                  f'<td align="center" width="30">{item.before_time}</td>\n')
        return (
            "<tr>\n"
            f'<td width="70">{self._picture_cell(item)}</td>\n'
            f'<td><a href="{item.link}">{item.title}</a></td>\n'
            f'<td align="right" width="90">{item.price_markup.format(item.price)}</td>\n'
            f'<td align="center" width="50">{item.bids}</td>\n'
            f"{before}"
            f'<td align="right" width="100">{item.time_left}</td>\n'
            "</tr>\n")

    def _item_rows(self, items) -> str:
        if self.site.is_uk:
            return ('<table width="100%" border="0" cellpadding="3" cellspacing="0">\n'
                    '<tr bgcolor="#ccccff"><th>Picture</th><th>Item Title</th><th>Price</th>'
                    "<th>Bids</th><th>&nbsp;</th><th>Time Left</th></tr>\n"
                    + "".join(self._uk_row(item) for item in items) + "</table>\n")
        return ('<table width="100%" border="0" cellpadding="3" cellspacing="0" bgcolor="#ccccff">'
                "<tr><th>Picture</th><th>Item Title</th><th>Price</th><th>Bids</th>"
                "<th>Time Left</th></tr></table>\n"
                + "".join(self._usa_row(item) for item in items))

    @staticmethod
    def _pager(page: int, pages: int, href) -> str:
        # Always a table after the last row: the USA scanner looks for the next row from inside
        # the next table. "Next" is the last capital N before the continue marker, and its
        # anchor's address is what the scanner follows.
        links = []
        if page > 1:
            links.append(f'<a href="{href(page - 1)}">&lt; Previous</a>')
        first = max(1, min(page - 4, pages - 9))
        for k in range(first, min(pages, first + 9) + 1):
            links.append(f"<b>{k}</b>" if k == page else f'<a href="{href(k)}">{k}</a>')
        if page < pages:
            links.append(f'<a href="{href(page + 1)}">Next <img src="/pics/arrow_next.gif" '
                         'width="9" height="9" border="0" title="Continue" alt=""></a>')
        return ('<table width="100%" border="0" cellpadding="4" cellspacing="0"><tr>\n'
                f"<td>Page {page} of {pages}</td>\n"
                f'<td align="right">{" | ".join(links)}</td>\n'
                "</tr></table>\n")

    def listing_page(self, sub: SubCategory, view: str, tail: str) -> bytes | None:
        match = re.search(r"QQfrpgZ(\d+)", tail)
        page = int(match.group(1)) if match else 1
        if not 1 <= page <= self.knobs.pages:
            return None
        base = f"{sub.path}/{view}/{re.sub(r'QQfrpgZ[0-9]+', '', tail)}"

        def href(k: int) -> str:
            return base + (f"QQfrpgZ{k}" if k > 1 else "")

        cat = self.categories[sub.cat_index]
        items = (self.item(sub, page, row) for row in range(self.knobs.items))
        body = (f'<p><a href="/">All Categories</a> &gt; <a href="{cat.path}/list/">'
                f"{cat.html_name}</a> &gt; {sub.html_name}</p>\n"
                f"<p><b>{sub.count_text}</b> items found. Page {page} of {self.knobs.pages}.</p>\n"
                + self._item_rows(items) + self._pager(page, self.knobs.pages, href))
        return self._page(f"eBay: {decode_entities(sub.html_name)} items", body)

    def search_page(self, keyword: str, ident: int) -> bytes:
        cat = self.cats_by_id.get(ident)
        subs = cat.subs if cat else [s for s in (self.subs_by_id.get(ident),) if s]
        # Compared as slugs: that is all a search link keeps of a keyword with an accent.
        wanted = slug(keyword).upper()
        found = []
        for sub in subs:
            for row in range(min(self.knobs.items, 200)):
                item = self.item(sub, 1, row)
                if wanted in slug(decode_entities(item.title)).upper():
                    found.append(item)
            if len(found) >= 50:
                break
        body = (f"<h2>Search results for &quot;{keyword}&quot;</h2>\n"
                f"<p><b>{len(found)}</b> items found.</p>\n"
                + self._item_rows(found[:50]) + self._pager(1, 1, lambda k: "/"))
        return self._page(f"eBay search: {keyword}", body)

    def item_page(self, item: Item) -> bytes:
        site, plain = self.site, decode_entities(item.title)
        cgi = f"http://{site.item_host}/ws/eBayISAPI.dll"
        # "History" first appears right before the bid history link; the two seller links are the
        # anchors just before their texts.
        body = (
            f'<p>Back to list of items: <a href="{item.sub.url}">{item.sub.html_name}</a></p>\n'
            f"<h2>{item.title}</h2>\n"
            f"<p>Item number: {item.number}</p>\n"
            '<table border="0" cellpadding="3" cellspacing="0">\n'
            f"<tr><td>Current bid:</td><td><b>{item.price}</b></td></tr>\n"
            f"<tr><td>Time left:</td><td>{item.time_left}</td></tr>\n"
            f'<tr><td>Bid History:</td><td><a href="{cgi}?ViewBids&amp;item={item.number}">'
            f"{item.bid_count} bids</a></td></tr>\n"
            "</table>\n"
            '<table border="1" cellpadding="4" cellspacing="0"><tr><td>\n'
            "<b>Seller information</b><br>\n"
            f"{item.seller}<br>\n"
            f'<a href="{cgi}?ViewFeedback&amp;userid={item.seller}">'
            "Read feedback comments</a><br>\n"
            f'<a href="{cgi}?ViewListedItems&amp;userid={item.seller}&amp;item={item.number}">'
            "<b>View seller's other items</b></a>\n"
            "</td></tr></table>\n"
            f"<p>{plain}: described by the seller as seen.</p>\n")
        return self._page(f"eBay item {item.number} - {plain}", body)

    def bids_page(self, item: Item) -> bytes:
        rng = random.Random(f"bids/{self.site.index}/{item.number}")
        rows = "".join(f"<tr><td>{rng.choice('abcdefghkmprstw')}***{rng.choice('aeiouy')}</td>"
                       f"<td>Bid {n + 1}</td></tr>\n" for n in range(item.bid_count))
        body = (f"<h2>Bid History for item {item.number}</h2>\n"
                f'<table border="1" cellpadding="3" cellspacing="0">\n{rows}</table>\n')
        return self._page(f"eBay bid history: {item.number}", body)

    def feedback_page(self, seller: str) -> bytes:
        rng = random.Random(f"feedback/{self.site.index}/{seller}")
        comments = ("Fast delivery, great item. A+++", "Well packed and as described",
                    "Excellent communication", "Would buy again")
        rows = "".join(f"<li>{rng.choice(comments)}</li>\n" for _ in range(rng.randint(3, 8)))
        body = f"<h2>Feedback for {seller}</h2>\n<ul>\n{rows}</ul>\n"
        return self._page(f"eBay feedback: {seller}", body)

    def seller_items_page(self, seller: str, item: Item | None) -> bytes:
        items = [item] if item else []
        body = f"<h2>Items for sale by {seller}</h2>\n" + self._item_rows(items)
        return self._page(f"eBay items of {seller}", body)

    def sign_in_page(self) -> bytes:
        body = ('<h2>Sign In</h2>\n<form method="post" action="/aw-cgi/eBayISAPI.dll">\n'
                '<input type="hidden" name="MfcISAPICommand" value="SignInWelcome">\n'
                'User ID: <input type="text" name="userid"><br>\n'
                'Password: <input type="password" name="pass"><br>\n'
                '<input type="submit" value="Sign In">\n</form>\n')
        return self._page("eBay Sign In", body)

    def category_list(self) -> bytes:
        if self._category_list is None:
            self._category_list = self._build_category_list()
        return self._category_list

    def _build_category_list(self) -> bytes:
        def keyword_line(line: KeywordLine, ident: int, url: str) -> str:
            # "No known keywords" links to the item's own listing, having no search of its own.
            def link(kw: str) -> str:
                return url if kw == NO_KNOWN_KEYWORDS else self.search_url(kw, ident)

            text = "~KEYWORD~" + "".join(f"{kw}~|~{link(kw)}~|~" for kw in line.keywords)
            return text + (f"{line.dangling}~|~{link(line.dangling)}" if line.dangling else "")

        lines = [keyword_line(KeywordLine(self.preamble), 0, "")]
        for cat in self.categories:
            lines.append(f"~CAT~{cat.name}~|~{cat.url}~|~")
            lines.append(keyword_line(KeywordLine(cat.keywords), cat.ident, cat.url))
            for sub in cat.subs:
                lines.append(f"~SUBCAT~{sub.name}~|~{sub.url}~|~")
                lines += [keyword_line(line, sub.ident, sub.url) for line in sub.lines]
        return "".join(line + "\r\n" for line in lines).encode(ENCODING)

    def top100(self) -> list:
        """The Top 100 keywords a reader of the list file derives, from the catalogue itself."""
        taken = {}  # a dict for its order
        for cat in self.categories:
            for sub in cat.subs:
                if not sub.name:
                    continue
                if sub.listed is None:
                    return list(taken)
                if sub.listed and sub.listed[0] != NO_KNOWN_KEYWORDS:
                    taken.setdefault(sub.listed[0])
        return list(taken)

    def scanned_row(self, item: Item) -> tuple:
        """(link, time left, title, price, bids) as a query's listing scan cuts them out of the
        item's row, before any test."""
        # The price cut runs from the currency mark to the end of the price span; the markup
        # around the price is only closing font and bold tags, which the cut drops.
        price = item.price if self.site.is_uk else upper(item.price)
        return (item.link.replace("&amp;", "&"), item.time_left, decode_entities(item.title),
                price, item.bids)

    def query_rows(self, category_names, page_depth: int, keywords: str = "", bids=None,
                   price=None, days=None) -> list:
        """The rows a query of these categories adds, as (ending, bids, price, title)."""
        # The query finds a category by its name as the home page shows it (the first category
        # of that name), then reads the sub-category listings that follow its link there.
        by_name = {}
        for cat in self.categories:
            by_name.setdefault(cat.name, cat)
        rows = []
        for name in category_names:
            cat = by_name.get(name)
            if cat is None:
                raise ValueError(f"no category named {name!r} on site {self.site.name}")
            for sub in cat.subs:
                for page in range(1, min(page_depth, self.knobs.pages) + 1):
                    for row in range(self.knobs.items):
                        link, time_left, title, shown, bid_text = \
                            self.scanned_row(self.item(sub, page, row))
                        if not matches_keywords(title, keywords):
                            continue
                        if not (link and time_left and title and shown):
                            continue
                        amount = parse_price(shown)
                        if amount == -1:
                            continue
                        if (passes(bids, c_atoi(bid_text)) and passes(price, amount)
                                and passes(days, parse_days_left(time_left))):
                            rows.append((trim(time_left), bid_text, shown, title))
        return rows

    def auction_rows(self) -> list:
        """(count text, name) of every sub-category, in home page order, as the counts reader
        takes them from the home page."""
        # The home page leaves the site's very last count without its ")": it reads as empty.
        unclosed = self.categories[-1].subs[-1:]
        return [("" if unclosed and sub is unclosed[0] else sub.count_text, sub.name)
                for cat in self.categories for sub in cat.subs]

    # -- routing --

    LISTING_PATH = re.compile(
        r"/[^/]+_W0QQsacatZ(?P<cat>\d+)/(?:[^/]+_W0QQsacatZ(?P<sub>\d+)/)?"
        r"(?P<view>list|newtoday/all|endtoday/all|going/all)/(?P<tail>[^/]*)")

    def listing_get(self, path: str, query: str) -> bytes | None:
        if path in ("", "/"):
            return self.home_page()
        if path.startswith("/pics/") and path.endswith(".gif"):
            return small_gif(sum(path.encode()) % 14 + 1)
        match = self.LISTING_PATH.fullmatch(path)
        if not match:
            return None
        cat = self.cats_by_id.get(int(match["cat"]))
        if cat is None:
            return None
        if match["sub"] is None:
            return self.category_page(cat)
        sub = self.subs_by_id.get(int(match["sub"]))
        if sub is None or sub.cat_index != cat.index:
            return None
        return self.listing_page(sub, match["view"], match["tail"])

    def item_get(self, path: str, query: str) -> bytes | None:
        if path != "/ws/eBayISAPI.dll":
            return None
        command, *pairs = query.replace("&amp;", "&").split("&")
        params = dict(pair.split("=", 1) for pair in pairs if "=" in pair)
        item = self.item_by_number(params.get("item", ""))
        seller = params.get("userid", "")
        if command == "ViewItem" and item:
            return self.item_page(item)
        if command == "ViewBids" and item:
            return self.bids_page(item)
        if command == "ViewFeedback" and seller:
            return self.feedback_page(seller)
        if command == "ViewListedItems" and seller:
            return self.seller_items_page(seller, item)
        return None

    def sign_in_get(self, path: str, query: str) -> bytes | None:
        if path == "/aw-cgi/eBayISAPI.dll" and query.startswith("MyEbayLogin"):
            return self.sign_in_page()
        return None

    def search_get(self, path: str, query: str) -> bytes | None:
        # Sort orders are appended to the search link as they are: /lego_W0QQsacatZ1001_W0QQ...
        match = re.match(r"/([A-Za-z0-9-]+)_W0QQsacatZ(\d+)", path)
        if not match:
            return None
        return self.search_page(match[1].replace("-", " "), int(match[2]))


# --- The shared hot item history ------------------------------------------------------------------

SEPARATOR = "~|~"


class HistoryLine(NamedTuple):
    """One line of the history file as written. A tuple: a big history has 100,000 of them."""
    link: str
    date: str            # the date field as written, white space around it included
    title: str
    price: str
    bids: str
    separators: int = 5  # how many fields, from the first, have their "~|~" after them
    end: str = "\r\n"

    def text(self) -> str:
        link, date, title, price, bids, separators, end = self
        if separators == 5:  # nearly every line; a big history is mostly these
            return f"{link}~|~{date}~|~{title}~|~{price}~|~{bids}~|~{end}"
        fields = (link, date, title, price, bids)
        return "".join(field + SEPARATOR if n < separators else field
                       for n, field in enumerate(fields)) + end

    def read(self) -> tuple:
        """(ending, title, price, bids) as a reader takes the line: a field without its own
        separator reads as empty, and the date loses the white space around it."""
        fields = (self.link, self.date.strip(), self.title, self.price, self.bids)
        return tuple(field if n < self.separators else "" for n, field in enumerate(fields))[1:]


# The awkward lines, by position within every run of HISTORY_PERIOD lines, so that the default
# history holds each once and a big one holds each many times. A position not listed gets a plain
# line of either site, by chance. Positions are 0-based: position 16 is the file's line 17.
HISTORY_PERIOD = 40
HISTORY_FIRST_DAY = datetime.date(2005, 3, 7)
LINES_PER_DAY = 3
AWKWARD_HISTORY = {
    0: dict(uk=False),
    1: dict(uk=True),
    3: dict(uk=False, bids="-"),
    6: dict(uk=True, date="  {} "),
    8: dict(uk=True, com_host=True),     # the UK list turns ".com" into ".co.uk" before opening
    10: dict(uk=True, bids="-"),
    12: dict(uk=False, price="$1,200.00"),
    14: dict(uk=True, bids="0"),         # sorts level with the "-" above, so after it
    # A reader that splits only at CR LF runs this line into the next and loses a UK row.
    16: dict(uk=True, end="\n"),
    17: dict(uk=True),
    19: dict(uk=True, price="GBP 1,200.00"),
    21: dict(uk=True, bids="30"),
    24: dict(uk=True, separators=4),     # its bids are written but read as empty
    27: dict(uk=True, com_host=True, bids="-"),
    29: dict(uk=False, bids="-"),
    31: dict(uk=False, date=" {}  "),
    33: dict(uk=False, bids="12"),
    36: dict(uk=False, separators=4),
    37: dict(uk=False, end="\n"),
    38: dict(uk=False),
}


def bids_sort_key(bids: str) -> tuple:
    """A Bids cell's place in an ascending sort of a history list: "-" counts as 0 and an empty
    text goes before every other."""
    text = bids.strip().replace("-", "0")
    if not text:
        return (0, 0)
    if not text.isdigit():
        # Other texts compare by rules that depend on the pair; the history never holds them.
        raise ValueError(f"unexpected bids text {bids!r}")
    return (1, int(text))


# --- Pictures ------------------------------------------------------------------------------------

def small_gif(colour: int) -> bytes:
    return gif(16, 16, [Frame(0, 0, 16, 16, bytes([colour]) * 256)])


def banner_gif(background: int, accent: int, disposal: int, steps: int) -> bytes:
    """A 120 x 60 banner: a framed face with three lines of 'text', then a block that moves."""
    width, height = 120, 60
    text_lines = ((10, 100), (20, 90), (30, 60))  # (top row, right end) of each line
    face = bytearray([background]) * (width * height)
    for y in range(height):
        for x in range(width):
            if x < 3 or y < 3 or x >= width - 3 or y >= height - 3:
                face[y * width + x] = 2
            elif any(top <= y < top + 4 and 8 <= x < end for top, end in text_lines):
                face[y * width + x] = 1
    frames = [Frame(0, 0, width, height, bytes(face), delay=80)]
    size = 14
    for step in range(steps):
        # The block's corners are transparent, so the face shows through them.
        block = bytes(15 if (x in (0, size - 1) and y in (0, size - 1)) else accent
                      for y in range(size) for x in range(size))
        frames.append(Frame(8 + step * 26, 40, size, size, block, delay=40, disposal=disposal,
                            transparent=15))
    return gif(width, height, frames, background, comment="Gavelscope banner")


# Minutes shown, the page a click opens, the picture on the FTP server, and how it is drawn.
BANNERS = (
    (1, "/offers/keywords.html", "KeywordsBanner.gif", (12, 4, 1, 3)),
    (2, "/offers/auctions.html", "AuctionsBanner.gif", (14, 11, 2, 4)),
    (1, "/offers/hotitems.html", "HotItemsBanner.gif", (5, 10, 3, 2)),
)


# --- The whole world -----------------------------------------------------------------------------

class SiteGenerator:
    """Both eBay sites plus the vendor's web and FTP content, from six size knobs and a day."""

    DEFAULTS = {"categories": 34, "subcategories": 10, "keywords": 25, "items": 25, "pages": 3,
                "history": 40, "day": 0}
    LIMITS = {"categories": (1, 99), "subcategories": (1, 999), "keywords": (1, 1000),
              "items": (1, 99999), "pages": (1, 999), "history": (0, 1_000_000), "day": (0, 9999)}

    def __init__(self, categories=DEFAULTS["categories"], subcategories=DEFAULTS["subcategories"],
                 keywords=DEFAULTS["keywords"], items=DEFAULTS["items"], pages=DEFAULTS["pages"],
                 history=DEFAULTS["history"], day=DEFAULTS["day"]):
        self.categories, self.subcategories, self.keywords = categories, subcategories, keywords
        self.items, self.pages, self.history, self.day = items, pages, history, day
        for name, (lowest, highest) in self.LIMITS.items():
            value = getattr(self, name)
            if not isinstance(value, int) or not lowest <= value <= highest:
                raise ValueError(f"{name} must be an integer from {lowest} to {highest}")
        self.usa = SiteContent(USA, self)
        self.uk = SiteContent(UK, self)
        self._routes = {PROBE_HOST: self._probe_get, VENDOR_HOST: self._vendor_get}
        for content in (self.usa, self.uk):
            self._routes[content.site.listing_host] = content.listing_get
            self._routes[content.site.item_host] = content.item_get
            self._routes[content.site.sign_in_host] = content.sign_in_get
            self._routes[content.site.search_host] = content.search_get

    def http_hosts(self) -> list:
        """Every host that a generated page or file links to."""
        return sorted(self._routes)

    def http_get(self, host: str, target: str) -> bytes | None:
        """The body for GET http://host/target, or None where the real server would say 404."""
        route = self._routes.get(host.lower())
        if route is None:
            return None
        path, _, query = target.partition("?")
        return route(path, query)

    def ftp_files(self) -> dict:
        files = {"HotItemList.txt": self.hot_item_list()}
        for _minutes, _page, name, look in BANNERS:
            files[name] = banner_gif(*look)
        return files

    def hot_item_list(self) -> bytes:
        """The shared history as copies of the program publish it: well-bid items of both sites."""
        return "".join(line.text() for line in self.history_lines).encode(ENCODING)

    @functools.cached_property
    def history_lines(self) -> list:
        """The history file's lines, oldest first. Line n is the same whatever the history knob,
        so a short history is the start of a long one."""
        # Each line names a real item (its pages are served), drawn from a few well-bid ones per
        # site: building an item per line would make a big history slow.
        pools = {}
        for content in (self.usa, self.uk):
            items = content.hot_items(64) or [content.item(sub, 1, 0)
                                              for sub in list(content.subs_by_id.values())[:64]]
            mark = "GBP " if content.site.is_uk else "$"
            pools[content.site.is_uk] = [
                (item.link.replace("&amp;", "&"), decode_entities(item.title),
                 mark + item.price[1:], item.bid_count, content.site.item_host)
                for item in items]
        rng = random.Random("history")
        lines = []
        day = HISTORY_FIRST_DAY - datetime.timedelta(days=1)
        for n in range(self.history):
            if n % LINES_PER_DAY == 0:
                day += datetime.timedelta(days=1)
                date = f"{day.day:02d}/{day.month:02d}/{day.year:4d}"
            draw = rng.getrandbits(32)  # one draw a line: a big history must stay quick
            awkward = AWKWARD_HISTORY.get(n % HISTORY_PERIOD)
            pool = pools[bool(draw & 1) if awkward is None else awkward["uk"]]
            link, title, price, bids, host = pool[(draw >> 1) % len(pool)]
            # Published again later, so with more bids than when first seen.
            bids = str(max(bids, 31) + (draw >> 20) % 30)
            if awkward is None:
                lines.append(HistoryLine(link, date, title, price, bids))
                continue
            if awkward.get("com_host"):
                link = link.replace(host, "cgi.ebay.com", 1)
            lines.append(HistoryLine(link, awkward.get("date", "{}").format(date), title,
                                     awkward.get("price", price), awkward.get("bids", bids),
                                     awkward.get("separators", 5), awkward.get("end", "\r\n")))
        return lines

    def top100_export(self, site: str) -> bytes:
        """What the program's Top 100 export writes for site "usa" or "uk", byte for byte."""
        content = {"usa": self.usa, "uk": self.uk}[site.lower()]
        lines = [f"{position}\t\t\t\t{keyword}\r\n"
                 for position, keyword in enumerate(content.top100(), 1)]
        return ("\tTodays Top 100 Keywords\r\n\r\nPosition\t\t\tKeyword\r\n\r\n"
                + "".join(lines)).encode(ENCODING)

    def auctions_export(self, site: str) -> bytes:
        """What the program's auction export writes for site "usa" or "uk", byte for byte."""
        content = {"usa": self.usa, "uk": self.uk}[site.lower()]
        # Stable: rows of equal value keep their page order.
        rows = sorted(content.auction_rows(), key=lambda row: -c_atoi(row[0]))
        lines = [f"{position}\t\t{count}\t\t{name}\r\n"
                 for position, (count, name) in enumerate(rows, 1)]
        return ("\t\t\tTodays Auctions\r\n\r\nPosition\tCount\tAuction\r\n\r\n"
                + "".join(lines)).encode(ENCODING)

    def history_export(self, site: str) -> bytes:
        """What the program's hot item history export writes for site "usa" or "uk", byte for
        byte: the site's lines in file order, then sorted by Bids, lowest first."""
        uk = {"usa": False, "uk": True}[site.lower()]
        rows = [line.read() for line in self.history_lines]
        # Stable: rows of equal bids keep their file order.
        rows = sorted((row for row in rows if ("GBP" in row[2]) == uk),
                      key=lambda row: bids_sort_key(row[3]))
        lines = [f"{ending}\t\t\t{bids}\t\t\t{price}\t\t\t{title}\r\n"
                 for ending, title, price, bids in rows]
        return ("\tHot Items History List\r\n\r\nDate Ended\t\t\tBids\t\t\tPrice\t\t\t"
                "Item Title\r\n\r\n" + "".join(lines)).encode(ENCODING)

    def query_rows(self, site: str, category_names, page_depth: int, keywords: str = "",
                   bids=None, price=None, days=None) -> list:
        """The rows a hot item query on site "usa" or "uk" finds, as (ending, bids, price, title)
        in the order the scan meets them. Each filter is None (any), ("gt", n), ("lt", n) or
        ("range", a, b)."""
        content = {"usa": self.usa, "uk": self.uk}[site.lower()]
        return content.query_rows(category_names, page_depth, keywords, bids, price, days)

    def query_export(self, site: str, category_names, page_depth: int, keywords: str = "",
                     bids=None, price=None, days=None) -> bytes:
        """The query's rows in the program's export row format, in scan order."""
        rows = self.query_rows(site, category_names, page_depth, keywords, bids, price, days)
        return "".join(f"{ending}\t\t\t{bids}\t\t\t{price}\t\t\t{title}\r\n"
                       for ending, bids, price, title in rows).encode(ENCODING)

    def banner_list(self) -> bytes:
        return "".join(f"{minutes}|http://{VENDOR_HOST}{page}|{name}|\r\n"
                       for minutes, page, name, _look in BANNERS).encode(ENCODING)

    def _probe_get(self, path: str, query: str) -> bytes | None:
        if path not in ("", "/"):
            return None
        return (f'<html><head><title>eBay UK</title></head><body>\n<h1>Welcome to eBay</h1>\n'
                f'<p><a href="http://{UK.listing_host}/">Browse all categories</a></p>\n'
                "</body></html>\n").encode(ENCODING)

    def _vendor_get(self, path: str, query: str) -> bytes | None:
        if path == "/CategoryListUSA.txt":
            return self.usa.category_list()
        if path == "/CategoryListUK.txt":
            return self.uk.category_list()
        if path == "/GavelscopeBanners.txt":
            return self.banner_list()
        offers = {page: name for _m, page, name, _l in BANNERS}
        if path in ("", "/") or path in offers:
            heading = "Gavelscope" if path in ("", "/") else offers[path].removesuffix(".gif")
            return ("<html><head><title>Gavelscope</title></head><body>\n"
                    f"<h1>{heading}</h1>\n"
                    "<p>Keyword / Auction / Hot Item Application for eBay sellers.</p>\n"
                    "</body></html>\n").encode(ENCODING)
        return None


# --- Command line --------------------------------------------------------------------------------

KNOB_HELP = {
    "categories": "top-level categories per site",
    "subcategories": "sub-categories per category (one category near the end has none)",
    "keywords": "most keywords per category or sub-category; the fewest is two fifths of it",
    "items": "items per listing page",
    "pages": "pages per listing",
    "history": "lines in the FTP server's hot item history",
    "day": "days the sites have moved on: counts, some top keywords and listing rows change",
}


def add_knob_arguments(parser: argparse.ArgumentParser, spelling=None):
    """The size knobs as options; `spelling` renames some (knob -> option) where a command's own
    option has the knob's name."""
    for knob, default in SiteGenerator.DEFAULTS.items():
        option = (spelling or {}).get(knob, knob)
        parser.add_argument(f"--{option}", dest=knob, type=int, default=default,
                            metavar=option.upper().replace("-", "_"),
                            help=f"{KNOB_HELP[knob]} (default {default})")


def generator_from_arguments(parser: argparse.ArgumentParser, args) -> SiteGenerator:
    try:
        return SiteGenerator(**{knob: getattr(args, knob) for knob in SiteGenerator.DEFAULTS})
    except ValueError as error:
        parser.error(str(error))


def add_filter_arguments(parser: argparse.ArgumentParser, group: str):
    choice = parser.add_mutually_exclusive_group()
    choice.add_argument(f"--{group}-greater", type=int, metavar="N", help=f"{group} above N")
    choice.add_argument(f"--{group}-less", type=int, metavar="N", help=f"{group} below N")
    choice.add_argument(f"--{group}-range", type=int, nargs=2, metavar=("A", "B"),
                        help=f"{group} from A to B, both included")


def filter_from_arguments(args, group: str):
    for kind, tag in (("greater", "gt"), ("less", "lt"), ("range", "range")):
        value = getattr(args, f"{group}_{kind}")
        if value is not None:
            return (tag, *value) if kind == "range" else (tag, value)
    return None


def main(argv=None) -> int:
    """`sitegen.py top100|auctions|history usa|uk [knobs]`: the expected export on standard
    output. `sitegen.py query-rows --site usa|uk --category NAME... --page-depth N [filters]
    [knobs, the keyword knob spelt --keyword-count]`: the rows a hot item query finds, one export
    row each, in scan order."""
    parser = argparse.ArgumentParser(description="Expected output for the stand-in sites.")
    commands = parser.add_subparsers(dest="command", required=True)
    for name in ("top100", "auctions", "history"):
        export = commands.add_parser(name)
        export.add_argument("site", choices=("usa", "uk"))
        add_knob_arguments(export)
    query = commands.add_parser("query-rows")
    query.add_argument("--site", choices=("usa", "uk"), required=True)
    query.add_argument("--category", action="append", required=True, metavar="NAME",
                       help="a category name as the listing home page shows it; repeatable")
    query.add_argument("--page-depth", type=int, required=True, metavar="N")
    query.add_argument("--keywords", dest="query_keywords", default="", metavar="TEXT",
                       help="the query's comma-separated keyword list")
    for group in ("bids", "price", "days"):
        add_filter_arguments(query, group)
    add_knob_arguments(query, {"keywords": "keyword-count"})
    args = parser.parse_args(argv)
    generator = generator_from_arguments(parser, args)
    if args.command == "query-rows":
        try:
            output = generator.query_export(
                args.site, args.category, args.page_depth, args.query_keywords,
                *(filter_from_arguments(args, group) for group in ("bids", "price", "days")))
        except ValueError as error:
            query.error(str(error))
    else:
        output = {"top100": generator.top100_export, "auctions": generator.auctions_export,
                  "history": generator.history_export}[args.command](args.site)
    sys.stdout.buffer.write(output)
    sys.stdout.buffer.flush()
    return 0


if __name__ == "__main__":
    sys.exit(main())
