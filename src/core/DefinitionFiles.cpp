#include "core/DefinitionFiles.h"

#include <QHash>
#include <algorithm>

#include "base/Numbers.h"
#include "base/Paths.h"
#include "base/su.h"
#include "core/ParameterTypes.h"
#include "core/TextFile.h"

using namespace Qt::StringLiterals;

namespace kalivor {
namespace {

constexpr QStringView kNoList = u"-";
constexpr qsizetype kLongestUnwrappedName = 20;

// Takes the columns of a line one after the other.
class Columns {
 public:
  explicit Columns(QStringView line, int skipped = 0) : rest_(line) {
    for (; skipped > 0; --skipped)
      (void)Next();
  }

  // Up to two blanks or the end of the line.
  QStringView Next() {
    // A plain loop: a general search for two characters costs several times as much, a hundred thousand
    // times.
    qsizetype end = 0;
    while (end < rest_.size() && !(rest_[end] == u' ' && end + 1 < rest_.size() && rest_[end + 1] == u' '))
      ++end;
    const QStringView column = rest_.first(end);
    while (end < rest_.size() && rest_[end] == u' ')
      ++end;
    rest_ = rest_.sliced(end);
    return column;
  }

  [[nodiscard]] QStringView Rest() const { return rest_; }

 private:
  QStringView rest_;
};

QString TextUnlessDash(QStringView text) {
  return text == u"-" ? QString() : text.toString();
}

// The byte offset that an index in square brackets at the end of a variable expression stands for.
qint16 OffsetOf(QStringView expression, const FixedText<8>& type) {
  if (!expression.endsWith(u']')) return 0;
  const qsizetype bracket = expression.lastIndexOf(u'[');
  if (bracket < 0) return 0;
  const qint16 index = LeadingInt16(expression.sliced(bracket + 1).chopped(1));
  return ToInt16(qint64{index} * NumberTypeNamed(type.Trimmed()).bytes);
}

// The parameters 1..ParCount, the free slot behind the last included, as far as the table reaches.
int LastTouchedSlot(const ParameterTable& table) {
  return std::min<int>(table.ParCount, kLastParameter);
}

bool IsAddress(QStringView text) {
  return text.size() == 4 || text.size() == 8;
}

// Puts a line of the definition file where it belongs in the table.
void TakeDefinition(ParameterTable& table, QStringView line, int lineNumber, bool hasAddressList) {
  ParameterRecord record = ParseDefinition(line, hasAddressList);
  // Values survive a re-read of the same version: they are those of the slot, also for element 0.
  if (table.ParCount <= kLastParameter) {
    record.Wert = table.Par[table.ParCount].Wert;
    record.WertText = table.Par[table.ParCount].WertText;
  }
  const bool isPlantType = record.Rubrik == u"NoRubrik";
  const int index = isPlantType ? 0 : table.ParCount;
  table.Par[index] = std::move(record);
  table.ParLine[index] = lineNumber;
  if (!isPlantType) table.ParCount = ToInt16(table.ParCount + 1);
}

// Which slots bear which variable name, in table order, so that a long list needs no search per line. The
// names are those in the table, which have to stay as they are.
QMultiHash<QStringView, int> SlotsByName(const ParameterTable& table) {
  QMultiHash<QStringView, int> names;
  // From the end, as a QMultiHash returns the values of a key last in, first out.
  for (int i = LastTouchedSlot(table); i >= 1; --i)
    names.insert(table.Par[i].Variable, i);
  return names;
}

}  // namespace

QString GetField(QStringView line, int n) {
  return Columns(line, n).Next().toString();
}

QString GetRest(QStringView line, int n) {
  return Columns(line, n).Rest().toString();
}

QString AddOffset(const QString& hex, qint32 offset) {
  return su::HexPad(su::HexToNumber(hex) + offset, static_cast<int>(hex.size()));
}

RuntimeError DefinitionError(const RuntimeError& error, const QString& path, int line) {
  QString description = error.Description() + u": "_s + path;
  if (line > 0) description += u", Zeile "_s + QString::number(line);
  return RuntimeError(error.GetKind(), description);
}

ParameterRecord ParseDefinition(QStringView line, bool hasAddressList) {
  Columns columns(line);
  ParameterRecord record;
  record.Rubrik = columns.Next().toString();
  record.Name = columns.Next().toString();
  record.Min = LeadingInt32(columns.Next());
  record.Max = LeadingInt32(columns.Next());
  const QStringView standard = columns.Next();
  record.Einheit = TextUnlessDash(columns.Next());
  record.Zahl1 = LeadingInt16(columns.Next());
  record.Zahl2 = LeadingInt16(columns.Next());
  record.Typ = columns.Next().toString();
  if (TypeOf(record.Typ).kind == ValueKind::Text) {
    record.StandardText = standard.toString();
  } else {
    record.Standard = LeadingInt32(standard);
  }
  const QStringView expression = columns.Next();
  if (hasAddressList) {
    record.Offset = OffsetOf(expression, record.Typ);
  } else {
    record.VarAdresse = expression.toString();
  }
  record.Variable = columns.Next().toString();
  record.Zusatz = columns.Next().toString();
  record.Hilfetext = TextUnlessDash(columns.Rest());
  return record;
}

VersionRecord ParseVersion(QStringView line) {
  Columns columns(line);
  VersionRecord record;
  record.Version = columns.Next().toString();
  record.AdrDatei = columns.Next().toString();
  record.DefDatei = columns.Next().toString();
  record.Anlagen = u' ' + columns.Next().toString();
  record.Kennung = columns.Next().toString();
  return record;
}

QString VersionTablePath(const Settings& settings) {
  return WithSeparator(settings.Inipath) + settings.Inifile;
}

QString DefinitionPath(const Settings& settings, const QString& fileName) {
  return settings.Inipath + SeparatorFor(settings.Inipath) + fileName;
}

bool HasAddressList(const VersionRecord& version) {
  return version.AdrDatei != kNoList;
}

QString ReadFailure(const QString& path, const RuntimeError& error) {
  return u"Fehler beim Lesen von\r\n"_s + path + u"\r\n"_s + error.Description() + u"\r\n"_s;
}

QString VersionTableFailure(const QString& path, const RuntimeError& error) {
  return ReadFailure(path, error) + u"Ueberprüfen Sie die Einstellungen in Optionen -> Dateien\r\n"_s;
}

void ReadVersionTable(VersionTable& table, platform::FileSystem& files, const QString& path) {
  table.VersionCount = 1;
  const TextItems items = ReadItems(files, path);
  table.Versionen.assign(items.items.size() + 2, VersionRecord());
  for (const TextItem& item : items) {
    VersionRecord& row = table.Versionen[static_cast<std::size_t>(table.VersionCount)];
    row = ParseVersion(item.text);
    table.VersionList.Add(row.Version);
    table.VersionCount = ToInt16(table.VersionCount + 1);
  }
}

void ReadDefinitions(ParameterTable& table, platform::FileSystem& files, const QString& path,
                     bool hasAddressList) {
  table.ParCount = 1;
  table.Par[0].Variable.clear();
  table.Par[0].VarAdresse.clear();
  table.ParLine[0] = 0;
  table.ParFile = path;
  int line = 0;
  try {
    const TextItems items = ReadItems(files, path);
    for (const TextItem& item : items) {
      line = item.line;
      TakeDefinition(table, item.text, line, hasAddressList);
    }
  } catch (const RuntimeError& error) {
    // It may show in the box of another file.
    throw DefinitionError(error, path, line);
  }
}

void ReadAddressList(ParameterTable& table, platform::FileSystem& files, const QString& path) {
  const TextItems text = ReadItems(files, path);
  const std::vector<TextItem>& items = text.items;
  const QMultiHash<QStringView, int> slotsOf = SlotsByName(table);
  const auto giveAddress = [&](QStringView name, const QString& address) {
    const auto [first, last] = slotsOf.equal_range(name);
    for (auto slot = first; slot != last; ++slot) {
      ParameterRecord& record = table.Par[*slot];
      record.VarAdresse = record.Offset == 0 ? address : AddOffset(address, record.Offset);
    }
  };
  for (std::size_t i = 0; i < items.size(); ++i) {
    Columns columns(items[i].text);
    const QStringView name = columns.Next();
    const QStringView address = columns.Next();
    if (IsAddress(address)) {
      giveAddress(name, address.toString());
    } else if (name.size() > kLongestUnwrappedName && address.isEmpty()) {
      // A wrapped entry: its address stands first in the next line, which is then examined for itself too.
      if (i + 1 == items.size()) {
        throw RuntimeError(
            RuntimeError::Kind::FileError,
            u"Die Datei endet nach einem umgebrochenen Namen (Zeile %1)."_s.arg(items[i].line));
      }
      const QStringView wrapped = Columns(items[i + 1].text).Next();
      if (IsAddress(wrapped)) giveAddress(name, wrapped.toString());
    }
  }
}

}  // namespace kalivor
