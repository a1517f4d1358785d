#include "cli/Cli.h"

#include <QJsonDocument>
#include <QScopeGuard>
#include <mutex>

#include "check/DefinitionCheck.h"
#include "check/FindingsText.h"
#include "cli/Arguments.h"
#include "cli/Edits.h"
#include "cli/FindRun.h"
#include "cli/HistoryRun.h"
#include "cli/HistoryServerRun.h"
#include "cli/Output.h"
#include "cli/SafeRuns.h"
#include "cli/TextForms.h"
#include "cli/TraceFile.h"
#include "commands/EventBoundary.h"
#include "commands/PortCommands.h"
#include "commands/SettingsTable.h"
#include "commands/StartUp.h"
#include "commands/TransferCommands.h"
#include "core/ControllerValues.h"
#include "core/ParameterList.h"
#include "core/Refresh.h"
#include "core/ValueFiles.h"
#include "core/Wiring.h"
#include "history/Recorder.h"
#include "print/painter/PdfPrint.h"
#include "print/painter/TablePages.h"

using namespace Qt::StringLiterals;

namespace kalivor::cli {

namespace {

constexpr QStringView kController = u"controller";

constexpr ListColumn kListedColumns[] = {ListColumn::Number,   ListColumn::Group,      ListColumn::Name,
                                         ListColumn::Value,    ListColumn::Comparison, ListColumn::State,
                                         ListColumn::Unit,     ListColumn::Minimum,    ListColumn::Maximum,
                                         ListColumn::Standard, ListColumn::Variable,   ListColumn::Address,
                                         ListColumn::Type};

/// Ends the run with kNoTransfer; what there is to say has been said.
struct NoController {};

}  // namespace

/// One run: the program's parts wired together, and the commands on them.
class Session {
 public:
  Session(const Arguments& arguments, World& world)
      : arguments_(arguments),
        world_(world),
        box_(world.err),
        choice_(module_, world.err, arguments.answers),
        events_(module_, world.interrupted),
        timers_(world.clock),
        view_(arguments.json ? nullptr : &world.out),
        report_(module_, view_, events_, timers_),
        wiring_(module_, timers_, world.line,
                {main_, report_, choice_, editors_, box_, world.files, events_}),
        recorder_({core_, wiring_.host.Exchanges, world.safe.deviceOfPort, HistoryPlace(world, arguments),
                   [this](const QString& failure) {
                     const std::lock_guard lock(historyMutex_);
                     historyFailures_.append(failure);
                   }}) {}

  int Run(const Command& command) {
    LoadSettings(module_, world_.settings, box_, world_.programFolder);
    TakeSettings();
    if (arguments_.trace) BeginTrace();
    recorder_.Use(history::LoadHistorySettings(world_.settings));
    const auto finish = qScopeGuard([this] { FinishHistory(); });
    if (command.needs == Needs::Nothing) return (this->*command.run)();
    LoadDefinitions();
    if (arguments_.load) LoadValues();
    if (command.needs == Needs::Definitions) RequireDefinitions();
    for (const QString& edit : arguments_.set)
      SetParameter(module_, edit);
    for (const MarkChange& change : arguments_.marks)
      SetMarks(module_, change);
    if (!arguments_.set.isEmpty() || !arguments_.marks.empty()) Refresh(core_, 2);
    events_.Expect();
    const int status = (this->*command.run)();
    if (arguments_.save && (status == kDone || status == kFindings)) return SaveValues(status);
    return status;
  }

  // The commands; each returns an ExitStatus.

  int Versions() {
    Print(VersionTableOf(module_));
    return VersionsRead() ? kDone : kBadInput;
  }

  int Plants() { return Print(PlantTableOf(module_.PlantTypeList)); }

  int Parameters() {
    if (!arguments_.json) Print(NamesLine(ParameterRow(module_, 0)));
    return Print(ParameterTableOf(module_));
  }

