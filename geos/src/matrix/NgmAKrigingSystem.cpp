#include "geos/matrix/NgmAKrigingSystem.h"

#include "basic/base/NbbGlobal.h"
#include "basic/data/NbdAVariableNumeric.h"
#include "basic/data/NbdVariableDouble.h"
#include "basic/error/NbeAssertion.h"
#include "geos/interpol/NgmTarget.h"
#include "geos/vmodel/NgmVModel.h"

#include <QObject>

#include <algorithm>

namespace {

QString yesNo(bool value)
{
  return value ? QStringLiteral("true") : QStringLiteral("false");
}

}  // namespace

NgmAKrigingSystem::NgmAKrigingSystem(int nSamples, int nVariables, int nUniversality, int nDrifts)
    : _blockCorrections(std::size_t(nVariables), 0.),
      _pointCorrelations(nVariables, nVariables, true),
      _rescaled(nVariables > 1 && nUniversality == 1),
      _filterDrifts(false),
      _blockCorrected(false),
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

// Settings.

void NgmAKrigingSystem::setDriftModel(const NgmDriftModel &model)
{
  _driftModel = model;
}

void NgmAKrigingSystem::setExtDriftModel(const NgmExtDriftModel &model)
{
  _extDriftModel = model;
  _externalTerms.clear();
  QMap<int, int> nTerms;
  for (int term = 0; term < model.getNDriftEquations(); ++term) {
    const int variable = model.getVariable(term);
    _externalTerms.push_back({variable, model.getDriftIndices(variable).at(nTerms[variable]++)});
  }
}

void NgmAKrigingSystem::setStDevMeasurementError(const QMap<int, NbdAVariableNumeric *> &variables)
{
  _errorVariables = variables;
}

void NgmAKrigingSystem::setBlockCorrectionCoefficient(int variable, double r)
{
  if (!(r > 0. && r <= 1.))
    NBE_FAIL(QStringLiteral("Invalid r coefficient"));
  if (variable < 0 || variable >= _nVariables)
    NBE_FAIL(QStringLiteral("variable < getNVariables()"));
  _blockCorrections[std::size_t(variable)] = r;
  _blockCorrected = true;
}

void NgmAKrigingSystem::setPointGaussianCorrelation(const NgmMatrix &correlations)
{
  if (correlations.getNRows() != _nVariables || correlations.getNColumns() != _nVariables)
    NBE_FAIL(QStringLiteral("correlations.getNRows() == getNVariables()"));
  _pointCorrelations = correlations;
  _blockCorrected = true;
}

void NgmAKrigingSystem::setFilterDrifts(bool filtered)
{
  if (_rescaled)
    NBE_FAIL(QStringLiteral("Rescaled cokriging is incompatible with drift filtering"));
  _filterDrifts = filtered;
}

double NgmAKrigingSystem::_getCorrection(int variable) const
{
  return _blockCorrected ? _blockCorrections[std::size_t(variable)] : 1.;
}

// Equations.

int NgmAKrigingSystem::getNEquations() const
{
  return _getNDataEquations() + _nUniversality + _nDrifts;
}

int NgmAKrigingSystem::_getNDataRows() const
{
  return _isCompressed() ? _nValidDataEquations : _getNDataEquations();
}

int NgmAKrigingSystem::_getNRows() const
{
  return _isCompressed() ? _nValidEquations : getNEquations();
}

void NgmAKrigingSystem::_resize(int nSamples)
{
  _nSamples = nSamples;
  _nValidEquations = getNEquations();
  _nValidDataEquations = _getNDataEquations();
  _validEquations.assign(std::size_t(_nValidEquations), 1);
  _validVariables.assign(std::size_t(_nVariables), 1);
  if (hasDriftError())
    _driftError.clear();
  if (_isCompressed())
    _updateCompressedRows();
}

void NgmAKrigingSystem::_invalidateEquation(int equation)
{
  if (!_isValidEquation(equation))
    return;
  _validEquations[std::size_t(equation)] = 0;
  --_nValidEquations;
  if (equation < _getNDataEquations())
    --_nValidDataEquations;
}

