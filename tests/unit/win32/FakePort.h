// The calls that a serial port of Windows consists of, played inside the program: what no imitation of
// Windows can show (line errors, a driver that is slow to send, an adapter that is pulled out) happens at the
// test's word.
#pragma once

#include <algorithm>
#include <condition_variable>
#include <map>
#include <mutex>
#include <string>
#include <utility>
#include <vector>

#include <QByteArray>

#include "platform/win32/SerialCalls.h"

namespace kalivor::test {

/// The far end may be played by another thread.
class FakePort final : public platform::SerialCalls {
 public:
  // What the test arranges before.
  bool present = true;
  DWORD openingError = ERROR_FILE_NOT_FOUND;  ///< where it is not present
  bool real = true;
  bool takesSettings = true;
  bool keepsRate = true;
  bool sendsAtOnce = true;  ///< false: a write is under way until FinishWrite()

  // What the program has done.
  std::wstring name;
  DCB state{};
  COMMTIMEOUTS timeouts{};
  std::vector<DWORD> escapes;
  std::vector<DWORD> purges;
  int openPorts = 0;

  // ---- the far end

  /// Characters arrive, together with line errors (CE_…).
  void Send(const QByteArray& bytes, DWORD errors = 0) {
    const std::lock_guard guard(mutex_);
    errors_ |= errors;
    arriving_ += bytes;
    Deliver();
  }

  /// Waits until the program has sent `count` characters, and takes them.
  [[nodiscard]] QByteArray Receive(qsizetype count) {
    std::unique_lock guard(mutex_);
    constexpr std::chrono::seconds kLong{20};  // only a failing test waits for so long
    (void)sent_.wait_for(guard, kLong, [&] { return leaving_.size() >= count; });
    const QByteArray taken = leaving_.left(count);
    leaving_.remove(0, taken.size());
    return taken;
  }

  /// The adapter is pulled out: whatever is under way fails.
  void Vanish() {
    const std::lock_guard guard(mutex_);
    gone_ = true;
    for (auto& [operation, outcome] : pending_)
      End(*operation, 0, false);
    reading_ = nullptr;
    writing_ = nullptr;
  }

  void FinishWrite() {
    const std::lock_guard guard(mutex_);
    if (writing_ == nullptr) return;
    leaving_ += unsent_;
    End(*std::exchange(writing_, nullptr), static_cast<DWORD>(unsent_.size()), true);
    sent_.notify_all();
  }

  // ---- the calls

  [[nodiscard]] bool IsRealPort() override { return real; }

  [[nodiscard]] HANDLE Open(const wchar_t* wanted) override {
    name = wanted;
    if (!present || gone_) return INVALID_HANDLE_VALUE;
    ++openPorts;
    return this;
  }
  [[nodiscard]] DWORD LastError() override { return gone_ ? ERROR_FILE_NOT_FOUND : openingError; }
  void Close(HANDLE /*port*/) override { --openPorts; }

  [[nodiscard]] bool GetState(HANDLE /*port*/, DCB& actual) override {
    actual = state;
    if (!keepsRate) actual.BaudRate = CBR_300;
    return !gone_;
  }
  [[nodiscard]] bool SetState(HANDLE /*port*/, const DCB& wanted) override {
    state = wanted;
    return takesSettings && !gone_;
  }
  [[nodiscard]] bool SetTimeouts(HANDLE /*port*/, const COMMTIMEOUTS& wanted) override {
    timeouts = wanted;
    return !gone_;
  }
  [[nodiscard]] bool Escape(HANDLE /*port*/, DWORD function) override {
    escapes.push_back(function);
    return real && !gone_;
  }
  [[nodiscard]] bool Purge(HANDLE /*port*/, DWORD what) override {
    const std::lock_guard guard(mutex_);
    purges.push_back(what);
    if ((what & PURGE_RXCLEAR) != 0) arriving_.clear();
    return !gone_;
  }
  [[nodiscard]] bool ClearError(HANDLE /*port*/, DWORD& errors, COMSTAT& status) override {
    const std::lock_guard guard(mutex_);
    errors = std::exchange(errors_, 0);
    status = {};
    status.cbInQue = static_cast<DWORD>(arriving_.size());
    return !gone_;
  }

  [[nodiscard]] bool StartRead(HANDLE /*port*/, char* bytes, DWORD count, OVERLAPPED& operation) override {
    const std::lock_guard guard(mutex_);
    if (gone_) return false;
    pending_[&operation] = {};
    reading_ = &operation;
    target_ = bytes;
    room_ = count;
    Deliver();
    return true;
  }
  [[nodiscard]] bool StartWrite(HANDLE /*port*/, const char* bytes, DWORD count,
                                OVERLAPPED& operation) override {
    const std::lock_guard guard(mutex_);
    if (gone_) return false;
    pending_[&operation] = {};
    if (sendsAtOnce) {
      leaving_.append(bytes, static_cast<qsizetype>(count));
      End(operation, count, true);
      sent_.notify_all();
    } else {
      writing_ = &operation;
      unsent_ = QByteArray(bytes, static_cast<qsizetype>(count));
    }
    return true;
  }
  void Cancel(HANDLE /*port*/, OVERLAPPED& operation) override {
    const std::lock_guard guard(mutex_);
    if (reading_ == &operation) reading_ = nullptr;
    if (writing_ == &operation) writing_ = nullptr;
  }
  [[nodiscard]] bool Result(HANDLE /*port*/, OVERLAPPED& operation, DWORD& count) override {
    const std::lock_guard guard(mutex_);
    const Outcome outcome = pending_[&operation];
    count = outcome.count;
    return outcome.done;
  }

 private:
  struct Outcome {
    DWORD count = 0;
    bool done = false;
  };

  void End(OVERLAPPED& operation, DWORD count, bool done) {
    pending_[&operation] = {count, done};
    SetEvent(operation.hEvent);
  }
  // A read ends with the first characters.
  void Deliver() {
    if (reading_ == nullptr || arriving_.isEmpty()) return;
    const auto count =
        static_cast<DWORD>(std::min<qsizetype>(arriving_.size(), static_cast<qsizetype>(room_)));
    std::copy_n(arriving_.constData(), count, target_);
    arriving_.remove(0, static_cast<qsizetype>(count));
    End(*std::exchange(reading_, nullptr), count, true);
  }

  std::mutex mutex_;
  std::condition_variable sent_;
  bool gone_ = false;
  DWORD errors_ = 0;
  QByteArray arriving_;
  QByteArray leaving_;
  QByteArray unsent_;
  OVERLAPPED* reading_ = nullptr;
  OVERLAPPED* writing_ = nullptr;
  char* target_ = nullptr;
  DWORD room_ = 0;
  std::map<OVERLAPPED*, Outcome> pending_;
};

}  // namespace kalivor::test
