// Files of every version and state: read, brought to this version, or set aside, but never lost.
#include "history/StoreFile.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <thread>

#include "unit/history/HistoryFixture.h"

using namespace Qt::StringLiterals;

namespace kalivor::history {
namespace {

class StoreFile : public HistoryFixture {
 protected:
  [[nodiscard]] QString InFolder(const QString& name) const { return folder_.filePath(u"a/"_s + name); }

  [[nodiscard]] QByteArray Bytes(const QString& path) const {
    QFile file(path);
    return file.open(QFile::ReadOnly) ? file.readAll() : QByteArray();
  }
  void Write(const QString& path, const QByteArray& bytes) const {
    QFile file(path);
    ASSERT_TRUE(QDir().mkpath(QFileInfo(path).path()) && file.open(QFile::WriteOnly));
    ASSERT_EQ(file.write(bytes), bytes.size());
  }

  // A closed file with three entries.
  void Fill() const {
    const auto store = Opened();
    for (const qint32 number : {100, 101, 102})
      ASSERT_EQ(store->Add(Received(number, 200)), QString());
  }

  void Do(const QString& statement) const {
    const FileConnection connection(file_, {});
    QSqlError error;
    (void)FirstAnswer(connection.Database(), statement, error);
    ASSERT_EQ(error.type(), QSqlError::NoError) << error.text().toStdString();
  }

  [[nodiscard]] std::size_t EntriesIn(const QString& path) const {
    const Store::Opened opened = Store::Open(World(path), Access::Read);
    return opened.store ? opened.store->Entries().size() : 0;
  }

