#include "interpol/private/NgcKrigingOutputs.h"

#include "basic/base/NbbGlobal.h"
#include "basic/data/NbdAData.h"
#include "basic/data/NbdVariableDouble.h"
#include "geos/interpol/NgcAKriging.h"

#include <algorithm>

namespace {

const QString &roleOf(int statistic)
{
  static const QString roles[NgcKrigingOutputs::N_STATISTICS] = {
      Nbd::Role::VAR_ESTIMATE,
      Nbd::Role::COVAR_Z1STARZSTAR,
      Nbd::Role::COVAR_ZZSTAR,
      Nbd::Role::CORREL_ZZSTAR,
      Nbd::Role::SLOPE_ZZSTAR,
      Nbd::Role::KRIG_EFFIC,
      Nbd::Role::SUM_W,
      Nbd::Role::SUM_POS_W,
      Nbd::Role::WEIGHT_OF_MEAN,
      Nbd::Role::LAGRANGE,
      Nbd::Role::NEIGH_NUMBER,
      Nbd::Role::NEIGH_MEAN_DIST,
      Nbd::Role::NEIGH_CODE_NUMBER,
      Nbd::Role::NEIGH_SEARCH_INDEX,
      NgcAKriging::getRoleSSDV(),
      NgcAKriging::getRoleSpecificVolume(),
      NgcAKriging::getRoleCoeffOfVariation()};
  return roles[statistic];
}

}  // namespace

class NgcKrigingOutputs::Placeholders
{
public:
  Placeholders(const QString &name, int nVariables)
  {
    for (int variable = 0; variable < nVariables; ++variable) {
      NbdVariableDetails details;
      details.setName(name.arg(variable));
      _variables.push_back(std::make_unique<NbdVariableDouble>(details));
    }
  }

  NbdVariableDouble *get(int variable, int nSamples)
  {
    NbdVariableDouble *placeholder = _variables[std::size_t(variable)].get();
    placeholder->resizeAndFill(nSamples);
    return placeholder;
  }

private:
  std::vector<std::unique_ptr<NbdVariableDouble>> _variables;
};

NgcKrigingOutputs::NgcKrigingOutputs(const NgcAKriging &kriging)
    : _kriging(kriging),
      _nVariables(kriging.getNVariables()),
      _needsVariances(kriging.isSuperKriging() || kriging.hasGaussianKrigingPostPro()),
      _fakeEstimates(std::make_unique<Placeholders>(QStringLiteral("FakeEstOut(%1)"), _nVariables)),
      _fakeVariances(std::make_unique<Placeholders>(QStringLiteral("FakeVarOut(%1)"), _nVariables))
{
}

NgcKrigingOutputs::~NgcKrigingOutputs() = default;

void NgcKrigingOutputs::setBuffer(NbdAData &buffer)
{
  const NbdDataTable &table = buffer.getDataTableConst();
  _nSamples = buffer.getNSamples();
  _findEstimates(table);
  _findVariances(table);
  _findStatistics(table);
  _listColumns();
  for (double *column : _all)
    for (const int position : buffer.getSelectedPositions())
      column[position] = NbbGlobal::D_FFFF;
}

/// The output of a variable: roles have one for each variable, or for each estimated one.
NbdVariableDouble *NgcKrigingOutputs::_find(const NbdDataTable &table, const QString &role,
                                            int variable) const
{
  if (_kriging.isExcluded(variable))
    return nullptr;
  const int first = role == Nbd::Role::COVAR_Z1STARZSTAR ? 1 : 0;
  if (variable < first)
    return nullptr;
  int index = variable - first;
  if (table.getRoleCount(role) < _nVariables - first) {
    for (int other = first; other < variable; ++other)
      index -= _kriging.isExcluded(other);
  }
  return table.getVarDouble(role, index);
}

bool NgcKrigingOutputs::_findColumns(const NbdDataTable &table, const QString &role,
                                     Columns &columns) const
{
  columns.assign(std::size_t(_nVariables), nullptr);
  if (!table.hasRole(role))
    return false;
  for (int variable = 0; variable < _nVariables; ++variable) {
    if (NbdVariableDouble *output = _find(table, role, variable))
      columns[std::size_t(variable)] = output->getArray();
  }
  return true;
}

void NgcKrigingOutputs::_findEstimates(const NbdDataTable &table)
{
  _estimates.assign(std::size_t(_nVariables), nullptr);
  _estimateVariables.clear();
  for (int variable = 0; variable < _nVariables; ++variable) {
    if (_kriging.isExcluded(variable))
      continue;
    NbdVariableDouble *output = _find(table, Nbd::Role::V, variable);
    if (!output)
      output = _fakeEstimates->get(variable, _nSamples);
    _estimates[std::size_t(variable)] = output->getArray();
    _estimateVariables << output;
  }
}

void NgcKrigingOutputs::_findVariances(const NbdDataTable &table)
{
  _hasIndicator = table.hasRole(Nbd::Role::VARINDICATOR);
  _hasVariance = !_hasIndicator && table.hasRole(Nbd::Role::VARIANCE);
  _hasStandardDeviation = !_hasIndicator && table.hasRole(Nbd::Role::STDEV);
  _hasVariances = _hasIndicator || _hasVariance || _hasStandardDeviation || _needsVariances;
  _variances.assign(std::size_t(_nVariables), nullptr);
  _varianceVariables.clear();
  _findColumns(table, _hasStandardDeviation ? Nbd::Role::STDEV : QString(), _standardDeviations);
  if (!_hasVariances)
    return;

  const QString role = _hasIndicator  ? Nbd::Role::VARINDICATOR
                       : _hasVariance ? Nbd::Role::VARIANCE
                                      : Nbd::Role::STDEV;
  for (int variable = 0; variable < _nVariables; ++variable) {
    if (_kriging.isExcluded(variable))
      continue;
    NbdVariableDouble *slot = _find(table, role, variable);
    if (!slot)
      slot = _fakeVariances->get(variable, _nSamples);
    _variances[std::size_t(variable)] = slot->getArray();
    _varianceVariables << slot;
  }
}

void NgcKrigingOutputs::_findStatistics(const NbdDataTable &table)
{
  _needsWeights = false;
  _describesNeighbors = false;
  for (int statistic = 0; statistic < N_STATISTICS; ++statistic) {
    _present[std::size_t(statistic)] =
        _findColumns(table, roleOf(statistic), _statistics[std::size_t(statistic)]);
    _needsWeights |= _present[std::size_t(statistic)] && statistic <= LAGRANGE;
    _describesNeighbors |= _present[std::size_t(statistic)] && statistic >= NEIGH_NUMBER &&
                           statistic <= NEIGH_SEARCH_INDEX;
  }
}

void NgcKrigingOutputs::_listColumns()
{
  _all.clear();
  for (const Columns *columns : {&_estimates, &_variances, &_standardDeviations})
    _all.insert(_all.end(), columns->begin(), columns->end());
  for (const Columns &columns : _statistics)
    _all.insert(_all.end(), columns.begin(), columns.end());
  _all.erase(std::remove(_all.begin(), _all.end(), nullptr), _all.end());
}
