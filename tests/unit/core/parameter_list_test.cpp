// The parameter list: rows, cells, order, search, filters, and the table that leaves the program.
#include "core/ParameterList.h"

#include <algorithm>
#include <limits>

#include "fakes/Installation.h"

namespace kalivor::test {
namespace {

class ParameterList : public testing::Test, protected Installation {
 protected:
  ParameterList() {
    SetVersions({u"AB1-123.4  -  A.TXT  Luft -  WR"_s});
    SetDefinitions(u"A.TXT"_s,
                   {u"Antrieb  Drehzahl  0  30000  1500  1/m  1  0  int  1F00  N1  Luft  In\\1/m"_s,
                    u"Antrieb  Laufzeit  0  999999  65536  h  0  0  long  1F02  N2  Luft  -"_s,
                    u"Klappe  Wärme Öffnung  -90  90  45  Grad  2  0  int  1F07  N3  Wasser  -"_s,
                    u"Text  Kennwort  -  -  ABCD  -  0  0  string4  1F08  N4  Luft  -"_s});
    Start();
    // The plant types are "" and "Luft".
    module.PlantTypeList.Select(1);
  }

  [[nodiscard]] std::vector<ListRow> Rows(const ValueSet* comparison = nullptr) const {
    return ListRows(module, comparison);
  }

  /// The row of one parameter.
  [[nodiscard]] ListRow RowOf(int index, const ValueSet* comparison = nullptr) const {
    return Rows(comparison).at(static_cast<std::size_t>(index) - 1);
  }

  [[nodiscard]] QString Cell(const ListRow& row, ListColumn column) const {
    return CellText(module, row, column);
  }

  /// The table's values with one changed.
  [[nodiscard]] ValueSet With(int index, const ParameterValue& value) const {
    ValueSet set = TableValues(module);
    set.values[static_cast<std::size_t>(index) - 1].value = value;
    return set;
  }

  /// The indices of the rows in the order of a column.
  [[nodiscard]] std::vector<int> Sorted(std::vector<ListRow> rows, ListColumn column) const {
    std::ranges::sort(rows, [&](const ListRow& left, const ListRow& right) {
      return ListBefore(module, left, right, column);
    });
    std::vector<int> order;
    for (const ListRow& row : rows)
      order.push_back(row.index);
    return order;
  }

