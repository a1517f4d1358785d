// Connections that break at random moments: no wrong value, no hang, nothing left behind.
#include <gtest/gtest.h>
#include <QDir>
#include <atomic>
#include <chrono>
#include <numeric>
#include <random>

#include "comm/COM_A.h"
#include "platform/net/NetworkControl.h"
#include "sim/Telegram.h"
#include "unit/net/NetworkServer.h"

using namespace Qt::StringLiterals;

namespace kalivor::test {
namespace {

// Time that runs faster than the test's: what the program waits for takes a part of it only.
constexpr double kHurry = 25;

class HurriedClock final : public platform::Clock {
 public:
  [[nodiscard]] double SecondsSinceMidnight() const override {
    const std::chrono::duration<double> since = std::chrono::steady_clock::now() - begin_;
    return skipped_ + since.count() * kHurry;
  }
  // Pauses are for the line, and this one needs none.
  void Sleep(double seconds) override { skipped_ += std::max(0.0, seconds); }

 private:
  std::chrono::steady_clock::time_point begin_ = std::chrono::steady_clock::now();
  double skipped_ = 0;
};

class HurriedLine final : public platform::SerialControl {
 public:
  explicit HurriedLine(platform::SerialControl& line) : line_(line) {}
  [[nodiscard]] bool Open(int number, const QString& settings) override {
    return line_.Open(number, settings);
  }
  void Close() override { line_.Close(); }
  [[nodiscard]] bool IsOpen() const override { return line_.IsOpen(); }
  bool SetRts(bool raised) override { return line_.SetRts(raised); }
  bool ClearInBuffer() override { return line_.ClearInBuffer(); }
  bool ClearOutBuffer() override { return line_.ClearOutBuffer(); }
  void SetSThreshold(int characters) override { line_.SetSThreshold(characters); }
  void Output(const QByteArray& characters) override { line_.Output(characters); }
  [[nodiscard]] int InBufferCount() override { return line_.InBufferCount(); }
  [[nodiscard]] QByteArray Input() override { return line_.Input(); }
  [[nodiscard]] platform::InputWait WaitForInput(double seconds) override {
    return line_.WaitForInput(seconds / kHurry);
  }
  [[nodiscard]] int CommEvent() override { return line_.CommEvent(); }
  [[nodiscard]] QString Fault() const override { return line_.Fault(); }

 private:
  platform::SerialControl& line_;
};

// The word at each address, so that every value tells where it comes from.
unsigned WordAt(unsigned address) {
  return (address * 40503U + 1234U) & 0xFFFFU;
}

QByteArray ControllersAnswer(const QByteArray& request) {
  // "#", station, mode, letter, address, sum, end.
  if (request.size() != 13) return {};
  return sim::Sealed("10102R" + sim::Hex(WordAt(request.mid(6, 4).toUInt(nullptr, 16)), 4));
}

int OpenDescriptors() {
  // None where the system does not show them.
  return static_cast<int>(QDir(u"/proc/self/fd"_s).entryList(QDir::AllEntries | QDir::System).size());
}

class BrokenConnections : public testing::TestWithParam<bool> {};

TEST_P(BrokenConnections, GiveNoWrongValueAndLeaveNothingBehind) {
  constexpr int kBreaks = 500;
  const bool comPort = GetParam();
  const int descriptors = OpenDescriptors();
  int right = 0;
  int failed = 0;
  int wrong = 0;
  std::array<std::atomic<int>, 5> broken{};
  const auto begin = std::chrono::steady_clock::now();
  {
    std::mt19937 dice(comPort ? 2217 : 2218);
    ServerManner manner{.comPort = comPort};
    manner.controller = ControllersAnswer;
    // Drawn in the server's thread alone.
    manner.breaks = [&] {
      const auto draw = [&](int below) { return static_cast<int>(dice() % static_cast<unsigned>(below)); };
      const int kind = draw(100);
      Break next;
      next.kind = kind < 45   ? Break::Kind::HangUp
                  : kind < 90 ? Break::Kind::Reset
                  : kind < 96 ? Break::Kind::Stall
                              : Break::Kind::Swallow;
      next.after_bytes = draw(comPort ? 600 : 150);
      next.stall_ms = 5 + draw(40);
      ++broken.at(static_cast<std::size_t>(next.kind));
      return next;
    };
    NetworkServer server(manner);
    platform::NetworkControl network([&](int) { return server.Device(); },
                                     {.opening_s = 0.1, .unanswered_s = 0.001, .reply_s = 0.4 / kHurry});
    HurriedLine line(network);
    HurriedClock clock;
    TH timers(clock);
    Module1 module;
    module.Versionen.resize(2);
    module.Versionen[1].Kennung = u"WR"_s;
    module.VersionList.Add(u"AB1-123.4"_s);
    module.VersionList.Select(0);
    COM_T_frm host(module, line, timers);
    COM_A controller(module, module, host, [](const QString&) {});
    controller.Configure(kSlot, kSettings9600);

    std::mt19937 addresses(1);
    const auto drawn = [&] { return std::accumulate(broken.begin(), broken.end(), 0); };
    while (drawn() <= kBreaks && std::chrono::steady_clock::now() - begin < std::chrono::seconds(60)) {
      const unsigned address = addresses() & 0xFFFFU;
      qint32 value = -1;
      if (!controller.ReadLong(kSlot, value,
                               QString::number(address, 16).toUpper().rightJustified(4, u'0'))) {
        ++failed;
      } else if (value == static_cast<qint32>(WordAt(address))) {
        ++right;
      } else {
        ++wrong;
      }
    }
    EXPECT_GT(drawn(), kBreaks);
  }
  const std::chrono::duration<double> took = std::chrono::steady_clock::now() - begin;
  EXPECT_EQ(wrong, 0);
  EXPECT_GT(right, kBreaks / 2);
  EXPECT_LE(OpenDescriptors(), descriptors);
  for (const Break::Kind kind :
       {Break::Kind::HangUp, Break::Kind::Reset, Break::Kind::Stall, Break::Kind::Swallow})
    EXPECT_GT(broken.at(static_cast<std::size_t>(kind)), 0);
  RecordProperty("right", right);
  RecordProperty("failed", failed);
  std::printf("%d right, %d failed, %.1f s\n", right, failed, took.count());
}

INSTANTIATE_TEST_SUITE_P(Kinds, BrokenConnections, testing::Bool(),
                         [](const auto& kind) { return kind.param ? "ComPort" : "Raw"; });

}  // namespace
}  // namespace kalivor::test
