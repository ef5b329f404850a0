// The roles of a kriging and the tests of its settings.

#include "basic/data/NbdAVariableNumeric.h"
#include "basic/data/NbdDataTable.h"
#include "basic/error/NbeAssertion.h"
#include "geos/data/NgdADataSet.h"
#include "geos/data/NgdSampout.h"
#include "geos/interpol/NgcAKriging.h"
#include "geos/interpol/NgmIKrigingPostPro.h"
#include "geos/stats/NgmIMultivariateTransform.h"
#include "geos/vmodel/NgmLgsVModel.h"

#include <QObject>

#include <algorithm>

namespace {

int countExternalDrifts(const NgmExtDriftModel &model, int nVariables)
{
  int count = 0;
  for (int variable = 0; variable < nVariables; ++variable)
    for (const int index : model.getDriftIndices(variable))
      count = std::max(count, index + 1);
  return count;
}

/// What can be wrong with variables that belong to the interpolated ones by index and name.
struct AttachedVariablesTexts
{
  QString oneByVariable;
  QString tooMany;
  QString unknownName;
  QString wrongIndex;
  QString wrongNumber;
};

/// `names`: by the index of an interpolated variable; `present`: the variables of the role.
QString findAttachedVariablesError(const QMap<int, QString> &names, const QStringList &present,
                                   int nVariables, const AttachedVariablesTexts &texts)
{
  if (present.size() > nVariables)
    return texts.oneByVariable;
  if (names.size() > nVariables)
    return texts.tooMany;
  for (auto name = names.begin(); name != names.end(); ++name) {
    if (!present.contains(name.value()))
      return texts.unknownName;
    if (name.key() < 0 || name.key() >= nVariables)
      return texts.wrongIndex;
  }
  return present.size() == names.size() ? QString() : texts.wrongNumber;
}

QMap<int, NbdAVariableNumeric *> findAttachedVariables(const NbdDataTable &table,
                                                       const QString &role,
                                                       const QMap<int, QString> &names)
{
  QMap<int, NbdAVariableNumeric *> variables;
  for (auto name = names.begin(); name != names.end(); ++name) {
    NbdAVariableNumeric *variable = table.getVarNumericByRoleAndName(role, name.value());
    if (variable)
      variables.insert(name.key(), variable);
  }
  return variables;
}

}  // namespace

// Roles.

QString NgcAKriging::getRoleSSDV()
{
  return QStringLiteral("#SSDV");
}

QString NgcAKriging::getRoleSpecificVolume()
{
  return QStringLiteral("#SPECIFIC_VOLUME");
}

QString NgcAKriging::getRoleCoeffOfVariation()
{
  return QStringLiteral("#COEFF_OF_VARIATION");
}

QStringList NgcAKriging::_getOutputRoles() const
{
  using namespace Nbd;
  return {Role::V,
          Role::VARIANCE,
          Role::STDEV,
          Role::VARINDICATOR,
          Role::VAR_ESTIMATE,
          Role::COVAR_ZZSTAR,
          Role::CORREL_ZZSTAR,
          Role::SLOPE_ZZSTAR,
          Role::KRIG_EFFIC,
          Role::SUM_W,
          Role::SUM_POS_W,
          Role::WEIGHT_OF_MEAN,
          Role::LAGRANGE,
          Role::NEIGH_NUMBER,
          Role::NEIGH_MEAN_DIST,
          Role::NEIGH_CODE_NUMBER,
          Role::NEIGH_SEARCH_INDEX,
          getRoleSSDV(),
          getRoleSpecificVolume(),
          getRoleCoeffOfVariation()};
}

QStringList NgcAKriging::getInputRolesInOutputDataset() const
{
  QStringList roles;
  if (_extDriftModel.getNDriftEquations() > 0)
    roles << Nbd::Role::EXTDRIFT;
  if (_simpleKrigingOption == Ngc::SIMPLE_KRIGING_LOCAL_MEAN)
    roles << Nbd::Role::LOCAL_MEAN;
  if (!_collocated.isEmpty())
    roles << Nbd::Role::COLLOCATED;
  if (isLGSEnabled())
    roles << NgmLgsVModel::getRoles();
  return roles;
}

QStringList NgcAKriging::getUpScalableRoles() const
{
  QStringList roles;
  for (const QString &role : getInputRolesInOutputDataset()) {
    if (role == Nbd::Role::EXTDRIFT || role == Nbd::Role::LOCAL_MEAN)
      roles << role;
  }
  return roles;
}

