// The printer of the system, as far as it can be tested without one: PDF files and the dialog.
#include "platform/qt/QtPrinter.h"

#include <QApplication>
#include <QDir>
#include <QFile>
#include <QPrintDialog>
#include <QSpinBox>
#include <QTimer>

#include "fakes/ThrownKind.h"
#include "print/Poppler.h"

namespace kalivor::test {
namespace {

using platform::kLandscape;
using platform::kPaperA4;
using platform::kPortrait;
using platform::QtPrinter;

struct PrinterSite {
  QTemporaryDir folder;
  QString file = folder.filePath(u"druck.pdf"_s);
  QtPrinter printer;

  PrinterSite() { printer.UseFile(file); }

  void Print(const QString& text) {
    printer.PrintPage([&](QPainter& painter) {
      // A font of 1 cm, on a painter in centimetres.
      QFont font;
      font.setPixelSize(100);
      painter.setFont(font);
      painter.translate(2, 5);
      painter.scale(0.01, 0.01);
      painter.drawText(QPointF(0, 0), text);
    });
  }
};

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

TEST(QtPrinter, WritesTheFileAtTheEndOfTheJob) {
  PrinterSite site;
  site.Print(u"eins"_s);
  site.Print(u"zwei"_s);
  EXPECT_FALSE(QFile::exists(site.file));
  site.printer.EndDoc();
  ASSERT_EQ(PdfPages(site.file), 2);
  EXPECT_EQ(PdfLines(site.file, 1), QStringList(u"eins"_s));
  EXPECT_EQ(PdfLines(site.file, 2), QStringList(u"zwei"_s));
}

TEST(QtPrinter, ThePainterIsInCentimetresOfThePaper) {
  PrinterSite site;
  for (const int orientation : {kPortrait, kLandscape}) {
    site.printer.SetOrientation(orientation);
    site.Print(u"mm"_s);
    site.printer.EndDoc();
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
  EXPECT_FALSE(QFile::exists(site.file));
}

TEST(QtPrinter, ADroppedJobLeavesNothing) {
  PrinterSite site;
  site.Print(u"eins"_s);
  site.printer.AbortDoc();
  site.printer.EndDoc();
  EXPECT_TRUE(QDir(site.folder.path()).isEmpty());
  site.Print(u"zwei"_s);
  site.printer.EndDoc();
  EXPECT_EQ(PdfLines(site.file, 1), QStringList(u"zwei"_s));
  EXPECT_EQ(PdfPages(site.file), 1);
}

TEST(QtPrinter, AFileThatCannotBeWrittenIsAnError) {
  PrinterSite site;
  site.printer.UseFile(site.folder.filePath(u"nirgends/druck.pdf"_s));
  site.Print(u"eins"_s);
  EXPECT_EQ(ThrownKind([&] { site.printer.EndDoc(); }), RuntimeError::Kind::FileError);
  site.printer.UseFile(site.file);
  site.Print(u"zwei"_s);
  site.printer.EndDoc();
  EXPECT_EQ(PdfLines(site.file, 1), QStringList(u"zwei"_s)) << "nothing is left of the job before";
}

// --- the dialog ---

// Runs `act` on the print dialog as soon as it is open.
void WhenOpen(const std::function<void(QDialog&)>& act) {
  QTimer::singleShot(0, [act] {
    auto* dialog = qobject_cast<QDialog*>(QApplication::activeModalWidget());
    ASSERT_NE(dialog, nullptr);
    EXPECT_EQ(dialog->objectName(), u"CDlg"_s);
    act(*dialog);
  });
}

TEST(QtPrinter, ACancelledDialogChoosesNothing) {
  PrinterSite site;
  WhenOpen([](QDialog& dialog) { dialog.reject(); });
  EXPECT_EQ(site.printer.Choose(4), std::nullopt);
}

TEST(QtPrinter, TheDialogKeepsTheOrientationAndReturnsTheCopies) {
  PrinterSite site;
  site.printer.SetOrientation(kLandscape);
  WhenOpen([](QDialog& dialog) {
    auto* copies = dialog.findChild<QSpinBox*>(u"copies"_s);
    ASSERT_NE(copies, nullptr);
    copies->setValue(3);
    dialog.accept();
  });
  EXPECT_EQ(site.printer.Choose(4), 3);
  EXPECT_EQ(site.printer.Orientation(), kLandscape);
  WhenOpen([](QDialog& dialog) {
    EXPECT_EQ(dialog.findChild<QSpinBox*>(u"copies"_s)->value(), 1) << "the device makes one copy";
    dialog.accept();
  });
  EXPECT_EQ(site.printer.Choose(4), 1);
}

}  // namespace
}  // namespace kalivor::test
