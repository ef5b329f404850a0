#include "interpol/private/NgcKrigingTestFiller.h"

#include "basic/base/NbbGlobal.h"
#include "basic/data/NbdVariableDouble.h"
#include "basic/error/NbeAssertion.h"
#include "geos/NgmEnumGlobal.h"
#include "geos/data/NgdADataSet.h"
#include "geos/data/NgdNeighborhoodContext.h"
#include "geos/interpol/NgcAKriging.h"
#include "geos/interpol/NgmABlock.h"
#include "geos/interpol/NgmKrigingTestResult.h"
#include "geos/matrix/NgmKrigingSystemDual.h"
#include "interpol/private/NgcKrigingModels.h"
#include "interpol/private/NgcKrigingSearchOutputs.h"

#include <QObject>

#include <cmath>
#include <memory>
#include <vector>

namespace {

using NgcKrigingTestFiller::Target;

/// Weights of every data variable in every estimate, the data variable varying fastest.
void fillWeights(const NgcAKriging &kriging, const Target &target, NgmKrigingTestResult &result)
{
  const int nVariables = kriging.getNVariables();
  const QStringList names = kriging.getInputDataset()->getVariableNames(Nbd::Role::V);
  std::vector<std::unique_ptr<NbdVariableDouble>> owned;
  QList<NbdVariableDouble *> weights;
  QVector<double> values;
  for (int t = 0; t < nVariables; ++t) {
    for (int v = 0; v < nVariables; ++v) {
      target.system.getWeights(t, v, values);
      const QString role = nVariables > 1 ? names.value(t) : Nbd::Role::V;
      owned.push_back(std::make_unique<NbdVariableDouble>(
          NgmKrigingTestResult::getWeightName(role, names.value(v))));
      owned.back()->resizeAndFill(values.size());
      std::copy(values.begin(), values.end(), owned.back()->getArray());
      weights << owned.back().get();
    }
  }
  result.setWeights(weights);
}

/// The quality of the estimates, each quantity for all variables at once.
class Qualities
{
public:
  Qualities(const NgcAKriging &kriging, const Target &target)
  {
    const NgmAKrigingSystem &system = target.system;
    system.computeVarianceOfEstimates(_varianceOfEstimates);
    system.computeCovarianceZZStar(_covariances);
    system.computeCorrelationZZStar(target.c00, _covariances, _varianceOfEstimates, _correlations);
    system.computeSlopeRegressionZZStar(_covariances, _varianceOfEstimates, _slopes);
    system.computeKrigingEfficiency(target.c00, target.variances, _efficiencies);
    if (kriging.isSimpleKriging())
      system.computeWeightForMean(_weightsOfMean);
    else
      system.computeLagrange(_lagrange);
    if (_weightsOfMean.isEmpty())
      _weightsOfMean = target.weightsOfMean;
  }

  void fill(const Target &target, int v, NgmKrigingTestResultMono &result) const
  {
    const double variance = target.variances[v];
    result.sumOfWeights = target.system.getSumOfWeights(v, v);
    result.sumOfNegativeWeights = target.system.getSumOfNegWeights(v, v);
    result.weightForMean = _weightsOfMean.value(v, NbbGlobal::D_FFFF);
    result.firstLagrange = _lagrange.value(v, NbbGlobal::D_FFFF);
    result.varianceZStar = _varianceOfEstimates[v];
    result.covarianceZZStar = _covariances[v];
    result.correlationZZStar = _correlations[v];
    result.slopeZZStar = _slopes[v];
    result.krigingEfficiency = _efficiencies[v];
    if (variance > 0.)
      result.noise = _varianceOfEstimates[v] / variance;
  }

private:
  QVector<double> _varianceOfEstimates;
  QVector<double> _covariances;
  QVector<double> _correlations;
  QVector<double> _slopes;
  QVector<double> _efficiencies;
  QVector<double> _weightsOfMean;
  QVector<double> _lagrange;
};

void fillSystem(const NgcAKriging &kriging, const Target &target, NgmKrigingTestResultMono &result)
{
  const NgmAKrigingSystem &system = target.system;
  result.numberOfSamples = system.getNSamples();
  result.numberOfEquations = system.getNEquations();
  result.numberOfRightHandSides = kriging.getNVariables();
  result.leftHandSide = kriging.isUsingMoving() ? system.getLHSMatrix()
                                                : kriging.getKrigingSystemDual()->getLHSMatrix();
  result.rightHandSide = system.getRHSMatrix();
}

}  // namespace

