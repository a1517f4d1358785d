// Version table: any bytes as the table, read twice.
#include <memory>

#include "PlainReading.h"
#include "Targets.h"
#include "World.h"
#include "core/DefinitionFiles.h"
#include "core/Refresh.h"

using namespace Qt::StringLiterals;

namespace kalivor::fuzz {
namespace {

VersionRecord PlainVersion(const QString& line) {
  const PlainColumns columns(line);
  return {columns.At(0), columns.At(1), columns.At(2), u' ' + columns.At(3), columns.At(4)};
}

// The definition file of no version exists: that ends the refresh where the parameters would be read.
void CheckPlants(World& world, int row) {
  world.module.VersionIndex = static_cast<qint16>(row);
  bool ended = false;
  try {
    Refresh(world.core, 4);
  } catch (const RuntimeError& error) {
    ended = error.GetKind() == RuntimeError::Kind::FileError;
  }
  Require(ended, "a missing definition file ends the refresh");
  Require(world.module.BusyDepth == 0 && world.main.enabled, "the program is ready again");

  const QString names = world.module.VersionRow(row).Anlagen;
  const SelectionList& plants = world.module.PlantTypeList;
  QString joined;
  for (int i = 0; i < plants.Count(); ++i)
    joined += plants.Text(i) + u' ';
  Require(joined == names.left(names.lastIndexOf(u' ') + 1), "each blank ends a plant type");
  Require(plants.Position() == 0, "the first plant type is selected");
  Require(world.main.plantSelectorVisible == (plants.Count() != 1), "one plant type needs no selector");
}

}  // namespace

void VersionTable(QByteArrayView input) {
  static const std::unique_ptr<World> made = WorldWithoutLine();
  World& world = *made;
  world.files.files[u"ini/VF.INI"_s] = input.toByteArray();
  world.module.VersionList.Clear();
  world.module.Versionen.assign(1, {});
  world.box.texts.clear();
  ReadVersions(world.core);

  const std::optional<QStringList> items = PlainItems(input);
  Require(world.box.texts.size() == (items && !items->isEmpty() ? 0 : 1), "a box where there is no version");
  if (!items) {
    Require(world.module.Versionen.size() == 1, "an unreadable table leaves the versions alone");
    return;
  }
  Require(world.module.VersionCount == items->size() + 1, "each item is a version");
  Require(world.module.VersionList.Count() == items->size(), "each version is in the list");
  for (int i = 0; i < items->size(); ++i) {
    const VersionRecord expected = PlainVersion(items->at(i));
    Require(world.module.VersionRow(i + 1) == expected, "the columns of a version");
    Require(world.module.VersionList.Text(i) == expected.Version, "the text of a version");
  }
  // One row is enough for an input, and which one depends on it. It costs as much as reading the table.
  if (!items->isEmpty() && InSample(input, 4))
    CheckPlants(world, static_cast<int>(input.size() % items->size()) + 1);
}

}  // namespace kalivor::fuzz
