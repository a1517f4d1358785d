#include "ui/line/TelegramsModel.h"

#include <QApplication>
#include <QPalette>
#include <cmath>
#include <utility>

#include "ui/list/CellStyle.h"

using namespace Qt::StringLiterals;

namespace kalivor::ui {
namespace {

constexpr double kMilli = 1000;

constexpr char16_t kFirstSymbol = 0x2400;
constexpr QStringView kNames[] = {u"NUL", u"SOH", u"STX", u"ETX", u"EOT", u"ENQ", u"ACK", u"BEL",
                                  u"BS",  u"HT",  u"LF",  u"VT",  u"FF",  u"CR",  u"SO",  u"SI",
                                  u"DLE", u"DC1", u"DC2", u"DC3", u"DC4", u"NAK", u"SYN", u"ETB",
                                  u"CAN", u"EM",  u"SUB", u"ESC", u"FS",  u"GS",  u"RS",  u"US"};

// "<CR>" for the symbol of the carriage return.
QString WithNames(const QString& shown) {
  QString text;
  for (const QChar c : shown) {
    const int control = c.unicode() - kFirstSymbol;
    if (control >= 0 && control < static_cast<int>(std::size(kNames))) {
      text += u'<' + kNames[control].toString() + u'>';
    } else {
      text += c;
    }
  }
  return text;
}

}  // namespace

TelegramsModel::TelegramsModel(const ExchangeLog& log, QObject* parent)
    : QAbstractTableModel(parent), log_(log) {}

qint64 TelegramsModel::First() const {
  if (!paused_) return log_.First();
  return kept_.empty() ? 1 : kept_.front().number;
}

qint64 TelegramsModel::Last() const {
  if (!paused_) return log_.Last();
  return kept_.empty() ? 0 : kept_.back().number;
}

const Exchange& TelegramsModel::Numbered(qint64 number) const {
  return paused_ ? kept_[static_cast<std::size_t>(number - First())] : log_.Numbered(number);
}

int TelegramsModel::All() const {
  return static_cast<int>(Last() - First() + 1);
}

void TelegramsModel::SetReader(TelegramReader reader) {
  reader_ = std::move(reader);
  if (!text_.isEmpty()) {
    Refilter();
  } else if (!shown_.empty()) {
    Q_EMIT dataChanged(index(0, 0), index(rowCount() - 1, Columns - 1));
  }
}

void TelegramsModel::SetFilter(Filter filter, const QString& text) {
  if (filter == filter_ && text == text_) return;
  filter_ = filter;
  text_ = text;
  Refilter();
}

void TelegramsModel::Refilter() {
  beginResetModel();
  shown_.clear();
  if (!paused_) transferFirst_ = log_.TransferFirst();
  for (seen_ = First() - 1; seen_ < Last();) {
    ++seen_;
    if (Passes(Numbered(seen_))) shown_.push_back(seen_);
  }
  endResetModel();
}

void TelegramsModel::Pause(bool paused) {
  if (paused == paused_) return;
  if (paused) {
    Update();
    for (int i = 0; i < log_.Count(); ++i)
      kept_.push_back(log_.At(i));
    paused_ = true;
    return;
  }
  paused_ = false;
  kept_.clear();
  kept_.shrink_to_fit();
  Refilter();
}

TelegramsModel::Change TelegramsModel::Update() {
  Change change;
  if (paused_) return change;
  if (filter_ == Filter::Transfer && transferFirst_ != log_.TransferFirst()) {
    change.removed = rowCount();
    Refilter();
    change.inserted = rowCount();
    return change;
  }
  int gone = 0;
  while (gone < Shown() && shown_[static_cast<std::size_t>(gone)] < log_.First())
    ++gone;
  if (gone > 0) {
    change.removed = 2 * gone;
    beginRemoveRows({}, 0, change.removed - 1);
    shown_.erase(shown_.begin(), shown_.begin() + gone);
    endRemoveRows();
  }
  std::vector<qint64> added;
  for (seen_ = std::max(seen_, log_.First() - 1); seen_ < log_.Last();) {
    ++seen_;
    if (Passes(log_.Numbered(seen_))) added.push_back(seen_);
  }
  if (!added.empty()) {
    change.inserted = 2 * static_cast<int>(added.size());
    beginInsertRows({}, rowCount(), rowCount() + change.inserted - 1);
    shown_.insert(shown_.end(), added.begin(), added.end());
    endInsertRows();
  }
  return change;
}

bool TelegramsModel::Passes(const Exchange& exchange) const {
  const bool chosen = filter_ == Filter::All ||
                      (filter_ == Filter::Failed && exchange.end != ExchangeEnd::Good) ||
                      (filter_ == Filter::Repeated && exchange.attempt > 1) ||
                      (filter_ == Filter::Transfer && exchange.number >= transferFirst_);
  return chosen && (text_.isEmpty() || Contains(exchange, false, text_) || Contains(exchange, true, text_));
}

bool TelegramsModel::Contains(const Exchange& exchange, bool reply, const QString& text) const {
  if (CharactersOf(exchange, reply).contains(text, Qt::CaseInsensitive)) return true;
  return (reply ? reader_.ReplyText(exchange) : reader_.RequestText(exchange))
      .contains(text, Qt::CaseInsensitive);
}

QString TelegramsModel::CharactersOf(const Exchange& exchange, bool reply) const {
  const QString shown = reply ? ShownCharacters(exchange.received) : ShownCharacters(exchange.request);
  return showsNames_ ? WithNames(shown) : shown;
}

bool TelegramsModel::Matches(int row, const QString& text) const {
  const Exchange* exchange = At(row);
  return exchange != nullptr && Contains(*exchange, IsReply(row), text);
}

const Exchange* TelegramsModel::At(int row) const {
  const qint64 number = shown_[static_cast<std::size_t>(row / 2)];
  return number < First() ? nullptr : &Numbered(number);
}

QString TelegramsModel::Text(int row, int column) const {
  const Exchange* exchange = At(row);
  if (exchange == nullptr) return {};
  const bool reply = IsReply(row);
  switch (column) {
    case Number:
      return QString::number(exchange->number);
    case Time:
      return TimeOfDay(exchange->at_s + (reply ? exchange->answer_s : 0));
    case Duration:
      return reply ? QString::number(std::lround(exchange->answer_s * kMilli)) : QString();
    case Attempt:
      return reply ? QString() : QString::number(exchange->attempt);
    case Direction:
      return reply ? u"Antwort"_s : u"Anfrage"_s;
    case Characters:
      return CharactersOf(*exchange, reply);
    default:
      return reply ? reader_.ReplyText(*exchange) : reader_.RequestText(*exchange);
  }
}

QString TelegramsModel::Title(int column) {
  constexpr QStringView titles[] = {u"Nr",       u"Zeit",    u"Dauer (ms)", u"Versuch",
                                    u"Richtung", u"Zeichen", u"Bedeutung"};
  return titles[column].toString();
}

QString TelegramsModel::ToolTip(int row) const {
  const Exchange* exchange = At(row);
  if (exchange == nullptr) return {};
  return u"%1\nCOM%2, %3"_s.arg(Text(row, Meaning)).arg(exchange->portNumber).arg(exchange->settings);
}

int TelegramsModel::rowCount(const QModelIndex& parent) const {
  return parent.isValid() ? 0 : 2 * Shown();
}

int TelegramsModel::columnCount(const QModelIndex& parent) const {
  return parent.isValid() ? 0 : Columns;
}

QVariant TelegramsModel::data(const QModelIndex& index, int role) const {
  switch (role) {
    case Qt::DisplayRole:
      return Text(index.row(), index.column());
    case Qt::ToolTipRole:
      return ToolTip(index.row());
    case Qt::TextAlignmentRole:
      return QVariant(Qt::AlignVCenter | (IsNumeric(index.column()) ? Qt::AlignRight : Qt::AlignLeft));
    case Qt::BackgroundRole: {
      // Request and reply belong together.
      const bool odd = shown_[static_cast<std::size_t>(index.row() / 2)] % 2 != 0;
      return odd ? QVariant() : QVariant(QApplication::palette().brush(QPalette::AlternateBase));
    }
    case Qt::ForegroundRole: {
      const Exchange* exchange = At(index.row());
      const bool failed = exchange != nullptr && IsReply(index.row()) && exchange->end != ExchangeEnd::Good;
      return failed ? QVariant(WarningColour(QApplication::palette())) : QVariant();
    }
    default:
      return {};
  }
}

QVariant TelegramsModel::headerData(int section, Qt::Orientation orientation, int role) const {
  if (orientation != Qt::Horizontal) return {};
  if (role == Qt::TextAlignmentRole)
    return QVariant(Qt::AlignVCenter | (IsNumeric(section) ? Qt::AlignRight : Qt::AlignLeft));
  if (role == Qt::AccessibleTextRole) return Title(section);
  if (role != Qt::DisplayRole) return {};
  return IsNumeric(section) ? Title(section) + kEndOfNumbers : Title(section);
}

}  // namespace kalivor::ui
