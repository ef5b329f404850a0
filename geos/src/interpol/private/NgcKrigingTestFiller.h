#pragma once

#include <QVector>

class NgcAKriging;
class NgcENeighborhoodErrorCode;
class NgcKrigingModels;
class NgdNeighborhoodContext;
class NgmAInterpolTestResult;
class NgmAKrigingSystem;

/// Fills the result of a single-target test of a kriging.
namespace NgcKrigingTestFiller {

/// What was found at the target. The vectors are by variable.
struct Target
{
  const NgmAKrigingSystem &system;
  const NgdNeighborhoodContext &neighborhood;
  const QVector<double> &c00;
  const QVector<double> &estimates;
  const QVector<double> &variances;
  const QVector<double> &weightsOfMean;  ///< empty where they are not known
  const NgcKrigingModels &models;
};

/// Fails unless the result is that of a kriging.
void check(const NgmAInterpolTestResult &result);

void fillSearch(const NgdNeighborhoodContext &neighborhood,
                const NgcENeighborhoodErrorCode &outcome, int level, bool isMoving,
                NgmAInterpolTestResult &result);

/// For a target of a moving neighborhood that is estimated without a system.
void fillEstimates(const NgdNeighborhoodContext &neighborhood, const QVector<double> &estimates,
                   const QVector<double> &variances, NgmAInterpolTestResult &result);
void fillResults(const NgcAKriging &kriging, const Target &target, NgmAInterpolTestResult &result);

}  // namespace NgcKrigingTestFiller
