// The command line of the desktop program.
#include <gtest/gtest.h>

#include "fakes/QtPrinters.h"
#include "kalivor/Arguments.h"

namespace kalivor::test {
namespace {

using namespace Qt::StringLiterals;

TEST(ProgramArguments, NothingIsSetByDefault) {
  const Arguments arguments = ParseArguments({});
  EXPECT_FALSE(arguments.iniPath || arguments.iniFile || arguments.port);
  EXPECT_FALSE(arguments.demo || arguments.help || arguments.programVersion);
  EXPECT_EQ(arguments.valueFile, QString());
  EXPECT_EQ(arguments.error, QString());
}

TEST(ProgramArguments, OptionsTakeTheirValuesInBothForms) {
  const Arguments arguments = ParseArguments(
      {u"--port"_s, u"/dev/ttyUSB0"_s, u"--ini-path=/def=1"_s, u"werte.qpf"_s, u"--ini-file"_s, u"A.INI"_s});
  EXPECT_EQ(arguments.port, u"/dev/ttyUSB0"_s);
  EXPECT_EQ(arguments.iniPath, u"/def=1"_s);
  EXPECT_EQ(arguments.iniFile, u"A.INI"_s);
  EXPECT_EQ(arguments.valueFile, u"werte.qpf"_s);
  EXPECT_EQ(arguments.error, QString());
}

TEST(ProgramArguments, FlagsStandAlone) {
  const Arguments arguments = ParseArguments({u"--demo"_s, u"--help"_s, u"--program-version"_s});
  EXPECT_TRUE(arguments.demo && arguments.help && arguments.programVersion);
}

TEST(ProgramArguments, FaultsAreNamed) {
  EXPECT_EQ(ParseArguments({u"--prot"_s, u"1"_s}).error, u"Unbekannte Option: --prot"_s);
  EXPECT_EQ(ParseArguments({u"--demo=1"_s}).error, u"Unbekannte Option: --demo=1"_s);
  EXPECT_EQ(ParseArguments({u"--port"_s}).error, u"Option --port: Wert fehlt."_s);
  EXPECT_EQ(ParseArguments({u"a.qpf"_s, u"b.qpf"_s}).error,
            u"Nur eine Wertedatei kann geöffnet werden: b.qpf"_s);
}

TEST(ProgramArguments, TheHelpNamesEveryOption) {
  for (const QString& option :
       {u"--port"_s, u"--ini-path"_s, u"--ini-file"_s, u"--demo"_s, u"--help"_s, u"--program-version"_s}) {
    EXPECT_TRUE(HelpText().contains(option)) << option.toStdString();
  }
}

}  // namespace
}  // namespace kalivor::test