QMap<int, NbdAVariableNumeric *> NgcAKriging::getStDevMeasErrorsVariables(
    const NbdDataTable &table) const
{
  return findAttachedVariables(table, Nbd::Role::STDEV_MEAS_ERR, _measurementErrors);
}

QMap<int, NbdAVariableNumeric *> NgcAKriging::getCollocatedVariables(
    const NbdDataTable &table) const
{
  return findAttachedVariables(table, Nbd::Role::COLLOCATED, _collocated);
}

// Checks before a run.

void NgcAKriging::_addRuntimeConstraints()
{
  NgcAInterpol::_addRuntimeConstraints();
  _checkSettings();
  _checkMeans();
  _addInputRules();
  _addTargetRules();
  _addOutputRules();
  if (const NgdSampout *sampout = getSampout())
    sampout->registerKrigingConstraints(_getRules());
}

void NgcAKriging::_checkSettings() const
{
  if (_mainVariable < 0 || _mainVariable >= getNVariables())
    NBE_FAIL(QObject::tr("Invalid main variable index!"));
  if (!_hasOutput())
    NBE_FAIL(QObject::tr("No output variable to be estimated!"));
  if (isSimpleKriging() && isRescaledCokriging())
    NBE_FAIL(QObject::tr("Simple Kriging and Rescaled CoKriging are exclusive."));
  if (isBlockInterpolation() && !isSimpleKriging() && _extDriftModel.getNDriftEquations() > 0)
    NBE_FAIL(QObject::tr("Using external drifts not enabled in block kriging."));
  if (isLGSEnabled() && getOutputDataset()->hasVariablesWithRole(Nbd::Role::VARINDICATOR))
    NBE_FAIL(QObject::tr("Variance indicator is not available with LGS"));
  if (isLGSEnabled() && !isUsingMoving())
    NBE_FAIL(QObject::tr("Cannot use LGS with a Unique Neighborhood."));
  if (getOutputDataset()->hasVariablesWithRole(Nbd::Role::KRIG_EFFIC) &&
      !getOutputDataset()->hasVariablesWithRole(Nbd::Role::VARIANCE) &&
      !getOutputDataset()->hasVariablesWithRole(Nbd::Role::STDEV))
    NBE_FAIL(QObject::tr("Kriging efficiency needs Kriging variance or Standard deviation"));
}

bool NgcAKriging::_hasOutput() const
{
  const NgdADataSet &output = *getOutputDataset();
  QStringList roles = _getOutputRoles();
  roles << Nbd::Role::COVAR_Z1STARZSTAR;
  if (_postPro)
    roles << _postPro->getStoreRoles();
  return std::any_of(roles.begin(), roles.end(),
                     [&output](const QString &role) { return output.hasVariablesWithRole(role); });
}

void NgcAKriging::_checkMeans() const
{
  const bool usesMeans = isSimpleKriging() || isRescaledCokriging();
  if (!usesMeans || _simpleKrigingOption != Ngc::SIMPLE_KRIGING_CONSTANT_MEAN || _means.isEmpty())
    return;
  if (_means.size() != getNVariables())
    NBE_FAIL(QObject::tr("Wrong number of constant known means: expected=%1, given=%2")
                 .arg(getNVariables())
                 .arg(_means.size()));
}

void NgcAKriging::_addInputRules()
{
  const QString &input = Nbd::Dataset::INPUT;
  const int nVariables = getNVariables();
  _addVariableOrMacroRule(input, Nbd::Role::V, Nbd::ACCESS_READ, Nbd::TYPE_DOUBLE, nVariables,
                          nVariables);
  _addVariableRule(input, Nbd::Role::STDEV_MEAS_ERR, Nbd::ACCESS_READ, Nbd::TYPE_DOUBLE, 0, -1);
  const int nDrifts = isSimpleKriging() ? 0 : countExternalDrifts(_extDriftModel, nVariables);
  _addVariableRule(input, Nbd::Role::EXTDRIFT, Nbd::ACCESS_READ, Nbd::TYPE_DOUBLE, nDrifts, -1);
  const bool localMeans =
      needMeanCorrection() && _simpleKrigingOption == Ngc::SIMPLE_KRIGING_LOCAL_MEAN;
  _addVariableRule(input, Nbd::Role::LOCAL_MEAN, Nbd::ACCESS_READ, Nbd::TYPE_DOUBLE,
                   localMeans && !_meansOnlyOnTarget ? nVariables : 0, nVariables);
}

