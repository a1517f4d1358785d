// Shows a picture of boxes and texts.
#pragma once

#include <QWidget>
#include <vector>

#include "core/Picture.h"

namespace kalivor::ui {

/// Paints a picture in the colours of the palette, as large as there is room.
class PictureView : public QWidget {
 public:
  explicit PictureView(QWidget* parent = nullptr);

  /// `size` is that of the picture in its own units; `name` is for those who cannot see it.
  void Show(std::vector<PictureShape> shapes, const QSizeF& size, const QString& name);

  /// As large as the letters of the window want it.
  [[nodiscard]] QSize sizeHint() const override;
  /// Small, but to be read: windows have to fit on small screens.
  [[nodiscard]] QSize minimumSizeHint() const override { return sizeHint() * 0.6; }

 protected:
  void paintEvent(QPaintEvent* event) override;

  /// Pixels that a unit of a picture takes for its texts to be as large as those of the window.
  [[nodiscard]] double LetterScale() const;

 private:
  [[nodiscard]] QColor ColourOf(PictureInk ink) const;

  std::vector<PictureShape> shapes_;
  QSizeF size_{1, 1};
};

}  // namespace kalivor::ui
