// The rules of telegrams, transfers and reports once more, in their plainest form.
#include "campaign/Oracle.h"

#include <algorithm>

using namespace Qt::StringLiterals;

namespace kalivor::campaign {
namespace {

using Kind = PlantParameter::Kind;
using test::Character;
using test::Digit;
using test::Expired;
using test::kLongestExchange_s;
using test::kReplyTime_s;
using test::Number;
using test::Text;

constexpr double kPause_s = 0.02;
constexpr double kTolerance_s = 1e-3;

// The exchanges are not those that the rules demand.
struct Mismatch {
  QString text;
};

// A run-time error ends the transfer; its box shows this text.
struct RunTimeError {
  QString box;
};

[[noreturn]] void Fail(const QString& text) {
  throw Mismatch{text};
}

void Require(bool holds, const QString& text) {
  if (!holds) Fail(text);
}

int Code(QChar character) {
  for (int code = 0; code < 256; ++code) {
    if (Character(code) == character) return code;
  }
  return '?';
}

QByteArray Hex4(qint64 number) {
  return test::HexDigits(number, 4);
}

// From "8" on a first character makes the number negative.
int SignedNumber(const QByteArray& digits) {
  if (static_cast<unsigned char>(digits.at(0)) < '8') return Number(digits);
  int complement = 0;
  for (const char c : digits)
    complement = complement * 16 + (15 - Digit(c));
  return -complement - 1;
}

QByteArray After(const QByteArray& address, int offset) {
  return Hex4(address.right(4).toInt(nullptr, 16) + offset);
}

bool IsOdd(const PlantParameter& parameter) {
  return Digit(parameter.address.back()) % 2 == 1;
}

QString Scaled(const PlantParameter& parameter, qint32 value) {
  qint64 drop = 1;
  for (int i = 0; i < parameter.dropped; ++i)
    drop *= 10;
  qint64 whole = drop;
  for (int i = 0; i < parameter.decimals; ++i)
    whole *= 10;
  QString text = QString::number(value / whole);
  while (text.size() < 6)
    text.prepend(u' ');
  if (parameter.decimals > 0) {
    QString fraction = QString::number(std::abs(value % whole / drop));
    while (fraction.size() < parameter.decimals)
      fraction.prepend(u'0');
    text += u'.' + fraction;
  }
  while (text.size() < 9)
    text += u' ';
  return text;
}

QString Blank(int number) {
  return number < 0 ? QString::number(number) : u' ' + QString::number(number);
}

WrongClass ClassOf(const Line& line, const QByteArray& accepted, const std::vector<int>& origins,
                   int exchange) {
  const int first = origins.front();
  const bool one =
      std::all_of(origins.begin(), origins.end(), [first](int origin) { return origin == first; });
  if (!one) return WrongClass::Collision;
  const Origin& origin = line.origins[static_cast<std::size_t>(first)];
  if (origin.kind == Origin::Kind::Foreign) return WrongClass::ForeignReply;
  Require(origin.kind == Origin::Kind::Reply, u"no reply was taken as one: "_s + Text(accepted));
  if (origin.otherController) return WrongClass::ExchangedController;
  if (origin.exchange != exchange) return WrongClass::LateReply;
  // Nobody checks the length of a version. Losing the first digit of the sum can even leave one that fits:
  // the last character of the version then stands for it.
  constexpr qsizetype versionReply = 17;
  if (accepted.mid(5, 1) == "v" && accepted.size() != versionReply) return WrongClass::OtherLength;
  if (origin.forgotten) return WrongClass::WriteWithoutEffect;
  if (origin.damages >= 2 || origin.requestDamages >= 2) return WrongClass::SumPreserving;
  Fail(u"a wrong value that the telegram shows was taken over: "_s + Text(accepted));
}

}  // namespace

QString Oracle::Run(Command command) {
  try {
    Transfer(command);
    if (next_ != line_.log.size()) return u"the port was opened once more than the rules demand"_s;
    return {};
  } catch (const Mismatch& mismatch) {
    return u"exchange %1: "_s.arg(next_) + mismatch.text;
  }
}

void Oracle::Transfer(Command command) {
  static const QString kFirst[] = {u"Empfangen.."_s, u"Vergleichen.."_s, u"Senden.."_s};
  static const QString kLast[] = {u"Empfangen beendet"_s, u"Vergleich beendet"_s, u"Senden beendet"_s};
  static const QString kAborted[] = {u"Empfangen abgebrochen"_s, u"Vergleich abgebrochen"_s,
                                     u"Senden abgebrochen"_s};
  const auto number = static_cast<std::size_t>(command);
  Add(kFirst[number]);
  try {
    const bool done = command == Command::Send ? Sending() : Following(command);
    expected_.transferred = expected_.transferred && done;
    Add(done ? kLast[number] : kAborted[number]);
  } catch (const RunTimeError& error) {
    Add(kAborted[number]);
    expected_.boxes.append(error.box);
    expected_.thrown = true;
  }
}

bool Oracle::Following(Command command) {
  if (!FollowVersion(command)) return false;
  if (FollowPlant(PlantNumber())) {
    if (command == Command::Receive) {
      ReceiveAll();
    } else {
      Walk([this](PlantParameter& parameter) { return CompareOne(parameter); });
    }
    expected_.transferred = true;
  }
  return !abort_;
}

bool Oracle::FollowVersion(Command command) {
  const QString version = Identify();
  if (version.startsWith(u"ERROR: "_s)) {
    Add(version);
    return false;
  }
  const int position = FindVersion(version);
  if (position < 0) {
    Add(version.startsWith(u"Error"_s) ? version : u"Unbekannte ReglerVersion: "_s + version);
    return false;
  }
  if (position == plant_.version) return true;
  if (command == Command::Compare) {
    Add(u"Andere ReglerVersion: "_s + version);
    return false;
  }
  SelectVersion(position);
  return true;
}

bool Oracle::FollowPlant(int number) {
  const auto count = static_cast<int>(plant_.Selected().plants.size());
  if (number <= -1) return count < 2;
  if (plant_.plant == number) return true;
  if (count < number) {
    Add(u"Empfangene Anlagennummer ("_s + Blank(number) + u") zu gross"_s);
    return false;
  }
  plant_.plantValue = number;
  SelectPlant(number);
  return true;
}

bool Oracle::Sending() {
  const QString version = Identify();
  const int position = FindVersion(version);
  if (position < 0) {
    Add(u"Unbekannte ReglerVersion: "_s + version);
    return false;
  }
  if (position != plant_.version) {
    const qint16 answer =
        Ask(u"Die Version auf dem Regler stimmt nicht mit derjenigen auf dem PC überein.\n\r"
            "Der Befehl Senden kann nicht ausgeführt werden.\n\r\n\rBitte wählen Sie:"_s,
            u"PC     (Senden Abbrechen)  : "_s + plant_.Selected().version,
            u"Regler (Werte neu Einlesen): "_s + version);
    if (answer == 2) {
      SelectVersion(position);
      ReceiveAll();
    }
    return false;
  }
  if (!AcceptPlant()) return false;
  Walk([this](PlantParameter& parameter) { return SendOne(parameter); });
  expected_.transferred = true;
  return !abort_;
}

// True where the plant types agree, or the user wants the PC's.
bool Oracle::AcceptPlant() {
  PlantVersion& version = plant_.Selected();
  const auto count = static_cast<int>(version.plants.size());
  const int number = PlantNumber();
  if (number <= -1) return false;
  if (plant_.plant == number) return true;
  if (count < number) {
    Add(u"Empfangene Anlagennummer ("_s + Blank(number) + u") zu gross"_s);
    return false;
  }
  const qint16 answer = Ask(
      u"Die Anlageart auf dem Regler stimmt nicht mit derjenigen auf dem PC überein.\n\r\n\rBitte wählen Sie:"_s,
      u"PC: "_s + version.plants.value(plant_.plant), u"Regler: "_s + version.plants.value(number));
  if (answer != 1) {
    SelectPlant(number);
    ReceiveAll();
    return false;
  }
  if (!version.plantAddress.isEmpty() && !Write(plant_.plantValue, version.plantAddress)) {
    Add(u"Fehler bei: "_s + version.plantVariable);
    ++expected_.failures;
  }
  return true;
}

int Oracle::PlantNumber() {
  const PlantVersion& version = plant_.Selected();
  if (version.plantAddress.isEmpty()) return 0;
  const std::optional<qint16> number = ReadSigned(version.plantAddress);
  if (!number) Add(u"Fehler bei: "_s + version.plantVariable + u"[0]"_s);
  if (number.value_or(-1) == -1) ++expected_.failures;
  return number.value_or(-1);
}

void Oracle::SelectVersion(int position) {
  plant_.version = position;
  plant_.plant = 0;
  plant_.Reload();
}

void Oracle::SelectPlant(int number) {
  if (number >= plant_.Selected().plants.size())
    throw RunTimeError{u"Die Auswahl liegt außerhalb der Liste."_s};
  plant_.plant = number;
  plant_.Reload();
}

int Oracle::FindVersion(const QString& version) const {
  for (std::size_t i = 0; i < plant_.versions.size(); ++i) {
    if (plant_.versions[i].version == version) return static_cast<int>(i);
  }
  return -1;
}

template <typename Handle>
void Oracle::Walk(Handle&& handle) {
  for (PlantParameter& parameter : plant_.Selected().parameters) {
    if (parameter.checked && parameter.address.isEmpty()) {
      Add(u"Warnung: Variabel <"_s + parameter.variable + u"> nicht bekannt."_s);
      Add(u"Fehler bei "_s + parameter.name);
      ++expected_.failures;
    } else if (parameter.checked) {
      if (!handle(parameter)) ++expected_.failures;
      Dot();
    }
    if (abort_) return;
  }
}

void Oracle::ReceiveAll() {
  Walk([this](PlantParameter& parameter) { return ReceiveOne(parameter); });
}

bool Oracle::ReceiveOne(PlantParameter& parameter) {
  if (parameter.kind == Kind::Unknown) return true;
  if (parameter.kind == Kind::Text) {
    // What could be read replaces the text, unless a run-time error ends the walk here.
    QString text;
    const bool complete = ReadText(parameter, text);
    parameter.text = text;
    return complete;
  }
  const std::optional<qint32> number = ReadNumber(parameter);
  if (number) parameter.value = *number;
  return number.has_value();
}

bool Oracle::CompareOne(const PlantParameter& parameter) {
  if (parameter.kind == Kind::Unknown) return true;
  if (parameter.kind == Kind::Text) {
    QString text;
    if (!ReadText(parameter, text)) return false;
    if (text != parameter.text.left(parameter.length)) Deviation(parameter, parameter.text, text);
    return true;
  }
  const std::optional<qint32> number = ReadNumber(parameter);
  if (number && *number != parameter.value)
    Deviation(parameter, Scaled(parameter, parameter.value), Scaled(parameter, *number));
  return number.has_value();
}

bool Oracle::SendOne(const PlantParameter& parameter) {
  const QByteArray& address = parameter.address;
  switch (parameter.kind) {
    case Kind::Long:
      return (Write(parameter.value / 65536, address) && Write(parameter.value % 65536, After(address, 2))) ||
             Fails(parameter);
    case Kind::Int:
      return Write(parameter.value, address) || Fails(parameter);
    case Kind::Char: {
      const std::optional<qint16> old = ReadSigned(address);
      if (!old) return Fails(parameter);
      const qint64 word = IsOdd(parameter) ? qint64{*old} / 256 * 256 + qint64{parameter.value}
                                           : qint64{parameter.value} * 256 + *old % 256;
      if (word != static_cast<qint32>(word)) throw RunTimeError{u"Zahl außerhalb des zulässigen Bereichs."_s};
      return Write(static_cast<qint32>(word), address) || Fails(parameter);
    }
    case Kind::Text: {
      QString text = parameter.text;
      while (text.size() < parameter.length)
        text += u' ';
      for (int k = 1; k <= parameter.length / 2; ++k) {
        const int word = Code(text.at(2 * k - 2)) * 256 + Code(text.at(2 * k - 1));
        if (Write(word, After(address, 2 * k - 2))) continue;
        const QString failure = u"Fehler bei: "_s + parameter.variable + u'[' + QString::number(k) + u']';
        expected_.boxes.append(failure);
        Add(failure);
        return false;
      }
      return true;
    }
    case Kind::Unknown:
      break;
  }
  return true;
}

std::optional<qint32> Oracle::ReadNumber(const PlantParameter& parameter) {
  const std::optional<qint16> word = ReadSigned(parameter.address);
  std::optional<qint32> number;
  if (word && parameter.kind == Kind::Long) {
    const std::optional<qint32> low = ReadUnsigned(After(parameter.address, 2));
    if (low) number = *word * 65536 + *low;
  } else if (word && parameter.kind == Kind::Char) {
    number = IsOdd(parameter) ? *word & 255 : *word / 256;
  } else if (word) {
    number = *word;
  }
  if (!number) Fails(parameter);
  return number;
}

bool Oracle::ReadText(const PlantParameter& parameter, QString& text) {
  for (int k = 1; k <= parameter.length / 2; ++k) {
    const std::optional<qint16> word = ReadSigned(After(parameter.address, 2 * k - 2));
    if (!word) {
      Add(u"Fehler bei: "_s + parameter.variable + u'[' + QString::number(k) + u']');
      return false;
    }
    if (*word == -1) {
      text += u' ';
      continue;
    }
    // The high byte is raised by one where the low byte is 128 or more.
    const int low = *word & 255;
    const int high = ((*word & 0xFFFF) / 256 + (low >= 128 ? 1 : 0)) & 255;
    text += Character(high);
    text += Character(low);
  }
  return true;
}

bool Oracle::Fails(const PlantParameter& parameter) {
  Add(u"Fehler bei: "_s + parameter.variable);
  return false;
}

void Oracle::Deviation(const PlantParameter& parameter, const QString& pc, const QString& controller) {
  Add(u"Änderung bei: "_s + parameter.name);
  Add(u"   PC    : "_s + pc);
  Add(u"   Regler: "_s + controller);
  ++expected_.deviations;
}

QString Oracle::Identify() {
  QString version = QueryVersion();
  for (const QString& settings : {u"19200,o,7,1"_s, u"9600,o,7,1"_s}) {
    if (!version.startsWith(u"ERROR: "_s)) break;
    Configure(settings);
    version = QueryVersion();
  }
  return version;
}

QString Oracle::QueryVersion() {
  const Reply reply = Transact("v00");
  if (!reply.error.isEmpty()) return reply.error;
  // What stands behind the first eight characters does not count.
  Judge(reply, reply.payload.left(8) == line_.Truth().version);
  QString type = Text(reply.payload.left(4));
  if (type.size() < 4 || type.at(3) != u'-') type += u'-';
  QString number = QString::number(Number(reply.payload.mid(4, 4)));
  while (number.size() < 4)
    number.prepend(u'0');
  return type + number.left(3) + u'.' + number.right(1);
}

void Oracle::Configure(const QString& settings) {
  if (abort_) return;
  settings_ = settings;
  const Exchange& exchange = NextExchange();
  Require(!exchange.frame, u"a telegram instead of trying the port"_s);
}

// The digits of a good reply; nothing after a failure, which is in the report, or a reply of another length.
std::optional<Oracle::Reply> Oracle::ReadDigits(const QByteArray& address) {
  const Reply reply = WithRetries(kReadLetter + address.right(4));
  if (!reply.error.isEmpty()) {
    Add(reply.error);
    return {};
  }
  if (reply.payload.size() != 4) return {};
  return reply;
}

std::optional<qint16> Oracle::ReadSigned(const QByteArray& address) {
  const std::optional<Reply> reply = ReadDigits(address);
  if (!reply) return {};
  const int number = SignedNumber(reply->payload);
  if (number < -32768 || number > 32767) throw RunTimeError{u"Zahl außerhalb des zulässigen Bereichs."_s};
  Judge(*reply,
        (number & 0xFFFF) == reply->exchange->heldBefore || (number & 0xFFFF) == reply->exchange->heldAfter);
  return static_cast<qint16>(number);
}

std::optional<qint32> Oracle::ReadUnsigned(const QByteArray& address) {
  const std::optional<Reply> reply = ReadDigits(address);
  if (!reply) return {};
  const int number = Number(reply->payload);
  Judge(*reply, number == reply->exchange->heldBefore || number == reply->exchange->heldAfter);
  return number;
}

bool Oracle::Write(qint32 value, const QByteArray& address) {
  const Reply reply = WithRetries(kWriteLetter + address.right(4) + Hex4(value));
  if (!reply.error.isEmpty()) {
    Add(reply.error);
    return false;
  }
  Judge(reply, reply.exchange->heldAfter == (value & 0xFFFF));
  return true;
}

Oracle::Reply Oracle::WithRetries(const QByteArray& body) {
  Reply reply;
  for (int attempt = 0; attempt < 3; ++attempt) {
    reply = Transact(body);
    if (reply.error.isEmpty()) break;
  }
  return reply;
}

const Exchange& Oracle::NextExchange() {
  Require(next_ < line_.log.size(), u"the exchange is missing"_s);
  const Exchange& exchange = line_.log[next_++];
  Require(exchange.port == 1 && exchange.settings == settings_, u"settings are "_s + exchange.settings);
  return exchange;
}

Oracle::Reply Oracle::Transact(const QByteArray& body) {
  Reply reply;
  reply.number = static_cast<int>(next_);
  const Exchange& exchange = NextExchange();
  reply.exchange = &exchange;
  if (reply.number > 0) {
    const double closed_s = line_.log[next_ - 2].closedAt_s;
    Require(exchange.openedAt_s - closed_s >= kPause_s || clock_.Disturbed(closed_s, exchange.openedAt_s),
            u"no pause of 20 ms"_s);
  }
  if (!exchange.opened || !exchange.cleared) {
    Require(!exchange.frame, u"sent on a port that could not be opened"_s);
    Require(exchange.event.has_value(), u"nobody asked for a line error"_s);
    reply.error = test::WithEvent(u"ERROR: COM 1 nicht verfügber"_s, {}, *exchange.event);
    return reply;
  }
  const QByteArray frame = test::Summed("#0102" + body);
  Require(exchange.frame.has_value(), u"nothing was sent instead of "_s + Text(frame));
  Require(*exchange.frame == frame, Text(*exchange.frame) + u" was sent instead of "_s + Text(frame));
  Require(exchange.closedAt_s - exchange.sentAt_s <= kLongestExchange_s + kTolerance_s ||
              clock_.Disturbed(exchange.sentAt_s, exchange.closedAt_s),
          u"it took too long"_s);

  Receive(exchange, reply);
  if (reply.error.isEmpty()) ++expected_.accepted;
  return reply;
}

// What the characters come to, and that the program took them as it has to.
void Oracle::Receive(const Exchange& exchange, Reply& reply) {
  using State = test::ExchangeReading::State;
  const double begun_s = exchange.sentShown_s;
  test::ExchangeReading reading(exchange.frame->size(), begun_s);
  std::vector<int> origins;
  for (const Taken& taken : exchange.takes) {
    Require(reading.GetState() == State::Waiting, u"went on after the end"_s);
    Require(reading.InLine() || !taken.bytes.isEmpty(), u"the buffer was empty"_s);
    reading.Take(taken.shown_s, taken.bytes, taken.gone);
    origins.insert(origins.end(), taken.origins.begin(), taken.origins.end());
  }
  if (reading.GetState() == State::Waiting) RequireEnd(exchange, reading);
  if (reading.GetState() != State::Complete) {
    Require(exchange.event.has_value(), u"nobody asked for a line error"_s);
  }
  reply.line = reading.Line();
  const auto first = origins.begin() + reading.First();
  reply.origins.assign(first, first + reading.Line().size());
  test::Verdict verdict = reading.Result(exchange.event.value_or(0));
  reply.error = verdict.failure;
  reply.payload = verdict.payload;
}

// The program gave up at the right time.
void Oracle::RequireEnd(const Exchange& exchange, const test::ExchangeReading& reading) {
  const double begun_s = exchange.sentShown_s;
  const bool overLong =
      !exchange.takes.empty() && Expired(begun_s, exchange.takes.back().shown_s, kLongestExchange_s);
  if (reading.InLine()) {
    Require(overLong, u"given up in the middle of a reply"_s);
    return;
  }
  Require(overLong || (exchange.endsWaiting &&
                       (exchange.endsGone || Expired(reading.Since_s(), exchange.endShown_s, kReplyTime_s) ||
                        Expired(begun_s, exchange.endShown_s, kLongestExchange_s))),
          u"given up too early"_s);
}

void Oracle::Judge(const Reply& reply, bool right) {
  if (right) return;
  ++expected_.wrong[static_cast<std::size_t>(ClassOf(line_, reply.line, reply.origins, reply.number))];
}

void Oracle::Add(const QString& text) {
  expected_.lines.append(text);
  Operation();
}

void Oracle::Dot() {
  expected_.lines.last() += u'.';
  Operation();
}

void Oracle::Operation() {
  if (++operations_ == user_.abortAtOperation) abort_ = true;
}

qint16 Oracle::Ask(const QString& question, const QString& first, const QString& second) {
  const auto number = static_cast<std::size_t>(expected_.questions.size());
  expected_.questions.append(question + u'|' + first + u'|' + second);
  if (user_.abortAtQuestion == static_cast<int>(number)) abort_ = true;
  Require(number < user_.answers.size(), u"the question was not asked"_s);
  return user_.answers[number];
}

}  // namespace kalivor::campaign
