// Reading and writing safely: what is asked in which order, what is said of a value, and what happens when
// anything goes wrong anywhere.
#include "core/SafeTransfer.h"

#include <gtest/gtest.h>

#include "fakes/Installation.h"
#include "sim/Telegram.h"

namespace kalivor::test {
namespace {

QString Hex(quint16 word) {
  return QString::fromLatin1(sim::Hex(word, 4));
}

/// Keeps nothing, but says so.
class Keeper final : public SafeKeeper {
 public:
  explicit Keeper(QStringList& log) : log_(log) {}

  QString beginError;
  std::map<int, QString> beforeErrors;  // by call from 1 on
  int befores = 0;
  bool unfinished = false;  // when the run ended

  QString Begin(const Module1& /*module*/, SafeRun& run) override {
    log_.append(u"Begin"_s);
    run.backup = u"Sicherung"_s;
    return beginError;
  }
  QString Before(quint16 address) override {
    log_.append(u"Before "_s + Hex(address));
    const auto error = beforeErrors.find(++befores);
    return error == beforeErrors.end() ? QString() : error->second;
  }
  void End(const SafeRun& run) override {
    log_.append(u"End"_s);
    unfinished = run.Unfinished();
  }

 private:
  QStringList& log_;
};

class Works final : public ProgressForm {
 public:
  QStringList shown;
  bool visible = false;
  std::map<QString, QString> steps;  // the last one of each work: "6 von 6"

  void Show(const QString& work) override {
    visible = true;
    shown.append(work);
  }
  void Step(int count, int all, double remaining_s) override {
    EXPECT_LE(count, all);
    EXPECT_GE(remaining_s, 0);
    steps[shown.last()] = u"%1 von %2"_s.arg(count).arg(all);
  }
  void Hide() override { visible = false; }
};

/// A PC and a controller whose values differ in everything but "F", and what goes over the line.
class Site : public Installation {
 public:
  QStringList log;  // requests ("R1F00") and what the keeper was told
  Keeper keeper{log};
  Works progress;
  int exchange = 0;                         // the one under way, from 1 on
  std::function<void()> onRequest = [] {};  // before the controller acts on it
  std::function<void(sim::Response&)> onReply = [](sim::Response&) {};
  QString request;        // its body
  sim::Memory atRequest;  // what the controller held before it

  explicit Site(const QString& version = u"AB1-123.4"_s, const sim::LineOptions& options = {})
      : Installation(version, options) {
    AddFiles();
    SetDefinitions(u"A.TXT"_s, {u"NoRubrik  Anlage  0  9  0  -  0  0  int  2000  ANL  -  -"_s,
                                u"G  Drehzahl  0  30000  1500  -  0  0  int  1F00  N  -  -"_s,
                                u"G  Laufzeit  0  999999  65536  -  0  0  long  1F02  Z  -  -"_s,
                                u"G  Hoch  0  90  16  -  0  0  char  1F06  H  -  -"_s,
                                u"G  Tief  0  90  34  -  0  0  char  1F07  L  -  -"_s,
                                u"G  Kennwort  -  -  ABCD  -  0  0  string4  1F08  T  -  -"_s,
                                u"G  Fern  0  9  7  -  0  0  int  1F10  F  -  -"_s});
    Start();
    Store(0x1F00, {0x04D2, 0x0002, 0x0003, 0x1123, 0x5758, 0x595A});
    Store(0x1F10, {0x0007});
    model.OnTrace = [this](const sim::TraceEvent& event) {
      if (event.kind != sim::TraceEvent::Kind::Request) return;
      ++exchange;
      request = QString::fromLatin1(event.bytes.mid(5).chopped(3));
      log.append(request);
      atRequest = memory;
      onRequest();
    };
    model.OnResponse = [this](const QByteArray&, sim::Response& response) { onReply(response); };
    Restart();
  }

  void Restart() {
    log.clear();
    line.sent.clear();
    exchange = 0;
  }

  void Heal() {
    onRequest = [] {};
    onReply = [](sim::Response&) {};
    keeper.beginError.clear();
    keeper.beforeErrors.clear();
    module.Abbruch = kFalse;
  }

  void Uncheck(std::initializer_list<int> indices) {
    for (const int index : indices)
      module.ParNode[index] = kFalse;
  }

  SafeRun Read(SafeKind kind = SafeKind::Send) {
    SafeRun run = WantedOfTable(module, kind);
    ReadWords(core, run, progress);
    EXPECT_FALSE(progress.visible);
    return run;
  }

  void Write(SafeRun& run) {
    WriteWords(core, run, keeper, progress);
    EXPECT_FALSE(progress.visible);
    EXPECT_FALSE(line.IsOpen());
  }

  /// Reads everything, and begins to count exchanges again.
  SafeRun Prepared(SafeKind kind = SafeKind::Send) {
    SafeRun run = Read(kind);
    EXPECT_EQ(run.error, QString());
    Restart();
    return run;
  }

  /// Whether the word has been asked to be written.
  [[nodiscard]] bool Written(const QString& address) const {
    return std::ranges::any_of(log, [&](const QString& entry) { return entry.startsWith(u'W' + address); });
  }

