// What a process holds: memory and descriptors, from /proc.
#pragma once

#include <QDir>
#include <QFile>
#include <algorithm>

namespace kalivor::campaign {

// AddressSanitizer keeps freed memory back to notice who still uses it: its growth says nothing.
#ifdef __SANITIZE_ADDRESS__
inline constexpr bool kHoldsMemoryBack = true;
#else
inline constexpr bool kHoldsMemoryBack = false;
#endif

struct Usage {
  qint64 memory_kib = -1;  ///< VmRSS; -1 when the process is gone
  int descriptors = 0;
};

inline Usage UsageOf(qint64 process) {
  const QString folder = QStringLiteral("/proc/%1/").arg(process);
  Usage usage;
  QFile status(folder + QStringLiteral("status"));
  if (status.open(QIODevice::ReadOnly)) {
    for (const QByteArray& line : status.readAll().split('\n')) {
      if (line.startsWith("VmRSS:")) usage.memory_kib = line.simplified().split(' ').at(1).toLongLong();
    }
    status.close();
  }
  const QDir descriptors(folder + QStringLiteral("fd"));
  usage.descriptors =
      static_cast<int>(descriptors.entryList(QDir::AllEntries | QDir::System | QDir::NoDotAndDotDot).size());
  return usage;
}

/// The course of a process's usage: from the end of its warming up on, nothing may grow.
struct Course {
  Usage first, last;
  qint64 least_kib = 0, most_kib = 0;
  int fewest = 0, most = 0;
  int samples = 0;

  void Add(const Usage& usage) {
    if (samples++ == 0) {
      first = usage;
      least_kib = most_kib = usage.memory_kib;
      fewest = most = usage.descriptors;
    }
    last = usage;
    least_kib = std::min(least_kib, usage.memory_kib);
    most_kib = std::max(most_kib, usage.memory_kib);
    fewest = std::min(fewest, usage.descriptors);
    most = std::max(most, usage.descriptors);
  }

  /// Descriptors never changed, and memory grew by no more than `allowance_kib`.
  [[nodiscard]] bool Constant(qint64 allowance_kib) const {
    return samples > 0 && fewest == most && first.memory_kib > 0 && last.memory_kib > 0 &&
           (kHoldsMemoryBack || most_kib - first.memory_kib <= allowance_kib);
  }

  [[nodiscard]] QString Text() const {
    return QStringLiteral(
               "VmRSS %1 KiB at first, %2 least, %3 most, %4 at last; descriptors %5 to %6; %7 samples")
        .arg(first.memory_kib)
        .arg(least_kib)
        .arg(most_kib)
        .arg(last.memory_kib)
        .arg(fewest)
        .arg(most)
        .arg(samples);
  }
};

}  // namespace kalivor::campaign
