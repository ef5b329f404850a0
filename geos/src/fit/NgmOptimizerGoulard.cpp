#include "geos/fit/NgmOptimizerGoulard.h"

#include "basic/base/NbbDebug.h"
#include "basic/base/NbbGlobal.h"
#include "basic/error/NbeProgrammingError.h"
#include "geos/algo/NgmAlgorithm.h"
#include "geos/fit/NgmVModelOptimizable.h"

#include <QObject>

#include <algorithm>
#include <cmath>

namespace {

constexpr double SMALLEST_DENOMINATOR = 1e-8;
constexpr double SMALLEST_CHANGE = 1e-4;
constexpr double SMALLEST_SHARE = 1e-30;
constexpr double SMALLEST_EIGENVALUE = 1e-15;
constexpr double NULL_SILL = 1e-15;
constexpr int FIELD_WIDTH = 11;

QString field(const QString &text)
{
  return QStringLiteral("%1 ").arg(text, FIELD_WIDTH);
}

QString field(double value)
{
  return field(QString::number(value, 'g', 5));
}

/// Multiplies row and column i; what was positive semi-definite stays so.
void scaleVariable(NgmMatrix &sills, int i, double factor)
{
  for (int j = 0; j < sills.getNRows(); ++j)
    sills.setElement(i, j, sills(i, j) * factor * (i == j ? factor : 1.));
}

void clearVariable(NgmMatrix &sills, int i)
{
  for (int j = 0; j < sills.getNRows(); ++j)
    sills.setElement(i, j, 0.);
}

double trace(const NgmMatrix &matrix)
{
  double sum = 0.;
  for (int i = 0; i < matrix.getNRows(); ++i)
    sum += matrix(i, i);
  return sum;
}

NgmMatrix nullMatrix(int n)
{
  NgmMatrix matrix(n, n, true);
  matrix.fill(0.);
  return matrix;
}

}  // namespace

NgmOptimizerGoulard::NgmOptimizerGoulard() : NgmAOptimizer(QStringLiteral("Goulard")) {}

NgmOptimizerGoulard::~NgmOptimizerGoulard()
{
  _finish();
}

NgmVModelOptimizable &NgmOptimizerGoulard::_vModel() const
{
  auto *vModel = dynamic_cast<NgmVModelOptimizable *>(_optimizable);
  bool areSills = vModel != nullptr;
  NgmOptParamListIterator it = _paramsConstIterator(_optimizable->_getParamsRef());
  while (areSills && it.hasNext())
    areSills = it.next().getId().type == NgmVModelToBeOptimized::SILL;
  if (!areSills)
    throw NbeProgrammingError(QStringLiteral(
        "NgmOptimizerGoulard::_doRun: Goulard can only optimize Sills of a Variogram Model"));
  return *vModel;
}

bool NgmOptimizerGoulard::_doOptimization(int nbMaxIteration)
{
  NgmVModelOptimizable &vModel = _vModel();
  _resetLogs();
  if (_paramsCount == 0) {
    _logs << QObject::tr("No parameters!");
    return false;
  }
  _prepareCurves(vModel);
  _prepareProducts();
  _prepareConstraints(vModel);
  _initializeSills(vModel);
  _printGoulardHeader();
  _converged = _hasTotals ? _optimizeWithConstraints(nbMaxIteration)
                          : _optimizeWithoutConstraints(nbMaxIteration);
  if (_mustStop()) {
    _logs << QObject::tr("Optimization interrupted!");
    return false;
  }
  _assignSills(&vModel, _sills);
  _gof = 2. * _score;
  _printGoulardResults(nbMaxIteration);
  return true;
}

// Preparation.

