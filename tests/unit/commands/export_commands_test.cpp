// Exporting a table: the file that is asked for, what is written, and what is never written over.
#include "commands/ExportCommands.h"

#include "fakes/FakeFileDialogs.h"
#include "fakes/FakeFileSystem.h"
#include "fakes/FakeForms.h"
#include "fakes/QtPrinters.h"

using namespace Qt::StringLiterals;

namespace kalivor::test {
namespace {

const ListTable kTable{{u"V 3.10"_s}, {u"Name"_s, u"Wert"_s}, {{{u"Größe"_s}, {u"1.5"_s, true}}}};

class ExportCommands : public testing::Test {
 protected:
  QString Export(ExportKind kind = ExportKind::Csv) { return ExportTable(context, kTable, kind); }

  [[nodiscard]] QByteArray Written(const QString& path) const { return files.files.value(path).bytes; }

  FakeFileSystem files;
  FakeMessageBox box;
  FakeFileDialogs dialogs;
  QByteArray pdf = "%PDF";
  ExportContext context{files, box, dialogs, [this](const ListTable& table) {
                          EXPECT_EQ(table.titles, kTable.titles);
                          return pdf;
                        }};
};

TEST_F(ExportCommands, EachKindIsWrittenIntoTheFileThatTheUserNames) {
  dialogs.answers = {u"/a/liste.csv"_s, u"/a/liste.html"_s, u"/a/liste.pdf"_s};
  EXPECT_EQ(Export(ExportKind::Csv), u"/a/liste.csv"_s);
  EXPECT_EQ(Export(ExportKind::Html), u"/a/liste.html"_s);
  EXPECT_EQ(Export(ExportKind::Pdf), u"/a/liste.pdf"_s);
  EXPECT_EQ(Written(u"/a/liste.csv"_s), CsvOf(kTable));
  EXPECT_EQ(Written(u"/a/liste.html"_s), HtmlOf(kTable));
  EXPECT_EQ(Written(u"/a/liste.pdf"_s), pdf);
  ASSERT_EQ(dialogs.shown.size(), 3);
  for (const FakeFileDialogs::Dialog& dialog : dialogs.shown) {
    EXPECT_TRUE(dialog.save);
    EXPECT_EQ(dialog.title, u"Exportieren"_s);
  }
  EXPECT_EQ(dialogs.shown[0].filter, u"CSV für Tabellenkalkulation (*.csv)|*.csv|Alle Dateien (*.*)|*.*"_s);
  EXPECT_EQ(dialogs.shown[1].filter, u"HTML-Seite (*.html)|*.html|Alle Dateien (*.*)|*.*"_s);
  EXPECT_EQ(dialogs.shown[2].filter, u"PDF-Dokument (*.pdf)|*.pdf|Alle Dateien (*.*)|*.*"_s);
}

TEST_F(ExportCommands, ADocumentIsWrittenUnderItsTitle) {
  dialogs.answers = {u"/a/protokoll"_s, u"/a/leer.pdf"_s};
  EXPECT_EQ(ExportPdf(context, u"Protokoll speichern"_s, "%PDF-1"), u"/a/protokoll.pdf"_s);
  EXPECT_EQ(Written(u"/a/protokoll.pdf"_s), QByteArray("%PDF-1"));
  EXPECT_EQ(dialogs.shown[0].title, u"Protokoll speichern"_s);
  EXPECT_EQ(ExportPdf(context, u"Protokoll speichern"_s, {}), QString());
  const std::vector<FakeMessageBox::Box> shown = box.Take();
  ASSERT_EQ(shown.size(), 1);
  EXPECT_TRUE(shown[0].text.contains(u"Das PDF-Dokument lässt sich nicht erzeugen."_s));
  EXPECT_FALSE(files.files.contains(u"/a/leer.pdf"_s));
}

TEST_F(ExportCommands, ANameWithoutSuffixGetsTheOneOfItsKind) {
  const std::vector<std::pair<QString, QString>> names{
      {u"/a/liste"_s, u"/a/liste.csv"_s},
      {u"/a.b/liste"_s, u"/a.b/liste.csv"_s},
      {u"C:\\x.y\\Anlage 1.5"_s, u"C:\\x.y\\Anlage 1.5.csv"_s},
      {u"/a/liste."_s, u"/a/liste..csv"_s},
      {u"/a/Liste.TXT"_s, u"/a/Liste.TXT"_s}};
  for (const auto& [given, written] : names) {
    dialogs.answers.push_back(given);
    EXPECT_EQ(Export(), written);
  }
}

TEST_F(ExportCommands, ACancelledDialogWritesNothing) {
  dialogs.answers = {QString()};
  EXPECT_EQ(Export(), QString());
  EXPECT_TRUE(files.files.isEmpty());
}

TEST_F(ExportCommands, AFileThatIsThereIsReplacedOnlyWhenConfirmed) {
  files.files[u"/a/liste.csv"_s] = {"old", {}};
  dialogs.answers = {u"/a/liste.csv"_s};
  box.answers = {true};
  EXPECT_EQ(Export(), u"/a/liste.csv"_s);
  EXPECT_EQ(Written(u"/a/liste.csv"_s), CsvOf(kTable));
  ASSERT_EQ(box.asked.size(), 1);
  EXPECT_EQ(box.asked[0].text, u"Die Datei gibt es schon:\r\n/a/liste.csv\r\nSoll sie ersetzt werden?"_s);
  EXPECT_EQ(box.asked[0].action, u"Ersetzen"_s);
}

TEST_F(ExportCommands, WithoutConfirmationAnotherNameIsAskedFor) {
  files.files[u"/a/liste.csv"_s] = {"old", {}};
  dialogs.answers = {u"/a/liste.csv"_s, u"/a/neu.csv"_s};
  box.answers = {false};
  EXPECT_EQ(Export(), u"/a/neu.csv"_s);
  EXPECT_EQ(Written(u"/a/liste.csv"_s), "old");
  EXPECT_EQ(Written(u"/a/neu.csv"_s), CsvOf(kTable));
}

// The dialog has seen another name.
TEST_F(ExportCommands, AnAddedSuffixWritesOverNothingUnasked) {
  files.files[u"/a/liste.csv"_s] = {"old", {}};
  dialogs.answers = {u"/a/liste"_s, QString()};
  box.answers = {false};
  EXPECT_EQ(Export(), QString());
  EXPECT_EQ(Written(u"/a/liste.csv"_s), "old");
}

TEST_F(ExportCommands, AFileThatCannotBeReadIsNotWrittenOverUnaskedEither) {
  files.AddFailure(u"/a/liste.csv"_s, u"Keine Berechtigung zum Lesen der Datei."_s);
  dialogs.answers = {u"/a/liste.csv"_s, QString()};
  box.answers = {false};
  EXPECT_EQ(Export(), QString());
}

TEST_F(ExportCommands, AFailureIsShownWithItsReason) {
  files.writeError = u"Auf dem Datenträger ist kein Platz mehr."_s;
  dialogs.answers = {u"/a/liste.csv"_s};
  EXPECT_EQ(Export(), QString());
  const auto boxes = box.Take();
  ASSERT_EQ(boxes.size(), 1);
  EXPECT_EQ(
      boxes[0].text,
      u"Nicht exportiert:\r\n/a/liste.csv\r\nAuf dem Datenträger ist kein Platz mehr.\r\n\r\nBitte eine "
      "andere Datei oder einen anderen Ordner wählen."_s);
}

TEST_F(ExportCommands, APdfThatCannotBeMadeLeavesTheOldFile) {
  files.files[u"/a/liste.pdf"_s] = {"old", {}};
  dialogs.answers = {u"/a/liste.pdf"_s};
  box.answers = {true};
  pdf.clear();
  EXPECT_EQ(Export(ExportKind::Pdf), QString());
  EXPECT_EQ(Written(u"/a/liste.pdf"_s), "old");
  EXPECT_EQ(box.Take().size(), 1);
}

}  // namespace
}  // namespace kalivor::test
