// A printing system of the tests' own: a CUPS daemon with one queue, whose printer keeps what it is sent.
#pragma once

#include <gtest/gtest.h>
#include <QDir>
#include <QFile>
#include <QProcess>
#include <QStandardPaths>
#include <QTemporaryDir>
#include <QTest>
#include <vector>

namespace kalivor::test {

using namespace Qt::StringLiterals;

/// A job as the printer got it.
struct ArrivedJob {
  QString title;
  int copies = 0;  ///< that the device is to make
  QString file;    ///< a PDF
};

/// Works for any user, beside a daemon that the system may have. Everything is in a folder that goes with the
/// process, its temporary files too. One object at a time.
class PrintServer {
 public:
  static constexpr char16_t kQueue[] = u"Pruefdrucker";

  /// Long enough on a loaded machine; only a hang takes it.
  static constexpr int kHang_ms = 30'000;

  PrintServer() {
    for (const QString& name : {u"temporary"_s, u"jobs"_s, u"cups"_s})
      QDir(Path(name)).removeRecursively();
    // Before the printing library reads them.
    qputenv("CUPS_SERVER", QFile::encodeName(Path(u"sock"_s)));
    qputenv("TMPDIR", QFile::encodeName(Path(u"temporary"_s)));
    for (const QString& name : {u"temporary"_s, u"jobs"_s, u"cups/ppd"_s, u"cups/bin/backend"_s,
                                u"cups/cache"_s, u"cups/spool"_s, u"cups/tmp"_s})
      QDir().mkpath(Path(name));
    // With it the daemon starts the printer's program.
    QFile::link(HelperFolder(), Path(u"cups/bin/daemon"_s));
    WriteFiles();
  }
  ~PrintServer() {
    Stop();
    qunsetenv("TMPDIR");
  }
  PrintServer(const PrintServer&) = delete;
  PrintServer& operator=(const PrintServer&) = delete;

  /// The programs that it takes and that are not here.
  [[nodiscard]] static QStringList MissingPrograms() {
    QStringList missing;
    for (const QString& name : {u"cupsd"_s, u"lpstat"_s, u"lpadmin"_s, u"cupsreject"_s, u"cupsaccept"_s}) {
      if (Found(name).isEmpty()) missing.append(name);
    }
    if (HelperFolder().isEmpty()) missing.append(u"cups-exec"_s);
    return missing;
  }

  /// Starts the daemon with the queue as the default one.
  [[nodiscard]] bool Start() {
    daemon_.setProcessChannelMode(QProcess::MergedChannels);
    daemon_.start(Found(u"cupsd"_s),
                  {u"-f"_s, u"-c"_s, Path(u"cups/cupsd.conf"_s), u"-s"_s, Path(u"cups/cups-files.conf"_s)});
    bool running = false;
    (void)QTest::qWaitFor(
        [&] {
          running = Run(u"lpstat"_s, {u"-r"_s}).contains("is running");
          return running || daemon_.state() == QProcess::NotRunning;
        },
        kHang_ms);
    if (!running) ADD_FAILURE() << daemon_.readAll().toStdString() << Log();
    return running;
  }

  void Stop() {
    if (daemon_.state() == QProcess::NotRunning) return;
    daemon_.terminate();
    if (!daemon_.waitForFinished(kHang_ms)) daemon_.kill();
  }

  void RemoveQueue() { Run(u"lpadmin"_s, {u"-x"_s, Queue()}); }
  void Reject() { Run(u"cupsreject"_s, {Queue()}); }
  void Accept() { Run(u"cupsaccept"_s, {Queue()}); }

  /// How many jobs the daemon has taken so far.
  [[nodiscard]] int TakenJobs() {
    return static_cast<int>(Run(u"lpstat"_s, {u"-W"_s, u"all"_s, u"-o"_s}).count('\n'));
  }

  /// The jobs in their order, once `count` have reached the printer.
  [[nodiscard]] std::vector<ArrivedJob> Jobs(int count) {
    const QDir jobs(Path(u"jobs"_s));
    const auto names = [&] { return jobs.entryList({u"*.pdf"_s}, QDir::Files); };
    EXPECT_TRUE(QTest::qWaitFor([&] { return names().size() >= count; }, kHang_ms)) << Log();
    EXPECT_EQ(TakenJobs(), count) << Log();
    std::vector<ArrivedJob> arrived;
    for (const QString& name : names()) {
      QFile notes(jobs.filePath(QString(name).replace(u".pdf"_s, u".txt"_s)));
      if (!notes.open(QIODevice::ReadOnly)) ADD_FAILURE() << "no notes on " << name.toStdString();
      const QStringList lines = QString::fromUtf8(notes.readAll()).split(u'\n');
      arrived.push_back({lines.value(1), lines.value(0).toInt(), jobs.filePath(name)});
    }
    return arrived;
  }

  /// What this process has left in its folder for temporary files.
  [[nodiscard]] static QStringList TemporaryFiles() {
    return QDir(Path(u"temporary"_s)).entryList(QDir::Files | QDir::Hidden);
  }

  [[nodiscard]] static QString Queue() { return QString::fromUtf16(kQueue); }

