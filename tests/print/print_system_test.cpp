// Printing through a real printing system, from the print command to what reaches the printer.
#include <QRadioButton>

#include "platform/qt/TextPrinter.h"
#include "print/MDIFormPrint.h"
#include "print/Pictures.h"
#include "print/PrintDialog.h"
#include "print/PrintServer.h"
#include "print/WindowSite.h"

namespace kalivor::test {
namespace {

class PrintSystem : public testing::Test {
 protected:
  void SetUp() override {
    const QStringList missing = PrintServer::MissingPrograms();
    if (!missing.isEmpty()) {
      GTEST_SKIP() << missing.join(u' ').toStdString()
                   << " not found; they come with the packages cups-daemon and cups-client";
    }
    ASSERT_TRUE(server.Start());
  }

  // The user prints on what the dialog proposes.
  static void Print(FrameSite<RealPrinterSite>& site, int copies) {
    WhenOpen([copies](QDialog& dialog) {
      EXPECT_EQ(OfferedPrinters(dialog).value(0), PrintServer::Queue());
      EXPECT_EQ(ChosenPrinter(dialog), PrintServer::Queue());
      SetCopies(dialog, copies);
      PressOk(dialog);
    });
    print::mnuFilePrint_Click(site.frame);
    ASSERT_TRUE(site.frame.isVisible());
  }

  // The box for a job that was not taken.
  static void ExpectRefusal(RealPrinterSite& site) {
    const QStringList boxes = TakeBoxes(site.box);
    ASSERT_EQ(boxes.size(), 1);
    EXPECT_TRUE(
        boxes[0].startsWith(u"Der Drucker hat den Auftrag nicht angenommen: "_s + PrintServer::Queue()))
        << boxes[0].toStdString();
  }

