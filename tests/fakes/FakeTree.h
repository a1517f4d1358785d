// A tree without a window, and what a user would do with it.
#pragma once

#include <functional>

#include "platform/TreeView.h"

namespace kalivor::test {

/// Counts how often it was rebuilt.
class FakeTree final : public platform::TreeView {
 public:
  int rebuilt = 0;
  int current = 0;                  ///< where GoTo() went last
  std::function<void()> onRebuild;  ///< runs while the tree is being rebuilt

  void Clear() override {
    ++rebuilt;
    if (onRebuild) onRebuild();
    TreeView::Clear();
  }

  void GoTo(int node) override {
    TreeView::GoTo(node);
    current = node;
  }

  /// The number of the node with this key, 0 when there is none.
  [[nodiscard]] int Find(const QString& key) const {
    for (int node = 1; node <= Count(); ++node) {
      if (Key(node) == key) return node;
    }
    return 0;
  }

  // With the mouse: change the node, then run its handler.
  void UserChecks(int node, bool checked) {
    SetChecked(node, checked);
    if (OnCheck) OnCheck(node);
  }
  void UserExpands(int node) {
    SetExpanded(node, true);
    if (OnExpand) OnExpand(node);
  }
  void UserCollapses(int node) {
    SetExpanded(node, false);
    if (OnCollapse) OnCollapse(node);
  }
  void UserClicks(int node) const {
    if (OnClick) OnClick(node);
  }
};

}  // namespace kalivor::test
