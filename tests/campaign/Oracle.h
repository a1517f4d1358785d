// What a transfer has to come to, worked out from the rules and from the characters that reached the PC:
// apart from the code under test, with its own arithmetic.
#pragma once

#include <QStringList>
#include <array>
#include <optional>

#include "campaign/Line.h"
#include "campaign/Plant.h"
#include "rules/ExchangeRules.h"

namespace kalivor::campaign {

enum class Command { Receive, Compare, Send };

/// Why a value that the PC took over (or believes to have written) can be wrong although the telegram fits.
enum class WrongClass {
  ForeignReply,         ///< an intact reply to somebody else
  LateReply,            ///< the reply to an earlier request
  SumPreserving,        ///< two or more changed characters whose sum is the same, in request or reply
  WriteWithoutEffect,   ///< the controller acknowledged and did not keep the value
  ExchangedController,  ///< another controller had taken the place of the one that was identified
  OtherLength,          ///< a version reply that is longer or shorter than it should be
  Collision,            ///< characters of two senders between each other, whose sum happens to fit
  kCount
};
inline constexpr std::size_t kWrongClasses = static_cast<std::size_t>(WrongClass::kCount);
using WrongCounts = std::array<qint64, kWrongClasses>;

/// What the user did during a transfer.
struct UserActions {
  int abortAtOperation = -1;  ///< pressed "Abbrechen" when so many additions were in the report
  int abortAtQuestion = -1;   ///< or while so many questions had been asked
  std::vector<qint16> answers;
};

/// What is to be seen after a transfer.
struct Expected {
  QStringList lines;
  QStringList boxes;
  QStringList questions;
  bool transferred = false;
  int failures = 0;
  int deviations = 0;
  bool thrown = false;  ///< a run-time error ended it; the three fields above do not count then
  WrongCounts wrong{};
  qint64 accepted = 0;  ///< replies that were taken as good
};

class Oracle {
 public:
  /// `plant` and `settings` are the PC's state before the transfer, and after Run() the one that is to be
  /// seen after it. The exchanges of the transfer are those of the line's log from `firstExchange` on.
  Oracle(Plant& plant, QString& settings, const Line& line, const StepClock& clock, std::size_t firstExchange,
         const UserActions& user)
      : plant_(plant), settings_(settings), line_(line), clock_(clock), next_(firstExchange), user_(user) {}

  /// Works out a transfer. Returns "" or where the exchanges differ from what the rules demand.
  [[nodiscard]] QString Run(Command command);

  [[nodiscard]] const Expected& Result() const { return expected_; }

 private:
  struct Reply {
    QString error;  // "" for a good one
    QByteArray payload;
    QByteArray line;  // what was taken as the reply
    std::vector<int> origins;
    const Exchange* exchange = nullptr;
    int number = 0;
  };

  void Transfer(Command command);
  bool Following(Command command);
  bool Sending();
  bool FollowVersion(Command command);
  bool FollowPlant(int number);
  int PlantNumber();
  bool AcceptPlant();
  void SelectVersion(int position);
  void SelectPlant(int number);
  [[nodiscard]] int FindVersion(const QString& version) const;

  template <typename Handle>
  void Walk(Handle&& handle);
  void ReceiveAll();
  bool ReceiveOne(PlantParameter& parameter);
  bool CompareOne(const PlantParameter& parameter);
  bool SendOne(const PlantParameter& parameter);
  std::optional<qint32> ReadNumber(const PlantParameter& parameter);
  bool ReadText(const PlantParameter& parameter, QString& text);
  bool Fails(const PlantParameter& parameter);
  void Deviation(const PlantParameter& parameter, const QString& pc, const QString& controller);

  QString Identify();
  QString QueryVersion();
  void Configure(const QString& settings);
  std::optional<qint16> ReadSigned(const QByteArray& address);
  std::optional<qint32> ReadUnsigned(const QByteArray& address);
  std::optional<Reply> ReadDigits(const QByteArray& address);
  bool Write(qint32 value, const QByteArray& address);
  Reply WithRetries(const QByteArray& body);
  Reply Transact(const QByteArray& body);
  void Receive(const Exchange& exchange, Reply& reply);
  static void RequireEnd(const Exchange& exchange, const test::ExchangeReading& reading);
  const Exchange& NextExchange();
  void Judge(const Reply& reply, bool right);

  void Add(const QString& text);
  void Dot();
  void Operation();
  qint16 Ask(const QString& question, const QString& first, const QString& second);

  Plant& plant_;
  QString& settings_;
  const Line& line_;
  const StepClock& clock_;
  std::size_t next_;
  const UserActions& user_;
  Expected expected_;
  int operations_ = 0;
  bool abort_ = false;
};

}  // namespace kalivor::campaign
