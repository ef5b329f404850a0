#pragma once

#include "basic/base/NbbGlobal.h"
#include "basic/data/NbdVariableDouble.h"
#include "basic/data/NbdVariableInt64.h"
#include "basic/interval/NbiIntervalIntLarge.h"
#include "basic/provider/NbpMemoryProviderGridW.h"
#include "basic/provider/NbpMemoryProviderPointsW.h"
#include "geos/NgcEnumGlobal.h"
#include "geos/base/NgcAInterpol.h"
#include "geos/base/NgwAInterpol.h"
#include "geos/data/NgdABufferManager.h"
#include "geos/data/NgdDataSetGrid.h"
#include "geos/data/NgdDataSetPoints.h"
#include "geos/data/NgdNeighborhoodContext.h"
#include "geos/interpol/NgmAInterpolTestResult.h"
#include "geos/interpol/NgmBlock.h"
#include "geos/interpol/NgmNeighborhoodMoving.h"
#include "support/TestData.h"

#include <QString>

#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <memory>
#include <set>
#include <vector>

/// An interpolation by inverse squared distances, for what the base of the interpolations does.
namespace interpoltest {

inline double rawWeight(const NbgVector3D &sample, const NbgVector3D &target)
{
  const NbgVector3D d = sample - target;
  return 1. / (1. + d.x() * d.x() + d.y() * d.y() + d.z() * d.z());
}

class TestResult : public NgmAInterpolTestResult
{
public:
  void reset() override
  {
    NgmAInterpolTestResult::reset();
    estimate = NbbGlobal::D_FFFF;
  }
  bool hasResults() const override { return NbbGlobal::isDefined(estimate); }

  double estimate = NbbGlobal::D_FFFF;
};

/// Role V of the output receives the estimate, N the number of neighbors.
class InverseDistances : public NgcAInterpol
{
public:
  explicit InverseDistances(bool unfoldedBlocks = false)
      : NgcAInterpol(QStringLiteral("INVERSE"), unfoldedBlocks)
  {
    _setEnableFaults(true);
    _addVariableOrMacroRule(Nbd::Dataset::INPUT, Nbd::Role::V, Nbd::ACCESS_READ, Nbd::TYPE_DOUBLE,
                            1, 1);
    _addVariableOrMacroRule(Nbd::Dataset::OUTPUT, Nbd::Role::V, Nbd::ACCESS_WRITE, Nbd::TYPE_DOUBLE,
                            1, 1);
    _addVariableRule(Nbd::Dataset::OUTPUT, Nbd::Role::N, Nbd::ACCESS_WRITE, Nbd::TYPE_DOUBLE, 0, 1);
  }
  ~InverseDistances() override { _finish(); }

  using NgcAInterpol::_setEnableFaults;
  using NgcAInterpol::_setPerSampleProgress;
  using NgcAInterpol::_setStrictDimension;

  /// 0 leaves the size of the buffers to the calculator.
  int samplesPerBuffer = 0;

  /// Targets that fail.
  std::set<qint64> failing;

  /// Called by the workers with the sample number of each target.
  std::function<void(qint64)> onTarget;

  /// Values to write to the input, by sample number of the target.
  std::function<QMap<qint64, QList<double>>(qint64, double)> inputWrite;

  /// Roles of the output that the test of one target leaves out.
  QStringList untestedRoles;

  /// A worker of another kind, for the test of one target.
  bool makesForeignWorkers = false;

  // What the last run did.
  int nPreLaunch = 0;
  int nPostLaunch = 0;
  int nBuffers = 0;
  int mostLoaded = 0;
  std::vector<NbgBox> targetBoxes;
  bool usedMoving = false;

protected:
  void _prepareRun() override
  {
    nPreLaunch = nPostLaunch = mostLoaded = 0;
    targetBoxes.clear();
    NgcAInterpol::_prepareRun();
    usedMoving = isUsingMoving();
  }
  void _initBufferManager() override
  {
    if (samplesPerBuffer > 0)
      _getBufferManager()->setNSamplesPerBuffer(samplesPerBuffer);
    else
      NgcAInterpol::_initBufferManager();
    nBuffers = _getBufferManager()->getNBuffers();
  }
  void _preLaunchThreads() override
  {
    ++nPreLaunch;
    targetBoxes.push_back(_getTargetsBox());
    mostLoaded = std::max(mostLoaded, getAllInputData().getNSamples());
  }
  void _postLaunchThreads() override { ++nPostLaunch; }
  void _prepareTestOutputDataSet(NgdADataSet &output) override { output.clearRoles(untestedRoles); }
  NgwAThread *_createComputingThread(NgwThreadPool *pool) override;

private:
  class Worker;
  class ForeignWorker;
};

class InverseDistances::ForeignWorker : public NgwAThread
{
public:
  using NgwAThread::NgwAThread;

protected:
  void _run() override {}
};

class InverseDistances::Worker : public NgwAInterpol
{
public:
  Worker(NgwThreadPool *pool, InverseDistances &calculator)
      : NgwAInterpol(pool, calculator), _calculator(calculator)
  {
  }

protected:
  void _initialize() override {}

