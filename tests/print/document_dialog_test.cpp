// Printing a page of HTML into a file that the user names in the toolkit's own dialog.
#include <QDir>

#include "fakes/QtPrinters.h"
#include "platform/RuntimeError.h"
#include "platform/qt/DocumentPrinter.h"
#include "print/Poppler.h"
#include "print/PrintDialog.h"

namespace kalivor::test {
namespace {

class DocumentDialog : public testing::Test {
 protected:
  void Print(const QString& html) {
    WhenOpen([&](QDialog& dialog) {
      FileField(dialog).setText(file);
      SetCopies(dialog, 2);
      PressOk(dialog);
    });
    platform::AskAndPrintDocument(u"Serviceprotokoll"_s, {html, {}, {}, u"Fuß"_s});
  }

  QTemporaryDir folder;
  QString file = folder.filePath(u"protokoll.pdf"_s);
};

TEST_F(DocumentDialog, PrintsAsManyCopiesAsChosen) {
  Print(u"<h2>Titel</h2>"_s);
  ASSERT_EQ(PdfPages(file), 2);
  for (int page = 1; page <= 2; ++page)
    EXPECT_EQ(PdfLines(file, page), (QStringList{u"Titel"_s, u"FußSeite1von1"_s}));
  EXPECT_EQ(PdfInfo(file, u"Title"_s), u"Serviceprotokoll"_s);
}

TEST_F(DocumentDialog, ACancelledDialogWritesNothing) {
  WhenOpen([](QDialog& dialog) { dialog.reject(); });
  platform::AskAndPrintDocument(u"Serviceprotokoll"_s, {u"x"_s, {}, {}, {}});
  EXPECT_TRUE(QDir(folder.path()).isEmpty());
}

TEST_F(DocumentDialog, ADocumentWithoutPagesIsAnError) {
  EXPECT_THROW(Print(u"<table><tr><td>"_s.repeated(7)), RuntimeError);
  EXPECT_TRUE(QDir(folder.path()).isEmpty());
}

}  // namespace
}  // namespace kalivor::test
