// kalivor-cli: the commands of KALIVOR without a window.
#include <QCoreApplication>
#include <QSysInfo>
#include <csignal>
#include <iostream>
#include <memory>

#include "cli/Arguments.h"
#include "cli/Cli.h"
#include "cli/System.h"
#include "platform/net/LineSwitch.h"
#include "platform/plain/FileLocks.h"
#include "platform/plain/IniSettingsStore.h"
#include "platform/plain/LastResort.h"
#include "platform/plain/StoredDevices.h"
#include "print/painter/PdfPrint.h"

namespace {

volatile std::sig_atomic_t interrupts = 0;

// The first Ctrl+C asks the transfer to stop; the second one ends the program.
void OnInterrupt(int /*signal*/) {
  if (interrupts != 0) std::_Exit(kalivor::cli::kNoTransfer);
  interrupts = 1;
  // Some systems forget the handler with the first signal.
  (void)std::signal(SIGINT, OnInterrupt);
}

bool WantsToDraw(int argc, char** argv) {
  QStringList arguments;
  for (int i = 1; i < argc; ++i)
    arguments.append(QString::fromLocal8Bit(argv[i]));
  return Draws(kalivor::cli::ParseArguments(arguments));
}

}  // namespace

int main(int argc, char** argv) {
  using namespace kalivor;
  std::set_terminate(platform::LastResort<cli::kNoTransfer>);
  (void)std::signal(SIGINT, OnInterrupt);
  platform::native::PrepareConsole();
  // Only pages need fonts; everything else starts quicker without them.
  std::unique_ptr<QCoreApplication> application;
  if (WantsToDraw(argc, argv)) {
    application = print::NewPdfApplication(argc, argv, platform::native::kPaintingPlatform);
  } else {
    application = std::make_unique<QCoreApplication>(argc, argv);
  }
  platform::IniSettingsStore settings;
  platform::native::FileSystem files;
  platform::native::Clock clock;
  platform::native::SerialPorts devices(platform::StoredDevices(settings));
  const auto deviceOf = [&devices](int number) { return devices.Device(number); };
  platform::native::SerialControl port(deviceOf);
  platform::LineSwitch line(port, deviceOf);
  platform::FileLocks locks;
  SafeWorld safe;
  safe.stateFolder = platform::native::StateFolder();
  safe.programVersion = QStringLiteral(KALIVOR_VERSION);
  safe.deviceOfPort = [&devices](int number) { return devices.Device(number); };
  safe.take = [&locks](const QString& path) { return locks.Take(path); };
  cli::World world{std::cout,
                   std::cerr,
                   settings,
                   files,
                   line,
                   clock,
                   QCoreApplication::applicationDirPath(),
                   devices,
                   [] { return interrupts != 0; },
                   safe,
                   {history::FileIn(platform::native::DataFolder()), QStringLiteral(KALIVOR_VERSION),
                    QSysInfo::machineHostName()}};
  return cli::Run(QCoreApplication::arguments().sliced(1), world);
}
