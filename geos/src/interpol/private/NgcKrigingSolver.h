#pragma once

#include "geos/matrix/NgmKrigingSystem.h"
#include "geos/vmodel/NgmVModel.h"

#include <QVector>

#include <memory>

class NgcAKriging;
class NgcKrigingModels;

namespace NgcKrigingSystems {

/// Gives a system the drifts, the filter and the block correction of a kriging.
void configure(const NgcAKriging &kriging, NgmAKrigingSystem &system);

/// The same for the simple kriging beside it.
void configureCompanion(const NgcAKriging &kriging, NgmAKrigingSystem &system);

}  // namespace NgcKrigingSystems

/// The systems of one worker with a moving neighborhood: that of the kriging, and beside it one of
/// simple kriging for the weight of the mean.
class NgcKrigingSolver
{
public:
  explicit NgcKrigingSolver(const NgcAKriging &kriging);

  /// Sizes the system for so many samples.
  void reserve(int nSamples);

  /// Builds and solves the system of a target; false when it is singular or has too few data for
  /// the drift.
  bool solve(const NgcKrigingModels &models, const NgmKrigingSamples &samples,
             const NgmTarget &target, const double *externalDrifts);
  const NgmKrigingSystem &getSystem() const { return _system; }

  /// The weights of the mean in simple kriging with the same samples; false when they cannot be
  /// had.
  bool computeWeightsOfMean(const NgcKrigingModels &models, const NgmKrigingSamples &samples,
                            const NgmTarget &target, QVector<double> &weights);

private:
  bool _solve(NgmKrigingSystem &system, const NgcKrigingModels &models,
              const NgmKrigingSamples &samples, const NgmTarget &target,
              const double *externalDrifts);

  const NgcAKriging &_kriging;
  NgmVModelCovaCachePtr _cache;
  NgmKrigingSystem _system;
  std::unique_ptr<NgmKrigingSystem> _companion;
};
