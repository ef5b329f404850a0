#include "basic/data/NbdVariableDouble.h"
#include "basic/data/NbdVariableMulti.h"
#include "basic/error/NbeProgrammingError.h"

#include <gtest/gtest.h>

namespace {

NbdVariableMulti makeMulti(const QList<int> &indices, int nValues)
{
  QList<NbdMacroIndex> macroIndices;
  for (int index : indices)
    macroIndices << NbdMacroIndex(index);
  NbdVariableMulti multi(NbdVariableDetails("simu"), macroIndices, NbdMacroIndexInfo());
  multi.resizeAndFill(nValues);
  for (int rank = 0; rank < indices.size(); ++rank) {
    for (int i = 0; i < nValues; ++i)
      multi.setRealizationValue(rank, i, 100. * indices[rank] + i);
  }
  return multi;
}

}  // namespace

TEST(VariableMulti, SingleValuesAreThoseOfTheCurrentRealization)
{
  NbdVariableMulti multi = makeMulti({1, 4, 9}, 3);
  EXPECT_EQ(multi.getValue(2), 102.);
  multi.setCurrentRealizationIndex(NbdMacroIndex(9));
  EXPECT_EQ(multi.getCurrentRealizationRank(), 2);
  EXPECT_EQ(multi.getValue(2), 902.);
  multi.setToUndefined(1);
  EXPECT_EQ(multi.getNDefined(), 2);
  EXPECT_EQ(multi.getMeanValue(), 901.);
  EXPECT_EQ(multi.getAllValues(1), (QVector<double>{101., 401., NbbGlobal::D_FFFF}));
  EXPECT_THROW(multi.setCurrentRealizationIndex(NbdMacroIndex(2)), NbeProgrammingError);
  EXPECT_THROW(multi.setCurrentRealizationRank(3), NbeProgrammingError);
  EXPECT_THROW(multi.setAllValues(0, {1., 2.}), NbeProgrammingError);
}

TEST(VariableMulti, AppendsOneValueToAllColumns)
{
  NbdVariableMulti multi = makeMulti({1, 2}, 1);
  multi.setCurrentRealizationRank(1);
  multi.appendValue(7.);
  EXPECT_EQ(multi.getAllValues(1), (QVector<double>{NbbGlobal::D_FFFF, 7.}));
  multi.setAllValues(1, {5., 6.});
  EXPECT_EQ(multi.getArrayConst(0)[1], 5.f);
  EXPECT_EQ(multi.getArrayConst(1)[1], 6.f);
}

TEST(VariableMulti, CopiesTheCurrentColumnOrAllMatchingOnes)
{
  NbdVariableMulti source = makeMulti({2, 3, 5}, 4);
  NbdVariableMulti target = makeMulti({5, 7, 2}, 4);
  source.setCurrentRealizationRank(1);
  target.setCurrentRealizationRank(1);
  target.copyValuesFrom(source, 1, 0, 2);
  EXPECT_EQ(target.getAllValues(0), (QVector<double>{500., 301., 200.}));

  target.copySamplesFrom(source, 3, 1, 1);
  EXPECT_EQ(target.getAllValues(1), (QVector<double>{503., 302., 203.}));

  NbdVariableDouble plain("plain");
  plain.resizeAndFill(4);
  plain.copyValuesFrom(source, 0, 0, 4);
  EXPECT_EQ(plain.getValue(3), 303.);
}

TEST(VariableMulti, KeepsColumnsWhenRealizationsAreAdded)
{
  NbdVariableMulti multi = makeMulti({1, 2}, 3);
  multi.setCurrentRealizationRank(1);
  multi.setNRealizations(4);
  EXPECT_EQ(multi.getAllValues(2),
            (QVector<double>{102., 202., NbbGlobal::D_FFFF, NbbGlobal::D_FFFF}));
  multi.setRealizationValue(2, 0, 1.);
  EXPECT_EQ(multi.getRealizationValue(3, 0), NbbGlobal::D_FFFF);
  multi.setNRealizations(1);
  EXPECT_EQ(multi.getCurrentRealizationRank(), 0);
  EXPECT_EQ(multi.getRealizationIndices(), QList<NbdMacroIndex>{NbdMacroIndex(1)});
}

TEST(VariableMulti, NeedsConsistentIndicesAndARealizationToRead)
{
  const QList<NbdMacroIndex> twice = {NbdMacroIndex(1), NbdMacroIndex(1)};
  EXPECT_THROW(NbdVariableMulti(NbdVariableDetails(), twice, NbdMacroIndexInfo()),
               NbeProgrammingError);
  NbdVariableMulti empty;
  empty.resizeAndFill(3);
  EXPECT_EQ(empty.getNValues(), 3);
  EXPECT_THROW(empty.getValue(0), NbeProgrammingError);
  EXPECT_THROW(empty.setMacroIndex(NbdMacroIndexInfo(), NbdMacroIndex(1)), NbeProgrammingError);
}