  /// The parameters that a search finds.
  [[nodiscard]] std::vector<int> Found(const QString& search) const {
    std::vector<int> found;
    for (const ListRow& row : Rows()) {
      if (Shows({}, SearchWords(search), row, SearchedText(module.Par[row.index])))
        found.push_back(row.index);
    }
    return found;
  }
};

using Indices = std::vector<int>;

// --- rows ---

TEST_F(ParameterList, HasARowForEveryParameter) {
  module.ParNode[2] = kFalse;
  const std::vector<ListRow> rows = Rows();
  ASSERT_EQ(rows.size(), 4U);
  for (int i = 0; i < 4; ++i) {
    EXPECT_EQ(rows[static_cast<std::size_t>(i)].index, i + 1);
    EXPECT_EQ(rows[static_cast<std::size_t>(i)].checked, i != 1);
    EXPECT_EQ(rows[static_cast<std::size_t>(i)].difference, Difference::NotCompared);
    EXPECT_FALSE(rows[static_cast<std::size_t>(i)].nonStandard);
    EXPECT_FALSE(rows[static_cast<std::size_t>(i)].changed);
  }
}

TEST_F(ParameterList, KnowsWhatThePlantTypeHides) {
  EXPECT_FALSE(RowOf(1).hidden);
  EXPECT_TRUE(RowOf(3).hidden);
  module.PlantTypeList.Select(0);
  EXPECT_FALSE(RowOf(3).hidden) << "the empty plant type shows all";
}

TEST_F(ParameterList, KnowsWhatIsNotStandardOutsideOrChanged) {
  module.SetNumber(1, 30001, ValueSource::Loaded);
  module.SetText(4, u"ABCD      "_s, ValueSource::Loaded);
  const std::vector<ListRow> rows = ListRows(module, nullptr, [](int index) { return index == 3; });
  EXPECT_TRUE(rows[0].nonStandard);
  EXPECT_TRUE(rows[0].outside);
  EXPECT_FALSE(rows[0].changed);
  EXPECT_TRUE(rows[2].changed);
  EXPECT_FALSE(rows[3].nonStandard) << "padding is no change";
  EXPECT_EQ(Cell(rows[0], ListColumn::State), u"außerhalb, nicht Standard"_s);
  EXPECT_EQ(Cell(rows[2], ListColumn::State), u"geändert, ausgeblendet"_s);
  EXPECT_EQ(Cell(rows[1], ListColumn::State), QString());
}

TEST_F(ParameterList, ComparesWithASet) {
  const ValueSet other = With(1, {30001, {}});
  const ListRow row = RowOf(1, &other);
  EXPECT_EQ(row.difference, Difference::Different);
  ASSERT_TRUE(row.comparison);
  EXPECT_EQ(row.comparison->number, 30001);
  EXPECT_TRUE(row.comparisonOutside);
  EXPECT_FALSE(row.outside);
  EXPECT_EQ(Cell(row, ListColumn::Comparison), u"3000.1"_s);
  EXPECT_EQ(Cell(row, ListColumn::State), u"verschieden"_s);
  EXPECT_EQ(Cell(RowOf(2, &other), ListColumn::State), u"gleich"_s);
}

TEST_F(ParameterList, ShowsNoComparisonThatWasNotRead) {
  ValueSet other = With(1, {77, {}});
  other.values[0].read = false;
  const ListRow row = RowOf(1, &other);
  EXPECT_EQ(row.difference, Difference::NotRead);
  EXPECT_FALSE(row.comparison);
  EXPECT_EQ(Cell(row, ListColumn::Comparison), QString());
  EXPECT_EQ(Cell(row, ListColumn::State), u"nicht gelesen"_s);
}

TEST_F(ParameterList, ShowsNoTextWhereTheValueIsANumber) {
  ValueSet other = With(1, {77, u"abc"_s});
  other.values[0].Typ = u"string4"_s;
  EXPECT_FALSE(RowOf(1, &other).comparison);
  EXPECT_EQ(Cell(RowOf(1, &other), ListColumn::State), u"anderer Typ"_s);
  other.values[0].Typ = u"long"_s;
  EXPECT_EQ(Cell(RowOf(1, &other), ListColumn::Comparison), u"7.7"_s);
}

TEST_F(ParameterList, HasNoRowForWhatTheDefinitionsDoNotKnow) {
  ValueSet other = TableValues(module);
  other.values.push_back({u"X"_s, u"int"_s, {}, 0, {1, {}}});
  EXPECT_EQ(Rows(&other).size(), 4U);
}

// --- cells ---

TEST_F(ParameterList, ShowsEveryColumn) {
  module.SetNumber(3, -50, ValueSource::Edited);
  const ValueSet other = With(3, {25, {}});
  const ListRow row = RowOf(3, &other);
  QStringList cells;
  for (int i = 0; i < kListColumns; ++i) {
    const auto column = static_cast<ListColumn>(i);
    cells.append(ColumnTitle(column) + u'=' + Cell(row, column));
  }
  EXPECT_EQ(
      Lines(cells),
      u"Kreuz= | Nr=3 | Gruppe=Klappe | Name=Wärme Öffnung | Wert=-0.50 | Vergleich=0.25 | "
      "Differenz=+0.75 | Zustand=verschieden, nicht Standard, ausgeblendet | Einheit=Grad | Min=-0.90 | "
      "Max=0.90 | Standard=0.45 | Variable=N3 | Adresse=1F07 | Typ=int"_s);
}

TEST_F(ParameterList, ATextHasNeitherLimitsNorADifference) {
  module.SetText(4, u"AB  "_s, ValueSource::Edited);
  const ValueSet other = With(4, {0, u"XY"_s});
  const ListRow row = RowOf(4, &other);
  EXPECT_EQ(Cell(row, ListColumn::Value), u"AB"_s);
  EXPECT_EQ(Cell(row, ListColumn::Comparison), u"XY"_s);
  EXPECT_EQ(Cell(row, ListColumn::Difference), QString());
  EXPECT_EQ(Cell(row, ListColumn::Minimum), QString());
  EXPECT_EQ(Cell(row, ListColumn::Maximum), QString());
  EXPECT_EQ(Cell(row, ListColumn::Standard), u"ABCD"_s);
}

TEST_F(ParameterList, ADifferenceMayNeedMoreThan32Bits) {
  module.SetNumber(2, std::numeric_limits<qint32>::max(), ValueSource::Edited);
  const ValueSet other = With(2, {std::numeric_limits<qint32>::min(), {}});
  EXPECT_EQ(Cell(RowOf(2, &other), ListColumn::Difference), u"-4294967295"_s);
  EXPECT_EQ(Cell(RowOf(1, &other), ListColumn::Difference), QString()) << "equal numbers have none";
}

// --- order ---

TEST_F(ParameterList, OrdersNumbersAsTheyAreShown) {
  module.SetNumber(1, 90, ValueSource::Edited);   // 9.0
  module.SetNumber(2, 10, ValueSource::Edited);   // 10
  module.SetNumber(3, -50, ValueSource::Edited);  // -0.50
  EXPECT_EQ(Sorted(Rows(), ListColumn::Value), (Indices{3, 1, 2, 4})) << "texts come last";
  EXPECT_EQ(Sorted(Rows(), ListColumn::Number), (Indices{1, 2, 3, 4}));
}

TEST_F(ParameterList, OrdersTextsByTheGermanAlphabet) {
  const QStringList names{u"Zone"_s,   u"Äpfel 10"_s,  u"apfel 9"_s, u"Öl"_s,
                          u"Straße"_s, u"Strasse 2"_s, u"P 2"_s,     u"P 10"_s};
  while (module.ParCount <= names.size())
    AddParameter(u"int"_s, {});
  for (int i = 1; i <= names.size(); ++i)
    module.Par[i].Name = names.at(i - 1);
  EXPECT_EQ(Sorted(Rows(), ListColumn::Name), (Indices{3, 2, 4, 7, 8, 5, 6, 1}));
}

TEST_F(ParameterList, EqualRowsKeepTheOrderOfTheTable) {
  EXPECT_EQ(Sorted(Rows(), ListColumn::Difference), (Indices{1, 2, 3, 4}));
  EXPECT_EQ(Sorted(Rows(), ListColumn::Group), (Indices{1, 2, 3, 4}));
}

TEST_F(ParameterList, OrdersMarksWithTheCheckedFirst) {
  module.ParNode[1] = kFalse;
  EXPECT_EQ(Sorted(Rows(), ListColumn::Mark), (Indices{2, 3, 4, 1}));
}

TEST_F(ParameterList, OrdersNumbersOfUnusableDecimalsAsWell) {
  module.Par[1].Zahl1 = 32767;
  module.Par[1].Zahl2 = 32767;
  EXPECT_NO_THROW((void)Sorted(Rows(), ListColumn::Value));
}

// --- search ---

TEST_F(ParameterList, FindsWithoutRegardToCaseAndUmlauts) {
  for (const QString& search : {u"wärme"_s, u"waerme"_s, u"WAERME"_s, u"WÄRME"_s, u"oeffnung"_s, u"ÖFF"_s})
    EXPECT_EQ(Found(search), (Indices{3})) << search.toStdString();
  EXPECT_EQ(Folded(u"Straße"_s), Folded(u"STRASSE"_s));
}

TEST_F(ParameterList, FindsInNameGroupVariableHelpTextAndAddress) {
  EXPECT_EQ(Found(u"drehz"_s), (Indices{1}));
  EXPECT_EQ(Found(u"antrieb"_s), (Indices{1, 2}));
  EXPECT_EQ(Found(u"n4"_s), (Indices{4}));
  EXPECT_EQ(Found(u"1/m"_s), (Indices{1}));
  EXPECT_EQ(Found(u"1f07"_s), (Indices{3}));
  EXPECT_EQ(Found(u"string"_s), Indices()) << "types are not searched";
}

TEST_F(ParameterList, SeveralWordsNarrow) {
  EXPECT_EQ(Found(u"antrieb zeit"_s), (Indices{2}));
  EXPECT_EQ(Found(u"  zeit   antrieb "_s), (Indices{2}));
  EXPECT_EQ(Found(u"antrieb klappe"_s), Indices());
  EXPECT_EQ(Found(u"drehzahlantrieb"_s), Indices()) << "no word reaches from one text into the next";
  EXPECT_EQ(Found(u"   "_s), (Indices{1, 2, 3, 4}));
}

// --- filters and counts ---

TEST_F(ParameterList, FiltersNarrowTogether) {
  ListRow row;
  row.checked = row.nonStandard = row.changed = row.outside = true;
  row.difference = Difference::OnlyLeft;
  const auto shown = [&](const ListFilter& filter) { return Shows(filter, {}, row, {}); };
  const ListFilter all{{}, true, true, true, true, true};
  EXPECT_TRUE(shown(all));
  const auto hides = [&](bool ListRow::*property) {
    row.*property = false;
    const bool hidden = !shown(all) && shown({});
    row.*property = true;
    return hidden;
  };
  EXPECT_TRUE(hides(&ListRow::checked));
  EXPECT_TRUE(hides(&ListRow::nonStandard));
  EXPECT_TRUE(hides(&ListRow::changed));
  EXPECT_TRUE(hides(&ListRow::outside));
  for (const Difference same : {Difference::Equal, Difference::NotCompared}) {
    row.difference = same;
    EXPECT_FALSE(shown(all));
    EXPECT_TRUE(shown({}));
  }
  for (const Difference other :
       {Difference::Different, Difference::OnlyRight, Difference::OtherType, Difference::NotRead}) {
    row.difference = other;
    EXPECT_TRUE(shown(all));
  }
}

TEST_F(ParameterList, CountsWhatEachFilterWouldShow) {
  module.SetNumber(1, 30001, ValueSource::Edited);
  module.SetNumber(2, 7, ValueSource::Edited);
  module.ParNode[4] = kFalse;
  const ValueSet other = With(4, {0, u"XY"_s});
  const std::vector<ListRow> rows = ListRows(module, &other, [](int index) { return index < 2; });
  const ListCounts counts = CountRows(rows);
  EXPECT_EQ(counts.all, 4);
  EXPECT_EQ(counts.checked, 3);
  EXPECT_EQ(counts.different, 1);
  EXPECT_EQ(counts.nonStandard, 2);
  EXPECT_EQ(counts.changed, 1);
  EXPECT_EQ(counts.outside, 1);
}

TEST_F(ParameterList, TheLineLeavesOutWhatIsNone) {
  EXPECT_EQ(CountLine(2000, {37, 30, 5, 4, 3, 2}), u"37 von 2000 · 5 verschieden · 2 außerhalb"_s);
  EXPECT_EQ(CountLine(2000, {37, 30, 0, 4, 3, 2}), u"37 von 2000 · 2 außerhalb"_s);
  EXPECT_EQ(CountLine(4, {}), u"0 von 4"_s);
}

// --- what leaves the program ---

TEST_F(ParameterList, HasALineForVersionPlantTypeFileAndDate) {
  module.Dateiname = u"C:\\Werte\\a.qpf"_s;
  EXPECT_EQ(ListHeading(module, QDate(2026, 3, 1)),
            (QStringList{u"Reglerversion: AB1-123.4"_s, u"Anlageart: Luft"_s, u"Datei: C:\\Werte\\a.qpf"_s,
                         u"Datum: 01.03.2026"_s}));
  module.Dateiname.clear();
  module.PlantTypeList.Select(0);
  EXPECT_EQ(ListHeading(module, QDate(2026, 3, 1)),
            (QStringList{u"Reglerversion: AB1-123.4"_s, u"Datum: 01.03.2026"_s}));
}

TEST_F(ParameterList, MakesATableOfRowsAndColumns) {
  module.ParNode[4] = kFalse;
  const std::vector<ListRow> rows{RowOf(4), RowOf(1)};
  const ListColumn columns[] = {ListColumn::Mark, ListColumn::Name, ListColumn::Value,
                                ListColumn::Difference};
  const ListTable table = TableOf(module, rows, columns, {u"heading"_s});
  EXPECT_EQ(table.heading, QStringList{u"heading"_s});
  EXPECT_EQ(table.titles, (QStringList{u"Kreuz"_s, u"Name"_s, u"Wert"_s, u"Differenz"_s}));
  ASSERT_EQ(table.rows.size(), 2U);
  const auto texts = [&](std::size_t row) {
    QStringList cells;
    for (const TableCell& cell : table.rows[row])
      cells.append(cell.text + (cell.number ? u"#"_s : QString()));
    return cells;
  };
  EXPECT_EQ(texts(0), (QStringList{QString(), u"Kennwort"_s, u"ABCD"_s, QString()}));
  EXPECT_EQ(texts(1), (QStringList{u"x"_s, u"Drehzahl"_s, u"150.0#"_s, QString()}));
}

TEST_F(ParameterList, ColumnsOfNumbersAreAlignedAtTheRight) {
  int numeric = 0;
  for (int i = 0; i < kListColumns; ++i)
    numeric += IsNumeric(static_cast<ListColumn>(i)) ? 1 : 0;
  EXPECT_EQ(numeric, 7);
  EXPECT_TRUE(IsNumeric(ListColumn::Value));
  EXPECT_FALSE(IsNumeric(ListColumn::Name));
}

}  // namespace
}  // namespace kalivor::test
