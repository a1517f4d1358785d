#include "platform/gui/PdfFile.h"

#include <QSaveFile>

using namespace Qt::StringLiterals;

namespace kalivor::platform {
namespace {

constexpr int kResolution_dpi = 1200;
constexpr double kCentimetresPerInch = 2.54;

}  // namespace

PdfFile::PdfFile(const QString& title) : writer_(&content_) {
  content_.open(QIODevice::WriteOnly);
  writer_.setCreator(u"KALIVOR"_s);
  writer_.setTitle(title);
  writer_.setResolution(kResolution_dpi);
}

void PdfFile::AddPage(const QPageLayout& paper, const std::function<void(QPainter&)>& draw) {
  if (!complete_) return;
  // Takes effect with the next page that is begun.
  complete_ = writer_.setPageLayout(QPageLayout(paper.pageSize(), paper.orientation(), QMarginsF())) &&
              (painter_.isActive() ? writer_.newPage() : painter_.begin(&writer_));
  if (!complete_) return;
  painter_.save();
  painter_.scale(kResolution_dpi / kCentimetresPerInch, kResolution_dpi / kCentimetresPerInch);
  draw(painter_);
  painter_.restore();
}

QByteArray PdfFile::Content() {
  if (!painter_.isActive() || !painter_.end() || !complete_) return {};
  return content_.data();
}

bool PdfFile::Save(const QString& path) {
  const QByteArray content = Content();
  if (content.isEmpty()) return false;
  QSaveFile file(path);
  // A disk that gets full takes a part, which the toolkit does not count as an error, and with a buffer does
  // not even tell.
  if (!file.open(QIODevice::WriteOnly | QIODevice::Unbuffered)) return false;
  if (file.write(content) != content.size()) file.cancelWriting();
  return file.commit();
}

}  // namespace kalivor::platform
