// The simulated controller behind a network connection on this computer.
#pragma once

#include <QTcpServer>
#include <QTimer>

#include "sim/Line.h"
#include "sim/LineModel.h"

class QTcpSocket;

namespace kalivor::sim {

/// Characters travel as they are. The connection carries no rate: every PC is taken to use the right one.
/// The PC that came last has the line: one that comes back may be faster than the news of its leaving. The
/// port is offered to this computer alone.
class TcpLine final : public Line {
 public:
  /// `model` must outlive the line; `rate` is the only one that the controller understands, 0 for every one.
  /// `port` 0: any that is free.
  TcpLine(LineModel& model, int rate, quint16 port)
      : model_(model), baud_(rate != 0 ? rate : kUsualRate_baud), port_(port) {}
  ~TcpLine() override { Close(); }
  TcpLine(const TcpLine&) = delete;
  TcpLine& operator=(const TcpLine&) = delete;

  [[nodiscard]] QString Open() override;
  [[nodiscard]] QString Link(const QString& path) override;

  /// "socket://127.0.0.1:PORT".
  [[nodiscard]] QString DeviceName() const override;

  /// Needs an application; ends with QCoreApplication::quit().
  [[nodiscard]] End Run() override;
  void Close() override;

 private:
  static constexpr int kUsualRate_baud = 9600;

  void TakeConnection();
  void ReceiveFromPc();
  void SendDue();

  LineModel& model_;
  int baud_;
  quint16 port_;
  QTcpServer server_;
  QTcpSocket* pc_ = nullptr;  // the server's
  QTimer due_;
  bool unplugged_ = false;
};

}  // namespace kalivor::sim
