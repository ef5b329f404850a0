#include "geos/fit/NgmOptimizerFoxleg.h"

#include "basic/base/NbbGlobal.h"
#include "basic/error/NbeProgrammingError.h"
#include "fit/private/NgmBoundedQuadratic.h"
#include "geos/fit/NgmAOptimizable.h"

#include <QObject>

#include <algorithm>
#include <cmath>

namespace {

constexpr double SMALLEST_INITIAL_DELTA = 0.001;
constexpr double DERIVATION_STEP = 0.001;
constexpr double NULL_STEP = 1e-10;
constexpr double NULL_EXTENSION = 1e-9;
constexpr double NULL_PREDICTION = 1e-30;
constexpr double SMALLEST_DELTA = 1e-5;
constexpr double SMALLEST_CHANGE = 1e-5;
constexpr double SMALLEST_SCORE = 1e-5;
constexpr double FIRST_ALPHA = 100.;
constexpr double LAST_ALPHA = 1e-30;

}  // namespace

NgmOptimizerFoxleg::NgmOptimizerFoxleg(const QString &name) : NgmAOptimizer(name) {}

NgmOptimizerFoxleg::~NgmOptimizerFoxleg()
{
  _finish();
}

void NgmOptimizerFoxleg::_patchParams(NgmOptParamList &) {}

bool NgmOptimizerFoxleg::_doOptimization(int nbMaxIteration)
{
  if (!(_initialDelta > SMALLEST_INITIAL_DELTA))
    throw NbeProgrammingError(
        QStringLiteral("NgmOptimizerFoxleg::_doOptimization: Initial optimization sensibility "
                       "value (delta) too small"));
  if (_paramsCount == 0) {
    _logs << QObject::tr("No parameters to be optimized!");
    return false;
  }
  _delta = _initialDelta;
  _iteration = 0;
  _isStepAccepted = true;
  _scoreStop = 1.;
  _moveStop = 0.;
  _converged = false;
  NgmOptParamList params = _optimizable->_getParamsRef();
  _score = _calculateResiduals(params);
  if (_score < 0.)
    throw NbeProgrammingError(
        QStringLiteral("NgmOptimizerFoxleg::_doOptimization: Negative score should never happen!"));
  _iterate(nbMaxIteration);
  if (_mustStop()) {
    _logs << QObject::tr("Optimization interrupted!");
    return false;
  }
  _calculateCriteria();
  _logEnd(nbMaxIteration);
  return true;
}

void NgmOptimizerFoxleg::_iterate(int nbMaxIteration)
{
  bool goesOn = nbMaxIteration > 0;
  while (goesOn && !_mustStop()) {
    ++_iteration;
    _incrementCounter(1);
    const bool mayMove = _step();
    _converged = !mayMove || std::fabs(_predicted) < NULL_PREDICTION || _delta < SMALLEST_DELTA ||
                 _scoreStop < SMALLEST_CHANGE || _newScore < SMALLEST_SCORE;
    goesOn = !_converged && _iteration < nbMaxIteration;
    _logIteration();
  }
}

/// One iteration; false when no parameter can move.
bool NgmOptimizerFoxleg::_step()
{
  NgmOptParamList params = _optimizable->_getParamsRef();
  if (_isStepAccepted) {
    _calculateGradients(params);
    _calculateGaussNewtonStep();
  }
  _defineExtensions(params);
  if (_isStepAccepted && !_hasRoomToMove()) {
    _newScore = _score;
    return false;
  }
  _minimizeUnderConstraints();
  _predicted = _getQuadraticMinimizationScore();

  _Move move;
  NgmOptParamList trial = params;
  if (_predicted <= 0.) {
    move = _shiftParameters(trial, _move);
    _patchParams(trial);
    _newScore = _calculateResiduals(trial);
  } else {
    _newScore = _gradientSearch(params, trial, move);
  }
  _moveStop = move.mean;
  const double ratio =
      std::fabs(_predicted) > NULL_PREDICTION ? (_newScore - _score) / _predicted : 1.;
  _isStepAccepted = _newScore < _score;
  if (_isStepAccepted) {
    _accept(trial);
    _scoreStop = _newScore <= NULL_PREDICTION ? 0. : std::fabs(_newScore - _score) / _newScore;
    _score = _newScore;
  } else {
    _optimizable->acceptParams(params);
  }
  _updateDelta(_isStepAccepted, _predicted, ratio, move.largest);
  return true;
}

void NgmOptimizerFoxleg::_accept(const NgmOptParamList &params)
{
  try {
    _optimizable->acceptParams(params);
  } catch (const NbeProgrammingError &) {
    throw NbeProgrammingError(
        QStringLiteral("NgmOptimizerFoxleg::_doOptimization: Parameter value out of range! Should "
                       "never happen!"));
  }
}