  PrintServer server;
};

/// 150 lines: three pages in portrait, five in landscape.
struct ListSite : FrameSite<RealPrinterSite> {
  ListSite() { Fill(150); }
};

TEST_F(PrintSystem, AllPagesInTwoCopiesAreOneJob) {
  ListSite site;
  Print(site, 2);
  site.Press(u"Drucken"_s);
  const std::vector<ArrivedJob> jobs = server.Jobs(1);
  ASSERT_EQ(jobs.size(), 1);
  EXPECT_EQ(jobs[0].title, u"Parameterliste"_s);
  EXPECT_EQ(jobs[0].copies, 1) << "the copies are in the job already";
  EXPECT_EQ(PdfInfo(jobs[0].file, u"Page size"_s), u"595 x 842 pts (A4)"_s);
  ASSERT_EQ(PdfPages(jobs[0].file), 6);
  for (int page = 1; page <= 6; ++page) {
    site.Preview().Page = (page - 1) % 3 + 1;
    site.Preview().selectPage();
    ExpectSameLines(site.Preview(), jobs[0].file, page);
  }
  EXPECT_EQ(site.PrintedFile(), QString());
  EXPECT_EQ(server.TemporaryFiles(), QStringList());
}

TEST_F(PrintSystem, ASinglePageIsOneJobPerCopy) {
  ListSite site;
  Print(site, 2);
  site.Press(u"Ausrichtung"_s);
  site.Press(u"fwd"_s);
  site.Press(u"fwd"_s);
  site.Press(u"SeiteDrucken"_s);
  const std::vector<ArrivedJob> jobs = server.Jobs(2);
  ASSERT_EQ(jobs.size(), 2);
  for (const ArrivedJob& job : jobs) {
    EXPECT_EQ(job.copies, 1);
    EXPECT_EQ(PdfInfo(job.file, u"Page size"_s), u"842 x 595 pts (A4)"_s);
    ASSERT_EQ(PdfPages(job.file), 1);
    ExpectSameLines(site.Preview(), job.file, 1);
    ExpectSamePlaces(site.Preview(), job.file, 1);
    EXPECT_TRUE(PdfLines(job.file, 1).last().contains(u"Seite3von5"_s));
  }
}

TEST_F(PrintSystem, SixtyPagesArrive) {
  ListSite site;
  site.Fill(2000);
  site.printer.SetOrientation(kLandscape);
  Print(site, 1);
  EXPECT_EQ(site.Preview().MaxPage, 59) << "the orientation stays";
  site.Press(u"Drucken"_s);
  const std::vector<ArrivedJob> jobs = server.Jobs(1);
  ASSERT_EQ(jobs.size(), 1);
  EXPECT_EQ(PdfPages(jobs[0].file), 59);
}

TEST_F(PrintSystem, WithoutCopiesNothingIsSent) {
  ListSite site;
  Print(site, 1);
  site.module.Kopien = 0;
  site.Press(u"Drucken"_s);
  site.Press(u"SeiteDrucken"_s);
  EXPECT_EQ(server.TakenJobs(), 0);
}

TEST_F(PrintSystem, ADroppedJobIsNotSent) {
  ListSite site;
  Print(site, 1);
  site.printer.PrintPage([](QPainter& painter) { painter.drawLine(1, 1, 2, 2); });
  site.printer.AbortDoc();
  site.printer.EndDoc();
  EXPECT_EQ(server.TakenJobs(), 0);
  EXPECT_EQ(server.TemporaryFiles(), QStringList());
}

// --- a printer that vanishes between choosing and printing ---

TEST_F(PrintSystem, AQueueThatIsRemovedShowsABox) {
  ListSite site;
  Print(site, 2);
  server.RemoveQueue();
  for (const QString& key : {u"Drucken"_s, u"SeiteDrucken"_s}) {
    site.Press(key);
    ExpectRefusal(site);
    EXPECT_TRUE(site.frame.isEnabled());
    EXPECT_TRUE(site.main.enabled);
  }
  EXPECT_EQ(server.TakenJobs(), 0);
  EXPECT_EQ(server.TemporaryFiles(), QStringList());

  // The next print command offers a file instead.
  WhenOpen([](QDialog& dialog) {
    EXPECT_EQ(OfferedPrinters(dialog).size(), 1);
    EXPECT_TRUE(FileField(dialog).text().endsWith(u"/KALIVOR.pdf"_s));
    dialog.reject();
  });
  print::mnuFilePrint_Click(site.frame);
}

TEST_F(PrintSystem, ADaemonThatIsStoppedShowsABox) {
  ListSite site;
  Print(site, 2);
  server.Stop();
  for (const QString& key : {u"SeiteDrucken"_s, u"Drucken"_s}) {
    site.Press(key);
    ExpectRefusal(site);
    EXPECT_TRUE(site.frame.isEnabled());
  }
  EXPECT_EQ(server.TemporaryFiles(), QStringList());

  // When it is back, printing goes on as if nothing had happened.
  ASSERT_TRUE(server.Start());
  site.Press(u"SeiteDrucken"_s);
  EXPECT_EQ(server.Jobs(2).size(), 2);
}

TEST_F(PrintSystem, AQueueThatTakesNoJobsShowsABox) {
  ListSite site;
  Print(site, 1);
  server.Reject();
  site.Press(u"Drucken"_s);
  ExpectRefusal(site);
  EXPECT_EQ(server.TakenJobs(), 0);
  server.Accept();
  site.Press(u"Drucken"_s);
  EXPECT_EQ(server.Jobs(1).size(), 1);
}

// --- the dialog ---

// The user changes something in the properties of the printer and prints.
void PrintWithProperties(FrameSite<RealPrinterSite>& site, const std::function<void(QDialog&)>& change) {
  WhenOpen([&](QDialog& dialog) {
    QTimer::singleShot(0, [&] {
      auto* properties = qobject_cast<QDialog*>(QApplication::activeModalWidget());
      ASSERT_NE(properties, nullptr);
      change(*properties);
      PressOk(*properties);
    });
    dialog.findChild<QPushButton*>(u"properties"_s)->click();
    PressOk(dialog);
  });
  print::mnuFilePrint_Click(site.frame);
}

TEST_F(PrintSystem, TheOrientationIsTakenFromTheDialog) {
  ListSite site;
  for (const auto& [button, orientation] :
       {std::pair(u"landscape"_s, kLandscape), std::pair(u"portrait"_s, kPortrait)}) {
    PrintWithProperties(
        site, [name = button](QDialog& properties) { properties.findChild<QRadioButton*>(name)->click(); });
    EXPECT_EQ(site.printer.Orientation(), orientation);
    EXPECT_EQ(site.Preview().MaxPage, orientation == kLandscape ? 5 : 3);
  }
}

TEST_F(PrintSystem, OtherPaperIsChangedToA4) {
  ListSite site;
  PrintWithProperties(site, [](QDialog& properties) {
    auto* sizes = properties.findChild<QComboBox*>(u"pageSizeCombo"_s);
    const int letter = sizes->findText(u"Letter"_s, Qt::MatchContains);
    ASSERT_GE(letter, 0);
    sizes->setCurrentIndex(letter);
  });
  EXPECT_EQ(TakeBoxes(site.box), QStringList(u"Seitengrösse wird auf A4 geändert"_s));
  site.Press(u"SeiteDrucken"_s);
  const std::vector<ArrivedJob> jobs = server.Jobs(1);
  ASSERT_EQ(jobs.size(), 1);
  EXPECT_EQ(PdfInfo(jobs[0].file, u"Page size"_s), u"595 x 842 pts (A4)"_s);
}

TEST_F(PrintSystem, ACancelledDialogLeavesTheTargetAlone) {
  FileSite site;
  site.Open();
  site.printer.SetOrientation(kLandscape);
  WhenOpen([](QDialog& dialog) {
    EXPECT_EQ(ChosenPrinter(dialog), PrintServer::Queue());
    SetCopies(dialog, 3);
    dialog.reject();
  });
  print::mnuFilePrint_Click(site.frame);
  EXPECT_EQ(site.printer.Orientation(), kLandscape);
  site.module.Kopien = 1;
  site.Press(u"SeiteDrucken"_s);
  EXPECT_EQ(PdfPages(site.file), 1);
  EXPECT_EQ(server.TakenJobs(), 0);
  EXPECT_EQ(server.TemporaryFiles(), QStringList());
}

TEST_F(PrintSystem, AFileCanBeChosenInsteadOfThePrinter) {
  ListSite site;
  const QTemporaryDir folder;
  const QString file = folder.filePath(u"gewählt.pdf"_s);
  WhenOpen([&](QDialog& dialog) {
    auto* list = dialog.findChild<QComboBox*>(u"printers"_s);
    list->setCurrentIndex(list->count() - 1);
    FileField(dialog).setText(file);
    SetCopies(dialog, 2);
    PressOk(dialog);
  });
  print::mnuFilePrint_Click(site.frame);
  site.Press(u"Drucken"_s);
  EXPECT_EQ(PdfPages(file), 6);
  EXPECT_EQ(server.TakenJobs(), 0);
}

// --- the report ---

TEST_F(PrintSystem, AReportArrives) {
  WhenOpen([](QDialog& dialog) { PressOk(dialog); });
  platform::AskAndPrintText(u"Report"_s, u"Empfangen..\r\nEmpfangen beendet\r\n"_s);
  const std::vector<ArrivedJob> jobs = server.Jobs(1);
  ASSERT_EQ(jobs.size(), 1);
  EXPECT_EQ(jobs[0].title, u"Report"_s);
  EXPECT_EQ(PdfLines(jobs[0].file, 1),
            (QStringList{u"Report"_s, u"Empfangen.."_s, u"Empfangenbeendet"_s, u"Seite1von1"_s}));
}

TEST_F(PrintSystem, AReportThatIsNotTakenIsAnError) {
  server.Reject();
  WhenOpen([](QDialog& dialog) { PressOk(dialog); });
  EXPECT_EQ(ThrownKind([] { platform::AskAndPrintText(u"Report"_s, u"Empfangen..\r\n"_s); }),
            RuntimeError::Kind::FileError);
  EXPECT_EQ(server.TakenJobs(), 0);
}

}  // namespace
}  // namespace kalivor::test
