// kalivor-sim: a simulated controller for demonstration, training and tests.
#include <QCoreApplication>
#include <iostream>

#include "platform/plain/LastResort.h"
#include "platform/posix/PosixFileSystem.h"
#include "sim/Program.h"
#include "sim/PtyLine.h"

namespace {

// A line of UTF-8, shown at once.
void Write(std::ostream& stream, const QString& line) {
  stream << line.toStdString() << std::endl;
}

}  // namespace

int main(int argc, char** argv) {
  using namespace kalivor;
  std::set_terminate(platform::LastResort<sim::kBadInput>);
  const int stop = sim::StopSignalDescriptor();
  if (stop < 0) return sim::kBadInput;
  const QCoreApplication application(argc, argv);
  platform::PosixFileSystem files;
  const sim::Console console{[](const QString& line) { Write(std::cout, line); },
                             [](const QString& line) { Write(std::cerr, line); }};
  return sim::Run(QCoreApplication::arguments().sliced(1), files, console, stop);
}
