// The commands of the file menu: dialogs, the current file, and the folder of value files.
#include "commands/FileCommands.h"

#include "core/Busy.h"
#include "fakes/FakeFileDialogs.h"
#include "fakes/Installation.h"
#include "unit/core/ValueFileBytes.h"

namespace kalivor::test {
namespace {

const QString kFilter = u"MERVA Parameterfile (*.qpf)|*.qpf|Alle Dateien (*.*)|*.*"_s;
const QString kPath = u"C:\\Werte\\a.qpf"_s;
const QString kVersion = u"AB1-123.4"_s;

class FileCommands : public testing::Test, protected Installation {
 protected:
  FileCommands() {
    StartWithFiles();
    module.Userpath = u"/home/werte"_s;
  }

  void AddValueFile(const QString& path, const QString& version = kVersion) {
    files.files[path] = {Current(2, {}, version, {}) + Current(4711, {}, u"N1"_s, u"int"_s), {}};
  }

  void ExpectDialog(size_t number, bool save, const QString& title, const QString& folder) const {
    ASSERT_EQ(dialogs.shown.size(), number);
    const FakeFileDialogs::Dialog& dialog = dialogs.shown.back();
    EXPECT_EQ(dialog.save, save);
    EXPECT_EQ(dialog.title, title);
    EXPECT_EQ(dialog.folder, folder);
    EXPECT_EQ(dialog.filter, kFilter);
  }

  /// What the commands can change without writing a file.
  void ExpectCurrent(const QString& file, const QString& folder) const {
    EXPECT_EQ(module.Dateiname, file);
    EXPECT_EQ(panel, file);
    EXPECT_EQ(module.Userpath, folder);
  }

  [[nodiscard]] bool IsWritten(const QString& path) const {
    return files.files.value(path).bytes.size() >= 62;
  }

