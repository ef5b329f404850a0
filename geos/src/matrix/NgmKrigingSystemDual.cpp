#include "geos/matrix/NgmKrigingSystemDual.h"

#include "basic/error/NbeAssertion.h"
#include "basic/error/NbeUserError.h"
#include "matrix/private/NgmKrigingFactor.h"

#include <QObject>

#include <algorithm>
#include <cmath>
#include <limits>

namespace {

/// From this order on NgmMatrix::invert() takes its parallel path when it is given threads.
constexpr int PARALLEL_ROWS = 100;

/// Middle of the smallest box around the samples.
NbgVector3D centreOf(const NgmKrigingSamples &samples)
{
  NbgVector3D centre;
  const double *const coordinates[] = {samples.x, samples.y, samples.z};
  for (int axis = 0; axis < 3 && samples.n > 0; ++axis) {
    const auto bounds = std::minmax_element(coordinates[axis], coordinates[axis] + samples.n);
    centre[axis] = *bounds.first + 0.5 * (*bounds.second - *bounds.first);
  }
  return centre;
}

double largestOf(const double *values, int n)
{
  double largest = 0.;
  for (int i = 0; i < n; ++i)
    largest = std::max(largest, std::abs(values[i]));
  return largest;
}

/// Powers of two that bring the rows of the conditions, which have units of their own, to the size
/// of the covariances.
std::vector<double> scalesOf(const NgmMatrix &matrix, int nData)
{
  const int n = matrix.getNRows();
  const double *a = matrix.constElements();
  double covariance = 0.;
  for (int i = 0; i < nData; ++i)
    covariance = std::max(covariance, std::abs(a[i * (qint64(n) + 1)]));
  std::vector<double> scales(std::size_t(n), 1.);
  for (int k = nData; k < n; ++k) {
    const double ratio = covariance / largestOf(a + qint64(k) * n, nData);
    if (std::isnormal(ratio))
      scales[std::size_t(k)] = std::exp2(std::round(std::log2(ratio)));
  }
  return scales;
}

/// Element (i, j) times scale i and scale j.
void scaleMatrix(const std::vector<double> &scales, NgmMatrix &matrix)
{
  const std::size_t n = scales.size();
  double *a = matrix.elements();
  for (std::size_t j = 0; j < n; ++j)
    for (std::size_t i = 0; i < n; ++i)
      a[i + j * n] *= scales[i] * scales[j];
}

/// Largest sum of the elements of a column.
double norm(const NgmMatrix &matrix)
{
  const int n = matrix.getNRows();
  double largest = 0.;
  for (int j = 0; j < n; ++j)
    largest = std::max(largest, NgmMatrix::blasDasum(n, matrix.constElements() + qint64(j) * n, 1));
  return largest;
}

/// Inverts; returns the product of the norms of both matrices, or infinity for a singular one.
double invertScaled(const NgmMatrix &matrix, int nData, int nThreads, NgmMatrix &inverse)
{
  const std::vector<double> scales = scalesOf(matrix, nData);
  const bool scaled = std::any_of(scales.begin(), scales.end(), [](double s) { return s != 1.; });
  NgmMatrix work(matrix);
  if (scaled)
    scaleMatrix(scales, work);
  if (work.invert(inverse, nThreads) != 0)
    return std::numeric_limits<double>::infinity();
  const double condition = norm(work) * norm(inverse);
  if (scaled)
    scaleMatrix(scales, inverse);
  return condition;
}

}  // namespace

NgmKrigingSystemDual::NgmKrigingSystemDual() : NgmKrigingSystemDual(1, 1, false, false, 0) {}

NgmKrigingSystemDual::NgmKrigingSystemDual(int nSamples, int nVariables, bool simple,
                                           bool singleCondition, int nDrifts)
    : NgmAKrigingSystem(nSamples, nVariables,
                        _countUniversality(nVariables, simple, singleCondition), nDrifts),
      _ready(false),
      _lhs(true),
      _dualCoefficients(false),
      _inverted(false),
      _inverse(true)
{
}

NgmKrigingSystemDual::NgmKrigingSystemDual(const NgmKrigingSystemDual &other)
    : NgmAKrigingSystem(other), _ready(false), _inverted(false), _inverse(true)
{
  *this = other;
}

NgmKrigingSystemDual &NgmKrigingSystemDual::operator=(const NgmKrigingSystemDual &other)
{
  if (this == &other)
    return *this;
  NgmAKrigingSystem::operator=(other);
  const std::lock_guard<std::mutex> lock(other._inverseMutex);
  _ready = other._ready;
  _lhs = other._lhs;
  _dualCoefficients = other._dualCoefficients;
  _factor = other._factor;
  _inverse = other._inverse;
  _inverted = other._inverted.load();
  return *this;
}

NgmKrigingSystemDual::~NgmKrigingSystemDual() = default;

int NgmKrigingSystemDual::getMaximumNumberOfSamples(int nVariables)
{
  return 10000 / (nVariables * nVariables);
}

void NgmKrigingSystemDual::buildSystem(const NgmVModel &model, const NbdVariableDouble &x,
                                       const NbdVariableDouble &y, const NbdVariableDouble &z,
                                       const QList<NbdAVariableNumeric *> &dataVars, int nThreads,
                                       const QList<NbdAVariableNumeric *> &extDriftVars)
{
  buildSystem(model, _toArrays(x, y, z, dataVars, extDriftVars), nThreads);
}

