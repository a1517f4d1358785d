// Random use of the parameter list among everything else: after each event the table is that of a plain
// model.
#include <QAction>
#include <QComboBox>
#include <QHeaderView>
#include <QLineEdit>
#include <QRegularExpression>
#include <QTableView>
#include <iostream>
#include <optional>
#include <random>
#include <ranges>

#include "core/ParameterList.h"
#include "core/ParameterTypes.h"
#include "core/TreeTexts.h"
#include "core/ValueFileFormat.h"
#include "gui/GuiFixture.h"

namespace kalivor::test {
namespace {

// The text whose type says no length; it cannot be read.
constexpr int kWithoutLength = 7;

constexpr int kEvents = 20'000;
constexpr int kVersions = 3;
const QString kRecoveryFile = u"/zustand/Wiederherstellung.json"_s;

/// Everything of the table that a step takes back.
struct Table {
  int version = 0;
  int plant = 0;
  std::vector<ParameterValue> values;  ///< by parameter, from 1; texts without trailing blanks

  bool operator==(const Table&) const = default;
};

QString WithoutPadding(QString text) {
  while (text.endsWith(u' '))
    text.chop(1);
  return text;
}

/// What the list compares with, of one parameter.
struct Compared {
  enum { Nothing, Missing, OtherType, NotRead, Value } state = Nothing;
  ParameterValue value;
};

class ListEvents : public GuiTest {
 protected:
  ListEvents() : random_(1) {
    recovery.folder = u"/zustand"_s;
    recovery.take = [this](const QString& path) {
      if (taken_.contains(path)) return false;
      taken_.append(path);
      return true;
    };
    recovery.rest = std::chrono::milliseconds(0);
    for (int version = 0; version < kVersions; ++version) {
      auto definitions = std::make_unique<Module1>();
      definitions->Inipath = kFolder;
      EXPECT_EQ(sim::LoadDefinitions(*definitions, files, kNames[version]), QString());
      auto& records = definitions_.emplace_back();
      for (int i = 0; i < definitions->ParCount; ++i)
        records.push_back(definitions->Par[i]);
    }
    events.onePass = true;
    events.onPending = [this] { Meddle(); };
    events.onWait = [this] { AnswerQuestion(); };
  }
  ~ListEvents() override { desktop.reset(); }

  // --- chance ---

  int Below(int bound) { return static_cast<int>(random_() % static_cast<quint32>(bound)); }
  bool Once(int among) { return Below(among) == 0; }
  template <typename List>
  auto OneOf(const List& list) {
    return list[static_cast<std::size_t>(Below(static_cast<int>(std::size(list))))];
  }

  // --- the windows ---

  [[nodiscard]] Module1& Module() { return desktop->module; }
  QAction& Item(const QString& name) { return *desktop->main.findChild<QAction*>(name); }
  [[nodiscard]] bool ListIsOpen() const { return desktop->list && desktop->list->isVisible(); }
  template <typename Widget>
  Widget& Of(const QString& name) {
    return In<Widget>(*desktop->list, name);
  }
  QTableView& View() { return Of<QTableView>(u"parameters"_s); }
  QAbstractItemModel& Rows() { return *View().model(); }
  QString Cell(const QAbstractItemModel& rows, int row, ListColumn column) {
    return rows.index(row, static_cast<int>(column)).data().toString();
  }
  int IndexOfRow(int row) { return Cell(Rows(), row, ListColumn::Number).toInt(); }
  std::vector<int> ShownIndexes() {
    std::vector<int> indexes;
    for (int row = 0; row < Rows().rowCount(); ++row)
      indexes.push_back(IndexOfRow(row));
    return indexes;
  }
  QLineEdit* FieldInPlace() {
    for (auto* edit : View().viewport()->findChildren<QLineEdit*>(u"valueEdit"_s)) {
      if (edit->isVisible()) return edit;
    }
    return nullptr;
  }
  static void TypeInto(QWidget& widget, const QString& text) {
    for (const QChar character : text)
      QTest::sendKeyEvent(QTest::Click, &widget, Qt::Key_unknown, character, Qt::NoModifier);
  }

  // --- the model ---

  [[nodiscard]] int Count() const { return static_cast<int>(Definitions().size()); }
  [[nodiscard]] const std::vector<ParameterRecord>& Definitions() const {
    return definitions_[static_cast<std::size_t>(table_.version)];
  }
  [[nodiscard]] const ParameterRecord& Record(int index) const {
    return Definitions()[static_cast<std::size_t>(index)];
  }
  static bool IsText(const ParameterRecord& record) { return record.Typ.Trimmed().startsWith(u"str"); }
  static bool IsEditable(const ParameterRecord& record) {
    return !IsText(record) || record.Typ.Trimmed().startsWith(u"string");
  }
  static bool IsOutside(const ParameterRecord& record, const ParameterValue& value) {
    return !IsText(record) && (value.number < record.Min || value.number > record.Max);
  }
  ParameterValue& Value(int index) { return table_.values[static_cast<std::size_t>(index)]; }
  bool& Mark(int index) { return marks_.at(static_cast<std::size_t>(index)); }

  Table StandardTable(int version, int plant) {
    Table table{version, plant, {}};
    for (const ParameterRecord& record : definitions_[static_cast<std::size_t>(version)])
      table.values.push_back({record.Standard, WithoutPadding(record.StandardText)});
    return table;
  }
  // Reading the definitions checks everything.
  void Reread(int version, int plant) {
    table_ = StandardTable(version, plant);
    marks_.fill(true);
  }
  Table TableOfProgram() {
    Table table{Module().VersionList.Position(), std::max(Module().PlantTypeList.Position(), 0), {}};
    for (int i = 0; i < Module().ParCount; ++i) {
      const ParameterRecord& record = Module().Par[i];
      table.values.push_back({record.Wert, WithoutPadding(record.WertText)});
    }
    return table;
  }
  // The plant-type record holds the number of the plant type.
  static void IgnorePlantRecord(Table& table) { table.values.front() = {}; }

