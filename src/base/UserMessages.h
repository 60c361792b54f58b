// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Gavelscope developers
#pragma once

#include <filesystem>
#include <optional>
#include <string>

namespace gavelscope::base {

enum class MessageButtons { Ok, YesNo };
enum class MessageReply { Ok, Yes, No };
// What the box's icon tells at a glance; a Yes/No box always asks.
enum class MessageKind { Information, Warning, Error };

struct UserMessage {
  std::string text;
  std::string title;
  MessageButtons buttons = MessageButtons::Ok;
  bool systemModal = true;
  MessageKind kind = MessageKind::Information;
};

// A file the user is asked to choose: the dialog's title, its one filter ("Text File (*.txt)") and
// the suffix a bare name gets.
struct FileChoice {
  std::string title;
  std::string filter;
  std::string defaultSuffix;
  bool save = true;
};

// Everything the core asks or tells the user goes through here: message boxes in the window,
// stderr and exit codes in the CLI. May be called from any thread.
class IUserMessages {
 public:
  virtual ~IUserMessages() = default;
  virtual MessageReply Show(const UserMessage& message) = 0;
  // The chosen file, or nothing when the user cancels. Only the window can ask; elsewhere nobody
  // chooses.
  virtual std::optional<std::filesystem::path> ChooseFile(const FileChoice&) { return std::nullopt; }
};

// The system's own texts, byte for byte.
namespace text {
inline constexpr const char* kApplicationName = "gavelscope";
inline constexpr const char* kMessageTitle = "Gavelscope";
inline constexpr const char* kAlreadyRunning = "Error - Program Already Running!";
inline constexpr const char* kNoInternet = "Error - No Internet connection.";
inline constexpr const char* kAlreadyRefreshing = "System Is Already Refreshing Display";
inline constexpr const char* kExported = "List Has Been Successfully Exported.";
inline constexpr const char* kNotFound = "Item Not Found !";
inline constexpr const char* kBrowserFailed = "Failed to get IWebBrowser2 interface. HRESULT";
inline constexpr const char* kWindowTitle = "Gavelscope - The Complete Powerseller Tool (Version 2.0)";
inline constexpr const char* kWelcomeTitle = "Welcome to Gavelscope Keyword / Auction / Hot Item Application";
inline constexpr const char* kWelcomeText =
    "Please be patient while Gavelscope loads - this may take a while depending on what speed "
    "connection you have.  Any queries then contact ";
}  // namespace text

}  // namespace gavelscope::base
