#include "print/pages/PageTexts.h"

#include "base/Numbers.h"
#include "base/Paths.h"
#include "platform/RuntimeError.h"

using namespace Qt::StringLiterals;

namespace kalivor::print {
namespace {

// What a step of shortening replaces: the drive part, "..." and a separator of the path so far.
constexpr qsizetype kReplaced = 7;
constexpr qsizetype kDrivePart = 3;

}  // namespace

QString BlankDouble(double number) {
  const QString digits = PlainNumber(number);
  return number < 0 ? digits : u' ' + digits;
}

QString PageText(double page, std::optional<qint16> maxPage) {
  return u"Seite "_s + BlankDouble(page) + u" von "_s + (maxPage ? QString::number(*maxPage) : QString());
}

QLocale SystemLanguage() {
  const QLocale system = QLocale::system();
  return system.language() == QLocale::C ? QLocale(QLocale::German, QLocale::Germany) : system;
}

QString DateText(const QDate& date, const QLocale& language) {
  return language.toString(date, u"dddd, dd MMMM yyyy");
}

QString HeaderText(const QString& version, bool plantSelectorVisible, const QString& plantType) {
  return plantSelectorVisible ? version + u" Anlagenart: "_s + plantType : version;
}

QString FooterText(const QString& date, const QString& pageText, const QString& path) {
  const QString gap = u"   "_s;
  return date + gap + pageText + gap + path;
}

QString ShortenedPath(QString path) {
  do {
    if (path.size() < kReplaced) throw RuntimeError(RuntimeError::Kind::InvalidArgument);
    path = path.left(kDrivePart) + u"..."_s + path.sliced(kReplaced);
  } while (path.size() >= kReplaced && !IsSeparator(path.at(kReplaced - 1)));
  return path;
}

QString FittedFooter(const QString& date, const QString& pageText, QString path, double room_cm,
                     const TextWidth& width_cm) {
  QString text = FooterText(date, pageText, path);
  while (room_cm < width_cm(text)) {
    path = ShortenedPath(path);
    text = FooterText(date, pageText, path);
  }
  return text;
}

}  // namespace kalivor::print
