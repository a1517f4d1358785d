// A serial line in virtual time on which anything can happen, and that remembers where each character came
// from.
#pragma once

#include <QByteArray>
#include <deque>
#include <functional>
#include <optional>
#include <vector>

#include "campaign/Random.h"
#include "campaign/StepClock.h"
#include "platform/SerialControl.h"
#include "sim/Controller.h"

namespace kalivor::campaign {

/// What can happen to one exchange.
enum class Trouble {
  None,
  Silent,         ///< the controller does not answer
  Late,           ///< it answers after 350 ms or more
  Edit,           ///< one character of the reply is changed, lost, doubled or added, or two are exchanged
  Edits,          ///< two to four times the same
  SumPreserving,  ///< two characters of the reply are changed by opposite amounts
  Split,          ///< a pause inside the reply
  Noise,          ///< other characters in front of the reply
  ErrorReply,     ///< the controller refuses
  WrongLength,    ///< a payload of another length, with the right sum
  EchoOnly,       ///< the request comes back, but no reply
  EchoEdit,       ///< the echo is damaged
  Foreign,        ///< an intact reply of another station in place of the right one
  Truncated,      ///< the end of the reply is missing
  Vanish,         ///< the device is pulled out, and put in again after a while or never
  LineError,      ///< the driver reports a line error, and one character is marked or lost
  RequestEdit,    ///< one character of the request is damaged on its way
  RequestSumPreserving,  ///< two characters of the request are changed by opposite amounts
  Forgetful,             ///< the controller acknowledges a write and does not keep the value
  Babble,                ///< characters without an end for a second or two
  kCount
};

/// How a line behaves. Times in milliseconds where they end in _ms.
struct LineProfile {
  bool echo = false;
  bool paced = false;     ///< characters take their time
  int rate = 0;           ///< the only rate that the controller understands; 0: every one
  int leastDelay_ms = 1;  ///< of the controller
  int mostDelay_ms = 30;
  bool forgetsWhileBusy = false;    ///< a request that comes while it is still answering is lost
  double troubleRate = 0;           ///< probability for each exchange
  int troubleAt = -1;               ///< one exchange that is hit for certain, counted from 0
  Trouble trouble = Trouble::None;  ///< the only kind of trouble; None: any
  double refusalRate = 0;           ///< probability that the port cannot be opened
  double masterPause_s = 0;         ///< mean pause between the requests of another master; 0: there is none
  bool hearsMaster = false;         ///< its requests reach the PC too
  int exchangedAt = -1;             ///< the exchange from which on another controller answers
  int mostLate_ms = 1500;           ///< of a reply that is late
  int shiftedAt = -1;               ///< the exchange from which on each reply is that of the request before
};

/// Characters that come to the PC together, and why.
struct Origin {
  enum class Kind { Echo, Reply, Noise, Foreign } kind = Kind::Noise;
  QByteArray bytes;
  int exchange = -1;             ///< number of the exchange that it answers
  int damages = 0;               ///< characters changed, lost, doubled or added on the way back
  int requestDamages = 0;        ///< the same on the way to the controller
  bool otherController = false;  ///< it comes from one that took the place of the first
  bool forgotten = false;        ///< acknowledges a write that was not kept
};

/// What the PC took at one look into its buffer.
struct Taken {
  QByteArray bytes;
  std::vector<int> origins;  ///< for each character, an index into Line::origins
  double shown_s = 0;        ///< what the clock showed
  bool gone = false;         ///< the wait before it ended because the device had vanished
};

/// One opening of the port, until it was closed.
struct Exchange {
  int port = 0;
  QString settings;
  bool opened = false;
  bool cleared = true;  ///< the buffers could be emptied
  double openedAt_s = 0, closedAt_s = 0;
  std::optional<QByteArray> frame;  ///< what was sent; nothing when the port was only tried
  double sentAt_s = 0, sentShown_s = 0;
  std::vector<Taken> takes;
  bool endsWaiting = false;  ///< the last wait ended without a character…
  bool endsGone = false;     ///< …because the device had vanished
  double endShown_s = 0;     ///< what the clock showed then
  std::optional<int> event;  ///< what CommEvent() said last
  // The word that the request names, in the controller that was connected when the transfer began.
  quint16 heldBefore = 0, heldAfter = 0;
};

/// A controller and what it answers.
struct Station {
  sim::Memory memory;
  QByteArray version;
  sim::Controller controller;

