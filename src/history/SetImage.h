// Sets of values as they are stored: images of value files, each once, and by what they differ from one
// before.
#pragma once

#include <QByteArray>
#include <functional>
#include <optional>

namespace kalivor::history {

/// A stored set, as a row of value_set.
struct StoredSet {
  QByteArray id;    ///< SHA-256 of the image, 32 bytes
  QByteArray base;  ///< the set that it differs from, which is stored as a whole; empty: this one is
  QByteArray data;  ///< compressed: the image, or the image exclusive-or that of the base

  bool operator==(const StoredSet&) const = default;
};

/// A larger image is none: a full table takes 124 kB.
inline constexpr qsizetype kLargestImage_bytes = 1 << 20;

/// What was compressed, nothing where that is damaged or larger than an image. Memory is not taken on the
/// word of the data.
[[nodiscard]] std::optional<QByteArray> Uncompressed(const QByteArray& data);

[[nodiscard]] QByteArray SetId(const QByteArray& image);

/// The image of a value file as it is stored: by what it differs from `base`, the image of a set that is
/// stored as a whole, where that takes no more than `largestDifference`; else as a whole. An empty base is
/// none.
[[nodiscard]] StoredSet PackSet(const QByteArray& image, const QByteArray& base = {},
                                qsizetype largestDifference = 0);

/// How many bytes differ between two images of one length; as many as there are where the lengths differ.
[[nodiscard]] qsizetype DifferingBytes(const QByteArray& image, const QByteArray& base);

/// The image, or nothing where the row is damaged: what does not give its `id` is no image. `baseImage`
/// returns that of the base, nothing where it is not there; it need not have looked whether that one is
/// whole.
[[nodiscard]] std::optional<QByteArray> UnpackSet(
    const StoredSet& set, const std::function<std::optional<QByteArray>(const QByteArray& id)>& baseImage);

}  // namespace kalivor::history
