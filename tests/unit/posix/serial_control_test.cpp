// A serial port through the terminal driver, with a pseudo-terminal as its line.
#include "platform/posix/PosixSerialControl.h"

#include <sys/resource.h>
#include <sys/stat.h>

#include <gtest/gtest.h>
#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <limits>
#include <thread>
#include <vector>

#include "fakes/QtPrinters.h"
#include "platform/posix/MonotonicTime.h"
#include "platform/posix/TerminalSettings.h"
#include "unit/posix/AsOrdinaryUser.h"
#include "unit/posix/PseudoTerminal.h"
#include "unit/posix/RepeatedSignal.h"

using namespace Qt::StringLiterals;

namespace kalivor::platform {
namespace {

const QString kSettings = u"9600,o,7,1"_s;

// Long enough never to be reached: a wait that should end at once and does not runs into the test's time
// limit.
constexpr double kForEver_s = 3600;

// Counters that move as the test says, and a record of what was done to RTS.
class FakeDriver final : public SerialDriver {
 public:
  std::optional<LineErrorCounts> counts = LineErrorCounts{};
  int reads = 0;
  std::vector<bool> rts;
  int rtsError = 0;

  [[nodiscard]] std::optional<LineErrorCounts> ErrorCounts(int) override {
    ++reads;
    return counts;
  }
  [[nodiscard]] int SetRts(int, bool raised) override {
    rts.push_back(raised);
    return rtsError;
  }
};

class SerialControlTest : public testing::Test {
 protected:
  SerialControlTest() : SerialControlTest(std::make_unique<FakeDriver>()) {}

  // Opens the pseudo-terminal as port 3.
  void Open() { ASSERT_TRUE(control_.Open(3, kSettings)); }

  [[nodiscard]] bool OpenDevice(const QString& path, const QString& settings = kSettings) {
    device_ = path;
    return control_.Open(3, settings);
  }

  // Everything that arrives until `count` characters are there.
  [[nodiscard]] QByteArray Take(qsizetype count) {
    QByteArray taken;
    while (taken.size() < count && control_.WaitForInput(2) == InputWait::Input)
      taken += control_.Input();
    return taken;
  }

  // Delivers a piece of input with marks to the port, and waits until its characters are there.
  void Deliver(const QByteArray& marked, int characters) {
    pty_.LetMarksThrough();
    pty_.Send(marked);
    ASSERT_EQ(Take(characters).size(), characters);
  }

  // Lets the port raise events into events_.
  void WatchEvents() {
    control_.OnComm = [this] { events_.push_back(control_.CommEvent()); };
  }

  test::PseudoTerminal pty_;
  QString device_ = pty_.Path();
  std::vector<int> asked_;
  std::vector<int> events_;
  FakeDriver* driver_;
  PosixSerialControl control_;

