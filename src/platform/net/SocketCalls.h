// What a TCP connection needs of the system: its calls, with the differences between systems taken out.
#pragma once

#include <QByteArray>
#include <QByteArrayView>
#include <array>
#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace kalivor::platform::sockets {

/// Of a socket.
using Handle = std::intptr_t;
inline constexpr Handle kNone = -1;

/// After so long without a sign of life the other side counts as gone.
inline constexpr int kGone_s = 6;

/// Where a connection leads, as the system writes it.
struct Endpoint {
  int family = 0;
  std::array<std::byte, 128> bytes{};
  int size = 0;
};

/// Why something did not work.
enum class Failure {
  None,
  Refused,      ///< nobody offers the port
  TimedOut,     ///< no answer
  Unreachable,  ///< no way there
  Reset,        ///< cut off by the other side, or given up by the system
  Forbidden,    ///< by this system
  Other,
};

/// What became of a call that does not wait.
enum class Progress { Done, Later, Failed };

/// The endpoints of `host` in the order in which they are to be tried; none where it is unknown. Asks the
/// network unless `host` is an address, and takes as long as that takes.
[[nodiscard]] std::vector<Endpoint> Find(const std::string& host, std::uint16_t port);

/// A socket that never waits, sends at once, and notices within seconds that the other side is gone: also
/// while nothing is sent, also when what is sent arrives nowhere. kNone and `failure` when there is none.
[[nodiscard]] Handle New(const Endpoint& endpoint, Failure& failure);
void Close(Handle socket);

/// Begins to connect. `failure` says what went wrong.
[[nodiscard]] Progress Connect(Handle socket, const Endpoint& endpoint, Failure& failure);

/// How a connecting that was under way has ended.
[[nodiscard]] Failure Connected(Handle socket);

/// Sends what the system takes; `count` bytes.
[[nodiscard]] Progress Send(Handle socket, QByteArrayView bytes, qsizetype& count);

/// Appends one piece of what has arrived to `bytes`. Failed: nothing more can come; Reset unless the other
/// side has ended the connection in order (None).
[[nodiscard]] Progress Receive(Handle socket, QByteArray& bytes, Failure& failure);

/// What happened to a socket.
struct Ready {
  bool input = false;   ///< Receive() has something to say
  bool output = false;  ///< Send() takes something, or connecting has ended
};

/// Sleeps until something has happened or `seconds` have passed.
[[nodiscard]] Ready Wait(Handle socket, bool wantsInput, bool wantsOutput, double seconds);

}  // namespace kalivor::platform::sockets
