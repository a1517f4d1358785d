// The PC's trace and the simulated controller's own, telegram by telegram, over thousands of random
// exchanges.
#include <gtest/gtest.h>

#include <array>
#include <random>

#include "base/su.h"
#include "core/TelegramText.h"
#include "fakes/Installation.h"

using namespace Qt::StringLiterals;

namespace kalivor {
namespace {

constexpr int kExchanges = 10000;

/// What one side has seen of an exchange.
struct Seen {
  QString request;
  QString requestText;
  QString reply;
  QString replyText;

  bool operator==(const Seen&) const = default;
  friend void PrintTo(const Seen& seen, std::ostream* out) {
    for (const QString& text : {seen.request, seen.requestText, seen.reply, seen.replyText})
      *out << text.toStdString() << " | ";
  }
};

// What comes back is what the controller has sent: nothing is lost on the line, late or echoed.
constexpr sim::FaultKind kKept[] = {
    sim::FaultKind::Silent,     sim::FaultKind::LostByte,    sim::FaultKind::DoubledByte,
    sim::FaultKind::FlippedBit, sim::FaultKind::BadChecksum, sim::FaultKind::Split,
    sim::FaultKind::Noise,      sim::FaultKind::Error,       sim::FaultKind::WrongLength,
    sim::FaultKind::EchoOnly,   sim::FaultKind::ForeignReply};

class Comparison {
 public:
  Comparison() {
    pc_.AddFiles();
    pc_.Start();
    reader_ = TelegramReader(pc_.module);
    pc_.host.Exchanges.Settle();
    pc_.host.Exchanges.OnSettled = [this](const Exchange& exchange) {
      ofPc.push_back({ShownCharacters(exchange.request), reader_.RequestText(exchange),
                      ShownCharacters(exchange.received), reader_.ReplyText(exchange)});
      ++ends[static_cast<std::size_t>(exchange.end)];
      const bool usable =
          reader_.ReplyText(exchange.request.View(), exchange.received.View(), exchange.version).usable;
      // What the text says and what the program did with the reply are the same.
      EXPECT_EQ(usable, exchange.end == ExchangeEnd::Good) << ::testing::PrintToString(ofPc.back());
    };
    pc_.model.OnTrace = [this](const sim::TraceEvent& event) { Note(event); };
  }

  void Run(quint32 seed) {
    std::mt19937 random(seed);
    const auto below = [&random](unsigned bound) { return static_cast<int>(random() % bound); };
    (void)pc_.host.ConfigurePort(kSlot, kControllerProtocol, 1, 1, kSettings9600.toString());
    while (static_cast<int>(ofPc.size()) < kExchanges) {
      if (below(4) == 0) {
        const sim::FaultKind kind = kKept[below(std::size(kKept))];
        pc_.faults.Plan(pc_.faults.Exchanges() + 1, {kind, 0, kind == sim::FaultKind::Error ? "07" : ""});
      }
      // Two of three where a parameter lies.
      const quint16 addresses[] = {0x2000, 0x1F00, 0x1F02,
                                   0x1F04, 0x1F06, 0x1F07,
                                   0x1F08, 0x1F0A, static_cast<quint16>(below(0x10000))};
      const QString address = su::HexPad(addresses[below(std::size(addresses))], 4);
      qint16 word = 0;
      switch (below(3)) {
        case 0:
          (void)pc_.controller.ReadVersion(kSlot);
          break;
        case 1:
          (void)pc_.controller.ReadInt(kSlot, word, address);
          break;
        default:
          (void)pc_.controller.WriteWord(kSlot, below(0x10000), address);
      }
    }
    pc_.host.Exchanges.Settle();
  }

  std::vector<Seen> ofPc;
  std::vector<Seen> ofController;
  std::array<int, 6> ends{};

 private:
  void Note(const sim::TraceEvent& event) {
    using Kind = sim::TraceEvent::Kind;
    if (event.kind == Kind::Request) {
      request_ = event.bytes;
      ofController.push_back(
          {ShownCharacters(event.bytes), reader_.RequestText(event.bytes, reader_.Version()), {}, {}});
    } else if (event.kind == Kind::Reply || event.kind == Kind::NoReply) {
      ofController.back().reply = ShownCharacters(event.bytes);
      ofController.back().replyText = reader_.ReplyText(request_, event.bytes, reader_.Version()).text;
    }
  }

  test::Installation pc_;
  TelegramReader reader_;
  QByteArray request_;
};

TEST(TraceComparison, BothSidesSeeAndSayTheSame) {
  Comparison comparison;
  comparison.Run(19);
  ASSERT_EQ(comparison.ofPc.size(), comparison.ofController.size());
  ASSERT_GE(comparison.ofPc.size(), static_cast<std::size_t>(kExchanges));
  for (std::size_t i = 0; i < comparison.ofPc.size(); ++i) {
    Seen& pc = comparison.ofPc[i];
    // The controller does not know how often it is asked.
    pc.requestText = pc.requestText.section(u" ("_s, 0, 0);
    ASSERT_EQ(pc, comparison.ofController[i]) << "exchange " << i;
  }
  // All that there is to see has been seen, but a port that cannot be opened.
  for (const ExchangeEnd end : {ExchangeEnd::Good, ExchangeEnd::Silent, ExchangeEnd::EchoOnly,
                                ExchangeEnd::Damaged, ExchangeEnd::Refused})
    EXPECT_GT(comparison.ends[static_cast<std::size_t>(end)], 50) << static_cast<int>(end);
}

}  // namespace
}  // namespace kalivor
