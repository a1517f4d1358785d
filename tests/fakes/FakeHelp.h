// A help viewer and manual that records what it is asked, and fails on request.
#pragma once

#include <QStringList>
#include <vector>

#include "platform/Help.h"
#include "platform/RuntimeError.h"

namespace kalivor::test {

class FakeHelp final : public platform::Help {
 public:
  QString file;             ///< assigned to the program
  QString failure;          ///< what every request ends with; "" for none
  std::vector<int> opened;  ///< commands of the viewer
  QStringList pages;        ///< of the manual

  [[nodiscard]] QString HelpFile() const override { return file; }
  void Open(platform::HelpCommand command) override {
    opened.push_back(static_cast<int>(command));
    Fail();
  }
  void ShowPage(const QString& page) override {
    pages.append(page);
    Fail();
  }

 private:
  void Fail() const {
    if (!failure.isEmpty()) throw RuntimeError(RuntimeError::Kind::FileError, failure);
  }
};

}  // namespace kalivor::test