  int Tree() { return Print(TreeText(main_.Tree())); }
  int Pages() { return Print(print::PagesText(core_, Printed())); }
  int Receive() { return RunTransfer(RunReceive); }
  int Send() { return RunTransfer(RunSend); }
  int Compare() { return RunTransfer(RunCompare); }

  int Standard() {
    CommandStandard_Click(core_);
    return kDone;
  }

  int Identify() {
    (void)core_.controller.Configure(kSlot, kSettings9600);
    const Identification answer = core_.controller.AskVersion(kSlot);
    (answer.succeeded ? world_.out : world_.err) << answer.text.toStdString() << '\n';
    return answer.succeeded ? kDone : kNoTransfer;
  }

  int ShowValueFile() {
    const platform::FileContent file = world_.files.Read(arguments_.words.first(), kLargestValueFile_bytes);
    const QString failed = u"Fehler beim lesen von | "_s + arguments_.words.first() + u" | "_s;
    if (!file.Ok()) throw BadInput{failed + file.error};
    const ValueFileContent content = ParseValueFile(file.bytes);
    if (!content.hasHeader) throw BadInput{failed + u"Die Datei ist keine Wertedatei."_s};
    const Row head = ValueFileHead(content);
    const Table records = RecordTableOf(content);
    if (!arguments_.json) return Print(ToText(head) + ToText(records));
    QJsonObject all = ToJson(head);
    all.insert(u"records"_s, ToJson(records));
    return Print(QJsonDocument(all));
  }

  int PrintToPdf() {
    print::PdfRequest request{Printed(), *arguments_.pdf, arguments_.copies.value_or(1), {}};
    if (arguments_.page) request.page = *arguments_.page;
    const QString error = print::PrintPdf(core_, request);
    if (!error.isEmpty()) throw BadInput{error};
    return kDone;
  }

  int CheckDefinitionFiles() {
    bool errors = false;
    for (const Finding& finding : CheckDefinitions(world_.files, module_.Inipath, module_.Inifile)) {
      Print(u"%1\t%2\t%3\t%4\n"_s.arg(finding.file, QString::number(finding.line), SeverityText(finding),
                                      finding.text));
      errors = errors || finding.error;
    }
    return errors ? kFindings : kDone;
  }

  int List() {
    const std::optional<ValueSet> comparison =
        arguments_.against ? std::optional(NamedSet(*arguments_.against)) : std::nullopt;
    const ListFilter filter = arguments_.only.value_or(ListFilter());
    const QStringList words = SearchWords(arguments_.filter.value_or(QString()));
    std::vector<ListRow> rows = ListRows(module_, comparison ? &*comparison : nullptr);
    std::erase_if(rows, [&](const ListRow& row) {
      return !Shows(filter, words, row, SearchedText(module_.Par[row.index]));
    });
    const QDate date = arguments_.date.value_or(QDate::currentDate());
    const ListTable table = TableOf(module_, rows, kListedColumns, ListHeading(module_, date));
    if (arguments_.format == ListFormat::Pdf) {
      const QString error = print::SaveTablePdf(table, print::LabelsOf(module_, Printed()), *arguments_.out);
      if (!error.isEmpty()) throw BadInput{error};
      return kDone;
    }
    return Deliver(ListText(table));
  }

  int Diff() {
    const QString& left = arguments_.words.at(0);
    const QString& right = arguments_.words.at(1);
    // What is wrong with a file is said before the controller is asked.
    const bool rightFirst = left == kController;
    std::optional<ValueSet> first;
    if (rightFirst) first = NamedSet(right);
    const ValueSet leftSet = NamedSet(left);
    const ValueSet rightSet = first ? *std::move(first) : NamedSet(right);
    const Table table = DifferenceTableOf(module_, leftSet, rightSet);
    if (!arguments_.json) Print(NamesLine(DifferenceRow(module_, leftSet, rightSet, {})));
    Print(table);
    return table.empty() ? kDone : kFindings;
  }

  int SafeReceive() { return RunSafe(&SafeRuns::Receive); }
  int Verify() { return RunSafe(&SafeRuns::Verify); }
  int SafeSend() { return RunSafe(&SafeRuns::Send); }
  int Restore() { return RunSafe(&SafeRuns::Restore); }

