// Splash screen, about box, system information.
#include <QPointer>

#include "gui/GuiFixture.h"
#include "ui/about/frmAbout.h"
#include "ui/about/frmSplash.h"

namespace kalivor::test {
namespace {

constexpr const char* kVersionText = "Version " KALIVOR_VERSION;

class AboutTest : public GuiTest {};

TEST_F(AboutTest, TheSplashScreenShowsTitleAndVersion) {
  ui::frmSplash splash;
  splash.ShowNow();
  EXPECT_TRUE(splash.isVisible());
  EXPECT_FALSE(splash.isModal());
  EXPECT_EQ(splash.objectName(), u"frmSplash"_s);
  EXPECT_EQ(In<QLabel>(splash, u"lblProductName"_s).text(), u"KALIVOR"_s);
  EXPECT_EQ(In<QLabel>(splash, u"lblVersion"_s).text(), QString::fromLatin1(kVersionText));
  EXPECT_EQ(In<QLabel>(splash, u"lblPlatform"_s).text(), u"Plattform"_s);
  EXPECT_EQ(In<QLabel>(splash, u"lblPresents"_s).text(), u"presents"_s);
  EXPECT_EQ(In<QLabel>(splash, u"lblProduct"_s).text(), u"KALIVOR"_s);
  EXPECT_FALSE(In<QLabel>(splash, u"picLogo"_s).pixmap().isNull());
  EXPECT_FALSE(In<QLabel>(splash, u"Image1"_s).pixmap().isNull());
  EXPECT_TRUE(In<QFrame>(splash, u"fraMainFrame"_s).isVisible());
  EXPECT_FALSE(splash.windowFlags() & Qt::WindowStaysOnTopHint) << "message boxes must not lie below it";
}

TEST_F(AboutTest, TheVersionHasThreeParts) {
  EXPECT_TRUE(QRegularExpression(u"^Version \\d+\\.\\d+\\.\\d+$"_s).match(ui::VersionText()).hasMatch());
}

TEST_F(AboutTest, TheAboutBoxShowsItsTexts) {
  Start();
  ui::frmAbout about(&desktop->main, [] {});
  EXPECT_EQ(about.objectName(), u"frmAbout"_s);
  EXPECT_EQ(about.windowTitle(), u"Info"_s);
  EXPECT_EQ(In<QLabel>(about, u"lblTitle"_s).text(), u"KALIVOR"_s);
  EXPECT_EQ(In<QLabel>(about, u"lblVersion"_s).text(), QString::fromLatin1(kVersionText));
  EXPECT_EQ(In<QLabel>(about, u"lblDescription"_s).text(), u"Parametrierung von Reglern"_s);
  EXPECT_EQ(In<QLabel>(about, u"lblDisclaimer"_s).text(), QString());
  EXPECT_FALSE(In<QLabel>(about, u"picIcon"_s).pixmap().isNull());
  EXPECT_EQ(In<QPushButton>(about, u"cmdOK"_s).text(), u"OK"_s);
}

// The menu item returns at once, so that whoever chose it, be it a screen reader, is not kept waiting.
QPointer<QWidget> OpenAbout(ui::Desktop& desktop) {
  desktop.main.findChild<QAction*>(u"mnuHelpAbout"_s)->trigger();
  return QApplication::activeModalWidget();
}

TEST_F(AboutTest, OpensModallyFromTheMenuAndClosesByOk) {
  Start();
  const QPointer<QWidget> about = OpenAbout(*desktop);
  ASSERT_NE(about, nullptr);
  EXPECT_EQ(about->objectName(), u"frmAbout"_s);
  EXPECT_EQ(about->parentWidget(), &desktop->main);
  EXPECT_TRUE(about->isModal());
  QTest::mouseClick(about->findChild<QPushButton*>(u"cmdOK"_s), Qt::LeftButton);
  EXPECT_EQ(QApplication::activeModalWidget(), nullptr);
  QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
  EXPECT_EQ(about, nullptr) << "nothing of it stays";
}

TEST_F(AboutTest, IsNotOpenedWhileBusy) {
  Start();
  ToBusy(desktop->core);
  EXPECT_EQ(OpenAbout(*desktop), nullptr);
  FromBusy(desktop->core);
}

TEST_F(AboutTest, WithoutARegistryThereIsNoSystemInformation) {
  Start();
  const QPointer<QWidget> about = OpenAbout(*desktop);
  ASSERT_NE(about, nullptr);
  QTest::mouseClick(about->findChild<QPushButton*>(u"cmdSysInfo"_s), Qt::LeftButton);
  const auto boxes = box.Take();
  ASSERT_EQ(boxes.size(), 1U);
  EXPECT_EQ(boxes[0].text, u"Systeminformationsprogramm zur Zeit nicht verfügbar."_s);
}

/// A registry in memory that counts what is open.
class FakeRegistry final : public platform::Registry {
 public:
  QMap<QString, QMap<QString, Value>> keys;  ///< by path, then by name
  int open = 0;
  bool closedTooOften = false;

