// The print command of the main window.
#include "print/MDIFormPrint.h"

#include "print/WindowSite.h"

namespace kalivor::test {
namespace {

using print::mnuFilePrint_Click;

TEST(PrintCommand, AsksTheDialogWithItsFlags) {
  WindowSite site;
  mnuFilePrint_Click(site.frame);
  EXPECT_EQ(site.printer.dialogs, (std::vector<qint32>{104857684}));
  const QString joined = QString::number(1048576) + QString::number(8) + QString::number(4);
  EXPECT_EQ(QString::number(print::kPrintDialogFlags), joined);
}

TEST(PrintCommand, TakesCopiesAndOrientation) {
  WindowSite site;
  site.printer.copies = 3;
  site.printer.chosenOrientation = kLandscape;
  mnuFilePrint_Click(site.frame);
  EXPECT_EQ(site.module.Kopien, 3);
  EXPECT_TRUE(site.frame.isVisible());
  EXPECT_EQ(site.Preview().Layout().Orientation, kLandscape);
  EXPECT_EQ(site.Preview().MaxPage, 5);
  EXPECT_TRUE(site.Preview().Footer().contains(u"Seite  1 von 5"_s)) << "started twice";
  EXPECT_EQ(site.printer.pages, 0) << "printing is up to the frame";
}

TEST(PrintCommand, CancellingChangesNothing) {
  WindowSite site;
  site.module.Kopien = 2;
  site.printer.copies = std::nullopt;
  site.printer.chosenOrientation = kLandscape;
  mnuFilePrint_Click(site.frame);
  EXPECT_EQ(site.module.Kopien, 2);
  EXPECT_EQ(site.printer.orientation, kPortrait);
  EXPECT_FALSE(site.frame.isVisible());
  EXPECT_EQ(site.frame.Preview(), nullptr);
}

TEST(PrintCommand, EveryPrintShowsThePresentParameters) {
  WindowSite site;
  mnuFilePrint_Click(site.frame);
  site.Press(u"fwd"_s);
  site.Fill(20);
  mnuFilePrint_Click(site.frame);
  EXPECT_EQ(site.Status(), u"Seite  1 von 1"_s);
  EXPECT_EQ(site.Preview().List().Count(), 20);
}

TEST(PrintCommand, ErrorsAreSilent) {
  WindowSite site;
  site.printer.missing = true;
  mnuFilePrint_Click(site.frame);
  EXPECT_FALSE(site.frame.isVisible());

  site.printer.missing = false;
  site.printer.copies = 40000;  // more than the number can hold
  mnuFilePrint_Click(site.frame);
  EXPECT_FALSE(site.frame.isVisible());

  site.printer.copies = 1;
  site.module.Par[5].Zahl1 = 10;  // a value that cannot be shown
  mnuFilePrint_Click(site.frame);
  EXPECT_FALSE(site.frame.isVisible());
  EXPECT_EQ(site.module.TreeUpdating, kFalse);

  site.module.Par[5].Zahl1 = 0;
  mnuFilePrint_Click(site.frame);
  EXPECT_TRUE(site.frame.isVisible());
}

TEST(PrintCommand, AfterAFailedFirstPrintTheSecondIsLikeAFirst) {
  WindowSite site;
  site.module.Par[5].Zahl1 = 10;  // a value that cannot be shown
  for (int print = 1; print <= 2; ++print) {
    mnuFilePrint_Click(site.frame);
    EXPECT_FALSE(site.frame.isVisible()) << print;
    EXPECT_EQ(site.frame.Preview(), nullptr) << print;
    EXPECT_EQ(site.Status(), QString()) << print;
  }

  site.module.Par[5].Zahl1 = 0;
  mnuFilePrint_Click(site.frame);
  WindowSite other;
  mnuFilePrint_Click(other.frame);
  EXPECT_TRUE(site.frame.isVisible());
  EXPECT_EQ(site.frame.size(), other.frame.size()) << "made to fit the page";
  EXPECT_EQ(site.Status(), other.Status());
  EXPECT_EQ(site.Preview().Footer(), other.Preview().Footer());
}

TEST(PrintCommand, TheNoteAboutThePaperIsShown) {
  WindowSite site;
  site.printer.paperSize = 1;
  mnuFilePrint_Click(site.frame);
  EXPECT_EQ(TakeBoxes(site.box), (QStringList{u"Seitengrösse wird auf A4 geändert"_s}));
}

}  // namespace
}  // namespace kalivor::test
