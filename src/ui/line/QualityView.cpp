#include "ui/line/QualityView.h"

#include <QPainter>
#include <QVBoxLayout>
#include <algorithm>

#include "core/LineHint.h"
#include "ui/dialogs/Controls.h"

using namespace Qt::StringLiterals;

namespace kalivor::ui {
namespace {

bool IsDark(const QPalette& palette) {
  return palette.color(QPalette::Window).lightness() < 128;
}

}  // namespace

QualityPictureView::QualityPictureView(QWidget* parent) : QWidget(parent) {
  setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Expanding);
  // Its name says the figures: those who do not see it can go there.
  setFocusPolicy(Qt::TabFocus);
  Show({});
}

void QualityPictureView::Show(const LineQuality& quality) {
  shapes_ = QualityPicture(quality);
  const QString figures = QualityLine(quality);
  setAccessibleName(u"Leitungsqualität: "_s + (figures.isEmpty() ? u"noch keine Telegramme"_s : figures));
  update();
}

// As large as the letters of the window want it.
QSize QualityPictureView::sizeHint() const {
  constexpr double kUsualLetters_px = 16;
  const double scale = std::max(1.0, fontMetrics().height() / kUsualLetters_px);
  return QSizeF(kPictureWidth * scale, kPictureHeight * scale).toSize();
}

QColor QualityPictureView::ColourOf(PictureInk ink) const {
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

void QualityPictureView::paintEvent(QPaintEvent* /*event*/) {
  QPainter painter(this);
  painter.setRenderHint(QPainter::Antialiasing);
  const double scale = std::min(width() / kPictureWidth, height() / kPictureHeight);
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

QualityView::QualityView(const ExchangeLog& log, QWidget* parent)
    : QWidget(parent),
      log_(log),
      ofTransfer_(Named(new QRadioButton(u"diese Ü&bertragung"_s, this), u"ofTransfer"_s)),
      sinceStart_(Named(new QRadioButton(u"seit dem Star&t"_s, this), u"sinceStart"_s)),
      hint_(NewLabel(this, u"hint"_s, QString(), true)),
      picture_(Named(new QualityPictureView(this), u"picture"_s)) {
  setObjectName(u"quality"_s);
  ofTransfer_->setChecked(true);
  hint_->setTextInteractionFlags(Qt::TextSelectableByMouse);
  auto* row = new QHBoxLayout;
  row->addWidget(ofTransfer_);
  row->addWidget(sinceStart_);
  row->addStretch();
  auto* layout = new QVBoxLayout(this);
  layout->addLayout(row);
  layout->addWidget(hint_);
  layout->addWidget(picture_, 1);
  connect(ofTransfer_, &QRadioButton::toggled, this, [this] { Update(); });
  Update();
}

void QualityView::Update() {
  const LineQuality& quality = ofTransfer_->isChecked() ? log_.OfTransfer() : log_.SinceStart();
  if (quality == shown_ && !hint_->text().isEmpty()) return;
  shown_ = quality;
  const LineHint hint = HintOf(quality);
  const QString mark = hint.judgement == LineHint::Judgement::Bad    ? u"⚠ "_s
                       : hint.judgement == LineHint::Judgement::Good ? u"✓ "_s
                                                                     : QString();
  QStringList texts;
  for (const QString& text : hint.texts)
    texts.append(mark + text);
  hint_->setText(texts.join(u'\n'));
  picture_->Show(quality);
}

}  // namespace kalivor::ui