  // It is damaged: one opening says so, and where it is now; then all is well.
  void ExpectSetAside(const QString& aside) {
    const QByteArray damaged = Bytes(file_);
    {
      const Store::Opened reading = Store::Open(World(file_), Access::Read);
      EXPECT_TRUE(reading.store || reading.note.isEmpty() || reading.note.contains(u"beschädigt"_s));
    }
    {
      const Store::Opened opened = Store::Open(World(file_), Access::Write);
      ASSERT_TRUE(opened.store);
      EXPECT_EQ(
          opened.note,
          u"Der Verlauf war beschädigt, ein neuer ist begonnen. Die beschädigte Datei ist aufgehoben:\r\n"_s +
              InFolder(aside));
      EXPECT_TRUE(opened.store->Entries().empty());
      ASSERT_EQ(opened.store->Add(Received(1)), QString());
    }
    EXPECT_EQ(Bytes(InFolder(aside)).size(), damaged.size());
    EXPECT_EQ(Opened()->Entries().size(), 1u);
  }
};

#ifndef Q_OS_WIN
// On Windows the folder of the user's data is for the user alone, and files have no such bits.
TEST_F(StoreFile, IsForTheUserAlone) {
  Fill();
  constexpr QFile::Permissions kOthers = QFile::ReadGroup | QFile::WriteGroup | QFile::ExeGroup |
                                         QFile::ReadOther | QFile::WriteOther | QFile::ExeOther;
  const auto store = Opened();
  ASSERT_EQ(store->Add(Received(1)), QString());
  for (const QString& path : {folder_.filePath(u"a"_s), file_, file_ + u"-wal"_s, file_ + u"-shm"_s}) {
    EXPECT_TRUE(QFile::exists(path)) << path.toStdString();
    EXPECT_EQ(QFile::permissions(path) & kOthers, QFile::Permissions()) << path.toStdString();
  }
}
#endif

TEST_F(StoreFile, LeavesNothingBesideItWhenItIsClosed) {
  Fill();
  EXPECT_EQ(QDir(folder_.filePath(u"a"_s)).entryList(QDir::Files), QStringList{u"Verlauf.sqlite"_s});
}

TEST_F(StoreFile, ThatIsMissingHoldsNothingForWhoReads) {
  const Store::Opened opened = Store::Open(World(file_), Access::Read);
  EXPECT_FALSE(opened.store);
  EXPECT_EQ(opened.note, QString());
  EXPECT_FALSE(QFile::exists(folder_.filePath(u"a"_s)));
  // One that a program has just begun.
  Write(file_, {});
  EXPECT_FALSE(Store::Open(World(file_), Access::Read).store);
  EXPECT_EQ(Store::Open(World(file_), Access::Read).note, QString());
}

TEST_F(StoreFile, RefusesToChangeOrRemoveARow) {
  Fill();
  {
    const auto store = Opened();
    Plant plant{{}, u"Nord"_s, {}, {}};
    ASSERT_EQ(store->Describe(plant, {}), QString());
    const QUuid entry = store->Entries()[0].id;
    ASSERT_EQ(store->AddRemark(entry, u"x"_s, {}), QString());
    ASSERT_EQ(store->Assign(entry, plant.id, {}), QString());
  }
  const FileConnection connection(file_, {});
  for (const TableDescription& table : Tables()) {
    for (const QString& change : {u"DELETE FROM %1"_s, u"UPDATE %1 SET %2 = %2"_s}) {
      const QString text =
          change.contains(u"%2") ? change.arg(table.name, table.columns.back().name) : change.arg(table.name);
      Statement statement(connection.Database(), text);
      EXPECT_FALSE(statement.Run()) << text.toStdString();
      EXPECT_EQ(FaultOf(statement.Error()), SqlFault::Refused) << text.toStdString();
    }
  }
}

TEST_F(StoreFile, OfGarbageIsSetAside) {
  Write(file_, QByteArray(20000, 'x'));
  ExpectSetAside(u"Verlauf.defekt.sqlite"_s);
}

TEST_F(StoreFile, ThatIsCutOffIsSetAside) {
  Fill();
  const QByteArray whole = Bytes(file_);
  int number = 1;
  for (const qsizetype size : {whole.size() - 4096, whole.size() / 2, qsizetype{5000}, qsizetype{100}}) {
    Write(file_, whole.first(size));
    ExpectSetAside(number == 1 ? u"Verlauf.defekt.sqlite"_s : u"Verlauf.defekt-%1.sqlite"_s.arg(number));
    ++number;
  }
}

// Whatever page it is: it is noticed at the opening, or no entry needs it.
TEST_F(StoreFile, WithAPageOverwrittenIsSetAside) {
  Fill();
  const QByteArray whole = Bytes(file_);
  int noticed = 0;
  for (qsizetype at = 0; at < whole.size(); at += 4096) {
    QByteArray bytes = whole;
    bytes.replace(at, 4096, QByteArray(4096, 'x'));
    Write(file_, bytes);
    const Store::Opened opened = Store::Open(World(file_), Access::Write);
    ASSERT_TRUE(opened.store) << at;
    if (!opened.note.isEmpty()) {
      ++noticed;
      continue;
    }
    // What lies in the middle of a set is found by its id.
    EXPECT_EQ(opened.store->Entries().size(), 3u) << at;
    EXPECT_FALSE(opened.store->Check().isEmpty()) << at;
  }
  EXPECT_GT(noticed, 10);
}

TEST_F(StoreFile, OfSomethingElseIsSetAside) {
  ASSERT_TRUE(QDir().mkpath(folder_.filePath(u"a"_s)));
  Do(u"CREATE TABLE kontakte (name TEXT)"_s);
  ExpectSetAside(u"Verlauf.defekt.sqlite"_s);
}

TEST_F(StoreFile, WithTablesMissingIsSetAside) {
  ASSERT_TRUE(QDir().mkpath(folder_.filePath(u"a"_s)));
  Do(u"CREATE TABLE entry (name TEXT)"_s);
  Do(u"PRAGMA user_version = 1"_s);
  ExpectSetAside(u"Verlauf.defekt.sqlite"_s);
}

// What was written last stands beside the file. Without the file it would be thrown away.
TEST_F(StoreFile, ThatIsGoneLeavesWhatWasBesideIt) {
  Write(file_ + u"-wal"_s, "something");
  const Store::Opened opened = Store::Open(World(file_), Access::Write);
  ASSERT_TRUE(opened.store);
  EXPECT_TRUE(opened.note.contains(u"Verlauf.defekt.sqlite"_s));
  EXPECT_EQ(Bytes(InFolder(u"Verlauf.defekt.sqlite-wal"_s)), "something");
}

// Who has it open would go on adding to a file that nobody looks for.
TEST_F(StoreFile, ThatAnotherHasOpenStaysWhereItIs) {
  Fill();
  const auto other = Opened();
  ASSERT_EQ(other->Entries().size(), 3u);
  {
    // In the middle of a table, past what the other one has in mind.
    QFile file(file_);
    ASSERT_TRUE(file.open(QFile::ReadWrite) && file.seek(file.size() - 4096));
    ASSERT_EQ(file.write(QByteArray(4096, 'x')), 4096);
  }
  // Closing the file above has let go of the locks of this process; a reader takes them again.
  const Store::Opened reader = Store::Open(World(file_), Access::Read);
  const Store::Opened opened = Store::Open(World(file_), Access::Write);
  EXPECT_FALSE(opened.store);
  EXPECT_TRUE(opened.note.contains(u"Ein anderes Programm hat ihn noch offen"_s))
      << opened.note.toStdString();
  EXPECT_FALSE(QFile::exists(InFolder(u"Verlauf.defekt.sqlite"_s)));
}

TEST_F(StoreFile, ThatManySetAsideAtOnceIsReplacedOnce) {
  Write(file_, QByteArray(20000, 'x'));
  std::vector<std::thread> threads;
  std::atomic<int> said = 0;
  for (int i = 0; i < 8; ++i)
    threads.emplace_back([&] {
      const Store::Opened opened = Store::Open(World(file_), Access::Write);
      if (!opened.note.isEmpty()) ++said;
      EXPECT_TRUE(opened.store && opened.store->Add(Received(1)).isEmpty());
    });
  for (std::thread& thread : threads)
    thread.join();
  EXPECT_EQ(said, 1);
  EXPECT_EQ(Opened()->Entries().size(), 8u);
  EXPECT_FALSE(QFile::exists(InFolder(u"Verlauf.defekt-2.sqlite"_s)));
}

TEST_F(StoreFile, OfANewerProgramIsReadOnly) {
  Fill();
  Do(u"PRAGMA user_version = 99"_s);
  for (const Access access : {Access::Write, Access::Read}) {
    const Store::Opened opened = Store::Open(World(file_), access);
    ASSERT_TRUE(opened.store);
    EXPECT_TRUE(opened.note.contains(u"neueren Version"_s));
    EXPECT_FALSE(opened.store->Writable());
    EXPECT_EQ(opened.store->Entries().size(), 3u);
    EXPECT_FALSE(opened.store->Add(Received(1)).isEmpty());
    EXPECT_EQ(opened.store->LastRemedy(), Store::Remedy::Nothing);
  }
  Do(u"PRAGMA user_version = 1"_s);
  EXPECT_EQ(EntriesIn(file_), 3u);
}

TEST_F(StoreFile, ThatANewerProgramTakesOverIsWrittenNoMore) {
  Fill();
  const auto store = Opened();
  Do(u"PRAGMA user_version = 99"_s);
  EXPECT_FALSE(store->Add(Received(1)).isEmpty());
  EXPECT_EQ(store->LastRemedy(), Store::Remedy::Reopening);
  EXPECT_EQ(store->Entries().size(), 3u);
}

// The next version, as some later program would know it.
SchemaVersions Later(const QStringList& statements) {
  SchemaVersions later = CurrentSchema();
  later.version = kSchemaVersion + 2;
  later.steps.push_back({kSchemaVersion, kSchemaVersion + 1, {u"CREATE TABLE extra (a TEXT) STRICT"_s}});
  later.steps.push_back({kSchemaVersion + 1, kSchemaVersion + 2, statements});
  return later;
}

int VersionOf(const OpenedFile& file) {
  QSqlError error;
  return FirstAnswer(file.connection->Database(), u"PRAGMA user_version"_s, error).toInt();
}

TEST_F(StoreFile, OfAnOlderVersionIsBroughtToThisOne) {
  Fill();
  const SchemaVersions later =
      Later({u"ALTER TABLE extra ADD COLUMN b TEXT"_s, u"INSERT INTO extra VALUES ('1', '2')"_s});
  for (const bool reads : {true, false}) {
    const OpenedFile file = reads ? OpenForReading(file_, later) : OpenForWriting(file_, later);
    ASSERT_TRUE(file.connection) << file.note.toStdString();
    EXPECT_EQ(VersionOf(file), kSchemaVersion + 2);
    QSqlError error;
    EXPECT_EQ(FirstAnswer(file.connection->Database(), u"SELECT count(*) FROM extra"_s, error).toInt(), 1);
    EXPECT_EQ(FirstAnswer(file.connection->Database(), u"SELECT count(*) FROM entry"_s, error).toInt(), 3);
  }
  // A new one goes all the way.
  const OpenedFile made = OpenForWriting(InFolder(u"neu.sqlite"_s), later);
  ASSERT_TRUE(made.connection);
  EXPECT_EQ(VersionOf(made), kSchemaVersion + 2);
}

TEST_F(StoreFile, StaysAsItIsWhereAStepFails) {
  Fill();
  {
    const OpenedFile file =
        OpenForWriting(file_, Later({u"INSERT INTO extra VALUES ('1')"_s, u"UPDATE entry SET kind = ''"_s}));
    EXPECT_FALSE(file.connection);
    EXPECT_FALSE(file.note.isEmpty());
  }
  EXPECT_FALSE(QFile::exists(InFolder(u"Verlauf.defekt.sqlite"_s)));
  // The step before it has been done; nothing of this one.
  const OpenedFile file = OpenForWriting(file_, Later({}));
  ASSERT_TRUE(file.connection) << file.note.toStdString();
  QSqlError error;
  EXPECT_EQ(FirstAnswer(file.connection->Database(), u"SELECT count(*) FROM extra"_s, error).toInt(), 0);
  EXPECT_EQ(VersionOf(file), kSchemaVersion + 2);
}

TEST_F(StoreFile, IsReadWhileAnotherProgramAdds) {
  Fill();
  const auto writer = Opened();
  const Store::Opened reader = Store::Open(World(file_), Access::Read);
  ASSERT_TRUE(reader.store);
  EXPECT_EQ(reader.store->Entries().size(), 3u);
  ASSERT_EQ(writer->Add(Received(1)), QString());
  EXPECT_EQ(reader.store->Entries().size(), 4u);
  EXPECT_FALSE(reader.store->Add(Received(2)).isEmpty());
}

}  // namespace
}  // namespace kalivor::history
