// The texts of backup and journal: both ways, what is refused, and how far a sending came.
#include "core/BackupText.h"

#include <gtest/gtest.h>
#include <QTimeZone>

namespace kalivor {
namespace {

using namespace Qt::StringLiterals;

BackupHead Head() {
  return {QDateTime::fromString(u"2026-11-12T16:40:05+01:00"_s, Qt::ISODate),
          u"AB1-123.4"_s,
          u"B"_s,
          2,
          7,
          u"COM1 /dev/ttyUSB0"_s,
          u"0.1.0"_s};
}

Backup SmallBackup() {
  return {Head(),
          {{u"Vorlauf"_s, u"1F00"_s, u"int"_s}, {u"Name"_s, u"1F02"_s, u"string4"_s}},
          {{0x1F00, 0xFFFE}, {0x1F02, 0x4142}, {0x1F04, 0x2020}}};
}

Sending SmallSending() {
  return {Head(),
          u"C:\\Werte\\Sicherungen\\a.qpf"_s,
          {{u"Vorlauf"_s, u"1F00"_s, u"int"_s}, {u"Stufe"_s, u"1F03"_s, u"char"_s}},
          {{0x1F00, 0xFFFF, 0xFFFE}, {0x1F02, 0x00FF, 0x0012}},
          {{0x1F00, 0x0001}, {0x1F02, 0x3456}},
          {}};
}

QByteArray Lines(std::initializer_list<quint16> begun) {
  QByteArray lines;
  for (const quint16 address : begun)
    lines += ComposeBegun(address);
  return lines;
}

// --- backup ---

// People read it, and other versions of the program do.
TEST(BackupText, IsWrittenSo) {
  EXPECT_EQ(QString::fromUtf8(ComposeBackup(SmallBackup())),
            u"KALIVOR-Sicherung 1\n"
            "Zeit: 2026-11-12T16:40:05+01:00\n"
            "Regler: AB1-123.4\n"
            "Anlageart: B\n"
            "Anlagennummer: 2\n"
            "Adresse: 7\n"
            "Schnittstelle: COM1 /dev/ttyUSB0\n"
            "Programm: 0.1.0\n"
            "Werte: 2\n"
            "Vorlauf\t1F00\tint\n"
            "Name\t1F02\tstring4\n"
            "Wörter: 3\n"
            "1F00\tFFFE\n"
            "1F02\t4142\n"
            "1F04\t2020\n"
            "Prüfsumme: 5C0F0548\n"_s);
}

TEST(BackupText, ReadsBackTheSame) {
  Backup backup = SmallBackup();
  EXPECT_EQ(ParseBackup(ComposeBackup(backup)), backup);
  backup.head.plantType.clear();
  backup.head.plant = -1;
  backup.head.address = 255;
  backup.head.port = u" \\ \t \r\n ä€\U0001F600 \\t"_s;
  backup.values[0] = {u"a\tb"_s, {}, u"\\"_s};
  backup.words[0x0000] = 0x0000;
  backup.words[0xFFFE] = 0xFFFF;
  EXPECT_EQ(ParseBackup(ComposeBackup(backup)), backup);
  backup.values.clear();
  backup.words.clear();
  EXPECT_EQ(ParseBackup(ComposeBackup(backup)), backup);
}

TEST(BackupText, IsOfAnyStationThereIs) {
  Backup backup = SmallBackup();
  for (const int address : {0, 255}) {
    backup.head.address = address;
    EXPECT_EQ(ParseBackup(ComposeBackup(backup)), backup) << address;
  }
  for (const int address : {-1, 256}) {
    backup.head.address = address;
    EXPECT_EQ(ParseBackup(ComposeBackup(backup)), std::nullopt) << address;
  }
}

TEST(BackupText, KeepsTheZoneOfItsTime) {
  Backup backup = SmallBackup();
  backup.head.time = QDateTime(QDate(2026, 7, 1), QTime(12, 0), QTimeZone("Europe/Berlin"));
  EXPECT_TRUE(ComposeBackup(backup).contains("\nZeit: 2026-07-01T12:00:00+02:00\n"));
  backup.head.time = QDateTime(QDate(2026, 7, 1), QTime(12, 0), Qt::UTC);
  EXPECT_TRUE(ComposeBackup(backup).contains("\nZeit: 2026-07-01T12:00:00Z\n"));
  EXPECT_EQ(ParseBackup(ComposeBackup(backup)), backup);
}

TEST(BackupText, TakesAFullTableAndNoMore) {
  Backup backup = SmallBackup();
  backup.values.assign(2000, {u"v"_s, u"1F00"_s, u"int"_s});
  for (int address = 0; address < 65536; address += 2)
    backup.words[static_cast<quint16>(address)] = static_cast<quint16>(address * 7);
  EXPECT_EQ(ParseBackup(ComposeBackup(backup)), backup);
  backup.values.push_back({u"v"_s, u"1F00"_s, u"int"_s});
  EXPECT_FALSE(ParseBackup(ComposeBackup(backup))) << "no table is that long";
}

TEST(BackupText, EveryChangedBitIsNoticed) {
  const QByteArray good = ComposeBackup(SmallBackup());
  for (qsizetype at = 0; at < good.size(); ++at) {
    for (int bit = 0; bit < 8; ++bit) {
      QByteArray bytes = good;
      bytes[at] = static_cast<char>(bytes.at(at) ^ 1 << bit);
      ASSERT_FALSE(ParseBackup(bytes)) << at;
    }
    ASSERT_FALSE(ParseBackup(good.first(at))) << at;
  }
  EXPECT_FALSE(ParseBackup(good + '\n'));
  EXPECT_FALSE(ParseBackup(good + good));
}

// The right sum of what the program would not have written does not help.
TEST(BackupText, RefusesWhatItWouldNotWrite) {
  const QByteArray good = ComposeBackup(SmallBackup());
  const std::pair<QByteArray, QByteArray> changes[] = {
      {"Sicherung 1", "Sicherung 2"},
      {"Sicherung", "Sendung"},
      {"Zeit: 2026-11-12T16:40:05+01:00", "Zeit: "},
      {"2026-11-12", "2026-13-12"},
      {"05+01:00", "05"},
      {"05+01:00", "05.000+01:00"},
      {"Regler: ", "Regler:"},
      {"Regler: AB1-123.4\n", ""},
      {"AB1-123.4", "AB1\xFF"},
      {"AB1-123.4", "AB1\\x"},
      {"AB1-123.4", "AB1\\"},
      {"AB1-123.4", "AB1\r"},
      {"Anlagennummer: 2", "Anlagennummer: 02"},
      {"Anlagennummer: 2", "Anlagennummer: "},
      {"Adresse: 7", "Adresse: 256"},
      {"Adresse: 7", "Adresse: -1"},
      {"Adresse: 7", "Adresse: 7 "},
      {"Werte: 2", "Werte: 1"},
      {"Werte: 2", "Werte: 3"},
      {"Werte: 2", "Werte: 2147483647"},
      {"\t1F00\tint", "\t1F00"},
      {"\tint", "\tint\t"},
      {"Wörter: 3", "Wörter: 2"},
      {"Wörter: 3", "Wörter: 4"},
      {"1F00\tFFFE", "1F00\tfffe"},
      {"1F00\tFFFE", "1F00\tFFE"},
      {"1F00\tFFFE", "1F00\t0FFFE"},
      {"1F00\tFFFE", "1F01\tFFFE"},
      {"1F00\tFFFE", "1F02\tFFFE"},
      {"1F00\tFFFE", "1F06\tFFFE"},
      {"1F00\tFFFE", "1F00 FFFE"},
      {"1F00\tFFFE", "1F00\tFFFE\t"},
      {"\n", "\r\n"},
  };
  // The sum of a text is that of a backup whose own text is it: the program's own, so it is learnt here.
  const auto summed = [](const QByteArray& body) {
    quint32 sum = 0xFFFFFFFF;
    for (const char c : body) {
      sum ^= static_cast<quint8>(c);
      for (int bit = 0; bit < 8; ++bit)
        sum = (sum >> 1) ^ (sum % 2 != 0 ? 0xEDB88320U : 0U);
    }
    return body + "Prüfsumme: " + QByteArray::number(~sum, 16).toUpper().rightJustified(8, '0') + '\n';
  };
  const QByteArray body = good.first(good.indexOf("Prüfsumme"));
  ASSERT_EQ(summed(body), good);
  ASSERT_TRUE(ParseBackup(summed(body)));
  for (const auto& [part, change] : changes) {
    QByteArray bytes = body;
    const qsizetype at = bytes.indexOf(part);
    ASSERT_GE(at, 0) << part.toStdString();
    bytes.replace(at, part.size(), change);
    EXPECT_FALSE(ParseBackup(summed(bytes))) << part.toStdString() << " -> " << change.toStdString();
  }
  for (const QByteArray& bytes : {QByteArray(), QByteArray("x"), QByteArray(1'000'000, '\n'),
                                  QByteArray(1'000'000, '\0'), ComposeSending(SmallSending())})
    EXPECT_FALSE(ParseBackup(bytes));
}

// --- journal ---

TEST(Journal, IsWrittenSo) {
  EXPECT_EQ(QString::fromUtf8(ComposeSending(SmallSending()) + ComposeBegun(0x1F02)),
            u"KALIVOR-Sendung 1\n"
            "Zeit: 2026-11-12T16:40:05+01:00\n"
            "Regler: AB1-123.4\n"
            "Anlageart: B\n"
            "Anlagennummer: 2\n"
            "Adresse: 7\n"
            "Schnittstelle: COM1 /dev/ttyUSB0\n"
            "Programm: 0.1.0\n"
            "Sicherung: C:\\\\Werte\\\\Sicherungen\\\\a.qpf\n"
            "Werte: 2\n"
            "Vorlauf\t1F00\tint\n"
            "Stufe\t1F03\tchar\n"
            "Wörter: 2\n"
            "1F00\tFFFF\tFFFE\t0001\n"
            "1F02\t00FF\t0012\t3456\n"
            "Prüfsumme: BAE03A5B\n"
            "Begonnen: 1F02\n"_s);
}

TEST(Journal, ReadsBackTheSame) {
  Sending sending = SmallSending();
  const QByteArray header = ComposeSending(sending);
  EXPECT_EQ(ParseSending(header), sending);
  sending.begun = {0x1F02, 0x1F00, 0x1F02};
  EXPECT_EQ(ComposeSending(sending), header) << "begun words are not part of the header";
  EXPECT_EQ(ParseSending(header + Lines({0x1F02, 0x1F00, 0x1F02})), sending);
}

// The program may be killed, or the power fail, at every byte.
TEST(Journal, OfEveryLengthIsWholeOrNothing) {
  const QByteArray header = ComposeSending(SmallSending());
  const QByteArray bytes = header + Lines({0x1F02, 0x1F00});
  const qsizetype line = ComposeBegun(0x1F02).size();
  for (qsizetype size = 0; size <= bytes.size(); ++size) {
    const std::optional<Sending> sending = ParseSending(bytes.first(size));
    ASSERT_EQ(sending.has_value(), size >= header.size()) << size;
    if (!sending) continue;
    ASSERT_EQ(sending->begun.size(), static_cast<std::size_t>((size - header.size()) / line)) << size;
    ASSERT_EQ(sending->before, SmallSending().before);
  }
}

// As a disk may leave it whose last block was promised and not written.
TEST(Journal, ARestWithoutAnEndDoesNotCount) {
  const QByteArray bytes = ComposeSending(SmallSending()) + Lines({0x1F00});
  for (const QByteArray& rest : {QByteArray(64, '\0'), QByteArray("Begonnen: 1F0"), QByteArray("x"),
                                 QByteArray("Begonnen: 9999"), QByteArray(1'000'000, '\xFF')}) {
    const std::optional<Sending> sending = ParseSending(bytes + rest);
    ASSERT_TRUE(sending) << rest.left(20).toStdString();
    EXPECT_EQ(sending->begun, std::vector<quint16>{0x1F00});
  }
}

TEST(Journal, ACompleteLineThatIsNoWantedWordIsADamage) {
  const QByteArray header = ComposeSending(SmallSending());
  for (const QByteArray& line :
       {Lines({0x1F04}), QByteArray("\n"), QByteArray("Begonnen: \n"), QByteArray("Begonnen: 1F00 \n"),
        QByteArray("Begonnen: 1f00\n"), QByteArray("begonnen: 1F00\n"), QByteArray("Begonnen: 1F00\r\n")}) {
    EXPECT_FALSE(ParseSending(header + line)) << line.toStdString();
    EXPECT_FALSE(ParseSending(header + Lines({0x1F00}) + line + Lines({0x1F02}))) << line.toStdString();
  }
}

TEST(Journal, EveryChangedBitOfTheHeaderIsNoticed) {
  const QByteArray header = ComposeSending(SmallSending());
  for (qsizetype at = 0; at < header.size(); ++at) {
    for (int bit = 0; bit < 8; ++bit) {
      QByteArray bytes = header + Lines({0x1F00});
      bytes[at] = static_cast<char>(bytes.at(at) ^ 1 << bit);
      ASSERT_FALSE(ParseSending(bytes)) << at;
    }
  }
  EXPECT_FALSE(ParseSending(ComposeBackup(SmallBackup())));
}

TEST(Journal, RefusesWordsThatAreNone) {
  const auto refused = [](const std::vector<CodedWord>& wanted) {
    Sending sending = SmallSending();
    sending.wanted = wanted;
    sending.before.clear();
    for (const CodedWord& word : wanted)
      sending.before[word.address] = 1;
    return !ParseSending(ComposeSending(sending));
  };
  EXPECT_FALSE(refused({{0x1F00, 0xFFFF, 1}, {0x1F02, 0x00FF, 0x0012}}));
  EXPECT_TRUE(refused({{0x1F00, 0x00FF, 0x0112}})) << "bits outside the mask";
  EXPECT_TRUE(refused({{0x1F00, 0x0000, 0x0000}})) << "nothing is wanted";
  EXPECT_TRUE(refused({{0x1F01, 0xFFFF, 0x0000}})) << "an odd address";
  EXPECT_TRUE(refused({{0x1F02, 0xFFFF, 1}, {0x1F00, 0xFFFF, 1}})) << "not in their order";
  EXPECT_TRUE(refused({{0x1F00, 0xFF00, 0}, {0x1F00, 0x00FF, 1}})) << "not joined";
}

// --- how far it came ---

class Begun : public testing::Test {
 protected:
  Begun() {
    Add(u"int"_s, u"1F00"_s, u"int"_s);
    Add(u"long"_s, u"1F02"_s, u"long"_s);
    Add(u"high"_s, u"1F06"_s, u"char"_s);
    Add(u"low"_s, u"1F07"_s, u"char"_s);
    Add(u"array"_s, u"1F08"_s, u"int"_s);
    Add(u"array"_s, u"1F0A"_s, u"int"_s);
    for (int i = 1; i < definitions.ParCount; ++i)
      sending.values.push_back(NameOf(definitions.Par[i]));
    for (quint16 address = 0x1F00; address <= 0x1F0A; address = static_cast<quint16>(address + 2)) {
      sending.wanted.push_back({address, 0xFFFF, 0x0101});
      sending.before[address] = 0xFEFE;
    }
  }