void NgmOptimizerFoxleg::_updateDelta(bool isAccepted, double q, double ratio, double largestMove)
{
  if (std::fabs(q) <= NULL_PREDICTION)
    return;
  if (isAccepted && q < 0. && ratio > 0.75)
    _delta = std::max(_delta, 3. * largestMove);
  else if (!(isAccepted && q <= 0. && ratio >= 0.25))
    _delta *= 0.5;
}

double NgmOptimizerFoxleg::_calculateResiduals(NgmOptParamList &params)
{
  const QVector<double> values = _evaluateFunction(params);
  const QVector<double> &experience = _optimizable->getExperience();
  const QVector<double> &weights = _optimizable->getWeights();
  _residuals.resize(values.size(), 1, true);
  double *residuals = _residuals.elements();
  double sum = 0.;
  for (int k = 0; k < values.size(); ++k) {
    residuals[k] = (values[k] - experience[k]) * (weights.isEmpty() ? 1. : weights[k]);
    sum += residuals[k] * residuals[k];
  }
  return 0.5 * sum;
}

void NgmOptimizerFoxleg::_calculateGradients(const NgmOptParamList &params)
{
  const QVector<double> &weights = _optimizable->getWeights();
  const int n = _optimizable->_getDataCount();
  _jacobian.resize(n, _paramsCount, true);
  double *column = _jacobian.elements();
  NgmOptParamList shifted = params;
  NgmOptParamListMutableIterator it = _paramsMutableIterator(shifted);
  for (; it.hasNext(); column += n) {
    NgmOptParam &param = it.next();
    const double value = param.getValue();
    const double above = param.getBounds().fit(value + DERIVATION_STEP);
    const double below = param.getBounds().fit(value - DERIVATION_STEP);
    const double width = above - below;
    if (std::fabs(width) <= NULL_STEP) {
      std::fill(column, column + n, 0.);
      continue;
    }
    param.setValue(above);
    const QVector<double> valuesAbove = _evaluateFunction(shifted);
    param.setValue(below);
    const QVector<double> valuesBelow = _evaluateFunction(shifted);
    param.setValue(value);
    for (int k = 0; k < n; ++k)
      column[k] = (weights.isEmpty() ? 1. : weights[k]) * (valuesAbove[k] - valuesBelow[k]) / width;
  }
  NgmOptParamList current = params;
  _calculateResiduals(current);
}

/// Gradient J'r and Hessian J'J of the Gauss-Newton model of the score.
void NgmOptimizerFoxleg::_calculateGaussNewtonStep()
{
  const int n = _jacobian.getNRows();
  const int p = _paramsCount;
  _hessian.resize(p, p, true);
  _gradient.resize(p, 1, true);
  if (n == 0)
    return;
  NgmMatrix::blasDgemm('T', 'N', p, p, n, 1., _jacobian.constElements(), n,
                       _jacobian.constElements(), n, 0., _hessian.elements(), p);
  NgmMatrix::blasDgemm('T', 'N', p, 1, n, 1., _jacobian.constElements(), n,
                       _residuals.constElements(), n, 0., _gradient.elements(), p);
}

void NgmOptimizerFoxleg::_defineExtensions(const NgmOptParamList &params)
{
  _extensions.clear();
  NgmOptParamListIterator it = _paramsConstIterator(params);
  while (it.hasNext()) {
    const NgmOptParam &param = it.next();
    const NbiIntervalData &bounds = param.getBounds();
    const double x = param.getValue();
    _Extension extension{_delta, _delta};
    if (bounds.hasLower()) {
      extension.down = std::min(_delta, x - bounds.getLower());
      if (std::fabs(x - extension.down) < _delta / 10.)
        extension.down /= 2.;
    }
    if (bounds.hasUpper()) {
      extension.up = std::min(_delta, bounds.getUpper() - x);
      if (std::fabs(x - extension.up) < _delta / 10.)
        extension.up /= 2.;
    }
    extension.down = std::max(0., extension.down);
    extension.up = std::max(0., extension.up);
    _extensions.push_back(extension);
  }
}

/// False when every parameter is held on both sides.
bool NgmOptimizerFoxleg::_hasRoomToMove() const
{
  return std::any_of(_extensions.begin(), _extensions.end(), [](const _Extension &extension) {
    return extension.down > NULL_EXTENSION || extension.up > NULL_EXTENSION;
  });
}

void NgmOptimizerFoxleg::_minimizeUnderConstraints()
{
  std::vector<double> lower;
  std::vector<double> upper;
  for (const _Extension &extension : _extensions) {
    lower.push_back(-extension.down);
    upper.push_back(extension.up);
  }
  _move.resize(std::size_t(_paramsCount));
  NgmBoundedQuadratic quadratic;
  if (quadratic.minimize(_paramsCount, _hessian.constElements(), _gradient.constElements(),
                         lower.data(), upper.data(), _move.data()))
    return;
  _logs << QObject::tr("Convergence has not been reached in minimization under constraints")
        << QObject::tr("The process is resumed in the final minimization status");
}

