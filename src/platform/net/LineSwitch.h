// The one line of a program, whether it is a port of this computer or one behind the network.
#pragma once

#include <functional>

#include "platform/SerialControl.h"
#include "platform/net/NetworkControl.h"

namespace kalivor::platform {

/// Opening decides by the device of the port number; all that follows goes to the port that was opened last.
class LineSwitch final : public SerialControl {
 public:
  /// The device of a port number, "" when there is none.
  using DeviceResolver = std::function<QString(int number)>;

  /// `native` must outlive this, and finds its devices by itself. Its OnComm belongs to the switch.
  LineSwitch(SerialControl& native, const DeviceResolver& resolver);
  ~LineSwitch() override;
  LineSwitch(const LineSwitch&) = delete;
  LineSwitch& operator=(const LineSwitch&) = delete;

  [[nodiscard]] bool Open(int number, const QString& settings) override;
  void Close() override { chosen_->Close(); }
  [[nodiscard]] bool IsOpen() const override { return chosen_->IsOpen(); }
  bool SetRts(bool raised) override { return chosen_->SetRts(raised); }
  bool ClearInBuffer() override { return chosen_->ClearInBuffer(); }
  bool ClearOutBuffer() override { return chosen_->ClearOutBuffer(); }
  void SetSThreshold(int characters) override;
  void Output(const QByteArray& characters) override { chosen_->Output(characters); }
  [[nodiscard]] int InBufferCount() override { return chosen_->InBufferCount(); }
  [[nodiscard]] QByteArray Input() override { return chosen_->Input(); }
  [[nodiscard]] InputWait WaitForInput(double seconds) override { return chosen_->WaitForInput(seconds); }
  [[nodiscard]] int CommEvent() override { return chosen_->CommEvent(); }
  [[nodiscard]] QString Fault() const override { return chosen_->Fault(); }

 private:
  DeviceResolver resolver_;
  SerialControl& native_;
  NetworkControl network_;
  SerialControl* chosen_ = &native_;
};

}  // namespace kalivor::platform
