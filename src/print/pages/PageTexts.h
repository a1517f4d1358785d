// The texts around the list: header, footer, page number.
#pragma once

#include <QDate>
#include <QLocale>
#include <QString>
#include <functional>
#include <optional>

namespace kalivor::print {

/// "Seite  1 von 3": a blank or minus sign stands in front of the page number. Without a page count its place
/// stays empty.
[[nodiscard]] QString PageText(double page, std::optional<qint16> maxPage);

/// A number with a blank in front unless it is negative.
[[nodiscard]] QString BlankDouble(double number);

/// The system's language; German, as the rest of the program, where the system names none.
[[nodiscard]] QLocale SystemLanguage();

/// "Samstag, 21 November 2026" in that language.
[[nodiscard]] QString DateText(const QDate& date, const QLocale& language);

/// The controller version, and the plant type while its selector is switched on.
[[nodiscard]] QString HeaderText(const QString& version, bool plantSelectorVisible, const QString& plantType);

/// Date, page text and path, three blanks between them.
[[nodiscard]] QString FooterText(const QString& date, const QString& pageText, const QString& path);

/// `path` with its folders replaced by "..." from the left, up to the next separator: "C:\a\b\c" becomes
/// "C:\...\b\c", that "C:\...\c", that "C:\...". Throws RuntimeError (InvalidArgument) for a path that is
/// shorter than 7 characters.
[[nodiscard]] QString ShortenedPath(QString path);

/// The width of a text in centimetres.
using TextWidth = std::function<double(const QString& text)>;

/// The footer with its path shortened until it is at most `room_cm` wide.
/// Throws RuntimeError (InvalidArgument) when it does not fit with the shortest path either.
[[nodiscard]] QString FittedFooter(const QString& date, const QString& pageText, QString path, double room_cm,
                                   const TextWidth& width_cm);

}  // namespace kalivor::print
