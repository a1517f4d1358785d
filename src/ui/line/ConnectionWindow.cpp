#include "ui/line/ConnectionWindow.h"

#include <QHeaderView>
#include <QKeyEvent>
#include <QStyledItemDelegate>
#include <algorithm>

#include "commands/OptionsCommands.h"
#include "commands/PortCommands.h"
#include "platform/SerialControl.h"
#include "ui/dialogs/Controls.h"
#include "ui/list/CellStyle.h"
#include "ui/main/StoredPlace.h"

using namespace Qt::StringLiterals;

namespace kalivor::ui {

using platform::PortEntry;
using platform::PortState;

namespace {

// Plugging and unplugging shows within a second.
constexpr int kLook_ms = 500;

// The size of the first time.
constexpr int kHeight_lines = 36;

enum AnswerColumn { Port, Rate, Address, Version, Known, Echo, Milliseconds, PlantType, AnswerColumns };
constexpr QStringView kAnswerTitles[] = {u"Schnittstelle", u"Rate", u"Adresse",       u"Version",
                                         u"Tabelle",       u"Echo", u"Antwort in ms", u"Anlageart"};

constexpr QStringView kPlaceKey = u"VerbindungPlatz";
constexpr QStringView kPortsKey = u"VerbindungSpalten";
constexpr QStringView kAnswersKey = u"VerbindungAntworten";

bool IsNumber(int column) {
  return column == Rate || column == Address || column == Milliseconds;
}

Qt::Alignment Aligned(int column) {
  return Qt::AlignVCenter | (IsNumber(column) ? Qt::AlignRight : Qt::AlignLeft);
}

class LineDelegate final : public CellDelegate {
 public:
  using CellDelegate::CellDelegate;

