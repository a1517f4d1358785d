#include "cli/TraceFile.h"

#include <cmath>
#include <utility>

using namespace Qt::StringLiterals;

namespace kalivor::cli {
namespace {

// Bringing each telegram to the disk would slow the transfer down. Who ends the program by force loses what
// came in this time, at most.
constexpr double kUnwritten_s = 1;
constexpr qsizetype kUnwritten_bytes = 16384;

}  // namespace

TraceFile::TraceFile(const World& world, QString path)
    : world_(world), path_(std::move(path)), written_s_(world.clock.SecondsSinceMidnight()) {
  world_.module.OnDefinitions = [this](Rereading /*what*/) { readerIsOld_ = true; };
  world_.exchanges.OnSettled = [this](const Exchange& exchange) { Note(exchange); };
}

TraceFile::~TraceFile() {
  world_.exchanges.Settle();
  Write();
  world_.exchanges.OnSettled = nullptr;
  world_.module.OnDefinitions = nullptr;
}

QString TraceFile::Open() {
  QString reason = world_.files.Replace(path_, {});
  if (reason.isEmpty()) {
    platform::OpenedLog opened = world_.files.OpenLog(path_);
    file_ = std::move(opened.log);
    reason = opened.error;
  }
  return reason.isEmpty() ? reason : Failure(reason);
}

void TraceFile::Note(const Exchange& exchange) {
  if (!file_) return;
  if (std::exchange(readerIsOld_, false)) reader_ = TelegramReader(world_.module);
  // A search goes from device to device under one number.
  const QString device = world_.ports.Device(exchange.portNumber);
  if (device_ != device) {
    device_ = device;
    if (!device.isEmpty()) unwritten_ += u"COM%1 ist %2\n"_s.arg(exchange.portNumber).arg(device).toUtf8();
  }
  unwritten_ += lines_.Of(reader_, exchange).toUtf8();
  // A clock that was set back counts as well.
  const double passed_s = std::abs(world_.clock.SecondsSinceMidnight() - written_s_);
  if (passed_s >= kUnwritten_s || unwritten_.size() >= kUnwritten_bytes) Write();
}

void TraceFile::Write() {
  written_s_ = world_.clock.SecondsSinceMidnight();
  if (!file_ || unwritten_.isEmpty()) return;
  const QString reason = file_->Append(std::exchange(unwritten_, {}));
  if (reason.isEmpty()) return;
  // The transfer matters more than its trace; it goes on without.
  file_.reset();
  world_.box.Show(Failure(reason) + u"\r\nDie Telegramme werden nicht weiter mitgeschrieben."_s);
}

QString TraceFile::Failure(const QString& reason) const {
  return u"Fehler beim schreiben von\r\n"_s + path_ + u"\r\n"_s + reason;
}

}  // namespace kalivor::cli
