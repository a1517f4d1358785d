// Which plant a controller is likely to belong to.
#pragma once

#include <QHash>
#include <functional>
#include <span>

#include "core/ValueSets.h"
#include "history/Entry.h"

namespace kalivor::history {

/// The texts among values: by variable, and which of its elements it is.
using Texts = QHash<std::pair<QString, int>, QString>;
[[nodiscard]] Texts TextsOf(const ValueSet& set);

/// What a parameter with the plant's name says, given by its variable; "": nothing.
[[nodiscard]] QString NameAmong(const Texts& texts, const QString& nameParameter);

/// What is known of a controller.
struct SeenController {
  QString version;
  int address = 0;
  Texts texts;
};

/// What the history knows.
struct KnownPlants {
  std::span<const Plant> plants;
  std::span<const Entry> entries;                    ///< the newest first
  std::function<Texts(const Entry& entry)> textsOf;  ///< that the controller held
  QString nameParameter;                             ///< variable of the plant's name; "": none
};

/// The plant that the controller says it belongs to: the one whose name is the text of the name's parameter.
/// Otherwise the one whose controller of this version and address was last seen with the same texts: none of
/// those that both know differs, and more of them agree than at any other plant. Null where there is none,
/// or several are as likely.
[[nodiscard]] QUuid ProposedPlant(const SeenController& controller, const KnownPlants& known);

/// In a sentence why the controller seems not to belong to the chosen plant: another one is proposed, or
/// this version and address were never seen there. "" where nothing speaks against it, or none is chosen.
[[nodiscard]] QString PlantDoubt(const QUuid& chosen, const SeenController& controller,
                                 const KnownPlants& known);

}  // namespace kalivor::history