/// The curves of the structures that move, and what the locked ones leave of the experimental
/// values.
void NgmOptimizerGoulard::_prepareCurves(const NgmVModelOptimizable &vModel)
{
  vModel.getExperience(_experience);
  vModel.getWeights(_weights);
  _nVariables = vModel.getNVariables();
  _nLags = _experience.getNColumns();
  _ranks.clear();
  _covas.clear();
  _lockedTotals = nullMatrix(_nVariables);
  for (int rank = 0; rank < vModel.getNStructuresToFit(); ++rank) {
    NgmMatrix cova;
    vModel.getCova(rank, cova);
    if (!vModel.areSillsLocked(rank)) {
      _ranks << rank;
      _covas << cova;
      continue;
    }
    const NgmMatrix sills = vModel.getSills(rank);
    for (int i = 0; i < _nVariables; ++i) {
      for (int j = 0; j <= i; ++j) {
        const int row = NgmVModelOptimizable::combineVariables(i, j);
        _lockedTotals.addToElement(i, j, sills(i, j));
        for (int lag = 0; lag < _nLags; ++lag)
          _experience.addToElement(row, lag, -sills(i, j) * cova(row, lag));
      }
    }
  }
  _nStructures = _ranks.size();
}

void NgmOptimizerGoulard::_prepareProducts()
{
  const std::size_t n = std::size_t(_nStructures);
  _products.assign(std::size_t(_experience.getNRows()), _Products());
  for (int pair = 0; pair < _experience.getNRows(); ++pair) {
    _Products &products = _products[std::size_t(pair)];
    products.gram.assign(n * n, 0.);
    products.rhs.assign(n, 0.);
    for (int lag = 0; lag < _nLags; ++lag) {
      const double value = _experience(pair, lag);
      const double weight = _weights(pair, lag);
      if (!NbbGlobal::isDefined(value) || weight == 0.)
        continue;
      for (int k = 0; k < _nStructures; ++k) {
        const double weighted = weight * _covas[k](pair, lag);
        products.rhs[std::size_t(k)] += weighted * value;
        for (int l = 0; l < _nStructures; ++l)
          products.gram[std::size_t(k) * n + std::size_t(l)] += weighted * _covas[l](pair, lag);
      }
    }
  }
}

const NgmOptimizerGoulard::_Products &NgmOptimizerGoulard::_productsOf(int i, int j) const
{
  return _products[std::size_t(NgmVModelOptimizable::combineVariables(i, j))];
}

void NgmOptimizerGoulard::_prepareConstraints(const NgmVModelOptimizable &vModel)
{
  _hasTotals = vModel.getSillCumulativeConstraint(_totals) && _nStructures > 0;
  _isIntrinsic = vModel.isIntrinsicConstraint();
  for (int i = 0; _hasTotals && i < _nVariables; ++i) {
    if (NbbGlobal::isDefined(_totals[i]))
      _totals[i] = std::max(0., _totals[i] - _lockedTotals(i, i));
  }
}

bool NgmOptimizerGoulard::_isConstrained(int i) const
{
  return NbbGlobal::isDefined(_totals[i]);
}

void NgmOptimizerGoulard::_initializeSills(const NgmVModelOptimizable &vModel)
{
  _sills.clear();
  for (int rank : qAsConst(_ranks)) {
    _sills << vModel.getSills(rank);
    _makePositive(_sills.last());
  }
  _isCommonKnown = trace(_lockedTotals) > 0.;
  _common = _lockedTotals;
  if (!_isCommonKnown) {
    for (const NgmMatrix &sills : qAsConst(_sills))
      _common = _common + sills;
  }
  if (_hasTotals)
    _spreadTotals();
}

/// The totals hold from the first sills on.
void NgmOptimizerGoulard::_spreadTotals()
{
  for (int i = 0; i < _nVariables; ++i) {
    if (!_isConstrained(i))
      continue;
    double sum = 0.;
    for (const NgmMatrix &sills : qAsConst(_sills))
      sum += sills(i, i);
    for (NgmMatrix &sills : _sills) {
      if (sum > 0.)
        scaleVariable(sills, i, std::sqrt(_totals[i] / sum));
      else
        sills.setElement(i, i, _totals[i] / _nStructures);
    }
  }
}

