// Address lists: which parameters get which address, wrapped entries, and errors.
#include <random>

#include "core/DefinitionFiles.h"
#include "core/Refresh.h"
#include "fakes/Installation.h"

namespace kalivor::test {
namespace {

const QString kLongName = u"a_name_of_21_letters_"_s;

/// A version with the address list B.ADR is selected.
struct Listed : Installation {
  Listed() {
    module.Inipath = Native(u"ini/"_s);
    module.Versionen.resize(2);
    module.Versionen[1].AdrDatei = u"B.ADR"_s;
    module.VersionList.Add(u"V"_s);
    module.VersionList.Select(0);
  }

  ParameterRecord& AddVariable(const QString& name, qint16 offset = 0) {
    ParameterRecord& record = AddParameter(u"int"_s, QString(), name);
    record.Offset = offset;
    return record;
  }

  void Read(const QStringList& lines) {
    SetDefinitions(u"B.ADR"_s, lines);
    ReadSelectedAddresses(core);
  }

  QStringList Addresses() const {
    QStringList addresses;
    for (int i = 1; i < module.ParCount; ++i)
      addresses.append(module.Par[i].VarAdresse);
    return addresses;
  }
};

TEST(ListedAddress, AddsTheOffsetOfTheParameter) {
  struct {
    QString listed;
    qint16 offset;
    QString address;
  } const cases[] = {
      {u"1F00"_s, 6, u"1F06"_s}, {u"FFFE"_s, 6, u"0004"_s}, {u"0001F00A"_s, 2, u"0001F00C"_s},
      {u"1f0a"_s, 0, u"1f0a"_s},  // without an offset it is taken as it is written
      {u"1f0a"_s, 1, u"1F0B"_s},
  };
  for (const auto& example : cases) {
    Listed site;
    site.AddVariable(u"_abc"_s, example.offset);
    site.Read({u"_abc  "_s + example.listed});
    EXPECT_EQ(site.module.Par[1].VarAdresse, example.address);
  }
}

TEST(ListedAddress, ReachesEveryParameterOfTheNameAndNoOther) {
  Listed site;
  for (const QString& name : {u"_abc"_s, u"_abd"_s, u"_ABC"_s, u"_abc"_s})
    site.AddVariable(name);
  site.Read({u"_abc  1F00"_s});
  EXPECT_EQ(site.Addresses(), (QStringList{u"1F00"_s, u""_s, u""_s, u"1F00"_s}));
}

TEST(ListedAddress, NeverReachesThePlantType) {
  Listed site;
  site.module.Par[0].Variable = u"ANL"_s;
  site.Read({u"ANL  1F00"_s});
  EXPECT_EQ(site.module.Par[0].VarAdresse, QString());
}

TEST(ListedAddress, ReachesTheFreeSlotBehindTheLastParameter) {
  Listed site;
  site.AddVariable(u"_abc"_s);
  site.module.Par[2].Variable = site.module.Par[3].Variable = u"_abc"_s;  // of a longer table before
  site.Read({u"_abc  1F00"_s});
  EXPECT_EQ(site.module.Par[2].VarAdresse, u"1F00"_s);
  EXPECT_EQ(site.module.Par[3].VarAdresse, QString());
}

TEST(ListedAddress, AFullTableHasNoFreeSlot) {
  Listed site;
  site.module.ParCount = kLastParameter + 1;
  site.module.Par[kLastParameter].Variable = u"_abc"_s;
  site.Read({u"_abc  1F00"_s});
  EXPECT_EQ(site.module.Par[kLastParameter].VarAdresse, u"1F00"_s);
}

TEST(ReadAddressList, TakesAddressesOfFourOrEightCharacters) {
  struct {
    QString listed, taken;
  } const cases[] = {
      {u"1F00"_s, u"1F00"_s}, {u"00001F00"_s, u"00001F00"_s}, {u"1F0"_s, u""_s},       {u"11F00"_s, u""_s},
      {u"011F00"_s, u""_s},   {u"0011F00"_s, u""_s},          {u"000001F00"_s, u""_s}, {u"XY12"_s, u"XY12"_s},
  };
  for (const auto& example : cases) {
    Listed site;
    site.AddVariable(u"_abc"_s);
    site.Read({u"_abc  "_s + example.listed});
    EXPECT_EQ(site.module.Par[1].VarAdresse, example.taken) << testing::PrintToString(example.listed);
  }
}

TEST(ReadAddressList, TheLastEntryOfANameWins) {
  Listed site;
  site.AddVariable(u"_abc"_s, 2);
  site.Read({u"_abc  1F00"_s, u"_abc  2F00"_s, u"_abc  11F00"_s});
  EXPECT_EQ(site.module.Par[1].VarAdresse, u"2F02"_s);
}

TEST(ReadAddressList, IgnoresFurtherColumns) {
  Listed site;
  site.AddVariable(u"_abc"_s);
  site.Read({u"_abc  1F00  RAM  2"_s});
  EXPECT_EQ(site.module.Par[1].VarAdresse, u"1F00"_s);
}

TEST(ReadAddressList, AVersionWithoutAListReadsNothing) {
  Listed site;
  site.module.Versionen[1].AdrDatei = u"-"_s;
  ReadSelectedAddresses(site.core);
  EXPECT_EQ(site.files.reads, QStringList());
}

TEST(ReadAddressList, AWrappedNameFindsItsAddressInTheNextLine) {
  struct {
    QStringList lines;
    QString address;
  } const cases[] = {
      {{kLongName, u"     1F00"_s}, u"1F00"_s},
      {{kLongName, u"     00001F00  RAM"_s}, u"00001F00"_s},
      {{kLongName, u"     11F00"_s}, u""_s},
      // Whatever is four or eight characters long counts as the address.
      {{kLongName, u"XY12  1F02"_s}, u"XY12"_s},
      {{kLongName, u"other  1F02"_s}, u""_s},
      // Only a line without any second column is wrapped.
      {{kLongName + u"  "_s, u"1F00"_s}, u"1F00"_s},
      {{kLongName + u"  RAM"_s, u"1F00"_s}, u""_s},
  };
  for (const auto& example : cases) {
    Listed site;
    site.AddVariable(kLongName);
    site.Read(example.lines);
    EXPECT_EQ(site.module.Par[1].VarAdresse, example.address) << testing::PrintToString(example.lines);
  }
}

TEST(ReadAddressList, ANameOfTwentyCharactersIsNotWrapped) {
  Listed site;
  site.AddVariable(kLongName.left(20));
  site.Read({kLongName.left(20), u"1F00"_s});
  EXPECT_EQ(site.module.Par[1].VarAdresse, QString());
}

TEST(ReadAddressList, TheLineBehindAWrappedNameCountsForItselfToo) {
  Listed site;
  site.AddVariable(kLongName);
  site.AddVariable(u"XY12"_s);
  site.AddVariable(u"_abc"_s);
  site.Read({kLongName, u"XY12  1F02"_s, u"_abc  1F04"_s});
  EXPECT_EQ(site.Addresses(), (QStringList{u"XY12"_s, u"1F02"_s, u"1F04"_s}));
}

TEST(ReadAddressList, TheLineBehindAWrappedNameCountsForItselfAlsoAtTheEnd) {
  Listed site;
  site.AddVariable(kLongName);
  site.AddVariable(u"XY12"_s);
  site.Read({kLongName, u"XY12  1F02"_s});
  EXPECT_EQ(site.Addresses(), (QStringList{u"XY12"_s, u"1F02"_s}));
}

TEST(ReadAddressList, WrappedNamesCanFollowEachOther) {
  Listed site;
  site.AddVariable(kLongName);
  site.AddVariable(kLongName + u"b"_s);
  site.Read({kLongName, kLongName + u"b"_s, u"1F00"_s});
  EXPECT_EQ(site.Addresses(), (QStringList{u""_s, u"1F00"_s}));
}

TEST(ReadAddressList, AListThatEndsInAWrappedNameIsReported) {
  Listed site;
  site.AddVariable(u"_abc"_s);
  site.Read({u"_abc  1F00"_s, kLongName});
  EXPECT_EQ(TakeBoxes(site.box),
            QStringList{Native(u"Fehler beim Lesen von\r\nini//B.ADR\r\n"
                               "Die Datei endet nach einem umgebrochenen Namen (Zeile 3).\r\n"_s)});
  EXPECT_EQ(site.module.Par[1].VarAdresse, u"1F00"_s) << "what was read before stays";
}

TEST(ReadAddressList, AnUnreadableListIsReportedWithoutAdvice) {
  Listed site;
  site.files.AddFailure(u"ini//B.ADR"_s, u"Zugriff verweigert."_s);
  ReadSelectedAddresses(site.core);
  const auto boxes = site.box.Take();
  ASSERT_EQ(boxes.size(), 1U);
  EXPECT_EQ(boxes[0].text, Native(u"Fehler beim Lesen von\r\nini//B.ADR\r\nZugriff verweigert.\r\n"_s));
  EXPECT_EQ(boxes[0].title, QString());
}

// The whole table is looked through for one name.
void SetAddress(Module1& module, const QString& value, const QString& name) {
  for (int i = 1; i <= std::min<int>(module.ParCount, kLastParameter); ++i) {
    ParameterRecord& record = module.Par[i];
    if (record.Variable == name)
      record.VarAdresse = record.Offset == 0 ? value : AddOffset(value, record.Offset);
  }
}

// The same as the reader in its plainest form: every entry looks through the whole table.
void ReadPlainly(Module1& module, const QStringList& lines) {
  const auto isAddress = [](const QString& text) { return text.size() == 4 || text.size() == 8; };
  for (qsizetype i = 0; i < lines.size(); ++i) {
    const QString name = GetField(lines[i], 0);
    const QString address = GetField(lines[i], 1);
    if (isAddress(address)) {
      SetAddress(module, address, name);
    } else if (name.size() > 20 && address.isEmpty() && i + 1 < lines.size()) {
      const QString nextName = GetField(lines[i + 1], 0);
      const QString nextAddress = GetField(lines[i + 1], 1);
      if (isAddress(nextName)) {
        SetAddress(module, nextName, name);
      } else if (isAddress(nextAddress)) {
        SetAddress(module, nextAddress, nextName);
      }
    }
  }
}

TEST(ReadAddressList, EqualsLookingThroughTheTableForEveryLine) {
  // Few names, so that many repeat; some are wrapped, some look like addresses.
  const QStringList names{u"_a"_s,        u"_b"_s, u"_A"_s,   u"XY12"_s,          u"1F00"_s,
                          u"two words"_s, u""_s,   kLongName, kLongName + u"b"_s, kLongName + u" c"_s};
  const QStringList addresses{u"1F00"_s, u"1f0a"_s, u"FFFE"_s, u"0001F00A"_s, u"1F0"_s, u"11F00"_s, u""_s};
  for (unsigned seed = 0; seed < 200; ++seed) {
    SCOPED_TRACE(seed);
    std::mt19937 random(seed);
    const auto below = [&random](qsizetype end) {
      return static_cast<int>(random() % static_cast<std::mt19937::result_type>(end));
    };
    const auto pick = [&below](const QStringList& list) { return list[below(list.size())]; };
    Listed site;
    for (int i = below(30); i > 0; --i)
      site.AddVariable(pick(names), static_cast<qint16>(below(3)));
    site.module.Par[site.module.ParCount].Variable = pick(names);  // left by a longer table
    site.module.Par[site.module.ParCount + 1].Variable = pick(names);

    QStringList lines;
    for (int i = below(60); i > 0; --i) {
      QString line;
      switch (below(3)) {
        case 0:
          line = pick(names) + u"  "_s + pick(addresses);
          break;
        case 1:
          line = pick(names);
          break;
        default:
          line = pick(addresses) + u"  "_s + pick(addresses);
          break;
      }
      if (!line.trimmed().isEmpty() && !line.startsWith(u' ')) lines.append(line);
    }
    lines.append(u"_a  2F00"_s);  // no wrapped name at the end

    const auto expected = std::make_unique<Module1>(site.module);
    ReadPlainly(*expected, lines);
    site.Read(lines);
    EXPECT_EQ(site.module.Par, expected->Par);
  }
}

}  // namespace
}  // namespace kalivor::test
