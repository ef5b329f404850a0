// Targets of a unique neighborhood.

#include "geos/interpol/NgcAKrigingWorker.h"

#include "basic/base/NbbGlobal.h"
#include "basic/data/NbdDataPoints.h"
#include "interpol/private/NgcAKrigingWorkerParts.h"
#include "interpol/private/NgcKrigingErrors.h"

void NgcAKriging::Worker::_initializeUnique()
{
  if (!_kriging.getKrigingSystemDual())
    return;
  _Parts &parts = *_parts;
  const NbdDataPoints &data = _kriging.getAllInputData();
  parts.samples = &parts.neighbors.take(data.getNSamples(), nullptr);
  const bool needsWeights = parts.outputs.needsWeights() || _hasWeights() || _getTestResult() ||
                            _kriging.useKrigingWeights() || _kriging.hasMeansOfTargetsOnly();
  parts.uniqueSolver =
      std::make_unique<NgcKrigingUniqueSolver>(_kriging, *parts.samples, needsWeights);
}

void NgcAKriging::Worker::_krigeUnique(NbdAData &buffer)
{
  if (!_parts->uniqueSolver) {
    _tellUniqueFailure(buffer);
    _countTargets(buffer.getNSelected());
    return;
  }
  NgcKrigingUniqueSolver &solver = *_parts->uniqueSolver;
  solver.clear();
  for (const int position : buffer.getSelectedPositions()) {
    _checkForStop();
    _addToBatch(buffer, position);
    if (solver.isFull())
      _krigeBatch(buffer);
    _countTargets(1);
  }
  _krigeBatch(buffer);
}

/// The targets of a parcel whose data give no system.
void NgcAKriging::Worker::_tellUniqueFailure(const NbdAData &buffer)
{
  if (!_kriging.hasUniqueSystemFailed())
    return;
  const QString &driftError = _kriging.getUniqueDriftError();
  for (const int position : buffer.getSelectedPositions()) {
    _checkForStop();
    _addError(NgcKrigingErrors::unsolvedSystem(driftError, buffer.getLocation(position)),
              driftError.isEmpty() ? Ngc::INTERPOL_ERROR_SYSTEM : Ngc::INTERPOL_ERROR_NEIGHBORHOOD,
              buffer, position);
  }
}

void NgcAKriging::Worker::_addToBatch(NbdAData &buffer, int position)
{
  _Parts &parts = *_parts;
  if (!_search(buffer, position) || !_prepareTarget(buffer, position))
    return;
  const NgmTarget &target = parts.neighborhood.getTarget();
  const QMap<int, double> collocated = parts.targets.getCollocatedValues(position);
  if (parts.outputs.needsWeightsOfMean() && !_kriging.isSimpleKriging())
    _writeWeightsOfMean(
        buffer, position,
        parts.uniqueSolver->computeWeightsOfMean(target, collocated, parts.weightsOfMean));
  if (!collocated.isEmpty())
    _krigeCollocated(buffer, position, collocated);
  else
    parts.uniqueSolver->add(position, target, parts.targets.getExternalDrifts(), parts.c00);
}

void NgcAKriging::Worker::_krigeCollocated(NbdAData &buffer, int position,
                                           const QMap<int, double> &collocated)
{
  _Parts &parts = *_parts;
  QMap<int, double> centered = collocated;
  if (parts.targets.getMeans() && !_kriging.hasMeansOfTargetsOnly()) {
    for (auto value = centered.begin(); value != centered.end(); ++value)
      value.value() -= parts.targets.getMeans()[value.key()];
  }
  NgcKrigingUniqueSolver &solver = *parts.uniqueSolver;
  const NgmTarget &target = parts.neighborhood.getTarget();
  if (!solver.solveCollocated(target, centered, parts.targets.getExternalDrifts(),
                              parts.estimates)) {
    _addError(NgcKrigingErrors::unsolvedSystem(QString(), target.getCenter()),
              Ngc::INTERPOL_ERROR_SYSTEM, buffer, position);
    return;
  }
  _writeUniqueTarget(buffer, position);
}

void NgcAKriging::Worker::_krigeBatch(NbdAData &buffer)
{
  _Parts &parts = *_parts;
  NgcKrigingUniqueSolver &solver = *parts.uniqueSolver;
  const int n = solver.getBatchSize();
  if (n == 0)
    return;
  const int nVariables = _kriging.getNVariables();
  parts.estimates.resize(nVariables);
  parts.variances.resize(nVariables);
  solver.solve(parts.outputs.hasVariances() && !_kriging.useKrigingWeights());
  for (int k = 0; k < n; ++k) {
    const int position = solver.getPosition(k);
    for (int variable = 0; variable < nVariables; ++variable) {
      parts.estimates[variable] = solver.getEstimate(k, variable);
      parts.variances[variable] = solver.getVariance(k, variable);
      parts.c00[variable] = solver.getTargetVariance(k, variable);
    }
    parts.position = position;
    parts.targets.read(position);
    if (solver.needsWeights()) {
      solver.setCurrent(k);
      _writeUniqueTarget(buffer, position);
    } else {
      _addMeans(nullptr, parts.estimates.data());
      _writeResults(position, parts.estimates.constData(), parts.variances.constData());
      _targetKriged(buffer, position);
    }
  }
  solver.clear();
}

/// Writes the estimates and what comes from the weights of the solver's current target.
void NgcAKriging::Worker::_writeUniqueTarget(NbdAData &buffer, int position)
{
  _Parts &parts = *_parts;
  const NgmAKrigingSystem &system = parts.uniqueSolver->getSystem();
  _addMeans(_kriging.hasMeansOfTargetsOnly() ? &system : nullptr, parts.estimates.data());
  _computeVariances(system);
  _writeResults(position, parts.estimates.constData(), parts.variances.constData());
  _writeWithWeights(buffer, position, system);
  _targetKriged(buffer, position);
}