  // The value of a parameter in the controller's memory.
  /// As the plain transfers read it; `exact`: as the list does, whose texts come byte by byte.
  ParameterValue FarValue(int index, bool exact = false) {
    const ParameterRecord& record = Record(index);
    const ParameterType& type = TypeOf(record.Typ);
    const auto word = [&](int k) {
      return far->memory.Word(WordAddress(record, type, k).right(4).toUShort(nullptr, 16));
    };
    ParameterValue value;
    if (IsText(record)) {
      for (int k = 0; k < StringLength(record) / 2; ++k)
        value.text +=
            exact ? TextFromBytes(QByteArray(1, static_cast<char>(word(k) >> 8)) + static_cast<char>(word(k)))
                  : TextFromWord(static_cast<qint16>(word(k)));
    } else {
      Words words{};
      for (int k = 0; k < type.WordCount(); ++k)
        words.at(static_cast<std::size_t>(k)) = k == 0 ? qint32{static_cast<qint16>(word(k))} : word(k);
      value.number = type.fromWords(words, IsOddAddress(record));
    }
    return value;
  }

  // What stands for parameter `index` in the column of the comparison.
  Compared ComparedWith(int index) {
    const ParameterRecord& record = Record(index);
    if (comparesStandard_) return {Compared::Value, {record.Standard, record.StandardText}};
    return index < static_cast<int>(compared_.size()) ? compared_[static_cast<std::size_t>(index)]
                                                      : Compared();
  }
  bool SameValues(int index, const ParameterValue& left, const ParameterValue& right) {
    if (!IsText(Record(index))) return left.number == right.number;
    return WithoutPadding(left.text) == WithoutPadding(right.text);
  }
  bool Differs(int index) {
    const Compared compared = ComparedWith(index);
    if (compared.state == Compared::Value) return !SameValues(index, Value(index), compared.value);
    return compared.state != Compared::Nothing;
  }
  bool IsShown(int index) {
    const ParameterRecord& record = Record(index);
    const auto holds = [this](const QString& filter, bool is) {
      return is || !Of<QPushButton>(filter).isChecked();
    };
    for (const QString& word : Of<QLineEdit>(u"search"_s).text().split(u' ', Qt::SkipEmptyParts)) {
      const QString all = (record.Name + u'|' + record.Rubrik + u'|' + record.Variable + u'|' +
                           record.VarAdresse + u'|' + record.Hilfetext)
                              .toLower()
                              .replace(u"ä"_s, u"ae"_s);
      if (!all.contains(word)) return false;
    }
    return holds(u"filterChecked"_s, Mark(index)) && holds(u"filterDifferent"_s, Differs(index)) &&
           holds(u"filterNonStandard"_s,
                 !SameValues(index, Value(index), {record.Standard, record.StandardText})) &&
           holds(u"filterChanged"_s, desktop->changes.Changed(index)) &&
           holds(u"filterOutside"_s, IsOutside(record, Value(index)));
  }

  // --- steps ---

  struct Step {
    Table before, after;
    std::optional<std::array<bool, kLastParameter + 1>> marks;  ///< of the other side
  };

  void UndoOrRedo(bool undo) {
    QAction& item = Item(undo ? u"mnuWerkzeugeRueckgaengig"_s : u"mnuWerkzeugeWiederholen"_s);
    const bool possible = undo ? position_ > 0 : position_ < steps_.size();
    ASSERT_EQ(item.isEnabled(), possible);
    if (!possible) return;
    Step& step = steps_[undo ? --position_ : position_++];
    table_ = undo ? step.before : step.after;
    if (step.marks) std::swap(marks_, *step.marks);
    ++(undo ? undone_ : repeated_);
    moved_ = true;
    item.trigger();
  }

  void RecordStep() {
    if (moved_ || table_ == before_) return;
    const bool read = table_.version != before_.version || table_.plant != before_.plant;
    steps_.resize(position_++);
    steps_.push_back({before_, table_, read ? std::optional(marksBefore_) : std::nullopt});
  }

  // --- the tree ---

  // A rebuilt tree shows the marks; a group's box that of its first parameter.
  void TakeMarksOver() {
    shown_.clear();
    for (int node = 1; node <= Tree().Count(); ++node) {
      const QString key = Tree().Key(node);
      shown_[key] = Mark(SlotOf(key.startsWith(u'K') ? Tree().Key(Tree().FirstChild(node)) : key));
    }
  }
  // A group's mark shares the slot of the parameter of its number.
  static int SlotOf(const QString& key) { return key == u"R" ? 0 : key.section(u' ', 1).toInt(); }

  void ToggleInTree() {
    const int node = 1 + Below(Tree().Count());
    const QString key = Tree().Key(node);
    const bool on = !shown_.value(key);
    const auto isBelow = [&](int other) {
      if (key == u"R") return true;
      return key.startsWith(u'K') && other >= Tree().FirstChild(node) && other <= Tree().LastChild(node);
    };
    for (int other = 1; other <= Tree().Count(); ++other) {
      if (other != node && !isBelow(other)) continue;
      shown_[Tree().Key(other)] = on;
      Mark(SlotOf(Tree().Key(other))) = on;
    }
    Toggle(key);
  }

  // --- the editors ---