void NgmOptimizerGoulard::_makePositive(NgmMatrix &sills)
{
  if (sills.getNRows() == 1) {
    sills.setElement(0, 0, std::max(0., sills(0, 0)));
    return;
  }
  sills.makePositiveDefinite(true, false, SMALLEST_EIGENVALUE);
  if (trace(sills) <= 0.)
    sills.fill(0.);
}

void NgmOptimizerGoulard::_assignSills(NgmVModelOptimizable *optimizable,
                                       const QVector<NgmMatrix> &sills) const
{
  QVector<NgmMatrix> all;
  for (int rank = 0; rank < optimizable->getNStructuresToFit(); ++rank) {
    const int k = _ranks.indexOf(rank);
    all << (k >= 0 ? sills[k] : optimizable->getSills(rank));
  }
  optimizable->setSills(all);
}

// Criterion.

/// From the residuals themselves: sums of squares would cancel where the fit is good.
double NgmOptimizerGoulard::_scoreEvaluate() const
{
  double score = 0.;
  for (int i = 0; i < _nVariables; ++i) {
    for (int j = 0; j <= i; ++j) {
      const int row = NgmVModelOptimizable::combineVariables(i, j);
      double sum = 0.;
      for (int lag = 0; lag < _nLags; ++lag) {
        double residual = _experience(row, lag);
        if (!NbbGlobal::isDefined(residual))
          continue;
        for (int k = 0; k < _nStructures; ++k)
          residual -= _sills[k](i, j) * _covas[k](row, lag);
        sum += _weights(row, lag) * residual * residual;
      }
      score += (i == j ? 0.5 : 1.) * sum;
    }
  }
  return score;
}

/// Repeats a step until the criterion settles.
template <class Step>
bool NgmOptimizerGoulard::_iterate(int nbMaxIteration, Step step)
{
  _score = _scoreEvaluate();
  _scoreStop = 0.;
  for (_iteration = 1; _iteration <= nbMaxIteration && !_mustStop(); ++_iteration) {
    _incrementCounter(1);
    step();
    const double before = _score;
    _score = _scoreEvaluate();
    _scoreStop = before > 0. ? std::fabs(_score - before) / before : 0.;
    _printGoulardIteration();
    if (_scoreStop < SMALLEST_CHANGE)
      return true;
  }
  --_iteration;
  return false;
}

// Without totals.

bool NgmOptimizerGoulard::_optimizeWithoutConstraints(int nbMaxIteration)
{
  return _isIntrinsic ? _optimizeIntrinsic(nbMaxIteration) : _optimizeNotIntrinsic(nbMaxIteration);
}

bool NgmOptimizerGoulard::_optimizeNotIntrinsic(int nbMaxIteration)
{
  return _iterate(nbMaxIteration, [this] {
    for (int k = 0; k < _nStructures; ++k) {
      for (int i = 0; i < _nVariables; ++i)
        _updateCurrentSillGoulard(k, i);
      _makePositive(_sills[k]);
    }
  });
}

void NgmOptimizerGoulard::_updateCurrentSillGoulard(int k, int i)
{
  for (int j = 0; j < _nVariables; ++j)
    _sills[k].setElement(i, j, _leastSquares(k, i, j));
}

double NgmOptimizerGoulard::_leastSquares(int k, int i, int j) const
{
  const _Products &products = _productsOf(i, j);
  const double *row = products.gram.data() + std::size_t(k) * std::size_t(_nStructures);
  if (row[k] < SMALLEST_DENOMINATOR)
    return _sills[k](i, j);
  double residual = products.rhs[std::size_t(k)];
  for (int l = 0; l < _nStructures; ++l)
    residual -= l == k ? 0. : row[l] * _sills[l](i, j);
  return residual / row[k];
}

