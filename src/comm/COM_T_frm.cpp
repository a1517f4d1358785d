#include "comm/COM_T_frm.h"

#include "base/Numbers.h"

using namespace Qt::StringLiterals;

namespace kalivor {
namespace {

constexpr QStringView kErrorMark = u"ERROR: ";
constexpr int kPause_ms = 20;  // that the line rests after a telegram
constexpr int kCloseTime_ms = 10;

}  // namespace

bool IsError(QStringView text) {
  return text.startsWith(kErrorMark);
}

QString ReasonOf(QStringView failure) {
  return failure.mid(IsError(failure) ? kErrorMark.size() : 0).trimmed().toString();
}

COM_T_frm::COM_T_frm(const Conversation& conversation, platform::SerialControl& control, TH& timers)
    : Exchanges(timers.GetClock()), conversation_(conversation), control_(control), timers_(timers) {
  control_.OnComm = [this] {
    if (control_.CommEvent() == platform::kCommEventSendDone) SendDone = kTrue;
  };
}

COM_T_frm::~COM_T_frm() {
  control_.OnComm = nullptr;
}

QString COM_T_frm::ConfigurePort(qint16 slot, qint16 protocol, qint16 address, qint16 portNumber,
                                 const QString& settings) {
  if (conversation_.Abbruch != kFalse) return {};
  QString result = SetupPort(slot, address, portNumber, settings);
  Ports[slot].Protokoll = protocol;
  return result;
}

QString COM_T_frm::SetupPort(qint16 slot, qint16 address, qint16 portNumber, const QString& settings) {
  PortRecord& port = Ports[slot];
  port.Adr = address;
  port.PortNr = portNumber;
  port.Settings = settings;
  QString result = OpenPort(slot);
  if (IsError(result)) {
    result = u"ERROR: COM"_s + BlankNumber(portNumber) +
             u" nicht verfügbar. Ändern Sie die 'CommPort'-Einstellung in einen anderen Anschluß."_s;
  }
  ClosePort();
  return result;
}

QString COM_T_frm::OpenPort(qint16 slot) {
  PortRecord& port = Ports[slot];
  if (port.Offen != kFalse) return {};
  // There is one line; whoever has it keeps it.
  if (control_.IsOpen() || !control_.Open(port.PortNr, port.Settings)) return u"ERROR: "_s;
  port.Offen = kTrue;
  if (!control_.ClearOutBuffer() || !control_.ClearInBuffer()) return u"ERROR: "_s;
  return {};
}

void COM_T_frm::ClosePort() {
  if (KeepOpen == kFalse) {
    if (control_.IsOpen()) {
      control_.SetRts(false);
      // Results do not matter any more: the port is given up.
      (void)control_.ClearOutBuffer();
      (void)control_.ClearInBuffer();
      control_.Close();
    }
    // Slot 3 is left as it is on purpose.
    for (int slot = 0; slot <= 2; ++slot)
      Ports[slot].Offen = kFalse;
  }
  timers_.StartTimer(kPauseTimer, kPause_ms);
  timers_.StartTimer(kCloseTimer, kCloseTime_ms);
}

}  // namespace kalivor