void NgmKrigingSystemDual::buildSystem(const NgmVModel &model, const NgmKrigingSamples &samples,
                                       int nThreads)
{
  _ready = false;
  _inverted = false;
  _factor.reset();
  if (samples.n > getMaximumNumberOfSamples(getNVariables()))
    throw NbeUserError(QObject::tr("Too many data for using a unique neighborhood."));
  _resize(samples.n);
  setReferencePoint(centreOf(samples));
  _lhs.resize(getNEquations(), false);
  _buildLHS(model, samples, nullptr);
  if (getNValidDataEquations() == 0)
    throw NbeUserError(
        QObject::tr("WARNING: There is no valid data. Unable to build the kriging system."));
  _compressLHS();
  _solve(samples, nThreads);
  _ready = true;
}

void NgmKrigingSystemDual::_solve(const NgmKrigingSamples &samples, int nThreads)
{
  const std::vector<double> data = _compressData(samples);
  const int n = getNValidEquations();
  _dualCoefficients.resize(1, n, false);
  if (nThreads == 1 || n < PARALLEL_ROWS)
    _factor = NgmKrigingFactor::factorize(_lhs, getNValidDataEquations());
  if (_factor) {
    std::copy(data.begin(), data.end(), _dualCoefficients.elements());
    _factor->solve(_dualCoefficients.elements());
    return;
  }
  _computeInverse(nThreads);
  NgmMatrix coefficients(false);
  NgmMatrix::makeProduct(_inverse, NgmMatrix(n, data.data()), coefficients);
  coefficients.transpose(_dualCoefficients);
}

void NgmKrigingSystemDual::_computeInverse(int nThreads) const
{
  const double condition = invertScaled(_lhs, getNValidDataEquations(), nThreads, _inverse);
  // Where there is a factor it has been judged already; here no digit would be right.
  const double largest =
      _factor ? std::numeric_limits<double>::max() : 1. / std::numeric_limits<double>::epsilon();
  if (!(condition < largest))
    throw NbeUserError(QObject::tr("Inversion errors have been encountered"));
  _inverted = true;
}

const NgmMatrix &NgmKrigingSystemDual::getLHSInverse() const
{
  if (!_ready || _inverted)
    return _inverse;
  const std::lock_guard<std::mutex> lock(_inverseMutex);
  if (!_inverted)
    _computeInverse(1);
  return _inverse;
}

void NgmKrigingSystemDual::_compressLHS()
{
  const int nEquations = getNEquations();
  if (getNValidEquations() == nEquations)
    return;
  NgmMatrix compressed(getNValidEquations(), getNValidEquations(), true);
  double *to = compressed.elements();
  for (int j = 0; j < nEquations; ++j) {
    if (_getCompressedRow(j) < 0)
      continue;
    const double *column = _lhs.constElements() + qint64(j) * nEquations;
    for (int i = 0; i < nEquations; ++i)
      if (_getCompressedRow(i) >= 0)
        *to++ = column[i];
  }
  _lhs = compressed;
}

std::vector<double> NgmKrigingSystemDual::_compressData(const NgmKrigingSamples &samples) const
{
  const int nVariables = getNVariables();
  std::vector<double> data(static_cast<std::size_t>(getNValidEquations()), 0.);
  for (int equation = 0; equation < _getNDataEquations(); ++equation)
    if (_getCompressedRow(equation) >= 0)
      data[std::size_t(_getCompressedRow(equation))] =
          samples.values[equation % nVariables][equation / nVariables];
  return data;
}

namespace {

const QString &notDefined()
{
  static const QString text = QStringLiteral("Method not defined.");
  return text;
}

}  // namespace

const NgmMatrix &NgmKrigingSystemDual::getRHSMatrix() const
{
  NBE_FAIL(notDefined());
}

const NgmMatrix &NgmKrigingSystemDual::getWeightsMatrix() const
{
  NBE_FAIL(notDefined());
}

NgmMatrix &NgmKrigingSystemDual::_getRHSMatrix()
{
  NBE_FAIL(notDefined());
}

NgmMatrix &NgmKrigingSystemDual::_getWeightsMatrix()
{
  NBE_FAIL(notDefined());
}

void NgmKrigingSystemDual::computeSumOfWeights(QVector<double> &) const
{
  NBE_FAIL(notDefined());
}

void NgmKrigingSystemDual::computeSumOfPositiveWeights(QVector<double> &) const
{
  NBE_FAIL(notDefined());
}

void NgmKrigingSystemDual::computeWeightForMean(QVector<double> &) const
{
  NBE_FAIL(notDefined());
}

void NgmKrigingSystemDual::computeLagrange(QVector<double> &) const
{
  NBE_FAIL(notDefined());
}

QString NgmKrigingSystemDual::debug(int level) const
{
  return QStringLiteral("Kriging system (unique)\n") + NgmAKrigingSystem::debug(level) +
         QStringLiteral("Inverted: %1\n")
             .arg(_ready ? QStringLiteral("true") : QStringLiteral("false")) +
         QStringLiteral("LHS\n") + _lhs.debug(level) + QStringLiteral("LHS_Inverse\n") +
         getLHSInverse().debug(level);
}
