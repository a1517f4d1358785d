// The settings of a serial line, from their usual notation.
#include "platform/posix/LineSettings.h"

#include <QList>
#include <algorithm>
#include <array>

using namespace Qt::StringLiterals;

namespace kalivor::platform {
namespace {

template <typename Value>
struct Word {
  QStringView text;
  Value value;
};

constexpr std::array kSpeeds = std::to_array<Word<speed_t>>({
    {u"50", B50},           {u"75", B75},           {u"110", B110},         {u"134", B134},
    {u"150", B150},         {u"200", B200},         {u"300", B300},         {u"600", B600},
    {u"1200", B1200},       {u"1800", B1800},       {u"2400", B2400},       {u"4800", B4800},
    {u"9600", B9600},       {u"19200", B19200},     {u"38400", B38400},     {u"57600", B57600},
    {u"115200", B115200},   {u"230400", B230400},   {u"460800", B460800},   {u"500000", B500000},
    {u"576000", B576000},   {u"921600", B921600},   {u"1000000", B1000000}, {u"1152000", B1152000},
    {u"1500000", B1500000}, {u"2000000", B2000000}, {u"2500000", B2500000}, {u"3000000", B3000000},
    {u"3500000", B3500000}, {u"4000000", B4000000},
});

constexpr std::array kParities = std::to_array<Word<tcflag_t>>({
    {u"n", 0},
    {u"o", PARENB | PARODD},
    {u"e", PARENB},
    {u"m", PARENB | PARODD | CMSPAR},
    {u"s", PARENB | CMSPAR},
});

constexpr std::array kDataBits =
    std::to_array<Word<tcflag_t>>({{u"5", CS5}, {u"6", CS6}, {u"7", CS7}, {u"8", CS8}});

constexpr std::array kStopBits = std::to_array<Word<tcflag_t>>({{u"1", 0}, {u"2", CSTOPB}});

template <typename Words>
auto Find(const Words& words, QStringView text) {
  const auto found = std::find_if(words.begin(), words.end(), [text](const auto& word) {
    return word.text.compare(text, Qt::CaseInsensitive) == 0;
  });
  return found == words.end() ? std::nullopt : std::optional(found->value);
}

}  // namespace

std::optional<LineSettings> ParseLineSettings(QStringView text) {
  const QList<QStringView> parts = text.split(u',');
  if (parts.size() != 4) return std::nullopt;
  const std::optional<speed_t> speed = Find(kSpeeds, parts[0]);
  const std::optional<tcflag_t> parity = Find(kParities, parts[1]);
  const std::optional<tcflag_t> dataBits = Find(kDataBits, parts[2]);
  const std::optional<tcflag_t> stopBits = Find(kStopBits, parts[3]);
  if (!speed || !parity || !dataBits || !stopBits) return std::nullopt;
  return LineSettings{*speed, *parity | *dataBits | *stopBits};
}

}  // namespace kalivor::platform
