// The serial port of this system with a far end that a test plays.
#pragma once

#include "contract/RealTimeRig.h"
#include "platform/posix/PosixSerialControl.h"
#include "unit/net/NetworkRigs.h"
#include "unit/posix/PseudoTerminal.h"

namespace kalivor::test {

class TerminalFarEnd {
 public:
  platform::SerialControl& Line() { return line_; }
  [[nodiscard]] QByteArray Receive(qsizetype count) const { return terminal_.Receive(count); }
  void Send(const QByteArray& bytes) const { terminal_.Send(bytes); }
  void Vanish() { terminal_.Vanish(); }
  void Refuse() { device_ = QStringLiteral("/dev/missing"); }

 private:
  PseudoTerminal terminal_;
  QString device_ = terminal_.Path();
  platform::PosixSerialControl line_{[this](int) { return device_; }};
};

class PosixRig : public RealTimeRig<TerminalFarEnd> {
 public:
  static constexpr const char* kName = "Posix";
};

using Rigs = testing::Types<FakeRig, SimulatedRig, PosixRig, RawRig, ComPortRig>;

}  // namespace kalivor::test
