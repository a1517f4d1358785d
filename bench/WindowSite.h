// The desktop program without its process: real windows on files in memory, with nothing on the line.
#pragma once

#include <QTemporaryDir>
#include <memory>

#include "Site.h"
#include "fakes/FakeHelp.h"
#include "fakes/FakePortDirectory.h"
#include "platform/FileDialogs.h"
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

struct WindowSite {
  /// Started and shown, with this many parameters; "": without a history.
  explicit WindowSite(int parameters, const QString& historyFile = {});

  /// Paints the main window now.
  void Repaint();

  QTemporaryDir folder;
  platform::IniSettingsStore settings{folder.filePath(QStringLiteral("settings.ini"))};
  test::PlainMessageBox box;
  test::MemoryFiles files;
  test::NoLine line;
  platform::SystemClock clock;
  platform::QtEvents events;
  NoDialogs dialogs;
  test::FakeHelp help;
  test::FakePortDirectory ports;
  print::NoPrinter printer{print::kLandscape};
  std::unique_ptr<ui::Desktop> desktop;
};

}  // namespace kalivor::bench
