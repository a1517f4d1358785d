#include "check/CheckParameters.h"

#include <QHash>
#include <QRegularExpression>
#include <QSet>
#include <algorithm>
#include <cmath>
#include <limits>
#include <optional>

#include "base/Module1.h"
#include "base/Numbers.h"
#include "core/DefinitionFiles.h"
#include "core/ParameterTypes.h"

using namespace Qt::StringLiterals;

namespace kalivor {
namespace {

// The columns of a definition line.
enum Column {
  kRubrik,
  kName,
  kMin,
  kMax,
  kStandard,
  kEinheit,
  kZahl1,
  kZahl2,
  kTyp,
  kAdresse,
  kVariable,
  kZusatz
};
constexpr int kColumns = 13;

// What value files and the tree hold.
constexpr int kLongestVariable = 30;
constexpr int kLongestText = 20;
constexpr int kLongestName = 50;
constexpr int kLongestUnit = 4;
constexpr int kMostDigits = 9;

// Possessive throughout, so that no text takes long.
const QRegularExpression& NumberForm() {
  static const QRegularExpression form(
      u"^(?:[+-]?(?:\\d++(?:\\.\\d*+)?|\\.\\d++)(?:[eE][+-]?\\d++)?|&[hH][0-9a-fA-F]{1,8})$"_s);
  return form;
}

// One line under check.
class LineCheck {
 public:
  LineCheck(const TextItem& item, const QString& file, bool hasAddressList, Findings& findings)
      : file_(file), hasAddressList_(hasAddressList), line_(item.line), findings_(findings) {
    for (int column = 0; column < kColumns - 1; ++column)
      columns_.append(GetField(item.text, column));
    result_.line = line_;
    result_.name = columns_[kName];
    result_.variable = columns_[kVariable];
    result_.isPlantType = columns_[kRubrik] == u"NoRubrik";
  }

  CheckedParameter Run() {
    CheckTexts();
    CheckType();
    CheckDigits();
    if (IsText()) {
      CheckStandardText();
    } else {
      CheckValues();
    }
    if (!hasAddressList_) {
      result_.address = columns_[kAdresse];
    } else if (!result_.isPlantType) {
      CheckIndex();
    }
    return result_;
  }

 private:
  void Error(const QString& text) { findings_.Error(file_, line_, text); }
  void Warning(const QString& text) { findings_.Warning(file_, line_, text); }
  [[nodiscard]] bool IsText() const { return type_.kind == ValueKind::Text; }

  // A number that the program would read as something else than what stands there is reported; then, or when
  // it does not fit, there is no result.
  std::optional<qint32> Number(Column column, const QString& label, NumberRange range) {
    const QString& text = columns_[column];
    if (IsText() && text == u"-") return 0;
    double number = 0;
    try {
      number = LeadingNumber(text);
    } catch (const RuntimeError&) {
      Error(u"%1 %2 ist zu groß."_s.arg(label, Quoted(text)));
      return std::nullopt;
    }
    QString dense = text;
    dense.remove(u' ');
    if (!NumberForm().match(dense).hasMatch()) {
      Error(u"%1 %2 ist keine Zahl; gelesen wird %3."_s.arg(label, Quoted(text), PlainNumber(number)));
      return std::nullopt;
    }
    const double rounded = std::nearbyint(number);
    if (rounded < range.lowest || rounded > range.highest) {
      Error(u"%1 %2 liegt außerhalb von %3 bis %4."_s.arg(label, Quoted(text), PlainNumber(range.lowest),
                                                          PlainNumber(range.highest)));
      return std::nullopt;
    }
    if (rounded != number) {
      Warning(
          u"%1 %2 ist keine ganze Zahl; gelesen wird %3."_s.arg(label, Quoted(text), PlainNumber(rounded)));
    }
    return static_cast<qint32>(rounded);
  }

  void CheckTexts() {
    if (columns_[kName].size() > kLongestName) {
      Warning(u"Name %1 hat mehr als %2 Zeichen; die Spalten dahinter verschieben sich."_s.arg(
          Quoted(columns_[kName]), QString::number(kLongestName)));
    }
    if (columns_[kEinheit].size() > kLongestUnit) {
      Warning(u"Einheit %1 hat mehr als %2 Zeichen und wird gekürzt."_s.arg(Quoted(columns_[kEinheit]),
                                                                            QString::number(kLongestUnit)));
    }
    if (columns_[kVariable].size() > kLongestVariable) {
      Error(u"Variable %1 hat mehr als %2 Zeichen; ihr Wert kommt aus keiner Wertedatei zurück."_s.arg(
          Quoted(columns_[kVariable]), QString::number(kLongestVariable)));
    }
  }

