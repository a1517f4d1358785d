#include "kalivor/Demo.h"

#include <QCoreApplication>
#include <QDir>
#include <QFileInfo>
#include <QStringList>

#ifndef Q_OS_WIN
#include "platform/posix/EndWithParent.h"
#endif

using namespace Qt::StringLiterals;

namespace kalivor {
namespace {

constexpr int kLongestStart_ms = 10000;
constexpr int kLongestEnd_ms = 2000;

// The first of `places` below the program's folder that exists; "" when none does.
QString FindBesideProgram(const QStringList& places) {
  const QDir program(QCoreApplication::applicationDirPath());
  for (const QString& place : places) {
    const QFileInfo found(program.absoluteFilePath(place));
    if (found.exists()) return QDir::cleanPath(found.absoluteFilePath());
  }
  return {};
}

// Installed programs lie side by side; in the build tree each lies in its layer's folder.
QString FindController() {
#ifdef Q_OS_WIN
  const QString name = u"kalivor-sim.exe"_s;
#else
  const QString name = u"kalivor-sim"_s;
#endif
  return FindBesideProgram({name, u"../"_s + name, u"../src/"_s + name, u"../sim/"_s + name});
}

QString FindExample() {
  const QString table = u"/VF.INI"_s;
  const QString found = FindBesideProgram({u"../share/kalivor/examples"_s + table, u"examples"_s + table});
  return found.isEmpty() ? QString() : QFileInfo(found).absolutePath();
}

}  // namespace

QString Demo::Start() {
  folder_ = FindExample();
  if (folder_.isEmpty()) return u"Das mitgelieferte Beispiel wurde nicht gefunden."_s;
  const QString program = FindController();
  if (program.isEmpty()) return u"Der simulierte Regler (kalivor-sim) wurde nicht gefunden."_s;
  settings_.emplace();
  if (!settings_->isValid()) return u"Es kann kein Ordner für vorläufige Dateien angelegt werden."_s;

  controller_.setProcessChannelMode(QProcess::ForwardedErrorChannel);
#ifndef Q_OS_WIN
  // A session that ends kills the program, and nobody would be left to end the controller.
  const qint64 self = QCoreApplication::applicationPid();
  controller_.setChildProcessModifier([self] { platform::EndWithParent(static_cast<pid_t>(self)); });
#endif
  controller_.start(program, {u"--ini-path"_s, folder_});
  // Its first line is the name of its device.
  while (!controller_.canReadLine()) {
    if (!controller_.waitForReadyRead(kLongestStart_ms))
      return u"Der simulierte Regler ist nicht gestartet: "_s + controller_.errorString();
  }
  device_ = QString::fromLocal8Bit(controller_.readLine()).trimmed();
  return {};
}

Demo::~Demo() {
  if (controller_.state() == QProcess::NotRunning) return;
  controller_.terminate();
  if (!controller_.waitForFinished(kLongestEnd_ms)) controller_.kill();
}

}  // namespace kalivor
