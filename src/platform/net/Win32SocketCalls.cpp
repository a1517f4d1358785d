// Before all others, and in this order: the header that <windows.h> brings along is an older one.
// clang-format off
#include <winsock2.h>
#include <ws2tcpip.h>
#include <mstcpip.h>
// clang-format on

#include <algorithm>
#include <cmath>
#include <cstring>

#include "platform/net/SocketCalls.h"

namespace kalivor::platform::sockets {
namespace {

SOCKET Socket(Handle socket) {
  return static_cast<SOCKET>(socket);
}

// The system wants to hear once that somebody needs its network, and ends it with the process.
void Prepare() {
  static const int prepared = [] {
    WSADATA data{};
    return WSAStartup(MAKEWORD(2, 2), &data);
  }();
  (void)prepared;
}

Failure FailureOf(int error) {
  switch (error) {
    case 0:
      return Failure::None;
    case WSAECONNREFUSED:
      return Failure::Refused;
    case WSAETIMEDOUT:
      return Failure::TimedOut;
    case WSAENETUNREACH:
    case WSAEHOSTUNREACH:
    case WSAENETDOWN:
    case WSAEHOSTDOWN:
    case WSAEADDRNOTAVAIL:
      return Failure::Unreachable;
    case WSAECONNRESET:
    case WSAECONNABORTED:
    case WSAENETRESET:
      return Failure::Reset;
    case WSAEACCES:
      return Failure::Forbidden;
    default:
      return Failure::Other;
  }
}

// An option that a system does not have costs comfort, not the connection.
void Set(SOCKET socket, int level, int option, DWORD value) {
  (void)setsockopt(socket, level, option, reinterpret_cast<const char*>(&value), sizeof value);
}

}  // namespace

std::vector<Endpoint> Find(const std::string& host, std::uint16_t port) {
  Prepare();
  addrinfo wanted{};
  wanted.ai_socktype = SOCK_STREAM;
  wanted.ai_protocol = IPPROTO_TCP;
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
  Prepare();
  const SOCKET made = WSASocketW(endpoint.family, SOCK_STREAM, IPPROTO_TCP, nullptr, 0,
                                 WSA_FLAG_OVERLAPPED | WSA_FLAG_NO_HANDLE_INHERIT);
  u_long yes = 1;
  if (made == INVALID_SOCKET || ioctlsocket(made, static_cast<long>(FIONBIO), &yes) != 0) {
    failure = FailureOf(WSAGetLastError());
    if (made != INVALID_SOCKET) closesocket(made);
    return kNone;
  }
  Set(made, IPPROTO_TCP, TCP_NODELAY, 1);
  constexpr int kLongestRetransmission = 5;  // TCP_MAXRT, which these headers do not have
  Set(made, IPPROTO_TCP, kLongestRetransmission, kGone_s);
  tcp_keepalive alive{1, kGone_s * 1000 / 2, 1000};
  DWORD unused = 0;
  (void)WSAIoctl(made, SIO_KEEPALIVE_VALS, &alive, sizeof alive, nullptr, 0, &unused, nullptr, nullptr);
  return static_cast<Handle>(made);
}

void Close(Handle socket) {
  if (socket != kNone) closesocket(Socket(socket));
}

Progress Connect(Handle socket, const Endpoint& endpoint, Failure& failure) {
  const auto* address = reinterpret_cast<const sockaddr*>(endpoint.bytes.data());
  if (connect(Socket(socket), address, endpoint.size) == 0) return Progress::Done;
  const int error = WSAGetLastError();
  if (error == WSAEWOULDBLOCK || error == WSAEINPROGRESS) return Progress::Later;
  failure = FailureOf(error);
  return Progress::Failed;
}

Failure Connected(Handle socket) {
  int error = 0;
  int size = sizeof error;
  if (getsockopt(Socket(socket), SOL_SOCKET, SO_ERROR, reinterpret_cast<char*>(&error), &size) != 0)
    return Failure::Other;
  return FailureOf(error);
}

Progress Send(Handle socket, QByteArrayView bytes, qsizetype& count) {
  count = 0;
  const int sent = send(Socket(socket), bytes.data(), static_cast<int>(bytes.size()), 0);
  if (sent >= 0) {
    count = sent;
    return Progress::Done;
  }
  return WSAGetLastError() == WSAEWOULDBLOCK ? Progress::Later : Progress::Failed;
}

Progress Receive(Handle socket, QByteArray& bytes, Failure& failure) {
  char piece[4096];
  const int count = recv(Socket(socket), piece, sizeof piece, 0);
  if (count > 0) {
    bytes.append(piece, count);
    return Progress::Done;
  }
  const int error = count == 0 ? 0 : WSAGetLastError();
  if (error == WSAEWOULDBLOCK) return Progress::Later;
  failure = FailureOf(error);
  return Progress::Failed;
}

Ready Wait(Handle socket, bool wantsInput, bool wantsOutput, double seconds) {
  constexpr double kMicrosecondsPerSecond = 1e6;
  constexpr double kLongest_s = 86400;
  const double wait_s = seconds > 0 ? std::min(seconds, kLongest_s) : 0;
  timeval left{};
  left.tv_sec = static_cast<long>(wait_s);
  const double rest_us = std::ceil((wait_s - static_cast<double>(left.tv_sec)) * kMicrosecondsPerSecond);
  left.tv_usec = static_cast<long>(std::min(rest_us, kMicrosecondsPerSecond - 1));
  // A connecting that fails is told as an exception, and by older systems in no other way.
  fd_set input;
  fd_set output;
  fd_set failed;
  for (fd_set* const set : {&input, &output, &failed})
    FD_ZERO(set);
  if (wantsInput) FD_SET(Socket(socket), &input);
  if (wantsOutput) FD_SET(Socket(socket), &output);
  FD_SET(Socket(socket), &failed);
  if (select(0, &input, &output, &failed, &left) <= 0) return {};
  const bool ended = FD_ISSET(Socket(socket), &failed) != 0;
  return {ended || FD_ISSET(Socket(socket), &input) != 0, ended || FD_ISSET(Socket(socket), &output) != 0};
}

}  // namespace kalivor::platform::sockets
