// The command line of kalivor-cli: what is understood, and what each mistake is called.
#include "cli/Arguments.h"

#include <gtest/gtest.h>

#include "fakes/QtPrinters.h"

using namespace Qt::StringLiterals;

namespace kalivor::cli {
namespace {

struct Mistake {
  QStringList arguments;
  QString message;
};

void PrintTo(const Mistake& mistake, std::ostream* out) {
  *out << mistake.message.toStdString();
}

class CommandLineMistakes : public testing::TestWithParam<Mistake> {};

TEST_P(CommandLineMistakes, AreNamed) {
  EXPECT_EQ(ParseArguments(GetParam().arguments).error, GetParam().message);
}

INSTANTIATE_TEST_SUITE_P(
    Each, CommandLineMistakes,
    testing::Values(
        Mistake{{}, u"Es fehlt der Befehl; --help zeigt, welche es gibt."_s},
        Mistake{{u"recieve"_s}, u"Unbekannter Befehl: recieve"_s},
        Mistake{{u"receive"_s, u"send"_s}, u"Überzähliges Argument: send"_s},
        Mistake{{u"--bogus"_s, u"tree"_s}, u"Unbekannte Option: --bogus"_s},
        Mistake{{u"-v"_s, u"tree"_s}, u"Unbekannte Option: -v"_s},
        Mistake{{u"tree"_s, u"--port"_s}, u"Option --port: Wert fehlt."_s},
        Mistake{{u"--port"_s, u"--json"_s, u"params"_s}, u"Option --port: Wert fehlt."_s},
        Mistake{{u"--json=1"_s, u"params"_s}, u"Option --json nimmt keinen Wert."_s},
        Mistake{{u"--port"_s, u"1"_s, u"--port"_s, u"2"_s, u"tree"_s},
                u"Option --port: mehrfach angegeben."_s},
        Mistake{{u"--address"_s, u"1"_s, u"--address"_s, u"1"_s, u"tree"_s},
                u"Option --address: mehrfach angegeben."_s},
        Mistake{{u"--address"_s, u"256"_s, u"tree"_s},
                u"Option --address: keine Adresse von 0 bis 255: 256."_s},
        Mistake{{u"--address"_s, u"-1"_s, u"tree"_s},
                u"Option --address: keine Adresse von 0 bis 255: -1."_s},
        Mistake{{u"--address"_s, u"elf"_s, u"tree"_s},
                u"Option --address: keine Adresse von 0 bis 255: elf."_s},
        Mistake{{u"--address"_s, u"70000"_s, u"tree"_s},
                u"Option --address: keine Adresse von 0 bis 255: 70000."_s},
        Mistake{{u"--set"_s, u"SOLL"_s, u"send"_s}, u"Option --set: erwartet VARIABLE=WERT statt SOLL."_s},
        Mistake{{u"--set"_s, u"=5"_s, u"send"_s}, u"Option --set: erwartet VARIABLE=WERT statt =5."_s},
        Mistake{{u"--answer"_s, u"yes"_s, u"send"_s},
                u"Option --answer: erwartet first oder second statt yes."_s},
        Mistake{{u"tree"_s, u"--landscape"_s}, u"Option --landscape gilt nicht für den Befehl tree."_s},
        Mistake{{u"print"_s}, u"Es fehlt die Option --pdf zum Befehl print."_s},
        Mistake{{u"pages"_s, u"--pdf"_s, u"x"_s}, u"Option --pdf gilt nicht für den Befehl pages."_s},
        Mistake{{u"pages"_s, u"--date"_s, u"morgen"_s},
                u"Option --date: kein Datum der Form JJJJ-MM-TT: morgen."_s},
        Mistake{{u"print"_s, u"--page"_s, u"0"_s}, u"Option --page: keine Zahl ab 1: 0."_s},
        Mistake{{u"print"_s, u"--copies"_s, u"-1"_s}, u"Option --copies: keine Zahl ab 0: -1."_s},
        Mistake{{u"show"_s}, u"Es fehlt die Datei zum Befehl show."_s},
        Mistake{{u"show"_s, u"a.qpf"_s, u"b.qpf"_s}, u"Überzähliges Argument: b.qpf"_s},
        Mistake{{u"--load"_s, u"a"_s, u"--load"_s, u"b"_s, u"tree"_s},
                u"Option --load: mehrfach angegeben."_s},
        Mistake{{u"diff"_s}, u"Es fehlt eine der beiden Seiten zum Befehl diff."_s},
        Mistake{{u"diff"_s, u"table"_s}, u"Es fehlt eine der beiden Seiten zum Befehl diff."_s},
        Mistake{{u"diff"_s, u"a"_s, u"b"_s, u"c"_s}, u"Überzähliges Argument: c"_s},
        Mistake{{u"diff"_s, u"a"_s, u"b"_s, u"--out"_s, u"x"_s},
                u"Option --out gilt nicht für den Befehl diff."_s},
        Mistake{{u"list"_s, u"a"_s}, u"Überzähliges Argument: a"_s},
        Mistake{{u"params"_s, u"--filter"_s, u"x"_s}, u"Option --filter gilt nicht für den Befehl params."_s},
        Mistake{{u"params"_s, u"--only"_s, u"checked"_s},
                u"Option --only gilt nicht für den Befehl params."_s},
        Mistake{{u"params"_s, u"--against"_s, u"x"_s},
                u"Option --against gilt nicht für den Befehl params."_s},
        Mistake{{u"params"_s, u"--format"_s, u"csv"_s},
                u"Option --format gilt nicht für den Befehl params."_s},
        Mistake{{u"list"_s, u"--only"_s, u"checked,hidden"_s},
                u"Option --only: erwartet checked, different, nonstandard oder outside statt hidden."_s},
        Mistake{{u"list"_s, u"--only"_s, u"different"_s},
                u"Zu --only different gehört die Option --against."_s},
        Mistake{{u"list"_s, u"--format"_s, u"xml"_s},
                u"Option --format: erwartet tsv, csv, html oder pdf statt xml."_s},
        Mistake{{u"list"_s, u"--format"_s, u"pdf"_s}, u"Zu --format pdf gehört die Option --out."_s},
        Mistake{{u"list"_s, u"--format"_s, u"csv"_s, u"--json"_s},
                u"--json und --format schließen einander aus."_s},
        Mistake{{u"--json"_s, u"tree"_s}, u"Option --json gilt nicht für den Befehl tree."_s}));

TEST(CommandLine, OnlyNamesSeveralConditions) {
  const Arguments arguments =
      ParseArguments({u"list"_s, u"--only"_s, u"checked,outside"_s, u"--against=standard"_s});
  EXPECT_EQ(arguments.error, QString());
  ASSERT_TRUE(arguments.only);
  EXPECT_TRUE(arguments.only->checked && arguments.only->outside);
  EXPECT_FALSE(arguments.only->different || arguments.only->nonStandard || arguments.only->changed);
  EXPECT_EQ(arguments.against, u"standard"_s);
}

TEST(CommandLine, FindTakesPortsAndAddresses) {
  const Arguments arguments =
      ParseArguments({u"find"_s, u"--ports"_s, u"2,/dev/ttyUSB0"_s, u"--addresses"_s, u"1-31"_s});
  EXPECT_EQ(arguments.error, QString());
  EXPECT_EQ(arguments.ports, QStringList({u"2"_s, u"/dev/ttyUSB0"_s}));
  EXPECT_EQ(arguments.addresses, std::make_pair(1, 31));
  EXPECT_EQ(ParseArguments({u"find"_s, u"--addresses=7"_s}).addresses, std::make_pair(7, 7));
  EXPECT_EQ(ParseArguments({u"find"_s, u"--addresses=0-255"_s}).addresses, std::make_pair(0, 255));
}

TEST(CommandLine, FindRefusesWhatIsNeitherPortNorAddress) {
  for (const QString& ports : {u"0"_s, u"9"_s, u"1,,2"_s, u"1,9"_s})
    EXPECT_TRUE(ParseArguments({u"find"_s, u"--ports"_s, ports}).error.contains(ports))
        << ports.toStdString();
  for (const QString& addresses :
       {u"x"_s, u"1-"_s, u"-5"_s, u"5-1"_s, u"0-256"_s, u"1-2-3"_s, u"1,2"_s, u" "_s}) {
    EXPECT_TRUE(ParseArguments({u"find"_s, u"--addresses="_s + addresses}).error.contains(u"--addresses"_s))
        << addresses.toStdString();
  }
  EXPECT_EQ(ParseArguments({u"identify"_s, u"--ports"_s, u"1"_s}).error,
            u"Option --ports gilt nicht für den Befehl identify."_s);
  EXPECT_EQ(ParseArguments({u"identify"_s, u"--addresses"_s, u"1"_s}).error,
            u"Option --addresses gilt nicht für den Befehl identify."_s);
}

TEST(CommandLine, PagesAndPdfsAreDrawn) {
  EXPECT_TRUE(Draws(ParseArguments({u"print"_s, u"--pdf"_s, u"x"_s})));
  EXPECT_TRUE(Draws(ParseArguments({u"list"_s, u"--format=pdf"_s, u"--out=x"_s})));
  EXPECT_FALSE(Draws(ParseArguments({u"list"_s, u"--format=csv"_s, u"--out=x.pdf"_s})));
  EXPECT_FALSE(Draws(ParseArguments({u"pages"_s})));
}

TEST(CommandLine, OptionsStandBeforeAndAfterTheCommandWithBlankOrEqualsSign) {
  const Arguments arguments =
      ParseArguments({u"--ini-path"_s, u"/opt/d"_s, u"send"_s, u"--ini-file=V.INI"_s, u"--controller"_s,
                      u"AB1-123.4"_s, u"--plant=#2"_s, u"--port"_s, u"3"_s, u"--address=17"_s});
  EXPECT_EQ(arguments.error, QString());
  EXPECT_EQ(arguments.command, u"send"_s);
  EXPECT_EQ(arguments.iniPath, u"/opt/d"_s);
  EXPECT_EQ(arguments.iniFile, u"V.INI"_s);
  EXPECT_EQ(arguments.controller, u"AB1-123.4"_s);
  EXPECT_EQ(arguments.plant, u"#2"_s);
  EXPECT_EQ(arguments.port, u"3"_s);
  EXPECT_EQ(arguments.address, qint16{17});
}

TEST(CommandLine, RepeatedOptionsKeepTheirOrder) {
  const Arguments arguments =
      ParseArguments({u"--uncheck"_s, u"all"_s, u"--set"_s, u"A=1"_s, u"--check"_s, u"7"_s, u"--set"_s,
                      u"B=x=y"_s, u"--answer"_s, u"second"_s, u"--answer"_s, u"first"_s, u"send"_s});
  EXPECT_EQ(arguments.error, QString());
  EXPECT_EQ(arguments.set, QStringList({u"A=1"_s, u"B=x=y"_s}));
  ASSERT_EQ(arguments.marks.size(), 2U);
  EXPECT_EQ(arguments.marks[0].what, u"all"_s);
  EXPECT_FALSE(arguments.marks[0].checked);
  EXPECT_EQ(arguments.marks[1].what, u"7"_s);
  EXPECT_TRUE(arguments.marks[1].checked);
  EXPECT_EQ(arguments.answers, (std::vector<qint16>{2, 1}));
}

TEST(CommandLine, HelpAndProgramVersionNeedNoCommand) {
  EXPECT_TRUE(ParseArguments({u"--help"_s}).help);
  EXPECT_EQ(ParseArguments({u"--help"_s}).error, QString());
  EXPECT_TRUE(ParseArguments({u"--program-version"_s}).programVersion);
  EXPECT_EQ(ParseArguments({u"--program-version"_s}).error, QString());
}

TEST(CommandLine, TwoDashesEndTheOptions) {
  EXPECT_EQ(ParseArguments({u"--"_s, u"--json"_s}).error, u"Unbekannter Befehl: --json"_s);
}

TEST(CommandLine, JsonIsForTables) {
  for (const QString& command : {u"versions"_s, u"plants"_s, u"params"_s, u"compare"_s}) {
    EXPECT_EQ(ParseArguments({command, u"--json"_s}).error, QString()) << command.toStdString();
  }
}

TEST(CommandLine, TheHistoryHasCommandsOfTwoWords) {
  const Arguments list =
      ParseArguments({u"--kind"_s, u"sicher gesendet"_s, u"history"_s, u"list"_s, u"--from"_s,
                      u"2026-03-04"_s, u"--to=2026-03-05"_s, u"--technician"_s, u"Meier"_s, u"--plant-name"_s,
                      u""_s, u"--parameter"_s, u"Soll"_s, u"--filter"_s, u"a b"_s});
  EXPECT_EQ(list.error, QString());
  EXPECT_EQ(list.command, u"history list"_s);
  EXPECT_EQ(list.kind, DeedKind::SentSafely);
  EXPECT_EQ(list.from, QDate(2026, 3, 4));
  EXPECT_EQ(list.to, QDate(2026, 3, 5));
  EXPECT_EQ(list.technician, u"Meier"_s);
  EXPECT_EQ(list.plantName, u""_s);
  EXPECT_EQ(list.parameter, u"Soll"_s);
  const Arguments show = ParseArguments({u"history"_s, u"show"_s, u"01a2"_s, u"--json"_s});
  EXPECT_EQ(show.error, QString());
  EXPECT_EQ(show.words, QStringList{u"01a2"_s});
  const Arguments sync =
      ParseArguments({u"history"_s, u"sync"_s, u"--server"_s, u"abteilung"_s, u"--json"_s});
  EXPECT_EQ(sync.error, QString());
  EXPECT_EQ(sync.server, u"abteilung"_s);
}

TEST(CommandLine, WhatIsWrongWithACommandOfTheHistory) {
  const auto error = [](const QStringList& words) { return ParseArguments(words).error; };
  EXPECT_EQ(error({u"history"_s}),
            u"Es fehlt list, show, export, check, sync oder init-server zum Befehl history."_s);
  EXPECT_EQ(error({u"history"_s, u"drop"_s}), u"Unbekannter Befehl: history drop"_s);
  EXPECT_EQ(error({u"history"_s, u"show"_s}), u"Es fehlt der Eintrag zum Befehl history show."_s);
  EXPECT_EQ(error({u"history"_s, u"check"_s, u"x"_s}), u"Überzähliges Argument: x"_s);
  EXPECT_EQ(error({u"history"_s, u"show"_s, u"x"_s, u"--kind"_s, u"gesendet"_s}),
            u"Option --kind gilt nicht für den Befehl history show."_s);
  EXPECT_EQ(error({u"history"_s, u"list"_s, u"--save"_s, u"x"_s}),
            u"Option --save gilt nicht für den Befehl history list."_s);
  EXPECT_EQ(error({u"history"_s, u"export"_s, u"--format"_s, u"pdf"_s}),
            u"Für history export gibt es --format csv und html."_s);
  EXPECT_EQ(error({u"history"_s, u"init-server"_s}),
            u"Es fehlt die Option --server zum Befehl history init-server."_s);
  EXPECT_EQ(error({u"history"_s, u"check"_s, u"--server"_s, u"x"_s}),
            u"Option --server gilt nicht für den Befehl history check."_s);
  EXPECT_EQ(error({u"list"_s, u"--kind"_s, u"gesendet"_s}),
            u"Option --kind gilt nicht für den Befehl list."_s);
  EXPECT_TRUE(error({u"history"_s, u"list"_s, u"--kind"_s, u"gelöscht"_s})
                  .contains(u"erwartet eines von empfangen, gesendet, sicher gesendet,"_s));
  EXPECT_TRUE(error({u"history"_s, u"list"_s, u"--from"_s, u"gestern"_s})
                  .contains(u"kein Datum der Form JJJJ-MM-TT: gestern"_s));
}

TEST(CommandLine, TheHistoryHasAHelpOfItsOwn) {
  const Arguments asked = ParseArguments({u"history"_s, u"--help"_s});
  EXPECT_TRUE(asked.help);
  const QString help = HelpText(asked.command);
  for (const QString& word :
       {u"list "_s, u"show "_s, u"export "_s, u"check "_s, u"--plant-name"_s, u"--kind"_s, u"--technician"_s,
        u"--from"_s, u"--to"_s, u"--filter"_s, u"--parameter"_s, u"--format"_s, u"--out"_s, u"--save"_s,
        u"--history"_s, u"--json"_s})
    EXPECT_TRUE(help.contains(u"  "_s + word)) << word.toStdString();
}

TEST(CommandLine, HelpNamesEveryOptionAndCommand) {
  const QString help = HelpText({});
  for (const QString& word : {u"versions"_s,
                              u"plants"_s,
                              u"params"_s,
                              u"tree"_s,
                              u"identify"_s,
                              u"receive"_s,
                              u"send"_s,
                              u"compare"_s,
                              u"standard"_s,
                              u"show"_s,
                              u"--load"_s,
                              u"--save"_s,
                              u"check-definitions"_s,
                              u"--ini-path"_s,
                              u"--ini-file"_s,
                              u"--controller"_s,
                              u"--plant"_s,
                              u"--port"_s,
                              u"--address"_s,
                              u"--set"_s,
                              u"--check"_s,
                              u"--uncheck"_s,
                              u"--answer"_s,
                              u"--json"_s,
                              u"--help"_s,
                              u"--program-version"_s}) {
    EXPECT_TRUE(help.contains(word)) << word.toStdString();
  }
}

}  // namespace
}  // namespace kalivor::cli
