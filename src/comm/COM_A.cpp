#include "comm/COM_A.h"

#include "base/Numbers.h"
#include "base/su.h"

using namespace Qt::StringLiterals;

namespace kalivor {
namespace {

constexpr int kTries = 3;
constexpr qsizetype kAddressLength = 4;
constexpr int kWordLength = 4;

}  // namespace

// Type text, "-", the number with its last digit behind a point.
QString VersionText(const QString& payload) {
  QString type = payload.left(4);
  if (type.size() < 4 || type.at(3) != u'-') type += u'-';
  const auto number = static_cast<qint64>(su::HexToNumber(payload.mid(4, 4)));
  const QString digits = su::Align(QString::number(number), 4, u"R", u"0");
  return type + digits.left(3) + u'.' + digits.right(1);
}

QString COM_A::Configure(qint16 slot, QStringView settings) {
  return host_.ConfigurePort(slot, kControllerProtocol, settings_.Adresse, settings_.Schnittstelle,
                             settings.toString());
}

QString COM_A::ReadVersion(qint16 slot) {
  QString payload;
  if (host_.Ports[slot].Protokoll == kControllerProtocol) payload = transport_.Transact(slot, u"v00"_s, true);
  return IsError(payload) ? payload : VersionText(payload);
}

QString COM_A::Identify(qint16 slot) {
  QString version = ReadVersion(slot);
  for (const QStringView settings : {kSettings19200, kSettings9600}) {
    if (!IsError(version)) break;
    // Whether the port could be opened shows in the next query.
    (void)Configure(slot, settings);
    version = ReadVersion(slot);
  }
  return version;
}

Identification COM_A::AskVersion(qint16 slot) {
  const QString answer = Identify(slot);
  return {!IsError(answer), answer};
}

QString COM_A::Body(int letter, QStringView address) const {
  return CommandLetter(versions_, letter) + address.right(kAddressLength).toString();
}

bool COM_A::WriteWord(qint16 slot, qint32 value, const QString& address) {
  if (host_.Ports[slot].Protokoll != kControllerProtocol) return true;
  const QString body = Body(kWriteLetter, address) + su::HexPad(value, kWordLength);
  const QString result = transport_.SendWithRetry(slot, body, true, kTries);
  if (!IsError(result)) return true;
  onFailure_(result);
  return false;
}

bool COM_A::ReadWord(qint16 slot, QString& digits, const QString& address) {
  digits.clear();
  if (host_.Ports[slot].Protokoll == kControllerProtocol)
    digits = transport_.SendWithRetry(slot, Body(kReadLetter, address), true, kTries);
  if (IsError(digits)) {
    onFailure_(digits);
    return false;
  }
  if (digits.size() == kWordLength) return true;
  // Nobody is told, as ever; but whoever looks at the line shall see it.
  host_.Exchanges.Judge(u"ERROR: unerwartete Antwort: "_s + digits);
  return false;
}

bool COM_A::ReadInt(qint16 slot, qint16& result, const QString& address) {
  QString digits;
  if (!ReadWord(slot, digits, address)) return false;
  result = RoundToInt16(su::SignedHexToNumber(digits));
  return true;
}

bool COM_A::ReadLong(qint16 slot, qint32& result, const QString& address) {
  QString digits;
  if (!ReadWord(slot, digits, address)) return false;
  result = RoundToInt32(su::HexToNumber(digits));
  return true;
}

}  // namespace kalivor
