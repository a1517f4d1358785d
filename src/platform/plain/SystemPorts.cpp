#include "platform/plain/SystemPorts.h"

#include <algorithm>
#include <optional>
#include <utility>

#include "platform/PortBinding.h"
#include "platform/SerialControl.h"

using namespace Qt::StringLiterals;

namespace kalivor::platform {
namespace {

bool IsIdentity(BindingKind kind) {
  return kind == BindingKind::Usb || kind == BindingKind::Place;
}

// The positions of those whose serial number or place a binding names.
QList<qsizetype> Matching(const QList<PortEntry>& entries, const QString& binding) {
  QList<qsizetype> positions;
  for (qsizetype i = 0; i < entries.size(); ++i) {
    const PortEntry& entry = entries.at(i);
    if (SameBinding(entry.bySerialNumber, binding) || SameBinding(entry.byPlace, binding))
      positions.append(i);
  }
  return positions;
}

PortEntry NetworkEntry(int number, const QString& binding) {
  PortEntry entry;
  entry.number = number;
  entry.device = binding;
  entry.description = u"Netzwerk"_s;
  entry.carriesRate = CarriesRate(binding);
  return entry;
}

// What the user can do about a number whose device is not there.
QString MissingRemark(int number, const QString& binding, bool several) {
  const QString com = PortKey(number);
  if (const std::optional<UsbPort> port = UsbPortOf(binding)) {
    if (several) {
      return u"Mehrere Adapter nennen die Seriennummer %1; keiner von ihnen wird genommen. Alle bis auf "
             "einen abziehen oder %2 nach dem Steckplatz zuordnen."_s.arg(port->serialNumber, com);
    }
    return u"Der Adapter mit der Seriennummer %1 ist nicht angeschlossen. Ihn einstecken oder %2 anders "
           "zuordnen."_s.arg(port->serialNumber, com);
  }
  if (KindOf(binding) == BindingKind::Place) {
    return u"Am Steckplatz %1 ist nichts angeschlossen. Den Adapter dort einstecken oder %2 anders "
           "zuordnen."_s.arg(PlaceOf(binding), com);
  }
  return u"%1 ist nicht da. Das Gerät anschließen oder %2 anders zuordnen."_s.arg(binding, com);
}

PortEntry MissingEntry(int number, const QString& binding, bool several) {
  PortEntry entry;
  entry.number = number;
  entry.device = binding;
  if (const std::optional<UsbPort> port = UsbPortOf(binding)) entry.serialNumber = port->serialNumber;
  entry.place = PlaceOf(binding);
  entry.state = PortState::Missing;
  entry.remark = MissingRemark(number, binding, several);
  return entry;
}

// A serial number that two adapters claim tells neither from the other.
void TakeBackAmbiguous(QList<PortEntry>& entries) {
  const QList<PortEntry> all = entries;
  for (PortEntry& entry : entries) {
    if (entry.bySerialNumber.isEmpty()) continue;
    const auto same = [&](const PortEntry& other) {
      return SameBinding(other.bySerialNumber, entry.bySerialNumber);
    };
    if (std::ranges::count_if(all, same) < 2) continue;
    entry.bySerialNumber.clear();
    if (!entry.remark.isEmpty()) entry.remark += u' ';
    entry.remark +=
        u"Ein zweiter Adapter nennt dieselbe Seriennummer; nur ihr Steckplatz unterscheidet sie."_s;
  }
}

// In the order of List().
int Group(const PortEntry& entry) {
  if (entry.state == PortState::Missing) return 2;
  return entry.number > 0 ? 0 : 1;
}

bool Before(const PortEntry& a, const PortEntry& b) {
  return std::pair(Group(a), a.number) < std::pair(Group(b), b.number);
}

}  // namespace

QList<PortEntry> SystemPorts::List() {
  LookAnew();
  QList<PortEntry> entries = Present();
  for (PortEntry& entry : entries) {
    if (!Wanted(entry.number).isEmpty()) entry.number = 0;
  }
  QList<PortEntry> others;
  // The lowest number comes last and stays.
  for (int number = kLargestPortNumber; number >= 1; --number) {
    const QString wanted = Wanted(number);
    const BindingKind kind = KindOf(wanted);
    if (kind == BindingKind::None) continue;
    if (kind == BindingKind::Network) {
      others.append(NetworkEntry(number, wanted));
    } else if (IsIdentity(kind)) {
      const QList<qsizetype> matching = Matching(entries, wanted);
      if (matching.size() == 1) {
        entries[matching.first()].number = number;
      } else {
        others.append(MissingEntry(number, wanted, matching.size() > 1));
      }
    } else if (const QString name = Find(wanted); name.isEmpty()) {
      others.append(MissingEntry(number, wanted, false));
    } else {
      const auto entry = std::ranges::find(entries, name, &PortEntry::device);
      if (entry != entries.end()) {
        entry->number = number;
      } else {
        entries.append({number, name});
      }
    }
  }
  Examine(entries);
  TakeBackAmbiguous(entries);
  entries += others;
  std::ranges::stable_sort(entries, Before);
  return entries;
}

QString SystemPorts::Device(int number) {
  if (number < 1 || number > kLargestPortNumber) return {};
  QString wanted = Wanted(number);
  if (wanted.isEmpty()) return Counted(number);
  if (!IsIdentity(KindOf(wanted))) return wanted;
  const QList<PortEntry> present = Present();
  const QList<qsizetype> matching = Matching(present, wanted);
  return matching.size() == 1 ? present.at(matching.first()).device : QString();
}

QString SystemPorts::Shown(int number) {
  QString device = Device(number);
  if (device.isEmpty() || KindOf(device) == BindingKind::Network) return device;
  return Find(device).isEmpty() ? QString() : ShownDevice(device);
}

}  // namespace kalivor::platform