  FakeFileDialogs dialogs;
  QString panel;
  FileCommandContext context{core, dialogs, [this](const QString& path) { panel = path; }};
};

// --- open ---

TEST_F(FileCommands, OpenAsksForAFileAndLoadsIt) {
  AddValueFile(kPath);
  dialogs.answers = {kPath};
  mnuFileOpen_Click(context);
  ExpectDialog(1, false, u"Öffnen"_s, u"/home/werte"_s);
  ExpectCurrent(kPath, u"C:\\Werte"_s);
  EXPECT_EQ(module.Par[1].Wert, 4711);
  EXPECT_TRUE(Rests());
}

TEST_F(FileCommands, OpenBeginsInTheFolderOfTheLastFile) {
  AddValueFile(kPath);
  dialogs.answers = {kPath, {}};
  mnuFileOpen_Click(context);
  mnuFileOpen_Click(context);
  ExpectDialog(2, false, u"Öffnen"_s, u"C:\\Werte"_s);
}

TEST_F(FileCommands, ACancelledDialogChangesNothing) {
  AddValueFile(kPath);
  dialogs.answers = {kPath, {}, {}};
  mnuFileOpen_Click(context);
  const Module1 before = module;
  const QStringList reads = files.reads;
  const QByteArray image = files.files[kPath].bytes;
  mnuFileOpen_Click(context);
  mnuFileSaveAs_Click(context);
  ExpectCurrent(kPath, u"C:\\Werte"_s);
  EXPECT_EQ(files.reads, reads);
  EXPECT_EQ(files.files[kPath].bytes, image);
  EXPECT_TRUE(module.Par == before.Par);
}

TEST_F(FileCommands, ACancelledSaveLeavesTheProgramWithoutAFile) {
  dialogs.answers = {{}};
  mnuFileSave_Click(context);
  ExpectCurrent({}, u"/home/werte"_s);
}

TEST_F(FileCommands, AFileThatCannotBeReadIsTheCurrentOneAllTheSame) {
  dialogs.answers = {kPath};
  mnuFileOpen_Click(context);
  EXPECT_EQ(TakeBoxes(box),
            QStringList{u"Fehler beim lesen von\r\nC:\\Werte\\a.qpf\r\nDatei nicht gefunden."_s});
  ExpectCurrent(kPath, u"C:\\Werte"_s);
}

TEST_F(FileCommands, AFileOfAnUnknownVersionStaysCurrentAndTheNextSaveOverwritesIt) {
  AddValueFile(kPath, u"V9"_s);
  dialogs.answers = {kPath};
  mnuFileOpen_Click(context);
  EXPECT_EQ(TakeBoxes(box), QStringList{u"Unbekannte ReglerVersion: V9"_s + QString(28, u' ')});
  ExpectCurrent(kPath, u"C:\\Werte"_s);
  mnuFileSave_Click(context);
  EXPECT_EQ(dialogs.shown.size(), 1U);
  EXPECT_EQ(files.files[kPath].bytes.sliced(24, 10), "AB1-123.4 ");
}

TEST_F(FileCommands, ANamedFileIsOpenedAsTheChosenOneIs) {
  AddValueFile(kPath);
  EXPECT_TRUE(OpenValueFile(context, kPath));
  EXPECT_TRUE(dialogs.shown.empty());
  ExpectCurrent(kPath, u"C:\\Werte"_s);
  EXPECT_EQ(module.Par[1].Wert, 4711);
  EXPECT_FALSE(OpenValueFile(context, u"/missing/b.qpf"_s));
  EXPECT_EQ(TakeBoxes(box).size(), 1);
  ExpectCurrent(u"/missing/b.qpf"_s, u"/missing"_s);
}

// --- save ---

TEST_F(FileCommands, SaveWithoutAFileAsksOnceForAName) {
  dialogs.answers = {kPath};
  mnuFileSave_Click(context);
  ExpectDialog(1, true, u"Speichern"_s, {});
  ExpectCurrent(kPath, u"C:\\Werte"_s);
  EXPECT_TRUE(IsWritten(kPath));
  files.files.remove(kPath);
  mnuFileSave_Click(context);
  EXPECT_EQ(dialogs.shown.size(), 1U);
  EXPECT_TRUE(IsWritten(kPath));
}

TEST_F(FileCommands, SaveWritesToTheFileThatWasOpened) {
  AddValueFile(kPath);
  dialogs.answers = {kPath};
  mnuFileOpen_Click(context);
  module.Par[1].Wert = 1;
  mnuFileSave_Click(context);
  EXPECT_EQ(dialogs.shown.size(), 1U);
  EXPECT_EQ(files.files[kPath].bytes.sliced(62, 4), Number(1));
}

TEST_F(FileCommands, SaveAsAsksAlwaysAndGoesOnWithTheNewName) {
  const QString other = u"/srv/b.qpf"_s;
  dialogs.answers = {kPath, other};
  mnuFileSaveAs_Click(context);
  ExpectDialog(1, true, u"Speichern unter"_s, {});
  mnuFileSaveAs_Click(context);
  ExpectDialog(2, true, u"Speichern unter"_s, {});
  ExpectCurrent(other, u"/srv"_s);
  const QByteArray first = files.files[kPath].bytes;
  module.Par[1].Wert = 1;
  mnuFileSave_Click(context);
  EXPECT_EQ(files.files[other].bytes.sliced(62, 4), Number(1));
  EXPECT_EQ(files.files[kPath].bytes, first);
}

// Also without adding a suffix: what the user typed is the name.
TEST_F(FileCommands, SavingOverAnExistingFileAsksNothing) {
  files.files[u"/srv/a"_s] = {QByteArray(62, 'x'), {}};
  dialogs.answers = {u"/srv/a"_s};
  mnuFileSaveAs_Click(context);
  EXPECT_TRUE(choice.asked.empty());
  EXPECT_EQ(files.files[u"/srv/a"_s].bytes.sliced(24, 9), "AB1-123.4");
}

TEST_F(FileCommands, ASaveThatFailsKeepsTheNewName) {
  files.writeError = u"Auf dem Datenträger ist kein Platz mehr."_s;
  dialogs.answers = {kPath};
  mnuFileSaveAs_Click(context);
  EXPECT_EQ(TakeBoxes(box), QStringList{u"Fehler beim schreiben von\r\nC:\\Werte\\a.qpf\r\n"
                                        "Auf dem Datenträger ist kein Platz mehr."_s});
  ExpectCurrent(kPath, u"C:\\Werte"_s);
}

// --- close ---

TEST_F(FileCommands, CloseForgetsTheFileAndNothingElse) {
  AddValueFile(kPath);
  dialogs.answers = {kPath, u"/srv/b.qpf"_s};
  mnuFileOpen_Click(context);
  const int rebuilt = main.tree.rebuilt;
  const Module1 before = module;
  mnuFileClose_Click(context);
  ExpectCurrent({}, u"C:\\Werte"_s);
  EXPECT_EQ(main.tree.rebuilt, rebuilt);
  EXPECT_TRUE(module.Par == before.Par);
  mnuFileSave_Click(context);
  ExpectDialog(2, true, u"Speichern"_s, {});
  ExpectCurrent(u"/srv/b.qpf"_s, u"/srv"_s);
}

TEST_F(FileCommands, ClosingWithoutAFileDoesNothing) {
  mnuFileClose_Click(context);
  ExpectCurrent({}, u"/home/werte"_s);
}

// --- while an operation is under way ---

TEST_F(FileCommands, NothingHappensWhileBusy) {
  AddValueFile(kPath);
  EXPECT_TRUE(OpenValueFile(context, kPath));
  const QByteArray image = files.files[kPath].bytes;
  const QStringList reads = files.reads;
  {
    const BusyGuard busy(core);
    mnuFileOpen_Click(context);
    mnuFileSave_Click(context);
    mnuFileSaveAs_Click(context);
    mnuFileClose_Click(context);
  }
  EXPECT_TRUE(dialogs.shown.empty());
  ExpectCurrent(kPath, u"C:\\Werte"_s);
  EXPECT_EQ(files.files[kPath].bytes, image);
  EXPECT_EQ(files.reads, reads);
  mnuFileClose_Click(context);
  EXPECT_EQ(module.Dateiname, QString()) << "as before once it is over";
}

// --- the folder ---

TEST_F(FileCommands, ARootLeavesWhatStandsBeforeItsSeparator) {
  const struct {
    QString path, folder;
  } cases[] = {{u"C:\\x.qpf"_s, u"C:"_s}, {u"C:/x.qpf"_s, u"C:"_s}, {u"/x.qpf"_s, u""_s}};
  for (const auto& example : cases) {
    dialogs.shown.clear();
    dialogs.answers = {example.path};
    mnuFileSaveAs_Click(context);
    ExpectCurrent(example.path, example.folder);
  }
}

TEST_F(FileCommands, ANameWithoutAFolderLeavesTheCurrentFile) {
  dialogs.answers = {kPath, u"a.qpf"_s};
  mnuFileSaveAs_Click(context);
  EXPECT_EQ(ThrownKind([&] { mnuFileSaveAs_Click(context); }), RuntimeError::Kind::InvalidArgument);
  ExpectCurrent(kPath, u"C:\\Werte"_s);
}

}  // namespace
}  // namespace kalivor::test
