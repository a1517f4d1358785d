// Options of the command line and their complaints.
#include "sim/Arguments.h"

#include <QSet>
#include <limits>

#include "base/CommandLine.h"

using namespace Qt::StringLiterals;

namespace kalivor::sim {
namespace {

// Each of the following takes one option's value and returns "" or what is wrong with it.

// A number in decimal; its type decides which.
template <typename Number, auto Member>
QString TakeNumber(Arguments& arguments, const QString& value) {
  using Limits = std::numeric_limits<Number>;
  bool valid = false;
  const qint64 number = value.toLongLong(&valid);
  if (!valid || number < Limits::min() || number > Limits::max()) {
    return u"keine Zahl von %1 bis %2: "_s.arg(Limits::min()).arg(Limits::max()) + value;
  }
  arguments.*Member = static_cast<Number>(number);
  return {};
}

QString TakeAddress(Arguments& arguments, const QString& value) {
  return TakeNumber<quint8, &Arguments::address>(arguments, value).isEmpty() ? QString() : NoAddress(value);
}

QString TakeRate(Arguments& arguments, const QString& value) {
  if (value != u"9600" && value != u"19200") return u"erwartet 9600 oder 19200 statt "_s + value;
  arguments.line.rate = value.toInt();
  return {};
}

QString TakeFault(Arguments& arguments, const QString& value) {
  const std::optional<FaultRule> rule = ParseFault(value);
  if (!rule) return u"keine Störung der Form ART[:RATE[:ANZAHL]]: "_s + value;
  arguments.faults.push_back(*rule);
  return {};
}

template <QString Arguments::*Member>
QString TakeText(Arguments& arguments, const QString& value) {
  if (value.isEmpty()) return u"darf nicht leer sein"_s;
  arguments.*Member = value;
  return {};
}

constexpr ValueOption<Arguments> kValueOptions[] = {
    {u"--ini-path", TakeText<&Arguments::iniPath>},
    {u"--ini-file", TakeText<&Arguments::iniFile>},
    {u"--controller", TakeText<&Arguments::controller>},
    {u"--link", TakeText<&Arguments::link>},
    {u"--values", TakeText<&Arguments::values>},
    {u"--dump", TakeText<&Arguments::dump>},
    {u"--address", TakeAddress},
    {u"--rate", TakeRate},
    {u"--tcp", TakeNumber<quint16, &Arguments::tcp>},
    {u"--plant", TakeNumber<qint16, &Arguments::plant>},
    {u"--seed", TakeNumber<quint32, &Arguments::seed>},
    {u"--fault", TakeFault},
};

constexpr Switch<Arguments> kSwitches[] = {
    {u"--paced", [](Arguments& arguments) { arguments.line.paced = true; }},
    {u"--echo", [](Arguments& arguments) { arguments.line.echo = true; }},
    {u"--trace", [](Arguments& arguments) { arguments.trace = true; }},
    {u"--help", [](Arguments& arguments) { arguments.help = true; }},
    {u"--program-version", [](Arguments& arguments) { arguments.programVersion = true; }},
};

}  // namespace

Arguments ParseArguments(const QStringList& list) {
  Arguments arguments;
  QSet<QString> seen;
  for (qsizetype at = 0; at < list.size() && arguments.error.isEmpty(); ++at) {
    const QString name = OptionWord(list.at(at)).name;
    if (!name.startsWith(u"--")) {
      arguments.error = u"Überzähliges Argument: "_s + list.at(at);
    } else if (name != u"--fault" && seen.contains(name)) {
      arguments.error = OptionFault(name, Repeated());
    } else {
      arguments.error = TakeOption(kSwitches, kValueOptions, list, at, arguments);
    }
    seen.insert(name);
  }
  const bool needsPath = !arguments.help && !arguments.programVersion;
  if (arguments.error.isEmpty() && needsPath && arguments.iniPath.isEmpty()) {
    arguments.error = u"Es fehlt die Option --ini-path."_s;
  }
  return arguments;
}

QString HelpText() {
  return uR"(Aufruf: kalivor-sim --ini-path ORDNER [OPTIONEN]

Ein simulierter Regler an einem Pseudo-Terminal. Die erste Ausgabezeile nennt das
Gerät, das wie eine serielle Schnittstelle geöffnet wird. Strg+C beendet das Programm.

  --ini-path ORDNER      Ordner der Versionstabelle und der Definitionsdateien
  --ini-file NAME        Dateiname der Versionstabelle (sonst VF.INI)
  --controller TEXT      Reglerversion, genau wie in der Versionstabelle (sonst die erste)
  --link PFAD            symbolische Verknüpfung, die auf das Gerät zeigt
  --tcp PORT             statt des Pseudo-Terminals eine Netzverbindung auf diesem
                         Rechner (0: ein freier Port); unter Windows immer
  --address N            Geräteadresse 0 bis 255 (sonst 1)
  --rate 9600|19200      die einzige Baudrate, die der Regler versteht (sonst jede)
  --paced                Zeichen brauchen so lange wie auf einer echten Leitung
  --echo                 jede Anfrage kommt vor der Antwort zurück (Zweidraht-Adapter)
  --plant N              Anlagennummer im Speicher (sonst 0)
  --values DATEI.qpf     Anfangswerte aus einer Wertedatei statt der Standardwerte
  --dump DATEI           schreibt beim Beenden den Speicher: Adresse, TAB, Wort
  --fault ART[:RATE[:ANZAHL]]
                         stört Antworten, mehrfach möglich; RATE 0 bis 1 je Anfrage
                         (sonst 1), höchstens ANZAHL mal. ART: silent, late:MS,
                         lost-byte, doubled-byte, flipped-bit, bad-checksum, split,
                         noise, error-NN, wrong-length, echo-only, unplug,
                         foreign-reply, ignore-write; oder swap:N
  --seed N               Startwert für die Störungen: gleicher Wert, gleicher Ablauf
  --trace                jedes Telegramm mit Zeit und Bedeutung auf der Fehlerausgabe
  --help                 diese Hilfe
  --program-version      Name und Version des Programms)"_s;
}

}  // namespace kalivor::sim
