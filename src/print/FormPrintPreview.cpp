#include "print/FormPrintPreview.h"

#include <QCoreApplication>
#include <QEventLoop>
#include <QMouseEvent>
#include <QPainter>

#include "print/painter/PagePainter.h"

using namespace Qt::StringLiterals;

namespace kalivor::print {
namespace {

constexpr double kTwipsPerInch = 1440;

// What screen readers read out.
QString SpokenText(const PageView& page) {
  QStringList lines{page.header};
  for (int line = page.lines.first; line <= page.lines.last; ++line)
    lines.append(page.list.Node(line).text);
  lines.append(page.footer);
  return lines.join(u'\n');
}

}  // namespace

FormPrintPreview::FormPrintPreview(const PrintWorld& world, platform::EventGuard guard, QWidget* parent)
    : QWidget(parent), PreviewPages(world), guard_(std::move(guard)) {
  setObjectName(u"FormPrintPreview"_s);
  setWindowTitle(u"Print Preview"_s);
  setAccessibleName(u"Druckseite"_s);
  setAttribute(Qt::WA_OpaquePaintEvent);
}

void FormPrintPreview::PrintForm() {
  // The list itself stays what it is until the job is sent off: there is no input meanwhile.
  World().printer.PrintPage([page = View()](QPainter& painter) { DrawPage(painter, page); });
}

void FormPrintPreview::Changed() {
  const Geometry& layout = Layout();
  setFixedSize(static_cast<int>(layout.FormWidth_twips / kTwipsPerInch * logicalDpiX()),
               static_cast<int>(layout.FormHeight_twips / kTwipsPerInch * logicalDpiY()));
  setAccessibleDescription(SpokenText(View()));
  update();
  if (OnChange) OnChange();
}

void FormPrintPreview::ProcessPending() {
  QCoreApplication::processEvents(QEventLoop::ExcludeUserInputEvents);
}

// Paper is white and print is black, whatever the palette.
void FormPrintPreview::paintEvent(QPaintEvent*) {
  QPainter painter(this);
  painter.fillRect(rect(), Qt::white);
  if (MaxLine == 0) return;
  painter.setRenderHints(QPainter::Antialiasing | QPainter::TextAntialiasing);
  painter.scale(width() / Layout().ScaleWidth, height() / Layout().ScaleHeight);
  DrawPage(painter, View());
}

void FormPrintPreview::mouseReleaseEvent(QMouseEvent* event) {
  if (event->button() != Qt::LeftButton || MaxLine == 0) return;
  const Geometry& layout = Layout();
  const QPointF place(event->position().x() / width() * layout.ScaleWidth,
                      event->position().y() / height() * layout.ScaleHeight);
  guard_([&] { Click(place); });
}

// `place` is in centimetres of the page.
void FormPrintPreview::Click(const QPointF& place) {
  const PageView page = View();
  for (int node = page.lines.first; node <= page.lines.last; ++node) {
    const int line = node - page.lines.first;
    if (!LineArea(page.geometry, line).contains(place)) continue;
    const int level = page.list.Node(node).level;
    if (SignArea(page.list, page.geometry, line, level).contains(place)) {
      TreeView_Collapse(node);
    } else {
      TreeView_NodeClick(node);
    }
    return;
  }
}

}  // namespace kalivor::print
