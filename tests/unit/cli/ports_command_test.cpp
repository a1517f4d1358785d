// `ports`: the serial ports, and what is to be done about those that are not free.
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include "unit/cli/CliTest.h"

namespace kalivor::cli {
namespace {

using platform::PortEntry;
using platform::PortState;

class PortsTest : public CliTest {
 protected:
  PortsTest() {
    PortEntry adapter;
    adapter.number = 2;
    adapter.device = u"/dev/ttyUSB0"_s;
    adapter.description = u"Maker\tAdapter"_s;
    adapter.serialNumber = u"A12345"_s;
    adapter.place = u"USB 1-1.2"_s;
    adapter.state = PortState::InUse;
    adapter.remark = u"Jemand benutzt sie."_s;
    adapter.bySerialNumber = u"usb:0403:6001:A12345:0"_s;
    adapter.byPlace = u"ort:x-1.2:1.0"_s;
    PortEntry forbidden{0, u"/dev/ttyUSB9"_s};
    forbidden.state = PortState::NoPermission;
    forbidden.remark = u"Nur die Gruppe."_s;
    PortEntry missing{3, u"usb:0403:6001:B7:0"_s};
    missing.state = PortState::Missing;
    missing.remark = u"Einstecken."_s;
    PortEntry network{4, u"socket://192.0.2.7:4001"_s};
    network.carriesRate = false;
    ports.entries = {PortEntry{1, u"/dev/ttyS0"_s}, adapter, network, forbidden, missing};
  }
};

TEST_F(PortsTest, PrintsALineForEachAndWhatIsToBeDone) {
  EXPECT_EQ(Run({u"ports"_s}), kDone);
  EXPECT_EQ(Out(),
            u"1\t/dev/ttyS0\t\t\tfrei\n"
            "2\t/dev/ttyUSB0\tMaker\\tAdapter\tA12345\tbelegt\n"
            "4\tsocket://192.0.2.7:4001\t\t\tfrei\n"
            "-\t/dev/ttyUSB9\t\t\tkeine Rechte\n"
            "3\tusb:0403:6001:B7:0\t\t\tfehlt\n"_s);
  EXPECT_EQ(Err(),
            u"/dev/ttyUSB0: Jemand benutzt sie.\n"
            "/dev/ttyUSB9: Nur die Gruppe.\n"
            "usb:0403:6001:B7:0: Einstecken.\n"_s);
}

TEST_F(PortsTest, JsonHasEverything) {
  EXPECT_EQ(Run({u"ports"_s, u"--json"_s}), kDone);
  const QJsonArray all = QJsonDocument::fromJson(QByteArray::fromStdString(out.str())).array();
  ASSERT_EQ(all.size(), 5);
  EXPECT_EQ(all.at(1).toObject(), (QJsonObject{{u"number"_s, 2},
                                               {u"device"_s, u"/dev/ttyUSB0"_s},
                                               {u"description"_s, u"Maker\tAdapter"_s},
                                               {u"serialNumber"_s, u"A12345"_s},
                                               {u"place"_s, u"USB 1-1.2"_s},
                                               {u"state"_s, u"belegt"_s},
                                               {u"remark"_s, u"Jemand benutzt sie."_s},
                                               {u"bySerialNumber"_s, u"usb:0403:6001:A12345:0"_s},
                                               {u"byPlace"_s, u"ort:x-1.2:1.0"_s},
                                               {u"carriesRate"_s, true}}));
  EXPECT_EQ(all.at(2).toObject().value(u"carriesRate"_s), QJsonValue(false));
  EXPECT_EQ(all.at(3).toObject().value(u"number"_s), QJsonValue(0));
}

TEST_F(PortsTest, SaysThatThereIsNone) {
  ports.entries.clear();
  EXPECT_EQ(Run({u"ports"_s}), kDone);
  EXPECT_EQ(Out(), QString());
  EXPECT_EQ(Err(),
            u"Es ist keine serielle Schnittstelle da. Den Adapter einstecken und, wenn er dann noch fehlt, "
            "seinen Treiber installieren.\n"_s);
}

TEST_F(PortsTest, TakesNoArgument) {
  EXPECT_EQ(Run({u"ports"_s, u"COM1"_s}), kBadInput);
}

}  // namespace
}  // namespace kalivor::cli
