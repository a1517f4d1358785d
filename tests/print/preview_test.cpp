// The preview on the screen: how it looks, and clicks on it.
#include "print/Pictures.h"
#include "print/WindowSite.h"
#include "print/painter/PdfPrint.h"

namespace kalivor::test {
namespace {

using print::Geometry;
using print::SignArea;

struct PictureSite : WindowSite {
  QTemporaryDir folder;
  QString file = folder.filePath(u"seite.pdf"_s);

  PictureSite() : WindowSite(2) {
    module.ParCount = 1;
    for (int group = 1; group <= 12; ++group)
      Add(u"Gruppe %1"_s.arg(group), 1 + group % 5);
    for (int i = 1; i < module.ParCount; ++i) {
      module.Par[i].Wert = i * 37;
      module.Par[i].Einheit = i % 2 == 0 ? u"mbar"_s : u"K"_s;
    }
  }
};

class PreviewPicture : public testing::TestWithParam<int> {};
INSTANTIATE_TEST_SUITE_P(Orientations, PreviewPicture, testing::Values(kPortrait, kLandscape));

TEST_P(PreviewPicture, ShowsEachLineWhereItIsPrinted) {
  PictureSite site;
  site.printer.orientation = GetParam();
  site.Open();
  site.Press(u"Format"_s);
  ASSERT_EQ(print::PrintPdf(site.core, {site.Input(GetParam()), site.file, 1, {}}), QString());
  ExpectSamePlaces(site.Preview(), site.file, 1);
}

// All the way through the frame and the program's printer, page by page, the last one partly filled.
TEST_P(PreviewPicture, OfEveryPageIsWhatTheFilePrintedHolds) {
  FileSite site;
  site.printer.SetOrientation(GetParam());
  site.Open();
  site.Press(u"Format"_s);
  site.Press(u"Drucken"_s);
  const int pages = *site.Preview().MaxPage;
  ASSERT_EQ(pages, GetParam() == kPortrait ? 3 : 5);
  ASSERT_EQ(PdfPages(site.file), pages);
  // The footers keep what they were before printing began.
  const QString footer = site.Preview().Footer();
  for (int page = 1; page <= pages; ++page) {
    site.Preview().Page = page;
    site.Preview().selectPage();
    ASSERT_EQ(site.Preview().Footer(), footer);
    ExpectSamePlaces(site.Preview(), site.file, page);
    ExpectSameLines(site.Preview(), site.file, page);
  }
}

TEST_P(PreviewPicture, LeavesTheMarginsEmpty) {
  PictureSite site;
  site.printer.orientation = GetParam();
  site.module.Par[3].Name = QString(300, u'N');
  site.Open();
  site.Press(u"Format"_s);
  const QImage picture = site.Preview().grab().toImage();
  const Geometry page = print::GeometryFor(GetParam(), 1);
  const QRect ink = Ink(picture, picture.rect());
  const QRect inner =
      Pixels(QRectF(0.7, 1, page.ScaleWidth - 1.4, page.ScaleHeight - 2), page, picture.size());
  EXPECT_TRUE(inner.contains(ink)) << ink.left() << ' ' << ink.top() << ' ' << ink.right() << ' '
                                   << ink.bottom();
}

TEST_P(PreviewPicture, IsTheSamePageAtHalfSize) {
  PictureSite site;
  site.printer.orientation = GetParam();
  site.Open();
  const QImage half = site.Preview().grab().toImage();
  site.Press(u"Format"_s);
  const QImage whole = site.Preview().grab().toImage();
  EXPECT_NEAR(half.width() * 2, whole.width(), 2);
  const QRect small = Ink(half, half.rect());
  const QRect large = Ink(whole, whole.rect());
  EXPECT_NEAR(small.left() * 2, large.left(), 4);
  EXPECT_NEAR(small.right() * 2, large.right(), 4);
  EXPECT_NEAR(small.bottom() * 2, large.bottom(), 4);
}

TEST(PreviewColours, AreThoseOfPaper) {
  PictureSite site;
  QPalette dark;
  dark.setColor(QPalette::Window, Qt::black);
  dark.setColor(QPalette::WindowText, Qt::white);
  site.frame.setPalette(dark);
  site.Open();
  const QImage picture = site.Preview().grab().toImage();
  EXPECT_EQ(picture.pixelColor(2, 2), QColor(Qt::white));
  EXPECT_FALSE(Ink(picture, picture.rect()).isEmpty());
}

TEST(PreviewSpeech, ReadsThePageOut) {
  WindowSite site(3);
  site.Open();
  const QStringList spoken = site.Preview().accessibleDescription().split(u'\n');
  ASSERT_EQ(spoken.size(), 5);
  EXPECT_EQ(spoken[0], site.Preview().Header());
  EXPECT_EQ(spoken[1], u"Anlage"_s);
  EXPECT_EQ(spoken[4], site.Preview().Footer());
}

// --- clicks ---

struct ClickSite : WindowSite {
  ClickSite() : WindowSite(2) {
    module.ParCount = 1;
    Add(u"A"_s, 2);
    Add(u"B"_s, 2);
    Open();
  }

  // Clicks on line `node`: on its sign, or on its text.
  void Click(int node, bool onSign) {
    const print::PageView page = Preview().View();
    const int row = node - page.lines.first;
    const int level = page.list.nodes[static_cast<std::size_t>(node - 1)].level;
    const QRectF sign = SignArea(page.list, page.geometry, row, level);
    const QPointF place = onSign ? sign.center() : sign.center() + QPointF(2, 0);
    const QSizeF scale(Preview().width() / page.geometry.ScaleWidth,
                       Preview().height() / page.geometry.ScaleHeight);
    QTest::mouseClick(&Preview(), Qt::LeftButton, Qt::NoModifier,
                      QPointF(place.x() * scale.width(), place.y() * scale.height()).toPoint());
  }
};

constexpr int kRoot = 1, kGroupB = 5, kParameter = 6;

TEST(PreviewClicks, OnTheSignOfAGroupCollapsesIt) {
  ClickSite site;
  site.module.NodeState[1] = site.module.NodeState[2] = kTrue;
  site.Click(kGroupB, true);
  EXPECT_EQ(site.module.NodeState[1], kTrue);
  EXPECT_EQ(site.module.NodeState[2], kFalse);
}

TEST(PreviewClicks, OnTheTextOfAGroupStoresThatItIsExpanded) {
  ClickSite site;
  site.Click(kGroupB, false);
  EXPECT_EQ(site.module.NodeState[1], kFalse);
  EXPECT_EQ(site.module.NodeState[2], kTrue);
}

TEST(PreviewClicks, ElsewhereDoNothing) {
  ClickSite site;
  const auto before = site.module.NodeState;
  site.Click(kRoot, true);
  site.Click(kRoot, false);
  site.Click(kParameter, false);
  QTest::mouseClick(&site.Preview(), Qt::LeftButton, Qt::NoModifier, QPoint(2, 2));
  EXPECT_EQ(site.module.NodeState, before);
}

TEST(PreviewClicks, AnErrorShowsABox) {
  ClickSite site;
  site.module.Par[3].Zahl1 = 10;
  site.Click(kGroupB, true);
  EXPECT_EQ(TakeBoxes(site.box).size(), 1);
}

}  // namespace
}  // namespace kalivor::test
