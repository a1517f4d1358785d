#include "platform/plain/TemporaryName.h"

#include <QRandomGenerator>
#include <algorithm>

using namespace Qt::StringLiterals;

namespace kalivor::platform {
namespace {

const QString kPrefix = u".kalivor-"_s;
const QString kSuffix = u".tmp"_s;
constexpr int kDigits = 16;

}  // namespace

QString TemporaryPattern() {
  return kPrefix + u'*' + kSuffix;
}

QString NewTemporaryName() {
  const quint64 number = QRandomGenerator::system()->generate64();
  return kPrefix + QString::number(number, 16).rightJustified(kDigits, u'0') + kSuffix;
}

bool IsTemporaryName(QStringView name) {
  if (!name.startsWith(kPrefix) || !name.endsWith(kSuffix)) return false;
  const QStringView number = name.sliced(kPrefix.size()).chopped(kSuffix.size());
  return number.size() == kDigits && std::all_of(number.begin(), number.end(), [](QChar digit) {
           return (digit >= u'0' && digit <= u'9') || (digit >= u'a' && digit <= u'f');
         });
}

}  // namespace kalivor::platform
