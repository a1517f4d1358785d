#include "cli/Output.h"

#include <QJsonArray>
#include <QJsonObject>
#include <QStringList>

using namespace Qt::StringLiterals;

namespace kalivor::cli {
namespace {

QString Escaped(QString text) {
  return text.replace(u"\\"_s, u"\\\\"_s)
      .replace(u"\t"_s, u"\\t"_s)
      .replace(u"\r"_s, u"\\r"_s)
      .replace(u"\n"_s, u"\\n"_s);
}

QString Line(const QStringList& columns) {
  QStringList escaped;
  for (const QString& column : columns)
    escaped.append(Escaped(column));
  return escaped.join(u'\t') + u'\n';
}

// The rows of the version table that were read.
template <typename Do>
void ForVersions(const Module1& module, Do&& act) {
  for (int row = 1; row < module.VersionCount; ++row)
    act(module.VersionRow(row));
}

// One parameter as named columns, in the order of the table. Numbers stay numbers for JSON.
using NamedValues = std::vector<std::pair<QString, QJsonValue>>;

NamedValues ValuesOf(const Module1& module, int index) {
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

// Element 0 comes first when a plant-type record was read.
template <typename Do>
void ForParameters(const Module1& module, Do&& act) {
  if (module.ParLine[0] > 0) act(0);
  for (int i = 1; i < module.ParCount; ++i)
    act(i);
}

QString TextOf(const QJsonValue& value) {
  return value.isDouble() ? QString::number(value.toInteger()) : value.toString();
}

}  // namespace

QString VersionsText(const Module1& module) {
  QString text;
  ForVersions(module, [&](const VersionRecord& row) {
    text += Line({row.Version, row.AdrDatei, row.DefDatei, row.Anlagen, row.Kennung.Padded()});
  });
  return text;
}

QString PlantsText(Core& core) {
  QString text;
  for (int i = 0; i < core.module.PlantTypeList.Count(); ++i) {
    text += Line({QString::number(i), core.module.PlantTypeList.Text(i)});
  }
  return text;
}

QString ParametersText(const Module1& module) {
  QStringList names;
  for (const auto& [name, value] : ValuesOf(module, 0))
    names.append(name);
  QString text = Line(names);
  ForParameters(module, [&](int index) {
    QStringList columns;
    for (const auto& [name, value] : ValuesOf(module, index))
      columns.append(TextOf(value));
    text += Line(columns);
  });
  return text;
}

QString TreeText(Core& core) {
  const platform::TreeView& tree = core.main.Tree();
  QString text;
  for (int node = 1; node <= tree.Count(); ++node)
    text += tree.Key(node) + u'\t' + tree.Text(node) + u'\n';
  return text;
}

QString ValueFileText(const ValueFileContent& content) {
  QString text =
      Line({QString::number(content.recordLength), QString::number(content.storedCount), content.version});
  int number = 1;
  for (const ValueRecord& record : content.records) {
    text += Line({QString::number(++number), record.Variable, record.Typ.Trimmed(),
                  QString::number(record.Wert), record.WertText});
  }
  return text;
}

QJsonDocument VersionsJson(const Module1& module) {
  QJsonArray rows;
  ForVersions(module, [&](const VersionRecord& row) {
    rows.append(QJsonObject{{u"Version"_s, row.Version},
                            {u"AdrDatei"_s, row.AdrDatei},
                            {u"DefDatei"_s, row.DefDatei},
                            {u"Anlagen"_s, row.Anlagen},
                            {u"Kennung"_s, row.Kennung.Padded()}});
  });
  return QJsonDocument(rows);
}

QJsonDocument PlantsJson(Core& core) {
  QJsonArray entries;
  for (int i = 0; i < core.module.PlantTypeList.Count(); ++i) {
    entries.append(QJsonObject{{u"Position"_s, i}, {u"Text"_s, core.module.PlantTypeList.Text(i)}});
  }
  return QJsonDocument(entries);
}

QJsonDocument ParametersJson(const Module1& module) {
  QJsonArray parameters;
  ForParameters(module, [&](int index) {
    QJsonObject parameter;
    for (const auto& [name, value] : ValuesOf(module, index))
      parameter.insert(name, value);
    parameters.append(parameter);
  });
  return QJsonDocument(parameters);
}

QJsonDocument ValueFileJson(const ValueFileContent& content) {
  QJsonArray records;
  int number = 1;
  for (const ValueRecord& record : content.records) {
    records.append(QJsonObject{{u"Nr"_s, ++number},
                               {u"Variable"_s, record.Variable},
                               {u"Typ"_s, record.Typ.Trimmed()},
                               {u"Wert"_s, record.Wert},
                               {u"WertText"_s, record.WertText}});
  }
  return QJsonDocument(QJsonObject{{u"layout"_s, content.recordLength},
                                   {u"count"_s, content.storedCount},
                                   {u"version"_s, content.version},
                                   {u"records"_s, records}});
}

QJsonDocument CompareJson(const Module1& module, const TransferOutcome& outcome, const QString& report) {
  QJsonArray deviations;
  for (const ParameterResult& result : outcome.walk.results) {
    if (result.outcome != ParameterResult::Outcome::Differs) continue;
    const ParameterRecord& record = module.Par[result.index];
    deviations.append(QJsonObject{{u"Name"_s, record.Name},
                                  {u"PC"_s, ShownValue(record, result.pc)},
                                  {u"Regler"_s, ShownValue(record, result.controller)}});
  }
  return QJsonDocument(
      QJsonObject{{u"transferred"_s, outcome.transferred},
                  {u"failures"_s, outcome.walk.Failures()},
                  {u"deviations"_s, deviations},
                  {u"lines"_s, QJsonArray::fromStringList(report.split(u"\r\n"_s, Qt::SkipEmptyParts))}});
}

}  // namespace kalivor::cli
