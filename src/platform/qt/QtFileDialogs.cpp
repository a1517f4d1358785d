#include "platform/qt/QtFileDialogs.h"

#include <QApplication>
#include <QDir>
#include <QFileDialog>
#include <QFileInfo>

using namespace Qt::StringLiterals;

namespace kalivor::platform {
namespace {

QString Ask(QFileDialog& dialog, const QString& filter, bool native) {
  dialog.setOption(QFileDialog::DontUseNativeDialog, !native);
  // The descriptions name their patterns themselves.
  dialog.setOption(QFileDialog::HideNameFilterDetails);
  dialog.setNameFilters(ToolkitFilters(filter));
  if (dialog.exec() != QDialog::Accepted || dialog.selectedFiles().isEmpty()) return {};
  // As the user reads names on this system.
  return QDir::toNativeSeparators(QFileInfo(dialog.selectedFiles().constFirst()).absoluteFilePath());
}

}  // namespace

QStringList ToolkitFilters(const QString& filter) {
  const QStringList parts = filter.split(u'|');
  QStringList filters;
  for (qsizetype i = 0; i + 1 < parts.size(); i += 2) {
    // "*.*" means every file; the toolkit would leave out those without a point.
    const QString pattern = parts.at(i + 1) == u"*.*" ? u"*"_s : parts.at(i + 1);
    filters.append(parts.at(i) + u" ("_s + pattern + u')');
  }
  return filters;
}

QString QtFileDialogs::OpenFile(const QString& title, const QString& folder, const QString& filter) {
  QString slashed = folder;
  slashed.replace(u'\\', u'/');
  // A drive by itself would mean the current folder of that drive.
  if (slashed.endsWith(u':')) slashed += u'/';
  QFileDialog dialog(QApplication::activeWindow(), title, slashed);
  dialog.setAcceptMode(QFileDialog::AcceptOpen);
  dialog.setFileMode(QFileDialog::ExistingFile);
  return Ask(dialog, filter, native_);
}

QString QtFileDialogs::SaveFile(const QString& title, const QString& filter) {
  QFileDialog dialog(QApplication::activeWindow(), title);
  // An existing file is overwritten without a question: it keeps what the new values do not reach.
  dialog.setOption(QFileDialog::DontConfirmOverwrite);
  dialog.setAcceptMode(QFileDialog::AcceptSave);
  dialog.setFileMode(QFileDialog::AnyFile);
  return Ask(dialog, filter, native_);
}

}  // namespace kalivor::platform
