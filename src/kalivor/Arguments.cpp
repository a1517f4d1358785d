#include "kalivor/Arguments.h"

#include "base/CommandLine.h"

using namespace Qt::StringLiterals;

namespace kalivor {
namespace {

constexpr Switch<Arguments> kSwitches[] = {
    {u"--demo", [](Arguments& arguments) { arguments.demo = true; }},
    {u"--help", [](Arguments& arguments) { arguments.help = true; }},
    {u"--program-version", [](Arguments& arguments) { arguments.programVersion = true; }},
};

// The last of several values counts.
template <std::optional<QString> Arguments::*Member>
QString TakeText(Arguments& arguments, const QString& value) {
  arguments.*Member = value;
  return {};
}

constexpr ValueOption<Arguments> kValueOptions[] = {
    {u"--ini-path", TakeText<&Arguments::iniPath>},
    {u"--ini-file", TakeText<&Arguments::iniFile>},
    {u"--port", TakeText<&Arguments::port>},
};

QString TakeValueFile(const QString& path, Arguments& arguments) {
  if (!arguments.valueFile.isEmpty()) return u"Nur eine Wertedatei kann geöffnet werden: "_s + path;
  arguments.valueFile = path;
  return {};
}

constexpr QStringView kHelp =
    u"Aufruf: kalivor [OPTIONEN] [WERTEDATEI.qpf]\n"
    "\n"
    "  --port N|GERÄT    serielle Schnittstelle 1 bis 8 oder ein Gerät: ein Pfad,\n"
    "                    socket://RECHNER:PORT oder rfc2217://RECHNER:PORT\n"
    "  --ini-path ORDNER Ordner der Versionstabelle und der Definitionsdateien\n"
    "  --ini-file NAME   Dateiname der Versionstabelle\n"
    "  --demo            mit einem simulierten Regler am mitgelieferten Beispiel\n"
    "  --help            diese Hilfe\n"
    "  --program-version Name und Version des Programms\n"
    "\n"
    "Die Optionen gelten für diesen Lauf und werden nicht gespeichert.\n";

}  // namespace

Arguments ParseArguments(const QStringList& list) {
  Arguments arguments;
  for (qsizetype at = 0; at < list.size() && arguments.error.isEmpty(); ++at) {
    arguments.error = list.at(at).startsWith(u"--")
                          ? TakeOption(kSwitches, kValueOptions, list, at, arguments,
                                       {.valuesMayLookLikeOptions = true, .unknownAsWritten = true})
                          : TakeValueFile(list.at(at), arguments);
  }
  return arguments;
}

QString HelpText() {
  return kHelp.toString();
}

}  // namespace kalivor