  void UseEditor() {
    auto& number = desktop->editors.number;
    auto& text = desktop->editors.text;
    if (!number.isVisible() && !text.isVisible()) {
      OpenEditor();
      if (Once(2)) return;
    }
    if (!number.isVisible() && !text.isVisible()) return;
    QWidget& editor = number.isVisible() ? static_cast<QWidget&>(number) : text;
    if (Once(4)) {
      QTest::keyClick(&editor, Qt::Key_Escape);
      return;
    }
    const QString typed = ValidText(Record(edited_));
    In<QLineEdit>(editor, u"TextWert"_s).setText(typed);
    Store(edited_, typed);
    ++edits_;
    Click(editor, u"OKButton"_s);
  }

  // From the tree, or from the list.
  void OpenEditor() {
    edited_ = 1 + Below(Count() - 1);
    const QString key = ParameterKey(edited_);
    if (ListIsOpen() && Rows().rowCount() > 0 && Once(2)) {
      const int row = Below(Rows().rowCount());
      edited_ = IndexOfRow(row);
      View().setCurrentIndex(Rows().index(row, static_cast<int>(ListColumn::Name)));
      QTest::keyClick(&View(), Qt::Key_Return, Qt::ControlModifier);
    } else if (Node(key) != 0) {
      Open(key);
    }
  }

  // What an editor takes, with a decimal point.
  QString ValidText(const ParameterRecord& record) {
    if (IsText(record) && IsEditable(record)) return RandomText();
    const int scale = record.Zahl1 + record.Zahl2;
    qint64 dropped = 1;
    for (int i = 0; i < record.Zahl2; ++i)
      dropped *= 10;
    const qint64 number = (record.Min + Below(record.Max - record.Min + 1)) / dropped * dropped;
    return QString::number(static_cast<double>(number) / std::pow(10, scale), 'f', record.Zahl1);
  }
  QString RandomText() {
    static const QString kCharacters = u"aZ ß7.-Ü"_s;
    QString text;
    for (int i = Below(9); i > 0; --i)
      text += kCharacters[Below(static_cast<int>(kCharacters.size()))];
    return text;
  }

  // The model's part of storing a typed value.
  void Store(int index, QString typed) {
    const ParameterRecord& record = Record(index);
    if (IsText(record) && IsEditable(record)) {
      Value(index).text = WithoutPadding(typed);
      return;
    }
    const double number = typed.replace(u',', u'.').toDouble();
    Value(index).number =
        static_cast<qint32>(std::llround(number * std::pow(10, record.Zahl1 + record.Zahl2)));
    Mark(index) = true;
    shown_[ParameterKey(index)] = true;
  }

  // --- editing in place ---

  // True where the list takes `text` as the beginning of a value.
  static bool IsBeginning(const ParameterRecord& record, const QString& text) {
    if (IsText(record)) return text.size() <= StringLength(record) && !text.contains(u'→');
    static const QRegularExpression kNumber(u"^(-?)(\\d*)([,.]\\d*)?$"_s);
    const QRegularExpressionMatch match = kNumber.match(text);
    if (!match.hasMatch()) return false;
    const qsizetype decimals = match.captured(3).size() - 1;
    if (decimals >= 0 && (record.Zahl1 == 0 || decimals > record.Zahl1)) return false;
    const bool negative = !match.captured(1).isEmpty();
    if (negative && record.Min >= 0) return false;
    const double number = TypedNumber(record, text);
    return negative ? number >= record.Min : number <= record.Max;
  }
  static bool IsComplete(const ParameterRecord& record, const QString& text) {
    if (IsText(record)) return true;
    const double number = TypedNumber(record, text);
    return text.contains(QRegularExpression(u"\\d"_s)) && number >= record.Min && number <= record.Max;
  }
  static double TypedNumber(const ParameterRecord& record, QString text) {
    text.replace(u',', u'.');
    if (text.startsWith(u'.')) text.prepend(u'0');
    if (text.startsWith(u"-."_s)) text.insert(1, u'0');
    return std::round(text.toDouble() * std::pow(10, record.Zahl1 + record.Zahl2));
  }

  void EditInPlace() {
    if (!ListIsOpen() || Rows().rowCount() == 0) return;
    const int row = Below(Rows().rowCount());
    const int index = IndexOfRow(row);
    const ParameterRecord& record = Record(index);
    QString text = ValidText(record);
    if (Once(3)) text = u"12"_s + text;
    if (Once(6)) text.insert(Below(static_cast<int>(text.size()) + 1), OneOf(u"-x9→,"_s));
    // A blank turns the mark.
    if (text.isEmpty() || text.startsWith(u' ')) text.prepend(u'3');
    desktop->list->activateWindow();
    QCoreApplication::processEvents();
    View().setFocus();
    View().setCurrentIndex(
        Rows().index(row, static_cast<int>(Once(2) ? ListColumn::Value : ListColumn::Name)));
    QString taken;
    for (const QChar character : text) {
      QWidget* target = FieldInPlace();
      TypeInto(target != nullptr ? *target : View(), character);
      if (IsBeginning(record, taken + character)) taken += character;
      if (FieldInPlace() == nullptr) break;
    }
    ASSERT_EQ(FieldInPlace() != nullptr, IsEditable(record)) << index;
    if (!IsEditable(record)) return;
    if (!taken.isEmpty()) {
      ASSERT_EQ(FieldInPlace()->text(), taken) << text.toStdString();
    }
    LeaveField(index, taken);
  }