  Station(int address, const FixedText<2>& commands, const QByteArray& versionPayload)
      : version(versionPayload), controller(memory, address, commands, versionPayload) {}
  Station(const Station&) = delete;
  Station& operator=(const Station&) = delete;
};

/// A word that was written.
struct Touch {
  Station* station = nullptr;
  quint16 address = 0;
  quint16 before = 0;
  bool damaged = false;  ///< the request had been damaged on its way
};

class Line final : public platform::SerialControl {
 public:
  /// Called before a request is sent, and when it has arrived; may throw.
  std::function<void()> onRequest = [] {};

  /// `first` is the controller that is connected, `second` the one that may take its place.
  Line(StepClock& clock, Random& random, const LineProfile& profile, Station& first, Station& second)
      : clock_(clock), random_(random), profile_(profile), present_(&first), truth_(&first), second_(second) {
    if (profile_.masterPause_s > 0) nextMaster_s_ = random_.Fraction() * profile_.masterPause_s;
  }

  std::deque<Exchange> log;
  std::vector<Origin> origins;

  /// Writes that a controller carried out although nobody had asked for them so.
  int strayWrites = 0;

  /// Every word that was written, also where it was not kept.
  std::vector<Touch> touches;

  /// The controller that has answered the last version query; it may be damaged on its way. None at first.
  Station* lastIdentified = nullptr;

  /// A transfer begins: what the controller that is connected now holds is the truth for it.
  void BeginTransfer() {
    truth_ = present_;
    waits_ = 0;
  }
  [[nodiscard]] const Station& Truth() const { return *truth_; }

  /// Drops the record, where nothing that it explains is still on its way.
  void Forget();

  /// From now on nothing goes wrong any more, and the device is in its place.
  void Heal();

  /// A controller is in its place again.
  void PutBack(Station& station) { present_ = &station; }
  [[nodiscard]] Station& Connected() const { return *present_; }

  /// Whether the other controller is there.
  [[nodiscard]] bool Exchanged() const { return present_ == &second_; }

  [[nodiscard]] bool Open(int number, const QString& settings) override;
  void Close() override;
  [[nodiscard]] bool IsOpen() const override { return open_; }
  bool SetRts(bool raised) override;
  bool ClearInBuffer() override;
  bool ClearOutBuffer() override;
  void SetSThreshold(int characters) override { threshold_ = characters; }
  void Output(const QByteArray& characters) override;
  [[nodiscard]] int InBufferCount() override;
  [[nodiscard]] QByteArray Input() override;
  [[nodiscard]] platform::InputWait WaitForInput(double seconds) override;
  [[nodiscard]] int CommEvent() override;

 private:
  struct Character {
    double at_s;
    char character;
    int origin;
  };

  [[nodiscard]] double Now() const { return clock_.Passed(); }
  [[nodiscard]] bool Present() const { return Now() < goneFrom_s_ || Now() >= backAt_s_; }
  void Settle();
  double Send(double from_s, const Origin& origin);
  Trouble ChooseTrouble();
  void Answer(double arrival_s, const QByteArray& frame, Trouble trouble);
  void Vanish(double at_s);
  void MasterSpeaks();
  QByteArray ForeignReply(char letter, bool withWord);
  QByteArray Edited(QByteArray bytes, int times);
  bool ShiftTwo(QByteArray& bytes, int first, int last);
  [[nodiscard]] quint16 TrueWord(const QByteArray& frame) const;
  Exchange& Current() { return log.back(); }

  StepClock& clock_;
  Random& random_;
  LineProfile profile_;
  Station* present_;
  Station* truth_;
  Station& second_;

  bool open_ = false;
  bool dead_ = false;  // the device vanished while it was open
  int baud_ = 0;
  int threshold_ = 0;
  int event_ = 0;
  bool sendDoneDue_ = false;
  int waits_ = 0;
  int exchanges_ = 0;  // requests so far
  double character_s_ = 0;
  double controllerFree_s_ = 0;
  Origin heldBack_;  // by a shifted line: the reply to the request before
  double goneFrom_s_ = 1e18, backAt_s_ = 1e18;
  double nextMaster_s_ = 1e18;
  std::deque<Character> coming_;  // sorted by time
  QByteArray input_;
  std::vector<int> inputOrigins_;
};

}  // namespace kalivor::campaign
