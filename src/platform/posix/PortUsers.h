// Which programs use serial devices, as far as the system tells without opening one.
#pragma once

#include <QHash>
#include <QString>
#include <QStringList>
#include <chrono>

namespace kalivor::platform {

/// A program that holds a device.
struct PortUser {
  QString program;     ///< its name; "" where the system does not tell
  qint64 process = 0;  ///< its number; 0 where that is unknown
};

/// Opening a device raises its modem lines, which may switch on whatever hangs there; so nothing is opened.
/// The system is asked which programs have a device open (it tells of those of the same user), which hold
/// a lock of it, and which have announced its use in the folders of lock files. This program itself does not
/// count.
class PortUsers {
 public:
  PortUsers(QString processFolder, QStringList lockFolders);

  /// Of `devices`, by their real paths, those that are in use. To look through all that is open takes its
  /// time on a busy system: of a list that is asked for again and again, one time in twenty goes into it, so
  /// that a program may be noticed a little later than it opens the device.
  [[nodiscard]] QHash<QString, PortUser> Find(const QStringList& devices);

 private:
  using Steady = std::chrono::steady_clock;

  struct OpenDevice {
    QByteArray link;  ///< of the process, to the device
    PortUser user;
  };

  [[nodiscard]] PortUser User(qint64 process) const;
  void LookThroughProcesses(const QStringList& devices);
  void ForgetClosed();
  void AddLocked(const QStringList& devices, QHash<QString, PortUser>& users) const;
  void AddAnnounced(const QStringList& devices, QHash<QString, PortUser>& users) const;

  QString processFolder_;
  QStringList lockFolders_;
  QHash<QString, OpenDevice> open_;  ///< what was found last
  QStringList lookedFor_;
  Steady::time_point nextLook_;
};

}  // namespace kalivor::platform
