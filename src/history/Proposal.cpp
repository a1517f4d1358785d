#include "history/Proposal.h"

#include <QSet>
#include <algorithm>
#include <optional>

#include "core/ParameterList.h"
#include "core/ParameterTypes.h"
#include "history/Tables.h"

using namespace Qt::StringLiterals;

namespace kalivor::history {
namespace {

QString NameIn(const QString& text) {
  return Folded(text).simplified();
}

bool IsSuch(const Entry& entry, const SeenController& controller) {
  return !entry.held.isEmpty() && entry.version == controller.version && entry.address == controller.address;
}

QUuid NamedPlant(const SeenController& controller, const KnownPlants& known) {
  const QString name = NameIn(NameAmong(controller.texts, known.nameParameter));
  if (name.isEmpty()) return {};
  QUuid named;
  for (const Plant& plant : known.plants) {
    if (NameIn(plant.name) != name) continue;
    if (!named.isNull()) return {};
    named = plant.id;
  }
  return named;
}

/// How many texts agree; nothing where one does not. Texts that are empty at both tell nothing.
std::optional<int> Agreement(const Texts& left, const Texts& right) {
  int agreeing = 0;
  for (auto text = left.cbegin(); text != left.cend(); ++text) {
    const auto other = right.constFind(text.key());
    if (other == right.cend() || (text->isEmpty() && other->isEmpty())) continue;
    if (*other != *text) return std::nullopt;
    ++agreeing;
  }
  return agreeing;
}

}  // namespace

Texts TextsOf(const ValueSet& set) {
  Texts texts;
  for (const SetValue& value : set.values)
    if (value.read && TypeOf(value.Typ).kind == ValueKind::Text)
      texts.insert({value.Variable, value.element}, value.value.text.trimmed());
  return texts;
}

QString NameAmong(const Texts& texts, const QString& nameParameter) {
  return nameParameter.isEmpty() ? QString() : texts.value({nameParameter, 0});
}

QUuid ProposedPlant(const SeenController& controller, const KnownPlants& known) {
  const QUuid named = NamedPlant(controller, known);
  if (!named.isNull()) return named;
  QSet<QUuid> looked;
  QUuid best;
  int most = -1;
  for (const Entry& entry : known.entries) {
    if (entry.plant.isNull() || !IsSuch(entry, controller) || looked.contains(entry.plant)) continue;
    looked.insert(entry.plant);
    const std::optional<int> agreeing = Agreement(controller.texts, known.textsOf(entry));
    if (!agreeing || *agreeing < most) continue;
    best = *agreeing > most ? entry.plant : QUuid();
    most = *agreeing;
  }
  return best;
}

QString PlantDoubt(const QUuid& chosen, const SeenController& controller, const KnownPlants& known) {
  if (chosen.isNull()) return {};
  const QString name = PlantName(known.plants, chosen);
  const QUuid proposed = ProposedPlant(controller, known);
  if (proposed == chosen) return {};
  if (!proposed.isNull())
    return u"Der Regler passt nicht zur gewählten Anlage „%1“, sondern zu „%2“."_s.arg(
        name, PlantName(known.plants, proposed));
  const auto ofPlant = [&chosen](const Entry& entry) {
    return entry.plant == chosen && !entry.held.isEmpty();
  };
  const bool unseen = std::ranges::any_of(known.entries, ofPlant) &&
                      std::ranges::none_of(known.entries, [&](const Entry& entry) {
                        return ofPlant(entry) && IsSuch(entry, controller);
                      });
  if (!unseen) return {};
  return u"Der Regler ist in der gewählten Anlage „%1“ neu: Version %2 mit der Geräteadresse %3 war dort "
         u"noch "
         "nicht."_s.arg(name, controller.version, QString::number(controller.address));
}

}  // namespace kalivor::history
