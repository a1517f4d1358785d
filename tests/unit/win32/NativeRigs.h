// The serial port of this system with a far end that a test plays.
#pragma once

#include "contract/RealTimeRig.h"
#include "platform/win32/Win32SerialControl.h"
#include "unit/net/NetworkRigs.h"
#include "unit/win32/FakePort.h"
#include "unit/win32/JoinedPorts.h"

namespace kalivor::test {

class PlayedFarEnd {
 public:
  platform::SerialControl& Line() { return line_; }
  [[nodiscard]] QByteArray Receive(qsizetype count) { return port_.Receive(count); }
  void Send(const QByteArray& bytes) { port_.Send(bytes); }
  void Vanish() { port_.Vanish(); }
  void Refuse() { port_.present = false; }

 private:
  FakePort port_;
  platform::Win32SerialControl line_{[](int) { return QStringLiteral("COM9"); }, port_};
};

class Win32Rig : public RealTimeRig<PlayedFarEnd> {
 public:
  static constexpr const char* kName = "Win32";
};

class JoinedFarEnd {
 public:
  platform::SerialControl& Line() { return line_; }
  [[nodiscard]] QByteArray Receive(qsizetype count) const { return ports_.Receive(count); }
  void Send(const QByteArray& bytes) const { ports_.Send(bytes); }
  void Vanish() { ports_.PullOut(); }
  void Refuse() { device_ = QStringLiteral("COM77"); }

 private:
  JoinedPorts ports_;
  QString device_ = JoinedPorts::PcName();
  platform::Win32SerialControl line_{[this](int) { return device_; }};
};

class JoinedPortsRig : public RealTimeRig<JoinedFarEnd> {
 public:
  static constexpr const char* kName = "JoinedPorts";
};

using Rigs = testing::Types<FakeRig, SimulatedRig, Win32Rig, JoinedPortsRig, RawRig, ComPortRig>;

}  // namespace kalivor::test