  int Ports() {
    const QList<platform::PortEntry> ports = world_.ports.List();
    if (arguments_.json) {
      Print(QJsonDocument(PortsJson(ports)));
    } else {
      Print(ToText(PortTableOf(ports)));
    }
    for (const platform::PortEntry& port : ports) {
      if (port.state != platform::PortState::Free) core_.box.Show(port.device + u": "_s + port.remark);
    }
    if (ports.isEmpty()) core_.box.Show(NoPortsText());
    return kDone;
  }

  int Find() {
    int status = kNoTransfer;
    RunHandler(box_, [&] { status = RunFind(core_, wiring_.host, world_, arguments_); });
    return status;
  }
  int Backups() { return SafeRuns(core_, world_, arguments_).Backups(); }

  int HistoryList() { return HistoryRun(world_, box_, arguments_).List(); }
  int HistoryShow() { return HistoryRun(world_, box_, arguments_).Show(); }
  int HistoryExport() { return HistoryRun(world_, box_, arguments_).Export(); }
  int HistoryCheck() { return HistoryRun(world_, box_, arguments_).Check(); }
  int HistorySync() { return RunHistorySync(world_, box_, arguments_); }
  int HistoryInitServer() { return RunHistoryInitServer(world_, box_, arguments_); }

 private:
  // The options that stand for stored settings.
  void TakeSettings() {
    RunSettings run{arguments_.iniPath, arguments_.iniFile, {}, arguments_.address};
    QString device;
    if (arguments_.port) {
      const QString fault = TakePort(*arguments_.port, run, device);
      if (!fault.isEmpty()) throw BadInput{fault};
    }
    TakeRunSettings(module_, run);
    if (!device.isEmpty()) world_.ports.Override(module_.Schnittstelle, device);
  }

  // What could not be kept is said at the end; the status is that of the command.
  void FinishHistory() {
    recorder_.Finish();
    for (const QString& failure : std::as_const(historyFailures_))
      core_.box.Show(failure);
  }

  // A run whose trace cannot be kept does not begin: it may not come back.
  void BeginTrace() {
    trace_.emplace(
        TraceFile::World{module_, wiring_.host.Exchanges, world_.files, world_.clock, box_, world_.ports},
        *arguments_.trace);
    const QString failure = trace_->Open();
    if (failure.isEmpty()) return;
    core_.box.Show(failure);
    throw BadInput{};
  }

  // Whatever cannot be read is said in a box.
  void LoadDefinitions() {
    ConnectHandlers(core_);
    // What is said from here on is about the version that is selected now.
    module_.VersionList.OnChange = [this] {
      boxesBefore_ = box_.Count();
      ComboVN_Click(core_);
    };
    boxesBefore_ = box_.Count();
    RunHandler(box_, [this] {
      Refresh(core_, 5);
      if (arguments_.controller) module_.VersionList.Select(FindController());
      if (arguments_.plant) module_.PlantTypeList.Select(FindPlant());
    });
  }

  // The reader selects the first version when it has come to the end of the table.
  [[nodiscard]] bool VersionsRead() { return module_.VersionList.Position() >= 0; }

  // Faults of other versions than the selected one do not count.
  void RequireDefinitions() {
    if (!VersionsRead() || box_.Count() > boxesBefore_) throw BadInput{};
  }

  void LoadValues() {
    module_.Dateiname = *arguments_.load;
    // What is wrong with it has been said in a box.
    if (!ReadValueFile(core_)) throw BadInput{};
  }

  // The command has run, but its result could not be kept: that is no success.
  int SaveValues(int status) {
    module_.Dateiname = *arguments_.save;
    return WriteValueFile(core_) ? status : kBadInput;
  }

  int FindController() {
    if (module_.VersionList.Count() == 0) throw BadInput{};
    const int position = module_.VersionList.Find(*arguments_.controller);
    if (position < 0) throw BadInput{u"Unbekannte Reglerversion: "_s + *arguments_.controller};
    return position;
  }

