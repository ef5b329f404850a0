#include "interpol/private/NgcKrigingSolver.h"

#include "geos/interpol/NgcAKriging.h"
#include "geos/interpol/NgmTarget.h"
#include "interpol/private/NgcKrigingModels.h"

namespace {

/// Larger systems grow when they are met: a rule may bound them far below the maximum.
constexpr int largestReserved = 1000;

void setBlockCorrection(const NgcAKriging &kriging, NgmAKrigingSystem &system)
{
  if (!kriging.isDirectBlock())
    return;
  for (int variable = 0; variable < kriging.getNVariables(); ++variable) {
    if (kriging.hasBlockCorrectionCoefficient(variable))
      system.setBlockCorrectionCoefficient(variable,
                                           kriging.getBlockCorrectionCoefficient(variable));
  }
  if (kriging.getPointGaussianCorrelation().getNRows() > 0)
    system.setPointGaussianCorrelation(kriging.getPointGaussianCorrelation());
}

}  // namespace

void NgcKrigingSystems::configure(const NgcAKriging &kriging, NgmAKrigingSystem &system)
{
  if (!kriging.isSimpleKriging()) {
    system.setDriftModel(kriging.getDriftModel());
    system.setExtDriftModel(kriging.getExtDriftModel());
  }
  if (kriging.isFilteringDrifts())
    system.setFilterDrifts(true);
  setBlockCorrection(kriging, system);
}

void NgcKrigingSystems::configureCompanion(const NgcAKriging &kriging, NgmAKrigingSystem &system)
{
  setBlockCorrection(kriging, system);
}

NgcKrigingSolver::NgcKrigingSolver(const NgcAKriging &kriging)
    : _kriging(kriging),
      _cache(NgmVModel::getCovaCache()),
      _system(kriging.getNVariables(), kriging.isSimpleKriging(), kriging.isRescaledCokriging(),
              kriging.getNDriftEquations())
{
  NgcKrigingSystems::configure(kriging, _system);
}

void NgcKrigingSolver::reserve(int nSamples)
{
  if (nSamples * _kriging.getNVariables() <= largestReserved)
    _system.resetSystem(nSamples, NbgVector3D());
}

bool NgcKrigingSolver::solve(const NgcKrigingModels &models, const NgmKrigingSamples &samples,
                             const NgmTarget &target, const double *externalDrifts)
{
  return _solve(_system, models, samples, target, externalDrifts);
}

bool NgcKrigingSolver::computeWeightsOfMean(const NgcKrigingModels &models,
                                            const NgmKrigingSamples &samples,
                                            const NgmTarget &target, QVector<double> &weights)
{
  if (!_companion) {
    _companion = std::make_unique<NgmKrigingSystem>(_kriging.getNVariables(), true, false, 0);
    NgcKrigingSystems::configureCompanion(_kriging, *_companion);
  }
  if (!_solve(*_companion, models, samples, target, nullptr))
    return false;
  _companion->computeWeightForMean(weights);
  return true;
}

bool NgcKrigingSolver::_solve(NgmKrigingSystem &system, const NgcKrigingModels &models,
                              const NgmKrigingSamples &samples, const NgmTarget &target,
                              const double *externalDrifts)
{
  if (models.isFiltered()) {
    system.buildSystemFiltered(models.getDataModel(), models.getEstimatedModel(), samples, target,
                               _cache.get(), externalDrifts);
  } else {
    system.resetSystem(samples.n, target.getCenter());
    if (target.isBlock())
      system.buildSystemBlock(models.getDataModel(), samples, target, _cache.get(), externalDrifts);
    else
      system.buildSystem(models.getDataModel(), samples, target, _cache.get(), externalDrifts);
  }
  return !system.hasDriftError() && system.solve() == 0;
}
