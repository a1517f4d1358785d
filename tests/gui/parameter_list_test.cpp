// The parameter list: the window with its table, search, filters, comparison and editing in place.
#include <QClipboard>
#include <QHeaderView>
#include <QTableView>

#include "core/ValueFileFormat.h"
#include "gui/GuiFixture.h"

namespace kalivor::test {
namespace {

class ParameterListTest : public GuiTest {
 protected:
  void StartWithList() {
    Start();
    OpenList();
  }
  void OpenList() {
    Action(u"mnuWerkzeugeListe"_s);
    ASSERT_NE(desktop->list, nullptr);
    ASSERT_TRUE(QTest::qWaitForWindowActive(desktop->list.get()));
  }
  void Action(const QString& name) { desktop->main.findChild<QAction*>(name)->trigger(); }

  [[nodiscard]] ui::ParameterListWindow& List() { return *desktop->list; }
  template <typename Widget>
  Widget& Of(const QString& name) {
    return In<Widget>(List(), name);
  }
  [[nodiscard]] QTableView& View() { return Of<QTableView>(u"parameters"_s); }
  [[nodiscard]] QAbstractItemModel& Model() { return *View().model(); }
  [[nodiscard]] QString CountLine() { return Of<QLabel>(u"countLine"_s).text(); }

  [[nodiscard]] QModelIndex At(int row, ListColumn column) {
    return Model().index(row, static_cast<int>(column));
  }
  [[nodiscard]] QString Cell(int row, ListColumn column) { return At(row, column).data().toString(); }

  /// What stands in a column, from the top, separated by blanks and a bar.
  [[nodiscard]] QString Column(ListColumn column) {
    QStringList texts;
    for (int row = 0; row < Model().rowCount(); ++row)
      texts.append(Cell(row, column));
    return texts.join(u" | "_s);
  }
  [[nodiscard]] QString Numbers() { return Column(ListColumn::Number); }
  [[nodiscard]] QString Marks() {
    QString marks;
    for (int row = 0; row < Model().rowCount(); ++row)
      marks += At(row, ListColumn::Mark).data(Qt::CheckStateRole) == Qt::Checked ? u'x' : u'-';
    return marks;
  }

  /// Any characters; the toolkit's own function knows those of ASCII only.
  static void TypeInto(QWidget& widget, const QString& text) {
    for (const QChar character : text)
      QTest::sendKeyEvent(QTest::Click, &widget, Qt::Key_unknown, character, Qt::NoModifier);
  }

  void Press(Qt::Key key, Qt::KeyboardModifiers modifiers = Qt::NoModifier) {
    QTest::keyClick(&View(), key, modifiers);
  }
  void Search(const QString& text) {
    auto& search = Of<QLineEdit>(u"search"_s);
    search.setFocus();
    search.clear();
    TypeInto(search, text);
  }
  void Filter(const QString& name) { Click(List(), name); }
  [[nodiscard]] QString Caption(const QString& button) { return Of<QPushButton>(button).text(); }

  void GoToCell(int row, ListColumn column = ListColumn::Value) { View().setCurrentIndex(At(row, column)); }
  [[nodiscard]] QLineEdit* Editor() { return View().viewport()->findChild<QLineEdit*>(u"valueEdit"_s); }
  [[nodiscard]] bool Edits() { return Editor() != nullptr && Editor()->isVisible(); }
  /// Beside the open editor; "" when there is none.
  [[nodiscard]] QString Reason() {
    for (const QLabel* label : View().viewport()->findChildren<QLabel*>(u"reason"_s)) {
      if (label->isVisible()) return label->text();
    }
    return {};
  }
  void Type(const QString& text) { TypeInto(*Editor(), text); }
  void EditorKey(Qt::Key key) {
    QTest::keyClick(Editor(), key);
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
  }

