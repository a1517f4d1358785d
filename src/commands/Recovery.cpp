#include "commands/Recovery.h"

#include <QHash>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QTimeZone>
#include <algorithm>
#include <cmath>
#include <limits>

#include "core/Busy.h"
#include "core/Refresh.h"

using namespace Qt::StringLiterals;

namespace kalivor {
namespace {

constexpr int kFormat = 1;

const QString kFormatKey = u"Format"_s;
const QString kTimeKey = u"Zeit"_s;
const QString kVersionKey = u"Version"_s;
const QString kPlantTypeKey = u"Anlageart"_s;
const QString kFileKey = u"Wertedatei"_s;
const QString kValuesKey = u"Werte"_s;
const QString kVariableKey = u"Variable"_s;
const QString kTypeKey = u"Typ"_s;
const QString kAddressKey = u"Adresse"_s;
const QString kNumberKey = u"Zahl"_s;
const QString kTextKey = u"Text"_s;
const QString kUnsavedKey = u"Ungespeichert"_s;

// Takes the fields of an object, and keeps in mind whether each was of its type.
class Fields {
 public:
  explicit Fields(const QJsonValue& object) : object_(object), good_(object.isObject()) {}

  // One that may be missing is then `fallback`.
  QString Text(const QString& key, const QJsonValue& fallback = QJsonValue::Undefined) {
    return Take(key, QJsonValue::String, fallback).toString();
  }
  bool Flag(const QString& key) { return Take(key, QJsonValue::Bool, false).toBool(); }
  QJsonArray Array(const QString& key) { return Take(key, QJsonValue::Array).toArray(); }
  qint32 Number(const QString& key, const QJsonValue& fallback = QJsonValue::Undefined) {
    const double number = Take(key, QJsonValue::Double, fallback).toDouble();
    using Limits = std::numeric_limits<qint32>;
    if (number >= Limits::min() && number <= Limits::max() && std::trunc(number) == number)
      return static_cast<qint32>(number);
    good_ = false;
    return 0;
  }

  [[nodiscard]] bool Good() const { return good_; }

 private:
  QJsonValue Take(const QString& key, QJsonValue::Type type,
                  const QJsonValue& fallback = QJsonValue::Undefined) {
    const QJsonValue field = object_[key];
    QJsonValue taken = field.isUndefined() ? fallback : field;
    good_ = good_ && taken.type() == type;
    return taken;
  }