void NgcAKriging::_addTargetRules()
{
  const QString &output = Nbd::Dataset::OUTPUT;
  const int nVariables = getNVariables();
  const int nDrifts = isSimpleKriging() ? 0 : countExternalDrifts(_extDriftModel, nVariables);
  _addVariableRule(output, Nbd::Role::EXTDRIFT, Nbd::ACCESS_READ, Nbd::TYPE_DOUBLE, nDrifts, -1);
  const bool localMeans =
      needMeanCorrection() && _simpleKrigingOption == Ngc::SIMPLE_KRIGING_LOCAL_MEAN;
  _addVariableRule(output, Nbd::Role::LOCAL_MEAN, Nbd::ACCESS_READ, Nbd::TYPE_DOUBLE,
                   localMeans ? nVariables : 0, nVariables);
  _addVariableRule(output, Nbd::Role::COLLOCATED, Nbd::ACCESS_READ, Nbd::TYPE_DOUBLE, 0, -1);
  for (const QString &role : NgmLgsVModel::getRoles())
    _addVariableRule(output, role, Nbd::ACCESS_READ, Nbd::TYPE_DOUBLE, 0, 1);
}

void NgcAKriging::_addOutputRules()
{
  int nExcluded = 0;
  for (const int variable : _excludedOutputVars)
    nExcluded += variable >= 0 && variable < getNVariables();
  const int nEstimated = getNVariables() - nExcluded;
  for (const QString &role : _getOutputRoles())
    _addOutputRule(role, getNVariables(), nEstimated);
  _addOutputRule(Nbd::Role::COVAR_Z1STARZSTAR, getNVariables() - 1, nEstimated - 1);
  if (_postPro) {
    for (const QString &role : _postPro->getStoreRoles())
      _addVariableOrMacroRule(Nbd::Dataset::OUTPUT, role, Nbd::ACCESS_WRITE, Nbd::TYPE_DOUBLE,
                              _postPro->getRoleMinimumNumber(role),
                              _postPro->getRoleMaximumNumber(role));
  }
  if (_multiTransfo)
    _multiTransfo->setupVariableRules(_getRules());
}

/// A role that the output has takes one variable per interpolated variable, or one per estimated
/// variable.
void NgcAKriging::_addOutputRule(const QString &role, int nVariables, int nEstimated)
{
  const int present = getOutputDataset()->getRoleCount(role);
  const bool onlyEstimated = present == nEstimated;
  const int expected = onlyEstimated ? nEstimated : nVariables;
  _addVariableOrMacroRule(Nbd::Dataset::OUTPUT, role, Nbd::ACCESS_WRITE, Nbd::TYPE_DOUBLE,
                          present == 0 ? 0 : expected, expected);
}

void NgcAKriging::_checkMeasurementErrors() const
{
  const QString error = findAttachedVariablesError(
      _measurementErrors, getInputDataset()->getVariableNames(Nbd::Role::STDEV_MEAS_ERR),
      getNVariables(),
      {QObject::tr("Only one stdev of measurement error by input variable is possible."),
       QObject::tr("There is too much stdev of measurement error."),
       QObject::tr("Unknown stdev of measurement error variable name."),
       QObject::tr("Wrong index in stdev of measurement error variables."),
       QObject::tr("Wrong number of stdev of measurement error.")});
  if (!error.isEmpty())
    NBE_FAIL(error);
}

void NgcAKriging::_checkCollocated() const
{
  const QString error = findAttachedVariablesError(
      _collocated, getOutputDataset()->getVariableNames(Nbd::Role::COLLOCATED), getNVariables(),
      {QObject::tr("Only one collocated variable by input variable is possible."),
       QObject::tr("There is too much collocated variables."),
       QObject::tr("Unknown collocated variable name."),
       QObject::tr("Wrong index in collocated variables."),
       QObject::tr("Wrong number of collocated variables.")});
  if (!error.isEmpty())
    NBE_FAIL(error);
  if (_collocated.isEmpty())
    return;
  if (isBlockInterpolation())
    NBE_FAIL(QObject::tr("Collocated cokriging not possible in block kriging."));
  if (isFilteringComponentsEnabled())
    NBE_FAIL(QObject::tr("Collocated cokriging not possible when filtering components."));
}
