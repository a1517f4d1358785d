// Transfers back to back over a pseudo-terminal, in real time.
#pragma once

namespace kalivor::campaign {

/// Receives, compares and sends the shipped example for so many seconds, against a kalivor-sim of its own,
/// and prints what both processes hold. With 0 seconds it is two rounds of a few parameters. Returns 0 when
/// every transfer ended as specified and nothing grew, else 1.
int RunRealEndurance(double seconds);

}  // namespace kalivor::campaign