  [[nodiscard]] Key OpenKey(Hive hive, const QString& path) override {
    if (hive != Hive::LocalMachine || !keys.contains(path)) return 0;
    ++open;
    return static_cast<Key>(keys.keys().indexOf(path) + 1);
  }
  [[nodiscard]] std::optional<Value> QueryValue(Key key, const QString& name, int capacity_bytes) override {
    const auto& values = keys[keys.keys().at(static_cast<qsizetype>(key) - 1)];
    if (!values.contains(name) || values[name].bytes.size() > capacity_bytes) return {};
    return values[name];
  }
  void CloseKey(Key) override { closedTooOften = closedTooOften || --open < 0; }
};

class SystemInformationTest : public testing::Test {
 public:
  ~SystemInformationTest() override {
    EXPECT_EQ(registry.open, 0) << "every key has to be closed";
    EXPECT_FALSE(registry.closedTooOften);
  }

 protected:
  SystemInformationTest() {
    system.registry = &registry;
    system.fileExists = [this](const QString& path) { return existing.contains(path); };
    system.start = [this](const QString& program) { started.append(program); };
  }

  void Put(const QString& path, const QString& name, const QByteArray& text) {
    registry.keys[path][name] = {platform::Registry::Type::String, text};
  }

  bool Get(const QString& path, const QString& name) {
    return ui::GetKeyValue(registry, platform::Registry::Hive::LocalMachine, path, name, result);
  }

  const QString kInfo = u"SOFTWARE\\Microsoft\\Shared Tools\\MSINFO"_s;
  const QString kLocation = u"SOFTWARE\\Microsoft\\Shared Tools Location"_s;
  FakeRegistry registry;
  FakeMessageBox box;
  QStringList existing, started;
  ui::SystemInformation system;
  QString result = u"vorher"_s;
};

TEST_F(SystemInformationTest, AStringEndsAtItsFirstNul) {
  Put(u"k"_s, u"n"_s, QByteArray("C:\\a.exe\0rest", 13));
  EXPECT_TRUE(Get(u"k"_s, u"n"_s));
  EXPECT_EQ(result, u"C:\\a.exe"_s);
  Put(u"k"_s, u"n"_s, "ohne Ende");
  EXPECT_TRUE(Get(u"k"_s, u"n"_s));
  EXPECT_EQ(result, u"ohne Ende"_s);
}

TEST_F(SystemInformationTest, ANumberBecomesHexadecimal) {
  registry.keys[u"k"_s][u"n"_s] = {platform::Registry::Type::Number32, QByteArray("\x1f\x02\x00\xab", 4)};
  EXPECT_TRUE(Get(u"k"_s, u"n"_s));
  EXPECT_EQ(result, u"&hAB00021F"_s);
}

TEST_F(SystemInformationTest, MissingKeysAndValuesFail) {
  Put(u"k"_s, u"n"_s, "x");
  EXPECT_FALSE(Get(u"fehlt"_s, u"n"_s));
  EXPECT_FALSE(Get(u"k"_s, u"fehlt"_s));
  EXPECT_EQ(result, u"vorher"_s);
}

TEST_F(SystemInformationTest, AValueLongerThanTheBufferFails) {
  Put(u"k"_s, u"n"_s, QByteArray(1024, 'x'));
  EXPECT_TRUE(Get(u"k"_s, u"n"_s));
  Put(u"k"_s, u"n"_s, QByteArray(1025, 'x'));
  EXPECT_FALSE(Get(u"k"_s, u"n"_s));
}

TEST_F(SystemInformationTest, StartsTheProgramThatIsNamedDirectly) {
  Put(kInfo, u"PATH"_s, "C:\\msinfo.exe");
  Put(kLocation, u"MSINFO"_s, "C:\\Tools");
  ui::StartSysInfo(system, box);
  EXPECT_EQ(started, QStringList(u"C:\\msinfo.exe"_s));
}

TEST_F(SystemInformationTest, ElseTheOneInTheFolderOfTheTools) {
  Put(kLocation, u"MSINFO"_s, "C:\\Tools");
  existing.append(u"C:\\Tools\\MSINFO32.EXE"_s);
  ui::StartSysInfo(system, box);
  EXPECT_EQ(started, QStringList(u"C:\\Tools\\MSINFO32.EXE"_s));
}

TEST_F(SystemInformationTest, ElseSaysThatThereIsNone) {
  ui::StartSysInfo(system, box);
  Put(kLocation, u"MSINFO"_s, "C:\\Tools");
  ui::StartSysInfo(system, box);
  EXPECT_EQ(started, QStringList());
  const auto boxes = box.Take();
  ASSERT_EQ(boxes.size(), 2U);
  EXPECT_EQ(boxes[1].text, u"Systeminformationsprogramm zur Zeit nicht verfügbar."_s);
}

}  // namespace
}  // namespace kalivor::test
