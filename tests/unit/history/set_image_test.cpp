// Sets come back as they were, and take room for what differs.
#include "history/SetImage.h"

#include <gtest/gtest.h>
#include <random>

namespace kalivor::history {
namespace {

QByteArray Image(int seed, int length = 20000) {
  std::mt19937 random(static_cast<unsigned>(seed));
  QByteArray image;
  for (int i = 0; i < length; ++i)
    image += static_cast<char>(random());
  return image;
}

std::optional<QByteArray> Unpacked(const StoredSet& set, const std::optional<QByteArray>& base) {
  return UnpackSet(set, [&](const QByteArray&) { return base; });
}

TEST(SetImage, ComesBackAsItWas) {
  const QByteArray base = Image(1);
  QByteArray image = base;
  image[7] = static_cast<char>(~image[7]);
  const StoredSet whole = PackSet(image);
  EXPECT_TRUE(whole.base.isEmpty());
  EXPECT_EQ(Unpacked(whole, std::nullopt), image);
  const StoredSet difference = PackSet(image, base, 100);
  EXPECT_EQ(difference.base, SetId(base));
  EXPECT_EQ(difference.id, whole.id);
  EXPECT_LT(difference.data.size(), 100);
  EXPECT_EQ(Unpacked(difference, base), image);
}

TEST(SetImage, IsStoredAsAWholeWhereTheDifferenceIsTooLarge) {
  const QByteArray base = Image(1);
  EXPECT_TRUE(PackSet(Image(2), base, 100).base.isEmpty());
  EXPECT_TRUE(PackSet(base + 'x', base, 100).base.isEmpty());
  EXPECT_EQ(DifferingBytes(base, base), 0);
  EXPECT_EQ(DifferingBytes("abcd", "axcx"), 2);
  EXPECT_EQ(DifferingBytes("abcd", "abc"), 4);
}

TEST(SetImage, IsNoneWhereARowIsDamaged) {
  const QByteArray base = Image(1);
  QByteArray image = base;
  image[7] = static_cast<char>(~image[7]);
  const StoredSet difference = PackSet(image, base, 100);
  EXPECT_FALSE(Unpacked(difference, std::nullopt));
  EXPECT_FALSE(Unpacked(difference, Image(2)));
  EXPECT_FALSE(Unpacked(difference, base.chopped(1)));
  StoredSet other = difference;
  other.id = SetId(base);
  EXPECT_FALSE(Unpacked(other, base));
  const StoredSet whole = PackSet(image);
  for (qsizetype at = 0; at < whole.data.size(); at += 97) {
    StoredSet damaged = whole;
    damaged.data[at] = static_cast<char>(damaged.data[at] ^ 0x10);
    EXPECT_FALSE(Unpacked(damaged, std::nullopt)) << at;
  }
}

TEST(SetImage, TakesNoMemoryOnTheWordOfTheData) {
  EXPECT_FALSE(Uncompressed(QByteArray("\x7F\xFF\xFF\xFF", 4) + qCompress(Image(1)).mid(4)));
  EXPECT_FALSE(Uncompressed(qCompress(QByteArray(kLargestImage_bytes + 1, 'x'))));
  // The length is a lie, and there is more: no more than it says is taken.
  EXPECT_FALSE(Uncompressed({}));
  EXPECT_FALSE(Uncompressed("abc"));
  EXPECT_EQ(Uncompressed(qCompress(QByteArray(kLargestImage_bytes, 'x')))->size(), kLargestImage_bytes);
}

}  // namespace
}  // namespace kalivor::history
