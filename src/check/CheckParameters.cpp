#include "check/CheckParameters.h"

#include <QRegularExpression>
#include <algorithm>
#include <cmath>
#include <limits>
#include <optional>
#include <unordered_map>
#include <unordered_set>

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
  LineCheck(const QStringList& columns, int line, bool hasAddressList, const FileFindings& findings)
      : columns_(columns), line_(line), hasAddressList_(hasAddressList), findings_(findings) {
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
  template <typename... Values>
  void Error(QStringView text, const Values&... values) {
    findings_.Error(line_, text, values...);
  }

  template <typename... Values>
  void Warning(QStringView text, const Values&... values) {
    findings_.Warning(line_, text, values...);
  }

  [[nodiscard]] bool IsText() const { return type_.kind == ValueKind::Text; }

  // A number that the program would read as something else than what stands there is reported; then, or when
  // it does not fit, there is no result.
  std::optional<qint32> Number(Column column, QStringView label, NumberRange range) {
    const QString& text = columns_[column];
    if (IsText() && text == u"-") return 0;
    double number = 0;
    try {
      number = LeadingNumber(text);
    } catch (const RuntimeError&) {
      Error(u"%1 %2 ist zu groß.", label, text);
      return std::nullopt;
    }
    QString dense = text;
    dense.remove(u' ');
    if (!NumberForm().match(dense).hasMatch()) {
      Error(u"%1 %2 ist keine Zahl; gelesen wird %3.", label, text, number);
      return std::nullopt;
    }
    const double rounded = std::nearbyint(number);
    if (rounded < range.lowest || rounded > range.highest) {
      Error(u"%1 %2 liegt außerhalb von %3 bis %4.", label, text, range.lowest, range.highest);
      return std::nullopt;
    }
    if (rounded != number) {
      Warning(u"%1 %2 ist keine ganze Zahl; gelesen wird %3.", label, text, rounded);
    }
    return static_cast<qint32>(rounded);
  }

  void CheckTexts() {
    if (columns_[kName].size() > kLongestName) {
      Warning(u"Name %1 hat mehr als %2 Zeichen; die Spalten dahinter verschieben sich.", columns_[kName],
              kLongestName);
    }
    if (columns_[kEinheit].size() > kLongestUnit) {
      Warning(u"Einheit %1 hat mehr als %2 Zeichen und wird gekürzt.", columns_[kEinheit], kLongestUnit);
    }
    if (columns_[kVariable].size() > kLongestVariable) {
      Error(u"Variable %1 hat mehr als %2 Zeichen; ihr Wert kommt aus keiner Wertedatei zurück.",
            columns_[kVariable], kLongestVariable);
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
      Error(u"Typ %1 ist unbekannt; möglich sind long, int, char und string mit einer Länge.", type);
    }
    if (result_.isPlantType && type != u"int") {
      Warning(u"Die Anlagennummer wird immer als ganzes Wort übertragen; ihr Typ muss int sein.");
    }
  }

  void CheckStringType() {
    const QString& type = columns_[kTyp];
    static const QRegularExpression form(u"^string([0-9]{1,2})$"_s);
    const QRegularExpressionMatch match = form.match(type);
    const int length = match.captured(1).toInt();
    if (length == 0) {
      Error(u"Typ %1 hat keine gültige Länge; gemeint ist etwas wie string20.", type);
      return;
    }
    if (length > kLongestText) {
      Error(u"Typ %1 ist für eine Wertedatei zu lang; sie fasst %2 Zeichen.", type, kLongestText);
    }
    if (length % 2 != 0) {
      Warning(u"Typ %1 hat eine ungerade Länge; das letzte Zeichen wird nicht übertragen.", type);
    }
    result_.size = length - length % 2;
    textLength_ = length;
  }

  void CheckDigits() {
    const std::optional<qint32> decimals = Number(kZahl1, u"Zahl1", kRangeOf<qint16>);
    const std::optional<qint32> dropped = Number(kZahl2, u"Zahl2", kRangeOf<qint16>);
    if (!decimals || !dropped) return;
    if (*decimals < 0 || *dropped < 0) Warning(u"Zahl1 und Zahl2 sollen nicht negativ sein.");
    if (*decimals + std::max(0, *dropped) > kMostDigits) {
      Error(u"Zahl1 und Zahl2 ergeben zusammen mehr als %1.", kMostDigits);
    }
  }

  void CheckStandardText() {
    // Not used, but read all the same, and a number that does not fit stops the program.
    static_cast<void>(Number(kMin, u"Min", type_.limits));
    static_cast<void>(Number(kMax, u"Max", type_.limits));
    if (textLength_ > 0 && columns_[kStandard].size() > textLength_) {
      Error(u"Standard %1 ist länger als %2 Zeichen.", columns_[kStandard], textLength_);
    }
  }

  void CheckValues() {
    // A char is looked at more closely when its address is known.
    const std::optional<qint32> min = Number(kMin, u"Min", type_.limits);
    const std::optional<qint32> max = Number(kMax, u"Max", type_.limits);
    std::optional<qint32> standard;
    if (columns_[kStandard] == u"-") {
      Error(u"Standard fehlt; gelesen wird 0.");
    } else {
      standard = Number(kStandard, u"Standard", type_.limits);
    }
    for (const std::optional<qint32>& value : {min, max, standard}) {
      result_.lowest = std::min(result_.lowest, value.value_or(0));
      result_.highest = std::max(result_.highest, value.value_or(0));
    }
    if (type_.losesSign && result_.lowest < 0) {
      Warning(u"Negative Werte vom Typ %1 kommen beim Regler verfälscht an.", type_.name);
    }
    if (!min || !max) return;
    if (*min > *max) {
      Error(u"Min %1 ist größer als Max %2.", *min, *max);
    } else if (standard && (*standard < *min || *standard > *max)) {
      Error(u"Standard %1 liegt nicht zwischen Min %2 und Max %3.", *standard, *min, *max);
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
      Error(u"%1 hat keinen gültigen Index.", expression);
    } else if (IsText()) {
      Warning(u"Der Index in %1 bleibt bei Texten unbeachtet.", expression);
    } else if (qint64{element} * std::max(1, result_.size) > std::numeric_limits<qint16>::max()) {
      Error(u"Der Index in %1 ist zu groß.", expression);
    } else {
      result_.offset = element * result_.size;
    }
  }

  const QStringList& columns_;
  const int line_;
  const bool hasAddressList_;
  const FileFindings& findings_;
  ParameterType type_;  // Unknown where the column names none
  int textLength_ = 0;
  CheckedParameter result_;
};

