// The printer of the system, as far as it can be tested without one: PDF files and the dialog.
#include "platform/qt/QtPrinter.h"

#include <QDir>
#include <QFile>
#include <QMessageBox>
#include <QPainter>
#include <array>

#include "fakes/QtPrinters.h"
#include "fakes/ThrownKind.h"
#include "print/Poppler.h"
#include "print/PrintDialog.h"

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
    printer.PrintPage([text](QPainter& painter) {
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

// --- the dialog ---

TEST(QtPrinter, ACancelledDialogChoosesNothing) {
  PrinterSite site;
  WhenOpen([&](QDialog& dialog) {
    FileField(dialog).setText(site.folder.filePath(u"anders.pdf"_s));
    SetCopies(dialog, 3);
    dialog.reject();
  });
  EXPECT_EQ(site.printer.Choose(4), std::nullopt);
  site.Print(u"eins"_s);
  site.printer.EndDoc();
  EXPECT_EQ(site.printer.EndPrinting(), site.file) << "the file stays the one chosen before";
  WhenOpen([](QDialog& dialog) { dialog.reject(); });
  EXPECT_EQ(site.printer.Choose(4), std::nullopt);
  site.Print(u"zwei"_s);
  site.printer.EndDoc();
  EXPECT_EQ(site.printer.EndPrinting(), site.folder.filePath(u"druck-2.pdf"_s)) << "and counts as written";
}

TEST(QtPrinter, AFileThatCannotBeWrittenIsRefusedByTheDialog) {
  PrinterSite site;
  int notes = 0;
  WhenOpen([&](QDialog& dialog) {
    for (const QString& path : {site.folder.filePath(u"nirgends/druck.pdf"_s), site.folder.path()}) {
      FileField(dialog).setText(path);
      QTimer::singleShot(0, [&] {
        auto* box = qobject_cast<QMessageBox*>(QApplication::activeModalWidget());
        ASSERT_NE(box, nullptr);
        ++notes;
        box->reject();
      });
      PressOk(dialog);
      EXPECT_TRUE(dialog.isVisible()) << path.toStdString();
    }
    dialog.reject();
  });
  EXPECT_EQ(site.printer.Choose(4), std::nullopt);
  EXPECT_EQ(notes, 2);
  EXPECT_TRUE(QDir(site.folder.path()).isEmpty());
}

// A home of the test's own.
class ProposedFile : public testing::Test {
 public:
  ~ProposedFile() override {
    qputenv("HOME", before_[0]);
    before_[1].isNull() ? qunsetenv("XDG_CONFIG_HOME") : qputenv("XDG_CONFIG_HOME", before_[1]);
  }

 protected:
  ProposedFile() {
    qputenv("HOME", QFile::encodeName(home_.path()));
    qputenv("XDG_CONFIG_HOME", QFile::encodeName(home_.filePath(u"config"_s)));
  }

  // What the dialog proposes to a user without a printer.
  QString Proposal() {
    QString proposal;
    QtPrinter printer;
    WhenOpen([&](QDialog& dialog) {
      proposal = FileField(dialog).text();
      dialog.reject();
    });
    EXPECT_EQ(printer.Choose(4), std::nullopt);
    return proposal;
  }

  QTemporaryDir home_;

 private:
  std::array<QByteArray, 2> before_{qgetenv("HOME"), qgetenv("XDG_CONFIG_HOME")};
};

TEST_F(ProposedFile, IsInTheUsersDocuments) {
  ASSERT_TRUE(QDir(home_.path()).mkdir(u"Documents"_s));
  EXPECT_EQ(Proposal(), home_.filePath(u"Documents/KALIVOR.pdf"_s));
}

TEST_F(ProposedFile, IsInTheHomeOfAUserWithoutThatFolder) {
  EXPECT_EQ(Proposal(), home_.filePath(u"KALIVOR.pdf"_s));
}

TEST(QtPrinter, TheDialogKeepsTheOrientationAndReturnsTheCopies) {
  PrinterSite site;
  site.printer.SetOrientation(kLandscape);
  WhenOpen([](QDialog& dialog) {
    SetCopies(dialog, 3);
    PressOk(dialog);
  });
  EXPECT_EQ(site.printer.Choose(4), 3);
  EXPECT_EQ(site.printer.Orientation(), kLandscape);
  WhenOpen([](QDialog& dialog) {
    EXPECT_EQ(dialog.findChild<QSpinBox*>(u"copies"_s)->value(), 1) << "the device makes one copy";
    PressOk(dialog);
  });
  EXPECT_EQ(site.printer.Choose(4), 1);
}

}  // namespace
}  // namespace kalivor::test
