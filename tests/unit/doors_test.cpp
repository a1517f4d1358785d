// Rules that the compiler does not know: who may assign values, and who may look at the beginning of a text
// for a failure.
#include <gtest/gtest.h>
#include <QDirIterator>
#include <QFile>
#include <QRegularExpression>
#include <QSet>
#include <QStringList>

#include "fakes/QtPrinters.h"

using namespace Qt::StringLiterals;

namespace kalivor {
namespace {

/// The lines below src/ that match, each as "path: line"; files in `except` and folders that it names are
/// left out.
QStringList Matches(const QRegularExpression& pattern, const QStringList& except) {
  const QDir source(QStringLiteral(KALIVOR_SOURCE_DIR) + u"/src"_s);
  QStringList found;
  QDirIterator files(source.path(), {u"*.h"_s, u"*.cpp"_s}, QDir::Files, QDirIterator::Subdirectories);
  while (files.hasNext()) {
    QFile file(files.next());
    const QString path = source.relativeFilePath(file.fileName());
    bool allowed = false;
    for (const QString& exception : except)
      allowed = allowed || path.startsWith(exception);
    if (allowed || !file.open(QIODevice::ReadOnly)) continue;
    for (const QString& line : QString::fromUtf8(file.readAll()).split(u'\n')) {
      if (pattern.match(line.section(u"//"_s, 0, 0)).hasMatch())
        found.append(path + u": "_s + line.trimmed());
    }
  }
  return found;
}

const QRegularExpression kAssignment(uR"x((?:\.|->)(?:Wert(?:Text)?|Typ)\s*(?:[-+*/%&|^]|<<|>>)?=(?!=))x"_s);
const QRegularExpression kPrefix(uR"x(\bIsError\b|"ERROR)x"_s);

TEST(Doors, ValuesChangeThroughTheParameterTableAlone) {
  const QStringList found = Matches(kAssignment, {u"base/ParameterTable.cpp"_s,
                                                  // Fills slots whole.
                                                  u"core/DefinitionFiles.cpp"_s,
                                                  // Records of a file, not of the table.
                                                  u"core/ValueFileFormat.cpp"_s,
                                                  // Copies that are compared.
                                                  u"core/ChangeLog.cpp"_s, u"core/ValueSets.cpp"_s,
                                                  // A copy for the tree's text, before the value is stored.
                                                  u"commands/EditorCommands.cpp"_s});
  EXPECT_EQ(found.join(u'\n').toStdString(), "");
  EXPECT_EQ(Matches(kAssignment, {u"core/"_s, u"commands/"_s}).size(), 3)
      << "the pattern finds the door itself";
}

TEST(Doors, OnlyTheCommunicationTellsFailuresByTheirBeginning) {
  EXPECT_EQ(Matches(kPrefix, {u"comm/"_s}).join(u'\n').toStdString(), "");
  EXPECT_FALSE(Matches(kPrefix, {}).isEmpty()) << "the pattern finds the layer that may";
}

}  // namespace
}  // namespace kalivor
