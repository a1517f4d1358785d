// The dialog that chooses a printer or a file: the toolkit's own. Windows shows another, which no test can
// operate.
#include <QDir>
#include <QMessageBox>
#include <array>

#include "print/Poppler.h"
#include "print/PrintDialog.h"
#include "print/PrinterSite.h"

namespace kalivor::test {
namespace {

using platform::kLandscape;
using platform::QtPrinter;

TEST(PrintDialog, ACancelledDialogChoosesNothing) {
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

TEST(PrintDialog, AFileThatCannotBeWrittenIsRefusedByTheDialog) {
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

TEST(PrintDialog, TheDialogKeepsTheOrientationAndReturnsTheCopies) {
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
