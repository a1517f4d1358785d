// A list that nobody shows keeps the contract of lists.
#include "contract/SelectionListContract.h"

namespace kalivor::test {
namespace {

struct ListHarness {
  SelectionList& List() { return list; }
  void UserSelects(int position) { list.Select(position); }

  SelectionList list;
};

INSTANTIATE_TYPED_TEST_SUITE_P(Plain, SelectionListContract, ListHarness);

TEST(SelectionList, FindsTheFirstOfEqualTexts) {
  SelectionList list;
  for (const char16_t* text : {u"eins", u"zwei", u"eins"})
    list.Add(QString::fromUtf16(text));
  EXPECT_EQ(list.Find(QStringLiteral("eins")), 0);
  EXPECT_EQ(list.Find(QStringLiteral("zwei")), 1);
  EXPECT_EQ(list.Find(QStringLiteral("drei")), -1);
  EXPECT_EQ(list.Find({}), -1);
}

TEST(SelectionList, ACopyIsASnapshotWithoutHandlerAndView) {
  SelectionList list;
  int runs = 0;
  list.OnChange = list.OnShow = [&runs] { ++runs; };
  list.Add(QStringLiteral("eins"));
  list.Select(0);
  const int before = runs;
  SelectionList copy = list;
  EXPECT_EQ(copy.SelectedText(), QStringLiteral("eins"));
  copy.Clear();
  copy.Add(QStringLiteral("zwei"));
  EXPECT_EQ(runs, before);
  list = copy;
  EXPECT_EQ(list.Text(0), QStringLiteral("zwei"));
  EXPECT_EQ(runs, before + 1) << "its own view shows what it has become";
  copy.Select(0);
  list = copy;
  EXPECT_EQ(list.SelectedText(), QStringLiteral("zwei"));
}

TEST(SelectionList, ItsViewHearsOfEveryChange) {
  SelectionList list;
  QStringList shown;
  list.OnShow = [&] { shown.append(QString::number(list.Count()) + list.SelectedText()); };
  list.Add(QStringLiteral("a"));
  list.Select(0);
  list.Select(0);
  list.Clear();
  EXPECT_EQ(shown, (QStringList{QStringLiteral("1"), QStringLiteral("1a"), QStringLiteral("0")}));
}

}  // namespace
}  // namespace kalivor::test
