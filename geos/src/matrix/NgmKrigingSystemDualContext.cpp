#include "geos/matrix/NgmKrigingSystemDualContext.h"

#include "basic/error/NbeAssertion.h"
#include "geos/interpol/NgmTarget.h"
#include "geos/matrix/NgmKrigingSystemDual.h"
#include "geos/matrix/NgmNumericLibrary.h"
#include "matrix/private/NgmDotProduct.h"

#include <algorithm>

namespace {

constexpr int COLUMN_GROUP = 16;

/// The bits of a column of a product depend on the width of the call, unless it is a multiple of
/// this (measured for up to 256 columns).
int padColumns(int nColumns)
{
  return (nColumns + COLUMN_GROUP - 1) / COLUMN_GROUP * COLUMN_GROUP;
}

/// Rows padded so that every column starts on a cache line.
int padRows(int nRows)
{
  return (nRows + 7) / 8 * 8;
}

}  // namespace

NgmKrigingSystemDualContext::NgmKrigingSystemDualContext(const NgmKrigingSystemDual &dual)
    : NgmAKrigingSystem(dual),
      _dual(dual),
      _inverse(dual.getLHSInverse()),
      _fullRHS(getNEquations(), getNVariables(), false),
      _rhs(getNValidEquations(), getNVariables(), false),
      _weights(getNValidEquations(), getNVariables(), false),
      _weightsReady(false),
      _batchSize(0),
      _leadingDimension(padRows(getNValidEquations())),
      _batchHasWeights(false)
{
  if (!dual.isReady())
    NBE_FAIL(QStringLiteral("Kriging matrix not yet inverted !"));
}

NgmKrigingSystemDualContext::~NgmKrigingSystemDualContext() = default;

NgmMatrix &NgmKrigingSystemDualContext::_getLHSMatrix()
{
  NBE_FAIL(QStringLiteral("Method not defined."));
}

void NgmKrigingSystemDualContext::_buildCompressedRHS(const NbgVector3D &target,
                                                      const NgmVModel &model,
                                                      const NgmKrigingSamples &samples,
                                                      NgmVModelCovaCache *cache,
                                                      qint64 leadingDimension, double *compressed)
{
  _buildRHSPoint(model, target, samples, _fullRHS, cache);
  const int nEquations = getNEquations();
  const bool complete = getNValidEquations() == nEquations;
  for (int t = 0; t < getNVariables(); ++t) {
    const double *from = _fullRHS.constElements() + qint64(t) * nEquations;
    double *to = compressed + t * leadingDimension;
    if (complete) {
      std::copy(from, from + nEquations, to);
      continue;
    }
    for (int equation = 0; equation < nEquations; ++equation)
      if (_isValidEquation(equation))
        *to++ = from[equation];
  }
}

void NgmKrigingSystemDualContext::_makeResults(const double *rhs, qint64 leadingDimension,
                                               int nColumns, double *out) const
{
  const int n = getNValidEquations();
  const double *coefficients = _dual.getDualCoefficients().constElements();
  for (int c = 0; c < nColumns; ++c)
    out[c] = dotProduct(n, coefficients, rhs + c * leadingDimension);
}

// One target.

void NgmKrigingSystemDualContext::preparRHSPoint(const NgmTarget &target, const NgmVModel &model,
                                                 const NbdVariableDouble &x,
                                                 const NbdVariableDouble &y,
                                                 const NbdVariableDouble &z,
                                                 const QVector<double> &, NgmVModelCovaCache *cache)
{
  preparRHSPoint(target, model, _toArrays(x, y, z, {}), cache);
}

void NgmKrigingSystemDualContext::preparRHSPoint(const NgmTarget &target, const NgmVModel &model,
                                                 const NgmKrigingSamples &samples,
                                                 NgmVModelCovaCache *cache)
{
  _weightsReady = false;
  _buildCompressedRHS(target.getCenter(), model, samples, cache, getNValidEquations(),
                      _rhs.elements());
}

void NgmKrigingSystemDualContext::krigingResultsPoint(
    const NgmTarget &target, const NgmVModel &model, const NbdVariableDouble &x,
    const NbdVariableDouble &y, const NbdVariableDouble &z, QVector<double> &out,
    const QVector<double> &, NgmVModelCovaCache *cache)
{
  krigingResultsPoint(target, model, _toArrays(x, y, z, {}), out, cache);
}

