// Templates of service reports: any bytes, filled in with texts that are as hostile.
#include <QStringDecoder>

#include "Targets.h"
#include "history/ServiceReport.h"

using namespace Qt::StringLiterals;

namespace kalivor::fuzz {
namespace {

// Would be a mark or an element if it were taken for one.
constexpr QStringView kHostile = u"<i>{{titel}}&\n{{#werte}}</i>";

history::ServiceVisit Visit() {
  const history::Stamp stamp{1, QDateTime(QDate(2026, 3, 9), QTime(8, 0), Qt::UTC), kHostile.toString()};
  const QString text = kHostile.toString();
  history::ServiceEntry entry;
  entry.entry.stamp = stamp;
  entry.entry.kind = DeedKind::SentSafely;
  entry.entry.version = entry.entry.plantType = entry.entry.port = text;
  entry.entry.outcome = entry.entry.remark = entry.entry.quality = text;
  entry.changes.assign(3, {1, text, text, text, text, text, text, text, text, text});
  entry.remarks = {{{}, {}, stamp, text}};
  return {{{}, text, text, text}, {entry, entry}};
}

bool StartsError(const QString& error) {
  return error.startsWith(u"Zeile "_s) || error.startsWith(u"Die Vorlage "_s);
}

}  // namespace

void ServiceTemplatePage(QByteArrayView input) {
  static const history::TemplateRow values = [] {
    const QString text = kHostile.toString();
    return history::ServiceValues(Visit(), {text, text, text, text, 10, 10});
  }();
  const history::ServiceTemplate::Parsed parsed =
      history::ServiceTemplate::Parse(input.toByteArray(), history::ServiceScope());
  const history::ServiceTemplate::Page page = parsed.page.Render(values);
  if (!parsed.error.isEmpty()) {
    Require(StartsError(parsed.error), "an error names its line");
    Require(page.html.isEmpty(), "nothing comes of a template with an error");
    return;
  }
  Require(page.html.size() <= history::ServiceTemplate::kLongestPage, "a page has a largest length");
  if (!page.error.isEmpty()) return;
  QStringDecoder decoder(QStringDecoder::Utf8);
  const QString text = decoder(input);
  // Of elements and marks there are those of the template alone, however often it repeats them.
  if (!text.contains(u"<i>"_s)) Require(!page.html.contains(u"<i>"_s), "no text is taken as HTML");
  if (!text.contains(u"{{"_s)) Require(page.html == text, "what is no mark stays as it is");
  // Filling in nothing takes no more than the template has.
  Require(parsed.page.Render({}).html.size() <= text.size(), "nothing comes of nothing");
}

}  // namespace kalivor::fuzz
