// PDF files, looked at from outside.
#include "print/painter/PdfPrint.h"

#include <QFile>
#include <QFileInfo>
#include <algorithm>
#include <cmath>

#include "print/Poppler.h"
#include "print/PrintSite.h"

namespace kalivor::test {
namespace {

using print::PdfRequest;

struct PdfSite : PrintSite {
  QTemporaryDir folder;
  QString file = folder.filePath(u"liste.pdf"_s);

  PdfSite() {
    Add(u"Größen"_s, 3);
    module.Par[1].Name = u"Außenfühler Ä Ö Ü ß"_s;
    module.Par[1].Einheit = u"°C"_s;
    module.Par[1].Wert = -125;
    module.Par[1].Zahl1 = 1;
    module.Par[2].Typ = u"string20"_s;
    module.Par[2].WertText = u"Müller & Söhne <Süd> €"_s;
    Add(u"Übrige"_s, 120);
  }

  PdfRequest Request(int orientation = kPortrait) const { return {Input(orientation), file, 1, {}}; }
};

// The pages as the text output has them, each without its first line, without blanks.
std::vector<QStringList> ExpectedPages(PdfSite& site, int orientation) {
  std::vector<QStringList> pages;
  const QString text = PagesText(site.core, site.Input(orientation)).remove(u' ');
  for (const QString& page : text.split(u"==="_s, Qt::SkipEmptyParts)) {
    pages.push_back(page.split(u'\n').sliced(1));
    pages.back().removeAll(QString());
  }
  return pages;
}

class Pdf : public testing::TestWithParam<int> {};
INSTANTIATE_TEST_SUITE_P(Orientations, Pdf, testing::Values(kPortrait, kLandscape));

TEST_P(Pdf, HoldsTheSameLinesAsTheText) {
  PdfSite site;
  EXPECT_EQ(PrintPdf(site.core, site.Request(GetParam())), QString());
  const std::vector<QStringList> expected = ExpectedPages(site, GetParam());
  ASSERT_EQ(PdfPages(site.file), static_cast<int>(expected.size()));
  ASSERT_EQ(expected.size(), GetParam() == kPortrait ? 3 : 4);
  for (int page = 1; page <= static_cast<int>(expected.size()); ++page)
    EXPECT_EQ(PdfLines(site.file, page), expected[static_cast<std::size_t>(page - 1)]) << page;
}

TEST_P(Pdf, IsA4InTheRightOrientation) {
  PdfSite site;
  ASSERT_EQ(PrintPdf(site.core, site.Request(GetParam())), QString());
  const QString size = PdfInfo(site.file, u"Page size"_s);
  EXPECT_EQ(size, GetParam() == kPortrait ? u"595 x 842 pts (A4)"_s : u"842 x 595 pts (A4)"_s);
  EXPECT_EQ(PdfInfo(site.file, u"Title"_s), u"Parameterliste"_s);
}

TEST_P(Pdf, CarriesItsFonts) {
  PdfSite site;
  ASSERT_EQ(PrintPdf(site.core, site.Request(GetParam())), QString());
  const PdfFonts fonts = FontsOf(site.file);
  EXPECT_EQ(fonts.all, 2) << "plain and bold";
  EXPECT_EQ(fonts.embedded, fonts.all);
}

TEST_P(Pdf, HasEverythingInItsPlace) {
  PdfSite site;
  ASSERT_EQ(PrintPdf(site.core, site.Request(GetParam())), QString());
  const print::Geometry page = print::GeometryFor(GetParam(), 1);
  const std::vector<PdfWord> words = PdfWords(site.file, 2);
  ASSERT_FALSE(words.empty());
  const double fuzz = 0.1;
  const auto find = [&](const QString& text) {
    return *std::find_if(words.begin(), words.end(), [&](const PdfWord& word) { return word.text == text; });
  };
  EXPECT_NEAR(find(u"AB1-123.4"_s).left, page.HeaderLeft, fuzz);
  EXPECT_NEAR(find(u"AB1-123.4"_s).top, page.HeaderTop, fuzz);
  EXPECT_NEAR(find(u"Samstag,"_s).left, page.FooterLeft, fuzz);
  EXPECT_NEAR(find(u"Samstag,"_s).top, page.FooterTop, fuzz);
  int line = 0;
  for (const PdfWord& word : words) {
    EXPECT_LE(word.right, page.ScaleWidth - 0.7) << word.text.toStdString();
    if (!word.text.startsWith(u"Parameter"_s)) continue;
    EXPECT_NEAR((word.top + word.bottom) / 2, page.TreeTop + (line + 0.5) * page.LinePitch(), fuzz)
        << word.text.toStdString();
    EXPECT_NEAR(word.left, page.TreeLeft + 3, fuzz) << "indented by two levels and the branch";
    ++line;
  }
  EXPECT_EQ(line, page.MaxLine);
}

TEST_P(Pdf, NothingIsCutHoweverLongItIs) {
  PdfSite site;
  site.module.Par[4].Name = u"Anfang"_s + QString(90, u'm') + u"Ende"_s;
  site.module.Par[5].Typ = u"string80"_s;
  site.module.Par[5].WertText = QString(400, u'W') + u"Schluss"_s;
  site.module.Par[6].Rubrik = QString(200, u'G') + u"Gruppe"_s;
  ASSERT_EQ(PrintPdf(site.core, site.Request(GetParam())), QString());
  EXPECT_EQ(PdfLines(site.file, 1), ExpectedPages(site, GetParam()).front());
  const double paper = print::GeometryFor(GetParam(), 1).ScaleWidth;
  for (const PdfWord& word : PdfWords(site.file, 1))
    EXPECT_LE(word.right, paper - 0.7) << word.text.toStdString();
}

TEST(PdfList, AWideLineMakesTheWholeListSmaller) {
  PdfSite site;
  site.module.Par[2].WertText = QString(60, u'W');
  ASSERT_EQ(PrintPdf(site.core, site.Request()), QString());
  const std::vector<PdfWord> words = PdfWords(site.file, 1);
  const auto parameter = std::find_if(
      words.begin(), words.end(), [](const PdfWord& word) { return word.text.startsWith(u"Parameter"_s); });
  ASSERT_NE(parameter, words.end());
  EXPECT_LT(parameter->left, 1.6 + 2.6) << "the columns stay below each other";
  EXPECT_GT(parameter->left, 1.6 + 1.5) << "but it stays readable";
  EXPECT_GT(words.front().bottom - words.front().top, 1.1 * (parameter->bottom - parameter->top))
      << "the header keeps its size";
}

TEST(PdfList, ColumnsStandBelowEachOther) {
  PdfSite site;
  for (int i = 3; i < site.module.ParCount; ++i)
    site.module.Par[i].Name = QString(i % 50, u'n');
  ASSERT_EQ(PrintPdf(site.core, site.Request(kLandscape)), QString());
  std::vector<double> columns;
  for (const PdfWord& word : PdfWords(site.file, 2)) {
    if (word.text == u"|") columns.push_back(word.left);
  }
  ASSERT_EQ(columns.size(), 34 * 3);
  std::sort(columns.begin(), columns.end());
  for (const std::size_t column : {0U, 34U, 68U})
    EXPECT_NEAR(columns[column], columns[column + 33], 0.02) << column;
  EXPECT_GT(columns[34] - columns[33], 2);
}

TEST(PdfList, ControlCharactersAreBlanks) {
  PdfSite site;
  site.module.Par[4].Name = u"eins\tzwei\ndrei"_s;
  ASSERT_EQ(PrintPdf(site.core, site.Request()), QString());
  EXPECT_TRUE(PdfLines(site.file, 1)[7].startsWith(u"einszweidrei."_s));
}

// The longest list there can be.
TEST_P(Pdf, SixtyPages) {
  PdfSite site;
  site.path =
      u"C:\\Daten\\Regler\\Werte\\Anlagen im Süden\\Heizzentrale Haus 01\\"_s + QString(20, u'w') + u".qpf"_s;
  site.Fill(2000);
  const int groups = GetParam() == kPortrait ? 1419 : 39;
  for (int i = 1; i < site.module.ParCount; ++i) {
    site.module.Par[i].Rubrik = u"Größe %1"_s.arg(std::min(i, groups));
    site.module.Par[i].Name = u"Außenfühler "_s + QString(i % 39, u'n');
  }
  ASSERT_EQ(PrintPdf(site.core, site.Request(GetParam())), QString());
  ASSERT_EQ(PdfPages(site.file), 60);
  EXPECT_EQ(PdfLinesOfAllPages(site.file), ExpectedPages(site, GetParam()));
  EXPECT_EQ(FontsOf(site.file).embedded, FontsOf(site.file).all);

  const print::Geometry page = print::GeometryFor(GetParam(), 1);
  const std::vector<std::vector<PdfWord>> pages = PdfWordsOfAllPages(site.file);
  ASSERT_EQ(pages.size(), 60);
  for (std::size_t number = 0; number < pages.size(); ++number) {
    double row = 0, right = 0;
    for (const PdfWord& word : pages[number]) {
      EXPECT_GE(word.left, 0.7) << number << ' ' << word.text.toStdString();
      EXPECT_LE(word.right, page.ScaleWidth - 0.7) << number << ' ' << word.text.toStdString();
      EXPECT_GE(word.top, page.HeaderTop - 0.1);
      EXPECT_LE(word.bottom, page.ScaleHeight - 0.7);
      if (std::abs(word.top - row) < 0.05) {
        EXPECT_GE(word.left, right - 0.01)
            << "over another word, " << number << ' ' << word.text.toStdString();
      }
      row = word.top;
      right = word.right;
    }
    if (testing::Test::HasFailure()) break;
  }
}

TEST(PdfTree, BranchesLeadToTheirLines) {
  PdfSite site;
  site.module.ParCount = 5;  // a group of three, a group of one
  ASSERT_EQ(PrintPdf(site.core, site.Request()), QString());
  const QImage picture = PdfPicture(site.file, 1, QSize(2100, 2970));  // 100 pixels to a centimetre
  const print::Geometry page = print::GeometryFor(kPortrait, 1);
  // Whether there is ink within a third of a millimetre, `right` of the tree's edge, on line `line` (from 0),
  // `down` of its height below its upper edge.
  const auto inked = [&](double right, int line, double down) {
    const QPoint place(qRound((page.TreeLeft + right) * 100),
                       qRound((page.TreeTop + (line + down) * page.LinePitch()) * 100));
    for (int dx = -3; dx <= 3; ++dx) {
      for (int dy = -3; dy <= 3; ++dy) {
        if (qGray(picture.pixel(place + QPoint(dx, dy))) < 220) return true;
      }
    }
    return false;
  };
  constexpr int kFirstGroup = 1, kLastOfFirst = 4, kSecondGroup = 5, kLast = 6;
  for (int line = kFirstGroup; line <= kLast; ++line) {
    const bool group = line == kFirstGroup || line == kSecondGroup;
    EXPECT_TRUE(inked(group ? 1.8 : 2.8, line, 0.5)) << "a branch in front of line " << line;
    EXPECT_FALSE(inked(group ? 1.96 : 2.96, line, 0.5)) << "that does not touch the text of " << line;
    EXPECT_EQ(inked(1.5, line, 0.1), line <= kSecondGroup) << "the trunk of the groups at line " << line;
    EXPECT_EQ(inked(1.5, line, 0.9), line < kSecondGroup) << "the trunk of the groups below line " << line;
    if (group) continue;
    EXPECT_TRUE(inked(2.5, line, 0.1)) << "the trunk of the parameters at line " << line;
    EXPECT_EQ(inked(2.5, line, 0.9), line != kLastOfFirst && line != kLast);
  }
}

// --- what is printed ---

TEST(PrintPdf, RepeatsAllPagesForEachCopy) {
  PdfSite site;
  PdfRequest request = site.Request();
  request.copies = 2;
  ASSERT_EQ(PrintPdf(site.core, request), QString());
  ASSERT_EQ(PdfPages(site.file), 6);
  for (int page = 1; page <= 3; ++page)
    EXPECT_EQ(PdfLines(site.file, page), PdfLines(site.file, page + 3)) << page;
  EXPECT_NE(PdfLines(site.file, 1), PdfLines(site.file, 2));
}

TEST(PrintPdf, PrintsASinglePageWithItsOwnFooter) {
  PdfSite site;
  PdfRequest request = site.Request();
  request.page = 2;
  ASSERT_EQ(PrintPdf(site.core, request), QString());
  ASSERT_EQ(PdfPages(site.file), 1);
  QStringList expected = ExpectedPages(site, kPortrait)[1];
  expected.last().replace(u"Seite1von3"_s, u"Seite2von3"_s);
  EXPECT_EQ(PdfLines(site.file, 1), expected);
  request.copies = 3;
  ASSERT_EQ(PrintPdf(site.core, request), QString());
  EXPECT_EQ(PdfPages(site.file), 3);
}

TEST(PrintPdf, KnowsOnlyThePagesThatThereAre) {
  PdfSite site;
  PdfRequest request = site.Request();
  for (const int page : {-1, 0, 4}) {
    request.page = page;
    EXPECT_EQ(PrintPdf(site.core, request), u"Keine Seite von 1 bis 3: %1"_s.arg(page));
  }
  EXPECT_FALSE(QFile::exists(site.file));
}

TEST(PrintPdf, WithoutCopiesThereIsNoFile) {
  PdfSite site;
  PdfRequest request = site.Request();
  request.copies = 0;
  EXPECT_EQ(PrintPdf(site.core, request), QString());
  request.page = 1;
  EXPECT_EQ(PrintPdf(site.core, request), QString());
  EXPECT_FALSE(QFile::exists(site.file));
}

TEST(PrintPdf, ReplacesAFile) {
  PdfSite site;
  QFile old(site.file);
  ASSERT_TRUE(old.open(QIODevice::WriteOnly));
  old.write("old");
  old.close();
  ASSERT_EQ(PrintPdf(site.core, site.Request()), QString());
  EXPECT_EQ(PdfPages(site.file), 3);
}

TEST(PrintPdf, SaysWhenTheFileCannotBeWritten) {
  PdfSite site;
  PdfRequest request = site.Request();
  for (const QString& path : {site.folder.filePath(u"nirgends/liste.pdf"_s), site.folder.path(), QString()}) {
    request.file = path;
    EXPECT_EQ(PrintPdf(site.core, request), u"Die Datei kann nicht geschrieben werden: "_s + path);
  }
  EXPECT_TRUE(QDir(site.folder.path()).isEmpty()) << "nothing is left behind";
}

TEST(PrintPdf, AnErrorLeavesNoFile) {
  PdfSite site;
  site.module.Par[3].Zahl1 = 10;
  EXPECT_EQ(ThrownKind([&] { (void)PrintPdf(site.core, site.Request()); }), RuntimeError::Kind::Overflow);
  EXPECT_TRUE(QDir(site.folder.path()).isEmpty());
}

TEST(PrintPdf, AnEmptyTableHasOnePage) {
  PdfSite site;
  site.module.ParCount = 1;
  ASSERT_EQ(PrintPdf(site.core, site.Request()), QString());
  ASSERT_EQ(PdfPages(site.file), 1);
  EXPECT_EQ(PdfLines(site.file, 1)[1], u"Anlage"_s);
}

}  // namespace
}  // namespace kalivor::test
