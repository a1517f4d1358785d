// The printed pages as text.
#pragma once

#include <QDate>
#include <QString>

#include "core/Core.h"
#include "print/pages/Geometry.h"
#include "print/pages/PreviewPages.h"

namespace kalivor::print {

/// What is printed where there is no window to take it from.
struct PrintInput {
  QString statusPath;  ///< the path in the footer: the current value file
  QDate date;
  int orientation = kPortrait;
  QLocale language = SystemLanguage();  ///< of the date
};

/// A printer that only has settings.
class NoPrinter final : public platform::Printer {
 public:
  explicit NoPrinter(int orientation) : orientation_(orientation) {}

  [[nodiscard]] int Orientation() const override { return orientation_; }
  void SetOrientation(int orientation) override { orientation_ = orientation; }
  [[nodiscard]] int PaperSize() const override { return kPaperA4; }
  void SetPaperSize(int) override {}
  [[nodiscard]] std::optional<int> Choose(qint32) override { return std::nullopt; }
  void PrintPage(const Draw&) override {}
  void EndDoc() override {}
  [[nodiscard]] QString EndPrinting() override { return {}; }
  void AbortDoc() noexcept override {}

 private:
  int orientation_;
};

/// `input` as the preview asks for it.
[[nodiscard]] PrintWorld WorldOf(Core& core, platform::Printer& printer, const PrintInput& input);

/// All pages that the print command would print: for each a line "=== Seite p von n", the header, the lines
/// indented by two blanks per level, the footer; each line ends with LF. Throws RuntimeError as the preview
/// does.
[[nodiscard]] QString PagesText(Core& core, const PrintInput& input);

}  // namespace kalivor::print
