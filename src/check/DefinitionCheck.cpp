#include "check/DefinitionCheck.h"

#include <QRegularExpression>
#include <QStringList>
#include <algorithm>
#include <limits>
#include <map>
#include <optional>
#include <set>

#include "base/Paths.h"
#include "check/CheckAddresses.h"
#include "core/DefinitionFiles.h"

using namespace Qt::StringLiterals;

namespace kalivor {
namespace {

constexpr int kVersionColumns = 5;
// Value files hold 30 characters of it, and the last one must stay blank.
constexpr int kLongestVersion = 29;
constexpr int kMostVersions = std::numeric_limits<qint16>::max() - 1;

// One line of the version table that has enough columns.
struct Row {
  int line = 0;
  VersionRecord version;
  QStringList plants;  ///< those that the plant-type list will show
};

// Four characters, the last or a further one "-", and a number with one decimal.
bool IsControllerVersion(const QString& version) {
  static const QRegularExpression form(u"^(?:...-|...[^-]-)[0-9]{3}\\.[0-9]$"_s);
  return form.match(version).hasMatch();
}

class TableCheck {
 public:
  TableCheck(platform::FileSystem& files, const QString& inipath, const QString& inifile)
      : files_(files), table_(findings_, inifile) {
    where_.Inipath = WithSeparator(inipath);
    where_.Inifile = inifile;
  }

  std::vector<Finding> Run() {
    const CheckedText table = ReadCheckedText(files_, VersionTablePath(where_), table_);
    if (IsControllerVersion(GetField(table.heading, 0))) {
      table_.Error(1, u"Die erste Zeile gilt als Überschrift; diese Version wird nicht gelesen.");
    }
    if (table.items.items.empty() && !table.torn) table_.Error(0, u"Die Tabelle enthält keine Version.");
    for (const TextItem& item : table.items) {
      if (rows_.size() == kMostVersions) {
        table_.Error(item.line, u"Mehr als %1 Versionen.", kMostVersions);
        break;
      }
      CheckRow(item);
    }
    for (const Row& row : rows_)
      CheckFiles(row);
    for (const Row& row : rows_)
      CheckPlantsUsed(row);
    return findings_.Take(where_.Inifile);
  }

 private:
  void CheckRow(const TextItem& item) {
    const QStringList columns = ColumnsOf(item.text, kVersionColumns + 1);
    if (columns.size() < kVersionColumns) {
      table_.Error(item.line, u"Nur %1 Spalten statt %2; Spalten trennt man mit zwei Leerzeichen.",
                   columns.size(), kVersionColumns);
      return;
    }
    if (columns.size() > kVersionColumns) table_.Warning(item.line, u"Hinter der Kennung steht noch etwas.");
    Row row{item.line, ParseVersion(item.text), {}};
    CheckVersion(row);
    CheckKennung(columns.at(kVersionColumns - 1).trimmed(), item.line);
    CheckPlants(row);
    rows_.push_back(row);
  }

  void CheckVersion(const Row& row) {
    const QString& version = row.version.Version;
    if (version.size() > kLongestVersion) {
      table_.Error(row.line, u"Version %1 ist für eine Wertedatei zu lang; sie fasst %2 Zeichen.", version,
                   kLongestVersion);
    } else if (!IsControllerVersion(version)) {
      table_.Warning(row.line, u"Version %1 kann kein Regler melden; gemeint ist etwas wie ABC-012.3.",
                     version);
    }
    const auto [known, isNew] = versions_.try_emplace(version, row.line);
    if (!isNew) {
      table_.Error(row.line, u"Version %1 steht schon in Zeile %2.", version, known->second);
    }
  }

  void CheckKennung(const QString& kennung, int line) {
    if (kennung.size() != 2) {
      table_.Error(line, u"Kennung %1 hat nicht zwei Zeichen (Schreiben und Lesen).", kennung);
    } else if (kennung.front() == kennung.back()) {
      table_.Warning(line, u"Kennung %1 schreibt und liest mit demselben Zeichen.", kennung);
    }
  }

