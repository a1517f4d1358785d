// Controller reply: any bytes, at any time, as what the controller says to an operation.
#include <algorithm>
#include <cmath>
#include <deque>
#include <memory>
#include <optional>
#include <vector>

#include "Targets.h"
#include "World.h"
#include "base/Windows1252.h"
#include "comm/COM_T.h"

using namespace Qt::StringLiterals;

namespace kalivor::fuzz {
namespace {

// Among the bytes of a reply these are instructions.
enum Instruction : quint8 {
  kPause = 0xFF,     // the next byte times 8 ms
  kNext = 0xFE,      // the rest answers the next request
  kEvent = 0xFD,     // the next byte chooses a communication event
  kGone = 0xFC,      // the device vanishes
  kChecksum = 0xFB,  // the right checksum of what was sent since the last pause or end
  kEcho = 0xFA,      // the request comes back
};

constexpr int kEvents[] = {platform::kCommEventNone,
                           platform::kCommEventSendDone,
                           platform::kCommEventBreak,
                           platform::kCommEventFraming,
                           platform::kCommEventOverrun,
                           platform::kCommEventReceiveOverflow,
                           platform::kCommEventParity,
                           platform::kCommEventTransmitFull,
                           platform::kCommEventDeviceControlBlock,
                           4711};

quint8 SumOf(QByteArrayView bytes) {
  unsigned sum = 0;
  for (const char byte : bytes)
    sum += static_cast<quint8>(byte);
  return static_cast<quint8>(sum);
}

QByteArray Hex(quint8 number) {
  return QByteArray::number(number, 16).toUpper().rightJustified(2, '0');
}

/// Plays the input; what the program takes is kept.
class ScriptedLine final : public platform::SerialControl {
 public:
  explicit ScriptedLine(test::FakeClock& clock) : clock_(clock) {}

  int requests = 0;
  int waits = 0;
  QByteArray taken;  ///< since the last request

  void Start(QByteArrayView script) {
    script_ = script;
    pending_.clear();
    received_.clear();
    taken.clear();
    requests = waits = event_ = 0;
    gone_ = false;
  }

  [[nodiscard]] bool Open(int, const QString&) override {
    Deliver();
    if (gone_) return false;
    event_ = 0;
    return open_ = true;
  }
  void Close() override { open_ = false; }
  [[nodiscard]] bool IsOpen() const override { return open_; }
  bool SetRts(bool) override { return true; }
  bool ClearInBuffer() override {
    Deliver();
    received_.clear();
    return true;
  }
  bool ClearOutBuffer() override { return true; }
  void SetSThreshold(int) override {}

  void Output(const QByteArray& request) override {
    Require(open_, "requests go out through an open port");
    ++requests;
    Deliver();
    taken.clear();
    Answer(request);
  }

