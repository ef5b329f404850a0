#pragma once

#include "geos/matrix/NgmKrigingSystemDualContext.h"
#include "geos/vmodel/NgmVModel.h"

#include <QMap>
#include <QVector>

#include <memory>
#include <vector>

class NgcAKriging;

/// The share of one worker in the system of a unique neighborhood: batches of targets and, for
/// targets with collocated values, one target at a time.
class NgcKrigingUniqueSolver
{
public:
  /// `samples`: those that the system was built from. `needsWeights`: weights are wanted, not only
  /// estimates and variances.
  NgcKrigingUniqueSolver(const NgcAKriging &kriging, const NgmKrigingSamples &samples,
                         bool needsWeights);
  ~NgcKrigingUniqueSolver();

  bool needsWeights() const { return _needsWeights; }

  // A batch.

  bool isFull() const { return _context.getBatchSize() == _capacity; }
  int getBatchSize() const { return int(_positions.size()); }
  int getPosition(int k) const { return _positions[std::size_t(k)]; }
  void clear();

  /// One more target, of a position in its buffer, with its variances.
  void add(int position, const NgmTarget &target, const double *externalDrifts,
           const QVector<double> &c00);

  /// Estimates and, on request, variances of all targets; their weights when these are wanted.
  void solve(bool withVariances);
  double getEstimate(int k, int variable) const { return _estimates[_index(k, variable)]; }
  double getVariance(int k, int variable) const { return _variances[_index(k, variable)]; }
  double getTargetVariance(int k, int variable) const { return _c00[_index(k, variable)]; }

  /// Makes target k the one of getSystem().
  void setCurrent(int k) { _context.setCurrentTarget(k); }

  // One target.

  /// False when the system with the collocated values is singular.
  bool solveCollocated(const NgmTarget &target, const QMap<int, double> &collocated,
                       const double *externalDrifts, QVector<double> &estimates);

  /// The weights of the mean in simple kriging with the collocated values, if any; false when they
  /// cannot be had.
  bool computeWeightsOfMean(const NgmTarget &target, const QMap<int, double> &collocated,
                            QVector<double> &weights);

  /// The current target with its weights.
  const NgmAKrigingSystem &getSystem() const { return _context; }

private:
  std::size_t _index(int k, int variable) const
  {
    return std::size_t(k) * std::size_t(_nVariables) + std::size_t(variable);
  }

  const NgmVModel &_model;
  NgmKrigingSamples _samples;
  int _nVariables;
  bool _needsWeights;
  NgmVModelCovaCachePtr _cache;
  NgmKrigingSystemDualContext _context;
  std::unique_ptr<NgmKrigingSystemDualContext> _companion;

  int _capacity;
  std::vector<int> _positions;
  std::vector<double> _c00;
  std::vector<double> _estimates;
  std::vector<double> _variances;
};
