// What changed the table, step by step, so that it can be taken back.
#pragma once

#include <functional>
#include <memory>
#include <vector>

#include "core/Core.h"

namespace kalivor {

/// A value before and after a step.
struct StepValue {
  int index = 0;  ///< in Par
  ParameterValue before;
  ParameterValue after;
  FixedText<8> typBefore;
  FixedText<8> typAfter;
};

/// What the definitions were read by, and the marks that reading them resets.
struct Selected {
  qint16 VersionIndex = 0;
  SelectionList VersionList;
  SelectionList PlantTypeList;
  bool PlantTypeOffered = true;
  TreeState tree;
};

/// A value as a value file holds it, or as the definitions give it.
struct SavedValue {
  ParameterValue value;
  FixedText<8> typ;
};

/// Everything that reading definitions replaces.
struct DefinedTable {
  std::unique_ptr<ParameterTable> table;  // large
  Selected selected;
  std::vector<ParameterValue> lastTaken;  ///< what ChangeLog::Changed compares with
  std::vector<SavedValue> saved;          ///< what ChangeLog::Unsaved compares with
};

/// All that one action of the user changed in the table.
struct ChangeStep {
  QString name;                             ///< for the user: "Empfangen, 312 Werte"
  std::vector<StepValue> values;            ///< empty where the definitions were read anew
  std::unique_ptr<DefinedTable> otherSide;  ///< there: the table as it is on the other side of the step

  [[nodiscard]] qsizetype Size_bytes() const;
};

/// Listens to the parameter table. What the user sets off stands between Begin and End, which may be nested;
/// the outermost pair makes one step of all that differs afterwards, or none; what a file or the controller
/// pads differs for nobody, but belongs to a step that there is. A value that changes outside of
/// them is a step of its own. Steps hold values and types; only where definitions were read anew they hold
/// the whole table, with its marks and the selected version and plant type. Who reads everything anew, the
/// version table as well, or definitions outside of Begin and End, makes all steps useless: they are to be
/// forgotten.
class ChangeLog {
 public:
  /// `module` must outlive it. Nobody else may listen to its table meanwhile.
  explicit ChangeLog(Module1& module);
  ~ChangeLog();
  ChangeLog(const ChangeLog&) = delete;
  ChangeLog& operator=(const ChangeLog&) = delete;

  void Begin();
  void End();
  [[nodiscard]] bool Open() const { return depth_ > 0; }

  std::function<void(ChangeStep step)> OnStep;
  std::function<void()> OnForget;

  /// True while nothing has changed since the outermost Begin: steps may be taken back then.
  [[nodiscard]] bool Rests() const { return recorded_.empty() && !before_ && !forgets_; }

  /// Make the table what it was before the step, or after it; bit by bit, if the steps behind it were taken
  /// back before it. No handler of a list runs; ShowTable() is to follow.
  void Undo(ChangeStep& step);
  void Redo(ChangeStep& step);

  /// True when the value of parameter `index` is another one than what was last loaded, received or read with
  /// the definitions. Blanks at the end of a text are none of it.
  [[nodiscard]] bool Changed(int index) const;

  /// True when the value of parameter `index` is another one than what was last loaded from a value file,
  /// saved to one or read with the definitions. How a text is padded makes no difference.
  [[nodiscard]] bool Unsaved(int index) const;

  /// The value of parameter `index` counts as saved from now on.
  void TakeAsSaved(int index);

  /// How many parameters hold a number outside their limits; 0 as long as nothing was loaded or received.
  [[nodiscard]] int Outside() const;

  /// Another number each time that values, or what Changed() says of them, may have changed.
  [[nodiscard]] int Revision() const { return revision_; }

 private:
  /// What a value was before the step that is under way, and why it was set last.
  struct Recorded {
    int index = 0;
    ParameterValue before;
    FixedText<8> typBefore;
    ValueSource source = ValueSource::Received;
  };

  void Listen(const ValueChange& change);
  void Announce(Rereading rereading);
  void Record(const ValueChange& change);
  void DropRecorded();
  [[nodiscard]] std::unique_ptr<DefinedTable> TableBefore() const;
  [[nodiscard]] ChangeStep StepOfValues();
  [[nodiscard]] ChangeStep StepOfDefinitions();
  void Swap(DefinedTable& other);

  Module1& module_;
  int depth_ = 0;
  int revision_ = 0;
  bool transferred_ = false;  // something was loaded or received
  std::vector<ParameterValue> lastTaken_;
  std::vector<SavedValue> saved_;

  // Since the outermost Begin.
  Selected begun_;
  std::vector<Recorded> recorded_;              // since definitions were last read
  BoundedArray<qint16, kLastParameter> place_;  // in recorded_, from 1; 0: not there
  std::unique_ptr<DefinedTable> before_;        // the definitions were read anew
  bool forgets_ = false;
};

/// Rebuilds the tree, and shows the plant types if they are offered, after steps were taken back or done
/// again.
void ShowTable(Core& core);

}  // namespace kalivor