  [[nodiscard]] int InBufferCount() override {
    Deliver();
    return static_cast<int>(received_.size());
  }
  [[nodiscard]] QByteArray Input() override {
    Deliver();
    taken += received_;
    return std::exchange(received_, {});
  }
  [[nodiscard]] platform::InputWait WaitForInput(double seconds) override {
    Require(++waits < 10'000, "waiting comes to an end");
    const double begin = clock_.now;
    for (;;) {
      Deliver();
      if (!received_.isEmpty()) return platform::InputWait::Input;
      if (gone_) return platform::InputWait::LineGone;
      if (pending_.empty() || pending_.front().at > begin + seconds) break;
      clock_.now = std::max(clock_.now, pending_.front().at);
    }
    clock_.Sleep(seconds - (clock_.now - begin));
    return platform::InputWait::TimedOut;
  }
  [[nodiscard]] int CommEvent() override {
    Deliver();
    return event_;
  }

 private:
  struct Step {
    double at = 0;
    QByteArray bytes;
    std::optional<int> event;
    bool gone = false;
  };

  int NextByte() {
    if (script_.isEmpty()) return -1;
    const auto byte = static_cast<quint8>(script_.front());
    script_ = script_.sliced(1);
    return byte;
  }

  // Plans what the script says about this request.
  void Answer(const QByteArray& request) {
    // A late reply before this one delays it.
    double at = pending_.empty() ? clock_.now : std::max(clock_.now, pending_.back().at);
    at += 0.001;
    Step step{at, {}, {}, false};
    const auto flush = [&] {
      if (!step.bytes.isEmpty()) pending_.push_back(step);
      step = {at, {}, {}, false};
    };
    for (int byte = NextByte(); byte >= 0 && byte != kNext; byte = NextByte()) {
      switch (byte) {
        case kPause:
          at += std::max(0, NextByte()) * 0.008;
          flush();
          step.at = at;
          break;
        case kEvent:
          flush();
          pending_.push_back(
              {at, {}, kEvents[static_cast<unsigned>(NextByte()) % std::size(kEvents)], false});
          break;
        case kGone:
          flush();
          pending_.push_back({at, {}, {}, true});
          break;
        case kChecksum:
          step.bytes += Hex(SumOf(step.bytes));
          break;
        case kEcho:
          step.bytes += request;
          flush();
          break;
        default:
          step.bytes += static_cast<char>(byte);
      }
    }
    flush();
  }

  void Deliver() {
    while (!pending_.empty() && pending_.front().at <= clock_.now) {
      const Step step = pending_.front();
      pending_.pop_front();
      gone_ = gone_ || step.gone;
      if (!open_ || gone_) continue;
      received_ += step.bytes;
      if (!step.event) continue;
      event_ = *step.event;
      if (OnComm) OnComm();
    }
  }

  test::FakeClock& clock_;
  QByteArrayView script_;
  std::deque<Step> pending_;
  QByteArray received_;
  bool open_ = false;
  bool gone_ = false;
  int event_ = 0;
};

// The lines of what was received, each up to its first control character; raw reception knows none.
std::vector<QByteArray> Lines(const QByteArray& taken, bool raw) {
  if (raw) return {taken};
  std::vector<QByteArray> lines(1);
  for (const char c : taken) {
    lines.back() += c;
    if (static_cast<quint8>(c) <= '\r') lines.emplace_back();
  }
  return lines;
}

bool IsGoodReply(const QByteArray& telegram, const QByteArray& payload) {
  return telegram.mid(6, payload.size()) == payload && telegram.at(5) != '?' &&
         telegram.mid(telegram.size() - 3, 2) == Hex(SumOf(telegram.chopped(3)));
}

// An accepted payload comes out of a line that ends with a whole telegram, with the right checksum.
bool ComesFrom(const QByteArray& line, const QByteArray& payload) {
  const qsizetype length = 6 + payload.size() + 3;
  return line.size() >= length && IsGoodReply(line.last(length), payload);
}

void CheckAccepted(const QByteArray& taken, const QByteArray& payload, bool raw = false) {
  const std::vector<QByteArray> lines = Lines(taken, raw);
  Require(std::any_of(lines.begin(), lines.end(),
                      [&](const QByteArray& line) { return ComesFrom(line, payload); }),
          "a payload comes out of a whole reply with the right checksum");
}

std::optional<qint64> PlainWord(const QByteArray& digits, bool isSigned) {
  qint64 number = 0;
  for (const char c : digits) {
    if (std::isxdigit(static_cast<unsigned char>(c)) == 0) return {};
    number = number * 16 + QByteArray(1, c).toInt(nullptr, 16);
  }
  return isSigned ? static_cast<qint16>(number) : number;
}

void CheckWord(const ScriptedLine& line, qint64 result, bool isSigned) {
  const std::vector<QByteArray> lines = Lines(line.taken, false);
  Require(std::any_of(lines.begin(), lines.end(),
                      [&](const QByteArray& reply) {
                        const QByteArray digits = reply.right(7).first(std::min<qsizetype>(reply.size(), 4));
                        const std::optional<qint64> word = PlainWord(digits, isSigned);
                        return ComesFrom(reply, digits) && (!word || *word == result);
                      }),
          "a word is that of a whole reply");
}

void CheckVersion(const ScriptedLine& line, const QString& version) {
  Require(IsError(version) || version.size() >= 3, "a version or a failure");
  if (IsError(version)) return;
  const std::vector<QByteArray> lines = Lines(line.taken, false);
  Require(std::any_of(lines.begin(), lines.end(), [](const QByteArray& reply) { return reply.size() >= 9; }),
          "a version comes out of a whole reply");
}

void Transact(World& world, ScriptedLine& line, qint16 protocol, bool wantReply) {
  world.host.Ports[kSlot].Protokoll = protocol;
  COM_T transport(world.host);
  const QString result = transport.Transact(kSlot, u"R1F00"_s, wantReply);
  Require(line.requests <= 1, "one attempt sends one request");
  if (wantReply && !IsError(result)) {
    CheckAccepted(line.taken, BytesFromText(result), protocol != kControllerProtocol);
  }
}

void Operate(World& world, ScriptedLine& line, int operation) {
  qint16 word = 0;
  qint32 wide = 0;
  const QString address = u"1F00"_s;
  switch (operation) {
    case 0:
      CheckVersion(line, world.controller.Identify(kSlot));
      break;
    case 1:
      if (world.controller.ReadInt(kSlot, word, address)) CheckWord(line, word, true);
      break;
    case 2:
      if (world.controller.ReadLong(kSlot, wide, address)) CheckWord(line, wide, false);
      break;
    case 3:
      if (world.controller.WriteWord(kSlot, 1234, address)) {
        Require(line.taken.size() >= 9, "a write is acknowledged by a whole reply");
      } else {
        Require(world.view.lines.size() == 1, "a failed write is reported");
      }
      break;
    case 4:
      CheckVersion(line, world.controller.ReadVersion(kSlot));
      break;
    case 5:
      Transact(world, line, 0, true);
      break;
    case 6:
      Transact(world, line, 18, true);
      break;
    default:
      Transact(world, line, kControllerProtocol, false);
  }
}

struct Site {
  test::FakeClock clock;
  ScriptedLine line{clock};
  World world{line, clock};
};

}  // namespace

void ControllerReply(QByteArrayView input) {
  static const std::unique_ptr<Site> made = [] {
    auto site = std::make_unique<Site>();
    site->world.module.Versionen.resize(2);
    site->world.module.Versionen[1].Kennung = u"WR"_s;
    site->world.module.VersionList.Add(u"AB1-123.4"_s);
    site->world.module.VersionList.Select(0);
    return site;
  }();
  if (input.isEmpty()) return;
  Site& site = *made;
  site.line.Start({});
  site.clock.now = 36000;
  site.world.report.OKButton_Click();
  (void)site.world.controller.Configure(kSlot, kSettings9600);
  site.line.Start(input.sliced(1));
  const double start = site.clock.now;
  try {
    Operate(site.world, site.line, static_cast<quint8>(input.front()) & 7);
  } catch (const RuntimeError& error) {
    Require(error.GetKind() == RuntimeError::Kind::Overflow, "a reply that is no number may overflow only");
  }
  Require(!site.line.IsOpen(), "the port is closed afterwards");
  Require(site.line.requests <= 3, "three attempts at most");
  // Three exchanges of at most 1.2 s and their pauses; raw reception goes on for a second of silence.
  const bool raw =
      (static_cast<quint8>(input.front()) & 7) == 5 || (static_cast<quint8>(input.front()) & 7) == 6;
  Require(raw || site.clock.now - start < 3 * 1.2 + 0.2, "an exchange ends in time");
}

}  // namespace kalivor::fuzz
