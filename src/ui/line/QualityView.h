// The quality of the line: what it means, and its picture.
#pragma once

#include <QLabel>
#include <QRadioButton>
#include <QWidget>

#include "comm/ExchangeLog.h"
#include "core/QualityPicture.h"

namespace kalivor::ui {

/// Paints QualityPicture() in the colours of the palette, as large as there is room.
class QualityPictureView final : public QWidget {
 public:
  explicit QualityPictureView(QWidget* parent = nullptr);

  void Show(const LineQuality& quality);

  [[nodiscard]] QSize sizeHint() const override;
  /// Small, but to be read: windows have to fit on small screens.
  [[nodiscard]] QSize minimumSizeHint() const override { return sizeHint() * 0.6; }

 protected:
  void paintEvent(QPaintEvent* event) override;

 private:
  [[nodiscard]] QColor ColourOf(PictureInk ink) const;

  std::vector<PictureShape> shapes_;
};

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
  QualityPictureView* picture_;
  LineQuality shown_;
};

}  // namespace kalivor::ui
