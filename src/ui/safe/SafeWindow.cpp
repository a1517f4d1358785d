#include "ui/safe/SafeWindow.h"

#include <QBoxLayout>
#include <QClipboard>
#include <QEvent>
#include <QGuiApplication>
#include <QScopeGuard>
#include <algorithm>

#include "ui/dialogs/Controls.h"
#include "ui/main/StoredPlace.h"

using namespace Qt::StringLiterals;

namespace kalivor::ui {
namespace {

// The size of the first time: so many lines, and all columns; no more than most of the screen.
constexpr int kHeight_lines = 30;

const QString& PlaceKey() {
  static const QString key = u"SicherPlatz"_s;
  return key;
}

}  // namespace

SafeWindow::SafeWindow(SafeSurroundings surroundings)
    : Form(u"SafeWindow"_s, QString()),
      surroundings_(std::move(surroundings)),
      model_(surroundings_.core.module, run_),
      progress_(surroundings_.core.module),
      sentence_(NewLabel(this, u"sentence"_s, QString(), true)),
      advice_(NewLabel(this, u"advice"_s, QString(), true)),
      view_(Named(new SafeView(model_, this), u"values"_s)),
      backupLabel_(NewLabel(this, u"backupLabel"_s, u"Sicherung:"_s)),
      backup_(NewReadOnlyBox(this, u"backup"_s, u"Sicherung"_s)) {
  setModal(true);
  setWindowFlag(Qt::WindowMaximizeButtonHint);
  progress_.setObjectName(u"SafeProgress"_s);
  QFont bold = sentence_->font();
  bold.setBold(true);
  sentence_->setFont(bold);
  BuildTable();
  auto* backupRow = new QHBoxLayout;
  backupRow->addWidget(backupLabel_);
  backupRow->addWidget(backup_, 1);
  auto* layout = new QVBoxLayout(this);
  layout->addWidget(sentence_);
  layout->addWidget(advice_);
  layout->addWidget(view_, 1);
  layout->addLayout(backupRow);
  BuildButtons();
  const QMargins margins = layout->contentsMargins();
  ResizeOnScreen(*this, {view_->WholeWidth() + margins.left() + margins.right(),
                         fontMetrics().lineSpacing() * kHeight_lines});
  LoadPlace(*this, surroundings_.settings, PlaceKey());
  view_->Load(surroundings_.settings);
}

// The view asks the model until it is gone.
SafeWindow::~SafeWindow() {
  delete view_;
}

void SafeWindow::BuildTable() {
  view_->setAccessibleName(u"Werte"_s);
  view_->OnCopy = [this] { Copy(); };
  model_.OnChoice = [this] { ShowChoice(); };
}

QPushButton* SafeWindow::NewCommand(const QString& name, const QString& caption,
                                    const std::function<void()>& command) {
  QPushButton* button = NewButton(this, name, caption);
  connect(button, &QPushButton::clicked, this, [this, command] { surroundings_.guard(command); });
  return button;
}

void SafeWindow::BuildButtons() {
  all_ = NewCommand(u"chooseAll"_s, u"&Alle"_s, [this] { view_->ChooseAll(true); });
  none_ = NewCommand(u"chooseNone"_s, u"&Keine"_s, [this] { view_->ChooseAll(false); });
  export_ = NewButton(this, u"export"_s, u"Ausge&ben"_s);
  const auto table = [this] {
    return SafeTable(surroundings_.core.module, run_, phase_, QDate::currentDate());
  };
  export_->setMenu(NewExportMenu(
      this, surroundings_.exports, surroundings_.guard, [this] { Copy(); }, table));
  do_ = NewCommand(u"doIt"_s, QString(), [this] { Do(); });
  do_->setDefault(true);
  repeat_ = NewCommand(u"repeat"_s, u"&Fehlgeschlagene wiederholen"_s, [this] {
    if (ChooseFailed(run_) > 0) Write();
  });
  takeBack_ = NewCommand(u"takeBack"_s, u"&Zurücknehmen…"_s, [this] { TakeBackRun(); });
  close_ = NewButton(this, u"CloseButton"_s, QString());
  connect(close_, &QPushButton::clicked, this, &SafeWindow::reject);
  auto* row = new QHBoxLayout;
  for (QPushButton* button : {all_, none_, export_, do_, repeat_, takeBack_, close_})
    row->addWidget(button);
  row->insertStretch(3);
  static_cast<QVBoxLayout*>(layout())->addLayout(row);
  SetTabOrder({view_, backup_, all_, none_, export_, do_, repeat_, takeBack_, close_});
}

// --- the kinds of runs ---

SafeContext SafeWindow::Context() {
  progress_.SetOwner(isVisible() ? static_cast<const QWidget&>(*this) : surroundings_.main);
  return {surroundings_.core, progress_, surroundings_.store};
}

void SafeWindow::Send() {
  Begin(ReadToSend(Context()));
}

void SafeWindow::Receive() {
  Begin(ReadToReceive(Context()));
}

void SafeWindow::Restore(const Backup& backup) {
  int unknown = 0;
  SafeRun run = ReadToRestore(Context(), backup, unknown);
  Begin(std::move(run), unknown);
}

void SafeWindow::Finish(const Sending& sending) {
  Begin(ReadToFinish(Context(), sending));
}

void SafeWindow::TakeBack(const Sending& sending) {
  Begin(ReadToTakeBack(Context(), sending));
}

// Takes the account's place only where there is something to decide instead.
void SafeWindow::Begin(SafeRun run, int unknown) {
  const Core& core = surroundings_.core;
  // Nobody answers a box any more when the session ends; who ends the reading needs no box about it.
  if (core.module.SessionEnds || run.aborted) return;
  if (!run.error.isEmpty()) {
    core.box.Show(run.error);
    return;
  }
  if (SafeRows(run, SafePhase::Choice).empty()) {
    core.box.Show(ChoiceText(run, unknown));
    return;
  }
  run_ = std::move(run);
  unknown_ = unknown;
  Show(SafePhase::Choice);
  ShowAboveOwner();
  view_->setFocus();
}

// --- showing ---

void SafeWindow::Show(SafePhase phase) {
  phase_ = phase;
  setWindowTitle(SafeTitle(run_.kind));
  view_->ShowPhase(phase);
  const bool choice = phase == SafePhase::Choice;
  const bool canDo = choice && run_.Count(SafeState::Different) > 0;
  for (QPushButton* button : {all_, none_, do_})
    button->setVisible(canDo);
  for (QPushButton* button : {repeat_, takeBack_})
    button->setVisible(!choice);
  close_->setText(canDo ? u"Abbrechen"_s : u"&Schließen"_s);
  const bool hasBackup = !choice && !run_.backup.isEmpty();
  backupLabel_->setVisible(hasBackup);
  backup_->setVisible(hasBackup);
  advice_->setVisible(!choice);
  if (choice) {
    ShowChoice();
  } else {
    ShowAccount();
  }
}

void SafeWindow::ShowChoice() {
  sentence_->setText(ChoiceText(run_, unknown_));
  do_->setText(ChoiceCommand(run_));
  do_->setEnabled(run_.Chosen() > 0);
}

void SafeWindow::ShowAccount() {
  sentence_->setText(AccountText(run_));
  advice_->setText(AdviceText(run_));
  backup_->setText(run_.backup);
  backup_->setToolTip(run_.backup);
  repeat_->setEnabled(std::ranges::any_of(run_.values, [](const SafeValue& value) {
    return value.chosen && value.sendable && IsTrouble(value.state);
  }));
  takeBack_->setEnabled(!run_.begun.empty());
}

// --- doing ---

void SafeWindow::Do() {
  if (run_.Chosen() == 0) return;
  if (run_.kind == SafeKind::Receive) {
    TakeOverChosen(surroundings_.core, run_);
    hide();
  } else {
    Write();
  }
}

void SafeWindow::Write() {
  // Also after a RuntimeError: something may have been written.
  const auto account = qScopeGuard([this] {
    surroundings_.onWritten();
    if (!surroundings_.core.module.SessionEnds) ShowWritten();
  });
  WriteChosen(Context(), run_);
}

// What could not even begin can be tried again.
void SafeWindow::ShowWritten() {
  const bool begun = !SafeRows(run_, SafePhase::Account).empty();
  if (!begun && !run_.error.isEmpty())
    surroundings_.core.box.Show(run_.error + u"\r\nEs wurde nichts geschrieben."_s);
  Show(begun ? SafePhase::Account : SafePhase::Choice);
  ShowAboveOwner();
  view_->setFocus();
}

void SafeWindow::TakeBackRun() {
  Begin(ReadToTakeBack(Context(), run_));
}

void SafeWindow::Copy() {
  QGuiApplication::clipboard()->setText(
      ClipboardText(SafeTable(surroundings_.core.module, run_, phase_, QDate::currentDate())));
}

// --- place and keys ---

void SafeWindow::reject() {
  if (isEnabled()) Form::reject();
}

// Who is disabled loses the keyboard.
void SafeWindow::changeEvent(QEvent* event) {
  Form::changeEvent(event);
  if (event->type() == QEvent::EnabledChange && isEnabled() && isVisible() && focusWidget() == nullptr)
    view_->setFocus();
}

void SafeWindow::hideEvent(QHideEvent* event) {
  SavePlace(*this, surroundings_.settings, PlaceKey());
  view_->Store(surroundings_.settings);
  Form::hideEvent(event);
}

}  // namespace kalivor::ui
