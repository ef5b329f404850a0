#include "geos/stats/NgcQuickStat.h"

#include "base/private/NgcBufferColumns.h"
#include "basic/data/NbdAData.h"
#include "basic/error/NbeAssertion.h"
#include "geos/base/NgwAThread.h"
#include "geos/data/NgdADataSet.h"
#include "geos/stats/NgaCorrel.h"
#include "geos/stats/NgmMultivariateStatistics.h"

#include <QObject>

#include <algorithm>
#include <vector>

namespace {

/// Products of standard deviations up to this count as none.
constexpr double NULL_DEVIATION = 1e-10;

double correlation(const NgaStatSum &sum, const NbcStatMono &record1, const NbcStatMono &record2)
{
  const double deviations = record1.getStandardDeviation() * record2.getStandardDeviation();
  if (deviations <= NULL_DEVIATION)
    return 0.;
  const double covariance =
      sum.getSumXY() / sum.getMoment(0) - record1.getMean() * record2.getMean();
  return std::clamp(covariance / deviations, -1., 1.);
}

}  // namespace

/// Adds up one buffer after another, block by block.
class NgcQuickStat::Worker : public NgwAThread
{
public:
  Worker(NgwThreadPool *pool, NgcQuickStat *calculator)
      : NgwAThread(pool), _calculator(calculator), _weights(NgcBufferColumns::BLOCK)
  {
  }

protected:
  void _run() override
  {
    while (std::unique_ptr<NbdAData> buffer{_calculator->getNextBuffer()}) {
      auto partial =
          std::make_unique<NgaCorrel>(_calculator->getRoleVCount(), _calculator->_getDegree());
      _addBuffer(*buffer, *partial);
      if (_calculator->_mustStop())
        return;
      _calculator->saveStat(std::move(partial));
    }
  }

private:
  void _addBuffer(const NbdAData &buffer, NgaCorrel &sums)
  {
    const NgcBufferColumns columns(buffer, _calculator->_getRoleV());
    _values.resize(std::size_t(columns.getNColumns()) * NgcBufferColumns::BLOCK);
    for (int block = 0; block < columns.getNBlocks(); ++block) {
      if (_calculator->_mustStop())
        return;
      _addBlock(columns, block, sums);
    }
  }

  void _addBlock(const NgcBufferColumns &columns, int block, NgaCorrel &sums)
  {
    const int n = columns.getBlockLength(block);
    const double *weights = columns.readWeights(block, _calculator->_invertMask, _weights.data());
    const int nColumns = columns.getNColumns();
    _pointers.resize(nColumns);
    for (int i = 0; i < nColumns; ++i) {
      double *work = _values.data() + std::size_t(i) * NgcBufferColumns::BLOCK;
      _pointers[i] = columns.read(i, block, work);
      sums.at(i, i).addValues(n, _pointers[i], weights);
    }
    if (!_calculator->_bivariateStat)
      return;
    for (int i = 0; i < nColumns; ++i) {
      for (int j = i + 1; j < nColumns; ++j)
        NgaStatSum::addPairs(sums.at(i, j), sums.at(j, i), n, _pointers[i], _pointers[j], weights);
    }
  }

  NgcQuickStat *_calculator;
  std::vector<double> _values;  // one block per variable
  std::vector<double> _weights;
  std::vector<const double *> _pointers;
};

NgcQuickStat::NgcQuickStat(const QString &roleV) : NgcAStat(roleV, true, Nbd::TYPE_DOUBLE)
{
  _addVariableRule(Nbd::Dataset::INPUT, Nbd::Role::WEIGHT, Nbd::ACCESS_READ, Nbd::TYPE_FLOAT, 0, 1);
  _addVariableRule(Nbd::Dataset::INPUT, Nbd::Role::MASK, Nbd::ACCESS_READ, Nbd::TYPE_BOOLEAN, 0, 1);
}

NgcQuickStat::~NgcQuickStat()
{
  _finish();
}

NgmMultivariateStatistics &NgcQuickStat::getMultivariateStatistics() const
{
  if (!isCompleted() || !_result)
    NBE_FAIL(QStringLiteral("Can't get statistics results. Not computed."));
  return *_result;
}

void NgcQuickStat::_preProcessing()
{
  _setProgressMessageDetail(QObject::tr("Initializing..."));
  _setAccumulator(std::make_unique<NgaCorrel>(getRoleVCount(), _getDegree()));
  const QStringList names = _bufferDataset()->getVariableNames(_getRoleV());
  _result = std::make_unique<NgmMultivariateStatistics>(names);
  _setProgressMessageDetail(QObject::tr("Calculating Statistics..."));
}

NgwAThread *NgcQuickStat::_createComputingThread(NgwThreadPool *pool)
{
  return new Worker(pool, this);
}

void NgcQuickStat::_postProcessing()
{
  _setProgressMessageDetail(QObject::tr("Returning Results..."));
  const auto &sums = static_cast<const NgaCorrel &>(_getAccumulator());
  const int n = sums.getNVariables();
  for (int i = 0; i < n; ++i) {
    for (int j = 0; j < n; ++j)
      sums.at(i, j).fill(_result->getBivariateStats(i, j));
  }
  for (int i = 0; i < n; ++i) {
    for (int j = i + 1; j < n; ++j) {
      if (sums.at(i, j).getMoment(0) > 0.)
        _result->setRho(i, j,
                        correlation(sums.at(i, j), _result->getConstBivariateStats(i, j),
                                    _result->getConstBivariateStats(j, i)));
    }
  }
}
