// The commands of the file menu.
#pragma once

#include <functional>

#include "core/Core.h"
#include "platform/FileDialogs.h"

namespace kalivor {

/// What the file commands need besides the core.
struct FileCommandContext {
  Core& core;
  platform::FileDialogs& CDlg;
  std::function<void(const QString& path)> showFile;  ///< panel 2 of the status bar
};

/// What dialogs offer as value files.
inline constexpr QStringView kValueFileFilter = u"MERVA Parameterfile (*.qpf)|*.qpf|Alle Dateien (*.*)|*.*";

/// All return at once while an operation is under way.
void mnuFileOpen_Click(const FileCommandContext& context);
void mnuFileSave_Click(const FileCommandContext& context);
void mnuFileSaveAs_Click(const FileCommandContext& context);

/// Forgets the current file; tree and values stay.
void mnuFileClose_Click(const FileCommandContext& context);

/// Opens `path` as the Open command does once the user has chosen it.
bool OpenValueFile(const FileCommandContext& context, const QString& path);

}  // namespace kalivor
