// A serial port that is another line for each device, as the directory of ports says.
#pragma once

#include <QMap>

#include "platform/PortDirectory.h"
#include "platform/SerialControl.h"

namespace kalivor::test {

/// What the program opens by a number goes to the line of the number's device; a device without a line cannot
/// be opened.
class LinesByDevice final : public platform::SerialControl {
 public:
  explicit LinesByDevice(platform::PortDirectory& ports) : ports_(ports) {}

  QMap<QString, platform::SerialControl*> lines;  ///< by device; must outlive this
  QStringList opened;                             ///< "device settings" of every attempt

  [[nodiscard]] bool Open(int number, const QString& settings) override {
    Close();
    const QString device = ports_.Device(number);
    opened.append(device + u' ' + settings);
    current_ = lines.value(device);
    if (current_ == nullptr) return false;
    current_->SetSThreshold(threshold_);
    return current_->Open(number, settings);
  }
  void Close() override {
    if (current_ != nullptr) current_->Close();
  }
  [[nodiscard]] bool IsOpen() const override { return current_ != nullptr && current_->IsOpen(); }
  bool SetRts(bool raised) override { return current_ != nullptr && current_->SetRts(raised); }
  bool ClearInBuffer() override { return current_ != nullptr && current_->ClearInBuffer(); }
  bool ClearOutBuffer() override { return current_ != nullptr && current_->ClearOutBuffer(); }
  void SetSThreshold(int characters) override {
    threshold_ = characters;
    if (current_ != nullptr) current_->SetSThreshold(characters);
  }
  void Output(const QByteArray& characters) override {
    if (current_ != nullptr) current_->Output(characters);
  }
  [[nodiscard]] int InBufferCount() override { return current_ != nullptr ? current_->InBufferCount() : 0; }
  [[nodiscard]] QByteArray Input() override { return current_ != nullptr ? current_->Input() : QByteArray(); }
  [[nodiscard]] platform::InputWait WaitForInput(double seconds) override {
    return current_ != nullptr ? current_->WaitForInput(seconds) : platform::InputWait::LineGone;
  }
  [[nodiscard]] int CommEvent() override {
    return current_ != nullptr ? current_->CommEvent() : platform::kCommEventNone;
  }
  [[nodiscard]] QString Fault() const override { return current_ != nullptr ? current_->Fault() : QString(); }

 private:
  platform::PortDirectory& ports_;
  platform::SerialControl* current_ = nullptr;
  int threshold_ = 0;
};

}  // namespace kalivor::test
