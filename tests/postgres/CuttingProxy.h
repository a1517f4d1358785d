// Stands between a client and a server, and cuts connections in the middle of what they carry.
#pragma once

#include <QtGlobal>
#include <atomic>
#include <functional>
#include <memory>
#include <mutex>
#include <thread>
#include <vector>

namespace kalivor::test {

/// Listens at a port of 127.0.0.1 and passes everything on to another one.
class CuttingProxy {
 public:
  /// `bytesOf` says for connection n how many bytes it carries, both ways together, before it is cut;
  /// negative: it is never cut.
  CuttingProxy(quint16 target, std::function<qint64(int n)> bytesOf);
  ~CuttingProxy();
  CuttingProxy(const CuttingProxy&) = delete;
  CuttingProxy& operator=(const CuttingProxy&) = delete;

  [[nodiscard]] quint16 Port() const { return port_; }
  [[nodiscard]] int Cuts() const { return cuts_; }

 private:
  void Accept();
  void Carry(int client, qint64 bytes);

  quint16 target_;
  std::function<qint64(int)> bytesOf_;
  int listener_;
  quint16 port_ = 0;
  std::atomic<bool> ends_ = false;
  std::atomic<int> cuts_ = 0;
  std::vector<std::thread> carriers_;  // the accepting thread's own
  std::thread accepting_;
};

}  // namespace kalivor::test
