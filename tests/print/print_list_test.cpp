// The printable list and its pages.
#include "print/pages/PrintList.h"

#include <map>

#include "core/TreeTexts.h"
#include "print/PrintSite.h"

namespace kalivor::test {
namespace {

using print::LineRange;
using print::PrintList;
using print::PrintNode;

struct ListSite : PrintSite {
  PrintList list;

  // Texts are quicker to make than numbers.
  void FillWithTexts(int parameters) {
    Fill(parameters + 1);
    for (int i = 1; i <= parameters; ++i)
      module.Par[i].Typ = u"string4"_s;
  }

  void Make(int orientation = kPortrait, const QString& plant = QString()) {
    list.Make(module, plant, orientation);
  }

  // Each line as "level key", for comparing.
  [[nodiscard]] QStringList Lines() const {
    QStringList lines;
    for (const PrintNode& node : list.nodes)
      lines.append(u"%1 %2"_s.arg(node.level).arg(node.key));
    return lines;
  }
};

// --- which lines ---

TEST(PrintList, IsOnlyTheRootWithoutParameters) {
  ListSite site;
  site.Make();
  EXPECT_EQ(site.Lines(), (QStringList{u"0 R"_s}));
  EXPECT_EQ(site.list.nodes[0].text, u"Anlage"_s);
  EXPECT_TRUE(site.list.nodes[0].expanded);
  EXPECT_EQ(site.list.MaxPage, 1);
}

TEST(PrintList, TheRootCarriesTheHeadingsInLandscapeOnly) {
  ListSite site;
  site.Make(kLandscape);
  const QString heading = site.list.nodes[0].text;
  EXPECT_EQ(heading, u"Anlage"_s + QString(54, u' ') + u"Wert           Min.       Max.      Standard"_s);
  EXPECT_EQ(heading.size(), 104);
  EXPECT_EQ(heading.indexOf(u"Wert"_s) + 1, 61);
  EXPECT_EQ(heading.indexOf(u"Min."_s) + 1, 76);
  EXPECT_EQ(heading.indexOf(u"Max."_s) + 1, 87);
  EXPECT_EQ(heading.indexOf(u"Standard"_s) + 1, 97);
}

TEST(PrintList, EveryChangeOfTheGroupStartsANewOne) {
  ListSite site;
  for (const QString& group : {u"A"_s, u"A"_s, u"B"_s, u"A"_s})
    site.Add(group);
  site.Make();
  EXPECT_EQ(site.Lines(), (QStringList{u"0 R"_s, u"1 K 1"_s, u"2 sK 1"_s, u"2 sK 2"_s, u"1 K 2"_s,
                                       u"2 sK 3"_s, u"1 K 3"_s, u"2 sK 4"_s}));
  EXPECT_EQ(site.list.nodes[1].text, u"A"_s) << "without columns";
  EXPECT_TRUE(site.list.nodes[1].expanded);
}

TEST(PrintList, ParametersWithoutAGroupStandUnderTheRootAtFirst) {
  ListSite site;
  for (const QString& group : {u""_s, u"A"_s, u""_s})
    site.Add(group);
  site.Make();
  EXPECT_EQ(site.Lines(),
            (QStringList{u"0 R"_s, u"1 sK 1"_s, u"1 K 1"_s, u"2 sK 2"_s, u"1 K 2"_s, u"2 sK 3"_s}));
  EXPECT_EQ(site.list.nodes[4].text, u""_s);
}

TEST(PrintList, KeysKeepTheIndexOfTheParameter) {
  ListSite site;
  site.Add(u"A"_s, 12);
  for (int i = 1; i < 12; ++i)
    site.module.ParNode[i] = kFalse;
  site.Make();
  EXPECT_EQ(site.Lines(), (QStringList{u"0 R"_s, u"1 K 1"_s, u"2 sK 12"_s}));
}

TEST(PrintList, HoldsCheckedParametersOfThePlantTypeOnly) {
  ListSite site;
  site.Add(u"A"_s, 4);
  site.module.Par[1].Zusatz = u"Luft"_s;
  site.module.Par[2].Zusatz = u"Wasser"_s;
  site.module.Par[3].Zusatz = u"Luftig"_s;
  site.module.Par[4].Zusatz = u"Luft"_s;
  site.module.ParNode[4] = kFalse;
  site.Make(kPortrait, u"Luft"_s);
  EXPECT_EQ(site.Lines(), (QStringList{u"0 R"_s, u"1 K 1"_s, u"2 sK 1"_s, u"2 sK 3"_s}));
  site.module.ParNode[0] = kFalse;
  site.Make(kPortrait);
  EXPECT_EQ(site.list.Count(), 5) << "the root's own mark does not count";
}

TEST(PrintList, LinesAreShortInPortraitAndLongInLandscape) {
  ListSite site;
  site.Add(u"A"_s);
  ParameterRecord& record = site.module.Par[1];
  record.Wert = 1500;
  record.Zahl1 = 1;
  record.Einheit = u"1/m"_s;
  site.Make(kPortrait);
  EXPECT_EQ(site.list.nodes[2].text, ParamTextShort(record));
  EXPECT_EQ(site.list.nodes[2].text.size(), 63);
  site.Make(kLandscape);
  EXPECT_EQ(site.list.nodes[2].text, ParamText(record));
  EXPECT_EQ(site.list.nodes[2].text.size(), 93);
}

TEST(PrintList, AnErrorKeepsTheLinesSoFar) {
  ListSite site;
  site.Add(u"A"_s, 3);
  site.Make();
  ASSERT_EQ(site.list.MaxPage, 1);
  site.Fill(100);
  site.module.Par[99].Zahl1 = 10;
  EXPECT_EQ(ThrownKind([&] { site.Make(); }), RuntimeError::Kind::Overflow);
  EXPECT_EQ(site.list.Count(), 99);
  EXPECT_EQ(site.list.MaxPage, 1) << "from before";
}

// --- pages ---

TEST(PrintList, AFullLastPageIsFollowedByAnEmptyOne) {
  struct {
    int orientation, nodes, pages;
  } const cases[] = {{kPortrait, 56, 1},  {kPortrait, 57, 2},  {kPortrait, 113, 2}, {kPortrait, 114, 3},
                     {kLandscape, 33, 1}, {kLandscape, 34, 2}, {kLandscape, 67, 2}, {kLandscape, 68, 3}};
  for (const auto& example : cases) {
    ListSite site;
    site.Fill(example.nodes);
    site.Make(example.orientation);
    ASSERT_EQ(site.list.Count(), example.nodes);
    EXPECT_EQ(site.list.MaxPage, example.pages) << example.nodes;
  }
}

TEST(PrintList, PageLastParCountsTheLineAfterTheParameter) {
  ListSite site;
  site.Fill(60);
  site.Make();
  EXPECT_EQ(site.list.PageLastPar[0], 55) << "line 56 is the last whose number divides to 0";
  EXPECT_EQ(site.list.PageLastPar[1], 59);
  EXPECT_EQ(site.list.PageLastPar[2], 0);
}

TEST(PrintList, PageNumber60IsOutOfBounds) {
  ListSite site;
  site.Fill(2000);
  site.Make(kLandscape);
  EXPECT_EQ(site.list.MaxPage, 59);
  // Forty parameters open a group of their own, which makes 2040 lines.
  for (int i = 1; i <= 40; ++i)
    site.module.Par[i].Rubrik = QString::number(i);
  for (int i = 41; i < 2000; ++i)
    site.module.Par[i].Rubrik = u"40"_s;
  EXPECT_EQ(ThrownKind([&] { site.Make(kLandscape); }), RuntimeError::Kind::Bounds);
  EXPECT_EQ(site.list.Count(), 2040);
  site.module.ParCount--;
  site.Make(kLandscape);
  EXPECT_EQ(site.list.Count(), 2039);
  EXPECT_EQ(site.list.MaxPage, 60);
}

TEST(PrintList, InPortraitTheBoundIs3420Lines) {
  ListSite site;
  QStringList groups;
  site.Fill(2001);
  for (int i = 1; i <= 2000; ++i)
    site.module.Par[i].Rubrik = QString::number(std::min(i, 1419));
  EXPECT_EQ(ThrownKind([&] { site.Make(); }), RuntimeError::Kind::Bounds);
  site.module.ParCount--;
  site.Make();
  EXPECT_EQ(site.list.Count(), 3419);
  EXPECT_EQ(site.list.MaxPage, 60);
}

TEST(PrintList, FromEndsWithTheList) {
  ListSite site;
  site.Fill(60);
  site.Make();
  EXPECT_EQ(site.list.From(1, 57), (LineRange{1, 57}));
  EXPECT_EQ(site.list.From(58, 57), (LineRange{58, 60}));
  const LineRange behind = site.list.From(115, 57);
  EXPECT_LT(behind.last, behind.first);
}

// --- every length, against sheets filled one line at a time ---

// Puts lines on sheets of paper as a typist would: a new sheet is fetched as soon as one is full.
struct Sheets {
  explicit Sheets(int linesPerSheet) : capacity(linesPerSheet) {}

