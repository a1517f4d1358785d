// What kalivor-sim does from start to end.
#include "sim/Program.h"

#include <QFileInfo>
#include <QSaveFile>
#include <optional>

#include "core/TelegramText.h"
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

// Writes what a trace shows, in the words that the PC's trace has for it.
class Trace {
 public:
  /// `console` must outlive it.
  Trace(const Console& console, const Module1& module)
      : console_(console), reader_(module), version_(reader_.Version()), start_(Line::Seconds()) {}

  void Show(const TraceEvent& event) {
    if (event.kind == TraceEvent::Kind::Request) request_ = event.bytes;
    console_.error(QString::number(event.time - start_, 'f', 6).rightJustified(13) + u"  "_s + Text(event));
  }

 private:
  [[nodiscard]] QString Text(const TraceEvent& event) const {
    switch (event.kind) {
      case TraceEvent::Kind::Request:
        return RequestLine(ShownCharacters(event.bytes), reader_.RequestText(event.bytes, version_));
      case TraceEvent::Kind::Reply:
      case TraceEvent::Kind::NoReply:
        return ReplyLine(ShownCharacters(event.bytes),
                         reader_.ReplyText(request_, event.bytes, version_).text);
      case TraceEvent::Kind::Fault:
        return u"Störung: "_s + event.fault;
      case TraceEvent::Kind::Unplug:
        return u"Leitung getrennt"_s;
    }
    return {};
  }

  const Console& console_;
  TelegramReader reader_;
  QString version_;
  double start_;
  QByteArray request_;  // the last one: a reply says nothing without it
};

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
  std::optional<Trace> trace;
  if (arguments.trace) {
    trace.emplace(console, station.module);
    model.OnTrace = [&trace](const TraceEvent& event) { trace->Show(event); };
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
