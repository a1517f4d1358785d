// Where the user's own settings are, and what the program keeps for itself.
#include <gtest/gtest.h>
#include <QDir>
#include <QFileInfo>
#include <QTemporaryDir>

#include "fakes/QtPrinters.h"
#include "platform/plain/IniSettingsStore.h"
#include "platform/posix/System.h"

using namespace Qt::StringLiterals;

namespace kalivor::platform {
namespace {

// Puts a variable of the environment back.
class Variable {
 public:
  explicit Variable(const char* name)
      : name_(name), set_(qEnvironmentVariableIsSet(name)), before_(qgetenv(name)) {}
  ~Variable() {
    if (set_) {
      qputenv(name_, before_);
    } else {
      qunsetenv(name_);
    }
  }
  Variable(const Variable&) = delete;
  Variable& operator=(const Variable&) = delete;

 private:
  const char* name_;
  bool set_;
  QByteArray before_;
};

TEST(SettingsLocation, IsNamedAfterTheProgram) {
  const QTemporaryDir folder;
  const Variable variable("XDG_CONFIG_HOME");
  qputenv("XDG_CONFIG_HOME", folder.path().toUtf8());
  IniSettingsStore().Save(u"Settings"_s, u"Adresse"_s, u"17"_s);
  EXPECT_EQ(IniSettingsStore().Get(u"Settings"_s, u"Adresse"_s, u""_s), u"17"_s);
  const QString own = folder.filePath(u"KALIVOR/KALIVOR.ini"_s);
  EXPECT_TRUE(QFileInfo::exists(own));
  EXPECT_EQ(IniSettingsStore(own).Get(u"Settings"_s, u"Adresse"_s, u""_s), u"17"_s);
}

TEST(StateLocation, IsNamedAfterTheProgramAndNotMade) {
  const QTemporaryDir folder;
  const Variable home("HOME");
  const Variable states("XDG_STATE_HOME");
  qputenv("HOME", folder.path().toUtf8());
  qunsetenv("XDG_STATE_HOME");
  EXPECT_EQ(native::StateFolder(), folder.filePath(u".local/state/KALIVOR"_s));
  qputenv("XDG_STATE_HOME", "relative");
  EXPECT_EQ(native::StateFolder(), folder.filePath(u".local/state/KALIVOR"_s)) << "counts as not set";
  qputenv("XDG_STATE_HOME", "/states");
  EXPECT_EQ(native::StateFolder(), u"/states/KALIVOR");
  EXPECT_TRUE(QDir(folder.path()).isEmpty());
}

TEST(DataLocation, IsNamedAfterTheProgramAndNotMade) {
  const QTemporaryDir folder;
  const Variable home("HOME");
  const Variable data("XDG_DATA_HOME");
  qputenv("HOME", folder.path().toUtf8());
  qunsetenv("XDG_DATA_HOME");
  EXPECT_EQ(native::DataFolder(), folder.filePath(u".local/share/KALIVOR"_s));
  qputenv("XDG_DATA_HOME", "relative");
  EXPECT_EQ(native::DataFolder(), folder.filePath(u".local/share/KALIVOR"_s)) << "counts as not set";
  qputenv("XDG_DATA_HOME", "/data");
  EXPECT_EQ(native::DataFolder(), u"/data/KALIVOR");
  EXPECT_TRUE(QDir(folder.path()).isEmpty());
}

}  // namespace
}  // namespace kalivor::platform