  int FindPlant() {
    const QString& plant = *arguments_.plant;
    const SelectionList& list = module_.PlantTypeList;
    int position = -1;
    if (plant.startsWith(u'#')) {
      bool isNumber = false;
      position = QStringView(plant).sliced(1).toInt(&isNumber);
      if (!isNumber || position >= list.Count()) position = -1;
    } else {
      position = list.Find(plant);
    }
    if (position < 0) throw BadInput{u"Unbekannte Anlageart: "_s + plant};
    return position;
  }

  int Print(const QString& text) {
    world_.out << text.toStdString();
    return kDone;
  }

  int Print(const QJsonDocument& json) { return Print(QString::fromUtf8(json.toJson())); }

  int Print(const Table& table) {
    return arguments_.json ? Print(QJsonDocument(ToJson(table))) : Print(ToText(table));
  }

  [[nodiscard]] print::PrintInput Printed() const {
    return {arguments_.statusPath.value_or(module_.Dateiname), arguments_.date.value_or(QDate::currentDate()),
            arguments_.landscape ? platform::kLandscape : platform::kPortrait};
  }

  /// "table", "standard", "controller" or a value file.
  ValueSet NamedSet(const QString& name) {
    if (name == u"table") return TableValues(module_);
    if (name == u"standard") return StandardValues(module_);
    if (name == kController) return ControllerSet();
    SetResult file = ReadFileValues(world_.files, name);
    if (file.Ok()) file.error = VersionFault(module_, file.set);
    if (file.Ok()) return std::move(file.set);
    core_.box.Show(file.error);
    throw BadInput{};
  }

  ValueSet ControllerSet() {
    // A port that cannot be opened shows in the first query.
    (void)core_.controller.Configure(kSlot, kSettings9600);
    NoProgress progress;
    SetResult read;
    if (!RunHandler(box_, [&] { read = ReadControllerValues(core_, progress); })) throw NoController();
    if (read.aborted) read.error = u"Das Lesen des Reglers wurde abgebrochen."_s;
    if (read.Ok()) return std::move(read.set);
    core_.box.Show(read.error);
    throw NoController();
  }

  [[nodiscard]] QByteArray ListText(const ListTable& table) const {
    if (arguments_.json) return QJsonDocument(ToJson(ListTableOf(table))).toJson();
    switch (arguments_.format.value_or(ListFormat::Tsv)) {
      case ListFormat::Csv:
        return CsvOf(table);
      case ListFormat::Html:
        return HtmlOf(table);
      default:
        return (table.titles.join(u'\t') + u'\n' + ToText(ListTableOf(table))).toUtf8();
    }
  }

  /// To the file of --out, or to standard output.
  int Deliver(const QByteArray& text) {
    if (!arguments_.out) {
      world_.out << text.toStdString();
      return kDone;
    }
    const QString error = world_.files.Replace(*arguments_.out, text);
    if (error.isEmpty()) return kDone;
    core_.box.Show(u"Fehler beim schreiben von\r\n"_s + *arguments_.out + u"\r\n"_s + error);
    throw BadInput{};
  }

  int RunTransfer(void (*command)(Core&, TransferOutcome&)) {
    // A port that cannot be opened shows in the first query.
    (void)core_.controller.Configure(kSlot, kSettings9600);
    TransferOutcome outcome;
    // The report's last line is still open when this is left.
    const auto finish = qScopeGuard([this] { view_.Finish(); });
    RunHandler(box_, [&] { command(core_, outcome); });
    if (arguments_.json) Print(QJsonDocument(CompareJson(module_, outcome, report_.Text())));
    if (!outcome.transferred) return kNoTransfer;
    return outcome.walk.Failures() > 0 || outcome.walk.Deviations() > 0 ? kFindings : kDone;
  }