  /// A value file of that version; with parameter 1 as 100.0, 3 as "Berta", 4 as 500.0, which is outside, and
  /// one that no version knows.
  void AddFile(const QString& path, const QString& version) {
    QByteArray image = ComposeRecord(5, {}, version, {});
    image += ComposeRecord(1000, {}, u"n"_s, u"int"_s);
    image += ComposeRecord(0, u"Berta"_s, u"name"_s, u"string8"_s);
    image += ComposeRecord(5000, {}, u"soll"_s, u"int"_s);
    image += ComposeRecord(1, {}, u"fremd"_s, u"int"_s);
    files.files[path] = {image, {}};
  }
  void Compare(int position) {
    auto& comparison = Of<QComboBox>(u"comparison"_s);
    comparison.setCurrentIndex(position);
    Q_EMIT comparison.activated(position);
  }
  void CompareWithFile(const QString& version = u"AB1-123.4"_s) {
    AddFile(u"/werte.qpf"_s, version);
    dialogs.answers.push_back(u"/werte.qpf"_s);
    Compare(2);
  }
};

// --- the window ---

TEST_F(ParameterListTest, ShowsAllParameters) {
  StartWithList();
  EXPECT_EQ(List().windowTitle(), u"Parameterliste"_s);
  EXPECT_EQ(List().objectName(), u"ParameterList"_s);
  EXPECT_FALSE(List().isModal());
  EXPECT_EQ(Column(ListColumn::Name),
            u"Drehzahl | Druck | Name | Solltemperatur | Zähler | Vorlauf & Rücklauf | Kennwort"_s);
  EXPECT_EQ(Cell(0, ListColumn::Value), u"150.0"_s);
  EXPECT_EQ(Marks(), u"xxxxxxx"_s);
  EXPECT_EQ(CountLine(), u"7 von 7"_s);
  EXPECT_TRUE(View().hasFocus());
}

TEST_F(ParameterListTest, IsMadeWhenItIsFirstOpened) {
  Start();
  EXPECT_EQ(desktop->list, nullptr);
  desktop->module.BusyDepth = 1;
  Action(u"mnuWerkzeugeListe"_s);
  EXPECT_EQ(desktop->list, nullptr) << "while an operation is under way";
  desktop->module.BusyDepth = 0;
  OpenList();
}

TEST_F(ParameterListTest, OpensWithTheCursorInTheSearchField) {
  Start();
  Action(u"mnuWerkzeugeSuchen"_s);
  ASSERT_TRUE(QTest::qWaitForWindowActive(&List()));
  EXPECT_TRUE(Of<QLineEdit>(u"search"_s).hasFocus());
}

TEST_F(ParameterListTest, TakesNoInputWhileTheLineIsBusy) {
  StartWithList();
  ToBusy(desktop->core);
  EXPECT_FALSE(List().isEnabled());
  EXPECT_FALSE(List().close());
  FromBusy(desktop->core);
  EXPECT_TRUE(List().isEnabled());
  EXPECT_TRUE(View().hasFocus()) << "the keyboard returns to where it was";
  EXPECT_TRUE(List().close());
}

TEST_F(ParameterListTest, ClosesWithTheMainWindow) {
  StartWithList();
  desktop->main.close();
  EXPECT_FALSE(List().isVisible());
}

TEST_F(ParameterListTest, ShowsWhatChangedWhileItWasClosed) {
  StartWithList();
  List().close();
  desktop->module.SetNumber(1, 10, ValueSource::Edited);
  Toggle(u"sK 2"_s);
  OpenList();
  EXPECT_EQ(Cell(0, ListColumn::Value), u"1.0"_s);
  EXPECT_EQ(Marks(), u"x-xxxxx"_s);
}

TEST_F(ParameterListTest, FollowsTransfersAndOtherVersions) {
  StartWithList();
  far->memory.SetWord(0x1F00, 777);
  Click(desktop->main, u"CommandEmpfangen"_s);
  Click(desktop->reportDialog, u"OKButton"_s);
  EXPECT_EQ(Cell(0, ListColumn::Value), u"77.7"_s);
  desktop->guard([this] { desktop->module.VersionList.Select(1); });
  EXPECT_EQ(Model().rowCount(), 8);
  EXPECT_EQ(Cell(7, ListColumn::Name), u"Neu"_s);
}

TEST_F(ParameterListTest, KeepsPlaceAndHighlightThroughChanges) {
  StartWithList();
  GoToCell(4, ListColumn::Name);
  Toggle(u"sK 2"_s);
  desktop->guard([this] { desktop->module.SetNumber(5, 1, ValueSource::Edited); });
  EXPECT_EQ(View().currentIndex(), At(4, ListColumn::Name));
  EXPECT_EQ(View().selectionModel()->selectedRows().size(), 1);
}

TEST_F(ParameterListTest, GreysAndNamesWhatThePlantTypeHides) {
  StartWithList();
  desktop->guard([this] { desktop->module.PlantTypeList.Select(1); });
  EXPECT_EQ(Model().rowCount(), 7);
  EXPECT_EQ(Cell(4, ListColumn::State), u"ausgeblendet"_s);
  EXPECT_EQ(Cell(0, ListColumn::State), QString());
}

TEST_F(ParameterListTest, NumbersStandAtTheRightAndTextsAtTheLeft) {
  StartWithList();
  const auto right = [this](int row, ListColumn column) {
    return (At(row, column).data(Qt::TextAlignmentRole).toInt() & Qt::AlignRight) != 0;
  };
  EXPECT_TRUE(right(0, ListColumn::Value));
  EXPECT_FALSE(right(2, ListColumn::Value));
  EXPECT_TRUE(right(2, ListColumn::Number));
  EXPECT_FALSE(right(0, ListColumn::Name));
}

TEST_F(ParameterListTest, EveryControlHasAName) {
  StartWithList();
  for (const QWidget* widget : List().findChildren<QWidget*>()) {
    if (!widget->isVisible() || widget->focusPolicy() == Qt::NoFocus) continue;
    EXPECT_FALSE(widget->objectName().isEmpty()) << widget->metaObject()->className();
    const auto* button = qobject_cast<const QAbstractButton*>(widget);
    EXPECT_TRUE((button != nullptr && !button->text().isEmpty()) || !widget->accessibleName().isEmpty())
        << widget->objectName().toStdString();
  }
}

TEST_F(ParameterListTest, TheTabKeyFollowsTheEye) {
  StartWithList();
  QStringList order;
  Of<QLineEdit>(u"search"_s).setFocus();
  for (int i = 0; i < 15; ++i) {
    const QWidget* focus = List().focusWidget();
    if (order.contains(focus->objectName())) break;
    order.append(focus->objectName());
    QTest::keyClick(List().focusWidget(), Qt::Key_Tab);
  }
  EXPECT_EQ(order.join(u' '),
            u"search comparison filterChecked filterDifferent filterNonStandard filterChanged filterOutside "
            "parameters markShown markOnlyShown markNone selections columns export"_s);
}

TEST_F(ParameterListTest, F1OpensItsPage) {
  StartWithList();
  Press(Qt::Key_F1);
  EXPECT_EQ(help.pages, QStringList{u"parameterliste"_s});
}

// --- searching ---

TEST_F(ParameterListTest, SearchingNarrowsWordByWord) {
  StartWithList();
  Search(u"heiz"_s);
  EXPECT_EQ(Numbers(), u"4 | 5 | 6"_s);
  Search(u"heiz zaehl"_s);
  EXPECT_EQ(Numbers(), u"5"_s);
  EXPECT_EQ(CountLine(), u"1 von 7"_s);
  Search(u"MOTORS"_s);
  EXPECT_EQ(Numbers(), u"1"_s);
  Search(u"1f24"_s);
  EXPECT_EQ(Numbers(), u"6"_s);
  Search(u"gibtesnicht"_s);
  EXPECT_EQ(Numbers(), QString());
  EXPECT_EQ(CountLine(), u"0 von 7"_s);
}

TEST_F(ParameterListTest, EscClearsTheSearchFromEverywhere) {
  StartWithList();
  for (const QString& from : {u"search"_s, u"parameters"_s, u"comparison"_s}) {
    Search(u"heiz"_s);
    auto& widget = Of<QWidget>(from);
    widget.setFocus();
    QTest::keyClick(&widget, Qt::Key_Escape);
    EXPECT_EQ(Model().rowCount(), 7) << from.toStdString();
    EXPECT_TRUE(List().isVisible());
  }
}

TEST_F(ParameterListTest, EnterGoesFromHitToHitAndShowsThemInTheTree) {
  StartWithList();
  Search(u"heiz"_s);
  auto& search = Of<QLineEdit>(u"search"_s);
  for (const QString& hit : {u"sK 4"_s, u"sK 5"_s, u"sK 6"_s, u"sK 4"_s}) {
    QTest::keyClick(&search, Qt::Key_Return);
    EXPECT_EQ(TreeWidget().currentIndex(), static_cast<platform::QtTreeView&>(Tree()).Index(Node(hit)))
        << hit.toStdString();
    EXPECT_TRUE(search.hasFocus());
  }
  EXPECT_EQ(View().currentIndex().row(), 0);
  EXPECT_TRUE(Tree().Expanded(Node(u"K 2"_s)));
  EXPECT_NE(desktop->module.NodeState[2], kFalse);
  QTest::keyClick(&search, Qt::Key_Return, Qt::ShiftModifier);
  EXPECT_EQ(View().currentIndex().row(), 2);
  search.insert(u" z"_s);
  QTest::keyClick(&search, Qt::Key_Return);
  EXPECT_EQ(View().currentIndex().row(), 0);
}

TEST_F(ParameterListTest, AHitThatTheTreeDoesNotShowMovesNothingThere) {
  StartWithList();
  desktop->guard([this] { desktop->module.PlantTypeList.Select(1); });
  GoTo(u"sK 1"_s);
  Search(u"Zähler"_s);
  QTest::keyClick(&Of<QLineEdit>(u"search"_s), Qt::Key_Return);
  EXPECT_EQ(View().currentIndex().row(), 0);
  EXPECT_EQ(TreeWidget().currentIndex(), static_cast<platform::QtTreeView&>(Tree()).Index(Node(u"sK 1"_s)));
}

TEST_F(ParameterListTest, DownLeavesTheSearchFieldForTheTable) {
  StartWithList();
  Search(u"heiz"_s);
  QTest::keyClick(&Of<QLineEdit>(u"search"_s), Qt::Key_Down);
  EXPECT_TRUE(View().hasFocus());
}

// --- filters ---

TEST_F(ParameterListTest, FiltersSayHowManyAndCombine) {
  StartWithList();
  Toggle(u"sK 2"_s);
  desktop->guard([this] {
    desktop->module.SetNumber(1, 10, ValueSource::Edited);
    desktop->module.SetNumber(2, 999999, ValueSource::Edited);
  });
  EXPECT_EQ(Caption(u"filterChecked"_s), u"&angekreuzt (6)"_s);
  EXPECT_EQ(Caption(u"filterDifferent"_s), u"v&erschieden (0)"_s);
  EXPECT_EQ(Caption(u"filterNonStandard"_s), u"nicht Stan&dard (2)"_s);
  EXPECT_EQ(Caption(u"filterOutside"_s), u"a&ußerhalb (1)"_s);
  EXPECT_EQ(Caption(u"filterChanged"_s), u"&geändert (2)"_s);
  EXPECT_EQ(CountLine(), u"7 von 7 · 1 außerhalb"_s);
  Filter(u"filterNonStandard"_s);
  EXPECT_EQ(Caption(u"filterNonStandard"_s), u"✓ nicht Stan&dard (2)"_s);
  EXPECT_EQ(Numbers(), u"1 | 2"_s);
  Filter(u"filterChecked"_s);
  EXPECT_EQ(Numbers(), u"1"_s);
  EXPECT_EQ(Caption(u"filterOutside"_s), u"a&ußerhalb (1)"_s) << "of all";
  EXPECT_EQ(CountLine(), u"1 von 7"_s) << "of those shown";
  Filter(u"filterNonStandard"_s);
  Filter(u"filterChecked"_s);
  EXPECT_EQ(Model().rowCount(), 7);
}

TEST_F(ParameterListTest, ChangedMeansSinceItWasReceived) {
  StartWithList();
  Filter(u"filterChanged"_s);
  EXPECT_EQ(Numbers(), QString());
  desktop->guard([this] { desktop->module.SetNumber(1, 10, ValueSource::Edited); });
  EXPECT_EQ(Numbers(), u"1"_s);
  Click(desktop->main, u"CommandEmpfangen"_s);
  EXPECT_EQ(Numbers(), QString());
}

TEST_F(ParameterListTest, OpensWithThoseOutsideAlone) {
  StartWithList();
  Search(u"heiz"_s);
  Filter(u"filterChecked"_s);
  desktop->guard([this] { desktop->module.SetNumber(2, 999999, ValueSource::Edited); });
  List().OpenOutside();
  EXPECT_EQ(Numbers(), u"2"_s);
  EXPECT_TRUE(Of<QPushButton>(u"filterOutside"_s).isChecked());
  EXPECT_FALSE(Of<QPushButton>(u"filterChecked"_s).isChecked());
}

// --- marks ---

TEST_F(ParameterListTest, MarksAreThoseOfTheTree) {
  StartWithList();
  Toggle(u"sK 2"_s);
  EXPECT_EQ(Marks(), u"x-xxxxx"_s);
  GoToCell(0);
  Press(Qt::Key_Space);
  EXPECT_EQ(Marks(), u"--xxxxx"_s);
  EXPECT_FALSE(Tree().Checked(Node(u"sK 1"_s)));
  EXPECT_EQ(desktop->module.ParNode[1], kFalse);
}

TEST_F(ParameterListTest, AClickOnTheBoxChangesOneMark) {
  StartWithList();
  View().selectAll();
  const QRect cell = View().visualRect(At(3, ListColumn::Mark));
  QTest::mouseClick(View().viewport(), Qt::LeftButton, {}, QPoint(cell.left() + 8, cell.center().y()));
  EXPECT_EQ(Marks(), u"xxx-xxx"_s);
}

TEST_F(ParameterListTest, SpaceTurnsTheMarksOfTheHighlightedRows) {
  StartWithList();
  GoToCell(1);
  Press(Qt::Key_Down, Qt::ShiftModifier);
  Press(Qt::Key_Space);
  EXPECT_EQ(Marks(), u"x--xxxx"_s);
  Press(Qt::Key_Down, Qt::ShiftModifier);
  Press(Qt::Key_Space);
  EXPECT_EQ(Marks(), u"xxxxxxx"_s) << "not all are marked: all are";
}

TEST_F(ParameterListTest, ButtonsMarkWhatIsShown) {
  StartWithList();
  Click(List(), u"markNone"_s);
  EXPECT_EQ(Marks(), u"-------"_s);
  Search(u"heiz"_s);
  Click(List(), u"markShown"_s);
  Search(u"kenn"_s);
  Click(List(), u"markShown"_s);
  Search(u""_s);
  EXPECT_EQ(Marks(), u"---xxxx"_s);
  Search(u"antrieb"_s);
  Click(List(), u"markOnlyShown"_s);
  Search(u""_s);
  EXPECT_EQ(Marks(), u"xxx----"_s);
  EXPECT_TRUE(Tree().Checked(Node(u"sK 3"_s)));
  EXPECT_FALSE(Tree().Checked(Node(u"sK 4"_s)));
}

// --- selections ---

class SelectionMenuTest : public ParameterListTest {
 protected:
  QMenu& OpenMenu() {
    auto& menu = Of<QMenu>(u"selectionMenu"_s);
    Q_EMIT menu.aboutToShow();
    return menu;
  }
  QAction& Item(const QString& name) {
    auto* action = OpenMenu().findChild<QAction*>(name);
    if (action == nullptr) throw std::runtime_error("no item " + name.toStdString());
    return *action;
  }
  [[nodiscard]] QDialog& NameDialog() { return Of<QDialog>(u"SelectionName"_s); }
  void Save(const QString& name) {
    Item(u"saveSelection"_s).trigger();
    ASSERT_TRUE(NameDialog().isVisible());
    TypeInto(In<QLineEdit>(NameDialog(), u"selectionName"_s), name);
    QTest::mouseClick(&In<QPushButton>(NameDialog(), u"OKButton"_s), Qt::LeftButton);
  }
};

TEST_F(SelectionMenuTest, SavesAndRecallsTheMarks) {
  StartWithList();
  Search(u"heiz"_s);
  Click(List(), u"markOnlyShown"_s);
  Search(u""_s);
  Save(u"Meine & deine"_s);
  EXPECT_EQ(Of<QLabel>(u"note"_s).text(), u"Auswahl „Meine & deine“ gesichert"_s);
  Click(List(), u"markNone"_s);
  EXPECT_EQ(Item(u"recall:Meine & deine"_s).text(), u"Meine && deine"_s);
  Item(u"recall:Meine & deine"_s).trigger();
  EXPECT_EQ(Marks(), u"---xxx-"_s);
  EXPECT_TRUE(Tree().Checked(Node(u"sK 4"_s)));
  EXPECT_FALSE(Tree().Checked(Node(u"sK 1"_s)));
  EXPECT_EQ(Of<QLabel>(u"note"_s).text(), u"3 Parameter angekreuzt"_s);
}

TEST_F(SelectionMenuTest, SaysThatItReplaces) {
  StartWithList();
  Save(u"Eins"_s);
  Item(u"saveSelection"_s).trigger();
  auto& save = In<QPushButton>(NameDialog(), u"OKButton"_s);
  auto& name = In<QLineEdit>(NameDialog(), u"selectionName"_s);
  EXPECT_FALSE(save.isEnabled()) << "without a name";
  TypeInto(name, u"Ein"_s);
  EXPECT_EQ(save.text(), u"Sichern"_s);
  TypeInto(name, u"s"_s);
  EXPECT_EQ(save.text(), u"Ersetzen"_s);
  QTest::keyClick(&name, Qt::Key_Escape);
  EXPECT_FALSE(NameDialog().isVisible());
}

// Its window stays enabled, as it is none of the list's.
TEST_F(SelectionMenuTest, NothingIsSavedDeletedOrRecalledWhileAnOperationIsUnderWay) {
  StartWithList();
  Save(u"Eins"_s);
  Click(List(), u"markNone"_s);
  Item(u"saveSelection"_s).trigger();
  TypeInto(In<QLineEdit>(NameDialog(), u"selectionName"_s), u"Zwei"_s);
  desktop->module.BusyDepth = 1;
  QTest::mouseClick(&In<QPushButton>(NameDialog(), u"OKButton"_s), Qt::LeftButton);
  EXPECT_TRUE(NameDialog().isVisible()) << "what was typed is kept";
  Item(u"delete:Eins"_s).trigger();
  Item(u"recall:Eins"_s).trigger();
  desktop->module.BusyDepth = 0;
  EXPECT_EQ(OpenMenu().findChild<QAction*>(u"recall:Zwei"_s), nullptr);
  EXPECT_EQ(Marks(), u"-------"_s);
  QTest::mouseClick(&In<QPushButton>(NameDialog(), u"OKButton"_s), Qt::LeftButton);
  EXPECT_NE(OpenMenu().findChild<QAction*>(u"recall:Zwei"_s), nullptr);
}

TEST_F(SelectionMenuTest, DeletesOnlyWhatIsConfirmed) {
  StartWithList();
  Save(u"Eins"_s);
  box.answers = {false, true};
  Item(u"delete:Eins"_s).trigger();
  Item(u"delete:Eins"_s).trigger();
  EXPECT_EQ(OpenMenu().findChild<QAction*>(u"delete:Eins"_s), nullptr);
}

// --- comparing ---

TEST_F(ParameterListTest, ComparesWithTheStandardValuesAsTheyAre) {
  StartWithList();
  desktop->guard([this] { desktop->module.SetNumber(1, 10, ValueSource::Edited); });
  Compare(1);
  EXPECT_EQ(Cell(0, ListColumn::Comparison), u"150.0"_s);
  EXPECT_EQ(Cell(0, ListColumn::Difference), u"+149.0"_s);
  EXPECT_EQ(Cell(0, ListColumn::State), u"verschieden, nicht Standard, geändert"_s);
  EXPECT_EQ(Cell(1, ListColumn::State), u"gleich"_s);
  EXPECT_EQ(CountLine(), u"7 von 7 · 1 verschieden"_s);
  Filter(u"filterDifferent"_s);
  EXPECT_EQ(Numbers(), u"1"_s);
  Compare(0);
  EXPECT_EQ(Numbers(), QString());
}

TEST_F(ParameterListTest, ComparesWithAFile) {
  StartWithList();
  desktop->module.Userpath = u"/werte"_s;
  CompareWithFile();
  ASSERT_EQ(dialogs.shown.size(), 1U);
  EXPECT_EQ(dialogs.shown[0].folder, u"/werte"_s);
  EXPECT_EQ(dialogs.shown[0].filter, u"MERVA Parameterfile (*.qpf)|*.qpf|Alle Dateien (*.*)|*.*"_s);
  EXPECT_EQ(Of<QComboBox>(u"comparison"_s).currentText(), u"Datei: werte.qpf"_s);
  EXPECT_EQ(Column(ListColumn::Comparison), u"100.0 |  | Berta | 500.0 |  |  | "_s);
  EXPECT_EQ(Cell(1, ListColumn::State), u"nur links"_s);
  EXPECT_EQ(Of<QLabel>(u"account"_s).text(), QString());
  EXPECT_EQ(desktop->module.Par[1].Wert, 1500) << "the table stays";
  EXPECT_EQ(desktop->module.Dateiname, QString());
}

TEST_F(ParameterListTest, SaysHowAFileOfAnotherVersionFits) {
  StartWithList();
  CompareWithFile(u"AB1-012.0"_s);
  EXPECT_EQ(Of<QLabel>(u"account"_s).toolTip(),
            u"Datei von AB1-012.0: 3 passen · 1 nur in der Datei · 4 nur hier"_s);
}

TEST_F(ParameterListTest, FilesThatAreNoneLeaveTheComparisonAsItIs) {
  StartWithList();
  Compare(1);
  files.files[u"/leer.qpf"_s] = {"kurz", {}};
  AddFile(u"/fremd.qpf"_s, u"FRE-999.9"_s);
  files.AddFailure(u"/riesig.qpf"_s, u"Die Datei ist zu groß."_s);
  dialogs.answers = {u""_s, u"/leer.qpf"_s, u"/fehlt.qpf"_s, u"/fremd.qpf"_s, u"/riesig.qpf"_s};
  for (int i = 0; i < 5; ++i)
    Compare(2);
  const auto boxes = box.Take();
  ASSERT_EQ(boxes.size(), 4U);
  EXPECT_EQ(boxes[3].text, u"Fehler beim lesen von\r\n/riesig.qpf\r\nDie Datei ist zu groß."_s);
  EXPECT_EQ(desktop->module.Par[1].Wert, 1500);
  EXPECT_EQ(desktop->undo.UndoName(), QString());
  EXPECT_EQ(boxes[0].text, u"Fehler beim lesen von\r\n/leer.qpf\r\nDie Datei ist keine Wertedatei."_s);
  EXPECT_TRUE(boxes[1].text.startsWith(u"Fehler beim lesen von\r\n/fehlt.qpf\r\n"_s));
  EXPECT_EQ(boxes[2].text, u"Fehler beim lesen von\r\n/fremd.qpf\r\nUnbekannte ReglerVersion: FRE-999.9"_s);
  EXPECT_EQ(Of<QComboBox>(u"comparison"_s).currentText(), u"Standardwerte"_s);
  EXPECT_EQ(Cell(0, ListColumn::Comparison), u"150.0"_s);
}

TEST_F(ParameterListTest, AnotherVersionWithTheSameDefinitionsEndsTheComparisonWithTheController) {
  files.files[kFolder + u"/ZWEI.TXT"_s] = files.files[kFolder + u"/EINS.TXT"_s];
  StartWithList();
  Compare(3);
  ASSERT_EQ(Of<QComboBox>(u"comparison"_s).currentText(), u"Regler"_s);
  desktop->Run([this] { desktop->module.VersionList.Select(1); });
  EXPECT_EQ(Of<QComboBox>(u"comparison"_s).currentText(), u"nichts"_s);
  EXPECT_EQ(Cell(0, ListColumn::Comparison), QString());
}

TEST_F(ParameterListTest, ComparesWithTheControllerWithoutTouchingTheTable) {
  StartWithList();
  Toggle(u"sK 2"_s);
  far->memory.SetWord(0x1F00, 777);
  Compare(3);
  EXPECT_EQ(Cell(0, ListColumn::Comparison), u"77.7"_s);
  EXPECT_EQ(Cell(1, ListColumn::Comparison), QString()) << "not asked for";
  EXPECT_EQ(Cell(1, ListColumn::State), QString());
  EXPECT_EQ(Cell(3, ListColumn::State), u"gleich"_s);
  EXPECT_EQ(Of<QComboBox>(u"comparison"_s).currentText(), u"Regler"_s);
  EXPECT_EQ(desktop->module.Par[1].Wert, 1500);
  EXPECT_FALSE(desktop->progress->isVisible());
  ExpectReady();
}

TEST_F(ParameterListTest, WhatTheControllerDoesNotAnswerIsNotRead) {
  StartWithList();
  Toggle(u"sK 7"_s);
  // After version, plant number and the first parameter: the attempts for the second one.
  const int before = far->faults.Exchanges();
  for (int request = 4; request <= 6; ++request)
    far->faults.Plan(before + request, {});
  Compare(3);
  EXPECT_EQ(Cell(0, ListColumn::State), u"gleich"_s);
  EXPECT_EQ(Cell(1, ListColumn::State), u"nicht gelesen"_s);
  EXPECT_EQ(Cell(1, ListColumn::Comparison), QString());
  EXPECT_EQ(Cell(3, ListColumn::State), u"gleich"_s);
  Filter(u"filterDifferent"_s);
  EXPECT_EQ(Numbers(), u"2"_s);
}

TEST_F(ParameterListTest, ReadingTheControllerShowsItsProgressAndCanBeAborted) {
  StartWithList();
  bool seen = false;
  events.onPending = [&] {
    if (!desktop->progress->isVisible()) return;
    seen = true;
    EXPECT_EQ(desktop->progress->windowTitle(), u"Regler lesen"_s);
    EXPECT_TRUE(desktop->progress->isEnabled());
    EXPECT_FALSE(List().isEnabled());
    Click(*desktop->progress, u"Command_Abbruch"_s);
    EXPECT_FALSE(In<QPushButton>(*desktop->progress, u"Command_Abbruch"_s).isEnabled());
  };
  Compare(3);
  events.onPending = nullptr;
  EXPECT_TRUE(seen);
  EXPECT_EQ(Of<QLabel>(u"note"_s).text(), u"Abgebrochen; der Rest wurde nicht gelesen"_s);
  EXPECT_EQ(Cell(6, ListColumn::Comparison), QString());
  EXPECT_FALSE(desktop->progress->isVisible());
  ExpectReady();
}

TEST_F(ParameterListTest, WhatIsNotReadKeepsNoValueOfAnEarlierReading) {
  StartWithList();
  Compare(3);
  EXPECT_EQ(Cell(1, ListColumn::Comparison), u"10.0"_s);
  const int before = far->faults.Exchanges();
  for (int request = 4; request <= 6; ++request)
    far->faults.Plan(before + request, {});
  Compare(3);
  EXPECT_EQ(Cell(1, ListColumn::State), u"nicht gelesen"_s);
  EXPECT_EQ(Cell(1, ListColumn::Comparison), QString());
  EXPECT_EQ(Cell(0, ListColumn::Comparison), u"150.0"_s);
}

TEST_F(ParameterListTest, TheFrameOfTheProgressAbortsAndLeavesItOpen) {
  StartWithList();
  // It has no length, which is known without asking.
  Toggle(u"sK 7"_s);
  bool closed = false;
  events.onPending = [&] {
    if (closed || !desktop->progress->isVisible()) return;
    closed = true;
    EXPECT_FALSE(desktop->progress->close());
    EXPECT_TRUE(desktop->progress->isVisible());
    EXPECT_NE(desktop->module.Abbruch, kFalse);
  };
  Compare(3);
  events.onPending = nullptr;
  EXPECT_TRUE(closed);
  EXPECT_FALSE(desktop->progress->isVisible());
  EXPECT_EQ(Column(ListColumn::State), u" |  |  |  |  |  | "_s) << "nothing was read";
  ExpectReady();
}

// Nobody would answer a box.
TEST_F(ParameterListTest, TheEndOfTheSessionEndsTheComparisonWithoutABox) {
  StartWithList();
  far->faults.Add({});
  bool ended = false;
  events.onPending = [&] {
    if (!std::exchange(ended, true)) desktop->main.EndSession();
  };
  Compare(3);
  events.onPending = nullptr;
  EXPECT_TRUE(ended);
  QCoreApplication::processEvents();
  EXPECT_FALSE(desktop->main.isVisible());
  EXPECT_FALSE(List().isVisible());
}

// Names of one version beside values of another would be wrong for as long as the transfer takes.
TEST_F(ParameterListTest, StaysAsItIsWhileATransferReadsOtherDefinitions) {
  files.AddText(kFolder + u"/ZWEI.TXT"_s,
                u"Kopf\r\nGruppe  Eines  0  100  70  s  1  0  int  1F60  e  A B  -\r\n"_s);
  Start();
  desktop->guard([this] { desktop->module.VersionList.Select(1); });
  OpenList();
  int looked = 0;
  events.onPending = [&] {
    if (desktop->module.VersionList.Position() != 0) return;
    ++looked;
    EXPECT_EQ(Column(ListColumn::Name), u"Eines"_s);
    EXPECT_EQ(Column(ListColumn::Value), u"7.0"_s);
  };
  Click(desktop->main, u"CommandEmpfangen"_s);
  events.onPending = nullptr;
  EXPECT_GT(looked, 0);
  EXPECT_EQ(Cell(0, ListColumn::Name), u"Drehzahl"_s);
}

TEST_F(ParameterListTest, EveryActionIsRefusedWhileAnOperationIsUnderWay) {
  StartWithList();
  Compare(1);
  desktop->guard([this] { desktop->module.SetNumber(1, 10, ValueSource::Edited); });
  const QString comparison = Column(ListColumn::Comparison);
  const int openings = line->openings;
  desktop->module.BusyDepth = 1;
  for (const QString& button : {u"markNone"_s, u"markOnlyShown"_s, u"takeOver"_s})
    Click(List(), button);
  GoToCell(0);
  Press(Qt::Key_Space);
  Press(Qt::Key_Return, Qt::ControlModifier);
  for (int position = 0; position < 4; ++position)
    Compare(position);
  for (const QString& item : {u"exportCsv"_s, u"exportHtml"_s})
    Of<QMenu>(u"exportMenu"_s).findChild<QAction*>(item)->trigger();
  Action(u"mnuWerkzeugeRueckgaengig"_s);
  EXPECT_EQ(Marks(), u"xxxxxxx"_s);
  EXPECT_EQ(Column(ListColumn::Comparison), comparison);
  EXPECT_EQ(Of<QComboBox>(u"comparison"_s).currentText(), u"Standardwerte"_s);
  EXPECT_EQ(desktop->module.Par[1].Wert, 10);
  EXPECT_FALSE(desktop->editors.number.isVisible());
  EXPECT_EQ(dialogs.shown.size(), 0U);
  EXPECT_EQ(line->openings, openings);
  desktop->module.BusyDepth = 0;
}

TEST_F(ParameterListTest, ASilentControllerIsSaidInABox) {
  StartWithList();
  far->faults.Add({});
  Compare(3);
  EXPECT_EQ(box.Take().size(), 1U);
  EXPECT_EQ(Of<QComboBox>(u"comparison"_s).currentText(), u"nichts"_s);
}

TEST_F(ParameterListTest, OtherDefinitionsEndTheComparison) {
  StartWithList();
  CompareWithFile();
  desktop->guard([this] { desktop->module.VersionList.Select(1); });
  EXPECT_EQ(Of<QComboBox>(u"comparison"_s).currentText(), u"nichts"_s);
  EXPECT_EQ(Cell(0, ListColumn::Comparison), QString());
}

TEST_F(ParameterListTest, ThePlantTypeLeavesTheComparisonAsItIs) {
  StartWithList();
  CompareWithFile();
  desktop->guard([this] { desktop->module.PlantTypeList.Select(1); });
  EXPECT_EQ(Cell(0, ListColumn::Comparison), u"100.0"_s);
}

// On its way through the list nothing may be read or asked.
TEST_F(ParameterListTest, KeysChooseAComparisonOnlyInTheOpenList) {
  StartWithList();
  auto& comparison = Of<QComboBox>(u"comparison"_s);
  comparison.setFocus();
  for (const Qt::Key key : {Qt::Key_Down, Qt::Key_End, Qt::Key_R}) {
    QTest::keyClick(&comparison, key);
    EXPECT_EQ(comparison.currentIndex(), 0);
    comparison.hidePopup();
  }
}

TEST_F(ParameterListTest, TakesOverAfterAsking) {
  StartWithList();
  auto& takeOver = Of<QPushButton>(u"takeOver"_s);
  EXPECT_FALSE(takeOver.isEnabled());
  CompareWithFile();
  EXPECT_TRUE(takeOver.isEnabled());
  EXPECT_EQ(takeOver.text(), u"Werte über&nehmen (3)…"_s);
  int asked = 0;
  events.onWait = [&] {
    EXPECT_FALSE(List().isEnabled());
    const bool first = asked++ == 0;
    EXPECT_EQ(In<QLabel>(desktop->auswahl, u"Label1"_s).text(),
              first ? u"3 Werte übernehmen?"_s
                    : u"1 Wert davon liegt außerhalb seiner Grenzen.\nAuch diesen übernehmen?"_s);
    Click(desktop->auswahl, first ? u"Button1"_s : u"Button2"_s);
  };
  Click(List(), u"takeOver"_s);
  EXPECT_EQ(asked, 2);
  EXPECT_EQ(desktop->module.Par[1].Wert, 1000);
  EXPECT_EQ(desktop->module.Par[3].WertText, u"Berta"_s);
  EXPECT_EQ(desktop->module.Par[4].Wert, 200);
  EXPECT_EQ(Cell(0, ListColumn::State), u"gleich, nicht Standard, geändert"_s);
  EXPECT_EQ(takeOver.text(), u"Werte über&nehmen (1)…"_s);
  ExpectReady();
}

TEST_F(ParameterListTest, TakesOverOnlyWhatIsShownAndChecked) {
  StartWithList();
  CompareWithFile();
  Search(u"drehzahl"_s);
  EXPECT_EQ(Caption(u"takeOver"_s), u"Werte über&nehmen (1)…"_s);
  Toggle(u"sK 1"_s);
  EXPECT_EQ(Caption(u"takeOver"_s), u"Werte über&nehmen…"_s);
  EXPECT_FALSE(Of<QPushButton>(u"takeOver"_s).isEnabled());
}

// --- editing ---

TEST_F(ParameterListTest, TypingEditsTheValueAndEnterGoesDown) {
  StartWithList();
  GoToCell(0, ListColumn::Name);
  TypeInto(View(), u"1"_s);
  ASSERT_TRUE(Edits());
  EXPECT_EQ(Editor()->text(), u"1"_s);
  EXPECT_EQ(Editor()->accessibleName(), u"Wert von Drehzahl"_s);
  Type(u"2,5"_s);
  EditorKey(Qt::Key_Return);
  EXPECT_FALSE(Edits());
  EXPECT_EQ(desktop->module.Par[1].Wert, 125);
  EXPECT_EQ(Cell(0, ListColumn::Value), u"12.5"_s);
  EXPECT_TRUE(Tree().Text(Node(u"sK 1"_s)).contains(u"12.5"_s));
  EXPECT_EQ(View().currentIndex(), At(1, ListColumn::Value));
  EXPECT_TRUE(View().hasFocus());
}

TEST_F(ParameterListTest, F2EditsWhatIsThere) {
  StartWithList();
  GoToCell(0, ListColumn::Group);
  Press(Qt::Key_F2);
  ASSERT_TRUE(Edits());
  EXPECT_EQ(Editor()->text(), u"150.0"_s);
  EXPECT_EQ(Editor()->selectedText(), u"150.0"_s);
  EditorKey(Qt::Key_Return);
  EXPECT_EQ(desktop->module.Par[1].Wert, 1500);
  EXPECT_EQ(View().currentIndex().row(), 1);
}

TEST_F(ParameterListTest, EscDropsWhatWasTyped) {
  StartWithList();
  GoToCell(0);
  TypeInto(View(), u"7"_s);
  EditorKey(Qt::Key_Escape);
  EXPECT_FALSE(Edits());
  EXPECT_EQ(desktop->module.Par[1].Wert, 1500);
  EXPECT_EQ(View().currentIndex().row(), 0);
}

TEST_F(ParameterListTest, ArrowsAndTabStoreAndGoOn) {
  StartWithList();
  GoToCell(1);
  struct {
    Qt::Key key;
    int row;
    ListColumn column;
  } const keys[] = {{Qt::Key_Down, 2, ListColumn::Value},
                    {Qt::Key_Up, 0, ListColumn::Value},
                    {Qt::Key_Tab, 1, ListColumn::Comparison},
                    {Qt::Key_Backtab, 1, ListColumn::Name}};
  qint32 number = 100;
  for (const auto& [key, row, column] : keys) {
    GoToCell(1);
    number += 100;
    TypeInto(View(), QString::number(number / 100));
    EditorKey(key);
    EXPECT_EQ(desktop->module.Par[2].Wert, number);
    EXPECT_EQ(View().currentIndex(), At(row, column)) << key;
  }
}

TEST_F(ParameterListTest, RefusesWhatCannotBeAndSaysWhy) {
  StartWithList();
  GoToCell(3);
  TypeInto(View(), u"9"_s);
  Type(u"9"_s);
  EXPECT_EQ(Reason(), QString());
  Type(u"9"_s);
  EXPECT_EQ(Editor()->text(), u"99"_s);
  EXPECT_EQ(Reason(), u"größer als 100.0"_s);
  EXPECT_EQ(Editor()->accessibleDescription(), u"größer als 100.0"_s);
  Type(u"x"_s);
  EXPECT_EQ(Reason(), u"keine Zahl"_s);
  Type(u",1"_s);
  EXPECT_EQ(Reason(), QString());
  Type(u"2"_s);
  EXPECT_EQ(Reason(), u"höchstens 1 Nachkommastelle"_s);
  EXPECT_EQ(Editor()->text(), u"99,1"_s);
  EditorKey(Qt::Key_Return);
  EXPECT_EQ(desktop->module.Par[4].Wert, 991);
}

TEST_F(ParameterListTest, ARefusedFirstKeyLeavesTheFieldAsItWas) {
  StartWithList();
  GoToCell(3);
  TypeInto(View(), u"x"_s);
  ASSERT_TRUE(Edits());
  EXPECT_EQ(Reason(), u"keine Zahl"_s);
  EXPECT_EQ(Editor()->text(), u"20.0"_s);
  EXPECT_EQ(Editor()->selectedText(), u"20.0"_s);
  Type(u"5"_s);
  EXPECT_EQ(Editor()->text(), u"5"_s);
}

TEST_F(ParameterListTest, WhatIsNotCompleteIsNotLeftByEnter) {
  StartWithList();
  desktop->Run([this] { desktop->module.Par[4].Min = 50; });
  GoToCell(3);
  TypeInto(View(), u"4"_s);
  EXPECT_EQ(Reason(), u"kleiner als 5.0"_s);
  EditorKey(Qt::Key_Return);
  ASSERT_TRUE(Edits());
  EXPECT_EQ(Reason(), u"kleiner als 5.0"_s);
  QTest::keyClick(Editor(), Qt::Key_Backspace);
  EditorKey(Qt::Key_Down);
  EXPECT_EQ(Reason(), u"keine Zahl"_s);
  EditorKey(Qt::Key_Escape);
  EXPECT_EQ(Reason(), QString());
  EXPECT_EQ(desktop->module.Par[4].Wert, 200);
}

// Else a value outside its limits could not be corrected but by typing it anew.
TEST_F(ParameterListTest, DeletingIsAlwaysPossible) {
  StartWithList();
  desktop->guard([this] { desktop->module.SetNumber(4, 12345, ValueSource::Edited); });
  GoToCell(3);
  Press(Qt::Key_F2);
  QTest::keyClick(Editor(), Qt::Key_End);
  QTest::keyClick(Editor(), Qt::Key_Backspace);
  EXPECT_EQ(Editor()->text(), u"1234."_s);
  EXPECT_EQ(Reason(), u"größer als 100.0"_s);
  QTest::keyClick(Editor(), Qt::Key_Home);
  QTest::keyClick(Editor(), Qt::Key_Delete);
  QTest::keyClick(Editor(), Qt::Key_Delete);
  EXPECT_EQ(Editor()->text(), u"34."_s);
  EXPECT_EQ(Reason(), QString());
  Type(u"9"_s);
  EXPECT_EQ(Editor()->text(), u"34."_s) << "beyond the limit nothing is added";
  EditorKey(Qt::Key_Return);
  EXPECT_EQ(desktop->module.Par[4].Wert, 340);
}

TEST_F(ParameterListTest, EditsTexts) {
  StartWithList();
  GoToCell(2);
  TypeInto(View(), u"S"_s);
  Type(u"üden 12345"_s);
  EXPECT_EQ(Editor()->text(), u"Süden 12"_s);
  EXPECT_EQ(Reason(), u"höchstens 8 Zeichen"_s);
  EditorKey(Qt::Key_Return);
  EXPECT_EQ(desktop->module.Par[3].WertText, u"Süden 12"_s);
  EXPECT_EQ(View().currentIndex().row(), 3);
  EXPECT_TRUE(View().hasFocus()) << "although the tree was rebuilt meanwhile";
  ExpectReady();
}

TEST_F(ParameterListTest, EditsWhatThePlantTypeHides) {
  StartWithList();
  desktop->guard([this] { desktop->module.PlantTypeList.Select(1); });
  GoToCell(4);
  TypeInto(View(), u"5"_s);
  EditorKey(Qt::Key_Return);
  EXPECT_EQ(desktop->module.Par[5].Wert, 5);
}

TEST_F(ParameterListTest, TypesThatTreeAndTransferTakeForOthersAreNotEdited) {
  StartWithList();
  GoToCell(6);
  TypeInto(View(), u"5"_s);
  EXPECT_FALSE(Edits());
}

TEST_F(ParameterListTest, NothingIsEditedWhileAnOperationIsUnderWay) {
  StartWithList();
  GoToCell(0);
  desktop->module.BusyDepth = 1;
  Press(Qt::Key_F2);
  TypeInto(View(), u"5"_s);
  EXPECT_FALSE(Edits());
  desktop->module.BusyDepth = 0;
}

TEST_F(ParameterListTest, LeavingTheFieldStoresWhatIsComplete) {
  StartWithList();
  GoToCell(0);
  TypeInto(View(), u"5"_s);
  Of<QLineEdit>(u"search"_s).setFocus();
  EXPECT_EQ(desktop->module.Par[1].Wert, 50);
  GoToCell(3);
  View().setFocus();
  TypeInto(View(), u"-"_s);
  Of<QLineEdit>(u"search"_s).setFocus();
  EXPECT_EQ(desktop->module.Par[4].Wert, 200);
}

TEST_F(ParameterListTest, CloseEditorDropsWhatIsBeingTyped) {
  StartWithList();
  GoToCell(0);
  TypeInto(View(), u"5"_s);
  List().CloseEditor();
  EXPECT_FALSE(Edits());
  EXPECT_EQ(desktop->module.Par[1].Wert, 1500);
}

TEST_F(ParameterListTest, ClosingTheProgramLeavesTheFieldAsAnyOtherWindowDoes) {
  StartWithList();
  GoToCell(0);
  TypeInto(View(), u"5"_s);
  EXPECT_TRUE(desktop->main.close());
  EXPECT_FALSE(Edits());
  EXPECT_EQ(desktop->module.Par[1].Wert, 50);
}

TEST_F(ParameterListTest, TheProgramMayEndWithAnOpenField) {
  StartWithList();
  GoToCell(0);
  TypeInto(View(), u"5"_s);
  ASSERT_TRUE(Edits());
  desktop.reset();
}

TEST_F(ParameterListTest, OtherDefinitionsCloseTheField) {
  StartWithList();
  GoToCell(0);
  TypeInto(View(), u"5"_s);
  desktop->guard([this] { desktop->module.VersionList.Select(1); });
  QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
  EXPECT_FALSE(Edits());
  EXPECT_EQ(desktop->module.Par[1].Wert, 1500);
}

// Sorted by value the edited row goes elsewhere; the keyboard goes on with the one that stood below it.
TEST_F(ParameterListTest, EnterGoesToTheRowThatStoodBelow) {
  StartWithList();
  View().sortByColumn(static_cast<int>(ListColumn::Value), Qt::AscendingOrder);
  const QString before = Numbers();
  EXPECT_EQ(before, u"2 | 6 | 5 | 4 | 1 | 7 | 3"_s);
  GoToCell(1);
  TypeInto(View(), u"9"_s);
  Type(u"99"_s);
  EditorKey(Qt::Key_Return);
  EXPECT_EQ(Numbers(), u"2 | 5 | 4 | 1 | 6 | 7 | 3"_s);
  EXPECT_EQ(Cell(View().currentIndex().row(), ListColumn::Number), u"5"_s);
}

TEST_F(ParameterListTest, StepsAreTakenBackFromTheList) {
  StartWithList();
  GoToCell(0);
  TypeInto(View(), u"5"_s);
  EditorKey(Qt::Key_Return);
  EXPECT_EQ(Cell(0, ListColumn::Value), u"5.0"_s);
  EXPECT_TRUE(List().actions().contains(desktop->main.findChild<QAction*>(u"mnuWerkzeugeRueckgaengig"_s)));
  Action(u"mnuWerkzeugeRueckgaengig"_s);
  EXPECT_EQ(Cell(0, ListColumn::Value), u"150.0"_s);
  Action(u"mnuWerkzeugeWiederholen"_s);
  EXPECT_EQ(Cell(0, ListColumn::Value), u"5.0"_s);
}

TEST_F(ParameterListTest, AStepBackClosesTheFieldFirst) {
  StartWithList();
  GoToCell(0);
  TypeInto(View(), u"5"_s);
  EditorKey(Qt::Key_Return);
  TypeInto(View(), u"7"_s);
  ASSERT_TRUE(Edits());
  Action(u"mnuWerkzeugeRueckgaengig"_s);
  EXPECT_FALSE(Edits());
  EXPECT_EQ(desktop->module.Par[1].Wert, 1500);
  EXPECT_EQ(desktop->module.Par[2].Wert, 1000) << "what was being typed is dropped";
}

TEST_F(ParameterListTest, EnterOutsideAFieldGoesDown) {
  StartWithList();
  GoToCell(0);
  Press(Qt::Key_Return);
  EXPECT_EQ(View().currentIndex().row(), 1);
  GoToCell(6);
  Press(Qt::Key_Return);
  EXPECT_EQ(View().currentIndex().row(), 6);
}

TEST_F(ParameterListTest, TheEditorOpensFromTheName) {
  StartWithList();
  const QRect name = View().visualRect(At(0, ListColumn::Name));
  QTest::mouseClick(View().viewport(), Qt::LeftButton, {}, name.center());
  QTest::mouseDClick(View().viewport(), Qt::LeftButton, {}, name.center());
  EXPECT_TRUE(desktop->editors.number.isVisible());
  EXPECT_FALSE(Edits());
  QTest::keyClick(&desktop->editors.number, Qt::Key_Escape);
  GoToCell(2);
  Press(Qt::Key_Return, Qt::ControlModifier);
  EXPECT_TRUE(desktop->editors.text.isVisible());
  QTest::keyClick(&desktop->editors.text, Qt::Key_Escape);
  desktop->guard([this] { desktop->module.PlantTypeList.Select(1); });
  GoToCell(4);
  Press(Qt::Key_Return, Qt::ControlModifier);
  EXPECT_FALSE(desktop->editors.number.isVisible()) << "a hidden one has no node";
}

// --- leaving the program ---

TEST_F(ParameterListTest, CopiesTheHighlightedRows) {
  StartWithList();
  GoToCell(0);
  Press(Qt::Key_Down, Qt::ShiftModifier);
  QTest::keySequence(&View(), QKeySequence::Copy);
  const QStringList lines = QGuiApplication::clipboard()->text().split(u'\n');
  ASSERT_GE(lines.size(), 3);
  EXPECT_EQ(lines[0], u"Kreuz\tNr\tGruppe\tName\tWert\tVergleich\tZustand\tEinheit\tMin\tMax\tStandard"_s);
  EXPECT_EQ(lines[1], u"x\t1\tAntrieb\tDrehzahl\t150,0\t\t\t1/m\t0,0\t3000,0\t150,0"_s);
}

TEST_F(ParameterListTest, ExportsWhatIsShown) {
  StartWithList();
  Search(u"solltemp"_s);
  dialogs.answers = {u"/export"_s};
  Of<QMenu>(u"exportMenu"_s).findChild<QAction*>(u"exportCsv"_s)->trigger();
  const QString csv = QString::fromUtf8(files.files[u"/export.csv"_s].bytes);
  EXPECT_TRUE(csv.contains(u"Reglerversion: AB1-123.4"_s));
  EXPECT_TRUE(csv.contains(u"Heizung;Solltemperatur;20,0;"_s));
  EXPECT_FALSE(csv.contains(u"Drehzahl"_s));
}

// --- columns ---

TEST_F(ParameterListTest, SortsNumbersAsNumbers) {
  StartWithList();
  View().sortByColumn(static_cast<int>(ListColumn::Maximum), Qt::DescendingOrder);
  EXPECT_EQ(Column(ListColumn::Maximum).section(u" | "_s, 2), u"3000.0 | 1000.00 | 999.9 | 120 | 100.0"_s);
}

TEST_F(ParameterListTest, ColumnsAreShownMovedAndRememberedByKeyboard) {
  StartWithList();
  auto& menu = Of<QMenu>(u"columnMenu"_s);
  Q_EMIT menu.aboutToShow();
  auto* variable = menu.findChild<QAction*>(u"column%1"_s.arg(static_cast<int>(ListColumn::Variable)));
  EXPECT_FALSE(variable->isChecked());
  variable->trigger();
  EXPECT_FALSE(View().isColumnHidden(static_cast<int>(ListColumn::Variable)));
  GoToCell(0, ListColumn::Name);
  Press(Qt::Key_Left, Qt::ControlModifier | Qt::ShiftModifier);
  EXPECT_EQ(View().horizontalHeader()->visualIndex(static_cast<int>(ListColumn::Name)), 2);
  View().setColumnWidth(static_cast<int>(ListColumn::Group), 77);
  View().sortByColumn(static_cast<int>(ListColumn::Name), Qt::DescendingOrder);
  desktop->main.close();
  EXPECT_FALSE(settings.values[u"ListeSpalten"_s].isEmpty());
  EXPECT_FALSE(settings.values[u"ListePlatz"_s].isEmpty());

  StartWithList();
  EXPECT_FALSE(View().isColumnHidden(static_cast<int>(ListColumn::Variable)));
  EXPECT_EQ(View().horizontalHeader()->visualIndex(static_cast<int>(ListColumn::Name)), 2);
  EXPECT_NEAR(View().columnWidth(static_cast<int>(ListColumn::Group)), 77, 1);
  EXPECT_EQ(Cell(0, ListColumn::Name), u"Zähler"_s);
}

TEST_F(ParameterListTest, DamagedColumnsAreThoseOfTheFirstTime) {
  settings.values[u"ListeSpalten"_s] = u"0:0 1:x"_s;
  settings.values[u"ListePlatz"_s] = u"weit weg"_s;
  StartWithList();
  EXPECT_EQ(View().horizontalHeader()->visualIndex(static_cast<int>(ListColumn::Name)),
            static_cast<int>(ListColumn::Name));
  EXPECT_TRUE(View().isColumnHidden(static_cast<int>(ListColumn::Variable)));
  EXPECT_EQ(Numbers(), u"1 | 2 | 3 | 4 | 5 | 6 | 7"_s);
}

TEST_F(ParameterListTest, TheLastColumnCannotBeHidden) {
  StartWithList();
  auto& menu = Of<QMenu>(u"columnMenu"_s);
  for (int column = 1; column < kListColumns; ++column)
    View().setColumnHidden(column, true);
  Q_EMIT menu.aboutToShow();
  EXPECT_FALSE(menu.findChild<QAction*>(u"column0"_s)->isEnabled());
  menu.findChild<QAction*>(u"columnDefaults"_s)->trigger();
  EXPECT_FALSE(View().isColumnHidden(static_cast<int>(ListColumn::Name)));
}

TEST_F(ParameterListTest, AListThatWasNeverOpenedLeavesWhatIsStored) {
  settings.values[u"ListeSpalten"_s] = u"x"_s;
  Start();
  desktop->main.close();
  EXPECT_EQ(settings.values[u"ListeSpalten"_s], u"x"_s);
}

}  // namespace
}  // namespace kalivor::test
