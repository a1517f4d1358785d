// kalivor: the desktop program.
#include <QApplication>
#include <QDesktopServices>
#include <QDir>
#include <QFileInfo>
#include <QLibraryInfo>
#include <QLocale>
#include <QProcess>
#include <QScreen>
#include <QSessionManager>
#include <QSysInfo>
#include <QTranslator>
#include <memory>
#include <optional>

#include "kalivor/Arguments.h"
#include "kalivor/Demo.h"
#include "kalivor/System.h"
#include "platform/net/LineSwitch.h"
#include "platform/plain/FileLocks.h"
#include "platform/plain/IniSettingsStore.h"
#include "platform/plain/LastResort.h"
#include "platform/plain/StoredDevices.h"
#include "platform/qt/DocumentPrinter.h"
#include "platform/qt/ManualHelp.h"
#include "platform/qt/QtEvents.h"
#include "platform/qt/QtFileDialogs.h"
#include "platform/qt/QtMessageBox.h"
#include "platform/qt/QtPrinter.h"
#include "platform/qt/TextPrinter.h"
#include "print/MDIFormPrint.h"
#include "print/TablePrinter.h"
#include "ui/Resources.h"
#include "ui/main/Desktop.h"

namespace {

using namespace Qt::StringLiterals;
using namespace kalivor;

constexpr int kBadInput = 2;

int Refuse(const QString& reason) {
  platform::native::ShowRefusal(reason + u'\n');
  return kBadInput;
}

// Everything of the real world, in the order of its needs; in a demonstration with its settings and its line.
struct Process {
  explicit Process(Demo* theDemo)
      : demo(theDemo),
        settings(demo != nullptr ? platform::IniSettingsStore(demo->SettingsFile())
                                 : platform::IniSettingsStore()),
        devices(platform::StoredDevices(settings)),
        port([this](int number) { return devices.Device(number); }),
        line(port, [this](int number) { return devices.Device(number); }) {
    // What a demonstration leaves goes with it, the backups below this folder too.
    if (demo == nullptr) return;
    settings.Save(u"Settings"_s, u"Userpath"_s, demo->StateFolder());
    history::HistorySettings history;
    history.keeps = true;
    history.technician = u"M. Muster"_s;
    history.plant = demo->Plant();
    history::SaveHistorySettings(history, settings);
  }

  [[nodiscard]] platform::SerialControl& Line() { return demo != nullptr ? demo->Line() : line; }

  [[nodiscard]] platform::PortDirectory& Ports() {
    return demo != nullptr ? demo->Ports() : static_cast<platform::PortDirectory&>(devices);
  }

  static ui::SystemInformation SystemInformation() {
    ui::SystemInformation system;
    system.registry = platform::native::SystemRegistry();
    system.fileExists = [](const QString& path) { return QFileInfo::exists(path); };
    // By its full path only: nobody's search path decides what is started.
    system.start = [](const QString& program) {
      if (QFileInfo(program).isAbsolute()) QProcess::startDetached(program, {});
    };
    return system;
  }

  static ui::Computer Computer() {
    // Windows has the second of them.
    const QString user =
        qEnvironmentVariable("USER", qEnvironmentVariable("USERNAME", QDir::home().dirName()));
    const QString name = QSysInfo::machineHostName();
    const QScreen& screen = *QGuiApplication::primaryScreen();
    const QString pixels = u"%1 × %2, %3 %"_s.arg(QString::number(screen.size().width()),
                                                  QString::number(screen.size().height()),
                                                  QString::number(qRound(100 * screen.devicePixelRatio())));
    return {{{u"Programm"_s, QStringLiteral("KALIVOR " KALIVOR_VERSION)},
             {u"Ordner des Programms"_s, QCoreApplication::applicationDirPath()},
             {u"Betriebssystem"_s, QSysInfo::prettyProductName()},
             {u"Kern"_s, QSysInfo::kernelType() + u' ' + QSysInfo::kernelVersion()},
             {u"Prozessor"_s, QSysInfo::currentCpuArchitecture()},
             {u"Qt"_s, QString::fromLatin1(qVersion())},
             {u"Sprache"_s, QLocale::system().name()},
             {u"Bildschirm"_s, pixels},
             {u"Rechner"_s, name},
             {u"Benutzer"_s, user}},
            user,
            name,
            QDir::homePath()};
  }

  [[nodiscard]] QString StateFolder() const {
    return demo != nullptr ? demo->StateFolder() : platform::native::StateFolder();
  }

  [[nodiscard]] history::StoreWorld HistoryStore() const {
    const QString folder = demo != nullptr ? demo->StateFolder() : platform::native::DataFolder();
    return {history::FileIn(folder), QStringLiteral(KALIVOR_VERSION), QSysInfo::machineHostName()};
  }

