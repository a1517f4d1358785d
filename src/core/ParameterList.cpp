#include "core/ParameterList.h"

#include <algorithm>

#include "core/ParameterTypes.h"
#include "core/TreeTexts.h"

using namespace Qt::StringLiterals;

namespace kalivor {
namespace {

bool IsText(const ParameterRecord& record) {
  return TypeOf(record.Typ).kind == ValueKind::Text;
}

// The difference of numbers that differ; needs more than 32 bits.
std::optional<qint64> NumberDifference(const ParameterRecord& record, const ListRow& row) {
  if (row.difference != Difference::Different || !row.comparison || IsText(record)) return {};
  const qint64 difference = qint64{row.comparison->number} - row.value.number;
  return difference == 0 ? std::nullopt : std::optional(difference);
}

// The number that a cell shows; nothing where it shows a text or is empty.
std::optional<qint64> CellNumber(const ParameterRecord& record, const ListRow& row, ListColumn column) {
  if (column == ListColumn::Number) return row.index;
  if (IsText(record)) return {};
  switch (column) {
    case ListColumn::Value:
      return row.value.number;
    case ListColumn::Comparison:
      return row.comparison ? std::optional<qint64>(row.comparison->number) : std::nullopt;
    case ListColumn::Difference:
      return NumberDifference(record, row);
    case ListColumn::Minimum:
      return record.Min;
    case ListColumn::Maximum:
      return record.Max;
    case ListColumn::Standard:
      return record.Standard;
    default:
      return {};
  }
}

QString StateText(const ListRow& row) {
  QStringList states;
  const auto add = [&](bool holds, const QString& state) {
    if (holds) states.append(state);
  };
  add(row.difference != Difference::NotCompared, DifferenceText(row.difference));
  add(row.outside, u"außerhalb"_s);
  add(row.nonStandard, u"nicht Standard"_s);
  add(row.changed, u"geändert"_s);
  add(row.hidden, u"ausgeblendet"_s);
  return states.join(u", "_s);
}

// The text of a cell that holds no number.
QString PlainText(const ParameterRecord& record, const ListRow& row, ListColumn column) {
  switch (column) {
    case ListColumn::Group:
      return record.Rubrik;
    case ListColumn::Name:
      return record.Name;
    case ListColumn::Value:
      return WithoutTrailingBlanks(row.value.text);
    case ListColumn::Comparison:
      return row.comparison ? WithoutTrailingBlanks(row.comparison->text) : QString();
    case ListColumn::State:
      return StateText(row);
    case ListColumn::Unit:
      return record.Einheit.Trimmed();
    case ListColumn::Standard:
      return WithoutTrailingBlanks(record.StandardText);
    case ListColumn::Variable:
      return record.Variable;
    case ListColumn::Address:
      return record.VarAdresse;
    case ListColumn::Type:
      return record.Typ.Trimmed();
    default:
      return {};
  }
}

bool IsDigit(QChar c) {
  return c >= u'0' && c <= u'9';
}

// `text` so that comparing it by its codes gives the order of the German alphabet: letters without case and
// marks, numbers with zeros in front.
QString AlphabetKey(const QString& text) {
  constexpr qsizetype kDigits = 10;
  QString key;
  const QString letters = text.toCaseFolded().replace(u'ß', u"ss"_s).normalized(QString::NormalizationForm_D);
  for (qsizetype at = 0; at < letters.size();) {
    qsizetype end = at;
    while (end < letters.size() && IsDigit(letters.at(end)))
      ++end;
    if (end > at) {
      key += letters.sliced(at, end - at).rightJustified(kDigits, u'0');
      at = end;
      continue;
    }
    if (letters.at(at).category() != QChar::Mark_NonSpacing) key += letters.at(at);
    ++at;
  }
  return key;
}

}  // namespace

QString ColumnTitle(ListColumn column) {
  switch (column) {
    case ListColumn::Mark:
      return u"Kreuz"_s;
    case ListColumn::Number:
      return u"Nr"_s;
    case ListColumn::Group:
      return u"Gruppe"_s;
    case ListColumn::Name:
      return u"Name"_s;
    case ListColumn::Value:
      return u"Wert"_s;
    case ListColumn::Comparison:
      return u"Vergleich"_s;
    case ListColumn::Difference:
      return u"Differenz"_s;
    case ListColumn::State:
      return u"Zustand"_s;
    case ListColumn::Unit:
      return u"Einheit"_s;
    case ListColumn::Minimum:
      return u"Min"_s;
    case ListColumn::Maximum:
      return u"Max"_s;
    case ListColumn::Standard:
      return u"Standard"_s;
    case ListColumn::Variable:
      return u"Variable"_s;
    case ListColumn::Address:
      return u"Adresse"_s;
    case ListColumn::Type:
      return u"Typ"_s;
  }
  return {};
}

bool IsNumeric(ListColumn column) {
  switch (column) {
    case ListColumn::Number:
    case ListColumn::Value:
    case ListColumn::Comparison:
    case ListColumn::Difference:
    case ListColumn::Minimum:
    case ListColumn::Maximum:
    case ListColumn::Standard:
      return true;
    default:
      return false;
  }
}

std::vector<ListRow> ListRows(const Module1& module, const ValueSet* comparison,
                              const std::function<bool(int index)>& changed) {
  const QString plantType = module.PlantTypeList.SelectedText();
  std::vector<ListRow> rows;
  rows.reserve(static_cast<std::size_t>(module.ParCount));
  for (int i = 1; i < module.ParCount; ++i) {
    const ParameterRecord& record = module.Par[i];
    ListRow row;
    row.index = i;
    row.checked = module.ParNode[i] != kFalse;
    row.hidden = !ShowParam(plantType, record.Zusatz);
    row.value = {record.Wert, record.WertText};
    row.nonStandard = !SameValue(record, row.value, {record.Standard, record.StandardText});
    row.changed = changed && changed(i);
    row.outside = IsOutside(record, row.value);
    rows.push_back(std::move(row));
  }
  if (comparison == nullptr) return rows;
  for (const ComparedValue& compared : CompareSets(module, TableValues(module), *comparison)) {
    if (compared.index == 0) continue;
    ListRow& row = rows[static_cast<std::size_t>(compared.index) - 1];
    row.difference = compared.difference;
    row.comparisonOutside = compared.rightOutside;
    if (compared.right < 0) continue;
    const SetValue& other = comparison->values[static_cast<std::size_t>(compared.right)];
    const bool sameKind = TypeOf(other.Typ).kind == TypeOf(module.Par[compared.index].Typ).kind;
    if (other.read && sameKind) row.comparison = other.value;
  }
  return rows;
}

QString CellText(const Module1& module, const ListRow& row, ListColumn column) {
  return CellText(module.Par[row.index], row, column);
}

QString CellText(const ParameterRecord& record, const ListRow& row, ListColumn column) {
  const std::optional<qint64> number = CellNumber(record, row, column);
  if (!number) return PlainText(record, row, column);
  if (column == ListColumn::Number) return QString::number(*number);
  const QString text = ExactNumber(record, *number);
  return column == ListColumn::Difference && *number > 0 ? u'+' + text : text;
}

ListKey KeyOf(const Module1& module, const ListRow& row, ListColumn column) {
  const ParameterRecord& record = module.Par[row.index];
  ListKey key;
  key.index = row.index;
  if (column == ListColumn::Mark) {
    // The checked ones first.
    key.number = row.checked ? 0 : 1;
  } else if (column == ListColumn::Number) {
    key.number = row.index;
  } else if (const std::optional<qint64> number = CellNumber(record, row, column)) {
    key.number = InDisplayUnits(record, *number);
  } else {
    key.isText = true;
    key.text = AlphabetKey(PlainText(record, row, column));
  }
  return key;
}

bool ListBefore(const Module1& module, const ListRow& left, const ListRow& right, ListColumn column) {
  return KeyOf(module, left, column) < KeyOf(module, right, column);
}

QString Folded(const QString& text) {
  return text.toCaseFolded()
      .replace(u'ä', u"ae"_s)
      .replace(u'ö', u"oe"_s)
      .replace(u'ü', u"ue"_s)
      .replace(u'ß', u"ss"_s);
}

QString SearchedText(const ParameterRecord& record) {
  // No word of a search reaches over a line break.
  return Folded(record.Name + u'\n' + record.Rubrik + u'\n' + record.Variable + u'\n' + record.VarAdresse +
                u'\n' + record.Hilfetext);
}

QStringList SearchWords(const QString& search) {
  return Folded(search).simplified().split(u' ', Qt::SkipEmptyParts);
}

bool Shows(const ListFilter& filter, const QStringList& words, const ListRow& row,
           const QString& searchedText) {
  return (row.checked || !filter.checked) && (Differs(row) || !filter.different) &&
         (row.nonStandard || !filter.nonStandard) && (row.changed || !filter.changed) &&
         (row.outside || !filter.outside) &&
         std::ranges::all_of(words, [&](const QString& word) { return searchedText.contains(word); });
}

ListCounts CountRows(std::span<const ListRow> rows) {
  ListCounts counts;
  counts.all = static_cast<int>(rows.size());
  for (const ListRow& row : rows) {
    counts.checked += row.checked ? 1 : 0;
    counts.different += Differs(row) ? 1 : 0;
    counts.nonStandard += row.nonStandard ? 1 : 0;
    counts.changed += row.changed ? 1 : 0;
    counts.outside += row.outside ? 1 : 0;
  }
  return counts;
}

QString CountLine(int all, const ListCounts& shown) {
  QString line = u"%1 von %2"_s.arg(shown.all).arg(all);
  if (shown.different > 0) line += u" · %1 verschieden"_s.arg(shown.different);
  if (shown.outside > 0) line += u" · %1 außerhalb"_s.arg(shown.outside);
  return line;
}

QStringList ListHeading(const Module1& module, const QDate& date) {
  QStringList lines{u"Reglerversion: "_s + module.VersionList.SelectedText()};
  const QString plantType = module.PlantTypeList.SelectedText();
  if (!plantType.isEmpty()) lines.append(u"Anlageart: "_s + plantType);
  if (!module.Dateiname.isEmpty()) lines.append(u"Datei: "_s + module.Dateiname);
  lines.append(u"Datum: "_s + date.toString(u"dd.MM.yyyy"_s));
  return lines;
}

ListTable TableOf(const Module1& module, std::span<const ListRow> rows, std::span<const ListColumn> columns,
                  const QStringList& heading) {
  ListTable table{heading, {}, {}};
  for (const ListColumn column : columns)
    table.titles.append(ColumnTitle(column));
  table.rows.reserve(rows.size());
  for (const ListRow& row : rows) {
    const ParameterRecord& record = module.Par[row.index];
    std::vector<TableCell>& cells = table.rows.emplace_back();
    cells.reserve(columns.size());
    for (const ListColumn column : columns) {
      const bool mark = column == ListColumn::Mark && row.checked;
      cells.push_back(
          {mark ? u"x"_s : CellText(module, row, column), CellNumber(record, row, column).has_value()});
    }
  }
  return table;
}

}  // namespace kalivor
