#include "geos/matrix/NgmKrigingSystemDualContext.h"

#include "basic/base/NbbGlobal.h"
#include "basic/data/NbdVariableDouble.h"
#include "basic/data/NbdVariableMulti.h"
#include "basic/error/NbeAssertion.h"
#include "geos/interpol/NgmTarget.h"
#include "geos/matrix/NgmKrigingSystemDual.h"
#include "geos/matrix/NgmNumericLibrary.h"
#include "geos/vmodel/NgmVModel.h"
#include "matrix/private/NgmDotProduct.h"
#include "matrix/private/NgmKrigingFactor.h"

#include <algorithm>

namespace {

constexpr int COLUMN_GROUP = 16;

/// Squared distance below which a sample is at the target.
constexpr double AT_TARGET = 1e-6;

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

const double *columnOf(const NgmMatrix &matrix, int column)
{
  return matrix.constElements() + qint64(column) * matrix.getNRows();
}

}  // namespace

NgmKrigingSystemDualContext::NgmKrigingSystemDualContext(const NgmKrigingSystemDual &dual)
    : NgmAKrigingSystem(dual),
      _dual(dual),
      _fullRHS(getNEquations(), getNVariables(), false),
      _rhs(getNValidEquations(), getNVariables(), false),
      _weights(getNValidEquations(), getNVariables(), false),
      _weightsReady(false),
      _fullBorder(false),
      _borderColumns(false),
      _corner(0, 0, true),
      _inverseTimesBorder(false),
      _borderSolved(false),
      _borderedInverse(true),
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

const NgmMatrix &NgmKrigingSystemDualContext::getLHSMatrix() const
{
  if (_getNBorder() == 0)
    return _dual.getLHSInverse();
  if (_borderedInverse.getNRows() != _rhs.getNRows())
    _borderedInverse = NgmMatrix::blockwiseInverse(_dual.getLHSInverse(), _borderColumns, _corner);
  return _borderedInverse;
}

