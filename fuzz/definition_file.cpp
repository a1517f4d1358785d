// Definition file: any bytes as the file, read twice; then tree, printed list and editors on the result.
#include <algorithm>
#include <limits>
#include <memory>

#include "PlainReading.h"
#include "Targets.h"
#include "World.h"
#include "commands/EditorCommands.h"
#include "core/DefinitionFiles.h"
#include "core/ParameterTypes.h"
#include "core/Refresh.h"
#include "core/TreeTexts.h"
#include "print/pages/PrintList.h"

using namespace Qt::StringLiterals;

namespace kalivor::fuzz {
namespace {

using Kind = RuntimeError::Kind;

// What an operation ends with; nothing when it succeeds.
template <typename Operation>
std::optional<Kind> KindOf(Operation&& operation) {
  try {
    operation();
    return {};
  } catch (const RuntimeError& error) {
    return error.GetKind();
  }
}

template <typename Int>
std::optional<Int> Number(const QString& text) {
  const std::optional<qint64> number =
      PlainInteger(text, std::numeric_limits<Int>::min(), std::numeric_limits<Int>::max());
  if (!number) return {};
  return static_cast<Int>(*number);
}

QString UnlessDash(const QString& text) {
  return text == u"-" ? QString() : text;
}

// The offset in bytes that "name[index]" stands for.
std::optional<qint16> Offset(const QString& expression, const QString& type) {
  const qsizetype bracket = expression.lastIndexOf(u'[');
  if (!expression.endsWith(u']') || bracket < 0) return 0;
  const std::optional<qint16> index = Number<qint16>(expression.mid(bracket + 1).chopped(1));
  // Eight characters; only blanks at the end do not count.
  const QString key = type.leftJustified(8, u' ', true);
  const int size = key == u"long    " ? 4 : key == u"int     " ? 2 : key == u"char    " ? 1 : 0;
  if (!index || *index * size > 32767 || *index * size < -32768) return {};
  return static_cast<qint16>(*index * size);
}

// The record of a line; nothing when one of its numbers does not fit.
std::optional<ParameterRecord> PlainRecord(const QString& line, bool hasAddressList) {
  const PlainColumns columns(line);
  ParameterRecord record;
  record.Rubrik = columns.At(0);
  record.Name = columns.At(1);
  const bool isText = columns.At(8).startsWith(u"str");
  const auto min = Number<qint32>(columns.At(2));
  const auto max = Number<qint32>(columns.At(3));
  const auto standard = isText ? std::optional<qint32>(0) : Number<qint32>(columns.At(4));
  const auto decimals = Number<qint16>(columns.At(6));
  const auto dropped = Number<qint16>(columns.At(7));
  const auto offset = hasAddressList ? Offset(columns.At(9), columns.At(8)) : std::optional<qint16>(0);
  if (!min || !max || !standard || !decimals || !dropped || !offset) return {};
  record.Min = *min;
  record.Max = *max;
  record.Standard = *standard;
  if (isText) record.StandardText = columns.At(4);
  record.Einheit = UnlessDash(columns.At(5));
  record.Zahl1 = *decimals;
  record.Zahl2 = *dropped;
  record.Typ = columns.At(8);
  record.Offset = *offset;
  if (!hasAddressList) record.VarAdresse = columns.At(9);
  record.Variable = columns.At(10);
  record.Zusatz = columns.At(11);
  record.Hilfetext = UnlessDash(columns.From(12));
  return record;
}

// The values that the slots have before the file is read; reading keeps them.
void PutValue(ParameterRecord& record, int slot) {
  record.Wert = slot * 1001;
  record.WertText.clear();
}

void CheckReading(World& world, const std::optional<QStringList>& items, std::optional<Kind> failed,
                  bool hasAddressList) {
  if (!items) {
    Require(failed == Kind::FileError, "an unreadable file is reported");
    return;
  }
  int next = 1;
  for (const QString& item : *items) {
    std::optional<ParameterRecord> expected = PlainRecord(item, hasAddressList);
    if (!expected) {
      Require(failed == Kind::Overflow, "a number that does not fit is reported");
      Require(world.module.ParCount == next, "the parameters before it stay");
      return;
    }
    const bool isPlantType = expected->Rubrik == u"NoRubrik";
    PutValue(*expected, next);
    // Only the last of several plant-type records stays.
    if (!isPlantType) Require(world.module.Par[next++] == *expected, "the columns of a parameter");
  }
  Require(!failed, "a file without fault is read");
  Require(world.module.ParCount == next, "each line is a parameter");
}

bool CanBeShown(const ParameterRecord& record) {
  const int dropped = std::max<int>(0, record.Zahl2);
  return record.Typ.StartsWith(u"string") || (record.Zahl1 + dropped <= 9 && dropped <= 9);
}

void CheckTree(World& world, const QString& plant) {
  int expected = 1;
  bool shown = true;
  QString group;
  for (int i = 1; i < world.module.ParCount && shown; ++i) {
    const ParameterRecord& record = world.module.Par[i];
    if (!record.Zusatz.contains(plant)) continue;
    if (record.Rubrik != group) ++expected;
    group = record.Rubrik;
    shown = CanBeShown(record);
    if (shown) ++expected;
  }
  const std::optional<Kind> failed = KindOf([&] { BuildTree(world.core); });
  Require(failed == (shown ? std::nullopt : std::optional<Kind>(Kind::Overflow)), "what the tree can show");
  Require(world.main.tree.Count() == expected, "the nodes of the tree");
  Require(world.main.tree.Visible() && world.module.TreeUpdating == kFalse, "the tree is visible again");
}

void CheckPrinting(const Module1& module, const QString& plant) {
  static print::PrintList list;
  for (const int orientation : {print::kPortrait, print::kLandscape}) {
    const std::optional<Kind> failed = KindOf([&] { list.Make(module, plant, orientation); });
    Require(!failed || failed == Kind::Overflow, "what can be printed");
  }
}

// OK in the editor without a change keeps the value, but for the digits that are not shown.
void CheckEditors(const Module1& module) {
  for (int i = 1; i < module.ParCount; ++i) {
    const ParameterRecord& record = module.Par[i];
    (void)KindOf([&] { (void)TextEditOf(module, i); });
    std::optional<qint32> kept;
    const std::optional<Kind> failed = KindOf([&] {
      const NumberEdit edit = NumberEditOf(module, i, 1);
      kept = EditedValue(record, edit.TextVon, edit.TextWert, edit.TextBis);
    });
    if (record.Zahl1 < 0 || record.Zahl2 < 0 || record.Zahl1 + record.Zahl2 > 9) continue;
    Require(!failed, "a value with up to nine decimals can be edited");
    if (record.Wert < record.Min || record.Wert > record.Max) {
      Require(!kept, "a value outside its limits is refused");
    } else {
      qint32 hidden = 1;
      for (int digit = 0; digit < record.Zahl2; ++digit)
        hidden *= 10;
      Require(kept == record.Wert / hidden * hidden, "an unchanged value stays");
    }
  }
}

}  // namespace

void DefinitionFile(QByteArrayView input) {
  static const std::unique_ptr<World> made = [] {
    std::unique_ptr<World> world = WorldWithoutLine();
    world->module.Versionen.resize(2);
    world->module.Versionen[1].DefDatei = u"A.TXT"_s;
    world->module.VersionList.Add(u"AB1-123.4"_s);
    world->module.VersionList.Select(0);
    world->module.PlantTypeList.Add({});
    world->module.PlantTypeList.Add(u"Luft"_s);
    for (int i = 0; i <= kLastParameter; ++i) {
      world->module.ParNode[i] = kTrue;
      PutValue(world->module.Par[i], i);
    }
    return world;
  }();
  if (input.isEmpty()) return;
  World& world = *made;
  Module1& module = world.module;
  const bool hasAddressList = (input.front() & 1) != 0;
  module.Versionen[1].AdrDatei = hasAddressList ? u"A.ADR"_s : u"-"_s;
  world.module.PlantTypeList.Select((input.front() & 2) != 0 ? 1 : 0);
  // As many slots as the file before can have filled.
  for (int i = 0; i <= module.ParCount && i <= kLastParameter; ++i)
    PutValue(module.Par[i], i);
  const QByteArrayView text = input.sliced(1);
  world.files.files[u"ini//A.TXT"_s] = text.toByteArray();

  const std::optional<Kind> failed = KindOf([&] { ReadSelectedDefinitions(world.core); });
  CheckReading(world, PlainItems(text), failed, hasAddressList);
  SetStandard(module);
  // Each of them costs as much as reading.
  if (!InSample(input, 16)) return;
  const QString plant = world.module.PlantTypeList.SelectedText();
  CheckTree(world, plant);
  CheckPrinting(module, plant);
  CheckEditors(module);
}

}  // namespace kalivor::fuzz
