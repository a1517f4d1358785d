#include "platform/plain/IniText.h"

#include <algorithm>

using namespace Qt::StringLiterals;

namespace kalivor::platform {
namespace {

constexpr QStringView kEscaped = u"abfnrtv\"\\'?";
constexpr QStringView kMeant = u"\a\b\f\n\r\t\v\"\\'?";

// Those of the escapes above that a value is written with.
constexpr int kControls = 7;

// The value of a digit, -1 when it is none.
int DigitOf(QChar c, int base) {
  const auto digit = static_cast<int>(QStringView(u"0123456789abcdef").indexOf(c, 0, Qt::CaseInsensitive));
  return digit < base ? digit : -1;
}

// The character of a code whose digits begin at `at`, which moves behind them.
QChar CodeAt(QStringView source, qsizetype& at, int base) {
  unsigned code = 0;
  for (; at < source.size() && DigitOf(source.at(at), base) >= 0; ++at)
    code = code * static_cast<unsigned>(base) + static_cast<unsigned>(DigitOf(source.at(at), base));
  return QChar(static_cast<char16_t>(code));
}

// The text that is meant by what stands behind the equals sign.
QString ValueOf(QStringView source) {
  QString text;
  for (qsizetype at = 0; at < source.size();) {
    const QChar c = source.at(at++);
    if (c == u'"') continue;
    if (c != u'\\') {
      text += c;
    } else if (at < source.size() && source.at(at) == u'x') {
      text += CodeAt(source, ++at, 16);
    } else if (at < source.size() && DigitOf(source.at(at), 8) >= 0) {
      text += CodeAt(source, at, 8);
    } else if (at < source.size()) {
      const qsizetype known = kEscaped.indexOf(source.at(at++));
      if (known >= 0) text += kMeant.at(known);
    }
  }
  if (text.startsWith(u"@@")) return text.sliced(1);
  if (text.startsWith(u"@String(") && text.endsWith(u')')) return text.sliced(8).chopped(1);
  return text;
}

QString Escaped(const QString& text) {
  QString source = text.startsWith(u'@') ? u"@"_s : QString();
  bool quotes = text.startsWith(u' ') || text.endsWith(u' ');
  bool afterCode = false;  // a digit would be taken as part of it
  for (const QChar c : text) {
    const qsizetype control = kMeant.left(kControls).indexOf(c);
    const bool isCode = c < u' ' || c.isSurrogate() || c.isSpace() || (afterCode && DigitOf(c, 16) >= 0);
    afterCode = false;
    if (control >= 0) {
      source += u'\\';
      source += kEscaped.at(control);
    } else if (isCode && c != u' ') {
      source += u"\\x"_s + QString::number(c.unicode(), 16);
      afterCode = true;
    } else {
      if (c == u'"' || c == u'\\') source += u'\\';
      source += c;
      quotes = quotes || c == u';' || c == u',' || c == u'=';
    }
  }
  return quotes ? u'"' + source + u'"' : source;
}

// The characters that sections and keys consist of in files of the library, which replaces all others.
bool IsName(QStringView text) {
  return !text.isEmpty() && std::all_of(text.begin(), text.end(), [](QChar c) {
    return (c.unicode() < 0x80 && c.isLetterOrNumber()) || QStringView(u"_-.%\\").contains(c);
  });
}

}  // namespace

QSettings::SettingsMap ReadIni(QByteArrayView bytes) {
  QSettings::SettingsMap values;
  QString section;  // with the "/" behind it
  bool skipped = false;
  const QString text = QString::fromUtf8(bytes).replace(u'\r', u'\n');
  for (const QStringView whole : QStringView(text).split(u'\n', Qt::SkipEmptyParts)) {
    const QStringView line = whole.trimmed();
    if (line.startsWith(u'[')) {
      const QString name = line.sliced(1).toString().section(u']', 0, 0);
      skipped = !IsName(name);
      section = name + u'/';
      continue;
    }
    const qsizetype equals = line.indexOf(u'=');
    const QStringView key = line.first(std::max<qsizetype>(0, equals)).trimmed();
    if (!skipped && IsName(key))
      values[section + key.toString()] = ValueOf(line.sliced(equals + 1).trimmed());
  }
  return values;
}

QByteArray WriteIni(const QSettings::SettingsMap& values) {
  QString alone;  // keys without a section stand before all sections
  QString sections;
  QString section;
  for (const auto& [name, value] : values.asKeyValueRange()) {
    const qsizetype slash = name.indexOf(u'/');
    const QString line = name.sliced(slash + 1) + u'=' + Escaped(value.toString()) + u'\n';
    if (slash < 0) {
      alone += line;
      continue;
    }
    if (section != name.first(slash)) {
      section = name.first(slash);
      sections += u"\n["_s + section + u"]\n"_s;
    }
    sections += line;
  }
  return (alone.isEmpty() ? sections.mid(1) : alone + sections).toUtf8();
}

}  // namespace kalivor::platform
