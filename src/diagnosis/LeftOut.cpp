#include "diagnosis/LeftOut.h"

#include <algorithm>
#include <functional>

using namespace Qt::StringLiterals;

namespace kalivor {
namespace {

constexpr auto kOptions =
    QRegularExpression::CaseInsensitiveOption | QRegularExpression::UseUnicodePropertiesOption;

// "max" does not stand in "Maximum".
QString NamePattern(const QString& name) {
  return u"(?<![\\p{L}\\p{N}])"_s + QRegularExpression::escape(name) + u"(?![\\p{L}\\p{N}])"_s;
}

// "" for what is no folder below a root.
QString FolderPattern(const QString& folder) {
  static const QRegularExpression separators(u"[/\\\\]+"_s);
  QStringList parts = folder.split(separators);
  while (!parts.isEmpty() && parts.last().isEmpty())
    parts.removeLast();
  constexpr qsizetype kRootAndFolder = 2;
  if (parts.size() < kRootAndFolder) return {};
  for (QString& part : parts)
    part = QRegularExpression::escape(part);
  return parts.join(u"[/\\\\]+"_s) + u"(?![\\p{L}\\p{N}])"_s;
}

void AddPatterns(QStringList texts, QString (*patternOf)(const QString& text),
                 std::vector<QRegularExpression>& patterns) {
  // The longer ones may hold the shorter ones.
  std::ranges::sort(texts, std::greater(), &QString::size);
  for (const QString& text : texts) {
    const QString pattern = text.trimmed().isEmpty() ? QString() : patternOf(text);
    if (!pattern.isEmpty()) patterns.emplace_back(pattern, kOptions);
  }
}

}  // namespace

Discretion::Discretion(const LeftOut& leftOut) {
  AddPatterns(leftOut.folders, FolderPattern, patterns_);
  AddPatterns(leftOut.names, NamePattern, patterns_);
}

QString Discretion::Of(QString text) const {
  for (const QRegularExpression& pattern : patterns_)
    text.replace(pattern, u"…"_s);
  return text;
}

}  // namespace kalivor
