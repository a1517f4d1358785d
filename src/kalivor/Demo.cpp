#include "kalivor/Demo.h"

#include <QCoreApplication>
#include <QDir>
#include <QFileInfo>

#include "history/Store.h"
#include "kalivor/DemoHistory.h"
#include "kalivor/System.h"
#include "sim/Faults.h"
#include "sim/LineModel.h"
#include "sim/SimulatedLine.h"
#include "sim/Station.h"

using namespace Qt::StringLiterals;

namespace kalivor {
namespace {

// Beside the program, or where a package for Linux puts it.
QString FindExample() {
  const QDir program(QCoreApplication::applicationDirPath());
  for (const QString& place : {u"examples"_s, u"../share/kalivor/examples"_s}) {
    QString folder = QDir::cleanPath(program.absoluteFilePath(place));
    if (QFileInfo::exists(folder + u"/VF.INI"_s)) return folder;
  }
  return {};
}

}  // namespace

QList<platform::PortEntry> DemoPorts::List() {
  return {{1, Shown(1)}};
}

QString DemoPorts::Shown(int /*number*/) {
  return u"simulierter Regler"_s;
}

struct Demo::Controller {
  platform::native::Clock clock;
  sim::Station station;
  sim::Faults faults{0};
  std::optional<sim::LineModel> model;
  std::optional<sim::SimulatedLine> line;
};

Demo::Demo() = default;

Demo::~Demo() = default;

QString Demo::Start() {
  folder_ = FindExample();
  if (folder_.isEmpty()) return u"Das mitgelieferte Beispiel wurde nicht gefunden."_s;
  if (!settings_.isValid()) return u"Es kann kein Ordner für vorläufige Dateien angelegt werden."_s;

  platform::native::FileSystem files;
  controller_ = std::make_unique<Controller>();
  controller_->station.module.Inipath = folder_;
  QString fault = sim::SetUp(controller_->station, files, {}, 1);
  if (!fault.isEmpty()) return fault;
  // As at a plant, not all values are the standard ones: there is something to compare and to take over.
  (void)controller_->station.memory.LoadValues(controller_->station.module, DemoValues());
  plant_ = WriteDemoHistory(history::FileIn(StateFolder()), controller_->station.module,
                            QDateTime::currentDateTime());
  controller_->model.emplace(*controller_->station.controller, controller_->faults);
  controller_->model->SetOther(*controller_->station.other);
  controller_->line.emplace(controller_->clock, *controller_->model);
  return {};
}

platform::SerialControl& Demo::Line() {
  return *controller_->line;
}

}  // namespace kalivor
