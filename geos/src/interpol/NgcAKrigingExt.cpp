#include "geos/interpol/NgcAKrigingExt.h"

#include "basic/error/NbeAssertion.h"
#include "basic/error/NbeUserError.h"
#include "geos/data/NgdDataSetGrid.h"
#include "geos/interpol/NgcAKriging.h"
#include "geos/interpol/NgmIKrigingPostPro.h"
#include "interpol/private/NgcCentering.h"
#include "interpol/private/NgcInterpolExtMig.h"

#include <QObject>

namespace {

const QString idToSamples = QStringLiteral("CALC_MIGRATION_INPUT");
const QString idToTargets = QStringLiteral("CALC_MIGRATION_OUTPUT");
const QString idCentering = QStringLiteral("CALC_CENTERING");
const QString idKriging = QStringLiteral("CALC_KRIGING");

// Shares of the progress.
constexpr int stepWeight = 1;
constexpr int krigingWeight = 20;

}  // namespace

NgcAKrigingExt::NgcAKrigingExt(NgcAKriging *kriging, const QString &step, bool centers)
    : _kriging(kriging),
      _toSamples(new NgcInterpolExtMig),
      _toTargets(new NgcInterpolExtMig),
      _centering(new NgcCentering),
      _centers(centers)
{
  const QString migration = QObject::tr("External Data Migration");
  _registerProgressable(idToSamples, _toSamples, migration, stepWeight);
  _registerProgressable(idToTargets, _toTargets, migration, stepWeight);
  _registerProgressable(idCentering, _centering, QObject::tr("Centering Data"), stepWeight);
  _registerProgressable(idKriging, _kriging, step, krigingWeight);
}

NgcAKrigingExt::~NgcAKrigingExt()
{
  _finish();
}

void NgcAKrigingExt::addExternalInDataset(const QStringList &roles, const NgdDataSetGrid &grid)
{
  for (const QString &role : roles)
    _externalCounts[role] += grid.getRoleCount(role);
  _toSamples->addExternalGrid(roles, grid);
  _toTargets->addExternalGrid(roles, grid);
}

void NgcAKrigingExt::setInputDataSet(const NgdADataSet &dataSet)
{
  _input.reset(dataSet.clone());
  _setDataset(Nbd::Dataset::INPUT, dataSet);
}

void NgcAKrigingExt::setOutputDataSet(const NgdADataSet &dataSet)
{
  _output.reset(dataSet.clone());
  _setDataset(Nbd::Dataset::OUTPUT, dataSet);
}

const NgdADataSet *NgcAKrigingExt::getInputDataset() const
{
  return _getDataset(Nbd::Dataset::INPUT);
}

const NgdADataSet *NgcAKrigingExt::getOutputDataset() const
{
  return _getDataset(Nbd::Dataset::OUTPUT);
}

// The run.

void NgcAKrigingExt::_checkDatasets()
{
  if (!_input)
    NBE_FAIL(QObject::tr("No input dataset defined."));
  if (!_output)
    NBE_FAIL(QObject::tr("No output dataset defined."));
  if (_kriging->isLGSEnabled() && !_kriging->isUsingMoving())
    NBE_FAIL(QObject::tr("Cannot use LGS with a Unique Neighborhood."));
  for (auto count = _externalCounts.cbegin(); count != _externalCounts.cend(); ++count) {
    const int nTargets = _output->getRoleCount(count.key());
    const int nSamples = _input->getRoleCount(count.key());
    if (nTargets != nSamples && nTargets != nSamples + count.value())
      NBE_FAIL(
          QObject::tr("Wrong number of variables for role %1 in target dataset").arg(count.key()));
  }
  if (_output->getRoleCount(Nbd::Role::COLLOCATED) != getAllCollocated().size())
    NBE_FAIL(QObject::tr("Wrong number of collocated variables."));

  _setDataset(Nbd::Dataset::INPUT, *_input);
  _setDataset(Nbd::Dataset::OUTPUT, *_output);
  _assignTemporaries();
}

/// The output has the variables that the external grids give.
bool NgcAKrigingExt::_isTargetServed(const QString &role) const
{
  return _output->getRoleCount(role) != _input->getRoleCount(role);
}

/// The targets are samples of the input's data file.
bool NgcAKrigingExt::_sharesFile() const
{
  return _input->getDataProvider() == _output->getDataProvider();
}

void NgcAKrigingExt::_assignTemporaries()
{
  for (auto count = _externalCounts.cbegin(); count != _externalCounts.cend(); ++count) {
    const QString &role = count.key();
    const bool ofTargets = !_isTargetServed(role) && !_sharesFile();
    for (int external = 0; external < count.value(); ++external) {
      const QString name = QStringLiteral("__TMP_%1_V%2")
                               .arg(role, QString::number(_input->getRoleCount(role) + external));
      _getDataset(Nbd::Dataset::INPUT)->assignTemporaryVariable(role, name, Nbd::TYPE_DOUBLE);
      if (ofTargets)
        _getDataset(Nbd::Dataset::OUTPUT)->assignTemporaryVariable(role, name, Nbd::TYPE_DOUBLE);
    }
  }
}

