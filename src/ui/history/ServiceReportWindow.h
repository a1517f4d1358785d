// The report of a visit for the customer: shown as it prints.
#pragma once

#include <QAction>
#include <QBoxLayout>
#include <QImage>
#include <QLabel>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QTimer>
#include <functional>
#include <optional>

#include "commands/ExportCommands.h"
#include "history/HistorySettings.h"
#include "history/ServiceReport.h"
#include "platform/FileDialogs.h"
#include "platform/FileSystem.h"
#include "platform/MessageBox.h"
#include "platform/SettingsStore.h"
#include "platform/gui/DocumentPages.h"
#include "platform/qt/EventGuard.h"
#include "ui/dialogs/Form.h"

namespace kalivor::ui {

/// What the window works with. All must outlive it.
struct ServiceReportSurroundings {
  platform::SettingsStore& settings;  ///< for the place of the window
  platform::FileSystem& files;
  platform::FileDialogs& dialogs;
  platform::MessageBox& box;
  platform::EventGuard guard;  ///< runs what the user sets off
  std::function<history::HistorySettings()> used;
  std::function<void(const history::HistorySettings& settings)> use;
  /// Asks for a printer; empty: there is no button.
  std::function<void(const QString& title, const platform::HtmlDocument& document)> print;
};

class PagesView;

/// Letterhead, picture and template are settings, title and remark belong to the report. What is typed is
/// seen on the page after a moment. Keeps its place in the settings, under "ServiceprotokollPlatz".
class ServiceReportWindow final : public Form {
 public:
  explicit ServiceReportWindow(ServiceReportSurroundings surroundings);

  /// Shows the report of that visit, with the usual title and no remark.
  void Open(history::ServiceVisit visit);

 protected:
  void hideEvent(QHideEvent* event) override;

 private:
  QWidget* NewFields();
  QHBoxLayout* NewButtons();
  void Reload();
  void ChoosePicture();
  void TakePicture();
  void LoadPicture();
  void ChooseTemplate();
  void UseBuiltIn();
  void UseTemplate(const QString& path);
  void LoadTemplate();
  void SaveBuiltIn();
  void UpdateSoon();
  void Update();
  [[nodiscard]] QString FillIn(const history::ServiceTemplate& page);
  void Finish();
  void Save();
  void Print();
  void StoreSettings();
  [[nodiscard]] ExportContext Exporting();

  ServiceReportSurroundings surroundings_;
  history::HistorySettings settings_;
  history::ServiceVisit visit_;
  std::optional<history::ServiceTemplate> template_;  // nothing: the built-in one is used
  QString templateFault_;                             // why that of the settings is not used
  QString templateNote_;                              // the same as the user reads it
  QImage image_;
  QString pictureNote_;
  platform::HtmlDocument document_;
  platform::DocumentLayout layout_;
  QTimer rest_;  // runs while the user is typing
  QLineEdit* title_;
  QPlainTextEdit* remark_;
  QPlainTextEdit* letterhead_;
  QLineEdit* picture_;
  QLabel* note_;
  PagesView* view_;
  QPushButton* noPicture_ = nullptr;
  QPushButton* save_ = nullptr;
  QPushButton* print_ = nullptr;
  QAction* builtIn_ = nullptr;
};

}  // namespace kalivor::ui
