// Where the user's own settings are.
#include <gtest/gtest.h>
#include <QDir>
#include <QFileInfo>
#include <QScopeGuard>
#include <QStandardPaths>

#include "fakes/QtPrinters.h"
#include "platform/plain/IniSettingsStore.h"
#include "platform/win32/System.h"

using namespace Qt::StringLiterals;

namespace kalivor::platform {
namespace {

TEST(SettingsLocation, IsNamedAfterTheProgram) {
  // Beside the real ones.
  QStandardPaths::setTestModeEnabled(true);
  const QString folder = QDir::fromNativeSeparators(qEnvironmentVariable("LOCALAPPDATA")) + u"/qttest"_s;
  const auto restore = qScopeGuard([&folder] {
    QStandardPaths::setTestModeEnabled(false);
    EXPECT_TRUE(QDir(folder).removeRecursively());
  });
  IniSettingsStore().Save(u"Settings"_s, u"Adresse"_s, u"17"_s);
  EXPECT_EQ(IniSettingsStore().Get(u"Settings"_s, u"Adresse"_s, u""_s), u"17"_s);
  const QString own = folder + u"/KALIVOR/KALIVOR.ini"_s;
  EXPECT_TRUE(QFileInfo::exists(own)) << own.toStdString();
  EXPECT_EQ(IniSettingsStore(own).Get(u"Settings"_s, u"Adresse"_s, u""_s), u"17"_s);
}

TEST(StateLocation, IsThatOfTheSettings) {
  QStandardPaths::setTestModeEnabled(true);
  const auto restore = qScopeGuard([] { QStandardPaths::setTestModeEnabled(false); });
  EXPECT_EQ(native::StateFolder(),
            QDir::fromNativeSeparators(qEnvironmentVariable("LOCALAPPDATA")) + u"/qttest/KALIVOR"_s);
  EXPECT_EQ(native::DataFolder(), native::StateFolder());
}

}  // namespace
}  // namespace kalivor::platform
