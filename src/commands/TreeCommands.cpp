#include "commands/TreeCommands.h"

#include "base/Numbers.h"
#include "commands/EditorCommands.h"
#include "core/ParameterTypes.h"

namespace kalivor {
namespace {

bool IsRoot(const QString& key) {
  return key.startsWith(u'R');
}
bool IsGroup(const QString& key) {
  return key.startsWith(u'K');
}
bool IsParameter(const QString& key) {
  return key.startsWith(u"sK");
}

qint16 NumberInKey(const QString& key) {
  return IsRoot(key) ? qint16{0} : LeadingInt16(QStringView(key).mid(2));
}

// Marks the nodes from the first to the last child, those between them of deeper levels included, and what is
// below the groups among them.
void MarkBelow(Core& core, int node, bool checked) {
  platform::TreeView& tree = core.main.Tree();
  const int last = tree.LastChild(node);
  for (int child = tree.FirstChild(node); child != 0 && child <= last; ++child) {
    tree.SetChecked(child, checked);
    core.module.ParNode[Nummer(core, child)] = checked ? kTrue : kFalse;
    if (IsGroup(tree.Key(child))) MarkBelow(core, child, checked);
  }
}

}  // namespace

qint16 Nummer(Core& core, int node) {
  return NumberInKey(core.main.Tree().Key(node));
}

void TreeView_Collapse(Core& core, int node) {
  const QString key = core.main.Tree().Key(node);
  if (IsGroup(key)) core.module.NodeState[NumberInKey(key)] = kFalse;
}

void TreeView_Expand(Core& core, int node) {
  if (core.module.TreeUpdating != kFalse) return;
  const QString key = core.main.Tree().Key(node);
  if (IsGroup(key)) core.module.NodeState[NumberInKey(key)] = kTrue;
}

void TreeView_NodeCheck(Core& core, int node) {
  const QString key = core.main.Tree().Key(node);
  const bool checked = core.main.Tree().Checked(node);
  core.module.ParNode[NumberInKey(key)] = checked ? kTrue : kFalse;
  if (!IsParameter(key)) MarkBelow(core, node, checked);
}

void TreeView_NodeClick(Core& core, int node) {
  Module1& module = core.module;
  const QString key = core.main.Tree().Key(node);
  if (!IsParameter(key)) {
    if (IsGroup(key)) module.NodeState[NumberInKey(key)] = core.main.Tree().Expanded(node) ? kTrue : kFalse;
    return;
  }
  const qint16 index = NumberInKey(key);
  if (index > kLastParameter) return;
  // Set before the editor shows: from then on expanding a node is the user's passing look only.
  if (IsStringForTree(module.Par[index])) {
    const TextEdit content = TextEditOf(module, index);
    module.TreeUpdating = kTrue;
    core.editors.ShowTextEditor(content);
  } else {
    const NumberEdit content = NumberEditOf(module, index, node);
    module.TreeUpdating = kTrue;
    core.editors.ShowNumberEditor(content);
  }
}

}  // namespace kalivor
