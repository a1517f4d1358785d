#include "platform/posix/FileErrors.h"

#include <cerrno>
#include <span>

using namespace Qt::StringLiterals;

namespace kalivor::platform {
namespace {

struct Sentence {
  int error = 0;
  QStringView text;
};
using Sentences = std::span<const Sentence>;

// What fits reading as well as writing.
constexpr Sentence kEither[] = {
    {ENOTDIR, u"Ein Teil des Pfades ist kein Ordner."},
    {EISDIR, u"Der Pfad ist ein Ordner."},
    {ENOTSUP, u"Der Pfad ist keine gewöhnliche Datei."},
    {EFBIG, u"Die Datei ist zu groß."},
    {EINTR, u"Der Zugriff auf die Datei wurde unterbrochen."},
    {ELOOP, u"Zu viele symbolische Verknüpfungen im Pfad."},
    {ENAMETOOLONG, u"Der Dateiname ist zu lang."},
    {EINVAL, u"Der Dateiname ist ungültig."},
    {EMFILE, u"Zu viele geöffnete Dateien."},
    {ENFILE, u"Zu viele geöffnete Dateien."},
    {ENOMEM, u"Nicht genügend Arbeitsspeicher."},
    {ENODEV, u"Das Gerät ist nicht vorhanden."},
    {ENXIO, u"Das Gerät ist nicht vorhanden."},
    {ETIMEDOUT, u"Zeitüberschreitung beim Zugriff auf die Datei."},
    {ESTALE, u"Die Datei auf dem Netzlaufwerk ist nicht mehr gültig."},
    {ENOTUNIQ, u"Mehrere Dateien unterscheiden sich nur in der Groß- und Kleinschreibung."},
};

constexpr Sentence kReading[] = {
    {ENOENT, u"Datei nicht gefunden."},
    {EACCES, u"Keine Berechtigung zum Lesen der Datei."},
    {EPERM, u"Keine Berechtigung zum Lesen der Datei."},
    {EIO, u"Ein-/Ausgabefehler beim Lesen der Datei."},
};

constexpr Sentence kWriting[] = {
    {ENOENT, u"Der Ordner ist nicht vorhanden."},
    {EACCES, u"Keine Berechtigung zum Schreiben der Datei."},
    {EPERM, u"Keine Berechtigung zum Schreiben der Datei."},
    {EIO, u"Ein-/Ausgabefehler beim Schreiben der Datei."},
    {ENOSPC, u"Auf dem Datenträger ist kein Platz mehr."},
    {EDQUOT, u"Der für den Benutzer vorgesehene Platz auf dem Datenträger ist aufgebraucht."},
    {EROFS, u"Der Datenträger ist schreibgeschützt."},
    {EBUSY, u"Die Datei wird gerade von einem anderen Programm benutzt."},
    {ETXTBSY, u"Die Datei wird gerade von einem anderen Programm benutzt."},
};

QString Describe(int error, Sentences own, const QString& other) {
  for (const Sentences sentences : {own, Sentences(kEither)}) {
    for (const auto& [number, text] : sentences) {
      if (number == error) return text.toString();
    }
  }
  return other.arg(error);
}

}  // namespace

QString DescribeReading(int error) {
  return Describe(error, kReading, u"Die Datei kann nicht gelesen werden (Systemfehler %1)."_s);
}

QString DescribeWriting(int error) {
  return Describe(error, kWriting, u"Die Datei kann nicht geschrieben werden (Systemfehler %1)."_s);
}

}  // namespace kalivor::platform
