// Adds to the history without anybody waiting for it.
#pragma once

#include <condition_variable>
#include <deque>
#include <functional>
#include <mutex>
#include <thread>

#include "history/Store.h"

namespace kalivor::history {

/// Opens the store in a thread of its own and does there, in order, what it is given. What cannot be added
/// because the file is locked or cannot be written stays queued and is tried again with the next task and at
/// the end.
class Writer {
 public:
  /// `onFailure` is called in the writer's thread, once for each different text, until something was added
  /// again; also for what opening has to say.
  Writer(StoreWorld world, std::function<void(const QString& text)> onFailure);

  /// Waits until all is added, but not longer than kLongestEnd_ms.
  ~Writer();
  Writer(const Writer&) = delete;
  Writer& operator=(const Writer&) = delete;

  static constexpr int kLongestEnd_ms = 5000;

  /// Something to do; it returns "" or why it was not possible, and is tried again then. At once.
  using Task = std::function<QString(Store& store)>;
  void Do(Task task);
  void Add(Observation observation);

  /// Waits until nothing is left to do or a task has failed, at most so long. True where nothing is left.
  [[nodiscard]] bool Settle(int longest_ms);

 private:
  void Work();
  [[nodiscard]] QString OpenStore(std::unique_ptr<Store>& store);
  void Tell(const QString& failure);

  StoreWorld world_;
  std::function<void(const QString&)> onFailure_;
  std::mutex mutex_;
  std::condition_variable changed_;
  std::deque<Task> tasks_;  // under the mutex; the first one is being done
  bool failed_ = false;     // the first one was tried in vain
  bool ends_ = false;
  QString told_;        // the writer's own
  std::thread thread_;  // last: it uses all of the above
};

}  // namespace kalivor::history
