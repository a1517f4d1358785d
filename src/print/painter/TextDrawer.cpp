#include "print/painter/TextDrawer.h"

#include <QFontMetricsF>
#include <QTextLayout>
#include <algorithm>

#include "platform/gui/FixedFont.h"
#include "print/pages/Geometry.h"

namespace kalivor::print {
namespace {

// Fonts have whole sizes, so text is drawn in thousandths of a centimetre.
constexpr double kUnitsPerCentimetre = 1000;

QString Printable(QString text) {
  for (QChar& c : text) {
    if (c.unicode() < 0x20 || (c.unicode() >= 0x7F && c.unicode() < 0xA0)) c = u' ';
  }
  return text;
}

}  // namespace

TextDrawer::TextDrawer(QPainter& painter, bool bold, double size_pt)
    : painter_(painter), font_(platform::FixedFont()) {
  font_.setBold(bold);
  font_.setKerning(false);
  font_.setHintingPreference(QFont::PreferNoHinting);
  constexpr int kTrial = 1000;
  font_.setPixelSize(kTrial);
  const double pitch = QFontMetricsF(font_).horizontalAdvance(u'0') / kTrial;
  font_.setPixelSize(std::max(1, static_cast<int>(TextWidth_cm(1, size_pt) * kUnitsPerCentimetre / pitch)));
  height_ = QFontMetricsF(font_).height() / kUnitsPerCentimetre;
}

void TextDrawer::Draw(double x, double y, double room, const QString& text, Qt::Alignment alignment) const {
  QTextLayout layout(Printable(text), font_);
  layout.beginLayout();
  QTextLine line = layout.createLine();
  if (!line.isValid()) return;
  line.setNumColumns(static_cast<int>(text.size()));
  layout.endLayout();
  const double width = line.naturalTextWidth() / kUnitsPerCentimetre;
  const double narrower = width > room ? room / width : 1;
  const double free = alignment.testFlag(Qt::AlignRight) ? room - width * narrower : 0;
  painter_.save();
  painter_.translate(x + free, y);
  painter_.scale(narrower / kUnitsPerCentimetre, 1 / kUnitsPerCentimetre);
  layout.draw(&painter_, QPointF());
  painter_.restore();
}

}  // namespace kalivor::print
