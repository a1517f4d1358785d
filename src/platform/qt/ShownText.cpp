#include "platform/qt/ShownText.h"

#include <QRegularExpression>

using namespace Qt::StringLiterals;

namespace kalivor::platform {

QString WithPlainLineBreaks(const QString& text) {
  static const QRegularExpression lineBreak(u"\r\n|\n\r|\r"_s);
  return QString(text).replace(lineBreak, u"\n"_s);
}

QString AsCaption(const QString& text) {
  return QString(text).replace(u'&', u"&&"_s);
}

}  // namespace kalivor::platform
