// No source file includes what stands above its layer, or a library that its layer must do without.
#include <gtest/gtest.h>
#include <QDir>
#include <QDirIterator>
#include <QFile>
#include <QRegularExpression>
#include <QSet>
#include <QStringList>
#include <algorithm>
#include <vector>

#include "fakes/QtPrinters.h"

using namespace Qt::StringLiterals;

namespace kalivor {
namespace {

/// What the files of a folder (below src/) may include.
struct Layer {
  QString folder;
  QStringList mayInclude;      ///< folders below src/; its own is always allowed
  bool systemHeaders = false;  ///< headers of the operating system
  bool windows = false;        ///< all of Qt, not only its Core module
  bool network = false;        ///< Qt's Network module
  bool sql = false;            ///< Qt's Sql module
};

// A folder that is not listed here is a violation by itself: whoever adds one decides where it stands.
const std::vector<Layer>& Layers() {
  static const std::vector<Layer> layers = [] {
    const QStringList comm{u"platform"_s, u"base"_s};
    const QStringList core = comm + QStringList{u"comm"_s};
    const QStringList commands = core + QStringList{u"core"_s};
    const QStringList pages = commands + QStringList{u"print/pages"_s};
    const QStringList painter = pages + QStringList{u"platform/gui"_s};
    const QStringList print = painter + QStringList{u"print/painter"_s, u"platform/qt"_s};
    const QStringList ui =
        commands + QStringList{u"check"_s,          u"commands"_s,     u"diagnosis"_s,  u"history"_s,
                               u"history/server"_s, u"platform/gui"_s, u"platform/qt"_s};
    const QStringList real{u"platform/plain"_s, u"platform/posix"_s, u"platform/win32"_s};
    return std::vector<Layer>{
        {u"platform"_s, {}},
        {u"platform/plain"_s, {u"platform"_s}},
        {u"platform/posix"_s, {u"platform"_s, u"platform/plain"_s}, true},
        {u"platform/win32"_s, {u"platform"_s, u"platform/plain"_s}, true},
        {u"platform/net"_s, {u"platform"_s, u"platform/plain"_s}, true},
        {u"platform/gui"_s, {}, false, true},
        {u"platform/qt"_s, {u"platform"_s, u"platform/gui"_s, u"base"_s}, false, true},
        {u"base"_s, {u"platform"_s}},
        {u"comm"_s, comm},
        {u"core"_s, core},
        {u"check"_s, commands},
        {u"commands"_s, commands},
        {u"diagnosis"_s, commands + QStringList{u"check"_s, u"commands"_s}},
        {u"history"_s, commands + QStringList{u"commands"_s}, false, false, false, true},
        {u"history/server"_s, commands + QStringList{u"commands"_s, u"history"_s, u"platform/net"_s}, true},
        {u"print/pages"_s, commands},
        {u"print/painter"_s, painter, false, true},
        {u"print"_s, print, false, true},
        {u"ui"_s, ui, false, true},
        {u"sim"_s, commands + real, true, false, true},
        {u"cli"_s,
         painter + real +
             QStringList{u"commands"_s, u"check"_s, u"history"_s, u"history/server"_s, u"platform/net"_s,
                         u"print/painter"_s},
         false, false, false, true},
        {u"kalivor"_s, ui + real + QStringList{u"ui"_s, u"print"_s, u"sim"_s, u"platform/net"_s}, false,
         true},
    };
  }();
  return layers;
}

// Headers of Qt's Core module. One that is missing here can be added after a look at where it lives.
const QSet<QString>& CoreHeaders() {
  static const QSet<QString> headers{u"QAtomicInt"_s,
                                     u"QBuffer"_s,
                                     u"QByteArray"_s,
                                     u"QByteArrayList"_s,
                                     u"QByteArrayView"_s,
                                     u"QChar"_s,
                                     u"QCollator"_s,
                                     u"QCommandLineOption"_s,
                                     u"QCommandLineParser"_s,
                                     u"QCoreApplication"_s,
                                     u"QCryptographicHash"_s,
                                     u"QDate"_s,
                                     u"QDateTime"_s,
                                     u"QDeadlineTimer"_s,
                                     u"QDebug"_s,
                                     u"QDir"_s,
                                     u"QDirIterator"_s,
                                     u"QElapsedTimer"_s,
                                     u"QEvent"_s,
                                     u"QEventLoop"_s,
                                     u"QFile"_s,
                                     u"QFileDevice"_s,
                                     u"QFileInfo"_s,
                                     u"QFlags"_s,
                                     u"QHash"_s,
                                     u"QIODevice"_s,
                                     u"QJsonArray"_s,
                                     u"QJsonDocument"_s,
                                     u"QJsonObject"_s,
                                     u"QJsonParseError"_s,
                                     u"QJsonValue"_s,
                                     u"QLatin1Char"_s,
                                     u"QLatin1String"_s,
                                     u"QLatin1StringView"_s,
                                     u"QLibrary"_s,
                                     u"QLibraryInfo"_s,
                                     u"QList"_s,
                                     u"QLocale"_s,
                                     u"QLockFile"_s,
                                     u"QMap"_s,
                                     u"QMetaEnum"_s,
                                     u"QMetaObject"_s,
                                     u"QMetaType"_s,
                                     u"QMultiHash"_s,
                                     u"QMultiMap"_s,
                                     u"QMutex"_s,
                                     u"QObject"_s,
                                     u"QPair"_s,
                                     u"QPointer"_s,
                                     u"QProcess"_s,
                                     u"QProcessEnvironment"_s,
                                     u"QQueue"_s,
                                     u"QRandomGenerator"_s,
                                     u"QRegularExpression"_s,
                                     u"QRectF"_s,
                                     u"QSaveFile"_s,
                                     u"QScopeGuard"_s,
                                     u"QSet"_s,
                                     u"QSizeF"_s,
                                     u"QSettings"_s,
                                     u"QSignalBlocker"_s,
                                     u"QSocketNotifier"_s,
                                     u"QStack"_s,
                                     u"QStandardPaths"_s,
                                     u"QString"_s,
                                     u"QStringBuilder"_s,
                                     u"QStringConverter"_s,
                                     u"QStringDecoder"_s,
                                     u"QStringEncoder"_s,
                                     u"QStringList"_s,
                                     u"QStringTokenizer"_s,
                                     u"QStringView"_s,
                                     u"QSysInfo"_s,
                                     u"QTemporaryDir"_s,
                                     u"QTemporaryFile"_s,
                                     u"QTextBoundaryFinder"_s,
                                     u"QTextStream"_s,
                                     u"QThread"_s,
                                     u"QThreadPool"_s,
                                     u"QTime"_s,
                                     u"QTimeZone"_s,
                                     u"QTimer"_s,
                                     u"QUrl"_s,
                                     u"QVarLengthArray"_s,
                                     u"QUuid"_s,
                                     u"QVariant"_s,
                                     u"QVariantList"_s,
                                     u"QVector"_s,
                                     u"QVersionNumber"_s,
                                     u"QtEndian"_s,
                                     u"QtGlobal"_s,
                                     u"QtMath"_s,
                                     u"QtMinMax"_s,
                                     u"QtNumeric"_s,
                                     u"QtTypes"_s};
  return headers;
}

// `text` with its comments blanked out, line breaks kept.
QString WithoutComments(QString text) {
  static const QRegularExpression comment(uR"x(//[^\n]*|/\*.*?\*/)x"_s,
                                          QRegularExpression::DotMatchesEverythingOption);
  for (auto match = comment.match(text); match.hasMatch();
       match = comment.match(text, match.capturedStart())) {
    const qsizetype breaks = match.captured().count(u'\n');
    text.replace(match.capturedStart(), match.capturedLength(), breaks > 0 ? QString(breaks, u'\n') : u" "_s);
  }
  return text;
}

// The layer of a path below src/: that of the longest listed folder it lies in; null when there is none.
// "platform" has no subfolders but the listed ones, so that a new one is noticed.
const Layer* LayerOf(const QString& path) {
  const Layer* best = nullptr;
  for (const Layer& layer : Layers()) {
    if (!path.startsWith(layer.folder + u'/')) continue;
    if (layer.folder == u"platform" && path.count(u'/') > 1) continue;
    if (best == nullptr || layer.folder.size() > best->folder.size()) best = &layer;
  }
  return best;
}

// Why the layer must not include "`target`"; empty when it may.
QString ForbiddenProjectHeader(const Layer& layer, const QString& target) {
  const Layer* other = LayerOf(target);
  // The compiler of Qt's meta objects makes such a file for a source file, beside all folders.
  if (layer.windows && target.endsWith(u".moc") && !target.contains(u'/')) return {};
  if (other == nullptr || target.contains(u"..")) return u"is not written as a path below src/"_s;
  if (other == &layer || layer.mayInclude.contains(other->folder)) return {};
  return u"stands above "_s + layer.folder;
}

// Why the layer must not include <`header`>; empty when it may.
QString ForbiddenLibraryHeader(const Layer& layer, const QString& header) {
  if (header.startsWith(u'Q')) {
    if (layer.windows || header.startsWith(u"QtCore/") || CoreHeaders().contains(header)) return {};
    if (layer.network && header.startsWith(u"QTcp")) return {};
    if (layer.sql && header.startsWith(u"QSql")) return {};
    return u"is not known to belong to Qt's Core module"_s;
  }
  // Headers of the C++ library are single words; a point or a folder marks the operating system's.
  const bool ofSystem = header.contains(u'.') || header.contains(u'/');
  if (ofSystem && !layer.systemHeaders) return u"belongs to the operating system"_s;
  return {};
}

// Every violation in the file `path` (below src/) with the content `text`, each as "path:line: reason".
QStringList Violations(const QString& path, const QString& text) {
  const Layer* layer = LayerOf(path);
  if (layer == nullptr) return {path + u": no layer is known for this folder"_s};

  static const QRegularExpression directive(uR"x(^\s*#\s*include(?:_next)?\b\s*(.*?)\s*$)x"_s);
  static const QRegularExpression operand(uR"x(^(?:<([^>]+)>|"([^"]+)")$)x"_s);
  QStringList found;
  const QStringList lines = WithoutComments(text).split(u'\n');
  for (qsizetype i = 0; i < lines.size(); ++i) {
    const QRegularExpressionMatch include = directive.match(lines.at(i));
    if (!include.hasMatch()) continue;
    const QRegularExpressionMatch name = operand.match(include.captured(1));
    QString reason;
    if (!name.hasMatch()) {
      reason = u"is computed"_s;
    } else if (name.hasCaptured(2)) {
      reason = ForbiddenProjectHeader(*layer, name.captured(2));
    } else {
      reason = ForbiddenLibraryHeader(*layer, name.captured(1));
    }
    if (!reason.isEmpty()) {
      found.append(u"%1:%2: %3 %4"_s.arg(path).arg(i + 1).arg(include.captured(1), reason));
    }
  }
  return found;
}

TEST(Layers, EverySourceFileKeepsToThem) {
  const QDir source(QStringLiteral(KALIVOR_SOURCE_DIR) + u"/src"_s);
  QStringList scanned;
  QStringList found;
  QDirIterator files(source.path(), {u"*.h"_s, u"*.cpp"_s, u"*.hpp"_s, u"*.inl"_s}, QDir::Files,
                     QDirIterator::Subdirectories);
  while (files.hasNext()) {
    QFile file(files.next());
    ASSERT_TRUE(file.open(QIODevice::ReadOnly)) << file.fileName().toStdString();
    const QString path = source.relativeFilePath(file.fileName());
    scanned.append(path);
    found += Violations(path, QString::fromUtf8(file.readAll()));
  }
  EXPECT_EQ(found.join(u'\n').toStdString(), "");
  for (const QString& expected :
       {u"platform/Clock.h"_s, u"base/su.cpp"_s, u"comm/COM_T.cpp"_s, u"core/Core.h"_s}) {
    EXPECT_TRUE(scanned.contains(expected)) << expected.toStdString() << " was not scanned";
  }
}

// From here on: the scanner itself, on planted texts.

struct Planted {
  QString path;
  QString include;
  bool allowed;
};

void PrintTo(const Planted& planted, std::ostream* out) {
  *out << planted.path.toStdString() << " with " << planted.include.toStdString();
}

class PlantedInclude : public testing::TestWithParam<Planted> {};

TEST_P(PlantedInclude, IsJudged) {
  const QString text = u"// A file.\n#pragma once\n\n#include "_s + GetParam().include + u"\n\nint x;\n"_s;
  const QStringList found = Violations(GetParam().path, text);
  EXPECT_EQ(found.isEmpty(), GetParam().allowed) << found.join(u'\n').toStdString();
  if (!GetParam().allowed && !found.isEmpty()) {
    EXPECT_TRUE(found.first().startsWith(GetParam().path + u":4: "_s)) << found.first().toStdString();
  }
}

INSTANTIATE_TEST_SUITE_P(
    Downwards, PlantedInclude,
    testing::Values(Planted{u"platform/A.h"_s, u"\"platform/Clock.h\""_s, true},
                    Planted{u"platform/plain/A.h"_s, u"\"platform/TreeView.h\""_s, true},
                    Planted{u"platform/posix/A.cpp"_s, u"\"platform/Clock.h\""_s, true},
                    Planted{u"platform/win32/A.cpp"_s, u"\"platform/Clock.h\""_s, true},
                    Planted{u"base/A.h"_s, u"\"platform/RuntimeError.h\""_s, true},
                    Planted{u"comm/A.h"_s, u"\"base/su.h\""_s, true},
                    Planted{u"core/A.h"_s, u"\"comm/COM_A.h\""_s, true},
                    Planted{u"commands/A.h"_s, u"\"core/Core.h\""_s, true},
                    Planted{u"cli/main.cpp"_s, u"\"commands/StartUp.h\""_s, true},
                    Planted{u"cli/main.cpp"_s, u"\"platform/posix/SystemClock.h\""_s, true},
                    Planted{u"sim/A.cpp"_s, u"\"core/DefinitionFiles.h\""_s, true},
                    Planted{u"platform/qt/A.cpp"_s, u"\"platform/TreeView.h\""_s, true},
                    Planted{u"ui/main/A.cpp"_s, u"\"platform/qt/QtTreeView.h\""_s, true},
                    Planted{u"ui/main/A.cpp"_s, u"\"ui/dialogs/B.h\""_s, true},
                    Planted{u"print/A.cpp"_s, u"\"base/Module1.h\""_s, true},
                    Planted{u"print/A.cpp"_s, u"\"print/painter/PdfPrint.h\""_s, true},
                    Planted{u"check/A.cpp"_s, u"\"core/DefinitionFiles.h\""_s, true},
                    Planted{u"history/server/A.cpp"_s, u"\"history/Store.h\""_s, true},
                    Planted{u"cli/A.cpp"_s, u"\"check/DefinitionCheck.h\""_s, true},
                    Planted{u"platform/qt/A.cpp"_s, u"\"platform/gui/PdfFile.h\""_s, true},
                    Planted{u"kalivor/main.cpp"_s, u"\"ui/main/frmMain.h\""_s, true},
                    Planted{u"core/A.cpp"_s, u"\"core/A.h\"  // its own"_s, true}));

INSTANTIATE_TEST_SUITE_P(
    Upwards, PlantedInclude,
    testing::Values(Planted{u"platform/A.h"_s, u"\"base/su.h\""_s, false},
                    Planted{u"platform/A.h"_s, u"\"platform/plain/IniSettingsStore.h\""_s, false},
                    Planted{u"platform/plain/A.h"_s, u"\"base/su.h\""_s, false},
                    Planted{u"platform/posix/A.cpp"_s, u"\"base/Numbers.h\""_s, false},
                    Planted{u"platform/plain/A.cpp"_s, u"\"platform/posix/Descriptor.h\""_s, false},
                    Planted{u"platform/win32/A.cpp"_s, u"\"comm/TH.h\""_s, false},
                    Planted{u"base/A.h"_s, u"\"comm/TH.h\""_s, false},
                    Planted{u"base/A.h"_s, u"\"platform/posix/SystemClock.h\""_s, false},
                    Planted{u"comm/A.cpp"_s, u"\"core/Core.h\""_s, false},
                    Planted{u"core/A.cpp"_s, u"\"commands/StartUp.h\""_s, false},
                    Planted{u"core/A.cpp"_s, u"\"platform/plain/IniSettingsStore.h\""_s, false},
                    Planted{u"commands/A.cpp"_s, u"\"cli/Cli.h\""_s, false},
                    Planted{u"history/A.cpp"_s, u"\"history/server/Sync.h\""_s, false},
                    Planted{u"commands/A.cpp"_s, u"\"check/DefinitionCheck.h\""_s, false},
                    Planted{u"check/A.cpp"_s, u"\"commands/StartUp.h\""_s, false},
                    Planted{u"platform/gui/A.cpp"_s, u"\"platform/qt/ShownText.h\""_s, false},
                    Planted{u"print/pages/A.cpp"_s, u"\"print/painter/PagePainter.h\""_s, false},
                    Planted{u"print/painter/A.cpp"_s, u"\"print/MDIFormPrint.h\""_s, false},
                    Planted{u"print/A.cpp"_s, u"\"ui/main/frmMain.h\""_s, false},
                    Planted{u"ui/main/A.cpp"_s, u"\"print/MDIFormPrint.h\""_s, false},
                    Planted{u"sim/A.cpp"_s, u"\"commands/StartUp.h\""_s, false},
                    Planted{u"commands/A.cpp"_s, u"\"ui/main/frmMain.h\""_s, false},
                    Planted{u"commands/A.cpp"_s, u"\"platform/posix/SystemClock.h\""_s, false},
                    Planted{u"cli/A.cpp"_s, u"\"sim/Controller.h\""_s, false},
                    Planted{u"cli/A.cpp"_s, u"\"ui/main/frmMain.h\""_s, false},
                    Planted{u"sim/A.cpp"_s, u"\"cli/Cli.h\""_s, false},
                    Planted{u"sim/A.cpp"_s, u"\"platform/qt/QtTreeView.h\""_s, false},
                    Planted{u"platform/qt/A.cpp"_s, u"\"core/Core.h\""_s, false},
                    Planted{u"print/A.cpp"_s, u"\"cli/Cli.h\""_s, false},
                    Planted{u"ui/main/A.cpp"_s, u"\"kalivor/Arguments.h\""_s, false},
                    Planted{u"kalivor/A.cpp"_s, u"\"cli/Edits.h\""_s, false}));

INSTANTIATE_TEST_SUITE_P(Unclear, PlantedInclude,
                         testing::Values(Planted{u"core/A.cpp"_s, u"\"A.h\""_s, false},
                                         Planted{u"core/A.cpp"_s, u"\"../commands/StartUp.h\""_s, false},
                                         Planted{u"core/A.cpp"_s, u"\"core/../commands/StartUp.h\""_s, false},
                                         Planted{u"core/A.cpp"_s, u"\"nowhere/A.h\""_s, false},
                                         Planted{u"core/A.cpp"_s, u"SOME_MACRO"_s, false},
                                         Planted{u"core/A.cpp"_s, u"\"frmMain.moc\""_s, false},
                                         Planted{u"ui/main/frmMain.cpp"_s, u"\"frmMain.moc\""_s, true}));

INSTANTIATE_TEST_SUITE_P(SystemHeaders, PlantedInclude,
                         testing::Values(Planted{u"platform/posix/A.cpp"_s, u"<unistd.h>"_s, true},
                                         Planted{u"platform/posix/A.cpp"_s, u"<sys/ioctl.h>"_s, true},
                                         Planted{u"platform/win32/A.cpp"_s, u"<windows.h>"_s, true},
                                         Planted{u"sim/PtyLine.cpp"_s, u"<termios.h>"_s, true},
                                         Planted{u"sim/TcpLine.h"_s, u"<QTcpServer>"_s, true},
                                         Planted{u"comm/A.h"_s, u"<QTcpSocket>"_s, false},
                                         Planted{u"platform/A.h"_s, u"<poll.h>"_s, false},
                                         Planted{u"platform/plain/A.cpp"_s, u"<unistd.h>"_s, false},
                                         Planted{u"base/A.cpp"_s, u"<sys/stat.h>"_s, false},
                                         Planted{u"comm/A.cpp"_s, u"<termios.h>"_s, false},
                                         Planted{u"core/A.cpp"_s, u"<fcntl.h>"_s, false},
                                         Planted{u"commands/A.cpp"_s, u"<signal.h>"_s, false},
                                         Planted{u"cli/main.cpp"_s, u"<unistd.h>"_s, false},
                                         Planted{u"platform/qt/A.cpp"_s, u"<sys/types.h>"_s, false},
                                         Planted{u"ui/main/A.cpp"_s, u"<windows.h>"_s, false},
                                         Planted{u"print/A.cpp"_s, u"<unistd.h>"_s, false},
                                         Planted{u"kalivor/main.cpp"_s, u"<unistd.h>"_s, false},
                                         Planted{u"core/A.cpp"_s, u"<vector>"_s, true},
                                         Planted{u"cli/main.cpp"_s, u"<csignal>"_s, true}));

INSTANTIATE_TEST_SUITE_P(Qt, PlantedInclude,
                         testing::Values(Planted{u"base/A.h"_s, u"<QString>"_s, true},
                                         Planted{u"core/A.h"_s, u"<QtCore/QHash>"_s, true},
                                         Planted{u"platform/A.h"_s, u"<QPainter>"_s, false},
                                         Planted{u"platform/plain/A.h"_s, u"<QTreeWidget>"_s, false},
                                         Planted{u"platform/posix/A.cpp"_s, u"<QGuiApplication>"_s, false},
                                         Planted{u"base/A.h"_s, u"<QColor>"_s, false},
                                         Planted{u"comm/A.h"_s, u"<QWidget>"_s, false},
                                         Planted{u"core/A.h"_s, u"<QtWidgets/QComboBox>"_s, false},
                                         Planted{u"core/A.h"_s, u"<QtGui>"_s, false},
                                         Planted{u"commands/A.h"_s, u"<QMessageBox>"_s, false},
                                         Planted{u"cli/A.cpp"_s, u"<QApplication>"_s, false},
                                         Planted{u"sim/A.cpp"_s, u"<QPrinter>"_s, false},
                                         Planted{u"platform/qt/A.cpp"_s, u"<QComboBox>"_s, true},
                                         Planted{u"ui/main/A.cpp"_s, u"<QMainWindow>"_s, true},
                                         Planted{u"print/A.cpp"_s, u"<QPrinter>"_s, true}));

// Folders of which nobody has said where they stand.
TEST(Layers, AFolderWithoutALayerIsAViolation) {
  for (const QString& path : {u"main.cpp"_s, u"corex/A.h"_s, u"platform/mac/A.cpp"_s, u"tools/A.cpp"_s}) {
    EXPECT_EQ(Violations(path, u"int x;\n"_s).size(), 1) << path.toStdString();
  }
}

TEST(Layers, EveryWayOfWritingAnIncludeIsSeen) {
  for (const QString& line :
       {u"#include \"core/Core.h\""_s, u"#include\"core/Core.h\""_s, u"  #  include  \"core/Core.h\"  "_s,
        u"\t#include \"core/Core.h\" // why"_s, u"#include /* x */ \"core/Core.h\""_s,
        u"/* x */ #include \"core/Core.h\""_s, u"#include \"core/Core.h\"\r"_s}) {
    EXPECT_EQ(Violations(u"base/A.h"_s, line),
              QStringList(u"base/A.h:1: \"core/Core.h\" stands above base"_s))
        << line.toStdString();
  }
}

TEST(Layers, CommentsAreNoIncludes) {
  EXPECT_EQ(Violations(u"base/A.h"_s, u"// #include <QWidget>\n/* a\n#include <QWidget>\n*/\n"_s),
            QStringList());
}

TEST(Layers, EveryViolationOfAFileIsNamedWithItsLine) {
  const QString text = u"/* two\nlines */\n#include <QWidget>\n#include <QString>\n#include <poll.h>\n"_s;
  EXPECT_EQ(Violations(u"base/A.h"_s, text),
            (QStringList{u"base/A.h:3: <QWidget> is not known to belong to Qt's Core module"_s,
                         u"base/A.h:5: <poll.h> belongs to the operating system"_s}));
}

}  // namespace
}  // namespace kalivor
