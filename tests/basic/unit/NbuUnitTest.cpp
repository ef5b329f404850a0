#include "basic/unit/NbuUnitService.h"

#include "basic/base/NbbGlobal.h"
#include "basic/error/NbeProgrammingError.h"
#include "basic/error/NbeUserError.h"
#include "basic/unit/Nbu.h"
#include "support/SerializationFuzz.h"

#include <gtest/gtest.h>

#include <cmath>

namespace {

/// The conversions are products of two or three factors: a few roundings.
constexpr double RELATIVE_TOLERANCE = 1e-14;

double convert(const char *from, const char *to, double value)
{
  return NbuUnitService::getConversion(NbuUnitService::getUnit(QString::fromUtf8(from)),
                                       NbuUnitService::getUnit(QString::fromUtf8(to)))
      .transform(value);
}

void expectConverted(const char *from, const char *to, double value, double expected)
{
  EXPECT_NEAR(convert(from, to, value), expected, RELATIVE_TOLERANCE * std::fabs(expected))
      << from << " to " << to;
}

}  // namespace

TEST(NbuUnitTransfo, TransformsComposesAndInverts)
{
  const NbuUnitTransfo toFahrenheit(1.8, 32.), fromKelvin(1., -273.15);
  const NbuUnitTransfo both = toFahrenheit * fromKelvin;
  EXPECT_NEAR(both.transform(373.15), 212., 1e-12);
  EXPECT_NEAR(both.inverse().transform(212.), 373.15, 1e-12);
  EXPECT_NEAR(both.invTransform(212.), 373.15, 1e-12);
  EXPECT_EQ(toFahrenheit.transform(NbbGlobal::D_FFFF), NbbGlobal::D_FFFF);
  EXPECT_EQ(toFahrenheit.invTransform(NbbGlobal::D_FFFF), NbbGlobal::D_FFFF);
  EXPECT_TRUE((toFahrenheit * NbuUnitTransfo::identity()) == toFahrenheit);
}

TEST(NbuUnitTransfo, IsInvalidWithoutAFiniteScaleOtherThanZero)
{
  EXPECT_TRUE(NbuUnitTransfo(-2., 1.).isValid());
  EXPECT_FALSE(NbuUnitTransfo::invalid().isValid());
  EXPECT_FALSE(NbuUnitTransfo(std::nan("")).isValid());
  EXPECT_FALSE(NbuUnitTransfo(1., NbbGlobal::D_FFFF).isValid());
}

TEST(NbuUnitTransfo, StreamIsSafe)
{
  test::fuzzSerialization(NbuUnitTransfo(0.3048, -1.));
}

TEST(NbuUnitService, ConvertsWithTheLegalFactors)
{
  // Exact by definition: foot 0.3048 m, pound 0.45359237 kg, troy ounce 31.1034768 g, barrel
  // 158.987294928 l (NIST Handbook 44, appendix C).
  expectConverted("ft", "m", 10., 3.048);
  expectConverted("mi", "km", 1., 1.609344);
  expectConverted("lb", "kg", 1., 0.45359237);
  expectConverted("oz t", "g", 1., 31.1034768);
  expectConverted("short ton", "t", 1., 0.90718474);
  expectConverted("bbl", "l", 1., 158.987294928);
  expectConverted("%", "ppm", 1., 1e4);
  expectConverted("rad", "deg", M_PI, 180.);
  expectConverted("gon", "deg", 100., 90.);
  EXPECT_EQ(convert("m", "m", 0.1), 0.1);
}

TEST(NbuUnitService, SymbolsAreUniqueAndEveryClassHasItsReferenceFirst)
{
  const QList<NbuUnit> lengths = NbuUnitService::getUnits(NbuEUnitClass::ELEVATION);
  ASSERT_FALSE(lengths.isEmpty());
  EXPECT_EQ(lengths.first().getSymbol(), QStringLiteral("m"));
  for (int value = NbuEUnitClass::E_ANGLE; value <= NbuEUnitClass::E_VOLUME; ++value) {
    const QList<NbuUnit> units = NbuUnitService::getUnits(NbuEUnitClass::fromValue(value));
    ASSERT_FALSE(units.isEmpty());
    EXPECT_TRUE(units.first().getTransfoToReference().isIdentity());
    for (const NbuUnit &unit : units)
      EXPECT_EQ(NbuUnitService::getUnit(unit.getSymbol()).getName(), unit.getName());
  }
}

TEST(NbuUnitService, RefusesWhatCannotBeConverted)
{
  EXPECT_FALSE(NbuUnitService::getUnit(QStringLiteral("furlong")).isValid());
  EXPECT_THROW(convert("m", "kg", 1.), NbeUserError);
  EXPECT_THROW(convert("m", "furlong", 1.), NbeUserError);

  const NbuUnit percent = NbuUnitService::getUnit(QStringLiteral("%"));
  EXPECT_EQ(NbuUnitService::getConversionFromStorageUnit(Nbu::PER_RAW, percent).transform(0.25),
            25.);
  EXPECT_TRUE(NbuUnitService::getConversionFromStorageUnit(QString(), percent).isIdentity());
  EXPECT_THROW(NbuUnitService::getConversionFromStorageUnit(QStringLiteral("?"), percent),
               NbeUserError);
}

TEST(NbuEUnitClass, IsFoundByValueAndKey)
{
  EXPECT_EQ(NbuEUnitClass::fromKey(QStringLiteral("LENGTH")), NbuEUnitClass::LENGTH);
  EXPECT_EQ(NbuEUnitClass::fromValue(NbuEUnitClass::E_MASS), NbuEUnitClass::MASS);
  EXPECT_EQ(NbuEUnitClass(), NbuEUnitClass::NONE);
  EXPECT_THROW(NbuEUnitClass::fromKey(QStringLiteral("TIME")), NbeProgrammingError);
}
