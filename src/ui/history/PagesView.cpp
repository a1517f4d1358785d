#include "ui/history/PagesView.h"

#include <QKeyEvent>
#include <QPainter>
#include <QScrollBar>
#include <algorithm>

#include "ui/dialogs/Controls.h"

using namespace Qt::StringLiterals;

namespace kalivor::ui {
namespace {

constexpr double kCentimetresPerInch = 2.54;
constexpr int kMostPictures = 6;

// A screen reader reads the description in one go.
constexpr qsizetype kMostSpoken = 20'000;

}  // namespace

PagesView::PagesView(QWidget* parent, const QString& name, const QString& accessibleName)
    : QAbstractScrollArea(parent), gap_(fontMetrics().lineSpacing()) {
  setObjectName(name);
  setAccessibleName(accessibleName);
  setFocusPolicy(Qt::StrongFocus);
  setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
  // Without it the pages would change their width with their number.
  setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOn);
  viewport()->setBackgroundRole(QPalette::Dark);
  viewport()->setAutoFillBackground(true);
}

void PagesView::ShowPages(const platform::DocumentLayout& layout, const QSizeF& paper_cm) {
  pages_ = layout.pages;
  paper_cm_ = paper_cm;
  setAccessibleDescription(layout.text.left(kMostSpoken));
  Arrange();
}

void PagesView::Arrange() {
  pictures_.clear();
  if (paper_cm_.isEmpty()) return;
  const int onPaper = static_cast<int>(paper_cm_.width() / kCentimetresPerInch * logicalDpiX());
  const int width = std::clamp(viewport()->width() - 2 * gap_, 1, onPaper);
  page_ = {width, qRound(width * paper_cm_.height() / paper_cm_.width())};
  const int all = static_cast<int>(pages_.size()) * Pitch() + gap_;
  verticalScrollBar()->setRange(0, std::max(0, all - viewport()->height()));
  verticalScrollBar()->setPageStep(viewport()->height());
  verticalScrollBar()->setSingleStep(2 * fontMetrics().lineSpacing());
  viewport()->update();
}

// Paper is white and print is black, whatever the palette.
QPixmap PagesView::Picture(int page) {
  if (const auto known = pictures_.constFind(page); known != pictures_.constEnd()) return *known;
  if (pictures_.size() >= kMostPictures) pictures_.clear();
  QPixmap picture(page_ * devicePixelRatioF());
  picture.setDevicePixelRatio(devicePixelRatioF());
  picture.fill(Qt::white);
  QPainter painter(&picture);
  painter.setRenderHints(QPainter::Antialiasing | QPainter::TextAntialiasing |
                         QPainter::SmoothPixmapTransform);
  painter.scale(page_.width() / paper_cm_.width(), page_.height() / paper_cm_.height());
  pages_[static_cast<std::size_t>(page)](painter);
  painter.end();
  pictures_.insert(page, picture);
  return picture;
}

void PagesView::paintEvent(QPaintEvent*) {
  if (pages_.empty()) return;
  QPainter painter(viewport());
  const int top = verticalScrollBar()->value();
  const int last = std::min(static_cast<int>(pages_.size()) - 1, (top + viewport()->height()) / Pitch());
  for (int page = top / Pitch(); page <= last; ++page)
    painter.drawPixmap((viewport()->width() - page_.width()) / 2, gap_ + page * Pitch() - top, Picture(page));
}

void PagesView::resizeEvent(QResizeEvent* event) {
  QAbstractScrollArea::resizeEvent(event);
  Arrange();
}

void PagesView::keyPressEvent(QKeyEvent* event) {
  QScrollBar* bar = verticalScrollBar();
  switch (event->key()) {
    case Qt::Key_PageUp:
      bar->setValue((bar->value() - 1) / Pitch() * Pitch());
      break;
    case Qt::Key_PageDown:
      bar->setValue((bar->value() / Pitch() + 1) * Pitch());
      break;
    case Qt::Key_Home:
      bar->setValue(0);
      break;
    case Qt::Key_End:
      bar->setValue(bar->maximum());
      break;
    default:
      QAbstractScrollArea::keyPressEvent(event);
      return;
  }
  event->accept();
}

}  // namespace kalivor::ui
