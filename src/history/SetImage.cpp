#include "history/SetImage.h"

#include <QCryptographicHash>
#include <QtEndian>
#include <algorithm>
#include <functional>
#include <numeric>

namespace kalivor::history {
namespace {

// Images of one definition file are alike but for the values: what is left of them is zeros, which take no
// room.
QByteArray Differing(QByteArray image, const QByteArray& base) {
  std::transform(image.cbegin(), image.cend(), base.cbegin(), image.begin(), std::bit_xor<char>());
  return image;
}

}  // namespace

// The toolkit puts the length in front, and takes as much memory as it says there.
std::optional<QByteArray> Uncompressed(const QByteArray& data) {
  if (data.size() < 4 || qFromBigEndian<quint32>(data.constData()) > kLargestImage_bytes) return std::nullopt;
  QByteArray image = qUncompress(data);
  if (image.isEmpty()) return std::nullopt;
  return image;
}

QByteArray SetId(const QByteArray& image) {
  return QCryptographicHash::hash(image, QCryptographicHash::Sha256);
}

StoredSet PackSet(const QByteArray& image, const QByteArray& base, qsizetype largestDifference) {
  const QByteArray id = SetId(image);
  if (!base.isEmpty() && base.size() == image.size()) {
    const QByteArray difference = qCompress(Differing(image, base));
    if (difference.size() <= largestDifference) return {id, SetId(base), difference};
  }
  return {id, {}, qCompress(image)};
}

qsizetype DifferingBytes(const QByteArray& image, const QByteArray& base) {
  if (image.size() != base.size()) return image.size();
  return std::inner_product(image.cbegin(), image.cend(), base.cbegin(), qsizetype{0}, std::plus<>(),
                            std::not_equal_to<>());
}

std::optional<QByteArray> UnpackSet(
    const StoredSet& set, const std::function<std::optional<QByteArray>(const QByteArray& id)>& baseImage) {
  std::optional<QByteArray> image = Uncompressed(set.data);
  if (image && !set.base.isEmpty()) {
    const std::optional<QByteArray> base = baseImage(set.base);
    if (!base || base->size() != image->size()) return std::nullopt;
    image = Differing(*image, *base);
  }
  if (!image || SetId(*image) != set.id) return std::nullopt;
  return image;
}

}  // namespace kalivor::history