 protected:
  void initStyleOption(QStyleOptionViewItem* option, const QModelIndex& index) const override {
    CellDelegate::initStyleOption(option, index);
    if (!index.data(PortModel::kTroubleRole).toBool()) return;
    option->palette.setColor(QPalette::Text, WarningColour(option->palette));
  }
};

// What both tables have in common.
void Prepare(QTableView& table, const QString& columns) {
  PrepareTable(table);
  table.setItemDelegate(new LineDelegate(&table));
  table.setSelectionMode(QAbstractItemView::SingleSelection);
  table.horizontalHeader()->setObjectName(columns);
}

QStringList TextsOf(const PortEntry& port, const FoundController& found) {
  const QString rate = RateOf(found.settings);
  return {PortName(port),
          rate.isEmpty() ? u"–"_s : rate,
          QString::number(found.address),
          found.version,
          found.known ? u"bekannt"_s : u"unbekannt"_s,
          found.echo ? u"ja"_s : u"nein"_s,
          QString::number(found.answer_ms),
          PlantText(found)};
}

// The number that a device without one is offered: one that nothing stands for, the last one otherwise.
int FreeNumber(platform::PortDirectory& ports) {
  for (int number = 1; number <= platform::kLargestPortNumber; ++number) {
    if (ports.Binding(number).isEmpty() && ports.Device(number).isEmpty()) return number;
  }
  return platform::kLargestPortNumber;
}

}  // namespace

ConnectionWindow::ConnectionWindow(ConnectionSurroundings surroundings)
    : Form(u"ConnectionWindow"_s, u"Verbindung"_s),
      surroundings_(std::move(surroundings)),
      progress_(surroundings_.core.module),
      binding_(surroundings_.ports, surroundings_.guard),
      summary_(NewLabel(this, u"summary"_s, QString(), true)),
      ports_(Named(new QTableView(this), u"ports"_s)),
      remark_(NewLabel(this, u"remark"_s, QString(), true)),
      find_(NewButton(this, u"find"_s, u"&Suchen"_s)),
      everyAddress_(Named(new QCheckBox(u"&alle Adressen 0 bis 255"_s, this), u"everyAddress"_s)),
      assign_(NewButton(this, u"assign"_s, u"&Zuordnen…"_s)),
      result_(NewLabel(this, u"result"_s, QString(), true)),
      answersTable_(Named(new QTableWidget(0, AnswerColumns, this), u"answers"_s)),
      findings_(Named(new QPlainTextEdit(this), u"findings"_s)),
      takeOver_(NewButton(this, u"takeOver"_s, u"Ü&bernehmen"_s)),
      close_(NewButton(this, u"CloseButton"_s, u"S&chließen"_s)) {
  setWindowFlag(Qt::WindowMaximizeButtonHint);
  progress_.setObjectName(u"SearchProgress"_s);
  progress_.SetOwner(*this);
  binding_.SetOwner(*this);
  BuildPorts();
  BuildAnswers();
  BuildLayout();
  timer_.setInterval(kLook_ms);
  connect(&timer_, &QTimer::timeout, this, [this] {
    // The search lets other devices stand for the number meanwhile.
    if (surroundings_.core.module.BusyDepth == 0) LookAtPorts();
  });
  connect(close_, &QPushButton::clicked, this, &QDialog::reject);
  Connect(find_, &ConnectionWindow::Search);
  Connect(assign_, &ConnectionWindow::Assign);
  Connect(takeOver_, &ConnectionWindow::TakeOver);
  find_->setDefault(true);
  SetTabOrder({ports_, find_, everyAddress_, assign_, answersTable_, findings_, takeOver_, close_});
  ShowSearch();
}

void ConnectionWindow::Connect(QPushButton* button, void (ConnectionWindow::*command)()) {
  connect(button, &QPushButton::clicked, this, [this, command] {
    surroundings_.guard([&] {
      if (surroundings_.core.module.BusyDepth == 0) (this->*command)();
    });
  });
}

void ConnectionWindow::BuildPorts() {
  Prepare(*ports_, u"portColumns"_s);
  ports_->setAccessibleName(u"Schnittstellen"_s);
  ports_->setModel(&model_);
  ports_->installEventFilter(this);
  SetColumnWidths(*ports_, {9, 8, 22, 34, 16, 18, 16});
  LoadColumns(*ports_->horizontalHeader(), surroundings_.settings, kPortsKey.toString());
  connect(ports_->selectionModel(), &QItemSelectionModel::currentRowChanged, this, [this] { ShowPort(); });
  connect(&model_, &QAbstractItemModel::dataChanged, this, [this] {
    ShowPort();
    ShowCommands();
  });
}

void ConnectionWindow::BuildAnswers() {
  Prepare(*answersTable_, u"answerColumns"_s);
  answersTable_->setAccessibleName(u"Antworten"_s);
  for (int column = 0; column < AnswerColumns; ++column) {
    const QString title = kAnswerTitles[column].toString();
    auto* item = new QTableWidgetItem(IsNumber(column) ? title + kEndOfNumbers : title);
    item->setData(Qt::AccessibleTextRole, title);
    item->setTextAlignment(Aligned(column));
    answersTable_->setHorizontalHeaderItem(column, item);
  }
  SetColumnWidths(*answersTable_, {30, 9, 10, 14, 12, 8, 16, 20});
  LoadColumns(*answersTable_->horizontalHeader(), surroundings_.settings, kAnswersKey.toString());
  connect(answersTable_, &QTableWidget::itemSelectionChanged, this, [this] { ShowCommands(); });
  findings_->setAccessibleName(u"Befunde"_s);
  findings_->setReadOnly(true);
  findings_->setTabChangesFocus(true);
  // A read-only text can be read with the keyboard all the same.
  findings_->setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard);
}

