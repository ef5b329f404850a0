#include "basic/calc/NbcProportions.h"
#include "basic/data/NbdEVarType.h"
#include "basic/data/NbdVarTypeFlags.h"
#include "basic/data/NbdVariableAlpha.h"
#include "basic/data/NbdVariableColor.h"
#include "basic/data/NbdVariableDouble.h"
#include "basic/data/NbdVariableEnum.h"
#include "basic/data/NbdVariableFactory.h"
#include "basic/data/NbdVariableFloat.h"
#include "basic/data/NbdVariableInt32.h"
#include "basic/data/NbdVariableInt64.h"
#include "basic/data/NbdVariableMulti.h"
#include "basic/data/NbdVariablePoint3D.h"
#include "basic/data/NbdVariableSelection.h"
#include "basic/error/NbeProgrammingError.h"
#include "support/SerializationFuzz.h"

#include <gtest/gtest.h>

#include <thread>

namespace {

NbdEnumCatalog makeRocks()
{
  NbdEnumCatalog rocks;
  rocks.setCategory(3, QStringLiteral("granite"));
  rocks.setCategory(7, QStringLiteral("schist"));
  return rocks;
}

/// The numbers 0, 1, 2 ... as values of any type; a selection holds 0, 1, 1 ...
QVariant numberedValue(Nbd::EVariableType type, int i)
{
  if (type == Nbd::TYPE_POINT)
    return QVariantList{double(i), 2. * i, 3. * i};
  if (type == Nbd::TYPE_COLOR)
    return QVariant(uint(i + 1));
  if (type == Nbd::TYPE_BOOLEAN)
    return QVariant(i > 0);
  if (type == Nbd::TYPE_ALPHA)
    return QVariant(QString::number(i));
  return QVariant(i);
}

std::unique_ptr<NbdAVariable> makeNumbered(Nbd::EVariableType type, int n)
{
  auto variable = NbdVariableFactory::createVariable(type, NbdVariableDetails("numbered"));
  if (auto *multi = dynamic_cast<NbdVariableMulti *>(variable.get()))
    multi->setNRealizations(2);
  for (int i = 0; i < n; ++i)
    variable->appendValue(numberedValue(type, i));
  return variable;
}

std::vector<QVariant> valuesOf(const NbdAVariable &variable)
{
  std::vector<QVariant> values;
  for (int i = 0; i < variable.getNValues(); ++i)
    values.push_back(variable.getVariant(i));
  return values;
}

std::vector<QVariant> numberedValues(Nbd::EVariableType type, const std::vector<int> &numbers)
{
  std::vector<QVariant> values;
  for (int i : numbers)
    values.push_back(numberedValue(type, i));
  return values;
}

std::vector<Nbd::EVariableType> allTypes()
{
  std::vector<Nbd::EVariableType> types;
  for (const NbdEVarType &type : NbdEVarType::getAll())
    types.push_back(type.toUdVarType());
  return types;
}

}  // namespace

class VariableOfEveryType : public testing::TestWithParam<Nbd::EVariableType>
{
};

std::string typeName(const testing::TestParamInfo<Nbd::EVariableType> &parameter)
{
  return NbdEVarType::fromUdVarType(parameter.param).getKey();
}

INSTANTIATE_TEST_SUITE_P(Variable, VariableOfEveryType, testing::ValuesIn(allTypes()), typeName);

TEST_P(VariableOfEveryType, IsMadeByTheFactoryWithItsType)
{
  const auto variable = makeNumbered(GetParam(), 3);
  EXPECT_EQ(variable->getVariableType(), GetParam());
  EXPECT_EQ(variable->getName(), "numbered");
  EXPECT_EQ(variable->getNValues(), 3);
  const bool isNumeric = NbdVarTypeFlags::NUMERIC.testFlag(NbdEVarType::fromUdVarType(GetParam()));
  EXPECT_EQ(variable->isNumeric(), isNumeric);
}

