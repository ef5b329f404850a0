#include "geos/base/NgcACalculator.h"

#include "geos/data/NgdADataSet.h"
#include "geos/matrix/NgmNumericLibrary.h"

#include <algorithm>

namespace {

/// The upper bound that the rules expect: -1 without bound, else not below the lower one.
int upperBound(int min, int max)
{
  return max < 0 ? -1 : std::max(min, max);
}

}  // namespace

NgcACalculator::NgcACalculator() = default;

NgcACalculator::~NgcACalculator()
{
  _finish();
  qDeleteAll(_dataSets);
}

void NgcACalculator::initMKLThreading()
{
  NgmNumericLibrary::setReproducible();
  NgmNumericLibrary::setThreads(1);
}

void NgcACalculator::setMKLThreading(int nThreads)
{
  NgmNumericLibrary::setThreads(nThreads);
}

void NgcACalculator::_cleanup()
{
  _rules.closeAllVariables();
  _rules.deleteTmpVariables();
  if (!_hasRuntimeRules)
    return;
  _hasRuntimeRules = false;
  _rules = _configuredRules;
  for (auto it = _dataSets.cbegin(); it != _dataSets.cend(); ++it)
    _rules.registerDataSet(it.key(), it.value());
}

void NgcACalculator::_doFinalChecks()
{
  _checkRules();
  _rules.openAllVariables();
}

void NgcACalculator::_checkDatasets() {}

void NgcACalculator::_addRuntimeConstraints() {}

void NgcACalculator::_checkConstraints()
{
  _rules._checkRoles();
  _rules._createTmpVariables();
  _rules._updateVariableInfos();
  _rules._updateMacroInfos();
  _rules._createMissingMacroRealizations();
}

void NgcACalculator::_checkRules()
{
  _checkDatasets();
  _configuredRules = _rules;
  _hasRuntimeRules = true;
  _addRuntimeConstraints();
  _checkConstraints();
}

void NgcACalculator::_setDataset(const QString &role, const NgdADataSet &dataSet)
{
  NgdADataSet *copy = dataSet.clone();
  if (!copy)
    return;
  delete _dataSets.value(role);
  _dataSets.insert(role, copy);
  _rules.registerDataSet(role, copy);
}

void NgcACalculator::_addVariableRule(const QString &dsRole, const QString &varRole,
                                      Nbd::EAccessType access, Nbd::EVariableType type, int min,
                                      int max)
{
  _rules.registerRole(dsRole, varRole, access, type);
  _addRuleCount(dsRole, varRole, min, max);
}

void NgcACalculator::_addMacroRule(const QString &dsRole, const QString &varRole,
                                   Nbd::EAccessType access, Nbd::EVariableType type, int min,
                                   int max)
{
  _rules.registerRoleMacro(dsRole, varRole, access, type);
  _addRuleCount(dsRole, varRole, min, max);
}

void NgcACalculator::_addVariableOrMacroRule(const QString &dsRole, const QString &varRole,
                                             Nbd::EAccessType access, Nbd::EVariableType type,
                                             int min, int max)
{
  _rules.registerRoleVariableOrMacro(dsRole, varRole, access, type);
  _addRuleCount(dsRole, varRole, min, max);
}

void NgcACalculator::_addRuleCount(const QString &dsRole, const QString &varRole, int min, int max)
{
  if (min >= 0)
    _rules.addRuleCount(dsRole, varRole, min, upperBound(min, max));
}

void NgcACalculator::_addRuleCountMatch(const QString &dsRole1, const QString &varRole1,
                                        const QString &dsRole2, const QString &varRole2)
{
  _rules.addRuleCountMatch(dsRole1, varRole1, dsRole2, varRole2);
}
