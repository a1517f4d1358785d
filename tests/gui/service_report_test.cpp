// The window with the report of a visit for the customer.
#include "ui/history/ServiceReportWindow.h"

#include <QAction>
#include <QBuffer>
#include <QPainter>
#include <QScrollBar>
#include <QTemporaryDir>

#include "gui/GuiFixture.h"
#include "ui/history/LetterPicture.h"
#include "ui/history/PagesView.h"
#include "ui/main/HelpKey.h"

namespace kalivor::test {
namespace {

QByteArray Png(const QSize& size) {
  QImage image(size, QImage::Format_RGB32);
  image.fill(Qt::red);
  QBuffer buffer;
  buffer.open(QIODevice::WriteOnly);
  EXPECT_TRUE(image.save(&buffer, "PNG"));
  return buffer.data();
}

history::ServiceVisit Visit(int changes = 1) {
  history::ServiceEntry entry;
  entry.entry.stamp = {1, QDateTime(QDate(2026, 3, 9), QTime(8, 0), Qt::OffsetFromUTC, 3600), u"Anna Kühn"_s};
  entry.entry.kind = DeedKind::SentSafely;
  entry.entry.version = u"AB1-123.4"_s;
  for (int number = 1; number <= changes; ++number)
    entry.changes.push_back({number, u"Heizung"_s, u"Wert %1"_s.arg(number), u"w"_s, u"int"_s, u"1F00"_s,
                             u"°C"_s, u"20"_s, u"30"_s, u"geprüft"_s});
  return {{QUuid::createUuid(), u"Werk <b>Süd</b>"_s, u"Halle 3"_s, {}}, {entry}};
}

class ServiceReportTest : public testing::Test {
 protected:
  ServiceReportTest() { Make(); }

  void Make() {
    window = std::make_unique<ui::ServiceReportWindow>(ui::ServiceReportSurroundings{
        settings, files, dialogs, box, guard, [this] { return history::LoadHistorySettings(settings); },
        [this](const history::HistorySettings& used) { history::SaveHistorySettings(used, settings); },
        [this](const QString& title, const platform::HtmlDocument& document) {
          printed << title;
          printedHtml = document.html;
        }});
  }

  template <typename Widget>
  Widget& In(const QString& name) {
    auto* widget = window->findChild<Widget*>(name);
    if (widget == nullptr) throw std::runtime_error("no widget " + name.toStdString());
    return *widget;
  }
  void Open(const history::ServiceVisit& visit = Visit()) {
    window->Open(visit);
    ASSERT_TRUE(QTest::qWaitForWindowExposed(window.get()));
  }
  void Click(const QString& button) { QTest::mouseClick(&In<QPushButton>(button), Qt::LeftButton); }
  void Trigger(const QString& action) { In<QAction>(action).trigger(); }
  // What the page says, once it has caught up.
  QString Shown() {
    QCoreApplication::processEvents();
    return In<ui::PagesView>(u"Preview"_s).accessibleDescription();
  }
  QString Note() { return In<QLabel>(u"Note"_s).isHidden() ? QString() : In<QLabel>(u"Note"_s).text(); }
  QString Stored(const QString& key) { return settings.values.value(u"Verlauf/"_s + key); }

