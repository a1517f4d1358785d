#include "check/CheckAddresses.h"

#include <QHash>
#include <QSet>
#include <algorithm>
#include <tuple>

#include "base/su.h"
#include "core/DefinitionFiles.h"

namespace kalivor {
namespace {

constexpr qsizetype kLongestUnwrappedName = 20;
constexpr qsizetype kSentDigits = 4;
constexpr int kMemory_bytes = 0x10000;

bool HasAddressLength(QStringView text) {
  return text.size() == 4 || text.size() == 8;
}

bool IsAddress(QStringView text) {
  return HasAddressLength(text) && su::IsHex(text);
}

// Where the parameters of a file lie in the controller's memory.
class MemoryCheck {
 public:
  explicit MemoryCheck(const FileFindings& findings) : findings_(findings) {}

  // `address`: 4 or 8 hexadecimal digits, the parameter's own offset included.
  void Place(const CheckedParameter& parameter, const QString& address) {
    if (address.size() > kSentDigits &&
        address.chopped(kSentDigits).count(u'0') != address.size() - kSentDigits) {
      findings_.Warning(parameter.line, u"Von der Adresse %1 werden nur die letzten vier Ziffern gesendet.",
                        QStringView(address));
    }
    if (parameter.size == 0) return;
    const int start = address.right(kSentDigits).toInt(nullptr, 16);
    if (parameter.sharesWord) {
      CheckChar(parameter, start);
    } else if (start % 2 != 0) {
      findings_.Error(parameter.line, u"Adresse %1 ist ungerade; nur char darf dort liegen.",
                      QStringView(address));
    }
    if (start + parameter.size > kMemory_bytes) {
      findings_.Error(parameter.line, u"Von Adresse %1 an reicht der Speicher nicht.", QStringView(address));
    }
    places_.push_back({start, start + parameter.size, &parameter});
  }

  void CheckOverlaps() {
    std::sort(places_.begin(), places_.end(), [](const Area& a, const Area& b) {
      return std::tie(a.start, a.parameter->line) < std::tie(b.start, b.parameter->line);
    });
    const Area* furthest = nullptr;
    for (const Area& area : places_) {
      if (furthest != nullptr && area.start < furthest->end) Report(*furthest->parameter, *area.parameter);
      if (furthest == nullptr || area.end > furthest->end) furthest = &area;
    }
  }

 private:
  struct Area {
    int start = 0;
    int end = 0;  ///< behind the last byte
    const CheckedParameter* parameter = nullptr;
  };

  // The program takes the upper byte of a word with its sign, the lower one without.
  void CheckChar(const CheckedParameter& parameter, int address) {
    const int highest = address % 2 == 0 ? 127 : 255;
    if (parameter.lowest < 0 || parameter.highest > highest) {
      findings_.Warning(
          parameter.line,
          u"Typ char an einer %1 Adresse: Werte außerhalb von 0 bis %2 werden verfälscht empfangen.",
          address % 2 == 0 ? u"geraden" : u"ungeraden", highest);
    }
  }

  void Report(const CheckedParameter& a, const CheckedParameter& b) {
    const auto& [first, second] =
        std::minmax(a, b, [](const auto& one, const auto& other) { return one.line < other.line; });
    findings_.Warning(second.line, u"Die Adressen von %1 überschneiden sich mit denen von %2 in Zeile %3.",
                      second.name, first.name, first.line);
  }

  const FileFindings& findings_;
  std::vector<Area> places_;
};

// The address list, as far as the parameters need it.
class ListCheck {
 public:
  ListCheck(const CheckedText& list, const QSet<QString>& needed)
      : items_(list.items.items), findings_(list.findings), needed_(needed) {
    if (IsAddress(GetField(list.heading, 1))) {
      Report(GetField(list.heading, 0), 1,
             u"Die erste Zeile gilt als Überschrift; diese Adresse wird nicht gelesen.");
    }
    for (std::size_t i = 0; i < items_.size(); ++i)
      CheckEntry(i);
  }

  [[nodiscard]] const QString* Find(const QString& name) const {
    const auto entry = entries_.constFind(name);
    return entry == entries_.constEnd() ? nullptr : &entry->address;
  }

 private:
  struct Entry {
    QString address;
    int line = 0;
  };

