// A serial channel on a scripted line, as every test of this folder needs it.
#pragma once

#include "base/Module1.h"
#include "comm/COM_T.h"
#include "fakes/FakeClock.h"
#include "fakes/FakeSerialControl.h"
#include "fakes/ThrownKind.h"
#include "rules/ExchangeRules.h"

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

/// A request to station 1.
inline QByteArray Request(const QByteArray& body) {
  return Summed("#0102" + body);
}

/// A good reply. Its header begins with no "#", so it cannot be mistaken for an echo.
inline QByteArray Answer(const QByteArray& payload) {
  return Summed("10102R" + payload);
}

/// Times of the fake clock are sums of doubles.
inline constexpr double kTimeTolerance_s = 1e-6;

}  // namespace kalivor::test
