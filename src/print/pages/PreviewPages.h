// The print preview without its window: what it shows, and its commands.
#pragma once

#include <QDate>
#include <QString>
#include <functional>
#include <optional>

#include "core/Core.h"
#include "platform/Printer.h"
#include "print/pages/Geometry.h"
#include "print/pages/PageTexts.h"
#include "print/pages/PrintList.h"

namespace kalivor::print {

/// What printing works with. Everything must outlive the preview.
struct PrintWorld {
  Core& core;
  platform::Printer& printer;
  std::function<QString()> statusPath;  ///< panel 2 of the main window's status bar
  std::function<QDate()> today;
  QLocale language = SystemLanguage();  ///< of the date
};

/// One page, ready to be drawn at 1:1.
struct PageView {
  const PrintList& list;
  LineRange lines;
  Geometry geometry;
  QString header;
  QString footer;
};

/// Where it is shown and how it is printed is up to the derived class. The operations throw RuntimeError.
class PreviewPages {
 public:
  explicit PreviewPages(const PrintWorld& world) : world_(world) {}
  virtual ~PreviewPages() = default;
  PreviewPages(const PreviewPages&) = delete;
  PreviewPages& operator=(const PreviewPages&) = delete;

  double Masstab = 0;             ///< display scale divisor: 1, 2 or 4
  double Page = 0;                ///< the page shown, from 1
  std::optional<qint16> MaxPage;  ///< number of pages; none before the first MakeTree()
  qint16 MaxLine = 0;             ///< lines of a page
  FontSizes FontSize;             ///< of the tree, the header and the footer, by scale
  FontSizes FontSize2;            ///< kept: the same once more; nothing reads it

  /// Rebuilds the list from the parameters. It shows from its first line on then.
  void MakeTree();

  /// Shows page `Page`; one behind the last line is empty.
  void selectPage();

  /// kept: no button calls it; the frame's window button hides frame and preview together.
  void CommandAbbrechen() { HideForm(); }

  /// Turns the paper. `Page` stays, but is not selected again.
  void CommandAusrichtung();

  /// Prints all pages, Kopien times, as one job. `Page` is one behind the last page then.
  void CommandDrucken();

  /// Prints the page shown, Kopien times, one job per copy.
  void CommandSeiteDrucken();

  /// Starts again: scale 1:2, page 1, the list rebuilt.
  void Initialize_fPP();

  /// Lays the page out for the orientation and the scale. The footer gets the page text from before.
  void DoLayout();

  /// The user collapses, expands or clicks line `node` (from 1). Groups always show expanded again
  /// afterwards; only what is stored for the main window's tree changes.
  void TreeView_Collapse(int node);
  void TreeView_Expand(int node);
  void TreeView_NodeClick(int node);

  [[nodiscard]] const PrintList& List() const { return list_; }
  [[nodiscard]] const Geometry& Layout() const { return layout_; }
  [[nodiscard]] const QString& Header() const { return header_; }
  [[nodiscard]] const QString& Footer() const { return footer_; }

  /// Height of the tree in centimetres. Selecting a page leaves it rounded; what is drawn goes by the layout.
  [[nodiscard]] double TreeHeight() const { return treeHeight_; }

  /// The page text, as the frame's status bar shows it.
  [[nodiscard]] const QString& PanelText() const { return panelText_; }

  /// The file that the last print command wrote; "" when it went to a printer or failed.
  [[nodiscard]] const QString& PrintedFile() const { return printedFile_; }

  [[nodiscard]] PageView View() const;

 protected:
  /// Prints what View() shows as one page.
  virtual void PrintForm() = 0;
  virtual void HideForm() {}

  /// The page, its size or the page text has changed.
  virtual void Changed() {}

  /// Lets the page be painted, but no input through.
  virtual void ProcessPending() {}

  [[nodiscard]] const PrintWorld& World() const { return world_; }

 private:
  void ShowPageText();
  void Print(const std::function<void()>& pages);
  [[nodiscard]] qint16& StateOf(const PrintNode& group);

  PrintWorld world_;
  PrintList list_;
  Geometry layout_;
  double treeHeight_ = 0;
  int firstLine_ = 1;
  QString header_;
  QString footer_;
  QString panelText_;
  QString printedFile_;
};

}  // namespace kalivor::print
