#include "core/ValueSets.h"

#include <QHash>
#include <algorithm>
#include <cmath>

#include "core/ParameterTypes.h"

using namespace Qt::StringLiterals;

namespace kalivor {
namespace {

// Above it powers of ten leave the range of the stored numbers, and the tree refuses the parameter.
constexpr int kMostDecimals = 9;

// Says of each name that it is asked for how often it has been before.
class NameCounter {
 public:
  explicit NameCounter(std::size_t names) { counts_.reserve(static_cast<qsizetype>(names)); }

  int Next(QStringView name) { return counts_[name]++; }

 private:
  QHash<QStringView, int> counts_;
};

ValueSet SetOf(const Module1& module, Origin origin, const QString& name,
               ParameterValue (*valueOf)(const ParameterRecord&)) {
  ValueSet set;
  set.origin = origin;
  set.name = name;
  set.version = module.VersionList.SelectedText();
  set.values.reserve(static_cast<std::size_t>(module.ParCount));
  NameCounter counter(static_cast<std::size_t>(module.ParCount));
  for (int i = 1; i < module.ParCount; ++i) {
    const ParameterRecord& record = module.Par[i];
    set.values.push_back(
        {record.Variable, record.Typ, record.VarAdresse, counter.Next(record.Variable), valueOf(record)});
  }
  return set;
}

bool SameType(const FixedText<8>& left, const FixedText<8>& right) {
  const ParameterType& type = TypeOf(left);
  return &type == &TypeOf(right) && (type.kind != ValueKind::Unknown || left == right);
}

// What tells a value from others. The texts are those of a table or set, which stays as it is meanwhile.
struct Identity {
  QStringView name;
  QStringView address;  // "" where none is known
  int element = 0;
};

Identity IdentityOf(const SetValue& value, bool shortName) {
  const QStringView name = value.Variable;
  return {shortName ? name.left(kOldNameWidth) : name, value.VarAdresse, value.element};
}

// The parameters 1..ParCount - 1.
std::vector<Identity> IdentitiesOf(const ParameterTable& table, bool shortNames) {
  std::vector<Identity> identities;
  identities.reserve(static_cast<std::size_t>(table.ParCount));
  NameCounter counter(static_cast<std::size_t>(table.ParCount));
  for (int i = 1; i < table.ParCount; ++i) {
    const ParameterRecord& record = table.Par[i];
    const QStringView variable = record.Variable;
    const QStringView name = shortNames ? variable.left(kOldNameWidth) : variable;
    identities.push_back({name, record.VarAdresse, counter.Next(name)});
  }
  return identities;
}

// Finds which of its identities others mean.
class Directory {
 public:
  explicit Directory(std::vector<Identity> identities) : identities_(std::move(identities)) {
    byElement_.reserve(static_cast<qsizetype>(identities_.size()));
    for (std::size_t i = identities_.size(); i-- > 0;)
      byElement_.insert({identities_[i].name, identities_[i].element}, static_cast<int>(i));
  }

  [[nodiscard]] std::size_t Size() const { return identities_.size(); }

  // For each of `sought` its position here, -1: none; each position is meant once. What both sides know the
  // address of goes before what is known by its number.
  [[nodiscard]] std::vector<int> Match(const std::vector<Identity>& sought) const {
    std::vector<int> found(sought.size(), -1);
    std::vector<bool> taken(identities_.size(), false);
    const auto pass = [&](auto&& find) {
      for (std::size_t i = 0; i < sought.size(); ++i) {
        if (found[i] >= 0) continue;
        const int at = find(sought[i]);
        if (at < 0 || taken[static_cast<std::size_t>(at)]) continue;
        taken[static_cast<std::size_t>(at)] = true;
        found[i] = at;
      }
    };
    pass([this](const Identity& one) { return ByElementAndAddress(one); });
    bool addressLeft = false;
    for (std::size_t i = 0; i < sought.size(); ++i)
      addressLeft = addressLeft || (found[i] < 0 && !sought[i].address.isEmpty());
    if (addressLeft) {
      Addresses addresses = AddressesBut(taken);
      pass([&addresses](const Identity& one) { return TakeAddress(addresses, one); });
    }
    pass([this](const Identity& one) { return ByElement(one); });
    return found;
  }

 private:
  using Addresses = QMultiHash<std::pair<QStringView, QStringView>, int>;

  [[nodiscard]] int At(const Identity& sought) const {
    return byElement_.value({sought.name, sought.element}, -1);
  }
  [[nodiscard]] QStringView AddressAt(int at) const {
    return identities_[static_cast<std::size_t>(at)].address;
  }

