#include "platform/NetworkAddress.h"

#include <algorithm>

using namespace Qt::StringLiterals;

namespace kalivor::platform {
namespace {

using Kind = NetworkAddress::Kind;

constexpr QStringView kRaw = u"socket://";
constexpr QStringView kComPort = u"rfc2217://";
constexpr qsizetype kLongestHost = 253;  // of a name in the network's directory

bool IsLetterOrDigit(QChar c) {
  return (c >= u'0' && c <= u'9') || (c >= u'a' && c <= u'z') || (c >= u'A' && c <= u'Z');
}

bool IsName(QStringView host) {
  return std::all_of(host.begin(), host.end(),
                     [](QChar c) { return IsLetterOrDigit(c) || QStringView(u"-._").contains(c); });
}

// Behind "%" the network adapter that leads there.
bool IsVersion6(QStringView host) {
  return host.contains(u':') && std::all_of(host.begin(), host.end(), [](QChar c) {
           return IsLetterOrDigit(c) || QStringView(u":.%-_").contains(c);
         });
}

// 0: no port.
quint16 PortOf(QStringView text) {
  constexpr int kLargest = 65535;
  const bool digits = std::all_of(text.begin(), text.end(), [](QChar c) { return c >= u'0' && c <= u'9'; });
  bool valid = false;
  const int number = text.toInt(&valid);
  return digits && valid && number <= kLargest ? static_cast<quint16>(number) : quint16{0};
}

ParsedNetworkAddress Refused(QStringView text, const QString& reason) {
  return {std::nullopt,
          u"Die Netzadresse „%1“ %2. Erwartet wird socket://RECHNER:PORT oder rfc2217://RECHNER:PORT."_s.arg(
              text.toString(), reason)};
}

}  // namespace

bool IsNetworkAddress(QStringView device) {
  return device.startsWith(kRaw, Qt::CaseInsensitive) || device.startsWith(kComPort, Qt::CaseInsensitive);
}

ParsedNetworkAddress ParseNetworkAddress(QStringView text) {
  NetworkAddress address;
  QStringView rest;
  if (text.startsWith(kRaw, Qt::CaseInsensitive)) {
    rest = text.sliced(kRaw.size());
  } else if (text.startsWith(kComPort, Qt::CaseInsensitive)) {
    address.kind = Kind::ComPort;
    rest = text.sliced(kComPort.size());
  } else {
    return Refused(text, u"beginnt weder mit socket:// noch mit rfc2217://"_s);
  }

  // An address of IPv6 has colons of its own.
  const bool brackets = rest.startsWith(u'[') && rest.contains(u']');
  const qsizetype hostEnd =
      brackets ? rest.indexOf(u']') + 1 : std::max<qsizetype>(0, rest.lastIndexOf(u':'));
  const QStringView place = hostEnd > 0 || rest.startsWith(u':') ? rest.first(hostEnd) : rest;
  const QStringView host = brackets ? place.sliced(1).chopped(1) : place;
  const QStringView behind = rest.sliced(place.size());
  if (host.isEmpty()) return Refused(text, u"nennt keinen Rechner"_s);
  if (!brackets && host.contains(u':') && IsVersion6(host))
    return Refused(text, u"nennt eine IPv6-Adresse ohne eckige Klammern"_s);
  if (host.size() > kLongestHost || !(brackets ? IsVersion6(host) : IsName(host)))
    return Refused(text, u"nennt einen Rechner, den es so nicht geben kann"_s);
  address.port = behind.startsWith(u':') ? PortOf(behind.sliced(1)) : quint16{0};
  if (address.port == 0) return Refused(text, u"nennt keinen Port von 1 bis 65535"_s);
  address.host = host.toString();
  return {address, {}};
}

}  // namespace kalivor::platform
