// Collecting what the check of the definition files finds.
#pragma once

#include <QSet>
#include <QString>
#include <type_traits>
#include <vector>

#include "base/Numbers.h"
#include "check/DefinitionCheck.h"

namespace kalivor {

/// The findings in the order in which they were made, each once. Beyond kMost they are only counted.
class Findings {
 public:
  static constexpr std::size_t kMost = 1000;

  void Add(Finding finding);

  /// True when further findings would only be counted.
  [[nodiscard]] bool IsFull() const { return found_.size() == kMost; }

  /// All findings; one about `table` closes them when there were more than kMost.
  [[nodiscard]] std::vector<Finding> Take(const QString& table);

 private:
  std::vector<Finding> found_;
  QSet<QString> known_;
  bool more_ = false;
  bool moreErrors_ = false;
};

/// The findings of one file. What stands for "%1", "%2" and so on in a text: numbers; texts of the file
/// (QString), which come quoted; words of the program (QStringView), which come as they are.
class FileFindings {
 public:
  /// `file`: its name as in the version table. `all` must outlive this.
  FileFindings(Findings& all, const QString& file) : all_(all), file_(file) {}

  /// The program would read something else than what is meant, or stop.
  template <typename... Values>
  void Error(int line, QStringView text, const Values&... values) const {
    all_.Add({file_, line, true, text.arg(Shown(values)...)});
  }

  /// Suspicious, but the program does something sensible.
  template <typename... Values>
  void Warning(int line, QStringView text, const Values&... values) const {
    all_.Add({file_, line, false, text.arg(Shown(values)...)});
  }

  [[nodiscard]] const QString& File() const { return file_; }

 private:
  /// In German quotation marks, fit for one line of output: control characters become "?", and what is longer
  /// than a sentence can bear is cut.
  [[nodiscard]] static QString Shown(const QString& text);
  [[nodiscard]] static QStringView Shown(QStringView text) { return text; }
  template <typename Number>
  requires std::is_arithmetic_v<Number>
  [[nodiscard]] static QString Shown(Number number) { return PlainNumber(static_cast<double>(number)); }

  Findings& all_;
  QString file_;
};

}  // namespace kalivor
