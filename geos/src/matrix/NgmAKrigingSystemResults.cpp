#include "geos/matrix/NgmAKrigingSystem.h"

#include "basic/base/NbbGlobal.h"
#include "basic/error/NbeAssertion.h"
#include "basic/error/NbeProgrammingError.h"
#include "matrix/private/NgmDotProduct.h"

#include <algorithm>
#include <cmath>

// Results.

namespace {

constexpr double SUSPICIOUS_WEIGHT = 1.5;
constexpr double NULL_VARIANCE = 1e-10;

/// The source that messages name.
const QString SOURCE = QStringLiteral("matrix\\NgmAKrigingSystem");

}  // namespace

/// The weights of one target variable by equation, compressed or not.
class NgmAKrigingSystem::Weights
{
public:
  Weights(const NgmAKrigingSystem &system, int t)
      : _system(system),
        _column(system.getWeightsMatrix().constElements() +
                qint64(t) * system.getWeightsMatrix().getNRows()),
        _rows(system._isCompressed() ? system._compressedRows.data() : nullptr)
  {
  }

  double operator[](int equation) const
  {
    if (!_rows)
      return _column[equation];
    return _rows[equation] < 0 ? 0. : _column[_rows[equation]];
  }

  /// Sum of a part of each weight of a variable's data.
  template <class Part>
  double sum(int variable, Part part) const
  {
    double sum = 0.;
    for (int s = 0; s < _system._nSamples; ++s)
      sum += part((*this)[s * _system._nVariables + variable]);
    for (std::size_t d = 0; d < _system._extraData.size(); ++d)
      if (_system._extraData[d].variable == variable)
        sum += part(_extraWeight(d));
    return sum;
  }

  double estimate(const double *const *values) const
  {
    const int nVariables = _system._nVariables;
    double sum = 0.;
    for (int v = 0; v < nVariables; ++v) {
      const double *z = values[v];
      for (int s = 0; s < _system._nSamples; ++s) {
        const double weight = (*this)[s * nVariables + v];
        if (NbbGlobal::isDefined(z[s]) && weight != NbbGlobal::D_FFFF)
          sum += weight * z[s];
      }
    }
    for (std::size_t d = 0; d < _system._extraData.size(); ++d)
      sum += _extraWeight(d) * _system._extraData[d].value;
    return sum;
  }

private:
  double _extraWeight(std::size_t d) const { return _column[_system._getNRows() + int(d)]; }

  const NgmAKrigingSystem &_system;
  const double *_column;
  const int *_rows;
};

void NgmAKrigingSystem::_checkWeightsReady() const
{
  if (!isReady())
    _failWeightsNotReady();
}

void NgmAKrigingSystem::_failWeightsNotReady()
{
  throw NbeProgrammingError(
      QStringLiteral("NgmAKrigingSystem::_checkWeightsReady: System not solved and not ready!"));
}

void NgmAKrigingSystem::getWeights(int t, int v, QVector<double> &w) const
{
  _checkWeightsReady();
  const Weights weights(*this, t);
  w.resize(_nSamples);
  double *out = w.data();
  for (int s = 0; s < _nSamples; ++s)
    out[s] = weights[s * _nVariables + v];
}

void NgmAKrigingSystem::computeSumOfWeights(QVector<double> &out) const
{
  _checkWeightsReady();
  out.resize(_nVariables);
  for (int t = 0; t < _nVariables; ++t)
    out[t] = getSumOfWeights(t, t);
}

void NgmAKrigingSystem::computeSumOfPositiveWeights(QVector<double> &out) const
{
  _checkWeightsReady();
  out.resize(_nVariables);
  for (int t = 0; t < _nVariables; ++t)
    out[t] = getSumOfPosWeights(t, t);
}

double NgmAKrigingSystem::getSumOfWeights(int t, int v) const
{
  _checkWeightsReady();
  return Weights(*this, t).sum(v, [](double weight) { return weight; });
}

double NgmAKrigingSystem::getSumOfPosWeights(int t, int v) const
{
  _checkWeightsReady();
  return Weights(*this, t).sum(v, [](double weight) { return std::max(0., weight); });
}

