// Pages as they print, one below the other.
#pragma once

#include <QAbstractScrollArea>
#include <QHash>
#include <QPixmap>
#include <QSizeF>
#include <vector>

#include "platform/gui/DocumentPages.h"

namespace kalivor::ui {

/// As wide as the view, but not larger than on paper. Page Up and Page Down go to the page before and after,
/// the arrow keys scroll.
class PagesView final : public QAbstractScrollArea {
 public:
  PagesView(QWidget* parent, const QString& name, const QString& accessibleName);

  /// Stays where it is, as far as there are pages.
  void ShowPages(const platform::DocumentLayout& layout, const QSizeF& paper_cm);

 protected:
  void paintEvent(QPaintEvent* event) override;
  void resizeEvent(QResizeEvent* event) override;
  void keyPressEvent(QKeyEvent* event) override;

 private:
  void Arrange();
  [[nodiscard]] int Pitch() const { return page_.height() + gap_; }
  [[nodiscard]] QPixmap Picture(int page);

  std::vector<platform::PageDrawing> pages_;
  QSizeF paper_cm_;
  QSize page_;  // in device-independent pixels
  int gap_;
  QHash<int, QPixmap> pictures_;  // of the pages that were seen last
};

}  // namespace kalivor::ui
