// What kalivor-sim does from start to end.
#include "sim/Program.h"

#include <QFileInfo>
#include <QSaveFile>
#include <cerrno>

#include "core/ValueFileFormat.h"
#include "platform/posix/FileErrors.h"
#include "sim/Arguments.h"
#include "sim/Controller.h"
#include "sim/Definitions.h"
#include "sim/PtyLine.h"

using namespace Qt::StringLiterals;

namespace kalivor::sim {
namespace {

// Reads the definitions and the values. Returns "" or the fault in German.
QString Prepare(const Arguments& arguments, platform::FileSystem& files, const Console& console,
                Module1& module, Memory& memory) {
  module.Inipath = arguments.iniPath;
  module.Inifile = arguments.iniFile;
  QString error = LoadDefinitions(module, files, arguments.controller);
  if (!error.isEmpty()) return error;

  memory.LoadStandards(module);
  if (!arguments.values.isEmpty()) {
    const platform::FileContent file = files.Read(arguments.values);
    if (!file.Ok()) return u"Fehler beim Lesen von "_s + arguments.values + u": "_s + file.error;
    if (memory.LoadValues(module, ParseValueFile(file.bytes)) == 0) {
      return u"Die Wertedatei "_s + arguments.values + u" enthält keinen Parameter dieser Reglerversion."_s;
    }
  }
  if (!memory.SetPlantNumber(module, arguments.plant) && arguments.plantGiven) {
    console.error(
        u"Hinweis: Diese Reglerversion hat keine Adresse für die Anlagennummer; --plant wirkt nicht."_s);
  }
  return {};
}

QString WriteDump(const QString& path, const Memory& memory) {
  QSaveFile file(path);
  const QByteArray text = memory.Dump().toLatin1();
  // Unbuffered: with a buffer a full disk is not told of.
  if (file.open(QIODevice::WriteOnly | QIODevice::Unbuffered) && file.write(text) == text.size() &&
      file.commit())
    return {};
  // The toolkit's own reason would be English. It tells of a folder without asking the system.
  const int error = errno;
  return u"Fehler beim Schreiben von "_s + path + u": "_s +
         platform::DescribeWriting(QFileInfo(path).isDir() ? EISDIR : error);
}

QString TraceLine(double seconds, const TraceEvent& event) {
  const QString time = QString::number(seconds, 'f', 6).rightJustified(13);
  // Control characters as their symbols; a carriage return becomes "␍".
  QString bytes = QString::fromLatin1(event.bytes);
  for (QChar& c : bytes) {
    if (c < u' ') c = QChar(0x2400 + c.unicode());
  }
  switch (event.kind) {
    case TraceEvent::Kind::Request:
      return time + u"  PC     > "_s + bytes;
    case TraceEvent::Kind::Reply:
      return time + u"  Regler < "_s + bytes;
    case TraceEvent::Kind::Fault:
      return time + u"  Störung: "_s + event.fault;
    case TraceEvent::Kind::NoReply:
      return time + u"  keine Antwort"_s;
    case TraceEvent::Kind::Unplug:
      return time + u"  Leitung getrennt"_s;
  }
  return {};
}

int Serve(const Arguments& arguments, const Console& console, PtyLine& line, int stopDescriptor) {
  QString error = line.Open();
  if (error.isEmpty() && !arguments.link.isEmpty()) error = line.Link(arguments.link);
  if (!error.isEmpty()) {
    console.error(error);
    return kBadInput;
  }
  console.out(line.DeviceName());
  switch (line.Run(stopDescriptor)) {
    case PtyLine::End::Stopped:
      return kDone;
    case PtyLine::End::Unplugged:
      console.error(u"Die Leitung wurde getrennt."_s);
      return kDone;
    case PtyLine::End::Failed:
      break;
  }
  console.error(u"Das Pseudo-Terminal ist ausgefallen."_s);
  return kBadInput;
}

}  // namespace

int Run(const QStringList& list, platform::FileSystem& files, const Console& console, int stopDescriptor) {
  const Arguments arguments = ParseArguments(list);
  if (!arguments.error.isEmpty()) {
    console.error(arguments.error);
    return kBadInput;
  }
  if (arguments.help || arguments.programVersion) {
    console.out(arguments.help ? HelpText() : u"kalivor-sim " KALIVOR_VERSION ""_s);
    return kDone;
  }

  Module1 module;
  Memory memory;
  const QString fault = Prepare(arguments, files, console, module, memory);
  if (!fault.isEmpty()) {
    console.error(fault);
    return kBadInput;
  }
  const VersionRecord& version = module.VersionRow(module.VersionIndex);
  const std::optional<QByteArray> payload = VersionPayload(version.Version);
  if (!payload) {
    console.error(
        u"Kein Regler kann sich mit der Version „"_s + version.Version +
        u"“ melden: Sie muss aus drei oder vier Zeichen, „-“ und einer Nummer wie 012.0 bestehen."_s);
    return kBadInput;
  }

  Controller controller(memory, arguments.address, version.Kennung, *payload);
  Faults faults(arguments.seed);
  for (const FaultRule& rule : arguments.faults)
    faults.Add(rule);
  LineModel model(controller, faults, arguments.line);
  const double start = PtyLine::Seconds();
  if (arguments.trace) {
    model.OnTrace = [&console, start](const TraceEvent& event) {
      console.error(TraceLine(event.time - start, event));
    };
  }
  PtyLine line(model);
  const int status = Serve(arguments, console, line, stopDescriptor);
  line.Close();
  if (status != kDone || arguments.dump.isEmpty()) return status;
  const QString dumpFault = WriteDump(arguments.dump, memory);
  if (!dumpFault.isEmpty()) console.error(dumpFault);
  return dumpFault.isEmpty() ? kDone : kBadInput;
}

}  // namespace kalivor::sim
