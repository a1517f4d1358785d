// The commands as an administrator and a technician give them.
#include <QDir>
#include <QFile>
#include <QJsonDocument>
#include <QJsonObject>

#include "e2e/Programs.h"
#include "postgres/Histories.h"
#include "postgres/PostgresTest.h"

using namespace Qt::StringLiterals;

namespace kalivor::test {
namespace {

class HistoryCommands : public PostgresTest {
 protected:
  Outcome Run(const QStringList& arguments) { return cli_.Run(QStringList{u"history"_s} + arguments); }
  Outcome Exchange(const QString& file, const QStringList& more = {}) {
    return Run(QStringList{u"sync"_s, u"--server"_s, Local(), u"--history"_s, file} + more);
  }
  [[nodiscard]] QString Filled(const QString& name, int entries) const {
    const QString file = folder_.filePath(name + u"/Verlauf.sqlite"_s);
    FillHistory(*OpenHistory(file), entries, 1);
    return file;
  }

  Cli cli_;
};

TEST_F(HistoryCommands, AServerIsPreparedAndExchangedWith) {
  EXPECT_EQ(Run({u"init-server"_s}).status, 2);
  const Outcome prepared = Run({u"init-server"_s, u"--server"_s, Local()});
  EXPECT_EQ(prepared.status, 0) << prepared.err.toStdString();
  EXPECT_TRUE(prepared.out.contains(u"  GRANT kalivor_history TO meier;\n"_s)) << prepared.out.toStdString();

  const QString left = Filled(u"left"_s, 40);
  const QString right = folder_.filePath(u"right/Verlauf.sqlite"_s);
  const Outcome sent = Exchange(left);
  EXPECT_EQ(sent.status, 0) << sent.err.toStdString();
  EXPECT_TRUE(sent.out.startsWith(u"Inhalt\tGesendet\tEmpfangen\nAnlagen\t1\t0\n"_s))
      << sent.out.toStdString();
  EXPECT_TRUE(sent.out.contains(u"\nEinträge\t40\t0\n"_s)) << sent.out.toStdString();
  const Outcome received = Exchange(right, {u"--json"_s});
  EXPECT_EQ(received.status, 0) << received.err.toStdString();
  const QJsonObject json = QJsonDocument::fromJson(received.out.toUtf8()).object();
  EXPECT_EQ(json[u"leftOut"_s].toInt(-1), 0);
  EXPECT_TRUE(received.out.contains(u"\"Empfangen\": 40"_s)) << received.out.toStdString();
  EXPECT_EQ(Difference(ContentsOf(*OpenHistory(left)), ContentsOf(*OpenHistory(right))), QString());
}

TEST_F(HistoryCommands, WhatWasLeftOutIsAFinding) {
  ASSERT_EQ(Run({u"init-server"_s, u"--server"_s, Local()}).status, 0);
  ASSERT_EQ(Exchange(Filled(u"left"_s, 5)).status, 0);
  ASSERT_EQ(Do({u"UPDATE kalivor.remark SET time = 'gestern'"_s}), QString());
  const Outcome outcome = Exchange(folder_.filePath(u"right/Verlauf.sqlite"_s));
  EXPECT_EQ(outcome.status, 1);
  EXPECT_TRUE(outcome.err.contains(u"remark.time ist keine Zeit"_s)) << outcome.err.toStdString();
}

TEST_F(HistoryCommands, WithoutAServerItIsSaidWhy) {
  const QString file = Filled(u"left"_s, 2);
  Outcome outcome = Exchange(file);
  EXPECT_EQ(outcome.status, 3);
  EXPECT_TRUE(outcome.err.contains(u"init-server"_s)) << outcome.err.toStdString();
  outcome = Run({u"sync"_s, u"--history"_s, file});
  EXPECT_EQ(outcome.status, 2);
  EXPECT_EQ(outcome.err, u"Es ist kein Server angegeben.\n"_s);
  outcome = Run({u"sync"_s, u"--history"_s, file, u"--server"_s, u"password=x"_s});
  EXPECT_EQ(outcome.status, 2);
  outcome = Run({u"sync"_s, u"--history"_s, file, u"--server"_s, u"host=127.0.0.1 port=1"_s});
  EXPECT_EQ(outcome.status, 3);
  EXPECT_TRUE(outcome.err.startsWith(u"Der Server ist nicht zu erreichen: "_s)) << outcome.err.toStdString();
  EXPECT_EQ(Run({u"list"_s, u"--history"_s, file, u"--server"_s, u"x"_s}).status, 2);
}

TEST_F(HistoryCommands, TheStoredServerIsTaken) {
  ASSERT_EQ(Run({u"init-server"_s, u"--server"_s, Local()}).status, 0);
  QFile service(QDir::homePath() + u"/.pg_service.conf"_s);
  ASSERT_TRUE(service.open(QIODevice::WriteOnly));
  service.write(Local().replace(u' ', u'\n').prepend(u"[abteilung]\n"_s).append(u'\n').toUtf8());
  service.close();
  ASSERT_TRUE(QDir(cli_.SettingsFolder()).mkpath(u"KALIVOR"_s));
  QFile settings(cli_.SettingsFolder() + u"/KALIVOR/KALIVOR.ini"_s);
  ASSERT_TRUE(settings.open(QIODevice::WriteOnly));
  settings.write("[Verlauf]\nServer=abteilung\n");
  settings.close();
  const Outcome outcome = Run({u"sync"_s, u"--history"_s, Filled(u"left"_s, 3)});
  EXPECT_EQ(outcome.status, 0) << outcome.err.toStdString();
  EXPECT_TRUE(outcome.out.contains(u"\nEinträge\t3\t0\n"_s)) << outcome.out.toStdString();
}

}  // namespace
}  // namespace kalivor::test
