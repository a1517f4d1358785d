// Applying the options: globals, line rate, and reading everything anew.
#include "commands/OptionsCommands.h"

#include "fakes/Installation.h"

namespace kalivor::test {
namespace {

/// A started program, its reading and sending so far forgotten.
class Options : public testing::Test {
 protected:
  Options() {
    pc.StartWithFiles();
    pc.files.reads.clear();
  }

  Installation pc;
};

TEST_F(Options, ShowThePresentSettings) {
  pc.module.Schnittstelle = 3;
  pc.module.Adresse = 0;
  pc.module.Inipath = u"C:\\Daten\\"_s;
  const OptionsContent content = OptionsOf(pc.module);
  EXPECT_EQ(content.portPosition, 2);
  EXPECT_EQ(content.addressPosition, 0);
  EXPECT_EQ(content.tablePath, u"C:\\Daten\\VF.INI"_s);
  EXPECT_FALSE(content.pathChanged);
}

TEST_F(Options, SettingsOutsideTheListsSelectNothing) {
  pc.module.Schnittstelle = 9;
  pc.module.Adresse = -1;
  EXPECT_EQ(OptionsOf(pc.module).portPosition, -1);
  EXPECT_EQ(OptionsOf(pc.module).addressPosition, -1);
  pc.module.Schnittstelle = 0;
  pc.module.Adresse = 256;
  EXPECT_EQ(OptionsOf(pc.module).portPosition, -1);
  EXPECT_EQ(OptionsOf(pc.module).addressPosition, -1);
}

TEST_F(Options, PortAndAddressAreStoredWithoutReadingAnything) {
  ApplyOptions(pc.core, {2, 17, u"x/VF.INI"_s, false});
  EXPECT_EQ(pc.module.Schnittstelle, 3);
  EXPECT_EQ(pc.module.Adresse, 17);
  EXPECT_EQ(pc.host.Ports[1].PortNr, 3);
  EXPECT_EQ(pc.host.Ports[1].Adr, 17);
  EXPECT_TRUE(pc.files.reads.isEmpty());
  EXPECT_EQ(pc.module.Inipath, Native(u"ini/"_s));
}

TEST_F(Options, WithoutASelectionTheStoredValueStays) {
  pc.module.Schnittstelle = 9;
  pc.module.Adresse = 300;
  ApplyOptions(pc.core, OptionsOf(pc.module));
  EXPECT_EQ(pc.module.Schnittstelle, 9);
  EXPECT_EQ(pc.module.Adresse, 300);
}

TEST_F(Options, AConnectionIsStoredLikePortAndAddress) {
  ApplyConnection(pc.core, 8, 255);
  EXPECT_EQ(pc.module.Schnittstelle, 8);
  EXPECT_EQ(pc.module.Adresse, 255);
  EXPECT_EQ(pc.host.Ports[1].PortNr, 8);
  EXPECT_EQ(pc.host.Ports[1].Adr, 255);
  EXPECT_TRUE(pc.files.reads.isEmpty());
  ApplyConnection(pc.core, 1, 0);
  EXPECT_EQ(pc.module.Schnittstelle, 1);
  EXPECT_EQ(pc.module.Adresse, 0);
}

TEST_F(Options, TheLineIsSetBackTo9600Baud) {
  (void)pc.controller.Configure(kSlot, kSettings19200);
  ApplyOptions(pc.core, OptionsOf(pc.module));
  EXPECT_EQ(pc.host.Ports[1].Settings, u"9600,o,7,1"_s);
}

TEST_F(Options, APortThatCannotBeOpenedIsNotReported) {
  pc.line.openable = false;
  ApplyOptions(pc.core, {2, 17, {}, false});
  EXPECT_EQ(pc.module.Schnittstelle, 3);
}

TEST_F(Options, AChangedPathReadsEverythingAnew) {
  pc.files.AddText(u"neu/T.INI"_s, u"Kopf\nXY1-100.0  -  C.TXT  A  WR\n"_s);
  pc.files.AddText(u"neu//C.TXT"_s, u"Kopf\n"_s);
  ApplyOptions(pc.core, {0, 1, u"neu/T.INI"_s, true});
  EXPECT_EQ(pc.module.Inipath, u"neu/"_s);
  EXPECT_EQ(pc.module.Inifile, u"T.INI"_s);
  EXPECT_EQ(pc.module.VersionList.SelectedText(), u"XY1-100.0"_s);
}

TEST_F(Options, BothSeparatorsEndTheFolder) {
  pc.files.AddText(u"C:\\Daten\\T.INI"_s, u"Kopf\nXY1-100.0  -  C.TXT  A  WR\n"_s);
  pc.files.AddText(u"C:\\Daten\\\\C.TXT"_s, u"Kopf\n"_s);
  ApplyOptions(pc.core, {0, 1, u"C:\\Daten\\T.INI"_s, true});
  EXPECT_EQ(pc.module.Inipath, u"C:\\Daten\\"_s);
  EXPECT_EQ(pc.module.Inifile, u"T.INI"_s);
}

TEST_F(Options, APathThatEndsInASeparatorLeavesNoFileNameAndReads) {
  for (const QString& path : {u"leer/"_s, u"C:\\leer\\"_s}) {
    pc.files.reads.clear();
    ApplyOptions(pc.core, {0, 1, path, true});
    EXPECT_EQ(pc.module.Inipath, path);
    EXPECT_EQ(pc.module.Inifile, QString());
    EXPECT_EQ(pc.files.reads, QStringList(FileName(path).text));
    EXPECT_EQ(pc.box.Take().size(), 1U);
  }
}

TEST_F(Options, APathWithoutFolderIsRefusedBeforeItIsTakenOver) {
  EXPECT_EQ(ThrownKind([this] {
              ApplyOptions(pc.core, {4, 7, u"VF.INI"_s, true});
            }),
            RuntimeError::Kind::InvalidArgument);
  EXPECT_EQ(pc.module.Inipath, Native(u"ini/"_s));
  EXPECT_EQ(pc.module.Inifile, u"VF.INI"_s);
  // The other pages are applied by then.
  EXPECT_EQ(pc.module.Schnittstelle, 5);
  EXPECT_EQ(pc.module.Adresse, 7);
}

TEST_F(Options, AnEmptyTableLeavesTreeAndPlantListInPlace) {
  pc.files.AddText(u"neu/T.INI"_s, u"Kopf\n"_s);
  const int nodes = pc.main.tree.Count();
  ApplyOptions(pc.core, {0, 1, u"neu/T.INI"_s, true});
  EXPECT_EQ(pc.module.VersionList.Count(), 0);
  EXPECT_EQ(pc.module.PlantTypeList.Count(), 2);
  EXPECT_EQ(pc.main.tree.Count(), nodes);
  EXPECT_EQ(pc.module.VersionIndex, 1);
  EXPECT_EQ(pc.box.Take().size(), 1U);
}

TEST_F(Options, NothingIsAppliedWhileAnOperationIsUnderWay) {
  pc.module.BusyDepth = 1;
  ApplyOptions(pc.core, {6, 99, u"neu/T.INI"_s, true});
  pc.module.BusyDepth = 0;
  EXPECT_EQ(pc.module.Schnittstelle, 1);
  EXPECT_EQ(pc.module.Adresse, 1);
  EXPECT_EQ(pc.module.Inifile, u"VF.INI"_s);
}

}  // namespace
}  // namespace kalivor::test
