#include "KrigingStudy.h"
#include "geos/interpol/NgcAKrigingWorker.h"
#include "geos/interpol/NgcKriging.h"
#include "geos/interpol/NgmBlock.h"
#include "support/AllocationCounter.h"

#include <gtest/gtest.h>

using namespace krigingtest;

namespace {

/// Counts the allocations of its worker from the target `from` to the last.
class Counting : public NgcKriging
{
public:
  Counting(int from, int last) : NgcKriging(QStringLiteral("KRIGING")), _from(from), _last(last) {}
  ~Counting() override { _finish(); }

  long nAllocations = -1;

protected:
  class Counter : public NgcAKriging::Worker
  {
  public:
    Counter(NgwThreadPool *pool, Counting &calculator)
        : NgcAKriging::Worker(pool, calculator), _calculator(calculator)
    {
    }

  protected:
    void _targetKriged(NbdAData &, int position) override
    {
      if (position == _calculator._from)
        _counter = testsupport::AllocationCounter();
      if (position == _calculator._last)
        _calculator.nAllocations = _counter.count();
    }

  private:
    Counting &_calculator;
    testsupport::AllocationCounter _counter;
  };

  void _initBufferManager() override { _getBufferManager()->setNSamplesPerBuffer(_last + 1); }

  NgwAThread *_createComputingThread(NgwThreadPool *pool) override
  {
    return new Counter(pool, *this);
  }

private:
  int _from;
  int _last;
};

using Configure = std::function<void(NgcKriging &)>;

}  // namespace

TEST(NgcKrigingAllocation, NothingIsAllocatedPerTarget)
{
  constexpr int nData = 60;
  constexpr int nTargets = 700;
  const auto setDrift = [](NgcKriging &kriging) {
    NgmDriftModel drift;
    drift.addDrifts(0, 1, true, true, false);
    NgmExtDriftModel external;
    external.addDrift(1, 0);
    kriging.setDriftModel(drift);
    kriging.setExtDriftModel(external);
  };
  const auto setMeans = [](NgcKriging &kriging) {
    kriging.setKrigingMode(NgcEKrigingMode::EValue::SIMPLE_KRIGING);
    kriging.setSimpleKrigingMean(0, 1.);
    kriging.setSimpleKrigingMean(1, 2.);
    kriging.setFilterNugget(true);
  };
  const auto setBlock = [](NgcKriging &kriging) {
    NgmBlock block(false);
    block.setSize(NbgVector3D(10., 10., 0.));
    block.setDiscretizationPointsNumber(NbgIntVector3D(3, 3, 1));
    kriging.setSupportBlock(block);
  };
  for (const Configure &configure :
       {Configure(setDrift), Configure(setMeans), Configure(setBlock)}) {
    for (const bool moving : {true, false}) {
      Study study(randomPlaces(71, nData, 100.), randomPlaces(72, nTargets, 100.));
      for (int variable = 0; variable < 2; ++variable) {
        study.addData(Nbd::Role::V, QStringLiteral("z%1").arg(variable),
                      randomValues(73 + variable, nData));
        for (const QString &role :
             {Nbd::Role::V, Nbd::Role::STDEV, Nbd::Role::SUM_W, Nbd::Role::SLOPE_ZZSTAR,
              Nbd::Role::KRIG_EFFIC, Nbd::Role::WEIGHT_OF_MEAN, Nbd::Role::NEIGH_MEAN_DIST})
          study.addOutput(role, role + QString::number(variable));
      }
      study.addData(Nbd::Role::EXTDRIFT, QStringLiteral("f"), randomValues(75, nData));
      study.addTargetData(Nbd::Role::EXTDRIFT, QStringLiteral("f"), randomValues(76, nTargets));
      Counting kriging(300, nTargets - 1);  // the workspace has been used
      kriging.setVarioModel(bivariateModel({0.1, 0.05, 0.2}, {1., 0.6, 0.8}, 40.));
      if (moving)
        kriging.setUsingMovingNeighborhood(nearestSamples(16));
      else
        kriging.setUsingUniqueNeighborhood();
      configure(kriging);
      study.krige(kriging);
      EXPECT_EQ(kriging.nAllocations, 0) << (moving ? "moving" : "unique");
    }
  }
}
