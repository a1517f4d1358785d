// What one exchange with the controller comes to, worked out from the characters that the PC took and when:
// the rules of the line once more in their plainest form, apart from the program's own code.
#pragma once

#include <QByteArray>
#include <QString>
#include <algorithm>

namespace kalivor::test {

inline constexpr double kReplyTime_s = 0.4;        ///< for the first character, and then for the whole line
inline constexpr double kLongestExchange_s = 1.2;  ///< however many lines there are

/// True where a time that began at `start_s` on the clock is over. A clock that was set back ends it.
[[nodiscard]] inline bool Expired(double start_s, double now_s, double duration_s) {
  return now_s < start_s || now_s - start_s >= duration_s;
}

// Characters, codes and numbers

/// A character of windows-1252; codes without one keep their number.
[[nodiscard]] inline QChar Character(int code) {
  // The upper half that differs from Latin-1.
  constexpr char16_t high[32] = {0x20AC, 0x81,   0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021,
                                 0x02C6, 0x2030, 0x0160, 0x2039, 0x0152, 0x8D,   0x017D, 0x8F,
                                 0x90,   0x2018, 0x2019, 0x201C, 0x201D, 0x2022, 0x2013, 0x2014,
                                 0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0x9D,   0x017E, 0x0178};
  return code >= 0x80 && code < 0xA0 ? QChar(high[code - 0x80]) : QChar(static_cast<char16_t>(code));
}

[[nodiscard]] inline QString Text(const QByteArray& bytes) {
  QString text;
  for (const char byte : bytes)
    text += Character(static_cast<unsigned char>(byte));
  return text;
}

/// The last `count` hexadecimal digits of a number.
[[nodiscard]] inline QByteArray HexDigits(qint64 number, int count) {
  QByteArray text;
  for (int shift = 4 * (count - 1); shift >= 0; shift -= 4)
    text += "0123456789ABCDEF"[(number >> shift) & 15];
  return text;
}

/// The two digits of the sum of all codes.
[[nodiscard]] inline QByteArray SumDigits(const QByteArray& characters) {
  unsigned sum = 0;
  for (const char c : characters)
    sum += static_cast<unsigned char>(c);
  return HexDigits(sum, 2);
}

/// `content` with the digits of its sum and a carriage return.
[[nodiscard]] inline QByteArray Summed(const QByteArray& content) {
  return content + SumDigits(content) + '\r';
}

/// What is no hexadecimal digit counts as 0.
[[nodiscard]] inline int Digit(char c) {
  if (c >= '0' && c <= '9') return c - '0';
  if (c >= 'A' && c <= 'F') return c - 'A' + 10;
  if (c >= 'a' && c <= 'f') return c - 'a' + 10;
  return 0;
}

[[nodiscard]] inline int Number(const QByteArray& digits) {
  int number = 0;
  for (const char c : digits)
    number = number * 16 + Digit(c);
  return number;
}

// Texts of failures

/// The German text of a line error, empty for any other event.
[[nodiscard]] inline QString EventText(int event) {
  switch (event) {
    case 1001:
      return QStringLiteral(" Es wurde ein Anhaltesignal (Break-Signal) empfangen.");
    case 1004:
      return QStringLiteral(
          " Datenblockfehler (Framing Error). Die Hardware hat einen Datenblockfehler entdeckt.");
    case 1006:
      return QStringLiteral(
          " Anschlußüberlauf (Port Overrun). Es ist ein Zeichen verlorengegangen, da die Hardware nicht in "
          "der Lage war, dieses Zeichen zu lesen, bevor das nächste Zeichen eintraf.");
    case 1008:
      return QStringLiteral(
          " Überlauf des Empfangspuffers (Receive Buffer Overflow). Der Empfangspuffer ist voll.");
    case 1009:
      return QStringLiteral(
          " Paritätsfehler (Parity Error). Die Hardware hat einen Paritätsfehler entdeckt.");
    case 1010:
      return QStringLiteral(
          " Sendepuffer voll (Transmit Buffer Full). Bei dem Versuch, ein Zeichen in die Warteschlange "
          "aufzunehmen, wurde festgestellt, daß der Sendepuffer voll war.");
    case 1011:
      return QStringLiteral(
          " Unerwarteter Fehler beim Abrufen des Device Control Block (DCB) für den Anschluß.");
    default:
      return {};
  }
}

/// A failure for which the line is asked about errors.
[[nodiscard]] inline QString WithEvent(const QString& failure, const QByteArray& reply, int event) {
  const QString text = EventText(event);
  return text.isEmpty() ? failure
                        : failure + QStringLiteral(" (") + Text(reply) + QStringLiteral(") ") + text;
}

[[nodiscard]] inline QString RefusalText(const QByteArray& code) {
  QString text = QStringLiteral("ERROR:  Code ") + Text(code);
  if (code == "02") text += QStringLiteral(" Falscher Serialmode");
  if (code == "04") text += QStringLiteral(" Falsches Kennzeichen");
  if (code == "05") text += QStringLiteral(" Falsche Anzahl Parameter");
  if (code == "06") text += QStringLiteral(" Falsches Zeichen");
  if (code == "07") text += QStringLiteral(" Falsche Datensatznummer");
  return text;
}

// The exchange

/// A payload, or the text of a failure.
struct Verdict {
  QString failure;
  QByteArray payload;
};

/// What a complete line comes to.
[[nodiscard]] inline Verdict VerdictOnLine(const QByteArray& line) {
  if (line.size() < 9) return {QStringLiteral("ERROR: unvollständige Antwort: ") + Text(line), {}};
  if (line.at(5) == '?') return {RefusalText(line.mid(6, 2)), {}};
  const QByteArray content = line.chopped(3);
  if (SumDigits(content) != line.mid(content.size(), 2))
    return {QStringLiteral("ERROR:  Checksumme Falsch"), {}};
  return {{}, content.mid(6)};
}

/// One exchange from the moment at which its request has gone out. Each character counts by itself, whatever
/// it came with: a line ends at its first character up to a carriage return.
class ExchangeReading {
 public:
  enum class State {
    Waiting,    ///< for more
    Complete,   ///< a line is there
    NotInTime,  ///< the time for a line was over, or the device gone
  };

