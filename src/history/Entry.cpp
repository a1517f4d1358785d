#include "history/Entry.h"

#include <algorithm>

using namespace Qt::StringLiterals;

namespace kalivor::history {

QString KindText(DeedKind kind) {
  switch (kind) {
    case DeedKind::Received:
      return u"empfangen"_s;
    case DeedKind::Sent:
      return u"gesendet"_s;
    case DeedKind::SentSafely:
      return u"sicher gesendet"_s;
    case DeedKind::Compared:
      return u"verglichen"_s;
    case DeedKind::Loaded:
      return u"geladen"_s;
    case DeedKind::Saved:
      return u"gespeichert"_s;
    case DeedKind::Reset:
      return u"zurückgesetzt"_s;
    case DeedKind::Restored:
      return u"wiederhergestellt"_s;
  }
  return {};
}

std::optional<DeedKind> KindOf(QStringView text) {
  const auto* kind = std::ranges::find(kKinds, text, [](DeedKind each) { return KindText(each); });
  return kind == std::end(kKinds) ? std::nullopt : std::optional(*kind);
}

bool ConcernsController(DeedKind kind) {
  return kind != DeedKind::Loaded && kind != DeedKind::Saved && kind != DeedKind::Reset;
}

}  // namespace kalivor::history
