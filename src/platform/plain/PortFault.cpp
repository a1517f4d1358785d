#include "platform/plain/PortFault.h"

using namespace Qt::StringLiterals;

namespace kalivor::platform {

QString PortFault::Text() const {
  switch (kind) {
    case Kind::None:
      return {};
    case Kind::NoPort:
      return u"Zu dieser Nummer gibt es keine Schnittstelle. Den Adapter einstecken oder eine andere Nummer "
             "wählen."_s;
    case Kind::Absent:
      return u"%1 ist nicht da. Das Gerät anschließen oder eine andere Schnittstelle wählen."_s.arg(device);
    case Kind::NoPermission:
      return u"Für %1 fehlt die Berechtigung. Was zu tun ist, zeigt die Liste der Schnittstellen."_s.arg(
          device);
    case Kind::InUse:
      return u"%1 ist belegt: Ein anderes Programm benutzt die Schnittstelle. Es zuerst beenden."_s.arg(
          device);
    case Kind::NoSerialPort:
      return u"%1 ist keine serielle Schnittstelle. Eine andere wählen."_s.arg(device);
    case Kind::SettingsRefused:
      return u"%1 nimmt die Einstellungen %2 nicht an. Einen anderen Adapter versuchen."_s.arg(device,
                                                                                               settings);
    case Kind::Vanished:
      return u"%1 ist während der Übertragung verschwunden. Stecker und Adapter prüfen."_s.arg(device);
    default:
      return u"%1 lässt sich nicht öffnen (Fehler %2 des Systems). Den Adapter abziehen und wieder "
             "einstecken."_s.arg(device, QString::number(number));
  }
}

}  // namespace kalivor::platform
