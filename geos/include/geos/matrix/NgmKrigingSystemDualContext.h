#pragma once

#include "geos/matrix/NgmAKrigingSystem.h"

class NgmKrigingSystemDual;
class NgmTarget;

/// What one worker needs to krige targets with a shared NgmKrigingSystemDual: right-hand side and,
/// when asked for, weights of the current target or of a batch of targets.
///
/// One target:  krigingResultsPoint(), computeWeights() when variances or weights are wanted, then
///              the results of NgmAKrigingSystem.
/// A batch:     prepareBatch(), computeBatchEstimates(), computeBatchWeights() when wanted,
///              computeBatchVariances(); setCurrentTarget() makes one target of the batch the
///              current one for the other results.
///
/// A batch reaches matrix products. The bits of a target do not depend on the other targets of its
/// batch, nor on their number; those of the single-target functions differ from them in the last
/// places. Nothing is allocated after the first target or batch.
///
/// Requires: the dual system outlives the context and is not built again meanwhile
class NgmKrigingSystemDualContext : public NgmAKrigingSystem
{
public:
  /// Columns (targets * variables) of a batch at most.
  static constexpr int MAX_BATCH_COLUMNS = 256;

  /// Raises "Kriging matrix not yet inverted !" for a system that has not been built.
  explicit NgmKrigingSystemDualContext(const NgmKrigingSystemDual &dual);
  ~NgmKrigingSystemDualContext() override;

  QString debug(int level) const override;

  // One target. The samples are those that the dual system was built from; their values are not
  // read. The external drift values are those of the external drift model's terms: empty without
  // one.

  /// Builds and compresses the right-hand side of a point target.
  void preparRHSPoint(const NgmTarget &target, const NgmVModel &model, const NbdVariableDouble &x,
                      const NbdVariableDouble &y, const NbdVariableDouble &z,
                      const QVector<double> &extDriftValuesAtTarget, NgmVModelCovaCache *cache);
  void preparRHSPoint(const NgmTarget &target, const NgmVModel &model,
                      const NgmKrigingSamples &samples, NgmVModelCovaCache *cache);

  /// preparRHSPoint(), then the estimates; `out` gets V values.
  void krigingResultsPoint(const NgmTarget &target, const NgmVModel &model,
                           const NbdVariableDouble &x, const NbdVariableDouble &y,
                           const NbdVariableDouble &z, QVector<double> &out,
                           const QVector<double> &extDriftValuesAtTarget,
                           NgmVModelCovaCache *cache);
  void krigingResultsPoint(const NgmTarget &target, const NgmVModel &model,
                           const NgmKrigingSamples &samples, QVector<double> &out,
                           NgmVModelCovaCache *cache);

  /// Weights of the current target: inverse * right-hand side.
  void computeWeights();

  // A batch of targets.

  /// Targets that fit into one batch.
  int getBatchCapacity() const;

  /// Right-hand sides of point targets given by their coordinates; not more than the capacity.
  void prepareBatch(int nTargets, const double *targetX, const double *targetY,
                    const double *targetZ, const NgmVModel &model, const NgmKrigingSamples &samples,
                    NgmVModelCovaCache *cache);
  int getBatchSize() const { return _batchSize; }

  /// out[k * V + t] = estimate of variable t at target k.
  void computeBatchEstimates(double *out) const;

  /// Weights of the whole batch, by one matrix product.
  void computeBatchWeights();

  /// out[k * V + t] = variance of variable t at target k, see computeVariance().
  void computeBatchVariances(const QVector<double> &c00, double *out) const;

  /// Makes target k of the batch the current one, with its weights when the batch has them.
  void setCurrentTarget(int k);

  /// The current target has weights.
  bool isReady() const override { return _weightsReady; }

  /// The inverse in use; right-hand side and weights of the current target, valid equations only.
  const NgmMatrix &getLHSMatrix() const override { return _inverse; }
  const NgmMatrix &getRHSMatrix() const override { return _rhs; }
  const NgmMatrix &getWeightsMatrix() const override { return _weights; }

protected:
  bool _isCompressed() const override { return true; }

  /// Raises "Method not defined.".
  NgmMatrix &_getLHSMatrix() override;
  NgmMatrix &_getRHSMatrix() override { return _rhs; }

private:
  using Block = std::vector<double, NgmAlignedAllocator<double>>;

  void _buildCompressedRHS(const NbgVector3D &target, const NgmVModel &model,
                           const NgmKrigingSamples &samples, NgmVModelCovaCache *cache,
                           qint64 leadingDimension, double *compressed);
  /// out[c] = dual coefficients * column c.
  void _makeResults(const double *rhs, qint64 leadingDimension, int nColumns, double *out) const;

  const NgmKrigingSystemDual &_dual;
  NgmMatrix _inverse;
  NgmMatrix _fullRHS;
  NgmMatrix _rhs;
  NgmMatrix _weights;
  bool _weightsReady;

  int _batchSize;
  int _leadingDimension;
  bool _batchHasWeights;
  Block _batchRHS;
  Block _batchWeights;
};
