// F1: the page of the manual about the window in front.
#pragma once

#include <QObject>
#include <QWidget>

#include "platform/Help.h"
#include "platform/qt/EventGuard.h"

namespace kalivor::ui {

/// The page about the window that `widget` is in, or about the place in it; "index" for an unknown one.
[[nodiscard]] QString ManualPageOf(const QWidget& widget);

/// Watches the whole program for F1 as long as it lives. Both must outlive it.
class HelpKey final : public QObject {
 public:
  HelpKey(platform::Help& help, const platform::EventGuard& guard);

  bool eventFilter(QObject* watched, QEvent* event) override;

 private:
  platform::Help& help_;
  const platform::EventGuard& guard_;
};

}  // namespace kalivor::ui
