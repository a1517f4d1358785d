// Tables on paper, looked at from outside.
#include "print/painter/TablePages.h"

#include <QDir>
#include <QSet>
#include <algorithm>

#include "fakes/QtPrinters.h"
#include "platform/gui/PdfFile.h"
#include "print/Poppler.h"

namespace kalivor::test {
namespace {

using print::PageLabels;

const QSizeF kA4_cm(21, 29.7);

PageLabels Labels() {
  return {u"AB1-123.4 Anlagenart: Süd"_s, u"Samstag, 21 November 2026"_s, u"C:\\Werte\\anlage.par"_s};
}

// As the list has it, with `rows` rows.
ListTable Table(int rows) {
  ListTable table{{u"Parameterliste"_s, u"%1 von 2000"_s.arg(rows)}, {u"Nr"_s, u"Name"_s, u"Wert"_s}, {}};
  for (int row = 1; row <= rows; ++row) {
    table.rows.push_back(
        {{QString::number(row), true}, {u"Außenfühler%1"_s.arg(row)}, {u"-%1.50"_s.arg(row * 7), true}});
  }
  return table;
}

// A row of it as PdfLines() has it.
QString RowText(int row) {
  return u"%1Außenfühler%1-%2.50"_s.arg(row).arg(row * 7);
}

class TablePdf : public testing::Test {
 protected:
  std::vector<QStringList> Save(const ListTable& table, const PageLabels& labels = Labels()) {
    EXPECT_EQ(SaveTablePdf(table, labels, file), QString());
    return PdfLinesOfAllPages(file);
  }

  // On paper of any size.
  std::vector<QStringList> SaveOn(const QSizeF& paper_cm, const ListTable& table) {
    const QPageLayout paper(QPageSize(paper_cm * 10, QPageSize::Millimeter), QPageLayout::Portrait,
                            QMarginsF());
    platform::PdfFile pdf(u"Tabelle"_s);
    for (const platform::Printer::Draw& page : TablePages(table, Labels(), paper_cm))
      pdf.AddPage(paper, page);
    EXPECT_TRUE(pdf.Save(file));
    return PdfLinesOfAllPages(file);
  }

  // No word lies outside the margins, and none on another.
  void ExpectInPlace(const QSizeF& paper_cm) {
    int number = 0;
    for (const std::vector<PdfWord>& page : PdfWordsOfAllPages(file)) {
      ++number;
      for (std::size_t i = 0; i < page.size(); ++i) {
        const PdfWord& word = page[i];
        EXPECT_TRUE(word.left > 0.7 && word.right < paper_cm.width() - 0.7 && word.top > 0.7 &&
                    word.bottom < paper_cm.height() - 0.7)
            << word.text.toStdString() << " on page " << number;
        // The words of a line come one after the other.
        for (std::size_t j = i + 1; j < std::min(page.size(), i + 40); ++j) {
          const PdfWord& other = page[j];
          constexpr double touch_cm = 0.02;
          const bool apart = word.right < other.left + touch_cm || other.right < word.left + touch_cm ||
                             word.bottom < other.top + 0.12 || other.bottom < word.top + 0.12;
          EXPECT_TRUE(apart) << word.text.toStdString() << " and " << other.text.toStdString() << " on page "
                             << number;
        }
      }
    }
  }