  void _processBuffer(NbdAData &buffer) override
  {
    if (_isFirst)
      _initializeNeighborhood(
          _context, buffer.getDataTableConst(),
          _calculator.getAllInputData().getDataTableConst().getVarsNumeric(Nbd::Role::V));
    else if (_calculator.isUsingMoving())
      _context.setTargetData(buffer.getDataTableConst(), {});
    _isFirst = false;
    for (const int position : buffer.getSelectedPositions()) {
      _checkForStop();
      _estimate(buffer, position);
      _countTargets(1);
    }
  }

private:
  void _estimate(NbdAData &buffer, int position)
  {
    const qint64 number = buffer.getSampleNumber(position);
    const NbgVector3D location = buffer.getLocation(position);
    double &slot = buffer.getDataTable().getVarDoubleRef(Nbd::Role::V).getArray()[position];
    slot = NbbGlobal::D_FFFF;
    NbdVariableDouble *count = buffer.getDataTable().getVarDouble(Nbd::Role::N);
    if (count)
      count->setToUndefined(position);
    if (_calculator.onTarget)
      _calculator.onTarget(number);
    if (_calculator.failing.count(number)) {
      _calculator.addInterpolError(QStringLiteral("Target %1 failed").arg(number),
                                   Ngc::INTERPOL_ERROR_NEIGHBORHOOD, number);
      return;
    }
    int level = -1;
    const NgcENeighborhoodErrorCode &outcome =
        _context.setTargetLocation(location, position, number, &level);
    if (NgmAInterpolTestResult *result = _getTestResult()) {
      result->setNeighborhood(outcome, level, _context.getNestedNeighName(level));
      result->setNeighbors(_context.getNeighbors());
    }
    if (outcome != NgcENeighborhoodErrorCode::NEIGH_SUCCESS)
      return;
    slot = _average(location);
    if (count)
      count->getArray()[position] = _context.getNNeighbors();
    _writeBeside(buffer, position, slot);
  }

  double _average(const NbgVector3D &location)
  {
    const int n = _context.getNNeighbors();
    const double *values = _context.getMainValues(0);
    _weights.resize(std::size_t(n));
    double total = 0.;
    for (int i = 0; i < n; ++i)
      total += _weights[i] = rawWeight(_context.getNeighbors().getLocation(i), location);
    double estimate = 0.;
    for (int i = 0; i < n; ++i)
      estimate += (_weights[i] /= total) * values[i];
    return estimate;
  }

  void _writeBeside(const NbdAData &buffer, int position, double estimate)
  {
    const qint64 number = buffer.getSampleNumber(position);
    const int n = _context.getNNeighbors();
    if (_hasWeights())
      _addWeights(n, _context.getSN()->getArrayConst(), _weights.data());
    if (_calculator.inputWrite)
      _calculator.saveInputWriteVars(_calculator.inputWrite(number, estimate));
    if (auto *result = dynamic_cast<TestResult *>(_getTestResult()))
      result->estimate = estimate;
    if (!_hasSampout())
      return;
    _beginSampoutTarget(_context, buffer, position);
    for (int i = 0; i < n; ++i)
      _addSampoutRow(i, 0, _context.getMainValues(0)[i], _weights[i], NbbGlobal::D_FFFF);
    _endSampoutTarget();
  }

