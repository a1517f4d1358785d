// Keeps the history of a running program: what is done is handed to the writer.
#pragma once

#include <functional>
#include <memory>

#include "comm/ExchangeLog.h"
#include "core/Core.h"
#include "history/HistorySettings.h"
#include "history/Writer.h"

namespace kalivor::history {

/// What the recorder works with. Everything must outlive it.
struct RecorderWorld {
  Core& core;
  ExchangeLog& exchanges;
  std::function<QString(int number)> deviceOfPort = {};  ///< "" when there is none; may be empty
  StoreWorld store = {};                                 ///< without a file no history can be kept

  /// Called in another thread, as the writer's is; what it is given is for the user.
  std::function<void(const QString& text)> onFailure = {};
};

/// Listens to the core's deeds while the settings say so. Nothing of the store is touched, and no thread
/// made, before the first of them; nothing waits for it and nothing fails because of it.
class Recorder {
 public:
  explicit Recorder(RecorderWorld world);

  /// Waits for the writer, as that does at its end.
  ~Recorder();
  Recorder(const Recorder&) = delete;
  Recorder& operator=(const Recorder&) = delete;

  /// These hold from now on.
  void Use(const HistorySettings& settings);
  [[nodiscard]] const HistorySettings& Used() const { return settings_; }

  /// A history can be kept, whether it is or not.
  [[nodiscard]] bool Works() const { return !world_.store.file.isEmpty(); }
  [[nodiscard]] const StoreWorld& Place() const { return world_.store; }

  /// For what is added besides deeds; made when it is first asked for. Only where Works().
  [[nodiscard]] Writer& GetWriter();

  /// Waits until all is added or has failed, at most so long.
  void Settle(int longest_ms = Writer::kLongestEnd_ms);

  /// Ends the writer, as at the end of the program: what it has to say has been said then.
  void Finish() { writer_.reset(); }

 private:
  void Record(const Deed& deed) noexcept;
  void TakeHead(Entry& entry) const;

  RecorderWorld world_;
  HistorySettings settings_;
  std::unique_ptr<Writer> writer_;
};

}  // namespace kalivor::history
