// Whenever the program or its computer ends, or the disk is full: whole entries, and all that were said to be
// there.
#include <iostream>

#include "unit/history/HistoryFixture.h"
#include "unit/history/faults/MortalDisk.h"

using namespace Qt::StringLiterals;

namespace kalivor::history {
namespace {

using test::MortalDisk;
using Fault = MortalDisk::Fault;

constexpr int kParameters = 30;
constexpr int kEntries = 4;

const std::string kFull =
    "Der Verlauf kann nicht geschrieben werden: Auf dem Datenträger ist kein Platz mehr; bitte Platz "
    "schaffen.";

class StoreFaults : public HistoryFixture {
 protected:
  // What is not of the library (a lock) is on a disk that waits for nothing, where there is one.
  StoreFaults() {
    if (memory_.isValid()) file_ = memory_.filePath(u"Verlauf.sqlite"_s);
  }

  // What a program does in its life. Returns how many entries it was told to have added; a failure is no
  // reason to stop.
  int Live() {
    const Store::Opened opened = Store::Open(World(file_), Access::Write);
    if (!opened.store) return 0;
    int added = 0;
    for (int i = 0; i < kEntries; ++i)
      if (opened.store->Add(Received(i * 100, kParameters)).isEmpty()) ++added;
    return added;
  }

  // Each entry is whole. Returns how many there are.
  int CountWhole(Store& store) {
    const std::vector<Entry> entries = store.Entries();
    EXPECT_EQ(store.Failure(), QString());
    for (const Entry& entry : entries) {
      EXPECT_EQ(store.Changes(entry.id).size(), static_cast<std::size_t>(entry.changes));
      const SetResult values = store.Values(entry, true);
      EXPECT_TRUE(values.Ok());
      EXPECT_EQ(values.set.values.size(), static_cast<std::size_t>(kParameters));
      EXPECT_EQ(values.set.values.back().value.number % 100, kParameters);
    }
    EXPECT_EQ(store.Check(), QStringList());
    return static_cast<int>(entries.size());
  }

  // The next life finds what it was told of before, and adds to it.
  void ExpectAtLeast(int added, const QString& when) {
    SCOPED_TRACE(when.toStdString());
    const Store::Opened opened = Store::Open(World(file_), Access::Write);
    ASSERT_TRUE(opened.store) << opened.note.toStdString();
    EXPECT_TRUE(opened.note.isEmpty()) << opened.note.toStdString();
    const int found = CountWhole(*opened.store);
    EXPECT_GE(found, added);
    EXPECT_LE(found, kEntries);
    EXPECT_EQ(opened.store->Add(Received(7000, kParameters)), QString());
    EXPECT_EQ(CountWhole(*opened.store), found + 1);
  }

  // How many accesses a life takes.
  int Accesses() {
    MortalDisk disk(0);
    EXPECT_EQ(Live(), kEntries);
    EXPECT_GT(disk.Accesses(), 50);
    return disk.Accesses();
  }

 private:
  QTemporaryDir memory_{u"/dev/shm/history-XXXXXX"_s};
};

TEST_F(StoreFaults, AProgramThatEndsAtAnyAccessLeavesWholeEntries) {
  const int accesses = Accesses();
  std::cout << accesses << " accesses\n";
  for (int at = 0; at <= accesses; ++at) {
    MortalDisk disk(static_cast<unsigned>(at));
    disk.Plan(Fault::Ends, at);
    const int added = Live();
    disk.StartProgram();
    ExpectAtLeast(added, u"access %1"_s.arg(at));
    if (HasFailure()) return;
  }
}

TEST_F(StoreFaults, APowerCutAtAnyAccessLeavesWholeEntries) {
  const int accesses = Accesses();
  for (unsigned seed = 0; seed < 3; ++seed)
    for (int at = 0; at <= accesses; ++at) {
      MortalDisk disk(1000 * seed + static_cast<unsigned>(at));
      disk.Plan(Fault::Ends, at);
      const int added = Live();
      disk.StartComputer();
      ExpectAtLeast(added, u"access %1, seed %2"_s.arg(at).arg(seed));
      if (HasFailure()) return;
    }
}

TEST_F(StoreFaults, ADiskThatIsFullForAMomentLeavesWholeEntries) {
  const int accesses = Accesses();
  for (int at = 0; at <= accesses; ++at) {
    MortalDisk disk(static_cast<unsigned>(at));
    disk.Plan(Fault::Full, at);
    const int added = Live();
    EXPECT_TRUE(added >= kEntries - 1 || added == 0) << at;
    disk.StartProgram();
    ExpectAtLeast(added, u"access %1"_s.arg(at));
    if (HasFailure()) return;
  }
}

TEST_F(StoreFaults, ADiskThatStaysFullIsSaidAndTakesTheEntryLater) {
  const int accesses = Accesses();
  for (int at = 0; at <= accesses; ++at) {
    MortalDisk disk(static_cast<unsigned>(at));
    disk.Plan(Fault::StaysFull, at);
    const Store::Opened opened = Store::Open(World(file_), Access::Write);
    int added = 0;
    if (!opened.store) {
      // A file that cannot be made has no better reason.
      EXPECT_TRUE(opened.note.toStdString() == kFull || opened.note.contains(u"lässt sich nicht öffnen"_s))
          << opened.note.toStdString();
    } else {
      for (int i = 0; i < kEntries; ++i) {
        const QString failure = opened.store->Add(Received(i * 100, kParameters));
        if (failure.isEmpty()) {
          ++added;
          continue;
        }
        EXPECT_EQ(
            failure,
            u"Der Verlauf kann nicht geschrieben werden: Auf dem Datenträger ist kein Platz mehr; bitte "
            "Platz schaffen."_s)
            << at;
        EXPECT_EQ(opened.store->LastRemedy(), Store::Remedy::Waiting);
        disk.Plan(Fault::None, 0);  // somebody has made room
        EXPECT_EQ(opened.store->Add(Received(i * 100, kParameters)), QString()) << at;
        ++added;
      }
      EXPECT_EQ(added, kEntries);
    }
    disk.Plan(Fault::None, 0);
    if (HasFailure()) return;
  }
}

}  // namespace
}  // namespace kalivor::history
