// An installation with parameters to print, and a printer.
#pragma once

#include "fakes/FakePrinter.h"
#include "fakes/Installation.h"
#include "print/pages/PagesText.h"
#include "print/pages/PreviewPages.h"

namespace kalivor::test {

using print::kLandscape;
using print::kPortrait;

struct PrintSite : Installation {
  FakePrinter printer;
  QString path = u"C:\\Daten\\test.qpf"_s;
  QDate today{2026, 11, 21};
  QLocale language{QLocale::German};

  PrintSite() {
    module.VersionList.Add(u"AB1-123.4"_s);
    module.VersionList.Select(0);
    module.PlantTypeList.Add(QString());
    module.PlantTypeList.Add(u"Luft"_s);
    module.PlantTypeList.Select(0);
  }

  /// Appends `count` checked parameters of a group.
  void Add(const QString& group, int count = 1) {
    for (int i = 0; i < count; ++i) {
      ParameterRecord& record = AddParameter(u"int"_s, QString());
      record.Rubrik = group;
      record.Name = u"Parameter %1"_s.arg(module.ParCount - 1);
    }
  }

  /// Makes the printable list `nodes` lines long.
  void Fill(int nodes) {
    module.ParCount = 1;
    Add(QString(), nodes - 1);
  }

  [[nodiscard]] print::PrintWorld World() {
    return {core, printer, [this] { return path; }, [this] { return today; }, language};
  }

  [[nodiscard]] print::PrintInput Input(int orientation = kPortrait) const {
    return {path, today, orientation, language};
  }
};

/// The preview without a window. Notes what it prints.
class TestPages final : public print::PreviewPages {
 public:
  explicit TestPages(PrintSite& site) : PreviewPages(site.World()) {}

  struct Printed {
    double page;
    print::LineRange lines;
    QString footer;
  };
  std::vector<Printed> printed;
  int changes = 0;
  int processed = 0;  ///< how often pending events were let through
  bool hidden = false;
  std::function<void()> onChanged;

  [[nodiscard]] QStringList Texts() const {
    QStringList texts;
    for (const print::PrintNode& node : List().nodes)
      texts.append(node.text);
    return texts;
  }

  [[nodiscard]] QStringList Keys() const {
    QStringList keys;
    for (const print::PrintNode& node : List().nodes)
      keys.append(node.key);
    return keys;
  }

 protected:
  void PrintForm() override {
    World().printer.PrintPage([](QPainter&) {});
    printed.push_back({Page, View().lines, Footer()});
  }
  void HideForm() override { hidden = true; }
  void Changed() override {
    ++changes;
    if (onChanged) onChanged();
  }
  void ProcessPending() override { ++processed; }
};

}  // namespace kalivor::test
