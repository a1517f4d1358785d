// kalivor-cli with everything around it in memory, and a simulated controller in virtual time.
#pragma once

#include <gtest/gtest.h>
#include <QMap>
#include <optional>
#include <sstream>

#include "cli/Cli.h"
#include "fakes/FakeClock.h"
#include "fakes/FakeFileSystem.h"
#include "fakes/FakePortDirectory.h"
#include "fakes/QtPrinters.h"
#include "sim/Controller.h"
#include "sim/SimulatedLine.h"

namespace kalivor::cli {

using namespace Qt::StringLiterals;

/// Settings in memory.
class MemorySettings final : public platform::SettingsStore {
 public:
  QHash<QString, QString> values;
  int saved = 0;

  [[nodiscard]] QString Get(const QString& section, const QString& key,
                            const QString& fallback) const override {
    return values.value(section + u'/' + key, fallback);
  }
  void Save(const QString&, const QString&, const QString&) override { ++saved; }
};

inline const QString kHeading = u"Ueberschrift\r\n"_s;

/// One parameter of each kind, and a controller that holds their standard values.
class CliTest : public testing::Test {
 protected:
  CliTest() {
    settings.values = {{u"Settings/Inipath"_s, test::Native(u"/d"_s)}};
    files.AddText(u"/d/VF.INI"_s, kHeading +
                                      u"AB1-123.4  -  D1.TXT  Heizung Kühlung -  WR\r\n"
                                      "AB1-200.0  -  D2.TXT  A  WR\r\n"_s);
    files.AddText(
        u"/d//D1.TXT"_s,
        kHeading +
            u"NoRubrik  Anlage  0  2  0  -  0  0  int  0100  ANLAGE  Heizung  -\r\n"
            "Antrieb  Drehzahl  0  30000  1500  1/m  1  0  int  1F00  SOLL  Heizung Kühlung  Hilfe\\zwei\r\n"
            "Antrieb  Zähler  0  99999999  70000  -  0  0  long  1F02  ZAEHLER  Heizung  -\r\n"
            "Text  Name  0  0  abcd  -  0  0  string4  1F10  NAME  Heizung  -\r\n"_s);
    files.AddText(u"/d//D2.TXT"_s,
                  kHeading + u"Antrieb  Drehzahl  0  30000  100  1/m  1  0  int  2000  SOLL  A  -\r\n"_s);
    memory.SetWord(0x1F00, 1500);
    memory.SetWord(0x1F02, 1);
    memory.SetWord(0x1F04, 70000 - 65536);
    memory.SetWord(0x1F10, 0x6162);
    memory.SetWord(0x1F12, 0x6364);
  }

  [[nodiscard]] sim::Controller ControllerOf(const QString& version) {
    return {memory, 1, u"WR"_s, *sim::VersionPayload(version)};
  }

  /// Puts a fault on the exchanges from `first` to `last`, counted from 1.
  void Spoil(int first, int last, sim::FaultKind kind) {
    for (int exchange = first; exchange <= last; ++exchange)
      faults.Plan(exchange, {kind, 0, QByteArray()});
  }

  int Run(const QStringList& arguments) {
    out.str({});
    err.str({});
    World world{out,
                err,
                settings,
                files,
                line,
                clock,
                u"/programm"_s,
                ports,
                [this] { return interrupted; },
                safe,
                historyStore};
    return cli::Run(arguments, world);
  }

  [[nodiscard]] QString Out() const { return QString::fromStdString(out.str()); }
  [[nodiscard]] QString Err() const { return QString::fromStdString(err.str()); }

  MemorySettings settings;
  test::FakeFileSystem files;
  test::FakeClock clock;
  sim::Memory memory;
  std::optional<sim::Controller> controller{ControllerOf(u"AB1-123.4"_s)};
  sim::Faults faults;
  sim::LineModel model{*controller, faults};
  sim::SimulatedLine line{clock, model};
  test::FakePortDirectory ports;
  bool interrupted = false;
  SafeWorld safe{test::Native(u"/zustand"_s),
                 u"1.2.3"_s,
                 {},
                 [](const QString&) { return true; },
                 [] { return QDateTime(QDate(2026, 3, 4), QTime(5, 6, 7), Qt::UTC); }};
  history::StoreWorld historyStore;  ///< no history can be kept
  std::ostringstream out;
  std::ostringstream err;
};

}  // namespace kalivor::cli
