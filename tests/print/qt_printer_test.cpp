// The printer of the system, as far as it can be tested without one: PDF files.
#include <QDir>

#include "fakes/ThrownKind.h"
#include "print/Poppler.h"
#include "print/PrinterSite.h"

namespace kalivor::test {
namespace {

using platform::kLandscape;
using platform::kPaperA4;
using platform::kPortrait;

TEST(QtPrinter, KeepsItsSettings) {
  PrinterSite site;
  site.printer.SetPaperSize(kPaperA4);
  EXPECT_EQ(site.printer.PaperSize(), kPaperA4);
  for (const int orientation : {kLandscape, kPortrait}) {
    site.printer.SetOrientation(orientation);
    EXPECT_EQ(site.printer.Orientation(), orientation);
    EXPECT_EQ(site.printer.PaperSize(), kPaperA4);
  }
}

TEST(QtPrinter, WritesAllJobsOfACommandIntoOneFile) {
  PrinterSite site;
  site.Print(u"eins"_s);
  site.Print(u"zwei"_s);
  site.printer.EndDoc();
  site.Print(u"drei"_s);
  site.printer.EndDoc();
  EXPECT_FALSE(QFile::exists(site.file));
  EXPECT_EQ(site.printer.EndPrinting(), site.file);
  ASSERT_EQ(PdfPages(site.file), 3);
  EXPECT_EQ(PdfLines(site.file, 1), QStringList(u"eins"_s));
  EXPECT_EQ(PdfLines(site.file, 2), QStringList(u"zwei"_s));
  EXPECT_EQ(PdfLines(site.file, 3), QStringList(u"drei"_s));
}

TEST(QtPrinter, EachCommandHasItsOwnFile) {
  PrinterSite site;
  QStringList files;
  for (const QString& name : {u"druck.pdf"_s, u"ohne"_s, u"a.b.pdf"_s}) {
    site.printer.UseFile(site.folder.filePath(name));
    for (int command = 0; command < 3; ++command) {
      site.Print(name);
      site.printer.EndDoc();
      files.append(QFileInfo(site.printer.EndPrinting()).fileName());
    }
  }
  EXPECT_EQ(files, (QStringList{u"druck.pdf"_s, u"druck-2.pdf"_s, u"druck-3.pdf"_s, u"ohne"_s, u"ohne-2"_s,
                                u"ohne-3"_s, u"a.b.pdf"_s, u"a.b-2.pdf"_s, u"a.b-3.pdf"_s}));
}

TEST(QtPrinter, ThePainterIsInCentimetresOfThePaper) {
  PrinterSite site;
  for (const int orientation : {kPortrait, kLandscape}) {
    site.printer.SetOrientation(orientation);
    site.printer.UseFile(site.file);
    site.Print(u"mm"_s);
    site.printer.EndDoc();
    ASSERT_EQ(site.printer.EndPrinting(), site.file);
    const std::vector<PdfWord> words = PdfWords(site.file, 1);
    ASSERT_EQ(words.size(), 1);
    EXPECT_NEAR(words[0].left, 2, 0.2);
    EXPECT_LT(words[0].top, 5);
    EXPECT_GT(words[0].bottom, 5);
    EXPECT_EQ(PdfInfo(site.file, u"Page size"_s),
              orientation == kLandscape ? u"842 x 595 pts (A4)"_s : u"595 x 842 pts (A4)"_s);
  }
}

TEST(QtPrinter, AnEmptyJobWritesNothing) {
  PrinterSite site;
  site.printer.EndDoc();
  EXPECT_EQ(site.printer.EndPrinting(), QString());
  EXPECT_FALSE(QFile::exists(site.file));
}

TEST(QtPrinter, ADroppedJobLeavesNothing) {
  PrinterSite site;
  site.Print(u"eins"_s);
  site.printer.EndDoc();
  site.Print(u"noch eins"_s);
  site.printer.AbortDoc();
  site.printer.EndDoc();
  EXPECT_EQ(site.printer.EndPrinting(), QString());
  EXPECT_TRUE(QDir(site.folder.path()).isEmpty());
  site.Print(u"zwei"_s);
  site.printer.EndDoc();
  EXPECT_EQ(site.printer.EndPrinting(), site.file);
  EXPECT_EQ(PdfLines(site.file, 1), QStringList(u"zwei"_s));
  EXPECT_EQ(PdfPages(site.file), 1);
}

TEST(QtPrinter, AFileThatCannotBeWrittenIsAnError) {
  PrinterSite site;
  site.printer.UseFile(site.folder.filePath(u"nirgends/druck.pdf"_s));
  site.Print(u"eins"_s);
  site.printer.EndDoc();
  EXPECT_EQ(ThrownKind([&] { (void)site.printer.EndPrinting(); }), RuntimeError::Kind::FileError);
  site.printer.UseFile(site.file);
  site.Print(u"zwei"_s);
  site.printer.EndDoc();
  EXPECT_EQ(site.printer.EndPrinting(), site.file);
  EXPECT_EQ(PdfLines(site.file, 1), QStringList(u"zwei"_s)) << "nothing is left of the job before";
}

}  // namespace
}  // namespace kalivor::test