  void CheckEntry(std::size_t i) {
    const QString name = GetField(items_[i].text, 0);
    const QString address = GetField(items_[i].text, 1);
    const int line = items_[i].line;
    if (HasAddressLength(address)) {
      Take(name, address, line);
    } else if (!address.isEmpty()) {
      Report(name, line, u"Adresse %1 hat %2 Zeichen statt 4 oder 8 und wird nicht gelesen.", address,
             address.size());
    } else if (name.size() > kLongestUnwrappedName) {
      CheckWrapped(i, name);
    } else if (&items_[i] != wrappedAddress_) {
      Report(name, line, u"Name %1 ohne Adresse.", name);
    }
  }

  // The address of a wrapped entry is the first column of the next line.
  void CheckWrapped(std::size_t i, const QString& name) {
    const int line = items_[i].line;
    if (i + 1 == items_.size()) {
      findings_.Error(line, u"Die Datei endet nach dem umgebrochenen Namen %1.", name);
      return;
    }
    const TextItem& next = items_[i + 1];
    const QString wrapped = GetField(next.text, 0);
    if (!HasAddressLength(wrapped)) {
      Report(name, line, u"Umgebrochener Name %1 ohne Adresse in der nächsten Zeile.", name);
      return;
    }
    wrappedAddress_ = &next;
    if (!GetField(next.text, 1).isEmpty()) {
      Report(name, line,
             u"Als Adresse des umgebrochenen Namens %1 wird der Name %2 der nächsten Zeile gelesen.", name,
             wrapped);
    }
    Take(name, wrapped, next.line);
  }

  void Take(const QString& name, const QString& address, int line) {
    if (!su::IsHex(address)) {
      Report(name, line, u"Adresse %1 ist nicht hexadezimal.", address);
    }
    if (!needed_.contains(name)) return;
    const auto known = entries_.constFind(name);
    if (known != entries_.constEnd() && known->address != address) {
      findings_.Warning(line, u"%1 steht schon in Zeile %2 mit einer anderen Adresse; die letzte gilt.", name,
                        known->line);
    }
    entries_.insert(name, {address, line});
  }

  // A list holds much that no parameter needs; there a fault does no harm.
  template <typename... Values>
  void Report(const QString& name, int line, QStringView text, const Values&... values) {
    if (needed_.contains(name)) {
      findings_.Error(line, text, values...);
    } else {
      findings_.Warning(line, text, values...);
    }
  }

  const std::vector<TextItem>& items_;
  const FileFindings& findings_;
  const QSet<QString>& needed_;
  QHash<QString, Entry> entries_;
  const TextItem* wrappedAddress_ = nullptr;  // the last item that holds the address of the one before it
};

}  // namespace

void CheckOwnAddresses(const CheckedDefinitions& definitions, const FileFindings& findings) {
  MemoryCheck memory(findings);
  for (const CheckedParameter& parameter : definitions.parameters) {
    const QString& address = parameter.address;
    if (address == u"-") {
      findings.Error(parameter.line, u"Adresse fehlt.");
    } else if (!su::IsHex(address)) {
      findings.Error(parameter.line, u"Adresse %1 ist nicht hexadezimal.", address);
    } else if (!HasAddressLength(address)) {
      findings.Error(parameter.line, u"Adresse %1 hat %2 Zeichen statt 4 oder 8.", address, address.size());
    } else {
      memory.Place(parameter, address);
    }
  }
  memory.CheckOverlaps();
}

void CheckListedAddresses(const CheckedDefinitions& definitions, const FileFindings& findings,
                          const CheckedText& list) {
  QSet<QString> needed;
  for (const CheckedParameter& parameter : definitions.parameters) {
    if (!parameter.isPlantType) needed.insert(parameter.variable);
  }
  const ListCheck entries(list, needed);
  MemoryCheck memory(findings);
  for (const CheckedParameter& parameter : definitions.parameters) {
    if (parameter.isPlantType) continue;
    const QString* listed = entries.Find(parameter.variable);
    if (listed == nullptr) {
      findings.Error(parameter.line, u"Variable %1 steht nicht mit einer Adresse in %2.", parameter.variable,
                     list.findings.File());
    } else if (su::IsHex(*listed)) {
      memory.Place(parameter, parameter.offset == 0 ? *listed : AddOffset(*listed, parameter.offset));
    }
  }
  memory.CheckOverlaps();
}

}  // namespace kalivor
