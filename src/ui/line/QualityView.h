// The quality of the line: what it means, and its picture.
#pragma once

#include <QLabel>
#include <QRadioButton>
#include <QWidget>

#include "comm/ExchangeLog.h"
#include "core/QualityPicture.h"
#include "ui/list/PictureView.h"

namespace kalivor::ui {

/// The page of the window: this transfer or since the start, the hint, the picture.
class QualityView final : public QWidget {
 public:
  /// `log` must outlive the view.
  explicit QualityView(const ExchangeLog& log, QWidget* parent = nullptr);

  /// Shows what the log has counted by now.
  void Update();

 private:
  const ExchangeLog& log_;
  QRadioButton* ofTransfer_;
  QRadioButton* sinceStart_;
  QLabel* hint_;
  PictureView* picture_;
  LineQuality shown_;
};

}  // namespace kalivor::ui
