// Words between PC and controller, asked for so that no reply can be taken for another one's.
#pragma once

#include <QString>
#include <functional>
#include <optional>

#include "base/Module1.h"
#include "comm/COM_T.h"

namespace kalivor {

/// Which command letter of the version table's row; it is a blank where no version is selected.
inline constexpr int kWriteLetter = 0;
inline constexpr int kReadLetter = 1;
[[nodiscard]] QChar CommandLetter(const VersionTable& versions, int letter);

/// What the version query came to.
struct Identification {
  bool succeeded = false;
  QString text;  ///< the version ("AB1-123.4"); of a failure what the user reads about it
};

/// A word as it was read, or what the user reads about the failure.
struct WordReading {
  std::optional<quint16> word;
  QString failure;
};

/// The telegrams are those of COM_A; what is done when one fails is not:
/// - After a failed attempt the line has to be silent for the stored time (Settings::Ruhezeit) before the
///   next one; what comes meanwhile is thrown away. So a late reply meets nobody who waits.
/// - The first five characters of every reply have to be those of the first good one.
/// - A word that needed a second attempt, and one that is not the expected one, is believed when two readings
///   in a row agree.
/// There are three attempts. A time-out, a wrong sum, a refusal, a reply of another form and a port that is
/// not available are failures alike. A line that is never silent ends the rest with a failure; so may a clock
/// that is set.
class CarefulLine {
 public:
  /// `goOn` is called at least ten times a second while the line rests: false ends the operation with a
  /// failure. Everything must outlive the line.
  CarefulLine(const Settings& settings, const VersionTable& versions, COM_T_frm& host,
              std::function<bool()> goOn);

  /// The version of the connected controller: asks at the present rate, then at 19200, then at 9600 baud,
  /// and keeps the rate that was tried last.
  [[nodiscard]] Identification Identify();

  /// The same at the present rate alone.
  [[nodiscard]] Identification AskVersion();

  [[nodiscard]] WordReading Read(quint16 address, std::optional<quint16> expected = {});

  /// Writes a word. Returns "" when the controller has acknowledged it, which does not mean that it holds it;
  /// or what the user reads about the failure. It may hold it then all the same.
  [[nodiscard]] QString Write(quint16 address, quint16 word);

  /// Attempts that have failed so far.
  [[nodiscard]] int FailedAttempts() const { return failedAttempts_; }

 private:
  [[nodiscard]] QString Attempt(const QString& body);
  [[nodiscard]] WordReading ReadOnce(quint16 address);
  [[nodiscard]] Identification AskVersionOnce();
  [[nodiscard]] QString Unexpected(const QString& payload);
  void NoteFailed(const QString& failure);
  void NextIsAttempt(int attempt);
  bool Rest();
  bool WaitForSilence();

  const Settings& settings_;
  const VersionTable& versions_;
  COM_T_frm& host_;
  COM_T transport_;
  std::function<bool()> goOn_;
  QString header_;          // of the first good reply; empty before it
  bool unsettled_ = false;  // an attempt has failed, and the line has not rested since
  int failedAttempts_ = 0;
};

}  // namespace kalivor
