// The line and the controller behind it, with times instead of waiting: which byte arrives when.
#pragma once

#include <QByteArray>
#include <deque>
#include <functional>
#include <optional>
#include <vector>

#include "sim/Controller.h"
#include "sim/Faults.h"

namespace kalivor::sim {

/// Start bit, seven data bits, parity and stop bit.
inline constexpr double kBitsPerCharacter = 10;

struct LineOptions {
  int rate = 0;        ///< the only rate in baud that the controller understands; 0: every one
  bool paced = false;  ///< bytes take their time on the wire, in both directions
  bool echo = false;   ///< every byte of the PC comes back while it arrives, whatever its rate
};

/// What a trace shows.
struct TraceEvent {
  enum class Kind { Request, Reply, Fault, NoReply, Unplug };
  double time = 0;  ///< seconds; when the last byte has arrived
  Kind kind = Kind::Request;
  QByteArray bytes;  ///< of Request and Reply
  QString fault;     ///< of Fault: its name
};

/// All times are seconds on one clock of the caller that never goes back.
class LineModel {
 public:
  /// A request that pauses for longer is given up, and so is one that gets longer.
  static constexpr double kQuiet_s = 1;
  static constexpr int kLongestRequest = 256;

  /// `controller` and `faults` must outlive the model.
  LineModel(Controller& controller, Faults& faults, const LineOptions& options = {});

  /// The controller that takes the place of the first one when the faults say so; without it nothing does.
  /// It must outlive the model.
  void SetOther(Controller& other) { other_ = &other; }

  /// Another controller on the same line: it answers what those before it do not. It must outlive the model.
  void AddBeside(Controller& controller) { beside_.push_back(&controller); }

  /// The PC sends bytes at `baud`. Their wire time starts now, or when the bytes before them are through.
  /// A "#" begins a new request; a carriage return completes it.
  void Receive(double now, QByteArrayView bytes, int baud);

  /// When all that the PC has sent so far has arrived; 0 before the first byte.
  [[nodiscard]] double SentUntil() const { return inputFree_; }

  /// When the next byte has arrived at the PC or the line vanishes; empty when nothing is under way.
  [[nodiscard]] std::optional<double> NextTime() const;

  /// Removes and returns the bytes that have arrived at the PC by `now`.
  [[nodiscard]] QByteArray TakeDue(double now);

  /// The line has vanished by `now`.
  [[nodiscard]] bool Unplugged(double now) const { return unplugTime_ && *unplugTime_ <= now; }

  /// The line comes back, with nothing under way.
  void PlugIn();

  /// Called for everything that a trace shows, at the moment it becomes known.
  std::function<void(const TraceEvent&)> OnTrace = [](const TraceEvent&) {};

  /// Called with every response before it goes out; may change it.
  std::function<void(const QByteArray& request, Response&)> OnResponse = [](const QByteArray&, Response&) {};

 private:
  struct TimedByte {
    double time;
    char byte;
  };

  void ReceiveCharacter(double time, char byte, bool understood, double character_s);
  void Answer(double time, double character_s);
  void Schedule(double time, char byte);

  Controller& controller_;
  Controller* other_ = nullptr;
  std::vector<Controller*> beside_;
  Faults& faults_;
  LineOptions options_;
  QByteArray request_;
  double inputFree_ = 0;  // when the last byte of the PC has arrived
  double replyFree_ = 0;  // when the last byte of the last reply has arrived
  std::deque<TimedByte> outgoing_;
  std::optional<double> unplugTime_;
};

}  // namespace kalivor::sim