  Demo* demo;
  platform::IniSettingsStore settings;
  platform::QtMessageBox box;
  platform::native::FileSystem files;
  platform::native::SerialPorts devices;
  platform::native::SerialControl port;
  platform::LineSwitch line;
  platform::native::Clock clock;
  platform::QtEvents events;
  platform::QtFileDialogs dialogs;
  platform::FileLocks locks;
  platform::ManualHelp help{
      platform::ManualFolders(QCoreApplication::applicationDirPath(), platform::native::kManual),
      QDesktopServices::openUrl};
};

// The program speaks German, and so are the toolkit's own dialogs to do.
void InstallGermanTexts(QApplication& application) {
  auto* translator = new QTranslator(&application);
  // In the program, or where the system keeps them.
  if (translator->load(u"qtbase_de"_s, u":/translations"_s) ||
      translator->load(u"qtbase_de"_s, QLibraryInfo::path(QLibraryInfo::TranslationsPath)))
    QApplication::installTranslator(translator);
}

// What needs no window is answered without one, also where there is no display. The toolkit's own options
// pass.
bool AnswerWithoutWindow(const QStringList& arguments) {
  if (arguments.contains(u"--help"_s)) {
    platform::native::ShowAnswer(HelpText());
  } else if (arguments.contains(u"--program-version"_s)) {
    platform::native::ShowAnswer(QStringLiteral("kalivor " KALIVOR_VERSION "\n"));
  } else {
    return false;
  }
  return true;
}

// The print frame, made when it is first needed. So is the printer: making it asks the system's printing
// service, over the network where that has no local socket, and who does not print wants neither.
struct Printing {
  explicit Printing(ui::Desktop& theDesktop) : desktop(theDesktop) {}

  void Print() {
    if (desktop.module.BusyDepth > 0) return;
    if (!frame) {
      printer.emplace();
      frame = std::make_unique<print::MDIFormPrint>(
          print::PrintWorld{desktop.core, *printer, [this] { return desktop.module.Dateiname; },
                            [] { return QDate::currentDate(); }},
          desktop.guard);
      desktop.main.AddCompanion(*frame, true);
    }
    print::mnuFilePrint_Click(*frame);
  }

  [[nodiscard]] print::PageLabels Labels() const {
    return print::LabelsOf(desktop.module, {desktop.module.Dateiname, QDate::currentDate()});
  }

  ui::Desktop& desktop;
  std::optional<platform::QtPrinter> printer;
  std::unique_ptr<print::MDIFormPrint> frame;
};

int RunProgram(QApplication& application, Process& process, const RunSettings& run, const QString& device,
               const QString& valueFile) {
  ui::frmSplash splash;
  process.box.BeforeShow = [&splash] { splash.hide(); };
  std::unique_ptr<Printing> printing;
  const ui::World world{
      process.settings,
      process.box,
      process.files,
      process.Line(),
      process.clock,
      process.events,
      QCoreApplication::applicationDirPath(),
      Process::SystemInformation(),
      [](const QString& text) { platform::AskAndPrintText(u"Report"_s, text); },
      process.dialogs,
      process.help,
      process.Ports(),
      [&printing] { printing->Print(); },
      QFileInfo(process.settings.Path()).absoluteDir().filePath(u"Auswahlen.json"_s),
      {process.StateFolder(), [&process](const QString& path) { return process.locks.Take(path); }},
      [&printing](const ListTable& table) { return print::TablePdf(table, printing->Labels()); },
      [&printing](const ListTable& table) {
        print::AskAndPrintTable(u"Parameterliste"_s, table, printing->Labels());
      },
      {process.StateFolder(), QStringLiteral(KALIVOR_VERSION),
       [&process](int number) { return process.Ports().Shown(number); },
       [&process](const QString& path) { return process.locks.Take(path); }},
      &Process::Computer,
      process.HistoryStore(),
      [](const QString& title, const platform::HtmlDocument& document) {
        platform::AskAndPrintDocument(title, document);
      }};
  const std::unique_ptr<ui::Desktop> desktop = ui::Launch(splash, world, run, [&](ui::Desktop& loaded) {
    printing = std::make_unique<Printing>(loaded);
    if (!device.isEmpty()) process.devices.Override(loaded.module.Schnittstelle, device);
    QObject::connect(&application, &QGuiApplication::commitDataRequest, &loaded.main,
                     [&loaded](QSessionManager&) { loaded.main.EndSession(); });
  });
  if (!valueFile.isEmpty())
    desktop->OpenFile(QDir::toNativeSeparators(QFileInfo(valueFile).absoluteFilePath()));
  const int status = QApplication::exec();
  // The print frame works on the desktop.
  printing.reset();
  return status;
}

}  // namespace

int main(int argc, char** argv) {
  std::set_terminate(platform::LastResort<EXIT_FAILURE>);
  QStringList words;
  for (int i = 1; i < argc; ++i)
    words.append(QString::fromLocal8Bit(argv[i]));
  if (AnswerWithoutWindow(words)) return 0;

  QApplication application(argc, argv);
  QApplication::setApplicationName(u"KALIVOR"_s);
  QApplication::setDesktopFileName(u"kalivor"_s);
  QApplication::setWindowIcon(ui::ProgramIcon());
  InstallGermanTexts(application);

  const Arguments arguments = ParseArguments(QCoreApplication::arguments().sliced(1));
  if (!arguments.error.isEmpty()) return Refuse(arguments.error);

  RunSettings run{arguments.iniPath, arguments.iniFile, {}, {}};
  QString device;
  if (arguments.port) {
    const QString fault = TakePort(*arguments.port, run, device);
    if (!fault.isEmpty()) return Refuse(fault);
  }
  std::optional<Demo> demo;
  if (arguments.demo) {
    const QString fault = demo.emplace().Start();
    if (!fault.isEmpty()) return Refuse(fault);
    if (!run.iniPath) run.iniPath = demo->Folder();
  }
  Process process(demo ? &*demo : nullptr);
  return RunProgram(application, process, run, device, arguments.valueFile);
}