TEST_P(VariableOfEveryType, NewValuesAreUndefinedOrSelected)
{
  const bool isSelection = GetParam() == Nbd::TYPE_BOOLEAN;
  const auto variable = makeNumbered(GetParam(), 2);
  variable->resizeAndFill(4);
  variable->insertUndefinedValues(0, 1);
  EXPECT_EQ(variable->getNValues(), 5);
  EXPECT_EQ(variable->getNUndefined(), isSelection ? 0 : 3);
  EXPECT_EQ(variable->isUndefined(0), !isSelection);
  EXPECT_EQ(variable->isUndefined(1), false);
  EXPECT_EQ(variable->getVariant(4).toBool(), isSelection);

  variable->setToUndefined(1);
  EXPECT_EQ(variable->hasUndefined(), !isSelection);
  EXPECT_EQ(variable->getVariant(1).toBool(), false);
}

TEST_P(VariableOfEveryType, KeepsOrderWhenSamplesMove)
{
  const Nbd::EVariableType type = GetParam();
  const auto variable = makeNumbered(type, 6);
  variable->removeValues(1, 2);
  EXPECT_EQ(valuesOf(*variable), numberedValues(type, {0, 3, 4, 5}));

  const unsigned char keep[] = {1, 0, 1, 1};
  variable->compress(keep);
  EXPECT_EQ(valuesOf(*variable), numberedValues(type, {0, 4, 5}));

  const int ranks[] = {2, 0, 1};
  variable->permute(ranks);
  EXPECT_EQ(valuesOf(*variable), numberedValues(type, {5, 0, 4}));

  const int positions[] = {1, 1, 0, 2};
  variable->extract(positions, 4);
  EXPECT_EQ(valuesOf(*variable), numberedValues(type, {0, 0, 5, 4}));

  variable->shrink(1);
  EXPECT_EQ(valuesOf(*variable), numberedValues(type, {0}));
}

TEST_P(VariableOfEveryType, CopiesAreIndependent)
{
  const Nbd::EVariableType type = GetParam();
  const auto variable = makeNumbered(type, 3);
  const auto copy = variable->clone();
  copy->setVariant(0, numberedValue(type, 2));
  EXPECT_EQ(valuesOf(*variable), numberedValues(type, {0, 1, 2}));
  EXPECT_EQ(valuesOf(*copy), numberedValues(type, {2, 1, 2}));
}

TEST_P(VariableOfEveryType, CopiesRangesOverlappingOnes)
{
  const Nbd::EVariableType type = GetParam();
  const auto source = makeNumbered(type, 6);
  const auto target = makeNumbered(type, 6);
  target->copyValuesFrom(*source, 3, 0, 3);
  EXPECT_EQ(valuesOf(*target), numberedValues(type, {3, 4, 5, 3, 4, 5}));

  source->copyValuesFrom(*source, 0, 1, 5);
  EXPECT_EQ(valuesOf(*source), numberedValues(type, {0, 0, 1, 2, 3, 4}));

  EXPECT_THROW(target->copyValuesFrom(*source, 4, 0, 3), NbeProgrammingError);
  EXPECT_THROW(target->copyValuesFrom(*source, 0, -1, 3), NbeProgrammingError);
  EXPECT_THROW(target->copyValuesFrom(*source, 0, 0, 7), NbeProgrammingError);
}

TEST_P(VariableOfEveryType, SortsStablyWithUndefinedLast)
{
  const Nbd::EVariableType type = GetParam();
  if (type == Nbd::TYPE_BOOLEAN)
    return;
  auto variable = makeNumbered(type, 4);
  variable->appendValue(QVariant());
  const int order[] = {2, 4, 0, 1, 3, 1};
  variable->extract(order, 6);  // 2, undefined, 0, 1, 3, 1
  EXPECT_EQ(variable->getSortedPositions(true), (std::vector<int>{2, 3, 5, 0, 4, 1}));
  EXPECT_EQ(variable->getSortedPositions(false), (std::vector<int>{4, 0, 3, 5, 2, 1}));
}

