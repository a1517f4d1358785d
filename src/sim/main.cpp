// kalivor-sim: a simulated controller for demonstration, training and tests.
#include <QCoreApplication>
#include <iostream>

#include "platform/plain/LastResort.h"
#include "sim/Host.h"
#include "sim/Program.h"
#include "sim/System.h"

namespace {

// A line of UTF-8, shown at once.
void Write(std::ostream& stream, const QString& line) {
  stream << line.toStdString() << std::endl;
}

}  // namespace

int main(int argc, char** argv) {
  using namespace kalivor;
  std::set_terminate(platform::LastResort<sim::kBadInput>);
  const sim::Host host;
  if (!host.Ready()) return sim::kBadInput;
  platform::native::PrepareConsole();
  const QCoreApplication application(argc, argv);
  host.QuitOnRequest();
  platform::native::FileSystem files;
  const sim::Console console{[](const QString& line) { Write(std::cout, line); },
                             [](const QString& line) { Write(std::cerr, line); }};
  const auto makeLine = [&host](sim::LineModel& model, const sim::Arguments& arguments) {
    return host.MakeLine(model, arguments);
  };
  return sim::Run(QCoreApplication::arguments().sliced(1), files, console, makeLine);
}
