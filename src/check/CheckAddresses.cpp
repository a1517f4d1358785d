#include "check/CheckAddresses.h"

#include <QHash>
#include <QSet>
#include <algorithm>
#include <tuple>

#include "core/DefinitionFiles.h"

using namespace Qt::StringLiterals;

namespace kalivor {
namespace {

constexpr qsizetype kLongestUnwrappedName = 20;
constexpr qsizetype kSentDigits = 4;
constexpr int kMemory_bytes = 0x10000;

bool HasAddressLength(QStringView text) {
  return text.size() == 4 || text.size() == 8;
}

bool IsHexadecimal(QStringView text) {
  return std::all_of(text.begin(), text.end(), [](QChar c) {
    return (c >= u'0' && c <= u'9') || (c >= u'A' && c <= u'F') || (c >= u'a' && c <= u'f');
  });
}

bool IsAddress(QStringView text) {
  return HasAddressLength(text) && IsHexadecimal(text);
}

// Where the parameters of a file lie in the controller's memory.
class MemoryCheck {
 public:
  MemoryCheck(const QString& file, Findings& findings) : file_(file), findings_(findings) {}

  // `address`: 4 or 8 hexadecimal digits, the parameter's own offset included.
  void Place(const CheckedParameter& parameter, const QString& address) {
    if (address.size() > kSentDigits &&
        address.chopped(kSentDigits).count(u'0') != address.size() - kSentDigits) {
      findings_.Warning(file_, parameter.line,
                        u"Von der Adresse %1 werden nur die letzten vier Ziffern gesendet."_s.arg(address));
    }
    if (parameter.size == 0) return;
    const int start = address.right(kSentDigits).toInt(nullptr, 16);
    if (parameter.sharesWord) {
      CheckChar(parameter, start);
    } else if (start % 2 != 0) {
      findings_.Error(file_, parameter.line,
                      u"Adresse %1 ist ungerade; nur char darf dort liegen."_s.arg(address));
    }
    if (start + parameter.size > kMemory_bytes) {
      findings_.Error(file_, parameter.line, u"Von Adresse %1 an reicht der Speicher nicht."_s.arg(address));
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
          file_, parameter.line,
          u"Typ char an einer %1 Adresse: Werte außerhalb von 0 bis %2 werden verfälscht empfangen."_s
              .arg(address % 2 == 0 ? u"geraden"_s : u"ungeraden"_s)
              .arg(highest));
    }
  }

  void Report(const CheckedParameter& a, const CheckedParameter& b) {
    const CheckedParameter& first = a.line < b.line ? a : b;
    const CheckedParameter& second = a.line < b.line ? b : a;
    findings_.Warning(file_, second.line,
                      u"Die Adressen von %1 überschneiden sich mit denen von %2 in Zeile %3."_s.arg(
                          Quoted(second.name), Quoted(first.name), QString::number(first.line)));
  }

  const QString& file_;
  Findings& findings_;
  std::vector<Area> places_;
};

// The address list, as far as the parameters need it.
class ListCheck {
 public:
  ListCheck(const CheckedText& list, const QString& file, const QSet<QString>& needed, Findings& findings)
      : items_(list.items.items), file_(file), needed_(needed), findings_(findings) {
    if (IsAddress(GetField(list.heading, 1))) {
      Report(GetField(list.heading, 0), 1,
             u"Die erste Zeile gilt als Überschrift; diese Adresse wird nicht gelesen."_s);
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
      Report(name, line,
             u"Adresse %1 hat %2 Zeichen statt 4 oder 8 und wird nicht gelesen."_s.arg(
                 Quoted(address), QString::number(address.size())));
    } else if (name.size() > kLongestUnwrappedName) {
      CheckWrapped(i, name);
    } else if (!isTakenByPrevious_) {
      Report(name, line, u"Name %1 ohne Adresse."_s.arg(Quoted(name)));
    }
    isTakenByPrevious_ = takesNext_;
    takesNext_ = false;
  }

