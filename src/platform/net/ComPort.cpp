#include "platform/net/ComPort.h"

#include <libtelnet.h>

#include <QStringList>
#include <algorithm>
#include <new>
#include <utility>

#include "platform/SerialControl.h"

using namespace Qt::StringLiterals;

namespace kalivor::platform {
namespace {

// The option, and its commands towards the server. Answers have numbers that are greater by kAnswer.
constexpr unsigned char kComPortOption = 44;
constexpr quint8 kSetBaudRate = 1;
constexpr quint8 kSetDataSize = 2;
constexpr quint8 kSetParity = 3;
constexpr quint8 kSetStopSize = 4;
constexpr quint8 kSetControl = 5;
constexpr quint8 kSetLineStateMask = 10;
constexpr quint8 kSetModemStateMask = 11;
constexpr quint8 kPurgeData = 12;
constexpr quint8 kAnswer = 100;
constexpr quint8 kNotifyLineState = kAnswer + 6;

// Values of kSetControl and kPurgeData.
constexpr char kNoFlowControl = 1;
constexpr char kDtrOn = 8;
constexpr char kRtsOn = 11;
constexpr char kRtsOff = 12;
constexpr char kBothDirections = 3;

constexpr QByteArrayView kRefusal("\xFF\xFE\x2C", 3);

// Of kNotifyLineState.
constexpr unsigned kOverrunError = 2;
constexpr unsigned kParityError = 4;
constexpr unsigned kFramingError = 8;
constexpr unsigned kBreak = 16;
constexpr char kAllErrors = kOverrunError | kParityError | kFramingError | kBreak;

quint32 CodeOf(char parity) {
  constexpr QStringView kInOrder = u"noems";
  return static_cast<quint32>(kInOrder.indexOf(QLatin1Char(parity)) + 1);
}

QString NameOf(quint8 command, quint32 value) {
  switch (command) {
    case kSetBaudRate:
      return u"%1 Baud"_s.arg(value);
    case kSetDataSize:
      return u"%1 Datenbits"_s.arg(value);
    case kSetStopSize:
      return value == 1 ? u"ein Stoppbit"_s : u"zwei Stoppbits"_s;
    default:
      switch (value) {
        case 1:
          return u"keine Parität"_s;
        case 2:
          return u"ungerade Parität"_s;
        case 3:
          return u"gerade Parität"_s;
        default:
          return u"feste Parität"_s;
      }
  }
}

// All characters pass as they are, in both directions, without waiting for a line end.
constexpr telnet_telopt_t kOptions[] = {
    {TELNET_TELOPT_BINARY, TELNET_WILL, TELNET_DO},
    {TELNET_TELOPT_SGA, TELNET_WILL, TELNET_DO},
    {kComPortOption, TELNET_WILL, TELNET_DO},
    {-1, 0, 0},
};

}  // namespace

void ComPort::Release::operator()(telnet_t* telnet) const {
  telnet_free(telnet);
}

ComPort::ComPort()
    : telnet_(telnet_init(kOptions, &ComPort::OnEvent, 0, this)),
      settings_{{{kSetBaudRate}, {kSetDataSize}, {kSetParity}, {kSetStopSize}}} {
  if (!telnet_) throw std::bad_alloc();
  telnet_negotiate(telnet_.get(), TELNET_WILL, kComPortOption);
  for (const unsigned char option : std::array<unsigned char, 2>{TELNET_TELOPT_BINARY, TELNET_TELOPT_SGA}) {
    telnet_negotiate(telnet_.get(), TELNET_WILL, option);
    telnet_negotiate(telnet_.get(), TELNET_DO, option);
  }
}

ComPort::~ComPort() = default;

QByteArray ComPort::TakeOutgoing() {
  return std::exchange(outgoing_, {});
}

void ComPort::Receive(QByteArrayView bytes, QByteArray& characters) {
  characters_ = &characters;
  // The library does not tell that an offer is refused: until there is an answer each byte is looked at.
  while (!bytes.isEmpty() && control_ == Control::Offered && !broken_) {
    beginning_ = beginning_.last(std::min(beginning_.size(), kRefusal.size() - 1)) + bytes.front();
    telnet_recv(telnet_.get(), bytes.data(), 1);
    if (control_ == Control::Offered && beginning_ == kRefusal) control_ = Control::Refused;
    bytes = bytes.sliced(1);
  }
  telnet_recv(telnet_.get(), bytes.data(), static_cast<std::size_t>(bytes.size()));
  characters_ = nullptr;
}

void ComPort::OnEvent(telnet_t* /*telnet*/, telnet_event_t* event, void* self) {
  static_cast<ComPort*>(self)->TakeEvent(*event);
}

void ComPort::TakeEvent(const telnet_event_t& event) {
  switch (event.type) {
    case TELNET_EV_SEND:
      outgoing_.append(event.data.buffer, static_cast<qsizetype>(event.data.size));
      break;
    case TELNET_EV_DATA:
      if (purges_ == 0 && characters_ != nullptr)
        characters_->append(event.data.buffer, static_cast<qsizetype>(event.data.size));
      break;
    case TELNET_EV_DO:
      if (event.neg.telopt == kComPortOption && control_ == Control::Offered) BeginControl();
      break;
    case TELNET_EV_DONT:  // after all
      if (event.neg.telopt == kComPortOption) control_ = Control::Refused;
      break;
    case TELNET_EV_SUBNEGOTIATION:
      if (event.sub.telopt == kComPortOption && control_ == Control::Agreed)
        TakeAnswer({event.sub.buffer, static_cast<qsizetype>(event.sub.size)});
      break;
    case TELNET_EV_COMPRESS:  // which nobody has asked for
    case TELNET_EV_ERROR:
      broken_ = true;
      break;
    default:
      break;
  }
}

// Sets what does not change any more, as a port of this computer has it: no flow control, and the power that
// some adapters take from DTR. Not every port has all of it, so nobody waits for an answer.
void ComPort::BeginControl() {
  control_ = Control::Agreed;
  Ask(kSetControl, {&kNoFlowControl, 1});
  Ask(kSetControl, {&kDtrOn, 1});
  Ask(kSetLineStateMask, {&kAllErrors, 1});
  const char nothing = 0;
  Ask(kSetModemStateMask, {&nothing, 1});
}

void ComPort::Ask(quint8 command, QByteArrayView value) {
  const QByteArray message = static_cast<char>(command) + value.toByteArray();
  telnet_begin_sb(telnet_.get(), kComPortOption);
  telnet_send(telnet_.get(), message.constData(), static_cast<std::size_t>(message.size()));
  telnet_finish_sb(telnet_.get());
}

void ComPort::SetLine(const LineSettings& settings) {
  const std::array wanted{static_cast<quint32>(settings.baud), static_cast<quint32>(settings.dataBits),
                          CodeOf(settings.parity), static_cast<quint32>(settings.stopBits)};
  for (std::size_t i = 0; i < settings_.size(); ++i) {
    Setting& setting = settings_.at(i);
    setting.wanted = wanted.at(i);
    if (setting.confirmed == setting.wanted) continue;
    QByteArray value;
    for (int shift = setting.command == kSetBaudRate ? 24 : 0; shift >= 0; shift -= 8)
      value.append(static_cast<char>(setting.wanted >> shift & 0xFF));
    setting.awaited = true;
    Ask(setting.command, value);
  }
}

void ComPort::SetRts(bool raised) {
  const char value = raised ? kRtsOn : kRtsOff;
  Ask(kSetControl, {&value, 1});
}

void ComPort::Purge() {
  ++purges_;
  Ask(kPurgeData, {&kBothDirections, 1});
}

void ComPort::Send(QByteArrayView characters) {
  telnet_send(telnet_.get(), characters.data(), static_cast<std::size_t>(characters.size()));
}

void ComPort::TakeAnswer(QByteArrayView answer) {
  if (answer.size() < 2) return;
  const auto command = static_cast<quint8>(answer.front());
  const QByteArrayView value = answer.sliced(1);
  if (command == kAnswer + kPurgeData && purges_ > 0) --purges_;
  if (command == kNotifyLineState) lineState_ |= static_cast<quint8>(value.front());
  for (Setting& setting : settings_) {
    if (command != kAnswer + setting.command) continue;
    if (value.size() != (setting.command == kSetBaudRate ? 4 : 1)) continue;
    setting.confirmed = 0;
    for (const char byte : value)
      setting.confirmed = setting.confirmed << 8 | static_cast<quint8>(byte);
    setting.awaited = false;
  }
}

bool ComPort::Settled() const {
  for (const Setting& setting : settings_) {
    if (setting.awaited) return false;
  }
  return purges_ == 0;
}

QString ComPort::Refusal() const {
  QStringList refused;
  for (const Setting& setting : settings_) {
    if (!setting.awaited && setting.confirmed != setting.wanted)
      refused.append(NameOf(setting.command, setting.wanted));
  }
  return refused.join(u", ");
}

int ComPort::TakeLineError() {
  const unsigned state = std::exchange(lineState_, 0);
  if ((state & kBreak) != 0) return kCommEventBreak;
  if ((state & kParityError) != 0) return kCommEventParity;
  if ((state & kFramingError) != 0) return kCommEventFraming;
  if ((state & kOverrunError) != 0) return kCommEventOverrun;
  return kCommEventNone;
}

}  // namespace kalivor::platform
