#include "commands/ListCommands.h"

#include <algorithm>
#include <limits>

#include "base/Numbers.h"
#include "base/Windows1252.h"
#include "commands/EditorCommands.h"
#include "commands/TreeCommands.h"
#include "core/Busy.h"
#include "core/ParameterTypes.h"
#include "core/Refresh.h"
#include "core/TreeTexts.h"

using namespace Qt::StringLiterals;

namespace kalivor {
namespace {

using Verdict = TypedValue::Verdict;

bool IsBusy(const Core& core) {
  return core.module.BusyDepth > 0;
}

// Gives every parameter the mark that `marked` says, where it has another one.
template <typename Marked>
void SetMarks(Core& core, const Marked& marked) {
  Module1& module = core.module;
  std::vector<bool> changed(static_cast<std::size_t>(module.ParCount));
  for (int i = 1; i < module.ParCount; ++i) {
    const qint16 mark = marked(i) ? kTrue : kFalse;
    changed[static_cast<std::size_t>(i)] = module.ParNode[i] != mark;
    module.ParNode[i] = mark;
  }
  platform::TreeView& tree = core.main.Tree();
  for (int node = 1; node <= tree.Count(); ++node) {
    if (!tree.Key(node).startsWith(u's')) continue;
    const qint16 index = Nummer(core, node);
    if (index < module.ParCount && changed[static_cast<std::size_t>(index)])
      tree.SetChecked(node, module.ParNode[index] != kFalse);
  }
}

// Which of the parameters are among `indexes`.
std::vector<bool> Among(const Module1& module, std::span<const int> indexes) {
  std::vector<bool> among(static_cast<std::size_t>(module.ParCount));
  for (const int index : indexes) {
    if (index >= 1 && index < module.ParCount) among[static_cast<std::size_t>(index)] = true;
  }
  return among;
}

// --- typing ---

constexpr int kMostDecimals = 9;
// So many digits fit 64 bits.
constexpr qsizetype kMostDigits = 18;

TypedValue Refused(const QString& reason) {
  return {Verdict::Refused, reason, {}};
}

// A number as it was typed.
struct Digits {
  bool negative = false;
  QString digits;     // before and behind the decimal sign
  int decimals = -1;  // how many are behind it; -1: there is none
};

std::optional<Digits> ReadDigits(QStringView text) {
  Digits number;
  for (qsizetype i = 0; i < text.size(); ++i) {
    const QChar character = text[i];
    if (character == u'-' && i == 0) {
      number.negative = true;
    } else if ((character == u',' || character == u'.') && number.decimals < 0) {
      number.decimals = 0;
    } else if (character >= u'0' && character <= u'9') {
      number.digits += character;
      if (number.decimals >= 0) ++number.decimals;
    } else {
      return {};
    }
  }
  return number;
}

// As it is stored; one that is too long becomes larger than every limit.
qint64 Scaled(const Digits& number, int scale) {
  QString digits = number.digits + QString(scale - std::max(number.decimals, 0), u'0');
  while (digits.size() > 1 && digits.startsWith(u'0'))
    digits.remove(0, 1);
  const qint64 size = digits.size() > kMostDigits ? std::numeric_limits<qint64>::max() : digits.toLongLong();
  return number.negative ? -size : size;
}

QString TooManyDecimals(int allowed) {
  if (allowed == 0) return u"keine Nachkommastellen"_s;
  return allowed == 1 ? u"höchstens 1 Nachkommastelle"_s : u"höchstens %1 Nachkommastellen"_s.arg(allowed);
}

// Further digits only lead away from zero, so a number beyond the limit on that side stays beyond it.
TypedValue JudgeNumber(const ParameterRecord& record, QStringView text) {
  const std::optional<Digits> number = ReadDigits(text);
  if (!number) return Refused(u"keine Zahl"_s);
  if (number->decimals >= 0 && number->decimals + (record.Zahl1 == 0 ? 1 : 0) > record.Zahl1)
    return Refused(TooManyDecimals(record.Zahl1));

  const QString below = u"kleiner als "_s + ExactNumber(record, record.Min);
  const QString above = u"größer als "_s + ExactNumber(record, record.Max);
  if (number->negative && record.Min >= 0) return Refused(below);
  if (number->digits.isEmpty()) return {Verdict::Incomplete, {}, {}};
  const qint64 value = Scaled(*number, record.Zahl1 + record.Zahl2);
  if (value < record.Min) return {number->negative ? Verdict::Refused : Verdict::Incomplete, below, {}};
  if (value > record.Max) return {number->negative ? Verdict::Incomplete : Verdict::Refused, above, {}};
  return {Verdict::Complete, {}, {static_cast<qint32>(value), {}}};
}

// kept in the code page of the controller, which text files and value files have as well.
TypedValue JudgeText(const ParameterRecord& record, const QString& text) {
  for (const QChar character : text) {
    if (character < u' ') return Refused(u"keine Steuerzeichen"_s);
    if (CharacterFromByte(ByteFromCharacter(character)) != character)
      return Refused(u"„%1“ kennt der Regler nicht"_s.arg(character));
  }
  const int length = StringLength(record);
  if (length > 0 && text.size() > length) return Refused(u"höchstens %1 Zeichen"_s.arg(length));
  return {Verdict::Complete, {}, {0, text}};
}

// --- taking over ---

bool CanTakeOver(const ListRow& row) {
  return row.checked && row.difference == Difference::Different && row.comparison.has_value();
}

QString HowMany(qsizetype count) {
  return count == 1 ? u"1 Wert"_s : u"%1 Werte"_s.arg(count);
}

// About those outside their limits, of `all`.
QString OutsideQuestion(qsizetype outside, qsizetype all) {
  if (all == 1) return u"Der Wert liegt außerhalb seiner Grenzen.\r\nTrotzdem übernehmen?"_s;
  if (outside == all) return u"Alle Werte liegen außerhalb ihrer Grenzen.\r\nTrotzdem übernehmen?"_s;
  if (outside == 1) return u"1 Wert davon liegt außerhalb seiner Grenzen.\r\nAuch diesen übernehmen?"_s;
  return u"%1 Werte davon liegen außerhalb ihrer Grenzen.\r\nAuch diese übernehmen?"_s.arg(outside);
}

// Leaves the rows that the user agrees to.
void AskWhich(Core& core, std::vector<ListRow>& rows) {
  const WaitingGuard waiting(core);
  const qsizetype all = std::ssize(rows);
  const QString cancel = u"Abbrechen"_s;
  if (AskChoice(core, HowMany(all) + u" übernehmen?"_s, u"Übernehmen"_s, cancel) != 1) {
    rows.clear();
    return;
  }
  const qsizetype outside = std::ranges::count_if(rows, &ListRow::comparisonOutside);
  if (outside == 0) return;
  const QString without = outside == all ? cancel : outside == 1 ? u"Ohne diesen"_s : u"Ohne diese"_s;
  const qint16 answer = AskChoice(core, OutsideQuestion(outside, all), u"Übernehmen"_s, without);
  if (answer == 1) return;
  if (answer == kNoAnswer) rows.clear();
  std::erase_if(rows, [](const ListRow& row) { return row.comparisonOutside; });
}

void TakeOverRow(Module1& module, const ListRow& row) {
  const ParameterRecord& record = module.Par[row.index];
  if (TypeOf(record.Typ).kind != ValueKind::Text) {
    module.SetNumber(row.index, row.comparison->number, ValueSource::TakenOver);
    return;
  }
  const int length = StringLength(record);
  const QString& text = row.comparison->text;
  // What fills a text up is no part of it.
  module.SetText(row.index, WithoutTrailingBlanks(length > 0 ? text.left(length) : text),
                 ValueSource::TakenOver);
}

}  // namespace

int NodeOfParameter(Core& core, int index) {
  const platform::TreeView& tree = core.main.Tree();
  const QString key = ParameterKey(index);
  for (int node = 1; node <= tree.Count(); ++node) {
    if (tree.Key(node) == key) return node;
  }
  return 0;
}

void ShowInTree(Core& core, int index) {
  const int node = NodeOfParameter(core, index);
  if (node != 0) core.main.Tree().GoTo(node);
}

void MarkParameters(Core& core, std::span<const int> indexes, bool checked) {
  if (IsBusy(core)) return;
  const std::vector<bool> among = Among(core.module, indexes);
  SetMarks(core, [&](int i) {
    return among[static_cast<std::size_t>(i)] ? checked : core.module.ParNode[i] != kFalse;
  });
}

void MarkOnly(Core& core, std::span<const int> indexes) {
  if (IsBusy(core)) return;
  const std::vector<bool> among = Among(core.module, indexes);
  SetMarks(core, [&](int i) { return among[static_cast<std::size_t>(i)]; });
}

TypedValue JudgeTyped(const ParameterRecord& record, const QString& text) {
  if (!CanBeEdited(record)) return Refused({});
  return IsStringForTree(record) ? JudgeText(record, text) : JudgeNumber(record, QStringView(text).trimmed());
}

// Where tree and transfer do not agree on the type, the list could not say which value is meant.
bool CanBeEdited(const ParameterRecord& record) {
  switch (TypeOf(record.Typ).kind) {
    case ValueKind::Text:
      return IsStringForTree(record);
    case ValueKind::Number:
      return record.Zahl1 >= 0 && record.Zahl2 >= 0 && record.Zahl1 + record.Zahl2 <= kMostDecimals;
    case ValueKind::Unknown:
      break;
  }
  return false;
}

bool EditParameter(Core& core, int index, const QString& text) {
  if (IsBusy(core)) return false;
  Module1& module = core.module;
  const ParameterRecord& record = module.Par[index];
  const TypedValue typed = JudgeTyped(record, text);
  if (typed.verdict != Verdict::Complete) return false;
  if (IsStringForTree(record)) {
    TextEdit content = TextEditOf(module, index);
    content.TextWert = typed.value.text;
    DialogEditString_OK(core, content);
    return true;
  }
  const int node = NodeOfParameter(core, index);
  if (node != 0) {
    NumberEdit content = NumberEditOf(module, index, node);
    content.TextWert = QString(text).replace(u',', u'.');
    return DialogEdit_OK(core, content);
  }
  module.SetNumber(index, typed.value.number, ValueSource::Edited);
  module.ParNode[index] = kTrue;
  return true;
}

std::vector<ListRow> RowsToTakeOver(std::span<const ListRow> shown) {
  std::vector<ListRow> rows;
  std::ranges::copy_if(shown, std::back_inserter(rows), CanTakeOver);
  return rows;
}

int TakeOver(Core& core, std::span<const ListRow> shown) {
  std::vector<ListRow> rows = RowsToTakeOver(shown);
  if (IsBusy(core) || rows.empty()) return 0;
  AskWhich(core, rows);
  if (rows.empty()) return 0;
  for (const ListRow& row : rows)
    TakeOverRow(core.module, row);
  Refresh(core, 2);
  return static_cast<int>(std::ssize(rows));
}

}  // namespace kalivor
