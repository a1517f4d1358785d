#include "platform/gui/FixedFont.h"

#include <QFontDatabase>
#include <QGuiApplication>

using namespace Qt::StringLiterals;

namespace kalivor::platform {

QFont FixedFont() {
  const QString named = u"Lucida Console"_s;
  QFont font =
      QFontDatabase::hasFamily(named) ? QFont(named) : QFontDatabase::systemFont(QFontDatabase::FixedFont);
  font.setStyleHint(QFont::Monospace);
  font.setFixedPitch(true);
  const QFont general = QGuiApplication::font();
  if (general.pointSizeF() > 0) {
    font.setPointSizeF(general.pointSizeF());
  } else {
    font.setPixelSize(general.pixelSize());
  }
  return font;
}

}  // namespace kalivor::platform
