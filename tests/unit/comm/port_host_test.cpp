// The serial channel: configuring, opening and closing the port.
#include <gtest/gtest.h>

#include "comm/COM_T_frm.h"
#include "unit/comm/Channel.h"

using namespace Qt::StringLiterals;
using kalivor::test::Channel;
using kalivor::test::ThrownKind;

namespace kalivor {
namespace {

TEST(IsError, NeedsAllSevenCharacters) {
  EXPECT_TRUE(IsError(u"ERROR: "));
  EXPECT_TRUE(IsError(u"ERROR: kein Empfang"));
  for (const QString& text :
       {u""_s, u"ERROR:"_s, u"ERROR:x"_s, u"Error: x"_s, u" ERROR: "_s, u"x ERROR: "_s}) {
    EXPECT_FALSE(IsError(text)) << text.toStdString();
  }
}

TEST(PortHost, HasFourEmptySlotsAtFirst) {
  test::FakeClock clock;
  test::FakeSerialControl line(clock);
  TH timers(clock);
  const Module1 module;
  const COM_T_frm host(module, line, timers);
  for (int slot = 0; slot <= 3; ++slot) {
    EXPECT_EQ(host.Ports[slot].Offen, 0);
    EXPECT_EQ(host.Ports[slot].PortNr, 0);
    EXPECT_EQ(host.Ports[slot].Protokoll, 0);
    EXPECT_EQ(host.Ports[slot].Adr, 0);
    EXPECT_EQ(host.Ports[slot].Settings, u""_s);
  }
  EXPECT_EQ(host.KeepOpen, 0);
  EXPECT_EQ(host.SendDone, 0);
  EXPECT_TRUE(line.log.isEmpty()) << "the port is not touched before it is needed";
}

TEST(PortHost, RefusesEveryOtherSlot) {
  Channel channel;
  for (const qint16 slot : {qint16{-1}, qint16{4}}) {
    EXPECT_EQ(ThrownKind([&] { (void)channel.host.Ports[slot]; }), RuntimeError::Kind::Bounds);
    EXPECT_EQ(ThrownKind([&] { (void)channel.host.OpenPort(slot); }), RuntimeError::Kind::Bounds);
    EXPECT_EQ(ThrownKind([&] { channel.host.ConfigurePort(slot, 16, 1, 1, u"9600,o,7,1"_s); }),
              RuntimeError::Kind::Bounds);
  }
  EXPECT_TRUE(channel.line.log.isEmpty());
}

TEST(ConfigurePort, StoresTheChannelAndTriesThePortOnce) {
  Channel channel;
  EXPECT_EQ(channel.host.ConfigurePort(2, 16, 17, 3, u"19200,o,7,1"_s), u""_s);
  EXPECT_EQ(channel.host.Ports[2], (PortRecord{kFalse, 3, 16, 17, u"19200,o,7,1"_s}));
  EXPECT_EQ(channel.line.log, (QStringList{u"open 3 19200,o,7,1"_s, u"clear out"_s, u"clear in"_s,  // try it
                                           u"rts down"_s, u"clear out"_s, u"clear in"_s, u"close"_s}));
  EXPECT_FALSE(channel.line.IsOpen());
}

TEST(ConfigurePort, NamesAPortThatIsNotAvailable) {
  Channel channel;
  channel.line.absent = true;
  EXPECT_EQ(
      channel.host.ConfigurePort(1, 16, 1, 3, u"9600,o,7,1"_s),
      u"ERROR: COM 3 nicht verfügbar. Ändern Sie die 'CommPort'-Einstellung in einen anderen Anschluß."_s);
  EXPECT_EQ(
      channel.host.ConfigurePort(1, 16, 1, 0, u"9600,o,7,1"_s),
      u"ERROR: COM 0 nicht verfügbar. Ändern Sie die 'CommPort'-Einstellung in einen anderen Anschluß."_s);
  EXPECT_EQ(
      channel.host.ConfigurePort(1, 16, 1, -1, u"9600,o,7,1"_s),
      u"ERROR: COM-1 nicht verfügbar. Ändern Sie die 'CommPort'-Einstellung in einen anderen Anschluß."_s);
}

TEST(ConfigurePort, StoresEverythingAlsoWhenThePortIsNotAvailable) {
  Channel channel;
  channel.line.absent = true;
  EXPECT_TRUE(IsError(channel.host.ConfigurePort(1, 17, 5, 3, u"19200,o,7,1"_s)));
  EXPECT_EQ(channel.host.Ports[1], (PortRecord{kFalse, 3, 17, 5, u"19200,o,7,1"_s}));
}

TEST(ConfigurePort, DoesNothingWhileAnAbortIsRequested) {
  Channel channel;
  channel.module.Abbruch = kTrue;
  channel.line.absent = true;
  const PortRecord before = channel.host.Ports[1];
  EXPECT_EQ(channel.host.ConfigurePort(1, 17, 5, 3, u"19200,o,7,1"_s), u""_s);
  EXPECT_EQ(channel.host.Ports[1], before);
  EXPECT_TRUE(channel.line.log.isEmpty());
  EXPECT_TRUE(channel.timers.TimerExpired(kPauseTimer));
}

TEST(ConfigurePort, StartsThePauseWhateverTheResult) {
  for (const bool absent : {false, true}) {
    Channel channel;
    channel.line.absent = absent;
    channel.host.ConfigurePort(1, 16, 1, 1, u"9600,o,7,1"_s);
    EXPECT_FALSE(channel.timers.TimerExpired(kPauseTimer)) << absent;
  }
}

TEST(OpenPort, SelectsThePortAndEmptiesItsBuffers) {
  Channel channel;
  channel.host.Ports[1].PortNr = 7;
  EXPECT_EQ(channel.host.OpenPort(1), u""_s);
  EXPECT_EQ(channel.host.Ports[1].Offen, -1);
  EXPECT_TRUE(channel.line.IsOpen());
  EXPECT_EQ(channel.line.log, (QStringList{u"open 7 9600,o,7,1"_s, u"clear out"_s, u"clear in"_s}));
}

TEST(OpenPort, DoesNothingWhenTheSlotIsOpen) {
  Channel channel;
  ASSERT_EQ(channel.host.OpenPort(1), u""_s);
  channel.line.log.clear();
  EXPECT_EQ(channel.host.OpenPort(1), u""_s);
  EXPECT_TRUE(channel.line.log.isEmpty());
}

TEST(OpenPort, RefusesAnotherSlotWhileOneIsOpen) {
  Channel channel;
  channel.SetUp(2);
  ASSERT_EQ(channel.host.OpenPort(1), u""_s);
  channel.line.log.clear();
  EXPECT_EQ(channel.host.OpenPort(2), u"ERROR: "_s);
  EXPECT_EQ(channel.host.Ports[2].Offen, 0);
  EXPECT_TRUE(channel.line.log.isEmpty()) << "the open one is left alone";
  channel.host.ClosePort();
  EXPECT_EQ(channel.host.OpenPort(2), u""_s);
}

TEST(OpenPort, ReportsARefusalWithoutWords) {
  Channel channel;
  channel.line.refusedOpens = {1};
  EXPECT_EQ(channel.host.OpenPort(1), u"ERROR: "_s);
  EXPECT_EQ(channel.host.Ports[1].Offen, 0);
  EXPECT_EQ(channel.host.OpenPort(1), u""_s) << "the next attempt is free again";
  EXPECT_EQ(channel.host.Ports[1].Offen, -1);
}

// The open itself has succeeded then, so the slot counts as open.
TEST(OpenPort, ReportsBuffersThatCannotBeEmptied) {
  for (const bool out : {false, true}) {
    Channel channel;
    channel.line.clearOutFails = out;
    channel.line.clearInFails = !out;
    EXPECT_EQ(channel.host.OpenPort(1), u"ERROR: "_s);
    EXPECT_EQ(channel.host.Ports[1].Offen, -1);
    EXPECT_TRUE(channel.line.IsOpen());
  }
}

TEST(ConfigurePort, ClosesAPortWhoseBuffersCannotBeEmptied) {
  Channel channel;
  channel.line.clearInFails = true;
  EXPECT_EQ(
      channel.host.ConfigurePort(1, 16, 1, 2, u"9600,o,7,1"_s),
      u"ERROR: COM 2 nicht verfügbar. Ändern Sie die 'CommPort'-Einstellung in einen anderen Anschluß."_s);
  EXPECT_FALSE(channel.line.IsOpen());
  EXPECT_EQ(channel.host.Ports[1].Offen, 0);
}

TEST(ClosePort, DropsRtsAndEmptiesTheBuffersBeforeClosing) {
  Channel channel;
  ASSERT_EQ(channel.host.OpenPort(1), u""_s);
  channel.line.SetRts(true);
  channel.line.log.clear();
  channel.host.ClosePort();
  EXPECT_EQ(channel.line.log, (QStringList{u"rts down"_s, u"clear out"_s, u"clear in"_s, u"close"_s}));
  EXPECT_FALSE(channel.line.IsOpen());
}

TEST(ClosePort, LeavesAClosedPortAlone) {
  Channel channel;
  channel.host.Ports[0].Offen = kTrue;
  channel.host.ClosePort();
  EXPECT_TRUE(channel.line.log.isEmpty());
  EXPECT_EQ(channel.host.Ports[0].Offen, 0) << "the slots are marked closed all the same";
}

// The last slot is left out on purpose.
TEST(ClosePort, MarksSlots0To2Closed) {
  Channel channel;
  for (int slot = 0; slot <= 3; ++slot)
    channel.host.Ports[slot].Offen = kTrue;
  channel.host.ClosePort();
  for (int slot = 0; slot <= 2; ++slot)
    EXPECT_EQ(channel.host.Ports[slot].Offen, 0) << slot;
  EXPECT_EQ(channel.host.Ports[3].Offen, -1);
}

TEST(ClosePort, SoSlot3StaysOpenForTheProgram) {
  Channel channel;
  channel.SetUp(3);
  ASSERT_EQ(channel.host.OpenPort(3), u""_s);
  channel.host.ClosePort();
  EXPECT_FALSE(channel.line.IsOpen());
  EXPECT_EQ(channel.host.OpenPort(3), u""_s);
  EXPECT_EQ(channel.line.opens.size(), 1U);
}

TEST(ClosePort, StartsBothTimersAlsoForAClosedPort) {
  for (const bool open : {false, true}) {
    Channel channel;
    if (open) {
      ASSERT_EQ(channel.host.OpenPort(1), u""_s);
    }
    channel.host.ClosePort();
    EXPECT_NEAR(channel.timers.Remaining(2), 0.020, 1e-9);
    EXPECT_NEAR(channel.timers.Remaining(4), 0.010, 1e-9);
  }
}

TEST(KeepOpen, LeavesThePortAndRtsUp) {
  Channel channel;
  channel.host.KeepOpen = kTrue;
  ASSERT_EQ(channel.host.OpenPort(1), u""_s);
  channel.line.SetRts(true);
  channel.line.log.clear();
  channel.host.ClosePort();
  EXPECT_TRUE(channel.line.log.isEmpty());
  EXPECT_TRUE(channel.line.IsOpen());
  EXPECT_TRUE(channel.line.Rts());
  EXPECT_EQ(channel.host.Ports[1].Offen, -1);
  EXPECT_NEAR(channel.timers.Remaining(2), 0.020, 1e-9) << "the pause is kept in every case";
  EXPECT_NEAR(channel.timers.Remaining(4), 0.010, 1e-9);
}

TEST(KeepOpen, CanBeSwitchedOffAgain) {
  Channel channel;
  channel.host.KeepOpen = kTrue;
  ASSERT_EQ(channel.host.OpenPort(1), u""_s);
  channel.host.ClosePort();
  channel.host.KeepOpen = kFalse;
  channel.host.ClosePort();
  EXPECT_FALSE(channel.line.IsOpen());
  EXPECT_EQ(channel.host.Ports[1].Offen, 0);
}

TEST(SendDone, IsSetByTheSendEventOnly) {
  for (const int event : {0, 2, 1001, 1004, 1006, 1008, 1009, 1010, 1011}) {
    Channel channel;
    channel.line.Raise(event);
    EXPECT_EQ(channel.host.SendDone, 0) << event;
  }
  Channel channel;
  channel.line.Raise(platform::kCommEventSendDone);
  EXPECT_EQ(channel.host.SendDone, -1);
}

TEST(PortHost, GivesTheEventHandlerBackWhenItEnds) {
  test::FakeClock clock;
  test::FakeSerialControl line(clock);
  TH timers(clock);
  const Module1 module;
  {
    const COM_T_frm host(module, line, timers);
    EXPECT_TRUE(line.OnComm);
  }
  EXPECT_FALSE(line.OnComm);
}

}  // namespace
}  // namespace kalivor
