// Where the user's own settings are.
#include <gtest/gtest.h>
#include <QFileInfo>
#include <QScopeGuard>
#include <QTemporaryDir>
#include <optional>

#include "fakes/QtPrinters.h"
#include "platform/plain/IniSettingsStore.h"

using namespace Qt::StringLiterals;

namespace kalivor::platform {
namespace {

TEST(SettingsLocation, IsNamedAfterTheProgram) {
  const QTemporaryDir folder;
  const std::optional<QByteArray> before =
      qEnvironmentVariableIsSet("XDG_CONFIG_HOME") ? std::optional(qgetenv("XDG_CONFIG_HOME")) : std::nullopt;
  const auto restore = qScopeGuard([&before] {
    if (before) {
      qputenv("XDG_CONFIG_HOME", *before);
    } else {
      qunsetenv("XDG_CONFIG_HOME");
    }
  });
  qputenv("XDG_CONFIG_HOME", folder.path().toUtf8());
  IniSettingsStore().Save(u"Settings"_s, u"Adresse"_s, u"17"_s);
  EXPECT_EQ(IniSettingsStore().Get(u"Settings"_s, u"Adresse"_s, u""_s), u"17"_s);
  const QString own = folder.filePath(u"KALIVOR/KALIVOR.ini"_s);
  EXPECT_TRUE(QFileInfo::exists(own));
  EXPECT_EQ(IniSettingsStore(own).Get(u"Settings"_s, u"Adresse"_s, u""_s), u"17"_s);
}

}  // namespace
}  // namespace kalivor::platform