// What concerns several lines of a file.
class FileCheck {
 public:
  FileCheck(const CheckedText& text, bool hasAddressList)
      : text_(text), hasAddressList_(hasAddressList), findings_(text.findings) {}

  CheckedDefinitions Run() {
    CheckHeading();
    if (text_.items.items.empty() && !text_.torn) {
      findings_.Warning(0, u"Die Datei enthält keine Parameter.");
    }
    for (const TextItem& item : text_.items) {
      if (!Check(item)) break;
    }
    result_.complete = result_.complete && !text_.torn;
    return std::move(result_);
  }

 private:
  void CheckHeading() {
    const QString type = GetField(text_.heading, kTyp);
    if (NumberTypeNamed(type).kind == ValueKind::Number || type.startsWith(u"string")) {
      findings_.Error(1, u"Die erste Zeile gilt als Überschrift; dieser Parameter wird nicht gelesen.");
    }
  }

  // False when the program would read no further.
  bool Check(const TextItem& item) {
    const QStringList columns = ColumnsOf(item.text, kColumns);
    const bool isPlantType = columns.value(kRubrik) == u"NoRubrik";
    if (!isPlantType && ++count_ > kLastParameter) {
      findings_.Error(item.line, u"Mehr als %1 Parameter.", kLastParameter);
      return false;
    }
    if (isPlantType) CheckPlantType(item.line);
    if (columns.size() < kColumns) {
      result_.complete = false;
      findings_.Error(item.line,
                      u"Nur %1 Spalten statt %2; Spalten trennt man mit zwei Leerzeichen, leere füllt „-“.",
                      columns.size(), kColumns);
      return true;
    }
    result_.parameters.push_back(LineCheck(columns, item.line, hasAddressList_, findings_).Run());
    if (!isPlantType) CheckDuplicate(result_.parameters.back());
    const QString& plants = columns.at(kZusatz);
    if (plants_.insert(plants).second) result_.plants.push_back({plants, item.line});
    return true;
  }

  void CheckPlantType(int line) {
    if (plantTypeLine_ != 0) {
      findings_.Error(line, u"Zweite Zeile mit NoRubrik; sie ersetzt Zeile %1.", plantTypeLine_);
    }
    if (hasAddressList_) {
      findings_.Warning(
          line, u"NoRubrik bleibt wirkungslos: mit einer Adressliste erhält diese Zeile keine Adresse.");
    }
    plantTypeLine_ = line;
  }

  void CheckDuplicate(const CheckedParameter& parameter) {
    const auto [known, isNew] = variables_.try_emplace(parameter.variable, parameter.line);
    if (isNew) return;
    findings_.Warning(parameter.line,
                      u"Variable %1 steht schon in Zeile %2; Wertedateien unterscheiden die beiden nicht.",
                      parameter.variable, known->second);
  }

  const CheckedText& text_;
  const bool hasAddressList_;
  const FileFindings& findings_;
  int count_ = 0;
  int plantTypeLine_ = 0;
  std::unordered_map<QString, int> variables_;  // with the line of each
  std::unordered_set<QString> plants_;
  CheckedDefinitions result_;
};

}  // namespace

CheckedDefinitions CheckParameters(const CheckedText& text, bool hasAddressList) {
  return FileCheck(text, hasAddressList).Run();
}

}  // namespace kalivor
