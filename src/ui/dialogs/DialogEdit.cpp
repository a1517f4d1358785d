#include "ui/dialogs/DialogEdit.h"

#include <QGridLayout>
#include <QMouseEvent>

using namespace Qt::StringLiterals;

namespace kalivor::ui {

DialogEdit::DialogEdit() : ParameterEditor(u"DialogEdit"_s) {
  commandStd_ = NewButton(this, u"CommandStd"_s, u"<"_s);
  commandStd_->setAccessibleName(u"Standardwert übernehmen"_s);
  commandStd_->setAutoDefault(false);
  textStd_ = NewReadOnlyBox(this, u"TextStd"_s, u"Standard"_s);
  textVon_ = NewReadOnlyBox(this, u"TextVon"_s, u"Minimum"_s);
  textBis_ = NewReadOnlyBox(this, u"TextBis"_s, u"Maximum"_s);
  textStd_->installEventFilter(this);
  treedex_ = NewHiddenTextBox(this, u"Treedex"_s);

  auto* grid = new QGridLayout;
  const auto addRow = [&](int row, const QString& name, const QString& caption, QLineEdit* box) {
    grid->addWidget(NewLabel(this, name, caption), row, 0);
    grid->addWidget(box, row, 1);
    units_.push_back(NewLabel(this, u"LabelEinheit"_s, QString()));
    grid->addWidget(units_.back(), row, 3);
  };
  addRow(0, u"LabelWert"_s, u"Wert"_s, textWert_);
  addRow(1, u"LabelStd"_s, u"Standard"_s, textStd_);
  grid->addWidget(commandStd_, 1, 2);
  addRow(2, u"LabelVon"_s, u"Minimum"_s, textVon_);
  addRow(3, u"LabelBis"_s, u"Maximum"_s, textBis_);
  grid->setColumnStretch(1, 1);

  layout_->addLayout(grid);
  AddHelpAndButtons();
  SetTabOrder({textWert_, commandStd_, textStd_, textVon_, textBis_, buttons_.ok});

  connect(commandStd_, &QPushButton::clicked, this, &DialogEdit::TakeStandard);
}

void DialogEdit::Fill(const NumberEdit& content) {
  textWert_->setText(content.TextWert);
  textVon_->setText(content.TextVon);
  textBis_->setText(content.TextBis);
  textStd_->setText(content.TextStd);
  for (QLabel* unit : units_)
    unit->setText(content.LabelEinheit);
  treedex_->setText(content.Treedex);
  commandStd_->setFixedSize(textStd_->sizeHint().height(), textStd_->sizeHint().height());
  FillCommon(content.LabelName, content.LabelHilfetext, content.Nr);
  textWert_->selectAll();
}

NumberEdit DialogEdit::Content() const {
  return {.LabelName = labelName_->text(),
          .TextWert = textWert_->text(),
          .TextVon = textVon_->text(),
          .TextBis = textBis_->text(),
          .TextStd = textStd_->text(),
          .LabelEinheit = units_.front()->text(),
          .LabelHilfetext = labelHilfetext_->text(),
          .Nr = nr_->text(),
          .Treedex = treedex_->text()};
}

void DialogEdit::TakeStandard() {
  textWert_->setText(textStd_->text());
}

bool DialogEdit::eventFilter(QObject* watched, QEvent* event) {
  if (watched == textStd_ && event->type() == QEvent::MouseButtonPress &&
      static_cast<QMouseEvent*>(event)->button() == Qt::LeftButton) {
    TakeStandard();
  }
  return QDialog::eventFilter(watched, event);
}

}  // namespace kalivor::ui
