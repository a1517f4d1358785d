// Printing a text: its pages, and what becomes of a PDF file of them.
#include "platform/qt/TextPrinter.h"

#include <QTemporaryDir>

#include "fakes/QtPrinters.h"
#include "platform/qt/QtPrinter.h"
#include "print/Poppler.h"

namespace kalivor::test {
namespace {

const QSizeF kA4_cm(21, 29.7);

TEST(TextPages, AShortTextTakesOnePage) {
  EXPECT_EQ(platform::TextPages(u"Report"_s, u"Empfangen..\r\nEmpfangen beendet\r\n"_s, kA4_cm).size(), 1);
}

TEST(TextPages, AnEmptyTextTakesOnePageToo) {
  EXPECT_EQ(platform::TextPages(u"Report"_s, QString(), kA4_cm).size(), 1);
}

TEST(TextPages, SmallerPaperTakesMorePages) {
  QString text;
  for (int i = 0; i < 200; ++i)
    text += u"Zeile %1\r\n"_s.arg(i);
  const auto large = platform::TextPages(u"Report"_s, text, kA4_cm).size();
  EXPECT_GE(large, 3);
  EXPECT_GT(platform::TextPages(u"Report"_s, text, kA4_cm / 2).size(), 2 * large);
}

// The pages in a PDF file.
class ReportToFile : public testing::Test {
 protected:
  void Print(const QString& text) {
    for (const platform::Printer::Draw& page : platform::TextPages(u"Report"_s, text, printer.Paper_cm()))
      printer.PrintPage(page);
    printer.EndDoc();
    ASSERT_EQ(printer.EndPrinting(), file);
  }

  QTemporaryDir folder;
  QString file = folder.filePath(u"report.pdf"_s);
  platform::QtPrinter printer{u"Report"_s, QString()};

  ReportToFile() { printer.UseFile(file); }
};

TEST_F(ReportToFile, HasTitleLinesAndPageNumbers) {
  QString text;
  for (int i = 1; i <= 100; ++i)
    text += u"Zeile %1\r\n"_s.arg(i);
  Print(text);
  EXPECT_EQ(PdfInfo(file, u"Title"_s), u"Report"_s);
  ASSERT_EQ(PdfPages(file), 2);
  QStringList lines;
  for (int page = 1; page <= 2; ++page) {
    QStringList found = PdfLines(file, page);
    EXPECT_EQ(found.takeFirst(), u"Report"_s);
    EXPECT_EQ(found.takeLast(), u"Seite%1von2"_s.arg(page));
    lines += found;
  }
  EXPECT_EQ(lines, text.remove(u' ').trimmed().split(u"\r\n"_s));
}

TEST_F(ReportToFile, ALongLineGoesOnInTheNextWithinThePaper) {
  const QString line = QString(1000, u'n') + u"Ende"_s;
  Print(line + u"\r\n"_s);
  ASSERT_EQ(PdfPages(file), 1);
  EXPECT_EQ(PdfInfo(file, u"Page size"_s), u"595 x 842 pts (A4)"_s);
  QStringList found = PdfLines(file, 1);
  EXPECT_EQ(found.sliced(1, found.size() - 2).join(QString()), line);
  for (const PdfWord& word : PdfWords(file, 1)) {
    EXPECT_GE(word.left, 1.4);
    EXPECT_LE(word.right, 21 - 1.4);
    EXPECT_LE(word.bottom, 29.7 - 1.4);
  }
}

}  // namespace
}  // namespace kalivor::test
