#include "commands/StartUp.h"

#include "base/Numbers.h"
#include "commands/EventBoundary.h"
#include "commands/TreeCommands.h"
#include "core/Refresh.h"

using namespace Qt::StringLiterals;

namespace kalivor {
namespace {

constexpr QStringView kSection = u"Settings";

// A number among the settings; one that cannot be converted is reported and `fallback` used.
qint16 Number(const platform::SettingsStore& store, platform::MessageBox& box, const QString& key,
              qint16 fallback) {
  qint16 number = fallback;
  RunHandler(box,
             [&] { number = StrictInt16(store.Get(kSection.toString(), key, QString::number(fallback))); });
  return number;
}

}  // namespace

void LoadSettings(Module1& module, const platform::SettingsStore& store, platform::MessageBox& box,
                  const QString& programFolder) {
  module.Adresse = Number(store, box, u"Adresse"_s, 1);
  module.Schnittstelle = Number(store, box, u"Schnittstelle"_s, 1);
  module.Userpath = store.Get(kSection.toString(), u"Userpath"_s, programFolder);
  module.Inipath = store.Get(kSection.toString(), u"Inipath"_s, programFolder);
  module.Inifile = store.Get(kSection.toString(), u"Inifile"_s, u"VF.INI"_s);
}

void SaveSettings(const Module1& module, platform::SettingsStore& store) {
  store.Save(kSection.toString(), u"Adresse"_s, QString::number(module.Adresse));
  store.Save(kSection.toString(), u"Schnittstelle"_s, QString::number(module.Schnittstelle));
  store.Save(kSection.toString(), u"Userpath"_s, module.Userpath);
  store.Save(kSection.toString(), u"Inipath"_s, module.Inipath);
  store.Save(kSection.toString(), u"Inifile"_s, module.Inifile);
}

void ConnectHandlers(Core& core) {
  core.module.VersionList.OnChange = [&core] { ComboVN_Click(core); };
  core.module.PlantTypeList.OnChange = [&core] { ComboArt_Click(core); };
  platform::TreeView& tree = core.main.Tree();
  tree.OnCollapse = [&core](int node) { TreeView_Collapse(core, node); };
  tree.OnExpand = [&core](int node) { TreeView_Expand(core, node); };
  tree.OnCheck = [&core](int node) { TreeView_NodeCheck(core, node); };
  tree.OnClick = [&core](int node) { TreeView_NodeClick(core, node); };
}

void StartUp(Core& core) {
  RunHandler(core.box, [&core] { Refresh(core, 5); });
  // A port that cannot be opened shows when it is first used.
  (void)core.controller.Configure(kSlot, kSettings9600);
}

}  // namespace kalivor
