// The printer of the program: its settings, the question for them, and print jobs.
#pragma once

#include <QString>
#include <functional>
#include <optional>

class QPainter;

namespace kalivor::platform {

/// Values of Printer::Orientation().
inline constexpr int kPortrait = 1;
inline constexpr int kLandscape = 2;

/// The value of Printer::PaperSize() for A4.
inline constexpr int kPaperA4 = 9;

/// A flag of Printer::Choose(): there is no selected part of the document to print.
inline constexpr qint32 kNoSelection = 4;

class Printer {
 public:
  virtual ~Printer() = default;

  /// kPortrait or kLandscape. Holds from the next job on, and for as long as the program runs.
  [[nodiscard]] virtual int Orientation() const = 0;
  virtual void SetOrientation(int orientation) = 0;

  /// kPaperA4 or another number. Changes this program's setting only, not that of the system.
  [[nodiscard]] virtual int PaperSize() const = 0;
  virtual void SetPaperSize(int paperSize) = 0;

  /// Lets the user choose the printer, starting with the system's default one, the orientation and the number
  /// of copies, which is returned; nothing when the user cancels. `flags` says what the dialog offers.
  [[nodiscard]] virtual std::optional<int> Choose(qint32 flags) = 0;

  using Draw = std::function<void(QPainter&)>;

  /// Prints one page, which starts a job when none is under way. `draw` gets a painter in centimetres, the
  /// origin at the upper left corner of the paper; it may be called as late as in EndPrinting(). Throws
  /// RuntimeError when there is no printer or it fails.
  virtual void PrintPage(const Draw& draw) = 0;

  /// Ends the job and sends it off; does nothing when none is under way. Throws RuntimeError on failure, and
  /// then nothing of the job has been printed.
  virtual void EndDoc() = 0;

  /// The user's command is done. Printing to a file, all its jobs are written now, into one file, whose path
  /// is returned. "" when nothing was printed or it went to a printer. Throws RuntimeError on failure.
  [[nodiscard]] virtual QString EndPrinting() = 0;

  /// Drops the job under way, if there is one, and jobs that have not become a file yet.
  virtual void AbortDoc() noexcept = 0;
};

}  // namespace kalivor::platform
