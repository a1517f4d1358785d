// Writing a table into a file that the user names.
#pragma once

#include <QByteArray>
#include <QString>
#include <functional>

#include "core/ListTable.h"
#include "platform/FileDialogs.h"
#include "platform/FileSystem.h"
#include "platform/MessageBox.h"

namespace kalivor {

enum class ExportKind { Csv, Html, Pdf };

/// What an export needs.
struct ExportContext {
  platform::FileSystem& files;
  platform::MessageBox& box;
  platform::FileDialogs& dialogs;
  std::function<QByteArray(const ListTable& table)> pdf;  ///< a document of the printed table
};

/// Asks for a file and writes the table into it. A name without a suffix gets that of the kind. A file that
/// is there already is replaced only when the user confirms it; else another name is asked for. A failure is
/// shown in a box, and a file that was there stays as it was. Returns the path of the written file, "" when
/// there is none.
QString ExportTable(const ExportContext& context, const ListTable& table, ExportKind kind);

/// The same with a text (*.txt), a page (*.html), a document (*.pdf, empty where it could not be made), a
/// picture (*.svg) or the image of a value file (*.qpf); `title` stands above the question for the file.
QString ExportText(const ExportContext& context, const QString& title, const QByteArray& text);
QString ExportHtml(const ExportContext& context, const QString& title, const QByteArray& html);
QString ExportPdf(const ExportContext& context, const QString& title, const QByteArray& pdf);
QString ExportPicture(const ExportContext& context, const QString& title, const QByteArray& svg);
QString ExportValueFile(const ExportContext& context, const QString& title, const QByteArray& image);

}  // namespace kalivor
