// File dialogs that record what they are asked and answer as the test says.
#pragma once

#include <gtest/gtest.h>
#include <vector>

#include "platform/FileDialogs.h"

namespace kalivor::test {

/// Gives the answers in the order of the list, "" for a cancelled dialog; one that no answer is left for
/// fails the test.
class FakeFileDialogs final : public platform::FileDialogs {
 public:
  struct Dialog {
    bool save = false;
    QString title, folder, filter;
  };
  std::vector<Dialog> shown;
  std::vector<QString> answers;
  bool cancelsFurther = false;  ///< dialogs that no answer is left for are cancelled

  [[nodiscard]] QString OpenFile(const QString& title, const QString& folder,
                                 const QString& filter) override {
    return Answer({false, title, folder, filter});
  }
  [[nodiscard]] QString SaveFile(const QString& title, const QString& filter) override {
    return Answer({true, title, {}, filter});
  }

 private:
  QString Answer(const Dialog& dialog) {
    shown.push_back(dialog);
    if (shown.size() <= answers.size()) return answers[shown.size() - 1];
    if (cancelsFurther) return {};
    ADD_FAILURE() << "unexpected dialog: " << dialog.title.toStdString();
    return {};
  }
};

}  // namespace kalivor::test
