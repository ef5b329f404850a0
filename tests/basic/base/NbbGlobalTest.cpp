#include "basic/base/NbbGlobal.h"

#include "basic/base/NbbAFlags.h"
#include "basic/data/Nbd.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <typeinfo>

TEST(NbbGlobal, UndefinedValuesAreThoseAtOrAbove1e30AndWhatIsNotFinite)
{
  const double inf = std::numeric_limits<double>::infinity();
  const double defined[] = {0., -1e300, NbbGlobal::D_BIG_NEGATIVE, std::nextafter(1e30, 0.)};
  const double undefined[] = {1e30, NbbGlobal::D_FFFF, NbbGlobal::D_BIG_POSITIVE, inf,
                              -inf, std::nan("")};
  for (double value : defined)
    EXPECT_TRUE(NbbGlobal::isDefined(value)) << value;
  for (double value : undefined)
    EXPECT_FALSE(NbbGlobal::isDefined(value)) << value;

  unsigned char flags[6];
  EXPECT_EQ(NbbGlobal::findDefined(6, undefined, flags), 0);
  EXPECT_EQ(NbbGlobal::findDefined(4, defined, flags), 4);
  EXPECT_EQ(flags[3], 1);
}

TEST(NbbGlobal, UndefinedFloatAndDoubleConvertExactly)
{
  EXPECT_EQ(double(NbbGlobal::F_FFFF), NbbGlobal::D_FFFF);
  EXPECT_EQ(float(NbbGlobal::D_FFFF), NbbGlobal::F_FFFF);
  EXPECT_FALSE(NbbGlobal::isDefined(NbbGlobal::F_FFFF));
  EXPECT_TRUE(std::isfinite(NbbGlobal::F_BIG_POSITIVE + NbbGlobal::F_BIG_POSITIVE));
}

TEST(NbbGlobal, ConvertVariantTellsFailureAndLeavesTheValue)
{
  double d = 7.;
  EXPECT_TRUE(NbbGlobal::convertVariant(QVariant(QStringLiteral("1.5e3")), d));
  EXPECT_EQ(d, 1500.);
  d = 7.;
  for (const QVariant &bad :
       {QVariant(), QVariant(NbbGlobal::D_FFFF), QVariant(NbbGlobal::I32_FFFF),
        QVariant(NbbGlobal::I64_FFFF), QVariant(QStringLiteral("1,5")), QVariant(std::nan(""))}) {
    EXPECT_FALSE(NbbGlobal::convertVariant(bad, d));
    EXPECT_EQ(d, 7.);
  }

  int i = 7;
  EXPECT_TRUE(NbbGlobal::convertVariant(QVariant(-2.5), i));
  EXPECT_EQ(i, -3) << "half away from zero";
  for (const QVariant &bad : {QVariant(3e9), QVariant(-2147483648.), QVariant(qint64(1) << 40),
                              QVariant(NbbGlobal::D_FFFF), QVariant(QStringLiteral("x"))}) {
    i = 7;
    EXPECT_FALSE(NbbGlobal::convertVariant(bad, i));
    EXPECT_EQ(i, 7);
  }

  bool b = false;
  EXPECT_TRUE(NbbGlobal::convertVariant(QVariant(QStringLiteral("True")), b));
  EXPECT_TRUE(b);
  EXPECT_TRUE(NbbGlobal::convertVariant(QVariant(0.), b));
  EXPECT_FALSE(b);
  EXPECT_FALSE(NbbGlobal::convertVariant(QVariant(QStringLiteral("maybe")), b));
  EXPECT_FALSE(NbbGlobal::convertVariant(QVariant(NbbGlobal::I32_FFFF), b));
}

TEST(NbbGlobal, TextOfVariants)
{
  EXPECT_EQ(NbbGlobal::toString(QVariant(1. / 3.)), QStringLiteral("0.333333"));
  EXPECT_EQ(NbbGlobal::toString(QVariant(qint64(12345678901))), QStringLiteral("12345678901"));
  EXPECT_EQ(NbbGlobal::toString(QVariant(true)), QStringLiteral("true"));
  EXPECT_EQ(NbbGlobal::toString(QVariant()), NbbGlobal::STR_NA);
  EXPECT_EQ(NbbGlobal::toString(QVariant(NbbGlobal::F_FFFF)), NbbGlobal::STR_NA);
  EXPECT_EQ(NbbGlobal::toString(QVariant(NbbGlobal::I64_FFFF)), NbbGlobal::STR_NA);
}

TEST(NbbGlobal, DemangleGivesTheQualifiedName)
{
  EXPECT_EQ(NbbGlobal::demangle(typeid(NbbGlobal).name()), QStringLiteral("NbbGlobal"));
  EXPECT_EQ(NbbGlobal::demangle("not mangled"), QStringLiteral("not mangled"));
}

TEST(NbbAFlags, TestsAllBitsOfAFlag)
{
  using Flags = NbbAFlags<Nbd::EVariableType>;
  const Flags numeric = Flags(Nbd::TYPE_FLOAT) | Flags(Nbd::TYPE_DOUBLE);
  EXPECT_TRUE(numeric.testFlag(Nbd::TYPE_DOUBLE));
  EXPECT_FALSE(numeric.testFlag(Nbd::TYPE_ALPHA));
  EXPECT_FALSE(numeric.testFlag(Nbd::TYPE_NONE));
  EXPECT_TRUE(Flags().testFlag(Nbd::TYPE_NONE));
  EXPECT_TRUE((numeric & Flags(Nbd::TYPE_FLOAT)) == Flags(Nbd::TYPE_FLOAT));
}
