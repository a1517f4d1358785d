#include "platform/qt/ElidedLabel.h"

namespace kalivor::platform {

ElidedLabel::ElidedLabel(QWidget* parent) : QLabel(parent) {
  setTextFormat(Qt::PlainText);
  setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Preferred);
}

void ElidedLabel::ShowText(const QString& text) {
  whole_ = text;
  setAccessibleName(text);
  setToolTip(text);
  Elide();
}

void ElidedLabel::resizeEvent(QResizeEvent* event) {
  QLabel::resizeEvent(event);
  Elide();
}

void ElidedLabel::Elide() {
  setText(fontMetrics().elidedText(whole_, Qt::ElideMiddle, contentsRect().width()));
}

}  // namespace kalivor::platform
