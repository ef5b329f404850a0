#include "geos/stats/NgcVarioMap.h"

#include "basic/data/NbdVariableDouble.h"
#include "basic/data/NbdVariableInt64.h"
#include "support/VariogramOracle.h"

#include <numeric>

using namespace variogramtest;

namespace {

NgmVarioMap compute(const Data &data, int nVariables, int nThreads)
{
  NgcVarioMap calculator(4, 6, 4, NbgVector3D(40., 25., 12.), NbgRotation(30., 10., 0.), nVariables,
                         Nbd::Role::V);
  calculator.setInputDataSet(makeDataSet(data, nVariables));
  calculator.setNThread(nThreads);
  calculator.execute();
  EXPECT_TRUE(calculator.isCompleted()) << qPrintable(calculator.getErrorMessage());
  EXPECT_EQ(calculator.getCounter(), calculator.getCounterMax());
  return calculator.getGvm();
}

}  // namespace

TEST(NgcVarioMap, HoldsAllPairsOfSamplesThatAreNotMasked)
{
  Data data = randomData(150, 2, true);
  for (int i = 0; i < data.count(); ++i)
    data.mask.push_back(i % 13 == 5 ? 1. : 0.5);
  NgmVarioMap expected(4, 6, 4, NbgVector3D(40., 25., 12.), NbgRotation(30., 10., 0.), 2);
  for (int a = 0; a < data.count(); ++a) {
    for (int b = 0; b < a; ++b) {
      if (data.mask[a] == 1. || data.mask[b] == 1.)
        continue;
      const NbgVector3D h(data.x[b] - data.x[a], data.y[b] - data.y[a], data.z[b] - data.z[a]);
      const NbgVector3D world =
          expected.getRot().localToWorld(expected.oriented(expected.toFrame(h)));
      for (int i = 0; i < 2; ++i) {
        for (int j = i; j < 2; ++j) {
          const Column &vi = data.variables[i];
          const Column &vj = data.variables[j];
          if (isDefined(vi[a]) && isDefined(vi[b]) && isDefined(vj[a]) && isDefined(vj[b]))
            expected.addPair(i, j, world, (vi[a] - vi[b]) * (vj[a] - vj[b]));
        }
      }
    }
  }
  expected.normalize();
  const NgmVarioMap map = compute(data, 2, 2);
  for (int i = 0; i < 2; ++i) {
    for (int j = i; j < 2; ++j) {
      EXPECT_EQ(map.getNPairs(i, j).getVector(), expected.getNPairs(i, j).getVector());
      EXPECT_EQ(map.getNPairsVertical(i, j).getVector(),
                expected.getNPairsVertical(i, j).getVector());
      for (int node = 0; node < map.getGrid().getNSamples(); ++node) {
        const double value = map.getVarioSum(i, j).getValueAsType(node);
        const double other = expected.getVarioSum(i, j).getValueAsType(node);
        if (isDefined(other))
          EXPECT_NEAR(value, other, 1e-11 * (1. + std::fabs(other)));  // sums in another order
        else
          EXPECT_FALSE(isDefined(value));
      }
    }
  }
}

TEST(NgcVarioMap, MasksNearOneLeaveOutAndNeitherMasksNorWeightsWeigh)
{
  Data data;
  data.x = {0., 3., 6.};
  data.y = data.z = {0., 0., 0.};
  data.variables = {{1., 3., 8.}};
  data.weights = {5., 0., 2.};
  const auto sums = [&](double mask) {
    data.mask = {0.5, 0., mask};
    NgcVarioMap calculator(3, 2, 1, NbgVector3D(10., 10., 10.), NbgRotation(), 1, Nbd::Role::V);
    calculator.setInputDataSet(makeDataSet(data, 1));
    calculator.execute();
    EXPECT_TRUE(calculator.isCompleted()) << qPrintable(calculator.getErrorMessage());
    const NbdVariableInt64 &counts = calculator.getGvm().getNPairs(0, 0);
    const std::vector<qint64> n = counts.getVector();
    const NbdDataTable curve = calculator.getGvm().getVariogramData(0, 0, 0., 0.);
    return std::make_pair(std::accumulate(n.begin(), n.end(), qint64(0)),
                          curve.getVarDouble(Nbd::Role::VARIO)->getValue(1));
  };
  // Distances of 3, 3 and 6 in the class from 2 to 6, its end included.
  EXPECT_EQ(sums(1. - 2e-5), std::make_pair(qint64(3), (4. + 25. + 49.) / 6.));
  EXPECT_EQ(sums(1. - 5e-6), std::make_pair(qint64(1), 2.));
  EXPECT_EQ(sums(1. + 5e-6), std::make_pair(qint64(1), 2.));
}

TEST(NgcVarioMap, DoesNotDependOnThreadsToTheLastBitNorOnTheOrderOfSamples)
{
  Data data = randomData(4300, 1, true);
  for (Column *column : {&data.x, &data.y, &data.z}) {
    for (double &value : *column)
      value = std::floor(value * 4096.) / 4096. * 8.;
  }
  const NgmVarioMap expected = compute(data, 1, 1);
  EXPECT_GT(expected.getVarioSum(0, 0).getNDefined(), 20);
  for (const int nThreads : {2, 8})
    EXPECT_EQ(compute(data, 1, nThreads).getVarioSum(0, 0).getVector(),
              expected.getVarioSum(0, 0).getVector());

  for (Column *column : {&data.x, &data.y, &data.z, &data.variables[0]})
    std::reverse(column->begin(), column->end());
  EXPECT_EQ(compute(data, 1, 2).getNPairs(0, 0).getVector(), expected.getNPairs(0, 0).getVector());
}

TEST(NgcVarioMap, SamplesWithoutAPlaceMakeNoPairs)
{
  Data data;
  data.x = {UNUSED, 0., UNUSED};
  data.y = {0., 0., 2.};
  data.z = {0., 0., 0.};
  data.variables = {{1., 3., 5.}};
  const std::vector<qint64> counts = compute(data, 1, 1).getNPairs(0, 0).getVector();
  EXPECT_EQ(std::accumulate(counts.begin(), counts.end(), qint64(0)), 0);
}

TEST(NgcVarioMap, NeedsAsManyVariablesAsTheMap)
{
  const Data data = randomData(20, 2, true);
  NgcVarioMap calculator(2, 2, 1, NbgVector3D(1., 1., 1.), NbgRotation(), 1, Nbd::Role::V);
  calculator.setInputDataSet(makeDataSet(data, 2));
  calculator.execute();
  EXPECT_FALSE(calculator.isCompleted());
}
