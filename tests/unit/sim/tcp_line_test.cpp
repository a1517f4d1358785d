// The simulated controller at a network connection on this computer.
#include "sim/TcpLine.h"

#include <gtest/gtest.h>
#include <QCoreApplication>
#include <QTcpSocket>
#include <functional>
#include <thread>

#include "fakes/QtPrinters.h"
#include "sim/Telegram.h"

using namespace Qt::StringLiterals;

namespace kalivor::sim {
namespace {

constexpr int kLong_ms = 20000;  // only a failing test waits for so long
const QByteArray kRequest = Sealed("#0102R1F00");
const QByteArray kReply = Sealed("10102R0ABC");

// The PC's end of the connection.
class Pc {
 public:
  explicit Pc(const QString& device) {
    socket_.connectToHost(u"127.0.0.1"_s, static_cast<quint16>(device.section(u':', -1).toInt()));
    EXPECT_TRUE(socket_.waitForConnected(kLong_ms));
  }
  void Send(const QByteArray& bytes) {
    socket_.write(bytes);
    EXPECT_TRUE(socket_.waitForBytesWritten(kLong_ms));
  }
  QByteArray Receive(qsizetype count) {
    QByteArray bytes;
    while (bytes.size() < count && (socket_.bytesAvailable() > 0 || socket_.waitForReadyRead(kLong_ms)))
      bytes += socket_.read(count - bytes.size());
    return bytes;
  }
  bool HangsUp() {
    return socket_.state() == QAbstractSocket::UnconnectedState || socket_.waitForDisconnected(kLong_ms);
  }

 private:
  QTcpSocket socket_;
};

class TcpLineTest : public ::testing::Test {
 protected:
  void SetUp() override { memory.SetWord(0x1F00, 0x0ABC); }

  /// Lets the line answer while `talk` goes on in another thread, and then asks for its end.
  Line::End RunWith(const std::function<void(const QString& device)>& talk) {
    std::thread pc([&talk, device = line.DeviceName()] {
      talk(device);
      QMetaObject::invokeMethod(QCoreApplication::instance(), &QCoreApplication::quit, Qt::QueuedConnection);
    });
    const Line::End end = line.Run();
    pc.join();
    return end;
  }

  int argc = 1;
  char name[5] = "test";
  char* argv[2] = {name, nullptr};
  QCoreApplication application{argc, argv};
  Memory memory;
  Controller controller{memory, 1, FixedText<2>(u"WR"_s), "HZL-0078"};
  Faults faults;
  LineModel model{controller, faults};
  TcpLine line{model, 0, 0};
};

TEST_F(TcpLineTest, NamesWhereItIsReachedWhileItIsOpen) {
  EXPECT_EQ(line.DeviceName(), u""_s);
  ASSERT_EQ(line.Open(), u""_s);
  const QString device = line.DeviceName();
  EXPECT_TRUE(device.startsWith(u"socket://127.0.0.1:"_s)) << device.toStdString();
  line.Close();
  EXPECT_EQ(line.DeviceName(), u""_s);
}

TEST_F(TcpLineTest, RefusesAPortThatIsTakenAndALink) {
  ASSERT_EQ(line.Open(), u""_s);
  const auto port = static_cast<quint16>(line.DeviceName().section(u':', -1).toInt());
  TcpLine second(model, 0, port);
  EXPECT_EQ(second.Open(),
            u"Der Port %1 kann nicht angeboten werden: Er ist belegt oder nicht erlaubt."_s.arg(port));
  EXPECT_EQ(line.Link(u"regler"_s), u"Eine Netzverbindung hat keine Verknüpfung: regler"_s);
}

TEST_F(TcpLineTest, AnswersOnePcAfterTheOther) {
  ASSERT_EQ(line.Open(), u""_s);
  const Line::End end = RunWith([](const QString& device) {
    for (int i = 0; i < 3; ++i) {
      Pc pc(device);
      pc.Send(kRequest);
      EXPECT_EQ(pc.Receive(kReply.size()), kReply);
    }
  });
  EXPECT_EQ(end, Line::End::Stopped);
}

TEST_F(TcpLineTest, BelongsToThePcThatCameLast) {
  ASSERT_EQ(line.Open(), u""_s);
  (void)RunWith([](const QString& device) {
    Pc first(device);
    first.Send(kRequest);
    EXPECT_EQ(first.Receive(kReply.size()), kReply);
    Pc second(device);
    EXPECT_TRUE(first.HangsUp());
    second.Send(kRequest);
    EXPECT_EQ(second.Receive(kReply.size()), kReply);
  });
}

TEST_F(TcpLineTest, SendsALateReplyAtItsTime) {
  faults.Add(*ParseFault(u"late:50"_s));
  ASSERT_EQ(line.Open(), u""_s);
  (void)RunWith([](const QString& device) {
    Pc pc(device);
    const double start = Line::Seconds();
    pc.Send(kRequest);
    EXPECT_EQ(pc.Receive(kReply.size()), kReply);
    EXPECT_GE(Line::Seconds() - start, 0.05);
  });
}

TEST_F(TcpLineTest, HangsUpWhenUnplugged) {
  faults.Add(*ParseFault(u"unplug"_s));
  ASSERT_EQ(line.Open(), u""_s);
  const Line::End end = RunWith([](const QString& device) {
    Pc pc(device);
    pc.Send(kRequest);
    EXPECT_TRUE(pc.HangsUp());
  });
  EXPECT_EQ(end, Line::End::Unplugged);
}

}  // namespace
}  // namespace kalivor::sim
