// Sets of values: what they hold, and where two of them differ.
#include "core/ValueSets.h"

#include <limits>

#include "fakes/Installation.h"
#include "fakes/NullForms.h"
#include "unit/core/ValueFileBytes.h"

namespace kalivor::test {
namespace {

constexpr qint32 kLeast = std::numeric_limits<qint32>::min();
constexpr qint32 kGreatest = std::numeric_limits<qint32>::max();

/// A table without files behind it.
class ValueSets : public testing::Test, protected Installation {
 protected:
  ValueSets() { StartEmpty(); }

  int AddNumber(const QString& variable, qint32 value, const QString& address = {}) {
    ParameterRecord& record = AddParameter(u"int"_s, address, variable);
    record.Wert = value;
    record.Min = kLeast;
    record.Max = kGreatest;
    return module.ParCount - 1;
  }

  int AddText(const QString& type, const QString& variable, const QString& text) {
    AddParameter(type, {}, variable).WertText = text;
    return module.ParCount - 1;
  }

  static SetValue Value(const QString& variable, qint32 number, const QString& address = {},
                        int element = 0) {
    return {variable, u"int"_s, address, element, {number, {}}};
  }

  /// A set of its own, as of another table.
  static ValueSet SetOf(std::vector<SetValue> values) {
    ValueSet set;
    set.values = std::move(values);
    return set;
  }

  [[nodiscard]] static ValueSet FileOf(const QByteArray& records, const QString& version = u"AB1-123.4"_s) {
    return FileValues(ParseValueFile(Current(1, {}, version, {}) + records), u"a.qpf"_s);
  }

  /// The rows as text: index, difference, the values of both sides.
  [[nodiscard]] QStringList Rows(const ValueSet& left, const ValueSet& right) const {
    const auto shown = [](const ValueSet& set, int at) {
      if (at < 0) return u"-"_s;
      const SetValue& value = set.values.at(static_cast<std::size_t>(at));
      return value.read ? QString::number(value.value.number) + value.value.text : u"?"_s;
    };
    QStringList rows;
    for (const ComparedValue& row : CompareSets(module, left, right)) {
      rows.append(u"%1 %2: %3 %4"_s.arg(row.index).arg(DifferenceText(row.difference), shown(left, row.left),
                                                       shown(right, row.right)));
    }
    return rows;
  }

