// The report for a support desk: shown as it will be saved.
#pragma once

#include <QCheckBox>
#include <functional>

#include "diagnosis/DiagnosisReport.h"
#include "platform/SettingsStore.h"
#include "platform/qt/EventGuard.h"
#include "ui/dialogs/Form.h"

namespace kalivor::ui {

/// What the report says about the computer, and what of it is nobody else's business.
struct Computer {
  std::vector<NamedText> system;
  QString user;
  QString name;
  QString home;  ///< folder of the user
};

/// What the window works with. All must outlive it.
struct DiagnosisSurroundings {
  std::function<Diagnosis()> collect;
  std::function<LeftOut()> privateTexts;          ///< all that can be left out
  std::function<void(const QString& html)> save;  ///< asks for a file and writes the page into it
  const platform::EventGuard& guard;
  platform::SettingsStore& settings;
};

class DiagnosisPreview;

/// Collects when it is opened, and when the user wants it. Keeps its place in the settings, under
/// "DiagnosePlatz". What was left out last time is no setting: each time it begins with everything left out.
class DiagnosisWindow final : public Form {
 public:
  using Collecting = std::function<Diagnosis()>;
  using Saving = std::function<void(const QString& html)>;

  explicit DiagnosisWindow(DiagnosisSurroundings surroundings);

  void Open();

 protected:
  void hideEvent(QHideEvent* event) override;

 private:
  void Collect();
  void Show();
  void Save();
  [[nodiscard]] LeftOut Wanted() const;

  DiagnosisSurroundings surroundings_;
  Diagnosis diagnosis_;
  DiagnosisPreview* preview_;
  QCheckBox* names_;
  QCheckBox* folders_;
};

}  // namespace kalivor::ui