void ConnectionWindow::BuildLayout() {
  everyAddress_->setToolTip(
      u"Fragt hinter der gespeicherten Adresse jede andere; das dauert einige Minuten."_s);
  takeOver_->setToolTip(u"Speichert Schnittstelle und Adresse der markierten Antwort."_s);
  assign_->setToolTip(u"Legt fest, für welches Gerät eine Nummer von COM1 bis COM8 steht."_s);
  auto* searching = new QHBoxLayout;
  searching->addWidget(find_);
  searching->addWidget(everyAddress_);
  searching->addStretch();
  searching->addWidget(assign_);
  auto* buttons = new QHBoxLayout;
  buttons->addWidget(takeOver_);
  buttons->addStretch();
  buttons->addWidget(close_);
  auto* layout = new QVBoxLayout(this);
  layout->addWidget(summary_);
  layout->addWidget(ports_, 3);
  layout->addWidget(remark_);
  layout->addLayout(searching);
  layout->addSpacing(Air(*this));
  layout->addWidget(result_);
  layout->addWidget(answersTable_, 2);
  layout->addWidget(findings_, 2);
  layout->addLayout(buttons);
  const QMargins margins = layout->contentsMargins();
  ResizeOnScreen(*this, {WholeWidth(*ports_) + margins.left() + margins.right(),
                         fontMetrics().lineSpacing() * kHeight_lines});
  LoadPlace(*this, surroundings_.settings, kPlaceKey.toString());
}

void ConnectionWindow::Open() {
  StyleBox(*everyAddress_);
  LookAtPorts();
  if (!ports_->currentIndex().isValid() && model_.rowCount() > 0) ports_->setCurrentIndex(model_.index(0, 0));
  ShowAboveOwner();
  (model_.rowCount() > 0 ? static_cast<QWidget*>(ports_) : close_)->setFocus();
}

void ConnectionWindow::LookAtPorts() {
  model_.Show(surroundings_.ports.List());
  if (model_.rowCount() > 0) {
    summary_->setText(
        u"An den angekreuzten Schnittstellen wird nach Reglern gefragt. Geändert wird dabei nichts."_s);
  } else {
    summary_->setText(NoPortsText());
  }
  ShowPort();
  ShowCommands();
}

// What there is to say about the current port.
void ConnectionWindow::ShowPort() {
  const PortEntry port = CurrentPort();
  QString text;
  if (port.number > 0 || !port.device.isEmpty()) {
    text = u"%1: %2"_s.arg(PortName(port), StateText(port.state));
    if (!port.remark.isEmpty()) text += u". "_s + port.remark;
  }
  // Always one line at least, so that nothing moves.
  remark_->setText(text.isEmpty() ? u" "_s : text);
}

void ConnectionWindow::ShowCommands() {
  find_->setEnabled(!model_.Marked().isEmpty());
  takeOver_->setEnabled(CurrentAnswer() != nullptr);
}

void ConnectionWindow::ToggleMarks() {
  const QModelIndex current = ports_->currentIndex();
  if (current.isValid()) model_.SetMarked(current.row(), !model_.IsMarked(current.row()));
}

PortEntry ConnectionWindow::CurrentPort() const {
  const QModelIndex current = ports_->currentIndex();
  return current.isValid() ? model_.At(current.row()) : PortEntry();
}

const ConnectionWindow::Answer* ConnectionWindow::CurrentAnswer() const {
  const QList<QTableWidgetItem*> selected = answersTable_->selectedItems();
  if (selected.isEmpty()) return nullptr;
  return &answers_[static_cast<std::size_t>(selected.first()->row())];
}

void ConnectionWindow::Search() {
  LineSearchRequest request{model_.Marked(), surroundings_.core.module.Adresse, {}};
  if (everyAddress_->isChecked()) request.range = LineSearchRequest::Range();
  search_ = {};
  ShowSearch();
  search_ = SearchLine(surroundings_.core, surroundings_.host, surroundings_.ports, request, progress_);
  ShowSearch();
  if (!answers_.empty()) {
    answersTable_->setCurrentCell(0, Port);
    answersTable_->setFocus();
  }
}

void ConnectionWindow::ShowSearch() {
  answers_.clear();
  QStringList findings;
  for (const SearchedPort& searched : search_.ports) {
    for (const FoundController& found : searched.answers)
      answers_.push_back({searched.port, found});
    if (searched.answers.empty()) findings.append(PortName(searched.port) + u": "_s + searched.text);
  }
  ShowAnswers();
  findings_->setPlainText(findings.join(u"\n\n"_s));
  findings_->setVisible(!findings.isEmpty());
  answersTable_->setVisible(findings.isEmpty() || !answers_.empty());
  QString result = answers_.size() == 1
                       ? u"1 Regler gefunden."_s
                       : u"%1 Regler gefunden."_s.arg(static_cast<qsizetype>(answers_.size()));
  if (search_.ports.empty()) result = u"Noch nicht gesucht."_s;
  if (!search_.ports.empty() && answers_.empty()) result = u"Kein Regler gefunden."_s;
  if (search_.aborted) result += u" Die Suche wurde abgebrochen."_s;
  if (!search_.error.isEmpty()) result = search_.error;
  result_->setText(result);
  ShowCommands();
}

