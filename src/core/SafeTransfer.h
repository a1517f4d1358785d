// Reading and writing values so that what is said of them is true: the steps of the safe commands.
#pragma once

#include <QString>
#include <set>
#include <span>
#include <tuple>
#include <vector>

#include "core/ControllerImage.h"
#include "core/Core.h"
#include "core/Progress.h"

namespace kalivor {

/// What is known of a value in the controller.
enum class SafeState {
  NotRead,     ///< "nicht gelesen"
  Equal,       ///< "gleich": read, and what is wanted
  Different,   ///< "verschieden": read, and something else
  Verified,    ///< "geprüft": written, read back as it is wanted, from the controller that was identified
  Deviating,   ///< "abweichend": acknowledged or not to be changed, but something else was read back
  Failed,      ///< "fehlgeschlagen": could not be written
  Unverified,  ///< "nicht geprüft": not written, cut off between two words, or not read back
};
[[nodiscard]] QString SafeStateText(SafeState state);

/// One value of a run.
struct SafeValue {
  int index = 0;                             ///< in Par
  ParameterValue wanted;                     ///< that the controller is to hold: the PC's, a backup's
  std::vector<CodedWord> words;              ///< the same in words, or where it lies when not `sendable`
  bool sendable = true;                      ///< the words are what is wanted
  std::optional<ParameterValue> before;      ///< that the controller held before anything was written
  std::optional<ParameterValue> controller;  ///< that was read last
  SafeState state = SafeState::NotRead;
  QString reason;        ///< in German why it was not read, cannot be sent or was not verified
  bool outside = false;  ///< `wanted` is outside the parameter's limits
  bool chosen = false;   ///< is to be written, or taken over
};

/// What a run is for.
enum class SafeKind { Send, Receive, Verify, Compare, Restore, Finish, TakeBack };

/// One run: what is wanted, and what has become of it so far.
struct SafeRun {
  SafeKind kind = SafeKind::Send;
  std::vector<SafeValue> values;  ///< in the order of the parameters, each once
  QString version;                ///< of the controller
  qint16 plant = 0;               ///< its plant number; 0 where the definitions have none
  ControllerImage before;         ///< every word as it was before anything was written
  ControllerImage now;            ///< every word as it was read last
  std::set<quint16> begun;        ///< words whose writing was begun
  QString backup;                 ///< path of the value file with what was there before; "" before it is made
  QString error;                  ///< in German why the run ended early
  bool aborted = false;           ///< the user ended it

  /// How many values are in this state.
  [[nodiscard]] int Count(SafeState state) const;
  /// How many are chosen.
  [[nodiscard]] int Chosen() const;
  /// Something was written, and not everything that was to be is verified or known to have failed.
  [[nodiscard]] bool Unfinished() const;
};

/// Keeps what is needed to finish a run or take it back, whatever happens to the program.
class SafeKeeper {
 public:
  virtual ~SafeKeeper() = default;

  /// Before the first word is written: keeps a backup (unless the run has one), which `run` then names, and
  /// what is going to be written. Returns "" or in German why that is not possible; nothing is written then.
  [[nodiscard]] virtual QString Begin(const Module1& module, SafeRun& run) = 0;

  /// Before each word that is written. Returns "" or an error, which ends the writing.
  [[nodiscard]] virtual QString Before(quint16 address) = 0;

  /// The run has come to its end.
  virtual void End(const SafeRun& run) = 0;
};

/// The checked parameters with the PC's values. Values that cannot be coded are not sendable, with the
/// reason, and for sending neither are those that want different bits of the same word.
[[nodiscard]] SafeRun WantedOfTable(const Module1& module, SafeKind kind);

/// A value that is wanted, named as in a file.
struct NamedWords {
  QString Variable;
  QString VarAdresse;
  QString Typ;  ///< without trailing blanks

  bool operator==(const NamedWords&) const = default;
  friend bool operator<(const NamedWords& left, const NamedWords& right) {
    return std::tie(left.Variable, left.VarAdresse, left.Typ) <
           std::tie(right.Variable, right.VarAdresse, right.Typ);
  }
};

/// The parameters that `names` stand for, which are to hold what `image` does. Those that the definitions do
/// not have with this address and type are counted in `unknown`, and so are those whose words the image
/// lacks.
[[nodiscard]] SafeRun WantedOfImage(const Module1& module, SafeKind kind, std::span<const NamedWords> names,
                                    const ControllerImage& image, int& unknown);
[[nodiscard]] NamedWords NameOf(const ParameterRecord& record);

/// The run that brings back what was there before `run` wrote: the values of which a word was begun, and
/// those that have changed beside them.
[[nodiscard]] SafeRun WantedBack(const Module1& module, const SafeRun& run);

/// Identifies the controller and reads every word of the run once, and what differs twice. The version has to
/// be the selected one and, except for Compare, the plant type too. Values become Equal, Different or stay
/// NotRead with a reason. The different ones are chosen if they can be sent and the new value is inside its
/// limits; what finishes a sending or takes it back, whatever the limits. Where the controller is another
/// one, does not answer (any more) or the user ends it, `error` or `aborted` says so. The controller is
/// identified again at the end: where it is another one then, nothing was read.
void ReadWords(Core& core, SafeRun& run, ProgressForm& form);

/// Writes the chosen values, but none that was not read or cannot be sent: only words that differ, each read
/// again just before (another value than the one known means that somebody else has changed it: it fails) and
/// told to the keeper. Then every word that was written is read back, with all words of its values and the
/// words beside it that the run knows, and the controller is identified again: values become Verified,
/// Deviating, Failed or Unverified. An abort ends the writing; the reading back goes on, a second abort ends
/// that.
void WriteWords(Core& core, SafeRun& run, SafeKeeper& keeper, ProgressForm& form);

/// "38 geprüft, 1 abweichend, 1 fehlgeschlagen": what has become of the values that were chosen, or before
/// that what was found. Never empty.
[[nodiscard]] QString AccountText(const SafeRun& run);

}  // namespace kalivor
