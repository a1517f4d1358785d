// A serial channel on a scripted line, as every test of this folder needs it.
#pragma once

#include "base/Module1.h"
#include "comm/COM_T.h"
#include "fakes/FakeClock.h"
#include "fakes/FakeSerialControl.h"
#include "fakes/ThrownKind.h"

namespace kalivor::test {

/// Slot 1 is configured for a controller at station 1 on port 1.
struct Channel {
  FakeClock clock;
  FakeSerialControl line{clock};
  TH timers{clock};
  Module1 module;
  COM_T_frm host{module, line, timers};

  Channel() { SetUp(1); }

  void SetUp(int slot, qint16 protocol = kControllerProtocol) {
    host.Ports[slot] = {kFalse, 1, protocol, 1, kSettings9600.toString()};
  }
};

/// `characters` with the two digits of their sum and a carriage return behind them, worked out by hand so
/// that a fault of the program's own checksum shows.
inline QByteArray Line(const QByteArray& characters) {
  unsigned sum = 0;
  for (const char c : characters)
    sum += static_cast<unsigned char>(c);
  const char* digits = "0123456789ABCDEF";
  return characters + digits[sum / 16 % 16] + digits[sum % 16] + '\r';
}

/// A request to station 1.
inline QByteArray Request(const QByteArray& body) {
  return Line("#0102" + body);
}

/// A good reply. Its header begins with no "#", so it cannot be mistaken for an echo.
inline QByteArray Answer(const QByteArray& payload) {
  return Line("10102R" + payload);
}

/// Times of the fake clock are sums of doubles.
inline constexpr double kTimeTolerance_s = 1e-6;

}  // namespace kalivor::test
