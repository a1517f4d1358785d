// What the preview shows, and its commands.
#include "print/pages/PreviewPages.h"

#include "print/PrintSite.h"

namespace kalivor::test {
namespace {

using print::LineRange;

struct PreviewSite : PrintSite {
  TestPages pages{*this};

  explicit PreviewSite(int nodes = 150) { Fill(nodes); }
};

// --- starting ---

TEST(Preview, StartsOnPage1AtHalfSize) {
  PreviewSite site;
  site.pages.Initialize_fPP();
  EXPECT_EQ(site.pages.Masstab, 2);
  EXPECT_EQ(site.pages.Page, 1);
  EXPECT_EQ(site.pages.MaxPage, 3);
  EXPECT_EQ(site.pages.MaxLine, 57);
  EXPECT_EQ(site.pages.PanelText(), u"Seite  1 von 3"_s);
  EXPECT_EQ(site.pages.View().lines, (LineRange{1, 57}));
  EXPECT_EQ(site.pages.Layout().FormWidth_twips, 6000);
  for (const print::FontSizes& sizes : {site.pages.FontSize, site.pages.FontSize2}) {
    EXPECT_EQ(sizes[1], 10);
    EXPECT_EQ(sizes[2], 4);
    EXPECT_EQ(sizes[4], 2);
    EXPECT_EQ(sizes[0] + sizes[3], 0);
  }
}

TEST(Preview, TheVeryFirstFooterHasNoPageText) {
  PreviewSite site;
  site.pages.Initialize_fPP();
  EXPECT_EQ(site.pages.Footer(), u"Samstag, 21 November 2026      C:\\Daten\\test.qpf"_s);
  site.pages.Initialize_fPP();
  EXPECT_EQ(site.pages.Footer(), u"Samstag, 21 November 2026   Seite  1 von 3   C:\\Daten\\test.qpf"_s);
}

TEST(Preview, TheFirstLayoutKnowsNoPages) {
  PreviewSite site;
  QStringList texts;
  site.pages.onChanged = [&] { texts.append(site.pages.PanelText()); };
  site.pages.Initialize_fPP();
  EXPECT_EQ(texts.first(), u"Seite  0 von "_s);
  EXPECT_EQ(texts.last(), u"Seite  1 von 3"_s);
}

TEST(Preview, StartingAgainTakesThePresentParameters) {
  PreviewSite site;
  site.pages.Initialize_fPP();
  site.pages.Page = 3;
  site.pages.Masstab = 1;
  site.Fill(20);
  site.pages.Initialize_fPP();
  EXPECT_EQ(site.pages.Page, 1);
  EXPECT_EQ(site.pages.Masstab, 2);
  EXPECT_EQ(site.pages.MaxPage, 1);
  EXPECT_EQ(site.pages.View().lines, (LineRange{1, 20}));
}

TEST(Preview, HeaderNamesVersionAndPlantType) {
  PreviewSite site;
  site.module.PlantTypeList.Select(1);
  site.pages.Initialize_fPP();
  EXPECT_EQ(site.pages.Header(), u"AB1-123.4 Anlagenart: Luft"_s);
  site.module.PlantTypeOffered = false;
  site.pages.DoLayout();
  EXPECT_EQ(site.pages.Header(), u"AB1-123.4"_s);
}

TEST(Preview, ListsThePlantTypeOnly) {
  PreviewSite site(4);
  site.module.Par[2].Zusatz = u"Luft"_s;
  site.module.PlantTypeList.Select(1);
  site.pages.Initialize_fPP();
  EXPECT_EQ(site.pages.Keys(), (QStringList{u"R"_s, u"sK 2"_s}));
}

// --- paper ---

TEST(Preview, SaysThatThePaperIsChangedToA4) {
  PreviewSite site;
  site.printer.paperSize = 1;
  site.pages.Initialize_fPP();
  const std::vector<FakeMessageBox::Box> boxes = site.box.Take();
  ASSERT_EQ(boxes.size(), 1);
  EXPECT_EQ(boxes[0].text, u"Seitengrösse wird auf A4 geändert"_s);
  EXPECT_EQ(boxes[0].title, u""_s);
  EXPECT_EQ(site.printer.paperSize, print::kPaperA4);
  site.pages.DoLayout();  // says nothing more
}

TEST(Preview, EveryLayoutLooksAtThePaper) {
  PreviewSite site;
  site.pages.Initialize_fPP();
  site.printer.paperSize = 5;
  site.pages.DoLayout();
  EXPECT_EQ(TakeBoxes(site.box).size(), 1);
}

// --- footer ---

TEST(Preview, TheFooterFitsThePaper) {
  PreviewSite site;
  site.path = u"C:\\Daten\\Regler\\Werte\\Anlagen im Süden\\Heizzentrale Haus 01\\test.qpf"_s;
  site.pages.Initialize_fPP();
  site.pages.Initialize_fPP();
  EXPECT_EQ(site.pages.Footer(),
            u"Samstag, 21 November 2026   Seite  1 von 3   C:\\...\\Heizzentrale Haus 01\\test.qpf"_s);
  const double room = site.pages.Layout().FooterRoom();
  EXPECT_LE(print::TextWidth_cm(site.pages.Footer().size(), 10), room);
  const QString longer =
      u"Samstag, 21 November 2026   Seite  1 von 3   "
      "C:\\...\\Anlagen im Süden\\Heizzentrale Haus 01\\test.qpf"_s;
  EXPECT_GT(print::TextWidth_cm(longer.size(), 10), room) << "not shortened more than needed";
}

TEST(Preview, TheFooterIsTheSameAtEveryScale) {
  PreviewSite site;
  site.path = u"C:\\Daten\\Regler\\Werte\\Anlagen im Süden\\Heizzentrale Haus 01\\test.qpf"_s;
  site.pages.Initialize_fPP();
  site.pages.Initialize_fPP();
  const QString half = site.pages.Footer();
  site.pages.Masstab = 1;
  site.pages.DoLayout();
  EXPECT_EQ(site.pages.Footer(), half);
}

// --- pages ---

TEST(Preview, SelectsAPageByItsNumber) {
  PreviewSite site(60);
  site.pages.Initialize_fPP();
  site.pages.Page = 2;
  site.pages.selectPage();
  EXPECT_EQ(site.pages.View().lines, (LineRange{58, 60}));
  EXPECT_EQ(site.pages.PanelText(), u"Seite  2 von 2"_s);
}

TEST(Preview, TheFooterKeepsThePageTextFromBefore) {
  PreviewSite site;
  site.pages.Initialize_fPP();
  site.pages.Initialize_fPP();
  site.pages.Page = 2;
  site.pages.selectPage();
  EXPECT_TRUE(site.pages.Footer().contains(u"Seite  1 von 3"_s));
  site.pages.DoLayout();
  EXPECT_TRUE(site.pages.Footer().contains(u"Seite  2 von 3"_s));
}

TEST(Preview, TheExtraPageBehindAFullOneIsEmpty) {
  PreviewSite site(57);
  site.pages.Initialize_fPP();
  ASSERT_EQ(site.pages.MaxPage, 2);
  site.pages.Page = 2;
  site.pages.selectPage();
  EXPECT_LT(site.pages.View().lines.last, site.pages.View().lines.first);
  EXPECT_EQ(site.module.TreeUpdating, kFalse);
  site.pages.Page = 3;
  site.pages.selectPage();
  EXPECT_LT(site.pages.View().lines.last, site.pages.View().lines.first);
}

TEST(Preview, SelectingRoundsTheHeightUntilTheNextLayout) {
  PreviewSite site;
  site.pages.Initialize_fPP();
  EXPECT_DOUBLE_EQ(site.pages.TreeHeight(), 25);
  EXPECT_DOUBLE_EQ(site.pages.View().geometry.TreeHeight, 24.7) << "what is drawn does not move";
  site.pages.DoLayout();
  EXPECT_DOUBLE_EQ(site.pages.TreeHeight(), 24.7);
  for (const int page : {2, 3, 4}) {
    site.pages.Page = page;
    site.pages.selectPage();
    EXPECT_DOUBLE_EQ(site.pages.TreeHeight(), 25) << page;
  }
}

TEST(Preview, ANewListShowsFromItsBeginning) {
  PreviewSite site;
  site.pages.Initialize_fPP();
  site.pages.Page = 3;
  site.pages.selectPage();
  site.pages.MakeTree();
  EXPECT_EQ(site.pages.View().lines, (LineRange{1, 57}));
}

TEST(Preview, AllPagesTogetherHoldEveryLineOnce) {
  for (const int orientation : {kPortrait, kLandscape}) {
    PreviewSite site(500);
    site.printer.orientation = orientation;
    site.pages.Initialize_fPP();
    int next = 1;
    for (site.pages.Page = 1; site.pages.Page <= *site.pages.MaxPage; ++site.pages.Page) {
      site.pages.selectPage();
      EXPECT_EQ(site.pages.View().lines.first, next);
      next = site.pages.View().lines.last + 1;
    }
    EXPECT_EQ(next, 501);
  }
}

// --- scale ---

TEST(Preview, AnImpossibleScaleIsAnError) {
  PreviewSite site;
  site.pages.Initialize_fPP();
  site.pages.Masstab = 5;
  EXPECT_EQ(ThrownKind([&] { site.pages.DoLayout(); }), RuntimeError::Kind::Bounds);
}

TEST(Preview, ThePageIsDrawnAtFullSizeAtEveryScale) {
  PreviewSite site;
  site.pages.Initialize_fPP();
  EXPECT_EQ(site.pages.Layout().FontSize_pt, 4);
  EXPECT_EQ(site.pages.View().geometry, print::GeometryFor(kPortrait, 1));
}

// --- orientation ---

TEST(Preview, TurningThePaperKeepsThePageNumber) {
  PreviewSite site;
  site.printer.orientation = kLandscape;
  site.pages.Initialize_fPP();
  ASSERT_EQ(site.pages.MaxPage, 5);
  site.pages.Page = 4;
  site.pages.selectPage();
  site.pages.CommandAusrichtung();
  EXPECT_EQ(site.printer.orientation, kPortrait);
  EXPECT_EQ(site.pages.MaxLine, 57);
  EXPECT_EQ(site.pages.MaxPage, 3);
  EXPECT_EQ(site.pages.Page, 4);
  EXPECT_EQ(site.pages.PanelText(), u"Seite  4 von 5"_s) << "written before the list was rebuilt";
  EXPECT_EQ(site.pages.Texts().first(), u"Anlage"_s);
  site.pages.CommandAusrichtung();
  EXPECT_EQ(site.printer.orientation, kLandscape);
  EXPECT_EQ(site.pages.MaxLine, 34);
  EXPECT_EQ(site.pages.Texts().first().size(), 104);
}

// --- printing ---

TEST(Preview, PrintsAllPagesAsOneJob) {
  PreviewSite site;
  site.module.Kopien = 2;
  site.pages.Initialize_fPP();
  site.pages.Initialize_fPP();
  site.pages.CommandDrucken();
  std::vector<double> order;
  for (const TestPages::Printed& page : site.pages.printed) {
    order.push_back(page.page);
    EXPECT_EQ(page.footer, u"Samstag, 21 November 2026   Seite  1 von 3   C:\\Daten\\test.qpf"_s);
  }
  EXPECT_EQ(order, (std::vector<double>{1, 2, 3, 1, 2, 3}));
  EXPECT_EQ(site.pages.printed[1].lines, (LineRange{58, 114}));
  EXPECT_EQ(site.pages.printed[5].lines, (LineRange{115, 150}));
  EXPECT_EQ(site.printer.jobs, (std::vector<int>{6}));
  EXPECT_EQ(site.pages.processed, 6) << "each page can be painted first";
  EXPECT_EQ(site.pages.Page, 4);
  EXPECT_EQ(site.pages.Masstab, 1);
  EXPECT_EQ(site.pages.PanelText(), u"Seite  3 von 3"_s);
}

TEST(Preview, PrintsThePageShownAsOneJobPerCopy) {
  PreviewSite site;
  site.module.Kopien = 2;
  site.pages.Initialize_fPP();
  site.pages.Page = 2;
  site.pages.selectPage();
  site.pages.CommandSeiteDrucken();
  EXPECT_EQ(site.printer.jobs, (std::vector<int>{1, 1}));
  ASSERT_EQ(site.pages.printed.size(), 2);
  EXPECT_EQ(site.pages.printed[0].lines, (LineRange{58, 114}));
  EXPECT_TRUE(site.pages.printed[0].footer.contains(u"Seite  2 von 3"_s));
  EXPECT_EQ(site.pages.Page, 2);
  EXPECT_EQ(site.pages.Masstab, 1);
}

TEST(Preview, NoCopiesNoJob) {
  PreviewSite site;
  site.module.Kopien = 0;
  site.pages.Initialize_fPP();
  site.pages.CommandDrucken();
  site.pages.CommandSeiteDrucken();
  EXPECT_EQ(site.printer.pages, 0);
  EXPECT_TRUE(site.printer.jobs.empty());
  EXPECT_EQ(site.pages.Page, 1);
}

TEST(Preview, PrintsTheEmptyPageToo) {
  PreviewSite site(57);
  site.pages.Initialize_fPP();
  site.pages.CommandDrucken();
  EXPECT_EQ(site.printer.jobs, (std::vector<int>{2}));
}

TEST(Preview, AFailureOfThePrinterDropsTheJob) {
  // At every page that the job has.
  for (int page = 1; page <= 6; ++page) {
    PreviewSite site;
    site.module.Kopien = 2;
    site.printer.failAtPage = page;
    site.pages.Initialize_fPP();
    EXPECT_EQ(ThrownKind([&] { site.pages.CommandDrucken(); }), RuntimeError::Kind::FileError);
    EXPECT_TRUE(site.printer.jobs.empty());
    EXPECT_EQ(site.printer.aborted, page > 1 ? 1 : 0);
    EXPECT_EQ(site.module.TreeUpdating, kFalse);
    site.printer.failAtPage = 0;
    site.pages.CommandDrucken();
    EXPECT_EQ(site.printer.jobs, (std::vector<int>{6})) << "nothing is left of the job before";
  }
}

TEST(Preview, ACopyThatFailsDoesNotTakeBackTheOnesBefore) {
  PreviewSite site;
  site.module.Kopien = 3;
  site.printer.failAtPage = 2;
  site.pages.Initialize_fPP();
  EXPECT_EQ(ThrownKind([&] { site.pages.CommandSeiteDrucken(); }), RuntimeError::Kind::FileError);
  EXPECT_EQ(site.printer.jobs, (std::vector<int>{1}));
}

TEST(Preview, AMissingPrinterIsAnError) {
  PreviewSite site;
  site.printer.missing = true;
  site.pages.Initialize_fPP();
  EXPECT_EQ(ThrownKind([&] { site.pages.CommandDrucken(); }), RuntimeError::Kind::MissingObject);
  EXPECT_EQ(ThrownKind([&] { site.pages.CommandSeiteDrucken(); }), RuntimeError::Kind::MissingObject);
}

TEST(Preview, HidesItself) {
  PreviewSite site;
  site.pages.CommandAbbrechen();
  EXPECT_TRUE(site.pages.hidden);
}

// --- clicks on the list ---

struct GroupSite : PrintSite {
  TestPages pages{*this};
  int rebuilt = 0;

