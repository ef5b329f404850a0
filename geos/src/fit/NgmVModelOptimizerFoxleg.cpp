#include "geos/fit/NgmVModelOptimizerFoxleg.h"

#include "basic/error/NbeProgrammingError.h"
#include "geos/fit/NgmOptimizerGoulard.h"
#include "geos/fit/NgmVModelOptimizable.h"

#include <QObject>

namespace {

constexpr double PERFECT_SCORE = 1e-5;

// Factors of the ranges, by structure.
const QVector<QVector<double>> OTHER_STARTS{{0.4, 1., 2.}, {2., 0.4, 0.7}};

}  // namespace

NgmVModelOptimizerFoxleg::NgmVModelOptimizerFoxleg(const QString &name) : NgmOptimizerFoxleg(name)
{
}

NgmVModelOptimizerFoxleg::~NgmVModelOptimizerFoxleg()
{
  _finish();
}

NgmVModelOptimizable &NgmVModelOptimizerFoxleg::_vModel() const
{
  auto *vModel = dynamic_cast<NgmVModelOptimizable *>(_optimizable);
  if (!vModel)
    throw NbeProgrammingError(QStringLiteral(
        "NgmVModelOptimizerFoxleg::_doRun: Optimizable object must be a variogram model!"));
  return *vModel;
}

QVector<NgmOptParamId> NgmVModelOptimizerFoxleg::_ids(bool sills) const
{
  QVector<NgmOptParamId> ids;
  for (const NgmOptParam &param : _optimizable->_getParamsRef()) {
    if ((param.getId().type == NgmVModelToBeOptimized::SILL) == sills)
      ids << param.getId();
  }
  return ids;
}

bool NgmVModelOptimizerFoxleg::_doOptimization(int nbMaxIteration)
{
  NgmVModelOptimizable &vModel = _vModel();
  if (_optimizable->_getParamsRef().isEmpty())
    return false;
  // One criterion for both steps.
  vModel.setSillWeights(NgmVModelOptimizable::SillWeights::Squared);
  const QVector<NgmOptParamId> filters = _filters;
  bool isDone = _fitFromSeveralStarts(nbMaxIteration);
  while (isDone && filters.isEmpty() && vModel.reduceModel(_verbose)) {
    _countAll();
    isDone = _fitAll(nbMaxIteration);
  }
  _filters = filters;
  return isDone;
}

/// The best of what the current parameters lead to and of what they lead to with other automatic
/// ranges; only the former when it is a perfect fit.
bool NgmVModelOptimizerFoxleg::_fitFromSeveralStarts(int nbMaxIteration)
{
  const NgmOptParamList start = _optimizable->_getParamsRef();
  bool isDone = _fitAll(nbMaxIteration);
  _Outcome best{_score, _converged, _optimizable->_getParamsRef()};
  for (const QVector<double> &factors : OTHER_STARTS) {
    if (!isDone || !_filters.isEmpty() || best.score < PERFECT_SCORE)
      break;
    const NgmOptParamList other = _withOtherRanges(start, factors);
    if (other.isEmpty())
      break;
    _optimizable->acceptParams(other);
    isDone = _fitAll(nbMaxIteration);
    if (isDone && _score < best.score)
      best = {_score, _converged, _optimizable->_getParamsRef()};
  }
  if (!isDone)
    return false;
  _optimizable->acceptParams(best.params);
  _score = best.score;
  _converged = best.isConverged;
  _calculateCriteria();
  return true;
}

/// The automatic ranges times a factor by structure, in turns; empty when there are none.
NgmOptParamList NgmVModelOptimizerFoxleg::_withOtherRanges(const NgmOptParamList &params,
                                                           const QVector<double> &factors) const
{
  const NgmVModelToBeOptimized &model = _vModel().getInitialModel();
  NgmOptParamList changed = params;
  bool isChanged = false;
  for (NgmOptParam &param : changed) {
    const NgmOptParamId &id = param.getId();
    if (id.type != NgmVModelToBeOptimized::RANGE ||
        !model.isAutomatic(id.structure, id.type, id.index1, id.index2))
      continue;
    param.setValue(
        param.getBounds().fit(param.getValue() * factors[id.structure % factors.size()]));
    isChanged = true;
  }
  return isChanged ? changed : NgmOptParamList();
}

/// The sills first; then everything, and where sills are more than numbers, ranges and rotations
/// alone, because what a bound on a matrix forbids can hold up the move of all together.
bool NgmVModelOptimizerFoxleg::_fitAll(int nbMaxIteration)
{
  _prepareGoulard();
  if (_goulard && !_goulard->_doOptimization(nbMaxIteration))
    return false;
  if (_nbMaxIterGoulard <= 0 || _ids(false).isEmpty())
    return _takeSillFit();

  const QVector<NgmOptParamId> filters = _filters;
  bool isDone = NgmOptimizerFoxleg::_doOptimization(nbMaxIteration);
  if (isDone && _goulard && filters.isEmpty() && !_areSillsFree()) {
    _filters = _ids(false);
    _countAll();
    isDone = NgmOptimizerFoxleg::_doOptimization(nbMaxIteration);
    _filters = filters;
    _countAll();
  }
  return isDone;
}

bool NgmVModelOptimizerFoxleg::_takeSillFit()
{
  if (!_goulard)
    return false;
  NgmOptParamList params = _optimizable->_getParamsRef();
  _score = _calculateResiduals(params);
  _converged = _goulard->hasConverged();
  _calculateCriteria();
  return true;
}

/// A fit of sills for the current structures; none where sills do not enter linearly.
void NgmVModelOptimizerFoxleg::_prepareGoulard()
{
  NgmVModelOptimizable &vModel = _vModel();
  _goulard.reset();
  const QVector<NgmOptParamId> sills = _ids(true);
  if (sills.isEmpty() || vModel.hasCovarianceTransformation())
    return;
  _goulard = std::make_unique<NgmOptimizerGoulard>();
  _goulard->setOptimizable(&vModel, false);
  _goulard->setFilters(sills);
  _goulard->setVerboseFlag(_showGoulard);
  _goulard->_countAll();
}

bool NgmVModelOptimizerFoxleg::_areSillsFree() const
{
  QVector<double> sills;
  const NgmVModelOptimizable &vModel = _vModel();
  return vModel.getNVariables() == 1 && !vModel.isIntrinsicConstraint() &&
         !vModel.getSillCumulativeConstraint(sills);
}

void NgmVModelOptimizerFoxleg::_patchParams(NgmOptParamList &params)
{
  if (!_goulard || _nbMaxIterGoulard <= 0)
    return;
  try {
    _optimizable->acceptParams(params);
    _goulard->_doOptimization(_nbMaxIterGoulard);
  } catch (const NbeProgrammingError &) {
    throw NbeProgrammingError(QStringLiteral(
        "NgmVModelOptimizerFoxleg::_patchParams: Patched parameters cannot be accepted!"));
  }
  NgmOptParamList patched = _optimizable->_getParamsRef();
  if (!_areSillsFree() || _calculateResiduals(patched) <= _calculateResiduals(params))
    params = patched;
}
