// The order of a start, as the user and the controller see it.
#include "ui/main/Desktop.h"

#include "gui/GuiFixture.h"

namespace kalivor::test {
namespace {

/// Settings and files that tell when they are read.
struct ToldSettings final : platform::SettingsStore {
  MemorySettings& stored;
  std::function<void()> told;

  ToldSettings(MemorySettings& theStored, std::function<void()> theTold)
      : stored(theStored), told(std::move(theTold)) {}
  [[nodiscard]] QString Get(const QString& section, const QString& key,
                            const QString& fallback) const override {
    told();
    return stored.Get(section, key, fallback);
  }
  void Save(const QString& section, const QString& key, const QString& value) override {
    stored.Save(section, key, value);
  }
};

struct ToldFiles final : platform::FileSystem {
  FakeFileSystem& stored;
  std::function<void()> told;

  ToldFiles(FakeFileSystem& theStored, std::function<void()> theTold)
      : stored(theStored), told(std::move(theTold)) {}
  [[nodiscard]] QString Overwrite(const QString& path, const QByteArray& beginning) override {
    return stored.Overwrite(path, beginning);
  }
  [[nodiscard]] QString Replace(const QString& path, const QByteArray& content) override {
    return stored.Replace(path, content);
  }
  [[nodiscard]] platform::FileContent Read(const QString& path, qint64 largest_bytes) override {
    told();
    return stored.Read(path, largest_bytes);
  }
  [[nodiscard]] platform::FolderContent List(const QString& folder) override { return stored.List(folder); }
  [[nodiscard]] QString Remove(const QString& path) override { return stored.Remove(path); }
  [[nodiscard]] platform::OpenedLog OpenLog(const QString& path) override { return stored.OpenLog(path); }
};

class LaunchTest : public GuiTest, public QObject {
 public:
  ~LaunchTest() override {
    desktop.reset();
    qApp->removeEventFilter(this);
  }

 protected:
  LaunchTest() { qApp->installEventFilter(this); }

  /// What happened, each with how often the port had been opened by then; repetitions count once.
  QStringList steps;

  void Note(const QString& step) {
    const QString noted = step + u" %1"_s.arg(line->openings);
    if (steps.isEmpty() || steps.last() != noted) steps.append(noted);
  }

  bool eventFilter(QObject* watched, QEvent* event) override {
    const bool isForm = watched->objectName() == u"frmSplash" || watched->objectName() == u"frmMain";
    if (isForm && watched->isWidgetType()) {
      if (event->type() == QEvent::Show) Note(watched->objectName() + u" shown"_s);
      if (event->type() == QEvent::Close) Note(watched->objectName() + u" closed"_s);
    }
    return false;
  }

  ToldSettings toldSettings{settings, [this] { Note(u"settings"_s); }};
  ToldFiles toldFiles{files, [this] { Note(u"definitions"_s); }};
};

TEST_F(LaunchTest, SplashMainWindowDefinitionsPortShowUnload) {
  ui::frmSplash splash;
  desktop = ui::Launch(splash,
                       ui::World{toldSettings,
                                 box,
                                 toldFiles,
                                 *line,
                                 clock,
                                 events,
                                 u"/programm"_s,
                                 {},
                                 {},
                                 dialogs,
                                 help,
                                 ports,
                                 {},
                                 {},
                                 {}},
                       {}, [this](ui::Desktop&) { Note(u"loaded"_s); });
  EXPECT_EQ(steps, (QStringList{u"frmSplash shown 0"_s, u"settings 0"_s, u"loaded 0"_s, u"definitions 0"_s,
                                u"frmMain shown 1"_s, u"frmSplash closed 1"_s}));
  EXPECT_FALSE(splash.isVisible());
  ExpectReady();
}

}  // namespace
}  // namespace kalivor::test
