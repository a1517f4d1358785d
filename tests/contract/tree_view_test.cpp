// The tree without a window keeps the contract of trees.
#include "contract/TreeViewContract.h"
#include "fakes/FakeTree.h"

namespace kalivor::test {
namespace {

struct TreeViewHarness {
  platform::TreeView& Tree() { return tree; }
  [[nodiscard]] bool Visible() const { return tree.Visible(); }
  void UserChecks(int node, bool on) { tree.UserChecks(node, on); }
  void UserExpands(int node) { tree.UserExpands(node); }
  void UserCollapses(int node) { tree.UserCollapses(node); }
  void UserClicks(int node) { tree.UserClicks(node); }

  FakeTree tree;
};

INSTANTIATE_TYPED_TEST_SUITE_P(Plain, TreeViewContract, TreeViewHarness);

}  // namespace
}  // namespace kalivor::test
