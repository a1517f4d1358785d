#include "platform/posix/FileErrors.h"

#include <cerrno>

using namespace Qt::StringLiterals;

namespace kalivor::platform {
namespace {

// The sentences that fit reading as well as writing; empty for every other error.
QString DescribeEither(int error) {
  switch (error) {
    case ENOTDIR:
      return u"Ein Teil des Pfades ist kein Ordner."_s;
    case EISDIR:
      return u"Der Pfad ist ein Ordner."_s;
    case ENOTSUP:
      return u"Der Pfad ist keine gewöhnliche Datei."_s;
    case EFBIG:
      return u"Die Datei ist zu groß."_s;
    case EINTR:
      return u"Der Zugriff auf die Datei wurde unterbrochen."_s;
    case ELOOP:
      return u"Zu viele symbolische Verknüpfungen im Pfad."_s;
    case ENAMETOOLONG:
      return u"Der Dateiname ist zu lang."_s;
    case EINVAL:
      return u"Der Dateiname ist ungültig."_s;
    case EMFILE:
    case ENFILE:
      return u"Zu viele geöffnete Dateien."_s;
    case ENOMEM:
      return u"Nicht genügend Arbeitsspeicher."_s;
    case ENODEV:
    case ENXIO:
      return u"Das Gerät ist nicht vorhanden."_s;
    case ETIMEDOUT:
      return u"Zeitüberschreitung beim Zugriff auf die Datei."_s;
    case ESTALE:
      return u"Die Datei auf dem Netzlaufwerk ist nicht mehr gültig."_s;
    case ENOTUNIQ:
      return u"Mehrere Dateien unterscheiden sich nur in der Groß- und Kleinschreibung."_s;
    default:
      return {};
  }
}

}  // namespace

QString DescribeReading(int error) {
  switch (error) {
    case ENOENT:
      return u"Datei nicht gefunden."_s;
    case EACCES:
    case EPERM:
      return u"Keine Berechtigung zum Lesen der Datei."_s;
    case EIO:
      return u"Ein-/Ausgabefehler beim Lesen der Datei."_s;
    default:
      const QString either = DescribeEither(error);
      return either.isEmpty() ? u"Die Datei kann nicht gelesen werden (Systemfehler %1)."_s.arg(error)
                              : either;
  }
}

QString DescribeWriting(int error) {
  switch (error) {
    case ENOENT:
      return u"Der Ordner ist nicht vorhanden."_s;
    case EACCES:
    case EPERM:
      return u"Keine Berechtigung zum Schreiben der Datei."_s;
    case EIO:
      return u"Ein-/Ausgabefehler beim Schreiben der Datei."_s;
    case ENOSPC:
      return u"Auf dem Datenträger ist kein Platz mehr."_s;
    case EDQUOT:
      return u"Der für den Benutzer vorgesehene Platz auf dem Datenträger ist aufgebraucht."_s;
    case EROFS:
      return u"Der Datenträger ist schreibgeschützt."_s;
    case EBUSY:
    case ETXTBSY:
      return u"Die Datei wird gerade von einem anderen Programm benutzt."_s;
    default:
      const QString either = DescribeEither(error);
      return either.isEmpty() ? u"Die Datei kann nicht geschrieben werden (Systemfehler %1)."_s.arg(error)
                              : either;
  }
}

}  // namespace kalivor::platform
