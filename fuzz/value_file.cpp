// Value file: any bytes as the file, read twice; what is saved reads back the same.
#include <QtEndian>
#include <algorithm>
#include <array>
#include <memory>
#include <vector>

#include "Targets.h"
#include "World.h"
#include "base/Windows1252.h"
#include "core/ParameterList.h"
#include "core/ValueFileFormat.h"
#include "core/ValueFiles.h"
#include "core/ValueSets.h"

using namespace Qt::StringLiterals;

namespace kalivor::fuzz {
namespace {

constexpr int kParameters = 7;

// Names that occur twice, are longer than a field, or share what fits into a field.
const QString& NameOf(int index) {
  static const QString names[kParameters] = {u"N1"_s,
                                             u"N2"_s,
                                             u"N1"_s,
                                             u""_s,
                                             u"_Name_mit_25_Buchstaben__"_s,
                                             u"_Name_mit_25_Buchstaben_2"_s,
                                             u"_Name_mit_mehr_als_30_Buchstaben"_s};
  return names[index - 1];
}

struct Value {
  qint32 number = 0;
  QString text;
  FixedText<8> type;
  bool operator==(const Value&) const = default;
};
using Values = std::array<Value, kParameters>;

Values ValuesOf(const Module1& module) {
  Values values;
  for (int i = 1; i <= kParameters; ++i)
    values[static_cast<std::size_t>(i - 1)] = {module.Par[i].Wert, module.Par[i].WertText, module.Par[i].Typ};
  return values;
}

ParameterRecord RecordOf(int index) {
  ParameterRecord record;
  // The tree shows one of them: its texts have their own target.
  record.Zusatz = index == 1 ? u"Luft"_s : u"Wasser"_s;
  record.Variable = NameOf(index);
  record.Wert = index;
  record.WertText = u"alt"_s;
  record.Typ = index % 3 == 0 ? u"string8"_s : u"int"_s;
  return record;
}

void Reset(World& world, quint8 marks) {
  static const std::array<ParameterRecord, kParameters> records = [] {
    std::array<ParameterRecord, kParameters> made;
    for (int i = 1; i <= kParameters; ++i)
      made[static_cast<std::size_t>(i - 1)] = RecordOf(i);
    return made;
  }();
  Module1& module = world.module;
  module.ParCount = kParameters + 1;
  for (int i = 1; i <= kParameters; ++i) {
    module.Par[i] = records[static_cast<std::size_t>(i - 1)];
    module.ParNode[i] = (marks >> (i - 1) & 1) != 0 ? kTrue : kFalse;
  }
  world.box.texts.clear();
  world.choice.questions.clear();
}

QString WithoutBlanks(QString text) {
  while (text.endsWith(u' '))
    text.chop(1);
  return text;
}

// What the file says, read by its layout: number 4, text 20, name 30 or 20, type 8 bytes.
struct PlainFile {
  explicit PlainFile(const QByteArray& bytes) {
    const bool old = (bytes.size() > 53 && bytes.at(53) != ' ') ||
                     (bytes.size() % 62 != 0 && bytes.size() % 52 == 0 && !bytes.isEmpty());
    nameWidth = old ? 20 : 30;
    const int length = 32 + nameWidth;
    for (qsizetype at = 0; at + length <= bytes.size(); at += length) {
      Record record;
      record.value.number = qFromLittleEndian<qint32>(bytes.data() + at);
      record.value.text = TextFromBytes(bytes.mid(at + 4, 20));
      record.name = WithoutBlanks(TextFromBytes(bytes.mid(at + 24, nameWidth)));
      record.value.type = TextFromBytes(bytes.mid(at + 24 + nameWidth, 8));
      records.push_back(record);
    }
  }

