// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Gavelscope developers
#include <benchmark/benchmark.h>

#include <cstdio>
#include <cstring>
#include <map>
#include <random>
#include <string>
#include <string_view>
#include <vector>

#include "base/TextHelpers.h"
#include "sites/AuctionScan.h"
#include "sites/CategoryAnchors.h"
#include "sites/ListingScan.h"
#include "sites/SiteProfile.h"

// Each scan is measured against a walk that finds the same markers in the same bytes with
// std::string_view::find and copies nothing: the least work any scan of that page could do. A plain
// memchr walk over every tag gives the floor beneath both.
namespace {

using gavelscope::base::Find;
using gavelscope::sites::SiteConfig;

const gavelscope::sites::Profile& Profile() {
  static const gavelscope::sites::Profile profile = gavelscope::sites::CompiledProfile();
  return profile;
}

// The same seed for every page size, so a 1 MB page is the start of the 5 MB one.
class Draw {
 public:
  int Below(int n) { return static_cast<int>(m_random() % static_cast<unsigned>(n)); }
  bool Chance(int percent) { return Below(100) < percent; }
  template <typename T, std::size_t N>
  const T& Pick(const T (&list)[N]) {
    return list[Below(static_cast<int>(N))];
  }

 private:
  std::mt19937 m_random{2005};
};

const char* const kQualifiers[] = {"Vintage", "Antique", "Rare", "Retro", "Boxed", "Signed", "Victorian", "French"};
const char* const kStems[] = {"Lego",    "Nokia",  "Zippo",     "Pyrex",     "Wedgwood", "Hornby",
                              "Meccano", "Corgi",  "Star Wars", "Beatles",   "Omega",    "Art Deco",
                              "Leica",   "Gibson", "Atari",     "Teddy Bear"};
const char* const kNouns[] = {"Set", "Collection", "Figure", "Lamp", "Vase",   "Camera", "Watch",
                              "Jug", "Job Lot",    "Box",    "Tray", "Mirror", "Brooch", "Clock"};
const char* const kTails[] = {"NR",
                              "L@@K",
                              "Mint",
                              "c.1920",
                              "No Reserve",
                              "Collector&#39;s Piece",
                              "12&quot; Display",
                              "Tom &#38; Jerry",
                              "Extra<wbr>Large</wbr>"};
const char* const kForeign[] = {"GBP ", "AU $", "C $", "EUR "};

std::string Money(int cents) {
  char text[32];
  if (cents >= 100000) {
    std::snprintf(text, sizeof text, "%d,%03d.%02d", cents / 100000, cents / 100 % 1000, cents % 100);
  } else {
    std::snprintf(text, sizeof text, "%d.%02d", cents / 100, cents % 100);
  }
  return text;
}

std::string Title(Draw& draw) {
  std::string title;
  if (draw.Chance(8)) title += "<b>NEW</b> ";
  if (draw.Chance(40)) title += std::string(draw.Pick(kQualifiers)) + " ";
  title += std::string(draw.Pick(kStems)) + " " + draw.Pick(kNouns);
  if (draw.Chance(12)) title += std::string(" &amp; ") + draw.Pick(kNouns);
  if (draw.Chance(15)) title += std::string(" ") + draw.Pick(kTails);
  return title;
}

std::string TimeLeft(Draw& draw) {
  char text[32];
  const int days = draw.Below(10);
  if (days > 0) {
    std::snprintf(text, sizeof text, "%dd %02dh %02dm", days, draw.Below(24), draw.Below(60));
  } else {
    std::snprintf(text, sizeof text, "%dh %02dm", draw.Below(24), draw.Below(60));
  }
  return text;
}

std::string Bids(Draw& draw) {
  return draw.Chance(22) ? "-" : std::to_string(draw.Below(120));
}

std::string PlainTitle(std::string title) {
  for (std::string_view tag : {"<b>", "</b>", "<wbr>", "</wbr>"}) gavelscope::base::ReplaceAll(title, tag, "");
  return title;
}

// One listing row's picture cell: none, a camera icon linking to the item, or a gallery picture
// whose title attribute holds the title.
std::string PictureCell(Draw& draw, const std::string& link, const std::string& title, long number) {
  const int kind = draw.Below(10);
  if (kind < 4) return "&nbsp;";
  if (kind < 7) {
    return "<a href=\"" + link +
           "\"><img src=\"/pics/camera.gif\" width=\"16\" height=\"15\" alt=\"Listing has pictures\" border=\"0\"></a>";
  }
  const std::string plain = PlainTitle(title);
  return "<a href=\"" + link + "\"><img src=\"/pics/thumbs/" + std::to_string(number) + ".gif\" title=\"" + plain +
         "\" alt=\"" + plain + "\" width=\"64\" height=\"48\" border=\"0\"></a>";
}

std::string PageStart(const SiteConfig& site) {
  return "<html>\n<head>\n<title>eBay: Antiques items</title>\n"
         "<meta http-equiv=\"Content-Type\" content=\"text/html; charset=windows-1252\">\n"
         "</head>\n<body bgcolor=\"#ffffff\">\n"
         "<table width=\"100%\" border=\"0\" cellpadding=\"0\" cellspacing=\"0\"><tr>\n"
         "<td><a href=\"http://" +
         site.listingHost + "/\"><img src=\"http://" + site.listingHost +
         "/pics/logo.gif\" width=\"150\" height=\"70\" alt=\"eBay\" border=\"0\"></a></td>\n"
         "<td align=\"right\"><a href=\"http://cgi1" +
         site.domainSuffix + "/aw-cgi/eBayISAPI.dll?MyEbayLogin\">Sign in</a></td>\n</tr></table>\n";
}

std::string PageEnd() {
  return "<p><small>Copyright &copy; 1995-2005 eBay Inc. All Rights Reserved.</small></p>\n</body>\n</html>\n";
}

// The pager after the last row, with the continue marker the scan looks for.
std::string Pager() {
  return "<table width=\"100%\" border=\"0\" cellpadding=\"4\" cellspacing=\"0\"><tr>\n<td>Page 1 of 5</td>\n"
         "<td align=\"right\"><b>1</b> | <a href=\"/Antiques_W0QQsacatZ1000/Maps_W0QQsacatZ1006/list/"
         "_W0QQsocmdZListingItemListQQsosortpropertyZ1QQfrpgZ2\">2</a> | <a href=\"/Antiques_W0QQsacatZ1000/"
         "Maps_W0QQsacatZ1006/list/_W0QQsocmdZListingItemListQQsosortpropertyZ1QQfrpgZ2\">Next <img "
         "src=\"/pics/arrow_next.gif\" width=\"9\" height=\"9\" border=\"0\" title=\"Continue\" alt=\"\"></a></td>\n"
         "</tr></table>\n";
}

// A listing page of `rows` items in the row layout of one site: one table per row on Site USA, one
// table of rows on Site UK.
std::string ListingPage(bool uk, int rows) {
  const SiteConfig& site = Profile().site(uk ? gavelscope::sites::Site::UK : gavelscope::sites::Site::USA);
  Draw draw;
  std::string page = PageStart(site);
  page +=
      "<p><a href=\"/\">All Categories</a> &gt; <a href=\"/Antiques_W0QQsacatZ1000/list/\">Antiques</a> &gt; "
      "Maps, Atlases &amp; Globes</p>\n<p><b>12,345</b> items found. Page 1 of 5.</p>\n";
  if (uk) {
    page +=
        "<table width=\"100%\" border=\"0\" cellpadding=\"3\" cellspacing=\"0\">\n<tr bgcolor=\"#ccccff\">"
        "<th>Picture</th><th>Item Title</th><th>Price</th><th>Bids</th><th>&nbsp;</th><th>Time Left</th></tr>\n";
  } else {
    page +=
        "<table width=\"100%\" border=\"0\" cellpadding=\"3\" cellspacing=\"0\" bgcolor=\"#ccccff\"><tr>"
        "<th>Picture</th><th>Item Title</th><th>Price</th><th>Bids</th><th>Time Left</th></tr></table>\n";
  }
  for (int row = 0; row < rows; ++row) {
    const long number = 1007001000000L + row;
    const std::string link = site.itemLinkPrefix + "=1007&amp;item=" + std::to_string(number) + "&amp;rd=1";
    const std::string title = Title(draw);
    const std::string picture = PictureCell(draw, link, title, number);
    const int cents = std::max(99, draw.Below(200000));
    const bool buyItNow = draw.Chance(15);
    const std::string bids = Bids(draw);
    const std::string timeLeft = TimeLeft(draw);
    if (uk) {
      const std::string price = std::string("\xA3").append(Money(cents));
      page +=
          "<tr>\n<td width=\"70\">" + picture + "</td>\n<td><a href=\"" + link + "\">" + title +
          "</a></td>\n<td align=\"right\" width=\"90\">" + (draw.Chance(15) ? price : "<b>" + price + "</b>") +
          "</td>\n<td align=\"center\" width=\"50\">" + bids + "</td>\n<td align=\"center\" width=\"30\">" +
          (buyItNow ? "<img src=\"/pics/bin.gif\" width=\"46\" height=\"13\" alt=\"Buy It Now\" border=\"0\">" : "") +
          "</td>\n<td align=\"right\" width=\"100\">" + timeLeft + "</td>\n</tr>\n";
    } else {
      const std::string price = (draw.Chance(5) ? draw.Pick(kForeign) : "$") + Money(cents);
      const std::string shown =
          buyItNow ? "<font color=\"#009900\"><b>" + price + "</b></font>" : "<b>" + price + "</b>";
      page += "<table width=\"100%\" border=\"0\" cellpadding=\"3\" cellspacing=\"0\"><tr>\n<td width=\"70\">" +
              picture + "</td>\n<td><a href=\"" + link + "\">" + title +
              "</a></td>\n<td align=\"right\" width=\"110\"><span class=\"price\">" + shown +
              "</span></td>\n<td align=\"center\" width=\"50\">" + bids + "</td>\n<td align=\"right\" width=\"100\">" +
              timeLeft + "</td>\n</tr></table>\n";
    }
  }
  if (uk) page += "</table>\n";
  return page + Pager() + PageEnd();
}

const char* const kCategoryNames[] = {"Antiques",
                                      "Art",
                                      "Baby",
                                      "Books",
                                      "Business &amp; Industrial",
                                      "Cameras &amp; Photo",
                                      "Cars, Parts &amp; Vehicles",
                                      "Clothing, Shoes &amp; Accessories",
                                      "Coins",
                                      "Collectibles",
                                      "Computers &amp; Networking",
                                      "Consumer Electronics",
                                      "Crafts",
                                      "Dolls &amp; Bears",
                                      "DVDs &amp; Movies",
                                      "Entertainment Memorabilia",
                                      "Gift Certificates",
                                      "Health &amp; Beauty",
                                      "Home &amp; Garden",
                                      "Jewelry &amp; Watches",
                                      "Music",
                                      "Musical Instruments",
                                      "Pet Supplies",
                                      "Pottery &amp; Glass",
                                      "Real Estate",
                                      "Services &amp; Repairs",
                                      "Sporting Goods",
                                      "Sports Mem, Cards &amp; Fan Shop",
                                      "Stamps",
                                      "Tickets",
                                      "Toys &amp; Hobbies",
                                      "Video Games",
                                      "Travel",
                                      "Everything Else"};
constexpr int kCategories = static_cast<int>(std::size(kCategoryNames));

std::string Slug(std::string_view name) {
  std::string slug;
  bool gap = false;
  for (char c : name) {
    const bool word = (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z') || (c >= '0' && c <= '9');
    if (!word) {
      gap = !slug.empty();
      continue;
    }
    if (gap) slug += '-';
    slug += c;
    gap = false;
  }
  return slug;
}

// A listing home page: the catalogue's 34 categories, each a bold anchor with its count, then its
// sub-category links with their counts, then a "more..." link that ends the category for the scans.
// `rows` sub-category rows in all, shared out evenly.
std::string HomePage(bool uk, int rows) {
  const SiteConfig& site = Profile().site(uk ? gavelscope::sites::Site::UK : gavelscope::sites::Site::USA);
  Draw draw;
  std::string page = PageStart(site);
  page +=
      "<h2>All Categories</h2>\n<p>Choose a category to see the items listed in it today.</p>\n"
      "<table width=\"100%\" border=\"0\" cellpadding=\"4\" cellspacing=\"0\"><tr>\n<td valign=\"top\" "
      "width=\"50%\">\n";
  for (int c = 0; c < kCategories; ++c) {
    if (c == (kCategories + 1) / 2) page += "</td>\n<td valign=\"top\" width=\"50%\">\n";
    const std::string name = kCategoryNames[c];
    std::string plain = name;
    gavelscope::base::DecodeEntities(plain);
    const std::string path = std::string("/").append(Slug(plain)) + "_W0QQsacatZ" + std::to_string((c + 1) * 1000);
    page += "<p><a href=\"" + path + "/list/\"><b>" + name + "</b></a> (" + Money(draw.Below(9000000)) + ")<br>\n";
    const int subs = rows / kCategories + (c < rows % kCategories ? 1 : 0);
    for (int s = 0; s < subs; ++s) {
      std::string sub = std::string(draw.Pick(kQualifiers)) + " " + draw.Pick(kStems) + " " + draw.Pick(kNouns);
      if (draw.Chance(10)) sub += std::string(" &amp; ") + draw.Pick(kNouns);
      const std::string url = "http://" + site.listingHost + path + "/" + Slug(PlainTitle(sub)) + "_W0QQsacatZ" +
                              std::to_string((c + 1) * 100000 + s + 1) + "/list/_W0QQsocmdZListingItemList";
      page += "<a href=\"" + url + "\">" + sub + "</a> (" + std::to_string(draw.Below(99999)) + ")<br>\n";
    }
    page += "<a href=\"http://" + site.listingHost + path + "/list/\">more...</a></p>\n";
  }
  page += "</td>\n</tr></table>\n";
  return page + PageEnd();
}

// Pages are built once per size: building a 5 MB page takes longer than scanning it.
const std::string& CachedPage(const char* kind, bool uk, int rows) {
  static std::map<std::string, std::string> pages;
  const std::string key = std::string(kind) + (uk ? "/uk/" : "/usa/") + std::to_string(rows);
  auto found = pages.find(key);
  if (found == pages.end()) {
    found = pages.emplace(key, std::string(kind) == "listing" ? ListingPage(uk, rows) : HomePage(uk, rows)).first;
  }
  return found->second;
}

void Report(benchmark::State& state, const std::string& page, std::size_t rows) {
  state.SetBytesProcessed(static_cast<std::int64_t>(state.iterations() * page.size()));
  state.counters["rows"] = static_cast<double>(rows);
  state.counters["MB"] = static_cast<double>(page.size()) / 1e6;
}

// ---- Listing pages: ScanListing's loop over one fetched page -------------------------------------

struct ScanTotals {
  std::size_t rows = 0;
  long sum = 0;  // keeps the parsed values alive
  int continueAt = -1;
};

// The row loop of the category scan job's ScanListing on a page already fetched: cut each row, test
// its title against the keywords and read the three filter values from what passes. The result list
// itself is left out; filling it is measured with the lists.
ScanTotals ScanListingPage(std::string_view page, const SiteConfig& site, bool uk, std::string_view keywords) {
  namespace q = gavelscope::sites;
  ScanTotals totals;
  int s = Find(page, site.itemLinkPrefix, 0);
  int t = Find(page, ">", s);
  while (s != -1) {
    const q::ListingRow row = q::ParseRow(page, s, t, site, uk);
    ++totals.rows;
    if (q::MatchesKeywords(row.title, keywords) && !row.link.empty() && !row.timeLeft.empty() && !row.price.empty()) {
      totals.sum += q::ParsePrice(row.price) + q::ParseBids(row.bids) + q::ParseDaysLeft(row.timeLeft);
    }
    if (row.s2 == -1) {
      totals.continueAt = Find(page, q::kContinueMarker, row.t2);
      break;
    }
    s = row.s2;
    t = Find(page, ">", s);
  }
  return totals;
}

// The markers ParseRow and the loop look for, in their order, found and not cut out.
ScanTotals WalkListingMarkers(std::string_view page, const SiteConfig& site, bool uk) {
  using std::string_view;
  constexpr auto npos = string_view::npos;
  ScanTotals totals;
  const string_view prefix = site.itemLinkPrefix;
  std::size_t s = page.find(prefix);
  while (s != npos) {
    ++totals.rows;
    const std::size_t t = page.find('>', s);
    const std::size_t a = page.find("</a>", t);
    const std::size_t next = page.find("<td", a);
    const std::size_t bids = page.find("<td align=\"center\"", next);
    const std::size_t bidsEnd = page.find('<', page.find('>', bids));
    const std::size_t time = page.find("<td", bidsEnd);
    std::size_t timeStart = page.find('>', time);
    std::size_t timeEnd = page.find('<', timeStart);
    if (uk && timeEnd - timeStart <= 2) {
      // An icon cell or an empty one before the time left: the scan reads the cell after it.
      timeStart = page.find('>', page.find("<td", time + 3));
      timeEnd = page.find('<', timeStart);
    }
    std::size_t t2;
    if (uk) {
      totals.sum += static_cast<long>(page.find(">\xA3", next));
      t2 = page.find("<td", page.find("<td", t) + 4);
    } else {
      totals.sum += static_cast<long>(page.find("</span>", next));
      t2 = page.find("<td", page.find("<td", page.find("<table", t)) + 4);
    }
    totals.sum += static_cast<long>(timeEnd);
    const std::size_t s2 = page.find(prefix, t2);
    if (s2 == npos) {
      totals.continueAt = static_cast<int>(page.find(gavelscope::sites::kContinueMarker, t2));
      break;
    }
    s = s2;
  }
  return totals;
}

// Every tag of the page, found with memchr: the floor beneath any scan of these bytes.
std::size_t MemchrTags(std::string_view page) {
  std::size_t tags = 0;
  const char* at = page.data();
  const char* const end = page.data() + page.size();
  while ((at = static_cast<const char*>(std::memchr(at, '<', static_cast<std::size_t>(end - at)))) != nullptr) {
    ++tags;
    ++at;
  }
  return tags;
}

constexpr std::string_view kKeywords = "lego, rare";

void ScanListing(benchmark::State& state) {
  const bool uk = state.range(0) != 0;
  const int rows = static_cast<int>(state.range(1));
  const std::string& page = CachedPage("listing", uk, rows);
  const SiteConfig& site = Profile().site(uk ? gavelscope::sites::Site::UK : gavelscope::sites::Site::USA);
  ScanTotals totals;
  for (auto _ : state) {
    totals = ScanListingPage(page, site, uk, kKeywords);
    benchmark::DoNotOptimize(totals);
  }
  if (totals.rows != static_cast<std::size_t>(rows) || totals.continueAt == -1) {
    state.SkipWithError("the scan did not read every row of the page");
  }
  Report(state, page, totals.rows);
}

void WalkListing(benchmark::State& state) {
  const bool uk = state.range(0) != 0;
  const int rows = static_cast<int>(state.range(1));
  const std::string& page = CachedPage("listing", uk, rows);
  const SiteConfig& site = Profile().site(uk ? gavelscope::sites::Site::UK : gavelscope::sites::Site::USA);
  ScanTotals totals;
  for (auto _ : state) {
    totals = WalkListingMarkers(page, site, uk);
    benchmark::DoNotOptimize(totals);
  }
  if (totals.rows != static_cast<std::size_t>(rows)) state.SkipWithError("the walk did not reach every row");
  Report(state, page, totals.rows);
}

void MemchrListing(benchmark::State& state) {
  const std::string& page = CachedPage("listing", state.range(0) != 0, static_cast<int>(state.range(1)));
  for (auto _ : state) benchmark::DoNotOptimize(MemchrTags(page));
  Report(state, page, static_cast<std::size_t>(state.range(1)));
}

// About 500 bytes a row: 2,000 rows make 1 MB, 10,000 rows 5 MB.
void ListingSizes(benchmark::internal::Benchmark* b) {
  b->ArgNames({"uk", "rows"});
  for (int uk : {0, 1}) {
    for (int rows : {2000, 10000}) b->Args({uk, rows});
  }
  b->Unit(benchmark::kMillisecond);
}
BENCHMARK(ScanListing)->Apply(ListingSizes);
BENCHMARK(WalkListing)->Apply(ListingSizes);
BENCHMARK(MemchrListing)->Apply(ListingSizes);

// ---- The listing home page: category anchors and the auction counts ---------------------------

void CategoryAnchors(benchmark::State& state) {
  const std::string& page = CachedPage("home", false, static_cast<int>(state.range(0)));
  std::vector<std::string> names;
  std::vector<std::string> links;
  for (auto _ : state) {
    names.clear();
    links.clear();
    gavelscope::sites::ParseCategoryAnchors(page, names, links);
    benchmark::DoNotOptimize(names.data());
  }
  if (names.size() != kCategories) state.SkipWithError("the scan did not find every category");
  Report(state, page, static_cast<std::size_t>(state.range(0)));
  state.counters["anchors"] = static_cast<double>(names.size());
}

// The markers ParseCategoryAnchors looks for, found and not cut out.
void WalkCategoryAnchors(benchmark::State& state) {
  const std::string& page = CachedPage("home", false, static_cast<int>(state.range(0)));
  const std::string_view text = page;
  std::size_t found = 0;
  for (auto _ : state) {
    found = 0;
    long sum = 0;
    for (std::size_t pos = text.find("</b></a> ("); pos != std::string_view::npos;
         pos = text.find("</b></a> (", pos + 1)) {
      const std::size_t nameStart = text.rfind('<', pos - 1);
      const std::size_t anchor = text.rfind('<', nameStart - 1);
      sum += static_cast<long>(text.find("<b>", anchor));
      ++found;
    }
    benchmark::DoNotOptimize(sum);
  }
  if (found != kCategories) state.SkipWithError("the walk did not find every category");
  Report(state, page, static_cast<std::size_t>(state.range(0)));
  state.counters["anchors"] = static_cast<double>(found);
}

std::vector<std::string> CategoryLinks(const std::string& page) {
  std::vector<std::string> names;
  std::vector<std::string> links;
  gavelscope::sites::ParseCategoryAnchors(page, names, links);
  return links;
}

void AuctionScan(benchmark::State& state) {
  const int rows = static_cast<int>(state.range(0));
  const std::string& page = CachedPage("home", false, rows);
  const std::vector<std::string> links = CategoryLinks(page);
  const SiteConfig& site = Profile().usa;
  std::size_t found = 0;
  for (auto _ : state) {
    auto scanned = gavelscope::sites::ScanAuctionRows(page, links, site.listingHost, site.domainSuffix);
    benchmark::DoNotOptimize(scanned.data());
    // The rows outlive the scan (the auction list takes their strings), so freeing them is not timed.
    state.PauseTiming();
    found = scanned.size();
    scanned = {};
    state.ResumeTiming();
  }
  if (found != static_cast<std::size_t>(rows)) state.SkipWithError("the scan did not read every sub-category");
  Report(state, page, found);
}

// The markers ScanAuctionRows looks for, each category searched for from where the one before it
// ended: one pass over the page.
void WalkAuctionRows(benchmark::State& state) {
  const int rows = static_cast<int>(state.range(0));
  const std::string& page = CachedPage("home", false, rows);
  const std::vector<std::string> links = CategoryLinks(page);
  const std::string_view text = page;
  const SiteConfig& site = Profile().usa;
  constexpr auto npos = std::string_view::npos;
  std::size_t found = 0;
  for (auto _ : state) {
    found = 0;
    std::size_t pos = 0;
    for (const std::string& key : links) {
      pos = text.find(site.listingHost, text.find(key, pos));
      while (true) {
        const std::size_t d = text.find(site.domainSuffix, pos);
        const std::size_t q = text.rfind('<', d);
        const std::size_t r = text.find('>', q);
        if (text.substr(q, r - q).find("ListingItemList") == npos) break;
        const std::size_t t = text.find("> (", text.find("</a>", r));
        const std::size_t u = text.find(')', t);
        ++found;
        if (u == npos) break;
        pos = u;
      }
    }
    benchmark::DoNotOptimize(found);
  }
  if (found != static_cast<std::size_t>(rows)) state.SkipWithError("the walk did not reach every sub-category");
  Report(state, page, found);
}

void MemchrHome(benchmark::State& state) {
  const std::string& page = CachedPage("home", false, static_cast<int>(state.range(0)));
  for (auto _ : state) benchmark::DoNotOptimize(MemchrTags(page));
  Report(state, page, static_cast<std::size_t>(state.range(0)));
}

// About 160 bytes a sub-category row: 6,400 rows make 1 MB and 32,000 rows 5 MB; the 10,000-row page
// is 1.6 MB.
void HomeSizes(benchmark::internal::Benchmark* b) {
  b->ArgNames({"rows"});
  for (int rows : {6400, 10000, 32000}) b->Arg(rows);
  b->Unit(benchmark::kMillisecond);
}
BENCHMARK(CategoryAnchors)->Apply(HomeSizes);
BENCHMARK(WalkCategoryAnchors)->Apply(HomeSizes);
BENCHMARK(AuctionScan)->Apply(HomeSizes);
BENCHMARK(WalkAuctionRows)->Apply(HomeSizes);
BENCHMARK(MemchrHome)->Apply(HomeSizes);

}  // namespace