  FakeFileSystem files;
  MemorySettings settings;
  FakeFileDialogs dialogs;
  FakeMessageBox box;
  platform::EventGuard guard = [](const std::function<void()>& handler) { handler(); };
  QStringList printed;
  QString printedHtml;
  std::unique_ptr<ui::ServiceReportWindow> window;
};

TEST_F(ServiceReportTest, ShowsThePagesAsTheyPrint) {
  Open();
  EXPECT_EQ(window->windowTitle(), u"Serviceprotokoll"_s);
  EXPECT_EQ(window->focusWidget(), &In<QWidget>(u"Preview"_s));
  for (const QString& text : {u"Serviceprotokoll"_s, u"Werk <b>Süd</b>"_s, u"Anna Kühn"_s, u"Wert 1"_s})
    EXPECT_TRUE(Shown().contains(text)) << text.toStdString();
  EXPECT_EQ(Note(), QString());
  const QImage seen = In<QWidget>(u"Preview"_s).grab().toImage();
  int dark = 0;
  int white = 0;
  for (int y = 0; y < seen.height(); ++y) {
    for (int x = 0; x < seen.width(); ++x) {
      dark += qGray(seen.pixel(x, y)) < 80 ? 1 : 0;
      white += seen.pixel(x, y) == qRgb(255, 255, 255) ? 1 : 0;
    }
  }
  EXPECT_GT(white, seen.width() * seen.height() / 4) << "paper";
  EXPECT_GT(dark, 500) << "print";
}

TEST_F(ServiceReportTest, EveryControlCanBeReadOutAndReached) {
  Open();
  for (const QWidget* widget : window->findChildren<QWidget*>()) {
    const bool takesKeys = widget->focusPolicy() != Qt::NoFocus && widget->isVisible();
    if (!takesKeys || widget->objectName().startsWith(u"qt_"_s)) continue;
    EXPECT_NE(widget->objectName(), QString());
    const auto* button = qobject_cast<const QPushButton*>(widget);
    EXPECT_FALSE(button == nullptr ? widget->accessibleName().isEmpty() : button->text().isEmpty())
        << widget->objectName().toStdString();
  }
}

TEST_F(ServiceReportTest, WhatIsTypedIsSeenAfterAMoment) {
  Open();
  QTest::keyClicks(&In<QLineEdit>(u"Title"_s), u"!"_s);
  In<QPlainTextEdit>(u"Remark"_s).setPlainText(u"Pumpe\ngetauscht {{titel}}"_s);
  In<QPlainTextEdit>(u"Letterhead"_s).setPlainText(u"Muster GmbH"_s);
  EXPECT_TRUE(QTest::qWaitFor([this] { return Shown().contains(u"Serviceprotokoll!"_s); }));
  EXPECT_TRUE(Shown().contains(u"Pumpe\ngetauscht {{titel}}"_s)) << Shown().toStdString();
  EXPECT_TRUE(Shown().startsWith(u"\nMuster GmbH"_s) || Shown().startsWith(u"Muster GmbH"_s))
      << Shown().toStdString();
}

TEST_F(ServiceReportTest, ALetterheadIsKeptAndTheRestBelongsToTheReport) {
  settings.values[u"Verlauf/Techniker"_s] = u"Anna"_s;
  Open();
  In<QLineEdit>(u"Title"_s).setText(u"Abnahme"_s);
  In<QPlainTextEdit>(u"Remark"_s).setPlainText(u"Gut"_s);
  In<QPlainTextEdit>(u"Letterhead"_s).setPlainText(u"Muster GmbH\nMünster"_s);
  window->close();
  EXPECT_EQ(Stored(u"Briefkopf"_s), u"Muster GmbH\nMünster"_s);
  EXPECT_EQ(Stored(u"Techniker"_s), u"Anna"_s) << "the other settings stay";
  Make();
  Open();
  EXPECT_EQ(In<QPlainTextEdit>(u"Letterhead"_s).toPlainText(), u"Muster GmbH\nMünster"_s);
  EXPECT_EQ(In<QLineEdit>(u"Title"_s).text(), u"Serviceprotokoll"_s);
  EXPECT_EQ(In<QPlainTextEdit>(u"Remark"_s).toPlainText(), QString());
}

TEST_F(ServiceReportTest, APictureIsChosenAndTakenAway) {
  files.files[u"/b/logo.png"_s] = {Png({300, 100}), {}, false};
  Open();
  EXPECT_FALSE(In<QPushButton>(u"NoPicture"_s).isEnabled());
  dialogs.answers = {u"/b/logo.png"_s, QString()};
  Click(u"ChoosePicture"_s);
  EXPECT_EQ(Stored(u"Briefbild"_s), u"/b/logo.png"_s);
  EXPECT_EQ(In<QLineEdit>(u"Picture"_s).text(), u"/b/logo.png"_s);
  EXPECT_EQ(Shown().count(QChar::ObjectReplacementCharacter), 1);
  Click(u"ChoosePicture"_s);
  EXPECT_EQ(dialogs.shown[1].folder, u"/b/"_s);
  EXPECT_EQ(Stored(u"Briefbild"_s), u"/b/logo.png"_s) << "cancelled";
  Click(u"NoPicture"_s);
  EXPECT_EQ(Stored(u"Briefbild"_s), QString());
  EXPECT_EQ(Shown().count(QChar::ObjectReplacementCharacter), 0);
}

TEST_F(ServiceReportTest, WithoutItsPictureThereIsAReportAndANote) {
  settings.values[u"Verlauf/Briefbild"_s] = u"/b/weg.png"_s;
  files.files[u"/b/kaputt.png"_s] = {Png({300, 100}).first(40), {}, false};
  Open();
  EXPECT_TRUE(Note().startsWith(u"Das Protokoll ist ohne Bild: "_s)) << Note().toStdString();
  EXPECT_TRUE(Note().endsWith(u"/b/weg.png"_s));
  EXPECT_TRUE(Shown().contains(u"Wert 1"_s));
  dialogs.answers = {u"/b/kaputt.png"_s};
  Click(u"ChoosePicture"_s);
  EXPECT_EQ(
      Note(),
      u"Das Protokoll ist ohne Bild: Die Datei enthält kein Bild, das gezeigt werden kann.\n/b/kaputt.png"_s);
  EXPECT_TRUE(In<QPushButton>(u"Save"_s).isEnabled());
}

TEST_F(ServiceReportTest, ACompanysTemplateIsUsed) {
  files.AddText(u"/v/firma.html"_s, u"<p>Firma {{anlage}}</p>"_s);
  Open();
  EXPECT_FALSE(In<QAction>(u"templateBuiltIn"_s).isEnabled());
  dialogs.answers = {u"/v/firma.html"_s};
  Trigger(u"templateChoose"_s);
  EXPECT_EQ(Shown(), u"Firma Werk <b>Süd</b>"_s);
  EXPECT_EQ(Stored(u"Vorlage"_s), u"/v/firma.html"_s);
  files.AddText(u"/v/firma.html"_s, u"<p>Neu {{anlage}}</p>"_s);
  Trigger(u"templateReload"_s);
  EXPECT_EQ(Shown(), u"Neu Werk <b>Süd</b>"_s);
  Make();
  Open();
  EXPECT_EQ(Shown(), u"Neu Werk <b>Süd</b>"_s) << "the next time too";
  Trigger(u"templateBuiltIn"_s);
  EXPECT_TRUE(Shown().contains(u"Wert 1"_s));
  EXPECT_EQ(Stored(u"Vorlage"_s), QString());
}

TEST_F(ServiceReportTest, ABrokenTemplateIsToldWithItsLineAndTheBuiltInOneIsUsed) {
  const auto expectBuiltIn = [&](const QString& fault) {
    const QString note =
        u"Die Vorlage ist nicht in Ordnung. %1\n/v/firma.html\nBis sie berichtigt ist, gilt die eingebaute."_s
            .arg(fault);
    EXPECT_EQ(Note(), note);
    EXPECT_TRUE(Shown().contains(u"Wert 1"_s));
    return QString(note).replace(u'\n', u"\r\n"_s);
  };
  files.AddText(u"/v/firma.html"_s, u"<p>\n{{anlge}}</p>"_s);
  Open();
  dialogs.answers = {u"/v/firma.html"_s};
  Trigger(u"templateChoose"_s);
  const QString told = expectBuiltIn(u"Zeile 2: {{anlge}} gibt es hier nicht."_s);
  const std::vector<FakeMessageBox::Box> shown = box.Take();
  ASSERT_EQ(shown.size(), 1);
  EXPECT_EQ(shown[0].text, told);
  files.AddText(u"/v/firma.html"_s, u"<table><tr><td>"_s.repeated(9));
  Trigger(u"templateReload"_s);
  expectBuiltIn(u"Mehr als 6 Tabellen ineinander."_s);
  files.AddText(u"/v/firma.html"_s, QString(300 * 1024, u'x'));
  Trigger(u"templateReload"_s);
  EXPECT_TRUE(Note().startsWith(u"Die Vorlage ist nicht in Ordnung."_s));
  files.AddText(u"/v/firma.html"_s, u"{{anlage}}"_s);
  QTest::keyClick(window.get(), Qt::Key_F5);
  EXPECT_EQ(Note(), QString());
  EXPECT_EQ(Shown(), u"Werk <b>Süd</b>"_s);
}

TEST_F(ServiceReportTest, TheBuiltInTemplateIsAStartForAnother) {
  Open();
  dialogs.answers = {u"/v/start"_s};
  Trigger(u"templateSave"_s);
  EXPECT_EQ(files.files[u"/v/start.html"_s].bytes, history::BuiltInServiceTemplate());
  EXPECT_EQ(dialogs.shown[0].title, u"Eingebaute Vorlage speichern"_s);
}

TEST_F(ServiceReportTest, IsSavedAsADocumentWithWhatWasTypedLast) {
  Open();
  In<QPlainTextEdit>(u"Remark"_s).setPlainText(u"im letzten Augenblick"_s);
  dialogs.answers = {u"/p/protokoll"_s};
  Click(u"Save"_s);
  EXPECT_TRUE(files.files[u"/p/protokoll.pdf"_s].bytes.startsWith("%PDF"));
  EXPECT_TRUE(Shown().contains(u"im letzten Augenblick"_s));
  EXPECT_EQ(dialogs.shown[0].title, u"Protokoll speichern"_s);
  In<QPlainTextEdit>(u"Remark"_s).setPlainText(u"noch eines"_s);
  Click(u"Print"_s);
  EXPECT_EQ(printed, QStringList{u"Serviceprotokoll"_s});
  EXPECT_TRUE(printedHtml.contains(u"noch eines"_s));
}

TEST_F(ServiceReportTest, WhatIsTooLongIsToldAndCannotBePrinted) {
  history::ServiceVisit visit = Visit();
  visit.plant.remark = QString(200'000, u'\n');
  Open(visit);
  EXPECT_EQ(Note(), u"Das Protokoll wird zu lang. Bitte weniger Einträge wählen."_s);
  EXPECT_FALSE(In<QPushButton>(u"Save"_s).isEnabled());
  EXPECT_FALSE(In<QPushButton>(u"Print"_s).isEnabled());
  window->Open(Visit());
  EXPECT_EQ(Note(), QString());
  EXPECT_TRUE(In<QPushButton>(u"Save"_s).isEnabled());
}

TEST_F(ServiceReportTest, ThePagesAreTurnedByKeys) {
  Open(Visit(200));
  auto& view = In<ui::PagesView>(u"Preview"_s);
  QScrollBar& bar = *view.verticalScrollBar();
  EXPECT_EQ(bar.value(), 0);
  QTest::keyClick(&view, Qt::Key_PageDown);
  const int page = bar.value();
  EXPECT_GT(page, 100);
  QTest::keyClick(&view, Qt::Key_PageDown);
  EXPECT_EQ(bar.value(), 2 * page);
  QTest::keyClick(&view, Qt::Key_PageUp);
  EXPECT_EQ(bar.value(), page);
  QTest::keyClick(&view, Qt::Key_End);
  EXPECT_EQ(bar.value(), bar.maximum());
  QTest::keyClick(&view, Qt::Key_Home);
  EXPECT_EQ(bar.value(), 0);
}

TEST_F(ServiceReportTest, HasItsPageOfTheManualComesBackAndGoesWithEscape) {
  Open();
  EXPECT_EQ(ui::ManualPageOf(In<QLineEdit>(u"Title"_s)), u"serviceprotokoll"_s);
  window->setGeometry(40, 30, 700, 500);
  QTest::keyClick(window.get(), Qt::Key_Escape);
  EXPECT_FALSE(window->isVisible());
  Make();
  Open();
  EXPECT_EQ(window->geometry(), QRect(40, 30, 700, 500));
}

// What the program has of today.
class ReportOfTodayTest : public GuiTest {
 protected:
  ReportOfTodayTest() { historyStore.file = folder_.filePath(u"Verlauf.sqlite"_s); }

  // An entry of the selected controller, of today.
  void Add(const history::Plant& plant, const QString& outcome) {
    history::Store::Opened opened = history::Store::Open(historyStore, history::Access::Write);
    history::Observation observation;
    observation.entry.plant = plant.id;
    observation.entry.outcome = outcome;
    ASSERT_EQ(opened.store->Add(observation), QString());
  }
  history::Plant Described(const QString& name) {
    history::Plant plant{{}, name, {}, {}};
    EXPECT_EQ(history::Store::Open(historyStore, history::Access::Write).store->Describe(plant, {}),
              QString());
    return plant;
  }
  QString Shown() { return In<ui::PagesView>(*desktop->serviceReport, u"Preview"_s).accessibleDescription(); }

 private:
  QTemporaryDir folder_;
};

TEST_F(ReportOfTodayTest, IsAboutTheChosenPlant) {
  const history::Plant north = Described(u"Kesselhaus Nord"_s);
  Add(north, u"zuerst"_s);
  Add(Described(u"Halle Süd"_s), u"anderswo"_s);
  Add(north, u"danach"_s);
  history::HistorySettings used;
  used.plant = north.id;
  history::SaveHistorySettings(used, settings);
  Start();
  Main<QAction>(u"mnuWerkzeugeServiceprotokoll"_s).trigger();
  ASSERT_TRUE(desktop->serviceReport->isVisible());
  EXPECT_TRUE(Shown().contains(u"Kesselhaus Nord"_s));
  EXPECT_LT(Shown().indexOf(u"zuerst"_s), Shown().indexOf(u"danach"_s));
  EXPECT_TRUE(Shown().contains(u"zuerst"_s));
  EXPECT_FALSE(Shown().contains(u"anderswo"_s));
}

TEST_F(ReportOfTodayTest, WithoutEntriesTheWayToOthersIsTold) {
  Start();
  Main<QAction>(u"mnuWerkzeugeServiceprotokoll"_s).trigger();
  EXPECT_EQ(desktop->serviceReport, nullptr);
  const std::vector<FakeMessageBox::Box> shown = box.Take();
  ASSERT_EQ(shown.size(), 1);
  EXPECT_TRUE(shown[0].text.startsWith(u"Heute ist an der gewählten Anlage nichts aufgezeichnet."_s));
}

// Who changes the rest of the settings later must not put the old letterhead back.
TEST_F(ReportOfTodayTest, TheLetterheadBelongsToTheSettingsThatTheProgramHas) {
  Add({}, u"heute"_s);
  Start();
  Main<QAction>(u"mnuWerkzeugeServiceprotokoll"_s).trigger();
  In<QPlainTextEdit>(*desktop->serviceReport, u"Letterhead"_s).setPlainText(u"Muster GmbH"_s);
  desktop->serviceReport->close();
  history::HistorySettings used = desktop->recorder.Used();
  EXPECT_EQ(used.letterhead, u"Muster GmbH"_s);
  used.technician = u"Anna"_s;
  desktop->UseHistory(used);
  EXPECT_EQ(settings.values.value(u"Verlauf/Briefkopf"_s), u"Muster GmbH"_s);
}

TEST_F(ReportOfTodayTest, TakesNoInputWhileALineIsBusy) {
  Add({}, u"heute"_s);
  Start();
  Main<QAction>(u"mnuWerkzeugeServiceprotokoll"_s).trigger();
  ToBusy(desktop->core);
  EXPECT_FALSE(desktop->serviceReport->isEnabled());
  FromBusy(desktop->core);
  EXPECT_TRUE(desktop->serviceReport->isEnabled());
}

TEST(LetterPicture, IsAsLargeAsThePrinterNeedsAndNoLarger) {
  FakeFileSystem files;
  files.files[u"/gross.png"_s] = {Png({6000, 1000}), {}, false};
  files.files[u"/klein.png"_s] = {Png({40, 100}), {}, false};
  const ui::LetterPicture large = ui::LoadLetterPicture(files, u"/gross.png"_s);
  EXPECT_EQ(large.image.size(), QSize(2126, 354));
  EXPECT_EQ(ui::LetterPictureSize(large.image), QSize(340, 56));
  const ui::LetterPicture small = ui::LoadLetterPicture(files, u"/klein.png"_s);
  EXPECT_EQ(small.image.size(), QSize(40, 100));
  EXPECT_EQ(ui::LetterPictureSize(small.image), QSize(30, 76));
  EXPECT_TRUE(ui::LetterPictureSize({}).isNull() || ui::LetterPictureSize({}).isEmpty());
}

}  // namespace
}  // namespace kalivor::test
