// A page of HTML on paper, looked at from outside.
#include "platform/gui/DocumentPages.h"

#include <QPainter>
#include <QUrl>
#include <algorithm>

#include "fakes/QtPrinters.h"
#include "print/Poppler.h"

namespace kalivor::test {
namespace {

using platform::DocumentLayout;
using platform::HtmlDocument;

class DocumentPdf : public testing::Test {
 protected:
  std::vector<QStringList> Save(const HtmlDocument& document) {
    const DocumentLayout layout = platform::DocumentPages(document, platform::kUprightA4_cm);
    EXPECT_EQ(layout.error, QString());
    QFile pdf(file);
    EXPECT_TRUE(pdf.open(QIODevice::WriteOnly));
    pdf.write(platform::DocumentPdf(u"Protokoll"_s, layout));
    pdf.close();
    return PdfLinesOfAllPages(file);
  }
  std::vector<QStringList> Save(const QString& html) { return Save(HtmlDocument{html, {}, {}, u"Fuß"_s}); }

  // The lines of all pages without their footers.
  static QStringList Content(const std::vector<QStringList>& pages) {
    QStringList all;
    for (const QStringList& page : pages)
      all += page.first(page.size() - 1);
    return all;
  }

  QTemporaryDir folder;
  QString file = folder.filePath(u"protokoll.pdf"_s);
};

QString Rows(int count, const QString& text = u"Zeile"_s) {
  QString rows;
  for (int row = 0; row < count; ++row)
    rows += u"<tr><td>%1%2</td><td>%2</td></tr>"_s.arg(text).arg(row);
  return rows;
}

TEST_F(DocumentPdf, HasAFooterWithTheNumberOnEachPage) {
  QString html;
  for (int line = 0; line < 100; ++line)
    html += u"<p>Absatz%1</p>"_s.arg(line);
  const std::vector<QStringList> pages = Save(html);
  ASSERT_EQ(pages.size(), 3);
  for (std::size_t page = 0; page < pages.size(); ++page)
    EXPECT_EQ(pages[page].last(), u"FußSeite%1von3"_s.arg(page + 1));
  const QStringList content = Content(pages);
  ASSERT_EQ(content.size(), 100);
  for (int line = 0; line < 100; ++line)
    EXPECT_EQ(content.at(line), u"Absatz%1"_s.arg(line)) << "each once and in order";
  EXPECT_EQ(PdfInfo(file, u"Page size"_s), u"595 x 842 pts (A4)"_s);
  EXPECT_EQ(PdfInfo(file, u"Title"_s), u"Protokoll"_s);
}

TEST_F(DocumentPdf, AnEmptyDocumentHasAPage) {
  EXPECT_EQ(Save(QString()), std::vector<QStringList>{{u"FußSeite1von1"_s}});
}

TEST_F(DocumentPdf, ATablesHeadStandsOnEachOfItsPages) {
  const std::vector<QStringList> pages =
      Save(u"<p>Davor</p><table cellpadding=\"3\"><thead><tr><th>Kopf</th><th>Nr</th></tr></thead>"_s +
           Rows(150) + u"</table><p>Danach</p>"_s);
  ASSERT_GT(pages.size(), 2U);
  QStringList rows;
  for (std::size_t page = 0; page < pages.size(); ++page) {
    QStringList lines = pages[page];
    lines.removeLast();
    if (page == 0) lines.removeOne(u"Davor"_s);
    EXPECT_EQ(lines.takeFirst(), u"KopfNr"_s) << page;
    rows += lines;
  }
  EXPECT_EQ(rows.takeLast(), u"Danach"_s);
  ASSERT_EQ(rows.size(), 150);
  for (int row = 0; row < 150; ++row)
    EXPECT_EQ(rows.at(row), u"Zeile%1%1"_s.arg(row)) << "each once and in order";
}

// Of five lines each, on pages that end anywhere.
TEST_F(DocumentPdf, ARowStaysOnOnePage) {
  for (int before = 0; before < 6; ++before) {
    QString html = u"<p>x</p>"_s.repeated(before) + u"<table>"_s;
    for (int row = 0; row < 30; ++row)
      html += u"<tr><td>a<br>b<br>c<br>d<br>e</td></tr>"_s;
    std::vector<QStringList> pages = Save(html + u"</table>"_s);
    ASSERT_GT(pages.size(), 2U);
    for (QStringList& page : pages) {
      page.removeLast();
      page.removeAll(u"x"_s);
      ASSERT_EQ(page.size() % 5, 0) << before;
      for (qsizetype line = 0; line < page.size(); ++line)
        EXPECT_EQ(page.at(line), u"abcde"_s.at(line % 5));
    }
  }
}

TEST_F(DocumentPdf, ARowThatSpansOthersStaysWithThem) {
  for (int before = 40; before < 60; ++before) {
    const std::vector<QStringList> pages = Save(
        u"<p style=\"margin:0\">x</p>"_s.repeated(before) +
        u"<table><tr><td rowspan=\"2\">links</td><td>eins<br>eins</td></tr><tr><td>zwei<br>zwei</td></tr></table>"_s);
    const auto with = [](const QString& text) {
      return [text](const QStringList& page) {
        return std::ranges::any_of(page, [&](const QString& line) { return line.contains(text); });
      };
    };
    EXPECT_EQ(std::ranges::find_if(pages, with(u"eins"_s)), std::ranges::find_if(pages, with(u"zwei"_s)))
        << before;
  }
}

TEST_F(DocumentPdf, AHeadingStaysWithWhatFollows) {
  for (int before = 40; before < 60; ++before) {
    for (const QString& next :
         {u"<p>Text</p>"_s, u"<table><thead><tr><th>K</th></tr></thead><tr><td>Text</td></tr></table>"_s}) {
      const std::vector<QStringList> pages =
          Save(u"<p style=\"margin:0\">x</p>"_s.repeated(before) + u"<h3>Titel</h3>"_s + next);
      for (const QStringList& page : pages)
        EXPECT_EQ(page.contains(u"Titel"_s), page.contains(u"Text"_s)) << before << next.toStdString();
    }
  }
}

// The line above a page is in the file as well, where nobody sees it: the toolkit draws it against the edge.
TEST_F(DocumentPdf, ARowLongerThanAPageGoesOnBetweenItsLines) {
  QString text;
  for (int line = 0; line < 200; ++line)
    text += u"Zeile%1<br>"_s.arg(line);
  Save(u"<table><tr><td>"_s + text + u"</td></tr></table>"_s);
  QStringList seen;
  for (const std::vector<PdfWord>& page : PdfWordsOfAllPages(file)) {
    for (const PdfWord& word : page) {
      if (word.top > 1.75 && word.text.startsWith(u"Zeile")) seen << word.text;
      EXPECT_LT(word.bottom, 28.8) << word.text.toStdString();
    }
  }
  ASSERT_EQ(seen.size(), 200);
  for (int line = 0; line < 200; ++line)
    EXPECT_EQ(seen.at(line), u"Zeile%1"_s.arg(line));
}

TEST_F(DocumentPdf, APageEndsWhereTheTemplateSaysSo) {
  EXPECT_EQ(Save(u"<p>a</p><p style=\"page-break-before: always\">b</p>"_s),
            (std::vector<QStringList>{{u"a"_s, u"FußSeite1von2"_s}, {u"b"_s, u"FußSeite2von2"_s}}));
}

// A text without blanks, a picture and a table that are wider than the paper.
TEST_F(DocumentPdf, NothingStandsBeyondTheEdgeOfThePaper) {
  for (const QString& wide :
       {QString(65536, u'x'), u"<table><tr>"_s + u"<td>abcdefgh</td>"_s.repeated(80) + u"</tr></table>"_s,
        u"<ul><li>"_s.repeated(60) + u"tief"_s, u"<p style=\"margin-left: 2000px\">weit</p>"_s,
        u"<table><tr><td width=\"3000\">breit</td><td>rechts</td></tr></table>"_s}) {
    Save(u"<p>"_s + wide + u"</p>"_s);
    int words = 0;
    for (const std::vector<PdfWord>& page : PdfWordsOfAllPages(file)) {
      for (const PdfWord& word : page) {
        ++words;
        EXPECT_TRUE(word.left > 1.5 && word.right < 20 && word.top > 1 && word.bottom < 29)
            << word.text.left(20).toStdString();
      }
    }
    EXPECT_GT(words, 0);
  }
}

TEST_F(DocumentPdf, ShowsThePictureAndFetchesNothingElse) {
  const QString other = folder.filePath(u"fremd.png"_s);
  QImage black(50, 50, QImage::Format_RGB32);
  black.fill(Qt::black);
  ASSERT_TRUE(black.save(other));
  const QString qrc = u":/qt-project.org/styles/commonstyle/images/file-16.png"_s;
  const auto ink = [&](const HtmlDocument& document) {
    Save(document);
    const QImage picture = PdfPicture(file, 1, {210, 297});
    int dark = 0;
    for (int y = 0; y < 150; ++y) {
      for (int x = 0; x < 210; ++x)
        dark += qGray(picture.pixel(x, y)) < 128 ? 1 : 0;
    }
    return dark;
  };
  EXPECT_GT(ink({u"<img src=\"bild:1\" width=\"100\" height=\"100\">"_s, u"bild:1"_s, black, {}}), 500);
  for (const QString& name : {other, QUrl::fromLocalFile(other).toString(), u"http://127.0.0.1/x.png"_s,
                              u"bild:2"_s, qrc, QString()}) {
    EXPECT_EQ(
        ink({u"<img src=\"%1\" width=\"100\" height=\"100\"><div style=\"background-image: url(%1)\">&nbsp;</div>"_s
                 .arg(name),
             u"bild:1"_s,
             black,
             {}}),
        0)
        << name.toStdString();
  }
  EXPECT_EQ(ink({u"<img src=\"bild:1\" width=\"100\" height=\"100\">"_s, u"bild:1"_s, {}, {}}), 0)
      << "there is none";
  QFile style(folder.filePath(u"fremd.css"_s));
  ASSERT_TRUE(style.open(QIODevice::WriteOnly));
  style.write("p { background-color: black }");
  style.close();
  EXPECT_EQ(ink({u"<link rel=\"stylesheet\" href=\"%1\"><style>@import url(%1);</style><p>&nbsp;</p>"_s.arg(
                     style.fileName()),
                 {},
                 {},
                 {}}),
            0);
}

TEST_F(DocumentPdf, ScriptsMeanNothing) {
  EXPECT_EQ(Content(Save(u"<p>a</p><script>document.write('b')</script><p onclick=\"x()\">c</p>"_s)),
            (QStringList{u"a"_s, u"c"_s}));
}

TEST_F(DocumentPdf, ALongFooterIsCutBeforeTheNumber) {
  const std::vector<QStringList> pages = Save(HtmlDocument{{}, {}, {}, u"Anlage\n"_s + QString(300, u'x')});
  ASSERT_EQ(pages.size(), 1U);
  ASSERT_EQ(pages[0].size(), 1);
  EXPECT_TRUE(pages[0][0].startsWith(u"Anlagexxx"_s));
  EXPECT_TRUE(pages[0][0].endsWith(u"x…Seite1von1"_s)) << pages[0][0].toStdString();
}

TEST(DocumentPages, RefusesWhatWouldTakeVeryLong) {
  const auto error = [](const QString& html) {
    return platform::DocumentPages({html, {}, {}, {}}, platform::kUprightA4_cm).error;
  };
  EXPECT_EQ(error(u"<table><tr><td>"_s.repeated(6) + u"x"_s), QString());
  EXPECT_EQ(error(u"<table><tr><td>"_s.repeated(7) + u"x"_s), u"Mehr als 6 Tabellen ineinander."_s);
  EXPECT_EQ(error(u"<table><tr><td>"_s.repeated(300)), u"Mehr als 6 Tabellen ineinander."_s);
  EXPECT_EQ(error(u"<br>"_s.repeated(60'001)),
            u"Das Protokoll wird zu lang. Bitte weniger Einträge wählen."_s);
}

TEST(DocumentPages, OnTheSmallestPaperThereIsAnEnd) {
  EXPECT_FALSE(platform::DocumentPages({u"<p>Text</p>"_s.repeated(20), {}, {}, {}}, {2, 2}).pages.empty());
}

TEST(DocumentPages, SaysWhatStandsThere) {
  EXPECT_EQ(
      platform::DocumentPages({u"<h2>Titel</h2><p>a &lt; b</p>"_s, {}, {}, {}}, platform::kUprightA4_cm).text,
      u"Titel\na < b"_s);
}

}  // namespace
}  // namespace kalivor::test