  void Type(int line) {
    sheets.back().last = line;
    if (++used < capacity) return;
    sheets.push_back({line + 1, line});
    used = 0;
  }

  int capacity;
  int used = 0;  // lines of the last sheet
  std::vector<LineRange> sheets{{1, 0}};
};

// What the pages of the list hold.
std::vector<LineRange> PagesOf(const PrintList& list, int linesPerPage) {
  std::vector<LineRange> pages;
  for (int page = 1; page <= list.MaxPage.value_or(0); ++page)
    pages.push_back(list.From((page - 1) * linesPerPage + 1, linesPerPage));
  return pages;
}

// Makes lists of more and more of the site's parameters and compares each with the sheets. Returns which
// lengths were seen.
std::map<int, bool> CompareAllLengths(ListSite& site, int orientation, int linesPerPage) {
  std::map<int, bool> seen;
  const qint16 all = site.module.ParCount;
  Sheets typist(linesPerPage);
  int typed = 0;
  for (qint16 count = 1; count <= all; ++count) {
    site.module.ParCount = count;
    const std::optional<RuntimeError::Kind> error = ThrownKind([&] { site.Make(orientation); });
    const int length = site.list.Count();
    if (length >= 60 * linesPerPage) {
      EXPECT_EQ(error, RuntimeError::Kind::Bounds) << length;
      seen[length] = true;
      continue;
    }
    EXPECT_EQ(error, std::nullopt) << length;
    while (typed < length)
      typist.Type(++typed);
    EXPECT_EQ(site.list.MaxPage, typist.sheets.size()) << length;
    EXPECT_EQ(PagesOf(site.list, linesPerPage), typist.sheets) << length;
    seen[length] = true;
    if (testing::Test::HasFailure()) break;
  }
  return seen;
}

class EveryLength : public testing::TestWithParam<std::pair<int, int>> {};

TEST_P(EveryLength, HasItsLinesOnTheRightPages) {
  const auto [orientation, linesPerPage] = GetParam();
  ListSite ungrouped;
  ungrouped.FillWithTexts(2000);
  std::map<int, bool> seen = CompareAllLengths(ungrouped, orientation, linesPerPage);

  // Groups at the beginning only, so that the lengths beyond the number of parameters come one by one. In
  // landscape those from 2040 on end with the error as soon as the first line beyond falls due.
  ListSite grouped;
  grouped.FillWithTexts(2000);
  for (int i = 1; i <= 2000; ++i)
    grouped.module.Par[i].Rubrik = QString::number(std::min(i, 110));
  seen.merge(CompareAllLengths(grouped, orientation, linesPerPage));

  const int last = std::min(2100, 60 * linesPerPage);
  for (int length = 1; length <= last; ++length)
    EXPECT_TRUE(seen[length]) << length;
}

INSTANTIATE_TEST_SUITE_P(Orientations, EveryLength,
                         testing::Values(std::pair(kPortrait, 57), std::pair(kLandscape, 34)));

}  // namespace
}  // namespace kalivor::test
