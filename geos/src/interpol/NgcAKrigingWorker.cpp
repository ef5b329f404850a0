#include "geos/interpol/NgcAKrigingWorker.h"

#include "basic/base/NbbGlobal.h"
#include "basic/data/NbdAVariableNumeric.h"
#include "basic/data/NbdVariableInt64.h"
#include "basic/error/NbeAssertion.h"
#include "geos/anam/NgmITransformation.h"
#include "geos/data/NgdANeighborhood.h"
#include "geos/interpol/NgmABlock.h"
#include "geos/interpol/NgmIKrigingPostPro.h"
#include "geos/stats/NgmIMultivariateTransform.h"
#include "interpol/private/NgcAKrigingWorkerParts.h"
#include "interpol/private/NgcKrigingErrors.h"
#include "interpol/private/NgcKrigingSearchOutputs.h"
#include "interpol/private/NgcKrigingTestFiller.h"
#include "interpol/private/NgcKrigingVariance.h"

#include <QObject>

#include <algorithm>

NgcAKriging::Worker::Worker(NgwThreadPool *pool, NgcAKriging &calculator)
    : NgwAInterpol(pool, calculator),
      _kriging(calculator),
      _parts(std::make_unique<_Parts>(calculator))
{
}

NgcAKriging::Worker::~Worker() = default;

void NgcAKriging::Worker::_initialize()
{
  const NbdDataPoints &data = _kriging.getAllInputData();
  const QList<NbdAVariableNumeric *> variables =
      data.getDataTableConst().getVarsNumeric(Nbd::Role::V);
  // A parcel may be without samples, beyond the reach of the others.
  if (!_kriging.isParcelling() &&
      std::all_of(variables.begin(), variables.end(),
                  [](const NbdAVariableNumeric *variable) { return variable->getNDefined() == 0; }))
    NBE_FAIL(QObject::tr("No defined sample in the input file"));
  if (_getTestResult())
    NgcKrigingTestFiller::check(*_getTestResult());
}

// Buffers.

void NgcAKriging::Worker::_processBuffer(NbdAData &buffer)
{
  _startBuffer(buffer);
  _bufferStarted(buffer);
  if (_kriging.isUsingMoving()) {
    for (const int position : buffer.getSelectedPositions()) {
      _checkForStop();
      _krigeTarget(buffer, position);
      _countTargets(1);
    }
  } else {
    _krigeUnique(buffer);
  }
  _finishBuffer(buffer);
}

void NgcAKriging::Worker::_startBuffer(NbdAData &buffer)
{
  _Parts &parts = *_parts;
  const NbdDataTable &table = buffer.getDataTableConst();
  parts.targets.setBuffer(buffer);
  parts.models.setBuffer(table);
  parts.outputs.setBuffer(buffer);
  const NbdVariableInt64 *numbers = buffer.getVariableSN();
  parts.sampleNumbers = numbers ? numbers->getArrayConst() : nullptr;
  if (_kriging.isBlockVariableSize())
    parts.blockVariables = _kriging.getBlockVariables(table);
  if (parts.isInitialized) {
    parts.neighborhood.setTargetData(table, parts.targets.getCollocated());
    return;
  }

  parts.isInitialized = true;
  const NbdDataPoints &data = _kriging.getAllInputData();
  _initializeNeighborhood(parts.neighborhood, table,
                          data.getDataTableConst().getVarsNumeric(Nbd::Role::V),
                          parts.targets.getCollocated());
  if (_kriging.isBlockInterpolation())
    parts.neighborhood.setTargetBlock(_kriging.getBlockDefinition());
  const int maximum = std::min(parts.neighborhood.getMaximumCount(), data.getNSamples()) + 1;
  parts.neighbors.setSource(parts.neighborhood.getNeighbors(), maximum);
  if (_kriging.isUsingMoving())
    parts.solver.reserve(maximum);
  else
    _initializeUnique();
}

void NgcAKriging::Worker::_finishBuffer(NbdAData &buffer)
{
  const NgcKrigingOutputs &outputs = _parts->outputs;
  if (_kriging.isEnableMonoTransfo())
    _transformBack(buffer);
  if (_kriging.isUsingMultiTransfo())
    _kriging.getMultiTransfo().transform(buffer.getDataTableConst());
  if (_kriging.isSuperKriging() && _kriging.isBlockInterpolation())
    _writeSuperKriging(buffer);
  if (const NgmIKrigingPostPro *postPro = _kriging.getGaussianKrigingPostPro())
    postPro->process(&buffer, outputs.getEstimateVariables(), outputs.getVarianceVariables(),
                     false);
  if (outputs.hasVariances())
    _transformVariance(buffer);
}

