#include "platform/plain/IniText.h"

#include <QStringList>
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
  const int digit = c >= u'0' && c <= u'9'   ? c.unicode() - u'0'
                    : c >= u'A' && c <= u'F' ? c.unicode() - u'A' + 10
                    : c >= u'a' && c <= u'f' ? c.unicode() - u'a' + 10
                                             : base;
  return digit < base ? digit : -1;
}

/// Turns what stands behind the equals sign into the text that is meant.
class ValueReader {
 public:
  explicit ValueReader(QStringView source) : source_(source) {}

  QString Read() {
    SkipBlanks();
    while (at_ < source_.size())
      Take(source_.at(at_++));
    DropBlanks();
    return text_;
  }

 private:
  void Take(QChar c) {
    if (c == u'\\') {
      TakeEscape();
    } else if (c == u'"') {
      quoted_ = !quoted_;
      kept_ = text_.size();
      if (!quoted_) SkipBlanks();
    } else if (c == u',' && !quoted_) {
      DropBlanks();
      text_ += c;
      kept_ = text_.size();
      SkipBlanks();
    } else {
      text_ += c;
      if (quoted_) kept_ = text_.size();
    }
  }

  void TakeEscape() {
    if (at_ == source_.size()) return;
    const QChar c = source_.at(at_++);
    if (c == u'x') {
      text_ += Code(16);
    } else if (DigitOf(c, 8) >= 0) {
      --at_;
      text_ += Code(8);
    } else if (const qsizetype known = kEscaped.indexOf(c); known >= 0) {
      text_ += kMeant.at(known);
    }
    kept_ = text_.size();
  }

  QChar Code(int base) {
    unsigned code = 0;
    for (; at_ < source_.size() && DigitOf(source_.at(at_), base) >= 0; ++at_)
      code = code * static_cast<unsigned>(base) + static_cast<unsigned>(DigitOf(source_.at(at_), base));
    return QChar(static_cast<char16_t>(code));
  }

  void SkipBlanks() {
    while (at_ < source_.size() && source_.at(at_).isSpace())
      ++at_;
  }

  // Blanks at the end that neither quotes nor an escape have asked for.
  void DropBlanks() {
    while (text_.size() > kept_ && text_.back().isSpace())
      text_.chop(1);
  }

  QStringView source_;
  qsizetype at_ = 0;
  bool quoted_ = false;
  QString text_;
  qsizetype kept_ = 0;  // so much of the text stays as it is
};

QString ValueOf(QStringView source) {
  QString text = ValueReader(source).Read();
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

IniValues ReadIni(QByteArrayView bytes) {
  IniValues values;
  QString section;
  bool skipped = false;
  const QString text = QString::fromUtf8(bytes).replace(u'\r', u'\n');
  for (const QStringView whole : QStringView(text).split(u'\n', Qt::SkipEmptyParts)) {
    const QStringView line = whole.trimmed();
    if (line.startsWith(u'[')) {
      const qsizetype end = line.indexOf(u']');
      const QStringView name = line.sliced(1, (end < 0 ? line.size() : end) - 1);
      skipped = !IsName(name);
      section = name.toString();
      continue;
    }
    const qsizetype equals = line.indexOf(u'=');
    const QStringView key = line.first(std::max<qsizetype>(0, equals)).trimmed();
    if (skipped || !IsName(key)) continue;
    const QString full = section.isEmpty() ? key.toString() : section + u'/' + key.toString();
    values[full] = ValueOf(line.sliced(equals + 1));
  }
  return values;
}

QByteArray WriteIni(const IniValues& values) {
  QString text;
  // Keys without a section stand before all sections.
  for (auto value = values.begin(); value != values.end(); ++value) {
    if (!value.key().contains(u'/')) text += value.key() + u'=' + Escaped(value.value()) + u'\n';
  }
  QString section;
  for (auto value = values.begin(); value != values.end(); ++value) {
    const qsizetype slash = value.key().indexOf(u'/');
    if (slash < 0) continue;
    if (section != value.key().left(slash)) {
      section = value.key().left(slash);
      text += (text.isEmpty() ? u"["_s : u"\n["_s) + section + u"]\n"_s;
    }
    text += value.key().sliced(slash + 1) + u'=' + Escaped(value.value()) + u'\n';
  }
  return text.toUtf8();
}

}  // namespace kalivor::platform