void NgcAKrigingExt::_addRuntimeConstraints()
{
  for (auto count = _externalCounts.cbegin(); count != _externalCounts.cend(); ++count) {
    for (const QString &dataSet : {Nbd::Dataset::INPUT, Nbd::Dataset::OUTPUT})
      _addVariableRule(dataSet, count.key(), Nbd::ACCESS_WRITE, Nbd::TYPE_DOUBLE, 0, -1);
  }
}

void NgcAKrigingExt::_preProcessing()
{
  NgcACalculatorComposite::_preProcessing();
  if (!_sharesFile())
    return;
  // The targets are samples: they have the samples' temporary variables.
  for (auto count = _externalCounts.cbegin(); count != _externalCounts.cend(); ++count) {
    if (_isTargetServed(count.key()))
      continue;
    for (const QString &id : _getDataset(Nbd::Dataset::INPUT)
                                 ->getVariableIds(count.key())
                                 .mid(_input->getRoleCount(count.key())))
      _getDataset(Nbd::Dataset::OUTPUT)->assignVariable(count.key(), id);
  }
}

bool NgcAKrigingExt::_prepareProgressable(const QString &id)
{
  if (id == idToSamples)
    return _prepareMigration(*_toSamples, Nbd::Dataset::INPUT);
  if (id == idToTargets)
    return !_sharesFile() && _prepareMigration(*_toTargets, Nbd::Dataset::OUTPUT);

  const NgdADataSet &input = *_getDataset(Nbd::Dataset::INPUT);
  const bool isCentered = _centers && _kriging->isDirectBlock();
  if (id == idCentering) {
    if (isCentered)
      _prepareCentering();
    return isCentered;
  }
  if (isCentered)
    _kriging->setInputDataSet(_centering->getCenteredDataSet());
  else
    _kriging->setInputDataSet(input);
  _kriging->setOutputDataSet(*_getDataset(Nbd::Dataset::OUTPUT));
  return true;
}

void NgcAKrigingExt::_progressableFinished(const QString & /*id*/) {}

/// Only the temporary variables take part.
bool NgcAKrigingExt::_prepareMigration(NgcInterpolExtMig &migration, const QString &dataSetRole)
{
  const NgdADataSet &given = dataSetRole == Nbd::Dataset::INPUT ? *_input : *_output;
  const NgdADataSet &prepared = *_getDataset(dataSetRole);
  const std::unique_ptr<NgdADataSet> dataSet(given.clone());
  dataSet->clearOtherRoles({Nbd::Role::X, Nbd::Role::Y, Nbd::Role::Z, Nbd::Role::SN});
  bool hasVariables = false;
  for (const QString &role : _externalCounts.keys()) {
    for (const QString &id : prepared.getVariableIds(role).mid(given.getRoleCount(role))) {
      dataSet->assignVariable(role, id);
      hasVariables = true;
    }
  }
  if (hasVariables)
    migration.setDataSet(*dataSet);
  return hasVariables;
}

void NgcAKrigingExt::_prepareCentering()
{
  const auto *grid = dynamic_cast<const NgdDataSetGrid *>(_output.get());
  if (!grid)
    throw NbeUserError(QObject::tr(
        "Direct block kriging needs a grid as output: its samples are moved to the centers of the "
        "cells that hold them."));
  _centering->setInputDataSet(*_getDataset(Nbd::Dataset::INPUT));
  _centering->setBlocks(grid->getGeometry());
}

void NgcAKrigingExt::_beginTest()
{
  _doFinalChecks();
  _preProcessing();
  for (const QString &id : _getIds()) {
    if (_prepareProgressable(id) && id != idKriging)
      _runSubProgress(*_getProgressable(id), false, 0);
  }
}

void NgcAKrigingExt::_endTest()
{
  _cleanup();
}

// Settings of the kriging.

void NgcAKrigingExt::setSupportPoint()
{
  _kriging->setSupportPoint();
}

void NgcAKrigingExt::setSupportBlock(const NgmABlock &block)
{
  _kriging->setSupportBlock(block);
}

void NgcAKrigingExt::setSupportBlockVarSize(bool varies)
{
  _kriging->setSupportBlockVarSize(varies);
}

void NgcAKrigingExt::setUsingUniqueNeighborhood()
{
  _kriging->setUsingUniqueNeighborhood();
}

void NgcAKrigingExt::setUsingMovingNeighborhood(const NgmNeighborhoodMoving &parameters)
{
  _kriging->setUsingMovingNeighborhood(parameters);
}

void NgcAKrigingExt::addMovingAlternativeParameters(const NgmNeighborhoodNestedParam &change)
{
  _kriging->addMovingAlternativeParameters(change);
}

void NgcAKrigingExt::setParcelling(const NbgIntVector3D &sizes, const NbgVector3D &extension)
{
  _kriging->setParcelling(sizes, extension);
}

