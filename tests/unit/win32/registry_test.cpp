// The registry of this user, with values of the test's own.
#include "platform/win32/Win32Registry.h"

#include <gtest/gtest.h>
#include <windows.h>

#include <optional>
#include <string>

#include "fakes/QtPrinters.h"

using namespace Qt::StringLiterals;

namespace kalivor::platform {
namespace {

constexpr wchar_t kPath[] = L"Software\\KalivorTest";
const QString kShownPath = u"Software\\KalivorTest"_s;

class Win32RegistryTest : public testing::Test {
 protected:
  Win32RegistryTest() {
    EXPECT_EQ(
        RegCreateKeyExW(HKEY_CURRENT_USER, kPath, 0, nullptr, 0, KEY_ALL_ACCESS, nullptr, &key_, nullptr),
        ERROR_SUCCESS);
  }
  ~Win32RegistryTest() override {
    RegCloseKey(key_);
    EXPECT_EQ(RegDeleteTreeW(HKEY_CURRENT_USER, kPath), ERROR_SUCCESS);
  }

  void SetText(const wchar_t* name, const std::wstring& text, DWORD type = REG_SZ) const {
    Set(name, type, text.c_str(), (text.size() + 1) * sizeof(wchar_t));
  }
  void Set(const wchar_t* name, DWORD type, const void* bytes, std::size_t size) const {
    ASSERT_EQ(RegSetValueExW(key_, name, 0, type, static_cast<const BYTE*>(bytes), static_cast<DWORD>(size)),
              ERROR_SUCCESS);
  }

  [[nodiscard]] std::optional<Registry::Value> Value(const QString& name, int capacity_bytes = 1024) {
    const Registry::Key key = registry_.OpenKey(Registry::Hive::CurrentUser, kShownPath);
    EXPECT_NE(key, Registry::Key{0});
    auto value = registry_.QueryValue(key, name, capacity_bytes);
    registry_.CloseKey(key);
    return value;
  }

  HKEY key_ = nullptr;
  Win32Registry registry_;
};

TEST_F(Win32RegistryTest, ReadsTexts) {
  SetText(L"Pfad", L"C:\\Programme\\Größe.exe");
  const auto value = Value(u"Pfad"_s);
  ASSERT_TRUE(value);
  EXPECT_EQ(value->type, Registry::Type::String);
  // With the zero at its end, in windows-1252.
  EXPECT_EQ(value->bytes, QByteArray("C:\\Programme\\Gr\xF6\xDF"
                                     "e.exe",
                                     22)
                              .append('\0'));
}

TEST_F(Win32RegistryTest, ReadsNumbersAndTellsOtherValues) {
  const DWORD number = 0x01020304;
  Set(L"Zahl", REG_DWORD, &number, sizeof number);
  Set(L"Bytes", REG_BINARY, "abc", 3);
  const auto value = Value(u"Zahl"_s);
  ASSERT_TRUE(value);
  EXPECT_EQ(value->type, Registry::Type::Number32);
  EXPECT_EQ(value->bytes, QByteArray("\x04\x03\x02\x01"));
  const auto bytes = Value(u"Bytes"_s);
  ASSERT_TRUE(bytes);
  EXPECT_EQ(bytes->type, Registry::Type::Other);
  EXPECT_EQ(bytes->bytes, "abc");
}

TEST_F(Win32RegistryTest, ATextWithVariablesIsAText) {
  SetText(L"Pfad", L"%ProgramFiles%\\x", REG_EXPAND_SZ);
  const auto value = Value(u"Pfad"_s);
  ASSERT_TRUE(value);
  EXPECT_EQ(value->type, Registry::Type::String);
  EXPECT_TRUE(value->bytes.startsWith("%ProgramFiles%\\x"));
}

TEST_F(Win32RegistryTest, NothingIsReadThatIsNotThereOrTooLong) {
  SetText(L"Text", L"0123456789");
  EXPECT_FALSE(Value(u"fehlt"_s));
  EXPECT_FALSE(Value(u"Text"_s, 10));
  EXPECT_TRUE(Value(u"Text"_s, 11));
  EXPECT_EQ(registry_.OpenKey(Registry::Hive::CurrentUser, kShownPath + u"\\fehlt"_s), Registry::Key{0});
  EXPECT_EQ(registry_.OpenKey(Registry::Hive::LocalMachine, kShownPath), Registry::Key{0});
}

TEST_F(Win32RegistryTest, ReadsBothHives) {
  const Registry::Key key = registry_.OpenKey(Registry::Hive::LocalMachine, u"SOFTWARE\\Microsoft"_s);
  EXPECT_NE(key, Registry::Key{0});
  registry_.CloseKey(key);
}

}  // namespace
}  // namespace kalivor::platform