  void CheckType() {
    const QString& type = columns_[kTyp];
    type_ = TypeOf(type);
    if (!IsText()) type_ = NumberTypeNamed(type);
    result_.size = type_.bytes;
    result_.sharesWord = type_.SharesWord();
    if (IsText()) {
      CheckStringType();
    } else if (type_.kind == ValueKind::Unknown) {
      Error(u"Typ %1 ist unbekannt; möglich sind long, int, char und string mit einer Länge."_s.arg(
          Quoted(type)));
    }
    if (result_.isPlantType && type != u"int") {
      Warning(u"Die Anlagennummer wird immer als ganzes Wort übertragen; ihr Typ muss int sein."_s);
    }
  }

  void CheckStringType() {
    const QString& type = columns_[kTyp];
    static const QRegularExpression form(u"^string([0-9]{1,2})$"_s);
    const QRegularExpressionMatch match = form.match(type);
    const int length = match.captured(1).toInt();
    if (length == 0) {
      Error(u"Typ %1 hat keine gültige Länge; gemeint ist etwas wie string20."_s.arg(Quoted(type)));
      return;
    }
    if (length > kLongestText) {
      Error(u"Typ %1 ist für eine Wertedatei zu lang; sie fasst %2 Zeichen."_s.arg(
          Quoted(type), QString::number(kLongestText)));
    }
    if (length % 2 != 0) {
      Warning(
          u"Typ %1 hat eine ungerade Länge; das letzte Zeichen wird nicht übertragen."_s.arg(Quoted(type)));
    }
    result_.size = length - length % 2;
    textLength_ = length;
  }

  void CheckDigits() {
    const std::optional<qint32> decimals = Number(kZahl1, u"Zahl1"_s, kRangeOf<qint16>);
    const std::optional<qint32> dropped = Number(kZahl2, u"Zahl2"_s, kRangeOf<qint16>);
    if (!decimals || !dropped) return;
    if (*decimals < 0 || *dropped < 0) Warning(u"Zahl1 und Zahl2 sollen nicht negativ sein."_s);
    if (*decimals + std::max(0, *dropped) > kMostDigits) {
      Error(u"Zahl1 und Zahl2 ergeben zusammen mehr als %1."_s.arg(kMostDigits));
    }
  }

  void CheckStandardText() {
    // Not used, but read all the same, and a number that does not fit stops the program.
    static_cast<void>(Number(kMin, u"Min"_s, type_.limits));
    static_cast<void>(Number(kMax, u"Max"_s, type_.limits));
    if (textLength_ > 0 && columns_[kStandard].size() > textLength_) {
      Error(u"Standard %1 ist länger als %2 Zeichen."_s.arg(Quoted(columns_[kStandard]),
                                                            QString::number(textLength_)));
    }
  }

  void CheckValues() {
    // A char is looked at more closely when its address is known.
    const std::optional<qint32> min = Number(kMin, u"Min"_s, type_.limits);
    const std::optional<qint32> max = Number(kMax, u"Max"_s, type_.limits);
    std::optional<qint32> standard;
    if (columns_[kStandard] == u"-") {
      Error(u"Standard fehlt; gelesen wird 0."_s);
    } else {
      standard = Number(kStandard, u"Standard"_s, type_.limits);
    }
    for (const std::optional<qint32>& value : {min, max, standard}) {
      result_.lowest = std::min(result_.lowest, value.value_or(0));
      result_.highest = std::max(result_.highest, value.value_or(0));
    }
    if (type_.losesSign && result_.lowest < 0) {
      Warning(u"Negative Werte vom Typ %1 kommen beim Regler verfälscht an."_s.arg(type_.name));
    }
    if (!min || !max) return;
    if (*min > *max) {
      Error(u"Min %1 ist größer als Max %2."_s.arg(*min).arg(*max));
    } else if (standard && (*standard < *min || *standard > *max)) {
      Error(u"Standard %1 liegt nicht zwischen Min %2 und Max %3."_s.arg(*standard).arg(*min).arg(*max));
    }
  }

  // An index in square brackets at the end of the expression.
  void CheckIndex() {
    const QString& expression = columns_[kAdresse];
    if (!expression.endsWith(u']')) return;
    const qsizetype bracket = expression.lastIndexOf(u'[');
    const QStringView index =
        bracket < 0 ? QStringView() : QStringView(expression).sliced(bracket + 1).chopped(1);
    bool isNumber = false;
    const int element = index.toInt(&isNumber);
    if (!isNumber || element < 0) {
      Error(u"%1 hat keinen gültigen Index."_s.arg(Quoted(expression)));
    } else if (IsText()) {
      Warning(u"Der Index in %1 bleibt bei Texten unbeachtet."_s.arg(Quoted(expression)));
    } else if (element > std::numeric_limits<qint16>::max() ||
               element * result_.size > std::numeric_limits<qint16>::max()) {
      Error(u"Der Index in %1 ist zu groß."_s.arg(Quoted(expression)));
    } else {
      result_.offset = element * result_.size;
    }
  }

