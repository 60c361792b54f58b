// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Gavelscope developers
#include "banner/LoadBannerThread.h"

#include <climits>
#include <cstdlib>

#include "base/Pause.h"
#include "base/TextHelpers.h"
#include "net/FtpClient.h"
#include "net/Session.h"
#include "net/TextFeed.h"

namespace gavelscope::banner {

namespace {

// The leading decimal number of text as atoi reads it, kept within int.
int LeadingNumber(const std::string& text) {
  const long value = std::strtol(text.c_str(), nullptr, 10);
  if (value > INT_MAX) return INT_MAX;
  if (value < INT_MIN) return INT_MIN;
  return static_cast<int>(value);
}

}  // namespace

// Spaces out the starts of one kind of fetch by at least the interval.
class CLoadBannerThread::FetchPacer {
 public:
  explicit FetchPacer(std::chrono::milliseconds interval) : m_interval(interval) {}

  // Waits until the interval has passed since the last fetch began, then counts a new one as
  // beginning now; false when stopped first.
  bool WaitTurn(std::stop_token stop) {
    if (m_last) {
      const auto due = *m_last + m_interval;
      const auto now = std::chrono::steady_clock::now();
      if (now < due && !base::PauseUnlessStopped(std::chrono::ceil<std::chrono::milliseconds>(due - now), stop)) {
        return false;
      }
    }
    m_last = std::chrono::steady_clock::now();
    return !stop.stop_requested();
  }

 private:
  std::chrono::milliseconds m_interval;
  std::optional<std::chrono::steady_clock::time_point> m_last;
};

std::optional<BannerEntry> ParseBannerLine(std::string_view line) {
  const int p = base::Find(line, "|", 0);
  if (p < 0) return std::nullopt;
  const int q = base::Find(line, "|", p + 1);
  if (q < 0) return std::nullopt;
  const int r = base::Find(line, "|", q + 1);
  if (r < 0) return std::nullopt;
  BannerEntry entry{LeadingNumber(base::ExtractBetween(line, 0, p)), base::ExtractBetween(line, p + 1, q),
                    base::ExtractBetween(line, q + 1, r)};
  if (entry.file.empty()) return std::nullopt;
  return entry;
}

CLoadBannerThread::CLoadBannerThread(const sites::Profile& profile, net::NetOptions options,
                                     std::filesystem::path folder, IBannerSink& sink, BannerTiming timing)
    : m_listUrl(profile.vendor.webServer + profile.vendor.bannerListPath),
      m_account(profile.vendor.ftp),
      m_options(std::move(options)),
      m_localFile(std::move(folder) / kLocalFileName),
      m_sink(sink),
      m_timing(timing) {}

CLoadBannerThread::~CLoadBannerThread() {
  Stop();
}

void CLoadBannerThread::Start() {
  if (m_thread.joinable()) return;
  m_thread = std::jthread([this](std::stop_token stop) { Run(std::move(stop)); });
}

void CLoadBannerThread::Stop() {
  m_thread.request_stop();
  // A sink that stops the rotation from inside ShowBanner cannot join its own thread.
  if (m_thread.joinable() && m_thread.get_id() != std::this_thread::get_id()) {
    m_thread.join();
    m_thread = {};
  }
}

void CLoadBannerThread::Run(std::stop_token stop) {
  // Lines of 0 minutes (or fewer) would otherwise fetch the list and the pictures as fast as the
  // servers answer, for ever.
  FetchPacer listTurns(m_timing.fetchInterval);
  FetchPacer pictureTurns(m_timing.fetchInterval);
  std::vector<std::string> lines;
  if (!DownloadBannerList(lines, listTurns, stop)) return;
  while (!stop.stop_requested()) {
    bool shown = false;
    for (const std::string& line : lines) {
      const std::optional<BannerEntry> entry = ParseBannerLine(line);
      if (!entry) continue;
      m_sink.PublishLink(entry->link);
      // A picture that never arrives leaves the previous banner on show and passes its turn on.
      if (!DownloadPicture(entry->file, pictureTurns, stop)) {
        if (stop.stop_requested()) return;
        continue;
      }
      m_sink.ShowBanner(m_localFile);
      shown = true;
      if (!WaitMinutes(entry->minutes, stop)) return;
    }
    // An empty list, or one whose pictures all fail, rests a whole minute before it is fetched
    // again, not just the fetch interval.
    if (!shown && !base::PauseUnlessStopped(m_timing.minute, stop)) return;
    DownloadBannerList(lines, listTurns, stop);
  }
}

bool CLoadBannerThread::DownloadBannerList(std::vector<std::string>& lines, FetchPacer& pacer,
                                           std::stop_token stop) const {
  if (!pacer.WaitTurn(stop)) return false;
  const auto session = net::Session::Create(m_options);
  net::FeedOpenResult opened = net::OpenTextFeed(session, m_listUrl, stop);
  if (!opened.feed) return false;
  // The server's "not found" page is an answer too, but not a banner list.
  const long status = opened.feed->responseCode();
  if (status < 200 || status > 299) return false;
  std::vector<std::string> read;
  for (std::string line; opened.feed->ReadLine(line);) read.push_back(std::move(line));
  // Half a list is not taken: a broken download keeps the whole previous one.
  if (opened.feed->failed()) return false;
  lines = std::move(read);
  return true;
}

bool CLoadBannerThread::DownloadPicture(const std::string& file, FetchPacer& pacer, std::stop_token stop) const {
  net::FtpClient ftp(m_options, m_account);
  for (int attempt = 1; attempt <= m_timing.maxPictureAttempts; ++attempt) {
    if (!pacer.WaitTurn(stop)) break;
    const net::NetResult got = ftp.GetFile(file, m_localFile, stop);
    if (got) return true;
    // Another attempt would fetch the same too large a picture.
    if (got.overLimit) break;
    if (attempt == m_timing.maxPictureAttempts || !base::PauseUnlessStopped(m_timing.retryPause, stop)) break;
  }
  return false;
}

bool CLoadBannerThread::WaitMinutes(int minutes, std::stop_token stop) const {
  // One minute at a time: the list may ask for any number of minutes, and a single wait for all of
  // them could overflow the clock.
  for (int waited = 0; waited < minutes; ++waited) {
    if (!base::PauseUnlessStopped(m_timing.minute, stop)) return false;
  }
  return !stop.stop_requested();
}

}  // namespace gavelscope::banner
