// What the command lines of the programs have in common: options as "--name value" or "--name=value".
#pragma once

#include <QStringList>
#include <optional>

namespace kalivor {

/// An option without a value.
template <typename Arguments>
struct Switch {
  QStringView name;
  void (*set)(Arguments& arguments) = nullptr;
};

/// An option with a value.
template <typename Arguments>
struct ValueOption {
  QStringView name;
  /// Takes the value over; returns "" or what is wrong with it, in German.
  QString (*take)(Arguments& arguments, const QString& value) = nullptr;
};

/// What a program leaves open.
struct OptionSyntax {
  bool valuesMayLookLikeOptions = false;  ///< what begins with "--" may be a value
  bool unknownAsWritten = false;          ///< a word that fits no option is named with what follows its "="
};

/// A word of the command line that begins an option.
struct OptionWord {
  explicit OptionWord(const QString& word);

  QString name;
  std::optional<QString> value;  ///< what stands behind "="
};

/// What is wrong with the address `value`.
[[nodiscard]] QString NoAddress(const QString& value);

/// What is wrong with an option that may stand only once.
[[nodiscard]] QString Repeated();

/// "Option NAME: COMPLAINT.", or "" without a complaint.
[[nodiscard]] QString OptionFault(const QString& name, const QString& complaint);

/// Reads the option at `at` and moves `at` on to the last word that belongs to it. Returns "" or the fault in
/// German.
template <typename Arguments, typename Switches, typename ValueOptions>
[[nodiscard]] QString TakeOption(const Switches& switches, const ValueOptions& options,
                                 const QStringList& list, qsizetype& at, Arguments& arguments,
                                 OptionSyntax syntax = {}) {
  const QString& written = list.at(at);
  const OptionWord word(written);
  for (const Switch<Arguments>& known : switches) {
    if (known.name != word.name || (word.value && syntax.unknownAsWritten)) continue;
    if (word.value) return QStringLiteral("Option ") + word.name + QStringLiteral(" nimmt keinen Wert.");
    known.set(arguments);
    return {};
  }
  for (const ValueOption<Arguments>& known : options) {
    if (known.name != word.name) continue;
    if (word.value) return OptionFault(word.name, known.take(arguments, *word.value));
    const bool missing = at + 1 == list.size() || (list.at(at + 1).startsWith(QStringLiteral("--")) &&
                                                   !syntax.valuesMayLookLikeOptions);
    if (missing) return OptionFault(word.name, QStringLiteral("Wert fehlt"));
    return OptionFault(word.name, known.take(arguments, list.at(++at)));
  }
  return QStringLiteral("Unbekannte Option: ") + (syntax.unknownAsWritten ? written : word.name);
}

}  // namespace kalivor
