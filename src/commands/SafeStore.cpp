#include "commands/SafeStore.h"

#include <QHash>
#include <algorithm>
#include <set>
#include <tuple>
#include <utility>

#include "base/Paths.h"
#include "core/ValueFileFormat.h"

using namespace Qt::StringLiterals;

namespace kalivor {
namespace {

// A backup of every word takes some 400 KB.
constexpr qint64 kLargestBackup_bytes = qint64{4} * 1024 * 1024;
constexpr int kKeptDays = 30;

const QString kValueEnding = u".qpf"_s;
const QString kTextEnding = u".txt"_s;
const QString kTimeInName = u"yyyy-MM-dd HH-mm-ss"_s;

const QString kNothingSent = u"; es wurde nichts gesendet."_s;
const QString kNoBackup = u"Die Sicherung kann nicht angelegt werden"_s + kNothingSent;
const QString kNoJournal = u"Was gesendet wird, kann nicht festgehalten werden"_s + kNothingSent;
const QString kNoJournalAnyMore = u"Was gesendet wird, kann nicht mehr festgehalten werden."_s;

QString Lines(const QString& what, const QString& path, const QString& reason) {
  return what + u"\r\n"_s + path + (reason.isEmpty() ? QString() : u"\r\n"_s + reason);
}

// --- the files of a backup ---

bool HasEnding(const QString& path, const QString& ending) {
  return path.endsWith(ending, Qt::CaseInsensitive);
}

// The path without the ending that one of its files has.
QString BaseOf(const QString& path) {
  for (const QString& ending : {kValueEnding, kTextEnding}) {
    if (HasEnding(path, ending)) return path.chopped(ending.size());
  }
  return path;
}

// What file systems refuse in a name becomes "_".
QString FileNameOf(QString text) {
  for (QChar& c : text) {
    if (c < u' ' || QStringView(u"<>:\"/\\|?*").contains(c)) c = u'_';
  }
  return text.trimmed();
}

QDateTime TimeIn(const QString& base) {
  const qsizetype name = std::max(base.lastIndexOf(u'/'), base.lastIndexOf(u'\\')) + 1;
  return QDateTime::fromString(base.mid(name, kTimeInName.size()), kTimeInName);
}

// One that cannot be used has its time in its name, or is taken for the oldest.
QDateTime TimeOf(const StoredBackup& stored) {
  const QDateTime time = stored.error.isEmpty() ? stored.backup.head.time : TimeIn(BaseOf(stored.path));
  return time.isValid() ? time : QDateTime::fromSecsSinceEpoch(0);
}

StoredBackup ReadFiles(platform::FileSystem& files, const QString& base) {
  StoredBackup stored{base + kValueEnding, {}, {}};
  const platform::FileContent text = files.Read(base + kTextEnding, kLargestBackup_bytes);
  stored.error = text.error;
  if (!text.Ok()) return stored;
  if (std::optional<Backup> backup = ParseBackup(text.bytes)) {
    stored.backup = *std::move(backup);
  } else {
    stored.error = u"Die Sicherung ist beschädigt."_s;
  }
  return stored;
}

// The values that were read, in a file that every version of the program opens.
QByteArray ValueFileOf(const Module1& module, const SafeRun& run) {
  QByteArray records;
  qint32 count = 1;
  for (const SafeValue& value : run.values) {
    if (!value.before) continue;
    const ParameterRecord& record = module.Par[value.index];
    records += ComposeRecord(value.before->number, value.before->text, record.Variable, record.Typ.Padded());
    ++count;
  }
  return ComposeRecord(count, {}, run.version, {}) + records;
}

Backup BackupOf(const Module1& module, const SafeRun& run, const BackupHead& head) {
  Backup backup{head, {}, run.before};
  for (const SafeValue& value : run.values) {
    if (value.before) backup.values.push_back(NameOf(module.Par[value.index]));
  }
  return backup;
}

// --- what is sent ---

// The run goes on with this sending: it repeats or finishes a part of it, or brings back what was there.
bool Continues(const SafeRun& run, const Sending& sending) {
  if (!run.backup.isEmpty() && run.backup == sending.backup) return true;
  return run.kind == SafeKind::TakeBack && std::ranges::any_of(run.values, [&](const SafeValue& value) {
           return value.chosen && Holds(sending.before, value.words);
         });
}

// Adds the chosen values that are not part of it yet. False where it is not known what was there before.
bool AddChosen(Sending& sending, const Module1& module, const SafeRun& run) {
  std::map<quint16, CodedWord> wanted;
  for (const CodedWord& word : sending.wanted)
    wanted[word.address] = word;
  std::set<NamedWords> names(sending.values.begin(), sending.values.end());
  for (const SafeValue& value : run.values) {
    const NamedWords name = NameOf(module.Par[value.index]);
    if (!value.chosen || !names.insert(name).second) continue;
    sending.values.push_back(name);
    for (const CodedWord& word : value.words) {
      const auto before = run.before.find(word.address);
      if (before == run.before.end()) return false;
      sending.before.insert(*before);
      CodedWord& joined = wanted.try_emplace(word.address, CodedWord{word.address}).first->second;
      joined.mask = static_cast<quint16>(joined.mask | word.mask);
      joined.bits = static_cast<quint16>((joined.bits & ~word.mask) | word.bits);
    }
  }
  sending.wanted.clear();
  for (const auto& [address, word] : wanted)
    sending.wanted.push_back(word);
  return true;
}

QByteArray TextOf(const Sending& sending) {
  QByteArray text = ComposeSending(sending);
  for (const quint16 address : sending.begun)
    text += ComposeBegun(address);
  return text;
}

// It is known what became of every value that was to be sent.
bool IsAccounted(const SafeRun& run) {
  return std::ranges::all_of(run.values, [](const SafeValue& value) {
    return !value.chosen || value.state == SafeState::Verified || value.state == SafeState::Deviating ||
           value.state == SafeState::Equal;
  });
}

}  // namespace

QString BackupFolder(const Settings& settings) {
  const QString name = u"Sicherungen"_s;
  return settings.Userpath.isEmpty() ? name : WithSeparator(settings.Userpath) + name;
}

BackupList ListBackups(platform::FileSystem& files, const QString& folder) {
  const platform::FolderContent content = files.List(folder);
  if (content.missing) return {};
  if (!content.error.isEmpty()) {
    return {{}, Lines(u"Die Sicherungen können nicht aufgelistet werden:"_s, folder, content.error)};
  }
  QSet<QString> valueFiles;
  for (const QString& name : content.names) {
    if (HasEnding(name, kValueEnding)) valueFiles.insert(BaseOf(name));
  }
  BackupList list;
  for (const QString& name : content.names) {
    if (!HasEnding(name, kTextEnding)) continue;
    StoredBackup stored = ReadFiles(files, WithSeparator(folder) + BaseOf(name));
    // Other texts may lie in the folder.
    if (stored.error.isEmpty() || valueFiles.contains(BaseOf(name)))
      list.backups.push_back(std::move(stored));
  }
  std::ranges::sort(list.backups, [](const StoredBackup& left, const StoredBackup& right) {
    const QDateTime leftTime = TimeOf(left);
    const QDateTime rightTime = TimeOf(right);
    return leftTime != rightTime ? leftTime > rightTime : left.path > right.path;
  });
  return list;
}

StoredBackup ReadBackup(platform::FileSystem& files, const QString& path) {
  return ReadFiles(files, BaseOf(path));
}

ValueSet BackupValues(const ParameterTable& definitions, const StoredBackup& stored) {
  const Backup& backup = stored.backup;
  ValueSet set{Origin::File, stored.path, backup.head.version, false, true, {}};
  const std::set<NamedWords> names(backup.values.begin(), backup.values.end());
  QHash<QString, int> elements;
  for (int i = 1; i < definitions.ParCount; ++i) {
    const ParameterRecord& record = definitions.Par[i];
    const int element = elements[record.Variable]++;
    if (!names.contains(NameOf(record))) continue;
    if (const std::optional<ParameterValue> value = Decoded(record, backup.words))
      set.values.push_back({record.Variable, record.Typ, record.VarAdresse, element, *value});
  }
  return set;
}

std::vector<StoredBackup> ToSweep(const std::vector<StoredBackup>& backups, const QDateTime& now) {
  const QDateTime oldest = now.addDays(-kKeptDays);
  // The last one of each month and controller.
  using MonthOfController = std::tuple<int, int, QString, QString, int>;
  std::map<MonthOfController, QDateTime> last;
  const auto monthOf = [](const BackupHead& head) {
    return MonthOfController(head.time.date().year(), head.time.date().month(), head.version, head.plantType,
                             head.address);
  };
  const auto isOld = [&oldest](const StoredBackup& stored) {
    return stored.error.isEmpty() && stored.backup.head.time < oldest;
  };
  for (const StoredBackup& stored : backups) {
    if (!isOld(stored)) continue;
    const QDateTime& time = stored.backup.head.time;
    QDateTime& latest = last[monthOf(stored.backup.head)];
    if (!latest.isValid() || latest < time) latest = time;
  }
  std::vector<StoredBackup> swept;
  std::ranges::copy_if(backups, std::back_inserter(swept), [&](const StoredBackup& stored) {
    return isOld(stored) && stored.backup.head.time != last[monthOf(stored.backup.head)];
  });
  return swept;
}

QString Sweep(platform::FileSystem& files, const std::vector<StoredBackup>& backups) {
  QStringList failures;
  for (const StoredBackup& stored : backups) {
    // The text first: without it the rest is a value file and no backup any more.
    for (const QString& ending : {kTextEnding, kValueEnding}) {
      const QString path = BaseOf(stored.path) + ending;
      const QString error = files.Remove(path);
      if (error.isEmpty()) continue;
      failures.append(path + u"\r\n"_s + error);
      break;
    }
  }
  if (failures.isEmpty()) return {};
  return u"Nicht alle Sicherungen konnten entfernt werden:\r\n"_s + failures.join(u"\r\n"_s);
}

SafeStore::SafeStore(platform::FileSystem& files, const SafeWorld& world)
    : files_(files),
      world_(world),
      file_(files, world.stateFolder, u"Sendung.txt"_s,
            {u"Die unterbrochene Sendung vom letzten Mal kann nicht gelesen werden:"_s,
             u"Die Datei mit der unterbrochenen Sendung ist beschädigt und kann nicht benutzt werden:"_s},
            world.take) {}

SafeStore::~SafeStore() = default;

// Finds out which sending and which journal the run belongs to.
void SafeStore::TakeUp(const SafeRun& run) {
  if (sending_ && Continues(run, *sending_)) return;
  if (unfinished_ && Continues(run, *unfinished_)) {
    sending_ = unfinished_;
    file_.Use(unfinishedNumber_);
    return;
  }
  sending_.reset();
  // What is unfinished stays in its journal.
  if (unfinished_ && file_.Number() == unfinishedNumber_) file_.Use(0);
}

BackupHead SafeStore::HeadOf(const Module1& module, const SafeRun& run) const {
  QString port = u"COM%1"_s.arg(module.Schnittstelle);
  const QString device = world_.deviceOfPort ? world_.deviceOfPort(module.Schnittstelle) : QString();
  if (!device.isEmpty()) port += u' ' + device;
  QDateTime time = world_.now();
  time.setTime(QTime(time.time().hour(), time.time().minute(), time.time().second()));
  return {time, run.version,          module.PlantTypeList.SelectedText(), run.plant, module.Adresse,
          port, world_.programVersion};
}

QString SafeStore::KeepBackup(const Module1& module, const BackupHead& head, SafeRun& run) {
  const QString folder = BackupFolder(module);
  const platform::FolderContent content = files_.List(folder);
  if (!content.error.isEmpty() && !content.missing) return Lines(kNoBackup, folder, content.error);
  const QString name = FileNameOf(head.time.toString(kTimeInName) + u' ' + head.version);
  // Programs that save a backup in the same second have different journals, so they never try the same name.
  int number = file_.Number();
  const auto numbered = [&] { return number == 1 ? name : u"%1 (%2)"_s.arg(name).arg(number); };
  const auto taken = [&](const QString& ending) {
    return content.names.contains(numbered() + ending, Qt::CaseInsensitive);
  };
  while (taken(kValueEnding) || taken(kTextEnding))
    number += OwnFile::kMostPrograms;

  const QString base = WithSeparator(folder) + numbered();
  // The text comes second: it makes a backup of the two.
  const std::pair<QString, QByteArray> both[] = {
      {base + kValueEnding, ValueFileOf(module, run)},
      {base + kTextEnding, ComposeBackup(BackupOf(module, run, head))}};
  for (const auto& [path, bytes] : both) {
    const QString error = files_.Replace(path, bytes);
    if (!error.isEmpty()) return Lines(kNoBackup, path, error);
  }
  run.backup = base + kValueEnding;
  return {};
}

QString SafeStore::BeginJournal(const Module1& module, const BackupHead& head, const SafeRun& run) {
  Sending sending = sending_ ? *sending_ : Sending{head, run.backup, {}, {}, {}, {}};
  if (!AddChosen(sending, module, run))
    return kNoJournal + u"\r\nWas der Regler vorher enthielt, ist nicht bekannt."_s;
  QString error = files_.Replace(file_.Path(), TextOf(sending));
  platform::OpenedLog opened;
  if (error.isEmpty()) {
    opened = files_.OpenLog(file_.Path());
    error = opened.error;
  }
  if (!error.isEmpty()) return Lines(kNoJournal, file_.Path(), error);
  journal_ = std::move(opened.log);
  sending_ = std::move(sending);
  return {};
}

QString SafeStore::Begin(const Module1& module, SafeRun& run) {
  journal_.reset();
  // The run before was thrown out of the middle of its work.
  if (std::exchange(underWay_, false) && !sending_->begun.empty()) LeaveUnfinished();
  TakeUp(run);
  if (world_.stateFolder.isEmpty())
    return kNoJournal + u"\r\nEs gibt keinen Ordner für den Zustand des Programms."_s;
  if (const QString folder = file_.TakeEmpty(); !folder.isEmpty()) return Lines(kNoJournal, folder, {});
  const BackupHead head = HeadOf(module, run);
  QString error = run.backup.isEmpty() ? KeepBackup(module, head, run) : QString();
  if (error.isEmpty()) error = BeginJournal(module, head, run);
  underWay_ = error.isEmpty();
  return error;
}

QString SafeStore::Before(quint16 address) {
  // An append that failed may have left a part of its line.
  if (!journal_) return Lines(kNoJournalAnyMore, file_.Path(), {});
  std::vector<quint16>& begun = sending_->begun;
  if (std::ranges::find(begun, address) != begun.end()) return {};
  const QString error = journal_->Append(ComposeBegun(address));
  if (error.isEmpty()) {
    begun.push_back(address);
    return {};
  }
  journal_.reset();
  return Lines(kNoJournalAnyMore, file_.Path(), error);
}

void SafeStore::LeaveUnfinished() {
  unfinished_ = sending_;
  unfinishedNumber_ = file_.Number();
}

void SafeStore::End(const SafeRun& run) {
  if (!std::exchange(underWay_, false)) return;
  journal_.reset();
  // A run that is to finish a sending, and has not, leaves it as unfinished as it was.
  const bool offered = unfinished_ && file_.Number() == unfinishedNumber_;
  if (run.Unfinished() || (offered && !IsAccounted(run))) {
    LeaveUnfinished();
    return;
  }
  if (offered) unfinished_.reset();
  // Where it cannot be emptied, the next start offers what is done already, which does no harm.
  (void)files_.Replace(file_.Path(), {});
}

QString SafeStore::Load() {
  for (;;) {
    QString told = file_.Load([this](const QByteArray& bytes) {
      unfinished_ = ParseSending(bytes);
      return unfinished_.has_value();
    });
    if (!unfinished_) return told;
    unfinishedNumber_ = file_.Number();
    sending_ = unfinished_;
    if (!unfinished_->begun.empty()) return told;
    // The program ended before the first word: nothing was sent.
    unfinished_.reset();
    sending_.reset();
    if (!files_.Replace(file_.Path(), {}).isEmpty()) return told;
  }
}

QString SafeStore::Forget() {
  if (!unfinished_) return {};
  journal_.reset();
  underWay_ = false;
  file_.Use(unfinishedNumber_);
  const QString error = files_.Replace(file_.Path(), {});
  if (!error.isEmpty())
    return Lines(u"Die unterbrochene Sendung kann nicht verworfen werden:"_s, file_.Path(), error);
  unfinished_.reset();
  sending_.reset();
  return {};
}

}  // namespace kalivor
