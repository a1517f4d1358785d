// Command-line values: any words as the arguments of the three programs, and as values to set.
#include <array>

#include "PlainReading.h"
#include "Targets.h"
#include "base/Module1.h"
#include "cli/Arguments.h"
#include "commands/EditorCommands.h"
#include "commands/SettingsTable.h"
#include "kalivor/Arguments.h"
#include "sim/Arguments.h"

using namespace Qt::StringLiterals;

namespace kalivor::fuzz {
namespace {

// The options of kalivor-cli that take a value.
const QStringList& ValueOptions() {
  static const QStringList names{
      u"--ini-path"_s,    u"--ini-file"_s, u"--controller"_s, u"--plant"_s,  u"--port"_s,    u"--address"_s,
      u"--load"_s,        u"--save"_s,     u"--set"_s,        u"--check"_s,  u"--uncheck"_s, u"--answer"_s,
      u"--status-path"_s, u"--date"_s,     u"--pdf"_s,        u"--copies"_s, u"--page"_s,    u"--filter"_s,
      u"--only"_s,        u"--against"_s,  u"--format"_s,     u"--out"_s};
  return names;
}

// "--name value" written as "--name=value".
QStringList Joined(const QStringList& words) {
  QStringList joined;
  bool ended = false;
  for (qsizetype i = 0; i < words.size(); ++i) {
    ended = ended || words.at(i) == u"--";
    if (!ended && i + 1 < words.size() && ValueOptions().contains(words.at(i)) &&
        !words.at(i + 1).startsWith(u"--")) {
      joined.append(words.at(i) + u'=' + words.at(i + 1));
      ++i;
    } else {
      joined.append(words.at(i));
    }
  }
  return joined;
}

bool SameMarks(const std::vector<cli::MarkChange>& a, const std::vector<cli::MarkChange>& b) {
  return std::equal(a.begin(), a.end(), b.begin(), b.end(),
                    [](const cli::MarkChange& x, const cli::MarkChange& y) {
                      return x.what == y.what && x.checked == y.checked;
                    });
}

bool Same(const cli::Arguments& a, const cli::Arguments& b) {
  return a.command == b.command && a.words == b.words && a.help == b.help &&
         a.programVersion == b.programVersion && a.json == b.json && a.iniPath == b.iniPath &&
         a.iniFile == b.iniFile && a.address == b.address && a.controller == b.controller &&
         a.plant == b.plant && a.port == b.port && a.load == b.load && a.save == b.save &&
         a.landscape == b.landscape && a.statusPath == b.statusPath && a.date == b.date && a.pdf == b.pdf &&
         a.copies == b.copies && a.against == b.against && a.only == b.only && a.filter == b.filter &&
         a.format == b.format && a.out == b.out && a.page == b.page && a.set == b.set &&
         SameMarks(a.marks, b.marks) && a.answers == b.answers && a.error == b.error;
}

void CheckCli(const cli::Arguments& arguments) {
  if (!arguments.error.isEmpty()) return;
  static const QStringList commands{
      u"versions"_s, u"plants"_s, u"params"_s,   u"tree"_s,  u"identify"_s, u"receive"_s,           u"send"_s,
      u"compare"_s,  u"show"_s,   u"standard"_s, u"pages"_s, u"print"_s,    u"check-definitions"_s, u"list"_s,
      u"diff"_s};
  Require(arguments.help || arguments.programVersion || commands.contains(arguments.command),
          "a known command");
  Require(!arguments.address || kAdresse.Offers(*arguments.address), "an address from 0 to 255");
  Require(!arguments.copies || *arguments.copies >= 0, "a number of copies");
  Require(!arguments.page || *arguments.page >= 1, "a page from 1 on");
  Require(!arguments.date || arguments.date->isValid(), "a valid date");
  for (const qint16 answer : arguments.answers)
    Require(answer == 1 || answer == 2, "the first or the second answer");
  for (const QString& edit : arguments.set)
    Require(edit.indexOf(u'=') >= 1, "a variable and a value");
}

void CheckSim(const sim::Arguments& arguments) {
  if (!arguments.error.isEmpty()) return;
  Require(arguments.address >= 0 && arguments.address <= 255, "an address from 0 to 255");
  for (const sim::FaultRule& rule : arguments.faults) {
    Require(rule.rate >= 0 && rule.rate <= 1, "a rate from 0 to 1");
    Require(!rule.count || *rule.count >= 0, "a number of times");
    Require(rule.fault.delay_ms >= 0, "a delay");
  }
}

std::optional<qint32> Edited(const ParameterRecord& record, const QString& text) {
  try {
    return EditedValue(record, u"-1000"_s, text, u"1000"_s);
  } catch (const RuntimeError& error) {
    Require(error.GetKind() == RuntimeError::Kind::Overflow, "a value may overflow only");
    Require(!PlainNumberOf(text), "only a number that is too large for any field overflows");
    return {};
  }
}

// Values between -1000 and 1000 with two decimals, the last digit not shown.
void CheckValue(const QString& text) {
  static const ParameterRecord record = [] {
    ParameterRecord made;
    made.Zahl1 = 1;
    made.Zahl2 = 1;
    return made;
  }();
  const std::optional<qint32> value = Edited(record, text);
  const std::optional<double> number = PlainNumberOf(text);
  Require(value.has_value() == (number && *number >= -1000 && *number <= 1000), "a value within its limits");
  if (!value) return;
  const auto hundredths = static_cast<qint32>(std::rint(*number * 100));
  Require(*value == hundredths / 10 * 10, "the value that was typed");
}

}  // namespace

void CommandLine(QByteArrayView input) {
  const QStringList words = QString::fromUtf8(input).split(u'\n');
  const cli::Arguments arguments = cli::ParseArguments(words);
  CheckCli(arguments);
  Require(Same(arguments, cli::ParseArguments(Joined(words))),
          "a value may follow a blank or an equals sign");
  CheckSim(sim::ParseArguments(words));
  (void)kalivor::ParseArguments(words);
  for (const QString& edit : arguments.set)
    CheckValue(edit.mid(edit.indexOf(u'=') + 1));
}

}  // namespace kalivor::fuzz
