// What every serial port does, however it is made: the double, the simulated line, the real one, and those
// behind a network.
#include <gtest/gtest.h>
#include <QtGlobal>

#ifdef Q_OS_WIN
#include "unit/win32/NativeRigs.h"
#else
#include "unit/posix/NativeRigs.h"
#endif

using namespace Qt::StringLiterals;

namespace kalivor::test {
namespace {

using platform::InputWait;
using platform::SerialControl;

const QString kSettings = u"9600,o,7,1"_s;
constexpr double kLong_s = 20;  // only a failing test waits for so long

template <typename Rig>
class SerialControlContract : public testing::Test {
 protected:
  void Open() { ASSERT_TRUE(line_.Open(1, kSettings)); }

  // Everything that arrives until `count` characters are there.
  QByteArray Take(qsizetype count) {
    QByteArray taken;
    while (taken.size() < count && line_.WaitForInput(kLong_s) == InputWait::Input)
      taken += line_.Input();
    return taken;
  }

  void WatchEvents() {
    line_.OnComm = [this] { events_.push_back(line_.CommEvent()); };
  }

  Rig rig_;
  SerialControl& line_ = rig_.Line();
  std::vector<int> events_;
};

struct RigNames {
  template <typename Rig>
  static std::string GetName(int) {
    return Rig::kName;
  }
};

TYPED_TEST_SUITE(SerialControlContract, Rigs, RigNames);

TYPED_TEST(SerialControlContract, AClosedPortDoesNothing) {
  SerialControl& line = this->line_;
  EXPECT_FALSE(line.IsOpen());
  EXPECT_FALSE(line.SetRts(true));
  EXPECT_FALSE(line.ClearInBuffer());
  EXPECT_FALSE(line.ClearOutBuffer());
  EXPECT_EQ(line.InBufferCount(), 0);
  EXPECT_EQ(line.Input(), "");
  EXPECT_EQ(line.WaitForInput(kLong_s), InputWait::LineGone);
  EXPECT_EQ(line.CommEvent(), platform::kCommEventNone);
  line.Close();
  EXPECT_FALSE(line.IsOpen());
}

TYPED_TEST(SerialControlContract, OpensAndCloses) {
  this->Open();
  EXPECT_TRUE(this->line_.IsOpen());
  EXPECT_EQ(this->line_.Fault(), QString());
  EXPECT_TRUE(this->line_.SetRts(true));
  EXPECT_TRUE(this->line_.ClearInBuffer());
  EXPECT_TRUE(this->line_.ClearOutBuffer());
  this->line_.Close();
  EXPECT_FALSE(this->line_.IsOpen());
}

TYPED_TEST(SerialControlContract, AnOpenPortIsOpenedAnew) {
  this->Open();
  this->rig_.Answer({"abc"});
  ASSERT_EQ(this->line_.WaitForInput(kLong_s), InputWait::Input);
  EXPECT_TRUE(this->line_.Open(1, u"19200,o,7,1"_s));
  EXPECT_TRUE(this->line_.IsOpen());
  EXPECT_EQ(this->line_.InBufferCount(), 0) << "what came before is gone";
  this->rig_.Answer({"def"});
  EXPECT_EQ(this->Take(3), "def");
}

TYPED_TEST(SerialControlContract, AFailedOpeningLeavesThePortClosed) {
  this->Open();
  this->rig_.Refuse();
  EXPECT_FALSE(this->line_.Open(1, kSettings));
  EXPECT_FALSE(this->line_.IsOpen());
  EXPECT_NE(this->line_.Fault(), QString()) << "why is told";
}

TYPED_TEST(SerialControlContract, InputComesAsItArrives) {
  this->Open();
  this->rig_.Answer({"10102R", "04D220\r"});
  ASSERT_EQ(this->line_.WaitForInput(kLong_s), InputWait::Input);
  EXPECT_GT(this->line_.InBufferCount(), 0) << "looking takes nothing";
  // How much of it one look finds depends on how quickly one looks.
  const QByteArray whole = "10102R04D220\r";
  QByteArray taken = this->line_.Input();
  taken += this->Take(6 - taken.size());
  EXPECT_TRUE(whole.startsWith(taken)) << taken.constData();
  taken += this->Take(whole.size() - taken.size());
  EXPECT_EQ(taken, whole);
  EXPECT_EQ(this->line_.InBufferCount(), 0);
  EXPECT_EQ(this->line_.Input(), "");
}

TYPED_TEST(SerialControlContract, AWaitIsOverInTime) {
  this->Open();
  for (const double seconds : {0.03, 0.0, -1.0})
    EXPECT_EQ(this->line_.WaitForInput(seconds), InputWait::TimedOut) << seconds;
  this->rig_.Answer({"x"});
  EXPECT_EQ(this->line_.WaitForInput(0.001), InputWait::TimedOut);
  EXPECT_EQ(this->Take(1), "x");
}

TYPED_TEST(SerialControlContract, InputIsDiscardedOnDemand) {
  this->Open();
  this->rig_.Answer({"abc", "d"});
  ASSERT_EQ(this->line_.WaitForInput(kLong_s), InputWait::Input);
  while (this->line_.InBufferCount() < 3) {
  }
  EXPECT_TRUE(this->line_.ClearInBuffer());
  EXPECT_EQ(this->line_.InBufferCount(), 0);
  EXPECT_EQ(this->Take(1), "d");
}

TYPED_TEST(SerialControlContract, InputThatWasNotTakenEndsWithTheConnection) {
  this->Open();
  this->rig_.Answer({"abc"});
  ASSERT_EQ(this->line_.WaitForInput(kLong_s), InputWait::Input);
  this->line_.Close();
  EXPECT_EQ(this->line_.InBufferCount(), 0);
  this->Open();
  ASSERT_TRUE(this->line_.ClearInBuffer());
  EXPECT_EQ(this->line_.InBufferCount(), 0);
}

TYPED_TEST(SerialControlContract, AVanishedDeviceEndsTheWaitAtOnce) {
  this->Open();
  this->rig_.HangUp();
  EXPECT_EQ(this->line_.WaitForInput(kLong_s), InputWait::LineGone);
  EXPECT_EQ(this->line_.WaitForInput(kLong_s), InputWait::LineGone);
  EXPECT_TRUE(this->line_.IsOpen());
  EXPECT_EQ(this->line_.CommEvent(), platform::kCommEventDeviceControlBlock);
  const QString fault = this->line_.Fault();
  EXPECT_NE(fault, QString()) << "that it is gone is told";
  EXPECT_FALSE(this->line_.SetRts(true));
  EXPECT_FALSE(this->line_.ClearInBuffer());
  EXPECT_FALSE(this->line_.ClearOutBuffer());
  this->line_.Output(kContractRequest);
  EXPECT_EQ(this->line_.InBufferCount(), 0);
  this->line_.Close();
  EXPECT_FALSE(this->line_.IsOpen());
  EXPECT_EQ(this->line_.Fault(), fault) << "and not forgotten with the connection";
  EXPECT_FALSE(this->line_.Open(1, kSettings));
}

TYPED_TEST(SerialControlContract, WhatCameBeforeTheDeviceVanishedIsDelivered) {
  this->Open();
  this->rig_.Answer({"abc"});
  ASSERT_EQ(this->line_.WaitForInput(kLong_s), InputWait::Input);
  while (this->line_.InBufferCount() < 3) {
  }
  this->rig_.HangUp();
  EXPECT_EQ(this->line_.WaitForInput(kLong_s), InputWait::Input);
  EXPECT_EQ(this->line_.Input(), "abc");
  EXPECT_EQ(this->line_.WaitForInput(kLong_s), InputWait::LineGone);
}

TYPED_TEST(SerialControlContract, TheEndOfSendingIsReportedOnlyWhenAskedFor) {
  this->Open();
  this->WatchEvents();
  this->rig_.Answer({"x"});
  EXPECT_EQ(this->Take(1), "x");
  EXPECT_TRUE(this->events_.empty());
  EXPECT_EQ(this->line_.CommEvent(), platform::kCommEventNone);
}

// Asked for once, it holds for every connection.
TYPED_TEST(SerialControlContract, TheEndOfSendingIsReportedOnceForEachOutput) {
  this->WatchEvents();
  this->line_.SetSThreshold(1);
  for (std::size_t connection = 1; connection <= 2; ++connection) {
    this->Open();
    this->rig_.Answer({"x"});
    EXPECT_EQ(this->Take(1), "x");
    EXPECT_EQ(this->events_, std::vector<int>(connection, platform::kCommEventSendDone));
    EXPECT_EQ(this->line_.CommEvent(), platform::kCommEventSendDone);
    this->line_.Close();
  }
  this->line_.SetSThreshold(0);
  this->Open();
  this->rig_.Answer({"x"});
  EXPECT_EQ(this->Take(1), "x");
  EXPECT_EQ(this->events_.size(), 2U);
}

TYPED_TEST(SerialControlContract, WhatExceedsTheOutputBufferIsRefusedWhole) {
  this->Open();
  this->WatchEvents();
  this->line_.Output(QByteArray(SerialControl::kOutputLimit_bytes + 1, 'x'));
  EXPECT_EQ(this->events_, std::vector<int>{platform::kCommEventTransmitFull});
  this->rig_.Answer({"y"});
  EXPECT_EQ(this->Take(1), "y") << "the far end has received the request alone";
}

TYPED_TEST(SerialControlContract, ALineErrorIsKeptUntilTheNextOpening) {
  this->Open();
  this->line_.SetSThreshold(1);
  this->line_.Output(QByteArray(SerialControl::kOutputLimit_bytes + 1, 'x'));
  this->rig_.Answer({"y"});
  EXPECT_EQ(this->Take(1), "y");
  EXPECT_EQ(this->line_.CommEvent(), platform::kCommEventTransmitFull) << "all sent does not replace it";
  this->line_.Close();
  EXPECT_EQ(this->line_.CommEvent(), platform::kCommEventTransmitFull);
  this->Open();
  EXPECT_EQ(this->line_.CommEvent(), platform::kCommEventNone);
}

}  // namespace
}  // namespace kalivor::test
