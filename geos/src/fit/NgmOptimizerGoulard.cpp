#include "geos/fit/NgmOptimizerGoulard.h"

#include "basic/base/NbbGlobal.h"
#include "basic/error/NbeProgrammingError.h"
#include "geos/fit/NgmVModelOptimizable.h"

#include <QObject>

#include <algorithm>
#include <cmath>

namespace {

constexpr double SMALLEST_DENOMINATOR = 1e-8;
constexpr double SMALLEST_CHANGE = 1e-4;
constexpr double SMALLEST_EIGENVALUE = 1e-15;

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
  if (_paramsCount == 0) {
    _logs << QObject::tr("No parameters!");
    return false;
  }
  _nVariables = vModel.getNVariables();
  _nStructures = vModel.getNStructuresToFit();
  _prepareProducts(vModel);
  _initializeSills(vModel);
  _converged = _optimizeWithoutConstraints(nbMaxIteration);
  if (_mustStop()) {
    _logs << QObject::tr("Optimization interrupted!");
    return false;
  }
  _assignSills(&vModel, _sills);
  _gof = 2. * _score;
  return true;
}

void NgmOptimizerGoulard::_prepareProducts(const NgmVModelOptimizable &vModel)
{
  NgmMatrix values;
  NgmMatrix weights;
  vModel.getExperience(values);
  vModel.getWeights(weights);
  const std::size_t n = std::size_t(_nStructures);
  std::vector<NgmMatrix> curves(n);
  for (int k = 0; k < _nStructures; ++k)
    vModel.getCova(k, curves[std::size_t(k)]);

  _products.assign(std::size_t(values.getNRows()), _Products());
  for (int pair = 0; pair < values.getNRows(); ++pair) {
    _Products &products = _products[std::size_t(pair)];
    products.gram.assign(n * n, 0.);
    products.rhs.assign(n, 0.);
    for (int lag = 0; lag < values.getNColumns(); ++lag) {
      const double value = values(pair, lag);
      const double weight = weights(pair, lag);
      if (!NbbGlobal::isDefined(value) || weight == 0.)
        continue;
      products.squares += weight * value * value;
      for (std::size_t k = 0; k < n; ++k) {
        const double weighted = weight * curves[k](pair, lag);
        products.rhs[k] += weighted * value;
        for (std::size_t l = 0; l < n; ++l)
          products.gram[k * n + l] += weighted * curves[l](pair, lag);
      }
    }
  }
}

void NgmOptimizerGoulard::_initializeSills(const NgmVModelOptimizable &vModel)
{
  _sills.clear();
  _locked.clear();
  for (int k = 0; k < _nStructures; ++k) {
    _sills << vModel.getSills(k);
    _locked.push_back(vModel.areSillsLocked(k));
    if (!_locked.back())
      _makePositive(_sills.last());
  }
}

void NgmOptimizerGoulard::_makePositive(NgmMatrix &sills)
{
  if (sills.getNRows() == 1)
    sills.setElement(0, 0, std::max(0., sills(0, 0)));
  else
    sills.makePositiveDefinite(true, false, SMALLEST_EIGENVALUE);
}

bool NgmOptimizerGoulard::_optimizeWithoutConstraints(int nbMaxIteration)
{
  _score = _scoreEvaluate();
  for (_iteration = 1; _iteration <= nbMaxIteration && !_mustStop(); ++_iteration) {
    for (int k = 0; k < _nStructures; ++k) {
      if (!_locked[std::size_t(k)])
        _updateCurrentSillGoulard(k);
    }
    const double before = _score;
    _score = _scoreEvaluate();
    if (std::fabs(_score - before) <= SMALLEST_CHANGE * std::fabs(before))
      return true;
  }
  return false;
}

void NgmOptimizerGoulard::_updateCurrentSillGoulard(int rank)
{
  const std::size_t n = std::size_t(_nStructures);
  NgmMatrix &sills = _sills[rank];
  for (int i = 0; i < _nVariables; ++i) {
    for (int j = 0; j <= i; ++j) {
      const _Products &products =
          _products[std::size_t(NgmVModelOptimizable::combineVariables(i, j))];
      const double *row = products.gram.data() + std::size_t(rank) * n;
      if (row[rank] < SMALLEST_DENOMINATOR)
        continue;
      double residual = products.rhs[std::size_t(rank)];
      for (int l = 0; l < _nStructures; ++l)
        residual -= l == rank ? 0. : row[l] * _sills[l](i, j);
      sills.setElement(i, j, residual / row[rank]);
    }
  }
  _makePositive(sills);
}

double NgmOptimizerGoulard::_scoreEvaluate() const
{
  const std::size_t n = std::size_t(_nStructures);
  double score = 0.;
  for (int i = 0; i < _nVariables; ++i) {
    for (int j = 0; j <= i; ++j) {
      const _Products &products =
          _products[std::size_t(NgmVModelOptimizable::combineVariables(i, j))];
      double value = products.squares;
      for (int k = 0; k < _nStructures; ++k) {
        double sum = -2. * products.rhs[std::size_t(k)];
        for (int l = 0; l < _nStructures; ++l)
          sum += products.gram[std::size_t(k) * n + std::size_t(l)] * _sills[l](i, j);
        value += sum * _sills[k](i, j);
      }
      score += (i == j ? 0.5 : 1.) * value;
    }
  }
  return std::max(0., score);
}

void NgmOptimizerGoulard::_assignSills(NgmVModelOptimizable *optimizable,
                                       const QVector<NgmMatrix> &sills)
{
  optimizable->setSills(sills);
}
