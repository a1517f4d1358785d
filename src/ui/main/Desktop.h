// The desktop program without the process around it: tables, windows and commands wired together.
#pragma once

#include <QTimer>
#include <functional>
#include <memory>

#include "comm/TH.h"
#include "commands/EventBoundary.h"
#include "commands/FileCommands.h"
#include "commands/Recovery.h"
#include "commands/SafeStore.h"
#include "commands/Selections.h"
#include "commands/SettingsTable.h"
#include "core/ListTable.h"
#include "core/Report.h"
#include "core/Wiring.h"
#include "history/Recorder.h"
#include "platform/Clock.h"
#include "platform/Help.h"
#include "platform/PortDirectory.h"
#include "platform/SettingsStore.h"
#include "ui/about/SystemInformation.h"
#include "ui/about/frmSplash.h"
#include "ui/dialogs/DialogReport.h"
#include "ui/dialogs/DlgAchtung.h"
#include "ui/dialogs/DlgAuswahl.h"
#include "ui/dialogs/Editors.h"
#include "ui/findings/FindingsWindow.h"
#include "ui/history/HistoryWindow.h"
#include "ui/history/ServiceReportWindow.h"
#include "ui/history/SyncDialog.h"
#include "ui/line/ConnectionWindow.h"
#include "ui/line/DiagnosisWindow.h"
#include "ui/line/TelegramsWindow.h"
#include "ui/list/ParameterListWindow.h"
#include "ui/list/ProgressDialog.h"
#include "ui/main/HelpKey.h"
#include "ui/main/UndoStack.h"
#include "ui/main/frmMain.h"
#include "ui/options/frmOptions.h"
#include "ui/safe/BackupsWindow.h"
#include "ui/safe/SafeWindow.h"
#include "ui/safe/UnfinishedDialog.h"

namespace kalivor::ui {

/// The world that the program works in. Everything must outlive it.
struct World {
  platform::SettingsStore& settings;
  platform::MessageBox& box;
  platform::FileSystem& files;
  platform::SerialControl& line;
  platform::Clock& clock;
  platform::Events& events;
  QString programFolder;                               ///< default of the folders among the settings
  SystemInformation systemInformation;                 ///< for the about box
  std::function<void(const QString& text)> printText;  ///< prints the report
  platform::FileDialogs& dialogs;
  platform::Help& help;
  platform::PortDirectory& ports;
  std::function<void()> print;  ///< the Print command; empty: its item is disabled
  QString selectionsFile;       ///< path of the named selections
  RecoveryWorld recovery;       ///< of what is unsaved
  std::function<QByteArray(const ListTable& table)> tablePdf{};  ///< a document of the printed table
  std::function<void(const ListTable& table)> printTable{};      ///< asks for a printer and prints it
  SafeWorld safe{};                                              ///< of backups and unfinished sendings
  std::function<Computer()> computer{};                          ///< for the report for a support desk
  history::StoreWorld historyStore{};                            ///< without a file no history can be kept
  /// Asks for a printer and prints the report of a visit; empty: there is no button for it.
  std::function<void(const QString& title, const platform::HtmlDocument& document)> printDocument{};
};

/// The order of the members is that of their needs. Construction loads the main window: settings and place.
struct Desktop {
  explicit Desktop(const World& world, const RunSettings& run = {});
  Desktop(const Desktop&) = delete;
  Desktop& operator=(const Desktop&) = delete;

  /// Reads the definitions, builds the tree, configures the port. Errors are shown in boxes.
  void Start();

  /// Opens a value file as the Open command does once the user has chosen it.
  void OpenFile(const QString& path);

  /// Asks what is to become of a sending that was left unfinished, if there is one.
  void ShowUnfinished();

  /// Runs what the user sets off: one step that can be taken back, as far as it changes the table. Shows the
  /// RuntimeError that escapes it; false then. `guard` does the same.
  bool Run(const std::function<void()>& handler);

  /// These settings of the history hold from now on, and are stored.
  void UseHistory(const history::HistorySettings& settings);