TEST_P(VariableOfEveryType, StreamsKeepEverything)
{
  const auto variable = makeNumbered(GetParam(), 5);
  variable->appendValue(QVariant());
  if (auto *codes = dynamic_cast<NbdVariableEnum *>(variable.get()))
    codes->setCatalog(makeRocks());
  if (!variable->isMultiRealizations())
    variable->setMacroIndex(NbdMacroIndexInfo(), NbdMacroIndex(4));

  const auto read = NbdVariableFactory::createVariable(GetParam(), NbdVariableDetails("other"));
  test::fromBytes(test::toBytes(*variable), *read);
  EXPECT_EQ(valuesOf(*read), valuesOf(*variable));
  EXPECT_EQ(read->getDetails(), variable->getDetails());
  EXPECT_EQ(read->getRealizationIndices(), variable->getRealizationIndices());
  test::fuzzSerialization(*variable, *read);
}

TEST(Variable, ArraysLeaveCopiesAlone)
{
  NbdVariableDouble variable("v");
  variable.setValues({1., 2., 3.});
  const NbdVariableDouble copy(variable);
  EXPECT_TRUE(copy.isSharedWith(variable));
  EXPECT_EQ(copy.getArrayConst(), variable.getArrayConst());

  double *values = variable.getArray();
  EXPECT_EQ(variable.getArray(), values);
  values[1] = 20.;
  EXPECT_EQ(copy.getValue(1), 2.);
  EXPECT_EQ(variable.getValue(1), 20.);

  NbdVariableDouble detached(copy);
  detached.detachData();
  EXPECT_FALSE(detached.isSharedWith(copy));
  EXPECT_EQ(detached.getVector(), copy.getVector());
}

TEST(Variable, CopiesMayBeWrittenFromSeveralThreads)
{
  NbdVariableDouble origin("v");
  origin.resizeAndFill(1000, 1.);
  std::vector<double> sums(8, 0.);
  std::vector<std::thread> threads;
  for (int t = 0; t < 8; ++t) {
    threads.emplace_back([&sums, t, copy = NbdVariableDouble(origin)]() mutable {
      for (int round = 0; round < 100; ++round) {
        NbdVariableDouble own(copy);
        own.getArray()[round] = t;
        copy = own;
      }
      sums[t] = copy.computeSum();
    });
  }
  for (std::thread &thread : threads)
    thread.join();
  for (int t = 0; t < 8; ++t)
    EXPECT_EQ(sums[t], 900. + 100. * t);
  EXPECT_EQ(origin.computeSum(), 1000.);
}

TEST(Variable, CopiesBetweenTypesByTheRulesOfConversion)
{
  NbdVariableDouble numbers("d");
  numbers.setValues({0., 2.5, NbbGlobal::D_FFFF, -7.});
  NbdVariableInt32 integers("i");
  integers.resizeAndFill(4);
  integers.copyValuesFrom(numbers, 0, 0, 4);
  EXPECT_EQ(integers.getVector(), (std::vector<int>{0, 3, NbbGlobal::I32_FFFF, -7}));

  NbdVariableSelection selection("s");
  selection.resizeAndFill(4);
  selection.copyValuesFrom(numbers, 0, 0, 4);
  EXPECT_EQ(selection.getVector(), (std::vector<unsigned char>{0, 1, 0, 1}));

  NbdVariableAlpha texts("t");
  texts.resizeAndFill(4);
  texts.copyValuesFrom(numbers, 0, 0, 4);
  EXPECT_EQ(texts.getValue(1), "2.5");
  EXPECT_TRUE(texts.isUndefined(2));

  NbdVariablePoint3D points("p");
  points.resizeAndFill(4);
  EXPECT_THROW(points.copyValuesFrom(numbers, 0, 0, 4), NbeProgrammingError);
  EXPECT_THROW(numbers.copyValuesFrom(points, 0, 0, 4), NbeProgrammingError);
  EXPECT_EQ(numbers.getValue(1), 2.5);
}

