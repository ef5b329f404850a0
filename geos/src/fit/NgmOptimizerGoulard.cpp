#include "geos/fit/NgmOptimizerGoulard.h"

#include "basic/base/NbbDebug.h"
#include "basic/base/NbbGlobal.h"
#include "basic/error/NbeProgrammingError.h"
#include "basic/error/NbeUserError.h"
#include "fit/private/NgmSillDescent.h"
#include "geos/algo/NgmAlgorithm.h"
#include "geos/fit/NgmVModelOptimizable.h"

#include <QObject>

#include <algorithm>
#include <cmath>
#include <numeric>

namespace {

constexpr double SMALLEST_DENOMINATOR = 1e-8;
constexpr double SMALLEST_CHANGE = 1e-4;
constexpr double SETTLED_CHANGE = 1e-8;
constexpr double SMALLEST_ROOT = 1e-6;
constexpr double SMALLEST_SHARE = 1e-30;
constexpr double SMALLEST_EIGENVALUE = 1e-15;
constexpr double ROUNDING = 1e-12;
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

/// L with L L' close to the matrix; a little is added to eigenvalues, 0 would never move.
NgmMatrix squareRoot(const NgmMatrix &matrix)
{
  NgmMatrix values(false);
  NgmMatrix vectors(false);
  const double largest = matrix.eigenValues(values, vectors, true, true, 1);
  const double added = SMALLEST_ROOT * std::max(largest, SMALLEST_ROOT);
  NgmMatrix root(matrix.getNRows(), matrix.getNRows(), false);
  for (int k = 0; k < matrix.getNRows(); ++k) {
    const double factor = std::sqrt(std::max(0., values(k, 0)) + added);
    for (int i = 0; i < matrix.getNRows(); ++i)
      root.setElement(i, k, vectors(i, k) * factor);
  }
  return root;
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
  _prepareStructures(vModel);
  _prepareCurves(vModel);
  _prepareConstraints(vModel);
  _initializeSills(vModel);
  _printGoulardHeader();
  _converged = _hasTotals ? _optimizeWithConstraints(nbMaxIteration)
                          : _optimizeWithoutConstraints(nbMaxIteration);
  if (_converged && isRunning())
    _refine(nbMaxIteration);
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

void NgmOptimizerGoulard::_prepareStructures(const NgmVModelOptimizable &vModel)
{
  _nVariables = vModel.getNVariables();
  _ranks.clear();
  _lockedTotals = nullMatrix(_nVariables);
  for (int rank = 0; rank < vModel.getNStructuresToFit(); ++rank) {
    if (vModel.areSillsLocked(rank))
      _lockedTotals = _lockedTotals + vModel.getSills(rank);
    else
      _ranks << rank;
  }
  _nStructures = _ranks.size();
}

/// Takes the lags that count, less what the locked structures have of them.
void NgmOptimizerGoulard::_prepareCurves(const NgmVModelOptimizable &vModel)
{
  NgmMatrix values;
  NgmMatrix weights;
  vModel.getExperience(values);
  vModel.getWeights(weights);
  std::vector<NgmMatrix> curves(std::size_t(vModel.getNStructuresToFit()));
  for (std::size_t rank = 0; rank < curves.size(); ++rank)
    vModel.getCova(int(rank), curves[rank]);

  _products.assign(std::size_t(values.getNRows()), _Products());
  for (int i = 0; i < _nVariables; ++i) {
    for (int j = 0; j <= i; ++j) {
      const int row = _combineVariables(i, j);
      _Products &products = _products[std::size_t(row)];
      std::vector<int> lags;
      for (int lag = 0; lag < values.getNColumns(); ++lag) {
        if (NbbGlobal::isDefined(values(row, lag)) && weights(row, lag) != 0.)
          lags.push_back(lag);
      }
      for (int lag : lags) {
        products.values.push_back(values(row, lag));
        products.weights.push_back(weights(row, lag));
      }
      for (std::size_t rank = 0; rank < curves.size(); ++rank) {
        const bool moves = _ranks.contains(int(rank));
        const double sill = moves ? 0. : vModel.getSills(int(rank))(i, j);
        for (std::size_t n = 0; n < lags.size(); ++n) {
          const double curve = curves[rank](row, lags[n]);
          products.values[n] -= sill * curve;
          if (moves)
            products.curves.push_back(curve);
        }
      }
      _prepareProducts(products, std::size_t(_nStructures));
    }
  }
}

void NgmOptimizerGoulard::_prepareProducts(_Products &products, std::size_t nStructures)
{
  const std::size_t nLags = products.values.size();
  products.gram.assign(nStructures * nStructures, 0.);
  products.rhs.assign(nStructures, 0.);
  for (std::size_t k = 0; k < nStructures; ++k) {
    const double *curve = products.curves.data() + k * nLags;
    for (std::size_t lag = 0; lag < nLags; ++lag)
      products.rhs[k] += products.weights[lag] * curve[lag] * products.values[lag];
    for (std::size_t l = 0; l < nStructures; ++l) {
      const double *other = products.curves.data() + l * nLags;
      double sum = 0.;
      for (std::size_t lag = 0; lag < nLags; ++lag)
        sum += products.weights[lag] * curve[lag] * other[lag];
      products.gram[k * nStructures + l] = sum;
    }
  }
}

int NgmOptimizerGoulard::_combineVariables(int i, int j)
{
  return NgmVModelOptimizable::combineVariables(i, j);
}

const NgmOptimizerGoulard::_Products &NgmOptimizerGoulard::_productsOf(int i, int j) const
{
  return _products[std::size_t(_combineVariables(i, j))];
}

void NgmOptimizerGoulard::_prepareConstraints(const NgmVModelOptimizable &vModel)
{
  _hasTotals = vModel.getSillCumulativeConstraint(_totals) && _nStructures > 0;
  _isIntrinsic = vModel.isIntrinsicConstraint();
  for (int i = 0; _hasTotals && i < _nVariables; ++i) {
    if (!_isConstrained(i))
      continue;
    if (_lockedTotals(i, i) > _totals[i] * (1. + ROUNDING))
      throw NbeUserError(
          QObject::tr("The known sills of variable %1 exceed its total sill").arg(i + 1));
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
double NgmOptimizerGoulard::_scoreEvaluate()
{
  double score = 0.;
  for (int i = 0; i < _nVariables; ++i) {
    for (int j = 0; j <= i; ++j)
      score += (i == j ? 0.5 : 1.) * _sumOfSquares(i, j);
  }
  return score;
}

double NgmOptimizerGoulard::_sumOfSquares(int i, int j)
{
  const _Products &products = _productsOf(i, j);
  const std::size_t nLags = products.values.size();
  _residuals = products.values;
  for (int k = 0; k < _nStructures; ++k) {
    const double sill = _sills[k](i, j);
    const double *curve = products.curves.data() + std::size_t(k) * nLags;
    for (std::size_t lag = 0; lag < nLags; ++lag)
      _residuals[lag] -= sill * curve[lag];
  }
  double sum = 0.;
  for (std::size_t lag = 0; lag < nLags; ++lag)
    sum += products.weights[lag] * _residuals[lag] * _residuals[lag];
  return sum;
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
  _factors.clear();
  for (NgmMatrix &sills : _sills) {
    _factors.push_back(size > 0. ? trace(sills) / size : 1.);
    sills = _common * _factors.back();
  }
  return _iterate(nbMaxIteration, [this] { _updateIntrinsic(); });
}

void NgmOptimizerGoulard::_updateIntrinsic()
{
  if (!_isCommonKnown)
    _updateCommon();
  _updateFactors();
  for (int k = 0; k < _nStructures; ++k)
    _sills[k] = _common * _factors[std::size_t(k)];
}

/// Least squares of the factors, one after another.
void NgmOptimizerGoulard::_updateFactors()
{
  const std::size_t n = _factors.size();
  std::vector<double> gram(n * n, 0.);
  std::vector<double> rhs(n, 0.);
  for (int i = 0; i < _nVariables; ++i) {
    for (int j = 0; j <= i; ++j) {
      const _Products &products = _productsOf(i, j);
      const double factor = (i == j ? 1. : 2.) * _common(i, j);
      for (std::size_t k = 0; k < n; ++k) {
        rhs[k] += factor * products.rhs[k];
        for (std::size_t l = 0; l < n; ++l)
          gram[k * n + l] += factor * _common(i, j) * products.gram[k * n + l];
      }
    }
  }
  for (std::size_t k = 0; k < n; ++k) {
    const double denominator = gram[k * n + k];
    if (denominator < SMALLEST_DENOMINATOR)
      continue;
    double residual = rhs[k];
    for (std::size_t l = 0; l < n; ++l)
      residual -= l == k ? 0. : gram[k * n + l] * _factors[l];
    _factors[k] = std::max(0., residual / denominator);
  }
}

void NgmOptimizerGoulard::_updateCommon()
{
  const std::size_t n = _factors.size();
  for (int i = 0; i < _nVariables; ++i) {
    for (int j = 0; j <= i; ++j) {
      const _Products &products = _productsOf(i, j);
      double numerator = 0.;
      double denominator = 0.;
      for (std::size_t k = 0; k < n; ++k) {
        numerator += _factors[k] * products.rhs[k];
        for (std::size_t l = 0; l < n; ++l)
          denominator += _factors[k] * _factors[l] * products.gram[k * n + l];
      }
      if (denominator >= SMALLEST_DENOMINATOR)
        _common.setElement(i, j, numerator / denominator);
    }
  }
  _makePositive(_common);
}

// Refinement.

void NgmOptimizerGoulard::_refine(int nbMaxIteration)
{
  const QVector<NgmMatrix> sills = _sills;
  const double score = _score;
  if (_hasTotals)
    _refineTotals(nbMaxIteration);
  else if (_isIntrinsic)
    _refineBy(nbMaxIteration, [this] { _updateIntrinsic(); });
  else
    _refineSills(nbMaxIteration);
  _score = _scoreEvaluate();
  if (_score <= score)
    return;
  _sills = sills;
  _score = score;
}

template <class Step>
void NgmOptimizerGoulard::_refineBy(int nbMaxIteration, Step step)
{
  double score = _scoreEvaluate();
  for (int n = 0; n < nbMaxIteration && !_mustStop(); ++n) {
    step();
    const double before = score;
    score = _scoreEvaluate();
    if (before - score <= SETTLED_CHANGE * before)
      return;
  }
}

void NgmOptimizerGoulard::_refineSills(int nbMaxIteration)
{
  _refineBy(nbMaxIteration, [this] {
    for (int k = 0; k < _nStructures; ++k)
      _updateMajorized(k);
  });
}

/// Where weights differ between pairs of variables, the nearest positive matrix is not the best
/// one; with all curvatures taken as the largest it is, and the criterion decreases in every step.
void NgmOptimizerGoulard::_updateMajorized(int k)
{
  const std::size_t own = std::size_t(k) * std::size_t(_nStructures) + std::size_t(k);
  double largest = 0.;
  for (const _Products &products : _products)
    largest = std::max(largest, products.gram[own]);
  if (largest < SMALLEST_DENOMINATOR)
    return;
  for (int i = 0; i < _nVariables; ++i) {
    for (int j = 0; j <= i; ++j) {
      const double sill = _sills[k](i, j);
      const double share = _productsOf(i, j).gram[own] / largest;
      _sills[k].setElement(i, j, sill + share * (_leastSquares(k, i, j) - sill));
    }
  }
  _makePositive(_sills[k]);
}

/// Below totals the projection does not decrease the criterion; a descent along square roots does.
void NgmOptimizerGoulard::_refineTotals(int nbMaxIteration)
{
  NgmSillDescent::Problem problem;
  problem.nVariables = std::size_t(_nVariables);
  problem.nStructures = std::size_t(_nStructures);
  for (int i = 0; i < _nVariables; ++i) {
    problem.totals.push_back(_isConstrained(i) ? _totals[i] : -1.);
    for (int j = 0; j <= i; ++j) {
      problem.grams.push_back(_productsOf(i, j).gram.data());
      problem.rhs.push_back(_productsOf(i, j).rhs.data());
    }
  }
  const std::size_t n = problem.nVariables;
  const std::size_t rowSize = n * problem.nStructures;
  std::vector<double> roots(n * rowSize);
  for (int k = 0; k < _nStructures; ++k) {
    const NgmMatrix root = squareRoot(_sills[k]);
    for (int i = 0; i < _nVariables; ++i) {
      for (int m = 0; m < _nVariables; ++m)
        roots[std::size_t(i) * rowSize + std::size_t(k) * n + std::size_t(m)] = root(i, m);
    }
  }
  NgmSillDescent(problem).run(roots, nbMaxIteration);
  for (int k = 0; k < _nStructures; ++k) {
    for (int i = 0; i < _nVariables; ++i) {
      for (int j = 0; j <= i; ++j) {
        const double *a = &roots[std::size_t(i) * rowSize + std::size_t(k) * n];
        const double *b = &roots[std::size_t(j) * rowSize + std::size_t(k) * n];
        _sills[k].setElement(i, j, std::inner_product(a, a + n, b, 0.));
      }
    }
  }
  _spreadTotals();
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

/// A run of its own prints its log when it ends; within another optimizer it is printed here.
void NgmOptimizerGoulard::_printGoulardResults(int nbMaxIteration)
{
  if (!_verbose)
    return;
  _logs << QObject::tr("Number of iterations                = %1/%2")
               .arg(QString::number(_iteration), QString::number(nbMaxIteration))
        << QObject::tr("Value of minimized function (score) = %1").arg(_score)
        << QObject::tr("Stopping Criterion                  = %1").arg(_scoreStop);
  if (!isRunning())
    _printLogger(_logs);
}
