#include "commands/Selections.h"

#include <QCollator>
#include <QHash>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QSet>
#include <algorithm>

#include "base/Paths.h"
#include "commands/DamagedFile.h"

using namespace Qt::StringLiterals;

namespace kalivor {
namespace {

// A selection of all parameters takes some 100 KB.
constexpr qint64 kLargestFile_bytes = qint64{16} * 1024 * 1024;
constexpr int kFormat = 1;

const QString kFormatKey = u"Format"_s;
const QString kSelectionsKey = u"Auswahlen"_s;
const QString kNameKey = u"Name"_s;
const QString kVersionKey = u"Version"_s;
const QString kParametersKey = u"Parameter"_s;
const QString kVariableKey = u"Variable"_s;
const QString kAddressKey = u"Adresse"_s;

std::optional<SelectedParameter> ParameterOf(const QJsonValue& value) {
  const QJsonValue variable = value[kVariableKey];
  const QJsonValue address = value[kAddressKey];
  if (!variable.isString() || !(address.isString() || address.isUndefined())) return {};
  SelectedParameter parameter{variable.toString(), {}};
  if (address.isString()) parameter.VarAdresse = address.toString();
  return parameter;
}

std::optional<Selection> SelectionIn(const QJsonValue& value) {
  const QJsonValue parameters = value[kParametersKey];
  if (!value[kNameKey].isString() || !value[kVersionKey].isString() || !parameters.isArray()) return {};
  Selection selection{value[kNameKey].toString(), value[kVersionKey].toString(), {}};
  if (selection.name.isEmpty() || selection.name != SelectionName(selection.name)) return {};
  for (const auto& entry : parameters.toArray()) {
    std::optional<SelectedParameter> parameter = ParameterOf(entry);
    if (!parameter) return {};
    selection.parameters.push_back(*std::move(parameter));
  }
  return selection;
}

auto Named(std::vector<Selection>& selections, const QString& name) {
  return std::ranges::find(selections, name, &Selection::name);
}

QMultiHash<QString, int> IndicesByVariable(const ParameterTable& table) {
  QMultiHash<QString, int> indices;
  for (int i = 1; i < table.ParCount; ++i)
    indices.insert(table.Par[i].Variable, i);
  return indices;
}

}  // namespace

QString SelectionName(const QString& text) {
  return text.simplified().left(kLongestSelectionName).trimmed();
}

std::optional<std::vector<Selection>> ParseSelections(const QByteArray& bytes) {
  const QJsonDocument document = QJsonDocument::fromJson(bytes);
  const QJsonValue entries = document[kSelectionsKey];
  if (document[kFormatKey] != kFormat || !entries.isArray()) return {};
  std::vector<Selection> selections;
  QSet<QString> names;
  for (const auto& entry : entries.toArray()) {
    std::optional<Selection> selection = SelectionIn(entry);
    if (!selection || names.contains(selection->name)) return {};
    names.insert(selection->name);
    selections.push_back(*std::move(selection));
  }
  return selections;
}

QByteArray ComposeSelections(const std::vector<Selection>& selections) {
  QJsonArray entries;
  for (const Selection& selection : selections) {
    QJsonArray parameters;
    for (const SelectedParameter& parameter : selection.parameters) {
      QJsonObject entry{{kVariableKey, parameter.Variable}};
      if (parameter.VarAdresse) entry.insert(kAddressKey, *parameter.VarAdresse);
      parameters.append(entry);
    }
    entries.append(QJsonObject{
        {kNameKey, selection.name}, {kVersionKey, selection.version}, {kParametersKey, parameters}});
  }
  return QJsonDocument(QJsonObject{{kFormatKey, kFormat}, {kSelectionsKey, entries}}).toJson();
}

Selection SelectionOf(const Module1& module, const QString& name) {
  const QMultiHash<QString, int> indices = IndicesByVariable(module);
  Selection selection{name, module.VersionList.SelectedText(), {}};
  for (int i = 1; i < module.ParCount; ++i) {
    if (module.ParNode[i] == kFalse) continue;
    const ParameterRecord& record = module.Par[i];
    SelectedParameter parameter{record.Variable, {}};
    if (indices.count(record.Variable) > 1) parameter.VarAdresse = record.VarAdresse;
    selection.parameters.push_back(parameter);
  }
  return selection;
}

int MarkSelection(Module1& module, const Selection& selection) {
  const QMultiHash<QString, int> indices = IndicesByVariable(module);
  for (int i = 1; i < module.ParCount; ++i)
    module.ParNode[i] = kFalse;
  int missing = 0;
  for (const SelectedParameter& parameter : selection.parameters) {
    const QList<int> candidates = indices.values(parameter.Variable);
    bool found = false;
    for (const int index : candidates) {
      const bool named = parameter.VarAdresse ? module.Par[index].VarAdresse == *parameter.VarAdresse
                                              : candidates.size() == 1;
      if (!named) continue;
      module.ParNode[index] = kTrue;
      found = true;
    }
    if (!found) ++missing;
  }
  return missing;
}

// What the file holds, or why nothing can be done with it.
struct Selections::Content {
  std::vector<Selection> selections;
  QString error;
  QByteArray damaged;  // what is no file of selections
};

Selections::Content Selections::Load() {
  const platform::FileContent file = files_.Read(path_, kLargestFile_bytes);
  // An empty file holds nothing that could be lost.
  if (file.missing || (file.Ok() && file.bytes.isEmpty())) return {};
  if (!file.Ok())
    return {{}, u"Die Auswahlen können nicht gelesen werden:\r\n"_s + path_ + u"\r\n"_s + file.error, {}};
  std::optional<std::vector<Selection>> selections = ParseSelections(file.bytes);
  if (selections) return {*std::move(selections), {}, {}};
  return {{},
          u"Die Datei der Auswahlen ist beschädigt und wird nicht benutzt:\r\n"_s + path_ +
              u"\r\nBeim nächsten Speichern einer Auswahl wird sie als "_s +
              SplitPath(DamagedName(path_)).file + u" aufgehoben."_s,
          file.bytes};
}

QString Selections::Store(const std::vector<Selection>& selections) {
  const QByteArray bytes = ComposeSelections(selections);
  const QString error = bytes.size() > kLargestFile_bytes
                            ? u"Es sind zu viele; bitte nicht mehr benötigte löschen."_s
                            : files_.Replace(path_, bytes);
  return error.isEmpty()
             ? error
             : u"Die Auswahlen können nicht gespeichert werden:\r\n"_s + path_ + u"\r\n"_s + error;
}

Selections::Listed Selections::Names() {
  const Content content = Load();
  Listed listed{{}, content.error};
  for (const Selection& selection : content.selections)
    listed.names.append(selection.name);
  QCollator german{QLocale(QLocale::German)};
  german.setCaseSensitivity(Qt::CaseInsensitive);
  german.setNumericMode(true);
  std::ranges::sort(listed.names, german);
  return listed;
}

QString Selections::Save(const Module1& module, const QString& name) {
  const Selection saved = SelectionOf(module, SelectionName(name));
  if (saved.name.isEmpty()) return u"Die Auswahl braucht einen Namen."_s;
  Content content = Load();
  if (!content.error.isEmpty()) {
    if (content.damaged.isEmpty()) return content.error;
    const QString error = SetAside(files_, path_, content.damaged);
    if (!error.isEmpty())
      return u"Die beschädigte Datei der Auswahlen kann nicht aufgehoben werden:\r\n"_s + DamagedName(path_) +
             u"\r\n"_s + error;
  }
  const auto same = Named(content.selections, saved.name);
  if (same != content.selections.end()) {
    *same = saved;
  } else {
    content.selections.push_back(saved);
  }
  return Store(content.selections);
}

Selections::Recalled Selections::Recall(Module1& module, const QString& name) {
  Content content = Load();
  if (!content.error.isEmpty()) return {.version = {}, .error = content.error};
  const auto found = Named(content.selections, name);
  if (found == content.selections.end())
    return {.version = {}, .error = u"Die Auswahl „"_s + name + u"“ gibt es nicht mehr."_s};
  Recalled recalled{.version = found->version, .error = {}};
  recalled.missing = MarkSelection(module, *found);
  for (int i = 1; i < module.ParCount; ++i) {
    if (module.ParNode[i] != kFalse) ++recalled.marked;
  }
  return recalled;
}

QString Selections::Delete(const QString& name) {
  Content content = Load();
  if (!content.error.isEmpty()) return content.error;
  // Another program may have deleted it already.
  const auto found = Named(content.selections, name);
  if (found == content.selections.end()) return {};
  content.selections.erase(found);
  return Store(content.selections);
}

QString RecalledText(const Selections::Recalled& recalled) {
  QString text = u"%1 Parameter angekreuzt"_s.arg(recalled.marked);
  if (recalled.missing > 0)
    text += u"; %1 der Auswahl gibt es in dieser Version nicht"_s.arg(recalled.missing);
  return text;
}

}  // namespace kalivor
