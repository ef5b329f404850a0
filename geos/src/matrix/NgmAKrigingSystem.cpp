#include "geos/matrix/NgmAKrigingSystem.h"

#include "basic/base/NbbGlobal.h"
#include "basic/data/NbdAVariableNumeric.h"
#include "basic/data/NbdVariableDouble.h"
#include "basic/error/NbeAssertion.h"
#include "basic/error/NbeProgrammingError.h"
#include "geos/vmodel/NgmVModel.h"
#include "matrix/private/NgmDotProduct.h"

#include <algorithm>

/// The weights of one target variable by equation, compressed or not.
class NgmAKrigingSystem::Weights
{
public:
  Weights(const NgmAKrigingSystem &system, int t)
      : _column(system.getWeightsMatrix().constElements() +
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

private:
  const double *_column;
  const int *_rows;
};

NgmAKrigingSystem::NgmAKrigingSystem(int nSamples, int nVariables, int nUniversality, int nDrifts)
    : _rescaled(nVariables > 1 && nUniversality == 1),
      _nVariables(nVariables),
      _nSamples(0),
      _nUniversality(nUniversality),
      _nDrifts(nDrifts),
      _nValidEquations(0),
      _nValidDataEquations(0)
{
  if (_rescaled && nDrifts > 0)
    NBE_FAIL(QStringLiteral("Rescaled cokriging is incompatible with drifts"));
  _resize(nSamples);
}

NgmAKrigingSystem::NgmAKrigingSystem(const NgmAKrigingSystem &other) = default;

NgmAKrigingSystem &NgmAKrigingSystem::operator=(const NgmAKrigingSystem &other) = default;

NgmAKrigingSystem::~NgmAKrigingSystem() = default;

int NgmAKrigingSystem::_countUniversality(int nVariables, bool simple, bool singleCondition)
{
  if (simple)
    return 0;
  return singleCondition ? 1 : nVariables;
}

int NgmAKrigingSystem::getNEquations() const
{
  return _getNDataEquations() + _nUniversality + _nDrifts;
}

void NgmAKrigingSystem::_resize(int nSamples)
{
  _nSamples = nSamples;
  _nValidEquations = getNEquations();
  _nValidDataEquations = _getNDataEquations();
  _validEquations.assign(std::size_t(_nValidEquations), 1);
  _validVariables.assign(std::size_t(_nVariables), 1);
  if (_isCompressed())
    _updateCompressedRows();
}

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

// Building.

void NgmAKrigingSystem::_invalidateEquation(int equation)
{
  if (!_isValidEquation(equation))
    return;
  _validEquations[std::size_t(equation)] = 0;
  --_nValidEquations;
  if (equation < _getNDataEquations())
    --_nValidDataEquations;
}

void NgmAKrigingSystem::_buildLHS(const NgmVModel &model, const NgmKrigingSamples &samples,
                                  NgmVModelCovaCache *cache)
{
  NgmMatrix &lhs = _getLHSMatrix();
  model.calcAllCovas(samples.n, samples.x, samples.y, samples.z, lhs, cache);
  _findInvalidData(samples);
  _updateValidVars();
  if (_nUniversality > 0)
    _setDriftPartLHS(lhs);
  if (_isCompressed())
    _updateCompressedRows();
}

void NgmAKrigingSystem::_findInvalidData(const NgmKrigingSamples &samples)
{
  for (int v = 0; v < _nVariables; ++v) {
    const double *values = samples.values[v];
    for (int s = 0; s < _nSamples; ++s)
      if (!NbbGlobal::isDefined(values[s]))
        _invalidateEquation(s * _nVariables + v);
  }
}

void NgmAKrigingSystem::_updateValidVars()
{
  if (_nValidDataEquations > (_nVariables - 1) * _nSamples)
    return;
  for (int v = 0; v < _nVariables; ++v) {
    unsigned char valid = 0;
    for (int s = 0; s < _nSamples; ++s)
      valid |= _validEquations[std::size_t(s * _nVariables + v)];
    _validVariables[std::size_t(v)] = valid;
  }
}

void NgmAKrigingSystem::_setDriftPartLHS(NgmMatrix &lhs)
{
  const qint64 order = lhs.getNRows();
  const int first = _getNDataEquations();
  double *a = lhs.elements();
  for (int u = 0; u < _nUniversality; ++u) {
    const qint64 row = first + u;
    for (int equation = 0; equation < first; ++equation) {
      const double one = _rescaled || equation % _nVariables == u ? 1. : 0.;
      a[equation + row * order] = one;
      a[row + equation * order] = one;
    }
  }
  _fixUniversalityCond();
  // No drift function stands behind these.
  for (int k = 0; k < _nDrifts; ++k)
    _invalidateEquation(first + _nUniversality + k);
}

void NgmAKrigingSystem::_fixUniversalityCond()
{
  if (_rescaled)
    return;
  for (int v = 0; v < _nVariables; ++v)
    if (!isValidVar(v))
      _invalidateEquation(_getNDataEquations() + v);
}

void NgmAKrigingSystem::_buildRHSPoint(const NgmVModel &model, const NbgVector3D &target,
                                       const NgmKrigingSamples &samples, NgmMatrix &rhs,
                                       NgmVModelCovaCache *cache) const
{
  model.calcCovasPointSet(target, samples.n, samples.x, samples.y, samples.z, rhs, cache);
  if (_nUniversality > 0)
    _setDriftPartRHS(rhs);
}

void NgmAKrigingSystem::_setDriftPartRHS(NgmMatrix &rhs) const
{
  const qint64 order = rhs.getNRows();
  double *first = rhs.elements() + _getNDataEquations();
  for (int t = 0; t < _nVariables; ++t)
    for (int u = 0; u < _nUniversality; ++u)
      first[u + t * order] = _rescaled || u == t ? 1. : 0.;
}

void NgmAKrigingSystem::_updateCompressedRows()
{
  _compressedRows.resize(_validEquations.size());
  int row = 0;
  for (std::size_t equation = 0; equation < _validEquations.size(); ++equation)
    _compressedRows[equation] = _validEquations[equation] ? row++ : -1;
}

NgmKrigingSamples NgmAKrigingSystem::_toArrays(const NbdVariableDouble &x,
                                               const NbdVariableDouble &y,
                                               const NbdVariableDouble &z,
                                               const QList<NbdAVariableNumeric *> &dataVars) const
{
  const std::size_t nVariables = std::size_t(dataVars.size());
  _valueArrays.resize(nVariables);
  _convertedValues.resize(std::max(_convertedValues.size(), nVariables));
  for (std::size_t v = 0; v < nVariables; ++v)
    _valueArrays[v] = _toArray(*dataVars.at(int(v)), _convertedValues[v]);

  NgmKrigingSamples samples;
  samples.n = x.getNValues();
  samples.x = x.getArrayConst();
  samples.y = y.getArrayConst();
  samples.z = z.getArrayConst();
  samples.values = _valueArrays.data();
  return samples;
}

const double *NgmAKrigingSystem::_toArray(const NbdAVariableNumeric &variable,
                                          std::vector<double> &converted)
{
  if (const auto *stored = dynamic_cast<const NbdVariableDouble *>(&variable))
    return stored->getArrayConst();
  const int n = variable.getNValues();
  converted.resize(std::size_t(n));
  variable.getValuesAsDouble(0, n, converted.data());
  return converted.data();
}

// Results.

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
  const Weights weights(*this, t);
  double sum = 0.;
  for (int s = 0; s < _nSamples; ++s)
    sum += weights[s * _nVariables + v];
  return sum;
}