TEST(Variable, CategoriesAreCopiedByNameToTexts)
{
  NbdVariableEnum codes("rock");
  codes.setCatalog(makeRocks());
  for (int code : {7, 3, 9})
    codes.appendValue(code);
  NbdVariableAlpha names("name");
  names.resizeAndFill(3);
  names.copyValuesFrom(codes, 0, 0, 3);
  EXPECT_EQ(names.getVector(), (std::vector<QString>{"schist", "granite", ""}));

  NbdVariableEnum back("rock");
  back.setCatalog(makeRocks());
  back.resizeAndFill(3);
  back.copyValuesFrom(names, 0, 0, 3);
  EXPECT_EQ(back.getVector(), (std::vector<qint16>{7, 3, NbbGlobal::I16_FFFF}));
  EXPECT_EQ(back.getText(0), "schist");
  EXPECT_EQ(back.getText(2), NbbGlobal::STR_NA);
}

TEST(Variable, CountsCategoriesApartFromUndefinedOnes)
{
  NbdVariableInt32 codes("code");
  codes.setValues({5., 2., 5., NbbGlobal::D_FFFF, 5.});
  const NbcProportions proportions = codes.getProportions();
  EXPECT_EQ(proportions.getValues(), (QList<int>{2, 5}));
  EXPECT_EQ(proportions.getNbUnits(5), 3);
  EXPECT_EQ(proportions.getProportion(5), 0.75);
  EXPECT_EQ(proportions.getProportion(2), 0.25);
  EXPECT_EQ(proportions.getNbUnits(NbbGlobal::I32_FFFF), 1);
}

TEST(Variable, SelectionCountsAndFindWork)
{
  NbdVariableSelection selection("s");
  selection.resizeAndFill(5);
  selection.setBoolValue(2, false);
  selection.setValue(4, NbbGlobal::D_FFFF);
  EXPECT_EQ(selection.getNSelected(), 3);
  EXPECT_EQ(selection.getValue(4), 0.);

  NbdVariableInt64 numbers("sn");
  numbers.setVector({2, 3, 5, 8, 13});
  EXPECT_EQ(numbers.findInt(8), 3);
  EXPECT_EQ(numbers.findInt(9), -1);
  for (qint64 value = 0; value < 15; ++value)
    EXPECT_EQ(numbers.findIntSorted(value), numbers.findInt(value)) << value;
  EXPECT_EQ(numbers.find(2, 1), -1);
}

TEST(Variable, FactoryRefusesTypesWithoutStorage)
{
  const NbdVariableDetails details;
  for (auto type : {Nbd::TYPE_NONE, Nbd::TYPE_RESERVED_64, Nbd::TYPE_RESERVED_128})
    EXPECT_THROW(NbdVariableFactory::createVariable(type, details), NbeProgrammingError);
  EXPECT_THROW(NbdVariableFactory::createVariableNumeric(Nbd::TYPE_ENUM, details),
               NbeProgrammingError);
  EXPECT_TRUE(NbdVariableFactory::createVariableNumeric(Nbd::TYPE_BOOLEAN, details));
  EXPECT_THROW(NbdEVarType::fromUdVarType(Nbd::TYPE_RESERVED_64), NbeProgrammingError);
}

TEST(Variable, CatalogNamesAreUnique)
{
  NbdEnumCatalog rocks = makeRocks();
  EXPECT_THROW(rocks.setCategory(1, QStringLiteral("schist")), NbeProgrammingError);
  EXPECT_THROW(rocks.setCategory(NbbGlobal::I16_FFFF, QStringLiteral("x")), NbeProgrammingError);
  rocks.setCategory(7, QStringLiteral("gneiss"));
  EXPECT_EQ(rocks.getCode(QStringLiteral("schist")), NbbGlobal::I16_FFFF);
  EXPECT_EQ(rocks.addCategory(QStringLiteral("gneiss")), 7);
  EXPECT_EQ(rocks.addCategory(QStringLiteral("basalt")), 8);
  EXPECT_EQ(NbdEnumCatalog().addCategory(QStringLiteral("first")), 1);
  test::fuzzSerialization(rocks);
}
