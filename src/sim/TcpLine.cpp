#include "sim/TcpLine.h"

#include <QCoreApplication>
#include <QTcpSocket>
#include <algorithm>
#include <cmath>
#include <utility>

using namespace Qt::StringLiterals;

namespace kalivor::sim {

QString TcpLine::Open() {
  Close();
  unplugged_ = false;
  if (server_.listen(QHostAddress::LocalHost, port_)) return {};
  return u"Der Port %1 kann nicht angeboten werden: Er ist belegt oder nicht erlaubt."_s.arg(port_);
}

QString TcpLine::Link(const QString& path) {
  return u"Eine Netzverbindung hat keine Verknüpfung: "_s + path;
}

QString TcpLine::DeviceName() const {
  return server_.isListening() ? u"socket://127.0.0.1:%1"_s.arg(server_.serverPort()) : QString();
}

Line::End TcpLine::Run() {
  QObject context;
  due_.setSingleShot(true);
  due_.setTimerType(Qt::PreciseTimer);
  QObject::connect(&due_, &QTimer::timeout, &context, [this] {
    SendDue();
    if (unplugged_) QCoreApplication::quit();
  });
  QObject::connect(&server_, &QTcpServer::newConnection, &context, [this] { TakeConnection(); });
  due_.start(0);
  QCoreApplication::exec();
  return unplugged_ ? End::Unplugged : End::Stopped;
}

void TcpLine::TakeConnection() {
  if (pc_ != nullptr) pc_->abort();
  pc_ = server_.nextPendingConnection();
  QObject::connect(pc_, &QTcpSocket::disconnected, pc_, [this, socket = pc_] {
    if (pc_ == socket) pc_ = nullptr;
    socket->deleteLater();
  });
  pc_->setSocketOption(QAbstractSocket::LowDelayOption, 1);
  QObject::connect(pc_, &QTcpSocket::readyRead, pc_, [this] { ReceiveFromPc(); });
}

void TcpLine::ReceiveFromPc() {
  model_.Receive(Seconds(), pc_->readAll(), baud_);
  due_.start(0);
}

// Sends what has arrived at the PC by now, and comes back for the rest. What nobody fetches is lost.
void TcpLine::SendDue() {
  const double now = Seconds();
  const QByteArray due = model_.TakeDue(now);
  if (pc_ != nullptr && !due.isEmpty()) {
    pc_->write(due);
    pc_->flush();
  }
  if (model_.Unplugged(now)) {
    Close();
    unplugged_ = true;
  } else if (const std::optional<double> next = model_.NextTime()) {
    due_.start(static_cast<int>(std::ceil(std::max(0.0, *next - now) * 1000)));
  }
}

void TcpLine::Close() {
  server_.close();
  if (QTcpSocket* const socket = std::exchange(pc_, nullptr)) socket->abort();
}

}  // namespace kalivor::sim
