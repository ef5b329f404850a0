#include "interpol/private/NgcKrigingNeighbors.h"

#include "basic/base/NbbGlobal.h"
#include "basic/data/NbdDataPoints.h"
#include "basic/data/NbdVariableDouble.h"
#include "geos/interpol/NgcAKriging.h"

namespace {

/// centered = value - mean, undefined where one of them is.
void center(int n, const double *values, const double *means, double *centered)
{
  for (int s = 0; s < n; ++s) {
    const bool defined = NbbGlobal::isDefined(values[s]) && NbbGlobal::isDefined(means[s]);
    centered[s] = defined ? values[s] - means[s] : NbbGlobal::D_FFFF;
  }
}

void center(int n, const double *values, double mean, double *centered)
{
  for (int s = 0; s < n; ++s)
    centered[s] = NbbGlobal::isDefined(values[s]) ? values[s] - mean : NbbGlobal::D_FFFF;
}

}  // namespace

NgcKrigingNeighbors::NgcKrigingNeighbors(const NgcAKriging &kriging)
    : _kriging(kriging),
      _nVariables(kriging.getNVariables()),
      _centers(kriging.needMeanCorrection()),
      _hasLocalMeans(_centers && !kriging.isSimpleKrigingVarsOnlyOnTarget() &&
                     kriging.getSimpleKrigingOption() == Ngc::SIMPLE_KRIGING_LOCAL_MEAN)
{
}

void NgcKrigingNeighbors::setSource(const NbdDataPoints &samples, int maximum)
{
  const NbdDataTable &table = samples.getDataTableConst();
  for (int axis = 0; axis < 3; ++axis)
    _coordinates[axis] = samples.getCoordinates(axis);
  _variables = table.getVarsDouble(Nbd::Role::V);
  _values.resize(std::size_t(_variables.size()));

  if (_hasLocalMeans)
    _meanVariables = table.getVarsDouble(Nbd::Role::LOCAL_MEAN);
  if (_centers)
    _centered.assign(std::size_t(_nVariables), std::vector<double>(std::size_t(maximum)));

  if (!_kriging.isSimpleKriging() && _kriging.getExtDriftModel().getNDriftEquations() > 0)
    _driftVariables = table.getVarsDouble(Nbd::Role::EXTDRIFT);
  _drifts.resize(std::size_t(_driftVariables.size()));

  const QMap<int, NbdAVariableNumeric *> errors = _kriging.getStDevMeasErrorsVariables(table);
  for (auto error = errors.begin(); error != errors.end(); ++error)
    _errorVariables.insert(error.key(), dynamic_cast<const NbdVariableDouble *>(error.value()));
  _errors.resize(_errorVariables.isEmpty() ? 0 : std::size_t(_nVariables));
}

const NgmKrigingSamples &NgcKrigingNeighbors::take(int n, const double *targetMeans)
{
  _samples.n = n;
  _samples.x = _coordinates[0]->getArrayConst();
  _samples.y = _coordinates[1]->getArrayConst();
  _samples.z = _coordinates[2]->getArrayConst();
  for (std::size_t v = 0; v < _values.size(); ++v)
    _values[v] = _variables[int(v)]->getArrayConst();
  if (_centers)
    _center(n, targetMeans);
  _samples.values = _values.data();

  for (std::size_t k = 0; k < _drifts.size(); ++k)
    _drifts[k] = _driftVariables[int(k)]->getArrayConst();
  _samples.externalDrifts = _drifts.empty() ? nullptr : _drifts.data();

  for (auto error = _errorVariables.begin(); error != _errorVariables.end(); ++error)
    _errors[std::size_t(error.key())] = error.value() ? error.value()->getArrayConst() : nullptr;
  _samples.errorStDevs = _errors.empty() ? nullptr : _errors.data();
  return _samples;
}

void NgcKrigingNeighbors::_center(int n, const double *targetMeans)
{
  for (std::size_t v = 0; v < _values.size(); ++v) {
    if (_centered[v].size() < std::size_t(n))
      _centered[v].resize(std::size_t(n));
    double *centered = _centered[v].data();
    if (_hasLocalMeans)
      center(n, _values[v], _meanVariables[int(v)]->getArrayConst(), centered);
    else if (targetMeans)
      center(n, _values[v], targetMeans[v], centered);
    else
      continue;
    _values[v] = centered;
  }
}

void NgcKrigingNeighbors::completeTargetSample(int position, const double *externalDrifts,
                                               const double *means)
{
  if (externalDrifts) {
    for (int k = 0; k < _driftVariables.size(); ++k)
      _driftVariables[k]->getArray()[position] = externalDrifts[k];
  }
  if (means) {
    for (int v = 0; v < _meanVariables.size(); ++v)
      _meanVariables[v]->getArray()[position] = means[v];
  }
}

const double *NgcKrigingNeighbors::getRawValues(int variable) const
{
  return _variables[variable]->getArrayConst();
}
