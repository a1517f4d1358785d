#include "cli/Cli.h"

#include <QScopeGuard>
#include <optional>

#include "base/Numbers.h"
#include "cli/Arguments.h"
#include "cli/Output.h"
#include "cli/TextForms.h"
#include "commands/DefinitionCheck.h"
#include "commands/EditorCommands.h"
#include "commands/EventBoundary.h"
#include "commands/StartUp.h"
#include "commands/TransferCommands.h"
#include "core/Refresh.h"
#include "core/TreeTexts.h"
#include "core/ValueFiles.h"
#include "print/PdfPrint.h"

using namespace Qt::StringLiterals;

namespace kalivor::cli {
namespace {

/// Ends the run with kBadInput and a message.
struct BadInput {
  QString message;
};

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
        host_(module_, world.line, timers_),
        view_(arguments.json ? nullptr : &world.out),
        report_(module_, view_, events_, timers_),
        controller_(module_, host_, main_, report_),
        core_{module_, main_, report_, choice_, editors_, box_, world.files, events_, controller_} {}

  int Run() {
    LoadSettings(module_, world_.settings, box_, world_.programFolder);
    TakeSettings();
    if (arguments_.command == u"check-definitions") return CheckDefinitionFiles();
    if (arguments_.command == u"show") return ShowValueFile();
    LoadDefinitions();
    if (arguments_.load) LoadValues();
    for (const QString& edit : arguments_.set)
      SetParameter(edit);
    for (const MarkChange& change : arguments_.marks)
      SetMarks(change);
    if (!arguments_.set.isEmpty() || !arguments_.marks.empty()) Refresh(core_, 2);
    const int status = RunCommand();
    if (arguments_.save && (status == kDone || status == kFindings)) return SaveValues(status);
    return status;
  }

 private:
  // The options that stand for stored settings.
  void TakeSettings() {
    if (arguments_.iniPath) module_.Inipath = *arguments_.iniPath;
    if (arguments_.iniFile) module_.Inifile = *arguments_.iniFile;
    if (arguments_.address) module_.Adresse = *arguments_.address;
    if (!arguments_.port) return;
    bool isNumber = false;
    const int number = arguments_.port->toInt(&isNumber);
    if (!isNumber) {
      world_.useDevice(module_.Schnittstelle, *arguments_.port);
    } else if (number >= 1 && number <= 8) {
      module_.Schnittstelle = static_cast<qint16>(number);
    } else {
      throw BadInput{u"Keine Schnittstelle von 1 bis 8: "_s + *arguments_.port};
    }
  }

