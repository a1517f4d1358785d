// Printing with kalivor-cli: what depends on the machine that it runs on.
#include <QDir>
#include <QFile>

#include "e2e/Programs.h"

namespace kalivor::test {
namespace {

using namespace Qt::StringLiterals;

// The footer in a system that is set to `language`.
QString FooterIn(const QString& language) {
  QProcess process;
  QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
  environment.remove(u"LC_TIME"_s);
  environment.insert(u"LC_ALL"_s, language);
  process.setProcessEnvironment(environment);
  process.start(Program(u"kalivor-cli"_s), {u"--ini-path"_s, Examples(), u"pages"_s, u"--date"_s,
                                            u"2026-11-21"_s, u"--status-path"_s, u"C:\\w.qpf"_s});
  EXPECT_TRUE(process.waitForFinished(kHang_ms));
  return QString::fromUtf8(process.readAllStandardOutput()).trimmed().section(u'\n', -1);
}

TEST(CliPrinting, TheDateIsInTheLanguageOfTheSystem) {
  const QString rest = u", 21 November 2026   Seite  1 von 3   C:\\w.qpf"_s;
  EXPECT_EQ(FooterIn(u"de_DE.UTF-8"_s), u"Samstag"_s + rest);
  EXPECT_EQ(FooterIn(u"en_US.UTF-8"_s), u"Saturday"_s + rest);
  EXPECT_EQ(FooterIn(u"C.UTF-8"_s), u"Samstag"_s + rest) << "a system without a language";
}

TEST(CliPrinting, AFileThatCannotBeWrittenIsBadInput) {
  const QTemporaryDir folder;
  for (const QString& path : {folder.path(), folder.filePath(u"nirgends/liste.pdf"_s)}) {
    const Outcome outcome = Cli().Run({u"print"_s, u"--pdf"_s, path});
    EXPECT_EQ(outcome.status, 2);
    EXPECT_EQ(outcome.err, u"Die Datei kann nicht geschrieben werden: "_s + path + u'\n');
  }
  EXPECT_TRUE(QDir(folder.path()).isEmpty());
}

}  // namespace
}  // namespace kalivor::test
