#include "platform/qt/ManualHelp.h"

#include <QDir>
#include <QFileInfo>

#include "platform/RuntimeError.h"

using namespace Qt::StringLiterals;

namespace kalivor::platform {

ManualHelp::ManualHelp(QStringList folders, std::function<bool(const QUrl&)> open)
    : folders_(std::move(folders)), open_(std::move(open)) {}

void ManualHelp::ShowPage(const QString& page) {
  const QString file = u'/' + page.section(u'#', 0, 0) + u".html"_s;
  for (const QString& folder : folders_) {
    if (!QFileInfo::exists(folder + file)) continue;
    QUrl url = QUrl::fromLocalFile(folder + file);
    if (page.contains(u'#')) url.setFragment(page.section(u'#', 1));
    if (open_(url)) return;
    throw RuntimeError(RuntimeError::Kind::FileError, u"Das Handbuch kann nicht geöffnet werden: "_s +
                                                          QDir::toNativeSeparators(folder + file));
  }
  throw RuntimeError(RuntimeError::Kind::FileError,
                     u"Das Handbuch wurde nicht gefunden: "_s + QDir::toNativeSeparators(folders_.value(0)));
}

QStringList ManualFolders(const QString& programFolder, QStringView installed) {
  return {QDir::cleanPath(programFolder + u'/' + installed.toString()),
          QDir::cleanPath(programFolder + u"/../docs/handbuch"_s)};
}

}  // namespace kalivor::platform