  /// The rows of the table against a set.
  [[nodiscard]] QStringList Rows(const ValueSet& right) const { return Rows(TableValues(module), right); }
};

// --- what the sets hold ---

TEST_F(ValueSets, TheTableIsASet) {
  AddNumber(u"A"_s, 5, u"1F00"_s);
  AddNumber(u"B"_s, 6, u"1F02"_s);
  AddNumber(u"A"_s, 7, u"1F04"_s);
  const ValueSet set = TableValues(module);
  EXPECT_EQ(set.origin, Origin::Table);
  EXPECT_EQ(set.name, u"PC"_s);
  EXPECT_EQ(set.version, u"AB1-123.4"_s);
  EXPECT_FALSE(set.partial);
  ASSERT_EQ(set.values.size(), 3U);
  EXPECT_EQ(set.values[2].Variable, u"A"_s);
  EXPECT_EQ(set.values[2].VarAdresse, u"1F04"_s);
  EXPECT_EQ(set.values[2].element, 1) << "the second of its name";
  EXPECT_EQ(set.values[2].value.number, 7);
  EXPECT_TRUE(set.values[2].read);
}

TEST_F(ValueSets, ASetIsACopy) {
  AddNumber(u"A"_s, 5);
  const ValueSet set = TableValues(module);
  module.SetNumber(1, 6, ValueSource::Edited);
  EXPECT_EQ(set.values[0].value.number, 5);
}

TEST_F(ValueSets, TheStandardValuesAreASet) {
  AddNumber(u"A"_s, 5);
  module.Par[1].Standard = 9;
  AddText(u"string4"_s, u"T"_s, u"WXYZ"_s);
  module.Par[2].StandardText = u"ABCD"_s;
  const ValueSet set = StandardValues(module);
  EXPECT_EQ(set.origin, Origin::Standard);
  EXPECT_EQ(set.name, u"Standardwerte"_s);
  EXPECT_EQ(set.values[0].value.number, 9);
  EXPECT_EQ(set.values[1].value.text, u"ABCD"_s);
}

TEST_F(ValueSets, AFileIsASet) {
  const ValueSet set = FileOf(Current(5, u"abc"_s, u"A"_s, u"int"_s) + Current(6, {}, u"A"_s, u"long"_s));
  EXPECT_EQ(set.origin, Origin::File);
  EXPECT_EQ(set.name, u"a.qpf"_s);
  EXPECT_EQ(set.version, u"AB1-123.4"_s);
  EXPECT_FALSE(set.shortNames);
  ASSERT_EQ(set.values.size(), 2U);
  EXPECT_EQ(set.values[0].value.number, 5);
  EXPECT_EQ(set.values[0].value.text, u"abc"_s + QString(17, u' '));
  EXPECT_EQ(set.values[1].Typ, u"long"_s);
  EXPECT_EQ(set.values[1].element, 1);
}

TEST_F(ValueSets, AFileOfTheOldLayoutHasShortNames) {
  EXPECT_TRUE(FileValues(ParseValueFile(Old(1, {}, u"AB1-123.4"_s, {}) + Old(5, {}, u"A"_s, u"int"_s)), {})
                  .shortNames);
}

TEST_F(ValueSets, ReadsAFileAndLeavesTheTable) {
  AddNumber(u"A"_s, 5);
  files.files[u"b.qpf"_s] = {Current(1, {}, u"ZZ9-999.9"_s, {}) + Current(6, {}, u"A"_s, u"int"_s), {}};
  const SetResult read = ReadFileValues(files, u"b.qpf"_s);
  ASSERT_TRUE(read.Ok()) << read.error.toStdString();
  EXPECT_EQ(read.set.values.at(0).value.number, 6);
  EXPECT_EQ(module.Par[1].Wert, 5);
  EXPECT_TRUE(module.Dateiname.isEmpty());
  EXPECT_EQ(VersionFault(module, read.set),
            u"Fehler beim lesen von\r\nb.qpf\r\nUnbekannte ReglerVersion: ZZ9-999.9"_s);
  EXPECT_EQ(VersionFault(module, TableValues(module)), QString());
}

TEST_F(ValueSets, TellsWhyAFileIsNoSet) {
  EXPECT_EQ(ReadFileValues(files, u"b.qpf"_s).error,
            u"Fehler beim lesen von\r\nb.qpf\r\nDatei nicht gefunden."_s);
  files.files[u"b.qpf"_s] = {"short", {}};
  EXPECT_EQ(ReadFileValues(files, u"b.qpf"_s).error,
            u"Fehler beim lesen von\r\nb.qpf\r\nDie Datei ist keine Wertedatei."_s);
}

TEST_F(ValueSets, AFileOfTooManyBytesIsRefused) {
  MemoryFiles large;
  large.files[u"b.qpf"_s] = QByteArray(kLargestValueFile_bytes + 1, ' ');
  EXPECT_EQ(ReadFileValues(large, u"b.qpf"_s).error,
            u"Fehler beim lesen von\r\nb.qpf\r\nDie Datei ist zu groß."_s);
}

// --- comparing by name ---

TEST_F(ValueSets, ComparesByVariable) {
  AddNumber(u"A"_s, 1);
  AddNumber(u"B"_s, 2);
  AddNumber(u"C"_s, 3);
  EXPECT_EQ(Lines(Rows(SetOf({Value(u"C"_s, 3), Value(u"X"_s, 9), Value(u"A"_s, 7)}))),
            u"1 verschieden: 1 7 | 2 nur links: 2 - | 3 gleich: 3 3 | 0 nur rechts: - 9"_s);
}

TEST_F(ValueSets, BothSidesMayBeUnknownToTheDefinitions) {
  AddNumber(u"A"_s, 1);
  const ValueSet left = SetOf({Value(u"X"_s, 1), Value(u"Y"_s, 2), Value(u"Z"_s, 3)});
  const ValueSet right = SetOf({Value(u"Y"_s, 5), Value(u"W"_s, 6), Value(u"Z"_s, 3)});
  EXPECT_EQ(Lines(Rows(left, right)),
            u"0 nur links: 1 - | 0 verschieden: 2 5 | 0 gleich: 3 3 | 0 nur rechts: - 6"_s);
}

TEST_F(ValueSets, NeitherCaseNorBlanksInFrontAreOverlooked) {
  AddNumber(u"N1"_s, 1);
  EXPECT_EQ(Lines(Rows(FileOf(Current(1, {}, u"n1"_s, u"int"_s) + Current(1, {}, u" N1"_s, u"int"_s)))),
            u"1 nur links: 1 - | 0 nur rechts: - 1"_s + QString(20, u' ') + u" | 0 nur rechts: - 1"_s +
                QString(20, u' '));
}

// --- arrays and shared names ---

TEST_F(ValueSets, ElementsOfAnArrayAreToldApartByTheirAddresses) {
  AddNumber(u"A"_s, 1, u"1F00"_s);
  AddNumber(u"A"_s, 2, u"1F02"_s);
  AddNumber(u"A"_s, 3, u"1F04"_s);
  // In another order, as another version's definitions may list them.
  EXPECT_EQ(Lines(Rows(SetOf({Value(u"A"_s, 3, u"1F04"_s, 0), Value(u"A"_s, 8, u"1F00"_s, 1),
                              Value(u"A"_s, 9, u"2000"_s, 2)}))),
            u"1 verschieden: 1 8 | 2 nur links: 2 - | 3 gleich: 3 3 | 0 nur rechts: - 9"_s);
}

TEST_F(ValueSets, OneElementThatWasReadIsTheOneOfItsAddress) {
  AddNumber(u"A"_s, 1, u"1F00"_s);
  AddNumber(u"A"_s, 2, u"1F02"_s);
  ValueSet regler = SetOf({Value(u"A"_s, 2, u"1F02"_s, 1)});
  regler.partial = true;
  EXPECT_EQ(Lines(Rows(regler)), u"1 : 1 - | 2 gleich: 2 2"_s);
}

TEST_F(ValueSets, OneElementWithoutAddressIsTheOneOfItsNumber) {
  AddNumber(u"A"_s, 1);
  AddNumber(u"A"_s, 2);
  EXPECT_EQ(Lines(Rows(SetOf({Value(u"A"_s, 2, {}, 1)}))), u"1 nur links: 1 - | 2 gleich: 2 2"_s);
}

TEST_F(ValueSets, ParametersThatShareNameAndAddressKeepTheirOrder) {
  AddNumber(u"A"_s, 1, u"1F00"_s);
  AddNumber(u"A"_s, 2, u"1F00"_s);
  EXPECT_EQ(Lines(Rows(TableValues(module))), u"1 gleich: 1 1 | 2 gleich: 2 2"_s);
  // Numbered in another way, each is met once.
  EXPECT_EQ(Lines(Rows(SetOf({Value(u"A"_s, 1, u"1F00"_s, 5), Value(u"A"_s, 2, u"1F00"_s, 6),
                              Value(u"A"_s, 3, u"1F00"_s, 7)}))),
            u"1 gleich: 1 1 | 2 gleich: 2 2 | 0 nur rechts: - 3"_s);
}

TEST_F(ValueSets, TheNthRecordOfAFileIsTheNthParameterOfItsName) {
  AddNumber(u"A"_s, 1, u"1F00"_s);
  AddNumber(u"B"_s, 2, u"1F10"_s);
  AddNumber(u"A"_s, 3, u"1F02"_s);
  module.Dateiname = u"c.qpf"_s;
  const ValueSet file = FileOf(Current(1, {}, u"A"_s, u"int"_s) + Current(2, {}, u"B"_s, u"int"_s) +
                               Current(4, {}, u"A"_s, u"int"_s) + Current(5, {}, u"A"_s, u"int"_s));
  const QStringList rows = Rows(file);
  ASSERT_EQ(rows.size(), 4);
  EXPECT_TRUE(rows[0].startsWith(u"1 gleich: 1 1"_s)) << rows[0].toStdString();
  EXPECT_TRUE(rows[2].startsWith(u"3 verschieden: 3 4"_s)) << rows[2].toStdString();
  EXPECT_TRUE(rows[3].startsWith(u"0 nur rechts: - 5"_s)) << "the third of a name that two have";
}

TEST_F(ValueSets, ANameOfOneParameterNeedsNoEqualAddress) {
  AddNumber(u"A"_s, 1, u"1F00"_s);
  EXPECT_EQ(Lines(Rows(SetOf({Value(u"A"_s, 1, u"2F00"_s)}))), u"1 gleich: 1 1"_s)
      << "it has moved from version to version";
}

// --- old files ---

TEST_F(ValueSets, AnOldFileKnowsTheBeginningsOfNames) {
  const QString beginning(20, u'v');
  AddNumber(beginning + u"1"_s, 1);
  AddNumber(beginning + u"2"_s, 2);
  AddNumber(QString(20, u'w'), 3);
  const ValueSet file =
      FileValues(ParseValueFile(Old(1, {}, u"AB1-123.4"_s, {}) + Old(1, {}, beginning, u"int"_s) +
                                Old(9, {}, beginning, u"int"_s) + Old(3, {}, QString(20, u'w'), u"int"_s)),
                 {});
  ASSERT_TRUE(file.shortNames);
  std::vector<Difference> differences;
  for (const ComparedValue& row : CompareSets(module, TableValues(module), file))
    differences.push_back(row.difference);
  EXPECT_EQ(differences, (std::vector{Difference::Equal, Difference::Different, Difference::Equal}));
}

TEST_F(ValueSets, AnOldAndACurrentFileMeetAtTheBeginningsOfUnknownNames) {
  ValueSet old = SetOf({Value(QString(20, u'v'), 1)});
  old.shortNames = true;
  const ValueSet current = SetOf({Value(QString(25, u'v'), 2)});
  EXPECT_EQ(Lines(Rows(old, current)), u"0 verschieden: 1 2"_s);
  EXPECT_EQ(Lines(Rows(current, old)), u"0 verschieden: 2 1"_s);
}

TEST_F(ValueSets, ACurrentFileKnowsWholeNames) {
  AddNumber(QString(25, u'v'), 1);
  EXPECT_EQ(Lines(Rows(SetOf({Value(QString(20, u'v'), 1)}))), u"1 nur links: 1 - | 0 nur rechts: - 1"_s);
}

// --- types ---

TEST_F(ValueSets, AVariableOfAnotherTypeIsNotCompared) {
  AddNumber(u"A"_s, 1);
  ValueSet other = SetOf({Value(u"A"_s, 1)});
  other.values[0].Typ = u"long"_s;
  EXPECT_EQ(Lines(Rows(other)), u"1 anderer Typ: 1 1"_s);
  other.values[0].Typ = u"integer"_s;
  EXPECT_EQ(Lines(Rows(other)), u"1 gleich: 1 1"_s) << "three letters decide how it is transferred";
}

TEST_F(ValueSets, TextsAreEqualUpToPaddingAndLength) {
  AddText(u"string4"_s, u"T"_s, u"AB"_s);
  const struct {
    QString text;
    QString difference;
  } cases[] = {
      {u"AB"_s, u"gleich"_s},       {u"AB  "_s, u"gleich"_s},     {u"AB                "_s, u"gleich"_s},
      {u"AB  XY"_s, u"gleich"_s},   {u" AB"_s, u"verschieden"_s}, {u"ab"_s, u"verschieden"_s},
      {u"ABC"_s, u"verschieden"_s}, {{}, u"verschieden"_s}};
  for (const auto& [text, difference] : cases) {
    const ValueSet other = SetOf({{u"T"_s, u"string4"_s, {}, 0, {77, text}}});
    EXPECT_EQ(DifferenceText(CompareSets(module, TableValues(module), other).at(0).difference), difference)
        << text.toStdString();
  }
}

TEST_F(ValueSets, NumbersOfTextsAndTextsOfNumbersDoNotCount) {
  AddNumber(u"A"_s, 1);
  const ValueSet other = SetOf({{u"A"_s, u"int"_s, {}, 0, {1, u"anything"_s}}});
  EXPECT_EQ(CompareSets(module, TableValues(module), other).at(0).difference, Difference::Equal);
}

TEST_F(ValueSets, OfAnUnknownTypeBothCount) {
  AddParameter(u"byte"_s, {}, u"A"_s).WertText = u"x"_s;
  const auto difference = [&](const QString& type, const ParameterValue& value) {
    return CompareSets(module, TableValues(module), SetOf({{u"A"_s, type, {}, 0, value}})).at(0).difference;
  };
  EXPECT_EQ(difference(u"byte"_s, {0, u"x  "_s}), Difference::Equal);
  EXPECT_EQ(difference(u"byte"_s, {1, u"x"_s}), Difference::Different);
  EXPECT_EQ(difference(u"byte"_s, {0, u"y"_s}), Difference::Different);
  EXPECT_EQ(difference(u"real"_s, {0, u"x"_s}), Difference::OtherType) << "nothing says that they are alike";
}

TEST_F(ValueSets, TwoFilesAreComparedByTheirOwnTypeWhereTheDefinitionsHaveAnother) {
  AddNumber(u"A"_s, 1);
  const ValueSet left = SetOf({{u"A"_s, u"string4"_s, {}, 0, {0, u"AB"_s}}});
  const ValueSet right = SetOf({{u"A"_s, u"string4"_s, {}, 0, {0, u"XY"_s}}});
  EXPECT_EQ(Lines(Rows(left, right)), u"1 verschieden: 0AB 0XY"_s);
  EXPECT_EQ(ExactText(module.Par[1], left.values[0]), u"AB"_s);
}

// --- limits, and what was not read ---

TEST_F(ValueSets, TellsWhichSideIsOutsideTheLimits) {
  AddNumber(u"A"_s, 5);
  module.Par[1].Min = 0;
  module.Par[1].Max = 10;
  const struct {
    qint32 value;
    bool outside;
  } cases[] = {{0, false}, {10, false}, {-1, true}, {11, true}, {kLeast, true}, {kGreatest, true}};
  for (const auto& [value, outside] : cases) {
    const ComparedValue right = CompareSets(module, TableValues(module), SetOf({Value(u"A"_s, value)})).at(0);
    EXPECT_EQ(right.rightOutside, outside) << value;
    EXPECT_FALSE(right.leftOutside);
    EXPECT_EQ(CompareSets(module, SetOf({Value(u"A"_s, value)}), {}).at(0).leftOutside, outside) << value;
  }
}

TEST_F(ValueSets, TextsAreNeverOutside) {
  ParameterRecord record;
  record.Typ = u"string4"_s;
  EXPECT_FALSE(IsOutside(record, {5, u"AB"_s}));
  record.Typ = u"byte"_s;
  EXPECT_TRUE(IsOutside(record, {5, {}})) << "an unknown type is edited as a number";
}

TEST_F(ValueSets, WhatWasNotReadIsNeitherEqualNorOutside) {
  AddNumber(u"A"_s, 0);
  module.Par[1].Min = 1;
  ValueSet regler = SetOf({Value(u"A"_s, 0)});
  regler.values[0].read = false;
  const ComparedValue row = CompareSets(module, TableValues(module), regler).at(0);
  EXPECT_EQ(row.difference, Difference::NotRead);
  EXPECT_TRUE(row.leftOutside);
  EXPECT_FALSE(row.rightOutside);
  EXPECT_EQ(CompareSets(module, regler, TableValues(module)).at(0).difference, Difference::NotRead);
  EXPECT_EQ(ExactText(module.Par[1], regler.values[0]), QString()) << "no old value";
}

TEST_F(ValueSets, WhatAPartialSetDoesNotHoldWasNotAskedFor) {
  AddNumber(u"A"_s, 0);
  ValueSet regler = SetOf({});
  regler.partial = true;
  EXPECT_EQ(Lines(Rows(regler)), u"1 : 0 -"_s);
  EXPECT_EQ(Lines(Rows(regler, SetOf({Value(u"A"_s, 1), Value(u"X"_s, 2)}))),
            u"1 : - 1 | 0 nur rechts: - 2"_s)
      << "nobody asks for what the definitions do not know";
}

// --- other versions ---

TEST_F(ValueSets, AccountsForASetOfAnotherVersion) {
  AddNumber(u"A"_s, 1);
  AddNumber(u"B"_s, 2);
  AddNumber(u"C"_s, 3);
  AddText(u"string4"_s, u"T"_s, {});
  AddText(u"string24"_s, u"U"_s, {});
  AddText(u"string24"_s, u"V"_s, {});
  const ConversionAccount account =
      AccountOf(module, FileOf(Current(1, {}, u"A"_s, u"int"_s) + Current(1, {}, u"B"_s, u"long"_s) +
                               Current(1, {}, u"X"_s, u"int"_s) + Current(1, {}, u"Y"_s, u"int"_s) +
                               Current(1, u"ABCDE"_s, u"T"_s, u"string6"_s) +
                               Current(1, QString(20, u'u'), u"U"_s, u"string24"_s) +
                               Current(1, QString(19, u'v'), u"V"_s, u"string24"_s)));
  EXPECT_EQ(account.matched, 4);
  EXPECT_EQ(account.onlyInSet, 2);
  EXPECT_EQ(account.onlyInDefinitions, 1);
  EXPECT_EQ(account.otherType, 1);
  EXPECT_EQ(account.cutTexts, 2) << "one is longer than its parameter, one fills all that a file holds";
}

TEST_F(ValueSets, ATextThatFitsItsParameterIsNotCut) {
  AddText(u"string4"_s, u"T"_s, {});
  AddText(u"string20"_s, u"U"_s, {});
  EXPECT_EQ(AccountOf(module, FileOf(Current(1, u"ABCD"_s, u"T"_s, u"string4"_s) +
                                     Current(1, QString(20, u'u'), u"U"_s, u"string20"_s)))
                .cutTexts,
            0);
}

TEST_F(ValueSets, DamagedTypesDoNotMatter) {
  AddNumber(u"A"_s, 1);
  for (const QString& type :
       {u"string"_s, u"stringEE"_s, u"string&H"_s, u"string-9"_s, QString(), u"\0\0"_s}) {
    const ValueSet set = SetOf({{u"A"_s, type, {}, 0, {1, u"ABC"_s}}, {u"X"_s, type, {}, 0, {1, u"ABC"_s}}});
    EXPECT_NO_THROW((void)CompareSets(module, set, set));
    EXPECT_NO_THROW((void)AccountOf(module, set));
    EXPECT_EQ(CompareSets(module, set, set).at(1).difference, Difference::Equal);
  }
}

// --- numbers and texts as they are shown ---

TEST(ExactNumbers, HaveTheirSignTheirDecimalsAndTheirHiddenDigits) {
  const struct {
    qint16 shown, hidden;
    qint64 number;
    QString text;
  } cases[] = {
      {0, 0, 0, u"0"_s},
      {0, 0, -7, u"-7"_s},
      {2, 0, -50, u"-0.50"_s},
      {2, 0, 50, u"0.50"_s},
      {2, 0, -1050, u"-10.50"_s},
      {2, 0, 5, u"0.05"_s},
      {2, 0, 0, u"0.00"_s},
      {1, 1, 1230, u"12.3"_s},
      {1, 1, 1234, u"12.34"_s},
      {1, 1, -4, u"-0.04"_s},
      {0, 2, 1200, u"12"_s},
      {0, 2, 1201, u"12.01"_s},
      {0, 2, 1210, u"12.1"_s},
      {0, 0, kLeast, u"-2147483648"_s},
      {3, 0, kLeast, u"-2147483.648"_s},
      {9, 0, kLeast, u"-2.147483648"_s},
      {0, 9, 1000000000, u"1"_s},
      {2, 0, qint64{kGreatest} - kLeast, u"42949672.95"_s},
      {9, 1, 1234, u"1234E-10"_s},
      {0, 10, -1234, u"-1234E-10"_s},
      {32767, 32767, 5, u"5E-65534"_s},
      {-1, 0, 1234, u"1234"_s},
      {-1, 2, 1234, u"123.4"_s},
      {2, -1, 1234, u"12.34"_s},
      {-32768, -32768, 7, u"7"_s},
  };
  for (const auto& example : cases) {
    ParameterRecord record;
    record.Typ = u"long"_s;
    record.Zahl1 = example.shown;
    record.Zahl2 = example.hidden;
    EXPECT_EQ(ExactNumber(record, example.number), example.text) << example.shown << ' ' << example.hidden;
  }
}

TEST(ExactTexts, AreTextsOfTextsAndNumbersOfTheRest) {
  ParameterRecord record;
  record.Zahl1 = 1;
  for (const QString& type : {u"int"_s, u"byte"_s, QString()}) {
    record.Typ = type;
    EXPECT_EQ(ExactText(record, ParameterValue{15, u"text"_s}), u"1.5"_s);
  }
  for (const QString& type : {u"string4"_s, u"strange"_s}) {
    record.Typ = type;
    EXPECT_EQ(ExactText(record, ParameterValue{15, u" text  "_s}), u" text"_s);
  }
}

TEST(ExactTexts, OfAnotherTypeShareTheDecimals) {
  ParameterRecord record;
  record.Typ = u"int"_s;
  record.Zahl1 = 1;
  EXPECT_EQ(ExactText(record, SetValue{u"A"_s, u"long"_s, {}, 0, {700'000, {}}}), u"70000.0"_s);
}

// --- many ---

// The names make the chains of a hash long where it is a bad one.
TEST_F(ValueSets, ComparesAFullTableOfOneName) {
  for (int i = 1; i <= kLastParameter; ++i)
    AddNumber(u"A"_s, i);
  std::vector<SetValue> values;
  values.reserve(kLastParameter);
  for (int i = 0; i < kLastParameter; ++i)
    values.push_back(Value(u"A"_s, i + 1 + i % 2, {}, i));
  const std::vector<ComparedValue> rows = CompareSets(module, TableValues(module), SetOf(values));
  ASSERT_EQ(rows.size(), 2000U);
  for (int i = 0; i < kLastParameter; ++i) {
    ASSERT_EQ(rows[static_cast<std::size_t>(i)].index, i + 1);
    ASSERT_EQ(rows[static_cast<std::size_t>(i)].difference,
              i % 2 == 0 ? Difference::Equal : Difference::Different);
  }
}

}  // namespace
}  // namespace kalivor::test
