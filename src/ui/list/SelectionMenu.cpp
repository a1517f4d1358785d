#include "ui/list/SelectionMenu.h"

#include <QBoxLayout>

#include "core/Refresh.h"
#include "ui/dialogs/Controls.h"

using namespace Qt::StringLiterals;

namespace kalivor::ui {
namespace {

constexpr int kCharacters = 44;

// As a caption of a menu item, where "&" would be an access key.
QString Caption(const QString& name) {
  return QString(name).replace(u'&', u"&&"_s);
}

}  // namespace

SelectionNameDialog::SelectionNameDialog(QWidget* parent)
    : QDialog(parent), name_(NewTextBox(this, u"selectionName"_s, u"Name"_s)) {
  setObjectName(u"SelectionName"_s);
  setWindowTitle(u"Auswahl sichern"_s);
  name_->setMaxLength(kLongestSelectionName);
  QLabel* label = NewCaption(this, u"&Name der Auswahl:"_s, name_);
  const OkCancel buttons = NewOkCancel(this, u"Sichern"_s, u"Abbrechen"_s);
  save_ = buttons.ok;
  cancel_ = buttons.cancel;
  auto* layout = new QVBoxLayout(this);
  layout->addWidget(label);
  layout->addWidget(name_);
  layout->addSpacing(Air(*this));
  layout->addLayout(buttons.row);
  SetTabOrder({name_, save_, cancel_});
  FitToContent(*this, kCharacters);
  connect(name_, &QLineEdit::textChanged, this, [this] { Judge(); });
  connect(cancel_, &QPushButton::clicked, this, &QDialog::reject);
  connect(save_, &QPushButton::clicked, this, [this] {
    if (IsBusy && IsBusy()) return;
    accept();
    if (OnName) OnName(SelectionName(name_->text()));
  });
}

void SelectionNameDialog::Ask(const QStringList& names) {
  names_ = names;
  name_->clear();
  Judge();
  open();
  name_->setFocus();
}

void SelectionNameDialog::Judge() {
  const QString name = SelectionName(name_->text());
  save_->setEnabled(!name.isEmpty());
  save_->setText(names_.contains(name) ? u"Ersetzen"_s : u"Sichern"_s);
}

SelectionMenu::SelectionMenu(Core& core, Selections& selections, platform::EventGuard guard, QWidget* parent)
    : QMenu(parent),
      core_(core),
      selections_(selections),
      guard_(std::move(guard)),
      dialog_(parent),
      deleteMenu_(u"&Löschen"_s, this) {
  deleteMenu_.setObjectName(u"deleteMenu"_s);
  setObjectName(u"selectionMenu"_s);
  dialog_.OnName = [this](const QString& name) { Save(name); };
  dialog_.IsBusy = [this] { return core_.module.BusyDepth > 0; };
  connect(this, &QMenu::aboutToShow, this, [this] { guard_([this] { Fill(); }); });
}

void SelectionMenu::Fill() {
  clear();
  const Selections::Listed listed = selections_.Names();
  for (const QString& name : listed.names)
    addAction(Caption(name), this, [this, name] { Recall(name); })->setObjectName(u"recall:"_s + name);
  if (!listed.error.isEmpty()) addAction(Caption(listed.error.simplified()))->setEnabled(false);
  if (!isEmpty()) addSeparator();
  addAction(u"&Sichern…"_s, this, [this, names = listed.names] {
    dialog_.Ask(names);
  })->setObjectName(u"saveSelection"_s);
  deleteMenu_.clear();
  for (const QString& name : listed.names)
    deleteMenu_.addAction(Caption(name), this, [this, name] { Delete(name); })
        ->setObjectName(u"delete:"_s + name);
  addMenu(&deleteMenu_)->setEnabled(!listed.names.isEmpty());
}

void SelectionMenu::Recall(const QString& name) {
  guard_([&] {
    if (core_.module.BusyDepth > 0) return;
    const Selections::Recalled recalled = selections_.Recall(core_.module, name);
    if (!recalled.error.isEmpty()) {
      core_.box.Show(recalled.error);
      return;
    }
    Refresh(core_, 2);
    if (OnDone) OnDone(RecalledText(recalled));
  });
}

void SelectionMenu::Save(const QString& name) {
  guard_([&] {
    const QString error = selections_.Save(core_.module, name);
    if (!error.isEmpty()) {
      core_.box.Show(error);
    } else if (OnDone) {
      OnDone(u"Auswahl „%1“ gesichert"_s.arg(name));
    }
  });
}

void SelectionMenu::Delete(const QString& name) {
  guard_([&] {
    if (core_.module.BusyDepth > 0) return;
    if (!core_.box.Confirm(u"Soll die Auswahl „%1“ gelöscht werden?"_s.arg(name), u"Löschen"_s)) return;
    const QString error = selections_.Delete(name);
    if (!error.isEmpty()) {
      core_.box.Show(error);
    } else if (OnDone) {
      OnDone(u"Auswahl „%1“ gelöscht"_s.arg(name));
    }
  });
}

}  // namespace kalivor::ui
