#include "platform/posix/TerminalSettings.h"

#include <algorithm>
#include <array>
#include <iterator>

namespace kalivor::platform {
namespace {

struct Rate {
  int baud = 0;
  speed_t speed = B0;
};

constexpr Rate kRates[] = {
    {50, B50},           {75, B75},           {110, B110},         {134, B134},         {150, B150},
    {200, B200},         {300, B300},         {600, B600},         {1200, B1200},       {1800, B1800},
    {2400, B2400},       {4800, B4800},       {9600, B9600},       {19200, B19200},     {38400, B38400},
    {57600, B57600},     {115200, B115200},   {230400, B230400},   {460800, B460800},   {500000, B500000},
    {576000, B576000},   {921600, B921600},   {1000000, B1000000}, {1152000, B1152000}, {1500000, B1500000},
    {2000000, B2000000}, {2500000, B2500000}, {3000000, B3000000}, {3500000, B3500000}, {4000000, B4000000},
};

// The entry whose `member` is `value`.
template <typename Value>
Rate Find(Value Rate::*member, Value value) {
  const auto* found = std::ranges::find(kRates, value, member);
  return found == std::end(kRates) ? Rate{} : *found;
}

tcflag_t ParityFlags(char parity) {
  switch (parity) {
    case 'o':
      return PARENB | PARODD;
    case 'e':
      return PARENB;
    case 'm':
      return PARENB | PARODD | CMSPAR;
    case 's':
      return PARENB | CMSPAR;
    default:
      return 0;
  }
}

}  // namespace

speed_t SpeedOf(int baud) {
  return Find(&Rate::baud, baud).speed;
}

int BaudOf(speed_t speed) {
  return Find(&Rate::speed, speed).baud;
}

tcflag_t ControlFlags(const LineSettings& settings) {
  constexpr std::array<tcflag_t, 4> kDataBits = {CS5, CS6, CS7, CS8};
  const tcflag_t dataBits = kDataBits.at(static_cast<std::size_t>(settings.dataBits - 5));
  return ParityFlags(settings.parity) | dataBits | (settings.stopBits == 2 ? CSTOPB : 0);
}

}  // namespace kalivor::platform
