#include "ui/line/TelegramsWindow.h"

#include <QApplication>
#include <QClipboard>
#include <QHeaderView>
#include <QScrollBar>
#include <QShortcut>
#include <QStyledItemDelegate>
#include <QVBoxLayout>

#include "core/ListTable.h"
#include "ui/dialogs/Controls.h"
#include "ui/list/CellStyle.h"
#include "ui/main/StoredPlace.h"

using namespace Qt::StringLiterals;

namespace kalivor::ui {
namespace {

// Often enough to look live, seldom enough to be no work.
constexpr int kLive_ms = 200;

// Few letters have it and its like.
constexpr QChar kCarriageReturnSymbol(0x240D);

// The meaning takes what is left, at first so much more than it needs at least.
constexpr int kMeaning_digits = 26;
constexpr int kHeight_lines = 30;

const QString& PlaceKey() {
  static const QString key = u"TelegrammePlatz"_s;
  return key;
}

const QString& ColumnsKey() {
  static const QString key = u"TelegrammeSpalten"_s;
  return key;
}

// "1 Anfrage", "12 Anfragen"
QString Requests(int count) {
  return count == 1 ? u"1 Anfrage"_s : u"%1 Anfragen"_s.arg(count);
}

}  // namespace

TelegramsWindow::TelegramsWindow(TelegramsSurroundings surroundings)
    : Form(u"TelegramsWindow"_s, u"Telegramme"_s),
      surroundings_(std::move(surroundings)),
      model_(new TelegramsModel(surroundings_.exchanges, this)),
      tabs_(Named(new QTabWidget(this), u"tabs"_s)),
      quality_(new QualityView(surroundings_.exchanges)) {
  setWindowFlag(Qt::WindowMaximizeButtonHint);
  tabs_->addTab(NewTelegramsPage(), u"Te&legramme"_s);
  tabs_->addTab(quality_, u"&Qualität der Leitung"_s);
  auto* layout = new QVBoxLayout(this);
  layout->addWidget(tabs_, 1);
  layout->addLayout(NewButtons());
  live_.setInterval(kLive_ms);
  connect(&live_, &QTimer::timeout, this, [this] { Update(); });
  const int width = WholeWidth(*table_) + fontMetrics().horizontalAdvance(u'0') * kMeaning_digits +
                    6 * table_->frameWidth() + 4 * layout->contentsMargins().left();
  ResizeOnScreen(*this, {width, fontMetrics().lineSpacing() * kHeight_lines});
  LoadPlace(*this, surroundings_.settings, PlaceKey());
  LoadColumns(*table_->horizontalHeader(), surroundings_.settings, ColumnsKey());
}

QWidget* TelegramsWindow::NewTelegramsPage() {
  auto* page = Named(new QWidget, u"telegrams"_s);
  auto* layout = new QVBoxLayout(page);
  layout->addLayout(NewFilterRow());
  BuildTable();
  layout->addWidget(table_, 1);
  count_ = NewLabel(this, u"count"_s, QString());
  layout->addWidget(count_);
  return page;
}

QLayout* TelegramsWindow::NewFilterRow() {
  filter_ = Named(new QComboBox(this), u"filter"_s);
  filter_->addItems({u"alle"_s, u"nur fehlgeschlagene"_s, u"nur wiederholte"_s, u"diese Übertragung"_s});
  filter_->setAccessibleName(u"Zeigen"_s);
  connect(filter_, &QComboBox::currentIndexChanged, this, [this] { TakeFilter(); });
  QLabel* filterLabel = NewCaption(this, u"&Zeigen:"_s, filter_);

  search_ = NewSearchBox(this, u"search"_s, u"Suche"_s, u"Zeichen oder Bedeutung"_s);
  connect(search_, &QLineEdit::textChanged, this, [this] { TakeFilter(); });
  connect(search_, &QLineEdit::returnPressed, this, [this] { Find(1); });
  QLabel* searchLabel = NewCaption(this, u"Suc&he:"_s, search_);
  QPushButton* next = NewButton(this, u"findNext"_s, u"&Weitersuchen"_s);
  next->setToolTip(u"F3; rückwärts mit Umschalt+F3"_s);
  connect(next, &QPushButton::clicked, this, [this] { Find(1); });
  connect(new QShortcut(Qt::Key_F3, this), &QShortcut::activated, this, [this] { Find(1); });
  connect(new QShortcut(Qt::SHIFT | Qt::Key_F3, this), &QShortcut::activated, this, [this] { Find(-1); });
  connect(new QShortcut(QKeySequence::Find, this), &QShortcut::activated, search_, [this] {
    tabs_->setCurrentIndex(0);
    search_->setFocus(Qt::ShortcutFocusReason);
    search_->selectAll();
  });
  onlyHits_ = Named(new QCheckBox(u"nur T&reffer"_s, this), u"onlyHits"_s);
  connect(onlyHits_, &QCheckBox::toggled, this, [this] { TakeFilter(); });

  auto* row = new QHBoxLayout;
  row->addWidget(filterLabel);
  row->addWidget(filter_);
  row->addSpacing(2 * Air(*this));
  row->addWidget(searchLabel);
  row->addWidget(search_, 1);
  row->addWidget(next);
  row->addWidget(onlyHits_);
  return row;
}

void TelegramsWindow::BuildTable() {
  table_ = Named(new QTableView(this), u"table"_s);
  table_->setAccessibleName(u"Telegramme"_s);
  if (!table_->fontMetrics().inFont(kCarriageReturnSymbol)) model_->ShowNames();
  table_->setModel(model_);
  PrepareTable(*table_, kRowAir_px / 2);
  SetColumnWidths(*table_, {8, 14, 13, 10, 10, 25, 30});
}

QLayout* TelegramsWindow::NewButtons() {
  pause_ = NewButton(this, u"pause"_s, u"&Anhalten"_s);
  pause_->setCheckable(true);
  pause_->setToolTip(u"Die Liste bleibt stehen; was weiter gesendet wird, erscheint danach."_s);
  connect(pause_, &QPushButton::toggled, this, [this](bool paused) { Pause(paused); });
  auto* copy = NewButton(this, u"copy"_s, u"&Kopieren"_s);
  copy->setToolTip(u"Strg+C: die markierten Zeilen, ohne Markierung alle gezeigten"_s);
  connect(copy, &QPushButton::clicked, this, [this] { Copy(); });
  connect(new QShortcut(QKeySequence::Copy, table_, nullptr, nullptr, Qt::WidgetShortcut),
          &QShortcut::activated, this, [this] { Copy(); });
  save_ = NewButton(this, u"save"_s, u"Speichern &unter…"_s);
  save_->setToolTip(u"Die gezeigten Telegramme als Text"_s);
  connect(save_, &QPushButton::clicked, this, [this] { surroundings_.guard([this] { Save(); }); });
  auto* close = NewButton(this, u"CloseButton"_s, u"&Schließen"_s);
  connect(close, &QPushButton::clicked, this, &QDialog::reject);
  auto* row = new QHBoxLayout;
  for (QPushButton* button : {pause_, copy, save_, close})
    row->addWidget(button);
  row->insertStretch(3);
  // Enter in the search field searches; it must not press a button.
  for (QPushButton* button : findChildren<QPushButton*>())
    button->setAutoDefault(false);
  SetTabOrder({tabs_, filter_, search_, findChild<QPushButton*>(u"findNext"_s), onlyHits_, table_, pause_,
               copy, save_, close});
  return row;
}

void TelegramsWindow::Open() {
  StylePlaceholders(*this);
  ShowAboveOwner();
  if (tabs_->currentIndex() == 0) table_->setFocus();
}

void TelegramsWindow::Update() {
  const bool otherVersion = model_->Reader().Version() != surroundings_.module.VersionList.SelectedText();
  if (std::exchange(readerIsOld_, false) || otherVersion)
    model_->SetReader(TelegramReader(surroundings_.module));
  // The view would make the row behind it the current one, and go there.
  const QModelIndex current = table_->currentIndex();
  if (current.isValid() && model_->At(current.row()) == nullptr)
    table_->selectionModel()->setCurrentIndex({}, QItemSelectionModel::NoUpdate);
  QScrollBar& bar = *table_->verticalScrollBar();
  const int place = bar.value();
  const bool follows = place == bar.maximum();
  const TelegramsModel::Change change = model_->Update();
  if (follows && change.removed + change.inserted > 0) FollowEnd();
  // What is being read stays where it is.
  if (!follows && change.removed > 0) bar.setValue(std::max(0, place - change.removed));
  save_->setEnabled(surroundings_.module.BusyDepth == 0 && model_->Shown() > 0);
  ShowCount();
  quality_->Update();
}

void TelegramsWindow::FollowEnd() {
  table_->scrollToBottom();
}

void TelegramsWindow::ShowCount() {
  QStringList parts;
  const int all = model_->All();
  if (all == 0) {
    parts.append(
        u"Noch ist nichts gesendet worden. Sobald der PC mit dem Regler spricht, steht hier jedes Telegramm."_s);
  } else if (model_->Shown() == all) {
    parts.append(Requests(all));
  } else {
    parts.append(u"%1 von %2"_s.arg(QString::number(model_->Shown()), Requests(all)));
  }
  if (surroundings_.exchanges.Last() > ExchangeLog::kKept) parts.append(u"ältere sind nicht mehr da"_s);
  if (model_->Paused()) parts.append(u"angehalten"_s);
  if (!notFound_.isEmpty()) parts.append(u"„%1“ kommt nicht vor"_s.arg(notFound_));
  const QString text = parts.join(u" · "_s);
  if (count_->text() != text) count_->setText(text);
}

void TelegramsWindow::TakeFilter() {
  notFound_.clear();
  model_->SetFilter(static_cast<TelegramsModel::Filter>(filter_->currentIndex()),
                    onlyHits_->isChecked() ? search_->text() : QString());
  FollowEnd();
  ShowCount();
}

void TelegramsWindow::Pause(bool paused) {
  // A tick, as a pressed button hardly differs from the others in dark colours.
  pause_->setText(paused ? u"✓ &Angehalten"_s : u"&Anhalten"_s);
  pause_->setAccessibleName(u"Anhalten"_s);
  model_->Pause(paused);
  if (!paused) FollowEnd();
  Update();
}

void TelegramsWindow::Find(int step) {
  const QString text = search_->text();
  const int count = model_->rowCount();
  notFound_.clear();
  if (text.isEmpty()) {
    search_->setFocus();
    return;
  }
  int row = table_->currentIndex().row();
  if (row < 0 && step < 0) row = 0;
  for (int looked = 0; looked < count; ++looked) {
    row = (row + step + count) % count;
    if (!model_->Matches(row, text)) continue;
    // Not aside: the column at the left is in view already.
    table_->setCurrentIndex(model_->index(row, std::max(0, table_->columnAt(0))));
    ShowCount();
    return;
  }
  notFound_ = text;
  ShowCount();
}

void TelegramsWindow::Copy() const {
  const QHeaderView& columns = *table_->horizontalHeader();
  ListTable copied;
  for (int position = 0; position < columns.count(); ++position)
    copied.titles.append(TelegramsModel::Title(columns.logicalIndex(position)));
  const QItemSelectionModel& selection = *table_->selectionModel();
  for (int row = 0; row < model_->rowCount(); ++row) {
    if (selection.hasSelection() && !selection.isRowSelected(row, {})) continue;
    std::vector<TableCell>& cells = copied.rows.emplace_back();
    for (int position = 0; position < columns.count(); ++position) {
      const int column = columns.logicalIndex(position);
      cells.push_back({model_->Text(row, column), TelegramsModel::IsNumeric(column)});
    }
  }
  QApplication::clipboard()->setText(ClipboardText(copied));
}

void TelegramsWindow::Save() {
  // A question for a file would hold the transfer up.
  if (surroundings_.module.BusyDepth > 0) return;
  TelegramLines lines;
  QString text;
  for (int row = 0; row < model_->rowCount(); row += 2) {
    if (const Exchange* exchange = model_->At(row)) text += lines.Of(model_->Reader(), *exchange);
  }
  surroundings_.save(text);
}

void TelegramsWindow::showEvent(QShowEvent* event) {
  Form::showEvent(event);
  Update();
  if (!model_->Paused()) FollowEnd();
  live_.start();
}

void TelegramsWindow::hideEvent(QHideEvent* event) {
  live_.stop();
  SavePlace(*this, surroundings_.settings, PlaceKey());
  SaveColumns(*table_->horizontalHeader(), surroundings_.settings, ColumnsKey());
  Form::hideEvent(event);
}

}  // namespace kalivor::ui
