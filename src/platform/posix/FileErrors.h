// What the user reads when a file cannot be read or written.
#pragma once

#include <QString>

namespace kalivor::platform {

/// One German sentence for an error number of the system; its own words would be English.
[[nodiscard]] QString DescribeReading(int error);
[[nodiscard]] QString DescribeWriting(int error);

}  // namespace kalivor::platform