  [[nodiscard]] int ByElementAndAddress(const Identity& sought) const {
    if (sought.address.isEmpty()) return -1;
    const int at = At(sought);
    return at >= 0 && AddressAt(at) == sought.address ? at : -1;
  }

  [[nodiscard]] Addresses AddressesBut(const std::vector<bool>& taken) const {
    Addresses addresses;
    // The first of equal ones comes first when it is inserted last.
    for (std::size_t i = identities_.size(); i-- > 0;) {
      if (!taken[i]) addresses.insert({identities_[i].name, identities_[i].address}, static_cast<int>(i));
    }
    return addresses;
  }

  // An address may stand at several of one name: each is handed out once.
  static int TakeAddress(Addresses& addresses, const Identity& sought) {
    const auto found = addresses.find({sought.name, sought.address});
    if (sought.address.isEmpty() || found == addresses.end()) return -1;
    const int at = *found;
    addresses.erase(found);
    return at;
  }

  // Two addresses that are known and differ are two elements; but of a name that stands for one parameter the
  // address is of no account.
  [[nodiscard]] int ByElement(const Identity& sought) const {
    const int at = At(sought);
    if (at < 0 || sought.address.isEmpty() || AddressAt(at).isEmpty()) return at;
    return sought.element == 0 && !byElement_.contains({sought.name, 1}) ? at : -1;
  }

