// An installation whose changes are recorded as steps, and what tests compare of its table.
#pragma once

#include <memory>
#include <vector>

#include "core/ChangeLog.h"
#include "fakes/Installation.h"

namespace kalivor::test {

inline QStringList Entries(const SelectionList& list) {
  QStringList entries{QString::number(list.Position())};
  for (int i = 0; i < list.Count(); ++i)
    entries.append(list.Text(i));
  return entries;
}

inline ParameterRecord WithoutPadding(ParameterRecord record) {
  record.WertText = WithoutTrailingBlanks(record.WertText);
  return record;
}

/// The first difference between the tables of two modules, their marks aside; "" when there is none.
/// Blanks at the ends of texts count unless `padding` is false, and of the slots those up to `last`.
inline QString TableDifference(const Module1& left, const Module1& right, bool padding = true,
                               int last = kLastParameter) {
  for (int i = 0; i <= last; ++i) {
    if (left.Par[i] != right.Par[i] &&
        (padding || WithoutPadding(left.Par[i]) != WithoutPadding(right.Par[i])))
      return u"Par[%1]"_s.arg(i);
    if (left.ParLine[i] != right.ParLine[i]) return u"ParLine[%1]"_s.arg(i);
  }
  if (left.ParCount != right.ParCount) return u"ParCount"_s;
  if (left.ParFile != right.ParFile) return u"ParFile"_s;
  if (left.VersionIndex != right.VersionIndex) return u"VersionIndex"_s;
  if (Entries(left.VersionList) != Entries(right.VersionList)) return u"VersionList"_s;
  if (Entries(left.PlantTypeList) != Entries(right.PlantTypeList)) return u"PlantTypeList"_s;
  if (left.PlantTypeOffered != right.PlantTypeOffered) return u"PlantTypeOffered"_s;
  if (left.Versionen != right.Versionen) return u"Versionen"_s;
  return {};
}

/// The same of the marks and the expanded groups.
inline QString MarkDifference(const TreeState& left, const TreeState& right) {
  if (!(left.ParNode == right.ParNode)) return u"ParNode"_s;
  if (!(left.NodeState == right.NodeState)) return u"NodeState"_s;
  return left.TreeUpdating == right.TreeUpdating ? QString() : u"TreeUpdating"_s;
}

/// The nodes of a tree, with their texts and boxes.
inline QStringList Nodes(const platform::TreeView& tree) {
  QStringList nodes;
  for (int node = 1; node <= tree.Count(); ++node) {
    nodes.append(tree.Key(node) + u'|' + tree.Text(node) + (tree.Checked(node) ? u"|x"_s : u"|"_s) +
                 (tree.Expanded(node) ? u"|-"_s : u"|+"_s));
  }
  return nodes;
}

/// Started on AddFiles(), connected to a controller of the first version with other values than the standard
/// ones.
struct Recording : Installation {
  ChangeLog log{module};
  std::vector<ChangeStep> steps;   ///< that can be taken back
  std::vector<ChangeStep> undone;  ///< that can be done again
  int forgotten = 0;               ///< how often all were

  explicit Recording(const QString& version = u"AB1-123.4"_s) : Installation(version) {
    log.OnStep = [this](ChangeStep step) {
      undone.clear();
      steps.push_back(std::move(step));
    };
    log.OnForget = [this] {
      steps.clear();
      undone.clear();
      ++forgotten;
    };
    log.Begin();
    StartWithFiles();
    log.End();
  }

  /// One action of the user; true when no error escaped it.
  template <typename Action>
  bool Do(Action&& action) {
    log.Begin();
    bool done = true;
    try {
      action();
    } catch (const RuntimeError&) {
      done = false;
    }
    log.End();
    return done;
  }

  void Undo() {
    log.Undo(steps.back());
    undone.push_back(std::move(steps.back()));
    steps.pop_back();
    ShowTable(core);
  }

  void Redo() {
    log.Redo(undone.back());
    steps.push_back(std::move(undone.back()));
    undone.pop_back();
    ShowTable(core);
  }

  [[nodiscard]] QStringList Names() const {
    QStringList names;
    for (const ChangeStep& step : steps)
      names.append(step.name);
    return names;
  }

  /// On the heap: it is large.
  [[nodiscard]] std::unique_ptr<Module1> Copy() const { return std::make_unique<Module1>(module); }
};

}  // namespace kalivor::test
