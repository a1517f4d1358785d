// Serial ports over the network with a far end that a test plays.
#pragma once

#include "contract/RealTimeRig.h"
#include "platform/net/NetworkControl.h"
#include "unit/net/NetworkServer.h"

namespace kalivor::test {

template <bool ComPort>
class NetworkFarEnd {
 public:
  platform::SerialControl& Line() { return line_; }
  [[nodiscard]] QByteArray Receive(qsizetype count) { return server_.Receive(count); }
  void Send(const QByteArray& bytes) { server_.Send(bytes); }
  void Vanish() { server_.Vanish(); }
  void Refuse() { server_.Vanish(); }

 private:
  NetworkServer server_{{.comPort = ComPort}};
  platform::NetworkControl line_{[this](int) { return server_.Device(); }};
};

class RawRig : public RealTimeRig<NetworkFarEnd<false>> {
 public:
  static constexpr const char* kName = "Raw";
};

class ComPortRig : public RealTimeRig<NetworkFarEnd<true>> {
 public:
  static constexpr const char* kName = "ComPort";
};

}  // namespace kalivor::test