void NgmKrigingSystemDualContext::krigingResultsPoint(const NgmTarget &target,
                                                      const NgmVModel &model,
                                                      const NgmKrigingSamples &samples,
                                                      QVector<double> &out,
                                                      NgmVModelCovaCache *cache)
{
  preparRHSPoint(target, model, samples, cache);
  out.resize(getNVariables());
  _makeResults(_rhs.constElements(), getNValidEquations(), getNVariables(), out.data());
}

void NgmKrigingSystemDualContext::computeWeights()
{
  const NgmNumericLibrary::ThreadCount oneThread(1);
  NgmMatrix::makeProduct(_inverse, _rhs, _weights);
  _weightsReady = true;
}

// A batch of targets.

int NgmKrigingSystemDualContext::getBatchCapacity() const
{
  return std::max(1, MAX_BATCH_COLUMNS / getNVariables());
}

void NgmKrigingSystemDualContext::prepareBatch(int nTargets, const double *targetX,
                                               const double *targetY, const double *targetZ,
                                               const NgmVModel &model,
                                               const NgmKrigingSamples &samples,
                                               NgmVModelCovaCache *cache)
{
  if (nTargets > getBatchCapacity())
    NBE_FAIL(QStringLiteral("nTargets <= getBatchCapacity()"));
  const qint64 targetStride = qint64(_leadingDimension) * getNVariables();
  const int nColumns = nTargets * getNVariables();
  const std::size_t needed = std::size_t(_leadingDimension) * std::size_t(padColumns(nColumns));
  if (_batchRHS.size() < needed)
    _batchRHS.resize(needed);

  _weightsReady = false;
  _batchHasWeights = false;
  _batchSize = nTargets;
  for (int k = 0; k < nTargets; ++k)
    _buildCompressedRHS(NbgVector3D(targetX[k], targetY[k], targetZ[k]), model, samples, cache,
                        _leadingDimension, _batchRHS.data() + k * targetStride);
  std::fill(_batchRHS.begin() + nTargets * targetStride, _batchRHS.begin() + qint64(needed), 0.);
}

void NgmKrigingSystemDualContext::computeBatchEstimates(double *out) const
{
  _makeResults(_batchRHS.data(), _leadingDimension, _batchSize * getNVariables(), out);
}

void NgmKrigingSystemDualContext::computeBatchWeights()
{
  const int n = getNValidEquations();
  const int nColumns = padColumns(_batchSize * getNVariables());
  if (_batchWeights.size() < std::size_t(_leadingDimension) * std::size_t(nColumns))
    _batchWeights.resize(std::size_t(_leadingDimension) * std::size_t(nColumns));
  const NgmNumericLibrary::ThreadCount oneThread(1);
  NgmMatrix::blasDgemm('N', 'N', n, nColumns, n, 1., _inverse.constElements(), n, _batchRHS.data(),
                       _leadingDimension, 0., _batchWeights.data(), _leadingDimension);
  _batchHasWeights = true;
}

void NgmKrigingSystemDualContext::computeBatchVariances(const QVector<double> &c00,
                                                        double *out) const
{
  if (!_batchHasWeights)
    _failWeightsNotReady();
  const int nVariables = getNVariables();
  for (int c = 0; c < _batchSize * nVariables; ++c) {
    const qint64 column = qint64(c) * _leadingDimension;
    out[c] = krigingVariance(c00.at(c % nVariables), getNValidEquations(),
                             _batchWeights.data() + column, _batchRHS.data() + column);
  }
}

void NgmKrigingSystemDualContext::setCurrentTarget(int k)
{
  const int n = getNValidEquations();
  for (int t = 0; t < getNVariables(); ++t) {
    const qint64 from = (qint64(k) * getNVariables() + t) * _leadingDimension;
    const qint64 to = qint64(t) * n;
    std::copy_n(_batchRHS.data() + from, n, _rhs.elements() + to);
    if (_batchHasWeights)
      std::copy_n(_batchWeights.data() + from, n, _weights.elements() + to);
  }
  _weightsReady = _batchHasWeights;
}

QString NgmKrigingSystemDualContext::debug(int level) const
{
  return QStringLiteral("Kriging system target context (unique)\n") +
         NgmAKrigingSystem::debug(level) +
         QStringLiteral("Weights Ready: %1\n")
             .arg(_weightsReady ? QStringLiteral("true") : QStringLiteral("false")) +
         QStringLiteral("RHS\n") + _rhs.debug(level) + QStringLiteral("Weights\n") +
         _weights.debug(level);
}