  /// The requests of this beginning are never answered; the controller does what they say.
  void Ignore(
      const QString& beginning, const std::function<bool()>& when = [] { return true; }) {
    onReply = [this, beginning, when](sim::Response& response) {
      if (request.startsWith(beginning) && when()) response.chunks.clear();
    };
  }
};

SafeValue& ValueAt(SafeRun& run, int index) {
  for (SafeValue& value : run.values)
    if (value.index == index) return value;
  throw std::out_of_range("no such value");
}

void ChooseOnly(SafeRun& run, std::initializer_list<int> indices) {
  for (SafeValue& value : run.values)
    value.chosen = std::ranges::find(indices, value.index) != indices.end();
}

/// "1 geprüft, 2 abweichend: …" for all values that are in none of the states of reading alone.
QString Account(const SafeRun& run) {
  QStringList states;
  for (const SafeValue& value : run.values)
    states.append(QString::number(value.index) + u' ' + SafeStateText(value.state) +
                  (value.reason.isEmpty() ? QString() : u": "_s + value.reason));
  return states.join(u" | "_s);
}

/// What may be said of a value is true of the controller's memory, and bits that no value of `chosen` owns
/// are as they were.
void ExpectTrue(const SafeRun& run, const sim::Memory& before, const sim::Memory& now,
                const SafeRun& chosen) {
  std::map<quint16, int> masks;
  for (const SafeValue& value : chosen.values) {
    if (!value.chosen) continue;
    for (const CodedWord& word : value.words)
      masks[word.address] |= word.mask;
  }
  for (int at = 0; at < 0x10000; at += 2) {
    const auto address = static_cast<quint16>(at);
    const int changed = before.Word(address) ^ now.Word(address);
    if (changed == 0) continue;
    EXPECT_EQ(changed & ~masks[address], 0) << Hex(address).toStdString();
  }
  for (const SafeValue& value : run.values) {
    if (value.state != SafeState::Verified) continue;
    for (const CodedWord& word : value.words)
      EXPECT_TRUE(word.FitsIn(now.Word(word.address)))
          << value.index << ' ' << Hex(word.address).toStdString();
  }
}

bool SameWords(const sim::Memory& left, const sim::Memory& right) {
  for (int at = 0; at < 0x10000; at += 2) {
    if (left.Word(static_cast<quint16>(at)) != right.Word(static_cast<quint16>(at))) return false;
  }
  return true;
}

/// On the healthy line everything that `run` has written can be taken back.
void ExpectCanBeTakenBack(Site& site, const SafeRun& run, const sim::Memory& before) {
  site.Heal();
  SafeRun back = WantedBack(site.module, run);
  EXPECT_EQ(back.kind, SafeKind::TakeBack);
  ReadWords(site.core, back, site.progress);
  EXPECT_EQ(back.error, QString());
  site.Write(back);
  EXPECT_EQ(back.error, QString());
  for (const SafeValue& value : back.values)
    EXPECT_TRUE(value.state == SafeState::Verified || value.state == SafeState::Equal) << value.index;
  EXPECT_TRUE(SameWords(site.memory, before));
}

// --- what is wanted ---

TEST(SafeTransfer, WantsTheCheckedParametersOfKnownTypes) {
  Site site;
  site.Uncheck({2});
  site.module.Par[6].Typ = u"byte"_s;
  const SafeRun run = WantedOfTable(site.module, SafeKind::Send);
  ASSERT_EQ(run.values.size(), 4U);
  EXPECT_EQ(run.values[0].index, 1);
  EXPECT_EQ(run.values[0].wanted.number, 1500);
  EXPECT_EQ(run.values[0].words, (std::vector<CodedWord>{{0x1F00, 0xFFFF, 1500}}));
  EXPECT_EQ(run.values[1].index, 3);
  EXPECT_EQ(run.values[3].index, 5);
  EXPECT_EQ(run.values[3].wanted.text, u"ABCD"_s);
  EXPECT_EQ(run.Chosen(), 0) << "nobody has read yet";
  EXPECT_EQ(run.Count(SafeState::NotRead), 4);
}

TEST(SafeTransfer, WhatCannotBeCodedCannotBeSent) {
  Site site;
  site.module.Par[1].VarAdresse = u"1F01"_s;
  site.module.SetText(5, u"ABCDE"_s, ValueSource::Edited);
  site.module.SetNumber(3, 300, ValueSource::Edited);
  SafeRun run = site.Read();
  EXPECT_EQ(ValueAt(run, 1).reason, u"ungerade Adresse"_s);
  EXPECT_EQ(ValueAt(run, 1).state, SafeState::NotRead);
  EXPECT_EQ(ValueAt(run, 5).reason, u"Text zu lang"_s);
  EXPECT_EQ(ValueAt(run, 5).state, SafeState::Different) << "it is read all the same";
  EXPECT_EQ(ValueAt(run, 5).controller->text, u"WXYZ"_s);
  EXPECT_EQ(ValueAt(run, 3).reason, u"Zahl passt nicht in den Typ"_s);
  for (const int index : {1, 3, 5}) {
    EXPECT_FALSE(ValueAt(run, index).sendable);
    EXPECT_FALSE(ValueAt(run, index).chosen);
  }
  EXPECT_EQ(run.Chosen(), 2);
}

TEST(SafeTransfer, ValuesThatWantOtherBitsOfAWordCannotBeSent) {
  Site site;
  site.module.Par[2].VarAdresse = u"1F00"_s;
  SafeRun run = WantedOfTable(site.module, SafeKind::Send);
  EXPECT_FALSE(ValueAt(run, 1).sendable);
  EXPECT_FALSE(ValueAt(run, 2).sendable);
  EXPECT_EQ(ValueAt(run, 1).reason, u"liegt im selben Wort wie Z"_s);
  EXPECT_EQ(ValueAt(run, 2).reason, u"liegt im selben Wort wie N"_s);
  EXPECT_TRUE(ValueAt(run, 3).sendable) << "bytes beside each other are no conflict";
  EXPECT_TRUE(ValueAt(run, 4).sendable);
  site.module.SetNumber(1, 1, ValueSource::Edited);
  run = WantedOfTable(site.module, SafeKind::Send);
  EXPECT_TRUE(ValueAt(run, 1).sendable) << "the same bits of the same word are none either";
  EXPECT_TRUE(ValueAt(run, 2).sendable);
}

TEST(SafeTransfer, ConflictsAreNoneWhereNothingIsWritten) {
  Site site;
  site.module.Par[2].VarAdresse = u"1F00"_s;
  for (const SafeKind kind : {SafeKind::Receive, SafeKind::Verify, SafeKind::Compare})
    EXPECT_TRUE(WantedOfTable(site.module, kind).values.at(0).sendable);
  for (const SafeKind kind : {SafeKind::Restore, SafeKind::Finish, SafeKind::TakeBack})
    EXPECT_FALSE(WantedOfTable(site.module, kind).values.at(0).sendable);
}

TEST(SafeTransfer, AnImageIsWantedByName) {
  Site site;
  const ControllerImage image{{0x1F00, 1}, {0x1F02, 0}, {0x1F04, 5}, {0x1F06, 0x4142}, {0x1F08, 0x6162}};
  const std::vector<NamedWords> names{{u"L"_s, u"1F07"_s, u"char"_s}, {u"Z"_s, u"1F02"_s, u"long"_s},
                                      {u"N"_s, u"1F02"_s, u"int"_s},  {u"N"_s, u"1F00"_s, u"long"_s},
                                      {u"X"_s, u"1F00"_s, u"int"_s},  {u"T"_s, u"1F08"_s, u"string4"_s},
                                      {u"Z"_s, u"1F02"_s, u"long"_s}};
  int unknown = -1;
  const SafeRun run = WantedOfImage(site.module, SafeKind::Restore, names, image, unknown);
  EXPECT_EQ(run.kind, SafeKind::Restore);
  ASSERT_EQ(run.values.size(), 2U) << "in the order of the parameters, each once";
  EXPECT_EQ(run.values[0].index, 2);
  EXPECT_EQ(run.values[0].wanted.number, 5);
  EXPECT_EQ(run.values[0].words, (std::vector<CodedWord>{{0x1F02, 0xFFFF, 0}, {0x1F04, 0xFFFF, 5}}));
  EXPECT_EQ(run.values[1].index, 4);
  EXPECT_EQ(run.values[1].words, (std::vector<CodedWord>{{0x1F06, 0x00FF, 0x42}}));
  EXPECT_EQ(unknown, 4) << "two of other places, one of no name, one whose second word is missing";
}

TEST(SafeTransfer, AParameterThatIsThereTwiceHidesNoUnknownOne) {
  Site site;
  site.module.Par[2] = site.module.Par[1];
  int unknown = -1;
  const std::vector<NamedWords> names{{u"N"_s, u"1F00"_s, u"int"_s}, {u"X"_s, u"1F00"_s, u"int"_s}};
  const SafeRun run = WantedOfImage(site.module, SafeKind::Restore, names, {{0x1F00, 1}}, unknown);
  EXPECT_EQ(run.values.size(), 2U);
  EXPECT_EQ(unknown, 1);
}

TEST(SafeTransfer, WhatIsOutsideItsLimitsIsMarked) {
  Site site;
  site.module.SetNumber(1, 30001, ValueSource::Edited);
  EXPECT_TRUE(WantedOfTable(site.module, SafeKind::Send).values.at(0).outside);
  EXPECT_FALSE(WantedOfTable(site.module, SafeKind::Send).values.at(1).outside);
  int unknown = 0;
  const std::vector<NamedWords> names{NameOf(site.module.Par[1])};
  const SafeRun run = WantedOfImage(site.module, SafeKind::Restore, names, {{0x1F00, 0xFFFF}}, unknown);
  EXPECT_TRUE(run.values.at(0).outside);
}

// --- reading ---

TEST(SafeTransfer, ReadsEveryWordOnceAndWhatDiffersTwice) {
  Site site;
  SafeRun run = site.Read();
  EXPECT_EQ(Lines(site.log),
            u"v00 | R2000 | R1F00 | R1F00 | R1F02 | R1F02 | R1F04 | R1F04 | R1F06 | R1F06 | R1F08 | R1F08 | "
            u"R1F0A | R1F0A | R1F10 | v00 | R2000"_s);
  EXPECT_EQ(run.error, QString());
  EXPECT_FALSE(run.aborted);
  EXPECT_EQ(run.version, u"AB1-123.4"_s);
  EXPECT_EQ(run.plant, 0);
  EXPECT_EQ(Account(run),
            u"1 verschieden | 2 verschieden | 3 verschieden | 4 verschieden | 5 verschieden | 6 gleich"_s);
  EXPECT_EQ(run.Chosen(), 5);
  EXPECT_FALSE(ValueAt(run, 6).chosen);
  EXPECT_EQ(ValueAt(run, 1).controller, (ParameterValue{0x04D2, {}}));
  EXPECT_EQ(ValueAt(run, 1).before, ValueAt(run, 1).controller);
  EXPECT_EQ(ValueAt(run, 2).controller, (ParameterValue{0x20003, {}}));
  EXPECT_EQ(ValueAt(run, 3).controller, (ParameterValue{0x11, {}}));
  EXPECT_EQ(ValueAt(run, 4).controller, (ParameterValue{0x23, {}}));
  EXPECT_EQ(ValueAt(run, 5).controller, (ParameterValue{0, u"WXYZ"_s}));
  EXPECT_EQ(run.now.size(), 7U);
  EXPECT_EQ(run.before, run.now);
  EXPECT_EQ(site.progress.shown, QStringList{u"Regler lesen"_s});
  EXPECT_EQ(site.progress.steps[u"Regler lesen"_s], u"6 von 6"_s);
  EXPECT_TRUE(run.begun.empty());
  EXPECT_TRUE(SameWords(site.memory, site.atRequest)) << "nothing was written";
}

TEST(SafeTransfer, WhatIsEqualIsReadOnceWhateverTheRunIsFor) {
  for (const SafeKind kind : {SafeKind::Send, SafeKind::Verify, SafeKind::Receive, SafeKind::Compare}) {
    Site site;
    site.Store(0x1F00, {1500});
    const SafeRun run = site.Read(kind);
    EXPECT_EQ(
        Lines(site.log),
        u"v00 | R2000 | R1F00 | R1F02 | R1F02 | R1F04 | R1F04 | R1F06 | R1F06 | R1F08 | R1F08 | R1F0A | "
        u"R1F0A | R1F10 | v00 | R2000"_s);
    EXPECT_EQ(run.Count(SafeState::Different), 4);
    EXPECT_EQ(run.Count(SafeState::Equal), 2);
  }
}

TEST(SafeTransfer, AByteThatDiffersIsReadTwiceThoughTheOtherOneDoesNot) {
  for (const int equal : {3, 4}) {
    Site site;
    site.Uncheck({1, 2, 5, 6});
    site.Store(0x1F06, {static_cast<quint16>(equal == 3 ? 0x1023 : 0x1122)});
    SafeRun run = site.Read(SafeKind::Verify);
    EXPECT_EQ(ValueAt(run, equal).state, SafeState::Equal);
    EXPECT_EQ(run.Count(SafeState::Different), 1);
    EXPECT_EQ(Lines(site.log), u"v00 | R2000 | R1F06 | R1F06 | v00 | R2000"_s);
  }
}

TEST(SafeTransfer, WhatThePcCannotCodeIsReadTwiceToBeReceived) {
  Site site;
  site.Uncheck({1, 2, 3, 4, 6});
  site.module.SetText(5, u"ABCDE"_s, ValueSource::Edited);
  site.Store(0x1F08, {0, 0});
  SafeRun run = site.Read(SafeKind::Receive);
  EXPECT_EQ(Lines(site.log), u"v00 | R2000 | R1F08 | R1F08 | R1F0A | R1F0A | v00 | R2000"_s);
  EXPECT_TRUE(ValueAt(run, 5).chosen);
  EXPECT_EQ(ValueAt(run, 5).state, SafeState::Different);
}

TEST(SafeTransfer, ASecondReadingThatSaysOtherwiseCounts) {
  Site site;
  site.Uncheck({2, 3, 4, 5, 6});
  site.onRequest = [&] {
    if (site.exchange == 4) site.Store(0x1F00, {1500});
  };
  SafeRun run = site.Read(SafeKind::Verify);
  EXPECT_EQ(Lines(site.log), u"v00 | R2000 | R1F00 | R1F00 | R1F00 | v00 | R2000"_s);
  EXPECT_EQ(ValueAt(run, 1).state, SafeState::Equal);
}

TEST(SafeTransfer, ReceivingChoosesByTheLimitsOfWhatIsReceived) {
  Site site;
  site.module.SetNumber(1, 30001, ValueSource::Edited);
  site.Store(0x1F02, {0x7FFF, 0});
  SafeRun run = site.Read(SafeKind::Receive);
  EXPECT_TRUE(ValueAt(run, 1).chosen);
  EXPECT_FALSE(ValueAt(run, 1).outside);
  EXPECT_FALSE(ValueAt(run, 2).chosen);
  EXPECT_TRUE(ValueAt(run, 2).outside);
}

TEST(SafeTransfer, ValuesOutsideTheirLimitsAreNotChosen) {
  Site site;
  site.module.SetNumber(1, 30001, ValueSource::Edited);
  for (const SafeKind kind : {SafeKind::Send, SafeKind::Restore, SafeKind::Verify}) {
    SafeRun run = site.Read(kind);
    EXPECT_FALSE(ValueAt(run, 1).chosen);
    EXPECT_EQ(ValueAt(run, 1).state, SafeState::Different);
  }
}

TEST(SafeTransfer, FinishingAndTakingBackIgnoreLimits) {
  Site site;
  site.module.SetNumber(1, 30001, ValueSource::Edited);
  for (const SafeKind kind : {SafeKind::Finish, SafeKind::TakeBack}) {
    SafeRun run = site.Read(kind);
    EXPECT_TRUE(ValueAt(run, 1).chosen);
    EXPECT_TRUE(ValueAt(run, 1).outside);
  }
}

TEST(SafeTransfer, AWordThatCannotBeReadLeavesItsValuesAlone) {
  Site site;
  site.Ignore(u"R1F0A"_s);
  SafeRun run = site.Read();
  EXPECT_EQ(run.error, QString());
  EXPECT_EQ(ValueAt(run, 5).state, SafeState::NotRead);
  EXPECT_EQ(ValueAt(run, 5).reason, u"kein Empfang"_s);
  EXPECT_EQ(ValueAt(run, 5).controller, std::nullopt);
  EXPECT_FALSE(ValueAt(run, 5).chosen);
  EXPECT_EQ(Lines(site.log.mid(10)), u"R1F08 | R1F08 | R1F0A | R1F0A | R1F0A | v00 | R1F10 | v00 | R2000"_s)
      << "is the controller there at all?";
  EXPECT_EQ(run.Count(SafeState::Different), 4);
}

TEST(SafeTransfer, AControllerThatFallsSilentEndsTheReading) {
  Site site;
  site.onReply = [&](sim::Response& response) {
    if (site.exchange >= 5) response.chunks.clear();
  };
  SafeRun run = site.Read();
  EXPECT_EQ(run.error, u"Der Regler antwortet nicht mehr.\r\nkein Empfang"_s);
  EXPECT_EQ(run.Count(SafeState::NotRead), 6);
  EXPECT_EQ(run.Chosen(), 0);
  EXPECT_TRUE(run.now.empty());
  EXPECT_TRUE(run.before.empty());
  EXPECT_FALSE(site.log.contains(u"R1F06"_s));
}

TEST(SafeTransfer, NothingWasReadWhereTheControllerIsAnotherOneAtTheEnd) {
  Site site;
  site.onRequest = [&] {
    if (site.exchange == 7) site.Store(0x2000, {3});
  };
  const SafeRun run = site.Read();
  EXPECT_EQ(run.error, u"Ein anderer Regler ist angeschlossen als am Anfang.\r\nAnlagennummer: 3"_s);
  EXPECT_EQ(run.Count(SafeState::NotRead), 6);
  EXPECT_EQ(run.Chosen(), 0);
  EXPECT_TRUE(run.now.empty());
  for (const SafeValue& value : run.values) {
    EXPECT_EQ(value.controller, std::nullopt);
    EXPECT_EQ(value.before, std::nullopt);
  }
}

TEST(SafeTransfer, AnotherVersionAtTheEndIsNamed) {
  Site site;
  site.onReply = [&](sim::Response& response) {
    if (site.exchange > 5 && site.request == u"v00"_s) response.chunks = {{0, sim::Sealed("10102vAB1-04D8")}};
  };
  EXPECT_EQ(site.Read().error,
            u"Ein anderer Regler ist angeschlossen als am Anfang.\r\nReglerVersion: AB1-124.0"_s);
}

TEST(SafeTransfer, APlantTypeThatCannotBeReadAtTheEndIsAnError) {
  Site site;
  site.Ignore(u"R2000"_s, [&] { return site.exchange > 5; });
  EXPECT_EQ(site.Read().error, u"Die Anlageart im Regler ist nicht lesbar.\r\nkein Empfang"_s);
}

TEST(SafeTransfer, AnotherPlantTypeIsAnErrorExceptForComparing) {
  Site site;
  site.Store(0x2000, {1});
  SafeRun run = site.Read();
  EXPECT_EQ(run.error, u"Andere Anlageart: Luft (Nummer 1)\r\nAusgewählt ist Nummer 0."_s);
  EXPECT_EQ(Lines(site.log), u"v00 | R2000 | R2000"_s);
  site.Store(0x2000, {9});
  EXPECT_EQ(site.Read().error, u"Andere Anlageart: Nummer 9\r\nAusgewählt ist Nummer 0."_s);
  for (const SafeKind kind : {SafeKind::Receive, SafeKind::Verify, SafeKind::Restore, SafeKind::Finish})
    EXPECT_FALSE(site.Read(kind).error.isEmpty());
  run = site.Read(SafeKind::Compare);
  EXPECT_EQ(run.error, QString());
  EXPECT_EQ(run.plant, 9);
  EXPECT_EQ(run.Count(SafeState::Different), 5);
}

TEST(SafeTransfer, APlantTypeThatCannotBeReadIsAnError) {
  Site site;
  site.Ignore(u"R2000"_s);
  const SafeRun run = site.Read(SafeKind::Compare);
  EXPECT_EQ(run.error, u"Die Anlageart im Regler ist nicht lesbar.\r\nkein Empfang"_s);
  EXPECT_EQ(Lines(site.log), u"v00 | R2000 | R2000 | R2000"_s);
}

TEST(SafeTransfer, WithoutAPlaceForThePlantTypeNobodyAsks) {
  Site site;
  site.module.Par[0].VarAdresse.clear();
  site.Uncheck({2, 3, 4, 5, 6});
  SafeRun run = site.Read();
  EXPECT_EQ(Lines(site.log), u"v00 | R1F00 | R1F00 | v00 | R1F00"_s);
  EXPECT_EQ(run.plant, 0);
  site.Write(run);
  EXPECT_EQ(ValueAt(run, 1).state, SafeState::Verified);
  EXPECT_FALSE(site.log.contains(u"R2000"_s));
}

// A repeated question is answered rightly by such a line; the questions at the end take turns.
TEST(SafeTransfer, RepliesToTheRequestBeforeAreFoundOut) {
  for (const bool hasPlant : {true, false}) {
    for (int first = 2; first <= 11; ++first) {
      Site site;
      if (!hasPlant) site.module.Par[0].VarAdresse.clear();
      std::vector<sim::Chunk> before;
      site.onReply = [&](sim::Response& response) {
        std::vector<sim::Chunk> own = response.chunks;
        if (site.exchange >= first) response.chunks = before;
        before = std::move(own);
      };
      const SafeRun run = site.Read();
      EXPECT_EQ(run.error.isEmpty(), site.exchange < first) << first;
      if (run.error.isEmpty()) continue;
      EXPECT_EQ(run.Count(SafeState::Equal) + run.Count(SafeState::Different), 0) << first;
    }
  }
}

TEST(SafeTransfer, ThePlantNumberIsAWordWhateverItsType) {
  for (const QString& type : {u"char"_s, u"-"_s, u"long"_s}) {
    Site site;
    site.module.Par[0].Typ = type;
    site.Store(0x2000, {1});
    EXPECT_TRUE(site.Read().error.startsWith(u"Andere Anlageart: Luft"_s)) << type.toStdString();
  }
}

TEST(SafeTransfer, APlaceOfThePlantTypeThatIsNoneIsAnError) {
  Site site;
  site.module.Par[0].VarAdresse = u"2001"_s;
  EXPECT_EQ(site.Read().error, u"Die Anlageart im Regler ist nicht lesbar.\r\nungerade Adresse"_s);
  EXPECT_EQ(Lines(site.log), u"v00"_s);
}

TEST(SafeTransfer, AnotherOrUnknownVersionIsAnError) {
  Site other(u"AB1-124.0"_s);
  EXPECT_EQ(other.Read().error, u"Andere ReglerVersion: AB1-124.0\r\nAusgewählt ist AB1-123.4."_s);
  EXPECT_EQ(Lines(other.log), u"v00"_s);
  EXPECT_EQ(other.module.ReglerVersion, u"AB1-124.0"_s);
  Site unknown(u"ZZ9-999.9"_s);
  EXPECT_EQ(unknown.Read().error, u"Unbekannte ReglerVersion: ZZ9-999.9"_s);
  EXPECT_EQ(Lines(unknown.log), u"v00"_s);
}

TEST(SafeTransfer, TheRateIsFound) {
  Site site(u"AB1-123.4"_s, {.rate = 19200});
  SafeRun run = site.Read();
  EXPECT_EQ(run.error, QString());
  EXPECT_EQ(run.Count(SafeState::Different), 5);
}

TEST(SafeTransfer, AnAbortKeepsWhatWasRead) {
  Site site;
  site.onRequest = [&] {
    if (site.request == u"R1F04"_s) site.module.Abbruch = kTrue;
  };
  SafeRun run = site.Read();
  EXPECT_TRUE(run.aborted);
  EXPECT_EQ(run.error, QString());
  EXPECT_EQ(Lines(site.log), u"v00 | R2000 | R1F00 | R1F00 | R1F02 | R1F02 | R1F04 | R1F04 | v00 | R2000"_s);
  EXPECT_EQ(run.Count(SafeState::Different), 2);
  EXPECT_EQ(run.Count(SafeState::NotRead), 4);
  EXPECT_EQ(site.module.Abbruch, kFalse);
  EXPECT_EQ(run.before.size(), 3U);
}

TEST(SafeTransfer, AnAbortWhileTheLineRestsKeepsWhatWasRead) {
  // In the rest before the second attempt, and in the one before the controller is asked whether it is there.
  for (const int rests : {1, 3}) {
    Site site;
    site.Ignore(u"R1F10"_s);
    int slices = 0;
    site.events.onProcess = [&] {
      if (site.log.count(u"R1F10"_s) == rests && ++slices == 3) site.module.Abbruch = kTrue;
    };
    SafeRun run = site.Read();
    EXPECT_TRUE(run.aborted) << rests;
    EXPECT_EQ(run.error, QString());
    EXPECT_EQ(run.Count(SafeState::Different), 5);
    EXPECT_EQ(ValueAt(run, 6).state, SafeState::NotRead);
  }
}

// --- writing ---

TEST(SafeTransfer, WritesWhatDiffersAndReadsItBackWithItsNeighbours) {
  Site site;
  SafeRun run = site.Prepared();
  ChooseOnly(run, {2});
  const sim::Memory before = site.memory;
  site.Write(run);
  EXPECT_EQ(
      Lines(site.log),
      u"v00 | R2000 | Begin | R1F02 | Before 1F02 | W1F020001 | R1F04 | Before 1F04 | W1F040000 | R1F00 | "
      u"R1F02 | R1F04 | R1F06 | v00 | R2000 | End"_s);
  EXPECT_EQ(Account(run),
            u"1 verschieden | 2 geprüft | 3 verschieden | 4 verschieden | 5 verschieden | 6 gleich"_s);
  EXPECT_EQ(run.error, QString());
  EXPECT_EQ(run.begun, (std::set<quint16>{0x1F02, 0x1F04}));
  EXPECT_EQ(run.backup, u"Sicherung"_s);
  EXPECT_FALSE(run.Unfinished());
  EXPECT_FALSE(run.aborted);
  EXPECT_EQ(ValueAt(run, 2).controller, (ParameterValue{65536, {}}));
  EXPECT_EQ(ValueAt(run, 2).before, (ParameterValue{0x20003, {}}));
  EXPECT_EQ(run.before.at(0x1F02), 2) << "as it was before";
  EXPECT_EQ(run.now.at(0x1F02), 1);
  EXPECT_EQ(site.progress.shown,
            (QStringList{u"Regler lesen"_s, u"Sicherung anlegen"_s, u"Schreiben"_s, u"Prüfen"_s}));
  EXPECT_EQ(site.progress.steps[u"Schreiben"_s], u"1 von 1"_s);
  EXPECT_EQ(site.progress.steps[u"Prüfen"_s], u"4 von 4"_s);
  EXPECT_EQ(AccountText(run), u"1 geprüft"_s);
  ExpectTrue(run, before, site.memory, run);
  ExpectCanBeTakenBack(site, run, before);
}

TEST(SafeTransfer, WritesEverythingThatDiffers) {
  Site site;
  SafeRun run = site.Prepared();
  const sim::Memory before = site.memory;
  site.Write(run);
  EXPECT_EQ(
      Lines(site.log),
      u"v00 | R2000 | Begin | R1F00 | Before 1F00 | W1F0005DC | R1F02 | Before 1F02 | W1F020001 | R1F04 | "
      u"Before 1F04 | W1F040000 | R1F06 | Before 1F06 | W1F061022 | R1F08 | Before 1F08 | W1F084142 | R1F0A "
      u"| "
      u"Before 1F0A | W1F0A4344 | R1F00 | R1F02 | R1F04 | R1F06 | R1F08 | R1F0A | v00 | R2000 | End"_s)
      << "both bytes of a word at once";
  EXPECT_EQ(AccountText(run), u"5 geprüft"_s);
  ExpectTrue(run, before, site.memory, run);
  ExpectCanBeTakenBack(site, run, before);
}

TEST(SafeTransfer, OneByteOfAWordIsWrittenWithTheOtherOneAsItIs) {
  for (const int chosen : {3, 4}) {
    Site site;
    SafeRun run = site.Prepared();
    ChooseOnly(run, {chosen});
    const sim::Memory before = site.memory;
    site.Write(run);
    EXPECT_EQ(
        Lines(site.log),
        u"v00 | R2000 | Begin | R1F06 | Before 1F06 | %1 | R1F04 | R1F06 | R1F08 | v00 | R2000 | End"_s.arg(
            chosen == 3 ? u"W1F061023"_s : u"W1F061122"_s));
    EXPECT_EQ(AccountText(run), u"1 geprüft"_s);
    EXPECT_EQ(ValueAt(run, 7 - chosen).state, SafeState::Different);
    ExpectTrue(run, before, site.memory, run);
    ExpectCanBeTakenBack(site, run, before);
  }
}

TEST(SafeTransfer, TheOtherByteIsWrittenAsItIsNow) {
  Site site;
  SafeRun run = site.Prepared();
  ChooseOnly(run, {3});
  site.Store(0x1F06, {0x1177});
  site.Write(run);
  EXPECT_TRUE(site.log.contains(u"W1F061077"_s));
  EXPECT_EQ(ValueAt(run, 3).state, SafeState::Verified);
  EXPECT_EQ(ValueAt(run, 4).controller->number, 0x77) << "what was read last";
}

TEST(SafeTransfer, OnlyWordsThatDifferAreWritten) {
  Site site;
  site.Store(0x1F0A, {0x4344});
  SafeRun run = site.Prepared();
  ChooseOnly(run, {5});
  site.Write(run);
  EXPECT_EQ(
      Lines(site.log),
      u"v00 | R2000 | Begin | R1F08 | Before 1F08 | W1F084142 | R1F06 | R1F08 | R1F0A | v00 | R2000 | End"_s);
  EXPECT_EQ(ValueAt(run, 5).state, SafeState::Verified);
}

TEST(SafeTransfer, WhatIsEqualIsReadBackAlone) {
  Site site;
  SafeRun run = site.Prepared();
  ChooseOnly(run, {6});
  site.Write(run);
  EXPECT_EQ(Lines(site.log), u"v00 | R2000 | Begin | R1F10 | v00 | R2000 | End"_s);
  EXPECT_EQ(ValueAt(run, 6).state, SafeState::Verified);
  EXPECT_TRUE(run.begun.empty());
}

TEST(SafeTransfer, NothingChosenIsNothingAsked) {
  Site site;
  SafeRun run = site.Prepared();
  ChooseOnly(run, {});
  site.Write(run);
  EXPECT_TRUE(site.log.isEmpty());
  EXPECT_EQ(run.backup, QString());
}

TEST(SafeTransfer, WhatWasNotReadOrCannotBeSentIsNeverWritten) {
  Site site;
  site.module.SetText(5, u"ABCDE"_s, ValueSource::Edited);
  site.Ignore(u"R1F00"_s);
  SafeRun run = site.Prepared();
  site.Heal();
  ChooseOnly(run, {1, 5});
  const sim::Memory before = site.memory;
  site.Write(run);
  EXPECT_TRUE(site.log.isEmpty());
  EXPECT_EQ(run.Chosen(), 0);
  ChooseOnly(run, {1, 2, 5});
  site.Write(run);
  EXPECT_EQ(AccountText(run), u"1 geprüft"_s);
  EXPECT_EQ(site.memory.Word(0x1F00), before.Word(0x1F00));
  EXPECT_EQ(site.memory.Word(0x1F08), before.Word(0x1F08));
}

TEST(SafeTransfer, NothingIsWrittenIntoAnotherController) {
  Site site;
  SafeRun run = site.Prepared();
  site.Store(0x2000, {1});
  site.Write(run);
  EXPECT_EQ(run.error, u"Ein anderer Regler ist angeschlossen als am Anfang.\r\nAnlagennummer: 1"_s);
  EXPECT_EQ(Lines(site.log), u"v00 | R2000 | R2000"_s);
  EXPECT_EQ(run.Count(SafeState::Different), 5);
}

TEST(SafeTransfer, WithoutABackupNothingIsWritten) {
  Site site;
  SafeRun run = site.Prepared();
  site.keeper.beginError = u"kein Platz"_s;
  site.Write(run);
  EXPECT_EQ(run.error, u"kein Platz"_s);
  EXPECT_EQ(Lines(site.log), u"v00 | R2000 | Begin"_s);
  EXPECT_EQ(run.Count(SafeState::Different), 5);
  EXPECT_FALSE(run.Unfinished());
}

TEST(SafeTransfer, AJournalThatCannotBeWrittenEndsTheWriting) {
  for (int n = 1; n <= 6; ++n) {
    Site site;
    SafeRun run = site.Prepared();
    const sim::Memory before = site.memory;
    site.keeper.beforeErrors[n] = u"kein Platz"_s;
    // A word that cannot be read back must not hide the reason.
    site.Ignore(u"R1F00"_s, [&] { return site.Written(u"1F00"_s); });
    site.Write(run);
    EXPECT_EQ(run.error, u"kein Platz"_s) << n;
    EXPECT_EQ(static_cast<int>(run.begun.size()), n - 1);
    EXPECT_EQ(site.log.last(), u"End"_s);
    EXPECT_EQ(site.keeper.unfinished, n > 1);
    EXPECT_EQ(ValueAt(run, 1).state, SafeState::Unverified);
    EXPECT_EQ(ValueAt(run, 1).reason, n == 1 ? u"nicht gesendet"_s : u"gesendet und nicht geprüft"_s);
    EXPECT_EQ(ValueAt(run, 2).state, n > 3 ? SafeState::Verified : SafeState::Unverified);
    EXPECT_EQ(ValueAt(run, 2).reason, n > 3    ? QString()
                                      : n == 3 ? u"nicht vollständig gesendet"_s
                                               : u"nicht gesendet"_s);
    ExpectTrue(run, before, site.memory, run);
    ExpectCanBeTakenBack(site, run, before);
  }
}

TEST(SafeTransfer, AValueThatIsHalfWrittenIsUnfinished) {
  Site site;
  SafeRun run = site.Prepared();
  ChooseOnly(run, {5});
  site.keeper.beforeErrors[2] = u"kein Platz"_s;
  site.Write(run);
  EXPECT_EQ(ValueAt(run, 5).state, SafeState::Unverified);
  EXPECT_EQ(ValueAt(run, 5).reason, u"nicht vollständig gesendet"_s);
  EXPECT_EQ(ValueAt(run, 5).controller->text, u"ABYZ"_s);
  EXPECT_TRUE(site.keeper.unfinished) << "the next start offers it";
}

TEST(SafeTransfer, WhatSomebodyElseHasChangedIsNotOverwritten) {
  Site site;
  SafeRun run = site.Prepared();
  site.Store(0x1F00, {0x1111});
  site.Write(run);
  EXPECT_EQ(ValueAt(run, 1).state, SafeState::Failed);
  EXPECT_EQ(ValueAt(run, 1).reason, u"inzwischen geändert"_s);
  EXPECT_EQ(ValueAt(run, 1).controller->number, 0x1111) << "what was read last";
  EXPECT_EQ(Lines(site.log.mid(3, 3)), u"R1F00 | R1F00 | R1F02"_s) << "believed when two readings agree";
  EXPECT_EQ(site.memory.Word(0x1F00), 0x1111);
  EXPECT_EQ(AccountText(run), u"4 geprüft, 1 fehlgeschlagen"_s);
  site.Restart();
  ChooseOnly(run, {1});
  site.Write(run);
  EXPECT_EQ(ValueAt(run, 1).state, SafeState::Verified) << "now the user knows";
  EXPECT_EQ(site.memory.Word(0x1F00), 1500);
}

TEST(SafeTransfer, WhatSomebodyElseHasWrittenAlreadyIsVerified) {
  Site site;
  SafeRun run = site.Prepared();
  ChooseOnly(run, {1});
  site.Store(0x1F00, {1500});
  site.Write(run);
  EXPECT_FALSE(site.Written(u"1F00"_s));
  EXPECT_EQ(ValueAt(run, 1).state, SafeState::Verified);
  EXPECT_TRUE(run.begun.empty());
}

TEST(SafeTransfer, AWriteWithoutEffectDeviates) {
  Site site;
  SafeRun run = site.Prepared();
  site.onReply = [&](sim::Response&) {
    if (site.request.startsWith(u"W1F00"_s)) site.memory = site.atRequest;
  };
  site.Write(run);
  EXPECT_EQ(ValueAt(run, 1).state, SafeState::Deviating);
  EXPECT_EQ(ValueAt(run, 1).reason, QString());
  EXPECT_EQ(ValueAt(run, 1).controller->number, 0x04D2);
  EXPECT_EQ(AccountText(run), u"4 geprüft, 1 abweichend"_s);
  EXPECT_EQ(site.log.count(u"R1F00"_s), 3) << "what is not expected is read back twice";
  EXPECT_FALSE(run.Unfinished());
}

TEST(SafeTransfer, AWriteThatIsNotAcknowledgedButDoneIsVerified) {
  Site site;
  SafeRun run = site.Prepared();
  site.Ignore(u"W1F00"_s);
  site.Write(run);
  EXPECT_EQ(site.log.count(u"W1F0005DC"_s), 3);
  EXPECT_EQ(site.log.count(u"Before 1F00"_s), 1);
  EXPECT_EQ(ValueAt(run, 1).state, SafeState::Verified);
  EXPECT_EQ(ValueAt(run, 1).reason, QString());
}

TEST(SafeTransfer, AWriteThatIsNotDoneFails) {
  Site site;
  SafeRun run = site.Prepared();
  site.onReply = [&](sim::Response& response) {
    if (!site.request.startsWith(u"W1F00"_s)) return;
    site.memory = site.atRequest;
    response.chunks.clear();
  };
  site.Write(run);
  EXPECT_EQ(ValueAt(run, 1).state, SafeState::Failed);
  EXPECT_EQ(ValueAt(run, 1).reason, u"kein Empfang"_s);
  EXPECT_EQ(AccountText(run), u"4 geprüft, 1 fehlgeschlagen"_s);
  EXPECT_TRUE(run.begun.contains(0x1F00));
}

TEST(SafeTransfer, AWordThatCannotBeReadAgainIsNotWritten) {
  Site site;
  SafeRun run = site.Prepared();
  site.Ignore(u"R1F00"_s);
  site.Write(run);
  EXPECT_FALSE(site.Written(u"1F00"_s));
  EXPECT_EQ(ValueAt(run, 1).state, SafeState::Failed);
  EXPECT_EQ(ValueAt(run, 1).reason, u"kein Empfang"_s);
  EXPECT_EQ(AccountText(run), u"4 geprüft, 1 fehlgeschlagen"_s);
}

TEST(SafeTransfer, AWordThatCannotBeReadBackIsUnverified) {
  Site site;
  SafeRun run = site.Prepared();
  site.Ignore(u"R1F04"_s, [&] { return site.Written(u"1F0A"_s); });
  site.Write(run);
  EXPECT_EQ(ValueAt(run, 2).state, SafeState::Unverified);
  EXPECT_EQ(ValueAt(run, 2).reason, u"gesendet und nicht geprüft"_s);
  EXPECT_EQ(AccountText(run), u"4 geprüft, 1 nicht geprüft"_s);
  EXPECT_TRUE(run.Unfinished());
  EXPECT_TRUE(site.keeper.unfinished);
}

TEST(SafeTransfer, TheWordsBehindAFailedOneAreNotWritten) {
  Site site;
  SafeRun run = site.Prepared();
  const sim::Memory before = site.memory;
  site.onReply = [&](sim::Response& response) {
    if (!site.request.startsWith(u"W1F08"_s)) return;
    site.memory = site.atRequest;
    response.chunks = {{0, sim::Sealed("10102?06")}};
  };
  site.Write(run);
  EXPECT_FALSE(site.Written(u"1F0A"_s));
  EXPECT_EQ(ValueAt(run, 5).state, SafeState::Failed);
  EXPECT_EQ(ValueAt(run, 5).reason, u"Code 06 Falsches Zeichen"_s);
  EXPECT_EQ(AccountText(run), u"4 geprüft, 1 fehlgeschlagen"_s);
  ExpectTrue(run, before, site.memory, run);
  ExpectCanBeTakenBack(site, run, before);
}

TEST(SafeTransfer, ANeighbourThatHasChangedDeviates) {
  Site site;
  SafeRun run = site.Prepared();
  ChooseOnly(run, {2});
  site.onRequest = [&] {
    if (site.request.startsWith(u"W1F04"_s)) site.Store(0x1F06, {0x1199});
  };
  site.Write(run);
  EXPECT_EQ(ValueAt(run, 2).state, SafeState::Verified);
  EXPECT_EQ(ValueAt(run, 4).state, SafeState::Deviating);
  EXPECT_EQ(ValueAt(run, 4).reason, u"wurde nicht gesendet und hat sich geändert"_s);
  EXPECT_EQ(ValueAt(run, 4).controller->number, 0x99);
  EXPECT_FALSE(ValueAt(run, 4).chosen);
  EXPECT_EQ(ValueAt(run, 3).state, SafeState::Different) << "its byte is as it was";
  EXPECT_EQ(ValueAt(run, 1).state, SafeState::Different);
  SafeRun back = WantedBack(site.module, run);
  ASSERT_EQ(back.values.size(), 2U) << "it is taken back as well";
  EXPECT_EQ(back.values[1].index, 4);
  EXPECT_EQ(back.values[1].wanted.number, 0x23);
}

TEST(SafeTransfer, TheOtherByteOfAWrittenWordMustStay) {
  Site site;
  SafeRun run = site.Prepared();
  ChooseOnly(run, {3});
  site.onReply = [&](sim::Response&) {
    if (site.request.startsWith(u"W1F06"_s)) site.Store(0x1F06, {0x1099});
  };
  site.Write(run);
  EXPECT_EQ(ValueAt(run, 3).state, SafeState::Deviating);
  EXPECT_EQ(ValueAt(run, 3).reason, u"das andere Byte des Wortes hat sich geändert"_s);
  EXPECT_EQ(ValueAt(run, 4).state, SafeState::Deviating);
}

TEST(SafeTransfer, TheEndsOfTheAddressesAreNoNeighbours) {
  Site site;
  site.Uncheck({2, 3, 4, 5});
  site.module.Par[1].VarAdresse = u"0000"_s;
  site.module.Par[6].VarAdresse = u"FFFE"_s;
  site.Store(0xFFFE, {7});
  SafeRun run = site.Prepared();
  site.Write(run);
  EXPECT_EQ(Lines(site.log),
            u"v00 | R2000 | Begin | R0000 | Before 0000 | W000005DC | R0000 | v00 | R2000 | End"_s);
  site.module.SetNumber(1, 0, ValueSource::Edited);
  site.module.SetNumber(6, 5, ValueSource::Edited);
  site.Store(0x0000, {0});
  run = site.Prepared();
  site.Write(run);
  EXPECT_EQ(Lines(site.log),
            u"v00 | R2000 | Begin | RFFFE | Before FFFE | WFFFE0005 | RFFFE | v00 | R2000 | End"_s);
}

TEST(SafeTransfer, ValuesThatLieInEachOtherAreWrittenOnce) {
  Site site;
  site.Uncheck({3, 4, 5, 6});
  site.module.Par[1].VarAdresse = u"1F02"_s;
  site.module.SetNumber(1, 1, ValueSource::Edited);
  SafeRun run = site.Prepared();
  site.Write(run);
  EXPECT_EQ(
      Lines(site.log),
      u"v00 | R2000 | Begin | R1F02 | Before 1F02 | W1F020001 | R1F04 | Before 1F04 | W1F040000 | R1F02 | R1F04 | v00 | R2000 | End"_s);
  EXPECT_EQ(AccountText(run), u"2 geprüft"_s);
}

TEST(SafeTransfer, AConflictInAnyWordRefusesEveryValueThatTakesPart) {
  // A text and an int in each of its words, which want something else.
  for (const std::vector<QString>& order :
       {std::vector<QString>{u"A"_s, u"T"_s, u"B"_s}, {u"T"_s, u"A"_s, u"B"_s}, {u"A"_s, u"B"_s, u"T"_s}}) {
    Installation site;
    site.StartEmpty();
    for (const QString& name : order) {
      ParameterRecord& record = site.AddParameter(name == u"T"_s ? u"string4"_s : u"int"_s,
                                                  name == u"B"_s ? u"1F0A"_s : u"1F08"_s, name);
      record.Max = 9;
    }
    const SafeRun run = WantedOfTable(site.module, SafeKind::Send);
    for (const SafeValue& value : run.values)
      EXPECT_FALSE(value.sendable) << order.at(0).toStdString() << ' ' << value.index;
  }
}

// --- again ---

TEST(SafeTransfer, AFailedValueIsVerifiedWhenItIsWrittenAgain) {
  Site site;
  SafeRun run = site.Prepared();
  const sim::Memory before = site.memory;
  site.onReply = [&](sim::Response& response) {
    if (!site.request.startsWith(u"W1F00"_s)) return;
    site.memory = site.atRequest;
    response.chunks.clear();
  };
  site.Write(run);
  site.Heal();
  site.Restart();
  ChooseOnly(run, {1});
  site.Write(run);
  EXPECT_EQ(Lines(site.log),
            u"v00 | R2000 | Begin | R1F00 | Before 1F00 | W1F0005DC | R1F00 | R1F02 | v00 | R2000 | End"_s);
  EXPECT_EQ(AccountText(run), u"5 geprüft"_s);
  EXPECT_EQ(ValueAt(run, 1).reason, QString());
  EXPECT_EQ(run.begun.size(), 6U);
  ExpectCanBeTakenBack(site, run, before);
}

TEST(SafeTransfer, AnErrorOfTheTimeBeforeIsForgotten) {
  Site site;
  SafeRun run = site.Prepared();
  site.keeper.beforeErrors[1] = u"kein Platz"_s;
  site.Write(run);
  EXPECT_EQ(run.Count(SafeState::Unverified), 5);
  site.Heal();
  site.Write(run);
  EXPECT_EQ(run.error, QString());
  EXPECT_EQ(AccountText(run), u"5 geprüft"_s);
}

TEST(SafeTransfer, AVerifiedValueThatTheNextWritingChangesDeviates) {
  Site site;
  SafeRun run = site.Prepared();
  ChooseOnly(run, {1});
  site.Write(run);
  EXPECT_EQ(ValueAt(run, 1).state, SafeState::Verified);
  ChooseOnly(run, {2});
  site.onRequest = [&] {
    if (site.request.startsWith(u"W1F02"_s)) site.Store(0x1F00, {5});
  };
  site.Write(run);
  EXPECT_EQ(ValueAt(run, 2).state, SafeState::Verified);
  EXPECT_EQ(ValueAt(run, 1).state, SafeState::Deviating);
  EXPECT_EQ(ValueAt(run, 1).reason, u"hat sich seit der Prüfung geändert"_s);
}

TEST(SafeTransfer, AnAbortOfTheTimeBeforeIsForgotten) {
  Site site;
  SafeRun run = site.Prepared();
  site.onRequest = [&] {
    if (site.request.startsWith(u"W1F00"_s)) site.module.Abbruch = kTrue;
  };
  site.Write(run);
  EXPECT_TRUE(run.aborted);
  site.Heal();
  site.Write(run);
  EXPECT_FALSE(run.aborted);
  EXPECT_EQ(AccountText(run), u"5 geprüft"_s);
  EXPECT_EQ(ValueAt(run, 5).reason, QString());
}

// --- an abort ---

TEST(SafeTransfer, AnAbortEndsTheWritingAndNotTheReadingBack) {
  Site site;
  SafeRun run = site.Prepared();
  site.onRequest = [&] {
    if (site.request.startsWith(u"W1F00"_s)) site.module.Abbruch = kTrue;
  };
  site.Write(run);
  EXPECT_EQ(Lines(site.log),
            u"v00 | R2000 | Begin | R1F00 | Before 1F00 | W1F0005DC | R1F00 | R1F02 | v00 | R2000 | End"_s);
  EXPECT_TRUE(run.aborted);
  EXPECT_EQ(run.error, QString());
  EXPECT_EQ(AccountText(run), u"1 geprüft, 4 nicht geprüft"_s);
  EXPECT_EQ(ValueAt(run, 2).reason, u"nicht gesendet"_s);
  EXPECT_TRUE(site.keeper.unfinished);
  EXPECT_EQ(site.module.Abbruch, kFalse);
}

TEST(SafeTransfer, ASecondAbortEndsTheReadingBack) {
  Site site;
  SafeRun run = site.Prepared();
  site.onRequest = [&] {
    const bool reads = site.Written(u"1F04"_s) && site.request == u"R1F00"_s;
    if (site.request.startsWith(u"W1F04"_s) || reads) site.module.Abbruch = kTrue;
  };
  site.Write(run);
  EXPECT_EQ(Lines(site.log.mid(site.log.indexOf(u"W1F040000"_s))),
            u"W1F040000 | R1F00 | v00 | R2000 | End"_s);
  EXPECT_TRUE(run.aborted);
  EXPECT_EQ(site.module.Abbruch, kFalse);
  EXPECT_EQ(run.error, QString());
  EXPECT_EQ(ValueAt(run, 1).state, SafeState::Verified);
  EXPECT_EQ(ValueAt(run, 2).state, SafeState::Unverified);
  EXPECT_EQ(ValueAt(run, 2).reason, u"gesendet und nicht geprüft"_s);
}

TEST(SafeTransfer, AnAbortBehindTheLastValueIsNone) {
  Site site;
  SafeRun run = site.Prepared();
  site.onRequest = [&] {
    if (site.request.startsWith(u"W1F0A"_s)) site.module.Abbruch = kTrue;
  };
  site.Write(run);
  EXPECT_FALSE(run.aborted);
  EXPECT_EQ(AccountText(run), u"5 geprüft"_s);
}

TEST(SafeTransfer, AnAbortWhileTheLineRestsInTheLastWriteIsOne) {
  Site site;
  SafeRun run = site.Prepared();
  site.Ignore(u"W1F0A"_s);
  int slices = 0;
  site.events.onProcess = [&] {
    if (site.Written(u"1F0A"_s) && ++slices == 3) site.module.Abbruch = kTrue;
  };
  site.Write(run);
  EXPECT_TRUE(run.aborted);
  EXPECT_EQ(run.error, QString());
  EXPECT_EQ(AccountText(run), u"5 geprüft"_s) << "it was done";
}

// --- anything, anywhere ---

/// How many exchanges a sending of everything takes on the healthy line.
int Exchanges() {
  Site site;
  SafeRun run = site.Prepared();
  site.Write(run);
  return site.exchange;
}

TEST(SafeTransferAnywhere, ALateReplyDoesNoHarm) {
  const int all = Exchanges();
  for (const int delay_ms : {350, 399, 400, 401, 450, 800, 1200, 1600, 2000}) {
    for (int n = 1; n <= all; ++n) {
      Site site;
      SafeRun run = site.Prepared();
      const sim::Memory before = site.memory;
      site.onReply = [&](sim::Response& response) {
        if (site.exchange == n) response.chunks.at(0).pause_ms = delay_ms;
      };
      site.Write(run);
      EXPECT_EQ(AccountText(run), u"5 geprüft"_s) << delay_ms << " ms at " << n;
      ExpectTrue(run, before, site.memory, run);
    }
  }
}

TEST(SafeTransferAnywhere, ALateReplyDoesNoHarmWhileReading) {
  for (const int delay_ms : {350, 399, 400, 401, 450, 800, 1200, 1600, 2000}) {
    for (int n = 1; n <= 11; ++n) {
      Site site;
      site.onReply = [&](sim::Response& response) {
        if (site.exchange == n) response.chunks.at(0).pause_ms = delay_ms;
      };
      const SafeRun run = site.Read();
      EXPECT_EQ(run.error, QString()) << delay_ms << " ms at " << n;
      for (const auto& [address, word] : run.now)
        EXPECT_EQ(word, site.memory.Word(address));
      EXPECT_EQ(run.now.size(), 7U);
    }
  }
}

TEST(SafeTransferAnywhere, OneReplyThatIsMissingOrDamagedDoesNoHarm) {
  const int all = Exchanges();
  for (int n = 1; n <= all; ++n) {
    for (const int fault : {0, 1, 2, 3}) {
      Site site;
      SafeRun run = site.Prepared();
      const sim::Memory before = site.memory;
      site.onReply = [&](sim::Response& response) {
        if (site.exchange != n) return;
        QByteArray& reply = response.chunks.at(0).bytes;
        if (fault == 0) reply.clear();
        if (fault == 1) reply[6 < reply.size() - 1 ? 6 : 0] = 'x';
        if (fault == 2) reply = sim::Sealed("10102?04");
        if (fault == 3) reply = sim::Sealed("1020" + reply.chopped(3).mid(4));
      };
      site.Write(run);
      if (fault == 3 && n == 1) {
        // The other replies do not fit the first one.
        EXPECT_TRUE(run.error.contains(u"Antwort mit anderem Kopf"_s)) << run.error.toStdString();
        EXPECT_TRUE(SameWords(site.memory, before));
        continue;
      }
      EXPECT_EQ(AccountText(run), u"5 geprüft"_s) << fault << " at " << n;
      ExpectTrue(run, before, site.memory, run);
      ExpectCanBeTakenBack(site, run, before);
    }
  }
}

TEST(SafeTransferAnywhere, SilenceFromAnyExchangeOnVerifiesNothingAndCanBeTakenBack) {
  const int all = Exchanges();
  for (const bool acts : {false, true}) {
    for (int n = 1; n <= all; ++n) {
      Site site;
      SafeRun run = site.Prepared();
      const sim::Memory before = site.memory;
      site.onReply = [&](sim::Response& response) {
        if (site.exchange < n) return;
        if (!acts) site.memory = site.atRequest;
        response.chunks.clear();
      };
      const double begun = site.clock.passed;
      site.Write(run);
      EXPECT_LT(site.clock.passed - begun, 30) << n;
      EXPECT_FALSE(run.error.isEmpty()) << n;
      EXPECT_EQ(run.Count(SafeState::Verified), 0) << n;
      EXPECT_EQ(run.Unfinished(), !run.begun.empty());
      ExpectTrue(run, before, site.memory, run);
      ExpectCanBeTakenBack(site, run, before);
    }
  }
}

/// A second controller that takes the place of the first one.
struct Other {
  sim::Memory memory;
  QByteArray version = "AB1-04D2";
};

TEST(SafeTransferAnywhere, AnExchangedControllerIsNeverVerified) {
  const int all = Exchanges();
  for (const bool otherVersion : {false, true}) {
    for (const bool sameValues : {false, true}) {
      for (const bool comesBack : {false, true}) {
        // Who comes behind the last question that would tell them apart comes behind the end.
        const int last = otherVersion ? all - 1 : all;
        for (int n = 1; n <= last; ++n) {
          Site site;
          SafeRun run = site.Prepared();
          const sim::Memory before = site.memory;
          sim::Memory other = sameValues ? before : sim::Memory();
          other.SetWord(0x2000, otherVersion ? 0 : 1);
          const sim::Memory otherBefore = other;
          bool there = false;
          site.onRequest = [&] {
            const bool wanted = comesBack ? site.exchange == n : site.exchange >= n;
            if (wanted != there) std::swap(site.memory, other);
            there = wanted;
          };
          site.onReply = [&](sim::Response& response) {
            if (there && otherVersion && site.request == u"v00"_s)
              response.chunks = {{0, sim::Sealed("10102vAB1-04D8")}};
          };
          site.Write(run);
          EXPECT_TRUE(comesBack || run.Count(SafeState::Verified) == 0) << n;
          EXPECT_TRUE(comesBack || !run.error.isEmpty()) << n;
          ExpectTrue(run, there ? otherBefore : before, site.memory, run);
          ExpectTrue({}, there ? before : otherBefore, other, run);
        }
      }
    }
  }
}

TEST(SafeTransferAnywhere, AnAbortLeavesNothingUntold) {
  const int all = Exchanges();
  for (int n = 1; n <= all; ++n) {
    for (const int second : {0, 1, 2, 4, 8}) {
      Site site;
      SafeRun run = site.Prepared();
      const sim::Memory before = site.memory;
      site.onRequest = [&] {
        if (site.exchange == n || (second > 0 && site.exchange == n + second)) site.module.Abbruch = kTrue;
      };
      site.Write(run);
      EXPECT_EQ(run.error, QString());
      EXPECT_EQ(run.aborted, run.Count(SafeState::Verified) < 5) << n << ' ' << second;
      EXPECT_EQ(
          run.Count(SafeState::Verified) + run.Count(SafeState::Unverified) + run.Count(SafeState::Deviating),
          5);
      EXPECT_TRUE(second > 0 || run.Count(SafeState::Deviating) == 0) << "a value is written as a whole";
      ExpectTrue(run, before, site.memory, run);
      ExpectCanBeTakenBack(site, run, before);
    }
  }
}

TEST(SafeTransferAnywhere, AWriteWithoutEffectIsAlwaysFound) {
  for (const int index : {1, 2, 3, 4, 5}) {
    Site site;
    SafeRun run = site.Prepared();
    std::vector<CodedWord> words = ValueAt(run, index).words;
    for (const CodedWord& word : words) {
      Site fresh;
      SafeRun sending = fresh.Prepared();
      const sim::Memory before = fresh.memory;
      fresh.onReply = [&](sim::Response&) {
        if (fresh.request.startsWith(u'W' + Hex(word.address))) fresh.memory = fresh.atRequest;
      };
      fresh.Write(sending);
      EXPECT_EQ(ValueAt(sending, index).state, SafeState::Deviating);
      ExpectTrue(sending, before, fresh.memory, sending);
    }
  }
}

TEST(SafeTransferAnywhere, MidnightDoesNoHarm) {
  Site site;
  site.clock.now = 86399.9;
  SafeRun run = site.Prepared();
  site.Write(run);
  EXPECT_EQ(AccountText(run), u"5 geprüft"_s);
  // While the line rests as well.
  for (double seconds = 0; seconds < 3; seconds += 0.25) {
    Site late;
    SafeRun sending = late.Prepared();
    const sim::Memory before = late.memory;
    late.clock.now = 86400 - seconds;
    late.onReply = [&](sim::Response& response) {
      if (late.exchange == 4) response.chunks.clear();
    };
    late.Write(sending);
    ExpectTrue(sending, before, late.memory, sending);
    late.clock.now = 10;
    ExpectCanBeTakenBack(late, sending, before);
  }
}

// --- much ---

TEST(SafeTransfer, TwoThousandValuesAreQuick) {
  Installation site;
  site.StartEmpty();
  for (int i = 1; i < 2000; ++i) {
    // All of them in the same place, and all but the first one want something else.
    ParameterRecord& record = site.AddParameter(u"string99"_s, u"1F00"_s);
    record.WertText = QString::number(i);
  }
  const SafeRun run = WantedOfTable(site.module, SafeKind::Send);
  EXPECT_EQ(run.values.size(), 1999U);
  EXPECT_TRUE(std::ranges::none_of(run.values, &SafeValue::sendable));
}

TEST(SafeTransfer, StatesHaveNames) {
  EXPECT_EQ(SafeStateText(SafeState::NotRead), u"nicht gelesen"_s);
  EXPECT_EQ(SafeStateText(SafeState::Equal), u"gleich"_s);
  EXPECT_EQ(SafeStateText(SafeState::Different), u"verschieden"_s);
  EXPECT_EQ(SafeStateText(SafeState::Verified), u"geprüft"_s);
  EXPECT_EQ(SafeStateText(SafeState::Deviating), u"abweichend"_s);
  EXPECT_EQ(SafeStateText(SafeState::Failed), u"fehlgeschlagen"_s);
  EXPECT_EQ(SafeStateText(SafeState::Unverified), u"nicht geprüft"_s);
}

TEST(SafeTransfer, TheAccountNamesWhatThereIs) {
  SafeRun run;
  EXPECT_EQ(AccountText(run), u"kein Wert"_s);
  run.values.resize(4);
  EXPECT_EQ(AccountText(run), u"4 nicht gelesen"_s);
  run.values[0].state = SafeState::Equal;
  run.values[1].state = SafeState::Different;
  EXPECT_EQ(AccountText(run), u"1 gleich, 1 verschieden, 2 nicht gelesen"_s);
  run.values[1].state = SafeState::Unverified;
  run.values[2].state = SafeState::Deviating;
  run.values[3].state = SafeState::Failed;
  EXPECT_EQ(AccountText(run), u"1 abweichend, 1 fehlgeschlagen, 1 nicht geprüft"_s);
}

}  // namespace
}  // namespace kalivor::test
