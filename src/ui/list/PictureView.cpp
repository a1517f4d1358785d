#include "ui/list/PictureView.h"

#include <QPainter>
#include <algorithm>

namespace kalivor::ui {
namespace {

// At which letters a unit of a picture is a pixel.
constexpr double kUsualLetters_px = 16;

bool IsDark(const QPalette& palette) {
  return palette.color(QPalette::Window).lightness() < 128;
}

}  // namespace

PictureView::PictureView(QWidget* parent) : QWidget(parent) {
  setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Expanding);
  // Its name says the figures: those who do not see it can go there.
  setFocusPolicy(Qt::TabFocus);
}

void PictureView::Show(std::vector<PictureShape> shapes, const QSizeF& size, const QString& name) {
  shapes_ = std::move(shapes);
  size_ = size;
  setAccessibleName(name);
  update();
}

double PictureView::LetterScale() const {
  return std::max(1.0, fontMetrics().height() / kUsualLetters_px);
}

QSize PictureView::sizeHint() const {
  return (size_ * LetterScale()).toSize();
}

QColor PictureView::ColourOf(PictureInk ink) const {
  const bool dark = IsDark(palette());
  const QColor text = palette().color(QPalette::WindowText);
  switch (ink) {
    case PictureInk::Text:
      return text;
    case PictureInk::Faint: {
      const QColor back = palette().color(QPalette::Window);
      const auto mixed = [](int one, int other) { return (2 * one + other) / 3; };
      return {mixed(text.red(), back.red()), mixed(text.green(), back.green()),
              mixed(text.blue(), back.blue())};
    }
    case PictureInk::Good:
      return dark ? QColor(0x66, 0xBB, 0x6A) : QColor(0x2E, 0x7D, 0x32);
    case PictureInk::Repeated:
      return dark ? QColor(0xFF, 0xD5, 0x4F) : QColor(0xF9, 0xA8, 0x25);
    case PictureInk::Damaged:
    case PictureInk::Limit:
      return dark ? QColor(0xEF, 0x53, 0x50) : QColor(0xC6, 0x28, 0x28);
    case PictureInk::Silent:
      return dark ? QColor(0xCE, 0x93, 0xD8) : QColor(0x6A, 0x1B, 0x9A);
    case PictureInk::Refused:
      return dark ? QColor(0x64, 0xB5, 0xF6) : QColor(0x15, 0x65, 0xC0);
    case PictureInk::NoPort:
      return dark ? QColor(0xBD, 0xBD, 0xBD) : QColor(0x42, 0x42, 0x42);
  }
  return text;
}

void PictureView::paintEvent(QPaintEvent* /*event*/) {
  QPainter painter(this);
  painter.setRenderHint(QPainter::Antialiasing);
  const double scale = std::min(width() / size_.width(), height() / size_.height());
  painter.scale(scale, scale);
  QFont letters = font();
  letters.setPixelSize(static_cast<int>(kPictureText));
  painter.setFont(letters);
  for (const PictureShape& shape : shapes_) {
    const QColor colour = ColourOf(shape.ink);
    if (shape.kind == PictureShape::Kind::Box) {
      painter.fillRect(shape.place, colour);
      continue;
    }
    painter.setPen(colour);
    const double width = painter.fontMetrics().horizontalAdvance(shape.text);
    double left = shape.place.left();
    if (shape.align == PictureShape::Align::Middle) left = shape.place.center().x() - width / 2;
    if (shape.align == PictureShape::Align::Right) left = shape.place.right() - width;
    painter.drawText(QPointF(left, shape.place.bottom()), shape.text);
  }
  if (hasFocus()) {
    painter.resetTransform();
    painter.setRenderHint(QPainter::Antialiasing, false);
    painter.setPen(QPen(palette().color(QPalette::WindowText), 1, Qt::DotLine));
    painter.drawRect(rect().adjusted(0, 0, -1, -1));
  }
}

}  // namespace kalivor::ui
