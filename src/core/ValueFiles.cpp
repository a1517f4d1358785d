#include "core/ValueFiles.h"

#include <QHash>
#include <QScopeGuard>

#include "core/Busy.h"
#include "core/Refresh.h"
#include "core/ValueFileFormat.h"

using namespace Qt::StringLiterals;

namespace kalivor {
namespace {

constexpr int kVersionWidth = 30;

void ShowFailure(Core& core, const QString& what, const QString& description) {
  core.box.Show(what + u"\r\n"_s + core.module.Dateiname + u"\r\n"_s + description);
}

// The parameters by their names; the first of a name counts. An old file knows the first 20 characters of a
// name only.
QHash<QString, int> ParametersByName(const Module1& module, bool oldLayout) {
  QHash<QString, int> indices;
  for (int i = module.ParCount - 1; i >= 1; --i) {
    const QString& name = module.Par[i].Variable;
    indices.insert(name, i);
    if (oldLayout) indices.insert(name.left(kOldNameWidth), i);
  }
  return indices;
}

void TakeValues(Module1& module, const ValueFileContent& content) {
  const QHash<QString, int> parameters = ParametersByName(module, content.recordLength == kOldRecord_bytes);
  for (const ValueRecord& stored : content.records) {
    const int index = parameters.value(stored.Variable);
    if (index == 0 || module.ParNode[index] == kFalse) continue;
    module.SetTyped(index, {stored.Wert, stored.WertText}, stored.Typ, ValueSource::Loaded);
  }
}

// Selects a version and reads its definitions. An error leaves the tree of what could be read.
void SwitchTo(Core& core, int position) {
  try {
    core.module.VersionList.Select(position);
    Refresh(core, 4);
  } catch (const RuntimeError&) {
    // The tree must not show parameters that are in the table no more. Where it cannot be built, that is what
    // the user hears of.
    Refresh(core, 2);
    throw;
  }
}

// Makes the selected version the one that the file's values are for. False where there is no way.
bool MatchVersion(Core& core, const QString& version) {
  SelectionList& versions = core.module.VersionList;
  if (version == versions.SelectedText()) return true;
  const int position = versions.Find(version);
  if (position < 0) {
    core.box.Show(u"Unbekannte ReglerVersion: "_s + version.leftJustified(kVersionWidth, u' '));
    return false;
  }
  const WaitingGuard waiting(core);
  const qint16 answer =
      AskChoice(core,
                u"Die Version in der Datei stimmt nicht mit derjenigen auf dem PC überein.\n\r\n\r"
                "Bitte wählen Sie:"_s,
                u"PC (Daten werden konvertiert): "_s + versions.SelectedText(), u"Datei: "_s + version);
  if (answer == kNoAnswer) return false;
  if (answer == 2) SwitchTo(core, position);
  return true;
}

}  // namespace

QByteArray ValueFileImage(const ParameterTable& table, const QString& version) {
  QByteArray image = ComposeRecord(table.ParCount, {}, version, {});
  image.reserve(image.size() * table.ParCount);
  for (int i = 1; i < table.ParCount; ++i) {
    const ParameterRecord& record = table.Par[i];
    image += ComposeRecord(record.Wert, record.WertText, record.Variable, record.Typ.Padded());
  }
  return image;
}

bool WriteValueFile(Core& core) {
  const QString error = core.files.Overwrite(
      core.module.Dateiname, ValueFileImage(core.module, core.module.VersionList.SelectedText()));
  if (!error.isEmpty()) {
    ShowFailure(core, u"Fehler beim schreiben von"_s, error);
    return false;
  }
  core.module.OnSaved.Tell(core.module.Dateiname);
  core.OnDeed.Tell({.kind = DeedKind::Saved, .file = core.module.Dateiname});
  return true;
}

bool ReadValueFile(Core& core) {
  const platform::FileContent file = core.files.Read(core.module.Dateiname, kLargestValueFile_bytes);
  if (!file.Ok()) {
    ShowFailure(core, u"Fehler beim lesen von"_s, file.error);
    Refresh(core, 2);
    return false;
  }
  const ValueFileContent content = ParseValueFile(file.bytes);
  Deed loaded{.kind = DeedKind::Loaded, .aborted = true, .file = core.module.Dateiname};
  const QString selected = core.module.VersionList.SelectedText();
  if (core.OnDeed.Listens()) loaded.before = ValuesOf(core.module);
  if (!MatchVersion(core, content.version)) return false;
  if (core.module.VersionList.SelectedText() != selected) loaded.before.clear();
  const auto tell = qScopeGuard([&] { core.OnDeed.Tell(loaded); });
  TakeValues(core.module, content);
  Refresh(core, 2);
  loaded.aborted = false;
  return true;
}

}  // namespace kalivor
