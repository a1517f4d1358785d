// The print frame on a fake printer, as the desktop program wires it.
#pragma once

#include <QAction>
#include <QMenu>
#include <QTest>
#include <QToolBar>
#include <QToolButton>

#include "commands/EventBoundary.h"
#include "print/MDIFormPrint.h"
#include "print/PrintSite.h"

namespace kalivor::test {

struct WindowSite : PrintSite {
  print::MDIFormPrint frame{World(),
                            [this](const std::function<void()>& handler) { RunHandler(box, handler); }};

  /// `nodes` lines to print.
  explicit WindowSite(int nodes = 150) { Fill(nodes); }

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
};

}  // namespace kalivor::test
