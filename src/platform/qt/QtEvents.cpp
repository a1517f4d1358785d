#include "platform/qt/QtEvents.h"

#include <QCoreApplication>
#include <QEventLoop>

namespace kalivor::platform {
namespace {

// One pass may deliver a part only; more passes are bounded, lest an animation hold up a transfer.
constexpr int kLongestDelivery_ms = 50;

}  // namespace

void QtEvents::ProcessPending() {
  QCoreApplication::processEvents(QEventLoop::AllEvents, kLongestDelivery_ms);
}

void QtEvents::WaitForNext() {
  QCoreApplication::processEvents(QEventLoop::AllEvents | QEventLoop::WaitForMoreEvents);
}

}  // namespace kalivor::platform
