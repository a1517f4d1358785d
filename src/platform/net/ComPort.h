// The serial port behind a Telnet server, as RFC 2217 controls it.
#pragma once

#include <QByteArray>
#include <QString>
#include <array>
#include <memory>

#include "platform/plain/LineSettings.h"

struct telnet_t;
union telnet_event_t;

namespace kalivor::platform {

/// What is said to the server and what it says, as bytes: whoever has the connection carries them.
///
/// Characters with a parity error come as the server passes them on; it tells of the error, not of the
/// character.
class ComPort {
 public:
  enum class Control {
    Offered,  ///< the server has not answered yet
    Agreed,   ///< the server controls its port for us
    Refused,  ///< it does not know how to
  };

  /// Offers the server the control of its port.
  ComPort();
  ~ComPort();
  ComPort(const ComPort&) = delete;
  ComPort& operator=(const ComPort&) = delete;

  /// What is to be sent to the server now.
  [[nodiscard]] QByteArray TakeOutgoing();

  /// Takes what came from the server. The characters of the line are appended to `characters`, but not those
  /// that came in front of the confirmation of a purge.
  void Receive(QByteArrayView bytes, QByteArray& characters);

  [[nodiscard]] Control State() const { return control_; }

  /// The server speaks something else.
  [[nodiscard]] bool Broken() const { return broken_; }

  // The following are for a server that has agreed.

  /// Asks for what differs from what the server has confirmed.
  void SetLine(const LineSettings& settings);
  void SetRts(bool raised);

  /// Discards what the server holds of either direction.
  void Purge();

  void Send(QByteArrayView characters);

  /// Everything that was asked for has been answered.
  [[nodiscard]] bool Settled() const;

  /// What the server has set otherwise than it was asked to: German, for the user; "" for nothing.
  [[nodiscard]] QString Refusal() const;

  /// The line error that the server has told of since the last call, as a number of CommEvent(). Of several,
  /// the one that explains the others.
  [[nodiscard]] int TakeLineError();

 private:
  struct Setting {
    quint8 command = 0;
    quint32 wanted = 0;
    quint32 confirmed = 0;  // 0: not known
    bool awaited = false;
  };

  static void OnEvent(telnet_t* telnet, telnet_event_t* event, void* self);
  void TakeEvent(const telnet_event_t& event);
  void TakeAnswer(QByteArrayView answer);
  void Ask(quint8 command, QByteArrayView value);
  void BeginControl();

  struct Release {
    void operator()(telnet_t* telnet) const;
  };

  std::unique_ptr<telnet_t, Release> telnet_;
  Control control_ = Control::Offered;
  bool broken_ = false;
  int purges_ = 0;  // that are not confirmed
  unsigned lineState_ = 0;
  std::array<Setting, 4> settings_;
  QByteArray beginning_;  // the last bytes of what the server has said before its answer
  QByteArray outgoing_;
  QByteArray* characters_ = nullptr;  // while something is received
};

}  // namespace kalivor::platform
