#include "ui/main/HelpKey.h"

#include <QCoreApplication>
#include <QFileDialog>
#include <QHash>
#include <QKeyEvent>
#include <QTabWidget>

using namespace Qt::StringLiterals;

namespace kalivor::ui {
namespace {

// The pages by the names of the windows.
const QHash<QString, QString>& Pages() {
  static const QHash<QString, QString> pages{{u"frmMain"_s, u"hauptfenster"_s},
                                             {u"DialogEdit"_s, u"parameter#zahleneditor"_s},
                                             {u"DialogEditString"_s, u"parameter#texteditor"_s},
                                             {u"DialogReport"_s, u"uebertragung#report"_s},
                                             {u"DlgAuswahl"_s, u"fragen"_s},
                                             {u"DlgAchtung"_s, u"fragen"_s},
                                             {u"frmOptions"_s, u"optionen"_s},
                                             {u"MDIFormPrint"_s, u"drucken"_s},
                                             {u"frmAbout"_s, u"info"_s},
                                             {u"ParameterList"_s, u"parameterliste"_s},
                                             {u"ProgressDialog"_s, u"parameterliste"_s},
                                             {u"SelectionName"_s, u"parameterliste"_s},
                                             {u"SafeWindow"_s, u"sichersenden"_s},
                                             {u"SafeProgress"_s, u"sichersenden"_s},
                                             {u"UnfinishedDialog"_s, u"sichersenden#unterbrochen"_s},
                                             {u"BackupsWindow"_s, u"sichersenden#sicherungen"_s},
                                             {u"ConnectionWindow"_s, u"verbindung"_s},
                                             {u"SearchProgress"_s, u"verbindung"_s},
                                             {u"BindingDialog"_s, u"verbindung#binden"_s},
                                             {u"FindingsWindow"_s, u"definitionen"_s},
                                             {u"DiagnosisWindow"_s, u"diagnose"_s},
                                             {u"TelegramsWindow"_s, u"telegrammfenster"_s},
                                             {u"HistoryWindow"_s, u"verlauf"_s},
                                             {u"CurveWindow"_s, u"verlauf#kurve"_s},
                                             {u"PlantDialog"_s, u"verlauf#anlagen"_s},
                                             {u"PlantForm"_s, u"verlauf#anlagen"_s},
                                             {u"SyncDialog"_s, u"abgleich"_s},
                                             {u"ServiceReportWindow"_s, u"serviceprotokoll"_s},
                                             {u"MessageBox"_s, u"meldungen"_s},
                                             {u"CDlg"_s, u"drucken"_s}};
  return pages;
}

// Those of the questions for files by their titles.
const QHash<QString, QString>& FilePages() {
  static const QHash<QString, QString> pages{
      {u"Exportieren"_s, u"parameterliste"_s},
      {u"Telegramme speichern"_s, u"telegrammfenster"_s},
      {u"Parameterfile"_s, u"optionen#dateien"_s},
      {u"Verlauf des Wertes speichern"_s, u"verlauf#kurve"_s},
      {u"Bild des Briefkopfs"_s, u"serviceprotokoll"_s},
      {u"Vorlage des Protokolls"_s, u"serviceprotokoll#vorlage"_s},
      {u"Eingebaute Vorlage speichern"_s, u"serviceprotokoll#vorlage"_s},
      {u"Protokoll speichern"_s, u"serviceprotokoll"_s}};
  return pages;
}

QString PageOfWindow(const QWidget& window) {
  if (const auto* files = qobject_cast<const QFileDialog*>(&window)) {
    return FilePages().value(files->windowTitle(), u"wertedateien"_s);
  }
  QString page = Pages().value(window.objectName());
  if (page != u"optionen") return page;
  constexpr QStringView tabs[] = {u"#schnittstelle", u"#regler", u"#dateien"};
  return page + tabs[window.findChild<QTabWidget*>()->currentIndex()].toString();
}

}  // namespace

// An open menu or list is a window too, but its page is that of the window that it belongs to.
QString ManualPageOf(const QWidget& widget) {
  for (const QWidget* window = widget.window(); window != nullptr;) {
    QString page = PageOfWindow(*window);
    if (!page.isEmpty()) return page;
    const QWidget* parent = window->parentWidget();
    window = parent != nullptr ? parent->window() : nullptr;
  }
  return u"index"_s;
}

HelpKey::HelpKey(platform::Help& help, const platform::EventGuard& guard) : help_(help), guard_(guard) {
  QCoreApplication::instance()->installEventFilter(this);
}

bool HelpKey::eventFilter(QObject* watched, QEvent* event) {
  if (event->type() != QEvent::KeyPress || !watched->isWidgetType()) return false;
  const auto& key = static_cast<const QKeyEvent&>(*event);
  if (key.key() != Qt::Key_F1 || key.modifiers() != Qt::NoModifier) return false;
  const auto& widget = static_cast<const QWidget&>(*watched);
  if (!key.isAutoRepeat() && widget.window()->isEnabled())
    guard_([&] { help_.ShowPage(ManualPageOf(widget)); });
  return true;
}

}  // namespace kalivor::ui
