// A PC on fakes, wired as the program does it, and the controller that it is connected to.
#pragma once

#include <algorithm>
#include <vector>

#include "commands/StartUp.h"
#include "core/Wiring.h"
#include "fakes/FakeClock.h"
#include "fakes/FakeFileSystem.h"
#include "fakes/FakeForms.h"
#include "fakes/QtPrinters.h"
#include "fakes/ThrownKind.h"
#include "sim/SimulatedLine.h"

namespace kalivor::test {

using namespace Qt::StringLiterals;

/// The controller and the line to it, in virtual time.
class FarEnd {
 public:
  FakeClock clock;
  sim::Memory memory;
  sim::Memory otherMemory;
  sim::Controller station;
  sim::Controller
      nextVersion;  // of the next version; takes the place of the first one where the faults say so
  sim::Faults faults;
  sim::LineModel model;
  sim::SimulatedLine line{clock, model};

  FarEnd(const QString& version, const sim::LineOptions& options)
      : FarEnd(sim::VersionPayload(version).value_or(QByteArray()), options) {}

  /// Stores words from `address` on.
  void Store(quint16 address, const std::vector<quint16>& words) {
    for (const quint16 word : words) {
      memory.SetWord(address, word);
      address = static_cast<quint16>(address + 2);
    }
  }

  /// The requests from the first to the last one of `count` are never answered.
  void Silence(int first, int count = 1) {
    for (int i = 0; i < count; ++i)
      faults.Plan(first + i, {});
  }

  /// No request is answered any more.
  void SilenceAll() { faults.Add({}); }

  /// What the requests so far asked for, without address and checksum: "v00", "R1F00", "W1F0004D2".
  [[nodiscard]] QStringList Requests() const {
    constexpr int kHead = 5;  // "#0102"
    constexpr int kChecksum = 2;
    QStringList bodies;
    for (const QByteArray& frame : line.sent.chopped(line.sent.isEmpty() ? 0 : 1).split('\r')) {
      if (!frame.isEmpty()) bodies.append(QString::fromLatin1(frame.mid(kHead).chopped(kChecksum)));
    }
    return bodies;
  }

 private:
  FarEnd(const QByteArray& payload, const sim::LineOptions& options)
      : station(memory, 1, FixedText<2>(u"WR"_s), payload),
        nextVersion(otherMemory, 1, FixedText<2>(u"WR"_s), sim::NextVersionPayload(payload)),
        model(station, faults, options) {
    model.SetOther(nextVersion);
  }
};

/// The PC and everything that it shows. The controller's version is "AB1-123.4" unless the test says
/// otherwise.
class Installation : public FarEnd {
 public:
  Module1 module;
  FakeFileSystem files;
  FakeMainForm main;
  FakeReportForm report;
  FakeChoiceForm choice{module};
  FakeEditorForms editors;
  FakeMessageBox box;
  FakeEvents events;
  TH timers{clock};
  Wiring wiring{module, timers, line, {main, report, choice, editors, box, files, events}};
  COM_T_frm& host = wiring.host;
  COM_A& controller = wiring.controller;
  Core& core = wiring.core;

  explicit Installation(const QString& version = u"AB1-123.4"_s, const sim::LineOptions& options = {})
      : FarEnd(version, options) {
    module.Inipath = u"ini"_s;
  }

  /// Writes the text files of the definition folder; the heading is put in front.
  void SetVersions(const QStringList& lines) { SetFile(u"ini/VF.INI"_s, lines); }
  void SetDefinitions(const QString& name, const QStringList& lines) { SetFile(u"ini//"_s + name, lines); }

  /// Two versions: the first with a plant-type record, the plant types "" and "Luft", and a parameter of
  /// every type; the second with an address list, one plant type and one parameter.
  void AddFiles() {
    SetVersions({u"AB1-123.4  -  A.TXT  Luft -  WR"_s, u"AB1-124.0  B.ADR  B.TXT  -  WR"_s});
    SetDefinitions(u"A.TXT"_s,
                   {u"NoRubrik  Anlage  0  9  0  -  0  0  int  2000  ANL  -  -"_s,
                    u"Antrieb  Drehzahl  0  30000  1500  1/m  1  0  int  1F00  N1  Luft  In\\1/m"_s,
                    u"Antrieb  Laufzeit  0  999999  65536  h  0  0  long  1F02  N2  Luft  -"_s,
                    u"Klappe  Winkel  0  90  45  Grad  0  0  char  1F07  N3  Wasser  -"_s,
                    u"Text  Kennwort  -  -  ABCD  -  0  0  string4  1F08  N4  Luft  -"_s});
    SetDefinitions(u"B.TXT"_s, {u"Antrieb  Drehzahl  0  30000  1000  1/m  1  0  int  abc[3]  _abc  -  -"_s});
    SetDefinitions(u"B.ADR"_s, {u"_abc  1F00"_s});
  }

  /// Starts the program on the files as they are.
  void Start() {
    ConnectHandlers(core);
    StartUp(core);
  }

  /// Starts it on AddFiles(), and gives the controller other values than the standard ones.
  void StartWithFiles() {
    AddFiles();
    Start();
    Store(0x1F00, {0x04D2, 0x0001, 0x0002, 0x1122, 0x5758, 0x595A});
    line.sent.clear();
  }

  /// For the engines alone: the version is selected and the report begun, but there are no parameters yet.
  void StartEmpty() {
    module.Versionen.resize(2);
    module.Versionen[1].Kennung = u"WR"_s;
    module.VersionList.Add(u"AB1-123.4"_s);
    module.VersionList.Select(0);
    controller.Configure(kSlot, kSettings9600);
    report.Add(u"Start"_s);
  }

  /// Appends a checked parameter; its number is the next one.
  ParameterRecord& AddParameter(const QString& type, const QString& address,
                                const QString& variable = u"V"_s) {
    module.ParNode[module.ParCount] = kTrue;
    ParameterRecord& record = module.Par[module.ParCount++];
    record.Typ = type;
    record.VarAdresse = address;
    record.Variable = variable;
    return record;
  }

  /// How often files whose name ends in `name` have been read.
  [[nodiscard]] qsizetype Readings(const QString& name) const {
    return std::count_if(files.reads.begin(), files.reads.end(),
                         [&](const QString& path) { return path.endsWith(name); });
  }

  /// Nothing is under way and the port is closed.
  [[nodiscard]] bool Rests() const {
    return module.BusyDepth == 0 && main.enabled && main.state == u"Ready"_s && report.okEnabled &&
           !report.abortEnabled && !line.IsOpen();
  }

 private:
  void SetFile(const QString& path, const QStringList& lines) {
    files.AddText(path, (QStringList{u"Heading"_s} + lines).join(u"\r\n"_s) + u"\r\n"_s);
  }
};

/// The texts of the boxes shown since the last look.
[[nodiscard]] inline QStringList TakeBoxes(FakeMessageBox& box) {
  QStringList texts;
  for (const FakeMessageBox::Box& shown : box.Take())
    texts.append(shown.text);
  return texts;
}

/// A text with a vertical bar between its lines, as tests write down what a report holds.
[[nodiscard]] inline QString Lines(const QStringList& lines) {
  return lines.join(u" | "_s);
}

}  // namespace kalivor::test