  World world;
  platform::EventGuard guard;
  Module1 module;
  ChangeLog changes{module};
  frmMain main;
  Editors editors;
  DlgAuswahl auswahl;
  DlgAchtung achtung;
  TH timers;
  DialogReport reportDialog;
  Report report;
  Wiring wiring;
  Core& core = wiring.core;
  FileCommandContext files;
  Selections selections{world.files, world.selectionsFile};
  Recovery recovery{world.files, world.recovery};
  SafeStore safeStore{world.files, world.safe};
  history::Recorder recorder{{core, wiring.host.Exchanges, world.safe.deviceOfPort, world.historyStore,
                              [this](const QString& failure) { HearOfHistory(failure); }}};
  frmOptions options;
  UndoStack undo{core, changes};
  HelpKey helpKey{world.help, guard};
  std::unique_ptr<FindingsWindow> findings;   ///< made when it is first opened
  std::unique_ptr<ProgressDialog> progress;   ///< made with the list
  std::unique_ptr<ParameterListWindow> list;  ///< made when it is first opened
  std::unique_ptr<SafeWindow> safe;           ///< made when it is first needed
  std::unique_ptr<UnfinishedDialog> unfinished;
  std::unique_ptr<BackupsWindow> backups;
  std::unique_ptr<ConnectionWindow> connection;  ///< made when it is first opened
  std::unique_ptr<TelegramsWindow> telegrams;    ///< made when it is first opened
  std::unique_ptr<DiagnosisWindow> diagnosis;
  std::unique_ptr<HistoryWindow> history;              ///< made when it is first opened
  std::unique_ptr<ServiceReportWindow> serviceReport;  ///< made when it is first needed
  std::unique_ptr<SyncDialog> sync;                    ///< made when it is first opened

 private:
  /// Shows what came of an action of the user, after the outermost one has ended.
  void Settled();
  void Add(Form& form, bool disabledWhileBusy);
  void LoadMain(const RunSettings& run);
  void StoreSettings();

  [[nodiscard]] KeptTable Kept() const;
  void KeepUnsaved();
  void EndRecovery();
  void OfferRecovery();
  void Restore();
  /// A failure of the program's own files, unless there is none or nobody to read it.
  void Tell(const QString& failure);
  /// Called in the writer's thread.
  void HearOfHistory(const QString& failure);
  void TellOfHistory();

  void ShowAbout();
  void ShowOptions(int page);
  void ShowFindings();
  void ShowConnection();
  void ShowList(void (ParameterListWindow::*open)());
  void MakeList();
  [[nodiscard]] std::vector<ListExport> Exports();
  [[nodiscard]] std::vector<ListExport> ExportsWithoutPrinting();

  [[nodiscard]] SafeWindow& Safe();
  void SendSafely();
  void ReceiveSafely();
  void ShowBackups();
  void ShowTelegrams();
  void ShowDiagnosis();
  void ShowHistory();
  [[nodiscard]] HistoryWindow& History();
  void ShowTodaysReport();
  void ShowReport(const history::ServiceVisit& visit);
  void ShowSync();
  /// `added` runs afterwards, in the window's thread.
  void AddToHistory(history::Writer::Task task, std::function<void()> added);
  [[nodiscard]] Computer ThisComputer() const;
  [[nodiscard]] LeftOut PrivateTexts() const;
  void MakeUnfinished();
  void Resume(void (SafeWindow::*how)(const Sending& sending));
  void Forget();
  /// "" where nothing is unfinished, or its version is not the selected one.
  [[nodiscard]] QString WrittenText() const;
  void OfferUnfinished();

  void TakeBack(void (UndoStack::*step)());
  void ConnectOptions();
  [[nodiscard]] MenuActions Actions();

  Settings stored_;                // before the command line's were taken over
  Settings begun_;                 // after that
  int settled_ = -1;               // the revision of the table that the windows show
  bool offersUnfinished_ = false;  // the menu has an unfinished sending
  QTimer rest_;                    // runs while a change waits to be kept
  QStringList historyFailures_;    // that wait until nothing is under way
};

/// Starts the program, in the order that the user sees: shows the splash screen, loads the main window
/// (settings and place), reads tables and definitions, tries the port, shows the main window and takes the
/// splash screen away. `loaded` runs between loading and reading.
[[nodiscard]] std::unique_ptr<Desktop> Launch(frmSplash& splash, const World& world, const RunSettings& run,
                                              const std::function<void(Desktop&)>& loaded = {});

}  // namespace kalivor::ui
