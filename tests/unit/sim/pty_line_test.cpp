// The simulated controller at a real pseudo-terminal.
#include "sim/PtyLine.h"

#include <sys/file.h>
#include <sys/ioctl.h>

#include <QDir>
#include <QFileInfo>
#include <QTemporaryDir>
#include <csignal>
#include <future>

#include "fakes/QtPrinters.h"
#include "sim/Telegram.h"
#include "unit/sim/running.h"

using namespace Qt::StringLiterals;

namespace kalivor::sim {
namespace {

const QByteArray kRequest = Sealed("#0102R1F00");
const QByteArray kReply = Sealed("10102R0ABC");
const QByteArray kVersionQuery = Sealed("#0102v00");
const QByteArray kVersionReply = Sealed("10102vHZL-0078");

/// A line that answers in a thread until the test ends.
class PtyLineTest : public ::testing::Test {
 protected:
  Memory memory;
  Controller controller{memory, 1, FixedText<2>(u"WR"_s), "HZL-0078"};
  Faults faults;
  StopEvent stop;
  std::unique_ptr<LineModel> model;
  std::unique_ptr<PtyLine> line;
  QString device;
  std::future<PtyLine::End> end;

  void SetUp() override { memory.SetWord(0x1F00, 0x0ABC); }

  void Start(const LineOptions& options = {}) {
    model = std::make_unique<LineModel>(controller, faults, options);
    line = std::make_unique<PtyLine>(*model, stop.Descriptor());
    ASSERT_EQ(line->Open(), QString());
    device = line->DeviceName();
    end = std::async(std::launch::async, [this] { return line->Run(); });
  }

  void TearDown() override {
    if (!end.valid()) return;
    stop.Signal();
    EXPECT_EQ(end.get(), PtyLine::End::Stopped);
  }
};

TEST_F(PtyLineTest, AnswersARequest) {
  Start();
  const PcPort pc(device);
  pc.Send(kRequest);
  EXPECT_EQ(pc.Receive(kReply.size()), kReply);
}

TEST_F(PtyLineTest, AnswersWhenTheDeviceIsOpenedForEveryTelegram) {
  Start();
  for (int i = 0; i < 200; ++i) {
    const PcPort pc(device, i % 2 == 0 ? B9600 : B19200);
    pc.Send(i % 3 == 0 ? kVersionQuery : kRequest);
    const QByteArray& expected = i % 3 == 0 ? kVersionReply : kReply;
    ASSERT_EQ(pc.Receive(expected.size()), expected) << i;
  }
}

TEST_F(PtyLineTest, PassesAllBytesUnchanged) {
  Start();
  model->OnResponse = [](const QByteArray& /*request*/, Response& response) {
    response.chunks[0].bytes.clear();
    for (int byte = 0; byte < 128; ++byte)
      response.chunks[0].bytes += static_cast<char>(byte);
  };
  const PcPort pc(device);
  pc.Send(kRequest);
  QByteArray expected;
  for (int byte = 0; byte < 128; ++byte)
    expected += static_cast<char>(byte);
  EXPECT_EQ(pc.Receive(128), expected);
}

TEST_F(PtyLineTest, DoesNotDisturbTheLocksOfThePc) {
  Start();
  for (int i = 0; i < 3; ++i) {
    const PcPort pc(device);
    EXPECT_EQ(flock(pc.Descriptor(), LOCK_EX | LOCK_NB), 0);
    EXPECT_EQ(ioctl(pc.Descriptor(), TIOCEXCL), 0);
    pc.Send(kRequest);
    EXPECT_EQ(pc.Receive(kReply.size()), kReply);
    EXPECT_EQ(ioctl(pc.Descriptor(), TIOCNXCL), 0);
  }
}

TEST_F(PtyLineTest, OpensTheDeviceAgainAfterAPcThatWasKilled) {
  model = std::make_unique<LineModel>(controller, faults);
  line = std::make_unique<PtyLine>(*model, stop.Descriptor(), 0.001);
  ASSERT_EQ(line->Open(), QString());
  device = line->DeviceName();
  const PcPort watcher(device);
  end = std::async(std::launch::async, [this] { return line->Run(); });
  {
    const PcPort pc(device);
    EXPECT_EQ(ioctl(pc.Descriptor(), TIOCEXCL), 0);
    pc.Send(kRequest);
    EXPECT_EQ(pc.Receive(kReply.size()), kReply);
  }
  int exclusive = 1;
  for (int tries = 0; exclusive != 0 && tries < 20000; ++tries) {
    EXPECT_EQ(ioctl(watcher.Descriptor(), TIOCGEXCL, &exclusive), 0);
    if (exclusive != 0) usleep(1000);
  }
  EXPECT_EQ(exclusive, 0);
}

TEST_F(PtyLineTest, ReadsTheRateOfThePc) {
  Start({19200, false, true});
  {
    const PcPort pc(device, B9600);
    pc.Send(kVersionQuery);
    EXPECT_EQ(pc.Receive(kVersionQuery.size()), kVersionQuery);  // the echo knows no rates
  }
  {
    const PcPort pc(device, B19200);
    pc.Send(kRequest);
    EXPECT_EQ(pc.Receive(kRequest.size() + kReply.size()), kRequest + kReply);
  }
  stop.Signal();
  EXPECT_EQ(end.get(), PtyLine::End::Stopped);
  EXPECT_EQ(faults.Exchanges(), 1);
}

TEST_F(PtyLineTest, CarriesPacedBytesWithEcho) {
  Start({0, true, true});
  const PcPort pc(device);
  pc.Send(kRequest);
  EXPECT_EQ(pc.Receive(kRequest.size() + kReply.size()), kRequest + kReply);
}

TEST_F(PtyLineTest, LosesNoRequestThatComesDuringAReply) {
  Start({0, true, false});
  const PcPort pc(device);
  pc.Send(kRequest);
  EXPECT_EQ(pc.Receive(3), kReply.left(3));
  pc.Send(kVersionQuery);
  EXPECT_EQ(pc.Receive(kReply.size() - 3 + kVersionReply.size()), kReply.mid(3) + kVersionReply);
}

TEST_F(PtyLineTest, SurvivesAPcThatNeverReads) {
  Start({0, false, true});
  {
    const PcPort pc(device);
    for (int i = 0; i < 400; ++i) {
      if (write(pc.Descriptor(), kRequest.constData(), static_cast<std::size_t>(kRequest.size())) < 0) break;
    }
  }
  PcPort pc(device);
  pc.Send(kVersionQuery);
  // What was written before may still be answered first.
  QByteArray bytes;
  while (!bytes.endsWith(kVersionReply)) {
    const QByteArray more = pc.Receive(1);
    ASSERT_FALSE(more.isEmpty());
    bytes += more;
  }
}

TEST_F(PtyLineTest, HangsUpWhenUnplugged) {
  faults.Plan(1, {FaultKind::Unplug, 0, {}});
  Start();
  const PcPort pc(device);
  pc.Send(kRequest);
  EXPECT_TRUE(pc.HangsUp());
  EXPECT_EQ(end.get(), PtyLine::End::Unplugged);
  EXPECT_EQ(open(QFile::encodeName(device).constData(), O_RDWR | O_NOCTTY), -1);
}

TEST(StopSignals, MakeTheirDescriptorReadable) {
  sigset_t before{};
  ASSERT_EQ(pthread_sigmask(SIG_SETMASK, nullptr, &before), 0);
  for (const int signal : {SIGINT, SIGTERM}) {
    const int descriptor = StopSignalDescriptor();
    pollfd watched{descriptor, POLLIN, 0};
    EXPECT_EQ(poll(&watched, 1, 0), 0);
    EXPECT_EQ(raise(signal), 0);
    EXPECT_EQ(poll(&watched, 1, 0), 1);
    // Taken here, as it would end the test when the mask is restored.
    sigset_t taken{};
    sigemptyset(&taken);
    sigaddset(&taken, signal);
    int number = 0;
    EXPECT_EQ(sigwait(&taken, &number), 0);
    EXPECT_EQ(number, signal);
    close(descriptor);
  }
  EXPECT_EQ(pthread_sigmask(SIG_SETMASK, &before, nullptr), 0);
}

class PtyLinkTest : public ::testing::Test {
 protected:
  Memory memory;
  Controller controller{memory, 1, FixedText<2>(u"WR"_s), "HZL-0078"};
  Faults faults;
  LineModel model{controller, faults};
  PtyLine line{model, -1};
  QTemporaryDir folder;
  QString path = folder.filePath(u"regler"_s);

