// The user's history and that of the department: which server, and the exchange with it.
#pragma once

#include <QElapsedTimer>
#include <QLabel>
#include <QLineEdit>
#include <QProgressBar>
#include <QPushButton>
#include <atomic>
#include <functional>
#include <thread>

#include "history/server/Sync.h"
#include "platform/qt/EventGuard.h"
#include "ui/dialogs/Form.h"

namespace kalivor::ui {

/// What the dialog lets do. `exchange` and `test` run in a thread of their own and return what came of it in
/// German.
struct SyncWork {
  std::function<QString(const QString& server)> fault;  ///< why it cannot name a server, or ""
  std::function<QString(const QString& server, const history::SyncWatch& watch)> exchange;
  std::function<QString(const QString& server, const history::GoOn& goOn)> test;
};

/// The work on the file of `place`.
[[nodiscard]] SyncWork WorkOn(const history::StoreWorld& place);

/// While something is under way the other windows stay as they are: nothing waits for a server.
class SyncDialog final : public Form {
 public:
  /// `guard` runs what the user sets off; it must outlive the dialog.
  SyncDialog(SyncWork work, const platform::EventGuard& guard);
  ~SyncDialog() override;

  /// Shows the stored server.
  void Open(const QString& server);

  /// The user has named another server, which is to be stored.
  std::function<void(const QString& server)> OnServer;
  /// The history may have got new rows.
  std::function<void()> OnExchanged;

  /// Aborts what is under way; else closes.
  void reject() override;

 private:
  void Start(const std::function<QString(const QString& server)>& work, bool exchanges);
  void Step(int done, int total);
  void End(const QString& result, bool exchanged);
  void ShowState();

  SyncWork work_;
  QLineEdit* server_;
  QPushButton* test_;
  QLabel* count_;
  QLabel* remaining_;
  QProgressBar* bar_;
  QLabel* result_;
  QPushButton* exchange_;
  QPushButton* close_;
  QString stored_;
  QElapsedTimer since_;
  bool busy_ = false;
  std::atomic<bool> aborted_ = false;
  std::thread thread_;  // joinable while it works, and until it is noticed that it has ended
};

}  // namespace kalivor::ui
