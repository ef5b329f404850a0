#include "basic/base/NbbStringFormat.h"

#include "basic/base/NbbUserStringFormats.h"
#include "basic/error/NbeProgrammingError.h"
#include "basic/unit/NbuEUnitClass.h"
#include "support/SerializationFuzz.h"

#include <gtest/gtest.h>

#include <clocale>

namespace {

std::string text(const NbbEFormat &format, int digits, double value)
{
  return NbbStringFormat(format, digits).valueToString(value).toStdString();
}

}  // namespace

TEST(NbbStringFormat, WritesEachFormat)
{
  EXPECT_EQ(text(NbbEFormat::DECIMAL, 2, 12.5), "12.50");
  EXPECT_EQ(text(NbbEFormat::DECIMAL, 2, -0.001), "0.00");
  EXPECT_EQ(text(NbbEFormat::DECIMAL, 0, 1e20), "100000000000000000000");
  EXPECT_EQ(text(NbbEFormat::FREE, 4, 12345.6), "1.235e+04");
  EXPECT_EQ(text(NbbEFormat::INTEGER, 3, -2.5), "-3");
  EXPECT_EQ(text(NbbEFormat::INTEGER, 3, -0.2), "0");
  EXPECT_EQ(text(NbbEFormat::SCIENTIFIC, 2, 12.5), "1.25e+01");
  EXPECT_EQ(text(NbbEFormat::SEMIFREE, 4, 12.5), "12.5");
  EXPECT_EQ(text(NbbEFormat::SEMIFREE, 4, 1200.), "1200");
  EXPECT_EQ(text(NbbEFormat::SEMIFREE, 0, 1200.), "1200");
  EXPECT_EQ(text(NbbEFormat::FREE, 6, NbbGlobal::D_FFFF), "N/A");
}

TEST(NbbStringFormat, DebugFormatComesBackExactly)
{
  for (double value : {1. / 3., 0.1, 6.02214076e23, -4.9e-324})
    EXPECT_EQ(NbbStringFormat::getDebugFormat().valueToString(value).toDouble(), value);
}

TEST(NbbStringFormat, ConvertsToTheDisplayUnitAndSquaresItForVariances)
{
  NbbStringFormat format(NbbEFormat::DECIMAL, 1);
  format.setDisplayUnit(QStringLiteral("%"), NbuUnitTransfo(100., 5.));
  EXPECT_EQ(format.valueToStringWithUnit(0.25), QStringLiteral("30.0 %"));
  EXPECT_EQ(format.valueToStringWithUnit(NbbGlobal::D_FFFF), NbbGlobal::STR_NA);

  const NbbStringFormat variance = NbbStringFormat::createForVariance(format);
  EXPECT_EQ(variance.valueToStringWithUnit(0.25), QStringLiteral("2500.0 (%)²"));
  EXPECT_THROW(format.setDisplayUnit(QString(), NbuUnitTransfo(0.)), NbeProgrammingError);
}

TEST(NbbStringFormat, FormatFollowsTheVariableType)
{
  EXPECT_EQ(NbbStringFormat::createFromVarType(Nbd::TYPE_INT64).getFormat(), NbbEFormat::INTEGER);
  EXPECT_EQ(NbbStringFormat::createFromVarType(Nbd::TYPE_DOUBLE).valueToString(1. / 3.),
            QStringLiteral("0.33333333"));
}

TEST(NbbStringFormat, StreamIsSafe)
{
  NbbStringFormat format(NbbEFormat::SEMIFREE, 3);
  format.setDisplayUnit(QStringLiteral("m³"), NbuUnitTransfo(0.1, -3.));
  test::fuzzSerialization(format);
}

TEST(NbbUserStringFormats, KeepsOneChoicePerClass)
{
  EXPECT_TRUE(NbbUserStringFormats::getDisplayTransfo(NbuEUnitClass::LENGTH).isIdentity());
  EXPECT_EQ(NbbUserStringFormats::getStringFormat(NbuEUnitClass::LENGTH).valueToString(4512345.25),
            QStringLiteral("4512345.25"));

  NbbStringFormat feet(NbbEFormat::DECIMAL, 1);
  feet.setDisplayUnit(QStringLiteral("ft"), NbuUnitTransfo(1. / 0.3048));
  NbbUserStringFormats::setStringFormat(NbuEUnitClass::LENGTH, feet);
  EXPECT_EQ(NbbUserStringFormats::getStringFormat(NbuEUnitClass::LENGTH), feet);
  EXPECT_DOUBLE_EQ(NbbUserStringFormats::getDisplayTransfo(NbuEUnitClass::LENGTH).transform(3.048),
                   10.);
  EXPECT_TRUE(NbbUserStringFormats::getDisplayTransfo(NbuEUnitClass::MASS).isIdentity());
  NbbUserStringFormats::reset();
  EXPECT_TRUE(NbbUserStringFormats::getDisplayTransfo(NbuEUnitClass::LENGTH).isIdentity());
}

TEST(NbbEFormat, IsFoundByValueAndKey)
{
  EXPECT_EQ(NbbEFormat::fromKey(QStringLiteral("SEMIFREE")), NbbEFormat::SEMIFREE);
  EXPECT_EQ(NbbEFormat::fromValue(NbbEFormat::E_FREE), NbbEFormat::FREE);
  EXPECT_THROW(NbbEFormat::fromValue(5), NbeProgrammingError);
  EXPECT_THROW(NbbEFormat::fromKey(QStringLiteral("free")), NbeProgrammingError);
}
