// What one exchange has to come to, worked out from the characters that arrive and when: the rules of the
// line in their plainest form, apart from the program's own code.
#pragma once

#include <QByteArray>
#include <QString>
#include <vector>

namespace kalivor::test {

/// Characters that arrive together, so many milliseconds after the request went out.
struct Arrival {
  double at_ms;
  QByteArray characters;
};

/// What the program is to make of it: a payload, or the text of a failure.
struct Verdict {
  QString failure;
  QByteArray payload;
};

inline QByteArray SumDigits(const QByteArray& characters) {
  unsigned sum = 0;
  for (const char c : characters)
    sum += static_cast<unsigned char>(c);
  const char* const digits = "0123456789ABCDEF";
  return QByteArray(1, digits[sum / 16 % 16]) + digits[sum % 16];
}

/// `content` with the digits of its sum and a carriage return.
inline QByteArray Summed(const QByteArray& content) {
  return content + SumDigits(content) + '\r';
}

/// The texts in failures are Latin-1 here: damaged characters of 128 to 159 are compared by their code only.
inline Verdict VerdictOnLine(const QByteArray& line) {
  if (line.size() < 9)
    return {QStringLiteral("ERROR: unvollständige Antwort: ") + QString::fromLatin1(line), {}};
  if (line.at(5) == '?') {
    const QByteArray code = line.mid(6, 2);
    QString text = QStringLiteral("ERROR:  Code ") + QString::fromLatin1(code);
    if (code == "02") text += QStringLiteral(" Falscher Serialmode");
    if (code == "04") text += QStringLiteral(" Falsches Kennzeichen");
    if (code == "05") text += QStringLiteral(" Falsche Anzahl Parameter");
    if (code == "06") text += QStringLiteral(" Falsches Zeichen");
    if (code == "07") text += QStringLiteral(" Falsche Datensatznummer");
    return {text, {}};
  }
  const QByteArray content = line.chopped(3);
  if (SumDigits(content) != line.mid(content.size(), 2))
    return {QStringLiteral("ERROR:  Checksumme Falsch"), {}};
  return {{}, content.mid(6)};
}

/// No arrival may fall on the very end of a waiting time. Characters count one by one, whatever they come
/// with.
inline Verdict VerdictByRules(const QByteArray& request, const std::vector<Arrival>& arrivals) {
  constexpr double wait_ms = 400;
  constexpr double whole_ms = 1200;
  constexpr unsigned char lastControl = 13;
  double since_ms = 0;
  QByteArray line;
  const auto notInTime = [&line] {
    return Verdict{
        QStringLiteral("ERROR: ungültiger Empfang:  (") + QString::fromLatin1(line) + QStringLiteral(")."),
        {}};
  };
  for (const Arrival& arrival : arrivals) {
    const bool late = arrival.at_ms - since_ms >= wait_ms || arrival.at_ms >= whole_ms;
    if (late && line.isEmpty()) break;
    if (late) return notInTime();
    for (const char c : arrival.characters) {
      if (line.isEmpty()) since_ms = arrival.at_ms;
      line += c;
      if (static_cast<unsigned char>(c) > lastControl) continue;
      if (line.front() != '#') return VerdictOnLine(line);
      // It begins with the echo of the request.
      line.remove(0, request.size());
      if (!line.isEmpty() && line.back() >= 10 && line.back() <= 13) return VerdictOnLine(line);
      line.clear();
      since_ms = arrival.at_ms;
    }
  }
  if (!line.isEmpty()) return notInTime();
  return {QStringLiteral("ERROR: kein Empfang"), {}};
}

}  // namespace kalivor::test
