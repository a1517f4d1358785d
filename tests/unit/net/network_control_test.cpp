// Lines over the network: what is kept between telegrams, what a server is told, and what is said when it
// fails.
#include <gtest/gtest.h>
#include <QtGlobal>
#ifdef Q_OS_LINUX
#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>
#endif

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QEventLoop>
#include <QTimer>
#include <chrono>
#include <thread>

#include "platform/net/NetworkControl.h"
#include "unit/net/NetworkServer.h"

using namespace Qt::StringLiterals;

namespace kalivor::test {
namespace {

using platform::InputWait;
using platform::NetworkControl;

const QString kSettings = u"9600,o,7,1"_s;
constexpr double kLong_s = 20;        // only a failing test waits for so long
constexpr double kTooShort_s = 0.02;  // for what does not come

// Commands of COM port control, as the document of the protocol numbers them.
const QByteArray kBaud9600("\x01\x00\x00\x25\x80", 5);
const QByteArray kBaud19200("\x01\x00\x00\x4B\x00", 5);
const QByteArray kSevenBits("\x02\x07", 2);
const QByteArray kOddParity("\x03\x02", 2);
const QByteArray kOneStopBit("\x04\x01", 2);
const QByteArray kRtsOn("\x05\x0B", 2);
const QByteArray kRtsOff("\x05\x0C", 2);
const QByteArray kPurgeBoth("\x0C\x03", 2);

QByteArray Notification(int state) {
  return QByteArray("\xFF\xFA\x2C\x6A", 4) + static_cast<char>(state) + QByteArray("\xFF\xF0", 2);
}

class NetworkLine : public testing::Test {
 protected:
  explicit NetworkLine(const ServerManner& manner = {}) : server_(manner) {}

  // A telegram and its answer, as the telegram layer goes about it; "" when there is none.
  QByteArray Exchange(const QByteArray& request, const QByteArray& answer) {
    if (!line_.Open(1, kSettings)) return {};
    line_.SetRts(true);
    line_.Output(request);
    EXPECT_EQ(server_.Receive(request.size()), request);
    if (!answer.isEmpty()) server_.Send(answer);
    QByteArray taken;
    while (taken.size() < answer.size() && line_.WaitForInput(kLong_s) == InputWait::Input)
      taken += line_.Input();
    if (answer.isEmpty()) {
      EXPECT_EQ(line_.WaitForInput(kTooShort_s), InputWait::TimedOut);
    }
    CloseAsAfterATelegram();
    return taken;
  }

  // The request comes to the controller when all that was done about its missing answer is over.
  void ExpectLateAnswerDropped() {
    EXPECT_EQ(Exchange("first\r", {}), "");
    std::thread late([this] {
      std::this_thread::sleep_for(std::chrono::milliseconds(30));
      server_.Send("one\r");
    });
    QElapsedTimer since;
    since.start();
    EXPECT_TRUE(line_.Open(1, kSettings));
    EXPECT_GE(since.elapsed(), 100);
    late.join();
    EXPECT_EQ(line_.WaitForInput(kTooShort_s), InputWait::TimedOut);
    line_.Close();
    since.start();
    EXPECT_TRUE(line_.Open(1, kSettings));
    EXPECT_LT(since.elapsed(), 90) << "nothing is owed any more";
  }

  void CloseAsAfterATelegram() {
    line_.SetRts(false);
    EXPECT_TRUE(line_.ClearOutBuffer());
    EXPECT_TRUE(line_.ClearInBuffer());
    line_.Close();
  }

