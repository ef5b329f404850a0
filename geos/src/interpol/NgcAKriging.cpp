#include "geos/interpol/NgcAKriging.h"

#include "basic/error/NbeAssertion.h"
#include "geos/data/NgdADataSet.h"
#include "geos/matrix/NgmKrigingSystemDual.h"

#include <QObject>

NgcAKriging::NgcAKriging(const QString &key) : NgcAInterpol(key), _model(1)
{
  _addVariableRule(Nbd::Dataset::INPUT, Nbd::Role::V, Nbd::ACCESS_READ, Nbd::TYPE_DOUBLE, 1, 1);
  for (const QString &role : {Nbd::Role::V, Nbd::Role::VARIANCE, Nbd::Role::STDEV})
    _addVariableRule(Nbd::Dataset::OUTPUT, role, Nbd::ACCESS_WRITE, Nbd::TYPE_DOUBLE, 0, 1);
}

NgcAKriging::~NgcAKriging() = default;

void NgcAKriging::setVarioModel(const NgmVModel &model)
{
  _model = model;
}

void NgcAKriging::_addRuntimeConstraints()
{
  NgcAInterpol::_addRuntimeConstraints();
  const NgdADataSet &output = *getOutputDataset();
  if (!output.hasVariablesWithRole(Nbd::Role::V) &&
      !output.hasVariablesWithRole(Nbd::Role::VARIANCE) &&
      !output.hasVariablesWithRole(Nbd::Role::STDEV))
    NBE_FAIL(QObject::tr("No output variable to be estimated!"));
}

void NgcAKriging::_preProcessing()
{
  _setModelContext();
}

void NgcAKriging::_preLaunchThreads()
{
  _systemDual.reset();
  if (!isUsingMoving())
    _buildUniqueKrigingSystem();
}

void NgcAKriging::_setModelContext()
{
  _model.setContextNDim(getOutputDataset()->getNDimensions());
}

void NgcAKriging::_buildUniqueKrigingSystem()
{
  _setProgressMessageDetail(QObject::tr("Building Kriging System..."));
  const NbdDataPoints &data = getAllInputData();
  auto system = std::make_unique<NgmKrigingSystemDual>(data.getNSamples(), 1, false, false, 0);
  // One thread: another factorization, and other bits, come with the parallel path.
  system->buildSystem(_model, *data.getCoordinates(0), *data.getCoordinates(1),
                      *data.getCoordinates(2),
                      data.getDataTableConst().getVarsNumeric(Nbd::Role::V), 1, {});
  _systemDual = std::move(system);
}
