// Every telegram as it goes over the line, and how good the line is.
#pragma once

#include <QCheckBox>
#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QTabWidget>
#include <QTableView>
#include <QTimer>
#include <functional>

#include "platform/SettingsStore.h"
#include "platform/qt/EventGuard.h"
#include "ui/dialogs/Form.h"
#include "ui/line/QualityView.h"
#include "ui/line/TelegramsModel.h"

namespace kalivor::ui {

/// What the window works with. All must outlive it.
struct TelegramsSurroundings {
  const ExchangeLog& exchanges;
  const Module1& module;
  platform::SettingsStore& settings;
  const platform::EventGuard& guard;
  std::function<void(const QString& text)> save;  ///< asks for a file and writes the text into it
};

/// Can be used while a transfer runs. Keeps its place and columns in the settings, under "TelegrammePlatz"
/// and "TelegrammeSpalten". As long as it is not visible it costs nothing.
class TelegramsWindow final : public Form {
 public:
  explicit TelegramsWindow(TelegramsSurroundings surroundings);

  void Open();

  /// The definitions may be others than before.
  void ForgetDefinitions() { readerIsOld_ = true; }

 protected:
  void showEvent(QShowEvent* event) override;
  void hideEvent(QHideEvent* event) override;

 private:
  void BuildTable();
  [[nodiscard]] QLayout* NewFilterRow();
  [[nodiscard]] QLayout* NewButtons();
  [[nodiscard]] QWidget* NewTelegramsPage();
  /// What has come since the last time.
  void Update();
  void ShowCount();
  void TakeFilter();
  void Pause(bool paused);
  void Find(int step);
  void Copy() const;
  void Save();
  void FollowEnd();

  TelegramsSurroundings surroundings_;
  TelegramsModel* model_;
  QTabWidget* tabs_;
  QTableView* table_ = nullptr;
  QComboBox* filter_ = nullptr;
  QLineEdit* search_ = nullptr;
  QCheckBox* onlyHits_ = nullptr;
  QPushButton* pause_ = nullptr;
  QPushButton* save_ = nullptr;
  QLabel* count_ = nullptr;
  QualityView* quality_;
  QTimer live_;  // while the window is visible
  bool readerIsOld_ = true;
  QString notFound_;  // what was last searched in vain
};

}  // namespace kalivor::ui