void NgmAKrigingSystem::_updateCompressedRows()
{
  _compressedRows.resize(_validEquations.size());
  int row = 0;
  for (std::size_t equation = 0; equation < _validEquations.size(); ++equation)
    _compressedRows[equation] = _validEquations[equation] ? row++ : -1;
}

// Left-hand side.

void NgmAKrigingSystem::_buildLHS(const NgmVModel &model, const NgmKrigingSamples &samples,
                                  NgmVModelCovaCache *cache)
{
  _checkSamples(samples);
  NgmMatrix &lhs = _getLHSMatrix();
  const auto part = _needsUpperOnly() ? NgmVModel::MatrixPart::Upper : NgmVModel::MatrixPart::Full;
  model.calcAllCovas(samples.n, samples.x, samples.y, samples.z, lhs, cache, part);
  _findInvalidData(samples);
  if (_blockCorrected)
    _correctForBlocks(lhs);
  _addMeasurementErrors(samples, lhs);
  _updateValidVars();
  _setDriftPartLHS(samples, lhs);
  if (_isCompressed())
    _updateCompressedRows();
}

void NgmAKrigingSystem::_checkSamples(const NgmKrigingSamples &samples) const
{
  if (samples.n != _nSamples)
    NBE_FAIL(QStringLiteral("samples.n == getNSamples()"));
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

void NgmAKrigingSystem::_correctForBlocks(NgmMatrix &lhs) const
{
  const qint64 order = lhs.getNRows();
  double *elements = lhs.elements();
  for (int j = 0; j < _getNDataEquations(); ++j) {
    const int b = j % _nVariables;
    const double rb = _getCorrection(b);
    for (int i = 0; i < j; ++i) {
      const int a = i % _nVariables;
      const bool sameSample = i / _nVariables == j / _nVariables;
      double &upper = elements[i + j * order];
      upper = sameSample ? _pointCorrelations(b, a) : upper * _getCorrection(a) * rb;
      elements[j + i * order] = upper;
    }
  }
}

void NgmAKrigingSystem::_addMeasurementErrors(const NgmKrigingSamples &samples,
                                              NgmMatrix &lhs) const
{
  const double *const *errors = samples.errorStDevs;
  if (!errors && !_errorVariables.isEmpty())
    errors = _errors.take(_errorVariables, _nVariables);
  if (!errors)
    return;
  const qint64 order = lhs.getNRows();
  double *elements = lhs.elements();
  for (int v = 0; v < _nVariables; ++v)
    for (int s = 0; errors[v] && s < _nSamples; ++s)
      if (NbbGlobal::isDefined(errors[v][s]))
        elements[(qint64(s) * _nVariables + v) * (order + 1)] += errors[v][s] * errors[v][s];
}

void NgmAKrigingSystem::_updateValidVars()
{
  if (_nValidDataEquations > (_nVariables - 1) * _nSamples)
    return;
  for (int v = 0; v < _nVariables; ++v)
    _validVariables[std::size_t(v)] = _countValidData(v) > 0;
}

int NgmAKrigingSystem::_countValidData(int variable) const
{
  int count = 0;
  for (int s = 0; s < _nSamples; ++s)
    count += _validEquations[std::size_t(s * _nVariables + variable)];
  return count;
}

void NgmAKrigingSystem::_setDriftPartLHS(const NgmKrigingSamples &samples, NgmMatrix &lhs)
{
  const int firstDrift = _getNDataEquations() + _nUniversality;
  if (_nUniversality > 0)
    _setUniversalityRows(lhs);
  for (int k = 0; k < _nDrifts; ++k)
    if (_nUniversality == 0 || _getDriftVariable(k) < 0)
      _invalidateEquation(firstDrift + k);
  if (_nUniversality == 0)
    return;
  _checkDriftTerms();
  _fixUniversalityCond();
  if (_nDrifts == 0)
    return;

  const int nPolynomials = _driftModel.getNDriftEquations();
  const int nDataBefore = _nValidDataEquations;
  for (int k = 0; k < _nDrifts; ++k) {
    if (!_isValidEquation(firstDrift + k))
      continue;
    if (k < nPolynomials)
      _setPolynomialRow(k, firstDrift + k, samples, lhs);
    else
      _setExternalRow(_externalTerms[std::size_t(k - nPolynomials)], firstDrift + k, samples, lhs);
  }
  if (_nValidDataEquations < nDataBefore) {
    _updateValidVars();
    _fixUniversalityCond();
  }
  _checkDriftFeasibility();
}

void NgmAKrigingSystem::_setUniversalityRows(NgmMatrix &lhs) const
{
  const qint64 order = lhs.getNRows();
  const int first = _getNDataEquations();
  const bool mirrored = !_needsUpperOnly();
  double *a = lhs.elements();
  for (int u = 0; u < _nUniversality; ++u) {
    const qint64 row = first + u;
    for (int equation = 0; equation < first; ++equation) {
      const double one = _rescaled || equation % _nVariables == u ? 1. : 0.;
      a[equation + row * order] = one;
      if (mirrored)
        a[row + equation * order] = one;
    }
  }
}

void NgmAKrigingSystem::_fixUniversalityCond()
{
  if (_rescaled)
    return;
  for (int v = 0; v < _nVariables; ++v)
    if (!isValidVar(v))
      _invalidateEquation(_getNDataEquations() + v);
}

void NgmAKrigingSystem::_checkDriftTerms() const
{
  if (_driftModel.getNDriftEquations() + _extDriftModel.getNDriftEquations() > _nDrifts)
    NBE_FAIL(QStringLiteral("drift terms <= drift equations"));
}

int NgmAKrigingSystem::_getDriftVariable(int k) const
{
  const int nPolynomials = _driftModel.getNDriftEquations();
  const int nTerms = nPolynomials + int(_externalTerms.size());
  if (k >= nTerms)
    return -1;
  const int variable = k < nPolynomials ? _driftModel.getVariable(k)
                                        : _externalTerms[std::size_t(k - nPolynomials)].variable;
  return variable < _nVariables ? variable : -1;
}

void NgmAKrigingSystem::_setPolynomialRow(int term, int row, const NgmKrigingSamples &samples,
                                          NgmMatrix &lhs)
{
  const qint64 order = lhs.getNRows();
  const int variable = _driftModel.getVariable(term);
  _termValues.resize(std::max(_termValues.size(), std::size_t(_nSamples)));
  _driftModel.getDriftValuesAtDataPoints(term, variable, _referencePoint, _nSamples, samples.x,
                                         samples.y, samples.z, _termValues.data());
  double *a = lhs.elements();
  for (int s = 0; s < _nSamples; ++s) {
    const qint64 equation = qint64(s) * _nVariables + variable;
    a[equation + row * order] = _termValues[std::size_t(s)];
    a[row + equation * order] = _termValues[std::size_t(s)];
  }
}

void NgmAKrigingSystem::_setExternalRow(const ExternalTerm &term, int row,
                                        const NgmKrigingSamples &samples, NgmMatrix &lhs)
{
  if (!samples.externalDrifts)
    NBE_FAIL(QStringLiteral("No drift variable found."));
  const qint64 order = lhs.getNRows();
  const double *values = samples.externalDrifts[term.driftIndex];
  double *a = lhs.elements();
  for (int s = 0; s < _nSamples; ++s) {
    const int equation = s * _nVariables + term.variable;
    const bool defined = NbbGlobal::isDefined(values[s]);
    if (!defined)
      _invalidateEquation(equation);
    a[equation + row * order] = defined ? values[s] : 0.;
    a[row + equation * order] = defined ? values[s] : 0.;
  }
}

void NgmAKrigingSystem::_checkDriftFeasibility()
{
  const int firstDrift = _getNDataEquations() + _nUniversality;
  for (int v = 0; v < _nVariables; ++v) {
    const int nTerms = _driftModel.getNDriftEquations(v) +
                       int(std::count_if(_externalTerms.begin(), _externalTerms.end(),
                                         [v](const ExternalTerm &t) { return t.variable == v; }));
    // The constant is a drift function too.
    const int nValid = nTerms > 0 ? _countValidData(v) : 0;
    if (nTerms == 0 || nValid >= nTerms + 1)
      continue;
    for (int k = 0; k < _nDrifts; ++k)
      if (_getDriftVariable(k) == v)
        _invalidateEquation(firstDrift + k);
    _driftError += QObject::tr(
                       "Not enough defined samples (%1) toward drift equations (%2) for variable "
                       "#%3. Please increase your neighborhood size.\n")
                       .arg(nValid)
                       .arg(nTerms + 1)
                       .arg(v);
  }
}

// Right-hand side.

void NgmAKrigingSystem::_buildRHSPoint(const NgmVModel &model, const NbgVector3D &target,
                                       const NgmKrigingSamples &samples,
                                       const double *extDriftValuesAtTarget, NgmMatrix &rhs,
                                       NgmVModelCovaCache *cache) const
{
  _checkSamples(samples);
  model.calcCovasPointSet(target, samples.n, samples.x, samples.y, samples.z, rhs, cache);
  _correctRHS(rhs);
  if (_nUniversality > 0)
    _setDriftPartRHS(NgmTarget(target), extDriftValuesAtTarget, rhs);
}

void NgmAKrigingSystem::_buildRHSBlock(const NgmVModel &model, const NgmTarget &target,
                                       const NgmKrigingSamples &samples,
                                       const double *extDriftValuesAtTarget, NgmMatrix &rhs,
                                       NgmVModelCovaCache *cache) const
{
  _checkSamples(samples);
  target.getDiscretizationPoints(_blockPoints);
  model.calcCovasBlockSet(_blockPoints.size(), _blockPoints.constData(), samples.n, samples.x,
                          samples.y, samples.z, rhs, cache);
  _correctRHS(rhs);
  if (_nUniversality > 0)
    _setDriftPartRHS(target, extDriftValuesAtTarget, rhs);
}

void NgmAKrigingSystem::_correctRHS(NgmMatrix &rhs) const
{
  if (!_blockCorrected)
    return;
  const qint64 order = rhs.getNRows();
  double *elements = rhs.elements();
  for (int t = 0; t < _nVariables; ++t)
    for (int equation = 0; equation < _getNDataEquations(); ++equation)
      elements[equation + t * order] *= _getCorrection(equation % _nVariables);
}

void NgmAKrigingSystem::_setDriftPartRHS(const NgmTarget &target,
                                         const double *extDriftValuesAtTarget, NgmMatrix &rhs) const
{
  const qint64 order = rhs.getNRows();
  const int first = _getNDataEquations();
  if (_filterDrifts) {
    for (int t = 0; t < _nVariables; ++t)
      std::fill_n(rhs.elements() + first + t * order, _nUniversality + _nDrifts, 0.);
    return;
  }
  _setDriftRows(target, extDriftValuesAtTarget, rhs);
  if (!_blockCorrected)
    return;
  double *polynomials = rhs.elements() + first + _nUniversality;
  for (int t = 0; t < _nVariables; ++t)
    for (int k = 0; k < _driftModel.getNDriftEquations(); ++k)
      polynomials[k + t * order] *= _getCorrection(t);
}

void NgmAKrigingSystem::_setDriftRows(const NgmTarget &target, const double *extDriftValuesAtTarget,
                                      NgmMatrix &columns) const
{
  const qint64 order = columns.getNRows();
  const int nPolynomials = _driftModel.getNDriftEquations();
  for (int t = 0; t < _nVariables; ++t) {
    double *row = columns.elements() + _getNDataEquations() + t * order;
    for (int u = 0; u < _nUniversality; ++u)
      *row++ = _rescaled || u == t ? 1. : 0.;
    for (int k = 0; k < _nDrifts; ++k) {
      double value = 0.;
      if (_getDriftVariable(k) == t)
        value = k < nPolynomials ? _driftModel.getDriftValueAtTarget(k, t, _referencePoint, target)
                                 : _getExternalDrift(_externalTerms[std::size_t(k - nPolynomials)],
                                                     extDriftValuesAtTarget);
      *row++ = value;
    }
  }
}

double NgmAKrigingSystem::_getExternalDrift(const ExternalTerm &term,
                                            const double *extDriftValuesAtTarget) const
{
  if (!extDriftValuesAtTarget || !NbbGlobal::isDefined(extDriftValuesAtTarget[term.driftIndex]))
    NBE_FAIL(QStringLiteral("Undefined External Drift Value"));
  return extDriftValuesAtTarget[term.driftIndex];
}

int NgmAKrigingSystem::_countExternalDrifts() const
{
  int last = -1;
  for (const ExternalTerm &term : _externalTerms)
    last = std::max(last, term.driftIndex);
  return last + 1;
}

// Variables as arrays.

void NgmAKrigingSystem::Arrays::_resize(int size)
{
  _pointers.resize(std::size_t(size));
  if (_converted.size() < std::size_t(size))
    _converted.resize(std::size_t(size));
}

const double *const *NgmAKrigingSystem::Arrays::take(const QList<NbdAVariableNumeric *> &variables)
{
  _resize(variables.size());
  for (int v = 0; v < variables.size(); ++v)
    _pointers[std::size_t(v)] = _toArray(*variables.at(v), _converted[std::size_t(v)]);
  return variables.isEmpty() ? nullptr : _pointers.data();
}

const double *const *NgmAKrigingSystem::Arrays::take(const NbdAVariableNumeric &variable)
{
  _resize(1);
  _pointers.front() = _toArray(variable, _converted.front());
  return _pointers.data();
}

const double *const *NgmAKrigingSystem::Arrays::take(
    const QMap<int, NbdAVariableNumeric *> &variables, int size)
{
  _resize(size);
  for (int v = 0; v < size; ++v) {
    const NbdAVariableNumeric *variable = variables.value(v, nullptr);
    _pointers[std::size_t(v)] =
        variable ? _toArray(*variable, _converted[std::size_t(v)]) : nullptr;
  }
  return _pointers.data();
}

const double *NgmAKrigingSystem::Arrays::_toArray(const NbdAVariableNumeric &variable,
                                                  std::vector<double> &converted)
{
  if (const auto *stored = dynamic_cast<const NbdVariableDouble *>(&variable))
    return stored->getArrayConst();
  const int n = variable.getNValues();
  converted.resize(std::size_t(n));
  variable.getValuesAsDouble(0, n, converted.data());
  return converted.data();
}

NgmKrigingSamples NgmAKrigingSystem::_toArrays(const NbdVariableDouble &x,
                                               const NbdVariableDouble &y,
                                               const NbdVariableDouble &z)
{
  NgmKrigingSamples samples;
  samples.n = x.getNValues();
  samples.x = x.getArrayConst();
  samples.y = y.getArrayConst();
  samples.z = z.getArrayConst();
  return samples;
}

NgmKrigingSamples NgmAKrigingSystem::_toArrays(
    const NbdVariableDouble &x, const NbdVariableDouble &y, const NbdVariableDouble &z,
    const QList<NbdAVariableNumeric *> &dataVars,
    const QList<NbdAVariableNumeric *> &extDriftVars) const
{
  if (dataVars.size() != _nVariables)
    NBE_FAIL(QStringLiteral("dataVars.size() == getNVariables()"));
  NgmKrigingSamples samples = _toArrays(x, y, z);
  samples.values = _values.take(dataVars);
  if (extDriftVars.size() >= _countExternalDrifts())
    samples.externalDrifts = _externalDrifts.take(extDriftVars);
  return samples;
}

const double *NgmAKrigingSystem::_toArray(const QVector<double> &extDriftValues) const
{
  return extDriftValues.size() < _countExternalDrifts() ? nullptr : extDriftValues.constData();
}

QString NgmAKrigingSystem::debug(int level) const
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
         line("Compressed?         :", yesNo(_isCompressed())) +
         QStringLiteral("Internal Drift Model:\n") + _driftModel.debug(level) +
         QStringLiteral("External Drift Model:\n") + _extDriftModel.debug(level);
}
