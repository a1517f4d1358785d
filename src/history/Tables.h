// Entries of the history and their changed values as tables that leave the program.
#pragma once

#include <span>

#include "core/ListTable.h"
#include "history/Entry.h"

namespace kalivor::history {

/// "04.03.2026 05:06:07", as the clock showed it where the entry was made.
[[nodiscard]] QString ShownTime(const QDateTime& time);

/// By its id; "" for one that is not there, and for the null one.
[[nodiscard]] QString PlantName(std::span<const Plant> plants, const QUuid& id);

/// The entry's own remark and what was said of it later, which begins with who said it when: a line each.
[[nodiscard]] QString RemarksText(const Entry& entry, std::span<const Remark> remarks);

/// A row for each entry, in their order: Zeit, Anlage, Art, Techniker, Version, Anlageart, Adresse, Ergebnis,
/// Geändert, Bemerkung, PC, Schnittstelle, Leitung, Programm, Eintrag. Nothing stands above it.
[[nodiscard]] ListTable EntriesTable(std::span<const Entry> entries, std::span<const Plant> plants,
                                     std::span<const Remark> remarks);

/// A row for each changed value: Nr, Gruppe, Name, Variable, Vorher, Nachher, Einheit, Zustand, Adresse, Typ;
/// above it what there is to say of the entry, a line each: what is empty has none.
[[nodiscard]] ListTable ChangesTable(const Entry& entry, std::span<const Plant> plants,
                                     std::span<const Change> changes, std::span<const Remark> remarks);

}  // namespace kalivor::history