  void LeaveField(int index, const QString& taken) {
    const bool complete = taken.isEmpty() || IsComplete(Record(index), taken);
    switch (Below(10)) {
      case 0:
        QTest::keyClick(FieldInPlace(), Qt::Key_Escape);
        break;
      case 1:
        UndoOrRedo(true);
        break;
      case 2:
        SelectVersion();
        break;
      case 3:
        // By its access key, with the keyboard still in the list.
        Transfer();
        break;
      case 4:
        // As when the user clicks elsewhere.
        Of<QLineEdit>(u"search"_s).setFocus();
        if (complete && !taken.isEmpty()) StoreInPlace(index, taken);
        break;
      default: {
        const auto key = OneOf(std::array{Qt::Key_Return, Qt::Key_Tab, Qt::Key_Up});
        QTest::keyClick(FieldInPlace(), key);
        if (complete && !taken.isEmpty()) StoreInPlace(index, taken);
        if (!complete) {
          ASSERT_NE(FieldInPlace(), nullptr) << taken.toStdString();
          QTest::keyClick(FieldInPlace(), Qt::Key_Escape);
        }
      }
    }
    if (FieldInPlace() != nullptr) QTest::keyClick(FieldInPlace(), Qt::Key_Escape);
  }
  void StoreInPlace(int index, const QString& taken) {
    Store(index, taken);
    ++edits_;
  }

  // --- marks in the list ---

  void MarkInList(const std::vector<int>& indexes, bool on) {
    for (const int index : indexes) {
      if (Mark(index) == on) continue;
      Mark(index) = on;
      shown_[ParameterKey(index)] = on;
    }
  }
  void MarkRows() {
    if (Rows().rowCount() == 0) return;
    View().setFocus();
    View().setCurrentIndex(Rows().index(Below(Rows().rowCount()), static_cast<int>(ListColumn::Name)));
    for (int more = Below(4); more > 0; --more)
      QTest::keyClick(&View(), Once(2) ? Qt::Key_Down : Qt::Key_Up, Qt::ShiftModifier);
    std::vector<int> indexes;
    for (const QModelIndex& row : View().selectionModel()->selectedRows())
      indexes.push_back(IndexOfRow(row.row()));
    const bool on = !std::ranges::all_of(indexes, [this](int index) { return Mark(index); });
    MarkInList(indexes, on);
    QTest::keyClick(&View(), Qt::Key_Space);
  }
  void PressMarkButton() {
    const QString button = OneOf(std::array{u"markShown"_s, u"markOnlyShown"_s, u"markNone"_s});
    const std::vector<int> shown = ShownIndexes();
    if (button != u"markShown") {
      std::vector<int> others;
      for (int index = 1; index < Count(); ++index) {
        if (button == u"markNone" || !std::ranges::count(shown, index)) others.push_back(index);
      }
      MarkInList(others, false);
    }
    if (button != u"markNone") MarkInList(shown, true);
    Click(*desktop->list, button);
  }
  void UseSelections() {
    auto& menu = Of<QMenu>(u"selectionMenu"_s);
    Q_EMIT menu.aboutToShow();
    const QString name = OneOf(std::array{u"Eins"_s, u"Zwei & drei"_s});
    QAction* recall = menu.findChild<QAction*>(u"recall:"_s + name);
    ASSERT_EQ(recall != nullptr, selections_.contains(name));
    if (recall == nullptr || Once(2)) {
      QStringList& variables = selections_[name];
      variables.clear();
      for (int index = 1; index < Count(); ++index) {
        if (Mark(index)) variables.append(Record(index).Variable);
      }
      menu.findChild<QAction*>(u"saveSelection"_s)->trigger();
      auto& dialog = Of<QDialog>(u"SelectionName"_s);
      In<QLineEdit>(dialog, u"selectionName"_s).setText(name);
      Click(dialog, u"OKButton"_s);
      return;
    }
    for (int index = 1; index < Count(); ++index)
      Mark(index) = selections_[name].contains(Record(index).Variable);
    recall->trigger();
  }

  // --- searching, filtering, sorting ---

  void ChangeView() {
    switch (Below(6)) {
      case 0:
      case 1:
        Of<QLineEdit>(u"search"_s)
            .setText(OneOf(std::array{u""_s, u""_s, u""_s, u"heiz"_s, u"antrieb"_s, u"zaehl"_s,
                                      u"drehzahl motors"_s, u"1f2"_s, u"gibtesnicht"_s}));
        return;
      case 2: {
        static const std::array kFilters{u"filterChecked"_s, u"filterDifferent"_s, u"filterNonStandard"_s,
                                         u"filterChanged"_s, u"filterOutside"_s};
        // Most of the time most of the rows are shown.
        for (const QString& filter : kFilters) {
          if (Of<QPushButton>(filter).isChecked()) Click(*desktop->list, filter);
        }
        if (Once(2)) Click(*desktop->list, OneOf(kFilters));
        return;
      }
      case 3:
      case 4:
        View().sortByColumn(Below(kListColumns), Once(2) ? Qt::AscendingOrder : Qt::DescendingOrder);
        return;
      default:
        desktop->list->close();
    }
  }

  // --- comparing and taking over ---

  void ChooseComparison(int position) {
    auto& comparison = Of<QComboBox>(u"comparison"_s);
    comparison.setCurrentIndex(position);
    Q_EMIT comparison.activated(position);
  }
  void Compare() {
    switch (Below(6)) {
      case 0:
        ForgetComparison();
        ChooseComparison(0);
        return;
      case 1:
        ForgetComparison();
        comparesStandard_ = true;
        ChooseComparison(1);
        return;
      case 2:
      case 3:
        CompareWithFile();
        return;
      default:
        CompareWithController();
    }
  }
  void ForgetComparison() {
    comparesStandard_ = false;
    comparesController_ = false;
    compared_.clear();
  }