void NgcAKriging::Worker::_transformBack(const NbdAData &buffer)
{
  const QList<NbdAVariableNumeric *> &estimates = _parts->outputs.getEstimateVariables();
  int rank = 0;
  for (int variable = 0; variable < _kriging.getNVariables(); ++variable) {
    if (_kriging.isExcluded(variable))
      continue;
    NbdAVariableNumeric *estimate = estimates[rank++];
    if (_kriging.isUsingMonoTransfo(variable))
      _kriging.getMonoTransfo(variable).invTransformValues(*estimate, *estimate);
    if (_kriging.isEnableNegativeValues())
      continue;
    double *values = _parts->outputs.getEstimates()[std::size_t(variable)];
    for (const int position : buffer.getSelectedPositions()) {
      if (values[position] < 0.)
        values[position] = 0.;
    }
  }
}

void NgcAKriging::Worker::_writeSuperKriging(const NbdAData &buffer)
{
  const NgcKrigingOutputs &outputs = _parts->outputs;
  const std::vector<int> &positions = buffer.getSelectedPositions();
  const auto write = [&](std::size_t n, const int *targets, const NgmABlock &block) {
    const NbgVector3D size = block.getSize();
    const bool isFlat = _kriging.getNDimensions() < 3;
    const double volume = size.x() * size.y() * (isFlat ? 1. : size.z());
    NgcKrigingVariance::computeSuperKriging(
        {n, targets}, {volume, _kriging.getTheoreticalMean(), _kriging.getProductionVolume()},
        outputs.getVariances(), outputs.get(NgcKrigingOutputs::SSDV),
        outputs.get(NgcKrigingOutputs::SPECIFIC_VOLUME),
        outputs.get(NgcKrigingOutputs::COEFF_OF_VARIATION));
  };
  if (_parts->blockVariables.isEmpty()) {
    write(positions.size(), positions.data(), _kriging.getBlockDefinition());
    return;
  }
  for (const int position : positions) {
    const std::unique_ptr<NgmABlock> block(
        _kriging.getBlockDefinition().getResizedBlock(position, _parts->blockVariables));
    write(1, &position, *block);
  }
}

/// From raw variances to what the outputs hold.
void NgcAKriging::Worker::_transformVariance(const NbdAData &buffer)
{
  const NgcKrigingOutputs &outputs = _parts->outputs;
  const std::vector<int> &positions = buffer.getSelectedPositions();
  NgcKrigingVariance::transform(
      {positions.size(), positions.data()},
      {outputs.hasStandardDeviation(), outputs.hasVariance(), outputs.hasIndicator()},
      _kriging.getVarioModel().getC00Matrix(), outputs.getVariances(),
      outputs.getStandardDeviations());
}

// A target of a moving neighborhood.

bool NgcAKriging::Worker::_search(const NbdAData &buffer, int position)
{
  _Parts &parts = *_parts;
  parts.position = position;
  if (!parts.blockVariables.isEmpty()) {
    const std::unique_ptr<NgmABlock> block(
        _kriging.getBlockDefinition().getResizedBlock(position, parts.blockVariables));
    parts.neighborhood.setTargetBlock(*block);
  }
  int level = -1;
  // Looked up for those who ask only.
  qint64 number = NbbGlobal::I64_FFFF;
  if (parts.sampleNumbers)
    number = parts.sampleNumbers[position];
  else if (_kriging.getConstNeighborhood().isRejectionActive())
    number = buffer.getSampleNumber(position);
  parts.outcome =
      &parts.neighborhood.setTargetLocation(buffer.getLocation(position), position, number, &level);
  const bool isMoving = _kriging.isUsingMoving();
  if (parts.outputs.describesNeighbors())
    NgcKrigingSearchOutputs::write(parts.neighborhood, isMoving, level, parts.outputs, position);
  if (_getTestResult())
    NgcKrigingTestFiller::fillSearch(parts.neighborhood, *parts.outcome, isMoving ? level : 0,
                                     isMoving, *_getTestResult());
  return !isMoving || level >= 0;
}

void NgcAKriging::Worker::_krigeTarget(NbdAData &buffer, int position)
{
  if (!_search(buffer, position) || _takeWithoutSystem(position) ||
      !_prepareTarget(buffer, position))
    return;
  _Parts &parts = *_parts;
  const NgmTarget &target = parts.neighborhood.getTarget();
  const bool solved =
      parts.solver.solve(parts.models, *parts.samples, target, parts.targets.getExternalDrifts());
  if (!solved) {
    const QString &driftError = parts.solver.getSystem().getDriftError();
    _addError(NgcKrigingErrors::unsolvedSystem(driftError, target.getCenter()),
              driftError.isEmpty() ? Ngc::INTERPOL_ERROR_SYSTEM : Ngc::INTERPOL_ERROR_NEIGHBORHOOD,
              buffer, position);
    return;
  }
  _writeTarget(buffer, position);
}

