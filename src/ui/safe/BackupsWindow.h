// The backups that sending has left, as a table.
#pragma once

#include <QLabel>
#include <QPushButton>
#include <QTableWidget>
#include <functional>

#include "commands/SafeStore.h"
#include "core/Core.h"
#include "platform/SettingsStore.h"
#include "platform/qt/EventGuard.h"
#include "ui/dialogs/Form.h"

namespace kalivor::ui {

/// What the window works with. Everything must outlive it.
struct BackupsSurroundings {
  Core& core;
  platform::SettingsStore& settings;
  platform::EventGuard guard;  ///< runs what the user sets off
  std::function<QDateTime()> now;
  std::function<void(const StoredBackup& backup)> compare;  ///< with the values of the PC
  std::function<void(const StoredBackup& backup)> restore;  ///< into the controller
};

/// Keeps its place and columns in the settings, under "SicherungenPlatz" and "SicherungenSpalten".
class BackupsWindow final : public Form {
 public:
  explicit BackupsWindow(BackupsSurroundings surroundings);

  /// Reads the folder and shows the window.
  void Open();

  /// Reads the folder again if the window is open.
  void Update();

 protected:
  void hideEvent(QHideEvent* event) override;

 private:
  void BuildTable();
  void BuildButtons();
  QPushButton* NewCommand(const QString& name, const QString& caption, const std::function<void()>& command);

  void ReadFolder();
  void ShowRow(int row, const StoredBackup& stored);
  void ShowCommands();
  void Tidy();
  /// The highlighted one; null where there is none that can be used.
  [[nodiscard]] const StoredBackup* Current() const;

  BackupsSurroundings surroundings_;
  BackupList list_;
  QLabel* summary_;
  QTableWidget* table_;
  QPushButton* compare_ = nullptr;
  QPushButton* restore_ = nullptr;
  QPushButton* tidy_ = nullptr;
  QPushButton* close_ = nullptr;
};

}  // namespace kalivor::ui