  int RunSafe(int (SafeRuns::*command)()) {
    // A port that cannot be opened shows in the first query.
    (void)core_.controller.Configure(kSlot, kSettings9600);
    SafeRuns runs(core_, world_, arguments_);
    int status = kNoTransfer;
    RunHandler(box_, [&] { status = (runs.*command)(); });
    return status;
  }

  const Arguments& arguments_;
  World& world_;
  Module1 module_;
  TextMainForm main_;
  NoEditorForms editors_;
  TextMessageBox box_;
  TextChoiceForm choice_;
  InterruptEvents events_;
  TH timers_;
  TextReportView view_;
  Report report_;
  Wiring wiring_;
  Core& core_ = wiring_.core;
  std::mutex historyMutex_;
  QStringList historyFailures_;  // of the writer's thread
  history::Recorder recorder_;
  std::optional<TraceFile> trace_;
  int boxesBefore_ = 0;  // that were shown before the selected version was read
};

namespace {

constexpr Command kCommands[] = {
    {u"versions", &Session::Versions, Needs::Versions, true},
    {u"plants", &Session::Plants, Needs::Definitions, true},
    {u"params", &Session::Parameters, Needs::Definitions, true},
    {u"tree", &Session::Tree},
    {u"identify", &Session::Identify},
    {u"receive", &Session::Receive},
    {u"send", &Session::Send},
    {u"compare", &Session::Compare, Needs::Definitions, true},
    {u"standard", &Session::Standard},
    {u"show", &Session::ShowValueFile, Needs::Nothing, true, 1, u"die Datei"},
    {u"pages", &Session::Pages},
    {u"print", &Session::PrintToPdf},
    {u"check-definitions", &Session::CheckDefinitionFiles, Needs::Nothing},
    {u"list", &Session::List, Needs::Definitions, true},
    {u"diff", &Session::Diff, Needs::Definitions, true, 2, u"eine der beiden Seiten"},
    {u"safe-receive", &Session::SafeReceive, Needs::Definitions, true},
    {u"verify", &Session::Verify, Needs::Definitions, true},
    {u"safe-send", &Session::SafeSend, Needs::Definitions, true},
    {u"backups", &Session::Backups, Needs::Nothing, true},
    {u"restore", &Session::Restore, Needs::Definitions, true, 1, u"die Sicherung"},
    {u"ports", &Session::Ports, Needs::Nothing, true},
    {u"find", &Session::Find, Needs::Versions, true},
    {u"history list", &Session::HistoryList, Needs::Nothing, true},
    {u"history show", &Session::HistoryShow, Needs::Nothing, true, 1, u"der Eintrag"},
    {u"history export", &Session::HistoryExport, Needs::Nothing},
    {u"history check", &Session::HistoryCheck, Needs::Nothing, true},
    {u"history sync", &Session::HistorySync, Needs::Nothing, true},
    {u"history init-server", &Session::HistoryInitServer, Needs::Nothing, true},
};

}  // namespace

const Command* FindCommand(QStringView name) {
  for (const Command& command : kCommands) {
    if (command.name == name) return &command;
  }
  return nullptr;
}

int Run(const QStringList& list, World& world) {
  try {
    const Arguments arguments = ParseArguments(list);
    if (!arguments.error.isEmpty()) throw BadInput{arguments.error};
    if (arguments.help) {
      world.out << HelpText(arguments.command).toStdString();
      return kDone;
    }
    if (arguments.programVersion) {
      world.out << "kalivor-cli " << KALIVOR_VERSION << '\n';
      return kDone;
    }
    return Session(arguments, world).Run(*FindCommand(arguments.command));
  } catch (const BadInput& bad) {
    if (!bad.message.isEmpty()) world.err << bad.message.toStdString() << '\n';
  } catch (const UnansweredQuestion&) {
    return kUnanswered;
  } catch (const NoController&) {
    return kNoTransfer;
  } catch (const RuntimeError& error) {
    world.err << error.Description().toStdString() << '\n';
  } catch (const std::bad_alloc&) {
    world.err << "Der Arbeitsspeicher reicht nicht aus.\n";
  }
  return kBadInput;
}

}  // namespace kalivor::cli
