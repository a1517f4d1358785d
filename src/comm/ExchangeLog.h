// What the line has carried lately: every exchange, and how good the line is.
#pragma once

#include <QByteArray>
#include <QString>
#include <algorithm>
#include <array>
#include <functional>
#include <vector>

#include "base/Module1.h"
#include "comm/LineQuality.h"
#include "platform/Clock.h"

namespace kalivor {

struct PortRecord;

/// How an exchange ended.
enum class ExchangeEnd : quint8 {
  Good,      ///< a reply that could be used
  NoPort,    ///< the port could not be opened
  Silent,    ///< nothing came
  EchoOnly,  ///< nothing but the request itself came back
  Damaged,   ///< something came, but no reply of the right form
  Refused,   ///< the controller answered that it does not do it
};

/// Characters of an exchange; those behind the first ones are only counted.
template <int Limit>
struct KeptCharacters {
  std::array<char, Limit> kept{};
  int count = 0;  ///< that there were

  void Append(QByteArrayView characters) {
    for (const char character : characters) {
      if (count < Limit) kept[static_cast<std::size_t>(count)] = character;
      ++count;
    }
  }
  void Clear() { count = 0; }
  [[nodiscard]] QByteArrayView View() const { return {kept.data(), std::min<qsizetype>(count, Limit)}; }
  [[nodiscard]] bool Whole() const { return count <= Limit; }
};

/// One request and what came of it.
struct Exchange {
  qint64 number = 0;    ///< from 1 on, since the start
  double at_s = 0;      ///< seconds since local midnight, when the request was given to the line
  double answer_s = 0;  ///< from then to the end of the reply, or to where it was no longer waited for
  qint16 portNumber = 0;
  qint16 address = 0;  ///< of the station
  int attempt = 1;     ///< from 1 on, for the same question
  ExchangeEnd end = ExchangeEnd::Good;
  int lineError = 0;  ///< that the port has reported (a kCommEvent… number); 0: none, or none was asked for
  KeptCharacters<32> request;
  KeptCharacters<160> received;  ///< all of it, the echo of the request too
  QString settings;              ///< of the line: "9600,o,7,1"
  QString version;               ///< of the controller, as it was selected on the PC
  QString failure;               ///< what the user reads about it; "" of a good one
  QString fault;                 ///< what the port says about itself, in German; "" mostly
};

/// Keeps the last exchanges and counts all. Its memory is taken when it is made: what is noted during a
/// transfer asks for none.
class ExchangeLog {
 public:
  static constexpr int kKept = 10000;

  /// Everything must outlive the log.
  explicit ExchangeLog(const platform::Clock& clock);

  /// Every exchange is noted with the version that is selected in `versions`, which must outlive the log.
  void NameVersionsOf(const VersionTable& versions) { versions_ = &versions; }

  // For those who talk to the controller, in this order.

  /// The next exchange is a repetition: the attempt of this number.
  void NextIsAttempt(int attempt) { nextAttempt_ = attempt; }

  void Begin(const PortRecord& port, QStringView frame);
  void Received(QByteArrayView characters);
  void LineError(int event) { Newest().lineError = event; }

  /// The exchange is over: `reply` is what the telegram layer returns; `fault` what the port says about
  /// itself.
  void End(const QString& reply, bool portOpen, const QString& fault);

  /// What became of the last exchange's reply, looked at more closely: a failure ("ERROR: …") makes it a bad
  /// one, anything else leaves it as it is.
  void Judge(const QString& result);

  // For those who look on. Between two exchanges only.

  /// From now on it is another transfer, as far as the quality is concerned: with its first exchange.
  void BeginTransfer() { transferBegins_ = true; }

  /// The number of the first exchange of the present transfer; 1 before there was one.
  [[nodiscard]] qint64 TransferFirst() const { return transferFirst_; }

  /// The last exchange is counted and told; it does not change any more.
  void Settle();

  /// Told once of each exchange, when it has been settled: by Settle() or the beginning of the next. Must not
  /// throw.
  std::function<void(const Exchange& exchange)> OnSettled;

  /// Those that are kept, the oldest first, settled ones only.
  [[nodiscard]] int Count() const { return static_cast<int>(settled_ - First() + 1); }
  [[nodiscard]] const Exchange& At(int position) const { return Numbered(First() + position); }

  /// The number of the oldest that is kept, and of the newest; First() is greater where there is none.
  [[nodiscard]] qint64 First() const;
  [[nodiscard]] qint64 Last() const { return settled_; }

  /// The exchange of this number, First() to Last().
  [[nodiscard]] const Exchange& Numbered(qint64 number) const;

  /// Of all settled exchanges since the start, and since the transfer began.
  [[nodiscard]] const LineQuality& SinceStart() const { return sinceStart_; }
  [[nodiscard]] const LineQuality& OfTransfer() const { return ofTransfer_; }

 private:
  [[nodiscard]] Exchange& Newest() { return kept_[Place(begun_)]; }
  [[nodiscard]] static std::size_t Place(qint64 number) {
    return static_cast<std::size_t>((number - 1) % kKept);
  }

  const platform::Clock& clock_;
  const VersionTable* versions_ = nullptr;
  std::vector<Exchange> kept_;  // a ring, by number
  qint64 begun_ = 0;            // the number of the newest
  qint64 settled_ = 0;          // the same of the newest that does not change any more
  int nextAttempt_ = 1;
  bool transferBegins_ = false;
  qint64 transferFirst_ = 1;
  LineQuality sinceStart_;
  LineQuality ofTransfer_;
};

}  // namespace kalivor
