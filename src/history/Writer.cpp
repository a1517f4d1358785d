#include "history/Writer.h"

#include <chrono>
#include <utility>

namespace kalivor::history {

Writer::Writer(StoreWorld world, std::function<void(const QString& text)> onFailure)
    : world_(std::move(world)), onFailure_(std::move(onFailure)), thread_([this] { Work(); }) {}

Writer::~Writer() {
  (void)Settle(kLongestEnd_ms);
  {
    const std::lock_guard lock(mutex_);
    ends_ = true;
    tasks_.clear();
  }
  changed_.notify_all();
  thread_.join();
}

void Writer::Add(Observation observation) {
  Do([observation = std::move(observation)](Store& store) { return store.Add(observation); });
}

void Writer::Do(Task task) {
  {
    const std::lock_guard lock(mutex_);
    tasks_.push_back(std::move(task));
    failed_ = false;
  }
  changed_.notify_all();
}

bool Writer::Settle(int longest_ms) {
  std::unique_lock lock(mutex_);
  if (failed_) {
    failed_ = false;
    changed_.notify_all();
  }
  changed_.wait_for(lock, std::chrono::milliseconds(longest_ms),
                    [this] { return tasks_.empty() || failed_; });
  return tasks_.empty();
}

void Writer::Work() {
  std::unique_ptr<Store> store;
  std::unique_lock lock(mutex_);
  while (true) {
    changed_.wait(lock, [this] { return ends_ || (!tasks_.empty() && !failed_); });
    if (ends_) return;
    const Task task = tasks_.front();
    lock.unlock();
    QString failure = store ? QString() : OpenStore(store);
    if (store) failure = task(*store);
    Tell(failure);
    lock.lock();
    if (!failure.isEmpty()) {
      failed_ = true;
    } else if (!tasks_.empty()) {
      tasks_.pop_front();
    }
    changed_.notify_all();
  }
}

QString Writer::OpenStore(std::unique_ptr<Store>& store) {
  Store::Opened opened = Store::Open(world_, Access::Write);
  if (opened.store && !opened.note.isEmpty()) onFailure_(opened.note);
  store = std::move(opened.store);
  return store ? QString() : opened.note;
}

void Writer::Tell(const QString& failure) {
  if (!failure.isEmpty() && failure != told_) onFailure_(failure);
  told_ = failure;
}

}  // namespace kalivor::history
