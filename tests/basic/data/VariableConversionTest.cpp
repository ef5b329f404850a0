#include "basic/data/NbdValueConversion.h"

#include <gtest/gtest.h>

#include <limits>
#include <vector>

namespace {

constexpr double NOT_A_NUMBER = std::numeric_limits<double>::quiet_NaN();
constexpr double INFINITE = std::numeric_limits<double>::infinity();

/// Every undefined value of From becomes the undefined value of To.
template <class To, class From>
void expectUndefinedKept()
{
  const From undefined = NbdValueTraits<From>::undefined();
  EXPECT_EQ(nbdConvert<To>(undefined), NbdValueTraits<To>::undefined())
      << typeid(From).name() << " to " << typeid(To).name();
}

template <class From>
void expectUndefinedKeptByAll()
{
  expectUndefinedKept<double, From>();
  expectUndefinedKept<float, From>();
  expectUndefinedKept<int, From>();
  expectUndefinedKept<qint64, From>();
  expectUndefinedKept<qint16, From>();
  expectUndefinedKept<unsigned char, From>();
  expectUndefinedKept<QString, From>();
}

}  // namespace

TEST(VariableConversion, KeepsUndefinedValues)
{
  expectUndefinedKeptByAll<double>();
  expectUndefinedKeptByAll<float>();
  expectUndefinedKeptByAll<int>();
  expectUndefinedKeptByAll<qint64>();
  expectUndefinedKeptByAll<qint16>();
  expectUndefinedKeptByAll<QString>();
}

TEST(VariableConversion, TakesAllUndefinedFloatsForUndefined)
{
  for (double value : {NOT_A_NUMBER, INFINITE, -INFINITE, 1e30, NbbGlobal::D_BIG_POSITIVE}) {
    EXPECT_EQ(nbdConvert<float>(value), NbbGlobal::F_FFFF) << value;
    EXPECT_EQ(nbdConvert<int>(value), NbbGlobal::I32_FFFF) << value;
    EXPECT_EQ(nbdConvert<qint64>(value), NbbGlobal::I64_FFFF) << value;
    EXPECT_EQ(nbdConvert<unsigned char>(value), 0) << value;
    EXPECT_TRUE(nbdConvert<QString>(value).isEmpty()) << value;
    EXPECT_EQ(nbdConvert<double>(float(value)), NbbGlobal::D_FFFF) << value;
  }
}

TEST(VariableConversion, MakesUndefinedWhatIsOutOfRange)
{
  // The largest double below 1e30 rounds to a float that is undefined.
  EXPECT_EQ(nbdConvert<float>(std::nextafter(1e30, 0.)), NbbGlobal::F_FFFF);
  EXPECT_EQ(nbdConvert<float>(-1e39), NbbGlobal::F_FFFF);
  EXPECT_EQ(nbdConvert<float>(-1e35), -1e35f);
  EXPECT_EQ(nbdConvert<float>(0.1), 0.1f);

  EXPECT_EQ(nbdConvert<int>(2147483647.4), 2147483647);
  EXPECT_EQ(nbdConvert<int>(2147483647.5), NbbGlobal::I32_FFFF);
  EXPECT_EQ(nbdConvert<int>(-2147483647.4), -2147483647);
  EXPECT_EQ(nbdConvert<int>(-2147483648.), NbbGlobal::I32_FFFF);
  EXPECT_EQ(nbdConvert<int>(-1e25), NbbGlobal::I32_FFFF);
  EXPECT_EQ(nbdConvert<int>(2147483648.f), NbbGlobal::I32_FFFF);
  EXPECT_EQ(nbdConvert<qint64>(0x1p63), NbbGlobal::I64_FFFF);
  EXPECT_EQ(nbdConvert<qint64>(std::nextafter(0x1p63, 0.)), 9223372036854774784);

  EXPECT_EQ(nbdConvert<int>(qint64(2147483647)), 2147483647);
  EXPECT_EQ(nbdConvert<int>(qint64(2147483648)), NbbGlobal::I32_FFFF);
  EXPECT_EQ(nbdConvert<qint16>(32767), 32767);
  EXPECT_EQ(nbdConvert<qint16>(-32768), NbbGlobal::I16_FFFF);
  EXPECT_EQ(nbdConvert<qint16>(70000), NbbGlobal::I16_FFFF);
}

TEST(VariableConversion, RoundsHalfAwayFromZero)
{
  const std::vector<double> in = {0.5, -0.5, 1.5, 2.5, -2.5, 0.49999999999999994, -7.2, 7.5};
  const std::vector<int> expected = {1, -1, 2, 3, -3, 0, -7, 8};
  std::vector<int> out(in.size());
  nbdConvertArray(in.data(), qint64(in.size()), out.data());
  EXPECT_EQ(out, expected);
}

TEST(VariableConversion, SelectsWhatIsDefinedAndNotZero)
{
  EXPECT_EQ(nbdConvert<unsigned char>(0.2), 1);
  EXPECT_EQ(nbdConvert<unsigned char>(-0.), 0);
  EXPECT_EQ(nbdConvert<unsigned char>(qint16(-3)), 1);
  EXPECT_EQ(nbdConvert<unsigned char>(QStringLiteral(" True ")), 1);
  EXPECT_EQ(nbdConvert<unsigned char>(QStringLiteral("0.2")), 1);
  EXPECT_EQ(nbdConvert<unsigned char>(QStringLiteral("0.0")), 0);
  EXPECT_EQ(nbdConvert<double>(static_cast<unsigned char>(1)), 1.);
  EXPECT_EQ(nbdConvert<QString>(static_cast<unsigned char>(0)), QStringLiteral("0"));
}

TEST(VariableConversion, WritesTextsThatReadBackTheSame)
{
  for (double value : {0.1, -1. / 3., 1e-300, 123456789012345680., 9.999999e29})
    EXPECT_EQ(nbdConvert<double>(nbdConvert<QString>(value)), value);
  EXPECT_EQ(nbdConvert<QString>(0.1f), QStringLiteral("0.1"));
  const qint64 large = 9223372036854775807;
  EXPECT_EQ(nbdConvert<qint64>(nbdConvert<QString>(large)), large);
  EXPECT_EQ(nbdConvert<qint64>(QStringLiteral("2.5")), 3);
  EXPECT_EQ(nbdConvert<double>(QStringLiteral("2,5")), NbbGlobal::D_FFFF);
  EXPECT_EQ(nbdConvert<double>(QStringLiteral("nan")), NbbGlobal::D_FFFF);
  EXPECT_EQ(nbdConvert<int>(QStringLiteral("gneiss")), NbbGlobal::I32_FFFF);
}