/// The sills of all structures as factors of one matrix, that of the locked ones when there are.
bool NgmOptimizerGoulard::_optimizeIntrinsic(int nbMaxIteration)
{
  _makePositive(_common);
  const double size = trace(_common);
  std::vector<double> factors;
  for (int k = 0; k < _nStructures; ++k)
    factors.push_back(size > 0. ? trace(_sills[k]) / size : 1.);
  const auto apply = [this, &factors] {
    for (int k = 0; k < _nStructures; ++k)
      _sills[k] = _common * factors[std::size_t(k)];
  };
  apply();
  return _iterate(nbMaxIteration, [&] {
    if (!_isCommonKnown)
      _updateCommon(_common, factors);
    _updateFactors(_common, factors);
    apply();
  });
}

/// Least squares of the factors, one after another.
void NgmOptimizerGoulard::_updateFactors(const NgmMatrix &common,
                                         std::vector<double> &factors) const
{
  const std::size_t n = factors.size();
  std::vector<double> gram(n * n, 0.);
  std::vector<double> rhs(n, 0.);
  for (int i = 0; i < _nVariables; ++i) {
    for (int j = 0; j <= i; ++j) {
      const _Products &products = _productsOf(i, j);
      const double factor = (i == j ? 1. : 2.) * common(i, j);
      for (std::size_t k = 0; k < n; ++k) {
        rhs[k] += factor * products.rhs[k];
        for (std::size_t l = 0; l < n; ++l)
          gram[k * n + l] += factor * common(i, j) * products.gram[k * n + l];
      }
    }
  }
  for (std::size_t k = 0; k < n; ++k) {
    const double denominator = gram[k * n + k];
    if (denominator < SMALLEST_DENOMINATOR)
      continue;
    double residual = rhs[k];
    for (std::size_t l = 0; l < n; ++l)
      residual -= l == k ? 0. : gram[k * n + l] * factors[l];
    factors[k] = std::max(0., residual / denominator);
  }
}

void NgmOptimizerGoulard::_updateCommon(NgmMatrix &common, const std::vector<double> &factors) const
{
  const std::size_t n = factors.size();
  for (int i = 0; i < _nVariables; ++i) {
    for (int j = 0; j <= i; ++j) {
      const _Products &products = _productsOf(i, j);
      double numerator = 0.;
      double denominator = 0.;
      for (std::size_t k = 0; k < n; ++k) {
        numerator += factors[k] * products.rhs[k];
        for (std::size_t l = 0; l < n; ++l)
          denominator += factors[k] * factors[l] * products.gram[k * n + l];
      }
      if (denominator >= SMALLEST_DENOMINATOR)
        common.setElement(i, j, numerator / denominator);
    }
  }
  _makePositive(common);
}

// With totals.

bool NgmOptimizerGoulard::_optimizeWithConstraints(int nbMaxIteration)
{
  _alphas = _sills;
  _scales.fill(1., _nVariables);
  const bool isSettled = _iterate(nbMaxIteration, [this] {
    for (int k = 0; k < _nStructures; ++k)
      _optimizeStructure(k);
  });
  // Roundings of many factors, and sills that a repair took away.
  _spreadTotals();
  _score = _scoreEvaluate();
  if (!isSettled && !_mustStop()) {
    _logs << QObject::tr("Warning: Fitting did not converge properly.");
    if (isRunning() && !_verbose)
      NbbDebug::print(_logs.last());
  }
  return isSettled;
}

void NgmOptimizerGoulard::_optimizeStructure(int k)
{
  for (int i = 0; i < _nVariables; ++i) {
    const double sum = _isConstrained(i) ? _sumAlpha(i) : 0.;
    _scales[i] = sum > 0. && _totals[i] > 0. ? std::sqrt(_totals[i] / sum) : 1.;
  }
  for (int i = 0; i < _nVariables; ++i) {
    if (_isConstrained(i) && !_optimizeScale(k, i))
      continue;
    _updateOtherSills(k, i);
    _updateCurrentSillGoulard(k, i);
    if (_isConstrained(i))
      _updateCurrentSillDiag(k, i);
    _updateAlphaNoDiag(k, i);
  }
  _makePositiveDefiniteUnderConstraints(_sills[k]);
  for (int i = 0; i < _nVariables; ++i)
    _updateAlphaNoDiag(k, i);
}