  GroupSite() {
    Add(u"A"_s, 2);
    Add(u"B"_s, 2);
    pages.Initialize_fPP();
    pages.onChanged = [this] {
      ++rebuilt;
      EXPECT_EQ(module.TreeUpdating, kTrue) << "other changes than of the list are not expected here";
    };
  }
};

constexpr int kRoot = 1, kGroupB = 5, kParameter = 6;

TEST(PreviewTree, CollapsingAGroupIsRemembered) {
  GroupSite site;
  site.module.NodeState[2] = kTrue;
  site.pages.TreeView_Collapse(kGroupB);
  EXPECT_EQ(site.module.NodeState[2], kFalse);
  EXPECT_EQ(site.rebuilt, 1);
  EXPECT_EQ(site.pages.List().Count(), 7) << "it still shows expanded";
  EXPECT_EQ(site.module.TreeUpdating, kFalse);
}

TEST(PreviewTree, ExpandingAGroupIsRemembered) {
  GroupSite site;
  site.pages.TreeView_Expand(kGroupB);
  EXPECT_EQ(site.module.NodeState[2], kTrue);
  EXPECT_EQ(site.rebuilt, 1);
}

TEST(PreviewTree, ExpandingByTheProgramIsNot) {
  GroupSite site;
  site.module.TreeUpdating = kTrue;
  site.pages.TreeView_Expand(kGroupB);
  EXPECT_EQ(site.module.NodeState[2], kFalse);
  EXPECT_EQ(site.rebuilt, 0);
}

TEST(PreviewTree, AClickStoresTheStateOfAGroup) {
  GroupSite site;
  site.pages.TreeView_NodeClick(kGroupB);
  EXPECT_EQ(site.module.NodeState[2], kTrue);
  EXPECT_EQ(site.rebuilt, 0);
}

TEST(PreviewTree, OnlyGroupsTakeNotice) {
  GroupSite site;
  const auto before = site.module.NodeState;
  for (const int node : {kRoot, kParameter}) {
    site.pages.TreeView_Collapse(node);
    site.pages.TreeView_Expand(node);
    site.pages.TreeView_NodeClick(node);
  }
  EXPECT_EQ(site.module.NodeState, before);
  EXPECT_EQ(site.rebuilt, 0);
}

TEST(PreviewTree, GroupsAreCountedAsPrinted) {
  GroupSite site;
  site.module.ParNode[1] = site.module.ParNode[2] = kFalse;
  site.pages.MakeTree();
  ASSERT_EQ(site.pages.Keys(), (QStringList{u"R"_s, u"K 1"_s, u"sK 3"_s, u"sK 4"_s}));
  site.module.NodeState[1] = site.module.NodeState[2] = kTrue;
  site.pages.TreeView_Collapse(2);
  EXPECT_EQ(site.module.NodeState[1], kFalse);
  EXPECT_EQ(site.module.NodeState[2], kTrue);
}

TEST(PreviewTree, LinesThatAreNotThereAreAnError) {
  GroupSite site;
  for (const int node : {0, 8, -1})
    EXPECT_EQ(ThrownKind([&] { site.pages.TreeView_Collapse(node); }), RuntimeError::Kind::Bounds);
}

TEST(PreviewTree, AnErrorClearsTheFlag) {
  GroupSite site;
  site.module.Par[3].Zahl1 = 10;
  EXPECT_EQ(ThrownKind([&] { site.pages.MakeTree(); }), RuntimeError::Kind::Overflow);
  EXPECT_EQ(site.module.TreeUpdating, kFalse);
}

}  // namespace
}  // namespace kalivor::test
