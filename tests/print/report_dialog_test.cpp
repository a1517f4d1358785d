// Printing a text into a file that the user names in the toolkit's own dialog.
#include <QDir>
#include <QMessageBox>

#include "fakes/QtPrinters.h"
#include "fakes/ThrownKind.h"
#include "platform/qt/TextPrinter.h"
#include "print/FullDisk.h"
#include "print/Poppler.h"
#include "print/PrintDialog.h"

namespace kalivor::test {
namespace {

// The user prints into a file, and lets one of that name be replaced.
class ReportDialog : public testing::Test {
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

TEST_F(ReportDialog, HasAsManyCopiesAsChosen) {
  Print(u"eins\r\n"_s, 3);
  ASSERT_EQ(PdfPages(file), 3);
  for (int page = 1; page <= 3; ++page)
    EXPECT_EQ(PdfLines(file, page), (QStringList{u"Report"_s, u"eins"_s, u"Seite1von1"_s}));
}

TEST_F(ReportDialog, AFullDiskIsAnErrorAndLeavesTheOldFile) {
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

TEST_F(ReportDialog, ACancelledDialogWritesNothing) {
  WhenOpen([](QDialog& dialog) { dialog.reject(); });
  platform::AskAndPrintText(u"Report"_s, u"x\r\n"_s);
  EXPECT_EQ(Files(), QStringList());
}

}  // namespace
}  // namespace kalivor::test
