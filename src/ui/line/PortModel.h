// The ports as a table: which of them are there, in which state, and which are marked for the search.
#pragma once

#include <QAbstractTableModel>
#include <QHash>

#include "platform/PortDirectory.h"

namespace kalivor::ui {

/// A list that is shown again changes what has changed and nothing else, so that marks, selection and place
/// stay. A port is known by its device; one that is missing, by its number.
class PortModel final : public QAbstractTableModel {
 public:
  enum Column { Mark, Number, Device, Description, SerialNumber, Place, State, Columns };

  /// True for a cell that tells of trouble.
  static constexpr int kTroubleRole = Qt::UserRole + 1;

  using QAbstractTableModel::QAbstractTableModel;

  void Show(const QList<platform::PortEntry>& ports);

  [[nodiscard]] const platform::PortEntry& At(int row) const { return ports_.at(row); }
  [[nodiscard]] bool IsMarked(int row) const;

  /// Those that are marked, in the order of the list. What has just been plugged in is marked.
  [[nodiscard]] QList<platform::PortEntry> Marked() const;

  /// Marks the port, or takes its mark away. A missing one cannot be marked.
  void SetMarked(int row, bool marked);

  // QAbstractItemModel
  [[nodiscard]] int rowCount(const QModelIndex& parent = {}) const override;
  [[nodiscard]] int columnCount(const QModelIndex& parent = {}) const override;
  [[nodiscard]] QVariant data(const QModelIndex& index, int role) const override;
  [[nodiscard]] QVariant headerData(int section, Qt::Orientation orientation, int role) const override;
  bool setData(const QModelIndex& index, const QVariant& value, int role) override;
  [[nodiscard]] Qt::ItemFlags flags(const QModelIndex& index) const override;

 private:
  QList<platform::PortEntry> ports_;
  QHash<QString, bool> marks_;  // of those whose mark the user has changed
};

/// "frei", "belegt", "keine Rechte", "fehlt".
[[nodiscard]] QString StateText(platform::PortState state);

/// "COM2", or the device of a port without a number.
[[nodiscard]] QString PortName(const platform::PortEntry& port);

}  // namespace kalivor::ui
