// Printing a table into a file that the user names in the toolkit's own dialog.
#include <QDir>

#include "fakes/QtPrinters.h"
#include "print/Poppler.h"
#include "print/PrintDialog.h"
#include "print/TablePrinter.h"

namespace kalivor::test {
namespace {

class TableDialog : public testing::Test {
 protected:
  void Print(const ListTable& table, int copies = 1) {
    WhenOpen([&](QDialog& dialog) {
      FileField(dialog).setText(file);
      SetCopies(dialog, copies);
      PressOk(dialog);
    });
    print::AskAndPrintTable(u"Parameterliste"_s, table, {u"AB1-123.4"_s, u"21.11.2026"_s, u"a.par"_s});
  }

  QTemporaryDir folder;
  QString file = folder.filePath(u"liste.pdf"_s);
};

TEST_F(TableDialog, PrintsAsManyCopiesAsChosen) {
  Print({{}, {u"Name"_s, u"Wert"_s}, {{{u"Größe"_s}, {u"7.5"_s, true}}}}, 2);
  ASSERT_EQ(PdfPages(file), 2);
  for (int page = 1; page <= 2; ++page) {
    EXPECT_EQ(PdfLines(file, page),
              (QStringList{u"AB1-123.4"_s, u"NameWert"_s, u"Größe7.5"_s, u"21.11.2026Seite1von1a.par"_s}));
  }
  EXPECT_EQ(PdfInfo(file, u"Title"_s), u"Parameterliste"_s);
}

TEST_F(TableDialog, ProposesThePaperThatSuitsTheTable) {
  ListTable wide;
  for (int column = 0; column < 14; ++column)
    wide.titles << u"Überschrift%1"_s.arg(column);
  Print(wide);
  EXPECT_EQ(PdfInfo(file, u"Page size"_s), u"842 x 595 pts (A4)"_s);
}

TEST_F(TableDialog, ACancelledDialogWritesNothing) {
  WhenOpen([](QDialog& dialog) { dialog.reject(); });
  print::AskAndPrintTable(u"Parameterliste"_s, {}, {});
  EXPECT_TRUE(QDir(folder.path()).isEmpty());
}

}  // namespace
}  // namespace kalivor::test
