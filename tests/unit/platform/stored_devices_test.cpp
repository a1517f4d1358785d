// The ports that the user has set in the settings.
#include "platform/plain/StoredDevices.h"

#include <gtest/gtest.h>

#include "fakes/FakeSettingsStore.h"
#include "fakes/QtPrinters.h"

using namespace Qt::StringLiterals;

namespace kalivor::platform {
namespace {

TEST(StoredDevices, ReadsTheSectionPorts) {
  test::FakeSettingsStore settings;
  settings.values = {{u"Ports/COM1"_s, u"/dev/ttyUSB3"_s}, {u"Ports/COM4"_s, QString()},
                     {u"Ports/COM8"_s, u"/dev/x"_s},       {u"Ports/COM9"_s, u"/dev/y"_s},
                     {u"Ports/COM0"_s, u"/dev/z"_s},       {u"Settings/COM2"_s, u"/dev/w"_s}};
  EXPECT_EQ(StoredDevices(settings), (QMap<int, QString>{{1, u"/dev/ttyUSB3"_s}, {8, u"/dev/x"_s}}));
}

}  // namespace
}  // namespace kalivor::platform
