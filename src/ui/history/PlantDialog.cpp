#include "ui/history/PlantDialog.h"

#include <QCoreApplication>
#include <QFormLayout>
#include <QHeaderView>
#include <QKeyEvent>
#include <algorithm>

#include "core/ParameterList.h"
#include "ui/dialogs/Controls.h"
#include "ui/list/CellStyle.h"

using namespace Qt::StringLiterals;

namespace kalivor::ui {
namespace {

constexpr int kCharacters = 96;
constexpr int kRows = 10;
constexpr int kLongestName = 200;

}  // namespace

PlantDialog::PlantDialog(platform::EventGuard guard)
    : Form(u"PlantDialog"_s, u"Anlage wählen"_s),
      guard_(std::move(guard)),
      reason_(NewLabel(this, u"reason"_s, QString(), true)),
      search_(NewTextBox(this, u"plantSearch"_s, u"Name oder Ort"_s)),
      table_(Named(new QTableView(this), u"plants"_s)) {
  setModal(true);
  search_->setPlaceholderText(u"Name oder Ort"_s);
  search_->setMaxLength(kLongestName);
  search_->installEventFilter(this);
  connect(search_, &QLineEdit::textChanged, this, [this] { ShowPlants(); });
  auto* top = new QHBoxLayout;
  top->addWidget(NewCaption(this, u"&Anlage:"_s, search_));
  top->addWidget(search_, 1);

  table_->setAccessibleName(u"Anlagen"_s);
  model_.Show({{}, {u"Anlage"_s, u"Ort"_s, u"Hinweis"_s}, {}});
  table_->setModel(&model_);
  PrepareTable(*table_);
  table_->setSelectionMode(QAbstractItemView::SingleSelection);
  SetColumnWidths(*table_, {26, 22});
  table_->setMinimumHeight((kRows + 1) * table_->verticalHeader()->defaultSectionSize());
  connect(table_->selectionModel(), &QItemSelectionModel::currentChanged, this, [this] { ShowCommands(); });
  connect(table_, &QTableView::doubleClicked, this, [this] { Choose(); });

  new_ = NewButton(this, u"newPlant"_s, u"&Neue Anlage…"_s);
  connect(new_, &QPushButton::clicked, this, [this] { AskForNew(); });
  const OkCancel buttons = NewOkCancel(this, u"&Wählen"_s, u"Abbrechen"_s);
  ok_ = buttons.ok;
  buttons.row->insertWidget(0, new_);
  connect(ok_, &QPushButton::clicked, this, [this] { Choose(); });
  connect(buttons.cancel, &QPushButton::clicked, this, &QDialog::reject);
  auto* layout = new QVBoxLayout(this);
  layout->addWidget(reason_);
  layout->addLayout(top);
  layout->addWidget(table_, 1);
  layout->addWidget(NewNameRow());
  layout->addSpacing(Air(*this));
  layout->addLayout(buttons.row);
  SetTabOrder({search_, table_, nameParameter_, new_, ok_, buttons.cancel});
}

QWidget* PlantDialog::NewNameRow() {
  nameRow_ = new QWidget(this);
  nameParameter_ = Named(new QComboBox(nameRow_), u"nameParameter"_s);
  nameParameter_->setAccessibleName(u"Name der Anlage steht in"_s);
  nameParameter_->setToolTip(
      u"Ein Textparameter des Reglers, der den Namen der Anlage trägt: Nach ihm wird sie dann vorgeschlagen."_s);
  connect(nameParameter_, &QComboBox::activated, this, [this] {
    guard_([this] {
      if (OnNameParameter) OnNameParameter(nameParameter_->currentData().toString());
    });
  });
  auto* row = new QHBoxLayout(nameRow_);
  row->setContentsMargins({});
  row->addWidget(NewCaption(nameRow_, u"Name der Anlage &steht in:"_s, nameParameter_));
  row->addWidget(nameParameter_, 1);
  return nameRow_;
}

void PlantDialog::Ask(PlantQuestion question) {
  search_->clear();
  StylePlaceholders(*this);
  Renew(std::move(question));
  FitToContent(*this, kCharacters);
  search_->setFocus();
  ShowAboveOwner();
}

void PlantDialog::Renew(PlantQuestion question) {
  question_ = std::move(question);
  // The one that is likely stands first.
  std::stable_partition(question_.plants.begin(), question_.plants.end(),
                        [this](const history::Plant& plant) { return plant.id == question_.proposed; });
  reason_->setText(question_.reason);
  ShowNameParameters();
  ShowPlants();
}

void PlantDialog::ShowNameParameters() {
  nameRow_->setVisible(!question_.nameParameters.empty());
  nameParameter_->clear();
  nameParameter_->addItem(u"keinem Parameter"_s, QString());
  for (const PlantQuestion::NameParameter& parameter : question_.nameParameters)
    nameParameter_->addItem(parameter.caption, parameter.variable);
  const QString& chosen = question_.nameParameter;
  // It may be one of another controller's definitions.
  if (nameParameter_->findData(chosen) < 0) nameParameter_->addItem(chosen, chosen);
  nameParameter_->setCurrentIndex(nameParameter_->findData(chosen));
}

void PlantDialog::ShowPlants() {
  const QStringList words = SearchWords(search_->text());
  ListTable table{{}, {u"Anlage"_s, u"Ort"_s, u"Hinweis"_s}, {}};
  shown_.clear();
  const auto add = [&](const history::Plant& plant) {
    const bool proposed = !plant.id.isNull() && plant.id == question_.proposed;
    table.rows.push_back({{plant.name},
                          {plant.place},
                          {plant.id == question_.current ? u"zurzeit gewählt"_s
                           : proposed                    ? u"passt zum Regler"_s
                                                         : QString()}});
    shown_.push_back(plant.id);
  };
  for (const history::Plant& plant : question_.plants) {
    const QString text = Folded(plant.name + u'\n' + plant.place);
    if (std::ranges::all_of(words, [&](const QString& word) { return text.contains(word); })) add(plant);
  }
  if (question_.mayBeNone && words.isEmpty()) add({{}, u"Ohne Anlage"_s, {}, {}});
  model_.Show(std::move(table));
  // What is proposed, else what is chosen, else the first one.
  auto row = std::ranges::find(shown_, question_.proposed.isNull() ? question_.current : question_.proposed);
  if (row == shown_.end() || !words.isEmpty()) row = shown_.begin();
  if (!shown_.empty()) table_->setCurrentIndex(model_.index(static_cast<int>(row - shown_.begin()), 0));
  ShowCommands();
}

// Enter takes what is marked, or else makes what was typed.
void PlantDialog::ShowCommands() {
  const bool any = table_->currentIndex().isValid();
  ok_->setEnabled(any);
  (any ? ok_ : new_)->setDefault(true);
}

void PlantDialog::Choose() {
  if (!table_->currentIndex().isValid()) return;
  const QUuid plant = shown_[static_cast<std::size_t>(table_->currentIndex().row())];
  accept();
  guard_([&] {
    if (OnChoose) OnChoose(plant);
  });
}

void PlantDialog::AskForNew() {
  const QString typed = search_->text().trimmed();
  const QString name = typed.isEmpty() ? question_.name : typed;
  accept();
  guard_([&] {
    if (OnNew) OnNew(name);
  });
}

// Up and down move the mark while the user types.
bool PlantDialog::eventFilter(QObject* watched, QEvent* event) {
  if (watched == search_ && event->type() == QEvent::KeyPress) {
    switch (static_cast<const QKeyEvent&>(*event).key()) {
      case Qt::Key_Up:
      case Qt::Key_Down:
      case Qt::Key_PageUp:
      case Qt::Key_PageDown:
        QCoreApplication::sendEvent(table_, event);
        return true;
      default:
        break;
    }
  }
  return Form::eventFilter(watched, event);
}

PlantForm::PlantForm(platform::EventGuard guard)
    : Form(u"PlantForm"_s, u"Neue Anlage"_s),
      guard_(std::move(guard)),
      name_(NewTextBox(this, u"plantName"_s, u"Name der Anlage"_s)),
      place_(NewTextBox(this, u"plantPlace"_s, u"Ort"_s)),
      remark_(NewTextBox(this, u"plantRemark"_s, u"Bemerkung"_s)),
      fault_(NewLabel(this, u"fault"_s, QString(), true)) {
  setModal(true);
  for (QLineEdit* box : {name_, place_, remark_})
    box->setMaxLength(kLongestName);
  const OkCancel buttons = NewOkCancel(this, u"OK"_s, u"Abbrechen"_s);
  ok_ = buttons.ok;
  connect(name_, &QLineEdit::textChanged, this, [this](const QString& text) {
    ok_->setEnabled(!text.trimmed().isEmpty());
    fault_->clear();
  });
  connect(ok_, &QPushButton::clicked, this, [this] { Describe(); });
  connect(buttons.cancel, &QPushButton::clicked, this, &QDialog::reject);
  auto* form = new QFormLayout;
  form->addRow(u"&Name:"_s, name_);
  form->addRow(u"O&rt:"_s, place_);
  form->addRow(u"&Bemerkung:"_s, remark_);
  auto* layout = new QVBoxLayout(this);
  layout->addLayout(form);
  layout->addWidget(fault_);
  layout->addSpacing(Air(*this));
  layout->addLayout(buttons.row);
  SetTabOrder({name_, place_, remark_, ok_, buttons.cancel});
}

void PlantForm::Ask(const history::Plant& plant, std::vector<history::Plant> others) {
  plant_ = plant;
  others_ = std::move(others);
  setWindowTitle(plant.id.isNull() ? u"Neue Anlage"_s : u"Anlage ändern"_s);
  name_->setText(plant.name);
  place_->setText(plant.place);
  remark_->setText(plant.remark);
  ok_->setEnabled(!plant.name.trimmed().isEmpty());
  fault_->clear();
  FitToContent(*this, kCharacters);
  name_->setFocus();
  name_->selectAll();
  ShowAboveOwner();
}

// Two that nobody can tell apart would soon have half of the entries each.
QString PlantForm::Fault(const history::Plant& plant) const {
  const bool taken = std::ranges::any_of(others_, [&](const history::Plant& other) {
    return other.id != plant.id && other.name.compare(plant.name, Qt::CaseInsensitive) == 0 &&
           other.place.compare(plant.place, Qt::CaseInsensitive) == 0;
  });
  return taken ? u"Eine Anlage mit diesem Namen und diesem Ort gibt es schon. Bitte einen anderen Namen oder "
                 u"Ort "
                 "angeben."_s
               : QString();
}

void PlantForm::Describe() {
  const history::Plant plant{plant_.id, name_->text().trimmed(), place_->text().trimmed(),
                             remark_->text().trimmed()};
  if (plant.name.isEmpty()) return;
  const QString fault = Fault(plant);
  if (!fault.isEmpty()) {
    fault_->setText(fault);
    FitToContent(*this, kCharacters);
    name_->setFocus();
    return;
  }
  const bool isNew = plant.id.isNull();
  accept();
  guard_([&] {
    if (OnDescribe && (isNew || plant != plant_)) OnDescribe(plant);
  });
}

}  // namespace kalivor::ui