  // The address of a wrapped entry is the first column of the next line.
  void CheckWrapped(std::size_t i, const QString& name) {
    const int line = items_[i].line;
    if (i + 1 == items_.size()) {
      findings_.Error(file_, line, u"Die Datei endet nach dem umgebrochenen Namen %1."_s.arg(Quoted(name)));
      return;
    }
    const TextItem& next = items_[i + 1];
    const QString wrapped = GetField(next.text, 0);
    if (!HasAddressLength(wrapped)) {
      Report(name, line, u"Umgebrochener Name %1 ohne Adresse in der nächsten Zeile."_s.arg(Quoted(name)));
      return;
    }
    takesNext_ = true;
    if (!GetField(next.text, 1).isEmpty()) {
      Report(name, line,
             u"Als Adresse des umgebrochenen Namens %1 wird der Name %2 der nächsten Zeile gelesen."_s.arg(
                 Quoted(name), Quoted(wrapped)));
    }
    Take(name, wrapped, next.line);
  }

  void Take(const QString& name, const QString& address, int line) {
    if (!IsHexadecimal(address)) {
      Report(name, line, u"Adresse %1 ist nicht hexadezimal."_s.arg(Quoted(address)));
    }
    if (!needed_.contains(name)) return;
    const auto known = entries_.constFind(name);
    if (known != entries_.constEnd() && known->address != address) {
      findings_.Warning(file_, line,
                        u"%1 steht schon in Zeile %2 mit einer anderen Adresse; die letzte gilt."_s.arg(
                            Quoted(name), QString::number(known->line)));
    }
    entries_.insert(name, {address, line});
  }

  // A list holds much that no parameter needs; there a fault does no harm.
  void Report(const QString& name, int line, const QString& text) {
    if (needed_.contains(name)) {
      findings_.Error(file_, line, text);
    } else {
      findings_.Warning(file_, line, text);
    }
  }

  const std::vector<TextItem>& items_;
  const QString& file_;
  const QSet<QString>& needed_;
  Findings& findings_;
  QHash<QString, Entry> entries_;
  bool takesNext_ = false;
  bool isTakenByPrevious_ = false;
};

}  // namespace

void CheckOwnAddresses(const CheckedDefinitions& definitions, const QString& file, Findings& findings) {
  MemoryCheck memory(file, findings);
  for (const CheckedParameter& parameter : definitions.parameters) {
    const QString& address = parameter.address;
    if (address == u"-") {
      findings.Error(file, parameter.line, u"Adresse fehlt."_s);
    } else if (!IsHexadecimal(address)) {
      findings.Error(file, parameter.line, u"Adresse %1 ist nicht hexadezimal."_s.arg(Quoted(address)));
    } else if (!HasAddressLength(address)) {
      findings.Error(file, parameter.line,
                     u"Adresse %1 hat %2 Zeichen statt 4 oder 8."_s.arg(Quoted(address),
                                                                        QString::number(address.size())));
    } else {
      memory.Place(parameter, address);
    }
  }
  memory.CheckOverlaps();
}

void CheckListedAddresses(const CheckedDefinitions& definitions, const QString& file, const CheckedText& list,
                          const QString& listFile, Findings& findings) {
  QSet<QString> needed;
  for (const CheckedParameter& parameter : definitions.parameters) {
    if (!parameter.isPlantType) needed.insert(parameter.variable);
  }
  const ListCheck entries(list, listFile, needed, findings);
  MemoryCheck memory(file, findings);
  for (const CheckedParameter& parameter : definitions.parameters) {
    if (parameter.isPlantType) continue;
    const QString* listed = entries.Find(parameter.variable);
    if (listed == nullptr) {
      findings.Error(file, parameter.line,
                     u"Variable %1 steht nicht mit einer Adresse in %2."_s.arg(Quoted(parameter.variable),
                                                                               Quoted(listFile)));
    } else if (IsHexadecimal(*listed)) {
      memory.Place(parameter, parameter.offset == 0 ? *listed : AddOffset(*listed, parameter.offset));
    }
  }
  memory.CheckOverlaps();
}

}  // namespace kalivor