void NgmKrigingSystemDualContext::_compress(const NgmMatrix &full, qint64 leadingDimension,
                                            double *compressed) const
{
  const int nEquations = getNEquations();
  const bool complete = getNValidEquations() == nEquations;
  for (int t = 0; t < getNVariables(); ++t) {
    const double *from = columnOf(full, t);
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

void NgmKrigingSystemDualContext::_resizeCurrent(int nBorder)
{
  const int nRows = getNValidEquations() + nBorder;
  if (nBorder != _getNBorder())
    _corner.resize(nBorder, false);
  if (_borderedInverse.getNRows() > 1)
    _borderedInverse.resize(1, false);
  if (_rhs.getNRows() != nRows) {
    _rhs.resize(nRows, getNVariables(), false);
    _weights.resize(nRows, getNVariables(), false);
  }
}

void NgmKrigingSystemDualContext::_prepare(const NgmTarget &target, bool asBlock,
                                           const NgmVModel &model, const NgmKrigingSamples &samples,
                                           NgmVModelCovaCache *cache,
                                           const double *extDriftValuesAtTarget)
{
  _weightsReady = false;
  _getExtraData().clear();
  _resizeCurrent(0);
  if (asBlock)
    _buildRHSBlock(model, target, samples, extDriftValuesAtTarget, _fullRHS, cache);
  else
    _buildRHSPoint(model, target.getCenter(), samples, extDriftValuesAtTarget, _fullRHS, cache);
  _compress(_fullRHS, getNValidEquations(), _rhs.elements());

  _target = target.getCenter();
  _samples = samples;
  if (extDriftValuesAtTarget)
    _targetDrifts.assign(extDriftValuesAtTarget, extDriftValuesAtTarget + _countExternalDrifts());
  else
    _targetDrifts.clear();
}

void NgmKrigingSystemDualContext::preparRHSPoint(const NgmTarget &target, const NgmVModel &model,
                                                 const NbdVariableDouble &x,
                                                 const NbdVariableDouble &y,
                                                 const NbdVariableDouble &z,
                                                 const QVector<double> &extDriftValuesAtTarget,
                                                 NgmVModelCovaCache *cache)
{
  preparRHSPoint(target, model, _toArrays(x, y, z), cache, _toArray(extDriftValuesAtTarget));
}

void NgmKrigingSystemDualContext::preparRHSPoint(const NgmTarget &target, const NgmVModel &model,
                                                 const NgmKrigingSamples &samples,
                                                 NgmVModelCovaCache *cache,
                                                 const double *extDriftValuesAtTarget)
{
  _prepare(target, false, model, samples, cache, extDriftValuesAtTarget);
}

void NgmKrigingSystemDualContext::preparRHSBlock(const NgmTarget &target, const NgmVModel &model,
                                                 const NbdVariableDouble &x,
                                                 const NbdVariableDouble &y,
                                                 const NbdVariableDouble &z,
                                                 const QVector<double> &extDriftValuesAtTarget,
                                                 NgmVModelCovaCache *cache)
{
  preparRHSBlock(target, model, _toArrays(x, y, z), cache, _toArray(extDriftValuesAtTarget));
}

void NgmKrigingSystemDualContext::preparRHSBlock(const NgmTarget &target, const NgmVModel &model,
                                                 const NgmKrigingSamples &samples,
                                                 NgmVModelCovaCache *cache,
                                                 const double *extDriftValuesAtTarget)
{
  _prepare(target, true, model, samples, cache, extDriftValuesAtTarget);
}

void NgmKrigingSystemDualContext::krigingResultsPoint(
    const NgmTarget &target, const NgmVModel &model, const NbdVariableDouble &x,
    const NbdVariableDouble &y, const NbdVariableDouble &z, QVector<double> &out,
    const QVector<double> &extDriftValuesAtTarget, NgmVModelCovaCache *cache)
{
  krigingResultsPoint(target, model, _toArrays(x, y, z), out, cache,
                      _toArray(extDriftValuesAtTarget));
}

void NgmKrigingSystemDualContext::krigingResultsPoint(
    const NgmTarget &target, const NgmVModel &model, const NgmKrigingSamples &samples,
    QVector<double> &out, NgmVModelCovaCache *cache, const double *extDriftValuesAtTarget)
{
  preparRHSPoint(target, model, samples, cache, extDriftValuesAtTarget);
  out.resize(getNVariables());
  _makeResults(_rhs.constElements(), getNValidEquations(), getNVariables(), out.data());
}

void NgmKrigingSystemDualContext::krigingResultsBlock(
    const NgmTarget &target, const NgmVModel &model, const NbdVariableDouble &x,
    const NbdVariableDouble &y, const NbdVariableDouble &z, QVector<double> &out,
    const QVector<double> &extDriftValuesAtTarget, NgmVModelCovaCache *cache)
{
  krigingResultsBlock(target, model, _toArrays(x, y, z), out, cache,
                      _toArray(extDriftValuesAtTarget));
}

void NgmKrigingSystemDualContext::krigingResultsBlock(
    const NgmTarget &target, const NgmVModel &model, const NgmKrigingSamples &samples,
    QVector<double> &out, NgmVModelCovaCache *cache, const double *extDriftValuesAtTarget)
{
  preparRHSBlock(target, model, samples, cache, extDriftValuesAtTarget);
  out.resize(getNVariables());
  _makeResults(_rhs.constElements(), getNValidEquations(), getNVariables(), out.data());
}

void NgmKrigingSystemDualContext::computeWeights()
{
  if (_getNBorder() > 0 && !_borderSolved)
    return;
  const NgmNumericLibrary::ThreadCount oneThread(1);
  const int n = getNValidEquations();
  NgmMatrix::blasDgemm('N', 'N', n, getNVariables(), n, 1., _dual.getLHSInverse().constElements(),
                       n, _rhs.constElements(), _rhs.getNRows(), 0., _weights.elements(),
                       _weights.getNRows());
  if (_getNBorder() > 0)
    _borderWeights();
  _weightsReady = true;
}

bool NgmKrigingSystemDualContext::checkResults(bool checkMatrix) const
{
  _checkWeightsReady();
  if (_checkSuspicious())
    return false;
  if (!checkMatrix)
    return true;
  NgmMatrix values(false);
  NgmMatrix vectors(false);
  _dual.getLHSMatrix().eigenValues(values, vectors, false, false, 1);
  return values(0, 0) > 0.;
}

double NgmKrigingSystemDualContext::_quadraticForm(int t) const
{
  const NgmMatrix &lhs = _dual.getLHSMatrix();
  const int nData = getNValidDataEquations();
  const double *weights = columnOf(_weights, t);
  double sum = 0.;
  for (int j = 0; j < nData; ++j)
    sum += weights[j] * dotProduct(nData, weights, columnOf(lhs, j));

  const double *extra = weights + getNValidEquations();
  const int nExtra = int(_getExtraData().size());
  for (int j = 0; j < nExtra; ++j)
    sum += extra[j] * (2. * dotProduct(nData, weights, columnOf(_borderColumns, j)) +
                       dotProduct(nExtra, extra, columnOf(_corner, j)));
  return sum;
}

// Collocated variables.

bool NgmKrigingSystemDualContext::krigingResultsPointCollocated(
    const NgmTarget &target, const NgmVModel &model, const NbdVariableDouble &x,
    const NbdVariableDouble &y, const NbdVariableDouble &z, const QMap<int, double> &collocated,
    QVector<double> &out, const QVector<double> &extDriftValuesAtTarget, NgmVModelCovaCache *cache)
{
  return krigingResultsPointCollocated(target, model, _toArrays(x, y, z), collocated, out, cache,
                                       _toArray(extDriftValuesAtTarget));
}

bool NgmKrigingSystemDualContext::krigingResultsPointCollocated(
    const NgmTarget &target, const NgmVModel &model, const NgmKrigingSamples &samples,
    const QMap<int, double> &collocated, QVector<double> &out, NgmVModelCovaCache *cache,
    const double *extDriftValuesAtTarget)
{
  if (collocated.isEmpty())
    NBE_FAIL(QStringLiteral("No collocated variables"));
  krigingResultsPoint(target, model, samples, out, cache, extDriftValuesAtTarget);
  if (!_border(model, collocated)) {
    out.fill(NbbGlobal::D_FFFF);
    return false;
  }
  if (_getNBorder() > 0)
    _makeResultsCollocated(out.data());
  return true;
}

bool NgmKrigingSystemDualContext::_isInformed(int variable) const
{
  for (int s = 0; s < _samples.n; ++s) {
    const NbgVector3D sample(_samples.x[s], _samples.y[s], _samples.z[s]);
    if ((sample - _target).squaredNorm() < AT_TARGET &&
        _isValidEquation(s * getNVariables() + variable))
      return true;
  }
  return false;
}

bool NgmKrigingSystemDualContext::_border(const NgmVModel &model,
                                          const QMap<int, double> &collocated)
{
  std::vector<ExtraDatum> &data = _getExtraData();
  data.clear();
  _borderConditions.clear();
  for (auto it = collocated.constBegin(); it != collocated.constEnd(); ++it) {
    if (it.key() < 0 || it.key() >= getNVariables())
      NBE_FAIL(QStringLiteral("variable < getNVariables()"));
    if (!NbbGlobal::isDefined(it.value()) || _isInformed(it.key()))
      continue;
    data.push_back({it.key(), it.value()});
    if (_getNUniversality() > 0 && !_isRescaled() &&
        !_isValidEquation(_getNDataEquations() + it.key()))
      _borderConditions.push_back(it.key());
  }
  const int nBorder = int(data.size() + _borderConditions.size());
  _resizeCurrent(nBorder);
  _compress(_fullRHS, _rhs.getNRows(), _rhs.elements());
  if (nBorder == 0)
    return true;
  _fillBorder();
  _fillCorner(model);
  _appendBorderToRHS(model);
  _borderSolved = _solveBorder();
  return _borderSolved;
}

void NgmKrigingSystemDualContext::_fillBorder()
{
  const int n = getNValidEquations();
  const int nEquations = getNEquations();
  _fullBorder.resize(nEquations, getNVariables(), false);
  _setDriftRows(NgmTarget(_target), _targetDrifts.empty() ? nullptr : _targetDrifts.data(),
                _fullBorder);
  _borderColumns.resize(n, _getNBorder(), false);
  double *to = _borderColumns.elements();
  for (const ExtraDatum &datum : _getExtraData()) {
    const double *covariances = columnOf(_fullRHS, datum.variable);
    const double *drifts = columnOf(_fullBorder, datum.variable);
    const double correction = _getCorrection(datum.variable);
    for (int equation = 0; equation < nEquations; ++equation)
      if (_isValidEquation(equation))
        *to++ =
            equation < _getNDataEquations() ? covariances[equation] * correction : drifts[equation];
  }
}

void NgmKrigingSystemDualContext::_fillCorner(const NgmVModel &model)
{
  const std::vector<ExtraDatum> &data = _getExtraData();
  _corner.fill(0.);
  for (std::size_t i = 0; i < data.size(); ++i) {
    for (std::size_t j = 0; j <= i; ++j) {
      const bool correlated = i != j && _isBlockCorrected();
      const int a = data[i].variable;
      const int b = data[j].variable;
      _corner.setElement(int(i), int(j),
                         correlated ? _getPointCorrelations()(a, b) : model.getC0IJ(a, b));
    }
    for (std::size_t c = 0; c < _borderConditions.size(); ++c)
      if (_borderConditions[c] == data[i].variable)
        _corner.setElement(int(i), int(data.size() + c), 1.);
  }
}

void NgmKrigingSystemDualContext::_appendBorderToRHS(const NgmVModel &model)
{
  for (int t = 0; t < getNVariables(); ++t) {
    double *row = _rhs.elements() + qint64(t) * _rhs.getNRows() + getNValidEquations();
    for (const ExtraDatum &datum : _getExtraData())
      *row++ = model.getC0IJ(datum.variable, t) * _getCorrection(datum.variable);
    for (const int variable : _borderConditions)
      *row++ = variable == t && !isFilteringDrifts() ? 1. : 0.;
  }
}

bool NgmKrigingSystemDualContext::_solveBorder()
{
  const int n = getNValidEquations();
  const int nBorder = _getNBorder();
  const int nVariables = getNVariables();
  _inverseTimesBorder.resize(n, nBorder, false);
  const NgmNumericLibrary::ThreadCount oneThread(1);
  NgmMatrix::blasDgemm('N', 'N', n, nBorder, n, 1., _dual.getLHSInverse().constElements(), n,
                       _borderColumns.constElements(), n, 0., _inverseTimesBorder.elements(), n);

  // S = C - B' inverse(A) B; what the border adds to the right-hand sides, and to the data.
  _borderSystem.resize(nBorder, nVariables + 1);
  const double *coefficients = _dual.getDualCoefficients().constElements();
  for (int i = 0; i < nBorder; ++i) {
    const double *solved = columnOf(_inverseTimesBorder, i);
    for (int j = 0; j <= i; ++j)
      _borderSystem.getLHS().setElement(
          i, j, _corner(i, j) - dotProduct(n, solved, columnOf(_borderColumns, j)));
    for (int t = 0; t < nVariables; ++t)
      _borderSystem.getRHS().setElement(i, t,
                                        _rhs(n + i, t) - dotProduct(n, solved, columnOf(_rhs, t)));
    const bool isDatum = std::size_t(i) < _getExtraData().size();
    const double value = isDatum ? _getExtraData()[std::size_t(i)].value : 0.;
    _borderSystem.getRHS().setElement(
        i, nVariables, value - dotProduct(n, coefficients, columnOf(_borderColumns, i)));
  }
  return _borderSystem.solve() == 0;
}

void NgmKrigingSystemDualContext::_makeResultsCollocated(double *out) const
{
  const double *dual = columnOf(_borderSystem.getResults(), getNVariables());
  for (int t = 0; t < getNVariables(); ++t)
    out[t] += dotProduct(_getNBorder(), columnOf(_borderSystem.getRHS(), t), dual);
}

void NgmKrigingSystemDualContext::_borderWeights()
{
  const int n = getNValidEquations();
  for (int t = 0; t < getNVariables(); ++t) {
    const double *added = columnOf(_borderSystem.getResults(), t);
    double *weights = _weights.elements() + qint64(t) * _weights.getNRows();
    for (int i = 0; i < _getNBorder(); ++i) {
      const double *solved = columnOf(_inverseTimesBorder, i);
      for (int row = 0; row < n; ++row)
        weights[row] -= solved[row] * added[i];
      weights[n + i] = added[i];
    }
  }
}

// Realizations.

void NgmKrigingSystemDualContext::_estimateRealization(const QList<NbdVariableMulti *> &data,
                                                       int realization, const NgmMatrix &weights,
                                                       QVector<double> &out) const
{
  const int nVariables = getNVariables();
  if (data.size() != nVariables)
    NBE_FAIL(QStringLiteral("data.size() == getNVariables()"));
  out.resize(nVariables);
  for (int t = 0; t < nVariables; ++t) {
    const double *column = columnOf(weights, t);
    double sum = 0.;
    for (int v = 0; v < nVariables; ++v) {
      const float *values = data.at(v)->getArrayConst(realization);
      for (int s = 0; s < getNSamples(); ++s) {
        const int row = _getCompressedRow(s * nVariables + v);
        if (row >= 0 && NbbGlobal::isDefined(values[s]))
          sum += column[row] * double(values[s]);
      }
    }
    out[t] = sum;
  }
}

void NgmKrigingSystemDualContext::krigingResultsForRealization(
    const QList<NbdVariableMulti *> &data, int realization, QVector<double> &out) const
{
  _checkWeightsReady();
  _estimateRealization(data, realization, _weights, out);
}

bool NgmKrigingSystemDualContext::prepareIntermediateSystem(const NgmVModel &model,
                                                            const QMap<int, double> &collocated,
                                                            NgmCollocatedSystem &system)
{
  if (collocated.isEmpty())
    NBE_FAIL(QStringLiteral("No collocated variables"));
  _weightsReady = false;
  if (!_border(model, collocated))
    return false;
  computeWeights();

  system.variables.clear();
  for (const ExtraDatum &datum : _getExtraData())
    system.variables << datum.variable;
  const int n = getNValidEquations();
  const int nBorder = _getNBorder();
  system.border.resize(n, nBorder, false);
  if (nBorder > 0)
    system.border.copyDeep(_borderColumns);
  system.corner.copyDeep(_corner);
  system.weights.resize(n, getNVariables(), false);
  _weights.getSubMatrix(system.weights, 0, 0);
  system.borderWeights.resize(nBorder, getNVariables(), false);
  _weights.getSubMatrix(system.borderWeights, n, 0);
  return true;
}

void NgmKrigingSystemDualContext::krigingResultsIntermediateSystem(
    const QList<NbdVariableMulti *> &data, int realization, const QMap<int, double> &collocated,
    const NgmCollocatedSystem &system, QVector<double> &out) const
{
  _estimateRealization(data, realization, system.weights, out);
  for (int t = 0; t < getNVariables(); ++t)
    for (int d = 0; d < system.variables.size(); ++d) {
      const double value = collocated.value(system.variables.at(d), NbbGlobal::D_FFFF);
      if (!NbbGlobal::isDefined(value))
        out[t] = NbbGlobal::D_FFFF;
      else if (NbbGlobal::isDefined(out[t]))
        out[t] += system.borderWeights(d, t) * value;
    }
}

// A batch of targets.

int NgmKrigingSystemDualContext::getBatchCapacity() const
{
  return std::max(1, MAX_BATCH_COLUMNS / getNVariables());
}

void NgmKrigingSystemDualContext::startBatch()
{
  const std::size_t needed = std::size_t(_leadingDimension) *
                             std::size_t(padColumns(getBatchCapacity() * getNVariables()));
  if (_batchRHS.size() < needed)
    _batchRHS.resize(needed);
  _weightsReady = false;
  _batchHasWeights = false;
  _batchSize = 0;
}

void NgmKrigingSystemDualContext::_appendToBatch(const NgmTarget &target, bool asBlock,
                                                 const NgmVModel &model,
                                                 const NgmKrigingSamples &samples,
                                                 NgmVModelCovaCache *cache,
                                                 const double *extDriftValuesAtTarget)
{
  if (asBlock)
    _buildRHSBlock(model, target, samples, extDriftValuesAtTarget, _fullRHS, cache);
  else
    _buildRHSPoint(model, target.getCenter(), samples, extDriftValuesAtTarget, _fullRHS, cache);
  _compress(_fullRHS, _leadingDimension,
            _batchRHS.data() + qint64(_countBatchColumns()) * _leadingDimension);
  ++_batchSize;
  _batchHasWeights = false;
}

void NgmKrigingSystemDualContext::addToBatch(const NgmTarget &target, const NgmVModel &model,
                                             const NgmKrigingSamples &samples,
                                             NgmVModelCovaCache *cache,
                                             const double *extDriftValuesAtTarget)
{
  if (_batchSize >= getBatchCapacity() || _batchRHS.empty())
    NBE_FAIL(QStringLiteral("getBatchSize() < getBatchCapacity()"));
  _appendToBatch(target, target.isBlock(), model, samples, cache, extDriftValuesAtTarget);
}

void NgmKrigingSystemDualContext::prepareBatch(int nTargets, const double *targetX,
                                               const double *targetY, const double *targetZ,
                                               const NgmVModel &model,
                                               const NgmKrigingSamples &samples,
                                               NgmVModelCovaCache *cache,
                                               const double *const *extDriftsAtTargets)
{
  if (nTargets > getBatchCapacity())
    NBE_FAIL(QStringLiteral("nTargets <= getBatchCapacity()"));
  startBatch();
  const int nDrifts = extDriftsAtTargets ? _countExternalDrifts() : 0;
  _batchDrifts.resize(std::size_t(nDrifts));
  for (int k = 0; k < nTargets; ++k) {
    for (int d = 0; d < nDrifts; ++d)
      _batchDrifts[std::size_t(d)] = extDriftsAtTargets[d][k];
    _appendToBatch(NgmTarget(NbgVector3D(targetX[k], targetY[k], targetZ[k])), false, model,
                   samples, cache, extDriftsAtTargets ? _batchDrifts.data() : nullptr);
  }
}

void NgmKrigingSystemDualContext::_padBatch()
{
  const qint64 first = qint64(_countBatchColumns()) * _leadingDimension;
  const qint64 end = qint64(padColumns(_countBatchColumns())) * _leadingDimension;
  std::fill(_batchRHS.begin() + first, _batchRHS.begin() + end, 0.);
}

double *NgmKrigingSystemDualContext::_batchWork()
{
  if (_batchWeights.size() < _batchRHS.size())
    _batchWeights.resize(_batchRHS.size());
  return _batchWeights.data();
}

void NgmKrigingSystemDualContext::computeBatchEstimates(double *out) const
{
  _makeResults(_batchRHS.data(), _leadingDimension, _countBatchColumns(), out);
}

void NgmKrigingSystemDualContext::computeBatchWeights()
{
  const int n = getNValidEquations();
  _padBatch();
  const NgmNumericLibrary::ThreadCount oneThread(1);
  NgmMatrix::blasDgemm('N', 'N', n, padColumns(_countBatchColumns()), n, 1.,
                       _dual.getLHSInverse().constElements(), n, _batchRHS.data(),
                       _leadingDimension, 0., _batchWork(), _leadingDimension);
  _batchHasWeights = true;
}

void NgmKrigingSystemDualContext::computeBatchVariances(const QVector<double> &c00, double *out)
{
  _batchC00.resize(std::size_t(_countBatchColumns()));
  for (std::size_t c = 0; c < _batchC00.size(); ++c)
    _batchC00[c] = c00.at(int(c) % getNVariables());
  computeBatchVariances(_batchC00.data(), out);
}

void NgmKrigingSystemDualContext::computeBatchVariances(const double *c00, double *out)
{
  if (!_batchHasWeights && !_dual._factor)
    computeBatchWeights();
  const int nColumns = _countBatchColumns();
  if (_batchHasWeights) {
    for (int c = 0; c < nColumns; ++c) {
      const qint64 column = qint64(c) * _leadingDimension;
      out[c] = krigingVariance(c00[c], getNValidEquations(), _batchWeights.data() + column,
                               _batchRHS.data() + column);
    }
    return;
  }
  _padBatch();
  _batchForms.resize(std::size_t(padColumns(nColumns)));
  _dual._factor->quadraticForms(_batchRHS.data(), padColumns(nColumns), _leadingDimension,
                                _batchWork(), _batchForms.data());
  for (int c = 0; c < nColumns; ++c)
    out[c] = floorVariance(c00[c] - _batchForms[std::size_t(c)]);
}

void NgmKrigingSystemDualContext::setCurrentTarget(int k)
{
  const int n = getNValidEquations();
  _getExtraData().clear();
  _resizeCurrent(0);
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
  QString text = QStringLiteral("Kriging system target context (unique)\n") +
                 NgmAKrigingSystem::debug(level) +
                 QStringLiteral("New LHS_Inverse (if collocated used)\n");
  if (_getNBorder() > 0 && _borderSolved)
    text += getLHSMatrix().debug(level);
  return text +
         QStringLiteral("Weights Ready: %1\n")
             .arg(_weightsReady ? QStringLiteral("true") : QStringLiteral("false")) +
         QStringLiteral("RHS\n") + _rhs.debug(level) + QStringLiteral("Weights\n") +
         _weights.debug(level);
}
