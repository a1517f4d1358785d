// Opening, saving and closing value files through the real menus.
#include <QAction>
#include <QComboBox>
#include <QFileDialog>
#include <QListView>
#include <QTemporaryDir>
#include <QTimer>

#include "core/ValueFileFormat.h"
#include "gui/GuiFixture.h"
#include "platform/qt/QtFileDialogs.h"

namespace kalivor::test {
namespace {

class FileMenuTest : public GuiTest {
 protected:
  void SetUp() override { Start(); }

  void Choose(const QString& item) { desktop->main.findChild<QAction*>(item)->trigger(); }
  [[nodiscard]] QString Panel2() { return Main<QLabel>(u"file"_s).text(); }
};

TEST_F(FileMenuTest, SavingAsksForANameOnceAndShowsIt) {
  dialogs.answers.push_back(u"/werte/a.qpf"_s);
  Choose(u"mnuFileSave"_s);
  ASSERT_EQ(dialogs.shown.size(), 1U);
  EXPECT_TRUE(dialogs.shown[0].save);
  EXPECT_EQ(dialogs.shown[0].title, u"Speichern"_s);
  EXPECT_EQ(dialogs.shown[0].filter, u"MERVA Parameterfile (*.qpf)|*.qpf|Alle Dateien (*.*)|*.*"_s);
  EXPECT_EQ(Panel2(), u"/werte/a.qpf"_s);
  EXPECT_EQ(desktop->module.Userpath, u"/werte"_s);
  EXPECT_EQ(files.files[u"/werte/a.qpf"_s].bytes.size(), desktop->module.ParCount * kCurrentRecord_bytes);
  Choose(u"mnuFileSave"_s);
  EXPECT_EQ(dialogs.shown.size(), 1U);
}

TEST_F(FileMenuTest, SaveAsAsksAlsoWhenAFileIsOpen) {
  dialogs.answers.push_back(u"/werte/a.qpf"_s);
  Choose(u"mnuFileSave"_s);
  dialogs.answers.push_back(u"/werte/b.qpf"_s);
  Choose(u"mnuFileSaveAs"_s);
  EXPECT_EQ(dialogs.shown.back().title, u"Speichern unter"_s);
  EXPECT_EQ(Panel2(), u"/werte/b.qpf"_s);
  EXPECT_TRUE(files.files.contains(u"/werte/b.qpf"_s));
}

TEST_F(FileMenuTest, ASavedSetIsOpenedAgain) {
  desktop->module.Par[1].Wert = 1777;
  dialogs.answers.push_back(u"/werte/a.qpf"_s);
  Choose(u"mnuFileSave"_s);
  desktop->module.Par[1].Wert = 0;
  dialogs.answers.push_back(u"/werte/a.qpf"_s);
  Choose(u"mnuFileOpen"_s);
  EXPECT_EQ(dialogs.shown.back().title, u"Öffnen"_s);
  EXPECT_EQ(dialogs.shown.back().folder, u"/werte"_s);
  EXPECT_EQ(desktop->module.Par[1].Wert, 1777);
  EXPECT_TRUE(Tree().Text(Node(u"sK 1"_s)).contains(u"177.7"_s));
}

TEST_F(FileMenuTest, TheFolderOfTheLastFileIsStoredAtTheEnd) {
  dialogs.answers.push_back(u"/werte/a.qpf"_s);
  Choose(u"mnuFileSave"_s);
  EXPECT_TRUE(desktop->main.close());
  EXPECT_EQ(settings.values[u"Userpath"_s], u"/werte"_s);
  Start();
  dialogs.answers.push_back({});
  Choose(u"mnuFileOpen"_s);
  EXPECT_EQ(dialogs.shown.back().folder, u"/werte"_s);
}

TEST_F(FileMenuTest, HiddenItemsKeepTheirBehaviour) {
  const QString noHelp =
      u"Hilfeinhalt konnte nicht angezeigt werden. Dieser Anwendung ist keine Hilfedatei zugeordnet."_s;
  const struct {
    QString item, text;
  } cases[] = {{u"mnuFileNew"_s, u"Code für 'mnuFileNew_Click' hinzufügen."_s},
               {u"mnuFileSend"_s, u"Code für 'mnuFileSend_Click' hinzufügen."_s},
               {u"mnuDatenEdit"_s, RuntimeError(RuntimeError::Kind::MissingObject).Description()},
               {u"mnuHelpContents"_s, noHelp},
               {u"mnuHelpSearchForHelpOn"_s, noHelp}};
  for (const auto& example : cases) {
    Choose(example.item);
    const auto boxes = box.Take();
    ASSERT_EQ(boxes.size(), 1U) << example.item.toStdString();
    EXPECT_EQ(boxes[0].text, example.text);
  }
  ExpectReady();
}

TEST_F(FileMenuTest, ClosingForgetsTheNameAndKeepsTheValues) {
  dialogs.answers.push_back(u"/werte/a.qpf"_s);
  Choose(u"mnuFileSave"_s);
  desktop->module.Par[1].Wert = 1777;
  Choose(u"mnuFileClose"_s);
  EXPECT_EQ(Panel2(), QString());
  EXPECT_EQ(desktop->module.Par[1].Wert, 1777);
  dialogs.answers.push_back({});
  Choose(u"mnuFileSave"_s);
  EXPECT_EQ(dialogs.shown.size(), 2U);
}

TEST_F(FileMenuTest, ACancelledDialogChangesNothing) {
  dialogs.answers = {{}, {}, {}};
  Choose(u"mnuFileOpen"_s);
  Choose(u"mnuFileSave"_s);
  Choose(u"mnuFileSaveAs"_s);
  EXPECT_EQ(dialogs.shown.size(), 3U);
  EXPECT_EQ(Panel2(), QString());
  EXPECT_TRUE(files.reads.isEmpty());
}

TEST_F(FileMenuTest, AFileOfAnotherVersionIsAskedForWithTheWindowDisabled) {
  files.files[u"/werte/x.qpf"_s].bytes =
      ComposeRecord(2, {}, u"AB1-012.0"_s, {}) + ComposeRecord(99, {}, u"neu"_s, u"int"_s);
  dialogs.answers.push_back(u"/werte/x.qpf"_s);
  bool disabled = false;
  events.onWait = [this, &disabled] {
    disabled = !desktop->main.isEnabled();
    EXPECT_FALSE(desktop->main.close());
    Click(desktop->auswahl, u"Button2"_s);
  };
  Choose(u"mnuFileOpen"_s);
  EXPECT_TRUE(disabled);
  EXPECT_EQ(desktop->module.VersionList.SelectedText(), u"AB1-012.0"_s);
  EXPECT_TRUE(Tree().Text(Node(u"sK 8"_s)).contains(u"99"_s));
  ExpectReady();
}

TEST_F(FileMenuTest, TheFocusComesBackWhateverTheAnswerIs) {
  files.files[u"/werte/x.qpf"_s].bytes = ComposeRecord(2, {}, u"AB1-012.0"_s, {});
  for (const QString& answer : {u"Button1"_s, u"Button2"_s}) {
    TreeWidget().setFocus();
    ASSERT_EQ(desktop->main.focusWidget(), &TreeWidget());
    dialogs.answers.push_back(u"/werte/x.qpf"_s);
    events.onWait = [this, &answer] {
      EXPECT_EQ(State(), u"Ready"_s) << "the program waits, it does not work";
      EXPECT_FALSE(desktop->main.isEnabled());
      Click(desktop->auswahl, answer);
    };
    Choose(u"mnuFileOpen"_s);
    EXPECT_EQ(desktop->main.focusWidget(), &TreeWidget()) << answer.toStdString();
    ExpectReady();
  }
  EXPECT_EQ(desktop->module.VersionList.SelectedText(), u"AB1-012.0"_s);
}

TEST_F(FileMenuTest, AFileOnTheCommandLineIsOpenedAsByTheMenu) {
  files.files[u"/werte/x.qpf"_s].bytes =
      ComposeRecord(2, {}, u"AB1-123.4"_s, {}) + ComposeRecord(1777, {}, u"n"_s, u"int"_s);
  desktop->OpenFile(u"/werte/x.qpf"_s);
  EXPECT_EQ(Panel2(), u"/werte/x.qpf"_s);
  EXPECT_EQ(desktop->module.Par[1].Wert, 1777);
}

// The toolkit takes the last brackets for the pattern, and shows what stands before them.
TEST(FileDialogs, FiltersAreWrittenAsTheToolkitWantsThem) {
  EXPECT_EQ(platform::ToolkitFilters(u"MERVA Parameterfile (*.qpf)|*.qpf|Alle Dateien (*.*)|*.*"_s),
            (QStringList{u"MERVA Parameterfile (*.qpf) (*.qpf)"_s, u"Alle Dateien (*.*) (*)"_s}));
}

// Runs `act` on the file dialog that is about to open.
void OnFileDialog(const std::function<void(QFileDialog&)>& act) {
  QTimer::singleShot(0, [act] {
    auto* dialog = qobject_cast<QFileDialog*>(QApplication::activeModalWidget());
    ASSERT_NE(dialog, nullptr);
    act(*dialog);
  });
}

TEST(FileDialogs, SavingDoesNotAskBeforeOverwritingAndAddsNoSuffix) {
  platform::QtFileDialogs dialogs(false);
  OnFileDialog([](QFileDialog& dialog) {
    EXPECT_EQ(dialog.windowTitle(), u"Speichern"_s);
    EXPECT_TRUE(dialog.testOption(QFileDialog::DontConfirmOverwrite));
    EXPECT_EQ(dialog.defaultSuffix(), QString());
    EXPECT_EQ(dialog.acceptMode(), QFileDialog::AcceptSave);
    dialog.reject();
  });
  EXPECT_EQ(dialogs.SaveFile(u"Speichern"_s, u"Alle Dateien (*.*)|*.*"_s), QString());
}

TEST(FileDialogs, ShowTheirFiltersWordByWord) {
  const QString filter = u"MERVA Parameterfile (*.qpf)|*.qpf|Alle Dateien (*.*)|*.*"_s;
  const QStringList words{u"MERVA Parameterfile (*.qpf)"_s, u"Alle Dateien (*.*)"_s};
  platform::QtFileDialogs dialogs(false);
  QStringList shown;
  const auto look = [&shown](QFileDialog& dialog) {
    auto* list = dialog.findChild<QComboBox*>(u"fileTypeCombo"_s);
    ASSERT_NE(list, nullptr);
    for (int i = 0; i < list->count(); ++i)
      shown.append(list->itemText(i));
    dialog.reject();
  };
  OnFileDialog(look);
  EXPECT_EQ(dialogs.OpenFile(u"Öffnen"_s, QString(), filter), QString());
  EXPECT_EQ(shown, words);
  shown.clear();
  OnFileDialog(look);
  EXPECT_EQ(dialogs.SaveFile(u"Speichern"_s, filter), QString());
  EXPECT_EQ(shown, words);
}

// "*.*" means names without a point as well.
TEST(FileDialogs, AllFilesAreAllFiles) {
  QTemporaryDir folder;
  ASSERT_TRUE(QFile(folder.filePath(u"OHNE"_s)).open(QFile::WriteOnly));
  platform::QtFileDialogs dialogs(false);
  OnFileDialog([](QFileDialog& dialog) {
    auto* files = dialog.findChild<QListView*>(u"listView"_s);
    ASSERT_NE(files, nullptr);
    EXPECT_TRUE(QTest::qWaitFor([files] { return files->model()->rowCount(files->rootIndex()) == 1; }));
    dialog.reject();
  });
  EXPECT_EQ(dialogs.OpenFile(u"Öffnen"_s, folder.path(), u"Alle Dateien (*.*)|*.*"_s), QString());
}

// The folder of a file that lies in no folder of its drive.
#ifdef Q_OS_WIN
TEST(FileDialogs, ADriveByItselfIsItsTopFolder) {
  const QString drive = QDir::rootPath().chopped(1);
  platform::QtFileDialogs dialogs(false);
  OnFileDialog([&drive](QFileDialog& dialog) {
    EXPECT_EQ(dialog.directory().absolutePath(), drive + u'/');
    dialog.reject();
  });
  EXPECT_EQ(dialogs.OpenFile(u"Öffnen"_s, drive, u"Alle Dateien (*.*)|*.*"_s), QString());
}
#endif

TEST(FileDialogs, OpeningWantsAnExistingFileOfTheFolder) {
  platform::QtFileDialogs dialogs(false);
  const QString folder = QStringLiteral(KALIVOR_SOURCE_DIR "/examples");
  OnFileDialog([&folder](QFileDialog& dialog) {
    EXPECT_EQ(dialog.fileMode(), QFileDialog::ExistingFile);
    EXPECT_EQ(dialog.directory().absolutePath(), folder);
    dialog.selectFile(u"VF.INI"_s);
    QMetaObject::invokeMethod(&dialog, "accept");
  });
  EXPECT_EQ(dialogs.OpenFile(u"Öffnen"_s, folder, u"Alle Dateien (*.*)|*.*"_s),
            QDir::toNativeSeparators(folder + u"/VF.INI"_s));
}

}  // namespace
}  // namespace kalivor::test
