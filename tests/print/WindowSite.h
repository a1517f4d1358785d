// The print frame as the desktop program wires it, on a fake printer or the real one.
#pragma once

#include <QAction>
#include <QDir>
#include <QMenu>
#include <QTemporaryDir>
#include <QTest>
#include <QToolBar>
#include <QToolButton>

#include "commands/EventBoundary.h"
#include "platform/qt/QtPrinter.h"
#include "print/MDIFormPrint.h"
#include "print/PrintSite.h"

namespace kalivor::test {

/// `Site` with a frame on its printer.
template <typename Site>
struct FrameSite : Site {
  using Site::box;
  print::MDIFormPrint frame{Site::World(),
                            [this](const std::function<void()>& handler) { RunHandler(box, handler); }};

  void Open() {
    frame.ShowForm();
    frame.Initialize_MDIPP();
  }

  [[nodiscard]] print::FormPrintPreview& Preview() { return *frame.Preview(); }

  template <typename Widget>
  [[nodiscard]] Widget* Find(const QString& name) {
    auto* found = frame.findChild<Widget*>(name);
    if (found == nullptr) ADD_FAILURE() << "there is no " << name.toStdString();
    return found;
  }

  void Press(const QString& key) { QTest::mouseClick(Find<QToolButton>(key), Qt::LeftButton); }
  void Choose(const QString& key) { Find<QAction>(key)->trigger(); }
  [[nodiscard]] QString Caption() { return Find<QToolButton>(u"Format"_s)->text(); }
  [[nodiscard]] QString Status() { return Find<QLabel>(u"panel1"_s)->text(); }
  [[nodiscard]] QString PrintedFile() { return Find<QLabel>(u"panel2"_s)->accessibleName(); }
};

struct WindowSite : FrameSite<PrintSite> {
  /// `nodes` lines to print.
  explicit WindowSite(int nodes = 150) { Fill(nodes); }
};

/// With the program's own printer.
struct RealPrinterSite : PrintSite {
  platform::QtPrinter printer;

  [[nodiscard]] print::PrintWorld World() {
    return {core, printer, [this] { return path; }, [this] { return today; }, language};
  }
};

/// The frame prints into a file.
struct FileSite : FrameSite<RealPrinterSite> {
  QTemporaryDir folder;
  QString file = folder.filePath(u"liste.pdf"_s);

  explicit FileSite(int nodes = 150) {
    Fill(nodes);
    printer.UseFile(file);
  }

  [[nodiscard]] QStringList Files() const {
    return QDir(folder.path()).entryList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot);
  }
};

}  // namespace kalivor::test
