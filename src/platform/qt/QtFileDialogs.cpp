#include "platform/qt/QtFileDialogs.h"

#include <QApplication>
#include <QFileDialog>
#include <QFileInfo>

using namespace Qt::StringLiterals;

namespace kalivor::platform {
namespace {

QString Chosen(QFileDialog& dialog) {
  if (dialog.exec() != QDialog::Accepted || dialog.selectedFiles().isEmpty()) return {};
  return QFileInfo(dialog.selectedFiles().constFirst()).absoluteFilePath();
}

}  // namespace

QString ToolkitFilter(const QString& filter) {
  const QStringList parts = filter.split(u'|');
  QStringList filters;
  for (qsizetype i = 0; i + 1 < parts.size(); i += 2) {
    // "*.*" means every file; the toolkit would leave out those without a point.
    const QString pattern = parts.at(i + 1) == u"*.*" ? u"*"_s : parts.at(i + 1);
    const QString description = parts.at(i).section(u" ("_s, 0, 0);
    filters.append(description + u" ("_s + pattern + u')');
  }
  return filters.join(u";;"_s);
}

QString QtFileDialogs::OpenFile(const QString& title, const QString& folder, const QString& filter) {
  QString slashed = folder;
  QFileDialog dialog(QApplication::activeWindow(), title, slashed.replace(u'\\', u'/'),
                     ToolkitFilter(filter));
  dialog.setOption(QFileDialog::DontUseNativeDialog, !native_);
  dialog.setAcceptMode(QFileDialog::AcceptOpen);
  dialog.setFileMode(QFileDialog::ExistingFile);
  return Chosen(dialog);
}

QString QtFileDialogs::SaveFile(const QString& title, const QString& filter) {
  QFileDialog dialog(QApplication::activeWindow(), title, QString(), ToolkitFilter(filter));
  dialog.setOption(QFileDialog::DontUseNativeDialog, !native_);
  // An existing file is overwritten without a question: it keeps what the new values do not reach.
  dialog.setOption(QFileDialog::DontConfirmOverwrite);
  dialog.setAcceptMode(QFileDialog::AcceptSave);
  dialog.setFileMode(QFileDialog::AnyFile);
  return Chosen(dialog);
}

}  // namespace kalivor::platform