  const QString& file_;
  const bool hasAddressList_;
  const int line_;
  Findings& findings_;
  QStringList columns_;
  ParameterType type_;  // Unknown where the column names none
  int textLength_ = 0;
  CheckedParameter result_;
};

// What concerns several lines of a file.
class FileCheck {
 public:
  FileCheck(const QString& file, bool hasAddressList, Findings& findings)
      : file_(file), hasAddressList_(hasAddressList), findings_(findings) {}

  // False when the program would read no further.
  bool Check(const TextItem& item) {
    const bool isPlantType = GetField(item.text, kRubrik) == u"NoRubrik";
    if (!isPlantType && ++count_ > kLastParameter) {
      findings_.Error(file_, item.line, u"Mehr als %1 Parameter."_s.arg(kLastParameter));
      return false;
    }
    if (isPlantType) CheckPlantType(item.line);
    const int columns = ColumnCount(item.text, kColumns);
    if (columns < kColumns) {
      result_.complete = false;
      findings_.Error(
          file_, item.line,
          u"Nur %1 Spalten statt %2; Spalten trennt man mit zwei Leerzeichen, leere füllt „-“."_s.arg(columns)
              .arg(kColumns));
      return true;
    }
    result_.parameters.push_back(LineCheck(item, file_, hasAddressList_, findings_).Run());
    if (!isPlantType) CheckDuplicate(result_.parameters.back());
    NotePlants(GetField(item.text, kZusatz), item.line);
    return true;
  }

  CheckedDefinitions Take() { return std::move(result_); }

 private:
  void CheckPlantType(int line) {
    if (plantTypeLine_ != 0) {
      findings_.Error(file_, line, u"Zweite Zeile mit NoRubrik; sie ersetzt Zeile %1."_s.arg(plantTypeLine_));
    }
    if (hasAddressList_) {
      findings_.Warning(
          file_, line,
          u"NoRubrik bleibt wirkungslos: mit einer Adressliste erhält diese Zeile keine Adresse."_s);
    }
    plantTypeLine_ = line;
  }

  void CheckDuplicate(const CheckedParameter& parameter) {
    const auto known = variables_.constFind(parameter.variable);
    if (known == variables_.constEnd()) {
      variables_.insert(parameter.variable, parameter.line);
    } else {
      findings_.Warning(
          file_, parameter.line,
          u"Variable %1 steht schon in Zeile %2; Wertedateien unterscheiden die beiden nicht."_s.arg(
              Quoted(parameter.variable), QString::number(*known)));
    }
  }

  void NotePlants(const QString& column, int line) {
    if (plantColumns_.contains(column)) return;
    plantColumns_.insert(column);
    result_.plantColumns.append(column);
    for (const QString& name : column.split(u' ', Qt::SkipEmptyParts)) {
      if (plants_.contains(name)) continue;
      plants_.insert(name);
      result_.plants.push_back({name, line});
    }
  }

  const QString& file_;
  const bool hasAddressList_;
  Findings& findings_;
  int count_ = 0;
  int plantTypeLine_ = 0;
  QHash<QString, int> variables_;
  QSet<QString> plantColumns_;
  QSet<QString> plants_;
  CheckedDefinitions result_;
};

void CheckHeading(const QString& heading, const QString& file, Findings& findings) {
  const QString type = GetField(heading, kTyp);
  if (NumberTypeNamed(type).kind == ValueKind::Number || type.startsWith(u"string")) {
    findings.Error(file, 1, u"Die erste Zeile gilt als Überschrift; dieser Parameter wird nicht gelesen."_s);
  }
}

}  // namespace

CheckedDefinitions CheckParameters(const CheckedText& text, const QString& file, bool hasAddressList,
                                   Findings& findings) {
  CheckHeading(text.heading, file, findings);
  if (text.items.items.empty() && !text.torn)
    findings.Warning(file, 0, u"Die Datei enthält keine Parameter."_s);
  FileCheck check(file, hasAddressList, findings);
  for (const TextItem& item : text.items) {
    if (!check.Check(item)) break;
  }
  CheckedDefinitions definitions = check.Take();
  definitions.complete = definitions.complete && !text.torn;
  return definitions;
}

}  // namespace kalivor