  /// A value file as chance has it; `compared` is what the list has to make of it.
  bool AddFile(int version, std::vector<Compared>& compared, bool typesMayDiffer) {
    if (Once(8)) {
      files.files[u"/w.qpf"_s] = OneOf(std::array<platform::FileContent, 4>{
          platform::FileContent{"kurz", {}},
          {QByteArray(70, '\xff'), {}},
          {{}, u"Die Datei ist zu groß."_s},
          {ComposeRecord(3, {}, u"FRE-999.9"_s, {}) + ComposeRecord(7, {}, u"n"_s, u"int"_s), {}}});
      return false;
    }
    QByteArray image = ComposeRecord(5, {}, kNames[version], {});
    compared.assign(Definitions().size(), {Compared::Missing, {}});
    for (int index = 1; index < Count(); ++index) {
      if (Once(3)) continue;
      const ParameterRecord& record = Record(index);
      Compared& one = compared[static_cast<std::size_t>(index)];
      one.state = Compared::Value;
      if (IsText(record)) {
        one.value.text = WithoutPadding(RandomText());
      } else {
        one.value.number = record.Min - 5 + Below(record.Max - record.Min + 10);
      }
      QString type = record.Typ.Trimmed();
      if (typesMayDiffer && Once(8)) {
        type = type == u"int" ? u"long"_s : u"int"_s;
        one.state = Compared::OtherType;
      }
      image += ComposeRecord(one.value.number, one.value.text, record.Variable, type);
    }
    image += ComposeRecord(1, {}, u"fremd"_s, u"int"_s);
    files.files[u"/w.qpf"_s] = {image, {}};
    return true;
  }

  void CompareWithFile() {
    std::vector<Compared> compared;
    const bool good = AddFile(Below(kVersions), compared, true);
    ExpectDialog(u"/w.qpf"_s);
    ChooseComparison(2);
    ExpectBoxes(good ? 0 : 1);
    if (!good) return;
    ForgetComparison();
    compared_ = std::move(compared);
  }
  void ExpectDialog(const QString& answer) {
    dialogs.shown.clear();
    dialogs.answers = {answer};
  }
  void ExpectBoxes(std::size_t count) {
    const auto boxes = box.Take();
    EXPECT_EQ(boxes.size(), count);
    if (boxes.size() == count) return;
    for (const auto& shown : boxes)
      ADD_FAILURE() << shown.text.toStdString();
  }

  void CompareWithController() {
    const bool faulty = AddFaults();
    ChooseComparison(3);
    const std::size_t boxes = box.Take().size();
    const bool otherVersion = kNames[table_.version] != kFarVersion;
    ASSERT_LE(boxes, 1U);
    ASSERT_TRUE(faulty || (boxes == 1) == otherVersion);
    if (boxes == 1) return;
    ASSERT_FALSE(otherVersion);
    ++readings_;
    ForgetComparison();
    comparesController_ = true;
    compared_.assign(Definitions().size(), {});
    QAbstractItemModel& all = *static_cast<QAbstractProxyModel&>(Rows()).sourceModel();
    for (int index = 1; index < Count(); ++index) {
      if (!Mark(index)) continue;
      Compared& one = compared_[static_cast<std::size_t>(index)];
      const QString state = Cell(all, index - 1, ListColumn::State);
      const bool unread = state.startsWith(u"nicht gelesen"_s);
      const bool compared = state.startsWith(u"gleich"_s) || state.startsWith(u"verschieden"_s);
      if (!unread && !compared) {
        ASSERT_TRUE(aborted_) << index;
        continue;
      }
      ASSERT_TRUE(faulty || !unread || index == kWithoutLength) << index;
      one = unread ? Compared{Compared::NotRead, {}} : Compared{Compared::Value, FarValue(index, true)};
      unread_ += unread ? 1 : 0;
    }
  }

  void TakeOver() {
    std::vector<int> indexes;
    for (const int index : ShownIndexes()) {
      if (Mark(index) && ComparedWith(index).state == Compared::Value && Differs(index))
        indexes.push_back(index);
    }
    const auto isOutside = [this](int index) { return IsOutside(Record(index), ComparedWith(index).value); };
    const auto outside = std::ranges::count_if(indexes, isOutside);
    EXPECT_EQ(Of<QPushButton>(u"takeOver"_s).isEnabled(), !indexes.empty());
    answers_.clear();
    Click(*desktop->list, u"takeOver"_s);
    ASSERT_EQ(answers_.size(), indexes.empty()                         ? 0U
                               : answers_.front() != 1 || outside == 0 ? 1U
                                                                       : 2U)
        << "one question, and one about those outside";
    if (indexes.empty() || answers_.front() != 1) return;
    if (answers_.back() != 1) std::erase_if(indexes, isOutside);
    for (const int index : indexes) {
      ParameterValue& value = Value(index);
      const Compared compared = ComparedWith(index);
      if (!IsText(Record(index))) {
        value.number = compared.value.number;
      } else {
        const int length = StringLength(Record(index));
        value.text = WithoutPadding(length > 0 ? compared.value.text.left(length) : compared.value.text);
      }
      ++takenOver_;
    }
  }

  // --- transfers ---

  // Such as no wrong value can come through.
  bool AddFaults() {
    far->faults = sim::Faults(static_cast<quint32>(random_()));
    aborted_ = false;
    if (Once(2)) return false;
    for (const QString& fault :
         {u"silent:0.1"_s, u"lost-byte:0.05"_s, u"doubled-byte:0.05"_s, u"flipped-bit:0.05"_s,
          u"bad-checksum:0.05"_s, u"error-04:0.1"_s, u"wrong-length:0.05"_s})
      far->faults.Add(*sim::ParseFault(fault));
    return true;
  }

