#include "check/DefinitionCheck.h"

#include <QHash>
#include <QRegularExpression>
#include <QStringList>
#include <limits>
#include <optional>

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
  TableCheck(platform::FileSystem& files, const QString& inipath, const QString& inifile) : files_(files) {
    where_.Inipath = WithSeparator(inipath);
    where_.Inifile = inifile;
  }

  std::vector<Finding> Run() {
    const CheckedText table = ReadCheckedText(files_, VersionTablePath(where_), where_.Inifile, findings_);
    if (IsControllerVersion(GetField(table.heading, 0))) {
      TableError(1, u"Die erste Zeile gilt als Überschrift; diese Version wird nicht gelesen."_s);
    }
    if (table.items.items.empty() && !table.torn) TableError(0, u"Die Tabelle enthält keine Version."_s);
    for (const TextItem& item : table.items) {
      if (rows_.size() == kMostVersions) {
        TableError(item.line, u"Mehr als %1 Versionen."_s.arg(kMostVersions));
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
  void TableError(int line, const QString& text) { findings_.Error(where_.Inifile, line, text); }
  void TableWarning(int line, const QString& text) { findings_.Warning(where_.Inifile, line, text); }

  void CheckRow(const TextItem& item) {
    const int columns = ColumnCount(item.text, kVersionColumns + 1);
    if (columns < kVersionColumns) {
      TableError(item.line,
                 u"Nur %1 Spalten statt %2; Spalten trennt man mit zwei Leerzeichen."_s.arg(columns).arg(
                     kVersionColumns));
      return;
    }
    if (columns > kVersionColumns) TableWarning(item.line, u"Hinter der Kennung steht noch etwas."_s);
    Row row{item.line, ParseVersion(item.text), {}};
    CheckVersion(row);
    CheckKennung(GetField(item.text, kVersionColumns - 1).trimmed(), item.line);
    CheckPlants(row);
    rows_.push_back(row);
  }

  void CheckVersion(const Row& row) {
    const QString& version = row.version.Version;
    if (version.size() > kLongestVersion) {
      TableError(row.line, u"Version %1 ist für eine Wertedatei zu lang; sie fasst %2 Zeichen."_s.arg(
                               Quoted(version), QString::number(kLongestVersion)));
    } else if (!IsControllerVersion(version)) {
      TableWarning(row.line, u"Version %1 kann kein Regler melden; gemeint ist etwas wie ABC-012.3."_s.arg(
                                 Quoted(version)));
    }
    const auto known = versions_.constFind(version);
    if (known == versions_.constEnd()) {
      versions_.insert(version, row.line);
    } else {
      TableError(row.line,
                 u"Version %1 steht schon in Zeile %2."_s.arg(Quoted(version), QString::number(*known)));
    }
  }

  void CheckKennung(const QString& kennung, int line) {
    if (kennung.size() != 2) {
      TableError(line, u"Kennung %1 hat nicht zwei Zeichen (Schreiben und Lesen)."_s.arg(Quoted(kennung)));
    } else if (kennung.front() == kennung.back()) {
      TableWarning(line, u"Kennung %1 schreibt und liest mit demselben Zeichen."_s.arg(Quoted(kennung)));
    }
  }

  void CheckPlants(Row& row) {
    row.plants = row.version.Anlagen.split(u' ', Qt::SkipEmptyParts);
    // The list takes a name when a blank follows it.
    const QString dropped = row.plants.takeLast();
    if (dropped != u"-") {
      TableWarning(row.line, u"Die letzte Anlage %1 wird nicht übernommen; dahinter fehlt noch „-“."_s.arg(
                                 Quoted(dropped)));
    }
    // Hostile lines aside, nobody has more plant types than this.
    constexpr qsizetype mostPlants = 100;
    if (row.plants.size() > mostPlants) {
      TableWarning(row.line, u"Mehr als %1 Anlagen."_s.arg(mostPlants));
      row.plants = row.plants.first(mostPlants);
    }
    for (qsizetype i = 0; i < row.plants.size(); ++i) {
      for (qsizetype j = 0; j < row.plants.size(); ++j) {
        if (i == j || !row.plants[j].contains(row.plants[i])) continue;
        if (row.plants[i] != row.plants[j]) {
          TableWarning(row.line,
                       u"Anlage %1 zeigt auch die Parameter von %2, denn ihr Name ist darin enthalten."_s.arg(
                           Quoted(row.plants[i]), Quoted(row.plants[j])));
        } else if (i < j) {
          TableWarning(row.line, u"Anlage %1 steht mehrfach in der Zeile."_s.arg(Quoted(row.plants[i])));
        }
      }
    }
  }

  // Reads a file that the table names; one that cannot be read is the table's fault.
  std::optional<CheckedText> Read(const QString& file, int line, const QString& kind) {
    try {
      return ReadCheckedText(files_, DefinitionPath(where_, file), file, findings_);
    } catch (const RuntimeError& error) {
      TableError(line, u"%1 %2 lässt sich nicht lesen: %3"_s.arg(kind, Quoted(file), error.Description()));
      return std::nullopt;
    }
  }

  void CheckFiles(const Row& row) {
    const QString& file = row.version.DefDatei;
    const QString& list = row.version.AdrDatei;
    if (checked_.contains(file + u'\n' + list)) return;
    checked_.insert(file + u'\n' + list);
    const std::optional<CheckedText> text = Read(file, row.line, u"Definitionsdatei"_s);
    const bool hasAddressList = list != u"-";
    const std::optional<CheckedText> listText =
        hasAddressList ? Read(list, row.line, u"Adressliste"_s) : std::nullopt;
    if (!text) return;
    const CheckedDefinitions definitions = CheckParameters(*text, file, hasAddressList, findings_);
    if (listText) {
      CheckListedAddresses(definitions, file, *listText, list, findings_);
    } else if (!hasAddressList) {
      CheckOwnAddresses(definitions, file, findings_);
    }
    CheckPlantsListed(definitions, file);
    // What stands in a line that was left out is not known.
    if (definitions.complete) plantColumns_.insert(file, definitions.plantColumns);
  }

  // Plants of parameters that no version with these definitions offers.
  void CheckPlantsListed(const CheckedDefinitions& definitions, const QString& file) {
    QSet<QString> listed;
    for (const Row& row : rows_) {
      if (row.version.DefDatei == file) listed.unite(QSet<QString>(row.plants.begin(), row.plants.end()));
    }
    for (const UsedPlant& plant : definitions.plants) {
      if (plant.name == u"-" || listed.contains(plant.name)) continue;
      findings_.Warning(file, plant.line,
                        u"Anlage %1 nennt keine Version mit dieser Datei."_s.arg(Quoted(plant.name)));
    }
  }

  // Plants of a version that none of its parameters has.
  void CheckPlantsUsed(const Row& row) {
    if (findings_.IsFull()) return;
    const auto columns = plantColumns_.constFind(row.version.DefDatei);
    if (columns == plantColumns_.constEnd()) return;
    for (const QString& plant : row.plants) {
      if (columns->filter(plant).isEmpty()) {
        TableWarning(row.line, u"Anlage %1 hat keinen Parameter in %2."_s.arg(Quoted(plant),
                                                                              Quoted(row.version.DefDatei)));
      }
    }
  }

  platform::FileSystem& files_;
  Settings where_;  ///< folder and version table
  Findings findings_;
  std::vector<Row> rows_;
  QHash<QString, int> versions_;              ///< with the line of each
  QSet<QString> checked_;                     ///< pairs of files
  QHash<QString, QStringList> plantColumns_;  ///< by definition file
};

}  // namespace

std::vector<Finding> CheckDefinitions(platform::FileSystem& files, const QString& inipath,
                                      const QString& inifile) {
  return TableCheck(files, inipath, inifile).Run();
}

}  // namespace kalivor
