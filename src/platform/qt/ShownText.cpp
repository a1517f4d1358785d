#include "platform/qt/ShownText.h"

using namespace Qt::StringLiterals;

namespace kalivor::platform {
namespace {

bool IsBreak(QChar c) {
  return c == u'\r' || c == u'\n';
}

}  // namespace

QString WithPlainLineBreaks(const QString& text) {
  QString shown;
  for (qsizetype i = 0; i < text.size(); ++i) {
    if (!IsBreak(text.at(i))) {
      shown += text.at(i);
      continue;
    }
    shown += u'\n';
    if (i + 1 < text.size() && IsBreak(text.at(i + 1)) && text.at(i + 1) != text.at(i)) ++i;
  }
  return shown;
}

QString AsCaption(const QString& text) {
  return QString(text).replace(u'&', u"&&"_s);
}

}  // namespace kalivor::platform