  std::vector<Identity> identities_;
  QHash<std::pair<QStringView, int>, int> byElement_;
};

// The values of a set by the parameters that they belong to.
struct Placed {
  std::vector<int> atParameter;  // position in the set for each parameter from 1 on, -1: none
  std::vector<int> unknown;      // positions of the values that the definitions do not know
};

// `parameters` has names as long as the set's.
Placed Place(const Directory& parameters, const ValueSet& set) {
  std::vector<Identity> sought;
  sought.reserve(set.values.size());
  for (const SetValue& value : set.values)
    sought.push_back(IdentityOf(value, set.shortNames));
  const std::vector<int> found = parameters.Match(sought);
  Placed placed{std::vector<int>(parameters.Size(), -1), {}};
  for (std::size_t i = 0; i < found.size(); ++i) {
    if (found[i] < 0) {
      placed.unknown.push_back(static_cast<int>(i));
    } else {
      placed.atParameter[static_cast<std::size_t>(found[i])] = static_cast<int>(i);
    }
  }
  return placed;
}

std::vector<Identity> UnknownOf(const ValueSet& set, const Placed& placed, bool shortNames) {
  std::vector<Identity> identities;
  for (const int at : placed.unknown)
    identities.push_back(IdentityOf(set.values[static_cast<std::size_t>(at)], shortNames));
  return identities;
}

// A record for what the definitions do not know.
ParameterRecord RecordOf(const SetValue& value) {
  ParameterRecord record;
  record.Typ = value.Typ;
  return record;
}

QStringView WithoutPadding(QStringView text) {
  while (text.endsWith(u' '))
    text.chop(1);
  return text;
}

// What of a text counts for the record; a type without a length has no end.
QStringView Counting(const ParameterRecord& record, const QString& text) {
  const int length = StringLength(record);
  return WithoutPadding(length > 0 ? QStringView(text).left(length) : QStringView(text));
}

// What the record says about values of that type: one that the definitions give another type is judged by its
// own.
ParameterRecord JudgedBy(const ParameterRecord& record, const SetValue& value) {
  if (SameType(record.Typ, value.Typ)) return record;
  ParameterRecord judge = record;
  judge.Typ = value.Typ;
  return judge;
}

// `record` null: the definitions do not know the variable.
Difference DifferenceOf(const ParameterRecord* record, const SetValue* left, const SetValue* right) {
  if ((left != nullptr && !left->read) || (right != nullptr && !right->read)) return Difference::NotRead;
  if (right == nullptr) return Difference::OnlyLeft;
  if (left == nullptr) return Difference::OnlyRight;
  if (!SameType(left->Typ, right->Typ)) return Difference::OtherType;
  const bool same = record != nullptr && SameType(record->Typ, left->Typ)
                        ? SameValue(*record, left->value, right->value)
                        : SameValue(RecordOf(*left), left->value, right->value);
  return same ? Difference::Equal : Difference::Different;
}

ComparedValue Compared(const ParameterTable& definitions, int index, const ValueSet& left, int atLeft,
                       const ValueSet& right, int atRight) {
  const SetValue* const leftValue = ValueAt(left, atLeft);
  const SetValue* const rightValue = ValueAt(right, atRight);
  const ParameterRecord* const record = index > 0 ? &definitions.Par[index] : nullptr;
  const auto outside = [record](const SetValue* value) {
    return record != nullptr && value != nullptr && value->read && SameType(record->Typ, value->Typ) &&
           IsOutside(*record, value->value);
  };
  ComparedValue row{index, Difference::NotCompared, atLeft, atRight, outside(leftValue), outside(rightValue)};
  // Who was not asked for a parameter may know it; but what the definitions do not know nobody was asked for.
  const bool notAsked = record != nullptr &&
                        ((leftValue == nullptr && left.partial) || (rightValue == nullptr && right.partial));
  if (!notAsked) row.difference = DifferenceOf(record, leftValue, rightValue);
  return row;
}

QString ReadingFailure(const QString& path, const QString& description) {
  return u"Fehler beim lesen von\r\n"_s + path + u"\r\n"_s + description;
}

// The places of a number's digits: `decimals` are behind the point, and `shown` of them always.
struct Places {
  int decimals = 0;
  int shown = 0;
};

// As the tree takes them.
Places PlacesOf(const ParameterRecord& record) {
  const int dropped = std::max<int>(0, record.Zahl2);
  const int decimals = std::max(0, dropped + record.Zahl1);
  return {decimals, std::clamp<int>(record.Zahl1, 0, decimals)};
}

}  // namespace

ValueSet TableValues(const Module1& module) {
  return SetOf(module, Origin::Table, u"PC"_s, [](const ParameterRecord& record) {
    return ParameterValue{record.Wert, record.WertText};
  });
}

ValueSet StandardValues(const Module1& module) {
  return SetOf(module, Origin::Standard, u"Standardwerte"_s, [](const ParameterRecord& record) {
    return ParameterValue{record.Standard, record.StandardText};
  });
}

ValueSet FileValues(const ValueFileContent& content, const QString& path) {
  ValueSet set;
  set.origin = Origin::File;
  set.name = path;
  set.version = content.version;
  set.shortNames = content.recordLength == kOldRecord_bytes;
  set.values.reserve(content.records.size());
  NameCounter counter(content.records.size());
  for (const ValueRecord& record : content.records) {
    set.values.push_back(
        {record.Variable, record.Typ, {}, counter.Next(record.Variable), {record.Wert, record.WertText}});
  }
  return set;
}

SetResult ReadFileValues(platform::FileSystem& files, const QString& path) {
  const platform::FileContent file = files.Read(path, kLargestValueFile_bytes);
  if (!file.Ok()) return {{}, ReadingFailure(path, file.error)};
  const ValueFileContent content = ParseValueFile(file.bytes);
  if (!content.hasHeader) return {{}, ReadingFailure(path, u"Die Datei ist keine Wertedatei."_s)};
  return {FileValues(content, path)};
}

QString VersionFault(const VersionTable& versions, const ValueSet& set) {
  if (versions.VersionList.Find(set.version) >= 0) return {};
  return ReadingFailure(set.name, u"Unbekannte ReglerVersion: "_s + set.version);
}

QString DifferenceText(Difference difference) {
  switch (difference) {
    case Difference::NotCompared:
      return {};
    case Difference::Equal:
      return u"gleich"_s;
    case Difference::Different:
      return u"verschieden"_s;
    case Difference::OnlyLeft:
      return u"nur links"_s;
    case Difference::OnlyRight:
      return u"nur rechts"_s;
    case Difference::OtherType:
      return u"anderer Typ"_s;
    case Difference::NotRead:
      return u"nicht gelesen"_s;
  }
  return {};
}

bool Differs(Difference difference) {
  return difference != Difference::NotCompared && difference != Difference::Equal;
}

const SetValue* ValueAt(const ValueSet& set, int position) {
  return position < 0 ? nullptr : &set.values[static_cast<std::size_t>(position)];
}

std::vector<ComparedValue> CompareSets(const ParameterTable& definitions, const ValueSet& left,
                                       const ValueSet& right) {
  const Directory parameters(IdentitiesOf(definitions, left.shortNames));
  const Placed placedLeft = Place(parameters, left);
  const Placed placedRight = left.shortNames == right.shortNames
                                 ? Place(parameters, right)
                                 : Place(Directory(IdentitiesOf(definitions, right.shortNames)), right);
  std::vector<ComparedValue> rows;
  rows.reserve(placedLeft.atParameter.size());
  const auto add = [&](int index, int atLeft, int atRight) {
    rows.push_back(Compared(definitions, index, left, atLeft, right, atRight));
  };
  for (std::size_t i = 0; i < placedLeft.atParameter.size(); ++i) {
    const int atLeft = placedLeft.atParameter[i];
    const int atRight = placedRight.atParameter[i];
    if (atLeft >= 0 || atRight >= 0) add(static_cast<int>(i) + 1, atLeft, atRight);
  }
  const bool shortNames = left.shortNames || right.shortNames;
  const Directory unknownLeft(UnknownOf(left, placedLeft, shortNames));
  const std::vector<int> partners = unknownLeft.Match(UnknownOf(right, placedRight, shortNames));
  std::vector<int> rightOf(unknownLeft.Size(), -1);
  for (std::size_t i = 0; i < partners.size(); ++i) {
    if (partners[i] >= 0) rightOf[static_cast<std::size_t>(partners[i])] = placedRight.unknown[i];
  }
  for (std::size_t i = 0; i < rightOf.size(); ++i)
    add(0, placedLeft.unknown[i], rightOf[i]);
  for (std::size_t i = 0; i < partners.size(); ++i) {
    if (partners[i] < 0) add(0, -1, placedRight.unknown[i]);
  }
  return rows;
}

bool IsCut(const ParameterRecord& record, const SetValue& value, Origin origin) {
  if (!value.read || TypeOf(record.Typ).kind != ValueKind::Text) return false;
  const qsizetype length = WithoutPadding(value.value.text).size();
  return length > Counting(record, value.value.text).size() ||
         (origin == Origin::File && length == kFileTextWidth &&
          StringLength(RecordOf(value)) > kFileTextWidth);
}

ConversionAccount AccountOf(const ParameterTable& definitions, const ValueSet& set) {
  const Placed placed = Place(Directory(IdentitiesOf(definitions, set.shortNames)), set);
  ConversionAccount account;
  account.onlyInSet = static_cast<int>(placed.unknown.size());
  for (std::size_t i = 0; i < placed.atParameter.size(); ++i) {
    const SetValue* const value = ValueAt(set, placed.atParameter[i]);
    const ParameterRecord& record = definitions.Par[static_cast<int>(i) + 1];
    if (value == nullptr) {
      ++account.onlyInDefinitions;
    } else if (!SameType(record.Typ, value->Typ)) {
      ++account.otherType;
    } else {
      ++account.matched;
      if (IsCut(record, *value, set.origin)) ++account.cutTexts;
    }
  }
  return account;
}

bool IsOutside(const ParameterRecord& record, const ParameterValue& value) {
  return TypeOf(record.Typ).kind != ValueKind::Text &&
         (value.number < record.Min || value.number > record.Max);
}

bool SameValue(const ParameterRecord& record, const ParameterValue& left, const ParameterValue& right) {
  switch (TypeOf(record.Typ).kind) {
    case ValueKind::Number:
      return left.number == right.number;
    case ValueKind::Text:
      return Counting(record, left.text) == Counting(record, right.text);
    case ValueKind::Unknown:
      break;
  }
  return left.number == right.number && WithoutPadding(left.text) == WithoutPadding(right.text);
}

QString ExactNumber(const ParameterRecord& record, qint64 number) {
  const Places places = PlacesOf(record);
  if (places.decimals > kMostDecimals) return u"%1E-%2"_s.arg(number).arg(places.decimals);
  QString digits = QString::number(std::abs(number)).rightJustified(places.decimals + 1, u'0');
  const qsizetype whole = digits.size() - places.decimals;
  qsizetype length = digits.size();
  while (length > whole + places.shown && digits.at(length - 1) == u'0')
    --length;
  digits.truncate(length);
  if (length > whole) digits.insert(whole, u'.');
  return number < 0 ? u'-' + digits : digits;
}

double InDisplayUnits(const ParameterRecord& record, qint64 number) {
  return static_cast<double>(number) / std::pow(10.0, PlacesOf(record).decimals);
}

QString ExactText(const ParameterRecord& record, const ParameterValue& value) {
  return TypeOf(record.Typ).kind == ValueKind::Text ? WithoutTrailingBlanks(value.text)
                                                    : ExactNumber(record, value.number);
}

QString ExactText(const ParameterRecord& record, const SetValue& value) {
  return value.read ? ExactText(JudgedBy(record, value), value.value) : QString();
}

}  // namespace kalivor
