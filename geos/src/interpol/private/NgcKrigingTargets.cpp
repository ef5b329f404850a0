#include "interpol/private/NgcKrigingTargets.h"

#include "basic/base/NbbGlobal.h"
#include "basic/data/NbdAData.h"
#include "basic/data/NbdVariableDouble.h"
#include "geos/anam/NgmITransformation.h"
#include "geos/interpol/NgcAKriging.h"

#include <algorithm>

namespace {

bool areDefined(const std::vector<double> &values)
{
  return std::all_of(values.begin(), values.end(),
                     [](double value) { return NbbGlobal::isDefined(value); });
}

void readValues(const QList<NbdVariableDouble *> &variables, int position,
                std::vector<double> &values)
{
  for (int index = 0; index < variables.size(); ++index)
    values[std::size_t(index)] = variables[index]->getArrayConst()[position];
}

}  // namespace

NgcKrigingTargets::NgcKrigingTargets(const NgcAKriging &kriging)
    : _kriging(kriging),
      _usesDrifts(!kriging.isSimpleKriging() &&
                  kriging.getExtDriftModel().getNDriftEquations() > 0),
      _usesLocalMeans(kriging.needMeanCorrection() &&
                      kriging.getSimpleKrigingOption() == Ngc::SIMPLE_KRIGING_LOCAL_MEAN)
{
  if (!kriging.needMeanCorrection())
    return;
  for (int variable = 0; variable < kriging.getNVariables(); ++variable)
    _means.push_back(kriging.getSimpleKrigingMean(variable));
}

void NgcKrigingTargets::setBuffer(NbdAData &buffer)
{
  const NbdDataTable &table = buffer.getDataTableConst();
  if (_usesDrifts) {
    _driftVariables = table.getVarsDouble(Nbd::Role::EXTDRIFT);
    _drifts.resize(std::size_t(_driftVariables.size()));
  }
  if (_usesLocalMeans)
    _meanVariables = table.getVarsDouble(Nbd::Role::LOCAL_MEAN);
  _collocated = _kriging.getCollocatedVariables(table);
  if (_kriging.isCollocatedTransformation())
    _transformCollocated();
}

void NgcKrigingTargets::_transformCollocated() const
{
  for (auto variable = _collocated.begin(); variable != _collocated.end(); ++variable) {
    if (_kriging.isUsingMonoTransfo(variable.key()))
      _kriging.getMonoTransfo(variable.key()).transformValues(*variable.value(), *variable.value());
  }
}

bool NgcKrigingTargets::read(int position)
{
  readValues(_driftVariables, position, _drifts);
  readValues(_meanVariables, position, _means);
  return areDefined(_drifts) && areDefined(_means);
}

QMap<int, double> NgcKrigingTargets::getCollocatedValues(int position) const
{
  QMap<int, double> values;
  for (auto variable = _collocated.begin(); variable != _collocated.end(); ++variable) {
    const double value = variable.value()->getValue(position);
    if (NbbGlobal::isDefined(value))
      values.insert(variable.key(), value);
  }
  return values;
}
