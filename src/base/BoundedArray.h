// An array with a fixed index range, every access checked.
#pragma once

#include <array>

#include "platform/RuntimeError.h"

namespace kalivor {

/// Elements 0..Last. Any other index throws RuntimeError (Bounds).
template <typename T, int Last>
class BoundedArray {
 public:
  static constexpr int kLast = Last;

  T& operator[](int index) { return elements_[Checked(index)]; }
  const T& operator[](int index) const { return elements_[Checked(index)]; }

  bool operator==(const BoundedArray&) const = default;

 private:
  static std::size_t Checked(int index) {
    if (index < 0 || index > Last) throw RuntimeError(RuntimeError::Kind::Bounds);
    return static_cast<std::size_t>(index);
  }

  std::array<T, static_cast<std::size_t>(Last) + 1> elements_{};
};

}  // namespace kalivor
