// Named selections: what is kept, what is marked again, and what becomes of damaged files.
#include "commands/Selections.h"

#include "fakes/Installation.h"

namespace kalivor::test {
namespace {

const QString kPath = u"/home/Auswahlen.json"_s;
const QString kDamaged = u"/home/Auswahlen.defekt.json"_s;

ParameterRecord Record(const QString& variable, const QString& address) {
  ParameterRecord record;
  record.Variable = variable;
  record.VarAdresse = address;
  return record;
}

/// Parameters a, f (an array of three), b.
class SelectionsTest : public testing::Test {
 protected:
  SelectionsTest() {
    module.VersionList.Add(u"AB1-123.4"_s);
    module.VersionList.Select(0);
    Define({Record(u"a"_s, u"1000"_s), Record(u"f"_s, u"1010"_s), Record(u"f"_s, u"1012"_s),
            Record(u"f"_s, u"1014"_s), Record(u"b"_s, u"1020"_s)});
  }

  void Define(const std::vector<ParameterRecord>& records) {
    module.ParCount = 1;
    for (const ParameterRecord& record : records)
      module.Par[module.ParCount++] = record;
    Mark({});
  }

  void Mark(const QList<int>& indices) {
    for (int i = 0; i <= kLastParameter; ++i)
      module.ParNode[i] = indices.contains(i) ? kTrue : kFalse;
  }

  [[nodiscard]] QList<int> Marked() const {
    QList<int> indices;
    for (int i = 0; i <= kLastParameter; ++i) {
      if (module.ParNode[i] != kFalse) indices.append(i);
    }
    return indices;
  }

  [[nodiscard]] QByteArray Stored() { return files.files.value(kPath).bytes; }