/// False for a variable that only this structure has, or none.
bool NgmOptimizerGoulard::_optimizeScale(int k, int i)
{
  const double others = _sumAlpha(i) - _alphas[k](i, i);
  if (others < SMALLEST_SHARE || _totals[i] <= 0.)
    return false;
  _scales[i] = _optimize_P4_minimum(k, i, std::sqrt(_totals[i] / others));
  if (_scales[i] == 0.) {
    _scales[i] = 1.;
    for (int l = 0; l < _nStructures; ++l) {
      if (l != k)
        clearVariable(_alphas[l], i);
    }
  }
  _updateAlphaDiag(k, i);
  return true;
}

double NgmOptimizerGoulard::_sumAlpha(int i) const
{
  double sum = 0.;
  for (const NgmMatrix &alpha : _alphas)
    sum += alpha(i, i);
  return sum;
}

void NgmOptimizerGoulard::_updateAlphaDiag(int k, int i)
{
  const double others = _sumAlpha(i) - _alphas[k](i, i);
  _alphas[k].setElement(i, i, std::max(0., _totals[i] / (_scales[i] * _scales[i]) - others));
}

void NgmOptimizerGoulard::_updateOtherSills(int k, int i)
{
  for (int l = 0; l < _nStructures; ++l) {
    for (int j = 0; l != k && j < _nVariables; ++j)
      _sills[l].setElement(i, j, _alphas[l](i, j) * _scales[i] * _scales[j]);
  }
}

void NgmOptimizerGoulard::_updateCurrentSillDiag(int k, int i)
{
  _sills[k].setElement(i, i, std::max(0., _scales[i] * _scales[i] * _alphas[k](i, i)));
}

void NgmOptimizerGoulard::_updateAlphaNoDiag(int k, int i)
{
  for (int j = 0; j < _nVariables; ++j) {
    if (j != i || !_isConstrained(i))
      _alphas[k].setElement(i, j, _sills[k](i, j) / (_scales[i] * _scales[j]));
  }
}

/// The criterion as a function of the scale x of variable i, structure k taking what the total C
/// leaves: residuals P - x^2 Q on the diagonal with P = G_ii - C g_k and
/// Q = sum_l A_l,ii (g_l - g_k), and G_ij - x U_j beside it with U_j = s_j sum_l A_l,ij g_l, hence
/// a = sum W Q^2, b = 2 sum W U^2 - 2 sum W P Q, c = -sum W G U.
NgmOptimizerGoulard::_Quartic NgmOptimizerGoulard::_scaleCriterion(int k, int i) const
{
  const std::size_t n = std::size_t(_nStructures);
  const std::size_t own = std::size_t(k);
  _Quartic quartic;
  const _Products &diagonal = _productsOf(i, i);
  const auto gram = [n](const _Products &products, std::size_t l, std::size_t m) {
    return products.gram[l * n + m];
  };
  for (std::size_t l = 0; l < n; ++l) {
    const double alpha = _alphas[int(l)](i, i);
    if (l == own)
      continue;
    quartic.b -= 2. * alpha *
                 (diagonal.rhs[l] - diagonal.rhs[own] -
                  _totals[i] * (gram(diagonal, l, own) - gram(diagonal, own, own)));
    for (std::size_t m = 0; m < n; ++m) {
      if (m != own)
        quartic.a += alpha * _alphas[int(m)](i, i) *
                     (gram(diagonal, l, m) - gram(diagonal, l, own) - gram(diagonal, own, m) +
                      gram(diagonal, own, own));
    }
  }
  for (int j = 0; j < _nVariables; ++j) {
    if (j == i)
      continue;
    const _Products &cross = _productsOf(i, j);
    for (std::size_t l = 0; l < n; ++l) {
      const double u = _scales[j] * _alphas[int(l)](i, j);
      quartic.c -= u * cross.rhs[l];
      for (std::size_t m = 0; m < n; ++m)
        quartic.b += 2. * u * _scales[j] * _alphas[int(m)](i, j) * gram(cross, l, m);
    }
  }
  return quartic;
}

