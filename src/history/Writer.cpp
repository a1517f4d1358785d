#include "history/Writer.h"

#include <QFileInfo>
#include <chrono>
#include <utility>

using namespace Qt::StringLiterals;

namespace kalivor::history {
namespace {

// What is left of the longest end for the attempt that is under way: it may wait for another program.
constexpr int kLastAttempt_ms = 1500;

const QString kWaits = u" Neue Einträge warten, solange das Programm läuft."_s;

}  // namespace

Writer::Writer(StoreWorld world, std::function<void(const QString& text)> onFailure)
    : world_(std::move(world)), onFailure_(std::move(onFailure)), thread_([this] { Work(); }) {}

Writer::~Writer() {
  (void)Settle(kLongestEnd_ms - kLastAttempt_ms);
  {
    const std::lock_guard lock(mutex_);
    ends_ = true;
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
    if (tasks_.size() < kMostWaiting) {
      tasks_.push_back(std::move(task));
    } else {
      lost_ = true;
    }
    failed_ = false;
  }
  changed_.notify_all();
}

bool Writer::Settle(int longest_ms) {
  std::unique_lock lock(mutex_);
  failed_ = false;
  changed_.notify_all();
  changed_.wait_for(lock, std::chrono::milliseconds(longest_ms),
                    [this] { return tasks_.empty() || failed_; });
  return tasks_.empty();
}

void Writer::Work() {
  Open();
  std::unique_lock lock(mutex_);
  while (!ends_) {
    if (tasks_.empty()) {
      changed_.wait(lock, [this] { return ends_ || !tasks_.empty(); });
      continue;
    }
    if (failed_) {
      changed_.wait_for(lock, std::chrono::milliseconds(kRetry_ms), [this] { return ends_ || !failed_; });
      failed_ = false;
      continue;
    }
    const Task& task = tasks_.front();  // others only add behind it
    lock.unlock();
    const bool done = Try(task);
    lock.lock();
    failed_ = !done;
    Task finished;
    if (done) {
      finished = std::move(tasks_.front());
      tasks_.pop_front();
    }
    const bool lost = !done && std::exchange(lost_, false);
    lock.unlock();
    changed_.notify_all();
    if (lost) Tell(u"Es warten zu viele Einträge auf den Verlauf; weitere gehen verloren."_s);
    finished = {};  // what it keeps takes its time to be given back: nobody waits for that
    lock.lock();
  }
  const std::size_t left = tasks_.size();
  lock.unlock();
  store_.reset();
  if (left > 0)
    onFailure_(
        u"Der Verlauf konnte bis zum Ende des Programms nicht geschrieben werden. Es fehlen darin: %1."_s.arg(
            left));
}

void Writer::Open() {
  Store::Opened opened = Store::Open(world_, Access::Write);
  store_ = std::move(opened.store);
  if (!opened.note.isEmpty()) Tell(store_ ? opened.note : opened.note + kWaits);
}

// True where the task is finished, whatever came of it.
bool Writer::Try(const Task& task) {
  // Somebody has removed the file: what is added to it would be gone.
  if (store_ && !QFileInfo::exists(world_.file)) store_.reset();
  if (!store_) Open();
  if (!store_) return false;
  const QString failure = task(*store_);
  if (failure.isEmpty()) {
    told_.clear();
    return true;
  }
  if (!store_->Writable()) return true;  // opening has said so
  const Store::Remedy remedy = store_->LastRemedy();
  if (remedy == Store::Remedy::Reopening) store_.reset();
  const bool finished = remedy == Store::Remedy::Nothing;
  Tell(finished ? failure : failure + kWaits);
  return finished;
}

void Writer::Tell(const QString& failure) {
  if (told_.contains(failure)) return;
  told_ << failure;
  onFailure_(failure);
}

}  // namespace kalivor::history
