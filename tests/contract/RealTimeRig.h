// A serial port under test whose far end is played by a thread.
#pragma once

#include <gtest/gtest.h>
#include <QByteArray>
#include <chrono>
#include <thread>

#include "contract/VirtualRigs.h"
#include "platform/SerialControl.h"

namespace kalivor::test {

/// `FarEnd` has the port (Line), Receive(count), Send(bytes), Vanish() and Refuse(), after which the port
/// cannot be opened.
template <typename FarEnd>
class RealTimeRig {
 public:
  ~RealTimeRig() { WaitForFarEnd(); }
  platform::SerialControl& Line() { return farEnd_.Line(); }
  void Answer(const Pieces& pieces) {
    WaitForFarEnd();
    Line().Output(kContractRequest);
    thread_ = std::thread([this, pieces] {
      EXPECT_EQ(farEnd_.Receive(kContractRequest.size()), kContractRequest);
      for (const QByteArray& piece : pieces) {
        std::this_thread::sleep_for(std::chrono::milliseconds(20));
        farEnd_.Send(piece);
      }
    });
  }
  void HangUp() {
    WaitForFarEnd();
    farEnd_.Vanish();
  }
  void Refuse() { farEnd_.Refuse(); }

 private:
  void WaitForFarEnd() {
    if (thread_.joinable()) thread_.join();
  }

  FarEnd farEnd_;
  std::thread thread_;
};

}  // namespace kalivor::test
