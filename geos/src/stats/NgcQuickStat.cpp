#include "geos/stats/NgcQuickStat.h"

#include "base/private/NgcSelectedBlocks.h"
#include "basic/data/NbdAData.h"
#include "basic/data/NbdVariableSelection.h"
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
  return std::clamp(sum.getCovariance() / deviations, -1., 1.);
}

}  // namespace

/// Adds up one buffer after another, block by block.
class NgcQuickStat::Worker : public NgwAThread
{
public:
  Worker(NgwThreadPool *pool, NgcQuickStat *calculator) : NgwAThread(pool), _calculator(calculator)
  {
    std::fill_n(_ones, BLOCK, 1.);
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
    const NbdDataTable &table = buffer.getDataTableConst();
    _variables = table.getVarsNumeric(_calculator->_getRoleV());
    _weight = table.getVarNumeric(Nbd::Role::WEIGHT);
    _mask = table.getVarSelection(Nbd::Role::MASK);
    _values.resize(std::size_t(_variables.size()) * BLOCK);

    const NgcSelectedBlocks blocks(buffer);
    for (int block = 0; block < blocks.getNBlocks(); ++block) {
      if (_calculator->_mustStop())
        return;
      _addBlock(blocks, block, sums);
    }
  }

  void _addBlock(const NgcSelectedBlocks &blocks, int block, NgaCorrel &sums)
  {
    const int n = blocks.getLength(block);
    const double *weights = _readWeights(blocks, block);
    _columns.clear();
    for (int i = 0; i < _variables.size(); ++i) {
      _columns.push_back(
          blocks.read(*_variables[i], block, _values.data() + std::size_t(i) * BLOCK));
      sums.at(i, i).addValues(n, _columns[i], weights);
    }
    if (!_calculator->_bivariateStat)
      return;
    for (int i = 0; i < _variables.size(); ++i) {
      for (int j = i + 1; j < _variables.size(); ++j)
        NgaStatSum::addPairs(sums.at(i, j), sums.at(j, i), n, _columns[i], _columns[j], weights);
    }
  }

  /// The weights of a block, 0 where the mask leaves a sample out; null when all count alike.
  const double *_readWeights(const NgcSelectedBlocks &blocks, int block)
  {
    if (!_weight && !_mask)
      return nullptr;
    const int n = blocks.getLength(block);
    const double *weights = _ones;
    if (_weight)
      weights = blocks.read(*_weight, block, _weights);
    if (!_mask)
      return weights;
    double work[BLOCK];
    const double *mask = blocks.read(*_mask, block, work);
    const double excluded = _calculator->_invertMask ? 1. : 0.;
    for (int i = 0; i < n; ++i)
      _weights[i] = mask[i] == excluded ? 0. : weights[i];
    return _weights;
  }

  static constexpr int BLOCK = NgcSelectedBlocks::BLOCK;

  NgcQuickStat *_calculator;
  QList<NbdAVariableNumeric *> _variables;
  NbdAVariableNumeric *_weight = nullptr;
  NbdVariableSelection *_mask = nullptr;
  std::vector<double> _values;  // one block per variable
  std::vector<const double *> _columns;
  double _weights[BLOCK];
  double _ones[BLOCK];
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