  QJsonValue object_;
  bool good_;
};

QJsonObject ObjectOf(const SetValue& value, bool unsaved) {
  QJsonObject object{{kVariableKey, value.Variable}, {kTypeKey, value.Typ.Trimmed()}};
  if (!value.VarAdresse.isEmpty()) object.insert(kAddressKey, value.VarAdresse);
  if (value.value.number != 0) object.insert(kNumberKey, value.value.number);
  if (!value.value.text.isEmpty()) object.insert(kTextKey, value.value.text);
  if (unsaved) object.insert(kUnsavedKey, true);
  return object;
}

bool TakeValues(const QJsonArray& entries, KeptTable& kept) {
  if (entries.size() > kLastParameter) return false;
  QHash<QString, int> elements;
  for (const auto& entry : entries) {
    Fields fields(entry);
    const QString variable = fields.Text(kVariableKey);
    const SetValue value{variable,
                         FixedText<8>(fields.Text(kTypeKey)),
                         fields.Text(kAddressKey, QString()),
                         elements[variable]++,
                         {fields.Number(kNumberKey, 0), fields.Text(kTextKey, QString())}};
    kept.unsaved.push_back(fields.Flag(kUnsavedKey));
    if (!fields.Good()) return false;
    kept.set.values.push_back(value);
  }
  return kept.UnsavedCount() > 0;
}

QString CountText(int count) {
  return count == 1 ? u"1 Wert"_s : u"%1 Werte"_s.arg(count);
}

// "von gestern 16:40", "vom 12.11.2026 16:40"
QString DayAndTime(const QDateTime& time, const QDateTime& now) {
  const qint64 days = time.date().daysTo(now.date());
  const QString day = days == 0   ? u"von heute"_s
                      : days == 1 ? u"von gestern"_s
                                  : u"vom "_s + time.toString(u"dd.MM.yyyy"_s);
  return day + time.toString(u" HH:mm"_s);
}

// Why version or plant type cannot be selected; "" when they can. Every blank closes a plant type.
QString SelectionFault(const Module1& module, const QString& version, const QString& plantType) {
  const int row = module.VersionList.Find(version);
  if (row < 0) return u"Unbekannte ReglerVersion: "_s + version;
  QStringList plantTypes = module.VersionRow(row + 1).Anlagen.split(u' ');
  plantTypes.removeLast();
  return plantTypes.contains(plantType) ? QString() : u"Unbekannte Anlageart: "_s + plantType;
}

void Select(Core& core, const QString& version, const QString& plantType) {
  Module1& module = core.module;
  try {
    module.VersionList.Select(module.VersionList.Find(version));
    module.PlantTypeList.Select(module.PlantTypeList.Find(plantType));
  } catch (const RuntimeError&) {
    // The tree must not show parameters that are in the table no more.
    Refresh(core, 2);
    throw;
  }
}

// Returns how many do not fit the definitions.
int GiveValues(Module1& module, const KeptTable& kept, const std::function<void(int index)>& saved) {
  int left = 0;
  for (const ComparedValue& row : CompareSets(module, TableValues(module), kept.set)) {
    if (row.right < 0) continue;
    if (row.index == 0 || row.difference == Difference::OtherType) {
      ++left;
      continue;
    }
    const auto at = static_cast<std::size_t>(row.right);
    module.SetValue(row.index, kept.set.values[at].value, ValueSource::Recovered);
    if (!kept.unsaved[at]) saved(row.index);
  }
  return left;
}

}  // namespace

int KeptTable::UnsavedCount() const {
  return static_cast<int>(std::ranges::count(unsaved, true));
}

KeptTable KeptTableOf(const Module1& module, const std::function<bool(int index)>& unsaved,
                      const QDateTime& now) {
  KeptTable kept{now, module.PlantTypeList.SelectedText(), module.Dateiname, TableValues(module), {}};
  for (int i = 1; i < module.ParCount; ++i)
    kept.unsaved.push_back(unsaved(i));
  return kept;
}

std::optional<KeptTable> ParseKeptTable(const QByteArray& bytes) {
  Fields fields(QJsonDocument::fromJson(bytes).object());
  KeptTable kept;
  kept.time = QDateTime::fromString(fields.Text(kTimeKey), Qt::ISODate);
  kept.plantType = fields.Text(kPlantTypeKey);
  kept.valueFile = fields.Text(kFileKey);
  kept.set.name = u"Wiederherstellung"_s;
  kept.set.version = fields.Text(kVersionKey);
  const bool good = fields.Number(kFormatKey) == kFormat && kept.time.isValid() &&
                    TakeValues(fields.Array(kValuesKey), kept) && fields.Good();
  return good ? std::optional(std::move(kept)) : std::nullopt;
}

QByteArray ComposeKeptTable(const KeptTable& kept) {
  QJsonArray values;
  for (std::size_t i = 0; i < kept.set.values.size(); ++i)
    values.append(ObjectOf(kept.set.values[i], kept.unsaved[i]));
  const QDateTime time = kept.time.toOffsetFromUtc(kept.time.offsetFromUtc());
  return QJsonDocument(QJsonObject{{kFormatKey, kFormat},
                                   {kTimeKey, time.toString(Qt::ISODateWithMs)},
                                   {kVersionKey, kept.set.version},
                                   {kPlantTypeKey, kept.plantType},
                                   {kFileKey, kept.valueFile},
                                   {kValuesKey, values}})
      .toJson();
}

QString RecoveryText(const KeptTable& kept, const QDateTime& now) {
  return CountText(kept.UnsavedCount()) + u' ' + DayAndTime(kept.time.toTimeZone(now.timeZone()), now);
}

QString SelectController(Core& core, const QString& version, const QString& plantType) {
  QString fault = SelectionFault(core.module, version, plantType);
  if (!fault.isEmpty()) return fault;
  core.editors.HideEditors();
  Select(core, version, plantType);
  return {};
}

bool RestoreTable(const FileCommandContext& context, const KeptTable& kept,
                  const std::function<void(int index)>& saved) {
  Core& core = context.core;
  const QString fault = SelectController(core, kept.set.version, kept.plantType);
  if (!fault.isEmpty()) {
    core.box.Show(u"Die Werte können nicht wiederhergestellt werden.\r\n"_s + fault);
    return false;
  }
  const int left = GiveValues(core.module, kept, saved);
  core.module.Dateiname = kept.valueFile;
  context.showFile(kept.valueFile);
  Refresh(core, 2);
  if (left > 0) {
    core.box.Show(CountText(left) +
                  (left == 1 ? u" passt nicht zu den Definitionen und wurde"_s
                             : u" passen nicht zu den Definitionen und wurden"_s) +
                  u" nicht wiederhergestellt."_s);
  }
  return true;
}

Recovery::Recovery(platform::FileSystem& files, const RecoveryWorld& world)
    : files_(files),
      works_(!world.folder.isEmpty()),
      file_(files, world.folder, u"Wiederherstellung.json"_s,
            {u"Was beim letzten Mal nicht gespeichert wurde, kann nicht gelesen werden:"_s,
             u"Die Datei mit den nicht gespeicherten Werten ist beschädigt und kann nicht benutzt werden:"_s},
            world.take) {}

QString Recovery::Load() {
  return file_.Load([this](const QByteArray& bytes) {
    offered_ = ParseKeptTable(bytes);
    filled_ = offered_.has_value();
    return filled_;
  });
}

QString Recovery::Keep(const KeptTable& kept, bool ends) {
  const bool unsaved = kept.UnsavedCount() > 0;
  const bool empties = filled_ && (own_ || ends);
  if (!Works() || (!unsaved && !empties)) return {};
  QString error = file_.TakeEmpty();
  if (error.isEmpty()) {
    error = files_.Replace(file_.Path(), unsaved ? ComposeKeptTable(kept) : QByteArray());
    if (error.isEmpty()) {
      filled_ = unsaved;
      own_ = true;
      return {};
    }
    error = file_.Path() + u"\r\n"_s + error;
  }
  if (std::exchange(told_, true)) return {};
  return u"Für den Fall, dass das Programm nicht richtig beendet wird, können nicht gespeicherte Werte nicht "
         "aufgehoben werden:\r\n"_s +
         error;
}

}  // namespace kalivor