  // Until the server has got what is on its way, which comes at once on one computer.
  template <typename Condition>
  static void WaitUntil(Condition condition) {
    QElapsedTimer since;
    since.start();
    while (!condition() && since.elapsed() < 10'000)
      std::this_thread::sleep_for(std::chrono::milliseconds(1));
    EXPECT_TRUE(condition());
  }

  QByteArrayList CommandsUntil(const QByteArray& last) {
    QByteArrayList commands;
    WaitUntil([&] {
      commands += server_.TakeCommands();
      return commands.contains(last);
    });
    return commands;
  }

  NetworkServer server_;
  QString device_ = server_.Device();
  NetworkControl line_{[this](int) { return device_; },
                       {.opening_s = 0.5, .unanswered_s = 0.2, .reply_s = 0.1, .keep_s = 0.05}};
};

class RawLine : public NetworkLine {};

class ComPortLine : public NetworkLine {
 protected:
  ComPortLine() : NetworkLine({.comPort = true}) {}
};

TEST_F(RawLine, IsKeptBetweenTelegrams) {
  for (int i = 0; i < 5; ++i)
    EXPECT_EQ(Exchange("#0102R1F00XX\r", "10102R04D220\r"), "10102R04D220\r");
  EXPECT_EQ(server_.Connections(), 1);
}

TEST_F(RawLine, IsMadeAnewWhereAnAnswerMayStillCome) {
  EXPECT_EQ(Exchange("first\r", {}), "");
  EXPECT_EQ(Exchange("second\r", "two\r"), "two\r");
  EXPECT_EQ(server_.Connections(), 2) << "the answer to the first is not taken for the second's";
}

TEST_F(RawLine, AnAnswerToALateRequestMeetsNobody) {
  ExpectLateAnswerDropped();
}

TEST_F(RawLine, IsMadeAnewBehindHalfAnAnswer) {
  EXPECT_EQ(Exchange("first\r", "10102R04"), "10102R04");
  EXPECT_EQ(Exchange("second\r", "two\r"), "two\r");
  EXPECT_EQ(server_.Connections(), 2);
}

TEST_F(RawLine, IsMadeAnewWhereMoreHasComeThanTheAnswer) {
  EXPECT_EQ(Exchange("first\r", "one\r"), "one\r");
  server_.Send("more\r");
  std::this_thread::sleep_for(std::chrono::milliseconds(20));
  EXPECT_EQ(Exchange("second\r", "two\r"), "two\r");
  EXPECT_EQ(server_.Connections(), 2);
}

TEST_F(RawLine, DoesNotWaitForAnAnswerThatNobodyHasAskedFor) {
  ASSERT_TRUE(line_.Open(1, kSettings));
  EXPECT_EQ(line_.WaitForInput(kTooShort_s), InputWait::TimedOut);
  line_.Close();
  EXPECT_TRUE(line_.Open(1, kSettings));
  WaitUntil([&] { return server_.Connections() == 1; });
}

TEST_F(RawLine, CarriesEveryCharacter) {
  QByteArray all;
  for (int code = 255; code >= 0; --code)
    all += static_cast<char>(code);
  EXPECT_EQ(Exchange(all, all), all);
}

TEST_F(RawLine, IsConnectedAnewWhenTheServerHasEndedIt) {
  EXPECT_EQ(Exchange("first\r", "one\r"), "one\r");
  server_.HangUp();
  EXPECT_EQ(Exchange("second\r", "two\r"), "two\r");
  server_.Reset();
  EXPECT_EQ(Exchange("third\r", "three\r"), "three\r");
  EXPECT_EQ(server_.Connections(), 3);
}

TEST_F(RawLine, FollowsTheAddress) {
  NetworkServer other;
  EXPECT_EQ(Exchange("first\r", "one\r"), "one\r");
  device_ = other.Device();
  ASSERT_TRUE(line_.Open(1, kSettings));
  line_.Output("second\r");
  EXPECT_EQ(other.Receive(7), "second\r");
  WaitUntil([&] { return !server_.Connected(); });
}

TEST_F(RawLine, IsReleasedForOthers) {
  EXPECT_EQ(Exchange("first\r", "one\r"), "one\r");
  EXPECT_TRUE(server_.Connected());
  line_.Release();
  WaitUntil([&] { return !server_.Connected(); });
  EXPECT_EQ(Exchange("second\r", "two\r"), "two\r");
}

TEST_F(RawLine, AnOpenOneIsNotReleased) {
  ASSERT_TRUE(line_.Open(1, kSettings));
  line_.Release();
  EXPECT_TRUE(line_.IsOpen());
  line_.Output("x\r");
  EXPECT_EQ(server_.Receive(2), "x\r");
}

TEST_F(RawLine, IsReleasedWhenNobodyNeedsItAnyMore) {
  int argc = 1;
  char name[] = "test";
  char* argv[] = {name, nullptr};
  const QCoreApplication application(argc, argv);
  EXPECT_EQ(Exchange("first\r", "one\r"), "one\r");
  QEventLoop loop;
  QTimer::singleShot(10, &loop, &QEventLoop::quit);
  loop.exec();
  EXPECT_TRUE(server_.Connected()) << "the next telegram may come";
  QTimer::singleShot(150, &loop, &QEventLoop::quit);
  loop.exec();
  WaitUntil([&] { return !server_.Connected(); });
}

TEST_F(RawLine, SaysWhyItWasLost) {
  ASSERT_TRUE(line_.Open(1, kSettings));
  EXPECT_EQ(line_.Fault(), u""_s);
  WaitUntil([&] { return server_.Connected(); });
  server_.HangUp();
  EXPECT_EQ(line_.WaitForInput(kLong_s), InputWait::LineGone);
  EXPECT_EQ(line_.Fault(), u"Der Server hat die Verbindung beendet."_s);
  ASSERT_TRUE(line_.Open(1, kSettings));
  EXPECT_EQ(line_.Fault(), u""_s);
  WaitUntil([&] { return server_.Connected(); });
  server_.Reset();
  EXPECT_EQ(line_.WaitForInput(kLong_s), InputWait::LineGone);
#ifndef Q_OS_WIN  // Wine tells the one from the other only sometimes
  EXPECT_EQ(line_.Fault(), u"Die Verbindung zum Server ist abgebrochen."_s);
#endif
}

TEST_F(RawLine, SaysThatNobodyOffersThePort) {
  server_.Vanish();
  EXPECT_FALSE(line_.Open(1, kSettings));
  EXPECT_EQ(line_.Fault(),
            u"Der Rechner „127.0.0.1“ lehnt die Verbindung zum Port %1 ab: Läuft der Server "
            "dort, und stimmt der Port?"_s.arg(server_.Port()));
}

#ifdef Q_OS_LINUX
// A queue of connections that nobody takes: the system does not answer any more once it is full.
class FullQueue {
 public:
  FullQueue() {
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    socklen_t length = sizeof address;
    auto* const any = reinterpret_cast<sockaddr*>(&address);
    const int offer = New(0);
    EXPECT_EQ(bind(offer, any, length), 0);
    EXPECT_EQ(listen(offer, 0), 0);
    EXPECT_EQ(getsockname(offer, any, &length), 0);
    port = ntohs(address.sin_port);
    for (int i = 0; i < 3; ++i)
      (void)connect(New(SOCK_NONBLOCK), any, length);
    std::this_thread::sleep_for(std::chrono::milliseconds(20));
  }
  ~FullQueue() {
    for (const int socket : sockets_)
      close(socket);
  }
  FullQueue(const FullQueue&) = delete;
  FullQueue& operator=(const FullQueue&) = delete;

