#include "history/Filter.h"

#include <algorithm>

#include "core/ParameterList.h"
#include "history/Tables.h"

namespace kalivor::history {

std::vector<QString> SearchedTexts(std::span<const Entry> entries, std::span<const Plant> plants,
                                   std::span<const Remark> remarks) {
  QHash<QUuid, QString> ofPlants;
  for (const Plant& plant : plants)
    ofPlants.insert(plant.id, Folded(plant.name + u'\n' + plant.place + u'\n' + plant.remark));
  QHash<QUuid, QString> later;
  for (const Remark& remark : remarks)
    later[remark.entry] += u'\n' + Folded(remark.text);
  std::vector<QString> texts;
  texts.reserve(entries.size());
  for (const Entry& entry : entries) {
    // No word of a search reaches over a line break.
    const QStringList own{KindText(entry.kind), entry.stamp.technician,         entry.pc,   entry.version,
                          entry.plantType,      QString::number(entry.address), entry.port, entry.outcome,
                          entry.remark,         ShownTime(entry.stamp.time)};
    texts.push_back(Folded(own.join(u'\n')) + u'\n' + ofPlants.value(entry.plant) + later.value(entry.id));
  }
  return texts;
}

bool Shows(const EntryFilter& filter, const Entry& entry, const QString& searchedText) {
  if (filter.plant && *filter.plant != entry.plant) return false;
  if (filter.kind && *filter.kind != entry.kind) return false;
  if (!filter.technician.isEmpty() &&
      filter.technician.compare(entry.stamp.technician, Qt::CaseInsensitive) != 0)
    return false;
  if (filter.from.isValid() && entry.stamp.time.date() < filter.from) return false;
  if (filter.to.isValid() && entry.stamp.time.date() > filter.to) return false;
  if (filter.entries && !filter.entries->contains(entry.id)) return false;
  return std::ranges::all_of(filter.words, [&](const QString& word) { return searchedText.contains(word); });
}

}  // namespace kalivor::history
