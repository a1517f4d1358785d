#include "ui/about/frmAbout.h"

#include <QGridLayout>

#include "ui/dialogs/Controls.h"

using namespace Qt::StringLiterals;

namespace kalivor::ui {
namespace {

constexpr int kIcon_px = 64;

}  // namespace

QString VersionText() {
  return u"Version " KALIVOR_VERSION ""_s;
}

frmAbout::frmAbout(QWidget* owner, const std::function<void()>& systemInformation) : QDialog(owner) {
  setObjectName(u"frmAbout"_s);
  setWindowTitle(u"Info"_s);

  QPushButton* ok = NewButton(this, u"cmdOK"_s, u"OK"_s);
  ok->setDefault(true);
  QPushButton* system = NewButton(this, u"cmdSysInfo"_s, u"&Systeminfo..."_s);
  system->setAutoDefault(false);

  auto* texts = new QVBoxLayout;
  texts->addWidget(NewLargeLabel(this, u"lblTitle"_s, u"KALIVOR"_s, 1.5));
  texts->addWidget(NewLabel(this, u"lblVersion"_s, VersionText()));
  texts->addSpacing(6);
  texts->addWidget(NewLabel(this, u"lblDescription"_s, u"Parametrierung von Reglern"_s));
  texts->addWidget(NewLabel(this, u"lblDisclaimer"_s, QString(), true));
  QHBoxLayout* buttons = NewButtonRow({ok, system});
  buttons->setSpacing(6);
  auto* layout = new QGridLayout(this);
  layout->setHorizontalSpacing(16);
  layout->addWidget(NewPicture(this, u"picIcon"_s, kIcon_px, u"Programmsymbol"_s), 0, 0, Qt::AlignTop);
  layout->addLayout(texts, 0, 1);
  layout->setRowMinimumHeight(1, 10);
  layout->addLayout(buttons, 2, 0, 1, 2);
  layout->setSizeConstraint(QLayout::SetFixedSize);
  setTabOrder(ok, system);
  ok->setFocus();

  connect(ok, &QPushButton::clicked, this, &QDialog::accept);
  connect(system, &QPushButton::clicked, this, [systemInformation] { systemInformation(); });
}

}  // namespace kalivor::ui
