#include "platform/plain/LineSettings.h"

#include <QList>
#include <QString>
#include <algorithm>
#include <array>

using namespace Qt::StringLiterals;

namespace kalivor::platform {
namespace {

constexpr std::array kRates = {50,      75,      110,     134,     150,     200,    300,     600,
                               1200,    1800,    2400,    4800,    9600,    19200,  38400,   57600,
                               115200,  230400,  460800,  500000,  576000,  921600, 1000000, 1152000,
                               1500000, 2000000, 2500000, 3000000, 3500000, 4000000};

// The number of one of `choices` that is written exactly so.
template <typename Choices>
std::optional<int> Choice(const Choices& choices, QStringView text) {
  const auto found = std::find_if(choices.begin(), choices.end(),
                                  [text](int choice) { return text == QString::number(choice); });
  return found == choices.end() ? std::nullopt : std::optional(*found);
}

}  // namespace

std::optional<LineSettings> ParseLineSettings(QStringView text) {
  const QList<QStringView> parts = text.split(u',');
  if (parts.size() != 4 || parts[1].size() != 1) return std::nullopt;
  const std::optional<int> baud = Choice(kRates, parts[0]);
  const QChar parity = parts[1].front().toLower();
  const std::optional<int> dataBits = Choice(std::array{5, 6, 7, 8}, parts[2]);
  const std::optional<int> stopBits = Choice(std::array{1, 2}, parts[3]);
  if (!baud || !u"noems"_s.contains(parity) || !dataBits || !stopBits) return std::nullopt;
  return LineSettings{*baud, parity.toLatin1(), *dataBits, *stopBits};
}

}  // namespace kalivor::platform