  Module1 module;
  FakeFileSystem files;
  Selections selections{files, kPath};
};

TEST_F(SelectionsTest, NothingIsThereAtFirstAndNothingIsWritten) {
  EXPECT_EQ(selections.Names().names, QStringList());
  EXPECT_EQ(selections.Names().error, QString());
  EXPECT_EQ(selections.Recall(module, u"x"_s).error, u"Die Auswahl „x“ gibt es nicht mehr."_s);
  EXPECT_EQ(selections.Delete(u"x"_s), QString());
  EXPECT_TRUE(files.files.isEmpty());
}

TEST_F(SelectionsTest, MarksExactlyWhatWasMarked) {
  const QList<QList<int>> all{{}, {1}, {2, 4}, {3}, {1, 2, 3, 4, 5}, {5}};
  for (const QList<int>& marks : all) {
    Mark(marks);
    EXPECT_EQ(selections.Save(module, u"x"_s), QString());
    Mark({1, 3});
    const auto recalled = selections.Recall(module, u"x"_s);
    EXPECT_EQ(recalled.error, QString());
    EXPECT_EQ(recalled.missing, 0);
    EXPECT_EQ(recalled.marked, marks.size());
    EXPECT_EQ(recalled.version, u"AB1-123.4");
    EXPECT_EQ(Marked(), marks);
  }
}

// The root and the slot behind the last parameter are no parameters of the table.
TEST_F(SelectionsTest, LeavesTheMarksOfEverythingElse) {
  Mark({1});
  EXPECT_EQ(selections.Save(module, u"x"_s), QString());
  Mark({0, 2, 6, 7});
  EXPECT_EQ(selections.Recall(module, u"x"_s).marked, 1);
  EXPECT_EQ(Marked(), (QList<int>{0, 1, 6, 7}));
  Mark({0, 2, 6, 7});
  EXPECT_EQ(SelectionOf(module, {}).parameters, (std::vector<SelectedParameter>{{u"f"_s, u"1010"_s}}));
}

TEST_F(SelectionsTest, TellsWhatAnotherVersionDoesNotKnow) {
  Mark({1, 2, 3, 5});
  EXPECT_EQ(selections.Save(module, u"x"_s), QString());
  // b is an array there: which of its elements is meant cannot be told. f is none any more.
  Define({Record(u"b"_s, u"1020"_s), Record(u"b"_s, u"1022"_s), Record(u"f"_s, u"1012"_s),
          Record(u"a"_s, u"2000"_s)});
  const auto recalled = selections.Recall(module, u"x"_s);
  EXPECT_EQ(Marked(), (QList<int>{3, 4}));
  EXPECT_EQ(recalled.marked, 2);
  EXPECT_EQ(recalled.missing, 2);
  EXPECT_EQ(RecalledText(recalled), u"2 Parameter angekreuzt; 2 der Auswahl gibt es in dieser Version nicht");
}

TEST_F(SelectionsTest, OneVariableAtOneAddressIsMarkedWhereverItOccurs) {
  Define({Record(u"f"_s, {}), Record(u"f"_s, {}), Record(u"g"_s, {})});
  Mark({2, 3});
  EXPECT_EQ(selections.Save(module, u"x"_s), QString());
  EXPECT_EQ(selections.Recall(module, u"x"_s).missing, 0);
  EXPECT_EQ(Marked(), (QList<int>{1, 2, 3}));
}

TEST_F(SelectionsTest, ASelectionOfTheSameNameIsReplaced) {
  Mark({1});
  EXPECT_EQ(selections.Save(module, u" Heizung \t Haus 1\n"_s), QString());
  Mark({5});
  EXPECT_EQ(selections.Save(module, u"Heizung Haus 1"_s), QString());
  EXPECT_EQ(selections.Names().names, QStringList{u"Heizung Haus 1"_s});
  EXPECT_EQ(selections.Recall(module, u"Heizung Haus 1"_s).marked, 1);
  EXPECT_EQ(Marked(), QList<int>{5});
}

TEST_F(SelectionsTest, NamesStandInTheOrderOfTheAlphabet) {
  for (const QString& name :
       {u"Zähler"_s, u"ärger"_s, u"Kreis 10"_s, u"Kreis 9"_s, u"Arm"_s, u"anlage"_s, u"Öl"_s, u"Ost"_s})
    EXPECT_EQ(selections.Save(module, name), QString());
  EXPECT_EQ(selections.Names().names.join(u','), u"anlage,ärger,Arm,Kreis 9,Kreis 10,Öl,Ost,Zähler");
}

TEST_F(SelectionsTest, DeletesOneOnly) {
  for (const QString& name : {u"a"_s, u"b"_s})
    EXPECT_EQ(selections.Save(module, name), QString());
  EXPECT_EQ(selections.Delete(u"a"_s), QString());
  EXPECT_EQ(selections.Names().names, QStringList{u"b"_s});
  EXPECT_NE(selections.Recall(module, u"a"_s).error, QString());
}

TEST_F(SelectionsTest, ANameIsNeitherEmptyNorLong) {
  EXPECT_EQ(selections.Save(module, u" \r\n "_s), u"Die Auswahl braucht einen Namen.");
  EXPECT_TRUE(files.files.isEmpty());
  EXPECT_EQ(selections.Save(module, QString(59, u'x') + u" yz"_s), QString());
  EXPECT_EQ(selections.Names().names, QStringList{QString(59, u'x')});
}

TEST_F(SelectionsTest, TheFileCanBeRead) {
  Mark({1, 2});
  EXPECT_EQ(selections.Save(module, u"Wärme €"_s), QString());
  EXPECT_EQ(
      QString::fromUtf8(Stored()).simplified(),
      u"{ \"Auswahlen\": [ { \"Name\": \"Wärme €\", \"Parameter\": [ { \"Variable\": \"a\" }, { \"Adresse\": "
      "\"1010\", \"Variable\": \"f\" } ], \"Version\": \"AB1-123.4\" } ], \"Format\": 1 }");
}

// --- files that are none ---

TEST_F(SelectionsTest, DamagedFilesAreToldKeptAndSetAside) {
  const QByteArray name = R"({"Name": "x", "Version": "v", "Parameter": []})";
  const QByteArray cases[] = {
      "x",
      "[]",
      "{}",
      "null",
      R"({"Format": 1})",
      R"({"Format": 2, "Auswahlen": []})",
      R"({"Format": "1", "Auswahlen": []})",
      R"({"Format": 1, "Auswahlen": {}})",
      R"({"Format": 1, "Auswahlen": [1]})",
      R"({"Format": 1, "Auswahlen": [{"Version": "v", "Parameter": []}]})",
      R"({"Format": 1, "Auswahlen": [{"Name": 1, "Version": "v", "Parameter": []}]})",
      R"({"Format": 1, "Auswahlen": [{"Name": "", "Version": "v", "Parameter": []}]})",
      R"({"Format": 1, "Auswahlen": [{"Name": " x", "Version": "v", "Parameter": []}]})",
      R"({"Format": 1, "Auswahlen": [{"Name": "x", "Version": null, "Parameter": []}]})",
      R"({"Format": 1, "Auswahlen": [{"Name": "x", "Version": "v", "Parameter": {}}]})",
      R"({"Format": 1, "Auswahlen": [{"Name": "x", "Version": "v", "Parameter": [1]}]})",
      R"({"Format": 1, "Auswahlen": [{"Name": "x", "Version": "v", "Parameter": [{"Variable": 1}]}]})",
      R"({"Format": 1, "Auswahlen": [{"Name": "x", "Version": "v", "Parameter": [{"Adresse": "1"}]}]})",
      R"({"Format": 1, "Auswahlen": [{"Name": "x", "Version": "v", "Parameter": [{"Variable": "a", "Adresse": 1}]}]})",
      R"({"Format": 1, "Auswahlen": [)" + name + "," + name + "]}",
      R"({"Format": 1, "Auswahlen": [)" + name,
      QByteArray(1'000'000, '['),
      R"({"Format": 1, "Auswahlen": )" + QByteArray(500'000, '[') + QByteArray(500'000, ']') + "}",
  };
  for (const QByteArray& bytes : cases) {
    SCOPED_TRACE(bytes.left(100).toStdString());
    files.files.clear();
    files.files[kPath] = {bytes, {}};
    Mark({2});
    const QString error = selections.Names().error;
    EXPECT_EQ(error,
              u"Die Datei der Auswahlen ist beschädigt und wird nicht benutzt:\r\n/home/Auswahlen.json\r\n"
              "Beim nächsten Speichern einer Auswahl wird sie als Auswahlen.defekt.json aufgehoben."_s);
    EXPECT_EQ(selections.Names().names, QStringList());
    EXPECT_EQ(selections.Recall(module, u"x"_s).error, error);
    EXPECT_EQ(selections.Delete(u"x"_s), error);
    EXPECT_EQ(Marked(), QList<int>{2});
    EXPECT_EQ(Stored(), bytes);
    EXPECT_EQ(files.files.size(), 1);

    EXPECT_EQ(selections.Save(module, u"neu"_s), QString());
    EXPECT_EQ(selections.Names().names, QStringList{u"neu"_s});
    EXPECT_EQ(files.files.value(kDamaged).bytes, bytes);
  }
}

TEST_F(SelectionsTest, AnEmptyFileHoldsNone) {
  files.files[kPath] = {QByteArray(""), {}};
  EXPECT_EQ(selections.Names().error, QString());
  EXPECT_EQ(selections.Save(module, u"x"_s), QString());
  EXPECT_FALSE(files.files.contains(kDamaged));
}

TEST_F(SelectionsTest, AFileThatCannotBeReadIsNotReplaced) {
  files.AddFailure(kPath, u"Keine Berechtigung."_s);
  const QString error =
      u"Die Auswahlen können nicht gelesen werden:\r\n/home/Auswahlen.json\r\nKeine Berechtigung."_s;
  EXPECT_EQ(selections.Names().error, error);
  EXPECT_EQ(selections.Save(module, u"x"_s), error);
  EXPECT_EQ(selections.Delete(u"x"_s), error);
  EXPECT_EQ(files.files.size(), 1);
  EXPECT_EQ(files.files.value(kPath).error, u"Keine Berechtigung.");
}

TEST_F(SelectionsTest, WhatCannotBeWrittenIsTold) {
  files.writeError = u"Kein Platz."_s;
  EXPECT_EQ(selections.Save(module, u"x"_s),
            u"Die Auswahlen können nicht gespeichert werden:\r\n/home/Auswahlen.json\r\nKein Platz.");
  files.files[kPath] = {"x", {}};
  EXPECT_EQ(selections.Save(module, u"x"_s),
            u"Die beschädigte Datei der Auswahlen kann nicht aufgehoben werden:\r\n"
            "/home/Auswahlen.defekt.json\r\nKein Platz.");
  EXPECT_EQ(Stored(), "x");
}

// A file that the program itself could not read again is not written.
TEST_F(SelectionsTest, TheFileHasALimit) {
  std::vector<ParameterRecord> records;
  records.reserve(1999);
  for (int i = 0; i < 1999; ++i)
    records.push_back(Record(QString(2000, u'v') + QString::number(i), {}));
  Define(records);
  QList<int> all;
  for (int i = 1; i < module.ParCount; ++i)
    all.append(i);
  Mark(all);
  QString error;
  int saved = 0;
  for (; error.isEmpty() && saved < 10; ++saved)
    error = selections.Save(module, QString::number(saved));
  EXPECT_TRUE(error.endsWith(u"\r\nEs sind zu viele; bitte nicht mehr benötigte löschen."))
      << error.toStdString();
  EXPECT_EQ(selections.Names().names.size(), saved - 1);
}

}  // namespace
}  // namespace kalivor::test
