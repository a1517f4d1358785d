// kalivor-sim from its arguments to its exit status.
#include "sim/Program.h"

#include <QDir>
#include <QTemporaryDir>
#include <condition_variable>
#include <future>
#include <mutex>

#include "fakes/FakeFileSystem.h"
#include "fakes/QtPrinters.h"
#include "sim/Arguments.h"
#include "sim/PtyLine.h"
#include "sim/Telegram.h"
#include "unit/sim/running.h"

using namespace Qt::StringLiterals;

namespace kalivor::sim {
namespace {

const QString kVersionTable =
    u"Version  Adressen  Definitionen  Anlagen  Kennung\r\n"
    "HZL-012.0  -  hzl12.def  Eins Zwei   WR\r\n"
    "ABCD-123.4  abcd.adr  abcd.def  Eins  XY\r\n"
    "Prototyp  -  hzl12.def  Eins  WR\r\n"
    "HZL-099.9  -  fehlt.def  Eins  WR\r\n"_s;
const QString kDefinitions =
    u"Rubrik  Name  Min  Max  Std  Einheit  Zahl1  Zahl2  Typ  Adresse  Variable  Zusatz  Hilfe\r\n"
    "NoRubrik  Anlage  0  9  0  -  0  0  int  0A00  ANL  Eins Zwei  -\r\n"
    "Kessel  Soll  -99999  99999  -1  °C  1  0  long  1F00  SOLL  Eins Zwei  -\r\n"
    "Kessel  Stufe  0  9  3  -  0  0  int  1F04  STUFE  Eins  -\r\n"
    "Kessel  Ort  0  0  Öl  -  0  0  string4  1F06  ORT  Eins  -\r\n"_s;
const QString kListedDefinitions =
    u"Rubrik  Name  Min  Max  Std  Einheit  Zahl1  Zahl2  Typ  Adresse  Variable  Zusatz  Hilfe\r\n"
    "Kessel  Stufe  0  9  5  -  0  0  int  stufe[1]  _stufe  Eins  -\r\n"_s;
const QString kAddresses = u"Name  Adresse\r\n_stufe  2000\r\n"_s;

/// Lines of a program that runs in another thread.
class Lines {
 public:
  void Add(const QString& line) {
    const std::lock_guard guard(mutex_);
    lines_ += line;
    changed_.notify_all();
  }
  QStringList All() {
    const std::lock_guard guard(mutex_);
    return lines_;
  }
  QString First() {
    std::unique_lock lock(mutex_);
    // Only a failing test waits for so long.
    if (!changed_.wait_for(lock, std::chrono::seconds(20), [this] { return !lines_.isEmpty(); })) return {};
    return lines_.first();
  }

 private:
  std::mutex mutex_;
  std::condition_variable changed_;
  QStringList lines_;
};

class ProgramTest : public ::testing::Test {
 protected:
  test::FakeFileSystem files;
  StopEvent stop;
  Lines out;
  Lines error;
  Console console{[this](const QString& line) { out.Add(line); },
                  [this](const QString& line) { error.Add(line); }};
  QTemporaryDir folder;
  std::future<int> status;

  void SetUp() override {
    files.AddText(u"/def/VF.INI"_s, kVersionTable);
    files.AddText(u"/def//hzl12.def"_s, kDefinitions);
    files.AddText(u"/def//abcd.def"_s, kListedDefinitions);
    files.AddText(u"/def//abcd.adr"_s, kAddresses);
  }

  /// Runs a program that is expected to end by itself.
  int RunToEnd(const QStringList& arguments) {
    return sim::Run(arguments, files, console, [this](LineModel& model, const Arguments& /*arguments*/) {
      return std::make_unique<PtyLine>(model, stop.Descriptor());
    });
  }

  /// Starts the program and returns its device.
  QString Start(const QStringList& more) {
    status = std::async(std::launch::async, [this, more] {
      return RunToEnd(QStringList{u"--ini-path"_s, u"/def"_s} + more);
    });
    return out.First();
  }

  int Stop() {
    stop.Signal();
    return status.get();
  }

  QByteArray Exchange(const QString& device, const QByteArray& request, qsizetype length) {
    const PcPort pc(device);
    pc.Send(request);
    return pc.Receive(length);
  }

