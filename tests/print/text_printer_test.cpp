// Printing a text: its pages, and what becomes of a PDF file of them.
#include "platform/qt/TextPrinter.h"

#include <QDir>
#include <QMessageBox>

#include "fakes/QtPrinters.h"
#include "fakes/ThrownKind.h"
#include "print/FullDisk.h"
#include "print/Poppler.h"
#include "print/PrintDialog.h"

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

// The user prints into a file, and lets one of that name be replaced.
class ReportToFile : public testing::Test {
 protected:
  void Print(const QString& text, int copies = 1) {
    WhenOpen([&](QDialog& dialog) {
      FileField(dialog).setText(file);
      SetCopies(dialog, copies);
      QTimer::singleShot(0, [] {
        if (auto* question = qobject_cast<QMessageBox*>(QApplication::activeModalWidget()))
          question->button(QMessageBox::Yes)->click();
      });
      PressOk(dialog);
    });
    platform::AskAndPrintText(u"Report"_s, text);
  }

  [[nodiscard]] QStringList Files() const {
    return QDir(folder.path()).entryList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot);
  }

  QTemporaryDir folder;
  QString file = folder.filePath(u"report.pdf"_s);
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

TEST_F(ReportToFile, HasAsManyCopiesAsChosen) {
  Print(u"eins\r\n"_s, 3);
  ASSERT_EQ(PdfPages(file), 3);
  for (int page = 1; page <= 3; ++page)
    EXPECT_EQ(PdfLines(file, page), (QStringList{u"Report"_s, u"eins"_s, u"Seite1von1"_s}));
}

TEST_F(ReportToFile, AFullDiskIsAnErrorAndLeavesTheOldFile) {
  Print(u"der alte Bericht\r\n"_s);
  ASSERT_EQ(PdfLines(file, 1)[1], u"deralteBericht"_s);
  {
    const FullDisk disk(1000);
    EXPECT_EQ(ThrownKind([&] { Print(u"der neue Bericht\r\n"_s); }), RuntimeError::Kind::FileError);
  }
  EXPECT_EQ(Files(), QStringList(u"report.pdf"_s));
  EXPECT_EQ(PdfLines(file, 1)[1], u"deralteBericht"_s);
  Print(u"der neue Bericht\r\n"_s);
  EXPECT_EQ(PdfLines(file, 1)[1], u"derneueBericht"_s);
}

TEST_F(ReportToFile, ACancelledDialogWritesNothing) {
  WhenOpen([](QDialog& dialog) { dialog.reject(); });
  platform::AskAndPrintText(u"Report"_s, u"x\r\n"_s);
  EXPECT_EQ(Files(), QStringList());
}

}  // namespace
}  // namespace kalivor::test
