#include "ui/history/PlantsView.h"

#include <QVBoxLayout>
#include <algorithm>

#include "core/ParameterList.h"
#include "ui/dialogs/Controls.h"
#include "ui/list/CellStyle.h"

using namespace Qt::StringLiterals;

namespace kalivor::ui {
namespace {

ListTable NoPlants() {
  return {{}, {u"Anlage"_s, u"Ort"_s, u"Einträge"_s}, {}};
}

}  // namespace

PlantsView::PlantsView(platform::EventGuard guard, QWidget* parent)
    : QWidget(parent),
      guard_(std::move(guard)),
      search_(NewSearchBox(this, u"plantSearch"_s, u"Anlagen suchen"_s, u"Name oder Ort"_s)),
      table_(Named(new QTableView(this), u"plants"_s)),
      change_(NewButton(this, u"changePlant"_s, u"Än&dern…"_s)) {
  connect(search_, &QLineEdit::textChanged, this, [this] { ShowFound(); });
  auto* top = new QHBoxLayout;
  top->addWidget(NewCaption(this, u"An&lagen:"_s, search_));
  top->addWidget(search_, 1);
  model_.Show(NoPlants());
  table_->setAccessibleName(u"Anlagen"_s);
  table_->setModel(&model_);
  PrepareTable(*table_);
  table_->setSelectionMode(QAbstractItemView::SingleSelection);
  SetColumnWidths(*table_, {19, 10, 9});
  table_->setMinimumWidth(24 * fontMetrics().horizontalAdvance(u'0'));
  connect(table_->selectionModel(), &QItemSelectionModel::currentChanged, this, [this] { TakeChoice(); });
  QPushButton* add = NewButton(this, u"newPlant"_s, u"&Neue Anlage…"_s);
  connect(add, &QPushButton::clicked, this, [this] { guard_([this] { OnNew(); }); });
  connect(change_, &QPushButton::clicked, this, [this] {
    guard_([this] {
      const auto plant = std::ranges::find(plants_, chosen_.value_or(QUuid()), &history::Plant::id);
      if (plant != plants_.end()) OnChange(*plant);
    });
  });
  auto* row = new QHBoxLayout;
  row->addWidget(add);
  row->addWidget(change_);
  row->addStretch();
  auto* layout = new QVBoxLayout(this);
  layout->setContentsMargins({});
  layout->addLayout(top);
  layout->addWidget(table_, 1);
  layout->addLayout(row);
  SetTabOrder({search_, table_, add, change_});
}

int PlantsView::WantedWidth() const {
  return WholeWidth(*table_);
}

void PlantsView::Show(std::vector<history::Plant> plants, const std::vector<history::Entry>& entries) {
  plants_ = std::move(plants);
  counts_.clear();
  for (const history::Entry& entry : entries)
    ++counts_[entry.plant];
  all_ = static_cast<int>(entries.size());
  ShowFound();
}

void PlantsView::ShowFound() {
  const QStringList words = SearchWords(search_->text());
  ListTable table = NoPlants();
  std::vector<std::optional<QUuid>> rows;
  const auto add = [&](std::optional<QUuid> id, const QString& name, const QString& place, int count) {
    rows.push_back(id);
    table.rows.push_back({{name}, {place}, {QString::number(count), true}});
  };
  if (words.isEmpty()) {
    add(std::nullopt, u"Alle Anlagen"_s, {}, all_);
    add(QUuid(), u"Ohne Anlage"_s, {}, counts_.value(QUuid()));
  }
  for (const history::Plant& plant : plants_) {
    const QString text = Folded(plant.name + u'\n' + plant.place + u'\n' + plant.remark);
    if (std::ranges::all_of(words, [&](const QString& word) { return text.contains(word); }))
      add(plant.id, plant.name, plant.place, counts_.value(plant.id));
  }
  const auto at = std::ranges::find(rows, chosen_);
  const auto row = at == rows.end() ? 0 : static_cast<int>(at - rows.begin());
  rows_ = std::move(rows);
  {
    const QSignalBlocker quiet(table_->selectionModel());
    model_.Show(std::move(table));
    table_->selectionModel()->reset();
  }
  if (rows_.empty()) {
    TakeChoice();
  } else {
    table_->setCurrentIndex(model_.index(row, 0));
  }
}

void PlantsView::TakeChoice() {
  const int row = table_->currentIndex().row();
  chosen_ = row >= 0 ? rows_[static_cast<std::size_t>(row)] : std::nullopt;
  change_->setEnabled(chosen_ && !chosen_->isNull());
  if (OnChoose) OnChoose();
}

QString PlantsView::ChosenName() const {
  const int row = table_->currentIndex().row();
  return row < 0 ? QString() : model_.Table().rows[static_cast<std::size_t>(row)][0].text;
}

}  // namespace kalivor::ui
