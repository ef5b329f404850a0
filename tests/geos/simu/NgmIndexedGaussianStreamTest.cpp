#include "geos/simu/NgmIndexedGaussianStream.h"

#include "support/Errors.h"

#include <gtest/gtest.h>

#include <cmath>
#include <vector>

namespace {

constexpr quint64 SEED = 165426;
constexpr auto SIZE = NgmRandomNumberGenerator::SIZE_5;
constexpr quint64 MODULUS = 2147483647;

}  // namespace

TEST(NgmIndexedGaussianStream, BlocksHaveTheirOwnSeedAndItemsFollowEachOther)
{
  NgmIndexedGaussianStream stream(2, 3, SEED, SIZE);
  NgmRandomNumberGenerator generator(SEED, SIZE);
  generator.nextNumber();
  generator.nextNumber();
  const quint64 baseSeed = generator.nextNumber();
  EXPECT_EQ(stream.getBaseSeed(), baseSeed);

  for (const qint64 block : {0, 1, 7}) {
    NgmDistributionGaussian gaussian((baseSeed - 1 + quint64(block) * 1000) % MODULUS + 1, SIZE);
    for (qint64 item = block * 1000 + 1; item <= (block + 1) * 1000; ++item) {
      ASSERT_EQ(stream.value(false, item), gaussian.nextR()) << item;
      ASSERT_EQ(stream.value(true, item), gaussian.nextR()) << item;
    }
  }
}

TEST(NgmIndexedGaussianStream, TheOrderOfItemsDoesNotMatter)
{
  const int n = 2500;
  NgmIndexedGaussianStream inOrder(3, 1, SEED, SIZE);
  std::vector<double> expected;
  for (qint64 item = 1; item <= n; ++item)
    for (int k = 0; k < 3; ++k)
      expected.push_back(inOrder.value(k > 0, item));

  NgmIndexedGaussianStream stream(3, 1, SEED, SIZE);
  const auto expectItem = [&](qint64 item) {
    for (int k = 0; k < 3; ++k)
      ASSERT_EQ(stream.value(k > 0, item), expected[std::size_t(3 * (item - 1) + k)]) << item;
  };
  for (qint64 i = 0; i < 400; ++i)
    expectItem((i * 977) % n + 1);
  for (qint64 item = 1100; item > 900; --item)
    expectItem(item);
  expectItem(900);
  expectItem(900);

  EXPECT_NE(testsupport::errorOf([&] { stream.value(false, 0); }), "nothing thrown");
}

TEST(NgmIndexedGaussianStream, EverySeedOfASmallGeneratorServes)
{
  // Derived seeds run through all residues here, the modulus included.
  NgmIndexedGaussianStream stream(1, 1, 3, NgmRandomNumberGenerator::SIZE_0);
  for (qint64 block = 0; block < 256; ++block)
    EXPECT_TRUE(std::isfinite(stream.value(false, block * 1000 + 1)));
}
