// Faults, provenance and the record of everything that the PC saw.
#include "campaign/Line.h"

#include <algorithm>
#include <iterator>
#include <stdexcept>
#include <utility>

#include "sim/Telegram.h"

namespace kalivor::campaign {
namespace {

using platform::InputWait;

constexpr int kMostWaits = 200'000;  // a transfer that never ends must fail, not hang
constexpr double kNever_s = 1e18;
constexpr char kWritten = 'W';

constexpr int kLineErrors[] = {1001, 1004, 1006, 1008, 1009, 1010, 1011};

bool IsHexDigit(char c) {
  return (c >= '0' && c <= '9') || (c >= 'A' && c <= 'F');
}

}  // namespace

void Line::Forget() {
  if (!coming_.empty() || open_) return;
  log.clear();
  origins.clear();
  touches.clear();
}

void Line::Heal() {
  const bool echo = profile_.echo;
  const int rate = profile_.rate;
  profile_ = {};
  profile_.echo = echo;
  profile_.rate = rate;
  goneFrom_s_ = backAt_s_ = kNever_s;
  nextMaster_s_ = kNever_s;
  // Whatever was on its way has arrived by then.
  clock_.Advance(10);
  coming_.clear();
  heldBack_ = {};
}

bool Line::Open(int number, const QString& settings) {
  Exchange exchange;
  exchange.port = number;
  exchange.settings = settings;
  exchange.openedAt_s = exchange.closedAt_s = Now();
  Settle();
  exchange.opened = Present() && !random_.Chance(profile_.refusalRate);
  log.push_back(exchange);
  event_ = 0;
  if (!exchange.opened) return false;
  open_ = true;
  dead_ = false;
  sendDoneDue_ = false;
  baud_ = settings.section(u',', 0, 0).toInt();
  character_s_ = profile_.paced && baud_ > 0 ? 10.0 / baud_ : 0;
  return true;
}

void Line::Close() {
  if (!open_) return;
  open_ = false;
  input_.clear();
  inputOrigins_.clear();
  Current().closedAt_s = Now();
  if (Current().frame) Current().heldAfter = TrueWord(*Current().frame);
}

bool Line::SetRts(bool) {
  return open_ && !dead_;
}

bool Line::ClearInBuffer() {
  Settle();
  input_.clear();
  inputOrigins_.clear();
  const bool done = open_ && !dead_;
  if (!Current().frame) Current().cleared = Current().cleared && done;
  return done;
}

bool Line::ClearOutBuffer() {
  Settle();
  const bool done = open_ && !dead_;
  if (!Current().frame) Current().cleared = Current().cleared && done;
  return done;
}

void Line::Output(const QByteArray& characters) {
  Exchange& exchange = Current();
  exchange.frame = characters;
  exchange.sentAt_s = Now();
  exchange.sentShown_s = clock_.SecondsSinceMidnight();
  exchange.heldBefore = TrueWord(characters);
  const int number = exchanges_++;
  if (number == profile_.exchangedAt) present_ = &second_;
  onRequest();
  if (!open_ || dead_) return;
  sendDoneDue_ = true;

  const Trouble trouble =
      number == profile_.troubleAt || random_.Chance(profile_.troubleRate) ? ChooseTrouble() : Trouble::None;
  const double arrival_s = Now() + static_cast<double>(characters.size()) * character_s_;
  if (profile_.echo || trouble == Trouble::EchoOnly) {
    Origin echo{Origin::Kind::Echo, characters};
    if (trouble == Trouble::EchoEdit) {
      echo.bytes = Edited(characters, 1);
      echo.damages = 1;
    }
    Send(Now(), echo);
  }
  switch (trouble) {
    case Trouble::Silent:
    case Trouble::EchoOnly:
      return;
    case Trouble::Vanish:
      Vanish(Now() + random_.Fraction() * 0.05);
      break;
    case Trouble::LineError:
      event_ = kLineErrors[random_.Below(static_cast<int>(std::size(kLineErrors)))];
      break;
    case Trouble::Babble: {
      double at_s = Now() + random_.Fraction() * 0.3;
      for (const double end_s = at_s + random_.Fraction() * 2; at_s < end_s; at_s += 0.05)
        at_s = Send(at_s, {Origin::Kind::Noise, random_.Chance(0.5) ? "#\r" : "xyz"});
      break;
    }
    default:
      break;
  }
  Answer(arrival_s, characters, trouble);
  onRequest();
}

Trouble Line::ChooseTrouble() {
  if (profile_.trouble != Trouble::None) return profile_.trouble;
  return static_cast<Trouble>(random_.Between(1, static_cast<int>(Trouble::kCount) - 1));
}

// The request arrives; a reply may go out.
void Line::Answer(double arrival_s, const QByteArray& frame, Trouble trouble) {
  if (profile_.rate != 0 && baud_ != profile_.rate) return;
  if (profile_.forgetsWhileBusy && arrival_s < controllerFree_s_) return;
  Origin origin;
  origin.kind = Origin::Kind::Reply;
  origin.exchange = static_cast<int>(log.size()) - 1;
  origin.otherController = present_ != truth_;

  QByteArray request = frame;
  if (trouble == Trouble::RequestEdit) {
    request = Edited(request, 1);
    origin.requestDamages = 1;
  } else if (trouble == Trouble::RequestSumPreserving &&
             ShiftTwo(request, 6, static_cast<int>(request.size()) - 3)) {
    origin.requestDamages = 2;
  }
  const bool writes = frame.mid(5, 1) == QByteArray(1, kWritten);
  if (request.mid(5, 1) == QByteArray(1, kWritten)) {
    const auto address = static_cast<quint16>(request.mid(6, 4).toUShort(nullptr, 16) & 0xFFFE);
    touches.push_back({present_, address, present_->memory.Word(address), origin.requestDamages > 0});
  }
  std::optional<QByteArray> reply;
  if (trouble == Trouble::Forgetful && writes) {
    const auto address = static_cast<quint16>(frame.mid(6, 4).toUShort(nullptr, 16));
    const quint16 old = present_->memory.Word(address);
    reply = present_->controller.Reply(request);
    origin.forgotten = present_->memory.Word(address) != old;
    present_->memory.SetWord(address, old);
  } else {
    reply = present_->controller.Reply(request);
    if (reply && request != frame && request.mid(5, 1) == QByteArray(1, kWritten)) ++strayWrites;
  }
  if (!reply) return;
  origin.bytes = *reply;
  if (origin.bytes.mid(5, 1) == "v") lastIdentified = present_;
  const int number = exchanges_ - 1;
  if (profile_.shiftedAt >= 0) {
    const bool shifted = number >= profile_.shiftedAt && !heldBack_.bytes.isEmpty();
    const Origin current = origin;
    if (shifted) origin = heldBack_;
    heldBack_ = current;
  }

  double start_s = std::max(arrival_s, controllerFree_s_) +
                   random_.Between(profile_.leastDelay_ms, profile_.mostDelay_ms) / 1000.0;
  const int length = static_cast<int>(origin.bytes.size());
  switch (trouble) {
    case Trouble::Late:
      start_s += random_.Between(350, profile_.mostLate_ms) / 1000.0;
      break;
    case Trouble::Edit:
      origin.bytes = Edited(origin.bytes, 1);
      origin.damages = 1;
      break;
    case Trouble::Edits:
      origin.damages = random_.Between(2, 4);
      origin.bytes = Edited(origin.bytes, origin.damages);
      break;
    case Trouble::SumPreserving:
      if (ShiftTwo(origin.bytes, 6, length - 3)) origin.damages = 2;
      break;
    case Trouble::Noise: {
      QByteArray noise;
      for (int left = random_.Between(1, 8); left > 0; --left)
        noise += static_cast<char>(random_.Between(32, 126));
      start_s = Send(start_s, {Origin::Kind::Noise, noise});
      break;
    }
    case Trouble::ErrorReply: {
      static constexpr const char* kCodes[] = {"02", "03", "04", "05", "06", "07"};
      origin.bytes = sim::Sealed(origin.bytes.left(5) + '?' + kCodes[random_.Below(6)]);
      break;
    }
    case Trouble::WrongLength: {
      QByteArray content = origin.bytes.chopped(3);
      if (random_.Chance(0.5) && content.size() > 7) {
        content.chop(random_.Between(1, static_cast<int>(content.size()) - 6));
      } else {
        for (int left = random_.Between(1, 3); left > 0; --left)
          content += sim::Hex(static_cast<unsigned>(random_.Below(16)), 1);
      }
      origin.bytes = sim::Sealed(content);
      break;
    }
    case Trouble::Foreign:
      origin = {Origin::Kind::Foreign, ForeignReply(frame.at(5), !writes)};
      break;
    case Trouble::Truncated:
      origin.bytes.chop(random_.Between(1, length));
      origin.damages = 1;
      break;
    case Trouble::LineError:
      // A parity error leaves a question mark in place of the character, the others lose it.
      if (random_.Chance(0.5)) {
        origin.bytes[random_.Below(length)] = '?';
      } else {
        origin.bytes.remove(random_.Below(length), 1);
      }
      origin.damages = 1;
      break;
    default:
      break;
  }
  if (trouble == Trouble::Split && length > 1) {
    // Both halves are of one origin.
    const int first = random_.Between(1, length - 1);
    const double pause_s = random_.Between(10, 600) / 1000.0;
    const QByteArray whole = origin.bytes;
    origin.bytes = whole.left(first);
    const double half_s = Send(start_s, origin);
    const int index = static_cast<int>(origins.size()) - 1;
    origin.bytes = whole.mid(first);
    controllerFree_s_ = Send(half_s + pause_s, origin);
    for (Character& character : coming_) {
      if (character.origin == index + 1) character.origin = index;
    }
    origins[static_cast<std::size_t>(index)].bytes = whole;
    return;
  }
  controllerFree_s_ = Send(start_s, origin);
}

// Schedules characters; when the last one has arrived.
double Line::Send(double from_s, const Origin& origin) {
  origins.push_back(origin);
  const int index = static_cast<int>(origins.size()) - 1;
  double at_s = from_s;
  for (const char character : origin.bytes) {
    at_s += character_s_;
    auto behind = coming_.end();
    while (behind != coming_.begin() && std::prev(behind)->at_s > at_s)
      --behind;
    coming_.insert(behind, Character{at_s, character, index});
  }
  return at_s;
}

void Line::Vanish(double at_s) {
  goneFrom_s_ = at_s;
  backAt_s_ = random_.Chance(0.2) ? kNever_s : at_s + random_.Fraction() * 3;
}

// Another master asks this or another station, and is answered.
void Line::MasterSpeaks() {
  const double at_s = nextMaster_s_;
  nextMaster_s_ = at_s + profile_.masterPause_s * (0.2 + 1.6 * random_.Fraction());
  const bool sameStation = random_.Chance(0.5);
  const QByteArray address = sim::Hex(static_cast<unsigned>(random_.Below(65536) & 0xFFFE), 4);
  QByteArray request = "#" + sim::Hex(sameStation ? 1U : 9U, 2) + "02";
  const int kind = random_.Below(3);
  request += kind == 0 ? QByteArray("v00") : kind == 1 ? "R" + address : QByteArray("W" + address + "0000");
  request = sim::Sealed(request);
  double reply_s = at_s;
  if (profile_.hearsMaster) reply_s = Send(at_s, {Origin::Kind::Foreign, request});
  reply_s += random_.Between(2, 40) / 1000.0;
  QByteArray reply;
  if (sameStation && kind != 2) {
    reply = present_->controller.Reply(request).value_or(QByteArray());
  } else {
    reply = ForeignReply(kind == 0 ? 'v' : kind == 1 ? 'R' : 'W', kind == 1);
  }
  if (!reply.isEmpty()) Send(reply_s, {Origin::Kind::Foreign, reply});
}

QByteArray Line::ForeignReply(char letter, bool withWord) {
  QByteArray content = "1" + sim::Hex(static_cast<unsigned>(random_.Between(1, 9)), 2) + "02" + letter;
  if (letter == 'v') {
    content += "ZZ9-0064";
  } else if (withWord) {
    content += sim::Hex(static_cast<unsigned>(random_.Below(65536)), 4);
  }
  return sim::Sealed(content);
}

// `times` elementary changes anywhere.
QByteArray Line::Edited(QByteArray bytes, int times) {
  for (int left = times; left > 0; --left) {
    if (bytes.isEmpty()) return bytes;
    const int at = random_.Below(static_cast<int>(bytes.size()));
    switch (random_.Below(5)) {
      case 0:
        bytes[at] = static_cast<char>(static_cast<unsigned char>(bytes.at(at)) + random_.Between(1, 255));
        break;
      case 1:
        bytes[at] = static_cast<char>(bytes.at(at) ^ (1 << random_.Below(7)));
        break;
      case 2:
        bytes.remove(at, 1);
        break;
      case 3:
        bytes.insert(at, bytes.at(at));
        break;
      default:
        bytes.insert(at, static_cast<char>(random_.Between(0, 126)));
        break;
    }
  }
  return bytes;
}

// Raises one character of [first, last) and lowers another by as much; false where nothing was changed.
bool Line::ShiftTwo(QByteArray& bytes, int first, int last) {
  if (last - first < 2) return false;
  const int up = random_.Between(first, last - 1);
  const int down = random_.Between(first, last - 1);
  if (up == down) return false;
  const int by = random_.Between(1, 16);
  const char raised = static_cast<char>(bytes.at(up) + by);
  const char lowered = static_cast<char>(bytes.at(down) - by);
  // Mostly into other digits, which pass as such; now and then into what is none.
  if (random_.Chance(0.7) && (!IsHexDigit(raised) || !IsHexDigit(lowered))) return false;
  bytes[up] = raised;
  bytes[down] = lowered;
  return true;
}

// The word that a request to read or write names, as the true controller holds it.
quint16 Line::TrueWord(const QByteArray& frame) const {
  return truth_->memory.Word(static_cast<quint16>(frame.mid(6, 4).toUShort(nullptr, 16)));
}

// Lets everything happen that is due.
void Line::Settle() {
  while (nextMaster_s_ <= Now()) {
    // While nobody listens there is no need to speak.
    if (nextMaster_s_ < Now() - 1) nextMaster_s_ = Now() - 0.5;
    MasterSpeaks();
  }
  if (open_ && !Present()) dead_ = true;
  while (!coming_.empty() && coming_.front().at_s <= Now()) {
    const Character& next = coming_.front();
    const bool arrives = open_ && !dead_ && (next.at_s < goneFrom_s_ || next.at_s >= backAt_s_);
    if (arrives) {
      input_ += next.character;
      inputOrigins_.push_back(next.origin);
    }
    coming_.pop_front();
  }
  if (sendDoneDue_ && threshold_ > 0) {
    sendDoneDue_ = false;
    if (event_ == 0) event_ = platform::kCommEventSendDone;
    if (OnComm) OnComm();
  }
}

int Line::InBufferCount() {
  Settle();
  return static_cast<int>(input_.size());
}

QByteArray Line::Input() {
  Settle();
  Taken taken;
  taken.bytes = std::exchange(input_, {});
  taken.origins = std::exchange(inputOrigins_, {});
  taken.shown_s = clock_.SecondsSinceMidnight();
  taken.gone = Current().endsGone;
  Current().takes.push_back(taken);
  Current().endsWaiting = false;
  return taken.bytes;
}

InputWait Line::WaitForInput(double seconds) {
  if (++waits_ > kMostWaits) throw std::runtime_error("the line is waited for without an end");
  Exchange& exchange = Current();
  const double end_s = Now() + std::max(0.0, seconds);
  InputWait result = InputWait::TimedOut;
  for (;;) {
    Settle();
    if (!input_.isEmpty()) {
      result = InputWait::Input;
      break;
    }
    if (!open_ || dead_) {
      result = InputWait::LineGone;
      break;
    }
    if (Now() >= end_s) break;
    double wake_s = std::min(end_s, nextMaster_s_);
    if (!coming_.empty()) wake_s = std::min(wake_s, coming_.front().at_s);
    if (goneFrom_s_ > Now()) wake_s = std::min(wake_s, goneFrom_s_);
    clock_.Advance(std::max(0.0, wake_s - Now()));
  }
  exchange.endsWaiting = result != InputWait::Input;
  exchange.endsGone = result == InputWait::LineGone;
  exchange.endShown_s = clock_.SecondsSinceMidnight();
  return result;
}

int Line::CommEvent() {
  Settle();
  if (!log.empty()) Current().event = event_;
  return event_;
}

}  // namespace kalivor::campaign
