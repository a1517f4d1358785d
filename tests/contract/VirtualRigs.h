// The serial ports of tests, in virtual time.
#pragma once

#include <QByteArray>
#include <vector>

#include "fakes/FakeClock.h"
#include "fakes/FakeSerialControl.h"
#include "sim/SimulatedLine.h"
#include "sim/Telegram.h"

namespace kalivor::test {

using Pieces = std::vector<QByteArray>;

/// What every far end is asked for.
inline const QByteArray kContractRequest = sim::Sealed("#0102R1F00");

// A transcript, played in virtual time.
class FakeRig {
 public:
  static constexpr const char* kName = "Fake";
  platform::SerialControl& Line() { return line_; }
  void Answer(const Pieces& pieces) {
    auto& exchange = line_.Expect(kContractRequest).Event(platform::kCommEventSendDone);
    for (const QByteArray& piece : pieces)
      exchange.Reply(piece, 20);
    line_.Output(kContractRequest);
  }
  void HangUp() {
    line_.Expect(kContractRequest).Vanish();
    line_.Output(kContractRequest);
  }
  void Refuse() { line_.absent = true; }

 private:
  FakeClock clock_;
  FakeSerialControl line_{clock_};
};

// The simulated controller, in virtual time.
class SimulatedRig {
 public:
  static constexpr const char* kName = "Simulated";
  platform::SerialControl& Line() { return line_; }
  void Answer(const Pieces& pieces) {
    model_.OnResponse = [&pieces](const QByteArray&, sim::Response& response) {
      response = {};
      for (const QByteArray& piece : pieces)
        response.chunks.push_back({20, piece});
    };
    line_.Output(kContractRequest);
  }
  void HangUp() { line_.Unplug(); }
  void Refuse() { line_.openable = false; }

 private:
  FakeClock clock_;
  sim::Memory memory_;
  sim::Controller controller_{memory_, 1, FixedText<2>(QStringLiteral("WR")), "AB1-04D2"};
  sim::Faults faults_;
  sim::LineModel model_{controller_, faults_};
  sim::SimulatedLine line_{clock_, model_};
};

}  // namespace kalivor::test