/// Outcomes of the search that tell the estimate by themselves.
bool NgcAKriging::Worker::_takeWithoutSystem(int position)
{
  _Parts &parts = *_parts;
  const bool isProximity = *parts.outcome == NgcENeighborhoodErrorCode::NEIGH_PROXIMITY;
  if (!isProximity && !(*parts.outcome == NgcENeighborhoodErrorCode::NEIGH_MAX_IN_BLOCK))
    return false;
  const int n = int(parts.neighborhood.getSquaredDistances().size());
  parts.estimates.fill(NbbGlobal::D_FFFF, _kriging.getNVariables());
  parts.variances.fill(NbbGlobal::D_FFFF, _kriging.getNVariables());
  for (int variable = 0; variable < _kriging.getNVariables(); ++variable) {
    const double *values = parts.neighbors.getRawValues(variable);
    double sum = 0.;
    int nDefined = 0;
    for (int s = 0; s < n; ++s) {
      if (!NbbGlobal::isDefined(values[s]))
        continue;
      sum += values[s];
      ++nDefined;
    }
    if (nDefined == 0)
      continue;
    parts.estimates[variable] = sum / nDefined;
    if (isProximity)
      parts.variances[variable] = 0.;
  }
  _writeResults(position, parts.estimates.constData(), parts.variances.constData());
  if (_getTestResult())
    NgcKrigingTestFiller::fillEstimates(parts.neighborhood, parts.estimates, parts.variances,
                                        *_getTestResult());
  return true;
}

/// Takes drifts, means and neighbors, the model and the variances of the target; false when
/// something of them is undefined.
bool NgcAKriging::Worker::_prepareTarget(const NbdAData &buffer, int position)
{
  _Parts &parts = *_parts;
  const NgmTarget &target = parts.neighborhood.getTarget();
  if (!parts.targets.read(position)) {
    _addError(NgcKrigingErrors::undefinedDrift(target.getCenter()), Ngc::INTERPOL_ERROR_SYSTEM,
              buffer, position);
    return false;
  }
  if (!parts.models.patch(position)) {
    _addError(NgcKrigingErrors::undefinedModel(target.getCenter()),
              Ngc::INTERPOL_ERROR_NEIGHBORHOOD, buffer, position);
    return false;
  }
  const QVector<double> &c00 = parts.models.getTargetVariances(target);
  std::copy(c00.begin(), c00.end(), parts.c00.begin());
  if (!_kriging.isUsingMoving())
    return true;
  if (parts.neighborhood.getCollocatedRank() >= 0)
    parts.neighbors.completeTargetSample(parts.neighborhood.getCollocatedRank(),
                                         parts.targets.getExternalDrifts(),
                                         parts.targets.getMeans());
  parts.samples =
      &parts.neighbors.take(parts.neighborhood.getNNeighbors(), parts.targets.getMeans());
  return true;
}

void NgcAKriging::Worker::_writeTarget(NbdAData &buffer, int position)
{
  _Parts &parts = *_parts;
  const NgmKrigingSystem &system = parts.solver.getSystem();
  system.krigingResults(parts.samples->values, parts.estimates);
  _addMeans(nullptr, parts.estimates.data());
  const double *variances = nullptr;
  if (parts.outputs.hasVariances() || _getTestResult()) {
    _computeVariances(system);
    variances = parts.variances.constData();
  }
  _writeResults(position, parts.estimates.constData(), variances);
  const bool needsCompanion = parts.outputs.needsWeightsOfMean() || _getTestResult();
  if (needsCompanion && !_kriging.isSimpleKriging()) {
    const bool solved = parts.solver.computeWeightsOfMean(
        parts.models, *parts.samples, parts.neighborhood.getTarget(), parts.weightsOfMean);
    _writeWeightsOfMean(buffer, position, solved);
  }
  _writeWithWeights(buffer, position, system);
  _targetKriged(buffer, position);
}

// Results.

void NgcAKriging::Worker::_computeVariances(const NgmAKrigingSystem &system)
{
  if (_kriging.useKrigingWeights())
    system.computeNonOptimVariance(_parts->c00, _parts->variances);
  else
    system.computeVariance(_parts->c00, _parts->variances);
}

