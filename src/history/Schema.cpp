#include "history/Schema.h"

#include <algorithm>

#include "platform/RuntimeError.h"

using namespace Qt::StringLiterals;

namespace kalivor::history {
namespace {

constexpr QStringView kKey = u"NOT NULL PRIMARY KEY";

// Every plant that was ever named, whatever it is called by now.
constexpr Column kPlant[] = {
    {u"id", ColumnType::Id, kKey}, {u"origin", ColumnType::Id}, {u"moment", ColumnType::Number}};

// What a plant is called: the newest row holds.
constexpr Column kPlantText[] = {
    {u"id", ColumnType::Id, kKey}, {u"plant", ColumnType::Id, u"NOT NULL REFERENCES plant (id)"},
    {u"origin", ColumnType::Id},   {u"moment", ColumnType::Number},
    {u"time", ColumnType::Text},   {u"technician", ColumnType::Text},
    {u"name", ColumnType::Text},   {u"place", ColumnType::Text},
    {u"remark", ColumnType::Text}};

// The image of a value file, by the SHA-256 of it: see SetImage.
constexpr Column kValueSet[] = {{u"id", ColumnType::Bytes, kKey},
                                {u"base", ColumnType::Bytes, u"REFERENCES value_set (id)"},
                                {u"data", ColumnType::Bytes}};

constexpr Column kEntry[] = {{u"id", ColumnType::Id, kKey},
                             {u"origin", ColumnType::Id},
                             {u"moment", ColumnType::Number},
                             {u"time", ColumnType::Text},
                             {u"technician", ColumnType::Text},
                             {u"plant", ColumnType::Id, u"REFERENCES plant (id)"},
                             {u"pc", ColumnType::Text},
                             {u"version", ColumnType::Text},
                             {u"plant_type", ColumnType::Text},
                             {u"address", ColumnType::Number},
                             {u"port", ColumnType::Text},
                             {u"program", ColumnType::Text},
                             {u"kind", ColumnType::Text},
                             {u"outcome", ColumnType::Text},
                             {u"remark", ColumnType::Text},
                             {u"quality", ColumnType::Text},
                             {u"value_set", ColumnType::Bytes, u"REFERENCES value_set (id)"},
                             {u"held", ColumnType::Text},
                             {u"changes", ColumnType::Number}};

constexpr Column kChange[] = {{u"entry", ColumnType::Id, u"NOT NULL REFERENCES entry (id)"},
                              {u"position", ColumnType::Number},
                              {u"number", ColumnType::Number},
                              {u"group_name", ColumnType::Text},
                              {u"name", ColumnType::Text},
                              {u"variable", ColumnType::Text},
                              {u"type", ColumnType::Text},
                              {u"address", ColumnType::Text},
                              {u"unit", ColumnType::Text},
                              {u"before", ColumnType::Text},
                              {u"after", ColumnType::Text},
                              {u"state", ColumnType::Text}};

constexpr Column kRemark[] = {
    {u"id", ColumnType::Id, kKey}, {u"entry", ColumnType::Id, u"NOT NULL REFERENCES entry (id)"},
    {u"origin", ColumnType::Id},   {u"moment", ColumnType::Number},
    {u"time", ColumnType::Text},   {u"technician", ColumnType::Text},
    {u"text", ColumnType::Text}};

// An entry belongs to the plant of the newest row; without one, to the plant that it was made with.
constexpr Column kAssignment[] = {{u"id", ColumnType::Id, kKey},
                                  {u"entry", ColumnType::Id, u"NOT NULL REFERENCES entry (id)"},
                                  {u"plant", ColumnType::Id, u"NOT NULL REFERENCES plant (id)"},
                                  {u"origin", ColumnType::Id},
                                  {u"moment", ColumnType::Number},
                                  {u"time", ColumnType::Text},
                                  {u"technician", ColumnType::Text}};

constexpr TableDescription kTables[] = {{u"plant", kPlant},
                                        {u"plant_text", kPlantText},
                                        {u"value_set", kValueSet},
                                        {u"entry", kEntry},
                                        {u"change", kChange, u"entry, position"},
                                        {u"remark", kRemark},
                                        {u"assignment", kAssignment}};

struct Index {
  QStringView name;
  QStringView columns;
};

constexpr Index kIndexes[] = {
    // The last row of a store.
    {u"entry_origin", u"entry (origin, moment)"},
    {u"plant_text_origin", u"plant_text (origin, moment)"},
    {u"remark_origin", u"remark (origin, moment)"},
    {u"assignment_origin", u"assignment (origin, moment)"},
    // What a controller was last known to hold, without a look at the entries of other plants.
    {u"entry_held", u"entry (version, address, moment, plant, id) WHERE held <> ''"},
    // The last set of a version.
    {u"entry_version", u"entry (version, moment) WHERE value_set IS NOT NULL"},
    // The plant of an entry.
    {u"assignment_entry", u"assignment (entry, moment, id, plant)"},
    // Where a parameter changed.
    {u"change_variable", u"change (variable, entry)"}};

QString TypeName(ColumnType type, Dialect dialect) {
  const bool file = dialect == Dialect::SQLite;
  switch (type) {
    case ColumnType::Id:
      return file ? u"BLOB"_s : u"uuid"_s;
    case ColumnType::Number:
      return file ? u"INTEGER"_s : u"bigint"_s;
    case ColumnType::Text:
      return file ? u"TEXT"_s : u"text"_s;
    case ColumnType::Bytes:
      return file ? u"BLOB"_s : u"bytea"_s;
  }
  return {};
}

QString CreateTable(const TableDescription& table, Dialect dialect) {
  QStringList parts;
  for (const Column& column : table.columns)
    parts << u"%1 %2 %3"_s.arg(column.name, TypeName(column.type, dialect), column.constraint);
  if (!table.key.isEmpty()) parts << u"PRIMARY KEY (%1)"_s.arg(table.key);
  QString statement = u"CREATE TABLE %1 (%2)"_s.arg(table.name, parts.join(u", "_s));
  if (dialect == Dialect::SQLite) {
    statement += u" STRICT"_s;
    // Rows that are always read together lie together.
    if (!table.key.isEmpty()) statement += u", WITHOUT ROWID"_s;
  }
  return statement;
}

}  // namespace

std::span<const TableDescription> Tables() {
  return kTables;
}

const TableDescription& TableNamed(QStringView name) {
  const auto* table = std::ranges::find(kTables, name, &TableDescription::name);
  if (table == std::end(kTables)) throw RuntimeError(RuntimeError::Kind::InvalidArgument);
  return *table;
}

QString ColumnNames(const TableDescription& table) {
  QStringList names;
  for (const Column& column : table.columns)
    names << column.name.toString();
  return names.join(u", "_s);
}

QStringList CreateTables(Dialect dialect) {
  QStringList statements;
  for (const TableDescription& table : kTables)
    statements << CreateTable(table, dialect);
  for (const Index& index : kIndexes)
    statements << u"CREATE INDEX %1 ON %2"_s.arg(index.name, index.columns);
  // On a server the role of its users can do neither.
  if (dialect == Dialect::SQLite)
    for (const TableDescription& table : kTables)
      for (const QStringView change : {u"UPDATE", u"DELETE"})
        statements
            << u"CREATE TRIGGER %1_no_%2 BEFORE %2 ON %1 BEGIN SELECT RAISE(ABORT, 'rows are only added'); "
               "END"_s.arg(table.name, change);
  return statements;
}

}  // namespace kalivor::history