double NgmOptimizerFoxleg::_getQuadraticMinimizationScore() const
{
  double change = 0.;
  for (int i = 0; i < _paramsCount; ++i) {
    double slope = _gradient(i, 0);
    for (int j = 0; j < _paramsCount; ++j)
      slope += 0.5 * _hessian(i, j) * _move[std::size_t(j)];
    change += slope * _move[std::size_t(i)];
  }
  return change;
}

NgmOptimizerFoxleg::_Move NgmOptimizerFoxleg::_shiftParameters(
    NgmOptParamList &params, const std::vector<double> &move) const
{
  _Move result;
  std::size_t rank = 0;
  NgmOptParamListMutableIterator it = _paramsMutableIterator(params);
  while (it.hasNext()) {
    NgmOptParam &param = it.next();
    const double before = param.getValue();
    param.setValue(param.getBounds().fit(before + move[rank++]));
    const double length = std::fabs(param.getValue() - before);
    result.largest = std::max(result.largest, length);
    result.mean += length / _paramsCount;
  }
  return result;
}

/// Steps down the gradient, each half of the one before, until one is no worse than the current
/// parameters; its score, or the current one when there is none.
double NgmOptimizerFoxleg::_gradientSearch(const NgmOptParamList &params, NgmOptParamList &trial,
                                           _Move &move)
{
  std::vector<double> step(std::size_t(_paramsCount), 0.);
  double alpha = FIRST_ALPHA;
  while (alpha > LAST_ALPHA) {
    alpha *= 0.5;
    if (!_gradientMove(alpha, step))
      continue;
    trial = params;
    move = _shiftParameters(trial, step);
    _patchParams(trial);
    const double score = _calculateResiduals(trial);
    if (score <= _score)
      return score;
  }
  trial = params;
  move = _Move();
  return _score;
}

bool NgmOptimizerFoxleg::_gradientMove(double alpha, std::vector<double> &move) const
{
  for (std::size_t i = 0; i < move.size(); ++i) {
    const _Extension &extension = _extensions[i];
    move[i] = -alpha * _gradient(int(i), 0);
    if (move[i] < 0. ? extension.down < NULL_EXTENSION : extension.up < NULL_EXTENSION)
      move[i] = 0.;
    if (move[i] < -extension.down - NULL_EXTENSION || move[i] > extension.up + NULL_EXTENSION)
      return false;
  }
  return true;
}

void NgmOptimizerFoxleg::_calculateCriteria()
{
  const double n = _dataCount;
  const double p = _paramsCount;
  _gof = 2. * _score;
  _aic = NbbGlobal::D_FFFF;
  _bic = NbbGlobal::D_FFFF;
  if (n <= 1. || !(_gof > 0.))
    return;
  const double logarithm = std::log(_gof / (n - 1.));
  _bic = n * logarithm + p * std::log(n);
  if (n - p - 1. > 0.)
    _aic = n * logarithm + 2. * p + 2. * p * (p + 1.) / (n - p - 1.);
}

void NgmOptimizerFoxleg::_logIteration()
{
  if (!_verbose)
    return;
  const auto field = [](const QString &text) { return QStringLiteral("%1 ").arg(text, 11); };
  _logs << field(QString::number(_iteration)) + field(QString::number(_scoreStop, 'g', 5)) +
               field(QString::number(_moveStop, 'g', 5)) +
               _paramsValuesString(_optimizable->_getParamsRef(), false);
}

void NgmOptimizerFoxleg::_logEnd(int nbMaxIteration)
{
  if (!_verbose)
    return;
  _logs << QObject::tr("Number of Iterations     = %1/%2").arg(_iteration).arg(nbMaxIteration)
        << QObject::tr("Initial Delta            = %1").arg(_initialDelta)
        << QObject::tr("Current Score            = %1").arg(_score)
        << QObject::tr("Delta Stopping Criterion = %1/%2").arg(_delta).arg(SMALLEST_DELTA)
        << QObject::tr("Score Stopping Criterion = %1/%2").arg(_scoreStop).arg(SMALLEST_CHANGE)
        << QObject::tr("Move Stopping Criterion  = %1/%2").arg(_moveStop).arg(SMALLEST_DELTA);
  if (std::fabs(_predicted) < NULL_PREDICTION)
    _logs << QObject::tr("Minimization score becomes too small. Optimization stopped!");
  if (!_hasRoomToMove())
    _logs << QObject::tr("No more constraints. Optimization stopped!");
}
