#include "check/FindingsText.h"

#include <QSet>
#include <QStringList>
#include <algorithm>

using namespace Qt::StringLiterals;

namespace kalivor {
namespace {

QString Count(qsizetype count, QStringView one, QStringView several) {
  return u"%1 %2"_s.arg(count).arg(count == 1 ? one : several);
}

}  // namespace

QString SeverityText(const Finding& finding) {
  return finding.error ? u"Fehler"_s : u"Warnung"_s;
}

QString SummaryOf(const std::vector<Finding>& findings) {
  if (findings.empty()) return u"Keine Beanstandungen"_s;
  const auto errors =
      std::count_if(findings.begin(), findings.end(), [](const Finding& finding) { return finding.error; });
  const auto warnings = static_cast<qsizetype>(findings.size()) - errors;
  QSet<QString> files;
  for (const Finding& finding : findings)
    files.insert(finding.file);
  QStringList kinds;
  if (errors > 0) kinds << Count(errors, u"Fehler", u"Fehler");
  if (warnings > 0) kinds << Count(warnings, u"Warnung", u"Warnungen");
  return kinds.join(u", "_s) + u" in "_s + Count(files.size(), u"Datei", u"Dateien");
}

}  // namespace kalivor