  void Add(const QString& variable, const QString& address, const QString& type) {
    ParameterRecord& record = definitions.Par[definitions.ParCount++];
    record.Variable = variable;
    record.VarAdresse = address;
    record.Typ = type;
  }

  int After(const std::vector<quint16>& begun) {
    sending.begun = begun;
    return ValuesBegun(definitions, sending);
  }

  ParameterTable definitions;
  Sending sending;
};

TEST_F(Begun, CountsValuesOfWhichEveryWordWasBegun) {
  EXPECT_EQ(After({}), 0);
  EXPECT_EQ(After({0x1F00}), 1);
  EXPECT_EQ(After({0x1F02}), 0) << "half of the long";
  EXPECT_EQ(After({0x1F04, 0x1F02}), 1) << "in any order";
  EXPECT_EQ(After({0x1F06}), 2) << "both bytes of the word";
  EXPECT_EQ(After({0x1F08}), 1) << "one element of the array";
  EXPECT_EQ(After({0x1F00, 0x1F02, 0x1F04, 0x1F06, 0x1F08, 0x1F0A}), 6);
}

// Only words that differ are written.
TEST_F(Begun, AWordThatWasAsItIsWantedNeedsNoWriting) {
  sending.before[0x1F02] = 0x0101;
  EXPECT_EQ(After({}), 0);
  EXPECT_EQ(After({0x1F04}), 1);
  sending.before[0x1F06] = 0xFE01;
  EXPECT_EQ(After({0x1F06}), 2);
}

TEST_F(Begun, WhatTheDefinitionsDoNotKnowIsNotWritten) {
  const std::vector<quint16> all{0x1F00, 0x1F02, 0x1F04, 0x1F06, 0x1F08, 0x1F0A};
  sending.values[0].Variable = u"other"_s;
  EXPECT_EQ(After(all), 5);
  sending.values[1].VarAdresse = u"1F0C"_s;
  EXPECT_EQ(After(all), 4);
  sending.values[2].Typ = u"int"_s;
  EXPECT_EQ(After(all), 3);
  definitions.Par[4].VarAdresse = u"x"_s;
  sending.values[3].VarAdresse = u"x"_s;
  EXPECT_EQ(After(all), 2) << "nobody knows where it lies";
}

TEST_F(Begun, AByteWhoseHalfIsNotWantedIsNotWritten) {
  sending.wanted[3] = {0x1F06, 0xFF00, 0x0100};
  EXPECT_EQ(After({0x1F06}), 1);
}

}  // namespace
}  // namespace kalivor
