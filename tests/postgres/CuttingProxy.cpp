#include "postgres/CuttingProxy.h"

#include <arpa/inet.h>
#include <netinet/in.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include <algorithm>
#include <array>

namespace kalivor::test {
namespace {

constexpr int kLook_ms = 50;

sockaddr_in Local(quint16 port) {
  sockaddr_in address{};
  address.sin_family = AF_INET;
  address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
  address.sin_port = htons(port);
  return address;
}

bool SendAll(int socket, const char* bytes, ssize_t count) {
  while (count > 0) {
    const ssize_t sent = send(socket, bytes, static_cast<std::size_t>(count), MSG_NOSIGNAL);
    if (sent <= 0) return false;
    bytes += sent;
    count -= sent;
  }
  return true;
}

}  // namespace

CuttingProxy::CuttingProxy(quint16 target, std::function<qint64(int)> bytesOf)
    : target_(target),
      bytesOf_(std::move(bytesOf)),
      listener_(socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0)) {
  sockaddr_in address = Local(0);
  socklen_t size = sizeof address;
  (void)bind(listener_, reinterpret_cast<sockaddr*>(&address), size);
  (void)listen(listener_, 64);
  (void)getsockname(listener_, reinterpret_cast<sockaddr*>(&address), &size);
  port_ = ntohs(address.sin_port);
  accepting_ = std::thread([this] { Accept(); });
}

CuttingProxy::~CuttingProxy() {
  ends_ = true;
  accepting_.join();
  for (std::thread& carrier : carriers_)
    carrier.join();
  (void)close(listener_);
}

void CuttingProxy::Accept() {
  for (int n = 0; !ends_;) {
    pollfd wait{listener_, POLLIN, 0};
    if (poll(&wait, 1, kLook_ms) <= 0) continue;
    const int client = accept4(listener_, nullptr, nullptr, SOCK_CLOEXEC);
    if (client < 0) continue;
    carriers_.emplace_back([this, client, bytes = bytesOf_(n)] { Carry(client, bytes); });
    ++n;
  }
}

void CuttingProxy::Carry(int client, qint64 bytes) {
  const int server = socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
  sockaddr_in address = Local(target_);
  bool stands = connect(server, reinterpret_cast<sockaddr*>(&address), sizeof address) == 0;
  qint64 left = bytes;
  std::array<char, 65536> block;
  while (stands && !ends_) {
    std::array<pollfd, 2> wait{pollfd{client, POLLIN, 0}, pollfd{server, POLLIN, 0}};
    if (poll(wait.data(), wait.size(), kLook_ms) <= 0) continue;
    for (const bool fromClient : {true, false}) {
      if (wait[fromClient ? 0 : 1].revents == 0) continue;
      const std::size_t room =
          bytes < 0 ? block.size() : static_cast<std::size_t>(std::min<qint64>(left, block.size()));
      const ssize_t count = room == 0 ? 0 : recv(fromClient ? client : server, block.data(), room, 0);
      stands = stands && count > 0 && SendAll(fromClient ? server : client, block.data(), count);
      left -= count;
      if (bytes >= 0 && left <= 0) {
        ++cuts_;
        stands = false;
        break;
      }
    }
  }
  // Half of them with a reset, as a network does it that has forgotten a connection.
  const linger now{1, 0};
  if (bytes % 2 == 1) (void)setsockopt(client, SOL_SOCKET, SO_LINGER, &now, sizeof now);
  (void)close(client);
  (void)close(server);
}

}  // namespace kalivor::test