/// Adds the known means to the estimates. With `weights`, the data were not centered: their share
/// of the means goes.
void NgcAKriging::Worker::_addMeans(const NgmAKrigingSystem *weights, double *estimates) const
{
  const double *means = _parts->targets.getMeans();
  if (!means)
    return;
  const int nVariables = _kriging.getNVariables();
  for (int t = 0; t < nVariables; ++t) {
    if (!_kriging.isFilteringDrifts())
      estimates[t] += means[t];
    for (int v = 0; weights && v < nVariables; ++v)
      estimates[t] -= means[v] * weights->getSumOfWeights(t, v);
  }
}

void NgcAKriging::Worker::_writeResults(int position, const double *estimates,
                                        const double *variances)
{
  const NgcKrigingOutputs &outputs = _parts->outputs;
  for (std::size_t variable = 0; variable < outputs.getEstimates().size(); ++variable) {
    if (double *column = outputs.getEstimates()[variable])
      column[position] = estimates[variable];
    if (double *column = outputs.getVariances()[variable])
      column[position] = variances[variable];
  }
}

void NgcAKriging::Worker::_writeWithWeights(const NbdAData &buffer, int position,
                                            const NgmAKrigingSystem &system)
{
  _Parts &parts = *_parts;
  if (parts.outputs.needsWeights())
    parts.statistics.write(system, parts.c00, parts.variances, parts.outputs, position);
  if (_hasWeights()) {
    const int variable = _kriging.getMainVariableIndex();
    system.getWeights(variable, variable, parts.weights);
    _addWeights(parts.weights.size(), parts.neighborhood.getSN()->getArrayConst(),
                parts.weights.constData());
  }
  if (_hasSampout())
    _writeSampout(buffer, position, system);
  if (_getTestResult())
    _fillTestResult(system);
}

void NgcAKriging::Worker::_writeSampout(const NbdAData &buffer, int position,
                                        const NgmAKrigingSystem &system)
{
  _Parts &parts = *_parts;
  const int nVariables = _kriging.getNVariables();
  _beginSampoutTarget(parts.neighborhood, buffer, position);
  for (int variable = 0; variable < nVariables; ++variable) {
    system.getWeights(variable, variable, parts.weights);
    const double *values = parts.neighbors.getRawValues(variable);
    for (int s = 0; s < parts.weights.size(); ++s)
      _addSampoutRow(s, variable, values[s], parts.weights[s],
                     system.getRHSMatrix().getElement(s * nVariables + variable, variable));
  }
  _endSampoutTarget();
}

void NgcAKriging::Worker::_writeWeightsOfMean(const NbdAData &buffer, int position, bool solved)
{
  _Parts &parts = *_parts;
  if (!solved) {
    parts.weightsOfMean.clear();
    _addError(NgcKrigingErrors::unsolvedCompanion(parts.neighborhood.getTarget().getCenter()),
              Ngc::INTERPOL_ERROR_SYSTEM, buffer, position);
    return;
  }
  const NgcKrigingOutputs::Columns &columns = parts.outputs.get(NgcKrigingOutputs::WEIGHT_OF_MEAN);
  for (std::size_t variable = 0; variable < columns.size(); ++variable) {
    if (columns[variable])
      columns[variable][position] = parts.weightsOfMean[int(variable)];
  }
}

void NgcAKriging::Worker::_fillTestResult(const NgmAKrigingSystem &system)
{
  const _Parts &parts = *_parts;
  const NgcKrigingTestFiller::Target target = {
      system,          parts.neighborhood,  parts.c00,   parts.estimates,
      parts.variances, parts.weightsOfMean, parts.models};
  NgcKrigingTestFiller::fillResults(_kriging, target, *_getTestResult());
}

void NgcAKriging::Worker::_addError(const QString &message, Ngc::InterpolError type,
                                    const NbdAData &buffer, int position)
{
  _kriging.addInterpolError(message, type, buffer.getSampleNumber(position));
}

// For derived workers.

void NgcAKriging::Worker::_bufferStarted(NbdAData &) {}

void NgcAKriging::Worker::_targetKriged(NbdAData &, int) {}

double NgcAKriging::Worker::_getEstimate(int variable) const
{
  const double *column = _parts->outputs.getEstimates()[std::size_t(variable)];
  return column ? column[_parts->position] : NbbGlobal::D_FFFF;
}

double NgcAKriging::Worker::_getVariance(int variable) const
{
  const double *column = _parts->outputs.getVariances()[std::size_t(variable)];
  return column ? column[_parts->position] : NbbGlobal::D_FFFF;
}

void NgcAKriging::Worker::_requireVariances()
{
  _parts->outputs.requireVariances();
}

const NgdNeighborhoodContext &NgcAKriging::Worker::_getNeighborhood() const
{
  return _parts->neighborhood;
}
