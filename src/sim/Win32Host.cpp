#include <windows.h>

#include <QCoreApplication>

#include "sim/Host.h"
#include "sim/TcpLine.h"

namespace kalivor::sim {
namespace {

// Called in a thread of its own. The system ends the program when it returns after the console was closed, so
// it waits for what is still to be done.
BOOL WINAPI OnConsoleEvent(DWORD event) {
  constexpr DWORD kLongEnough_ms = 5000;
  QMetaObject::invokeMethod(QCoreApplication::instance(), &QCoreApplication::quit, Qt::QueuedConnection);
  if (event != CTRL_C_EVENT && event != CTRL_BREAK_EVENT) Sleep(kLongEnough_ms);
  return TRUE;
}

}  // namespace

Host::Host() : requests_(-1) {}

bool Host::Ready() const {
  return true;
}

void Host::QuitOnRequest() const {
  SetConsoleCtrlHandler(OnConsoleEvent, TRUE);
}

std::unique_ptr<Line> Host::MakeLine(LineModel& model, const Arguments& arguments) const {
  return std::make_unique<TcpLine>(model, arguments.line.rate, arguments.tcp.value_or(0));
}

}  // namespace kalivor::sim
