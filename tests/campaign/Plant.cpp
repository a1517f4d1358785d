// Making up versions, parameters and the files that describe them.
#include "campaign/Plant.h"

#include <algorithm>

#include "base/Windows1252.h"
#include "sim/Telegram.h"

using namespace Qt::StringLiterals;

namespace kalivor::campaign {
namespace {

using Kind = PlantParameter::Kind;

// An address as a definition file may write it: four or eight digits, sometimes in small letters.
QByteArray AddressText(Random& random, int address) {
  QByteArray text = sim::Hex(static_cast<unsigned>(address & 0xFFFF), 4);
  if (random.Chance(0.2)) text.prepend("0000");
  return random.Chance(0.2) ? text.toLower() : text;
}

qint32 RandomNumber(Random& random, Kind kind) {
  switch (kind) {
    case Kind::Long:
      if (random.Chance(0.3)) return random.Between(-70000, 70000);
      return static_cast<qint32>(random.Next());
    case Kind::Int:
      return random.Between(-32768, 32767);
    case Kind::Char:
      return random.Between(0, 255);
    default:
      return 0;
  }
}

QString RandomText(Random& random, int length) {
  static constexpr QStringView kLetters = u"ABCDEFxyz0123456789äöüß";
  QString text;
  for (int left = random.Between(1, std::max(1, length)); left > 0; --left)
    text += kLetters[random.Below(static_cast<int>(kLetters.size()))];
  return text;
}

PlantParameter RandomParameter(Random& random, int number, int& address) {
  static constexpr Kind kKinds[] = {Kind::Int, Kind::Int, Kind::Long, Kind::Char, Kind::Char, Kind::Text};
  PlantParameter parameter;
  parameter.kind = random.Chance(0.03) ? Kind::Unknown : kKinds[random.Below(6)];
  parameter.name = u"Größe %1"_s.arg(number);
  parameter.variable = u"_v%1"_s.arg(number);
  parameter.decimals = random.Below(4);
  parameter.dropped = random.Below(3);
  int size = 2;
  switch (parameter.kind) {
    case Kind::Char:
      // One byte of a word; the next parameter may be the other one.
      size = 1;
      break;
    case Kind::Long:
      address += address % 2;
      size = 4;
      break;
    case Kind::Text:
      address += address % 2;
      parameter.length = random.Between(1, 12);
      size = parameter.length / 2 * 2;
      break;
    default:
      address += address % 2;
      break;
  }
  parameter.address = AddressText(random, address);
  address += size;
  if (random.Chance(0.1)) address += 2 * random.Below(4);
  if (parameter.kind == Kind::Text) {
    parameter.standardText = RandomText(random, parameter.length);
  } else {
    parameter.standard = RandomNumber(random, parameter.kind);
  }
  return parameter;
}

QString TypeText(const PlantParameter& parameter) {
  switch (parameter.kind) {
    case Kind::Long:
      return u"long"_s;
    case Kind::Int:
      return u"int"_s;
    case Kind::Char:
      return u"char"_s;
    case Kind::Text:
      return u"string%1"_s.arg(parameter.length);
    case Kind::Unknown:
      break;
  }
  return u"real"_s;
}

QString DefinitionLine(const PlantParameter& parameter, int group) {
  const QString standard =
      parameter.kind == Kind::Text ? parameter.standardText : QString::number(parameter.standard);
  return QStringList{u"Gruppe %1"_s.arg(group),
                     parameter.name,
                     u"-2147483648"_s,
                     u"2147483647"_s,
                     standard,
                     u"-"_s,
                     QString::number(parameter.decimals),
                     QString::number(parameter.dropped),
                     TypeText(parameter),
                     QString::fromLatin1(parameter.address),
                     parameter.variable,
                     u"A B"_s,
                     u"-"_s}
      .join(u"  "_s);
}

bool HasAddressList(const PlantVersion& version) {
  return std::any_of(version.parameters.begin(), version.parameters.end(),
                     [](const PlantParameter& parameter) { return parameter.address.isEmpty(); });
}

}  // namespace

void Plant::Reload() {
  for (PlantParameter& parameter : Selected().parameters) {
    parameter.value = parameter.standard;
    parameter.text = parameter.standardText;
    parameter.checked = true;
  }
  if (!Selected().plantAddress.isEmpty()) plantValue = plant;
}

Plant RandomPlant(Random& random) {
  Plant plant;
  const int versions = random.Between(1, 3);
  for (int i = 0; i < versions; ++i) {
    PlantVersion version;
    const int number = 100 * (i + 1) + random.Below(90);
    const bool longType = random.Chance(0.3);
    version.version =
        (longType ? u"ABCD-%1.%2"_s : u"AB1-%1.%2"_s).arg(number / 10, 3, 10, QChar(u'0')).arg(number % 10);
    version.payload = (longType ? "ABCD" : "AB1-") + sim::Hex(static_cast<unsigned>(number), 4);
    version.plants = {QString()};
    if (random.Chance(0.6)) {
      for (int left = random.Between(1, 3); left > 0; --left)
        version.plants.append(random.Chance(0.5) ? u"A"_s : u"B"_s);
    }
    // A version with an address list has parameters that the list does not know, and no plant number then.
    const bool addressList = random.Chance(0.2);
    version.hasPlantRecord = random.Chance(0.7);
    version.plantVariable = u"_anlage"_s;
    if (version.hasPlantRecord && !addressList) version.plantAddress = AddressText(random, 0x2000);
    if (!version.hasPlantRecord) version.plantVariable.clear();
    int address = random.Chance(0.1) ? 0xFFE0 + random.Below(16) : 0x1F00 + random.Below(8);
    const int count = random.Chance(0.1) ? random.Between(10, 20) : random.Between(1, 8);
    for (int k = 1; k <= count; ++k) {
      version.parameters.push_back(RandomParameter(random, k, address));
      // The end of the address space has been reached: the addresses of the rest would meet the others.
      if (address >= 0x10000) break;
    }
    if (addressList) {
      version.parameters[static_cast<std::size_t>(random.Below(static_cast<int>(version.parameters.size())))]
          .address.clear();
    }
    plant.versions.push_back(version);
  }
  plant.Reload();
  return plant;
}

QHash<test::FileName, QByteArray> FilesOf(const Plant& plant) {
  QHash<test::FileName, QByteArray> files;
  QString table = u"Heading\r\n"_s;
  int number = 0;
  for (const PlantVersion& version : plant.versions) {
    ++number;
    const QString definitions = u"D%1.TXT"_s.arg(number);
    const QString list = HasAddressList(version) ? u"A%1.TXT"_s.arg(number) : u"-"_s;
    // What stands behind the last blank is not taken over.
    const QString plants = (version.plants.mid(1) + QStringList{u"-"_s}).join(u' ');
    table += QStringList{version.version, list, definitions, plants, u"WR"_s}.join(u"  "_s) + u"\r\n"_s;

    QString text = u"Heading\r\n"_s;
    QString addresses = u"Heading\r\n"_s;
    if (version.hasPlantRecord) {
      const QString address =
          version.plantAddress.isEmpty() ? u"anlage"_s : QString::fromLatin1(version.plantAddress);
      text += u"NoRubrik  Anlage  0  9  0  -  0  0  int  "_s + address + u"  _anlage  -  -\r\n"_s;
    }
    int index = 0;
    for (PlantParameter parameter : version.parameters) {
      if (!parameter.address.isEmpty()) {
        addresses += parameter.variable + u"  "_s + QString::fromLatin1(parameter.address) + u"\r\n"_s;
      }
      if (HasAddressList(version)) parameter.address = "expression";
      text += DefinitionLine(parameter, 1 + index++ / 5) + u"\r\n"_s;
    }
    files[u"ini//"_s + definitions] = BytesFromText(text);
    if (list != u"-") files[u"ini//"_s + list] = BytesFromText(addresses);
  }
  files[u"ini/VF.INI"_s] = BytesFromText(table);
  return files;
}

void FillController(Random& random, const PlantVersion& version, sim::Memory& memory) {
  for (const PlantParameter& parameter : version.parameters) {
    if (parameter.address.isEmpty()) continue;
    auto address = static_cast<quint16>(parameter.address.right(4).toUShort(nullptr, 16) & 0xFFFE);
    const int words = parameter.kind == Kind::Text   ? parameter.length / 2
                      : parameter.kind == Kind::Long ? 2
                                                     : 1;
    for (int word = 0; word < words; ++word) {
      const int choice = random.Below(10);
      const int value = choice == 0  ? 0xFFFF
                        : choice < 4 ? 0x4141 + random.Below(0x1010)
                                     : random.Below(65536);
      memory.SetWord(address, static_cast<quint16>(value));
      address = static_cast<quint16>(address + 2);
    }
  }
  if (version.plantAddress.isEmpty()) return;
  const auto address = static_cast<quint16>(version.plantAddress.right(4).toUShort(nullptr, 16));
  int number = random.Below(static_cast<int>(version.plants.size()));
  if (random.Chance(0.1)) number = random.Below(6);
  if (random.Chance(0.02)) number = random.Between(-32768, 32767);
  memory.SetWord(address, static_cast<quint16>(number));
}

}  // namespace kalivor::campaign
