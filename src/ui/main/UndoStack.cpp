#include "ui/main/UndoStack.h"

#include <QUndoCommand>
#include <deque>
#include <memory>

namespace kalivor::ui {
namespace {

// What it does to the table cannot fail, as no exception may enter the toolkit.
class StepCommand final : public QUndoCommand {
 public:
  StepCommand(ChangeLog& log, std::shared_ptr<ChangeStep> theStep)
      : QUndoCommand(theStep->name), step(std::move(theStep)), log_(log) {}

  void undo() override { log_.Undo(*step); }

  // The stack does what it gets; the user has done it by then.
  void redo() override {
    if (done_) log_.Redo(*step);
    done_ = true;
  }

  const std::shared_ptr<ChangeStep> step;

 private:
  ChangeLog& log_;
  bool done_ = false;
};

}  // namespace

UndoStack::UndoStack(Core& core, ChangeLog& log, qsizetype most_bytes)
    : core_(core), log_(log), most_bytes_(most_bytes) {
  log_.OnStep = [this](ChangeStep step) { Add(std::move(step)); };
  log_.OnForget = [this] { stack_.clear(); };
}

UndoStack::~UndoStack() {
  log_.OnStep = nullptr;
  log_.OnForget = nullptr;
}

bool UndoStack::MayMove() const {
  return core_.module.BusyDepth == 0 && log_.Rests();
}

void UndoStack::Undo() {
  if (!MayMove() || !stack_.canUndo()) return;
  core_.editors.HideEditors();
  stack_.undo();
  ShowTable(core_);
}

void UndoStack::Redo() {
  if (!MayMove() || !stack_.canRedo()) return;
  core_.editors.HideEditors();
  stack_.redo();
  ShowTable(core_);
}

void UndoStack::Add(ChangeStep step) {
  stack_.push(new StepCommand(log_, std::make_shared<ChangeStep>(std::move(step))));
  DropOldest();
}

// The toolkit's stack has a limit for the number of steps alone. Nothing can be done again at this moment.
void UndoStack::DropOldest() {
  std::deque<std::shared_ptr<ChangeStep>> kept;
  qsizetype size = 0;
  for (int i = stack_.count() - 1; i >= 0; --i) {
    const auto& command = static_cast<const StepCommand&>(*stack_.command(i));
    size += command.step->Size_bytes();
    if (size > most_bytes_) break;
    kept.push_front(command.step);
  }
  if (size <= most_bytes_) return;
  stack_.clear();
  for (const auto& step : kept)
    stack_.push(new StepCommand(log_, step));
}

}  // namespace kalivor::ui