  ExchangeReading(qsizetype requestLength, double begun_s)
      : requestLength_(requestLength), begun_s_(begun_s), since_s_(begun_s) {}

  /// The PC takes what has come. `gone`: the device had vanished before.
  void Take(double at_s, const QByteArray& characters, bool gone = false) {
    const bool late = inLine_ && (gone || Expired(since_s_, at_s, kReplyTime_s));
    for (const char c : characters) {
      Add(c, at_s);
      if (inLine_) continue;
      if (late) break;
      if (IsReply(at_s)) {
        state_ = State::Complete;
        return;
      }
    }
    if (late) state_ = State::NotInTime;
  }

  [[nodiscard]] State GetState() const { return state_; }
  [[nodiscard]] bool InLine() const { return inLine_; }

  /// The present line without an echo in front of it, and the number of its first character among all that
  /// were taken.
  [[nodiscard]] const QByteArray& Line() const { return line_; }
  [[nodiscard]] qsizetype First() const { return count_ - line_.size(); }

  /// Since when the present wait, or the present line, has lasted.
  [[nodiscard]] double Since_s() const { return since_s_; }

  /// When the PC gives up, if nothing comes any more.
  [[nodiscard]] double Until_s() const {
    return std::min(since_s_ + kReplyTime_s, begun_s_ + kLongestExchange_s);
  }

  /// What it comes to where nothing is taken any more. `event` is what the line says about errors; only
  /// where there is no complete line does anybody ask it.
  [[nodiscard]] Verdict Result(int event) const {
    if (state_ == State::Complete) return VerdictOnLine(line_);
    if (state_ == State::Waiting) return {WithEvent(QStringLiteral("ERROR: kein Empfang"), {}, event), {}};
    const QString text = QStringLiteral("ERROR: ungültiger Empfang:  (") + Text(line_) + QStringLiteral(").");
    return {WithEvent(text, line_, event), {}};
  }

 private:
  void Add(char c, double at_s) {
    constexpr unsigned char lastControl = 13;
    if (!inLine_) {
      line_.clear();
      since_s_ = at_s;
    }
    line_ += c;
    ++count_;
    inLine_ = static_cast<unsigned char>(c) > lastControl;
  }

  // The line has ended. One that begins with the echo of the request is a reply only if another line's end
  // stands behind the echo; else the wait begins anew.
  bool IsReply(double at_s) {
    if (line_.front() != '#') return true;
    line_.remove(0, requestLength_);
    if (!line_.isEmpty() && line_.back() >= 10 && line_.back() <= 13) return true;
    since_s_ = at_s;
    return false;
  }

  qsizetype requestLength_;
  double begun_s_;
  double since_s_;
  State state_ = State::Waiting;
  bool inLine_ = false;
  QByteArray line_;
  qsizetype count_ = 0;
};

}  // namespace kalivor::test
