// The steps that can be taken back and done again.
#pragma once

#include <QString>
#include <QUndoStack>

#include "core/ChangeLog.h"

namespace kalivor::ui {

/// Keeps the newest steps of a log, as many as fit.
class UndoStack {
 public:
  static constexpr qsizetype kMost_bytes = qsizetype{64} * 1024 * 1024;

  /// Takes the steps of `log`. Both must outlive it.
  UndoStack(Core& core, ChangeLog& log, qsizetype most_bytes = kMost_bytes);
  ~UndoStack();
  UndoStack(const UndoStack&) = delete;
  UndoStack& operator=(const UndoStack&) = delete;

  /// The names of the steps at hand, "" where there is none.
  [[nodiscard]] QString UndoName() const { return stack_.undoText(); }
  [[nodiscard]] QString RedoName() const { return stack_.redoText(); }

  /// Take the last step back, or do it again, and show the table; open editors are closed first. Nothing
  /// happens without such a step, while an operation is under way, and inside of what may become a step.
  void Undo();
  void Redo();

 private:
  void Add(ChangeStep step);
  void DropOldest();
  [[nodiscard]] bool MayMove() const;

  Core& core_;
  ChangeLog& log_;
  qsizetype most_bytes_;
  QUndoStack stack_;
};

}  // namespace kalivor::ui
