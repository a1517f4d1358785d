// Every text in which an exchange can fail, over a real terminal device.
#include <sys/eventfd.h>
#include <unistd.h>

#include <thread>

#include "comm/COM_T.h"
#include "fakes/QtPrinters.h"
#include "platform/posix/PosixSerialControl.h"
#include "platform/posix/SystemClock.h"
#include "sim/PtyLine.h"

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace kalivor::test {
namespace {

/// A station that sends the given bytes as its reply to anything.
class Station {
 public:
  explicit Station(const QByteArray& reply) : stop_(::eventfd(0, EFD_CLOEXEC)) {
    model_.OnResponse = [reply](const QByteArray&, sim::Response& response) {
      response = {};
      if (!reply.isEmpty()) response.chunks = {{0, reply}};
    };
    EXPECT_EQ(line_.Open(), QString());
    thread_ = std::thread([this] { (void)line_.Run(); });
  }

  ~Station() {
    const quint64 one = 1;
    EXPECT_EQ(::write(stop_, &one, sizeof one), static_cast<ssize_t>(sizeof one));
    thread_.join();
    ::close(stop_);
  }
  Station(const Station&) = delete;
  Station& operator=(const Station&) = delete;

  [[nodiscard]] QString Device() const { return line_.DeviceName(); }

 private:
  sim::Memory memory_;
  sim::Controller controller_{memory_, 1, u"WR"_s, *sim::VersionPayload(u"AB1-123.4"_s)};
  sim::Faults faults_;
  sim::LineModel model_{controller_, faults_};
  int stop_;
  sim::PtyLine line_{model_, stop_};
  std::thread thread_;
};

/// A driver that has counted one more error at every look but the first.
class ErringDriver final : public platform::SerialDriver {
 public:
  explicit ErringDriver(int platform::LineErrorCounts::*counter) : counter_(counter) {}

  int SetRts(int, bool) override { return 0; }
  std::optional<platform::LineErrorCounts> ErrorCounts(int) override {
    if (counter_ != nullptr) counts_.*counter_ += looks_++ > 0 ? 1 : 0;
    return counts_;
  }

 private:
  int platform::LineErrorCounts::*counter_;
  platform::LineErrorCounts counts_;
  int looks_ = 0;
};

/// The PC at `device`, sending one version query.
QString Ask(const QString& device, int platform::LineErrorCounts::*counter = nullptr) {
  const Module1 module;
  platform::SystemClock clock;
  TH timers(clock);
  platform::PosixSerialControl control([device](int) { return device; },
                                       std::make_unique<ErringDriver>(counter));
  COM_T_frm host(module, control, timers);
  EXPECT_EQ(host.ConfigurePort(kSlot, kControllerProtocol, 1, 3, kSettings9600.toString()), QString());
  return COM_T(host).Transact(kSlot, u"v00"_s, true);
}

struct Exchange {
  QByteArray reply;
  int platform::LineErrorCounts::*counter;
  QString result;
};

void PrintTo(const Exchange& exchange, std::ostream* out) {
  *out << exchange.result.toStdString();
}

class TelegramErrors : public testing::TestWithParam<Exchange> {};

TEST_P(TelegramErrors, HaveTheirText) {
  const Station station(GetParam().reply);
  EXPECT_EQ(Ask(station.Device(), GetParam().counter), GetParam().result);
}

using Counts = platform::LineErrorCounts;

INSTANTIATE_TEST_SUITE_P(
    Each, TelegramErrors,
    testing::Values(
        Exchange{"10102vHZL-007883\r", nullptr, u"ERROR:  Checksumme Falsch"_s},
        Exchange{"10102R04D220\r", nullptr, u"04D2"_s},
        // The echo of the query in front of the reply.
        Exchange{"#0102v00BC\r10102R04D220\r", nullptr, u"04D2"_s},
        Exchange{"", nullptr, u"ERROR: kein Empfang"_s},
        Exchange{"10102R", nullptr, u"ERROR: ungültiger Empfang:  (10102R)."_s},
        Exchange{"1010\r", nullptr, u"ERROR: unvollständige Antwort: 1010\r"_s},
        Exchange{"10102?0297\r", nullptr, u"ERROR:  Code 02 Falscher Serialmode"_s},
        Exchange{"10102?0400\r", nullptr, u"ERROR:  Code 04 Falsches Kennzeichen"_s},
        Exchange{"10102?0500\r", nullptr, u"ERROR:  Code 05 Falsche Anzahl Parameter"_s},
        Exchange{"10102?0600\r", nullptr, u"ERROR:  Code 06 Falsches Zeichen"_s},
        Exchange{"10102?0700\r", nullptr, u"ERROR:  Code 07 Falsche Datensatznummer"_s},
        Exchange{"10102?0300\r", nullptr, u"ERROR:  Code 03"_s},
        Exchange{"", &Counts::brk,
                 u"ERROR: kein Empfang ()  Es wurde ein Anhaltesignal (Break-Signal) empfangen."_s},
        Exchange{"", &Counts::frame,
                 u"ERROR: kein Empfang ()  Datenblockfehler (Framing Error). Die Hardware hat einen "
                 "Datenblockfehler entdeckt."_s},
        Exchange{
            "1010", &Counts::overrun,
            u"ERROR: ungültiger Empfang:  (1010). (1010)  Anschlußüberlauf (Port Overrun). Es ist ein "
            u"Zeichen "
            "verlorengegangen, da die Hardware nicht in der Lage war, dieses Zeichen zu lesen, bevor das "
            "nächste Zeichen eintraf."_s},
        Exchange{"", &Counts::buf_overrun,
                 u"ERROR: kein Empfang ()  Überlauf des Empfangspuffers (Receive Buffer Overflow). Der "
                 "Empfangspuffer ist voll."_s},
        Exchange{
            "", &Counts::parity,
            u"ERROR: kein Empfang ()  Paritätsfehler (Parity Error). Die Hardware hat einen Paritätsfehler "
            "entdeckt."_s}));

TEST(TelegramErrors, AFullSendBufferIsSaid) {
  const Station station("");
  const Module1 module;
  platform::SystemClock clock;
  TH timers(clock);
  platform::PosixSerialControl control([&station](int) { return station.Device(); });
  COM_T_frm host(module, control, timers);
  EXPECT_EQ(host.ConfigurePort(kSlot, kControllerProtocol, 1, 3, kSettings9600.toString()), QString());
  const QString frame = QString(u'x').repeated(platform::PosixSerialControl::kOutputLimit_bytes + 100'000);
  EXPECT_EQ(
      COM_T(host).SendReceive(kSlot, frame, true),
      u"ERROR: kein Empfang ()  Sendepuffer voll (Transmit Buffer Full). Bei dem Versuch, ein Zeichen in die "
      "Warteschlange aufzunehmen, wurde festgestellt, daß der Sendepuffer voll war."_s);
}

TEST(TelegramErrors, AnAbsentPortHasTwoTexts) {
  const Module1 module;
  platform::SystemClock clock;
  TH timers(clock);
  platform::PosixSerialControl control([](int) { return QString(); });
  COM_T_frm host(module, control, timers);
  EXPECT_EQ(
      host.ConfigurePort(kSlot, kControllerProtocol, 1, 3, kSettings9600.toString()),
      u"ERROR: COM 3 nicht verfügbar. Ändern Sie die 'CommPort'-Einstellung in einen anderen Anschluß."_s);
  EXPECT_EQ(COM_T(host).Transact(kSlot, u"v00"_s, true), u"ERROR: COM 3 nicht verfügber"_s);
}

TEST(TelegramErrors, NoReplyIsWantedAndNoneIsMissed) {
  const Station station("");
  const Module1 module;
  platform::SystemClock clock;
  TH timers(clock);
  platform::PosixSerialControl control([&station](int) { return station.Device(); });
  COM_T_frm host(module, control, timers);
  EXPECT_EQ(host.ConfigurePort(kSlot, kControllerProtocol, 1, 3, kSettings9600.toString()), QString());
  EXPECT_EQ(COM_T(host).Transact(kSlot, u"v00"_s, false), QString());
}

}  // namespace
}  // namespace kalivor::test