void ConnectionWindow::ShowAnswers() {
  answersTable_->setRowCount(static_cast<int>(answers_.size()));
  for (int row = 0; row < answersTable_->rowCount(); ++row) {
    const Answer& answer = answers_[static_cast<std::size_t>(row)];
    const QStringList texts = TextsOf(answer.port, answer.found);
    for (int column = 0; column < AnswerColumns; ++column) {
      auto* item = new QTableWidgetItem(texts[column]);
      item->setTextAlignment(Aligned(column));
      item->setToolTip(texts[column]);
      answersTable_->setItem(row, column, item);
    }
  }
}

// A device without a number gets one first, which the user chooses.
void ConnectionWindow::TakeOver() {
  const Answer* current = CurrentAnswer();
  if (current == nullptr) return;
  const Answer answer = *current;
  int number = answer.port.number;
  // It may have got another one since the search.
  for (const PortEntry& port : surroundings_.ports.List()) {
    if (port.device == answer.port.device) number = port.number;
  }
  if (number > 0) {
    TakeOver(number, answer);
    return;
  }
  binding_.OnBind = [this, answer](int chosen, const QString& binding) {
    if (binding.isEmpty()) return u"Bitte wählen, wie die Nummer für dieses Gerät stehen soll."_s;
    QString fault = BindPort(surroundings_.ports, surroundings_.settings, chosen, binding);
    if (fault.isEmpty()) TakeOver(chosen, answer);
    LookAtPorts();
    return fault;
  };
  binding_.Ask(FreeNumber(surroundings_.ports), answer.port,
               u"%1 hat noch keine Nummer. Welche soll für dieses Gerät stehen?"_s.arg(answer.port.device));
}

void ConnectionWindow::TakeOver(int number, const Answer& answer) {
  ApplyConnection(surroundings_.core, number, answer.found.address);
  result_->setText(u"Übernommen: COM%1, Geräteadresse %2."_s.arg(number).arg(answer.found.address));
}

void ConnectionWindow::Assign() {
  const PortEntry port = CurrentPort();
  binding_.OnBind = [this](int number, const QString& binding) {
    QString fault = BindPort(surroundings_.ports, surroundings_.settings, number, binding);
    LookAtPorts();
    return fault;
  };
  const QString text =
      port.device.isEmpty() || port.state == PortState::Missing
          ? QString()
          : u"Gerät: %1"_s.arg(QStringList{port.device, port.description}.join(u' ').trimmed());
  binding_.Ask(port.number > 0 ? port.number : FreeNumber(surroundings_.ports),
               port.state == PortState::Missing ? PortEntry() : port, text);
}

bool ConnectionWindow::eventFilter(QObject* watched, QEvent* event) {
  if (watched == ports_ && event->type() == QEvent::KeyPress) {
    const auto& key = static_cast<const QKeyEvent&>(*event);
    if (key.key() == Qt::Key_Space && key.modifiers() == Qt::NoModifier) {
      ToggleMarks();
      return true;
    }
  }
  return Form::eventFilter(watched, event);
}

void ConnectionWindow::showEvent(QShowEvent* event) {
  timer_.start();
  Form::showEvent(event);
}

void ConnectionWindow::hideEvent(QHideEvent* event) {
  timer_.stop();
  SavePlace(*this, surroundings_.settings, kPlaceKey.toString());
  SaveColumns(*ports_->horizontalHeader(), surroundings_.settings, kPortsKey.toString());
  SaveColumns(*answersTable_->horizontalHeader(), surroundings_.settings, kAnswersKey.toString());
  Form::hideEvent(event);
}

}  // namespace kalivor::ui
