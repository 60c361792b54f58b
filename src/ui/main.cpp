// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Gavelscope developers
#include <QAbstractItemView>
#include <QApplication>
#include <QMessageBox>
#include <QPixmap>
#include <QScreen>
#include <QTimer>

#include <clocale>
#include <cstdlib>
#include <filesystem>
#include <iostream>
#include <optional>
#include <string>
#include <vector>

#include <CLI/CLI.hpp>

#include "app/InstanceGuard.h"
#include "app/ProgramSetup.h"
#include "app/UserFolders.h"
#include "base/UserMessages.h"
#include "ui/MainDialog.h"

namespace {

constexpr const char* kDescription =
    "Opens the Gavelscope window. For the command-line program, see gavelscope-cli --help.";

bool HasDisplay() {
  for (const char* name : {"DISPLAY", "WAYLAND_DISPLAY", "QT_QPA_PLATFORM"}) {
    const char* value = std::getenv(name);
    if (value != nullptr && value[0] != '\0') return true;
  }
  return false;
}

void Tell(const char* text) {
  QMessageBox box(QMessageBox::Critical, QString::fromLatin1(gavelscope::base::text::kApplicationName),
                  QString::fromLatin1(text), QMessageBox::Ok);
  box.exec();
}

}  // namespace

int main(int argc, char** argv) {
  using namespace gavelscope;
  const std::vector<std::string> args(argv + 1, argv + argc);
  app::SharedOptions shared;
  std::string screenshotFile;
  std::string storeFile;
  CLI::App commandLine(kDescription, "gavelscope");
  app::AddSharedOptions(commandLine, "gavelscope 2.0", shared);
  commandLine
      .add_option("--screenshot", screenshotFile,
                  "skip the welcome notice, save a PNG picture of the window to FILE once the start-up loads have "
                  "finished, and close the window")
      ->type_name("FILE")
      ->check(CLI::Validator(
          [](std::string& file) { return file.empty() ? std::string("needs a file name") : std::string(); }, ""));
  commandLine
      .add_option("--db", storeFile,
                  "the research store that the Insights window's Trends page reads and records into (default: "
                  "$XDG_DATA_HOME/gavelscope/research.sqlite)")
      ->type_name("FILE")
      ->check(CLI::Validator(
          [](std::string& file) { return file.empty() ? std::string("needs a file name") : std::string(); }, ""));
  if (const std::optional<int> ended = app::ParseCommandLine(commandLine, args, std::cout, std::cerr)) return *ended;
  const QString screenshot = QString::fromLocal8Bit(screenshotFile.c_str());
  if (!HasDisplay()) {
    std::cerr << "gavelscope: no display to open the window on; gavelscope-cli runs without one\n";
    return 1;
  }
  std::setlocale(LC_TIME, "");
  QApplication application(argc, argv);

  const app::InstanceGuard guard(app::RuntimeFolder());
  if (guard.anotherInstanceRunning()) {
    Tell(base::text::kAlreadyRunning);
    return 0;
  }
  app::CProgramSetup setup;
  std::string error;
  const standin::SandboxOptions sandbox{
      GAVELSCOPE_SANDBOX_PYTHON, app::SandboxScriptFor(std::filesystem::read_symlink("/proc/self/exe")), {}};
  if (!setup.Start(shared, sandbox, net::NetOptions{}, error)) {
    std::cerr << "gavelscope: cannot start the sandbox: " << error << '\n';
    return 1;
  }
  if (!setup.ProbeConnectivity()) {
    Tell(base::text::kNoInternet);
    return 0;
  }
  ui::CMainDialog window(setup.Config(app::CacheFolder()));
  if (!storeFile.empty()) window.SetResearchStore(storeFile);
  int exitCode = 0;
  if (!screenshot.isEmpty()) {
    window.mainView().SetRunCompleteHandler([&] {
      // Queued behind the view refreshes that the last loads posted, so the picture shows them.
      QTimer::singleShot(0, &window, [&] {
        // Views lay out their rows late, from a timer of their own; the picture must not beat them.
        for (QAbstractItemView* view : window.findChildren<QAbstractItemView*>()) view->doItemsLayout();
        window.repaint();
        if (!window.screen()->grabWindow(window.winId()).save(screenshot, "PNG")) {
          std::cerr << "gavelscope: cannot save the screenshot to " << screenshot.toStdString() << '\n';
          exitCode = 1;
        }
        window.close();
      });
    });
  }
  window.show();
  window.Start(screenshot.isEmpty());
  const int code = application.exec();
  return exitCode != 0 ? exitCode : code;
}
