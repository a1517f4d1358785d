#include "commands/PortCommands.h"

#include <algorithm>

#include "platform/NetworkAddress.h"
#include "platform/PortBinding.h"

using namespace Qt::StringLiterals;

namespace kalivor {
namespace {

QString FaultOfDevice(const QString& binding) {
  if (binding != binding.trimmed()) return u"Vor oder hinter dem Gerät steht ein Leerzeichen."_s;
  if (binding.contains(u"://"_s))
    return u"Unbekannte Art von Verbindung. Es gibt socket:// und rfc2217://."_s;
  return {};
}

}  // namespace

QString StateText(platform::PortState state) {
  switch (state) {
    case platform::PortState::InUse:
      return u"belegt"_s;
    case platform::PortState::NoPermission:
      return u"keine Rechte"_s;
    case platform::PortState::Missing:
      return u"fehlt"_s;
    default:
      return u"frei"_s;
  }
}

QString NoPortsText() {
  return u"Es ist keine serielle Schnittstelle da. Den Adapter einstecken und, wenn er dann noch fehlt, "
         u"seinen Treiber installieren."_s;
}

QString FaultOf(const QString& binding) {
  if (std::ranges::any_of(binding, [](QChar character) { return character < u' '; }))
    return u"Die Angabe enthält Steuerzeichen."_s;
  switch (platform::KindOf(binding)) {
    case platform::BindingKind::Network:
      return platform::ParseNetworkAddress(binding).fault;
    case platform::BindingKind::Usb:
      if (platform::UsbPortOf(binding)) return {};
      return u"Ein Adapter lautet usb:HERSTELLER:PRODUKT:SERIENNUMMER:ANSCHLUSS, zum Beispiel "
             u"usb:0403:6001:A12345:0."_s;
    case platform::BindingKind::Place:
      if (!platform::PlaceOf(binding).trimmed().isEmpty()) return {};
      return u"Hinter ort: fehlt der Steckplatz."_s;
    case platform::BindingKind::Device:
      return FaultOfDevice(binding);
    default:
      return {};
  }
}

QString BindPort(platform::PortDirectory& ports, platform::SettingsStore& settings, int number,
                 const QString& binding) {
  ports.Bind(number, binding);
  settings.Save(platform::kPortsSection.toString(), platform::PortKey(number), binding);
  return settings.Flush();
}

}  // namespace kalivor
