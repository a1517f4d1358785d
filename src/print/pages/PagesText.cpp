#include "print/pages/PagesText.h"

using namespace Qt::StringLiterals;

namespace kalivor::print {
namespace {

constexpr int kIndentation_characters = 2;

/// Collects the pages that it is to print.
class TextPages final : public PreviewPages {
 public:
  using PreviewPages::PreviewPages;

  QString text;

 protected:
  void PrintForm() override {
    const PageView page = View();
    AddLine(u"=== Seite %1 von %2"_s.arg(static_cast<int>(Page)).arg(MaxPage.value_or(0)));
    AddLine(page.header);
    for (int line = page.lines.first; line <= page.lines.last; ++line) {
      const PrintNode& node = page.list.Node(line);
      AddLine(QString(qsizetype{node.level} * kIndentation_characters, u' ') + node.text);
    }
    AddLine(page.footer);
  }

 private:
  void AddLine(const QString& line) { text += line + u'\n'; }
};

}  // namespace

PrintWorld WorldOf(Core& core, platform::Printer& printer, const PrintInput& input) {
  return {core, printer, [path = input.statusPath] { return path; }, [date = input.date] { return date; },
          input.language};
}

QString PagesText(Core& core, const PrintInput& input) {
  NoPrinter printer(input.orientation);
  TextPages pages(WorldOf(core, printer, input));
  core.module.Kopien = 1;
  // As the window does: once when it is made, and once when it is shown.
  pages.Initialize_fPP();
  pages.Initialize_fPP();
  pages.CommandDrucken();
  return pages.text;
}

}  // namespace kalivor::print
