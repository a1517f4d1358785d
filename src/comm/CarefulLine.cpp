#include "comm/CarefulLine.h"

#include <QScopeGuard>
#include <algorithm>
#include <utility>

#include "base/su.h"
#include "comm/COM_A.h"

using namespace Qt::StringLiterals;

namespace kalivor {
namespace {

constexpr int kTries = 3;
constexpr int kWordLength = 4;
constexpr int kVersionLength = 8;
constexpr qsizetype kHeaderLength = 5;

// A shorter rest would be over before the reply's own time is.
constexpr int kShortestRest_ms = 500;
// While the line rests, the caller is asked so often; and a line that is never silent is given up.
constexpr int kSlice_ms = 100;
constexpr int kMostRests = 10;

}  // namespace

QChar CommandLetter(const VersionTable& versions, int letter) {
  return versions.SelectedVersion().Kennung.Padded().at(letter);
}

CarefulLine::CarefulLine(const Settings& settings, const VersionTable& versions, COM_T_frm& host,
                         std::function<bool()> goOn)
    : settings_(settings), versions_(versions), host_(host), transport_(host), goOn_(std::move(goOn)) {}

Identification CarefulLine::Identify() {
  Identification answer = AskVersionOnce();
  for (const QStringView rate : {kSettings19200, kSettings9600}) {
    if (answer.succeeded || !Rest()) break;
    // Whether the port could be opened shows in the next query.
    (void)host_.ConfigurePort(kSlot, kControllerProtocol, settings_.Adresse, settings_.Schnittstelle,
                              rate.toString());
    answer = AskVersionOnce();
  }
  return answer;
}

Identification CarefulLine::AskVersion() {
  Identification answer{false, u"ERROR: Abbruch"_s};
  for (int tries = 0; tries < kTries && !answer.succeeded; ++tries) {
    if (!Rest()) break;
    NextIsAttempt(tries + 1);
    answer = AskVersionOnce();
  }
  return answer;
}

Identification CarefulLine::AskVersionOnce() {
  const QString payload = Attempt(u"v00"_s);
  if (IsError(payload)) return {false, payload};
  if (payload.size() >= kVersionLength && su::IsHex(QStringView(payload).sliced(kWordLength, kWordLength)))
    return {true, VersionText(payload)};
  return {false, Unexpected(payload)};
}

WordReading CarefulLine::Read(quint16 address, std::optional<quint16> expected) {
  WordReading reading{{}, u"ERROR: Abbruch"_s};
  bool believed = true;
  for (int tries = 0; tries < kTries; ++tries) {
    if (!Rest()) break;
    NextIsAttempt(tries + 1);
    reading = ReadOnce(address);
    if (reading.word && believed && (!expected || reading.word == expected)) return reading;
    if (reading.word) {
      WordReading again = ReadOnce(address);
      if (again.word == reading.word) return again;
      reading = {{}, again.word ? u"ERROR: zwei verschiedene Antworten"_s : again.failure};
      unsettled_ = true;
    }
    believed = false;
  }
  return reading;
}

WordReading CarefulLine::ReadOnce(quint16 address) {
  const QString payload = Attempt(CommandLetter(versions_, kReadLetter) + su::HexPad(address, kWordLength));
  if (IsError(payload)) return {{}, payload};
  if (payload.size() == kWordLength && su::IsHex(payload)) return {payload.toUShort(nullptr, 16), {}};
  return {{}, Unexpected(payload)};
}

QString CarefulLine::Write(quint16 address, quint16 word) {
  const QString body = CommandLetter(versions_, kWriteLetter) + su::HexPad(address, kWordLength) +
                       su::HexPad(word, kWordLength);
  QString result = u"ERROR: Abbruch"_s;
  for (int tries = 0; tries < kTries; ++tries) {
    if (!Rest()) break;
    NextIsAttempt(tries + 1);
    result = Attempt(body);
    if (!IsError(result)) return {};
  }
  return result;
}

// One exchange: the payload of a good reply with the known header, or a failure.
QString CarefulLine::Attempt(const QString& body) {
  const QString frame = transport_.Frame(kSlot, body);
  host_.Timers().Wait(kPauseTimer);
  const QString reply = transport_.SendReceive(kSlot, frame, true);
  QString payload = COM_T::PayloadOf(reply);
  if (!IsError(payload)) {
    const QString header = reply.left(kHeaderLength);
    if (header_.isEmpty()) header_ = header;
    if (header != header_) payload = u"ERROR: Antwort mit anderem Kopf: "_s + reply.trimmed();
  }
  if (IsError(payload)) NoteFailed(payload);
  return payload;
}

// A reply with the right sum that answers something else.
QString CarefulLine::Unexpected(const QString& payload) {
  const QString failure = u"ERROR: unerwartete Antwort: "_s + payload;
  NoteFailed(failure);
  return failure;
}

void CarefulLine::NoteFailed(const QString& failure) {
  unsettled_ = true;
  ++failedAttempts_;
  host_.Exchanges.Judge(failure);
}

void CarefulLine::NextIsAttempt(int attempt) {
  host_.Exchanges.NextIsAttempt(attempt);
}

// Lets the line come to rest where an attempt has failed. False where the operation is to end.
bool CarefulLine::Rest() {
  if (!std::exchange(unsettled_, false)) return true;
  unsettled_ = !WaitForSilence();
  return !unsettled_;
}

bool CarefulLine::WaitForSilence() {
  const int rest_ms = std::max<int>(settings_.Ruhezeit, kShortestRest_ms);
  bool listens = !IsError(host_.OpenPort(kSlot));
  const auto close = qScopeGuard([this] { host_.ClosePort(); });
  platform::SerialControl& line = host_.Control();
  const SoftTimer bound(host_.Timers().GetClock(), kMostRests * rest_ms);
  for (int silent_ms = 0; silent_ms < rest_ms;) {
    if (!goOn_() || bound.Remaining() <= 0) return false;
    const int slice_ms = std::min(kSlice_ms, rest_ms - silent_ms);
    if (!listens) {
      // Without a port there is nothing to hear; it may come back meanwhile.
      host_.Timers().StartTimer(kPauseTimer, slice_ms);
      host_.Timers().Wait(kPauseTimer);
      silent_ms += slice_ms;
      continue;
    }
    const platform::InputWait wait = line.WaitForInput(slice_ms / 1000.0);
    const bool heard = !line.Input().isEmpty();
    listens = wait != platform::InputWait::LineGone;
    silent_ms = heard ? 0 : silent_ms + slice_ms;
  }
  return true;
}

}  // namespace kalivor
