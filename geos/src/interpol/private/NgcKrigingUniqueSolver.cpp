#include "interpol/private/NgcKrigingUniqueSolver.h"

#include "geos/interpol/NgcAKriging.h"
#include "geos/interpol/NgmTarget.h"
#include "geos/matrix/NgmKrigingSystemDual.h"

NgcKrigingUniqueSolver::NgcKrigingUniqueSolver(const NgcAKriging &kriging,
                                               const NgmKrigingSamples &samples, bool needsWeights)
    : _model(kriging.getEstimatedModel()),
      _samples(samples),
      _nVariables(kriging.getNVariables()),
      _needsWeights(needsWeights),
      _cache(NgmVModel::getCovaCache()),
      _context(*kriging.getKrigingSystemDual()),
      _capacity(_context.getBatchCapacity())
{
  if (kriging.getCompanionSystemDual())
    _companion = std::make_unique<NgmKrigingSystemDualContext>(*kriging.getCompanionSystemDual());
  const std::size_t size = _index(_capacity, 0);
  _positions.reserve(std::size_t(_capacity));
  _c00.resize(size);
  _estimates.resize(size);
  _variances.resize(size);
  clear();
}

NgcKrigingUniqueSolver::~NgcKrigingUniqueSolver() = default;

void NgcKrigingUniqueSolver::clear()
{
  _context.startBatch();
  _positions.clear();
}

void NgcKrigingUniqueSolver::add(int position, const NgmTarget &target,
                                 const double *externalDrifts, const QVector<double> &c00)
{
  const int k = getBatchSize();
  for (int variable = 0; variable < _nVariables; ++variable)
    _c00[_index(k, variable)] = c00[variable];
  _positions.push_back(position);
  _context.addToBatch(target, _model, _samples, _cache.get(), externalDrifts);
}

void NgcKrigingUniqueSolver::solve(bool withVariances)
{
  _context.computeBatchEstimates(_estimates.data());
  if (_needsWeights)
    _context.computeBatchWeights();
  if (withVariances)
    _context.computeBatchVariances(_c00.data(), _variances.data());
}

bool NgcKrigingUniqueSolver::solveCollocated(const NgmTarget &target,
                                             const QMap<int, double> &collocated,
                                             const double *externalDrifts,
                                             QVector<double> &estimates)
{
  if (!_context.krigingResultsPointCollocated(target, _model, _samples, collocated, estimates,
                                              _cache.get(), externalDrifts))
    return false;
  _context.computeWeights();
  return true;
}

bool NgcKrigingUniqueSolver::computeWeightsOfMean(const NgmTarget &target,
                                                  const QMap<int, double> &collocated,
                                                  QVector<double> &weights)
{
  if (!_companion)
    return false;
  if (!collocated.isEmpty()) {
    // Of the estimates only the weights are wanted.
    if (!_companion->krigingResultsPointCollocated(target, _model, _samples, collocated, weights,
                                                   _cache.get()))
      return false;
  } else if (target.isBlock())
    _companion->preparRHSBlock(target, _model, _samples, _cache.get());
  else
    _companion->preparRHSPoint(target, _model, _samples, _cache.get());
  _companion->computeWeights();
  _companion->computeWeightForMean(weights);
  return true;
}
