// Which entries of the history the user wants to see.
#pragma once

#include <QComboBox>
#include <QLineEdit>
#include <functional>
#include <vector>

#include "history/Filter.h"
#include "platform/qt/EventGuard.h"

namespace kalivor::ui {

/// Search, parameter, kind, technician and days.
class EntryFilterBar final : public QWidget {
 public:
  explicit EntryFilterBar(platform::EventGuard guard, QWidget* parent = nullptr);

  /// Who can be chosen. What was chosen stays so while it is among them.
  void OfferTechnicians(const std::vector<history::Entry>& entries);
  /// Names and variables that are completed while one types.
  void OfferParameters(const QStringList& names);

  /// What is set, whatever the plant.
  [[nodiscard]] history::EntryFilter Filter() const;
  /// What was typed as a day and is none; "": nothing.
  [[nodiscard]] QString WrongDate() const;

  /// Finds the entries that changed a parameter, given its name or variable, again: there are more by now.
  void FindParameter();

  /// Looks them up.
  std::function<std::vector<QUuid>(const QString& parameter)> EntriesWith;
  std::function<void()> OnChange;

 private:
  void TakeParameter();

  platform::EventGuard guard_;
  QStringList parameters_;
  std::optional<QSet<QUuid>> found_;
  QLineEdit* search_;
  QLineEdit* parameter_;
  QComboBox* kind_;
  QComboBox* technicians_;
  QLineEdit* from_;
  QLineEdit* to_;
};

}  // namespace kalivor::ui
