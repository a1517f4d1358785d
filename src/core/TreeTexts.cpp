#include "core/TreeTexts.h"

#include <QScopeGuard>

#include "base/Numbers.h"
#include "base/su.h"
#include "core/DefinitionFiles.h"
#include "core/ParameterTypes.h"

using namespace Qt::StringLiterals;

namespace kalivor {
namespace {

// Column headings; "Wert" stands above the last digits of the values.
constexpr QStringView kRootText =
    u"Anlage                                                         "
    u"Wert          Min.       Max.       Standard";

QString NameColumn(const ParameterRecord& record) {
  return su::Align(record.Name, 50, u"L", u".");
}

}  // namespace

bool ShowParam(QStringView selectedPlantType, QStringView plantTypes) {
  return plantTypes.contains(selectedPlantType);
}

QString Scaled(const ParameterRecord& record, qint32 value) {
  return su::ScaledNumber(value, record.Zahl2, record.Zahl1, 6, 2, u" ");
}

QString ParamTextShort(const ParameterRecord& record) {
  if (IsStringForTree(record)) return NameColumn(record) + u' ' + record.WertText;
  QString text = NameColumn(record);
  text += Scaled(record, record.Wert);
  text += record.Einheit.Padded();
  return text;
}

QString ParamText(const ParameterRecord& record) {
  QString text = ParamTextShort(record);
  if (IsStringForTree(record)) return text;
  for (const qint32 value : {record.Min, record.Max, record.Standard}) {
    text += u'|';
    text += Scaled(record, value);
  }
  return text;
}

QString DefinedText(const Module1& module, int index, QString (*text)(const ParameterRecord&)) {
  try {
    return text(module.Par[index]);
  } catch (const RuntimeError& error) {
    if (module.ParFile.isEmpty()) throw;
    throw DefinitionError(error, module.ParFile, module.ParLine[index]);
  }
}

QString GroupText(const QString& group) {
  return su::Align(group, 63, u"L", u" ") + u"|      |      |"_s;
}

QString RootKey() {
  return u"R"_s;
}
QString GroupKey(int group) {
  return u"K"_s + BlankNumber(group);
}
QString ParameterKey(int index) {
  return u"sK"_s + BlankNumber(index);
}

void BuildTree(Core& core) {
  Module1& module = core.module;
  platform::TreeView& tree = core.main.Tree();
  module.TreeUpdating = kTrue;
  tree.SetVisible(false);
  const auto show = qScopeGuard([&] {
    tree.SetVisible(true);
    module.TreeUpdating = kFalse;
  });
  const QString plantType = core.module.PlantTypeList.SelectedText();

  tree.Clear();
  const int root = tree.Add(0, RootKey(), kRootText.toString());
  tree.SetExpanded(root, true);
  tree.SetChecked(root, module.ParNode[0] != kFalse);

  QString lastGroup;
  int group = 0;
  int parent = root;
  for (int i = 1; i < module.ParCount; ++i) {
    const ParameterRecord& record = module.Par[i];
    if (!ShowParam(plantType, record.Zusatz)) continue;
    const bool checked = module.ParNode[i] != kFalse;
    if (record.Rubrik != lastGroup) {
      lastGroup = record.Rubrik;
      ++group;
      parent = tree.Add(root, GroupKey(group), GroupText(record.Rubrik));
      tree.SetExpanded(parent, module.NodeState[group] != kFalse);
      tree.SetChecked(parent, checked);
    }
    const int node = tree.Add(parent, ParameterKey(i), DefinedText(module, i, ParamText));
    tree.SetChecked(node, checked);
  }
}

}  // namespace kalivor
