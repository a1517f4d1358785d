// The text of an INI file: sections, keys, and values that are texts and nothing else.
#pragma once

#include <QByteArray>
#include <QSettings>

namespace kalivor::platform {

/// Reads lines of "key=value" in UTF-8: texts by "section/key"; a key in front of the first section stands
/// alone. A value may stand in quotes, which keep the blanks at its ends, and hold escapes as in a C string:
/// control characters by their letter, codes in hexadecimal or octal, quote and backslash; any other
/// character behind a backslash is left out. "@@" at its beginning stands for "@", and "@String(text)" for
/// the text. The last value of a key counts. Never fails: lines that are something else, and sections and
/// keys of other characters than A-Z a-z 0-9 _ - . % and the backslash, are left out.
[[nodiscard]] QSettings::SettingsMap ReadIni(QByteArrayView bytes);

/// The file that ReadIni() reads as `values`.
[[nodiscard]] QByteArray WriteIni(const QSettings::SettingsMap& values);

}  // namespace kalivor::platform
