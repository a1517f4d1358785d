#include "print/pages/PreviewPages.h"

#include <QScopeGuard>
#include <algorithm>

#include "base/Numbers.h"

using namespace Qt::StringLiterals;

namespace kalivor::print {
namespace {

// Marks the tree as being changed by the program for as long as the result lives.
auto Updating(Module1& module) {
  module.TreeUpdating = kTrue;
  return qScopeGuard([&module] { module.TreeUpdating = kFalse; });
}

}  // namespace

void PreviewPages::MakeTree() {
  const auto updating = Updating(world_.core.module);
  const auto show = qScopeGuard([this] { Changed(); });
  firstLine_ = 1;
  list_.Make(world_.core.module, world_.core.module.PlantTypeList.SelectedText(),
             world_.printer.Orientation());
  MaxPage = list_.MaxPage;
}

void PreviewPages::selectPage() {
  const qint16 height = RoundToInt16(treeHeight_);
  const qint16 first = RoundToInt16((Page - 1) * MaxLine + 1);
  {
    const auto updating = Updating(world_.core.module);
    // The last page is made only as high as its lines need, and never less than nothing.
    if (Page == MaxPage.value_or(0))
      treeHeight_ = std::max(0.0, static_cast<double>(list_.Count() - first) * height / MaxLine);
    firstLine_ = first;
  }
  treeHeight_ = height;
  ShowPageText();
}

void PreviewPages::ShowPageText() {
  panelText_ = PageText(Page, MaxPage);
  Changed();
}

void PreviewPages::DoLayout() {
  platform::Printer& printer = world_.printer;
  if (printer.PaperSize() != kPaperA4) {
    world_.core.box.Show(u"Seitengrösse wird auf A4 geändert"_s);
    printer.SetPaperSize(kPaperA4);
  }
  layout_ = GeometryFor(printer.Orientation(), Masstab, FontSize);
  MaxLine = layout_.MaxLine;
  treeHeight_ = layout_.TreeHeight;

  // Measured at 1:1, so that the preview shows the footer that will be printed.
  const double size_pt = FontSize[1];
  footer_ = FittedFooter(DateText(world_.today(), world_.language), panelText_, world_.statusPath(),
                         layout_.FooterRoom(),
                         [size_pt](const QString& text) { return TextWidth_cm(text.size(), size_pt); });
  const Module1& module = world_.core.module;
  header_ = HeaderText(module.VersionList.SelectedText(), module.PlantTypeOffered,
                       module.PlantTypeList.SelectedText());
  ShowPageText();
}

void PreviewPages::Initialize_fPP() {
  FontSize = StandardFontSizes();
  FontSize2 = StandardFontSizes();
  Masstab = 2;
  DoLayout();
  Page = 1;
  MakeTree();
  selectPage();
}

void PreviewPages::CommandAusrichtung() {
  platform::Printer& printer = world_.printer;
  printer.SetOrientation(printer.Orientation() == kLandscape ? kPortrait : kLandscape);
  DoLayout();
  MakeTree();
}

// Does not go back to the scale of before.
void PreviewPages::Print(const std::function<void()>& pages) {
  auto abort = qScopeGuard([this] { world_.printer.AbortDoc(); });
  printedFile_.clear();
  Masstab = 1;
  DoLayout();
  pages();
  printedFile_ = world_.printer.EndPrinting();
  abort.dismiss();
}

void PreviewPages::CommandDrucken() {
  Print([this] {
    // The footers stay what they are now: no layout between the pages.
    for (int copy = 1; copy <= world_.core.module.Kopien; ++copy) {
      for (Page = 1; Page <= MaxPage.value_or(0); ++Page) {
        selectPage();
        ProcessPending();
        PrintForm();
      }
    }
    world_.printer.EndDoc();
  });
}

void PreviewPages::CommandSeiteDrucken() {
  Print([this] {
    selectPage();
    ProcessPending();
    for (int copy = 1; copy <= world_.core.module.Kopien; ++copy) {
      PrintForm();
      world_.printer.EndDoc();
    }
  });
}

// The numbers are those of the printed groups, which the main window counts differently when some parameters
// are not printed.
qint16& PreviewPages::StateOf(const PrintNode& group) {
  return world_.core.module.NodeState[LeadingInt16(QStringView(group.key).sliced(1))];
}

void PreviewPages::TreeView_Collapse(int node) {
  const PrintNode& clicked = list_.Node(node);
  if (!clicked.IsGroup()) return;
  StateOf(clicked) = kFalse;
  MakeTree();
}

void PreviewPages::TreeView_Expand(int node) {
  const PrintNode& clicked = list_.Node(node);
  if (!clicked.IsGroup() || world_.core.module.TreeUpdating != kFalse) return;
  StateOf(clicked) = kTrue;
  MakeTree();
}

void PreviewPages::TreeView_NodeClick(int node) {
  const PrintNode& clicked = list_.Node(node);
  if (clicked.IsGroup()) StateOf(clicked) = clicked.expanded ? kTrue : kFalse;
}

PageView PreviewPages::View() const {
  return {list_, list_.From(firstLine_, MaxLine), GeometryFor(layout_.Orientation, 1), header_, footer_};
}

}  // namespace kalivor::print
