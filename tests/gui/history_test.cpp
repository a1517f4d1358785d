// The window with the history: what was recorded is found, shown, compared, restored and remarked on.
#include <QAction>
#include <QCheckBox>
#include <QClipboard>
#include <QComboBox>
#include <QElapsedTimer>
#include <QHeaderView>
#include <QPlainTextEdit>
#include <QSplitter>
#include <QTableView>
#include <QTemporaryDir>

#include "gui/GuiFixture.h"
#include "ui/history/HistoryWindow.h"

namespace kalivor::test {
namespace {

using history::Access;
using history::Observation;
using history::Store;

class HistoryTest : public GuiTest {
 protected:
  HistoryTest() {
    historyStore.file = folder_.filePath(u"KALIVOR/Verlauf.sqlite"_s);
    historyStore.programVersion = u"1.0"_s;
    historyStore.pc = u"WERK-07"_s;
    historyStore.now = [this] { return now_; };
    safe.stateFolder = u"/zustand"_s;
    safe.take = [](const QString&) { return true; };
    safe.now = [this] { return now_; };
  }

  // Its writer wants the folder.
  ~HistoryTest() override { desktop.reset(); }

  // --- what is in the file ---

  std::unique_ptr<Store> Writing() {
    Store::Opened opened = Store::Open(historyStore, Access::Write);
    EXPECT_EQ(opened.note, QString());
    return std::move(opened.store);
  }

  history::Plant AddPlant(const QString& name, const QString& place = {}) {
    history::Plant plant{{}, name, place, {}};
    EXPECT_EQ(Writing()->Describe(plant, {}), QString());
    return plant;
  }

  /// An entry of the selected controller: Drehzahl and Druck as given, all values held.
  Observation Observed(DeedKind kind, int speed, int pressure) {
    auto table = std::make_shared<ParameterTable>(far->definitions);
    Observation observation;
    observation.entry.kind = kind;
    observation.entry.version = u"AB1-123.4"_s;
    observation.entry.address = 1;
    observation.entry.port = u"COM1"_s;
    observation.entry.pc = u"WERK-07"_s;
    observation.entry.outcome = u"8 Werte"_s;
    observation.entry.stamp.technician = u"Berta"_s;
    for (int i = 1; i < table->ParCount; ++i) {
      ParameterRecord& record = table->Par[i];
      record.Wert = record.Standard;
      record.WertText = record.StandardText;
      if (record.Variable == u"n") record.Wert = speed;
      if (record.Variable == u"p") record.Wert = pressure;
      observation.values.push_back({i, true, {}, {}});
    }
    observation.table = std::move(table);
    return observation;
  }

  void Add(const Observation& observation) {
    ASSERT_EQ(Writing()->Add(observation), QString());
    now_ = now_.addDays(1);
  }

  /// Three entries of two plants, and one without.
  void AddSome() {
    const history::Plant north = AddPlant(u"Kesselhaus Nord"_s, u"Bonn"_s);
    const history::Plant south = AddPlant(u"Halle Süd"_s, u"Köln"_s);
    Observation first = Observed(DeedKind::Received, 1500, 1000);
    first.entry.plant = north.id;
    Add(first);
    Observation second = Observed(DeedKind::SentSafely, 1600, 2000);
    second.entry.plant = north.id;
    second.entry.stamp.technician = u"Anna"_s;
    Add(second);
    Observation third = Observed(DeedKind::Received, 1700, 1000);
    third.entry.plant = south.id;
    Add(third);
    Add(Observed(DeedKind::Compared, 1500, 1000));
  }

  // --- what is seen ---

  void Keep() {
    history::HistorySettings used;
    used.keeps = true;
    used.technician = u"Anna"_s;
    history::SaveHistorySettings(used, settings);
  }
  void Show() { Main<QAction>(u"mnuWerkzeugeVerlauf"_s).trigger(); }
  ui::HistoryWindow& Window() { return *desktop->history; }
  QTableView& Entries() { return In<QTableView>(Window(), u"entries"_s); }
  QTableView& Plants() { return In<QTableView>(Window(), u"plants"_s); }
  QTableView& Changes() { return In<QTableView>(Window(), u"changes"_s); }
  QString LabelText(const QString& name) { return In<QLabel>(Window(), name).text(); }
  QLineEdit& Box(const QString& name) { return In<QLineEdit>(Window(), name); }
  static QString Cell(const QTableView& table, int row, int column) {
    return table.model()->index(row, column).data().toString();
  }
  static QStringList Column(const QTableView& table, int column) {
    QStringList cells;
    for (int row = 0; row < table.model()->rowCount(); ++row)
      cells << Cell(table, row, column);
    return cells;
  }
  void Select(int row) { Entries().setCurrentIndex(Entries().model()->index(row, 0)); }
  void SelectPlant(const QString& name) {
    const auto row = static_cast<int>(Column(Plants(), 0).indexOf(name));
    ASSERT_GE(row, 0);
    Plants().setCurrentIndex(Plants().model()->index(row, 0));
  }
  void Choose(const QString& name, const QString& text) {
    In<QComboBox>(Window(), name).setCurrentText(text);
  }

