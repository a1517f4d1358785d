// Controller reply: any bytes, at any time, as what the controller says to an operation.
#include <algorithm>
#include <cctype>
#include <deque>
#include <memory>
#include <optional>
#include <vector>

#include "Targets.h"
#include "World.h"
#include "comm/COM_T.h"
#include "rules/ExchangeRules.h"

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

/// Plays the input, and reads along by the rules what the program takes.
class ScriptedLine final : public platform::SerialControl {
 public:
  explicit ScriptedLine(test::FakeClock& clock) : clock_(clock) {}

  int requests = 0;
  int waits = 0;
  bool refused = false;                          ///< the port could not be opened the last time
  bool gone = false;                             ///< the device has vanished
  QByteArray taken;                              ///< since the last request
  std::optional<test::ExchangeReading> reading;  ///< of the last request

  void Start(QByteArrayView script) {
    script_ = script;
    pending_.clear();
    received_.clear();
    taken.clear();
    requests = waits = event_ = 0;
    gone = refused = false;
    reading.reset();
  }

  [[nodiscard]] bool Open(int, const QString&) override {
    Deliver();
    refused = gone;
    if (refused) return false;
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
    reading.emplace(request.size(), clock_.now);
    toldGone_ = false;
    Answer(request);
  }

  [[nodiscard]] int InBufferCount() override {
    Deliver();
    return static_cast<int>(received_.size());
  }
  [[nodiscard]] QByteArray Input() override {
    Deliver();
    taken += received_;
    if (reading) reading->Take(clock_.now, received_, toldGone_);
    return std::exchange(received_, {});
  }
  [[nodiscard]] platform::InputWait WaitForInput(double seconds) override {
    Require(++waits < 10'000, "waiting comes to an end");
    const double begin = clock_.now;
    for (;;) {
      Deliver();
      if (!received_.isEmpty()) return platform::InputWait::Input;
      if (gone) {
        toldGone_ = true;
        return platform::InputWait::LineGone;
      }
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
          step.bytes += test::SumDigits(step.bytes);
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
      gone = gone || step.gone;
      if (!open_ || gone) continue;
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
  bool toldGone_ = false;  // the last wait said so
  int event_ = 0;
};

// What the last exchange comes to by the rules.
test::Verdict ByTheRules(ScriptedLine& line, bool raw = false) {
  const int event = line.CommEvent();
  if (line.refused) return {test::WithEvent(u"ERROR: COM 1 nicht verfügber"_s, {}, event), {}};
  Require(line.reading.has_value(), "a request went out");
  // Raw reception knows no lines.
  if (raw && !line.taken.isEmpty()) return test::VerdictOnLine(line.taken);
  return line.reading->Result(event);
}

// The number of four hexadecimal digits; nothing where one is none.
std::optional<qint64> PlainWord(const QByteArray& digits, bool isSigned) {
  const auto valid = [](char c) { return std::isxdigit(static_cast<unsigned char>(c)) != 0; };
  if (!std::all_of(digits.begin(), digits.end(), valid)) return {};
  const int number = test::Number(digits);
  return isSigned ? static_cast<qint16>(number) : number;
}

// What reading a word came to. `result` is nothing where it failed.
void CheckWord(World& world, ScriptedLine& line, std::optional<qint64> result, bool isSigned) {
  const test::Verdict verdict = ByTheRules(line);
  Require(world.view.lines == (verdict.failure.isEmpty() ? QStringList() : QStringList(verdict.failure)),
          "a failure is reported, and nothing else");
  Require(result.has_value() == (verdict.failure.isEmpty() && verdict.payload.size() == 4),
          "a reply of four digits is a word");
  if (!result) return;
  const std::optional<qint64> word = PlainWord(verdict.payload, isSigned);
  Require(!word || *word == *result, "a word is that of the reply");
}

void CheckVersion(ScriptedLine& line, const QString& version) {
  const test::Verdict verdict = ByTheRules(line);
  if (!verdict.failure.isEmpty()) {
    Require(version == verdict.failure, "a failure that the rules name");
  } else {
    Require(!IsError(version) && version.size() >= 3, "a good reply is a version");
  }
}

void CheckTransact(World& world, ScriptedLine& line, qint16 protocol) {
  world.host.Ports[kSlot].Protokoll = protocol;
  COM_T transport(world.host);
  const QString result = transport.Transact(kSlot, u"R1F00"_s, true);
  Require(line.requests <= 1, "one attempt sends one request");
  const test::Verdict verdict = ByTheRules(line, protocol != kControllerProtocol);
  Require(result == (verdict.failure.isEmpty() ? test::Text(verdict.payload) : verdict.failure),
          "an attempt comes to what the rules say");
}

// Without the wish for a reply nothing is said but that there was no port.
void CheckWithoutReply(World& world, ScriptedLine& line) {
  COM_T transport(world.host);
  const QString result = transport.Transact(kSlot, u"R1F00"_s, false);
  Require(line.requests <= 1, "one attempt sends one request");
  Require(IsError(result) || result.isEmpty(), "no reply is handed on");
}

void Operate(World& world, ScriptedLine& line, int operation) {
  qint16 word = 0;
  qint32 wide = 0;
  bool good = false;
  const QString address = u"1F00"_s;
  switch (operation) {
    case 0:
      CheckVersion(line, world.controller.Identify(kSlot));
      break;
    case 1:
      good = world.controller.ReadInt(kSlot, word, address);
      CheckWord(world, line, good ? std::optional<qint64>(word) : std::nullopt, true);
      break;
    case 2:
      good = world.controller.ReadLong(kSlot, wide, address);
      CheckWord(world, line, good ? std::optional<qint64>(wide) : std::nullopt, false);
      break;
    case 3:
      good = world.controller.WriteWord(kSlot, 1234, address);
      Require(good == ByTheRules(line).failure.isEmpty(), "a write is acknowledged by a good reply");
      Require(good == world.view.lines.isEmpty(), "a failed write is reported");
      break;
    case 4:
      CheckVersion(line, world.controller.ReadVersion(kSlot));
      break;
    case 5:
      CheckTransact(world, line, 0);
      break;
    case 6:
      CheckTransact(world, line, 18);
      break;
    default:
      CheckWithoutReply(world, line);
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
  const int operation = static_cast<quint8>(input.front()) & 7;
  try {
    Operate(site.world, site.line, operation);
  } catch (const RuntimeError& error) {
    Require(error.GetKind() == RuntimeError::Kind::Overflow, "a reply that is no number may overflow only");
  }
  Require(!site.line.IsOpen(), "the port is closed afterwards");
  Require(site.line.requests <= 3, "three attempts at most");
  // Three exchanges of at most 1.2 s and their pauses; raw reception goes on for a second of silence.
  const bool raw = operation == 5 || operation == 6;
  Require(raw || site.clock.now - start < 3 * 1.2 + 0.2, "an exchange ends in time");
}

}  // namespace kalivor::fuzz
