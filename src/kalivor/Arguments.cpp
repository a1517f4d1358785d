#include "kalivor/Arguments.h"

#include <QHash>

using namespace Qt::StringLiterals;

namespace kalivor {
namespace {

constexpr QStringView kHelp =
    u"Aufruf: kalivor [OPTIONEN] [WERTEDATEI.qpf]\n"
    "\n"
    "  --port N|GERÄT    serielle Schnittstelle 1 bis 8 oder ein Gerät (Pfad)\n"
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
  const QHash<QString, std::optional<QString>*> withValue{{u"--ini-path"_s, &arguments.iniPath},
                                                          {u"--ini-file"_s, &arguments.iniFile},
                                                          {u"--port"_s, &arguments.port}};
  const QHash<QString, bool*> flags{{u"--demo"_s, &arguments.demo},
                                    {u"--help"_s, &arguments.help},
                                    {u"--program-version"_s, &arguments.programVersion}};
  for (qsizetype i = 0; i < list.size() && arguments.error.isEmpty(); ++i) {
    const QString& argument = list.at(i);
    const QString name = argument.section(u'=', 0, 0);
    if (!argument.startsWith(u"--")) {
      if (arguments.valueFile.isEmpty()) {
        arguments.valueFile = argument;
      } else {
        arguments.error = u"Nur eine Wertedatei kann geöffnet werden: "_s + argument;
      }
    } else if (withValue.contains(name)) {
      if (argument.contains(u'=')) {
        *withValue[name] = argument.section(u'=', 1);
      } else if (i + 1 < list.size()) {
        *withValue[name] = list.at(++i);
      } else {
        arguments.error = u"Option "_s + name + u": Wert fehlt."_s;
      }
    } else if (flags.contains(argument)) {
      *flags[argument] = true;
    } else {
      arguments.error = u"Unbekannte Option: "_s + argument;
    }
  }
  return arguments;
}

QString HelpText() {
  return kHelp.toString();
}

}  // namespace kalivor
