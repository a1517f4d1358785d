#include "ui/main/Desktop.h"

#include "base/Paths.h"
#include "commands/ExportCommands.h"
#include "commands/MenuCommands.h"
#include "commands/SafeCommands.h"
#include "commands/SafeTable.h"
#include "commands/StartUp.h"
#include "core/Busy.h"
#include "core/DefinitionFiles.h"
#include "ui/about/frmAbout.h"

using namespace Qt::StringLiterals;

namespace kalivor::ui {
namespace {

const QString kRestoreItem = u"mnuWerkzeugeWiederherstellen"_s;
const QString kUnfinishedItem = u"mnuWerkzeugeUnterbrochen"_s;

}  // namespace

Desktop::Desktop(const World& theWorld, const RunSettings& run)
    : world(theWorld),
      guard([this](const std::function<void()>& handler) { Run(handler); }),
      main(module, guard),
      editors(module),
      auswahl(module),
      achtung(module),
      timers(world.clock),
      report(module, reportDialog, world.events, timers),
      wiring(module, timers, world.line,
             {main, report, auswahl, editors, world.box, world.files, world.events}),
      files{core, world.dialogs, [this](const QString& path) { main.ShowFile(path); }} {
  Add(editors.number, true);
  Add(editors.text, true);
  Add(options, true);
  Add(reportDialog, false);
  Add(auswahl, false);
  Add(achtung, false);
  main.Connect(core);
  editors.Connect(core, guard);
  reportDialog.Connect(report, guard, world.printText);
  ConnectOptions();
  main.SetMenuActions(Actions());
  main.OnOutside = [this] { ShowList(&ParameterListWindow::OpenOutside); };
  main.OnUnload = [this] {
    EndRecovery();
    StoreSettings();
    recorder.Finish();
    // What it has to say comes as an event, and this is the last moment for it.
    QCoreApplication::sendPostedEvents(&main, QEvent::MetaCall);
  };
  rest_.setSingleShot(true);
  rest_.setInterval(world.recovery.rest);
  QObject::connect(&rest_, &QTimer::timeout, &main, [this] { KeepUnsaved(); });
  LoadMain(run);
}

void Desktop::Add(Form& form, bool disabledWhileBusy) {
  form.SetOwner(main);
  main.AddCompanion(form, disabledWhileBusy);
}

MenuActions Desktop::Actions() {
  return {
      {u"mnuFileNew"_s, [this] { mnuFileNew_Click(world.box); }},
      {u"mnuFileOpen"_s, [this] { mnuFileOpen_Click(files); }},
      {u"mnuFileClose"_s, [this] { mnuFileClose_Click(files); }},
      {u"mnuFileSave"_s, [this] { mnuFileSave_Click(files); }},
      {u"mnuFileSaveAs"_s, [this] { mnuFileSaveAs_Click(files); }},
      {u"mnuFilePrint"_s, world.print},
      {u"mnuFileSend"_s, [this] { mnuFileSend_Click(world.box); }},
      {u"mnuFileExit"_s, [this] { main.close(); }},
      {u"mnuDatenEdit"_s, mnuDatenEdit_Click},
      {u"mnuOptioenSchnittstelle"_s, [this] { ShowOptions(0); }},
      {u"mnuOptioenRegler"_s, [this] { ShowOptions(1); }},
      {u"mnuOptioenFiles"_s, [this] { ShowOptions(2); }},
      {u"mnuWerkzeugeListe"_s, [this] { ShowList(&ParameterListWindow::Open); }},
      {u"mnuWerkzeugeSuchen"_s, [this] { ShowList(&ParameterListWindow::OpenSearch); }},
      {u"mnuWerkzeugeRueckgaengig"_s, [this] { TakeBack(&UndoStack::Undo); }},
      {u"mnuWerkzeugeWiederholen"_s, [this] { TakeBack(&UndoStack::Redo); }},
      {u"mnuWerkzeugePruefen"_s, [this] { ShowFindings(); }},
      {kRestoreItem, [this] { Restore(); }},
      {u"mnuWerkzeugeSicherSenden"_s, [this] { SendSafely(); }},
      {u"mnuWerkzeugeSicherEmpfangen"_s, [this] { ReceiveSafely(); }},
      {u"mnuWerkzeugeSicherungen"_s, [this] { ShowBackups(); }},
      {kUnfinishedItem, [this] { ShowUnfinished(); }},
      {u"mnuWerkzeugeVerbindung"_s, [this] { ShowConnection(); }},
      {u"mnuWerkzeugeTelegramme"_s, [this] { ShowTelegrams(); }},
      {u"mnuWerkzeugeDiagnose"_s, [this] { ShowDiagnosis(); }},
      {u"mnuWerkzeugeVerlauf"_s, [this] { ShowHistory(); }},
      {u"mnuWerkzeugeServiceprotokoll"_s, [this] { ShowTodaysReport(); }},
      {u"mnuHelpContents"_s, [this] { mnuHelpContents_Click(world.box, world.help); }},
      {u"mnuHelpSearchForHelpOn"_s, [this] { mnuHelpSearchForHelpOn_Click(world.box, world.help); }},
      {u"mnuHelpAbout"_s, [this] { ShowAbout(); }},
  };
}

void Desktop::ConnectOptions() {
  options.OnApply = [this](const OptionsContent& content) {
    return Run([&] { ApplyOptions(core, content); });
  };
  options.OnBrowse = [this] {
    return world.dialogs.OpenFile(u"Parameterfile"_s, module.Inipath, u"Alle Dateien (*.*)|*.*"_s);
  };
  options.DeviceOfPort = [this](int number) { return world.ports.Shown(number); };
}

void Desktop::ShowOptions(int page) {
  if (module.BusyDepth == 0) options.Open(OptionsOf(module), page);
}

void Desktop::ShowFindings() {
  if (module.BusyDepth > 0) return;
  if (!findings) {
    const FindingsWindow::Check check{
        [this] { return VersionTablePath(module); },
        [this] { return CheckDefinitions(world.files, module.Inipath, module.Inifile); }};
    findings = std::make_unique<FindingsWindow>(check, guard, world.settings);
    Add(*findings, true);
  }
  findings->CheckAndShow();
}

void Desktop::ShowConnection() {
  if (module.BusyDepth > 0) return;
  if (!connection) {
    connection = std::make_unique<ConnectionWindow>(
        ConnectionSurroundings{core, wiring.host, world.ports, world.settings, guard});
    Add(*connection, true);
    main.AddCompanion(connection->Progress(), false);
    main.AddCompanion(connection->Binding(), true);
  }
  connection->Open();
}

void Desktop::ShowList(void (ParameterListWindow::*open)()) {
  if (module.BusyDepth > 0) return;
  if (!list) MakeList();
  (*list.*open)();
}

void Desktop::MakeList() {
  progress = std::make_unique<ProgressDialog>(module);
  list = std::make_unique<ParameterListWindow>(ListWorld{core, world.dialogs, *progress, selections, guard,
                                                         [this](int index) { return changes.Changed(index); },
                                                         Exports()});
  list->Load(world.settings);
  progress->SetOwner(*list);
  main.AddCompanion(*list, true);
  main.AddCompanion(*progress, false);
  // Their keys work there as well.
  for (const QString& item : {u"mnuWerkzeugeListe"_s, u"mnuWerkzeugeSuchen"_s, u"mnuWerkzeugeRueckgaengig"_s,
                              u"mnuWerkzeugeWiederholen"_s, u"mnuWerkzeugeSicherSenden"_s})
    list->addAction(main.findChild<QAction*>(item));
}

std::vector<ListExport> Desktop::Exports() {
  const auto toFile = [this](ExportKind kind) {
    return [this, kind](const ListTable& table) {
      ExportTable({world.files, world.box, world.dialogs, world.tablePdf}, table, kind);
    };
  };
  std::vector<ListExport> exports{{u"exportCsv"_s, u"&CSV…"_s, toFile(ExportKind::Csv)},
                                  {u"exportHtml"_s, u"&HTML…"_s, toFile(ExportKind::Html)}};
  if (world.tablePdf) exports.push_back({u"exportPdf"_s, u"&PDF…"_s, toFile(ExportKind::Pdf)});
  if (world.printTable) exports.push_back({u"exportPrint"_s, u"&Drucken…"_s, world.printTable});
  return exports;
}

// The printed page has the list's name on it.
std::vector<ListExport> Desktop::ExportsWithoutPrinting() {
  std::vector<ListExport> exports = Exports();
  std::erase_if(exports, [](const ListExport& item) { return item.name == u"exportPrint"; });
  return exports;
}

// What is being typed in the list would be stored behind the step.
void Desktop::TakeBack(void (UndoStack::*step)()) {
  if (list) list->CloseEditor();
  (undo.*step)();
}

void Desktop::OpenFile(const QString& path) {
  guard([&] { OpenValueFile(files, path); });
}

void Desktop::LoadMain(const RunSettings& run) {
  main.LoadPlace(world.settings, world.box);
  LoadSettings(module, world.settings, world.box, world.programFolder);
  stored_ = static_cast<const Settings&>(module);
  TakeRunSettings(module, run);
  // The form that reading the version table gives the folder.
  if (run.iniPath) module.Inipath = WithSeparator(*run.iniPath);
  begun_ = static_cast<const Settings&>(module);
  recorder.Use(history::LoadHistorySettings(world.settings));
  FromBusy(core);
}

// The table as it is by then is where undo ends.
void Desktop::Start() {
  Run([this] { StartUp(core); });
  Tell(recovery.Load());
  OfferRecovery();
  Tell(safeStore.Load());
  Settled();
}

bool Desktop::Run(const std::function<void()>& handler) {
  // What the user sets off is one transfer, whatever it sends.
  if (!changes.Open()) wiring.host.Exchanges.BeginTransfer();
  changes.Begin();
  const bool done = RunHandler(world.box, handler);
  RunHandler(world.box, [this] { changes.End(); });
  if (!changes.Open()) Settled();
  return done;
}

void Desktop::Settled() {
  wiring.host.Exchanges.Settle();
  if (std::exchange(settled_, changes.Revision()) != changes.Revision()) {
    if (telegrams) telegrams->ForgetDefinitions();
    OfferItem(main, u"mnuWerkzeugeRueckgaengig"_s, undo.UndoName());
    OfferItem(main, u"mnuWerkzeugeWiederholen"_s, undo.RedoName());
    main.ShowOutside(changes.Outside());
    if (recovery.Works()) rest_.start();
  }
  const bool isUnfinished = safeStore.Unfinished().has_value();
  if (std::exchange(offersUnfinished_, isUnfinished) || isUnfinished) OfferUnfinished();
  if (list) list->Update();
  if (history) history->Update();
  TellOfHistory();
}

void Desktop::StoreSettings() {
  main.SavePlace(world.settings);
  if (list) list->Store(world.settings);
  // What the command line set for this run is not stored, unless the user has changed it since.
  SaveSettings(SettingsToStore(module, begun_, stored_), world.settings);
  Tell(world.settings.Flush());
}

void Desktop::Tell(const QString& failure) {
  // Nobody answers a box any more when the session ends.
  if (!failure.isEmpty() && !main.EndsSession()) world.box.Show(failure);
}

// --- history ---

void Desktop::UseHistory(const history::HistorySettings& settings) {
  recorder.Use(settings);
  SaveHistorySettings(settings, world.settings);
  Tell(world.settings.Flush());
}

void Desktop::HearOfHistory(const QString& failure) {
  const auto hear = [this, failure] {
    historyFailures_.append(failure);
    guard([this] { TellOfHistory(); });
  };
  QMetaObject::invokeMethod(&main, hear, Qt::QueuedConnection);
}

// A box would hold up a transfer.
void Desktop::TellOfHistory() {
  if (module.BusyDepth > 0) return;
  for (const QString& failure : std::exchange(historyFailures_, {}))
    Tell(failure);
}

void Desktop::AddToHistory(history::Writer::Task task, std::function<void()> added) {
  if (!recorder.Works()) return;
  recorder.GetWriter().Do([this, task = std::move(task), added = std::move(added)](history::Store& store) {
    const QString failure = task(store);
    if (failure.isEmpty() && added)
      QMetaObject::invokeMethod(
          &main, [this, added] { guard(added); }, Qt::QueuedConnection);
    return failure;
  });
}

HistoryWindow& Desktop::History() {
  if (!history) {
    const ExportContext exporting{world.files, world.box, world.dialogs, {}};
    HistorySurroundings surroundings{core, world.settings, guard, world.historyStore};
    surroundings.used = [this] { return recorder.Used(); };
    surroundings.use = [this](const history::HistorySettings& settings) { UseHistory(settings); };
    surroundings.add = [this](history::Writer::Task task, std::function<void()> added) {
      AddToHistory(std::move(task), std::move(added));
    };
    surroundings.exports = ExportsWithoutPrinting();
    surroundings.compare = [this](ValueSet values) {
      if (!list) MakeList();
      list->OpenCompared(std::move(values));
    };
    surroundings.saveValues = [exporting](const QByteArray& image) {
      ExportValueFile(exporting, u"Wertedatei speichern"_s, image);
    };
    surroundings.savePicture = [exporting](const QString& svg) {
      ExportPicture(exporting, u"Verlauf des Wertes speichern"_s, svg.toUtf8());
    };
    surroundings.restore = [this](const Backup& backup) { Safe().Restore(backup); };
    surroundings.report = [this](const history::ServiceVisit& visit) { ShowReport(visit); };
    surroundings.synchronize = [this] { ShowSync(); };
    history = std::make_unique<HistoryWindow>(std::move(surroundings));
    Add(*history, true);
    for (Form* form : history->Companions())
      main.AddCompanion(*form, true);
  }
  return *history;
}

void Desktop::ShowSync() {
  if (!sync) {
    sync = std::make_unique<SyncDialog>(WorkOn(world.historyStore), guard);
    sync->OnServer = [this](const QString& server) {
      history::HistorySettings settings = recorder.Used();
      settings.server = server;
      UseHistory(settings);
    };
    sync->OnExchanged = [this] { guard([this] { History().Update(); }); };
    Add(*sync, false);
  }
  sync->Open(recorder.Used().server);
}

void Desktop::ShowHistory() {
  if (module.BusyDepth == 0) History().Open();
}

void Desktop::ShowTodaysReport() {
  if (module.BusyDepth > 0) return;
  const history::ServiceVisit visit = History().VisitOf(QDate::currentDate());
  if (!visit.entries.empty()) {
    ShowReport(visit);
    return;
  }
  world.box.Show(
      u"Heute ist an der gewählten Anlage nichts aufgezeichnet.\r\n"
      "Für einen anderen Besuch bitte im Verlauf seine Einträge markieren."_s);
}

void Desktop::ShowReport(const history::ServiceVisit& visit) {
  if (!serviceReport) {
    serviceReport = std::make_unique<ServiceReportWindow>(ServiceReportSurroundings{
        world.settings, world.files, world.dialogs, world.box, guard, [this] { return recorder.Used(); },
        [this](const history::HistorySettings& settings) { UseHistory(settings); }, world.printDocument});
    Add(*serviceReport, true);
  }
  serviceReport->Open(visit);
}

KeptTable Desktop::Kept() const {
  return KeptTableOf(
      module, [this](int index) { return changes.Unsaved(index); }, world.recovery.now());
}

void Desktop::KeepUnsaved() {
  if (module.BusyDepth > 0) {
    rest_.start();
    return;
  }
  guard([this] { Tell(recovery.Keep(Kept())); });
}

void Desktop::EndRecovery() {
  if (!recovery.Works()) return;
  const KeptTable kept = Kept();
  // What has rested is kept already, with its time.
  if (rest_.isActive() || kept.UnsavedCount() == 0) Tell(recovery.Keep(kept, true));
  rest_.stop();
}

void Desktop::OfferRecovery() {
  const std::optional<KeptTable>& offered = recovery.Offered();
  OfferItem(main, kRestoreItem, offered ? RecoveryText(*offered, world.recovery.now()) : QString());
}

void Desktop::Restore() {
  if (module.BusyDepth > 0 || !recovery.Offered()) return;
  if (!RestoreTable(files, *recovery.Offered(), [this](int index) { changes.TakeAsSaved(index); })) return;
  recovery.ForgetOffered();
  OfferRecovery();
}

// --- safe transfers ---

SafeWindow& Desktop::Safe() {
  if (!safe) {
    const auto onWritten = [this] {
      if (backups) backups->Update();
    };
    safe = std::make_unique<SafeWindow>(
        SafeSurroundings{core, safeStore, world.settings, guard, ExportsWithoutPrinting(), main, onWritten});
    Add(*safe, true);
    main.AddCompanion(safe->Progress(), false);
  }
  return *safe;
}

void Desktop::SendSafely() {
  if (module.BusyDepth == 0) Safe().Send();
}

void Desktop::ReceiveSafely() {
  if (module.BusyDepth == 0) Safe().Receive();
}

void Desktop::ShowBackups() {
  if (module.BusyDepth > 0) return;
  if (!backups) {
    const auto compare = [this](const StoredBackup& backup) {
      if (!list) MakeList();
      list->OpenCompared(BackupValues(module, backup));
    };
    const auto restore = [this](const StoredBackup& backup) { Safe().Restore(backup.backup); };
    backups = std::make_unique<BackupsWindow>(
        BackupsSurroundings{core, world.settings, guard, world.safe.now, compare, restore});
    Add(*backups, true);
  }
  backups->Open();
}

void Desktop::ShowTelegrams() {
  if (!telegrams) {
    const auto save = [this](const QString& text) {
      ExportText({world.files, world.box, world.dialogs, {}}, u"Telegramme speichern"_s, text.toUtf8());
    };
    telegrams = std::make_unique<TelegramsWindow>(
        TelegramsSurroundings{wiring.host.Exchanges, module, world.settings, guard, save});
    // It shows what a transfer does while it does it.
    Add(*telegrams, false);
  }
  telegrams->Open();
}

void Desktop::ShowDiagnosis() {
  if (module.BusyDepth > 0) return;
  if (!diagnosis) {
    const DiagnosisWindow::Collecting collect = [this] {
      return Collect(
          {module, wiring.host.Exchanges, world.ports, world.files, report.LastText(), ThisComputer().system},
          QDateTime::currentDateTime());
    };
    const DiagnosisWindow::Saving save = [this](const QString& html) {
      ExportHtml({world.files, world.box, world.dialogs, {}}, u"Diagnosebericht speichern"_s, html.toUtf8());
    };
    diagnosis = std::make_unique<DiagnosisWindow>(
        DiagnosisSurroundings{collect, [this] { return PrivateTexts(); }, save, guard, world.settings});
    Add(*diagnosis, true);
  }
  diagnosis->Open();
}

Computer Desktop::ThisComputer() const {
  return world.computer ? world.computer() : Computer();
}

LeftOut Desktop::PrivateTexts() const {
  QString valueFolder = module.Dateiname;
  while (!valueFolder.isEmpty() && !IsSeparator(valueFolder.back()))
    valueFolder.chop(1);
  const Computer computer = ThisComputer();
  return {{computer.user, computer.name},
          {computer.home, world.programFolder, world.safe.stateFolder, module.Inipath, module.Userpath,
           valueFolder}};
}

void Desktop::MakeUnfinished() {
  unfinished = std::make_unique<UnfinishedDialog>();
  Add(*unfinished, true);
  unfinished->OnFinish = [this] { guard([this] { Resume(&SafeWindow::Finish); }); };
  unfinished->OnTakeBack = [this] { guard([this] { Resume(&SafeWindow::TakeBack); }); };
  unfinished->OnForget = [this] { guard([this] { Forget(); }); };
}

void Desktop::ShowUnfinished() {
  if (module.BusyDepth > 0 || !safeStore.Unfinished()) return;
  if (!unfinished) MakeUnfinished();
  unfinished->Ask(UnfinishedSentence(module, *safeStore.Unfinished(), WrittenText()));
}

void Desktop::Resume(void (SafeWindow::*how)(const Sending& sending)) {
  if (module.BusyDepth > 0 || !safeStore.Unfinished()) return;
  const Sending sending = *safeStore.Unfinished();
  const QString fault = SelectController(core, sending.head.version, sending.head.plantType);
  if (fault.isEmpty()) {
    (Safe().*how)(sending);
  } else {
    world.box.Show(fault);
  }
}

void Desktop::Forget() {
  const QString question =
      u"Die unterbrochene Sendung wird nicht mehr angeboten.\r\n"
      "Die Werte im Regler bleiben, wie sie sind; die Sicherung bleibt erhalten."_s;
  if (!world.box.Confirm(question, u"Verwerfen"_s)) return;
  Tell(safeStore.Forget());
}

QString Desktop::WrittenText() const {
  const std::optional<Sending>& sending = safeStore.Unfinished();
  const bool known = sending && sending->head.version == module.VersionList.SelectedText();
  return known ? UnfinishedText(module, *sending) : QString();
}

void Desktop::OfferUnfinished() {
  const std::optional<Sending>& sending = safeStore.Unfinished();
  const QString written = WrittenText();
  OfferItem(main, kUnfinishedItem, sending && written.isEmpty() ? sending->head.version : written);
}

void Desktop::ShowAbout() {
  if (module.BusyDepth > 0) return;
  auto* about =
      new frmAbout(&main, [this] { guard([this] { StartSysInfo(world.systemInformation, world.box); }); });
  about->setAttribute(Qt::WA_DeleteOnClose);
  // Modal, but without an event loop of its own: the menu item has done its work when the box is there.
  about->setModal(true);
  about->show();
}

std::unique_ptr<Desktop> Launch(frmSplash& splash, const World& world, const RunSettings& run,
                                const std::function<void(Desktop&)>& loaded) {
  splash.ShowNow();
  auto desktop = std::make_unique<Desktop>(world, run);
  if (loaded) loaded(*desktop);
  desktop->Start();
  desktop->main.show();
  splash.close();
  // A controller that is half written must not be overlooked.
  QMetaObject::invokeMethod(
      &desktop->main, [desktop = desktop.get()] { desktop->guard([desktop] { desktop->ShowUnfinished(); }); },
      Qt::QueuedConnection);
  return desktop;
}

}  // namespace kalivor::ui
