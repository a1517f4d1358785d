#include "cli/Output.h"

#include <QStringList>

#include "commands/PortCommands.h"

using namespace Qt::StringLiterals;

namespace kalivor::cli {
namespace {

QString Escaped(QString text) {
  return text.replace(u"\\"_s, u"\\\\"_s)
      .replace(u"\t"_s, u"\\t"_s)
      .replace(u"\r"_s, u"\\r"_s)
      .replace(u"\n"_s, u"\\n"_s);
}

}  // namespace

Table VersionTableOf(const Module1& module) {
  Table table;
  for (int i = 1; i < module.VersionCount; ++i) {
    const VersionRecord& version = module.VersionRow(i);
    table.push_back({{u"Version"_s, version.Version},
                     {u"AdrDatei"_s, version.AdrDatei},
                     {u"DefDatei"_s, version.DefDatei},
                     {u"Anlagen"_s, version.Anlagen},
                     {u"Kennung"_s, version.Kennung.Padded()}});
  }
  return table;
}

Table PlantTableOf(const SelectionList& plants) {
  Table table;
  for (int i = 0; i < plants.Count(); ++i)
    table.push_back({{u"Position"_s, i}, {u"Text"_s, plants.Text(i)}});
  return table;
}

Row ParameterRow(const Module1& module, int index) {
  const ParameterRecord& record = module.Par[index];
  return {{u"Nr"_s, index},
          {u"Rubrik"_s, record.Rubrik},
          {u"Name"_s, record.Name},
          {u"Wert"_s, record.Wert},
          {u"Min"_s, record.Min},
          {u"Max"_s, record.Max},
          {u"Standard"_s, record.Standard},
          {u"WertText"_s, record.WertText},
          {u"StandardText"_s, record.StandardText},
          {u"Einheit"_s, record.Einheit.Trimmed()},
          {u"Zahl1"_s, record.Zahl1},
          {u"Zahl2"_s, record.Zahl2},
          {u"VarAdresse"_s, record.VarAdresse},
          {u"Offset"_s, record.Offset},
          {u"Variable"_s, record.Variable},
          {u"Typ"_s, record.Typ.Trimmed()},
          {u"Zusatz"_s, record.Zusatz},
          {u"Hilfetext"_s, record.Hilfetext},
          {u"Checked"_s, module.ParNode[index] != kFalse ? 1 : 0}};
}

Table ParameterTableOf(const Module1& module) {
  Table table;
  for (int i = module.ParLine[0] > 0 ? 0 : 1; i < module.ParCount; ++i)
    table.push_back(ParameterRow(module, i));
  return table;
}

Row ValueFileHead(const ValueFileContent& content) {
  return {{u"layout"_s, content.recordLength},
          {u"count"_s, content.storedCount},
          {u"version"_s, content.version}};
}

Table RecordTableOf(const ValueFileContent& content) {
  Table table;
  int number = 1;
  for (const ValueRecord& record : content.records) {
    table.push_back({{u"Nr"_s, ++number},
                     {u"Variable"_s, record.Variable},
                     {u"Typ"_s, record.Typ.Trimmed()},
                     {u"Wert"_s, record.Wert},
                     {u"WertText"_s, record.WertText}});
  }
  return table;
}

Table ListTableOf(const ListTable& list) {
  Table table;
  for (const std::vector<TableCell>& cells : list.rows) {
    Row& row = table.emplace_back();
    for (std::size_t i = 0; i < cells.size(); ++i) {
      const QString& title = list.titles.at(static_cast<qsizetype>(i));
      const QString& text = cells[i].text;
      row.emplace_back(
          title, title == ColumnTitle(ListColumn::Number) ? QJsonValue(text.toInt()) : QJsonValue(text));
    }
  }
  return table;
}

Row DifferenceRow(const Module1& module, const ValueSet& left, const ValueSet& right,
                  const ComparedValue& compared) {
  const SetValue* const leftValue = ValueAt(left, compared.left);
  const SetValue* const rightValue = ValueAt(right, compared.right);
  const bool known = compared.index > 0;
  const ParameterRecord record = known ? module.Par[compared.index] : ParameterRecord();
  const SetValue* const either = leftValue != nullptr ? leftValue : rightValue;
  const QString unknown = either != nullptr ? either->Variable : QString();
  const auto shown = [&](const SetValue* value) {
    return value == nullptr ? QString() : ExactText(record, *value);
  };
  return {{u"Nr"_s, known ? QJsonValue(compared.index) : QJsonValue()},
          {u"Gruppe"_s, record.Rubrik},
          {u"Name"_s, record.Name},
          {u"Variable"_s, known ? record.Variable : unknown},
          {u"Links"_s, shown(leftValue)},
          {u"Rechts"_s, shown(rightValue)},
          {u"Einheit"_s, record.Einheit.Trimmed()},
          {u"Zustand"_s, DifferenceText(compared.difference)}};
}

Table DifferenceTableOf(const Module1& module, const ValueSet& left, const ValueSet& right) {
  Table table;
  for (const ComparedValue& compared : CompareSets(module, left, right)) {
    if (Differs(compared.difference)) table.push_back(DifferenceRow(module, left, right, compared));
  }
  return table;
}

QString NamesLine(const Row& row) {
  QStringList names;
  for (const auto& [name, value] : row)
    names.append(name);
  return names.join(u'\t') + u'\n';
}

QString ToText(const Row& row) {
  QStringList columns;
  for (const auto& [name, value] : row)
    columns.append(value.isDouble() ? QString::number(value.toInteger()) : Escaped(value.toString()));
  return columns.join(u'\t') + u'\n';
}

QString ToText(const Table& table) {
  QString text;
  for (const Row& row : table)
    text += ToText(row);
  return text;
}

QJsonObject ToJson(const Row& row) {
  QJsonObject object;
  for (const auto& [name, value] : row)
    object.insert(name, value);
  return object;
}

QJsonArray ToJson(const Table& table) {
  QJsonArray array;
  for (const Row& row : table)
    array.append(ToJson(row));
  return array;
}

Table PortTableOf(const QList<platform::PortEntry>& ports) {
  Table table;
  for (const platform::PortEntry& port : ports) {
    table.push_back({{u"Nr"_s, port.number > 0 ? QJsonValue(port.number) : QJsonValue(u"-"_s)},
                     {u"Gerät"_s, port.device},
                     {u"Beschreibung"_s, port.description},
                     {u"Seriennummer"_s, port.serialNumber},
                     {u"Zustand"_s, StateText(port.state)}});
  }
  return table;
}

QJsonArray PortsJson(const QList<platform::PortEntry>& ports) {
  QJsonArray array;
  for (const platform::PortEntry& port : ports) {
    array.append(QJsonObject{{u"number"_s, port.number},
                             {u"device"_s, port.device},
                             {u"description"_s, port.description},
                             {u"serialNumber"_s, port.serialNumber},
                             {u"place"_s, port.place},
                             {u"state"_s, StateText(port.state)},
                             {u"remark"_s, port.remark},
                             {u"bySerialNumber"_s, port.bySerialNumber},
                             {u"byPlace"_s, port.byPlace},
                             {u"carriesRate"_s, port.carriesRate}});
  }
  return array;
}

QString TreeText(const platform::TreeView& tree) {
  QString text;
  for (int node = 1; node <= tree.Count(); ++node)
    text += tree.Key(node) + u'\t' + tree.Text(node) + u'\n';
  return text;
}

QJsonObject CompareJson(const Module1& module, const TransferOutcome& outcome, const QString& report) {
  QJsonArray deviations;
  for (const ParameterResult& result : outcome.walk.results) {
    if (result.outcome != ParameterResult::Outcome::Differs) continue;
    const ParameterRecord& record = module.Par[result.index];
    deviations.append(QJsonObject{{u"Name"_s, record.Name},
                                  {u"PC"_s, ShownValue(record, result.pc)},
                                  {u"Regler"_s, ShownValue(record, result.controller)}});
  }
  return {{u"transferred"_s, outcome.transferred},
          {u"failures"_s, outcome.walk.Failures()},
          {u"deviations"_s, deviations},
          {u"lines"_s, QJsonArray::fromStringList(report.split(u"\r\n"_s, Qt::SkipEmptyParts))}};
}

}  // namespace kalivor::cli
