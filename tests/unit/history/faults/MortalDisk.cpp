#include "unit/history/faults/MortalDisk.h"

#include <sqlite3.h>

#include <algorithm>
#include <cstring>
#include <utility>

namespace kalivor::test {
namespace {

constexpr int kSector_bytes = 512;
constexpr char kName[] = "mortal";

using File = MortalDisk::File;

/// As the library has it: its part comes first.
struct Handle {
  sqlite3_file base;
  std::shared_ptr<File>* file;
};

struct System {
  sqlite3_vfs vfs{};
  sqlite3_vfs* real = nullptr;
  MortalDisk* disk = nullptr;
};

System& TheSystem() {
  static System system;
  return system;
}

MortalDisk& Disk() {
  return *TheSystem().disk;
}

File& FileOf(sqlite3_file* file) {
  return **reinterpret_cast<Handle*>(file)->file;
}

int Code(MortalDisk::Answer answer, int failure) {
  switch (answer) {
    case MortalDisk::Answer::Done:
      return SQLITE_OK;
    case MortalDisk::Answer::Full:
      return SQLITE_FULL;
    case MortalDisk::Answer::Dead:
      break;
  }
  return failure;
}

int Close(sqlite3_file* file) {
  delete std::exchange(reinterpret_cast<Handle*>(file)->file, nullptr);
  return SQLITE_OK;
}

int Read(sqlite3_file* file, void* to, int size, sqlite3_int64 offset) {
  if (Disk().IsDead()) return SQLITE_IOERR_READ;
  const QByteArray bytes = FileOf(file).now.mid(offset, size);
  std::memset(to, 0, static_cast<std::size_t>(size));
  std::copy(bytes.cbegin(), bytes.cend(), static_cast<char*>(to));
  return bytes.size() == size ? SQLITE_OK : SQLITE_IOERR_SHORT_READ;
}

int Write(sqlite3_file* file, const void* from, int size, sqlite3_int64 offset) {
  return Code(Disk().Change(FileOf(file), {offset, {static_cast<const char*>(from), size}}),
              SQLITE_IOERR_WRITE);
}

int Truncate(sqlite3_file* file, sqlite3_int64 size) {
  return Code(Disk().Change(FileOf(file), {size, {}, true}), SQLITE_IOERR_TRUNCATE);
}

int Sync(sqlite3_file* file, int /*flags*/) {
  return Code(Disk().Sync(FileOf(file)), SQLITE_IOERR_FSYNC);
}

int Size(sqlite3_file* file, sqlite3_int64* size) {
  *size = FileOf(file).now.size();
  return SQLITE_OK;
}

// One program, one thread: nobody to lock anything against.
int Lock(sqlite3_file* /*file*/, int /*level*/) {
  return SQLITE_OK;
}
int CheckLock(sqlite3_file* /*file*/, int* locked) {
  *locked = 0;
  return SQLITE_OK;
}
int Control(sqlite3_file* /*file*/, int /*request*/, void* /*argument*/) {
  return SQLITE_NOTFOUND;
}
int Sector(sqlite3_file* /*file*/) {
  return kSector_bytes;
}
// As the library believes of the systems that the program runs on.
int Characteristics(sqlite3_file* /*file*/) {
  return SQLITE_IOCAP_POWERSAFE_OVERWRITE;
}

int SharedMap(sqlite3_file* file, int region, int size, int extend, void volatile** memory) {
  auto& shared = FileOf(file).shared;
  const auto at = static_cast<std::size_t>(region);
  *memory = nullptr;
  while (extend != 0 && shared.size() <= at)
    shared.push_back(std::make_unique<QByteArray>(size, '\0'));
  if (at < shared.size()) *memory = shared[at]->data();
  return SQLITE_OK;
}
int SharedLock(sqlite3_file* /*file*/, int /*offset*/, int /*count*/, int /*flags*/) {
  return SQLITE_OK;
}
void SharedBarrier(sqlite3_file* /*file*/) {}
int SharedUnmap(sqlite3_file* file, int remove) {
  if (remove != 0) FileOf(file).shared.clear();
  return SQLITE_OK;
}

constexpr sqlite3_io_methods kMethods = {.iVersion = 2,
                                         .xClose = Close,
                                         .xRead = Read,
                                         .xWrite = Write,
                                         .xTruncate = Truncate,
                                         .xSync = Sync,
                                         .xFileSize = Size,
                                         .xLock = Lock,
                                         .xUnlock = Lock,
                                         .xCheckReservedLock = CheckLock,
                                         .xFileControl = Control,
                                         .xSectorSize = Sector,
                                         .xDeviceCharacteristics = Characteristics,
                                         .xShmMap = SharedMap,
                                         .xShmLock = SharedLock,
                                         .xShmBarrier = SharedBarrier,
                                         .xShmUnmap = SharedUnmap,
                                         .xFetch = nullptr,
                                         .xUnfetch = nullptr};

int Open(sqlite3_vfs* /*vfs*/, const char* name, sqlite3_file* to, int flags, int* given) {
  auto* handle = reinterpret_cast<Handle*>(to);
  handle->base.pMethods = nullptr;
  // What has no name is nobody's after the end.
  std::shared_ptr<File> file = name == nullptr ? std::make_shared<File>() : Disk().Find(name);
  if (!file && (flags & SQLITE_OPEN_CREATE) != 0) file = Disk().Make(name);
  if (!file) return SQLITE_CANTOPEN;
  handle->file = new std::shared_ptr<File>(std::move(file));
  handle->base.pMethods = &kMethods;
  if (given != nullptr) *given = flags;
  return SQLITE_OK;
}

int Delete(sqlite3_vfs* /*vfs*/, const char* name, int syncs) {
  if (!Disk().Find(name)) return SQLITE_IOERR_DELETE_NOENT;
  return Code(Disk().Remove(name, syncs != 0), SQLITE_IOERR_DELETE);
}

int Exists(sqlite3_vfs* /*vfs*/, const char* name, int /*flags*/, int* result) {
  const std::shared_ptr<File> file = Disk().Find(name);
  *result = file && !file->now.isEmpty() ? 1 : 0;
  return SQLITE_OK;
}

int FullPath(sqlite3_vfs* /*vfs*/, const char* name, int size, char* to) {
  sqlite3_snprintf(size, to, "%s", name);
  return SQLITE_OK;
}

}  // namespace

MortalDisk::MortalDisk(unsigned seed) : random_(seed) {
  System& system = TheSystem();
  if (system.real == nullptr) system.real = sqlite3_vfs_find(nullptr);
  system.disk = this;
  // Time and chance are the real ones.
  system.vfs = *system.real;
  system.vfs.pNext = nullptr;
  system.vfs.zName = kName;
  system.vfs.szOsFile = sizeof(Handle);
  system.vfs.xOpen = Open;
  system.vfs.xDelete = Delete;
  system.vfs.xAccess = Exists;
  system.vfs.xFullPathname = FullPath;
  sqlite3_vfs_register(&system.vfs, 1);
}

MortalDisk::~MortalDisk() {
  sqlite3_vfs_unregister(&TheSystem().vfs);
  sqlite3_vfs_register(TheSystem().real, 1);
}

void MortalDisk::Plan(Fault fault, int at) {
  fault_ = fault;
  at_ = at;
  accesses_ = 0;
}

void MortalDisk::StartProgram() {
  dead_ = false;
  fault_ = Fault::None;
  for (auto& [name, file] : files_)
    file->shared.clear();
}

void MortalDisk::StartComputer() {
  for (auto& [name, file] : std::exchange(removed_, {}))
    if (Below(2) == 0) files_.try_emplace(name, file);
  for (auto at = files_.begin(); at != files_.end();) {
    File& file = *at->second;
    // A name that was not synced may be gone with all that it stands for.
    if (!file.stays && Below(2) == 0) {
      at = files_.erase(at);
      continue;
    }
    // All, nothing or any part, so that each is frequent.
    const int chance = Below(3);
    for (const Write& write : std::exchange(file.unsynced, {})) {
      const auto survives = [&] { return chance == 2 || (chance == 1 && Below(2) == 0); };
      if (write.cuts) {
        if (survives()) Apply(file.synced, write);
        continue;
      }
      for (qsizetype from = 0; from < write.bytes.size(); from += kSector_bytes)
        if (survives()) Apply(file.synced, {write.offset + from, write.bytes.mid(from, kSector_bytes)});
    }
    file.now = file.synced;
    ++at;
  }
  StartProgram();
}

MortalDisk::Answer MortalDisk::Change(File& file, const Write& write) {
  const Answer answer = Access(!write.cuts);
  if (answer == Answer::Full || (answer == Answer::Dead && accesses_ > at_ + 1)) return answer;
  Write done = write;
  // What the program was at when it ended: any beginning of it.
  if (answer == Answer::Dead) done.bytes.truncate(Below(static_cast<int>(write.bytes.size()) + 1));
  if (answer == Answer::Dead && write.cuts && Below(2) == 0) return answer;
  Apply(file.now, done);
  file.unsynced.push_back(done);
  return answer;
}

MortalDisk::Answer MortalDisk::Sync(File& file) {
  const Answer answer = Access(false);
  if (answer != Answer::Done) return answer;
  // With the beginning of a journal the library syncs the folder, and all that was done in it.
  if (file.isJournal && !file.stays) {
    for (auto& [name, each] : files_)
      each->stays = true;
    removed_.clear();
  }
  file.synced = file.now;
  file.unsynced.clear();
  return answer;
}

MortalDisk::Answer MortalDisk::Remove(const std::string& name, bool syncs) {
  const Answer answer = Access(false);
  if (answer != Answer::Done) return answer;
  const auto at = files_.find(name);
  if (!syncs) removed_.insert_or_assign(name, at->second);
  files_.erase(at);
  return answer;
}

std::shared_ptr<File> MortalDisk::Find(const std::string& name) const {
  const auto at = files_.find(name);
  return at == files_.end() ? nullptr : at->second;
}

std::shared_ptr<File> MortalDisk::Make(const std::string& name) {
  if (Access(true) != Answer::Done) return nullptr;
  auto file = std::make_shared<File>();
  file->isJournal = name.ends_with("-journal") || name.ends_with("-wal");
  return files_[name] = std::move(file);
}

MortalDisk::Answer MortalDisk::Access(bool needsRoom) {
  const int number = accesses_++;
  if (fault_ == Fault::Ends && number >= at_) dead_ = true;
  if (dead_) return Answer::Dead;
  const bool full = (fault_ == Fault::Full && number == at_) || (fault_ == Fault::StaysFull && number >= at_);
  return full && needsRoom ? Answer::Full : Answer::Done;
}

int MortalDisk::Below(int limit) {
  return static_cast<int>(random_() % static_cast<unsigned>(limit));
}

void MortalDisk::Apply(QByteArray& bytes, const Write& write) {
  if (write.cuts) {
    bytes.truncate(write.offset);
    return;
  }
  if (bytes.size() < write.offset) bytes.append(write.offset - bytes.size(), '\0');
  bytes.replace(write.offset, write.bytes.size(), write.bytes);
}

}  // namespace kalivor::test