double NgmAKrigingSystem::getSumOfPosWeights(int t, int v) const
{
  _checkWeightsReady();
  const Weights weights(*this, t);
  double sum = 0.;
  for (int s = 0; s < _nSamples; ++s)
    sum += std::max(0., weights[s * _nVariables + v]);
  return sum;
}

double NgmAKrigingSystem::getSumOfNegWeights(int t, int v) const
{
  _checkWeightsReady();
  const Weights weights(*this, t);
  double sum = 0.;
  for (int s = 0; s < _nSamples; ++s)
    sum += std::min(0., weights[s * _nVariables + v]);
  return sum;
}

void NgmAKrigingSystem::computeWeightForMean(QVector<double> &out) const
{
  computeSumOfWeights(out);
  for (double &sum : out)
    sum = 1. - sum;
}

void NgmAKrigingSystem::computeLagrange(QVector<double> &out) const
{
  if (_nUniversality == 0)
    throw NbeProgrammingError(QStringLiteral(
        "NgmKrigingSystem::computeLagrange: lagrange parameter not available in SK."));
  _checkWeightsReady();
  out.resize(_nVariables);
  for (int t = 0; t < _nVariables; ++t)
    out[t] = Weights(*this, t)[_getNDataEquations() + (_rescaled ? 0 : t)];
}

double NgmAKrigingSystem::krigingResult(const NbdAVariableNumeric &data) const
{
  _checkWeightsReady();
  if (_nVariables != 1)
    NBE_FAIL(QStringLiteral("getNVariables() == 1"));
  if (_convertedValues.empty())
    _convertedValues.resize(1);
  const double *values = _toArray(data, _convertedValues.front());
  QVector<double> results;
  krigingResults(&values, results);
  return results.first();
}

void NgmAKrigingSystem::krigingResults(const QList<NbdAVariableNumeric *> &dataVars,
                                       QVector<double> &out) const
{
  _checkWeightsReady();
  if (dataVars.size() != _nVariables)
    NBE_FAIL(QStringLiteral("dataVars.size() == getNVariables()"));
  const std::size_t nVariables = std::size_t(dataVars.size());
  _valueArrays.resize(nVariables);
  _convertedValues.resize(std::max(_convertedValues.size(), nVariables));
  for (std::size_t v = 0; v < nVariables; ++v)
    _valueArrays[v] = _toArray(*dataVars.at(int(v)), _convertedValues[v]);
  krigingResults(_valueArrays.data(), out);
}

void NgmAKrigingSystem::krigingResults(const double *const *values, QVector<double> &out) const
{
  _checkWeightsReady();
  out.resize(_nVariables);
  for (int t = 0; t < _nVariables; ++t) {
    const Weights weights(*this, t);
    double sum = 0.;
    for (int v = 0; v < _nVariables; ++v) {
      const double *z = values[v];
      for (int s = 0; s < _nSamples; ++s) {
        const double weight = weights[s * _nVariables + v];
        if (NbbGlobal::isDefined(z[s]) && weight != NbbGlobal::D_FFFF)
          sum += weight * z[s];
      }
    }
    out[t] = sum;
  }
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

QString NgmAKrigingSystem::debug(int) const
{
  const auto line = [](const char *label, const QString &value) {
    return QString::fromLatin1(label) + ' ' + value + '\n';
  };
  return line("N Var               :", QString::number(_nVariables)) +
         line("N Data              :", QString::number(_nSamples)) +
         line("N Equations         :", QString::number(getNEquations())) +
         line("N Valid Data        :", QString::number(_nValidDataEquations)) +
         line("N Valid Equations   :", QString::number(_nValidEquations)) +
         line("N Drift Functions   :", QString::number(_nDrifts)) +
         line("Reference Point     :", _referencePoint.toString()) +
         line("Compressed?         :",
              _isCompressed() ? QStringLiteral("true") : QStringLiteral("false"));
}
