#include "ui/history/EntryFilterBar.h"

#include <QCompleter>
#include <QShortcut>
#include <QVBoxLayout>
#include <algorithm>

#include "core/ParameterList.h"
#include "history/DateText.h"
#include "history/Tables.h"
#include "ui/dialogs/Controls.h"

using namespace Qt::StringLiterals;

namespace kalivor::ui {
namespace {

constexpr int kDate_digits = 13;
constexpr int kTechnician_characters = 14;

// What stands in a box for all there are.
const QString& All() {
  static const QString text = u"alle"_s;
  return text;
}

QComboBox* NewChoice(QWidget* parent, const QString& name, const QString& accessibleName) {
  auto* box = Named(new QComboBox(parent), name);
  box->setAccessibleName(accessibleName);
  box->addItem(All());
  return box;
}

}  // namespace

EntryFilterBar::EntryFilterBar(platform::EventGuard guard, QWidget* parent)
    : QWidget(parent),
      guard_(std::move(guard)),
      search_(NewSearchBox(this, u"search"_s, u"Suche"_s, u"Ergebnis, Bemerkung, Version, PC …"_s)),
      parameter_(NewSearchBox(this, u"parameter"_s, u"Parameter"_s, u"Name oder Variable"_s)),
      kind_(NewChoice(this, u"kind"_s, u"Art"_s)),
      technicians_(NewChoice(this, u"technicians"_s, u"Techniker der Einträge"_s)),
      from_(NewSearchBox(this, u"from"_s, u"von"_s, u"TT.MM.JJJJ"_s)),
      to_(NewSearchBox(this, u"to"_s, u"bis"_s, u"TT.MM.JJJJ"_s)) {
  const auto changed = [this] { OnChange(); };
  connect(search_, &QLineEdit::textChanged, this, changed);
  connect(new QShortcut(QKeySequence::Find, this), &QShortcut::activated, search_, [this] {
    search_->setFocus(Qt::ShortcutFocusReason);
    search_->selectAll();
  });
  connect(parameter_, &QLineEdit::editingFinished, this, [this] { TakeParameter(); });
  connect(parameter_, &QLineEdit::textChanged, this, [this](const QString& text) {
    if (text.isEmpty()) TakeParameter();
  });
  for (const DeedKind kind : history::kKinds)
    kind_->addItem(history::KindText(kind));
  connect(kind_, &QComboBox::currentIndexChanged, this, changed);
  technicians_->setSizeAdjustPolicy(QComboBox::AdjustToMinimumContentsLengthWithIcon);
  technicians_->setMinimumContentsLength(kTechnician_characters);
  connect(technicians_, &QComboBox::currentIndexChanged, this, changed);
  for (QLineEdit* box : {from_, to_}) {
    box->setToolTip(u"Ein Tag, ein Monat (3.2026) oder ein Jahr (2026)"_s);
    box->setMinimumWidth(fontMetrics().horizontalAdvance(u'0') * kDate_digits);
    connect(box, &QLineEdit::textChanged, this, changed);
  }
  const auto add = [this](QHBoxLayout* row, const QString& caption, QWidget* field, int stretch) {
    row->addWidget(NewCaption(this, caption, field));
    row->addWidget(field, stretch);
  };
  auto* first = new QHBoxLayout;
  add(first, u"Suc&he:"_s, search_, 3);
  add(first, u"&Parameter:"_s, parameter_, 2);
  auto* second = new QHBoxLayout;
  add(second, u"&Art:"_s, kind_, 0);
  add(second, u"Technike&r:"_s, technicians_, 1);
  add(second, u"&von:"_s, from_, 0);
  add(second, u"&bis:"_s, to_, 0);
  auto* layout = new QVBoxLayout(this);
  layout->setContentsMargins({});
  layout->addLayout(first);
  layout->addLayout(second);
  SetTabOrder({search_, parameter_, kind_, technicians_, from_, to_});
}

void EntryFilterBar::OfferTechnicians(const std::vector<history::Entry>& entries) {
  QStringList names;
  for (const history::Entry& entry : entries)
    if (!entry.stamp.technician.isEmpty() && (names.isEmpty() || names.back() != entry.stamp.technician))
      names << entry.stamp.technician;
  names.removeDuplicates();
  names.sort(Qt::CaseInsensitive);
  const QString chosen = technicians_->currentText();
  const QSignalBlocker quiet(technicians_);
  technicians_->clear();
  technicians_->addItem(All());
  technicians_->addItems(names);
  technicians_->setCurrentIndex(std::max(0, technicians_->findText(chosen)));
}

void EntryFilterBar::OfferParameters(const QStringList& names) {
  parameters_ = names;
  parameter_->setCompleter(nullptr);
  auto* completer = new QCompleter(parameters_, parameter_);
  completer->setCaseSensitivity(Qt::CaseInsensitive);
  completer->setFilterMode(Qt::MatchContains);
  connect(completer, qOverload<const QString&>(&QCompleter::activated), this, [this] { TakeParameter(); });
  parameter_->setCompleter(completer);
}

void EntryFilterBar::TakeParameter() {
  guard_([this] {
    FindParameter();
    OnChange();
  });
}

void EntryFilterBar::FindParameter() {
  QString name = parameter_->text().trimmed();
  found_.reset();
  if (name.isEmpty()) return;
  // As the definitions spell it.
  const auto same = [&name](const QString& each) { return each.compare(name, Qt::CaseInsensitive) == 0; };
  if (const auto at = std::ranges::find_if(parameters_, same); at != parameters_.end()) name = *at;
  const std::vector<QUuid> entries = EntriesWith(name);
  found_ = QSet<QUuid>(entries.begin(), entries.end());
}

history::EntryFilter EntryFilterBar::Filter() const {
  history::EntryFilter filter;
  if (kind_->currentIndex() > 0) filter.kind = history::kKinds[kind_->currentIndex() - 1];
  if (technicians_->currentIndex() > 0) filter.technician = technicians_->currentText();
  filter.words = SearchWords(search_->text());
  filter.from = history::DaysOf(from_->text()).value_or(history::Days()).first;
  filter.to = history::DaysOf(to_->text()).value_or(history::Days()).last;
  filter.entries = found_;
  return filter;
}

QString EntryFilterBar::WrongDate() const {
  for (const QLineEdit* box : {to_, from_})
    if (!history::DaysOf(box->text())) return box->text();
  return {};
}

}  // namespace kalivor::ui
