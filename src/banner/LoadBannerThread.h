// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Gavelscope developers
#pragma once

#include <chrono>
#include <filesystem>
#include <optional>
#include <stop_token>
#include <string>
#include <string_view>
#include <thread>
#include <vector>

#include "banner/BannerSink.h"
#include "net/NetOptions.h"
#include "sites/SiteProfile.h"

namespace gavelscope::banner {

// How long the rotation waits. Tests shrink the minute, the retry pause and the fetch interval.
struct BannerTiming {
  // A banner's display time is counted in these; a round that showed nothing waits one of them
  // before the list is fetched again.
  std::chrono::milliseconds minute{60000};
  std::chrono::milliseconds retryPause{1000};
  // Failed downloads of one picture before its entry is passed over.
  int maxPictureAttempts = 30;
  // The list is fetched at most once per interval, and so is a picture (each attempt counts), however
  // few minutes the list's lines ask for. The two are paced apart, so the first banner follows the
  // first list at once.
  std::chrono::milliseconds fetchInterval = net::limits::kMinBannerFetchInterval;
};

// One line of the banner list: minutes|link|picture file|
struct BannerEntry {
  int minutes = 0;
  std::string link;
  std::string file;
};

// The entry a list line describes. Minutes are the line's leading decimal number (0 without one; a
// sign is read as atoi reads it). Null for a line with fewer than three "|" (its picture could never
// be fetched) or an empty file name (the server would answer with its directory listing).
std::optional<BannerEntry> ParseBannerLine(std::string_view line);

// Rotates the vendor's banners for as long as it runs: downloads the banner list from the vendor's
// web server, then for each entry fetches its picture from the vendor's FTP server into one local
// file, hands it with the entry's link to the sink and waits the entry's minutes; after the last
// entry it fetches the list again and starts over. A list that cannot be fetched later keeps the
// previous one. When the very first list download fails the job ends and no banner is ever shown.
// A picture over the download size limit is passed over at once. Nothing is ever reported to the
// user.
class CLoadBannerThread {
 public:
  static constexpr const char* kLocalFileName = "GavelscopeBanner.gif";

  // `folder` is the per-user cache folder that receives kLocalFileName.
  CLoadBannerThread(const sites::Profile& profile, net::NetOptions options, std::filesystem::path folder,
                    IBannerSink& sink, BannerTiming timing = {});
  // Stops and joins the thread.
  ~CLoadBannerThread();
  CLoadBannerThread(const CLoadBannerThread&) = delete;
  CLoadBannerThread& operator=(const CLoadBannerThread&) = delete;

  // Runs the job on a thread of this object; does nothing while that thread is still there.
  void Start();
  // Ends the job at once, whatever it waits for, and joins its thread. Safe to call twice.
  void Stop();

  // The whole job, on the caller's thread; it returns only when stopped or when the first list
  // download fails.
  void Run(std::stop_token stop);

  const std::filesystem::path& localFile() const { return m_localFile; }

 private:
  class FetchPacer;

  bool DownloadBannerList(std::vector<std::string>& lines, FetchPacer& pacer, std::stop_token stop) const;
  bool DownloadPicture(const std::string& file, FetchPacer& pacer, std::stop_token stop) const;
  bool WaitMinutes(int minutes, std::stop_token stop) const;

  std::string m_listUrl;
  net::FtpAccount m_account;
  net::NetOptions m_options;
  std::filesystem::path m_localFile;
  IBannerSink& m_sink;
  BannerTiming m_timing;
  // Last member: it goes first, so the job never outlives what it uses.
  std::jthread m_thread;
};

}  // namespace gavelscope::banner
