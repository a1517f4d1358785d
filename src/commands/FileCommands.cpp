#include "commands/FileCommands.h"

#include "base/Paths.h"
#include "core/ValueFiles.h"

using namespace Qt::StringLiterals;

namespace kalivor {
namespace {

bool Busy(const FileCommandContext& context) {
  return context.core.module.BusyDepth > 0;
}

// `path` is the current value file from now on, whether it can be read or not.
void MakeCurrent(const FileCommandContext& context, const QString& path) {
  Module1& module = context.core.module;
  const QString folder = SplitPath(path).folder.chopped(1);
  module.Dateiname = path;
  context.showFile(path);
  module.Userpath = folder;
}

void SaveUnderNewName(const FileCommandContext& context, const QString& title) {
  const QString path = context.CDlg.SaveFile(title, kValueFileFilter.toString());
  if (path.isEmpty()) return;
  MakeCurrent(context, path);
  WriteValueFile(context.core);
}

}  // namespace

bool OpenValueFile(const FileCommandContext& context, const QString& path) {
  MakeCurrent(context, path);
  return ReadValueFile(context.core);
}

void mnuFileOpen_Click(const FileCommandContext& context) {
  if (Busy(context)) return;
  const QString path =
      context.CDlg.OpenFile(u"Öffnen"_s, context.core.module.Userpath, kValueFileFilter.toString());
  if (!path.isEmpty()) OpenValueFile(context, path);
}

void mnuFileSave_Click(const FileCommandContext& context) {
  if (Busy(context)) return;
  if (context.core.module.Dateiname.isEmpty()) {
    SaveUnderNewName(context, u"Speichern"_s);
  } else {
    WriteValueFile(context.core);
  }
}

void mnuFileSaveAs_Click(const FileCommandContext& context) {
  if (!Busy(context)) SaveUnderNewName(context, u"Speichern unter"_s);
}

void mnuFileClose_Click(const FileCommandContext& context) {
  if (Busy(context)) return;
  context.showFile({});
  context.core.module.Dateiname.clear();
}

}  // namespace kalivor