  void Transfer() {
    const QString button = OneOf(
        std::array{u"CommandEmpfangen"_s, u"CommandSenden"_s, u"CommandVergleichen"_s, u"CommandStandard"_s});
    const bool faulty = AddFaults();
    answers_.clear();
    Main<QPushButton>(button).click();
    if (button == u"CommandStandard") {
      const Table standard = StandardTable(table_.version, table_.plant);
      table_.values = standard.values;
      return;
    }
    desktop->reportDialog.hide();
    // A text of which not all could be read or written is told in a box.
    for (const auto& shown : box.Take())
      EXPECT_TRUE(faulty && shown.text.startsWith(u"Fehler bei: "_s)) << shown.text.toStdString();
    TakeReceived(button, faulty);
    ++transfers_;
  }

  // Each value is what it was, or the controller's.
  void TakeReceived(const QString& button, bool faulty) {
    const Table now = TableOfProgram();
    const bool read = now.version != table_.version || now.plant != table_.plant;
    if (read) {
      ASSERT_EQ(now.version, kNames.indexOf(kFarVersion)) << "only the controller's version";
      Reread(now.version, now.plant);
    }
    const bool receives = button == u"CommandEmpfangen" ||
                          (button == u"CommandSenden" && !answers_.empty() && answers_.back() == 2);
    const bool sure = receives && !faulty && !aborted_;
    for (int index = 1; index < Count(); ++index) {
      const ParameterValue& is = now.values[static_cast<std::size_t>(index)];
      const bool stays = SameValues(index, is, Value(index));
      if (!receives || !Mark(index)) {
        ASSERT_TRUE(stays) << index;
        continue;
      }
      const ParameterValue there = FarValue(index);
      // Of a text what could be read is taken.
      const bool came =
          IsText(Record(index)) ? WithoutPadding(there.text).startsWith(is.text) : there.number == is.number;
      ASSERT_TRUE(came || (stays && !sure)) << index << ' ' << is.number << ' ' << there.number;
      ASSERT_TRUE(!sure || SameValues(index, is, there)) << index;
      Value(index) = is;
    }
  }

