// The desktop program without its process: real windows on files in memory, with nothing on the line.
#pragma once

#include <QTemporaryDir>
#include <memory>

#include "Site.h"
#include "platform/FileDialogs.h"
#include "platform/Help.h"
#include "platform/plain/IniSettingsStore.h"
#include "platform/posix/SystemClock.h"
#include "platform/qt/QtEvents.h"
#include "print/MDIFormPrint.h"
#include "print/pages/PagesText.h"
#include "ui/main/Desktop.h"

namespace kalivor::bench {

class NoDialogs final : public platform::FileDialogs {
 public:
  [[nodiscard]] QString OpenFile(const QString&, const QString&, const QString&) override { return {}; }
  [[nodiscard]] QString SaveFile(const QString&, const QString&) override { return {}; }
};

class NoHelp final : public platform::Help {
 public:
  [[nodiscard]] QString HelpFile() const override { return {}; }
  void Open(platform::HelpCommand) override {}
  void ShowPage(const QString&) override {}
};

struct WindowSite {
  /// Started and shown, with this many parameters.
  explicit WindowSite(int parameters);

  /// Paints the main window now.
  void Repaint();

  QTemporaryDir folder;
  platform::IniSettingsStore settings{folder.filePath(QStringLiteral("settings.ini"))};
  std::ostringstream messages;
  cli::TextMessageBox box{messages};
  MemoryFiles files;
  NoLine line;
  platform::SystemClock clock;
  platform::QtEvents events;
  NoDialogs dialogs;
  NoHelp help;
  print::NoPrinter printer{print::kLandscape};
  std::unique_ptr<ui::Desktop> desktop;
};

}  // namespace kalivor::bench
