// What a customer is told of a visit: found and left values, changes, remarks.
#pragma once

#include <QString>
#include <vector>

#include "history/Entry.h"
#include "history/ServiceTemplate.h"

namespace kalivor::history {

/// An entry with what belongs to it.
struct ServiceEntry {
  Entry entry;
  std::vector<Change> changes;  ///< by parameter
  std::vector<Remark> remarks;  ///< by time
};

/// The entries that a report is about.
struct ServiceVisit {
  Plant plant;
  std::vector<ServiceEntry> entries;  ///< in any order
};

/// What stands on the report beside what was done.
struct ServiceTexts {
  QString title;
  QString remark;        ///< of this report
  QString letterhead;    ///< lines
  QString picture;       ///< address by which the page shows the letterhead's picture; "": there is none
  int pictureWidth = 0;  ///< in pixels of 1/96 inch
  int pictureHeight = 0;
};

/// The value of a parameter before a visit and after it.
struct FoundAndLeft {
  QString controller;  ///< version and address
  Change parameter;    ///< which one it is
  QString found;       ///< "": not known
  QString left;
  QString state;  ///< of the last one: "" or "geprüft", or why it may be another
};

/// Of each parameter that the visit has something to say of, in the order in which it came up. Counts what
/// was exchanged with controllers alone. A value that was read first is the one that was found, whatever was
/// known before the visit.
[[nodiscard]] std::vector<FoundAndLeft> FoundAndLeftValues(const ServiceVisit& visit);

/// The names that a template may use.
[[nodiscard]] const TemplateScope& ServiceScope();

/// The values of these names.
[[nodiscard]] TemplateRow ServiceValues(const ServiceVisit& visit, const ServiceTexts& texts);

/// The template that is used where no other is chosen, in UTF-8.
[[nodiscard]] QByteArray BuiltInServiceTemplate();

}  // namespace kalivor::history
