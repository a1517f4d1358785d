// The preview: one page of the parameter list on the screen.
#pragma once

#include <QWidget>
#include <functional>

#include "platform/qt/EventGuard.h"
#include "print/pages/PreviewPages.h"

namespace kalivor::print {

/// As large as the layout says, at the scale that is set.
class FormPrintPreview final : public QWidget, public PreviewPages {
 public:
  /// `guard` runs what the user's clicks set off.
  FormPrintPreview(const PrintWorld& world, platform::EventGuard guard, QWidget* parent = nullptr);

  /// Runs when the page text may have changed.
  std::function<void()> OnChange;

 protected:
  void PrintForm() override;
  void HideForm() override { hide(); }
  void Changed() override;
  void ProcessPending() override;

  void paintEvent(QPaintEvent* event) override;
  void mouseReleaseEvent(QMouseEvent* event) override;

 private:
  void Click(const QPointF& place);

  platform::EventGuard guard_;
};

}  // namespace kalivor::print