  QTemporaryDir folder;
  QString file = folder.filePath(u"tabelle.pdf"_s);
};

TEST_F(TablePdf, HasHeadingTitlesRowsAndFootersInTheirOrder) {
  const std::vector<QStringList> pages = Save(Table(100));
  ASSERT_EQ(pages.size(), 2);
  int row = 0;
  for (std::size_t page = 0; page < pages.size(); ++page) {
    QStringList lines = pages[page];
    EXPECT_EQ(lines.takeFirst(), u"AB1-123.4Anlagenart:Süd"_s);
    if (page == 0) {
      EXPECT_EQ(lines.takeFirst(), u"Parameterliste"_s);
      EXPECT_EQ(lines.takeFirst(), u"100von2000"_s);
    }
    EXPECT_EQ(lines.takeFirst(), u"NrNameWert"_s);
    EXPECT_EQ(lines.takeLast(), u"Samstag,21November2026Seite%1von2C:\\Werte\\anlage.par"_s.arg(page + 1));
    for (const QString& line : lines)
      EXPECT_EQ(line, RowText(++row));
  }
  EXPECT_EQ(row, 100);
  EXPECT_EQ(PdfInfo(file, u"Title"_s), u"Parameterliste"_s);
  ExpectInPlace(kA4_cm);
}

TEST_F(TablePdf, NumbersEndBelowEachOtherAndTextsBeginSo) {
  Save(Table(30));
  QSet<int> ends;
  QSet<int> beginnings;
  for (const PdfWord& word : PdfWords(file, 1)) {
    if (word.text.endsWith(u".50")) ends.insert(qRound(word.right * 50));
    if (word.text.startsWith(u"Außenfühler")) beginnings.insert(qRound(word.left * 50));
    if (word.text == u"Wert") ends.insert(qRound(word.right * 50));
  }
  EXPECT_EQ(ends.size(), 1);
  EXPECT_EQ(beginnings.size(), 1);
}

TEST_F(TablePdf, WithoutRowsThereIsAPageWithTheTitles) {
  const std::vector<QStringList> pages = Save(Table(0));
  ASSERT_EQ(pages.size(), 1);
  EXPECT_EQ(pages[0].value(3), u"NrNameWert"_s);
  ASSERT_EQ(Save({{}, {}, {}}, {}).size(), 1);
}

TEST_F(TablePdf, TheLargestListIsThereAsAWhole) {
  ListTable table;
  for (int column = 1; column <= 14; ++column)
    table.titles << u"Titel%1"_s.arg(column);
  for (int row = 0; row < 2000; ++row) {
    std::vector<TableCell>& cells = table.rows.emplace_back();
    for (int column = 0; column < 14; ++column)
      cells.push_back({u"Zelle%1x%2"_s.arg(row).arg(column), column % 3 == 0});
  }
  Save(table);
  EXPECT_EQ(PdfInfo(file, u"Page size"_s), u"842 x 595 pts (A4)"_s);
  QSet<QString> found;
  for (const std::vector<PdfWord>& page : PdfWordsOfAllPages(file)) {
    QSet<QString> onPage;
    for (const PdfWord& word : page)
      onPage.insert(word.text);
    for (const QString& title : table.titles)
      EXPECT_TRUE(onPage.contains(title));
    found += onPage;
  }
  for (const std::vector<TableCell>& row : table.rows) {
    for (const TableCell& cell : row)
      EXPECT_TRUE(found.contains(cell.text)) << cell.text.toStdString();
  }
  ExpectInPlace(kA4_cm.transposed());
}

TEST_F(TablePdf, ALongTextGoesOnInFurtherLinesBetweenItsWords) {
  ListTable table = Table(3);
  QStringList words;
  for (int word = 0; word < 100; ++word)
    words << u"Wort%1"_s.arg(word);
  table.rows[1][1].text = words.join(u' ');
  const std::vector<QStringList> pages = Save(table);
  ASSERT_EQ(pages.size(), 1);
  QStringList found;
  for (const PdfWord& word : PdfWords(file, 1)) {
    if (word.text.startsWith(u"Wort")) found << word.text;
  }
  EXPECT_EQ(found, words);
  EXPECT_TRUE(pages[0].contains(RowText(1)));
  EXPECT_TRUE(pages[0].contains(RowText(3)));
  ExpectInPlace(kA4_cm);
}

TEST_F(TablePdf, ATextLongerThanAPageGoesOnOnTheNext) {
  ListTable table = Table(2);
  QString text;
  for (int number = 0; text.size() < 100'000; ++number)
    text += u"<%1>"_s.arg(number);
  table.rows[0][1].text = text;
  const std::vector<QStringList> pages = Save(table);
  EXPECT_GT(pages.size(), 10);
  QString all;
  for (std::size_t page = 0; page < pages.size(); ++page) {
    EXPECT_TRUE(pages[page].contains(u"NrNameWert"_s)) << page;
    const qsizetype from = pages[page].indexOf(u"NrNameWert"_s) + 1;
    all += pages[page].sliced(from, pages[page].size() - from - 1).join(QString());
  }
  // The numbers before and behind it stand in the text's first line.
  EXPECT_EQ(all.remove(u"-7.50"_s), u'1' + text + RowText(2));
  ExpectInPlace(kA4_cm);
}

TEST_F(TablePdf, ARowStaysOnOnePage) {
  ListTable table;
  table.titles << u"Text"_s;
  for (int row = 0; row < 40; ++row)
    table.rows.push_back({{u"a%1\nb%1\r\nc%1\rd%1"_s.arg(row)}});
  const std::vector<QStringList> pages = Save(table);
  EXPECT_GT(pages.size(), 2);
  for (const QStringList& page : pages) {
    const QStringList lines = page.sliced(2, page.size() - 3);
    ASSERT_EQ(lines.size() % 4, 0);
    for (qsizetype line = 0; line < lines.size(); ++line)
      EXPECT_EQ(lines.at(line).at(0), u"abcd"_s.at(line % 4));
  }
}

TEST_F(TablePdf, EachOfManyColumnsIsThere) {
  ListTable table;
  std::vector<TableCell> row;
  for (int column = 0; column < 60; ++column) {
    table.titles << u"T%1"_s.arg(column);
    row.push_back({u"lang%1"_s.arg(column)});
  }
  table.rows.push_back(row);
  Save(table);
  QString all;
  for (const PdfWord& word : PdfWords(file, 1))
    all += word.text;
  for (int column = 0; column < 60; ++column)
    EXPECT_TRUE(all.contains(u"T%1"_s.arg(column))) << column;
  ExpectInPlace(kA4_cm.transposed());
}

TEST_F(TablePdf, SmallPaperTakesMorePages) {
  const std::size_t large = SaveOn(kA4_cm, Table(100)).size();
  const std::vector<QStringList> small = SaveOn(kA4_cm / 2, Table(100));
  EXPECT_GT(small.size(), large);
  QStringList lines;
  for (const QStringList& page : small)
    lines += page;
  for (int row = 1; row <= 100; ++row)
    EXPECT_EQ(lines.count(RowText(row)), 1) << row;
  ExpectInPlace(kA4_cm / 2);
  EXPECT_FALSE(TablePages(Table(5), Labels(), {2, 2}).empty()) << "there is an end on the smallest paper";
}

TEST_F(TablePdf, ALongPathIsShortenedInTheFooter) {
  PageLabels labels = Labels();
  labels.path = u"C:\\"_s + QString(40, u'a') + u"\\"_s + QString(40, u'b') + u"\\anlage.par"_s;
  EXPECT_EQ(Save(Table(1), labels)[0].last(), u"Samstag,21November2026Seite1von1C:\\...\\anlage.par"_s);
  labels.path = u"C:\\Werte\\anfang"_s + QString(100, u'x') + u"ende.par"_s;
  const QString footer = Save(Table(1), labels)[0].last();
  EXPECT_TRUE(footer.startsWith(u"Samstag,21November2026Seite1von1C:\\Werte\\anf"_s));
  EXPECT_TRUE(footer.contains(u'…') && footer.endsWith(u"ende.par"_s)) << footer.toStdString();
  ExpectInPlace(kA4_cm);
  labels.path.clear();
  EXPECT_EQ(Save(Table(1), labels)[0].last(), u"Samstag,21November2026Seite1von1"_s);
}

TEST_F(TablePdf, ALongHeadingIsThereAsAWhole) {
  ListTable table = Table(1);
  for (int line = 0; line < 200; ++line)
    table.heading << u"Überschrift%1"_s.arg(line);
  QStringList lines;
  for (const QStringList& page : Save(table))
    lines += page;
  for (const QString& line : table.heading)
    EXPECT_EQ(lines.count(QString(line).remove(u' ')), 1) << line.toStdString();
  EXPECT_EQ(lines.count(RowText(1)), 1);
  EXPECT_EQ(lines.count(u"NrNameWert"_s), 1);
}

TEST_F(TablePdf, SaysWhenTheFileCannotBeWritten) {
  const QString path = folder.filePath(u"nirgends/tabelle.pdf"_s);
  EXPECT_EQ(SaveTablePdf(Table(1), Labels(), path), u"Die Datei kann nicht geschrieben werden: "_s + path);
  EXPECT_TRUE(QDir(folder.path()).isEmpty());
}

TEST(TableOrientation, IsLandscapeForWideTablesOnly) {
  EXPECT_EQ(print::TableOrientation(Table(10)), print::kPortrait);
  ListTable wide = Table(10);
  wide.rows[0][1].text = QString(1000, u'x');
  EXPECT_EQ(print::TableOrientation(wide), print::kPortrait) << "a single long text goes on in further lines";
  for (int column = 0; column < 8; ++column)
    wide.titles << u"Spaltenüberschrift"_s;
  EXPECT_EQ(print::TableOrientation(wide), print::kLandscape);
}

}  // namespace
}  // namespace kalivor::test
