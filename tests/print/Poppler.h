// PDF files as an independent program reads them.
#pragma once

#include <QtGlobal>
#ifdef Q_OS_WIN
#include <windows.h>
#endif

#include <gtest/gtest.h>
#include <QDir>
#include <QFile>
#include <QImage>
#include <QProcess>
#include <QRegularExpression>
#include <QString>
#include <QStringList>
#include <QTemporaryDir>
#include <vector>

namespace kalivor::test {

using namespace Qt::StringLiterals;

/// As the tools know a file or a program: under Wine they are those of the system below it, which has no
/// drives.
inline QString ForTools(const QString& path) {
#ifdef Q_OS_WIN
  const auto unixName = reinterpret_cast<char* (*)(const wchar_t*)>(
      reinterpret_cast<void*>(GetProcAddress(GetModuleHandleW(L"kernel32"), "wine_get_unix_file_name")));
  if (unixName != nullptr && QDir::isAbsolutePath(path))
    return QString::fromUtf8(unixName(QDir::toNativeSeparators(path).toStdWString().c_str()));
#endif
  return path;
}

/// What a tool of poppler-utils writes to its standard output.
inline QByteArray RunTool(const QString& tool, const QStringList& arguments) {
#ifdef Q_OS_WIN
  const QString program = u"Z:/usr/bin/"_s + tool;
#else
  const QString& program = tool;
#endif
  QStringList names;
  for (const QString& argument : arguments)
    names.append(ForTools(argument));
  // Into a file: a pipe does not reach out of Wine.
  const QTemporaryDir folder;
  QFile output(folder.filePath(u"output"_s));
  QProcess process;
  process.setStandardOutputFile(output.fileName());
  process.start(program, names);
  if (!process.waitForStarted()) {
    ADD_FAILURE() << tool.toStdString() << " is missing; it comes with poppler-utils";
    return {};
  }
  EXPECT_TRUE(process.waitForFinished());
  EXPECT_EQ(process.exitCode(), 0) << process.readAllStandardError().toStdString();
  EXPECT_TRUE(output.open(QIODevice::ReadOnly));
  return output.readAll();
}

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
