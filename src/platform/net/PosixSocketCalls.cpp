#include <fcntl.h>
#include <netdb.h>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cmath>
#include <cstring>
#include <ctime>

#include "platform/net/SocketCalls.h"

namespace kalivor::platform::sockets {
namespace {

int Descriptor(Handle socket) {
  return static_cast<int>(socket);
}

Failure FailureOf(int error) {
  switch (error) {
    case 0:
      return Failure::None;
    case ECONNREFUSED:
      return Failure::Refused;
    case ETIMEDOUT:
      return Failure::TimedOut;
    case ENETUNREACH:
    case EHOSTUNREACH:
    case ENETDOWN:
    case EHOSTDOWN:
    case EADDRNOTAVAIL:
      return Failure::Unreachable;
    case ECONNRESET:
    case ECONNABORTED:
    case EPIPE:
      return Failure::Reset;
    case EACCES:
    case EPERM:
      return Failure::Forbidden;
    default:
      return Failure::Other;
  }
}

// An option that a system does not have costs comfort, not the connection.
void Set(int socket, int level, int option, int value) {
  (void)setsockopt(socket, level, option, &value, sizeof value);
}

}  // namespace

std::vector<Endpoint> Find(const std::string& host, std::uint16_t port) {
  addrinfo wanted{};
  wanted.ai_socktype = SOCK_STREAM;
  wanted.ai_flags = AI_NUMERICSERV;
  addrinfo* found = nullptr;
  std::vector<Endpoint> endpoints;
  if (getaddrinfo(host.c_str(), std::to_string(port).c_str(), &wanted, &found) != 0) return endpoints;
  for (const addrinfo* each = found; each != nullptr; each = each->ai_next) {
    Endpoint endpoint;
    if (each->ai_addrlen > endpoint.bytes.size()) continue;
    endpoint.family = each->ai_family;
    endpoint.size = static_cast<int>(each->ai_addrlen);
    std::memcpy(endpoint.bytes.data(), each->ai_addr, each->ai_addrlen);
    endpoints.push_back(endpoint);
  }
  freeaddrinfo(found);
  return endpoints;
}

Handle New(const Endpoint& endpoint, Failure& failure) {
  const int made = socket(endpoint.family, SOCK_STREAM | SOCK_NONBLOCK | SOCK_CLOEXEC, 0);
  if (made < 0) {
    failure = FailureOf(errno);
    return kNone;
  }
  Set(made, IPPROTO_TCP, TCP_NODELAY, 1);
  Set(made, SOL_SOCKET, SO_KEEPALIVE, 1);
  Set(made, IPPROTO_TCP, TCP_KEEPIDLE, kGone_s / 2);
  Set(made, IPPROTO_TCP, TCP_KEEPINTVL, 1);
  Set(made, IPPROTO_TCP, TCP_KEEPCNT, kGone_s - kGone_s / 2);
  Set(made, IPPROTO_TCP, TCP_USER_TIMEOUT, kGone_s * 1000);
  return made;
}

void Close(Handle socket) {
  if (socket != kNone) (void)close(Descriptor(socket));
}

Progress Connect(Handle socket, const Endpoint& endpoint, Failure& failure) {
  const auto* address = reinterpret_cast<const sockaddr*>(endpoint.bytes.data());
  if (connect(Descriptor(socket), address, static_cast<socklen_t>(endpoint.size)) == 0) return Progress::Done;
  // An interrupted one goes on by itself.
  if (errno == EINPROGRESS || errno == EINTR) return Progress::Later;
  failure = FailureOf(errno);
  return Progress::Failed;
}

Failure Connected(Handle socket) {
  int error = 0;
  socklen_t size = sizeof error;
  if (getsockopt(Descriptor(socket), SOL_SOCKET, SO_ERROR, &error, &size) != 0) return Failure::Other;
  return FailureOf(error);
}

Progress Send(Handle socket, QByteArrayView bytes, qsizetype& count) {
  count = 0;
  const ssize_t sent =
      send(Descriptor(socket), bytes.data(), static_cast<std::size_t>(bytes.size()), MSG_NOSIGNAL);
  if (sent >= 0) {
    count = sent;
    return Progress::Done;
  }
  return errno == EAGAIN || errno == EWOULDBLOCK || errno == EINTR ? Progress::Later : Progress::Failed;
}

Progress Receive(Handle socket, QByteArray& bytes, Failure& failure) {
  char piece[4096];
  const ssize_t count = recv(Descriptor(socket), piece, sizeof piece, 0);
  if (count > 0) {
    bytes.append(piece, count);
    return Progress::Done;
  }
  if (count < 0 && (errno == EAGAIN || errno == EWOULDBLOCK || errno == EINTR)) return Progress::Later;
  failure = count == 0 ? Failure::None : FailureOf(errno);
  return Progress::Failed;
}

Ready Wait(Handle socket, bool wantsInput, bool wantsOutput, double seconds) {
  constexpr double kNanosecondsPerSecond = 1e9;
  constexpr double kLongest_s = 86400;
  const double wait_s = seconds > 0 ? std::min(seconds, kLongest_s) : 0;
  timespec left{};
  left.tv_sec = static_cast<time_t>(wait_s);
  const double rest_ns = std::ceil((wait_s - static_cast<double>(left.tv_sec)) * kNanosecondsPerSecond);
  left.tv_nsec = static_cast<long>(std::min(rest_ns, kNanosecondsPerSecond - 1));
  pollfd wait{Descriptor(socket), 0, 0};
  if (wantsInput) wait.events |= POLLIN;
  if (wantsOutput) wait.events |= POLLOUT;
  if (ppoll(&wait, 1, &left, nullptr) <= 0) return {};
  const bool ended = (wait.revents & (POLLHUP | POLLERR | POLLNVAL)) != 0;
  return {ended || (wait.revents & POLLIN) != 0, ended || (wait.revents & POLLOUT) != 0};
}

}  // namespace kalivor::platform::sockets