  quint16 port = 0;

 private:
  int New(int flags) { return sockets_.emplace_back(socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC | flags, 0)); }

  std::vector<int> sockets_;
};

TEST_F(RawLine, ConnectingIsBounded) {
  const FullQueue queue;
  device_ = u"socket://127.0.0.1:%1"_s.arg(queue.port);
  QElapsedTimer since;
  since.start();
  EXPECT_FALSE(line_.Open(1, kSettings));
  EXPECT_EQ(line_.Fault(),
            u"Der Rechner „127.0.0.1“ antwortet nicht: Ist er eingeschaltet und über das Netz "
            "erreichbar?"_s);
  EXPECT_GE(since.elapsed(), 490);
  EXPECT_LT(since.elapsed(), 2000);
  EXPECT_FALSE(line_.Open(1, kSettings));
  EXPECT_EQ(
      line_.Fault(),
      u"Der Rechner „127.0.0.1“ hat eben nicht geantwortet: In wenigen Sekunden wird er wieder gefragt."_s);
  device_ = server_.Device();
  EXPECT_TRUE(line_.Open(1, kSettings)) << "another address has nothing to do with it";
}
#endif

TEST_F(RawLine, SaysThatThereIsNoSuchHost) {
  device_ = u"socket://gibt-es-nicht.invalid:4001"_s;
  EXPECT_FALSE(line_.Open(1, kSettings));
  EXPECT_TRUE(line_.Fault().startsWith(u"Der Rechner „gibt-es-nicht.invalid“ wurde nicht gefunden: "_s))
      << line_.Fault().toStdString();
}

TEST_F(RawLine, SaysWhatIsWrongWithTheAddress) {
  device_ = u"socket://regler"_s;
  EXPECT_FALSE(line_.Open(1, kSettings));
  EXPECT_EQ(line_.Fault(),
            u"Die Netzadresse „socket://regler“ nennt keinen Port von 1 bis 65535. Erwartet "
            "wird socket://RECHNER:PORT oder rfc2217://RECHNER:PORT."_s);
}

TEST_F(RawLine, TakesAnySettingsThatAreOnes) {
  EXPECT_TRUE(line_.Open(1, u"19200,n,8,2"_s));
  EXPECT_FALSE(line_.Open(1, u"schnell"_s));
  EXPECT_FALSE(line_.IsOpen());
}

TEST_F(RawLine, SaysWhoHasThePort) {
  server_.SetManner({.greeting = "Port already in use\r\n", .turnsAway = true});
  EXPECT_FALSE(line_.Open(1, kSettings));
  EXPECT_EQ(line_.Fault(),
            u"Die Schnittstelle des Servers ist belegt; der Server meldet: Port already in use"_s);
  server_.SetManner({.greeting = "Kein Zutritt\r\n", .turnsAway = true});
  EXPECT_FALSE(line_.Open(1, kSettings));
  EXPECT_EQ(line_.Fault(), u"Der Server hat die Verbindung beendet und meldet: Kein Zutritt"_s);
  server_.SetManner({.turnsAway = true});
  EXPECT_FALSE(line_.Open(1, kSettings));
  EXPECT_EQ(line_.Fault(), u"Der Server hat die Verbindung beendet."_s);
}

// Behind a tunnel it comes later than the connection.
TEST_F(RawLine, SaysLateWhoHasThePort) {
  ASSERT_TRUE(line_.Open(1, kSettings));
  WaitUntil([&] { return server_.Connected(); });
  server_.Send("Port already in use\r\n");
  server_.HangUp();
  EXPECT_EQ(line_.WaitForInput(kLong_s), InputWait::Input);
  EXPECT_EQ(line_.Input(), "Port already in use\r\n");
  EXPECT_EQ(line_.WaitForInput(kLong_s), InputWait::LineGone);
  EXPECT_EQ(line_.Fault(),
            u"Die Schnittstelle des Servers ist belegt; der Server meldet: Port already in use"_s);
}

TEST_F(RawLine, AGreetingIsNoAnswer) {
  server_.SetManner({.greeting = "Willkommen\r\n"});
  EXPECT_EQ(Exchange("first\r", "one\r"), "one\r");
  EXPECT_EQ(server_.Connections(), 1);
}

TEST_F(ComPortLine, SetsTheLineOnceAndThenWhatHasChanged) {
  EXPECT_EQ(Exchange("first\r", "one\r"), "one\r");
  const QByteArrayList first = CommandsUntil(kPurgeBoth);
  for (const QByteArray& command : {kBaud9600, kSevenBits, kOddParity, kOneStopBit})
    EXPECT_EQ(first.count(command), 1) << command.toHex(' ').toStdString();

  EXPECT_EQ(Exchange("second\r", "two\r"), "two\r");
  EXPECT_EQ(CommandsUntil(kPurgeBoth), (QByteArrayList{kRtsOn, kRtsOff, kPurgeBoth}));

  ASSERT_TRUE(line_.Open(1, u"19200,o,7,1"_s));
  EXPECT_EQ(server_.TakeCommands(), QByteArrayList{kBaud19200});
  EXPECT_EQ(server_.Connections(), 1);
}

TEST_F(ComPortLine, LeavesRtsDownWhenItOpens) {
  ASSERT_TRUE(line_.Open(1, kSettings));
  EXPECT_EQ(server_.TakeCommands().count(kRtsOff), 1);
}

TEST_F(ComPortLine, CarriesEveryCharacter) {
  QByteArray all;
  for (int code = 255; code >= 0; --code)
    all += static_cast<char>(code);
  EXPECT_EQ(Exchange(all + all, all + all), all + all);
}

TEST_F(ComPortLine, WhatCameBeforeThePurgeNeverArrives) {
  EXPECT_EQ(Exchange("first\r", "one\r"), "one\r");
  for (int i = 0; i < 3; ++i) {
    server_.SendBeforePurge("late\r");
    EXPECT_EQ(Exchange("silent\r", {}), "");
    EXPECT_EQ(Exchange("second\r", "two\r"), "two\r");
  }
  EXPECT_EQ(server_.Connections(), 1) << "however silent";
}

TEST_F(ComPortLine, AnAnswerToALateRequestMeetsNobody) {
  ExpectLateAnswerDropped();
}

TEST_F(ComPortLine, TellsOfLineErrors) {
  std::vector<int> events;
  line_.OnComm = [&] { events.push_back(line_.CommEvent()); };
  ASSERT_TRUE(line_.Open(1, kSettings));
  for (const int state : {2, 4, 8, 16, 4 | 8 | 16}) {
    server_.SendBytes(Notification(state));
    server_.Send("x");
    ASSERT_EQ(line_.WaitForInput(kLong_s), InputWait::Input);
    EXPECT_EQ(line_.Input(), "x");
  }
  EXPECT_EQ(events, (std::vector<int>{platform::kCommEventOverrun, platform::kCommEventParity,
                                      platform::kCommEventFraming, platform::kCommEventBreak,
                                      platform::kCommEventBreak}));
  EXPECT_EQ(line_.CommEvent(), platform::kCommEventBreak);
  line_.Close();
  server_.SendBytes(Notification(2));
  ASSERT_TRUE(line_.Open(1, kSettings));
  EXPECT_EQ(line_.CommEvent(), platform::kCommEventNone);
}

TEST_F(ComPortLine, AServerThatSetsSomethingElseIsRefused) {
  server_.SetManner({.comPort = true, .ownBaud = 115200});
  EXPECT_FALSE(line_.Open(1, kSettings));
  EXPECT_EQ(line_.Fault(), u"Der Server stellt die Schnittstelle nicht wie verlangt ein: 9600 Baud."_s);
  EXPECT_FALSE(line_.IsOpen());
  server_.SetManner({.comPort = true});
  EXPECT_TRUE(line_.Open(1, kSettings)) << "it may have been set otherwise meanwhile";
}

TEST_F(ComPortLine, AServerThatDoesNotControlItsPortIsRefused) {
  const QString fault =
      u"Der Server steuert keine Schnittstelle nach RFC 2217: Geben Sie die Adresse mit socket:// an, und "
      "stellen Sie Baudrate und Parität am Server ein."_s;
  server_.SetManner({.comPort = true, .refusesControl = true});
  EXPECT_FALSE(line_.Open(1, kSettings));
  EXPECT_EQ(line_.Fault(), fault);
  line_.Release();
  server_.SetManner({});
  QElapsedTimer since;
  since.start();
  EXPECT_FALSE(line_.Open(1, kSettings)) << "one that says nothing at all";
  EXPECT_EQ(line_.Fault(), fault);
  EXPECT_GE(since.elapsed(), 490);
  EXPECT_LT(since.elapsed(), 2000);
}

// A transfer tries again and again, and the window waits for each time.
TEST_F(ComPortLine, WhereNobodyAnswersTheNextOpeningsFailAtOnce) {
  server_.SetManner({.comPort = true, .confirms = false});
  EXPECT_FALSE(line_.Open(1, kSettings));
  EXPECT_EQ(line_.Fault(), u"Der Server bestätigt die Einstellungen der Schnittstelle nicht."_s);
  QElapsedTimer since;
  since.start();
  EXPECT_FALSE(line_.Open(1, kSettings));
  EXPECT_LT(since.elapsed(), 100);
  EXPECT_EQ(
      line_.Fault(),
      u"Der Rechner „127.0.0.1“ hat eben nicht geantwortet: In wenigen Sekunden wird er wieder gefragt."_s);
  server_.SetManner({.comPort = true});
  WaitUntil([&] { return line_.Open(1, kSettings); });
  EXPECT_GE(since.elapsed(), 190);
}

TEST_F(ComPortLine, SaysWhoHasThePort) {
  server_.SetManner(
      {.comPort = true, .greeting = "\xFF\xFB\x03\xFF\xFD,Port already in use\r\n", .turnsAway = true});
  EXPECT_FALSE(line_.Open(1, kSettings));
  EXPECT_EQ(line_.Fault(),
            u"Die Schnittstelle des Servers ist belegt; der Server meldet: Port already in use"_s);
}

TEST_F(ComPortLine, IsConnectedAndSetAnewWhenTheServerHasEndedIt) {
  EXPECT_EQ(Exchange("first\r", "one\r"), "one\r");
  (void)CommandsUntil(kPurgeBoth);
  server_.Reset();
  EXPECT_EQ(Exchange("second\r", "two\r"), "two\r");
  EXPECT_EQ(server_.Connections(), 2);
  EXPECT_EQ(CommandsUntil(kPurgeBoth).count(kBaud9600), 1);
}

}  // namespace
}  // namespace kalivor::test
