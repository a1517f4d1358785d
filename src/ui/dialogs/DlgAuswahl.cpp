#include "ui/dialogs/DlgAuswahl.h"

#include <QKeyEvent>
#include <QStyleOptionButton>
#include <QStylePainter>

#include "platform/gui/FixedFont.h"
#include "platform/qt/ShownText.h"

using namespace Qt::StringLiterals;

namespace kalivor::ui {
namespace {

constexpr int kWidth_characters = 70;
constexpr int kCaptionMargin_px = 6;

// Drawn as the style draws every button, but for the caption's place. (A style sheet would replace the
// style's sizes as well.)
class LeftAlignedButton final : public QPushButton {
 public:
  LeftAlignedButton(QWidget* parent, const QString& name) : QPushButton(parent) { setObjectName(name); }

 protected:
  void paintEvent(QPaintEvent* /*event*/) override {
    QStylePainter painter(this);
    QStyleOptionButton option;
    initStyleOption(&option);
    painter.drawControl(QStyle::CE_PushButtonBevel, option);
    const QRect contents = style()->subElementRect(QStyle::SE_PushButtonContents, &option, this);
    painter.drawItemText(contents.adjusted(kCaptionMargin_px, 0, 0, 0),
                         Qt::AlignLeft | Qt::AlignVCenter | Qt::TextShowMnemonic, palette(), isEnabled(),
                         text(), QPalette::ButtonText);
    if (!hasFocus()) return;
    QStyleOptionFocusRect focus;
    focus.initFrom(this);
    focus.rect = style()->subElementRect(QStyle::SE_PushButtonFocusRect, &option, this);
    painter.drawPrimitive(QStyle::PE_FrameFocusRect, focus);
  }
};

}  // namespace

DlgAuswahl::DlgAuswahl(Module1& module) : Question(module, u"DlgAuswahl"_s, u"Wählen"_s) {
  setWindowFlags(Qt::Dialog | Qt::CustomizeWindowHint | Qt::WindowTitleHint);

  button1_ = new LeftAlignedButton(this, u"Button1"_s);
  button2_ = new LeftAlignedButton(this, u"Button2"_s);
  for (QPushButton* button : {button1_, button2_}) {
    // The captions are laid out with blanks, one below the other.
    button->setFont(platform::FixedFont());
    button->setAutoDefault(false);
    layout_->addWidget(button);
  }
  connect(button1_, &QPushButton::clicked, this, [this] { Answer(1); });
  connect(button2_, &QPushButton::clicked, this, [this] { Answer(2); });
}

void DlgAuswahl::Show(const QString& question, const QString& first, const QString& second) {
  button1_->setText(platform::AsCaption(first));
  button2_->setText(platform::AsCaption(second));
  Ask(question, kWidth_characters, *this);
}

// Enter presses the button that has the focus. The toolkit does so for default buttons alone.
void DlgAuswahl::keyPressEvent(QKeyEvent* event) {
  auto* button = qobject_cast<QPushButton*>(focusWidget());
  const bool enter = event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter;
  if (enter && button != nullptr) {
    button->click();
  } else {
    QDialog::keyPressEvent(event);
  }
}

}  // namespace kalivor::ui
