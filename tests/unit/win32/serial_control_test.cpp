// What the serial port of Windows makes of the system's calls, with calls that are played.
#include "platform/win32/Win32SerialControl.h"

#include <gtest/gtest.h>
#include <chrono>
#include <limits>
#include <optional>
#include <vector>

#include "fakes/QtPrinters.h"
#include "unit/win32/FakePort.h"

using namespace Qt::StringLiterals;

namespace kalivor::platform {
namespace {

using Steady = std::chrono::steady_clock;

const QString kSettings = u"9600,o,7,1"_s;
constexpr double kForEver_s = 3600;

double Since_ms(Steady::time_point start) {
  return std::chrono::duration<double, std::milli>(Steady::now() - start).count();
}

class Win32SerialControlTest : public testing::Test {
 protected:
  void Open() { ASSERT_TRUE(control.Open(3, kSettings)); }
  void WatchEvents() {
    control.OnComm = [this] { events.push_back(control.CommEvent()); };
  }
  QByteArray Take(qsizetype count) {
    QByteArray taken;
    while (taken.size() < count && control.WaitForInput(2) == InputWait::Input)
      taken += control.Input();
    return taken;
  }

  test::FakePort port;
  QString device = u"COM3"_s;
  std::vector<int> asked;
  std::vector<int> events;
  Win32SerialControl control{[this](int number) {
                               asked.push_back(number);
                               return device;
                             },
                             port};
};

// ---- opening

TEST_F(Win32SerialControlTest, OpensPortsOfAnyNumberByTheirWholeName) {
  for (const auto& [name, whole] : {std::pair(u"COM3"_s, L"\\\\.\\COM3"), {u"COM12"_s, L"\\\\.\\COM12"}}) {
    device = name;
    ASSERT_TRUE(control.Open(3, kSettings));
    EXPECT_EQ(port.name, whole);
    EXPECT_EQ(port.openPorts, 1);
  }
  EXPECT_EQ(asked, (std::vector<int>{3, 3}));
  control.Close();
  EXPECT_EQ(port.openPorts, 0);
}

TEST_F(Win32SerialControlTest, OpensNothingWithoutAName) {
  device.clear();
  EXPECT_FALSE(control.Open(3, kSettings));
  EXPECT_EQ(port.name, L"");
}

TEST_F(Win32SerialControlTest, OpensNothingWithBadSettings) {
  EXPECT_FALSE(control.Open(3, u"9600,x,7,1"_s));
  EXPECT_EQ(port.name, L"");
}

TEST_F(Win32SerialControlTest, APortThatIsAbsentOrInUseStaysClosed) {
  port.present = false;
  EXPECT_FALSE(control.Open(3, kSettings));
  EXPECT_FALSE(control.IsOpen());
}

TEST_F(Win32SerialControlTest, TellsWhyAPortCannotBeOpened) {
  const struct {
    DWORD error;
    QString fault;
  } cases[] = {
      {ERROR_FILE_NOT_FOUND,
       u"COM3 ist nicht da. Das Gerät anschließen oder eine andere Schnittstelle wählen."_s},
      {ERROR_ACCESS_DENIED,
       u"COM3 ist belegt: Ein anderes Programm benutzt die Schnittstelle. Es zuerst beenden."_s},
      {ERROR_GEN_FAILURE,
       u"COM3 lässt sich nicht öffnen (Fehler 31 des Systems). Den Adapter abziehen und wieder einstecken."_s},
  };
  device = u"COM3"_s;
  port.present = false;
  for (const auto& [error, fault] : cases) {
    port.openingError = error;
    EXPECT_FALSE(control.Open(3, kSettings));
    EXPECT_EQ(control.Fault(), fault);
  }
  port.present = true;
  port.takesSettings = false;
  EXPECT_FALSE(control.Open(3, kSettings));
  EXPECT_EQ(control.Fault(),
            u"COM3 nimmt die Einstellungen 9600,o,7,1 nicht an. Einen anderen Adapter versuchen."_s);
  port.takesSettings = true;
  ASSERT_TRUE(control.Open(3, kSettings));
  EXPECT_EQ(control.Fault(), QString());
  port.Vanish();
  EXPECT_EQ(control.WaitForInput(kForEver_s), InputWait::LineGone);
  EXPECT_EQ(control.Fault(), u"COM3 ist während der Übertragung verschwunden. Stecker und Adapter prüfen."_s);
}

TEST_F(Win32SerialControlTest, APortThatRefusesTheSettingsIsGivenBack) {
  port.takesSettings = false;
  EXPECT_FALSE(control.Open(3, kSettings));
  EXPECT_EQ(port.openPorts, 0);
}

TEST_F(Win32SerialControlTest, APortThatKeepsAnotherRateIsGivenBack) {
  port.keepsRate = false;
  EXPECT_FALSE(control.Open(3, kSettings));
  EXPECT_EQ(port.openPorts, 0);
}

TEST_F(Win32SerialControlTest, WhatOnlyStandsForAPortMayRefuseSettingsAndRts) {
  port.real = false;
  port.takesSettings = false;
  ASSERT_TRUE(control.Open(3, kSettings));
  EXPECT_TRUE(control.SetRts(true));
}

TEST_F(Win32SerialControlTest, TheDestructorGivesThePortFree) {
  {
    Win32SerialControl other([](int) { return u"COM4"_s; }, port);
    ASSERT_TRUE(other.Open(4, kSettings));
    EXPECT_EQ(port.openPorts, 1);
  }
  EXPECT_EQ(port.openPorts, 0);
}

// ---- the line

struct Setting {
  QString text;
  DWORD rate;
  BYTE bits;
  BYTE parity;
  BYTE stop;
};

TEST_F(Win32SerialControlTest, SetsTheLineFromTheText) {
  for (const Setting& setting : {Setting{u"9600,o,7,1"_s, CBR_9600, 7, ODDPARITY, ONESTOPBIT},
                                 Setting{u"19200,n,8,2"_s, CBR_19200, 8, NOPARITY, TWOSTOPBITS},
                                 Setting{u"19200,e,7,1"_s, CBR_19200, 7, EVENPARITY, ONESTOPBIT},
                                 Setting{u"4800,m,8,1"_s, CBR_4800, 8, MARKPARITY, ONESTOPBIT},
                                 Setting{u"2400,s,8,1"_s, CBR_2400, 8, SPACEPARITY, ONESTOPBIT}}) {
    ASSERT_TRUE(control.Open(3, setting.text)) << setting.text.toStdString();
    EXPECT_EQ(port.state.BaudRate, setting.rate);
    EXPECT_EQ(port.state.ByteSize, setting.bits);
    EXPECT_EQ(port.state.Parity, setting.parity);
    EXPECT_EQ(port.state.StopBits, setting.stop);
    EXPECT_EQ(port.state.fParity, setting.parity != NOPARITY) << setting.text.toStdString();
    EXPECT_EQ(port.state.fErrorChar, setting.parity != NOPARITY) << "a damaged character is marked";
  }
}

TEST_F(Win32SerialControlTest, CharactersPassUntouchedAndWithoutFlowControl) {
  Open();
  const DCB& state = port.state;
  EXPECT_EQ(state.DCBlength, sizeof(DCB));
  EXPECT_TRUE(state.fBinary);
  EXPECT_EQ(state.ErrorChar, '?');
  EXPECT_FALSE(state.fNull) << "characters of code 0 stay";
  EXPECT_FALSE(state.fOutxCtsFlow || state.fOutxDsrFlow || state.fDsrSensitivity || state.fOutX ||
               state.fInX);
  EXPECT_FALSE(state.fAbortOnError) << "an error must not stop the line";
  EXPECT_EQ(state.fDtrControl, static_cast<DWORD>(DTR_CONTROL_ENABLE));
  EXPECT_EQ(state.fRtsControl, static_cast<DWORD>(RTS_CONTROL_DISABLE));
}

TEST_F(Win32SerialControlTest, RtsIsDownAfterOpeningAndFollows) {
  Open();
  EXPECT_EQ(port.escapes, std::vector<DWORD>{CLRRTS});
  EXPECT_TRUE(control.SetRts(true));
  EXPECT_TRUE(control.SetRts(false));
  EXPECT_EQ(port.escapes, (std::vector<DWORD>{CLRRTS, SETRTS, CLRRTS}));
}

// ---- sending

TEST_F(Win32SerialControlTest, SendsOneOutputBehindTheOther) {
  port.sendsAtOnce = false;
  Open();
  control.Output("abc");
  control.Output("def");
  control.Output("ghi");
  port.FinishWrite();
  EXPECT_EQ(port.Receive(3), "abc");
  EXPECT_EQ(control.WaitForInput(0), InputWait::TimedOut);
  port.FinishWrite();
  EXPECT_EQ(port.Receive(6), "defghi");
}

TEST_F(Win32SerialControlTest, TheEndOfSendingIsReportedWhenTheDriverHasTakenAll) {
  port.sendsAtOnce = false;
  WatchEvents();
  control.SetSThreshold(1);
  Open();
  control.Output("abc");
  EXPECT_EQ(control.WaitForInput(0), InputWait::TimedOut);
  EXPECT_TRUE(events.empty());
  port.FinishWrite();
  EXPECT_EQ(control.WaitForInput(0.01), InputWait::TimedOut) << "an end of sending is no input";
  EXPECT_EQ(events, std::vector<int>{kCommEventSendDone});
}

TEST_F(Win32SerialControlTest, WhatTheDriverHasNotTakenCountsForTheLimit) {
  port.sendsAtOnce = false;
  WatchEvents();
  Open();
  control.Output(QByteArray(SerialControl::kOutputLimit_bytes - 1, 'x'));
  control.Output("y");
  EXPECT_TRUE(events.empty());
  control.Output("z");
  EXPECT_EQ(events, std::vector<int>{kCommEventTransmitFull});
}

TEST_F(Win32SerialControlTest, ClosingAndClearingDoNotWaitForTheDriver) {
  port.sendsAtOnce = false;
  WatchEvents();
  control.SetSThreshold(1);
  Open();
  control.Output("abc");
  port.purges.clear();
  EXPECT_TRUE(control.ClearOutBuffer());
  EXPECT_EQ(port.purges, std::vector<DWORD>{PURGE_TXABORT | PURGE_TXCLEAR});
  EXPECT_EQ(control.WaitForInput(0), InputWait::TimedOut);
  EXPECT_TRUE(events.empty()) << "what was dropped was not sent";
  control.Output("def");
  port.purges.clear();
  control.Close();
  EXPECT_EQ(port.purges, std::vector<DWORD>{PURGE_TXABORT | PURGE_TXCLEAR | PURGE_RXABORT | PURGE_RXCLEAR});
}

// ---- receiving

TEST_F(Win32SerialControlTest, AReadTakesWhatIsThereAndWaitsForTheFirstCharacterOnly) {
  Open();
  EXPECT_EQ(port.timeouts.ReadIntervalTimeout, MAXDWORD);
  EXPECT_EQ(port.timeouts.ReadTotalTimeoutMultiplier, MAXDWORD);
  EXPECT_GT(port.timeouts.ReadTotalTimeoutConstant, 0U);
  EXPECT_LT(port.timeouts.ReadTotalTimeoutConstant, MAXDWORD);
  EXPECT_EQ(port.timeouts.WriteTotalTimeoutConstant, 0U);
}

TEST_F(Win32SerialControlTest, CarriesAllCharacters) {
  Open();
  QByteArray all;
  for (int i = 0; i < 256; ++i)
    all += static_cast<char>(i);
  port.Send(all);
  EXPECT_EQ(Take(256), all);
  control.Output(all);
  EXPECT_EQ(port.Receive(256), all);
}

TEST_F(Win32SerialControlTest, TakesFloodsInParts) {
  Open();
  const QByteArray flood(100000, 'x');
  port.Send(flood);
  EXPECT_EQ(Take(flood.size()), flood);
}

TEST_F(Win32SerialControlTest, AWaitIsNeitherShortNorLong) {
  Open();
  for (const double seconds : {0.001, 0.02, 0.4}) {
    const auto start = Steady::now();
    EXPECT_EQ(control.WaitForInput(seconds), InputWait::TimedOut);
    EXPECT_GE(Since_ms(start), seconds * 1000);
    EXPECT_LT(Since_ms(start), seconds * 1000 + 20);
  }
}

TEST_F(Win32SerialControlTest, ATimeThatIsNoneOrBeyondAllLimitsIsTakenAsItIsMeant) {
  Open();
  EXPECT_EQ(control.WaitForInput(-1), InputWait::TimedOut);
  port.Send("x");
  EXPECT_EQ(control.WaitForInput(std::numeric_limits<double>::infinity()), InputWait::Input);
  EXPECT_EQ(control.Input(), "x");
  port.Send("y");
  EXPECT_EQ(control.WaitForInput(1e300), InputWait::Input);
}

// ---- line errors

struct LineError {
  DWORD errors;
  int event;
};

TEST_F(Win32SerialControlTest, LineErrorsBecomeEvents) {
  WatchEvents();
  for (const LineError& error :
       {LineError{CE_RXPARITY, kCommEventParity}, LineError{CE_FRAME, kCommEventFraming},
        LineError{CE_OVERRUN, kCommEventOverrun}, LineError{CE_RXOVER, kCommEventReceiveOverflow},
        LineError{CE_BREAK, kCommEventBreak},
        // The error that explains the others.
        LineError{CE_BREAK | CE_FRAME | CE_RXPARITY, kCommEventBreak},
        LineError{CE_FRAME | CE_RXPARITY, kCommEventParity}}) {
    Open();
    events.clear();
    port.Send("?", error.errors);
    EXPECT_EQ(Take(1), "?");
    EXPECT_EQ(events, std::vector<int>{error.event}) << error.errors;
    EXPECT_EQ(control.CommEvent(), error.event);
    control.Close();
  }
}

TEST_F(Win32SerialControlTest, ALineErrorWithoutCharactersIsFoundByALook) {
  Open();
  port.Send("", CE_BREAK);
  EXPECT_EQ(control.CommEvent(), kCommEventBreak);
}

// ---- a device that vanishes

TEST_F(Win32SerialControlTest, OutputIntoAVanishedLineIsNotReportedAsSent) {
  WatchEvents();
  control.SetSThreshold(1);
  Open();
  port.Vanish();
  control.Output("abc");
  EXPECT_TRUE(events.empty());
  EXPECT_EQ(control.WaitForInput(kForEver_s), InputWait::LineGone);
}

TEST_F(Win32SerialControlTest, ADeviceThatVanishesWhileItSendsEndsTheWait) {
  port.sendsAtOnce = false;
  WatchEvents();
  control.SetSThreshold(1);
  Open();
  control.Output("abc");
  port.Vanish();
  EXPECT_EQ(control.WaitForInput(kForEver_s), InputWait::LineGone);
  EXPECT_TRUE(events.empty());
}

TEST_F(Win32SerialControlTest, ADeviceThatIsBackCanBeOpened) {
  Open();
  port.Vanish();
  EXPECT_EQ(control.WaitForInput(kForEver_s), InputWait::LineGone);
  control.Close();
  EXPECT_EQ(port.openPorts, 0);
  test::FakePort again;
  Win32SerialControl next([](int) { return u"COM3"_s; }, again);
  ASSERT_TRUE(next.Open(3, kSettings));
  again.Send("x");
  EXPECT_EQ(next.WaitForInput(kForEver_s), InputWait::Input);
}

}  // namespace
}  // namespace kalivor::platform
