// The history with the real programs: what was done from the command line is there afterwards.
#include <QDir>
#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>

#include "e2e/Programs.h"

namespace kalivor::test {
namespace {

using namespace Qt::StringLiterals;

/// kalivor-cli with a history that is kept.
class HistoryCli : public Cli {
 public:
  explicit HistoryCli(const QString& device) : Cli(device) {
    EXPECT_TRUE(QDir().mkpath(SettingsFolder() + u"/KALIVOR"_s));
    QFile settings(SettingsFolder() + u"/KALIVOR/KALIVOR.ini"_s);
    EXPECT_TRUE(settings.open(QIODevice::WriteOnly));
    settings.write("[Settings]\nUserpath=" + SettingsFolder().toUtf8() +
                   "\n[SicherSenden]\nRuhezeit=500\n[Verlauf]\nFuehren=1\nTechniker=Jürgen\n");
  }

  /// A member of all entries, the newest first.
  QStringList All(const QString& name) {
    const Outcome listed = Run({u"history"_s, u"list"_s, u"--json"_s});
    EXPECT_EQ(listed.status, 0) << listed.err.toStdString();
    QStringList values;
    for (const QJsonValue entry : QJsonDocument::fromJson(listed.out.toUtf8()).array())
      values << entry[name].toVariant().toString();
    return values;
  }
};

const QStringList kOne = {u"--set"_s,   u"_Hk1RaumSollTag=22.5"_s, u"--uncheck"_s, u"all"_s,
                          u"--check"_s, u"_Hk1RaumSollTag"_s};

TEST(History, HasWhatWasDone) {
  const Simulator simulator;
  HistoryCli cli(simulator.Device());
  const QString file = cli.SettingsFolder() + u"/a.qpf"_s;
  EXPECT_EQ(cli.Run({u"receive"_s, u"--save"_s, file}).status, 0);
  EXPECT_EQ(cli.Run(QStringList{u"send"_s} + kOne).status, 0);
  EXPECT_EQ(cli.Run(QStringList{u"safe-send"_s, u"--yes"_s, u"--load"_s, file, u"--uncheck"_s, u"all"_s,
                                u"--check"_s, u"_Hk1RaumSollTag"_s})
                .status,
            0);
  EXPECT_EQ(cli.Run({u"compare"_s}).status, 0);
  EXPECT_EQ(cli.All(u"Art"_s), (QStringList{u"verglichen"_s, u"sicher gesendet"_s, u"geladen"_s,
                                            u"gesendet"_s, u"gespeichert"_s, u"empfangen"_s}));
  EXPECT_EQ(cli.All(u"Techniker"_s).first(), u"Jürgen"_s);
  const QStringList ids = cli.All(u"Eintrag"_s);
  ASSERT_EQ(ids.size(), 6);
  const Outcome sent = cli.Run({u"history"_s, u"show"_s, ids.at(3)});
  EXPECT_TRUE(sent.out.endsWith(u"_Hk1RaumSollTag\t21.5\t22.5\t°C\t\n"_s)) << sent.out.toStdString();
  const Outcome safe = cli.Run({u"history"_s, u"show"_s, ids.at(1)});
  EXPECT_TRUE(safe.out.endsWith(u"_Hk1RaumSollTag\t22.5\t21.5\t°C\tgeprüft\n"_s)) << safe.out.toStdString();
  EXPECT_EQ(cli.Run({u"history"_s, u"check"_s}).status, 0);
  EXPECT_TRUE(QFile::exists(cli.SettingsFolder() + u"/KALIVOR/Verlauf.sqlite"_s));
}

TEST(History, HelpNeedsNothing) {
  const Outcome help = Cli().Run({u"history"_s, u"--help"_s});
  EXPECT_EQ(help.status, 0);
  EXPECT_TRUE(help.out.startsWith(u"Aufruf: kalivor-cli history"_s));
}

}  // namespace
}  // namespace kalivor::test