double NgmAKrigingSystem::getSumOfNegWeights(int t, int v) const
{
  _checkWeightsReady();
  return Weights(*this, t).sum(v, [](double weight) { return std::min(0., weight); });
}

void NgmAKrigingSystem::computeWeightForMean(QVector<double> &out) const
{
  _checkWeightsReady();
  if (_extDriftModel.getNDriftEquations() > 0)
    throw NbeProgrammingError(
        QStringLiteral("NgmKrigingSystem::computeWeightForMean: weight of the mean cannot be "
                       "computed using external drifts."));
  computeSumOfWeights(out);
  for (double &sum : out)
    sum = 1. - sum;
}

void NgmAKrigingSystem::computeLagrange(QVector<double> &out) const
{
  _checkWeightsReady();
  if (_nUniversality == 0)
    throw NbeProgrammingError(QStringLiteral(
        "NgmKrigingSystem::computeLagrange: lagrange parameter not available in SK."));
  out.resize(_nVariables);
  for (int t = 0; t < _nVariables; ++t)
    out[t] = Weights(*this, t)[_getNDataEquations() + (_rescaled ? 0 : t)];
}

double NgmAKrigingSystem::krigingResult(const NbdAVariableNumeric &data) const
{
  _checkWeightsReady();
  if (_nVariables != 1)
    NBE_FAIL_AT(SOURCE, QStringLiteral("getNVariables() == 1"));
  return Weights(*this, 0).estimate(_values.take(data));
}

void NgmAKrigingSystem::krigingResults(const QList<NbdAVariableNumeric *> &dataVars,
                                       QVector<double> &out) const
{
  _checkWeightsReady();
  if (dataVars.size() != _nVariables)
    NBE_FAIL_AT(SOURCE, QStringLiteral("dataVars.size() == getNVariables()"));
  krigingResults(_values.take(dataVars), out);
}

void NgmAKrigingSystem::krigingResults(const double *const *values, QVector<double> &out) const
{
  _checkWeightsReady();
  out.resize(_nVariables);
  for (int t = 0; t < _nVariables; ++t)
    out[t] = Weights(*this, t).estimate(values);
}

void NgmAKrigingSystem::computeVariance(const QVector<double> &c00, QVector<double> &out) const
{
  _checkWeightsReady();
  const NgmMatrix &weights = getWeightsMatrix();
  const NgmMatrix &rhs = getRHSMatrix();
  const int n = weights.getNRows();
  out.resize(_nVariables);
  for (int t = 0; t < _nVariables; ++t)
    out[t] = krigingVariance(c00.at(t), n, weights.constElements() + qint64(t) * n,
                             rhs.constElements() + qint64(t) * n);
}

void NgmAKrigingSystem::computeNonOptimVariance(const QVector<double> &c00,
                                                QVector<double> &out) const
{
  computeCovarianceZZStar(out);
  for (int t = 0; t < _nVariables; ++t)
    out[t] = c00.at(t) - 2. * out[t] + _quadraticForm(t);
}

double NgmAKrigingSystem::_quadraticForm(int t) const
{
  const NgmMatrix &lhs = getLHSMatrix();
  const int n = _getNDataRows();
  const double *weights = getWeightsMatrix().constElements() + qint64(t) * lhs.getNRows();
  double sum = 0.;
  for (int j = 0; j < n; ++j)
    sum += weights[j] * dotProduct(n, weights, lhs.constElements() + qint64(j) * lhs.getNRows());
  return sum;
}

void NgmAKrigingSystem::computeVarianceOfEstimates(QVector<double> &out) const
{
  _checkWeightsReady();
  out.resize(_nVariables);
  for (int t = 0; t < _nVariables; ++t)
    out[t] = floorVariance(_covarianceOfEstimates(t, t));
}

