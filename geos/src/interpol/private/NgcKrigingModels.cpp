#include "interpol/private/NgcKrigingModels.h"

#include "geos/interpol/NgcAKriging.h"
#include "geos/interpol/NgmTarget.h"

NgcKrigingModels::NgcKrigingModels(const NgcAKriging &kriging)
    : _kriging(kriging),
      _dataModel(&kriging.getVarioModel()),
      _estimatedModel(&kriging.getEstimatedModel()),
      _variances(kriging.getNVariables())
{
}

void NgcKrigingModels::setBuffer(const NbdDataTable &targets)
{
  if (!_kriging.isLGSEnabled())
    return;
  _localModel = _kriging.getVarioModel();
  _localModel.setAnglesConvention(_kriging.isUsingLGSModelRotationConvention(),
                                  _kriging.getLGSModelRotationConvention());
  _localModel.setForce2D(_kriging.getLGSModelRotationForce2D());
  _localModel.registerVariables(targets);
  _varies = _localModel.needPatching();
  if (!_varies)
    return;
  _dataModel = &_localModel;
  _estimatedModel = &_localModel;
}

bool NgcKrigingModels::patch(int position)
{
  if (!_varies)
    return true;
  if (!_localModel.patchModel(position))
    return false;
  if (_kriging.isFilteringNugget() || !_kriging.getFilteringStructuresList().isEmpty()) {
    _localFilteredModel = std::make_unique<NgmVModel>(_localModel.buildFilteredModel(
        _kriging.isFilteringNugget(), _kriging.getFilteringStructuresList()));
    _estimatedModel = _localFilteredModel.get();
  }
  return true;
}

const QVector<double> &NgcKrigingModels::getTargetVariances(const NgmTarget &target)
{
  const bool sameForAll = !_varies && !_kriging.isBlockVariableSize();
  if (!_variancesKnown || !sameForAll)
    _computeVariances(target);
  _variancesKnown = true;
  return _variances;
}

void NgcKrigingModels::_computeVariances(const NgmTarget &target)
{
  if (target.isBlock() && !_varies && !_kriging.isBlockVariableSize()) {
    _variances = _kriging.getBlockVariances();
    return;
  }
  if (!target.isBlock()) {
    for (int variable = 0; variable < _variances.size(); ++variable)
      _variances[variable] = _estimatedModel->getC0IJ(variable, variable);
    return;
  }
  const NgmMatrix cvv = _estimatedModel->computeMeanCvv(target.getBlock());
  for (int variable = 0; variable < _variances.size(); ++variable)
    _variances[variable] = cvv.getElement(variable, variable);
}
