// The list without a window keeps the contract of lists.
#include "contract/ListBoxContract.h"
#include "platform/plain/PlainListBox.h"

namespace kalivor::test {
namespace {

struct PlainListBoxHarness {
  platform::ListBox& List() { return list; }
  void UserSelects(int position) { list.Select(position); }

  platform::PlainListBox list;
};

INSTANTIATE_TYPED_TEST_SUITE_P(Plain, ListBoxContract, PlainListBoxHarness);

}  // namespace
}  // namespace kalivor::test
