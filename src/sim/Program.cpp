// What kalivor-sim does from start to end.
#include "sim/Program.h"

#include <QFileInfo>
#include <QSaveFile>

#include "core/ValueFileFormat.h"
#include "platform/plain/FileError.h"
#include "sim/Station.h"
#include "sim/System.h"

using namespace Qt::StringLiterals;

namespace kalivor::sim {
namespace {

// Something is wrong with what the user has given; the program cannot go on.
struct BadInput {
  QString message;  // German
};

// `fault`: in German, "" where there is none.
void RequireNone(const QString& fault) {
  if (!fault.isEmpty()) throw BadInput{fault};
}

// Puts what the user has given into the controller's memory.
void TakeValues(const Arguments& arguments, platform::FileSystem& files, const Console& console,
                Station& station) {
  if (!arguments.values.isEmpty()) {
    const platform::FileContent file = files.Read(arguments.values);
    if (!file.Ok()) throw BadInput{u"Fehler beim Lesen von "_s + arguments.values + u": "_s + file.error};
    if (station.memory.LoadValues(station.module, ParseValueFile(file.bytes)) == 0) {
      throw BadInput{u"Die Wertedatei "_s + arguments.values +
                     u" enthält keinen Parameter dieser Reglerversion."_s};
    }
  }
  if (arguments.plant && !station.memory.SetPlantNumber(station.module, *arguments.plant)) {
    console.error(
        u"Hinweis: Diese Reglerversion hat keine Adresse für die Anlagennummer; --plant wirkt nicht."_s);
  }
}

void WriteDump(const QString& path, const Memory& memory) {
  QSaveFile file(path);
  const QByteArray text = memory.Dump().toLatin1();
  // Unbuffered: with a buffer a full disk is not told of.
  if (file.open(QIODevice::WriteOnly | QIODevice::Unbuffered) && file.write(text) == text.size() &&
      file.commit())
    return;
  // The toolkit's own reason would be English. It tells of a folder without asking the system.
  const QString reason = platform::native::DescribeLastWriting();
  throw BadInput{u"Fehler beim Schreiben von "_s + path + u": "_s +
                 (QFileInfo(path).isDir() ? DescribeWriting(platform::FileError::IsFolder, 0) : reason)};
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

// Opens the line and answers on it until the user ends the program or the line vanishes.
void Serve(const Arguments& arguments, const Console& console, Line& line) {
  RequireNone(line.Open());
  if (!arguments.link.isEmpty()) RequireNone(line.Link(arguments.link));
  console.out(line.DeviceName());
  const Line::End end = line.Run();
  if (end == Line::End::Failed) throw BadInput{u"Das Pseudo-Terminal ist ausgefallen."_s};
  if (end == Line::End::Unplugged) console.error(u"Die Leitung wurde getrennt."_s);
}

void Simulate(const Arguments& arguments, platform::FileSystem& files, const Console& console,
              const MakeLine& makeLine) {
  Station station;
  station.module.Inipath = arguments.iniPath;
  station.module.Inifile = arguments.iniFile;
  RequireNone(SetUp(station, files, arguments.controller, arguments.address));
  TakeValues(arguments, files, console, station);
  Faults faults(arguments.seed);
  for (const FaultRule& rule : arguments.faults)
    faults.Add(rule);
  LineModel model(*station.controller, faults, arguments.line);
  model.SetOther(*station.other);
  if (arguments.trace) {
    model.OnTrace = [&console, start = Line::Seconds()](const TraceEvent& event) {
      console.error(TraceLine(event.time - start, event));
    };
  }
  const std::unique_ptr<Line> line = makeLine(model, arguments);
  Serve(arguments, console, *line);
  line->Close();
  if (!arguments.dump.isEmpty()) WriteDump(arguments.dump, station.memory);
}

}  // namespace

int Run(const QStringList& list, platform::FileSystem& files, const Console& console,
        const MakeLine& makeLine) {
  try {
    const Arguments arguments = ParseArguments(list);
    RequireNone(arguments.error);
    if (arguments.help || arguments.programVersion) {
      console.out(arguments.help ? HelpText() : u"kalivor-sim " KALIVOR_VERSION ""_s);
    } else {
      Simulate(arguments, files, console, makeLine);
    }
    return kDone;
  } catch (const BadInput& bad) {
    console.error(bad.message);
    return kBadInput;
  }
}

}  // namespace kalivor::sim
