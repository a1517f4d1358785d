// How far long work beside the transfers has come.
#pragma once

#include <QString>

#include "comm/TH.h"
#include "core/Core.h"

namespace kalivor {

/// What work beside the transfers shows while it lasts: a count, the remaining time and an abort.
class ProgressForm {
 public:
  virtual ~ProgressForm() = default;

  /// Shows the form; `work` says what is being done ("Regler lesen").
  virtual void Show(const QString& work) = 0;

  /// `done` of `total` are done; `remaining_s` seconds are left, negative where that cannot be told yet.
  /// Called at most ten times a second, and with the last one.
  virtual void Step(int done, int total, double remaining_s) = 0;

  virtual void Hide() = 0;
};

/// Time since the beginning; what the clock jumps backwards, as it does at midnight, is left out.
class Stopwatch {
 public:
  /// `clock` must outlive it.
  explicit Stopwatch(const platform::Clock& clock) : clock_(&clock), last_(clock.SecondsSinceMidnight()) {}

  double Passed_s();

 private:
  const platform::Clock* clock_;
  double last_;  // seconds since midnight
  double passed_ = 0;
};

/// Shows the form during its life, and lets the window live, at most ten times a second.
class Progress {
 public:
  Progress(Core& core, ProgressForm& form, const QString& work);
  ~Progress() { form_.Hide(); }
  Progress(const Progress&) = delete;
  Progress& operator=(const Progress&) = delete;

  /// The work that is counted begins now; `work` names it where it is another one.
  void Begin(int total, const QString& work = {});

  /// One more is done.
  void Done();

  /// So many will not be done: there are fewer to do.
  void Drop(int count) { total_ -= count; }

  /// Lets the window live where nothing is counted for a while. False once an abort was requested.
  [[nodiscard]] bool GoOn();

 private:
  Core& core_;
  ProgressForm& form_;
  Stopwatch watch_;
  SoftTimer pause_;
  int total_ = 0;
  int done_ = 0;
};

}  // namespace kalivor
