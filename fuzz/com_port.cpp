// Telnet with COM port control: any bytes from a server, however they are cut into pieces.
#include <algorithm>

#include "Targets.h"
#include "platform/net/ComPort.h"

namespace kalivor::fuzz {
namespace {

using platform::ComPort;

// What the program has of a server's words.
struct Heard {
  QByteArray characters;
  QByteArray outgoing;
  ComPort::Control control = ComPort::Control::Offered;
  bool broken = false;
  bool settled = false;
  QString refusal;
  int error = 0;

  bool operator==(const Heard&) const = default;
};

// The server's words in pieces of this size; the line is set and purged as soon as the server agrees.
Heard Listen(QByteArrayView input, qsizetype piece) {
  ComPort port;
  Heard heard;
  for (qsizetype at = 0; at < input.size() && !port.Broken(); at += piece)
    port.Receive(input.sliced(at, std::min(piece, input.size() - at)), heard.characters);
  if (port.State() == ComPort::Control::Agreed) {
    port.SetLine({.baud = 9600, .parity = 'o', .dataBits = 7, .stopBits = 1});
    port.Purge();
    // Said again, it is an answer.
    for (qsizetype at = 0; at < input.size() && !port.Broken(); at += piece)
      port.Receive(input.sliced(at, std::min(piece, input.size() - at)), heard.characters);
  }
  heard.outgoing = port.TakeOutgoing();
  heard.control = port.State();
  heard.broken = port.Broken();
  heard.settled = port.Settled();
  heard.refusal = port.Refusal();
  heard.error = port.TakeLineError();
  return heard;
}

}  // namespace

void ComPortServer(QByteArrayView input) {
  const Heard whole = Listen(input, std::max<qsizetype>(1, input.size()));
  for (const qsizetype piece : {1, 3}) {
    const Heard cut = Listen(input, piece);
    Require(cut.broken == whole.broken, "pieces break nothing");
    Require(whole.broken || cut == whole, "pieces do not matter");
  }
  Require(whole.broken || whole.characters.size() <= 2 * input.size(), "no characters but those that came");
  Require(whole.refusal.isEmpty() || whole.control != ComPort::Control::Offered, "nobody refuses unasked");
}

}  // namespace kalivor::fuzz
