#include "basic/base/NbbUserStringFormats.h"
#include "basic/data/NbdVariableDetails.h"
#include "basic/data/NbdVariableDetailsHelper.h"
#include "support/SerializationFuzz.h"

#include <gtest/gtest.h>

using namespace NbdVariableDetailsHelper;

namespace {

NbdVariableDetails makeDetails(const QString &name, const QString &unit, double scale = 1.)
{
  NbdVariableDetails details(name);
  details.setStorageUnit(unit);
  details.setDisplayUnit(unit, NbuUnitTransfo(scale, 3.));
  return details;
}

}  // namespace

TEST(VariableDetails, StreamsKeepEverything)
{
  NbdVariableDetails details = makeDetails(QStringLiteral("Zn"), QStringLiteral("ppm"), 0.5);
  details.setDescription(QStringLiteral("zinc, aqua regia"));
  details.setUnitClass(NbuEUnitClass::PERCENTAGE);
  NbdVariableDetails read;
  EXPECT_NE(read, details);
  test::fromBytes(test::toBytes(details), read);
  EXPECT_EQ(read, details);
  test::fuzzSerialization(details);
}

TEST(VariableDetails, OfAProductMultiplyUnitsAndConversions)
{
  const NbdVariableDetails metres = makeDetails(QStringLiteral("Z"), QStringLiteral("m"), 2.);
  const NbdVariableDetails variance = createDetailsForProduct(QStringLiteral("v"), metres, metres);
  EXPECT_EQ(variance.getName(), "v");
  EXPECT_EQ(variance.getStorageUnit(), QStringLiteral("m²"));
  EXPECT_EQ(variance.getDisplayUnitSymbol(), QStringLiteral("m²"));
  EXPECT_EQ(variance.getDisplayTransfo().transform(10.), 40.);

  const NbdVariableDetails grades = makeDetails(QStringLiteral("Zn"), QStringLiteral("ppm"), 3.);
  const NbdVariableDetails product = createDetailsForProduct(QStringLiteral("p"), metres, grades);
  EXPECT_EQ(product.getStorageUnit(), QStringLiteral("m·ppm"));
  EXPECT_EQ(product.getDisplayTransfo().transform(10.), 60.);

  const NbdVariableDetails plain(QStringLiteral("n"));
  EXPECT_EQ(createDetailsForProduct(QStringLiteral("p"), metres, plain).getStorageUnit(), "m");
}

TEST(VariableDetails, OfDerivedVariablesHaveTheUnitsThatFit)
{
  const NbdVariableDetails metres = makeDetails(QStringLiteral("Z"), QStringLiteral("m"), 2.);
  EXPECT_EQ(createDetailsForLog(QStringLiteral("ln Z"), metres).getDisplayUnitSymbol(), "");
  EXPECT_EQ(createMacroDetails(QStringLiteral("S"), metres).getDisplayUnitSymbol(), "m");
  EXPECT_EQ(createGaussianDetails(QStringLiteral("g")).getUnitClass(), NbuEUnitClass::NONE);
  EXPECT_EQ(createSelectionDetails(QStringLiteral("s")).getStringFormat().valueToString(1.), "1");
  const NbdVariableDetails percent = createPercentDetails(QStringLiteral("p"));
  EXPECT_EQ(percent.getStringFormat().valueToStringWithUnit(0.25), "25 %");
}

TEST(VariableDetails, FollowTheFormatsOfTheUser)
{
  NbbStringFormat feet(NbbEFormat::DECIMAL, 1);
  feet.setDisplayUnit(QStringLiteral("ft"), NbuUnitTransfo(1. / 0.3048));
  NbbUserStringFormats::setStringFormat(NbuEUnitClass::ELEVATION, feet);
  const NbdVariableDetails details = createDetails(QStringLiteral("Z"), NbuEUnitClass::ELEVATION);
  NbbUserStringFormats::reset();
  EXPECT_EQ(details.getUnitClass(), NbuEUnitClass::ELEVATION);
  EXPECT_EQ(details.getStringFormat().valueToStringWithUnit(3.048), "10.0 ft");
}
