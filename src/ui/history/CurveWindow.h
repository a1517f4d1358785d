// How a value went over the entries of a plant, as a curve.
#pragma once

#include <QLabel>
#include <QPushButton>
#include <functional>

#include "history/CurvePicture.h"
#include "platform/SettingsStore.h"
#include "platform/qt/EventGuard.h"
#include "ui/dialogs/Form.h"
#include "ui/list/PictureView.h"

namespace kalivor::ui {

/// The picture of a curve, in as much room as there is. Left and right, Home and End, and a click go from
/// value to value; its name says in words what it shows.
class CurveView final : public PictureView {
 public:
  explicit CurveView(QWidget* parent = nullptr) : PictureView(parent) {}

  void Show(history::Curve curve);
  [[nodiscard]] const history::Curve& Shown() const { return curve_; }
  /// The point that is pointed out; -1: none.
  [[nodiscard]] int Current() const { return current_; }

  std::function<void()> OnCurrent;

  [[nodiscard]] QSize sizeHint() const override;

 protected:
  void resizeEvent(QResizeEvent* event) override;
  void changeEvent(QEvent* event) override;
  void keyPressEvent(QKeyEvent* event) override;
  void mousePressEvent(QMouseEvent* event) override;

 private:
  [[nodiscard]] QSizeF Room() const { return QSizeF(size()) / LetterScale(); }
  void GoTo(int point);
  void Draw();

  history::Curve curve_;
  int current_ = -1;
};

/// What the window works with. Everything must outlive it.
struct CurveSurroundings {
  platform::SettingsStore& settings;
  platform::EventGuard guard;                    ///< runs what the user sets off
  std::function<void(const QUuid& entry)> show;  ///< the entry of a value
  std::function<void(const QString& svg)> save;  ///< asks for a file and writes the picture into it
};

/// Keeps its place in the settings, under "KurvePlatz".
class CurveWindow final : public Form {
 public:
  explicit CurveWindow(CurveSurroundings surroundings);

  /// `plant` is whose values these are.
  void Open(history::Curve curve, const QString& plant);

 protected:
  void hideEvent(QHideEvent* event) override;

 private:
  CurveSurroundings surroundings_;
  QLabel* sentence_;
  CurveView* view_;
  QPushButton* show_ = nullptr;
};

}  // namespace kalivor::ui
