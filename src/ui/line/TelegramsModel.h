// The telegrams that are kept, as rows: for each exchange its request and its reply.
#pragma once

#include <QAbstractTableModel>
#include <deque>
#include <vector>

#include "comm/ExchangeLog.h"
#include "core/TelegramText.h"

namespace kalivor::ui {

/// Shows what the log has when Update() is called. Texts are made when a row is looked at; nothing is copied
/// unless the model is paused.
class TelegramsModel final : public QAbstractTableModel {
 public:
  enum Column { Number, Time, Duration, Attempt, Direction, Characters, Meaning, Columns };

  /// Control characters are shown as "<CR>" from now on: for letters that have no symbols for them.
  void ShowNames() { showsNames_ = true; }

  /// Which exchanges are shown.
  enum class Filter { All, Failed, Repeated, Transfer };

  /// `log` must outlive the model.
  explicit TelegramsModel(const ExchangeLog& log, QObject* parent = nullptr);

  /// By which definitions the telegrams are read from now on.
  void SetReader(TelegramReader reader);
  [[nodiscard]] const TelegramReader& Reader() const { return reader_; }

  /// Those of `filter`, and of them those in whose characters or meanings `text` occurs; "": all.
  void SetFilter(Filter filter, const QString& text);

  /// Paused it stays as it is: it keeps its own copy of the exchanges.
  void Pause(bool paused);
  [[nodiscard]] bool Paused() const { return paused_; }

  /// What an update has changed.
  struct Change {
    int removed = 0;   ///< rows at the beginning
    int inserted = 0;  ///< rows at the end
  };
  /// Takes over what the log has by now.
  Change Update();

  /// Exchanges that are shown, and that there are to choose from; both without the rows' doubling.
  [[nodiscard]] int Shown() const { return static_cast<int>(shown_.size()); }
  [[nodiscard]] int All() const;

  /// The exchange of a row; null where the log has given it up since the last update.
  [[nodiscard]] const Exchange* At(int row) const;

  /// True where `text` occurs in the characters or the meaning of the row.
  [[nodiscard]] bool Matches(int row, const QString& text) const;

  [[nodiscard]] QString Text(int row, int column) const;
  [[nodiscard]] static QString Title(int column);
  [[nodiscard]] static bool IsNumeric(int column) { return column <= Attempt && column != Time; }

  [[nodiscard]] int rowCount(const QModelIndex& parent = {}) const override;
  [[nodiscard]] int columnCount(const QModelIndex& parent = {}) const override;
  [[nodiscard]] QVariant data(const QModelIndex& index, int role) const override;
  [[nodiscard]] QVariant headerData(int section, Qt::Orientation orientation, int role) const override;

 private:
  [[nodiscard]] static bool IsReply(int row) { return row % 2 != 0; }
  [[nodiscard]] qint64 First() const;
  [[nodiscard]] qint64 Last() const;
  [[nodiscard]] const Exchange& Numbered(qint64 number) const;
  [[nodiscard]] bool Passes(const Exchange& exchange) const;
  [[nodiscard]] bool Contains(const Exchange& exchange, bool reply, const QString& text) const;
  [[nodiscard]] QString CharactersOf(const Exchange& exchange, bool reply) const;
  [[nodiscard]] QString ToolTip(int row) const;
  void Refilter();

  const ExchangeLog& log_;
  TelegramReader reader_;
  Filter filter_ = Filter::All;
  QString text_;
  std::deque<qint64> shown_;  // numbers of exchanges
  qint64 seen_ = 0;           // the last number that was looked at
  qint64 transferFirst_ = 1;  // of the transfer that is shown
  bool paused_ = false;
  bool showsNames_ = false;
  std::vector<Exchange> kept_;  // while it is paused
};

}  // namespace kalivor::ui
