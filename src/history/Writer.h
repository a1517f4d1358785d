// Adds to the history without anybody waiting for it.
#pragma once

#include <condition_variable>
#include <deque>
#include <functional>
#include <mutex>
#include <thread>

#include "history/Store.h"

namespace kalivor::history {

/// Opens the store in a thread of its own, at once, and does there, in order, what it is given. What cannot
/// be added because the file is locked or cannot be written stays queued and is tried again after a while,
/// with the next task and at the end; what never can is dropped.
class Writer {
 public:
  /// `onFailure` is called in the writer's thread, once for each different text, until something was added
  /// again; also for what opening has to say, and at the end for what was not added until then.
  Writer(StoreWorld world, std::function<void(const QString& text)> onFailure);

  /// Waits until all is added, but not longer than kLongestEnd_ms unless the system itself holds up the
  /// writing.
  ~Writer();
  Writer(const Writer&) = delete;
  Writer& operator=(const Writer&) = delete;

  static constexpr int kLongestEnd_ms = 5000;
  static constexpr int kRetry_ms = 10000;

  /// More are refused, and said to be lost: a waiting observation keeps a table of some 0.6 MB.
  static constexpr std::size_t kMostWaiting = 100;

  /// Something to do; it returns "" or why it was not possible. Returns at once.
  using Task = std::function<QString(Store& store)>;
  void Do(Task task);
  void Add(Observation observation);

  /// Waits until nothing is left to do or a task has failed, at most so long. True where nothing is left.
  [[nodiscard]] bool Settle(int longest_ms);

 private:
  void Work();
  void Open();
  [[nodiscard]] bool Try(const Task& task);
  void Tell(const QString& failure);

  StoreWorld world_;
  std::function<void(const QString&)> onFailure_;
  std::mutex mutex_;
  std::condition_variable changed_;

  // Under the mutex.
  std::deque<Task> tasks_;  // the first one is being done
  bool failed_ = false;     // it was tried in vain
  bool lost_ = false;       // there was one too many
  bool ends_ = false;

  // The writer's own.
  std::unique_ptr<Store> store_;
  QStringList told_;

  std::thread thread_;  // last: it uses all of the above
};

}  // namespace kalivor::history