void NgcAKrigingExt::setOnErrorBehavior(Ngc::OnErrorBehavior behavior)
{
  _kriging->setOnErrorBehavior(behavior);
}

int NgcAKrigingExt::getNumberOfInterpolErrors() const
{
  return _kriging->getNumberOfInterpolErrors();
}

QString NgcAKrigingExt::getInterpolErrorsMessage() const
{
  return _kriging->getInterpolErrorsMessage();
}

const NgdANeighborhood &NgcAKrigingExt::getConstNeighborhood() const
{
  return _kriging->getConstNeighborhood();
}

NgdSampout *NgcAKrigingExt::getSampout() const
{
  return _kriging->getSampout();
}

void NgcAKrigingExt::setEnableLGS(bool enable)
{
  _kriging->setEnableLGS(enable);
}

void NgcAKrigingExt::setLGSNeighRotationConvention(bool use, int conventionId)
{
  _kriging->setLGSNeighRotationConvention(use, conventionId);
}

void NgcAKrigingExt::setLGSNeighRotationForce2D(bool force)
{
  _kriging->setLGSNeighRotationForce2D(force);
}

void NgcAKrigingExt::setSampoutDataSet(const NgdADataSet &dataSet)
{
  _kriging->setSampoutDataSet(dataSet);
}

void NgcAKrigingExt::setVarioModel(const NgmVModel &model)
{
  _kriging->setVarioModel(model);
}

const NgmVModel &NgcAKrigingExt::getVarioModel() const
{
  return _kriging->getVarioModel();
}

void NgcAKrigingExt::setKrigingMode(const NgcEKrigingMode &mode)
{
  _kriging->setKrigingMode(mode);
}

void NgcAKrigingExt::setSimpleKrigingOption(Ngc::SimpleKrigingOption option)
{
  _kriging->setSimpleKrigingOption(option);
}

void NgcAKrigingExt::setSimpleKrigingMean(int variable, double mean)
{
  _kriging->setSimpleKrigingMean(variable, mean);
}

void NgcAKrigingExt::setSimpleKrigingVariableOnlyOnTarget(bool only)
{
  _kriging->setSimpleKrigingVariableOnlyOnTarget(only);
}

void NgcAKrigingExt::setStDevMeasError(int variable, const QString &name)
{
  _kriging->setStDevMeasError(variable, name);
}

void NgcAKrigingExt::setCollocated(int variable, const QString &name)
{
  _kriging->setCollocated(variable, name);
}

const QMap<int, QString> &NgcAKrigingExt::getAllCollocated() const
{
  return _kriging->getAllCollocated();
}

void NgcAKrigingExt::setCollocatedTransformation(bool transform)
{
  _kriging->setCollocatedTransformation(transform);
}

void NgcAKrigingExt::setLGSModelRotationConvention(bool use, int conventionId)
{
  _kriging->setLGSModelRotationConvention(use, conventionId);
}

void NgcAKrigingExt::setLGSModelRotationForce2D(bool force)
{
  _kriging->setLGSModelRotationForce2D(force);
}

void NgcAKrigingExt::setMonovariateTransformation(int variable,
                                                  const NgmITransformation &transformation)
{
  _kriging->setMonovariateTransformation(variable, transformation);
}

void NgcAKrigingExt::setEnableMonovariateTransformation(bool enable)
{
  _kriging->setEnableMonovariateTransformation(enable);
}

void NgcAKrigingExt::setMultivariateTransformation(const NgmIMultivariateTransform &transformation)
{
  _kriging->setMultivariateTransformation(transformation);
}

void NgcAKrigingExt::setDriftModel(const NgmDriftModel &model)
{
  _kriging->setDriftModel(model);
}

void NgcAKrigingExt::setExtDriftModel(const NgmExtDriftModel &model)
{
  _kriging->setExtDriftModel(model);
}

void NgcAKrigingExt::setEnableNegativeValues(bool enable)
{
  _kriging->setEnableNegativeValues(enable);
}

void NgcAKrigingExt::addExcludedOutputVar(int variable)
{
  _kriging->addExcludedOutputVar(variable);
}

void NgcAKrigingExt::addExcludedOutputVars(const QSet<int> &variables)
{
  _kriging->addExcludedOutputVars(variables);
}

void NgcAKrigingExt::setMainVariableIndex(int variable)
{
  _kriging->setMainVariableIndex(variable);
}

void NgcAKrigingExt::setUseKrigingWeights(bool use)
{
  _kriging->setUseKrigingWeights(use);
}

void NgcAKrigingExt::setFaultsData(const NgmNeighborhoodFaultSet &faults,
                                   const NgcEFaultsMode &mode)
{
  _kriging->setFaultsData(faults, mode);
}

void NgcAKrigingExt::setWeightsDataset(const NgdADataSet &dataSet)
{
  _kriging->setWeightsDataset(dataSet);
}

void NgcAKrigingExt::setPerformStatistics(const QString &role)
{
  _kriging->setPerformStatistics(role);
}
