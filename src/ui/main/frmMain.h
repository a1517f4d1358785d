// The main window: lists, tree, transfer buttons, menus, status bar.
#pragma once

#include <QComboBox>
#include <QGroupBox>
#include <QLabel>
#include <QMainWindow>
#include <QPointer>
#include <QPushButton>
#include <QToolButton>
#include <array>
#include <vector>

#include "core/Core.h"
#include "platform/SettingsStore.h"
#include "platform/qt/QtListBox.h"
#include "platform/qt/QtTreeView.h"
#include "ui/main/Menu.h"

namespace kalivor::ui {

class frmMain final : public QMainWindow, public MainForm {
 public:
  /// Shows the lists of `module`. `guard` runs what the user sets off. Both must outlive the window.
  frmMain(Module1& module, const platform::EventGuard& guard);
  ~frmMain() override;
  frmMain(const frmMain&) = delete;
  frmMain& operator=(const frmMain&) = delete;

  /// Connects buttons, lists and tree with their commands. `core` must outlive the window.
  void Connect(Core& core);

  /// Connects the menu. Exit is the window's own.
  void SetMenuActions(MenuActions actions);

  /// A window that takes no input while an operation is under way, and that closes with the main window.
  void AddCompanion(QWidget& window, bool disabledWhileBusy);

  /// Places the window as the settings say, however small that is; reports what cannot be read. A default
  /// size grows with the font.
  void LoadPlace(const platform::SettingsStore& settings, platform::MessageBox& box);

  /// Stores the window's place, if it is neither minimised nor maximised.
  void SavePlace(platform::SettingsStore& settings) const;

  /// Panel 2 of the status bar: the current value file.
  void ShowFile(const QString& path);

  /// Panel 3 of the status bar: so many numbers are outside their limits. It is hidden when there are none.
  void ShowOutside(int count);

  /// Runs when the user wants to see them.
  std::function<void()> OnOutside;

  /// Runs once when the window closes, after its companions have.
  std::function<void()> OnUnload;

  /// The session ends: an operation under way is asked to stop, and the window closes after it.
  void EndSession();
  [[nodiscard]] bool EndsSession() const { return closeWhenReady_; }

  /// The pictures of opening, saving and printing, as the menu shows them.
  const std::array<QIcon, 3> imlToolbarIcons;

  // MainForm
  [[nodiscard]] platform::TreeView& Tree() override { return nodes_; }
  void SetPlantSelectorVisible(bool visible) override;
  void SetEnabled(bool enabled) override;
  void ShowState(const QString& text) override;
  void ShowAgain() override;

 protected:
  void closeEvent(QCloseEvent* event) override;
  void changeEvent(QEvent* event) override;
  bool eventFilter(QObject* watched, QEvent* event) override;

 private:
  struct Companion {
    QPointer<QWidget> window;
    bool disabledWhileBusy = false;
  };

  void BuildControls();
  void BuildStatusBar();
  void ShowMenuIcons();
  /// Of the strips above and below the tree, in device-independent pixels.
  struct Heights {
    int bar = 0;         ///< the status bar
    int button = 0;      ///< a button
    int buttonTop = 0;   ///< the buttons' upper edge above the window's lower edge
    int treeBottom = 0;  ///< the tree's lower edge above the window's lower edge
    int treeTop = 0;     ///< the tree's upper edge below the menu bar
  };
  [[nodiscard]] Heights HeightsOfStrips() const;

  /// The size in which nothing is cut and some of the tree is seen.
  [[nodiscard]] QSize ComfortableSize() const;

  void Arrange();
  void ArrangeTop(int height);
  void ArrangeButtons(int top, int height);

  Module1& module_;
  const platform::EventGuard& guard_;
  MenuActions menuActions_;

  QWidget* body_;
  QGroupBox* frame1_ = nullptr;
  QComboBox* comboVN_;
  QGroupBox* frame2_ = nullptr;
  QComboBox* comboArt_;
  platform::NodeTree* tree_;
  std::vector<QPushButton*> buttons_;
  QLabel* state_ = nullptr;
  QLabel* file_ = nullptr;
  QToolButton* outside_ = nullptr;

  platform::QtListBox versions_;
  platform::QtListBox plants_;
  platform::QtTreeView nodes_;

  std::vector<Companion> companions_;
  QPointer<QWidget> focusBeforeBusy_;
  bool closeWhenReady_ = false;
  bool arranging_ = false;
};

}  // namespace kalivor::ui
