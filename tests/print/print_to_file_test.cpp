// Printing into a PDF file from the frame.
#include "print/Poppler.h"
#include "print/WindowSite.h"

namespace kalivor::test {
namespace {

TEST(PrintToFile, AllPagesInSeveralCopiesAreOneFile) {
  FileSite site;
  site.module.Kopien = 2;
  site.Open();
  site.Press(u"Drucken"_s);
  EXPECT_EQ(site.Files(), QStringList(u"liste.pdf"_s));
  ASSERT_EQ(PdfPages(site.file), 6);
  for (int page = 1; page <= 3; ++page)
    EXPECT_EQ(PdfLines(site.file, page), PdfLines(site.file, page + 3)) << page;
  EXPECT_EQ(site.PrintedFile(), u"Gedruckt in "_s + site.file);
}

TEST(PrintToFile, APageInSeveralCopiesIsOneFile) {
  FileSite site;
  site.module.Kopien = 3;
  site.Open();
  site.Press(u"fwd"_s);
  site.Press(u"SeiteDrucken"_s);
  EXPECT_EQ(site.Files(), QStringList(u"liste.pdf"_s));
  ASSERT_EQ(PdfPages(site.file), 3);
  for (int page = 1; page <= 3; ++page)
    EXPECT_TRUE(PdfLines(site.file, page).last().contains(u"Seite2von3"_s)) << page;
}

TEST(PrintToFile, LaterCommandsWriteFilesOfTheirOwn) {
  FileSite site;
  QFile stranger(site.folder.filePath(u"liste-3.pdf"_s));
  ASSERT_TRUE(stranger.open(QIODevice::WriteOnly));
  stranger.close();
  site.module.Kopien = 1;
  site.Open();
  site.Press(u"Drucken"_s);
  site.Press(u"SeiteDrucken"_s);
  EXPECT_EQ(site.PrintedFile(), u"Gedruckt in "_s + site.folder.filePath(u"liste-2.pdf"_s));
  site.Press(u"Drucken"_s);
  EXPECT_EQ(site.Files(),
            (QStringList{u"liste-2.pdf"_s, u"liste-3.pdf"_s, u"liste-4.pdf"_s, u"liste.pdf"_s}));
  EXPECT_EQ(PdfPages(site.file), 3) << "the first one is left alone";
  EXPECT_EQ(PdfPages(site.folder.filePath(u"liste-2.pdf"_s)), 1);
  EXPECT_EQ(stranger.size(), 0) << "and so is what somebody else has put there";
  EXPECT_EQ(PdfPages(site.folder.filePath(u"liste-4.pdf"_s)), 3);

  // Chosen anew, it is replaced: the dialog has asked.
  site.printer.UseFile(site.file);
  site.Preview().Page = 1;
  site.Press(u"SeiteDrucken"_s);
  EXPECT_EQ(PdfPages(site.file), 1);
}

TEST(PrintToFile, WithoutCopiesNothingIsWritten) {
  FileSite site;
  site.module.Kopien = 0;
  site.Open();
  site.Press(u"Drucken"_s);
  site.Press(u"SeiteDrucken"_s);
  EXPECT_EQ(site.Files(), QStringList());
  EXPECT_EQ(site.PrintedFile(), QString());
}

TEST(PrintToFile, AFolderThatIsGoneShowsABox) {
  FileSite site;
  const QString path = site.folder.filePath(u"nirgends/liste.pdf"_s);
  site.printer.UseFile(path);
  site.module.Kopien = 2;
  site.Open();
  for (const QString& key : {u"Drucken"_s, u"SeiteDrucken"_s}) {
    site.Press(key);
    EXPECT_EQ(TakeBoxes(site.box), QStringList(u"Die Datei kann nicht geschrieben werden: "_s + path));
    EXPECT_TRUE(site.frame.isEnabled());
    EXPECT_EQ(site.PrintedFile(), QString());
  }
  EXPECT_EQ(site.Files(), QStringList());

  // Of what failed nothing is left for the next command.
  QDir(site.folder.path()).mkdir(u"nirgends"_s);
  site.Press(u"SeiteDrucken"_s);
  EXPECT_EQ(PdfPages(path), 2);
}

TEST(PrintToFile, AnErrorWhilePrintingWritesNothing) {
  FileSite site;
  site.module.Kopien = 1;
  site.Open();
  site.Preview().Page = 40000;  // more lines than the number can hold
  site.Press(u"SeiteDrucken"_s);
  EXPECT_EQ(TakeBoxes(site.box).size(), 1);
  EXPECT_EQ(site.Files(), QStringList());
}

TEST(PrintToFile, ALongPathDoesNotMakeTheFrameWider) {
  FileSite site;
  const QString folder = site.folder.filePath(QString(200, u'f'));
  ASSERT_TRUE(QDir().mkpath(folder));
  site.printer.UseFile(folder + u"/"_s + QString(200, u'n') + u".pdf"_s);
  site.module.Kopien = 1;
  site.Open();
  const int width = site.frame.width();
  site.Press(u"SeiteDrucken"_s);
  QCoreApplication::processEvents();
  EXPECT_TRUE(site.PrintedFile().endsWith(u"nnn.pdf"_s));
  EXPECT_TRUE(site.Find<QLabel>(u"panel2"_s)->text().endsWith(u".pdf"_s));
  EXPECT_EQ(site.frame.width(), width);
  EXPECT_LT(site.frame.minimumSizeHint().width(), width + 1);
}

TEST(PrintToFile, TheFileIsShownAsFarAsTheFrameIsWide) {
  FileSite site;
  site.printer.UseFile(site.folder.filePath(QString(150, u'n') + u".pdf"_s));
  site.module.Kopien = 1;
  site.Open();
  site.Press(u"SeiteDrucken"_s);
  auto* panel = site.Find<QLabel>(u"panel2"_s);
  const QString whole = site.PrintedFile();
  const auto shownAt = [&](int width) {
    site.frame.resize(width, site.frame.height());
    QCoreApplication::processEvents();
    EXPECT_LE(panel->fontMetrics().horizontalAdvance(panel->text()), panel->width()) << "nothing is cut off";
    return panel->text();
  };
  const QString narrow = shownAt(600);
  const QString wider = shownAt(900);
  EXPECT_NE(narrow, whole);
  EXPECT_GT(wider.size(), narrow.size());
  EXPECT_EQ(shownAt(3000), whole);
  EXPECT_EQ(shownAt(600), narrow);
  EXPECT_EQ(site.PrintedFile(), whole) << "a screen reader reads all of it";
}

TEST(PrintToFile, TheNextPrintCommandForgetsTheFile) {
  FileSite site;
  site.module.Kopien = 1;
  site.Open();
  site.Press(u"SeiteDrucken"_s);
  EXPECT_NE(site.PrintedFile(), QString());
  site.Open();
  EXPECT_EQ(site.PrintedFile(), QString());
}

}  // namespace
}  // namespace kalivor::test