 private:
  // The printing library asks for the server once in a process, so all of a process are in the same place.
  static QString Folder() {
    static const QTemporaryDir folder;
    return folder.path();
  }
  static QString Path(const QString& name) { return Folder() + u'/' + name; }

  static QString Found(const QString& program) {
    const QString found = QStandardPaths::findExecutable(program);
    return found.isEmpty() ? QStandardPaths::findExecutable(program, {u"/usr/sbin"_s, u"/usr/local/sbin"_s})
                           : found;
  }

  static QString HelperFolder() {
    for (const QString& folder : {u"/usr/lib/cups/daemon"_s, u"/usr/libexec/cups/daemon"_s}) {
      if (QFile::exists(folder + u"/cups-exec"_s)) return folder;
    }
    return {};
  }

  static QByteArray Run(const QString& program, const QStringList& arguments) {
    QProcess process;
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(u"LC_ALL"_s, u"C"_s);
    process.setProcessEnvironment(environment);
    process.start(Found(program), arguments);
    EXPECT_TRUE(process.waitForFinished(kHang_ms)) << program.toStdString();
    return process.readAllStandardOutput();
  }

  [[nodiscard]] static std::string Log() {
    QFile log(Path(u"cups/error_log"_s));
    return log.open(QIODevice::ReadOnly) ? log.readAll().toStdString() : "the daemon wrote no log";
  }

  static void Write(const QString& name, const QString& text) {
    QFile file(Path(name));
    EXPECT_TRUE(file.open(QIODevice::WriteOnly | QIODevice::Truncate)) << name.toStdString();
    file.write(text.toUtf8());
    // Of a daemon that runs as root, only what nobody else may change or run is trusted.
    file.setPermissions(QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
  }

  static void WriteFiles() {
    Write(u"cups/cups-files.conf"_s,
          uR"(ServerRoot %1/cups
StateDir %1/cups
CacheDir %1/cups/cache
RequestRoot %1/cups/spool
TempDir %1/cups/tmp
ServerBin %1/cups/bin
DocumentRoot %1/cups
AccessLog %1/cups/access_log
ErrorLog %1/cups/error_log
PageLog %1/cups/page_log
)"_s.arg(Folder()));
    Write(u"cups/cupsd.conf"_s,
          uR"(Listen %1/sock
Browsing Off
WebInterface No
<Location />
  Order allow,deny
  Allow all
</Location>
<Policy default>
  <Limit All>
    Order allow,deny
    Allow all
  </Limit>
</Policy>
)"_s.arg(Folder()));
    Write(u"cups/printers.conf"_s,
          uR"(<DefaultPrinter %1>
Info %1
DeviceURI keep:/
State Idle
Accepting Yes
Shared No
ErrorPolicy abort-job
</DefaultPrinter>
)"_s.arg(Queue()));
    Write(u"cups/ppd/"_s + Queue() + u".ppd"_s, Description());
    // Called with: job, user, title, copies, options. The PDF comes last, so that its notes are there with
    // it.
    Write(u"cups/bin/backend/keep"_s,
          uR"(#!/bin/sh
[ $# -gt 0 ] || exit 0
job=$(printf '%1/jobs/%05d' "$1")
cat "${6:--}" >"$job.part"
printf '%s\n%s\n' "$4" "$3" >"$job.txt"
mv "$job.part" "$job.pdf"
)"_s.replace(u"%1"_s, Folder()));
  }

  // A printer that takes PDF as it is.
  static QString Description() {
    QString text =
        uR"ppd(*PPD-Adobe: "4.3"
*FormatVersion: "4.3"
*FileVersion: "1.0"
*LanguageVersion: English
*LanguageEncoding: ISOLatin1
*PCFileName: "PRUEF.PPD"
*Manufacturer: "Pruef"
*Product: "(Pruefdrucker)"
*ModelName: "Pruefdrucker"
*ShortNickName: "Pruefdrucker"
*NickName: "Pruefdrucker"
*PSVersion: "(3010.000) 0"
*LanguageLevel: "3"
*ColorDevice: True
*DefaultColorSpace: RGB
*FileSystem: False
*Throughput: "1"
*LandscapeOrientation: Plus90
*TTRasterizer: Type42
*cupsFilter2: "application/pdf application/pdf 0 -"
)ppd"_s;
    for (const QString& name : {u"PageSize"_s, u"PageRegion"_s}) {
      text +=
          uR"(*OpenUI *%1: PickOne
*OrderDependency: 10 AnySetup *%1
*Default%1: A4
*%1 A4/A4: "<</PageSize[595 842]>>setpagedevice"
*%1 Letter/Letter: "<</PageSize[612 792]>>setpagedevice"
*CloseUI: *%1
)"_s.replace(u"%1"_s, name);
    }
    return text +
           uR"ppd(*DefaultImageableArea: A4
*ImageableArea A4/A4: "12 12 583 830"
*ImageableArea Letter/Letter: "12 12 600 780"
*DefaultPaperDimension: A4
*PaperDimension A4/A4: "595 842"
*PaperDimension Letter/Letter: "612 792"
*DefaultFont: Courier
*Font Courier: Standard "(002.004S)" Standard ROM
)ppd"_s;
  }

  QProcess daemon_;
};

}  // namespace kalivor::test