void NgcKrigingTestFiller::check(const NgmAInterpolTestResult &result)
{
  if (!dynamic_cast<const NgmKrigingTestResult *>(&result))
    NBE_FAIL(QStringLiteral("No result class defined"));
}

void NgcKrigingTestFiller::fillSearch(const NgdNeighborhoodContext &neighborhood,
                                      const NgcENeighborhoodErrorCode &outcome, int level,
                                      bool isMoving, NgmAInterpolTestResult &result)
{
  const QString name = isMoving ? neighborhood.getNestedNeighName(level)
                                : NgmENeighborhoodNestedCode::STANDARD.getLabel();
  result.setNeighborhood(outcome, level, name);
  result.setNeighbors(neighborhood.getNeighbors());
}

void NgcKrigingTestFiller::fillEstimates(const NgdNeighborhoodContext &neighborhood,
                                         const QVector<double> &estimates,
                                         const QVector<double> &variances,
                                         NgmAInterpolTestResult &result)
{
  auto &krigingResult = static_cast<NgmKrigingTestResult &>(result);
  krigingResult.setKrigingResultsNumber(estimates.size());
  for (int v = 0; v < estimates.size(); ++v) {
    NgmKrigingTestResultMono &mono = krigingResult.getKrigingResultsRef(v);
    mono.estimation = estimates[v];
    if (NbbGlobal::isDefined(variances[v]))
      mono.standardDeviation = std::sqrt(variances[v]);
    mono.distanceToTarget = NgcKrigingSearchOutputs::calcMeanDistance(neighborhood, true);
    mono.numberOfSamples = neighborhood.getNNeighbors();
    mono.ellipseSize = neighborhood.getCurrentParams().getEllipseSize();
    mono.ellipseRotation = neighborhood.getCurrentParams().getEllipseRotation();
  }
}

void NgcKrigingTestFiller::fillResults(const NgcAKriging &kriging, const Target &target,
                                       NgmAInterpolTestResult &result)
{
  auto &krigingResult = static_cast<NgmKrigingTestResult &>(result);
  const bool isMoving = kriging.isUsingMoving();
  fillWeights(kriging, target, krigingResult);
  const Qualities qualities(kriging, target);
  const double distance = NgcKrigingSearchOutputs::calcMeanDistance(target.neighborhood, isMoving);
  std::shared_ptr<const NgmLgsVModel> model;
  if (const NgmLgsVModel *local = target.models.getLocalModel())
    model = std::make_shared<const NgmLgsVModel>(*local);
  const std::shared_ptr<const NgmABlock> block(target.neighborhood.getTarget().cloneBlock());

  krigingResult.setKrigingResultsNumber(kriging.getNVariables());
  for (int v = 0; v < kriging.getNVariables(); ++v) {
    NgmKrigingTestResultMono &mono = krigingResult.getKrigingResultsRef(v);
    mono.estimation = target.estimates[v];
    mono.standardDeviation = target.variances[v] > 0. ? std::sqrt(target.variances[v]) : 0.;
    mono.distanceToTarget = distance;
    qualities.fill(target, v, mono);
    fillSystem(kriging, target, mono);
    if (isMoving) {
      mono.ellipseSize = target.neighborhood.getCurrentParams().getEllipseSize();
      mono.ellipseRotation = target.neighborhood.getCurrentParams().getEllipseRotation();
    }
    mono.model = model;
    mono.block = block;
  }
}
