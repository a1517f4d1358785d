#include "platform/gui/PrintJobs.h"

#include <QDir>
#include <QFileInfo>
#include <QLibrary>
#include <QStandardPaths>

using namespace Qt::StringLiterals;

namespace kalivor::platform {

// The toolkit keeps this to itself; the library that it has sent the job with tells.
std::optional<QString> RefusedJob() {
#ifdef Q_OS_UNIX
  constexpr int kLastSuccess = 0xFF;
  QLibrary cups(u"cups"_s, 2);
  const auto lastError = reinterpret_cast<int (*)()>(cups.resolve("cupsLastError"));
  const auto lastErrorText = reinterpret_cast<const char* (*)()>(cups.resolve("cupsLastErrorString"));
  if (lastError == nullptr || lastErrorText == nullptr) return std::nullopt;
  const int error = lastError();
  if (error < 0 || error > kLastSuccess) return QString::fromUtf8(lastErrorText());
#endif
  return std::nullopt;
}

QString RefusalText(const QString& printer, const std::optional<QString>& reason) {
  const QString text = u"Der Drucker hat den Auftrag nicht angenommen: "_s + printer;
  return reason.value_or(QString()).isEmpty() ? text : text + u"\r\n"_s + *reason;
}

QString ProposedFile(const QString& name) {
  const QString documents = QStandardPaths::writableLocation(QStandardPaths::DocumentsLocation);
  return QDir(QFileInfo(documents).isDir() ? documents : QDir::homePath()).filePath(name);
}

}  // namespace kalivor::platform
