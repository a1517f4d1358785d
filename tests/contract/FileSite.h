// A folder on the computer's disk, and the file system that the programs use there.
#pragma once

#include <gtest/gtest.h>
#include <QDir>
#include <QFile>
#include <QTemporaryDir>

#include "fakes/QtPrinters.h"
#include "kalivor/System.h"

namespace kalivor::test {

using namespace Qt::StringLiterals;

class FileSite : public testing::Test {
 protected:
  [[nodiscard]] QString Path(const QString& name) const { return folder_.filePath(name); }

  /// Writes a file without the file system.
  void Write(const QString& name, const QByteArray& bytes) const {
    QDir().mkpath(QFileInfo(Path(name)).path());
    QFile file(Path(name));
    ASSERT_TRUE(file.open(QIODevice::WriteOnly)) << name.toStdString();
    ASSERT_EQ(file.write(bytes), bytes.size());
  }

  /// What the file holds, read without the file system.
  [[nodiscard]] QByteArray Stored(const QString& name) const {
    QFile file(Path(name));
    EXPECT_TRUE(file.open(QIODevice::ReadOnly)) << name.toStdString();
    return file.readAll();
  }

  /// Every name in the folder, hidden ones as well.
  [[nodiscard]] QStringList Names(const QString& folder = u"."_s) const {
    return QDir(Path(folder))
        .entryList(QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot);
  }

  [[nodiscard]] QString Save(const QString& name, const QByteArray& bytes) {
    return files_.Overwrite(Path(name), bytes);
  }

  QTemporaryDir folder_;
  platform::native::FileSystem files_;
};

class ReadingSite : public FileSite {
 protected:
  /// What reading `name` gives.
  [[nodiscard]] QByteArray Bytes(const QString& name) {
    const platform::FileContent content = files_.Read(Path(name));
    EXPECT_EQ(content.error, QString()) << name.toStdString();
    return content.bytes;
  }

  /// Why `name` cannot be read.
  [[nodiscard]] QString Error(const QString& name) { return ErrorOfPath(Path(name)); }
  [[nodiscard]] QString ErrorOfPath(const QString& path) {
    const platform::FileContent content = files_.Read(path);
    EXPECT_EQ(content.bytes, QByteArray());
    EXPECT_EQ(content.Ok(), content.error.isEmpty());
    return content.error;
  }
};

}  // namespace kalivor::test
