// Selections of parameters under names, kept in a file beside the settings.
#pragma once

#include <QByteArray>
#include <QString>
#include <QStringList>
#include <functional>
#include <optional>
#include <vector>

#include "base/Module1.h"
#include "platform/FileSystem.h"

namespace kalivor {

/// A parameter that a selection names.
struct SelectedParameter {
  QString Variable;
  std::optional<QString> VarAdresse;  ///< only where the variable occurs more than once

  bool operator==(const SelectedParameter&) const = default;
};

/// The check marks that were set when it was saved.
struct Selection {
  QString name;     ///< see SelectionName()
  QString version;  ///< of the controller
  std::vector<SelectedParameter> parameters;

  bool operator==(const Selection&) const = default;
};

/// `text` as the name of a selection: without blanks at its ends, and single ones inside. Empty when nothing
/// is left of it; cut after kLongestSelectionName characters.
[[nodiscard]] QString SelectionName(const QString& text);
inline constexpr qsizetype kLongestSelectionName = 60;

/// The file of selections: JSON in UTF-8. Nothing where the bytes are no such file: of other types, with a
/// name that SelectionName() would change or that occurs twice.
[[nodiscard]] std::optional<std::vector<Selection>> ParseSelections(const QByteArray& bytes);
[[nodiscard]] QByteArray ComposeSelections(const std::vector<Selection>& selections);

/// The checked parameters among 1..ParCount - 1.
[[nodiscard]] Selection SelectionOf(const Module1& module, const QString& name);

/// Marks exactly the parameters that the selection names among 1..ParCount - 1. One that it names by its
/// variable alone is found where that occurs once; all that share variable and address are marked together.
/// Nothing of the tree is shown anew. Returns how many of its parameters were not found.
[[nodiscard]] int MarkSelection(Module1& module, const Selection& selection);

/// The selections in their file, which is read anew for every operation: another program may have changed it.
/// Errors are German and say what to do; nothing has changed then.
class Selections {
 public:
  /// `files` must outlive it.
  Selections(platform::FileSystem& files, QString path) : files_(files), path_(std::move(path)) {}

  struct Listed {
    QStringList names;  ///< in the order of the German alphabet
    QString error;
  };
  [[nodiscard]] Listed Names();

  /// Keeps the checked parameters under SelectionName(name), in place of a selection of that name. A damaged
  /// file is set aside before. Returns "" or an error.
  [[nodiscard]] QString Save(const Module1& module, const QString& name);

  struct Recalled {
    int marked = 0;   ///< parameters that are checked now
    int missing = 0;  ///< parameters of the selection that the definitions do not know
    QString version;  ///< that it was saved for
    QString error;
  };
  [[nodiscard]] Recalled Recall(Module1& module, const QString& name);

  [[nodiscard]] QString Delete(const QString& name);

 private:
  struct Content;
  [[nodiscard]] Content Load();
  [[nodiscard]] QString Store(const std::vector<Selection>& selections);

  platform::FileSystem& files_;
  QString path_;
};

/// What is to be said after recalling: "12 Parameter angekreuzt", and how many are missing.
[[nodiscard]] QString RecalledText(const Selections::Recalled& recalled);

}  // namespace kalivor
