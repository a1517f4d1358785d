#include <QCoreApplication>
#include <QSocketNotifier>

#include "sim/Host.h"
#include "sim/PtyLine.h"
#include "sim/TcpLine.h"

namespace kalivor::sim {

Host::Host() : requests_(StopSignalDescriptor()) {}

bool Host::Ready() const {
  return requests_ >= 0;
}

void Host::QuitOnRequest() const {
  QCoreApplication* const application = QCoreApplication::instance();
  auto* const requests = new QSocketNotifier(requests_, QSocketNotifier::Read, application);
  QObject::connect(requests, &QSocketNotifier::activated, application, &QCoreApplication::quit);
}

std::unique_ptr<Line> Host::MakeLine(LineModel& model, const Arguments& arguments) const {
  if (arguments.tcp) return std::make_unique<TcpLine>(model, arguments.line.rate, *arguments.tcp);
  return std::make_unique<PtyLine>(model, requests_);
}

}  // namespace kalivor::sim
