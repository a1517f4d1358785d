#include "ui/history/KeepingBar.h"

#include <QDir>
#include <QVBoxLayout>

#include "ui/dialogs/Controls.h"
#include "ui/list/CellStyle.h"

using namespace Qt::StringLiterals;

namespace kalivor::ui {
namespace {

QString AboutKeeping(const QString& file) {
  return u"Der Verlauf wird nicht geführt. Eingeschaltet hält er fest, wann welche Werte empfangen, "
         u"gesendet, "
         "verglichen, geladen, gespeichert oder zurückgesetzt wurden, an welcher Anlage, von wem und an "
         "welchem PC. Er steht in %1."_s.arg(QDir::toNativeSeparators(file));
}

void ShowWhereAny(QLabel& label, const QString& text) {
  label.setText(text);
  label.setVisible(!text.isEmpty());
}

}  // namespace

KeepingBar::KeepingBar(platform::EventGuard guard, QWidget* parent)
    : QWidget(parent),
      guard_(std::move(guard)),
      about_(NewLabel(this, u"about"_s, QString(), true)),
      keeps_(Named(new QCheckBox(u"Verlauf &führen"_s, this), u"keeps"_s)),
      names_(new QWidget(this)),
      plant_(Named(new platform::ElidedLabel(this), u"plant"_s)),
      technician_(NewTextBox(this, u"technician"_s, u"Techniker"_s)),
      doubt_(NewLabel(this, u"doubt"_s, QString(), true)) {
  connect(keeps_, &QCheckBox::clicked, this, [this](bool keeps) { guard_([&] { OnKeep(keeps); }); });
  QPushButton* choose = NewButton(this, u"choosePlant"_s, u"Anlage &wählen…"_s);
  connect(choose, &QPushButton::clicked, this, [this] { guard_([this] { OnChoosePlant(); }); });
  technician_->setPlaceholderText(u"Name, wenn er im Verlauf stehen soll"_s);
  connect(technician_, &QLineEdit::editingFinished, this,
          [this] { guard_([this] { OnTechnician(technician_->text().trimmed()); }); });
  auto* names = new QHBoxLayout(names_);
  names->setContentsMargins({});
  names->addWidget(NewLabel(this, u"plantLabel"_s, u"Anlage:"_s));
  names->addWidget(plant_, 1);
  names->addWidget(choose);
  names->addSpacing(2 * Air(*this));
  names->addWidget(NewCaption(this, u"&Techniker:"_s, technician_));
  names->addWidget(technician_, 1);
  auto* row = new QHBoxLayout;
  row->addWidget(keeps_);
  row->addSpacing(2 * Air(*this));
  row->addWidget(names_, 1);
  row->addStretch();
  auto* layout = new QVBoxLayout(this);
  layout->setContentsMargins({});
  layout->addWidget(about_);
  layout->addLayout(row);
  layout->addWidget(doubt_);
  SetTabOrder({keeps_, choose, technician_});
  setFocusProxy(keeps_);
}

void KeepingBar::Show(const Keeping& keeping) {
  const bool possible = !keeping.file.isEmpty();
  keeps_->setEnabled(possible);
  keeps_->setChecked(keeping.used.keeps && possible);
  names_->setVisible(keeping.used.keeps);
  // Who is typing is not to be interrupted.
  if (!technician_->hasFocus()) technician_->setText(keeping.used.technician);
  plant_->ShowText(keeping.plant.isEmpty() ? u"keine gewählt"_s : keeping.plant);
  ShowWhereAny(*about_,
               keeping.fault.isEmpty() && !keeping.used.keeps ? AboutKeeping(keeping.file) : keeping.fault);
  ShowWhereAny(*doubt_, keeping.doubt);
}

void KeepingBar::showEvent(QShowEvent* event) {
  StyleBox(*keeps_);
  QWidget::showEvent(event);
}

}  // namespace kalivor::ui
