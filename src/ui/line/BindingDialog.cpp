#include "ui/line/BindingDialog.h"

#include <QFormLayout>
#include <QGroupBox>

#include "commands/PortCommands.h"
#include "platform/PortBinding.h"
#include "platform/SerialControl.h"
#include "ui/dialogs/Controls.h"
#include "ui/list/CellStyle.h"

using namespace Qt::StringLiterals;

namespace kalivor::ui {
namespace {

constexpr int kCharacters = 64;

// A radio button for something that may not be there.
void Offer(QRadioButton& button, const QString& caption, const QString& detail) {
  button.setEnabled(!detail.isEmpty());
  // "&" would be a mnemonic.
  button.setText(detail.isEmpty() ? caption
                                  : u"%1: %2"_s.arg(caption, QString(detail).replace(u'&', u"&&"_s)));
}

}  // namespace

BindingDialog::BindingDialog(platform::PortDirectory& ports, const platform::EventGuard& guard)
    : Form(u"BindingDialog"_s, u"Schnittstelle zuordnen"_s),
      ports_(ports),
      reason_(NewLabel(this, u"reason"_s, QString(), true)),
      number_(NewList(this, u"number"_s, u"Nummer"_s)),
      now_(NewLabel(this, u"now"_s, QString(), true)),
      counted_(Named(new QRadioButton(u"&wie das System zählt"_s), u"counted"_s)),
      bySerialNumber_(Named(new QRadioButton, u"bySerialNumber"_s)),
      byPlace_(Named(new QRadioButton, u"byPlace"_s)),
      byPath_(Named(new QRadioButton, u"byPath"_s)),
      network_(
          Named(new QRadioButton(u"eine &Netzadresse, socket://RECHNER:PORT oder rfc2217://RECHNER:PORT:"_s),
                u"network"_s)),
      address_(NewTextBox(this, u"address"_s, u"Netzadresse"_s)),
      fault_(NewLabel(this, u"fault"_s, QString(), true)) {
  setModal(true);
  for (int number = 1; number <= platform::kLargestPortNumber; ++number)
    number_->addItem(u"COM%1"_s.arg(number));
  QLabel* label = NewCaption(this, u"N&ummer:"_s, number_);
  auto* top = new QHBoxLayout;
  top->addWidget(label);
  top->addWidget(number_);
  top->addStretch();
  auto* group = new QGroupBox(u"steht für"_s, this);
  auto* choices = new QVBoxLayout(group);
  for (QRadioButton* button : {counted_, bySerialNumber_, byPlace_, byPath_, network_})
    choices->addWidget(button);
  choices->addWidget(address_);
  const OkCancel buttons = NewOkCancel(this, u"Zuordnen"_s, u"Abbrechen"_s);

  auto* layout = new QVBoxLayout(this);
  layout->addWidget(reason_);
  layout->addLayout(top);
  layout->addWidget(now_);
  layout->addWidget(group);
  layout->addWidget(fault_);
  layout->addSpacing(Air(*this));
  layout->addLayout(buttons.row);
  SetTabOrder({number_, counted_, bySerialNumber_, byPlace_, byPath_, network_, address_, buttons.ok,
               buttons.cancel});
  connect(number_, &QComboBox::currentIndexChanged, this, [this] { ShowNumber(); });
  connect(address_, &QLineEdit::textEdited, this, [this] { network_->setChecked(true); });
  connect(buttons.ok, &QPushButton::clicked, this, [this, guard] { guard([this] { Bind(); }); });
  connect(buttons.cancel, &QPushButton::clicked, this, &QDialog::reject);
}

void BindingDialog::Ask(int number, const platform::PortEntry& device, const QString& reason) {
  device_ = device;
  reason_->setText(reason);
  reason_->setVisible(!reason.isEmpty());
  const bool network = platform::KindOf(device.device) == platform::BindingKind::Network;
  Offer(*bySerialNumber_, u"dieses Gerät, wo immer es &steckt"_s,
        device.bySerialNumber.isEmpty() ? QString() : device.serialNumber);
  Offer(*byPlace_, u"was an dieser &Buchse steckt"_s, device.byPlace.isEmpty() ? QString() : device.place);
  Offer(*byPath_, u"das &Gerät dieses Namens"_s, network ? QString() : device.device);
  address_->setText(network ? device.device : QString());
  for (QRadioButton* button : {counted_, bySerialNumber_, byPlace_, byPath_, network_})
    StyleBox(*button);
  number_->setCurrentIndex(number - 1);
  ShowNumber();
  FitToContent(*this, kCharacters);
  number_->setFocus();
  ShowAboveOwner();
}

void BindingDialog::ShowNumber() {
  const QString binding = ports_.Binding(Number());
  const QString device = ports_.Shown(Number());
  now_->setText(binding.isEmpty() ? (device.isEmpty() ? u"Bisher: nichts"_s
                                                      : u"Bisher: %1, wie das System zählt"_s.arg(device))
                                  : u"Bisher: %1"_s.arg(binding));
  if (platform::KindOf(binding) == platform::BindingKind::Network) address_->setText(binding);
  fault_->clear();
  Proposed(binding).setChecked(true);
}

// What the number is bound to now, or what would keep it at this device most surely.
QRadioButton& BindingDialog::Proposed(const QString& binding) const {
  const bool network = platform::KindOf(device_.device) == platform::BindingKind::Network;
  if (network || (device_.device.isEmpty() && platform::KindOf(binding) == platform::BindingKind::Network))
    return *network_;
  if (!binding.isEmpty() && platform::SameBinding(binding, device_.byPlace)) return *byPlace_;
  if (!binding.isEmpty() && binding == device_.device) return *byPath_;
  for (QRadioButton* button : {bySerialNumber_, byPlace_, byPath_}) {
    if (button->isEnabled()) return *button;
  }
  return *counted_;
}

int BindingDialog::Number() const {
  return number_->currentIndex() + 1;
}

QString BindingDialog::Binding() const {
  if (bySerialNumber_->isChecked()) return device_.bySerialNumber;
  if (byPlace_->isChecked()) return device_.byPlace;
  if (byPath_->isChecked()) return device_.device;
  return network_->isChecked() ? address_->text().trimmed() : QString();
}

void BindingDialog::Bind() {
  const QString binding = Binding();
  QString fault = FaultOf(binding);
  // A path that was typed in the wrong line would look for a device of that name.
  if (network_->isChecked() && platform::KindOf(binding) != platform::BindingKind::Network && fault.isEmpty())
    fault = u"Eine Netzadresse beginnt mit socket:// oder rfc2217://."_s;
  if (fault.isEmpty() && OnBind) fault = OnBind(Number(), binding);
  fault_->setText(fault);
  if (fault.isEmpty()) {
    accept();
    return;
  }
  FitToContent(*this, kCharacters);
  if (network_->isChecked()) address_->setFocus();
}

}  // namespace kalivor::ui