  InverseDistances &_calculator;
  NgdNeighborhoodContext _context;
  bool _isFirst = true;
  std::vector<double> _weights;
};

inline NgwAThread *InverseDistances::_createComputingThread(NgwThreadPool *pool)
{
  if (makesForeignWorkers)
    return new ForeignWorker(pool);
  return new Worker(pool, *this);
}

/// A study in the box [0, 250) x [0, 250) x [0, 15): samples with the variable "z", some of them
/// not selected, and a grid of 25 x 25 x 3 cells with the outputs "estimate" and "count", some of
/// its nodes not selected.
struct Study
{
  QSharedPointer<NbpMemoryProviderPointsW> samples;
  QSharedPointer<NbpMemoryProviderGridW> grid;

  static constexpr int nSamples = 300;

  Study()
      : samples(QSharedPointer<NbpMemoryProviderPointsW>::create(NbgEDimension::DIM_3D, nSamples)),
        grid(testsupport::makeGrid(25, 25, 3))
  {
    samples->addXVariable(testsupport::uniformValues(1, nSamples, 0., 250.));
    samples->addYVariable(testsupport::uniformValues(2, nSamples, 0., 250.));
    samples->addZVariable(testsupport::uniformValues(3, nSamples, 0., 15.));
    samples->addVariable(QStringLiteral("z"), testsupport::normalValues(4, nSamples));
    grid->addEmptyVariableSimple(QStringLiteral("estimate"), Nbd::TYPE_DOUBLE);
    grid->addEmptyVariableSimple(QStringLiteral("count"), Nbd::TYPE_DOUBLE);
  }

  /// Every seventh sample and every fifth node are left out.
  void mask()
  {
    std::vector<bool> flags(nSamples);
    for (int i = 0; i < nSamples; ++i)
      flags[i] = i % 7 != 3;
    samples->setSelection(flags);
    flags.resize(std::size_t(grid->getSampleCount()));
    for (std::size_t i = 0; i < flags.size(); ++i)
      flags[i] = i % 5 != 1;
    grid->setSelection(flags);
  }

  NgdDataSetPoints input() const
  {
    NgdDataSetPoints dataSet;
    dataSet.setDataProvider(samples);
    dataSet.assignVariable(Nbd::Role::V, samples->getIdFromName(QStringLiteral("z")));
    return dataSet;
  }
  NgdDataSetGrid output() const
  {
    NgdDataSetGrid dataSet;
    dataSet.setDataProvider(grid);
    dataSet.assignVariable(Nbd::Role::V, grid->getIdFromName(QStringLiteral("estimate")));
    dataSet.assignVariable(Nbd::Role::N, grid->getIdFromName(QStringLiteral("count")));
    return dataSet;
  }

  /// A data set of the samples with one variable, which is created when it is missing.
  NgdDataSetPoints sampleOutput(const QString &role, const QString &name) const
  {
    if (samples->getIdFromName(name).isEmpty())
      samples->addEmptyVariableSimple(name, Nbd::TYPE_DOUBLE);
    NgdDataSetPoints dataSet;
    dataSet.setDataProvider(samples);
    dataSet.assignVariable(role, samples->getIdFromName(name));
    return dataSet;
  }

  void configure(InverseDistances &calculator) const
  {
    calculator.setInputDataSet(input());
    calculator.setOutputDataSet(output());
    calculator.setUsingMovingNeighborhood(neighborhood());
  }

  /// At most 8 samples within 40 units.
  static NgmNeighborhoodMoving neighborhood()
  {
    NgmNeighborhoodMoving parameters;
    parameters.setEllipseSize({40., 40., 40.});
    parameters.setSectors(1, 8, false);
    return parameters;
  }
};

/// The values of a double variable at the selected samples.
template <class Provider>
std::vector<double> selectedValues(const Provider &provider, const QString &id)
{
  const NbiIntervalIntLarge all = NbiIntervalIntLarge::fromLength(provider.getSampleCount());
  NbdVariableDouble values;
  values.resizeAndFill(int(provider.getSelectedSampleCount(all)));
  EXPECT_TRUE(provider.readVariable(id, all, values, 0)) << qPrintable(provider.getLastError());
  return values.getVector();
}

template <class Provider>
std::vector<double> selectedValuesOf(const Provider &provider, const char *name)
{
  return selectedValues(provider, provider.getIdFromName(QLatin1String(name)));
}

}  // namespace interpoltest
