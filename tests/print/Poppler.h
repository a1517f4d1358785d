// PDF files as an independent program reads them.
#pragma once

#include <gtest/gtest.h>
#include <QDir>
#include <QFile>
#include <QImage>
#include <QLibrary>
#include <QProcess>
#include <QRegularExpression>
#include <QString>
#include <QStringList>
#include <QTemporaryDir>
#include <QThread>
#include <vector>

namespace kalivor::test {

using namespace Qt::StringLiterals;

#ifdef Q_OS_WIN

/// Under Wine the tools are those of the system below it, which has no drives. Nothing tells there when such
/// a program ends and how, and no pipe leads to it: a shell runs it and writes all that into files.
inline QByteArray RunTool(const QString& tool, const QStringList& arguments) {
  const auto unixName =
      reinterpret_cast<char* (*)(const wchar_t*)>(QLibrary(u"kernel32"_s).resolve("wine_get_unix_file_name"));
  if (unixName == nullptr) {
    ADD_FAILURE() << "the tools of poppler-utils are run under Wine only";
    return {};
  }
  const auto quoted = [&](const QString& text) {
    const QString name = QDir::toNativeSeparators(text);
    const bool isFile = QDir::isAbsolutePath(text);
    return u'\'' + (isFile ? QString::fromUtf8(unixName(name.toStdWString().c_str())) : text) + u'\'';
  };
  const QTemporaryDir folder;
  QFile output(folder.filePath(u"output"_s));
  QFile status(folder.filePath(u"status"_s));
  const QString unfinished = quoted(folder.filePath(u"unfinished"_s));
  QString script = tool;
  for (const QString& argument : arguments)
    script += u' ' + quoted(argument);
  script +=
      u" >%1; echo $? >%2; mv %2 %3"_s.arg(quoted(output.fileName()), unfinished, quoted(status.fileName()));
  EXPECT_TRUE(QProcess::startDetached(u"Z:/bin/sh"_s, {u"-c"_s, script}));
  constexpr int kMostWaiting_ms = 30'000;
  constexpr int kStep_ms = 5;
  for (int waited_ms = 0; !status.exists() && waited_ms < kMostWaiting_ms; waited_ms += kStep_ms)
    QThread::msleep(kStep_ms);
  EXPECT_TRUE(status.open(QIODevice::ReadOnly)) << tool.toStdString() << " does not end";
  EXPECT_EQ(status.readAll(), "0\n") << script.toStdString();
  EXPECT_TRUE(output.open(QIODevice::ReadOnly));
  return output.readAll();
}

#else

/// What a tool of poppler-utils writes to its standard output.
inline QByteArray RunTool(const QString& tool, const QStringList& arguments) {
  QProcess process;
  process.start(tool, arguments);
  if (!process.waitForStarted()) {
    ADD_FAILURE() << tool.toStdString() << " is missing; it comes with poppler-utils";
    return {};
  }
  EXPECT_TRUE(process.waitForFinished());
  EXPECT_EQ(process.exitCode(), 0) << process.readAllStandardError().toStdString();
  return process.readAllStandardOutput();
}

#endif

/// A line of pdfinfo, "" when it is missing.
inline QString PdfInfo(const QString& file, const QString& name) {
  const QStringList lines = QString::fromUtf8(RunTool(u"pdfinfo"_s, {file})).split(u'\n');
  for (const QString& line : lines) {
    if (line.startsWith(name + u':')) return line.section(u':', 1).trimmed();
  }
  return {};
}

inline int PdfPages(const QString& file) {
  return PdfInfo(file, u"Pages"_s).toInt();
}

/// The lines of text of a page that are not empty, from top to bottom, without any blanks: a column is told
/// by its place only, for which there may be any number of them.
inline QStringList PdfLines(const QString& file, int page) {
  const QString number = QString::number(page);
  const QByteArray text = RunTool(
      u"pdftotext"_s, {u"-layout"_s, u"-enc"_s, u"UTF-8"_s, u"-f"_s, number, u"-l"_s, number, file, u"-"_s});
  QStringList lines = QString::fromUtf8(text).remove(u' ').remove(u'\f').split(u'\n');
  lines.removeAll(QString());
  return lines;
}

/// PdfLines() of each page of the file.
inline std::vector<QStringList> PdfLinesOfAllPages(const QString& file) {
  const QByteArray text = RunTool(u"pdftotext"_s, {u"-layout"_s, u"-enc"_s, u"UTF-8"_s, file, u"-"_s});
  std::vector<QStringList> pages;
  const QStringList parts = QString::fromUtf8(text).remove(u' ').split(u'\f');
  for (const QString& part : parts) {
    pages.push_back(part.split(u'\n'));
    pages.back().removeAll(QString());
  }
  // Each page ends with a form feed.
  pages.pop_back();
  return pages;
}

/// The fonts of the file, and how many of them it carries itself.
struct PdfFonts {
  int all = 0;
  int embedded = 0;
};

inline PdfFonts FontsOf(const QString& file) {
  static const QRegularExpression embedded(u"\\s+yes\\s+(yes|no)\\s+(yes|no)\\s+\\d+\\s+\\d+$"_s);
  PdfFonts fonts;
  const QStringList lines = QString::fromUtf8(RunTool(u"pdffonts"_s, {file})).split(u'\n').sliced(2);
  for (const QString& line : lines) {
    if (line.isEmpty()) continue;
    ++fonts.all;
    if (line.contains(embedded)) ++fonts.embedded;
  }
  return fonts;
}

/// A word on a page, its place in centimetres.
struct PdfWord {
  QString text;
  double left, top, right, bottom;
};

inline std::vector<PdfWord> WordsIn(const QString& text) {
  static const QRegularExpression pattern(
      uR"x(<word xMin="([^"]*)" yMin="([^"]*)" xMax="([^"]*)" yMax="([^"]*)">(.*)</word>)x"_s);
  std::vector<PdfWord> words;
  auto matches = pattern.globalMatch(text);
  while (matches.hasNext()) {
    const QRegularExpressionMatch word = matches.next();
    const auto centimetres = [&](int group) { return word.captured(group).toDouble() / 72 * 2.54; };
    words.push_back({word.captured(5), centimetres(1), centimetres(2), centimetres(3), centimetres(4)});
  }
  return words;
}

inline std::vector<PdfWord> PdfWords(const QString& file, int page) {
  const QString number = QString::number(page);
  return WordsIn(QString::fromUtf8(
      RunTool(u"pdftotext"_s, {u"-bbox"_s, u"-f"_s, number, u"-l"_s, number, file, u"-"_s})));
}

inline std::vector<std::vector<PdfWord>> PdfWordsOfAllPages(const QString& file) {
  const QString text = QString::fromUtf8(RunTool(u"pdftotext"_s, {u"-bbox"_s, file, u"-"_s}));
  const QStringList parts = text.split(u"<page "_s).sliced(1);
  std::vector<std::vector<PdfWord>> pages;
  for (const QString& part : parts)
    pages.push_back(WordsIn(part));
  return pages;
}

/// A page as grey picture of exactly that size.
inline QImage PdfPicture(const QString& file, int page, const QSize& size) {
  const QTemporaryDir folder;
  const QString target = folder.filePath(u"page"_s);
  RunTool(u"pdftoppm"_s,
          {u"-f"_s, QString::number(page), u"-singlefile"_s, u"-scale-to-x"_s, QString::number(size.width()),
           u"-scale-to-y"_s, QString::number(size.height()), u"-gray"_s, u"-png"_s, file, target});
  return QImage(target + u".png"_s).convertToFormat(QImage::Format_Grayscale8);
}

}  // namespace kalivor::test