 private:
  explicit SerialControlTest(std::unique_ptr<FakeDriver> driver)
      : driver_(driver.get()),
        control_(
            [this](int number) {
              asked_.push_back(number);
              return number == 3 ? device_ : QString();
            },
            std::move(driver)) {}
};

int OpenDescriptors() {
  return static_cast<int>(QDir(u"/proc/self/fd"_s).entryList(QDir::System | QDir::Files).size());
}

double ProcessorTime_s() {
  rusage usage{};
  getrusage(RUSAGE_THREAD, &usage);
  const auto seconds = [](const timeval& time) {
    return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_usec) * 1e-6;
  };
  return seconds(usage.ru_utime) + seconds(usage.ru_stime);
}

// ---- opening

TEST_F(SerialControlTest, OpensTheDeviceOfTheNumber) {
  EXPECT_FALSE(control_.IsOpen());
  Open();
  EXPECT_TRUE(control_.IsOpen());
  EXPECT_EQ(asked_, std::vector<int>{3});
  control_.Close();
  EXPECT_FALSE(control_.IsOpen());
  EXPECT_FALSE(control_.Open(4, kSettings));
  EXPECT_FALSE(control_.IsOpen());
}

TEST_F(SerialControlTest, SetsTheLine) {
  ASSERT_TRUE(control_.Open(3, u"19200,n,8,2"_s));
  const termios line = pty_.Attributes();
  EXPECT_EQ(cfgetispeed(&line), static_cast<speed_t>(B19200));
  EXPECT_EQ(cfgetospeed(&line), static_cast<speed_t>(B19200));
  EXPECT_EQ(line.c_cflag & (CSIZE | CSTOPB | CREAD | CLOCAL | CRTSCTS),
            static_cast<tcflag_t>(CS8 | CSTOPB | CREAD | CLOCAL));
  EXPECT_EQ(line.c_iflag, static_cast<tcflag_t>(INPCK | PARMRK));
  EXPECT_EQ(line.c_oflag & OPOST, 0U);
  EXPECT_EQ(line.c_lflag & (ICANON | ECHO | ISIG | IEXTEN), 0U);

  ASSERT_TRUE(control_.Open(3, kSettings));
  const termios other = pty_.Attributes();
  EXPECT_EQ(cfgetospeed(&other), static_cast<speed_t>(B9600));
  EXPECT_EQ(other.c_cflag & CSTOPB, 0U);
}

// Whatever the program before has left behind: translations, echo, flow control.
TEST_F(SerialControlTest, SetsTheLineWhateverItWas) {
  termios strange = pty_.Attributes();
  strange.c_iflag = IGNBRK | BRKINT | IGNPAR | ISTRIP | INLCR | IGNCR | ICRNL | IXON | IXOFF | IXANY;
  strange.c_oflag = OPOST | ONLCR;
  strange.c_lflag = ICANON | ECHO | ECHONL | ISIG | IEXTEN;
  strange.c_cflag |= CRTSCTS;
  strange.c_cflag &= ~static_cast<tcflag_t>(CREAD);
  ASSERT_EQ(tcsetattr(pty_.Master(), TCSANOW, &strange), 0);
  Open();
  const termios line = pty_.Attributes();
  EXPECT_EQ(line.c_iflag, static_cast<tcflag_t>(INPCK | PARMRK));
  EXPECT_EQ(line.c_cflag & (CREAD | CLOCAL | CRTSCTS), static_cast<tcflag_t>(CREAD | CLOCAL));
  pty_.Send("\r\n\x11\x13\x03");
  EXPECT_EQ(Take(5), "\r\n\x11\x13\x03");
  control_.Output("\n\r");
  EXPECT_EQ(pty_.Receive(2), "\n\r");
  EXPECT_FALSE(pty_.Readable(0));  // no echo
}

TEST_F(SerialControlTest, OpenAgainClosesFirst) {
  Open();
  pty_.Send("old");
  ASSERT_EQ(control_.WaitForInput(2), InputWait::Input);
  Open();
  EXPECT_TRUE(control_.IsOpen());
  EXPECT_EQ(control_.InBufferCount(), 0);
}

TEST_F(SerialControlTest, RefusesBadSettings) {
  for (const char16_t* text : {u"",
                               u"9600",
                               u"9600,o,7",
                               u"9600,o,7,1,",
                               u"9600,o,7,1,1",
                               u",,,",
                               u"9601,o,7,1",
                               u"0,o,7,1",
                               u"-9600,o,7,1",
                               u"09600,o,7,1",
                               u"+9600,o,7,1",
                               u"9600 ,o,7,1",
                               u" 9600,o,7,1",
                               u"9600,o,7,1 ",
                               u"9600, o,7,1",
                               u"9600,x,7,1",
                               u"9600,,7,1",
                               u"9600,odd,7,1",
                               u"9600,o,4,1",
                               u"9600,o,9,1",
                               u"9600,o,,1",
                               u"9600,o,7,0",
                               u"9600,o,7,3",
                               u"9600,o,7,1.5",
                               u"9600,o,7,",
                               u"9600;o;7;1",
                               u"9600,7,o,1",
                               u"1e4,n,8,1",
                               u"99999999999,n,8,1"}) {
    const QString settings = QString::fromUtf16(text);
    EXPECT_FALSE(control_.Open(3, settings)) << settings.toStdString();
    EXPECT_FALSE(control_.IsOpen());
  }
  // Refused before anything is opened.
  EXPECT_TRUE(asked_.empty());
}

TEST(LineSettings, ReadsTheNotation) {
  struct Row {
    QStringView text;
    LineSettings settings;
    speed_t speed = B0;
    tcflag_t flags = 0;
  };
  for (const Row& row : {Row{u"9600,o,7,1", {9600, 'o', 7, 1}, B9600, PARENB | PARODD | CS7},
                         Row{u"19200,n,8,1", {19200, 'n', 8, 1}, B19200, CS8},
                         Row{u"300,e,7,2", {300, 'e', 7, 2}, B300, PARENB | CS7 | CSTOPB},
                         Row{u"115200,M,8,1", {115200, 'm', 8, 1}, B115200, PARENB | PARODD | CMSPAR | CS8},
                         Row{u"50,s,5,1", {50, 's', 5, 1}, B50, PARENB | CMSPAR | CS5},
                         Row{u"4000000,N,6,2", {4000000, 'n', 6, 2}, B4000000, CS6 | CSTOPB}}) {
    const std::optional<LineSettings> settings = ParseLineSettings(row.text);
    ASSERT_TRUE(settings) << row.text.toUtf8().constData();
    EXPECT_EQ(*settings, row.settings);
    EXPECT_EQ(SpeedOf(settings->baud), row.speed);
    EXPECT_EQ(BaudOf(row.speed), settings->baud);
    EXPECT_EQ(ControlFlags(*settings), row.flags);
    EXPECT_EQ(settings->HasParity(), (row.flags & PARENB) != 0);
  }
  EXPECT_EQ(BaudOf(B0), 0);
}

TEST_F(SerialControlTest, RefusesWhatIsNoSerialDevice) {
  QTemporaryDir folder;
  QFile file(folder.filePath(u"file"_s));
  ASSERT_TRUE(file.open(QIODevice::WriteOnly));
  ASSERT_EQ(file.write("content"), 7);
  file.close();
  ASSERT_EQ(mkfifo(QFile::encodeName(folder.filePath(u"pipe"_s)).constData(), 0600), 0);
  for (const QString& path : {u"/dev/missing"_s, folder.filePath(u"file"_s), folder.filePath(u"pipe"_s),
                              folder.path(), u"/dev/null"_s, u"/dev/zero"_s, QString()}) {
    EXPECT_FALSE(OpenDevice(path)) << path.toStdString();
    EXPECT_FALSE(control_.IsOpen());
  }
  ASSERT_TRUE(file.open(QIODevice::ReadOnly));
  EXPECT_EQ(file.readAll(), "content");
}

TEST_F(SerialControlTest, RefusesADeviceWithoutPermission) {
  const QByteArray path = QFile::encodeName(pty_.Path());
  ASSERT_EQ(chmod(path.constData(), 0), 0);
  EXPECT_TRUE(test::HoldsAsOrdinaryUser([&] { return !control_.Open(3, kSettings) && !control_.IsOpen(); }));
  ASSERT_EQ(chmod(path.constData(), 0666), 0);
  EXPECT_TRUE(test::HoldsAsOrdinaryUser([&] { return control_.Open(3, kSettings); }));
}

TEST_F(SerialControlTest, TellsWhyADeviceCannotBeOpened) {
  const struct {
    QString device;
    QString settings;
    QString fault;
  } cases[] = {
      {QString(), kSettings,
       u"Zu dieser Nummer gibt es keine Schnittstelle. Den Adapter einstecken oder eine andere Nummer "
       u"wählen."_s},
      {u"/dev/missing"_s, kSettings,
       u"/dev/missing ist nicht da. Das Gerät anschließen oder eine andere Schnittstelle wählen."_s},
      {u"/dev/null"_s, kSettings, u"/dev/null ist keine serielle Schnittstelle. Eine andere wählen."_s},
      {u"/dev"_s, kSettings, u"/dev ist keine serielle Schnittstelle. Eine andere wählen."_s},
      {pty_.Path(), u"9601,o,7,1"_s,
       u"Die Schnittstelle nimmt die Einstellungen 9601,o,7,1 nicht an. Einen anderen Adapter versuchen."_s},
  };
  for (const auto& [device, settings, fault] : cases) {
    EXPECT_FALSE(OpenDevice(device, settings));
    EXPECT_EQ(control_.Fault(), fault);
  }
  EXPECT_TRUE(OpenDevice(pty_.Path()));
  EXPECT_EQ(control_.Fault(), QString());

  const QString inUse =
      pty_.Path() + u" ist belegt: Ein anderes Programm benutzt die Schnittstelle. Es zuerst beenden."_s;
  PosixSerialControl other([this](int) { return pty_.Path(); });
  EXPECT_FALSE(other.Open(1, kSettings));
  EXPECT_EQ(other.Fault(), inUse);
  ASSERT_EQ(chmod(QFile::encodeName(pty_.Path()).constData(), 0666), 0);
  EXPECT_TRUE(test::HoldsAsOrdinaryUser([&] { return !other.Open(1, kSettings) && other.Fault() == inUse; }))
      << "of whom the system itself keeps out";
  control_.Close();
  ASSERT_EQ(chmod(QFile::encodeName(pty_.Path()).constData(), 0600), 0);
  EXPECT_TRUE(test::HoldsAsOrdinaryUser([&] {
    return geteuid() == 0 ||
           (!other.Open(1, kSettings) &&
            other.Fault() == u"Für "_s + pty_.Path() +
                                 u" fehlt die Berechtigung. Was zu tun ist, zeigt die Liste "
                                 u"der Schnittstellen."_s);
  }));
}

TEST_F(SerialControlTest, RefusesADeviceThatHasVanished) {
  Open();
  control_.Close();
  pty_.Vanish();
  // Unless another program has been given a device of the same name meanwhile.
  EXPECT_TRUE(!control_.Open(3, kSettings) || QFile::exists(pty_.Path()));
}

TEST_F(SerialControlTest, UsesTheDeviceAlone) {
  PosixSerialControl other([this](int) { return pty_.Path(); });
  Open();
  EXPECT_FALSE(other.Open(1, kSettings));
  // The refused attempt has touched neither the line nor the claim on it.
  pty_.Send("x");
  EXPECT_EQ(Take(1), "x");
  EXPECT_FALSE(other.Open(1, kSettings));
  control_.Close();
  EXPECT_TRUE(other.Open(1, kSettings));
  EXPECT_FALSE(control_.Open(3, kSettings));
  other.Close();
  EXPECT_TRUE(control_.Open(3, kSettings));
}

// Programs that look at no lock are kept away too, and let in again afterwards.
TEST_F(SerialControlTest, KeepsOtherProgramsAway) {
  const QByteArray path = QFile::encodeName(pty_.Path());
  ASSERT_EQ(chmod(path.constData(), 0666), 0);
  const auto canOpen = [&] {
    return test::HoldsAsOrdinaryUser(
        [&] { return open(path.constData(), O_RDWR | O_NOCTTY | O_NONBLOCK) >= 0; });
  };
  EXPECT_TRUE(canOpen());
  Open();
  EXPECT_FALSE(canOpen());
  control_.Close();
  EXPECT_TRUE(canOpen());
}

TEST_F(SerialControlTest, DestructionGivesTheDeviceFree) {
  {
    PosixSerialControl other([this](int) { return pty_.Path(); });
    ASSERT_TRUE(other.Open(1, kSettings));
  }
  EXPECT_TRUE(control_.Open(3, kSettings));
}

TEST_F(SerialControlTest, LeavesNoDescriptorOpen) {
  Open();
  control_.Close();
  const int before = OpenDescriptors();
  for (int i = 0; i < 1000; ++i) {
    Open();
    control_.Output("x");
    control_.Close();
    ASSERT_FALSE(OpenDevice(u"/dev/null"_s));
    device_ = pty_.Path();
  }
  EXPECT_EQ(OpenDescriptors(), before);

  // Refused because another holds it.
  PosixSerialControl other([this](int) { return pty_.Path(); });
  ASSERT_TRUE(other.Open(1, kSettings));
  for (int i = 0; i < 100; ++i)
    ASSERT_FALSE(control_.Open(3, kSettings));
  other.Close();
  EXPECT_EQ(OpenDescriptors(), before);
}

TEST_F(SerialControlTest, ClosedPortDoesNothing) {
  WatchEvents();
  control_.Close();
  control_.Output("x");
  control_.SetSThreshold(1);
  EXPECT_FALSE(control_.SetRts(true));
  EXPECT_FALSE(control_.ClearInBuffer());
  EXPECT_FALSE(control_.ClearOutBuffer());
  EXPECT_EQ(control_.InBufferCount(), 0);
  EXPECT_EQ(control_.Input(), QByteArray());
  EXPECT_EQ(control_.WaitForInput(kForEver_s), InputWait::LineGone);
  EXPECT_EQ(control_.CommEvent(), kCommEventNone);
  EXPECT_TRUE(events_.empty());
  EXPECT_FALSE(pty_.Readable(0));
}

// ---- characters both ways

TEST_F(SerialControlTest, CarriesAllCharactersBothWays) {
  QByteArray all;
  for (int c = 0; c < 256; ++c)
    all.append(static_cast<char>(c));
  all += QByteArray("\xFF\xFF\0\xFF\0\0\xFF", 7);
  Open();
  control_.Output(all);
  EXPECT_EQ(pty_.Receive(all.size()), all);
  pty_.Send(all);
  EXPECT_EQ(Take(all.size()), all);
  EXPECT_EQ(control_.CommEvent(), kCommEventNone);
}

TEST_F(SerialControlTest, CountsAndTakesInput) {
  Open();
  EXPECT_EQ(control_.InBufferCount(), 0);
  EXPECT_EQ(control_.Input(), QByteArray());
  pty_.Send("#01\xFF");
  ASSERT_EQ(control_.WaitForInput(2), InputWait::Input);
  EXPECT_EQ(control_.InBufferCount(), 4);
  EXPECT_EQ(control_.InBufferCount(), 4);
  EXPECT_EQ(control_.WaitForInput(0), InputWait::Input);
  EXPECT_EQ(control_.Input(), "#01\xFF");
  EXPECT_EQ(control_.InBufferCount(), 0);
}

TEST_F(SerialControlTest, ClearsInput) {
  Open();
  pty_.Send("seen");
  ASSERT_EQ(control_.WaitForInput(2), InputWait::Input);
  ASSERT_EQ(control_.InBufferCount(), 4);
  pty_.Send("not seen");
  // The characters are on their way to the driver until the master has seen its queue empty.
  ASSERT_EQ(tcdrain(pty_.Master()), 0);
  pollfd wait{pty_.Master(), POLLOUT, 0};
  ASSERT_EQ(poll(&wait, 1, 2000), 1);
  while (control_.InBufferCount() < 12 && control_.WaitForInput(0.001) != InputWait::LineGone) {
  }
  EXPECT_TRUE(control_.ClearInBuffer());
  EXPECT_EQ(control_.InBufferCount(), 0);
  pty_.Send("new");
  EXPECT_EQ(Take(3), "new");
}

TEST_F(SerialControlTest, OpensWithEmptyBuffers) {
  Open();
  pty_.Send("old");
  ASSERT_EQ(control_.WaitForInput(2), InputWait::Input);
  ASSERT_EQ(control_.InBufferCount(), 3);
  control_.Close();
  Open();
  EXPECT_EQ(control_.InBufferCount(), 0);
}

// More than the port keeps: the rest stays with the driver and is not lost.
TEST_F(SerialControlTest, TakesFloodsInParts) {
  Open();
  QByteArray flood;
  for (int i = 0; i < 200'000; ++i)
    flood.append(static_cast<char>('0' + i % 10));
  std::thread sender([&] { pty_.Send(flood); });
  QByteArray taken;
  while (taken.size() < flood.size() && control_.WaitForInput(2) == InputWait::Input) {
    EXPECT_LT(control_.InBufferCount(), PosixSerialControl::kInputLimit_bytes + 4096);
    taken += control_.Input();
  }
  sender.join();
  EXPECT_EQ(taken, flood);
}

// A pseudo-terminal has no modem lines; that is no failure.
TEST_F(SerialControlTest, RtsIsNothingOnAPseudoTerminal) {
  Open();
  EXPECT_TRUE(control_.SetRts(true));
  EXPECT_TRUE(control_.SetRts(false));
}

// ---- sending

TEST_F(SerialControlTest, ReportsWhenAllIsSent) {
  Open();
  WatchEvents();
  control_.Output("one");
  EXPECT_TRUE(events_.empty());  // not asked for
  EXPECT_EQ(control_.CommEvent(), kCommEventNone);
  control_.SetSThreshold(1);
  EXPECT_EQ(events_, std::vector<int>{kCommEventSendDone});
  control_.Output("two");
  EXPECT_EQ(events_, (std::vector<int>{kCommEventSendDone, kCommEventSendDone}));
  control_.Output(QByteArray());
  control_.SetSThreshold(1);
  EXPECT_EQ(events_.size(), 2U);  // nothing new was sent
  control_.SetSThreshold(0);
  control_.Output("three");
  EXPECT_EQ(events_.size(), 2U);
  EXPECT_EQ(control_.CommEvent(), kCommEventSendDone);
  EXPECT_EQ(pty_.Receive(11), "onetwothree");
}

TEST_F(SerialControlTest, SendsWhileWaitingWhatTheDriverDidNotTake) {
  Open();
  WatchEvents();
  control_.SetSThreshold(1);
  QByteArray sent;
  while (events_.size() == static_cast<size_t>(sent.size() / 8192)) {
    ASSERT_LT(sent.size(), 1 << 20) << "the driver takes everything";
    const QByteArray block(8192, static_cast<char>('a' + sent.size() / 8192));
    control_.Output(block);
    sent += block;
  }
  const size_t before = events_.size();
  EXPECT_EQ(control_.WaitForInput(0.02), InputWait::TimedOut);  // nobody reads
  EXPECT_EQ(events_.size(), before);

  QByteArray received;
  std::thread reader([&] {
    received = pty_.Receive(sent.size());
    pty_.Send("!");
  });
  // The answer can come only after all has been sent.
  EXPECT_EQ(control_.WaitForInput(kForEver_s), InputWait::Input);
  reader.join();
  EXPECT_EQ(received, sent);
  EXPECT_EQ(events_.size(), before + 1);
  EXPECT_EQ(events_.back(), kCommEventSendDone);
}

TEST_F(SerialControlTest, RefusesOutputBeyondItsQueue) {
  Open();
  WatchEvents();
  const QByteArray block(16384, 'x');
  qsizetype accepted = 0;
  while (control_.CommEvent() == kCommEventNone) {
    ASSERT_LT(accepted, 1 << 22) << "the queue has no end";
    control_.Output(block);
    if (control_.CommEvent() == kCommEventNone) accepted += block.size();
  }
  EXPECT_EQ(control_.CommEvent(), kCommEventTransmitFull);
  EXPECT_EQ(events_, std::vector<int>{kCommEventTransmitFull});
  EXPECT_GE(accepted, PosixSerialControl::kOutputLimit_bytes);

  // What was accepted goes out in full, what was refused not at all; and the event is kept.
  control_.SetSThreshold(1);
  QByteArray received;
  std::thread reader([&] {
    received = pty_.Receive(accepted);
    pty_.Send("!");
  });
  EXPECT_EQ(control_.WaitForInput(kForEver_s), InputWait::Input);
  reader.join();
  EXPECT_EQ(received.size(), accepted);
  EXPECT_FALSE(pty_.Readable(0));
  EXPECT_EQ(control_.CommEvent(), kCommEventTransmitFull);
}

// Fills the driver and the port's own queue with "x".
class FullLineTest : public SerialControlTest {
 protected:
  void Fill() {
    while (control_.CommEvent() != kCommEventTransmitFull)
      control_.Output(QByteArray(8192, 'x'));
  }

  // Sends "new" and expects it behind no more of the old than the other end had already taken.
  void ExpectTheQueueIsGone() {
    control_.Output("new");
    QByteArray received;
    while (!received.endsWith("new")) {
      const QByteArray next = pty_.Receive(1);
      ASSERT_FALSE(next.isEmpty());
      received += next;
    }
    constexpr qsizetype kTerminalBuffer_bytes = 4096;
    EXPECT_LE(received.size(), kTerminalBuffer_bytes + 3);
    EXPECT_EQ(received.count('x'), received.size() - 3);
  }
};

// Would hang in a close that waits for the line.
TEST_F(FullLineTest, ClosingDoesNotWaitForUnsentCharacters) {
  for (int i = 0; i < 3; ++i) {
    Open();
    Fill();
    control_.Close();
  }
  Open();
  ExpectTheQueueIsGone();
}

TEST_F(FullLineTest, ClearsOutput) {
  Open();
  Fill();
  WatchEvents();
  EXPECT_TRUE(control_.ClearOutBuffer());
  control_.SetSThreshold(1);
  EXPECT_TRUE(events_.empty());  // dropped is not sent
  ExpectTheQueueIsGone();
}

// ---- waiting

TEST_F(SerialControlTest, WaitsAtLeastAsLongAsAsked) {
  Open();
  for (const double seconds : {0.0002, 0.003, 0.03}) {
    const auto start = MonotonicNow_ns();
    EXPECT_EQ(control_.WaitForInput(seconds), InputWait::TimedOut);
    EXPECT_GE(MonotonicNow_ns() - start, NanosecondsOf(seconds));
  }
}

TEST_F(SerialControlTest, ChecksOnceWithoutTime) {
  Open();
  for (const double seconds :
       {0.0, -1.0, -std::numeric_limits<double>::infinity(), std::numeric_limits<double>::quiet_NaN()}) {
    EXPECT_EQ(control_.WaitForInput(seconds), InputWait::TimedOut);
  }
  pty_.Send("x");
  ASSERT_EQ(control_.WaitForInput(2), InputWait::Input);
  EXPECT_EQ(control_.Input(), "x");
}

TEST_F(SerialControlTest, WaitEndsWithTheFirstCharacter) {
  Open();
  std::thread sender([&] {
    std::this_thread::sleep_for(std::chrono::milliseconds(20));
    pty_.Send("x");
  });
  EXPECT_EQ(control_.WaitForInput(kForEver_s), InputWait::Input);
  EXPECT_EQ(control_.Input(), "x");
  sender.join();
}

TEST_F(SerialControlTest, SignalsDoNotCutAWaitShort) {
  Open();
  const test::RepeatedSignal signal(5);
  const auto start = MonotonicNow_ns();
  EXPECT_EQ(control_.WaitForInput(0.06), InputWait::TimedOut);
  EXPECT_GE(MonotonicNow_ns() - start, 60'000'000);
  EXPECT_GT(signal.Count(), 1);
}

// A signal that comes more often than the wait lasts must not make it endless.
TEST_F(SerialControlTest, SignalsDoNotProlongAWait) {
  Open();
  const test::RepeatedSignal signal(3);
  EXPECT_EQ(control_.WaitForInput(0.01), InputWait::TimedOut);
}

TEST_F(SerialControlTest, WaitingTakesNoProcessorTime) {
  Open();
  const double before = ProcessorTime_s();
  EXPECT_EQ(control_.WaitForInput(0.3), InputWait::TimedOut);
  const double idle = ProcessorTime_s() - before;
  RecordProperty("idle_wait_us", static_cast<int>(idle * 1e6));
  EXPECT_LT(idle, 0.03);

  // The same with output that nobody reads.
  while (control_.CommEvent() != kCommEventTransmitFull)
    control_.Output(QByteArray(8192, 'x'));
  const double blocked = ProcessorTime_s();
  EXPECT_EQ(control_.WaitForInput(0.3), InputWait::TimedOut);
  EXPECT_LT(ProcessorTime_s() - blocked, 0.03);
}

// Nothing is lost between what the wait has found and what comes behind it.
TEST_F(SerialControlTest, WhatComesBehindAWaitIsTakenAfterIt) {
  Open();
  pty_.Send("a");
  ASSERT_EQ(control_.WaitForInput(2), InputWait::Input);
  pty_.Send("b");
  QByteArray taken = control_.Input();
  taken += Take(2 - taken.size());
  EXPECT_EQ(taken, "ab");
  // Without a wait Input() looks by itself.
  pty_.Send("c");
  QByteArray next;
  for (int i = 0; next.isEmpty() && i < 20'000; ++i) {
    next = control_.Input();
    std::this_thread::sleep_for(std::chrono::microseconds(100));
  }
  EXPECT_EQ(next, "c");
}

// ---- a line that goes away

TEST_F(SerialControlTest, WaitEndsWhenTheDeviceVanishes) {
  Open();
  std::thread unplug([&] {
    std::this_thread::sleep_for(std::chrono::milliseconds(20));
    pty_.Vanish();
  });
  EXPECT_EQ(control_.WaitForInput(kForEver_s), InputWait::LineGone);
  unplug.join();
  EXPECT_EQ(control_.WaitForInput(kForEver_s), InputWait::LineGone);
  EXPECT_EQ(control_.Fault(),
            pty_.Path() + u" ist während der Übertragung verschwunden. Stecker und Adapter prüfen."_s);
}

TEST_F(SerialControlTest, DeliversPendingInputBeforeTheEnd) {
  Open();
  pty_.Send("last words");
  ASSERT_EQ(control_.WaitForInput(2), InputWait::Input);
  while (control_.InBufferCount() < 10)
    ASSERT_NE(control_.WaitForInput(0.001), InputWait::LineGone);
  pty_.Vanish();
  EXPECT_EQ(control_.InBufferCount(), 10);
  EXPECT_EQ(control_.WaitForInput(kForEver_s), InputWait::Input);
  EXPECT_EQ(control_.Input(), "last words");
  EXPECT_EQ(control_.WaitForInput(kForEver_s), InputWait::LineGone);
}

// Opening a port raises it, and it is to be up during a telegram only.
TEST_F(SerialControlTest, RtsIsDownAfterOpening) {
  Open();
  EXPECT_EQ(driver_->rts, std::vector<bool>{false});
  control_.Close();
  Open();
  EXPECT_EQ(driver_->rts, (std::vector<bool>{false, false}));
}

TEST_F(SerialControlTest, RtsFollowsItsDirection) {
  Open();
  driver_->rts.clear();
  EXPECT_TRUE(control_.SetRts(true));
  EXPECT_EQ(driver_->rts, std::vector<bool>{true});
  EXPECT_TRUE(control_.SetRts(false));
  EXPECT_EQ(driver_->rts, (std::vector<bool>{true, false}));
}

TEST_F(SerialControlTest, RtsIsSetOnlyWhereItChanges) {
  Open();
  ASSERT_TRUE(control_.SetRts(true));
  driver_->rts.clear();
  EXPECT_TRUE(control_.SetRts(true));
  EXPECT_TRUE(driver_->rts.empty());
  driver_->rtsError = EIO;
  EXPECT_FALSE(control_.SetRts(false));
  EXPECT_FALSE(control_.SetRts(false)) << "what was refused is not taken for done";
  EXPECT_EQ(driver_->rts.size(), 2U);
}

// A pseudo-terminal has no such line; a real port that refuses says so, and can be used all the same.
TEST_F(SerialControlTest, APortWithoutRtsCanBeUsed) {
  for (const int error : {ENOTTY, EINVAL}) {
    driver_->rtsError = error;
    Open();
    EXPECT_TRUE(control_.SetRts(true));
  }
  driver_->rtsError = EIO;
  Open();
  EXPECT_FALSE(control_.SetRts(true));
}

TEST_F(SerialControlTest, AVanishedDeviceFailsEverythingAndCanBeClosed) {
  Open();
  pty_.Vanish();
  driver_->rtsError = EIO;
  control_.SetSThreshold(1);
  control_.Output("x");
  EXPECT_FALSE(control_.SetRts(true));
  EXPECT_FALSE(control_.ClearInBuffer());
  EXPECT_FALSE(control_.ClearOutBuffer());
  EXPECT_EQ(control_.InBufferCount(), 0);
  EXPECT_EQ(control_.WaitForInput(kForEver_s), InputWait::LineGone);
  EXPECT_EQ(control_.CommEvent(), kCommEventDeviceControlBlock);
  EXPECT_TRUE(control_.IsOpen());
  control_.Close();
  EXPECT_FALSE(control_.IsOpen());
}

TEST_F(SerialControlTest, OutputIntoAVanishedLineIsNotReportedAsSent) {
  Open();
  WatchEvents();
  control_.SetSThreshold(1);
  pty_.Vanish();
  control_.Output("x");
  EXPECT_TRUE(events_.empty());
}

// ---- line errors

struct CountedError {
  int LineErrorCounts::*counter;
  int event;
};

class CountedErrorTest : public SerialControlTest, public testing::WithParamInterface<CountedError> {};

TEST_P(CountedErrorTest, IsReported) {
  // Errors from before the opening do not count.
  driver_->counts = LineErrorCounts{7, 7, 7, 7, 7};
  Open();
  EXPECT_EQ(control_.CommEvent(), kCommEventNone);
  *driver_->counts.*GetParam().counter += 1;
  EXPECT_EQ(control_.CommEvent(), GetParam().event);
  EXPECT_EQ(control_.CommEvent(), GetParam().event);

  // Kept after closing, until the next opening.
  control_.Close();
  EXPECT_EQ(control_.CommEvent(), GetParam().event);
  Open();
  EXPECT_EQ(control_.CommEvent(), kCommEventNone);
}

TEST_P(CountedErrorTest, IsNotReplacedByTheEndOfSending) {
  Open();
  *driver_->counts.*GetParam().counter += 1;
  ASSERT_EQ(control_.CommEvent(), GetParam().event);
  WatchEvents();
  control_.SetSThreshold(1);
  control_.Output("x");
  EXPECT_EQ(events_, std::vector<int>{GetParam().event});
  EXPECT_EQ(control_.CommEvent(), GetParam().event);
}

TEST_P(CountedErrorTest, ReplacesTheEndOfSending) {
  Open();
  control_.SetSThreshold(1);
  control_.Output("x");
  ASSERT_EQ(control_.CommEvent(), kCommEventSendDone);
  *driver_->counts.*GetParam().counter += 1;
  EXPECT_EQ(control_.CommEvent(), GetParam().event);
}

TEST_P(CountedErrorTest, TellsWhatAMarkMeans) {
  Open();
  WatchEvents();
  *driver_->counts.*GetParam().counter += 1;
  Deliver(QByteArray("1\xFF\0A2", 5), 3);
  EXPECT_EQ(events_, std::vector<int>{GetParam().event});
}

INSTANTIATE_TEST_SUITE_P(All, CountedErrorTest,
                         testing::Values(CountedError{&LineErrorCounts::brk, kCommEventBreak},
                                         CountedError{&LineErrorCounts::frame, kCommEventFraming},
                                         CountedError{&LineErrorCounts::overrun, kCommEventOverrun},
                                         CountedError{&LineErrorCounts::buf_overrun,
                                                      kCommEventReceiveOverflow},
                                         CountedError{&LineErrorCounts::parity, kCommEventParity}),
                         [](const auto& row) { return "Event" + std::to_string(row.param.event); });

TEST_F(SerialControlTest, TheLatestLineErrorIsKept) {
  Open();
  driver_->counts->parity += 1;
  EXPECT_EQ(control_.CommEvent(), kCommEventParity);
  driver_->counts->frame += 3;
  EXPECT_EQ(control_.CommEvent(), kCommEventFraming);
  EXPECT_EQ(control_.CommEvent(), kCommEventFraming);
  // Of errors at the same time the break explains the others.
  *driver_->counts = LineErrorCounts{9, 9, 9, 9, 9};
  EXPECT_EQ(control_.CommEvent(), kCommEventBreak);
}

// Counters are whole numbers of the driver that wrap around.
TEST_F(SerialControlTest, AnyChangeOfACounterCounts) {
  driver_->counts->parity = std::numeric_limits<int>::max();
  Open();
  driver_->counts->parity = std::numeric_limits<int>::min();
  EXPECT_EQ(control_.CommEvent(), kCommEventParity);
}

TEST_F(SerialControlTest, AFailedOpeningClearsTheEvent) {
  Open();
  driver_->counts->brk += 1;
  ASSERT_EQ(control_.CommEvent(), kCommEventBreak);
  EXPECT_FALSE(control_.Open(3, u"bad"_s));
  EXPECT_EQ(control_.CommEvent(), kCommEventNone);
}

// Many drivers count nothing, or not everything; the marks then tell what they can.
class MarkTest : public SerialControlTest, public testing::WithParamInterface<bool> {
 protected:
  MarkTest() {
    if (!GetParam()) driver_->counts.reset();
  }
};

TEST_P(MarkTest, ADamagedCharacterIsAParityError) {
  Open();
  WatchEvents();
  pty_.LetMarksThrough();
  pty_.Send(QByteArray("1\xFF\0A2", 5));
  EXPECT_EQ(Take(3), "1?2");
  EXPECT_EQ(control_.CommEvent(), kCommEventParity);
  EXPECT_EQ(events_, std::vector<int>{kCommEventParity});
}

TEST_P(MarkTest, WithoutParityItIsAFramingError) {
  ASSERT_TRUE(control_.Open(3, u"9600,n,8,1"_s));
  Deliver(QByteArray("1\xFF\0A2", 5), 3);
  EXPECT_EQ(control_.CommEvent(), kCommEventFraming);
}

TEST_P(MarkTest, ABreakIsNoCharacter) {
  Open();
  WatchEvents();
  Deliver(QByteArray("\xFF\0\0x", 4), 1);
  EXPECT_EQ(control_.CommEvent(), kCommEventBreak);
}

// The wait goes on, as no character waits.
TEST_P(MarkTest, ABreakAloneDoesNotEndTheWait) {
  Open();
  pty_.LetMarksThrough();
  pty_.Send(QByteArray("\xFF\0\0", 3));
  EXPECT_EQ(control_.WaitForInput(0.05), InputWait::TimedOut);
  EXPECT_EQ(control_.CommEvent(), kCommEventBreak);
}

TEST_P(MarkTest, MarksInPieces) {
  Open();
  pty_.LetMarksThrough();
  for (const char c : QByteArray("1\xFF\0A2\xFF\xFF", 7)) {
    pty_.Send(QByteArray(1, c));
    (void)control_.WaitForInput(0.005);
    (void)control_.InBufferCount();
  }
  EXPECT_EQ(Take(4), "1?2\xFF");
  EXPECT_EQ(control_.CommEvent(), kCommEventParity);
}

TEST_P(MarkTest, HalfAMarkDoesNotOutlastTheConnection) {
  Open();
  pty_.LetMarksThrough();
  pty_.Send(QByteArray("1\xFF\0", 3));
  ASSERT_EQ(Take(1), "1");
  (void)control_.WaitForInput(0.02);
  Open();
  pty_.Send("A");
  EXPECT_EQ(Take(1), "A");
  EXPECT_EQ(control_.CommEvent(), kCommEventNone);
}

INSTANTIATE_TEST_SUITE_P(Counters, MarkTest, testing::Values(true, false),
                         [](const auto& still) { return still.param ? "StandingStill" : "Absent"; });

// Where the driver has counted a framing error, its mark does not make a parity error of it.
TEST_F(SerialControlTest, CountersOutrankMarks) {
  Open();
  driver_->counts->frame += 1;
  ASSERT_EQ(control_.CommEvent(), kCommEventFraming);
  Deliver(QByteArray("1\xFF\0A2", 5), 3);
  EXPECT_EQ(control_.CommEvent(), kCommEventFraming);
}

TEST_F(SerialControlTest, AsksTheCountersOnlyWhenNeeded) {
  Open();
  EXPECT_EQ(driver_->reads, 1);
  control_.Output("x");
  pty_.Send("y");
  EXPECT_EQ(Take(1), "y");
  EXPECT_EQ(driver_->reads, 1);
  WatchEvents();
  control_.SetSThreshold(1);
  EXPECT_EQ(events_, std::vector<int>{kCommEventSendDone});
  EXPECT_EQ(driver_->reads, 1) << "all sent is all that this event tells";
}

// Asked once for each opening: a driver does not begin to count in between.
TEST_F(SerialControlTest, DoesNotAskAgainWhereNothingIsCounted) {
  driver_->counts.reset();
  Open();
  EXPECT_EQ(control_.CommEvent(), kCommEventNone);
  EXPECT_EQ(driver_->reads, 1);
  Open();
  EXPECT_EQ(driver_->reads, 2);
}

// A pseudo-terminal's driver neither counts nor has modem lines.
TEST(SystemSerialDriver, SaysWhatADriverDoesNotHave) {
  const test::PseudoTerminal pty;
  SystemSerialDriver driver;
  EXPECT_FALSE(driver.ErrorCounts(pty.Master()).has_value());
  EXPECT_FALSE(driver.ErrorCounts(-1).has_value());
  EXPECT_NE(driver.SetRts(pty.Master(), true), 0);
  EXPECT_EQ(driver.SetRts(-1, false), EBADF);
}

}  // namespace
}  // namespace kalivor::platform
