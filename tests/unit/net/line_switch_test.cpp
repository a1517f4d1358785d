// Which port a number's device leads to.
#include <gtest/gtest.h>
#include <chrono>
#include <thread>

#include "fakes/FakeClock.h"
#include "fakes/FakeSerialControl.h"
#include "platform/net/LineSwitch.h"
#include "unit/net/NetworkServer.h"

using namespace Qt::StringLiterals;

namespace kalivor::test {
namespace {

using platform::InputWait;

const QString kSettings = u"9600,o,7,1"_s;
constexpr double kLong_s = 20;  // only a failing test waits for so long

class Switched : public testing::Test {
 protected:
  FakeClock clock_;
  FakeSerialControl native_{clock_};
  NetworkServer server_;
  QString device_ = u"/dev/ttyUSB0"_s;
  platform::LineSwitch line_{native_, [this](int) { return device_; }};
};

TEST_F(Switched, ADeviceOfThisComputerIsOpenedAsBefore) {
  ASSERT_TRUE(line_.Open(1, kSettings));
  EXPECT_TRUE(native_.IsOpen());
  native_.Expect("abc").Reply("def", 5);
  line_.Output("abc");
  EXPECT_EQ(line_.WaitForInput(1), InputWait::Input);
  EXPECT_EQ(line_.Input(), "def");
  line_.Close();
  EXPECT_FALSE(native_.IsOpen());
  EXPECT_EQ(server_.Connections(), 0);
}

TEST_F(Switched, ANetworkAddressIsConnected) {
  device_ = server_.Device();
  ASSERT_TRUE(line_.Open(1, kSettings));
  EXPECT_FALSE(native_.IsOpen());
  line_.Output("abc");
  EXPECT_EQ(server_.Receive(3), "abc");
  server_.Send("def");
  EXPECT_EQ(line_.WaitForInput(kLong_s), InputWait::Input);
  EXPECT_EQ(line_.Input(), "def");
}

TEST_F(Switched, TheOtherPortEndsTheConnection) {
  device_ = server_.Device();
  ASSERT_TRUE(line_.Open(1, kSettings));
  device_ = u"/dev/ttyUSB0"_s;
  ASSERT_TRUE(line_.Open(1, kSettings));
  EXPECT_TRUE(native_.IsOpen());
  // The end of the connection is the next that the server hears.
  for (int i = 0; i < 1000 && (server_.Connections() == 0 || server_.Connected()); ++i)
    std::this_thread::sleep_for(std::chrono::milliseconds(1));
  EXPECT_FALSE(server_.Connected());
  device_ = server_.Device();
  ASSERT_TRUE(line_.Open(1, kSettings));
  EXPECT_FALSE(native_.IsOpen()) << "there is one line";
}

TEST_F(Switched, EventsOfEitherPortAreTold) {
  std::vector<int> events;
  line_.OnComm = [&] { events.push_back(line_.CommEvent()); };
  line_.SetSThreshold(1);
  device_ = server_.Device();
  ASSERT_TRUE(line_.Open(1, kSettings));
  line_.Output("abc");
  EXPECT_EQ(events, std::vector<int>{platform::kCommEventSendDone});
  device_ = u"/dev/ttyUSB0"_s;
  ASSERT_TRUE(line_.Open(1, kSettings));
  native_.Raise(platform::kCommEventBreak);
  EXPECT_EQ(events, (std::vector<int>{platform::kCommEventSendDone, platform::kCommEventBreak}));
}

TEST_F(Switched, AFaultIsThatOfThePort) {
  device_ = u"socket://regler"_s;
  EXPECT_FALSE(line_.Open(1, kSettings));
  EXPECT_TRUE(line_.Fault().startsWith(u"Die Netzadresse „socket://regler“ "_s));
  device_ = u"/dev/ttyUSB0"_s;
  ASSERT_TRUE(line_.Open(1, kSettings));
  EXPECT_EQ(line_.Fault(), u""_s);
}

}  // namespace
}  // namespace kalivor::test