  void ChangeController() {
    switch (Below(3)) {
      case 0:
        far->memory.SetWord(0x1E00, static_cast<quint16>(Below(3)));
        return;
      case 1:
        far->memory.SetWord(0x1F00, static_cast<quint16>(Below(33'000)));
        return;
      default:
        far->memory.SetWord(0x1F20, static_cast<quint16>(Below(1500) - 200));
    }
  }

  // What a user does in the middle of an operation: nothing of it may have an effect but the abort.
  void Meddle() {
    if (!desktop || Module().BusyDepth == 0 || !Once(4)) return;
    ++meddled_;
    if (desktop->progress && desktop->progress->isVisible() && Once(12)) {
      aborted_ = true;
      if (Once(2)) {
        EXPECT_FALSE(desktop->progress->close());
      } else {
        Click(*desktop->progress, u"Command_Abbruch"_s);
      }
    } else if (desktop->reportDialog.isVisible() && Once(12)) {
      aborted_ = true;
      Click(desktop->reportDialog, u"Command_Abbruch"_s);
    }
    EXPECT_FALSE(desktop->main.close());
    Item(OneOf(std::array{u"mnuWerkzeugeRueckgaengig"_s, u"mnuWerkzeugeWiederholen"_s,
                          u"mnuWerkzeugeWiederherstellen"_s, u"mnuWerkzeugeListe"_s, u"mnuFileOpen"_s}))
        .trigger();
    Main<QPushButton>(u"CommandStandard"_s).click();
    if (!ListIsOpen()) return;
    EXPECT_FALSE(desktop->list->close());
    for (const QString& button : {u"markNone"_s, u"takeOver"_s, u"filterChanged"_s})
      Of<QPushButton>(button).click();
    Q_EMIT Of<QComboBox>(u"comparison"_s).activated(Below(4));
    TypeInto(View(), u"5"_s);
    QTest::keyClick(&View(), Qt::Key_Space);
  }

  void AnswerQuestion() {
    if (desktop->auswahl.isVisible()) {
      answers_.push_back(1 + Below(2));
      Click(desktop->auswahl, u"Button%1"_s.arg(answers_.back()));
    }
  }

  // --- versions, files, another run ---

  void SelectVersion() {
    const int version = Below(kVersions);
    if (version != table_.version) Reread(version, 0);
    Main<QComboBox>(u"ComboVN"_s).setCurrentIndex(version);
  }
  void SelectPlant() {
    auto& plants = Main<QComboBox>(u"ComboArt"_s);
    const int plant = Below(plants.count());
    if (plant != table_.plant) Reread(table_.version, plant);
    plants.setCurrentIndex(plant);
  }

  void OpenFile() {
    std::vector<Compared> compared;
    const int version = Below(kVersions);
    const bool good = AddFile(version, compared, false);
    answers_.clear();
    ExpectDialog(u"/w.qpf"_s);
    Item(u"mnuFileOpen"_s).trigger();
    ExpectBoxes(good ? 0 : 1);
    if (!good) return;
    loaded_ = true;
    ASSERT_EQ(answers_.size(), version == table_.version ? 0U : 1U);
    const std::vector<ParameterRecord> written = Definitions();
    if (!answers_.empty() && answers_.front() == 2) Reread(version, 0);
    for (std::size_t stored = 1; stored < written.size(); ++stored) {
      if (compared[stored].state != Compared::Value) continue;
      for (int index = 1; index < Count(); ++index) {
        if (Record(index).Variable == written[stored].Variable && Mark(index))
          Value(index) = compared[stored].value;
      }
    }
  }

  // A crash, or a normal end; what was unsaved comes back.
  void Restart() {
    const Table kept = table_;
    Table standard = StandardTable(kept.version, kept.plant);
    const bool loaded = loaded_;
    const bool unsaved = !loaded && kept.values != standard.values;
    if (Once(2)) {
      QTest::qWait(1);
    } else {
      ASSERT_TRUE(desktop->main.close());
    }
    desktop.reset();
    taken_.clear();
    const bool damaged = unsaved && Once(4);
    if (damaged) files.files[kRecoveryFile].bytes.chop(2 + Below(50));
    Begin();
    ExpectBoxes(damaged ? 1 : 0);
    ++restarts_;
    QAction& item = Item(u"mnuWerkzeugeWiederherstellen"_s);
    const bool offered = item.isVisible() && item.isEnabled();
    ASSERT_TRUE(!unsaved || offered == !damaged);
    if (!offered) return;
    item.trigger();
    if (kept.version != 0 || kept.plant != 0) Reread(kept.version, kept.plant);
    table_ = kept;
    // What a file holds counts as saved again.
    loaded_ = loaded;
  }

  void Begin() {
    Start();
    Reread(0, 0);
    before_ = table_;
    marksBefore_ = marks_;
    steps_.clear();
    position_ = 0;
    loaded_ = false;
    ForgetComparison();
    TakeMarksOver();
    QObject::connect(TreeWidget().model(), &QAbstractItemModel::modelReset, &watcher_,
                     [this] { rebuilt_ = true; });
  }

  void OpenList() {
    const bool made = desktop->list != nullptr;
    Item(Once(2) ? u"mnuWerkzeugeListe"_s : u"mnuWerkzeugeSuchen"_s).trigger();
    SeeVersion();
    if (made) return;
    // What queues up during an operation must not reach it.
    QAbstractItemModel& all = *static_cast<QAbstractProxyModel&>(Rows()).sourceModel();
    const auto touch = [this] { touchedWhileBusy_ += Module().BusyDepth > 0 ? 1 : 0; };
    QObject::connect(&all, &QAbstractItemModel::modelReset, &watcher_, touch);
    QObject::connect(&all, &QAbstractItemModel::dataChanged, &watcher_, touch);
  }

  // --- one event, and what is to be seen after it ---

  void Event() {
    before_ = table_;
    marksBefore_ = marks_;
    rebuilt_ = false;
    moved_ = false;
    if (!ListIsOpen() && Once(3)) OpenList();
    const int kind = kind_ = Below(100);
    if (kind < 8) {
      ToggleInTree();
    } else if (kind < 16) {
      UseEditor();
    } else if (kind < 34) {
      UndoOrRedo(Below(5) < 3);
    } else if (kind < 38) {
      Transfer();
    } else if (kind < 41) {
      ChangeController();
    } else if (kind < 43) {
      SelectVersion();
    } else if (kind < 45) {
      SelectPlant();
    } else if (kind < 49) {
      OpenFile();
    } else if (kind < 50) {
      Restart();
    } else if (ListIsOpen()) {
      if (kind < 67) {
        EditInPlace();
      } else if (kind < 75) {
        Compare();
      } else if (kind < 83) {
        TakeOver();
      } else if (kind < 90) {
        ChangeView();
      } else if (kind < 93) {
        PressMarkButton();
      } else if (kind < 96) {
        UseSelections();
      } else {
        MarkRows();
      }
    }
    QCoreApplication::processEvents();
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    if (rebuilt_) TakeMarksOver();
    RecordStep();
  }

  void Check() {
    ExpectReady();
    ExpectBoxes(0);
    EXPECT_EQ(touchedWhileBusy_, 0);
    Table is = TableOfProgram();
    Table expected = table_;
    IgnorePlantRecord(is);
    IgnorePlantRecord(expected);
    EXPECT_TRUE(is == expected) << Difference(is, expected).toStdString();
    for (int slot = 0; slot < Count(); ++slot)
      EXPECT_EQ(Module().ParNode[slot] != kFalse, Mark(slot)) << "mark " << slot;
    for (int node = 1; node <= Tree().Count(); ++node)
      EXPECT_EQ(Tree().Checked(node), shown_.value(Tree().Key(node))) << Tree().Key(node).toStdString();
    EXPECT_EQ(Item(u"mnuWerkzeugeRueckgaengig"_s).isEnabled(), position_ > 0);
    EXPECT_EQ(Item(u"mnuWerkzeugeWiederholen"_s).isEnabled(), position_ < steps_.size());
    if (ListIsOpen()) CheckList();
  }

  static QString Difference(const Table& is, const Table& expected) {
    QString text = u"version %1 (%2), plant %3 (%4)"_s.arg(is.version)
                       .arg(expected.version)
                       .arg(is.plant)
                       .arg(expected.plant);
    for (std::size_t i = 0; i < std::min(is.values.size(), expected.values.size()); ++i) {
      if (is.values[i] == expected.values[i]) continue;
      text += u"; %1: %2 \"%3\" (%4 \"%5\")"_s.arg(i)
                  .arg(is.values[i].number)
                  .arg(is.values[i].text)
                  .arg(expected.values[i].number)
                  .arg(expected.values[i].text);
    }
    return text;
  }

  // Other definitions end the comparison; those of two versions may be the same, but the controller has one.
  void SeeVersion() {
    const auto& before = definitions_[static_cast<std::size_t>(std::exchange(seenVersion_, table_.version))];
    if (!std::ranges::equal(before | std::views::drop(1), Definitions() | std::views::drop(1)) ||
        (comparesController_ && kNames[table_.version] != kFarVersion))
      ForgetComparison();
  }

  void CheckList() {
    SeeVersion();
    std::vector<int> expected;
    int different = 0;
    int outside = 0;
    for (int index = 1; index < Count(); ++index) {
      if (!IsShown(index)) continue;
      expected.push_back(index);
      different += Differs(index) ? 1 : 0;
      outside += IsOutside(Record(index), Value(index)) ? 1 : 0;
    }
    std::vector<int> shown = ShownIndexes();
    std::ranges::sort(shown);
    EXPECT_EQ(shown, expected);
    QString counts = u"%1 von %2"_s.arg(expected.size()).arg(Count() - 1);
    if (different > 0) counts += u" · %1 verschieden"_s.arg(different);
    if (outside > 0) counts += u" · %1 außerhalb"_s.arg(outside);
    EXPECT_EQ(Of<QLabel>(u"countLine"_s).text(), counts);
    for (int row = 0; row < Rows().rowCount(); ++row)
      CheckRow(row);
    CheckOrder();
  }

  void CheckRow(int row) {
    const int index = IndexOfRow(row);
    if (index < 1 || index >= Count()) return;
    const ParameterRecord& record = Record(index);
    EXPECT_EQ(Cell(Rows(), row, ListColumn::Name), record.Name);
    EXPECT_EQ(Cell(Rows(), row, ListColumn::Value), ExactText(record, Value(index))) << index;
    const QVariant mark = Rows().index(row, static_cast<int>(ListColumn::Mark)).data(Qt::CheckStateRole);
    EXPECT_EQ(mark.value<Qt::CheckState>() == Qt::Checked, Mark(index)) << index;
    const Compared compared = ComparedWith(index);
    const bool hasValue =
        compared.state == Compared::Value || (compared.state == Compared::OtherType && !IsText(record));
    EXPECT_EQ(Cell(Rows(), row, ListColumn::Comparison),
              hasValue ? ExactText(record, compared.value) : QString())
        << index;
  }

  // Numbers stand in their order.
  void CheckOrder() {
    const QHeaderView& header = *View().horizontalHeader();
    const auto column = static_cast<ListColumn>(header.sortIndicatorSection());
    if (!IsNumeric(column)) return;
    std::vector<double> numbers;
    for (int row = 0; row < Rows().rowCount(); ++row) {
      bool isNumber = false;
      const double number = Cell(Rows(), row, column).toDouble(&isNumber);
      const bool text = column != ListColumn::Number && IsText(Record(IndexOfRow(row)));
      if (isNumber && !text) numbers.push_back(number);
    }
    if (header.sortIndicatorOrder() == Qt::DescendingOrder) std::ranges::reverse(numbers);
    EXPECT_TRUE(std::ranges::is_sorted(numbers)) << static_cast<int>(column);
  }

  const QStringList kNames{u"AB1-123.4"_s, u"AB1-012.0"_s, u"LFT-020.5"_s};
  const QString kFarVersion = kNames[0];

  std::vector<std::vector<ParameterRecord>> definitions_;  // by version, from the files alone
  Table table_;                                            // as it has to be now
  std::array<bool, kLastParameter + 1> marks_{};           // the same
  QMap<QString, bool> shown_;                              // the boxes of the present tree by key
  std::vector<Step> steps_;
  std::size_t position_ = 0;  // behind the last step that was not taken back
  bool comparesStandard_ = false;
  bool comparesController_ = false;
  std::vector<Compared> compared_;  // by parameter; empty: with nothing
  QMap<QString, QStringList> selections_;
  int seenVersion_ = 0;  // by the list, when it last looked

  // Of the present event.
  Table before_;
  std::array<bool, kLastParameter + 1> marksBefore_{};
  bool rebuilt_ = false;
  bool moved_ = false;  // a step was taken back or done again
  bool aborted_ = false;
  std::vector<int> answers_;

  int kind_ = 0;  // of the present event
  std::mt19937 random_;
  QStringList taken_;
  bool loaded_ = false;
  int edited_ = 0;  // by the open editor
  int touchedWhileBusy_ = 0;
  QObject watcher_;

  // What the run came to, to tell a thorough one from an idle one.
  int edits_ = 0;
  int undone_ = 0;
  int repeated_ = 0;
  int readings_ = 0;
  int unread_ = 0;
  int takenOver_ = 0;
  int transfers_ = 0;
  int meddled_ = 0;
  int restarts_ = 0;
};

TEST_F(ListEvents, LeaveTheTableOfThePlainModel) {
  Begin();
  for (int event = 1; event <= kEvents; ++event) {
    Event();
    Check();
    ASSERT_FALSE(HasFailure()) << "first wrong after event " << event << " of kind " << kind_;
  }
  // Each kind of thing has happened.
  EXPECT_GE(edits_, 500);
  EXPECT_GE(undone_, 500);
  EXPECT_GE(repeated_, 200);
  EXPECT_GE(readings_, 100);
  EXPECT_GE(unread_, 20);
  EXPECT_GE(takenOver_, 100);
  EXPECT_GE(transfers_, 200);
  EXPECT_GE(meddled_, 200);
  EXPECT_GE(restarts_, 50);
  std::cout << "edits " << edits_ << ", undone " << undone_ << ", repeated " << repeated_ << ", read "
            << readings_ << ", parameters not read " << unread_ << ", taken over " << takenOver_
            << ", transfers " << transfers_ << ", meddled " << meddled_ << ", restarts " << restarts_ << '\n';
}

}  // namespace
}  // namespace kalivor::test
