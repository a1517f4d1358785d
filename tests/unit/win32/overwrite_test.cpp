// Saving as Windows has it: files in use, attributes, times, who may do what, what a killed save leaves.
#include <windows.h>

// Behind windows.h.
#include <aclapi.h>
#include <sddl.h>

#include <thread>

#include "contract/FileSite.h"
#include "unit/win32/HeldFile.h"

namespace kalivor::platform {
namespace {

using namespace Qt::StringLiterals;

using test::HeldFile;
using test::Wide;

const QString kInUse = u"Die Datei wird gerade von einem anderen Programm benutzt."_s;
const QString kDenied = u"Keine Berechtigung zum Schreiben der Datei."_s;

class Win32Overwrite : public test::FileSite {
 protected:
  [[nodiscard]] std::wstring SystemName(const QString& name) const { return Wide(Path(name)); }
  [[nodiscard]] DWORD Attributes(const QString& name) const {
    return GetFileAttributesW(SystemName(name).c_str());
  }
  void SetAttributes(const QString& name, DWORD attributes) const {
    ASSERT_NE(SetFileAttributesW(SystemName(name).c_str(), attributes), 0);
  }
};

// --- files in use ---

TEST_F(Win32Overwrite, WaitsForAFileThatIsInUseForAMoment) {
  const struct {
    DWORD access, sharing;
  } uses[] = {
      {GENERIC_READ, 0},
      {GENERIC_READ, FILE_SHARE_READ},
      // As other programs read; such a file can be written, but not replaced.
      {GENERIC_READ, FILE_SHARE_READ | FILE_SHARE_WRITE},
      {GENERIC_READ, FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE},
      {GENERIC_READ | GENERIC_WRITE, FILE_SHARE_READ | FILE_SHARE_WRITE},
  };
  for (const auto& use : uses) {
    Write(u"a.qpf"_s, "old and longer");
    HeldFile held(Path(u"a.qpf"_s), use.access, use.sharing);
    std::thread other([&] {
      Sleep(200);
      held.Release();
    });
    EXPECT_EQ(Save(u"a.qpf"_s, "new"), QString()) << use.sharing;
    other.join();
    EXPECT_EQ(Stored(u"a.qpf"_s), "new and longer");
    EXPECT_EQ(Names(), QStringList{u"a.qpf"_s});
  }
}

TEST_F(Win32Overwrite, TellsThatAFileIsInUseAndLeavesIt) {
  for (const DWORD sharing : {DWORD{0}, DWORD{FILE_SHARE_READ}, DWORD{FILE_SHARE_READ | FILE_SHARE_WRITE}}) {
    Write(u"a.qpf"_s, "old");
    {
      const HeldFile held(Path(u"a.qpf"_s), GENERIC_READ, sharing);
      EXPECT_EQ(Save(u"a.qpf"_s, "newer"), kInUse) << sharing;
    }
    EXPECT_EQ(Stored(u"a.qpf"_s), "old");
    EXPECT_EQ(Names(), QStringList{u"a.qpf"_s});
  }
}

// --- what a file keeps ---

TEST_F(Win32Overwrite, DoesNotTouchAFileThatMustNotBeWritten) {
  Write(u"a.qpf"_s, "old");
  SetAttributes(u"a.qpf"_s, FILE_ATTRIBUTE_READONLY);
  if (Handle(
          CreateFileW(SystemName(u"a.qpf"_s).c_str(), GENERIC_WRITE, 0, nullptr, OPEN_EXISTING, 0, nullptr))
          .Valid())
    GTEST_SKIP() << "the superuser under Wine may write every file";
  EXPECT_EQ(Save(u"a.qpf"_s, "newer"), kDenied);
  EXPECT_EQ(Stored(u"a.qpf"_s), "old");
  EXPECT_EQ(Names(), QStringList{u"a.qpf"_s});
  SetAttributes(u"a.qpf"_s, FILE_ATTRIBUTE_NORMAL);
}

TEST_F(Win32Overwrite, KeepsAttributesAndANewFileHasNone) {
  EXPECT_EQ(Save(u"a.qpf"_s, "old"), QString());
  constexpr DWORD kShown = FILE_ATTRIBUTE_HIDDEN | FILE_ATTRIBUTE_SYSTEM | FILE_ATTRIBUTE_READONLY;
  EXPECT_EQ(Attributes(u"a.qpf"_s) & kShown, 0U);
  EXPECT_EQ(Save(u"a.qpf"_s, "new"), QString());
  EXPECT_EQ(Attributes(u"a.qpf"_s) & kShown, 0U);
  SetAttributes(u"a.qpf"_s, FILE_ATTRIBUTE_HIDDEN);
  EXPECT_EQ(Save(u"a.qpf"_s, "new"), QString());
  EXPECT_EQ(Attributes(u"a.qpf"_s) & kShown, DWORD{FILE_ATTRIBUTE_HIDDEN});
}

TEST_F(Win32Overwrite, TheTimeOfTheLastWriteIsThatOfTheSave) {
  Write(u"a.qpf"_s, "old");
  {
    QFile file(Path(u"a.qpf"_s));
    ASSERT_TRUE(file.open(QIODevice::ReadWrite));
    ASSERT_TRUE(
        file.setFileTime(QDateTime::currentDateTime().addDays(-3), QFileDevice::FileModificationTime));
  }
  EXPECT_EQ(Save(u"a.qpf"_s, "new"), QString());
  const QFileInfo file(Path(u"a.qpf"_s));
  EXPECT_LT(file.lastModified().msecsTo(QDateTime::currentDateTime()), 60'000);
}

TEST_F(Win32Overwrite, KeepsWhoMayUseTheFile) {
  const auto access = [this](const QString& name) {
    PSECURITY_DESCRIPTOR descriptor = nullptr;
    std::wstring path = SystemName(name);
    EXPECT_EQ(GetNamedSecurityInfoW(path.data(), SE_FILE_OBJECT, DACL_SECURITY_INFORMATION, nullptr, nullptr,
                                    nullptr, nullptr, &descriptor),
              DWORD{ERROR_SUCCESS});
    wchar_t* text = nullptr;
    EXPECT_NE(ConvertSecurityDescriptorToStringSecurityDescriptorW(descriptor, SDDL_REVISION_1,
                                                                   DACL_SECURITY_INFORMATION, &text, nullptr),
              0);
    const QString shown = QString::fromWCharArray(text);
    LocalFree(text);
    LocalFree(descriptor);
    return shown;
  };
  Write(u"a.qpf"_s, "old");
  const QString usual = access(u"a.qpf"_s);
  PSECURITY_DESCRIPTOR own = nullptr;
  ASSERT_NE(ConvertStringSecurityDescriptorToSecurityDescriptorW(L"D:P(A;;FA;;;BA)(A;;FA;;;CO)(A;;FA;;;WD)",
                                                                 SDDL_REVISION_1, &own, nullptr),
            0);
  ASSERT_NE(SetFileSecurityW(SystemName(u"a.qpf"_s).c_str(), DACL_SECURITY_INFORMATION, own), 0);
  LocalFree(own);
  const QString before = access(u"a.qpf"_s);
  ASSERT_NE(before, usual);
  EXPECT_EQ(Save(u"a.qpf"_s, "new"), QString());
  EXPECT_EQ(access(u"a.qpf"_s), before);
}

// --- what interrupted saves leave behind ---

TEST_F(Win32Overwrite, LeavesTheTemporaryFileOfAProgramAtWork) {
  Write(u".kalivor-0123456789abcdef.tmp"_s, "the beginning of an image");
  {
    const HeldFile atWork(Path(u".kalivor-0123456789abcdef.tmp"_s), GENERIC_WRITE, 0);
    EXPECT_EQ(Save(u"a.qpf"_s, "x"), QString());
    EXPECT_EQ(Names(), (QStringList{u".kalivor-0123456789abcdef.tmp"_s, u"a.qpf"_s}));
  }
  EXPECT_EQ(Save(u"a.qpf"_s, "y"), QString());
  EXPECT_EQ(Names(), QStringList{u"a.qpf"_s});
}

TEST_F(Win32Overwrite, RemovesHiddenTemporaryFilesToo) {
  Write(u".kalivor-0123456789abcdef.tmp"_s, "x");
  SetAttributes(u".kalivor-0123456789abcdef.tmp"_s, FILE_ATTRIBUTE_HIDDEN);
  EXPECT_EQ(Save(u"a.qpf"_s, "y"), QString());
  EXPECT_EQ(Names(), QStringList{u"a.qpf"_s});
}

}  // namespace
}  // namespace kalivor::platform
