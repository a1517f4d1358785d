// What can go wrong between the controller and the PC, at random but repeatable.
#pragma once

#include <QByteArray>
#include <QString>
#include <map>
#include <optional>
#include <random>
#include <vector>

namespace kalivor::sim {

enum class FaultKind {
  Silent,        ///< no reply
  Late,          ///< the reply comes delay_ms after the request
  LostByte,      ///< one byte of the reply is missing
  DoubledByte,   ///< one byte of the reply comes twice
  FlippedBit,    ///< one of the seven data bits of one byte is inverted
  BadChecksum,   ///< a checksum that does not fit
  Split,         ///< a pause of kSplitPause_ms inside the reply
  Noise,         ///< one to eight printable bytes in front of the reply
  Error,         ///< an error reply with the code `code`
  WrongLength,   ///< a payload one or two characters longer or shorter, with the right checksum
  EchoOnly,      ///< the request comes back, but no reply
  Unplug,        ///< the line vanishes
  ForeignReply,  ///< an intact reply to another request, or of another station
  IgnoreWrite,   ///< a write is acknowledged and not kept
  Swap,          ///< from exchange `from` on another controller answers
};

/// Shorter than the reply time-out of 400 ms.
inline constexpr int kSplitPause_ms = 150;

struct Fault {
  FaultKind kind = FaultKind::Silent;
  int delay_ms = 0;      ///< of Late
  QByteArray code = {};  ///< of Error: two characters
  int from = 0;          ///< of Swap: counted from 1

  bool operator==(const Fault&) const = default;
};

/// How often a fault strikes.
struct FaultRule {
  Fault fault;
  double rate = 1;           ///< probability for each exchange, 0..1
  std::optional<int> count;  ///< at most so many times; unlimited when empty

  bool operator==(const FaultRule&) const = default;
};

/// Reads "KIND[:RATE[:COUNT]]" ("lost-byte:0.1", "late:350:1:2", "error-04") or "swap:N"; empty when it is
/// none.
[[nodiscard]] std::optional<FaultRule> ParseFault(const QString& text);

/// The name of the kind in that notation ("late", "error-04").
[[nodiscard]] QString FaultName(const Fault& fault);

/// Bytes that go out together.
struct Chunk {
  int pause_ms = 0;  ///< before its first byte: after the request, or after the chunk before it
  QByteArray bytes;

  bool operator==(const Chunk&) const = default;
};

/// What comes back for one request.
struct Response {
  std::vector<Chunk> chunks;
  bool unplug = false;         ///< the line vanishes after the chunks
  std::optional<Fault> fault;  ///< what happened to it
  bool ignoresWrite = false;   ///< what the request has written is not kept

  bool operator==(const Response&) const = default;
};

/// The same seed, rules and exchanges give the same responses on every system.
class Faults {
 public:
  explicit Faults(quint32 seed = 0) : generator_(seed) {}

  /// Rules are tried in the order in which they were added; the first that strikes is the one. IgnoreWrite
  /// strikes acknowledged writes alone. Swap has neither rate nor count, and takes no reply away from others.
  void Add(const FaultRule& rule);

  /// Puts a fault on exchange `number`, counted from 1. It comes before every rule.
  void Plan(int number, const Fault& fault) { plan_[number] = fault; }

  /// The next exchange: what becomes of the good `reply`. `echoes` tells that the line returns every request
  /// anyway.
  [[nodiscard]] Response Apply(const QByteArray& request, const QByteArray& reply, bool echoes);

  /// The next exchange is answered by another controller.
  [[nodiscard]] bool Swapped() const { return swapAt_ && exchanges_ + 1 >= *swapAt_; }

  /// Exchanges so far.
  [[nodiscard]] int Exchanges() const { return exchanges_; }

 private:
  std::optional<Fault> Choose(bool acknowledgesWrite);
  Response Damaged(const Fault& fault, const QByteArray& request, const QByteArray& reply, bool echoes);
  QByteArray WithFlippedBit(QByteArray reply);
  QByteArray WithBadChecksum(const QByteArray& reply);
  QByteArray WithOtherLength(const QByteArray& reply);
  QByteArray Foreign(const QByteArray& reply);
  QByteArray Noise();
  int Below(int bound);
  bool Strikes(double rate);

  // The distributions of the standard library differ from system to system, this generator does not.
  std::mt19937 generator_;
  std::vector<FaultRule> rules_;
  std::map<int, Fault> plan_;
  std::optional<int> swapAt_;
  int exchanges_ = 0;
  QByteArray previous_;  // the last good reply
};

}  // namespace kalivor::sim
