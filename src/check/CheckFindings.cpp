#include "check/CheckFindings.h"

#include <utility>

using namespace Qt::StringLiterals;

namespace kalivor {
namespace {

QString Printable(QStringView text, qsizetype most) {
  QString shown = text.left(most).toString();
  for (QChar& c : shown) {
    if (!c.isPrint()) c = u'?';
  }
  if (text.size() > most) shown += u'…';
  return shown;
}

}  // namespace

void Findings::Add(Finding finding) {
  constexpr qsizetype longestFileName = 255;
  finding.file = Printable(finding.file, longestFileName);
  if (IsFull()) {
    more_ = true;
    moreErrors_ = moreErrors_ || finding.error;
    return;
  }
  // Files that several versions share are looked at once for each of them.
  const QString key = finding.file + u'\n' + QString::number(finding.line) + u'\n' + finding.text;
  if (known_.contains(key)) return;
  known_.insert(key);
  found_.push_back(std::move(finding));
}

std::vector<Finding> Findings::Take(const QString& table) {
  if (more_) {
    const QString text = u"Mehr als %1 Befunde; die weiteren werden nicht genannt."_s;
    found_.push_back({table, 0, moreErrors_, text.arg(kMost)});
  }
  return std::exchange(found_, {});
}

QString FileFindings::Shown(const QString& text) {
  constexpr qsizetype most = 60;
  return u"„"_s + Printable(text, most) + u"“"_s;
}

}  // namespace kalivor
