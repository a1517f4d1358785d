// The manual as HTML pages, shown by the system's browser.
#pragma once

#include <QStringList>
#include <QUrl>
#include <functional>

#include "platform/Help.h"

namespace kalivor::platform {

class ManualHelp final : public Help {
 public:
  /// `folders`: where the manual may be; the first that holds it counts. `open` shows a page and returns
  /// false when it cannot.
  ManualHelp(QStringList folders, std::function<bool(const QUrl& url)> open);

  /// The manual is no help file of a help viewer, so none is assigned.
  [[nodiscard]] QString HelpFile() const override { return {}; }
  void Open(HelpCommand /*command*/) override {}

  void ShowPage(const QString& page) override;

 private:
  QStringList folders_;
  std::function<bool(const QUrl&)> open_;
};

/// Where the manual of the program in `programFolder` may be: installed in the folder `installed`, seen from
/// there, or in the build tree.
[[nodiscard]] QStringList ManualFolders(const QString& programFolder, QStringView installed);

}  // namespace kalivor::platform