  QByteArray Dump() {
    QFile file(folder.filePath(u"dump"_s));
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("no dump");
  }
};

TEST_F(ProgramTest, AnotherControllerHasTheNextVersionAndTheStandardValues) {
  const QString device = Start({u"--plant"_s, u"2"_s, u"--fault"_s, u"swap:3"_s});
  EXPECT_EQ(Exchange(device, Sealed("#0102W1F041234"), 9), Sealed("10102W"));
  EXPECT_EQ(Exchange(device, Sealed("#0102v00"), 17), Sealed("10102vHZL-0078"));
  EXPECT_EQ(Exchange(device, Sealed("#0102v00"), 17), Sealed("10102vHZL-0079"));
  EXPECT_EQ(Exchange(device, Sealed("#0102R1F04"), 13), Sealed("10102R0003"));
  EXPECT_EQ(Exchange(device, Sealed("#0102R0A00"), 13), Sealed("10102R0000"));
  EXPECT_EQ(Stop(), kDone);
}

TEST_F(ProgramTest, AnswersAsTheFirstVersionAndDumpsItsMemory) {
  const QString device = Start({u"--dump"_s, folder.filePath(u"dump"_s), u"--plant"_s, u"2"_s});
  EXPECT_TRUE(device.startsWith(u"/dev/"));
  EXPECT_EQ(Exchange(device, Sealed("#0102v00"), 17), Sealed("10102vHZL-0078"));
  EXPECT_EQ(Exchange(device, Sealed("#0102R0A00"), 13), Sealed("10102R0002"));
  EXPECT_EQ(Exchange(device, Sealed("#0102W1F04ABCD"), 9), Sealed("10102W"));
  EXPECT_EQ(Exchange(device, Sealed("#0102W30000001"), 9), Sealed("10102W"));
  EXPECT_EQ(Stop(), kDone);
  EXPECT_EQ(Dump(), "0A00\t0002\n1F00\tFFFF\n1F02\tFFFF\n1F04\tABCD\n1F06\tD66C\n1F08\t2020\n3000\t0001\n");
  EXPECT_EQ(out.All(), QStringList{device});
  EXPECT_EQ(error.All(), QStringList());
}

TEST_F(ProgramTest, TakesVersionAddressAndAddressList) {
  const QString device = Start({u"--controller=ABCD-123.4"_s, u"--address=167"_s});
  EXPECT_EQ(Exchange(device, Sealed("#A702v00"), 17), Sealed("1A702vABCD04D2"));
  EXPECT_EQ(Exchange(device, Sealed("#A702Y2002"), 13), Sealed("1A702Y0005"));
  EXPECT_EQ(Stop(), kDone);
}

TEST_F(ProgramTest, SaysThatAVersionHasNoAddressForThePlantNumber) {
  (void)Start({u"--controller"_s, u"ABCD-123.4"_s, u"--plant"_s, u"1"_s});
  EXPECT_EQ(Stop(), kDone);
  EXPECT_EQ(error.All(), QStringList{u"Hinweis: Diese Reglerversion hat keine Adresse für die Anlagennummer; "
                                     "--plant wirkt nicht."_s});
}

TEST_F(ProgramTest, StartsWithTheValuesOfAFile) {
  const auto record = [](qint32 number, const char* text, const char* name, const char* type) {
    QByteArray bytes;
    for (int i = 0; i < 4; ++i)
      bytes += static_cast<char>(number >> (8 * i));
    return bytes + QByteArray(text).leftJustified(20) + QByteArray(name).leftJustified(30) +
           QByteArray(type).leftJustified(8);
  };
  files.files[u"/werte.qpf"_s] = {
      record(4, "", "HZL-012.0", "") + record(300000, "", "SOLL", "long") + record(0, "AB", "ORT", "string4"),
      {}};
  (void)Start({u"--values"_s, u"/werte.qpf"_s, u"--dump"_s, folder.filePath(u"dump"_s)});
  EXPECT_EQ(Stop(), kDone);
  EXPECT_EQ(Dump(), "0A00\t0000\n1F00\t0004\n1F02\t93E0\n1F04\t0003\n1F06\t4142\n1F08\t2020\n");
}

TEST_F(ProgramTest, LinksTheDevice) {
  const QString path = folder.filePath(u"regler"_s);
  const QString device = Start({u"--link"_s, path});
  EXPECT_EQ(QFile::symLinkTarget(path), device);
  EXPECT_EQ(Exchange(path, Sealed("#0102v00"), 17), Sealed("10102vHZL-0078"));
  EXPECT_EQ(Stop(), kDone);
  EXPECT_TRUE(QDir(folder.path()).isEmpty());
}

TEST_F(ProgramTest, TracesEveryTelegramWithItsTime) {
  const QString device = Start({u"--trace"_s, u"--fault"_s, u"error-04"_s});
  EXPECT_EQ(Exchange(device, Sealed("#0102v00"), 11), Sealed("10102?04"));
  EXPECT_EQ(Stop(), kDone);
  const QStringList lines = error.All();
  ASSERT_EQ(lines.size(), 3);
  for (const QString& line : lines) {
    EXPECT_GT(line.left(13).trimmed().toDouble(), 0) << line.toStdString();
    EXPECT_EQ(line.mid(13, 2), u"  "_s);
  }
  EXPECT_EQ(lines[0].mid(15), u"PC     > #0102v00BC␍         Gerät 1: Versionsabfrage"_s);
  EXPECT_EQ(lines[1].mid(15), u"Störung: error-04"_s);
  EXPECT_EQ(lines[2].mid(15), u"Regler < "_s + QString::fromLatin1(Sealed("10102?04")).chopped(1) +
                                  u"␍         Abgelehnt: Code 04 Falsches Kennzeichen"_s);
}

TEST_F(ProgramTest, EndsWhenAFaultUnplugsTheLine) {
  const QString path = folder.filePath(u"regler"_s);
  const QString device = Start({u"--fault=unplug:1:1"_s, u"--link"_s, path});
  const PcPort pc(device);
  pc.Send(Sealed("#0102v00"));
  EXPECT_TRUE(pc.HangsUp());
  EXPECT_EQ(status.get(), kDone);
  EXPECT_EQ(error.All(), QStringList{u"Die Leitung wurde getrennt."_s});
  EXPECT_TRUE(QDir(folder.path()).isEmpty());
}

TEST_F(ProgramTest, RepliesToHelpAndVersionWithoutDefinitions) {
  EXPECT_EQ(RunToEnd({u"--help"_s}), kDone);
  EXPECT_EQ(RunToEnd({u"--program-version"_s}), kDone);
  EXPECT_EQ(out.All(), (QStringList{HelpText(), u"kalivor-sim " KALIVOR_VERSION ""_s}));
  EXPECT_TRUE(files.reads.isEmpty());
}

TEST_F(ProgramTest, ReportsWhatItCannotReadOrWrite) {
  const QString dump = folder.filePath(u"fehlt/dump"_s);
  const struct {
    QStringList arguments;
    QString message;
  } cases[] = {
      {{u"--ini-path"_s, u"/leer"_s},
       u"Fehler beim Lesen von | /leer/VF.INI | Datei nicht gefunden. | Ueberprüfen Sie die Einstellungen in "
       "Optionen -> Dateien"_s},
      {{u"--ini-path"_s, u"/def"_s, u"--controller"_s, u"HZL-012.1"_s},
       u"Unbekannte Reglerversion: HZL-012.1"_s},
      {{u"--ini-path"_s, u"/def"_s, u"--controller"_s, u"Prototyp"_s},
       u"Kein Regler kann sich mit der Version „Prototyp“ melden: Sie muss aus drei oder vier Zeichen, "
       u"„-“ und "
       "einer Nummer wie 012.0 bestehen."_s},
      {{u"--ini-path"_s, u"/def"_s, u"--values"_s, u"/fehlt.qpf"_s},
       u"Fehler beim Lesen von /fehlt.qpf: Datei nicht gefunden."_s},
      {{u"--ini-path"_s, u"/def"_s, u"--values"_s, u"/def/VF.INI"_s},
       u"Die Wertedatei /def/VF.INI enthält keinen Parameter dieser Reglerversion."_s},
  };
  for (const auto& [arguments, message] : cases) {
    EXPECT_EQ(RunToEnd(arguments), kBadInput);
    EXPECT_EQ(error.All().last(), message);
  }
  EXPECT_EQ(RunToEnd({u"--ini-path"_s, u"/def"_s, u"--controller"_s, u"HZL-099.9"_s}), kBadInput);
  EXPECT_TRUE(error.All().last().startsWith(u"Fehler beim Lesen der Definitionen: "));
  EXPECT_TRUE(out.All().isEmpty());

  const std::pair<QString, QString> dumps[] = {{dump, u"Der Ordner ist nicht vorhanden."_s},
                                               {folder.path(), u"Der Pfad ist ein Ordner."_s}};
  for (const auto& [path, reason] : dumps) {
    (void)Start({u"--dump"_s, path});
    EXPECT_EQ(Stop(), kBadInput);
    EXPECT_EQ(error.All().last(), u"Fehler beim Schreiben von "_s + path + u": "_s + reason);
  }
}

TEST_F(ProgramTest, EndsWithStatus2ForBadOptions) {
  EXPECT_EQ(RunToEnd({u"--ini-path"_s, u"/def"_s, u"--rate"_s, u"300"_s}), kBadInput);
  EXPECT_EQ(error.All(), QStringList{u"Option --rate: erwartet 9600 oder 19200 statt 300."_s});
  EXPECT_TRUE(files.reads.isEmpty());
}

TEST(SimArguments, AreReadInBothForms) {
  const Arguments arguments = ParseArguments(
      {u"--ini-path=/a=b"_s, u"--ini-file"_s, u"X.INI"_s, u"--rate=19200"_s, u"--paced"_s, u"--echo"_s,
       u"--plant"_s, u"-3"_s, u"--seed=4294967295"_s, u"--fault"_s, u"silent"_s, u"--fault=late:5:0.5:2"_s});
  EXPECT_EQ(arguments.error, QString());
  EXPECT_EQ(arguments.iniPath, u"/a=b"_s);
  EXPECT_EQ(arguments.iniFile, u"X.INI"_s);
  EXPECT_EQ(arguments.line.rate, 19200);
  EXPECT_TRUE(arguments.line.paced);
  EXPECT_TRUE(arguments.line.echo);
  EXPECT_EQ(arguments.plant, -3);
  EXPECT_EQ(arguments.seed, 4294967295U);
  ASSERT_EQ(arguments.faults.size(), 2U);
  EXPECT_EQ(arguments.faults[1], ParseFault(u"late:5:0.5:2"_s));
}

TEST(SimArguments, HaveDefaults) {
  const Arguments arguments = ParseArguments({u"--ini-path"_s, u"/a"_s});
  EXPECT_EQ(arguments.iniFile, u"VF.INI"_s);
  EXPECT_EQ(arguments.address, 1);
  EXPECT_EQ(arguments.line.rate, 0);
  EXPECT_FALSE(arguments.line.paced);
  EXPECT_FALSE(arguments.line.echo);
  EXPECT_FALSE(arguments.plant);
  EXPECT_FALSE(arguments.trace);
}

TEST(SimArguments, NameTheFault) {
  const struct {
    QStringList arguments;
    QString message;
  } cases[] = {
      {{}, u"Es fehlt die Option --ini-path."_s},
      {{u"--foo"_s}, u"Unbekannte Option: --foo"_s},
      {{u"wort"_s}, u"Überzähliges Argument: wort"_s},
      {{u"--ini-path"_s}, u"Option --ini-path: Wert fehlt."_s},
      {{u"--ini-path"_s, u"--echo"_s}, u"Option --ini-path: Wert fehlt."_s},
      {{u"--ini-path="_s}, u"Option --ini-path: darf nicht leer sein."_s},
      {{u"--echo=1"_s}, u"Option --echo nimmt keinen Wert."_s},
      {{u"--seed=1"_s, u"--seed=2"_s}, u"Option --seed: mehrfach angegeben."_s},
      {{u"--echo"_s, u"--echo"_s}, u"Option --echo: mehrfach angegeben."_s},
      {{u"--address=256"_s}, u"Option --address: keine Adresse von 0 bis 255: 256."_s},
      {{u"--address=x"_s}, u"Option --address: keine Adresse von 0 bis 255: x."_s},
      {{u"--plant=32768"_s}, u"Option --plant: keine Zahl von -32768 bis 32767: 32768."_s},
      {{u"--seed=-1"_s}, u"Option --seed: keine Zahl von 0 bis 4294967295: -1."_s},
      {{u"--fault=loud"_s}, u"Option --fault: keine Störung der Form ART[:RATE[:ANZAHL]]: loud."_s},
  };
  for (const auto& [arguments, message] : cases)
    EXPECT_EQ(ParseArguments(arguments).error, message);
}

}  // namespace
}  // namespace kalivor::sim
