#include "ui/about/frmSplash.h"

#include <QCoreApplication>
#include <QFrame>
#include <QGridLayout>
#include <QScreen>

#include "ui/Resources.h"
#include "ui/about/frmAbout.h"
#include "ui/dialogs/Controls.h"

using namespace Qt::StringLiterals;

namespace kalivor::ui {
namespace {

constexpr int kLogo_px = 128;
constexpr int kSmallLogo_px = 24;

}  // namespace

// Not kept on top: a message box may have something to say.
frmSplash::frmSplash() : QWidget(nullptr, Qt::SplashScreen) {
  setObjectName(u"frmSplash"_s);
  setWindowTitle(u"KALIVOR"_s);
  setWindowIcon(ProgramIcon());

  auto* frame = new QFrame(this);
  frame->setObjectName(u"fraMainFrame"_s);
  frame->setFrameStyle(QFrame::StyledPanel | QFrame::Raised);
  auto* outer = new QVBoxLayout(this);
  outer->setContentsMargins(0, 0, 0, 0);
  outer->addWidget(frame);

  auto* product = new QHBoxLayout;
  product->setSpacing(8);
  product->addWidget(NewPicture(frame, u"Image1"_s, kSmallLogo_px, u"KALIVOR"_s));
  product->addWidget(NewLargeLabel(frame, u"lblProductName"_s, u"KALIVOR"_s, 1.2));
  product->addStretch();
  product->addWidget(NewLabel(frame, u"lblVersion"_s, VersionText()));

  auto* texts = new QVBoxLayout;
  texts->addWidget(NewLabel(frame, u"lblCompany"_s, u"Die KALIVOR-Autoren"_s));
  texts->addWidget(NewLabel(frame, u"lblPresents"_s, u"presents"_s));
  texts->addStretch();
  texts->addWidget(NewLargeLabel(frame, u"lblProduct"_s, u"KALIVOR"_s, 3));
  texts->addWidget(NewLabel(frame, u"lblDescription"_s, u"Parametrierung von Reglern"_s));
  texts->addStretch();

  auto* layout = new QGridLayout(frame);
  layout->setContentsMargins(24, 20, 24, 16);
  layout->setHorizontalSpacing(28);
  layout->addWidget(NewPicture(frame, u"picLogo"_s, kLogo_px, u"KALIVOR"_s), 0, 0, Qt::AlignTop);
  layout->addLayout(texts, 0, 1);
  layout->setRowMinimumHeight(1, 14);
  layout->addLayout(product, 2, 0, 1, 2);
  layout->addWidget(NewLabel(frame, u"lblPlatform"_s, u"Plattform"_s), 3, 0, 1, 2, Qt::AlignRight);
}

void frmSplash::ShowNow() {
  adjustSize();
  move(screen()->availableGeometry().center() - rect().center());
  show();
  repaint();
  QCoreApplication::processEvents();
}

}  // namespace kalivor::ui
