#include "Site.h"

#include "base/Windows1252.h"
#include "commands/StartUp.h"
#include "core/Refresh.h"

using namespace Qt::StringLiterals;

namespace kalivor::bench {

QString VariableName(int number) {
  return u"_Gruppe%1Parameter%2"_s.arg(number % kGroups).arg(number);
}

QByteArray VersionTable(bool withAddressList) {
  const QByteArray addresses = withAddressList ? "LIST.ADR" : "-";
  return "Version  Adressen  Definitionen  Anlagen  Kennung\r\nAB1-123.4  " + addresses +
         "  DEF.TXT  A B -  WR\r\n";
}

QByteArray DefinitionFile(int parameters) {
  QString text = u"Heading\r\n"_s;
  for (int i = 0; i < parameters; ++i) {
    text += u"Gruppe %1  Solltemperatur %2  0  30000  %3  °C  1  0  int  %4  %5  A B  Hilfe\\zu %2\r\n"_s
                .arg(i * kGroups / parameters + 1)
                .arg(i)
                .arg(i % 30000)
                .arg(0x1000 + 2 * i, 4, 16)
                .arg(VariableName(i));
  }
  return BytesFromText(text);
}

QByteArray AddressList(int lines) {
  QString text = u"Heading\r\n"_s;
  for (int i = 0; i < lines; ++i) {
    const bool wanted = i % std::max(1, lines / kLastParameter) == 0;
    const int number = i / std::max(1, lines / kLastParameter);
    const QString name = wanted ? VariableName(number) : u"_andere%1"_s.arg(i);
    text += name + u"  %1\r\n"_s.arg(i & 0xFFFF, 4, 16, QChar(u'0'));
  }
  return BytesFromText(text);
}

Site::Site(platform::SerialControl& line, platform::Clock& clock)
    : timers(clock), wiring(module, timers, line, {main, report, choice, editors, box, files, events}) {
  module.Inipath = u"bench"_s;
  module.Dateiname = u"values.qpf"_s;
  files.files[kVersionTable] = VersionTable(false);
}

void Site::Start() {
  ConnectHandlers(core);
  Refresh(core, 5);
}

}  // namespace kalivor::bench
