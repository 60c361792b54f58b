// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Gavelscope developers
#pragma once

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "base/Outcome.h"

// Every bound the programs put on what comes from outside, in one place with its reason. Pages,
// lists and files come from servers that are not ours, and query files from wherever the user found
// them: each has a size, a time and a count limit, and going over one is an ordinary failure of that
// read, with the fallback its caller already has for a server that breaks off.
namespace gavelscope::net {

inline constexpr std::size_t kMiB = 1024 * 1024;

// How every transfer of a session connects, and how far it may go. The defaults are for the real
// sites; tests shrink them so that a stalled server costs them a second, not minutes.
struct NetOptions {
  // curl's HOST:PORT:ADDR:PORT: connections meant for HOST:PORT go to ADDR:PORT, while URLs and Host
  // headers stay as they are.
  std::vector<std::string> connectTo;

  // A server that never accepts (or, in active FTP, never connects back) is given up after this.
  std::chrono::milliseconds connectTimeout{15000};
  // A server that accepts and then sends less than 100 bytes a second for 30 seconds has stalled;
  // the slowest honest line delivers thousands.
  long lowSpeedBytesPerSecond = 100;
  std::chrono::seconds lowSpeedTime{30};
  // However a server paces its bytes, no transfer lasts longer than this. The largest honest
  // download, a 14 MB history, takes two minutes only below one megabit a second.
  std::chrono::milliseconds transferDeadline{120000};

  // A whole page held in memory (listing home pages, item pages): the largest home page of the
  // sites, every category with its sub-categories, is under 6 MB.
  std::size_t maxPageBytes = 16 * kMiB;
  // A text read line by line (category lists, banner list, listing pages): category lists are
  // under 2 MB and a listing page under 6 MB even at 10,000 rows.
  std::size_t maxFeedBytes = 8 * kMiB;
  // One line of a feed or of a downloaded list: honest lines are a few kilobytes.
  std::size_t maxLineBytes = 1 * kMiB;
  // A file downloaded over FTP (streamed to disk, never held whole): a 100,000-line history is
  // about 14 MB and banner pictures are kilobytes.
  std::size_t maxDownloadBytes = 64 * kMiB;
  // All attempts of one download together, with their waits and pauses: the history is retried
  // 30 times, and 30 accept waits of a server that never connects back would take eight minutes.
  std::chrono::milliseconds retryBudget{120000};
};

// Counts read from outside, fixed for every run.
namespace limits {

// Top-level categories of one site's listing home page (the sites have about 35). Each is scanned
// for on the page, so this also bounds the auction scan's work on a hostile page.
inline constexpr std::size_t kMaxCategories = 200;
// Categories and sub-categories of one site's category list (the sites have a few hundred).
inline constexpr std::size_t kMaxCatalogueItems = 20000;
// Keywords of one category list item (the lists rank 10 to 25) and of one whole list.
inline constexpr std::size_t kMaxKeywordsPerItem = 1000;
inline constexpr std::size_t kMaxCatalogueKeywords = 100000;
// Rows of the hot item history, both sites together: two and a half times the largest history
// measured, and what the two lists hold in about 200 MB.
inline constexpr std::size_t kMaxHistoryRows = 250000;
// A query file: a query of a thousand categories with long names is about 100 KB.
inline constexpr std::size_t kMaxQueryFileBytes = 1 * kMiB;
// Category entries of one query, each a scan job; the dialog offers the site's top-level
// categories, but a file may name one category many times and each entry is scanned.
inline constexpr std::int32_t kMaxQueryCategories = 1000;
// Scan jobs of one query that run at once, each with its own connection: enough to keep the
// network busy, few enough for any process and descriptor limit.
inline constexpr int kMaxQueryJobsAtOnce = 20;
// A picture the window shows: the banner's corner of an 800-pixel face, with room to spare.
inline constexpr int kMaxPictureSide = 1024;
inline constexpr int kMaxPictureFrames = 1000;
// A page or list that has moved is followed this many redirects and no further, over http and
// https only.
inline constexpr long kMaxRedirects = 5;
// All frames of one picture as decoded, together.
inline constexpr std::size_t kMaxDecodedPictureBytes = 64 * kMiB;
// The banner rotation fetches its list, and its pictures, at most this often, whatever the list's
// minutes say.
inline constexpr std::chrono::milliseconds kMinBannerFetchInterval{1000};

}  // namespace limits

using NetResult = base::Outcome;

}  // namespace gavelscope::net
