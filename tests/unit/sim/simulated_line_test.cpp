// The serial port with a controller behind it, in virtual time.
#include "sim/SimulatedLine.h"

#include <gtest/gtest.h>

#include "comm/COM_T.h"
#include "fakes/FakeClock.h"
#include "fakes/QtPrinters.h"
#include "sim/Telegram.h"

using namespace Qt::StringLiterals;

namespace kalivor::sim {
namespace {

using platform::InputWait;

const QByteArray kRequest = Sealed("#0102R1F00");
const QByteArray kReply = Sealed("10102R0ABC");
const QString k9600 = u"9600,o,7,1"_s;
const QString k19200 = u"19200,o,7,1"_s;

class SimulatedLineTest : public ::testing::Test {
 protected:
  Memory memory;
  Controller controller{memory, 1, FixedText<2>(u"WR"_s), "HZL-0078"};
  Faults faults;
  test::FakeClock clock;

  void SetUp() override { memory.SetWord(0x1F00, 0x0ABC); }

  /// Waits for all that comes within a second of silence.
  static QByteArray ReadAll(SimulatedLine& line) {
    QByteArray bytes;
    while (line.WaitForInput(1) == InputWait::Input)
      bytes += line.Input();
    return bytes;
  }
};

TEST_F(SimulatedLineTest, CarriesAnExchange) {
  LineModel model(controller, faults);
  SimulatedLine line(clock, model);
  ASSERT_TRUE(line.Open(1, k9600));
  EXPECT_TRUE(line.IsOpen());
  line.Output(kRequest);
  EXPECT_EQ(line.InBufferCount(), 13);
  EXPECT_EQ(line.Input(), kReply);
  EXPECT_EQ(line.InBufferCount(), 0);
  EXPECT_EQ(clock.slept, 0);
}

TEST_F(SimulatedLineTest, SleepsUntilTheNextByteOrTheTimeOut) {
  LineModel model(controller, faults, {0, true, false});
  SimulatedLine line(clock, model);
  ASSERT_TRUE(line.Open(1, k9600));
  line.Output(kRequest);
  EXPECT_EQ(line.WaitForInput(0.01), InputWait::TimedOut);
  EXPECT_NEAR(clock.slept, 0.01, 1e-6);
  EXPECT_EQ(line.WaitForInput(1), InputWait::Input);
  EXPECT_NEAR(clock.slept, 14 * 10 / 9600.0, 1e-6);
  EXPECT_EQ(line.Input(), kReply.left(1));
  EXPECT_EQ(ReadAll(line), kReply.mid(1));
}

// A caller that goes by the clock would else wait for its last fraction for ever.
TEST_F(SimulatedLineTest, EvenTheShortestWaitMovesTheClock) {
  LineModel model(controller, faults);
  SimulatedLine line(clock, model);
  ASSERT_TRUE(line.Open(1, k9600));
  const double before = clock.now;
  EXPECT_EQ(line.WaitForInput(1e-12), InputWait::TimedOut);
  EXPECT_GT(clock.now, before);
}

TEST_F(SimulatedLineTest, AnswersAtItsRateOnly) {
  LineModel model(controller, faults, {19200, false, false});
  SimulatedLine line(clock, model);
  ASSERT_TRUE(line.Open(1, k9600));
  line.Output(kRequest);
  EXPECT_EQ(ReadAll(line), "");
  line.Close();
  ASSERT_TRUE(line.Open(1, k19200));
  line.Output(kRequest);
  EXPECT_EQ(ReadAll(line), kReply);
}

TEST_F(SimulatedLineTest, RefusesToOpenWhatIsAbsentOrUnreadable) {
  LineModel model(controller, faults);
  SimulatedLine line(clock, model);
  line.openable = false;
  EXPECT_FALSE(line.Open(1, k9600));
  line.openable = true;
  EXPECT_FALSE(line.Open(1, u"fast,o,7,1"_s));
  EXPECT_TRUE(line.Open(1, k9600));
  EXPECT_EQ(line.openings, 3);
}

TEST_F(SimulatedLineTest, LosesWhatArrivesWhileThePortIsClosed) {
  LineModel model(controller, faults);
  faults.Plan(1, {FaultKind::Late, 500, {}});
  SimulatedLine line(clock, model);
  ASSERT_TRUE(line.Open(1, k9600));
  line.Output(kRequest);
  line.Close();
  clock.Advance(0.6);
  ASSERT_TRUE(line.Open(1, k9600));
  EXPECT_EQ(ReadAll(line), "");
}

TEST_F(SimulatedLineTest, DeliversALateReplyToTheNextOpening) {
  LineModel model(controller, faults);
  faults.Plan(1, {FaultKind::Late, 500, {}});
  SimulatedLine line(clock, model);
  ASSERT_TRUE(line.Open(1, k9600));
  line.Output(kRequest);
  line.Close();
  clock.Advance(0.4);
  ASSERT_TRUE(line.Open(1, k9600));
  EXPECT_EQ(ReadAll(line), kReply);
}

TEST_F(SimulatedLineTest, DiscardsInputOnDemand) {
  LineModel model(controller, faults);
  SimulatedLine line(clock, model);
  ASSERT_TRUE(line.Open(1, k9600));
  line.Output(kRequest);
  EXPECT_TRUE(line.ClearInBuffer());
  EXPECT_EQ(line.InBufferCount(), 0);
}

TEST_F(SimulatedLineTest, ReportsAnUnpluggedLineFromThenOn) {
  LineModel model(controller, faults, {0, true, false});
  faults.Plan(1, {FaultKind::Unplug, 0, {}});
  SimulatedLine line(clock, model);
  ASSERT_TRUE(line.Open(1, k9600));
  line.Output(kRequest);
  EXPECT_EQ(line.WaitForInput(1), InputWait::LineGone);
  EXPECT_NEAR(clock.slept, 13 * 10 / 9600.0, 1e-6);
  EXPECT_EQ(line.WaitForInput(1), InputWait::LineGone);
  EXPECT_FALSE(line.SetRts(false));
  EXPECT_FALSE(line.ClearInBuffer());
  EXPECT_FALSE(line.ClearOutBuffer());
  line.Close();
  EXPECT_FALSE(line.Open(1, k9600));
  line.PlugIn();
  EXPECT_TRUE(line.Open(1, k9600));
  line.Output(kRequest);
  EXPECT_EQ(ReadAll(line), kReply);
}

TEST_F(SimulatedLineTest, CanBeUnpluggedByTheTest) {
  LineModel model(controller, faults);
  SimulatedLine line(clock, model);
  ASSERT_TRUE(line.Open(1, k9600));
  line.Unplug();
  line.Output(kRequest);
  EXPECT_EQ(line.WaitForInput(1), InputWait::LineGone);
  EXPECT_EQ(line.sent, "");
}

TEST_F(SimulatedLineTest, ReportsInjectedLineErrorsBeforeTheSendEvent) {
  LineModel model(controller, faults);
  SimulatedLine line(clock, model);
  ASSERT_TRUE(line.Open(1, k9600));
  EXPECT_EQ(line.CommEvent(), platform::kCommEventNone);
  line.SetSThreshold(1);
  line.Output(kRequest);
  EXPECT_EQ(line.CommEvent(), platform::kCommEventSendDone);
  line.lineError = platform::kCommEventParity;
  EXPECT_EQ(line.CommEvent(), platform::kCommEventParity);
}

TEST_F(SimulatedLineTest, ReportsTheEndOfSendingWhenTheLastByteIsOut) {
  LineModel model(controller, faults, {0, true, false});
  SimulatedLine line(clock, model);
  int events = 0;
  line.OnComm = [&] { events += line.CommEvent() == platform::kCommEventSendDone ? 1 : 0; };
  ASSERT_TRUE(line.Open(1, k9600));
  line.SetSThreshold(1);
  line.Output(kRequest);
  EXPECT_EQ(line.WaitForInput(0.012), InputWait::TimedOut);
  EXPECT_EQ(events, 0);
  EXPECT_EQ(line.WaitForInput(1), InputWait::Input);
  EXPECT_EQ(events, 1);
}

TEST_F(SimulatedLineTest, KeepsItsTimePastMidnightAndWhenTheClockIsSetBack) {
  for (const double jumpFrom : {86399.99, 50000.0}) {
    LineModel model(controller, faults);
    faults.Plan(faults.Exchanges() + 1, {FaultKind::Late, 300, {}});
    SimulatedLine line(clock, model);
    clock.now = jumpFrom;
    ASSERT_TRUE(line.Open(1, k9600));
    line.Output(kRequest);
    if (jumpFrom == 50000.0) clock.now -= 3600;
    const double before = clock.slept;
    EXPECT_EQ(ReadAll(line), kReply);
    EXPECT_NEAR(clock.slept - before, 1.3, 1e-3);  // the reply, and the second of silence behind it
  }
}

TEST_F(SimulatedLineTest, SaysWhyItCannotBeOpenedOrIsGone) {
  LineModel model(controller, faults);
  SimulatedLine line(clock, model);
  line.openable = false;
  EXPECT_FALSE(line.Open(1, k9600));
  const QString closed = line.Fault();
  EXPECT_FALSE(closed.isEmpty());
  line.openable = true;
  ASSERT_TRUE(line.Open(1, k9600));
  EXPECT_EQ(line.Fault(), QString());
  line.Unplug();
  EXPECT_EQ(line.WaitForInput(1), InputWait::LineGone);
  EXPECT_FALSE(line.Fault().isEmpty());
  EXPECT_NE(line.Fault(), closed);
}

TEST_F(SimulatedLineTest, ServesTheTelegramLayer) {
  LineModel model(controller, faults, {0, true, true});
  SimulatedLine line(clock, model);
  Module1 module;
  TH timers(clock);
  COM_T_frm host(module, line, timers);
  COM_T transport(host);
  EXPECT_EQ(host.ConfigurePort(kSlot, kControllerProtocol, 1, 1, k9600), QString());
  EXPECT_EQ(transport.Transact(kSlot, u"R1F00"_s, true), u"0ABC"_s);
  EXPECT_EQ(transport.Transact(kSlot, u"W1F001234"_s, true), QString());
  EXPECT_EQ(memory.Word(0x1F00), 0x1234);
  faults.Plan(3, {FaultKind::Silent, 0, {}});
  EXPECT_EQ(transport.Transact(kSlot, u"R1F00"_s, true), u"ERROR: kein Empfang"_s);
  EXPECT_EQ(transport.Transact(kSlot, u"R1F00"_s, true), u"1234"_s);
}

}  // namespace
}  // namespace kalivor::sim
