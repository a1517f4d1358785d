#include "platform/plain/FileError.h"

#include <algorithm>
#include <iterator>

namespace kalivor::platform {
namespace {

struct Sentence {
  FileError error = FileError::Other;
  QStringView text;  // of both, or of reading
  QStringView writing = {};
};

constexpr Sentence kSentences[] = {
    {FileError::NotFound, u"Datei nicht gefunden.", u"Der Ordner ist nicht vorhanden."},
    {FileError::NoPermission, u"Keine Berechtigung zum Lesen der Datei.",
     u"Keine Berechtigung zum Schreiben der Datei."},
    {FileError::InputOutput, u"Ein-/Ausgabefehler beim Lesen der Datei.",
     u"Ein-/Ausgabefehler beim Schreiben der Datei."},
    {FileError::DiskFull, u"Auf dem Datenträger ist kein Platz mehr."},
    {FileError::QuotaExceeded,
     u"Der für den Benutzer vorgesehene Platz auf dem Datenträger ist aufgebraucht."},
    {FileError::WriteProtected, u"Der Datenträger ist schreibgeschützt."},
    {FileError::InUse, u"Die Datei wird gerade von einem anderen Programm benutzt."},
    {FileError::PartIsNoFolder, u"Ein Teil des Pfades ist kein Ordner."},
    {FileError::IsFolder, u"Der Pfad ist ein Ordner."},
    {FileError::NotRegular, u"Der Pfad ist keine gewöhnliche Datei."},
    {FileError::TooLarge, u"Die Datei ist zu groß."},
    {FileError::Interrupted, u"Der Zugriff auf die Datei wurde unterbrochen."},
    {FileError::TooManyLinks, u"Zu viele symbolische Verknüpfungen im Pfad."},
    {FileError::NameTooLong, u"Der Dateiname ist zu lang."},
    {FileError::BadName, u"Der Dateiname ist ungültig."},
    {FileError::TooManyOpenFiles, u"Zu viele geöffnete Dateien."},
    {FileError::NoMemory, u"Nicht genügend Arbeitsspeicher."},
    {FileError::NoDevice, u"Das Gerät ist nicht vorhanden."},
    {FileError::TimedOut, u"Zeitüberschreitung beim Zugriff auf die Datei."},
    {FileError::Stale, u"Die Datei auf dem Netzlaufwerk ist nicht mehr gültig."},
    {FileError::Ambiguous, u"Mehrere Dateien unterscheiden sich nur in der Groß- und Kleinschreibung."},
    {FileError::Other, u"Die Datei kann nicht gelesen werden (Systemfehler %1).",
     u"Die Datei kann nicht geschrieben werden (Systemfehler %1)."},
};

const Sentence& SentenceOf(FileError error) {
  const auto* found = std::ranges::find(kSentences, error, &Sentence::error);
  return found == std::end(kSentences) ? *std::prev(found) : *found;
}

// The number, where the sentence has a place for it.
QString WithNumber(QStringView text, int number) {
  return text.contains(u'%') ? text.toString().arg(number) : text.toString();
}

}  // namespace

QString DescribeReading(FileError error, int number) {
  return WithNumber(SentenceOf(error).text, number);
}

QString DescribeWriting(FileError error, int number) {
  const Sentence& sentence = SentenceOf(error);
  return WithNumber(sentence.writing.isEmpty() ? sentence.text : sentence.writing, number);
}

}  // namespace kalivor::platform
