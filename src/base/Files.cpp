// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Gavelscope developers
#include "base/Files.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <fstream>

namespace gavelscope::base {

namespace {

// As many links as the kernel itself follows before it gives up with ELOOP.
constexpr int kMaxLinkHops = 40;

std::string Reason(int error) {
  return std::strerror(error);
}

// The permission bits a file created by open(2) would get.
mode_t NewFileMode() {
  // Reading the umask through umask(2) means setting it, which races with other threads creating
  // files; the kernel also tells it here.
  std::ifstream status("/proc/self/status");
  for (std::string line; std::getline(status, line);) {
    if (line.starts_with("Umask:")) return 0666 & ~static_cast<mode_t>(std::strtoul(line.c_str() + 6, nullptr, 8));
  }
  return 0644;
}

struct Resolved {
  std::filesystem::path path;
  bool direct = false;  // write in place through the named path, never replace
};

// Follows the links of `file` to the file they name. Links under /proc (standard output's
// /dev/stdout ends there) name open files rather than paths, so those are written in place.
Resolved FollowLinks(const std::filesystem::path& file, int& error) {
  std::filesystem::path path = file;
  for (int hop = 0; hop < kMaxLinkHops; ++hop) {
    struct stat info {};
    if (lstat(path.c_str(), &info) != 0) {
      if (errno == ENOENT) return {path, false};
      error = errno;
      return {};
    }
    if (!S_ISLNK(info.st_mode)) return {path, !S_ISREG(info.st_mode)};
    if (path.string().starts_with("/proc/")) return {file, true};
    std::error_code failed;
    const std::filesystem::path target = std::filesystem::read_symlink(path, failed);
    if (failed) {
      error = failed.value();
      return {};
    }
    path = target.is_absolute() ? target : path.parent_path() / target;
  }
  error = ELOOP;
  return {};
}

bool WriteAll(int fd, std::string_view bytes, int& error) {
  while (!bytes.empty()) {
    const ssize_t written = ::write(fd, bytes.data(), bytes.size());
    if (written < 0) {
      if (errno == EINTR) continue;
      error = errno;
      return false;
    }
    bytes.remove_prefix(static_cast<std::size_t>(written));
  }
  return true;
}

}  // namespace

std::unique_ptr<FileWriter> FileWriter::Open(const std::filesystem::path& file, Outcome& result) {
  std::unique_ptr<FileWriter> writer(new FileWriter());
  int error = 0;
  const Resolved resolved = FollowLinks(file, error);
  if (error != 0) {
    result = writer->Failure(error);
    return nullptr;
  }
  writer->m_target = resolved.path;
  if (resolved.direct) {
    struct stat info {};
    if (stat(resolved.path.c_str(), &info) == 0 && S_ISDIR(info.st_mode)) {
      result = writer->Failure(EISDIR);
      return nullptr;
    }
    // A regular file reached through /proc is what the user redirected to: it is truncated, as the
    // shell would. Devices and pipes ignore the flag.
    writer->m_fd = ::open(resolved.path.c_str(), O_WRONLY | O_TRUNC | O_NOCTTY | O_CLOEXEC);
    if (writer->m_fd < 0) {
      result = writer->Failure(errno);
      return nullptr;
    }
    result = {true, {}};
    return writer;
  }

  mode_t mode = 0;
  struct stat existing {};
  if (stat(resolved.path.c_str(), &existing) == 0) {
    mode = existing.st_mode & 07777;
  } else {
    mode = NewFileMode();
  }
  // A name of our own that cannot be anybody's file: mkstemp creates it exclusively.
  std::filesystem::path folder = resolved.path.parent_path();
  if (folder.empty()) folder = ".";
  std::string pattern = (folder / ("." + resolved.path.filename().string() + ".gavelscope-XXXXXX")).string();
  writer->m_fd = mkostemp(pattern.data(), O_CLOEXEC);
  if (writer->m_fd < 0) {
    result = writer->Failure(errno);
    return nullptr;
  }
  writer->m_temporary = pattern;
  if (fchmod(writer->m_fd, mode) != 0) {
    result = writer->Failure(errno);
    return nullptr;
  }
  result = {true, {}};
  return writer;
}

FileWriter::~FileWriter() {
  if (m_fd >= 0) ::close(m_fd);
  if (!m_temporary.empty()) ::unlink(m_temporary.c_str());
}

Outcome FileWriter::Failure(int error) const {
  return {false, Reason(error)};
}

Outcome FileWriter::Write(std::string_view bytes) {
  if (m_failed || m_fd < 0) return {false, "an earlier write failed"};
  int error = 0;
  if (!WriteAll(m_fd, bytes, error)) {
    m_failed = true;
    return Failure(error);
  }
  return {true, {}};
}

Outcome FileWriter::Commit() {
  if (m_failed || m_fd < 0) return {false, "an earlier write failed"};
  // The content reaches the disk before the name does: a crash in between leaves the old file.
  const bool synced = m_temporary.empty() || fsync(m_fd) == 0;
  const int syncError = errno;
  const int closed = ::close(m_fd);
  const int closeError = errno;
  m_fd = -1;
  if (!synced) return Failure(syncError);
  if (closed != 0) return Failure(closeError);
  if (m_temporary.empty()) return {true, {}};
  if (std::rename(m_temporary.c_str(), m_target.c_str()) != 0) return Failure(errno);
  m_temporary.clear();
  return {true, {}};
}

Outcome WriteWholeFile(const std::filesystem::path& file, std::string_view bytes) {
  Outcome opened;
  const std::unique_ptr<FileWriter> writer = FileWriter::Open(file, opened);
  if (!writer) return opened;
  if (Outcome written = writer->Write(bytes); !written) return written;
  return writer->Commit();
}

bool ReadWholeFile(const std::filesystem::path& file, std::size_t maxBytes, std::string& bytes, std::string& error) {
  const int fd = ::open(file.c_str(), O_RDONLY | O_NOCTTY | O_CLOEXEC);
  if (fd < 0) {
    error = Reason(errno);
    return false;
  }
  struct stat info {};
  bool ok = fstat(fd, &info) == 0;
  if (!ok) {
    error = Reason(errno);
  } else if (S_ISDIR(info.st_mode)) {
    ok = false;
    error = Reason(EISDIR);
  } else if (!S_ISREG(info.st_mode)) {
    // A pipe or a device could make the read wait for ever or never end.
    ok = false;
    error = "not a regular file";
  } else if (static_cast<std::size_t>(info.st_size) > maxBytes) {
    ok = false;
    error = "larger than " + std::to_string(maxBytes) + " bytes";
  }
  std::string read;
  if (ok) {
    read.resize(static_cast<std::size_t>(info.st_size));
    std::size_t done = 0;
    while (done < read.size()) {
      const ssize_t got = ::read(fd, read.data() + done, read.size() - done);
      if (got < 0 && errno == EINTR) continue;
      if (got < 0) {
        ok = false;
        error = Reason(errno);
        break;
      }
      if (got == 0) break;
      done += static_cast<std::size_t>(got);
    }
    // A file that shrank while it was read gives what it held.
    read.resize(done);
  }
  ::close(fd);
  if (ok) bytes = std::move(read);
  return ok;
}

bool ReadLines(const std::filesystem::path& file, std::size_t maxLineBytes,
               const std::function<bool(std::string_view)>& take) {
  const int fd = ::open(file.c_str(), O_RDONLY | O_NOCTTY | O_CLOEXEC);
  if (fd < 0) return false;
  constexpr std::size_t kChunk = 64 * 1024;
  std::string pending;
  std::size_t start = 0;    // where the next line begins
  std::size_t scanned = 0;  // bytes from start already known to hold no line feed
  bool ok = true;
  while (true) {
    const std::size_t feed = pending.find('\n', start + scanned);
    if (feed != std::string::npos) {
      if (feed - start > maxLineBytes) {
        ok = false;
        break;
      }
      if (!take(std::string_view(pending).substr(start, feed - start))) break;
      start = feed + 1;
      scanned = 0;
      continue;
    }
    scanned = pending.size() - start;
    if (scanned > maxLineBytes) {
      ok = false;
      break;
    }
    // Only the unfinished line is kept before the next chunk is read.
    pending.erase(0, start);
    start = 0;
    const std::size_t before = pending.size();
    pending.resize(before + kChunk);
    const ssize_t got = ::read(fd, pending.data() + before, kChunk);
    pending.resize(before + static_cast<std::size_t>(std::max<ssize_t>(got, 0)));
    if (got < 0 && errno == EINTR) continue;
    if (got < 0) {
      ok = false;
      break;
    }
    if (got == 0) {
      if (!pending.empty()) take(pending);
      break;
    }
  }
  ::close(fd);
  return ok;
}

}  // namespace gavelscope::base
