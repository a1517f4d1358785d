// Address of a network line: any text; what is taken for one is written back the same, all else is refused in
// words.
#include "Targets.h"
#include "platform/NetworkAddress.h"

using namespace Qt::StringLiterals;

namespace kalivor::fuzz {
namespace {

using platform::NetworkAddress;

QString Written(const NetworkAddress& address) {
  const QString kind = address.kind == NetworkAddress::Kind::Raw ? u"socket://"_s : u"rfc2217://"_s;
  const QString host = address.host.contains(u':') ? u'[' + address.host + u']' : address.host;
  return kind + host + u':' + QString::number(address.port);
}

}  // namespace

void NetworkAddressText(QByteArrayView input) {
  const QString text = QString::fromUtf8(input);
  const platform::ParsedNetworkAddress parsed = platform::ParseNetworkAddress(text);
  Require(parsed.address.has_value() == parsed.fault.isEmpty(), "an address, or why there is none");
  if (!parsed.address) {
    Require(parsed.fault.contains(text), "the fault names the text");
    return;
  }
  Require(platform::IsNetworkAddress(text), "it was meant as one");
  Require(parsed.address->port != 0 && !parsed.address->host.isEmpty(), "a host and a port");
  for (const QChar c : parsed.address->host)
    Require(c > u' ' && c < QChar(127) && !u"/@?#[]\\\"'"_s.contains(c), "nothing but a host");
  Require(platform::ParseNetworkAddress(Written(*parsed.address)).address == parsed.address,
          "what is written reads back the same");
}

}  // namespace kalivor::fuzz
