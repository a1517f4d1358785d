// A printer that counts jobs and pages, and fails where the test says.
#pragma once

#include <functional>
#include <vector>

#include "platform/Printer.h"
#include "platform/RuntimeError.h"

namespace kalivor::test {

class FakePrinter final : public platform::Printer {
 public:
  int orientation = platform::kPortrait;
  int paperSize = platform::kPaperA4;
  std::optional<int> copies = 1;  ///< what the user chooses in the dialog; nothing: cancels
  int chosenOrientation = 0;      ///< the orientation that the user chooses; 0: leaves it
  std::vector<qint32> dialogs;    ///< the flags of each dialog shown
  bool missing = false;           ///< there is no printer
  int failAtPage = 0;             ///< vanishes at the n-th page; 0: never
  std::function<void()> onPage;   ///< runs for each page

  std::vector<int> jobs;  ///< pages of each job that was sent off
  int openPages = 0;      ///< pages of the job under way
  int pages = 0;          ///< pages of all jobs, dropped ones too
  int aborted = 0;        ///< jobs dropped
  int commands = 0;       ///< print commands completed
  QString file;           ///< what they are said to be written to

  [[nodiscard]] int Orientation() const override { return orientation; }
  void SetOrientation(int value) override { orientation = value; }
  [[nodiscard]] int PaperSize() const override { return paperSize; }
  void SetPaperSize(int value) override { paperSize = value; }

  [[nodiscard]] std::optional<int> Choose(qint32 flags) override {
    dialogs.push_back(flags);
    RequirePrinter();
    if (copies && chosenOrientation != 0) orientation = chosenOrientation;
    return copies;
  }

  void PrintPage(const Draw&) override {
    RequirePrinter();
    if (++pages == failAtPage) throw RuntimeError(RuntimeError::Kind::FileError);
    ++openPages;
    if (onPage) onPage();
  }

  void EndDoc() override {
    if (openPages == 0) return;
    jobs.push_back(openPages);
    openPages = 0;
  }

  [[nodiscard]] QString EndPrinting() override {
    ++commands;
    return file;
  }

  void AbortDoc() noexcept override {
    if (openPages > 0) ++aborted;
    openPages = 0;
  }

 private:
  void RequirePrinter() const {
    if (missing) throw RuntimeError(RuntimeError::Kind::MissingObject);
  }
};

}  // namespace kalivor::test