  void CheckPlants(Row& row) {
    row.plants = row.version.Anlagen.split(u' ', Qt::SkipEmptyParts);
    // The list takes a name when a blank follows it.
    const QString dropped = row.plants.takeLast();
    if (dropped != u"-") {
      table_.Warning(row.line, u"Die letzte Anlage %1 wird nicht übernommen; dahinter fehlt noch „-“.",
                     dropped);
    }
    // Hostile lines aside, nobody has more plant types than this.
    constexpr qsizetype mostPlants = 100;
    if (row.plants.size() > mostPlants) {
      table_.Warning(row.line, u"Mehr als %1 Anlagen.", mostPlants);
      row.plants = row.plants.first(mostPlants);
    }
    for (qsizetype i = 0; i < row.plants.size(); ++i) {
      for (qsizetype j = 0; j < row.plants.size(); ++j) {
        if (i == j || !row.plants[j].contains(row.plants[i])) continue;
        if (row.plants[i] != row.plants[j]) {
          table_.Warning(row.line,
                         u"Anlage %1 zeigt auch die Parameter von %2, denn ihr Name ist darin enthalten.",
                         row.plants[i], row.plants[j]);
        } else if (i < j) {
          table_.Warning(row.line, u"Anlage %1 steht mehrfach in der Zeile.", row.plants[i]);
        }
      }
    }
  }

  // Reads a file that the table names; one that cannot be read is the table's fault.
  std::optional<CheckedText> Read(const QString& file, int line, QStringView kind) {
    try {
      return ReadCheckedText(files_, DefinitionPath(where_, file), FileFindings(findings_, file));
    } catch (const RuntimeError& error) {
      table_.Error(line, u"%1 %2 lässt sich nicht lesen: %3", kind, file, QStringView(error.Description()));
      return std::nullopt;
    }
  }

  void CheckFiles(const Row& row) {
    const QString& file = row.version.DefDatei;
    const QString& list = row.version.AdrDatei;
    if (!checked_.insert({file, list}).second) return;
    const std::optional<CheckedText> text = Read(file, row.line, u"Definitionsdatei");
    const bool hasAddressList = HasAddressList(row.version);
    const std::optional<CheckedText> listText =
        hasAddressList ? Read(list, row.line, u"Adressliste") : std::nullopt;
    if (!text) return;
    const CheckedDefinitions definitions = CheckParameters(*text, hasAddressList);
    if (listText) {
      CheckListedAddresses(definitions, text->findings, *listText);
    } else if (!hasAddressList) {
      CheckOwnAddresses(definitions, text->findings);
    }
    CheckPlantsListed(definitions, text->findings);
    // What stands in a line that was left out is not known.
    if (definitions.complete) plants_[file] = definitions.plants;
  }

  // Plants of parameters that no version with these definitions offers, each once.
  void CheckPlantsListed(const CheckedDefinitions& definitions, const FileFindings& findings) {
    QSet<QString> known{u"-"_s};
    for (const Row& row : rows_) {
      if (row.version.DefDatei != findings.File()) continue;
      known.unite(QSet<QString>(row.plants.begin(), row.plants.end()));
    }
    for (const PlantColumn& column : definitions.plants) {
      for (const QString& plant : column.text.split(u' ', Qt::SkipEmptyParts)) {
        if (known.contains(plant)) continue;
        findings.Warning(column.line, u"Anlage %1 nennt keine Version mit dieser Datei.", plant);
        known.insert(plant);
      }
    }
  }

  // Plants of a version that none of its parameters has.
  void CheckPlantsUsed(const Row& row) {
    const auto columns = plants_.find(row.version.DefDatei);
    if (findings_.IsFull() || columns == plants_.end()) return;
    for (const QString& plant : row.plants) {
      const bool used =
          std::any_of(columns->second.begin(), columns->second.end(),
                      [&plant](const PlantColumn& column) { return column.text.contains(plant); });
      if (used) continue;
      table_.Warning(row.line, u"Anlage %1 hat keinen Parameter in %2.", plant, row.version.DefDatei);
    }
  }

  platform::FileSystem& files_;
  Settings where_;  ///< folder and version table
  Findings findings_;
  FileFindings table_;  ///< those of the version table
  std::vector<Row> rows_;
  std::map<QString, int> versions_;                     ///< with the line of each
  std::set<std::pair<QString, QString>> checked_;       ///< definition files with their address lists
  std::map<QString, std::vector<PlantColumn>> plants_;  ///< by definition file
};

}  // namespace

std::vector<Finding> CheckDefinitions(platform::FileSystem& files, const QString& inipath,
                                      const QString& inifile) {
  return TableCheck(files, inipath, inifile).Run();
}

}  // namespace kalivor