  void LoadDefinitions() {
    const int boxes = box_.Count();
    ConnectHandlers(core_);
    RunHandler(box_, [this] {
      Refresh(core_, 5);
      if (arguments_.controller) Select(main_.ComboVN(), FindController());
      if (arguments_.plant) Select(main_.ComboArt(), FindPlant());
    });
    // Whatever could not be read has been said in a box.
    if (box_.Count() > boxes) throw BadInput{};
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

  int ShowValueFile() {
    const platform::FileContent file = world_.files.Read(arguments_.file, kLargestValueFile_bytes);
    const QString failed = u"Fehler beim lesen von | "_s + arguments_.file + u" | "_s;
    if (!file.Ok()) throw BadInput{failed + file.error};
    const ValueFileContent content = ParseValueFile(file.bytes);
    if (!content.hasHeader) throw BadInput{failed + u"Die Datei ist keine Wertedatei."_s};
    return Print(ValueFileText(content), [&content] { return ValueFileJson(content); });
  }

  static void Select(platform::ListBox& list, int position) { list.Select(position); }

  static int Find(const platform::ListBox& list, const QString& text) {
    for (int i = 0; i < list.Count(); ++i) {
      if (list.Text(i) == text) return i;
    }
    return -1;
  }

  int FindController() {
    if (main_.ComboVN().Count() == 0) throw BadInput{};
    const int position = Find(main_.ComboVN(), *arguments_.controller);
    if (position < 0) throw BadInput{u"Unbekannte Reglerversion: "_s + *arguments_.controller};
    return position;
  }

  int FindPlant() {
    const QString& plant = *arguments_.plant;
    const platform::ListBox& list = main_.ComboArt();
    int position = -1;
    if (plant.startsWith(u'#')) {
      bool isNumber = false;
      position = QStringView(plant).sliced(1).toInt(&isNumber);
      if (!isNumber || position >= list.Count()) position = -1;
    } else {
      position = Find(list, plant);
    }
    if (position < 0) throw BadInput{u"Unbekannte Anlageart: "_s + plant};
    return position;
  }

  // Every parameter with that variable name, in table order.
  [[nodiscard]] std::vector<int> FindVariable(QStringView name) const {
    std::vector<int> found;
    for (int i = 1; i < module_.ParCount; ++i) {
      if (module_.Par[i].Variable == name) found.push_back(i);
    }
    return found;
  }

  // Edits one parameter as its editor would.
  void SetParameter(const QString& edit) {
    const qsizetype equals = edit.indexOf(u'=');
    const QString name = edit.left(equals);
    const QString text = edit.sliced(equals + 1);
    const std::vector<int> found = FindVariable(name);
    if (found.empty()) throw BadInput{u"Unbekannte Variable: "_s + name};
    if (found.size() > 1) throw BadInput{u"Mehrere Parameter haben die Variable "_s + name};
    const int index = found.front();
    ParameterRecord& record = module_.Par[index];
    if (IsStringForTree(record)) {
      const int longest = TextEditOf(module_, index).MaxLength;
      if (longest > 0 && text.size() > longest) {
        throw BadInput{u"Text für %1 ist länger als %2 Zeichen: %3"_s.arg(name).arg(longest).arg(text)};
      }
      record.WertText = text;
    } else {
      const NumberEdit limits = NumberEditOf(module_, index, 0);
      const std::optional<qint32> value = EditedValue(record, limits.TextVon, text, limits.TextBis);
      if (!value) {
        throw BadInput{u"Wert für %1 liegt nicht zwischen %2 und %3: %4"_s.arg(name, limits.TextVon,
                                                                               limits.TextBis, text)};
      }
      record.Wert = *value;
      module_.ParNode[index] = kTrue;
    }
  }

  void SetMarks(const MarkChange& change) {
    const QString& what = change.what;
    std::vector<int> indices;
    bool isNumber = false;
    const int number = what.toInt(&isNumber);
    if (isNumber && number >= 1 && number < module_.ParCount) {
      indices.push_back(number);
    } else if (what == u"all" || what.startsWith(u"group=")) {
      for (int i = 1; i < module_.ParCount; ++i) {
        if (what == u"all" || module_.Par[i].Rubrik == QStringView(what).sliced(6)) indices.push_back(i);
      }
    } else {
      indices = FindVariable(what);
    }
    if (indices.empty() && what != u"all") throw BadInput{u"Kein Parameter: "_s + what};
    for (const int i : indices)
      module_.ParNode[i] = change.checked ? kTrue : kFalse;
  }

  int RunCommand() {
    const QString& command = arguments_.command;
    if (command == u"versions") return Print(VersionsText(module_), [this] { return VersionsJson(module_); });
    if (command == u"plants") return Print(PlantsText(core_), [this] { return PlantsJson(core_); });
    if (command == u"params")
      return Print(ParametersText(module_), [this] { return ParametersJson(module_); });
    if (command == u"tree") return Print(TreeText(core_), {});
    if (command == u"pages") return Print(print::PagesText(core_, Printed()), {});
    if (command == u"print") return PrintToPdf();
    if (command == u"identify") return Identify();
    if (command == u"receive") return RunTransfer(CommandEmpfangen_Click);
    if (command == u"send") return RunTransfer(CommandSenden_Click);
    if (command == u"compare") return RunTransfer(CommandVergleichen_Click);
    CommandStandard_Click(core_);
    return kDone;
  }

  int Print(const QString& text, const std::function<QJsonDocument()>& json) {
    if (arguments_.json) {
      world_.out << json().toJson().toStdString();
    } else {
      world_.out << text.toStdString();
    }
    return kDone;
  }

  [[nodiscard]] print::PrintInput Printed() const {
    return {main_.PlantSelectorVisible(), arguments_.statusPath.value_or(module_.Dateiname),
            arguments_.date.value_or(QDate::currentDate()),
            arguments_.landscape ? platform::kLandscape : platform::kPortrait};
  }

  int PrintToPdf() {
    print::PdfRequest request{Printed(), *arguments_.pdf, arguments_.copies.value_or(1), {}};
    if (arguments_.page) request.page = *arguments_.page;
    const QString error = print::PrintPdf(core_, request);
    if (!error.isEmpty()) throw BadInput{error};
    return kDone;
  }

  int Identify() {
    (void)controller_.Configure(kSlot, kSettings9600);
    const QString version = controller_.Identify(kSlot);
    const bool failed = IsError(version);
    (failed ? world_.err : world_.out) << version.toStdString() << '\n';
    return failed ? kNoTransfer : kDone;
  }

  // Runs the command; the last line of its report is ended before anything else is written.
  TransferOutcome ReportedTransfer(TransferOutcome (*command)(Core&)) {
    const auto finish = qScopeGuard([this] { view_.Finish(); });
    // Not the outcome itself: gcc 12 has been seen to drop its initial values at -O2 where the command
    // throws.
    std::optional<TransferOutcome> outcome;
    RunHandler(box_, [&] { outcome = command(core_); });
    return outcome.value_or(TransferOutcome());
  }

  int RunTransfer(TransferOutcome (*command)(Core&)) {
    // A port that cannot be opened shows in the first query.
    (void)controller_.Configure(kSlot, kSettings9600);
    const TransferOutcome outcome = ReportedTransfer(command);
    if (arguments_.json) {
      world_.out << CompareJson(report_.Text(), view_.Begun(), outcome.walk.failures, outcome.transferred)
                        .toJson()
                        .toStdString();
    }
    if (!outcome.transferred) return kNoTransfer;
    return outcome.walk.failures > 0 || outcome.walk.deviations > 0 ? kFindings : kDone;
  }

  int CheckDefinitionFiles() {
    bool errors = false;
    for (const Finding& finding : CheckDefinitions(world_.files, module_.Inipath, module_.Inifile)) {
      const QString severity = finding.error ? u"Fehler"_s : u"Warnung"_s;
      world_.out << u"%1\t%2\t%3\t%4\n"_s.arg(finding.file)
                        .arg(finding.line)
                        .arg(severity, finding.text)
                        .toStdString();
      errors = errors || finding.error;
    }
    return errors ? kFindings : kDone;
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
  COM_T_frm host_;
  TextReportView view_;
  Report report_;
  COM_A controller_;
  Core core_;
};

}  // namespace

int Run(const QStringList& list, World& world) {
  const Arguments arguments = ParseArguments(list);
  if (!arguments.error.isEmpty()) {
    world.err << arguments.error.toStdString() << '\n';
    return kBadInput;
  }
  if (arguments.help) {
    world.out << HelpText().toStdString();
    return kDone;
  }
  if (arguments.programVersion) {
    world.out << "kalivor-cli " << KALIVOR_VERSION << '\n';
    return kDone;
  }
  try {
    return Session(arguments, world).Run();
  } catch (const BadInput& bad) {
    if (!bad.message.isEmpty()) world.err << bad.message.toStdString() << '\n';
  } catch (const UnansweredQuestion&) {
    return kUnanswered;
  } catch (const RuntimeError& error) {
    world.err << error.Description().toStdString() << '\n';
  } catch (const std::bad_alloc&) {
    world.err << "Der Arbeitsspeicher reicht nicht aus.\n";
  }
  return kBadInput;
}

}  // namespace kalivor::cli