  void SetUp() override { ASSERT_EQ(line.Open(), QString()); }
};

TEST_F(PtyLinkTest, LeadsToTheDeviceUntilTheLineIsClosed) {
  EXPECT_EQ(line.Link(path), QString());
  EXPECT_EQ(QFile::symLinkTarget(path), line.DeviceName());
  line.Close();
  EXPECT_FALSE(QFileInfo(path).isSymLink());
  EXPECT_EQ(line.DeviceName(), QString());
}

TEST_F(PtyLinkTest, ReplacesASymbolicLink) {
  ASSERT_TRUE(QFile::link(u"/nowhere"_s, path));
  EXPECT_EQ(line.Link(path), QString());
  EXPECT_EQ(QFile::symLinkTarget(path), line.DeviceName());
  EXPECT_EQ(QDir(folder.path()).entryList(QDir::AllEntries | QDir::System | QDir::NoDotAndDotDot),
            QStringList{u"regler"_s});
}

TEST_F(PtyLinkTest, RefusesToReplaceAnythingElse) {
  QFile file(path);
  ASSERT_TRUE(file.open(QIODevice::WriteOnly));
  file.close();
  EXPECT_EQ(line.Link(path), path + u" ist keine symbolische Verknüpfung und wird nicht ersetzt."_s);
  line.Close();
  EXPECT_TRUE(QFileInfo(path).isFile());
}

TEST_F(PtyLinkTest, ReportsAFolderThatDoesNotExist) {
  const QString lost = folder.filePath(u"fehlt/regler"_s);
  EXPECT_EQ(line.Link(lost),
            u"Die Verknüpfung "_s + lost + u" kann nicht angelegt werden: Der Ordner ist nicht vorhanden."_s);
}

TEST_F(PtyLinkTest, LeavesALinkAloneThatSomebodyElseHasTaken) {
  EXPECT_EQ(line.Link(path), QString());
  ASSERT_TRUE(QFile::remove(path));
  ASSERT_TRUE(QFile::link(u"/nowhere"_s, path));
  line.Close();
  EXPECT_TRUE(QFileInfo(path).isSymLink());
}

}  // namespace
}  // namespace kalivor::sim
