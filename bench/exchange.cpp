// One exchange over a pseudo-terminal whose far end answers at once: bare, with libmodbus, and ours.
#include <benchmark/benchmark.h>
#include <fcntl.h>
#include <modbus/modbus.h>
#include <poll.h>
#include <pty.h>
#include <termios.h>
#include <unistd.h>

#include <cstdlib>
#include <functional>
#include <string>
#include <thread>

#include "Allocations.h"
#include "Site.h"
#include "base/Windows1252.h"
#include "base/su.h"
#include "platform/posix/PosixSerialControl.h"

namespace kalivor::bench {
namespace {

using namespace Qt::StringLiterals;

constexpr quint16 kWord = 0x04D2;

[[noreturn]] void Fail(const char* what) {
  std::perror(what);
  std::exit(1);
}

// Answers every request of `requestLength` bytes with the same reply, on a thread of its own.
class FarEnd {
 public:
  FarEnd(std::size_t requestLength, std::string reply) : length_(requestLength), reply_(std::move(reply)) {
    char name[64];
    if (openpty(&master_, &slave_, name, nullptr, nullptr) != 0) Fail("openpty");
    termios attributes{};
    if (tcgetattr(slave_, &attributes) != 0) Fail("tcgetattr");
    cfmakeraw(&attributes);
    if (tcsetattr(slave_, TCSANOW, &attributes) != 0) Fail("tcsetattr");
    if (pipe(stop_) != 0) Fail("pipe");
    device = name;
    thread_ = std::thread([this] { Answer(); });
  }
  ~FarEnd() {
    if (write(stop_[1], "", 1) != 1) Fail("write");
    thread_.join();
    for (const int fd : {master_, slave_, stop_[0], stop_[1]})
      close(fd);
  }
  FarEnd(const FarEnd&) = delete;
  FarEnd& operator=(const FarEnd&) = delete;

  std::string device;

 private:
  void Answer() {
    std::size_t received = 0;
    for (;;) {
      pollfd ready[] = {{master_, POLLIN, 0}, {stop_[0], POLLIN, 0}};
      if (poll(ready, 2, -1) < 0) Fail("poll");
      if (ready[1].revents != 0) return;
      char piece[256];
      const ssize_t count = read(master_, piece, sizeof piece);
      if (count <= 0) Fail("read");
      received += static_cast<std::size_t>(count);
      if (received < length_) continue;
      received = 0;
      if (write(master_, reply_.data(), reply_.size()) < 0) Fail("write");
    }
  }

  std::size_t length_;
  std::string reply_;
  int master_ = -1;
  int slave_ = -1;  // kept open: without it the far end would see a hang-up after every exchange
  int stop_[2] = {-1, -1};
  std::thread thread_;
};

std::string WithChecksum(const std::string& text) {
  int sum = 0;
  for (const char c : text)
    sum += static_cast<unsigned char>(c);
  return text + su::HexPad(sum, 2).toStdString() + '\r';
}

const std::string& Request() {
  static const std::string request = WithChecksum("#0102R1F00");
  return request;
}

// The heap requests of one call, once everything that is kept has been made.
double HeapRequestsOf(const std::function<void()>& call) {
  constexpr int kWarmUp = 10;
  constexpr int kCalls = 100;
  for (int i = 0; i < kWarmUp; ++i)
    call();
  const long before = HeapRequests();
  for (int i = 0; i < kCalls; ++i)
    call();
  return static_cast<double>(HeapRequests() - before) / kCalls;
}

// Opening, writing, waiting and reading, without anything that makes it safe.
void Bare(benchmark::State& state) {
  FarEnd far(Request().size(), WithChecksum("10102R04D2"));
  for (auto _ : state) {
    const int fd = open(far.device.c_str(), O_RDWR | O_NOCTTY | O_NONBLOCK);
    if (fd < 0 || write(fd, Request().data(), Request().size()) < 0) Fail("bare");
    pollfd ready{fd, POLLIN, 0};
    char reply[64];
    if (poll(&ready, 1, 400) != 1 || read(fd, reply, sizeof reply) <= 0) Fail("bare");
    close(fd);
  }
}
BENCHMARK(Bare)->UseRealTime();

// Modbus' check sum.
std::string WithCrc(std::string bytes) {
  unsigned crc = 0xFFFF;
  for (const char byte : bytes) {
    crc ^= static_cast<unsigned char>(byte);
    for (int bit = 0; bit < 8; ++bit)
      crc = (crc & 1U) != 0 ? (crc >> 1U) ^ 0xA001U : crc >> 1U;
  }
  bytes += static_cast<char>(crc & 0xFFU);
  bytes += static_cast<char>(crc >> 8U);
  return bytes;
}

void Libmodbus(benchmark::State& state) {
  constexpr std::size_t kRequestLength = 8;
  FarEnd far(kRequestLength, WithCrc({1, 3, 2, kWord >> 8U, static_cast<char>(kWord & 0xFFU)}));
  modbus_t* line = modbus_new_rtu(far.device.c_str(), 9600, 'N', 8, 1);
  if (line == nullptr || modbus_set_slave(line, 1) != 0) Fail("modbus_new_rtu");
  const auto exchange = [line] {
    uint16_t word = 0;
    if (modbus_connect(line) != 0 || modbus_read_registers(line, 0, 1, &word) != 1 || word != kWord)
      Fail("modbus_read_registers");
    modbus_close(line);
  };
  for (auto _ : state)
    exchange();
  state.counters["heap"] = HeapRequestsOf(exchange);
  modbus_free(line);
}
BENCHMARK(Libmodbus)->UseRealTime();

void ReadInt(benchmark::State& state) {
  FarEnd far(Request().size(), WithChecksum("10102R04D2"));
  const QString device = QString::fromStdString(far.device);
  platform::PosixSerialControl line([&device](int) { return device; });
  test::FakeClock clock;
  Site site(line, clock);
  site.files.files[kDefinitions] = DefinitionFile(1);
  site.Start();
  if (!site.controller.Configure(kSlot, kSettings9600).isEmpty()) Fail("Configure");
  const QString address = u"1F00"_s;
  const auto exchange = [&] {
    qint16 word = 0;
    if (!site.controller.ReadInt(kSlot, word, address) || word != kWord) Fail("ReadInt");
  };
  for (auto _ : state)
    exchange();
  state.counters["heap"] = HeapRequestsOf(exchange);
}
BENCHMARK(ReadInt)->UseRealTime();

// Keeping one, as it goes over the line: the newest of many.
void Keep(benchmark::State& state) {
  test::FakeClock clock;
  Module1 module;
  module.VersionList.Add(u"AB1-123.4"_s);
  module.VersionList.Select(0);
  ExchangeLog log(clock);
  log.NameVersionsOf(module);
  const PortRecord port{kFalse, 1, kControllerProtocol, 1, kSettings9600.toString()};
  const QString frame = QString::fromStdString(Request());
  const QByteArray reply = QByteArray::fromStdString(WithChecksum("10102R04D2"));
  const QString payload = u"04D2"_s;
  const QString fault;
  const auto keep = [&] {
    log.Begin(port, frame);
    log.Received(reply);
    log.End(payload, true, fault);
    log.Judge(payload);
  };
  for (int i = 0; i < ExchangeLog::kKept; ++i)
    keep();
  for (auto _ : state)
    keep();
  state.counters["heap"] = HeapRequestsOf(keep);
}
BENCHMARK(Keep);

}  // namespace
}  // namespace kalivor::bench

BENCHMARK_MAIN();