  platform::FileContent Saved(const QString& path) { return files.Read(path, 1 << 20); }

  /// Until what was to be added is there and shown.
  void Written() {
    desktop->recorder.Settle();
    QCoreApplication::sendPostedEvents(&desktop->main, QEvent::MetaCall);
    QCoreApplication::processEvents();
  }

  template <typename Dialog>
  Dialog& Companion() {
    for (ui::Form* form : Window().Companions())
      if (auto* dialog = dynamic_cast<Dialog*>(form)) return *dialog;
    throw std::runtime_error("no such dialog");
  }

  /// Chooses the plant of what is done from now on by its name alone.
  void TypePlant(const QString& name) {
    Click(Window(), u"choosePlant"_s);
    QLineEdit& typed = In<QLineEdit>(Companion<ui::PlantDialog>(), u"plantSearch"_s);
    QTest::keyClicks(&typed, name);
    QTest::keyClick(&typed, Qt::Key_Return);
  }

  QTemporaryDir folder_;
  QDateTime now_{QDate(2026, 3, 1), QTime(9, 30)};
};

// --- switching on ---

TEST_F(HistoryTest, OffItSaysWhatItWouldRecordAndWhere) {
  Start();
  Show();
  EXPECT_EQ(Window().windowTitle(), u"Verlauf"_s);
  EXPECT_TRUE(LabelText(u"about"_s).startsWith(u"Der Verlauf wird nicht geführt."_s));
  EXPECT_TRUE(LabelText(u"about"_s).contains(u"Verlauf.sqlite"_s));
  EXPECT_FALSE(In<QCheckBox>(Window(), u"keeps"_s).isChecked());
  EXPECT_FALSE(In<QWidget>(Window(), u"technician"_s).isVisible());
  EXPECT_EQ(LabelText(u"count"_s), u"Noch ist nichts aufgezeichnet."_s);
  EXPECT_FALSE(QFile::exists(historyStore.file));
}

TEST_F(HistoryTest, SwitchedOnItRecordsWhatIsDoneFromThenOn) {
  Start();
  Show();
  In<QCheckBox>(Window(), u"keeps"_s).click();
  EXPECT_EQ(settings.values.value(u"Verlauf/Fuehren"_s), u"1"_s);
  EXPECT_TRUE(In<QWidget>(Window(), u"technician"_s).isVisible());
  EXPECT_FALSE(In<QLabel>(Window(), u"about"_s).isVisible());
  Click(desktop->main, u"CommandEmpfangen"_s);
  Written();
  ASSERT_EQ(Column(Entries(), ui::EntriesModel::Kind), QStringList{u"empfangen"_s});
  EXPECT_EQ(LabelText(u"count"_s), u"1 Eintrag"_s);
  EXPECT_TRUE(LabelText(u"entryHead"_s).contains(u"empfangen"_s));
  EXPECT_TRUE(LabelText(u"entryMore"_s).contains(u"AB1-123.4"_s));
}

TEST_F(HistoryTest, TheTechniciansNameIsKept) {
  Keep();
  Start();
  Show();
  QLineEdit& technician = Box(u"technician"_s);
  EXPECT_EQ(technician.text(), u"Anna"_s);
  technician.setFocus();
  technician.setText(u" Berta "_s);
  QTest::keyClick(&technician, Qt::Key_Return);
  EXPECT_EQ(settings.values.value(u"Verlauf/Techniker"_s), u"Berta"_s);
  EXPECT_EQ(desktop->recorder.Used().technician, u"Berta"_s);
}

TEST_F(HistoryTest, AHistoryThatCannotBeReadIsSaidInTheWindow) {
  QDir().mkpath(folder_.filePath(u"KALIVOR"_s));
  QFile damaged(historyStore.file);
  ASSERT_TRUE(damaged.open(QIODevice::WriteOnly));
  damaged.write(QByteArray(10'000, 'x'));
  damaged.close();
  Start();
  Show();
  EXPECT_TRUE(LabelText(u"about"_s).startsWith(u"Der Verlauf kann nicht gelesen werden"_s))
      << LabelText(u"about"_s).toStdString();
  EXPECT_EQ(Entries().model()->rowCount(), 0);
}

// --- finding ---

TEST_F(HistoryTest, TheEntriesStandByTimeAndThePlantsWithTheirCounts) {
  AddSome();
  Start();
  Show();
  EXPECT_EQ(Column(Plants(), 0),
            (QStringList{u"Alle Anlagen"_s, u"Ohne Anlage"_s, u"Halle Süd"_s, u"Kesselhaus Nord"_s}));
  EXPECT_EQ(Column(Plants(), 1), (QStringList{{}, {}, u"Köln"_s, u"Bonn"_s}));
  EXPECT_EQ(Column(Plants(), 2), (QStringList{u"4"_s, u"1"_s, u"1"_s, u"2"_s}));
  EXPECT_EQ(Column(Entries(), ui::EntriesModel::Time),
            (QStringList{u"04.03.2026 09:30:00"_s, u"03.03.2026 09:30:00"_s, u"02.03.2026 09:30:00"_s,
                         u"01.03.2026 09:30:00"_s}));
  EXPECT_EQ(Column(Entries(), ui::EntriesModel::Plant),
            (QStringList{{}, u"Halle Süd"_s, u"Kesselhaus Nord"_s, u"Kesselhaus Nord"_s}));
  EXPECT_EQ(LabelText(u"count"_s), u"4 Einträge"_s);
}

TEST_F(HistoryTest, EachFilterShowsItsOwn) {
  AddSome();
  Start();
  Show();
  const auto times = [this] {
    return Column(Entries(), ui::EntriesModel::Time).join(u' ').remove(u".03.2026 09:30:00"_s);
  };
  SelectPlant(u"Kesselhaus Nord"_s);
  EXPECT_EQ(times(), u"02 01"_s);
  SelectPlant(u"Ohne Anlage"_s);
  EXPECT_EQ(times(), u"04"_s);
  SelectPlant(u"Alle Anlagen"_s);
  Choose(u"kind"_s, u"empfangen"_s);
  EXPECT_EQ(times(), u"03 01"_s);
  EXPECT_EQ(LabelText(u"count"_s), u"2 von 4 Einträgen"_s);
  Choose(u"kind"_s, u"alle"_s);
  Choose(u"technicians"_s, u"Anna"_s);
  EXPECT_EQ(times(), u"02"_s);
  Choose(u"technicians"_s, u"alle"_s);
  Box(u"from"_s).setText(u"2.3.2026"_s);
  Box(u"to"_s).setText(u"3.3.26"_s);
  EXPECT_EQ(times(), u"03 02"_s);
  Box(u"from"_s).clear();
  Box(u"to"_s).clear();
  Box(u"search"_s).setText(u"bonn sicher"_s);
  EXPECT_EQ(times(), u"02"_s);
  Box(u"search"_s).setText(u"nirgends"_s);
  EXPECT_EQ(times(), QString());
  EXPECT_EQ(LabelText(u"entryMore"_s), u"Kein Eintrag passt zu den Filtern."_s);
  EXPECT_FALSE(In<QPushButton>(Window(), u"compare"_s).isEnabled());
  Box(u"search"_s).clear();
  // Only where it changed.
  Box(u"parameter"_s).setText(u"drehzahl"_s);
  QTest::keyClick(&Box(u"parameter"_s), Qt::Key_Return);
  EXPECT_EQ(times(), u"02"_s);
  Box(u"parameter"_s).clear();
  EXPECT_EQ(times(), u"04 03 02 01"_s);
}

TEST_F(HistoryTest, AFilterByParameterFindsWhatIsAddedLater) {
  AddSome();
  Start();
  Show();
  Box(u"parameter"_s).setText(u"n"_s);
  QTest::keyClick(&Box(u"parameter"_s), Qt::Key_Return);
  EXPECT_EQ(Entries().model()->rowCount(), 1);
  const history::Plant plant = AddPlant(u"Turm"_s);
  Observation later = Observed(DeedKind::Received, 1500, 1000);
  later.entry.plant = plant.id;
  Add(later);
  later = Observed(DeedKind::SentSafely, 1800, 1000);
  later.entry.plant = plant.id;
  Add(later);
  Window().Update();
  EXPECT_EQ(Entries().model()->rowCount(), 2);
}

TEST_F(HistoryTest, WhatIsNoDateIsSaidAndFiltersNothing) {
  AddSome();
  Start();
  Show();
  Box(u"from"_s).setText(u"31.2.2026"_s);
  EXPECT_EQ(LabelText(u"count"_s),
            u"4 Einträge · „31.2.2026“ ist kein Datum: TT.MM.JJJJ, MM.JJJJ oder JJJJ"_s);
}

TEST_F(HistoryTest, PlantsAreFoundByNameAndPlace) {
  AddSome();
  Start();
  Show();
  Box(u"plantSearch"_s).setText(u"köln"_s);
  EXPECT_EQ(Column(Plants(), 0), QStringList{u"Halle Süd"_s});
  EXPECT_EQ(Entries().model()->rowCount(), 1);
  Box(u"plantSearch"_s).setText(u"nirgends"_s);
  EXPECT_EQ(Plants().model()->rowCount(), 0);
  Box(u"plantSearch"_s).clear();
  EXPECT_EQ(Plants().model()->rowCount(), 4);
}

// --- the entry ---

TEST_F(HistoryTest, AnEntryShowsWhatItChanged) {
  AddSome();
  Start();
  Show();
  Select(2);
  EXPECT_EQ(LabelText(u"entryHead"_s), u"02.03.2026 09:30:00 · sicher gesendet · 8 Werte"_s);
  EXPECT_EQ(LabelText(u"entryMore"_s),
            u"Kesselhaus Nord · AB1-123.4 · Adresse 1 · COM1 · Anna · PC WERK-07"_s);
  EXPECT_EQ(Column(Changes(), 2), (QStringList{u"Drehzahl"_s, u"Druck"_s}));
  EXPECT_EQ(Column(Changes(), 4), (QStringList{u"150.0"_s, u"10.0"_s}));
  EXPECT_EQ(Column(Changes(), 5), (QStringList{u"160.0"_s, u"20.0"_s}));
  EXPECT_TRUE(Changes().isColumnHidden(8));
}

TEST_F(HistoryTest, MarkedEntriesStayMarkedWhileTheFilterShowsThem) {
  AddSome();
  Start();
  Show();
  Select(2);
  Box(u"search"_s).setText(u"bonn"_s);
  EXPECT_EQ(Entries().currentIndex().row(), 0);
  EXPECT_TRUE(LabelText(u"entryHead"_s).startsWith(u"02.03.2026"_s));
}

TEST_F(HistoryTest, TheValuesBecomeTheComparisonOfTheList) {
  AddSome();
  Start();
  Show();
  Select(2);
  Click(Window(), u"compare"_s);
  ASSERT_TRUE(desktop->list && desktop->list->isVisible());
  EXPECT_TRUE(In<QComboBox>(*desktop->list, u"comparison"_s).currentText().contains(u"Verlauf"_s))
      << In<QComboBox>(*desktop->list, u"comparison"_s).currentText().toStdString();
}

TEST_F(HistoryTest, TheValuesAreSavedAsAValueFile) {
  AddSome();
  Start();
  Show();
  Select(2);
  dialogs.answers = {u"/werte/alt.qpf"_s};
  Click(Window(), u"save"_s);
  ASSERT_EQ(dialogs.shown.size(), 1u);
  EXPECT_EQ(dialogs.shown[0].title, u"Wertedatei speichern"_s);
  const platform::FileContent saved = Saved(u"/werte/alt.qpf"_s);
  ASSERT_TRUE(saved.Ok());
  const ValueFileContent content = ParseValueFile(saved.bytes);
  EXPECT_EQ(content.version, u"AB1-123.4"_s);
  const auto speed = std::ranges::find(content.records, u"n"_s, &ValueRecord::Variable);
  ASSERT_NE(speed, content.records.end());
  EXPECT_EQ(speed->Wert, 1600);
}

TEST_F(HistoryTest, TheValuesAreRestoredOnlyAfterTheDifferencesWereShown) {
  AddSome();
  Start();
  Show();
  Select(2);
  Click(Window(), u"restore"_s);
  ASSERT_TRUE(desktop->safe && desktop->safe->isVisible());
  EXPECT_EQ(desktop->safe->windowTitle(), u"Wiederherstellen"_s);
  const QTableView& table = In<QTableView>(*desktop->safe, u"values"_s);
  EXPECT_EQ(Column(table, static_cast<int>(SafeColumn::Name)), (QStringList{u"Drehzahl"_s, u"Druck"_s}));
  EXPECT_EQ(Column(table, static_cast<int>(SafeColumn::New)), (QStringList{u"160.0"_s, u"20.0"_s}));
  desktop->safe->reject();
}

TEST_F(HistoryTest, ValuesOfAnotherVersionAreNotRestored) {
  Observation other = Observed(DeedKind::Received, 1, 2);
  other.entry.version = u"AB1-012.0"_s;
  Add(other);
  Start();
  Show();
  Click(Window(), u"restore"_s);
  const auto boxes = box.Take();
  ASSERT_EQ(boxes.size(), 1u);
  EXPECT_TRUE(boxes[0].text.startsWith(u"Andere ReglerVersion: AB1-012.0"_s));
}

TEST_F(HistoryTest, WithoutValuesThereIsNothingToCompare) {
  Observation none = Observed(DeedKind::Compared, 1, 2);
  none.table.reset();
  none.values.clear();
  Add(none);
  Start();
  Show();
  for (const QString& button : {u"compare"_s, u"save"_s, u"restore"_s})
    EXPECT_FALSE(In<QPushButton>(Window(), button).isEnabled());
}

TEST_F(HistoryTest, ARemarkIsAddedWithItsAuthorAndTime) {
  Keep();
  AddSome();
  Start();
  Show();
  Select(2);
  EXPECT_FALSE(In<QPushButton>(Window(), u"addRemark"_s).isEnabled());
  Box(u"remark"_s).setText(u"Pumpe war <b>defekt</b>"_s);
  Click(Window(), u"addRemark"_s);
  Written();
  EXPECT_TRUE(LabelText(u"entryHead"_s).startsWith(u"02.03.2026"_s));
  const QString remarks = In<QPlainTextEdit>(Window(), u"remarks"_s).toPlainText();
  EXPECT_TRUE(remarks.endsWith(u"Anna: Pumpe war <b>defekt</b>"_s)) << remarks.toStdString();
  EXPECT_EQ(Box(u"remark"_s).text(), QString());
  EXPECT_EQ(Cell(Entries(), 2, ui::EntriesModel::Remarks), u"Pumpe war <b>defekt</b>"_s);
  Box(u"search"_s).setText(u"defekt"_s);
  EXPECT_EQ(Entries().model()->rowCount(), 1);
}

// --- plants ---

TEST_F(HistoryTest, APlantIsChosenAndKept) {
  Keep();
  AddSome();
  Start();
  Show();
  EXPECT_EQ(In<QLabel>(Window(), u"plant"_s).accessibleName(), u"keine gewählt"_s);
  Click(Window(), u"choosePlant"_s);
  auto& dialog = Companion<ui::PlantDialog>();
  ASSERT_TRUE(dialog.isVisible());
  QTableView& plants = In<QTableView>(dialog, u"plants"_s);
  // The table of the PC has the same texts as all plants: none of them is more likely.
  EXPECT_EQ(Column(plants, 0), (QStringList{u"Halle Süd"_s, u"Kesselhaus Nord"_s, u"Ohne Anlage"_s}));
  EXPECT_EQ(Column(plants, 2).last(), u"zurzeit gewählt"_s);
  QTest::keyClicks(&In<QLineEdit>(dialog, u"plantSearch"_s), u"kess"_s);
  QTest::keyClick(&In<QLineEdit>(dialog, u"plantSearch"_s), Qt::Key_Return);
  EXPECT_FALSE(dialog.isVisible());
  EXPECT_EQ(In<QLabel>(Window(), u"plant"_s).accessibleName(), u"Kesselhaus Nord, Bonn"_s);
  EXPECT_FALSE(settings.values.value(u"Verlauf/Anlage"_s).isEmpty());
}

TEST_F(HistoryTest, ANewPlantIsMadeByTypingItsName) {
  Keep();
  Start();
  Show();
  TypePlant(u"Turm 3"_s);
  auto& form = Companion<ui::PlantForm>();
  ASSERT_TRUE(form.isVisible());
  EXPECT_EQ(form.windowTitle(), u"Neue Anlage"_s);
  EXPECT_EQ(In<QLineEdit>(form, u"plantName"_s).text(), u"Turm 3"_s);
  In<QLineEdit>(form, u"plantPlace"_s).setText(u"Ulm"_s);
  Click(form, u"OKButton"_s);
  Written();
  EXPECT_EQ(In<QLabel>(Window(), u"plant"_s).accessibleName(), u"Turm 3, Ulm"_s);
  EXPECT_EQ(Column(Plants(), 0), (QStringList{u"Alle Anlagen"_s, u"Ohne Anlage"_s, u"Turm 3"_s}));
  EXPECT_FALSE(desktop->recorder.Used().plant.isNull());
}

TEST_F(HistoryTest, ANewPlantNeedsNoMoreThanTheNameThatWasTyped) {
  Keep();
  Start();
  Show();
  TypePlant(u"Turm"_s);
  QTest::keyClick(&In<QLineEdit>(Companion<ui::PlantForm>(), u"plantName"_s), Qt::Key_Return);
  Written();
  EXPECT_EQ(In<QLabel>(Window(), u"plant"_s).accessibleName(), u"Turm"_s);
}

TEST_F(HistoryTest, AParameterMayHoldThePlantsName) {
  Keep();
  AddPlant(u"Nord"_s);
  AddPlant(u"SÜD"_s);
  Start();
  desktop->module.Par[3].WertText = u"Süd  "_s;
  Show();
  Click(Window(), u"choosePlant"_s);
  auto& dialog = Companion<ui::PlantDialog>();
  QComboBox& parameter = In<QComboBox>(dialog, u"nameParameter"_s);
  EXPECT_EQ(parameter.currentText(), u"keinem Parameter"_s);
  const int text = parameter.findText(u"Name (name)"_s);
  ASSERT_GT(text, 0);
  parameter.setCurrentIndex(text);
  Q_EMIT parameter.activated(text);
  EXPECT_EQ(settings.values.value(u"Verlauf/Namensparameter"_s), u"name"_s);
  ASSERT_TRUE(dialog.isVisible());
  const QTableView& plants = In<QTableView>(dialog, u"plants"_s);
  EXPECT_EQ(Cell(plants, 0, 0), u"SÜD"_s);
  EXPECT_EQ(Cell(plants, 0, 2), u"passt zum Regler"_s);
  EXPECT_EQ(plants.currentIndex().row(), 0);
}

TEST_F(HistoryTest, APlantThatTheControllerNamesIsNewWithThatName) {
  Keep();
  Start();
  history::HistorySettings used = desktop->recorder.Used();
  used.nameParameter = u"name"_s;
  desktop->recorder.Use(used);
  desktop->module.Par[3].WertText = u"Turm 3"_s;
  Show();
  Click(Window(), u"choosePlant"_s);
  auto& dialog = Companion<ui::PlantDialog>();
  EXPECT_EQ(In<QComboBox>(dialog, u"nameParameter"_s).currentText(), u"Name (name)"_s);
  Click(dialog, u"newPlant"_s);
  EXPECT_EQ(In<QLineEdit>(Companion<ui::PlantForm>(), u"plantName"_s).text(), u"Turm 3"_s);
}

TEST_F(HistoryTest, AParameterOfOtherDefinitionsStaysTheOneWithTheName) {
  Keep();
  Start();
  history::HistorySettings used = desktop->recorder.Used();
  used.nameParameter = u"ANDERSWO"_s;
  desktop->recorder.Use(used);
  Show();
  Click(Window(), u"choosePlant"_s);
  EXPECT_EQ(In<QComboBox>(Companion<ui::PlantDialog>(), u"nameParameter"_s).currentText(), u"ANDERSWO"_s);
}

TEST_F(HistoryTest, APlantIsDescribedAnew) {
  AddSome();
  Start();
  Show();
  EXPECT_FALSE(In<QPushButton>(Window(), u"changePlant"_s).isEnabled());
  SelectPlant(u"Halle Süd"_s);
  Click(Window(), u"changePlant"_s);
  auto& form = Companion<ui::PlantForm>();
  EXPECT_EQ(form.windowTitle(), u"Anlage ändern"_s);
  In<QLineEdit>(form, u"plantName"_s).setText(u"Kesselhaus Nord"_s);
  In<QLineEdit>(form, u"plantPlace"_s).setText(u"bonn"_s);
  Click(form, u"OKButton"_s);
  EXPECT_TRUE(form.isVisible());
  EXPECT_TRUE(In<QLabel>(form, u"fault"_s).text().startsWith(u"Eine Anlage mit diesem Namen"_s));
  In<QLineEdit>(form, u"plantName"_s).setText(u"Halle West"_s);
  Click(form, u"OKButton"_s);
  EXPECT_FALSE(form.isVisible());
  Written();
  EXPECT_TRUE(Column(Plants(), 0).contains(u"Halle West"_s));
  EXPECT_FALSE(Column(Plants(), 0).contains(u"Halle Süd"_s));
  EXPECT_EQ(Cell(Plants(), Plants().currentIndex().row(), 0), u"Halle West"_s);
}

TEST_F(HistoryTest, SeveralEntriesAreAssignedToAPlant) {
  AddSome();
  Start();
  Show();
  Entries().selectAll();
  Click(Window(), u"assign"_s);
  auto& dialog = Companion<ui::PlantDialog>();
  EXPECT_EQ(In<QLabel>(dialog, u"reason"_s).text(), u"Die 4 markierten Einträge gehören zu dieser Anlage:"_s);
  In<QLineEdit>(dialog, u"plantSearch"_s).setText(u"süd"_s);
  Click(dialog, u"OKButton"_s);
  Written();
  EXPECT_EQ(Column(Plants(), 2), (QStringList{u"4"_s, u"0"_s, u"4"_s, u"0"_s}));
}

// --- the curve ---

TEST_F(HistoryTest, ACurveShowsTheValuesOfThePlantAndLeadsToTheirEntries) {
  AddSome();
  Start();
  Show();
  Select(2);
  Click(Window(), u"curve"_s);
  auto& window = Companion<ui::CurveWindow>();
  ASSERT_TRUE(window.isVisible());
  auto& view = In<ui::CurveView>(window, u"curveView"_s);
  ASSERT_EQ(view.Shown().points.size(), 2u);
  EXPECT_TRUE(view.accessibleName().startsWith(u"Verlauf von Drehzahl: 2 Werte vom 02.03.2026"_s))
      << view.accessibleName().toStdString();
  EXPECT_TRUE(view.accessibleName().endsWith(u"02.03.2026 09:30: 160.0 1/m"_s));
  QTest::keyClick(&view, Qt::Key_Left);
  EXPECT_TRUE(view.accessibleName().endsWith(u"02.03.2026 09:30: 150.0 1/m"_s));
  QTest::keyClick(&view, Qt::Key_Left);
  EXPECT_EQ(view.Current(), 0);
  QTest::mouseClick(&view, Qt::LeftButton, {}, QPoint(view.width() - 5, view.height() / 2));
  EXPECT_EQ(view.Current(), 1);
  Select(0);
  Click(window, u"showEntry"_s);
  EXPECT_EQ(Entries().currentIndex().row(), 2);
  dialogs.answers = {u"/bild"_s};
  Click(window, u"savePicture"_s);
  EXPECT_TRUE(Saved(u"/bild.svg"_s).bytes.startsWith("<svg"));
}

// --- what leaves the window ---

TEST_F(HistoryTest, TheShownEntriesAndTheChangesAreExported) {
  AddSome();
  Start();
  Show();
  Choose(u"kind"_s, u"sicher gesendet"_s);
  dialogs.answers = {u"/eintraege.csv"_s, u"/werte.html"_s};
  auto* entries = Window().findChild<QMenu*>(u"exportEntries"_s);
  ASSERT_TRUE(entries);
  entries->findChild<QAction*>(u"exportCsv"_s)->trigger();
  const QString csv = QString::fromUtf8(Saved(u"/eintraege.csv"_s).bytes);
  EXPECT_EQ(csv.count(u"sicher gesendet"_s), 1);
  EXPECT_FALSE(csv.contains(u"empfangen"_s));
  auto* changes = Window().findChild<QMenu*>(u"exportChanges"_s);
  ASSERT_TRUE(changes);
  changes->findChild<QAction*>(u"exportHtml"_s)->trigger();
  const QString html = QString::fromUtf8(Saved(u"/werte.html"_s).bytes);
  EXPECT_TRUE(html.contains(u"160.0"_s));
  changes->findChild<QAction*>(u"exportCopy"_s)->trigger();
  EXPECT_TRUE(QApplication::clipboard()->text().contains(u"Drehzahl"_s));
}

TEST_F(HistoryTest, NoTextOfARowIsTakenForMarkup) {
  const QString hostile = u"<img src=x onerror=1><b>fett</b>\n&amp;%1\u202E"_s;
  const history::Plant plant = AddPlant(hostile, hostile);
  Observation observation = Observed(DeedKind::Received, 1, 2);
  observation.entry.plant = plant.id;
  observation.entry.outcome = hostile;
  observation.entry.remark = hostile;
  observation.entry.stamp.technician = hostile;
  observation.entry.version = hostile;
  observation.entry.quality = hostile + QString(70'000, u'x');
  auto table = std::make_shared<ParameterTable>(*observation.table);
  table->Par[1].Name = hostile;
  table->Par[1].Rubrik = hostile;
  observation.table = table;
  observation.values[0].before = ParameterValue{99, {}};
  Add(observation);
  Keep();
  Start();
  Show();
  SelectPlant(QString(hostile).replace(u'\n', u" · "_s));
  EXPECT_TRUE(LabelText(u"entryHead"_s).contains(u"<b>fett</b>"_s));
  for (const QLabel* label : Window().findChildren<QLabel*>())
    if (label->text().contains(u"<b>"_s)) {
      EXPECT_EQ(label->textFormat(), Qt::PlainText) << label->objectName().toStdString();
    }
  for (const QTableView* view : {&Entries(), &Plants(), &Changes()}) {
    ASSERT_GT(view->model()->rowCount(), 0);
    for (int row = 0; row < view->model()->rowCount(); ++row)
      for (int column = 0; column < view->model()->columnCount(); ++column)
        EXPECT_FALSE(view->model()->index(row, column).data(Qt::ToolTipRole).toString().contains(u"<img"_s));
  }
  Changes().setCurrentIndex(Changes().model()->index(0, 2));
  Click(Window(), u"curve"_s);
  EXPECT_EQ(In<QLabel>(Companion<ui::CurveWindow>(), u"sentence"_s).textFormat(), Qt::PlainText);
  QCoreApplication::processEvents();
}

// --- what belongs to others ---

TEST_F(HistoryTest, AReportIsAboutTheMarkedEntriesOfOnePlant) {
  AddSome();
  Start();
  Show();
  SelectPlant(u"Kesselhaus Nord"_s);
  Entries().selectAll();
  Click(Window(), u"report"_s);
  ASSERT_TRUE(desktop->serviceReport && desktop->serviceReport->isVisible());
  desktop->serviceReport->close();
  SelectPlant(u"Alle Anlagen"_s);
  Entries().selectAll();
  Click(Window(), u"report"_s);
  EXPECT_FALSE(desktop->serviceReport->isVisible());
  const auto boxes = box.Take();
  ASSERT_EQ(boxes.size(), 1u);
  EXPECT_TRUE(boxes[0].text.startsWith(u"Die markierten Einträge gehören zu verschiedenen Anlagen."_s));
}

TEST_F(HistoryTest, TheMenusReportIsAboutToday) {
  AddSome();
  Start();
  Main<QAction>(u"mnuWerkzeugeServiceprotokoll"_s).trigger();
  const auto boxes = box.Take();
  ASSERT_EQ(boxes.size(), 1u);
  EXPECT_TRUE(boxes[0].text.startsWith(u"Heute ist an der gewählten Anlage nichts aufgezeichnet."_s));
  now_ = QDateTime::currentDateTime();
  Add(Observed(DeedKind::Received, 1500, 1000));
  Main<QAction>(u"mnuWerkzeugeServiceprotokoll"_s).trigger();
  ASSERT_TRUE(desktop->serviceReport);
  EXPECT_TRUE(desktop->serviceReport->isVisible());
}

// --- how it behaves among the others ---

TEST_F(HistoryTest, WhatAnotherProgramAddsIsShownWithTheNextAction) {
  AddSome();
  Start();
  Show();
  Add(Observed(DeedKind::Saved, 5, 6));
  EXPECT_EQ(Entries().model()->rowCount(), 4);
  desktop->guard([] {});
  EXPECT_EQ(Entries().model()->rowCount(), 5);
}

TEST_F(HistoryTest, WhileBusyItTakesNoInput) {
  AddSome();
  Start();
  Show();
  {
    const BusyGuard busy(desktop->core);
    EXPECT_FALSE(Window().isEnabled());
    EXPECT_FALSE(Companion<ui::CurveWindow>().isEnabled());
  }
  EXPECT_TRUE(Window().isEnabled());
}

TEST_F(HistoryTest, ItRemembersItsPlaceAndItsColumns) {
  AddSome();
  Start();
  Show();
  Window().resize(700, 500);
  Entries().horizontalHeader()->resizeSection(0, 123);
  const QSize size = Window().size();
  Window().close();
  EXPECT_TRUE(settings.values.contains(u"VerlaufPlatz"_s));
  Start();
  Show();
  EXPECT_EQ(Window().size(), size);
  EXPECT_EQ(Entries().columnWidth(0), 123);
}

TEST_F(HistoryTest, ItRemembersHowItsPartsShareTheRoom) {
  AddSome();
  Start();
  Show();
  for (const QString& name : {u"sides"_s, u"halves"_s, u"entrySides"_s}) {
    auto& splitter = In<QSplitter>(Window(), name);
    const int all = splitter.sizes()[0] + splitter.sizes()[1];
    splitter.setSizes({all / 2, all - all / 2});
  }
  const QList<int> sides = In<QSplitter>(Window(), u"sides"_s).sizes();
  Window().reject();
  desktop.reset();
  Start();
  Show();
  EXPECT_EQ(In<QSplitter>(Window(), u"sides"_s).sizes(), sides);
  for (const QString& name : {u"VerlaufBreiten"_s, u"VerlaufHoehen"_s, u"VerlaufWerteBreiten"_s})
    EXPECT_EQ(settings.values.value(name).split(u' ').size(), 2) << name.toStdString();
}

TEST_F(HistoryTest, RowsAreAsHighAsTheFontWants) {
  AddSome();
  Start();
  Show();
  const int before = Entries().rowHeight(0);
  QFont font = Window().font();
  font.setPointSizeF(2 * font.pointSizeF());
  Window().setFont(font);
  for (QTableView* table : {&Entries(), &Plants(), &Changes()})
    EXPECT_GE(table->verticalHeader()->defaultSectionSize(), table->fontMetrics().height())
        << table->objectName().toStdString();
  EXPECT_GT(Entries().rowHeight(0), before * 3 / 2);
}

TEST_F(HistoryTest, EverythingHasANameAndATurn) {
  Keep();
  AddSome();
  Start();
  Show();
  QSet<QString> mnemonics;
  for (QWidget* widget : Window().findChildren<QWidget*>()) {
    if (!widget->isVisible() || widget->window() != &Window()) continue;
    const QString name = widget->objectName();
    if (widget->focusPolicy() == Qt::NoFocus || name.startsWith(u"qt_"_s)) continue;
    EXPECT_FALSE(name.isEmpty()) << widget->metaObject()->className();
    const auto* button = qobject_cast<QAbstractButton*>(widget);
    if (button == nullptr && qobject_cast<QLabel*>(widget) == nullptr) {
      EXPECT_FALSE(widget->accessibleName().isEmpty()) << name.toStdString();
    }
  }
  const auto take = [&](const QString& caption) {
    const QKeySequence key = QKeySequence::mnemonic(caption);
    if (key.isEmpty()) return;
    EXPECT_FALSE(mnemonics.contains(key.toString())) << caption.toStdString();
    mnemonics.insert(key.toString());
  };
  for (const auto* button : Window().findChildren<QAbstractButton*>())
    take(button->text());
  for (const auto* label : Window().findChildren<QLabel*>())
    if (label->buddy() != nullptr) take(label->text());
  // Tab goes round without being caught.
  Window().activateWindow();
  ASSERT_TRUE(QTest::qWaitFor([this] { return QApplication::activeWindow() == &Window(); }));
  Box(u"search"_s).setFocus();
  QSet<QWidget*> seen;
  for (int i = 0; i < 60; ++i) {
    seen.insert(QApplication::focusWidget());
    QTest::keyClick(QApplication::focusWidget(), Qt::Key_Tab);
  }
  for (const QString& name : {u"keeps"_s, u"technician"_s, u"plants"_s, u"entries"_s, u"changes"_s,
                              u"remark"_s, u"compare"_s, u"CloseButton"_s})
    EXPECT_TRUE(seen.contains(&In<QWidget>(Window(), name))) << name.toStdString();
}

TEST_F(HistoryTest, HintsInEmptyBoxesCanBeReadOnDarkPaper) {
  const QPalette before = QApplication::palette();
  QPalette dark(QColor(42, 46, 50));
  dark.setColor(QPalette::Text, Qt::white);
  dark.setColor(QPalette::PlaceholderText, Qt::black);
  QApplication::setPalette(dark);
  Start();
  Show();
  EXPECT_EQ(Box(u"search"_s).palette().color(QPalette::PlaceholderText).lightness(), 255);
  QApplication::setPalette(before);
}

TEST_F(HistoryTest, TheHelpKeyOpensItsPage) {
  Start();
  Show();
  QTest::keyClick(&Box(u"search"_s), Qt::Key_F1);
  EXPECT_EQ(help.pages, QStringList{u"verlauf"_s});
}

}  // namespace
}  // namespace kalivor::test
