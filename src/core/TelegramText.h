// What a telegram says, in German: for the window, the traces of the programs and reports.
#pragma once

#include <QString>
#include <utility>
#include <vector>

#include "base/Module1.h"
#include "comm/ExchangeLog.h"

namespace kalivor {

/// Characters of the line as they are shown: control characters as their symbols ("␍").
[[nodiscard]] QString ShownCharacters(QByteArrayView characters);

/// The same; where some of them were not kept, it ends in how many there were.
template <int Limit>
[[nodiscard]] QString ShownCharacters(const KeptCharacters<Limit>& characters) {
  QString shown = ShownCharacters(characters.View());
  if (!characters.Whole()) shown += QStringLiteral(" … (%1 Zeichen)").arg(characters.count);
  return shown;
}

/// "14:03:07.120"; a time behind midnight begins anew.
[[nodiscard]] QString TimeOfDay(double secondsSinceMidnight);

/// A telegram in one line of a trace, behind its time: the direction, the characters, what they say.
[[nodiscard]] QString RequestLine(const QString& characters, const QString& text);
[[nodiscard]] QString ReplyLine(const QString& characters, const QString& text);

/// What a reply says.
struct ReplyMeaning {
  bool usable = false;  ///< the program can do something with it
  QString text;
};

/// Reads telegrams by the definitions of the selected version. It has a copy of all that it needs: it is made
/// once for definitions, and knows nothing of what changes afterwards. The version of an exchange is what was
/// selected when it took place; where it is another one than the reader's, no parameter is named.
class TelegramReader {
 public:
  /// Knows no version.
  TelegramReader() = default;
  explicit TelegramReader(const Module1& module);

  [[nodiscard]] const QString& Version() const { return version_; }

  /// What a request asks for: "Gerät 1: Lesen 1F00, Drehzahl".
  [[nodiscard]] QString RequestText(QByteArrayView request, const QString& version) const;

  /// What came back, the echo included: "Drehzahl = 150.0 1/m", or what is wrong with it.
  [[nodiscard]] ReplyMeaning ReplyText(QByteArrayView request, QByteArrayView received,
                                       const QString& version) const;

  /// The same of an exchange: the attempt and that nothing was sent; why it failed, and what the port says.
  [[nodiscard]] QString RequestText(const Exchange& exchange) const;
  [[nodiscard]] QString ReplyText(const Exchange& exchange) const;

 private:
  /// A word that belongs to a parameter.
  struct Place {
    quint16 address = 0;
    quint16 mask = 0;   ///< the bits that do
    int parameter = 0;  ///< in records_
    int word = 0;       ///< of the parameter, from 1
    int words = 0;      ///< that it has
  };
  struct Parts;

  [[nodiscard]] Parts PartsOf(QByteArrayView request, const QString& version) const;
  [[nodiscard]] QString WordText(const Parts& parts, QStringView digits) const;
  [[nodiscard]] QString ValueText(const Place& place, quint16 word) const;
  [[nodiscard]] QString NameAt(const Place& place) const;
  [[nodiscard]] std::pair<std::vector<Place>::const_iterator, std::vector<Place>::const_iterator> PlacesAt(
      const Parts& parts) const;

  QString version_;
  std::vector<std::pair<QString, FixedText<2>>> letters_;  // of each version: to write, to read
  std::vector<ParameterRecord> records_;
  std::vector<Place> places_;  // by address
};

/// The lines of a trace: for each exchange those of its telegrams, and before them one about the line where
/// it is another one than before.
class TelegramLines {
 public:
  /// Each line ends with LF.
  [[nodiscard]] QString Of(const TelegramReader& reader, const Exchange& exchange);

 private:
  qint16 portNumber_ = 0;
  QString settings_;
  QString version_;
};

}  // namespace kalivor
