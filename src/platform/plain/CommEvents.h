// The event number of a serial port, and when its owner is told of it.
#pragma once

#include "platform/SerialControl.h"

namespace kalivor::platform {

/// What SerialControl::CommEvent() and SetSThreshold() promise, for every port that is made of calls of a
/// system.
class CommEvents {
 public:
  /// `owner` must outlive this; its OnComm is called.
  explicit CommEvents(const SerialControl& owner) : owner_(owner) {}

  /// Before a connection.
  void Clear() { event_ = kCommEventNone; }

  void SetThreshold(int characters) { threshold_ = characters; }

  /// Something was queued for sending, or what was queued is dropped.
  void NoteOutput() { outputUnreported_ = true; }
  void DropOutput() { outputUnreported_ = false; }

  /// All that was queued has been sent: reported once for each output, where that is asked for. A line error
  /// outranks it.
  void NoteAllSent() {
    if (threshold_ <= 0 || !outputUnreported_) return;
    outputUnreported_ = false;
    if (event_ == kCommEventNone) event_ = kCommEventSendDone;
    reportsSent_ = true;
    Tell();
    reportsSent_ = false;
  }

  /// A line error replaces what was there, and is reported.
  void Report(int error) {
    event_ = error;
    Tell();
  }

  /// The same without a report.
  void Note(int error) { event_ = error; }

  [[nodiscard]] int Event() const { return event_; }

  /// OnComm is being told that all was sent: no time for a look at the line, which comes with every telegram.
  [[nodiscard]] bool ReportsSent() const { return reportsSent_; }

 private:
  void Tell() const {
    if (owner_.OnComm) owner_.OnComm();
  }

  const SerialControl& owner_;
  int event_ = kCommEventNone;
  int threshold_ = 0;
  bool outputUnreported_ = false;  // something was queued since the last kCommEventSendDone
  bool reportsSent_ = false;
};

}  // namespace kalivor::platform
