#include "geos/simu/NgmRandomNumberGenerator.h"

#include "geos/simu/NgmRandomNumberFunctions.h"
#include "support/Errors.h"

#include <gtest/gtest.h>

using Generator = NgmRandomNumberGenerator;

namespace {

constexpr Generator::tSize ALL_SIZES[] = {Generator::SIZE_0, Generator::SIZE_1, Generator::SIZE_2,
                                          Generator::SIZE_3, Generator::SIZE_4, Generator::SIZE_5,
                                          Generator::SIZE_6, Generator::SIZE_7};

/// The generator in its defining form.
struct Reference
{
  Reference(qint64 seed, Generator::tSize size, bool zeroExcluded)
      : m(qint64(Generator::getSizeModulus(size))),
        a(qint64(Generator::getSizeMultiplier(size))),
        b(Generator::getSizeOffset(size)),
        x(seed),
        excludeZero(zeroExcluded)
  {
    for (qint64 &entry : table)
      entry = step();
  }

  qint64 step()
  {
    const qint64 q = m / a, r = m % a;
    do {
      x = (x % q) * a - r * (x / q) + b;
      while (x < 0)
        x += m;
    } while (excludeZero && x == 0);
    return x;
  }

  quint64 next()
  {
    const qint64 y = step();
    const int j = int(double(quint64(y)) * (32. / double(m)));
    const qint64 result = table[j];
    table[j] = y;
    return quint64(result);
  }

  qint64 m, a, b, x;
  bool excludeZero;
  qint64 table[32];
};

}  // namespace

TEST(NgmRandomNumberGenerator, GivesTheNumbersOfTheDefiningFormForAllConstants)
{
  for (const Generator::tSize size : ALL_SIZES) {
    const quint64 modulus = Generator::getSizeModulus(size);
    for (const quint64 seed : {quint64(1), quint64(2), modulus / 3, modulus - 2, modulus - 1}) {
      Generator generator(seed, size);
      Reference reference(qint64(seed), size, true);
      ASSERT_EQ(generator.getQuotient(), modulus / Generator::getSizeMultiplier(size));
      ASSERT_EQ(generator.getRest(), modulus % Generator::getSizeMultiplier(size));
      for (int i = 0; i < 20000; ++i)
        ASSERT_EQ(generator.nextNumber(), reference.next()) << size << " " << seed << " " << i;
      ASSERT_EQ(generator.getCurrentNumber(), quint64(reference.x));
    }
  }
}

TEST(NgmRandomNumberGenerator, GivesNumbersComputedElsewhere)
{
  // Arbitrary-precision integers of another language; the ten-thousandth number of the recurrence
  // is the check value of [Park and Miller, 1988].
  const quint64 size5[] = {1458777923, 282475249, 1998097157, 823564440, 896544303, 1817129560};
  Generator small(1, Generator::SIZE_5);
  for (const quint64 expected : size5)
    EXPECT_EQ(small.nextNumber(), expected);
  const quint64 size7[] = {274854778874149, 35029432976190,  149573405814972,
                           240399680309997, 266590236709934, 273659657296061};
  Generator large(165426, Generator::SIZE_7);
  for (const quint64 expected : size7)
    EXPECT_EQ(large.nextNumber(), expected);

  small.initialize();
  quint64 last = 0;
  for (int i = Generator::TABLE_LENGTH; i < 10000; ++i)
    last = small.calculateNextNumber();
  EXPECT_EQ(last, 1043618065u);
}

TEST(NgmRandomNumberGenerator, SeedsOutsideAreRefusedAndChangeNothing)
{
  const QString start = QStringLiteral("NgmRandomNumberGenerator::initialize: ");
  const QString zero = start + "If offset is null, zero initial seed is forbidden";
  const QString excluded =
      start + "If you want to exclude zero seeds, zero initial seed is forbidden";
  Generator generator(7, Generator::SIZE_5);
  const auto initialize = [&](quint64 seed, Generator::tSize size) {
    return testsupport::errorOf([&] { generator.initialize(seed, size); });
  };
  EXPECT_EQ(initialize(2147483647, Generator::SIZE_5),
            start + "Initial seed must be in [0, 2147483647[");
  EXPECT_EQ(initialize(256, Generator::SIZE_0), start + "Initial seed must be in [0, 256[");
  EXPECT_EQ(initialize(0, Generator::SIZE_3), zero);
  EXPECT_EQ(initialize(0, Generator::SIZE_7), excluded);
  testsupport::expectAssertion(QStringLiteral("simu\\NgmRandomNumberGenerator"),
                               QStringLiteral("Invalid generator size"),
                               [&] { generator.initialize(1, Generator::tSize(8)); });
  EXPECT_EQ(testsupport::errorOf([&] { generator.includeZero(); }),
            "NgmRandomNumberGenerator::includeZero: If offset is null, zero seed are forbidden");

  EXPECT_EQ(generator.getSeed(), 7u);
  EXPECT_EQ(generator.nextNumber(), Generator(7, Generator::SIZE_5).nextNumber());
}

TEST(NgmRandomNumberGenerator, ZeroIsSkippedUntilItIsIncluded)
{
  Generator generator(1, Generator::SIZE_0);
  for (int i = 0; i < 1000; ++i)
    ASSERT_NE(generator.nextNumber(), 0u);

  generator.includeZero();
  generator.initialize(0, Generator::SIZE_0);
  Reference reference(0, Generator::SIZE_0, false);
  int zeros = 0;
  for (int i = 0; i < 1024; ++i) {
    const quint64 number = generator.nextNumber();
    ASSERT_EQ(number, reference.next());
    zeros += number == 0;
  }
  // The recurrence has the full period of 256.
  EXPECT_EQ(zeros, 4);

  generator.excludeZero();
  EXPECT_NE(testsupport::errorOf([&] { generator.initialize(); }), "nothing thrown");
}

TEST(NgmRandomNumberGenerator, CopiesContinueAndNumbersCanBePassedBy)
{
  Generator one(165426, Generator::SIZE_6);
  one.nextNumber(50);
  Generator copy(1, Generator::SIZE_1);
  copy = one;
  quint64 tenth = 0;
  for (int i = 0; i < 10; ++i)
    tenth = one.nextNumber();
  EXPECT_EQ(copy.nextNumber(10), tenth);
  EXPECT_EQ(copy.getShuffledTable(), one.getShuffledTable());
}

TEST(NgmRandomNumberFunctions, SeedsOfSubStreamsAreAffineModuloTheConstant)
{
  using NgmRandomNumberFunctions::nextSeedNumber;
  // b - 1 + seed a = 2 - 1 + 1000 * 3 = 3001.
  EXPECT_EQ(nextSeedNumber(1000, 3, 2, Generator::SIZE_5), 3002u);
  EXPECT_EQ(nextSeedNumber(200, 1, 57, Generator::SIZE_0), 1u);
  EXPECT_EQ(nextSeedNumber(200, 1, 56, Generator::SIZE_0), 256u);
  // 0 - 1 + 0 wraps to 2^64 - 1, which is 2^48 - 1 modulo 2^48.
  EXPECT_EQ(nextSeedNumber(0, 5, 0, Generator::SIZE_7), quint64(1) << 48);
}