void NgmAKrigingSystem::computeCovarianceZ1StarZStar(int v, QVector<double> &out) const
{
  _checkWeightsReady();
  if (out.size() < _nVariables - 1)
    NBE_FAIL_AT(SOURCE, QStringLiteral("out.size() >= getNVariables() - 1"));
  int position = 0;
  for (int t = 0; t < _nVariables; ++t)
    if (t != v)
      out[position++] = _covarianceOfEstimates(v, t);
}

double NgmAKrigingSystem::_covarianceOfEstimates(int v, int t) const
{
  const int nRows = getWeightsMatrix().getNRows();
  const double *weights = getWeightsMatrix().constElements();
  const double *rhs = getRHSMatrix().constElements();
  const auto product = [nRows](int first, int end, const double *a, const double *b) {
    return dotProduct(end - first, a + first, b + first);
  };
  const double *weightsV = weights + qint64(v) * nRows;
  const double *weightsT = weights + qint64(t) * nRows;
  const double *rhsV = rhs + qint64(v) * nRows;
  const double *rhsT = rhs + qint64(t) * nRows;

  // w_v' C w_t with C w_t = rhs_t - F mu_t in the data rows and F' w_v = rhs_v in the others. The
  // conditions of the border have no part: they are met by the datum at the target alone.
  return product(0, _getNDataRows(), weightsV, rhsT) +
         product(_getNRows(), _getNRows() + int(_extraData.size()), weightsV, rhsT) -
         product(_getNDataRows(), _getNRows(), rhsV, weightsT);
}

void NgmAKrigingSystem::computeCovarianceZZStar(QVector<double> &out) const
{
  _checkWeightsReady();
  const NgmMatrix &weights = getWeightsMatrix();
  const NgmMatrix &rhs = getRHSMatrix();
  const int nRows = weights.getNRows();
  out.resize(_nVariables);
  for (int t = 0; t < _nVariables; ++t) {
    const double *w = weights.constElements() + qint64(t) * nRows;
    const double *k = rhs.constElements() + qint64(t) * nRows;
    const int border = _getNRows();
    out[t] = dotProduct(_getNDataRows(), w, k) +
             dotProduct(int(_extraData.size()), w + border, k + border);
  }
}

void NgmAKrigingSystem::computeCorrelationZZStar(const QVector<double> &c00,
                                                 const QVector<double> &cov,
                                                 const QVector<double> &varZStar,
                                                 QVector<double> &out) const
{
  _checkWeightsReady();
  out.resize(_nVariables);
  for (int t = 0; t < _nVariables; ++t) {
    const double product = c00.at(t) * varZStar.at(t);
    out[t] = product > 0. ? cov.at(t) / std::sqrt(product) : NbbGlobal::D_FFFF;
  }
}

void NgmAKrigingSystem::computeSlopeRegressionZZStar(const QVector<double> &cov,
                                                     const QVector<double> &varZStar,
                                                     QVector<double> &out) const
{
  _checkWeightsReady();
  out.resize(_nVariables);
  for (int t = 0; t < _nVariables; ++t)
    out[t] =
        std::abs(varZStar.at(t)) > NULL_VARIANCE ? cov.at(t) / varZStar.at(t) : NbbGlobal::D_FFFF;
}

void NgmAKrigingSystem::computeKrigingEfficiency(const QVector<double> &c00,
                                                 const QVector<double> &variance,
                                                 QVector<double> &out) const
{
  _checkWeightsReady();
  out.resize(_nVariables);
  for (int t = 0; t < _nVariables; ++t)
    out[t] = std::abs(c00.at(t)) > NULL_VARIANCE ? (c00.at(t) - variance.at(t)) / c00.at(t)
                                                 : NbbGlobal::D_FFFF;
}

bool NgmAKrigingSystem::_checkSuspicious() const
{
  const NgmMatrix &weights = getWeightsMatrix();
  for (int t = 0; t < _nVariables; ++t) {
    const double *column = weights.constElements() + qint64(t) * weights.getNRows();
    if (std::any_of(column, column + _getNDataRows(),
                    [](double weight) { return !(std::abs(weight) <= SUSPICIOUS_WEIGHT); }))
      return true;
  }
  return false;
}
