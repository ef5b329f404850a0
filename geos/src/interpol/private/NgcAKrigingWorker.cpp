#include "interpol/private/NgcAKrigingWorker.h"

#include "basic/base/NbbGlobal.h"
#include "basic/data/NbdVariableDouble.h"
#include "basic/error/NbeAssertion.h"
#include "geos/NgcEnumGlobal.h"
#include "geos/matrix/NgmKrigingSystemDual.h"
#include "geos/matrix/NgmKrigingSystemDualContext.h"
#include "interpol/private/NgcKrigingVariance.h"

#include <QObject>

#include <algorithm>

namespace {

double *findColumn(const NbdAData &buffer, const QString &role)
{
  NbdVariableDouble *column = buffer.getDataTableConst().getVarDouble(role, 0);
  return column ? column->getArray() : nullptr;
}

void setUndefined(double *column, const std::vector<int> &positions)
{
  if (!column)
    return;
  for (const int position : positions)
    column[position] = NbbGlobal::D_FFFF;
}

}  // namespace

NgcAKriging::Worker::Worker(NgwThreadPool *pool, NgcAKriging &calculator)
    : NgwAInterpol(pool, calculator),
      _kriging(calculator),
      _cache(NgmVModel::getCovaCache()),
      _system(1, false, false, 0)
{
  _c00 << calculator.getVarioModel().getC0IJ(0, 0);
}

NgcAKriging::Worker::~Worker() = default;

void NgcAKriging::Worker::_initialize()
{
  const NbdDataPoints &data = _kriging.getAllInputData();
  const QList<NbdAVariableNumeric *> variables =
      data.getDataTableConst().getVarsNumeric(Nbd::Role::V);
  if (std::all_of(variables.begin(), variables.end(),
                  [](const NbdAVariableNumeric *variable) { return variable->getNDefined() == 0; }))
    NBE_FAIL(QObject::tr("No defined sample in the input file"));

  _neighborhood.initialize(_kriging.getConstNeighborhood(), variables);
  if (_kriging.isUsingMoving())
    return;

  _samples.n = data.getNSamples();
  _samples.x = data.getCoordinates(0)->getArrayConst();
  _samples.y = data.getCoordinates(1)->getArrayConst();
  _samples.z = data.getCoordinates(2)->getArrayConst();
  _dualContext = std::make_unique<NgmKrigingSystemDualContext>(*_kriging.getKrigingSystemDual());
  _batch.resize(std::size_t(5) * _dualContext->getBatchCapacity());
}

void NgcAKriging::Worker::_processBuffer(NbdAData &buffer)
{
  const _Outputs outputs = _findOutputs(buffer);
  const std::vector<int> &positions = buffer.getSelectedPositions();
  for (double *column : {outputs.estimate, outputs.variance, outputs.standardDeviation})
    setUndefined(column, positions);

  if (_kriging.isUsingMoving())
    _krigeMoving(buffer, outputs);
  else
    _krigeUnique(buffer, outputs);
  NgcKrigingVariance::convert(positions.size(), positions.data(), outputs.variance,
                              outputs.standardDeviation);
}

NgcAKriging::Worker::_Outputs NgcAKriging::Worker::_findOutputs(const NbdAData &buffer)
{
  _Outputs outputs;
  outputs.estimate = findColumn(buffer, Nbd::Role::V);
  outputs.variance = findColumn(buffer, Nbd::Role::VARIANCE);
  outputs.standardDeviation = findColumn(buffer, Nbd::Role::STDEV);
  return outputs;
}

void NgcAKriging::Worker::_krigeMoving(const NbdAData &buffer, const _Outputs &outputs)
{
  for (const int position : buffer.getSelectedPositions()) {
    _checkForStop();
    _krigeTarget(position, buffer, outputs);
  }
}

void NgcAKriging::Worker::_krigeTarget(int position, const NbdAData &buffer,
                                       const _Outputs &outputs)
{
  int level = -1;
  const NgcENeighborhoodErrorCode &outcome =
      _neighborhood.setTargetLocation(buffer.getLocation(position), &level);
  if (level < 0)
    return;

  const double *values = _neighborhood.getMainValues(0);
  if (outcome == NgcENeighborhoodErrorCode::NEIGH_PROXIMITY) {
    if (outputs.estimate)
      outputs.estimate[position] = values[0];
    if (double *slot = outputs.varianceSlot())
      slot[position] = 0.;
    return;
  }
  const NgmKrigingSamples samples = {
      _neighborhood.getNNeighbors(), _neighborhood.getX().getArrayConst(),
      _neighborhood.getY().getArrayConst(), _neighborhood.getZ().getArrayConst(), &values};
  const NgmTarget &target = _neighborhood.getTarget();
  _system.resetSystem(samples.n, target.getCenter());
  _system.buildSystem(_kriging.getVarioModel(), samples, target, _cache.get());
  if (_system.solve() != 0) {
    _reportFailure(position, buffer);
    return;
  }
  if (outputs.estimate) {
    _system.krigingResults(samples.values, _result);
    outputs.estimate[position] = _result[0];
  }
  if (double *slot = outputs.varianceSlot()) {
    _system.computeVariance(_c00, _result);
    slot[position] = _result[0];
  }
}

void NgcAKriging::Worker::_krigeUnique(const NbdAData &buffer, const _Outputs &outputs)
{
  const std::vector<int> &positions = buffer.getSelectedPositions();
  const int capacity = _dualContext->getBatchCapacity();
  double *x = _batch.data();
  double *y = x + capacity;
  double *z = y + capacity;
  double *estimates = z + capacity;
  double *variances = estimates + capacity;

  for (std::size_t first = 0; first < positions.size(); first += std::size_t(capacity)) {
    _checkForStop();
    const int n = int(std::min(positions.size() - first, std::size_t(capacity)));
    for (int k = 0; k < n; ++k) {
      const NbgVector3D location = buffer.getLocation(positions[first + k]);
      x[k] = location.x();
      y[k] = location.y();
      z[k] = location.z();
    }
    _dualContext->prepareBatch(n, x, y, z, _kriging.getVarioModel(), _samples, _cache.get());
    if (outputs.estimate) {
      _dualContext->computeBatchEstimates(estimates);
      for (int k = 0; k < n; ++k)
        outputs.estimate[positions[first + k]] = estimates[k];
    }
    if (double *slot = outputs.varianceSlot()) {
      _dualContext->computeBatchWeights();
      _dualContext->computeBatchVariances(_c00, variances);
      for (int k = 0; k < n; ++k)
        slot[positions[first + k]] = variances[k];
    }
  }
}

void NgcAKriging::Worker::_reportFailure(int position, const NbdAData &buffer)
{
  const NbgVector3D location = buffer.getLocation(position);
  const QString where = QObject::tr("Target location: X = ") + QString::number(location.x()) +
                        QObject::tr(", Y = ") + QString::number(location.y()) +
                        QObject::tr(", Z = ") + QString::number(location.z());
  _kriging.addInterpolError(QObject::tr("Kriging system resolution error.\n") + where,
                            Ngc::INTERPOL_ERROR_SYSTEM, buffer.getSampleNumber(position));
}
