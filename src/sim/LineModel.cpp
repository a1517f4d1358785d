// Arrival times of every byte in both directions.
#include "sim/LineModel.h"

#include <algorithm>

#include "sim/Telegram.h"

namespace kalivor::sim {

LineModel::LineModel(Controller& controller, Faults& faults, const LineOptions& options)
    : controller_(controller), faults_(faults), options_(options) {}

void LineModel::Receive(double now, QByteArrayView bytes, int baud) {
  const double character_s = options_.paced && baud > 0 ? kBitsPerCharacter / baud : 0;
  const bool understood = options_.rate == 0 || baud == options_.rate;
  // Nothing that was begun before the pause belongs to what comes now.
  if (now - inputFree_ > kQuiet_s) request_.clear();
  inputFree_ = std::max(inputFree_, now);
  for (const char byte : bytes) {
    inputFree_ += character_s;
    ReceiveCharacter(inputFree_, byte, understood, character_s);
  }
}

void LineModel::ReceiveCharacter(double time, char byte, bool understood, double character_s) {
  if (options_.echo) Schedule(time, byte);
  if (!understood || byte == kRequestStart || request_.size() >= kLongestRequest) request_.clear();
  if (!understood) return;
  request_ += byte;
  if (byte != kTelegramEnd) return;
  Answer(time, character_s);
  request_.clear();
}

// The controller has one transmitter: a reply waits until the one before is out.
void LineModel::Answer(double time, double character_s) {
  OnTrace({time, TraceEvent::Kind::Request, request_, {}});
  Controller* controller = faults_.Swapped() && other_ != nullptr ? other_ : &controller_;
  std::optional<QByteArray> reply = controller->Reply(request_);
  for (auto next = beside_.cbegin(); !reply && next != beside_.cend(); ++next) {
    controller = *next;
    reply = controller->Reply(request_);
  }
  if (!reply) {
    OnTrace({time, TraceEvent::Kind::NoReply, {}, {}});
    return;
  }
  Response response = faults_.Apply(request_, *reply, options_.echo);
  OnResponse(request_, response);
  if (response.ignoresWrite) controller->ForgetWrite();
  if (response.fault) OnTrace({time, TraceEvent::Kind::Fault, {}, FaultName(*response.fault)});

  double arrival = time;
  QByteArray sent;
  for (const Chunk& chunk : response.chunks) {
    arrival = std::max(arrival + chunk.pause_ms / 1000.0, replyFree_);
    for (const char byte : chunk.bytes) {
      arrival += character_s;
      Schedule(arrival, byte);
    }
    replyFree_ = arrival;
    sent += chunk.bytes;
  }
  if (!sent.isEmpty()) {
    OnTrace({arrival, TraceEvent::Kind::Reply, sent, {}});
  } else if (!response.unplug) {
    OnTrace({time, TraceEvent::Kind::NoReply, {}, {}});
  }
  if (response.unplug) {
    unplugTime_ = arrival;
    OnTrace({arrival, TraceEvent::Kind::Unplug, {}, {}});
  }
}

// An echo can arrive in front of a reply that is on its way already.
void LineModel::Schedule(double time, char byte) {
  auto behind = outgoing_.end();
  while (behind != outgoing_.begin() && (behind - 1)->time > time)
    --behind;
  outgoing_.insert(behind, TimedByte{time, byte});
}

std::optional<double> LineModel::NextTime() const {
  if (outgoing_.empty()) return unplugTime_;
  const double next = outgoing_.front().time;
  return unplugTime_ ? std::min(next, *unplugTime_) : next;
}

QByteArray LineModel::TakeDue(double now) {
  QByteArray bytes;
  while (!outgoing_.empty() && outgoing_.front().time <= now) {
    bytes += outgoing_.front().byte;
    outgoing_.pop_front();
  }
  return bytes;
}

void LineModel::PlugIn() {
  unplugTime_.reset();
  outgoing_.clear();
  request_.clear();
}

}  // namespace kalivor::sim