double NgmOptimizerGoulard::_optimize_P4_minimum(int k, int i, double sMax) const
{
  return _optimize_P4_minimum(_scaleCriterion(k, i), _scales[i], sMax);
}

/// The minimum among 0 <= x <= sMax (undefined for no bound); `current` when nothing depends on x.
double NgmOptimizerGoulard::_optimize_P4_minimum(const _Quartic &criterion, double current,
                                                 double sMax)
{
  const QVector<double> roots =
      NgmAlgorithm::rootsP3(4. * criterion.a, 0., 2. * criterion.b, 4. * criterion.c);
  const auto clipped = [sMax](double root) {
    const double x = NbbGlobal::isDefined(sMax) ? std::min(root, sMax) : root;
    return std::max(x, 0.);
  };
  if (roots.isEmpty())
    return clipped(current);
  const double low = clipped(roots.first());
  const double high = clipped(roots.last());
  const bool isLowKept = low == roots.first();
  const bool isHighKept = high == roots.last();
  if (isLowKept != isHighKept)
    return isLowKept ? low : high;
  return criterion.value(low) < criterion.value(high) ? low : high;
}

void NgmOptimizerGoulard::_makePositiveDefiniteUnderConstraints(NgmMatrix &sills) const
{
  const NgmMatrix before(sills);
  if (sills.getNRows() == 1 || sills.makePositiveDefinite(true, false, SMALLEST_EIGENVALUE))
    return;
  for (int i = 0; i < _nVariables; ++i) {
    if (!_isConstrained(i))
      continue;
    double factor = std::fabs(before(i, i)) < NULL_SILL ? 1. : 0.;
    if (std::fabs(sills(i, i)) > NULL_SILL)
      factor = std::sqrt(std::max(0., before(i, i) / sills(i, i)));
    scaleVariable(sills, i, factor);
  }
}

// Log.

void NgmOptimizerGoulard::_resetLogs()
{
  _logs.clear();
}

void NgmOptimizerGoulard::_printGoulardHeader()
{
  if (!_verbose)
    return;
  QString columns = field(QObject::tr("Iteration")) + field(QObject::tr("Score")) +
                    field(QObject::tr("Stop Score"));
  for (int rank : qAsConst(_ranks)) {
    for (int i = 0; i < _nVariables; ++i) {
      for (int j = 0; j <= i; ++j)
        columns += field(QObject::tr("Str-%1(%2-%3)").arg(rank + 1).arg(i + 1).arg(j + 1));
    }
  }
  _logs << QObject::tr("[Str-k(i-j) = Sill for structure 'k' for variables 'i' and 'j']")
        << columns;
}

void NgmOptimizerGoulard::_printGoulardIteration()
{
  if (!_verbose)
    return;
  QString line = field(QString::number(_iteration)) + field(_score) + field(_scoreStop);
  for (const NgmMatrix &sills : qAsConst(_sills)) {
    for (int i = 0; i < _nVariables; ++i) {
      for (int j = 0; j <= i; ++j)
        line += field(sills(i, j));
    }
  }
  _logs << line;
}

void NgmOptimizerGoulard::_printGoulardResults(int nbMaxIteration)
{
  if (!_verbose)
    return;
  _logs << QObject::tr("Number of iterations                = %1/%2")
               .arg(QString::number(_iteration), QString::number(nbMaxIteration))
        << QObject::tr("Value of minimized function (score) = %1").arg(_score)
        << QObject::tr("Stopping Criterion                  = %1").arg(_scoreStop);
}
