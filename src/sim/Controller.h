// What the simulated controller answers: a request in, a reply or silence out. No line, no time.
#pragma once

#include <QByteArray>
#include <QString>
#include <optional>

#include "base/FixedText.h"
#include "sim/Memory.h"

namespace kalivor::sim {

/// The payload with which a controller of version `version` answers the version query: four characters type
/// and four hexadecimal digits. "HZL-012.0" is HZL-0078, "ABCD-123.4" is ABCD04D2. Empty when no payload
/// makes this text: it must end in "-", three digits, a point and one digit, with three or four printable
/// ASCII characters in front.
[[nodiscard]] std::optional<QByteArray> VersionPayload(const QString& version);

/// The payload of a controller whose version number is the next one.
[[nodiscard]] QByteArray NextVersionPayload(const QByteArray& payload);

class Controller {
 public:
  /// `address`: station address 0..255. `commands`: write and read command letter.
  /// `memory` must outlive the controller.
  Controller(Memory& memory, int address, const FixedText<2>& commands, const QByteArray& versionPayload);

  /// The reply to a complete request. Nothing when the request is for another station or damaged (no start
  /// character, no end, wrong checksum). Error replies: 02 other mode than "02", 04 unknown command letter,
  /// 05 wrong number of operands, 06 no hexadecimal digit, 07 another record than "00" in the version query.
  [[nodiscard]] std::optional<QByteArray> Reply(const QByteArray& request);

  /// What the request before has written is as it was.
  void ForgetWrite();

 private:
  QByteArray Answer(const QByteArray& body);

  Memory& memory_;
  QByteArray address_;
  char write_;
  char read_;
  QByteArray version_;
  struct Write {
    quint16 address, before;
  };
  std::optional<Write> written_;  // by the request before
};

}  // namespace kalivor::sim
