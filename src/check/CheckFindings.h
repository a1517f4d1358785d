// Collecting what the check of the definition files finds.
#pragma once

#include <QSet>
#include <QString>
#include <vector>

#include "check/DefinitionCheck.h"

namespace kalivor {

/// `text` in German quotation marks, fit for one line of output: control characters become "?", and what is
/// longer than a sentence can bear is cut.
[[nodiscard]] QString Quoted(QStringView text);

/// The findings in the order in which they were made, each once. Beyond kMost they are only counted.
class Findings {
 public:
  static constexpr std::size_t kMost = 1000;

  /// The program would read something else than what is meant, or stop.
  void Error(const QString& file, int line, const QString& text) { Add({file, line, true, text}); }

  /// Suspicious, but the program does something sensible.
  void Warning(const QString& file, int line, const QString& text) { Add({file, line, false, text}); }

  /// True when further findings would only be counted.
  [[nodiscard]] bool IsFull() const { return found_.size() == kMost; }

  /// All findings; one about `table` closes them when there were more than kMost.
  [[nodiscard]] std::vector<Finding> Take(const QString& table);

 private:
  void Add(Finding finding);

  std::vector<Finding> found_;
  QSet<QString> known_;
  bool more_ = false;
  bool moreErrors_ = false;
};

}  // namespace kalivor