  struct Record {
    QString name;
    Value value;
  };
  int nameWidth = 30;
  std::vector<Record> records;  // the first is the head
};

// The parameter that a record goes to, 0 for none.
int PlainFind(const PlainFile& file, const QString& name) {
  for (int i = 1; i <= kParameters; ++i) {
    if (NameOf(i) == name || (file.nameWidth == 20 && NameOf(i).left(20) == name)) return i;
  }
  return 0;
}

Values Expected(const PlainFile& file, const Module1& before) {
  Values values = ValuesOf(before);
  for (std::size_t i = 1; i < file.records.size(); ++i) {
    const int index = PlainFind(file, file.records[i].name);
    if (index != 0 && before.ParNode[index] != kFalse) {
      values[static_cast<std::size_t>(index - 1)] = file.records[i].value;
    }
  }
  return values;
}

QString AsStored(const QString& text, int width) {
  return TextFromBytes(BytesFromText(text.leftJustified(width, u' ', true)));
}

// Saves the values and reads them back into a table of other values.
void CheckSaving(World& world) {
  const QString path = u"saved"_s;
  world.module.Dateiname = path;
  world.files.files[path].clear();
  const Values saved = ValuesOf(world.module);
  Require(WriteValueFile(world.core), "the values can be saved");
  Require(world.files.files[path].size() == qsizetype{62} * (kParameters + 1),
          "one record for each parameter");
  Reset(world, 0xFF);
  Require(ReadValueFile(world.core), "the values can be loaded again");
  // The first of two parameters of a name gets the value of the last one.
  for (const auto& [index, source] : {std::pair{1, 3}, {2, 2}, {4, 4}, {5, 5}, {6, 6}}) {
    const Value& value = saved[static_cast<std::size_t>(source - 1)];
    const ParameterRecord& record = world.module.Par[index];
    Require(record.Wert == value.number, "a number reads back the same");
    Require(record.WertText == AsStored(value.text, 20), "a text reads back the same");
    Require(record.Typ == value.type, "a type reads back the same");
  }
  Require(world.module.Par[7].Wert == 7, "a name longer than its field is not found again");
}

// Every value of either side stands in one row, those of parameters first and in their order.
void CheckRows(const Module1& module, const ValueSet& left, const ValueSet& right) {
  std::vector<int> seenLeft(left.values.size());
  std::vector<int> seenRight(right.values.size());
  int last = 0;
  for (const ComparedValue& row : CompareSets(module, left, right)) {
    Require(row.index > last || row.index == 0, "parameters in their order, the unknown ones behind");
    last = row.index > 0 ? row.index : kParameters;
    Require(row.left >= 0 || row.right >= 0, "a value on one side");
    if (row.left >= 0) ++seenLeft.at(static_cast<std::size_t>(row.left));
    if (row.right >= 0) ++seenRight.at(static_cast<std::size_t>(row.right));
    Require((row.left < 0) == (row.difference == Difference::OnlyRight), "the left side has none");
    Require((row.right < 0) == (row.difference == Difference::OnlyLeft), "the right side has none");
  }
  const auto once = [](int times) { return times == 1; };
  Require(std::ranges::all_of(seenLeft, once) && std::ranges::all_of(seenRight, once), "each value once");
}

// The file as a set of values beside the table.
void CheckSets(const Module1& module, const QByteArray& bytes) {
  const ValueSet file = FileValues(ParseValueFile(bytes), {});
  const ValueSet table = TableValues(module);
  CheckRows(module, table, file);
  CheckRows(module, file, table);
  for (const ComparedValue& row : CompareSets(module, file, file))
    Require(row.difference == Difference::Equal && row.left == row.right, "a file is equal to itself");
  const ConversionAccount account = AccountOf(module, file);
  Require(account.matched + account.otherType + account.onlyInSet == static_cast<int>(file.values.size()),
          "each value of the file is accounted for");
  Require(account.matched + account.otherType + account.onlyInDefinitions == kParameters,
          "each parameter is accounted for");
  Require(account.cutTexts <= account.matched, "texts that match");
  for (const ListRow& row : ListRows(module, &file)) {
    for (int column = 0; column < kListColumns; ++column)
      (void)CellText(module, row, static_cast<ListColumn>(column));
  }
}

}  // namespace

void ValueFile(QByteArrayView input) {
  static const std::unique_ptr<World> made = [] {
    std::unique_ptr<World> world = WorldWithoutLine();
    world->module.VersionList.Add(u"AB1-123.4"_s);
    world->module.VersionList.Add(u"AB1-124.0"_s);
    world->module.PlantTypeList.Add(u"Luft"_s);
    world->module.PlantTypeList.Select(0);
    return world;
  }();
  World& world = *made;
  if (input.isEmpty()) return;
  const QByteArray bytes = input.sliced(1).toByteArray();
  world.module.VersionList.Select(0);
  Reset(world, static_cast<quint8>(input.front()));
  world.module.Dateiname = u"loaded"_s;
  world.files.files[u"loaded"_s] = bytes;

  const PlainFile plain(bytes);
  const QString version = plain.records.empty() ? QString() : plain.records.front().name;
  const bool own = version == u"AB1-123.4";
  const bool other = version == u"AB1-124.0";
  const Values expected = own || other ? Expected(plain, world.module) : ValuesOf(world.module);
  Require(ReadValueFile(world.core) == (own || other), "a file of a known version is read");
  Require(world.box.texts.size() == (own || other ? 0 : 1), "a box for an unknown version");
  Require(world.choice.questions.size() == (other ? 1 : 0), "a question for another version");
  Require(ValuesOf(world.module) == expected, "the values of the checked parameters");
  if (InSample(input, 4)) CheckSets(world.module, bytes);
  Require(world.module.BusyDepth == 0 && world.main.enabled, "the program is ready again");
  // Saving costs three times as much as loading.
  if (InSample(input, 8)) CheckSaving(world);
}

}  // namespace kalivor::fuzz
