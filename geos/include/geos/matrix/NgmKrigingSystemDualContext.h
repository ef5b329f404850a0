#pragma once

#include "geos/matrix/NgmAKrigingSystem.h"
#include "geos/matrix/NgmLinearSystem.h"

class NbdVariableMulti;
class NgmKrigingSystemDual;

/// What bordering a shared kriging system by the data at a target gives: one row for each of
/// `variables`, and one more for the condition of a variable that has no other datum.
struct NgmCollocatedSystem
{
  /// The variables that are known at the target, ascending.
  QVector<int> variables;

  /// Left-hand side between the valid equations and the border, and inside the border.
  NgmMatrix border;
  NgmMatrix corner;

  /// Solution in the rows of the valid equations and in those of the border; one column per target
  /// variable.
  NgmMatrix weights;
  NgmMatrix borderWeights;
};

/// What one worker needs to krige targets with a shared NgmKrigingSystemDual: right-hand side and,
/// when asked for, weights of the current target or of a batch of targets.
///
/// One target:  krigingResultsPoint(), krigingResultsBlock() or krigingResultsPointCollocated(),
///              computeWeights() when variances or weights are wanted, then the results of
///              NgmAKrigingSystem.
/// A batch:     prepareBatch(), or startBatch() and addToBatch() for each target;
///              computeBatchEstimates(); computeBatchWeights() when weights are wanted;
///              computeBatchVariances(); setCurrentTarget() makes one target of the batch the
///              current one for the other results.
///
/// A batch reaches matrix products. The bits of a target do not depend on the other targets of its
/// batch, nor on their number; those of the single-target functions differ from them in the last
/// places, and so do those of variances with and without weights. Nothing is allocated after the
/// first target or batch.
///
/// The samples are those that the dual system was built from; their values are not read. External
/// drift values are one for each external drift variable; empty (null) without.
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

  // One target.

  /// Build and compress the right-hand side of a point or block target.
  void preparRHSPoint(const NgmTarget &target, const NgmVModel &model, const NbdVariableDouble &x,
                      const NbdVariableDouble &y, const NbdVariableDouble &z,
                      const QVector<double> &extDriftValuesAtTarget, NgmVModelCovaCache *cache);
  void preparRHSPoint(const NgmTarget &target, const NgmVModel &model,
                      const NgmKrigingSamples &samples, NgmVModelCovaCache *cache,
                      const double *extDriftValuesAtTarget = nullptr);
  void preparRHSBlock(const NgmTarget &target, const NgmVModel &model, const NbdVariableDouble &x,
                      const NbdVariableDouble &y, const NbdVariableDouble &z,
                      const QVector<double> &extDriftValuesAtTarget, NgmVModelCovaCache *cache);
  void preparRHSBlock(const NgmTarget &target, const NgmVModel &model,
                      const NgmKrigingSamples &samples, NgmVModelCovaCache *cache,
                      const double *extDriftValuesAtTarget = nullptr);

  /// preparRHSPoint() or preparRHSBlock(), then the estimates; `out` gets V values.
  void krigingResultsPoint(const NgmTarget &target, const NgmVModel &model,
                           const NbdVariableDouble &x, const NbdVariableDouble &y,
                           const NbdVariableDouble &z, QVector<double> &out,
                           const QVector<double> &extDriftValuesAtTarget,
                           NgmVModelCovaCache *cache);
  void krigingResultsPoint(const NgmTarget &target, const NgmVModel &model,
                           const NgmKrigingSamples &samples, QVector<double> &out,
                           NgmVModelCovaCache *cache,
                           const double *extDriftValuesAtTarget = nullptr);
  void krigingResultsBlock(const NgmTarget &target, const NgmVModel &model,
                           const NbdVariableDouble &x, const NbdVariableDouble &y,
                           const NbdVariableDouble &z, QVector<double> &out,
                           const QVector<double> &extDriftValuesAtTarget,
                           NgmVModelCovaCache *cache);
  void krigingResultsBlock(const NgmTarget &target, const NgmVModel &model,
                           const NgmKrigingSamples &samples, QVector<double> &out,
                           NgmVModelCovaCache *cache,
                           const double *extDriftValuesAtTarget = nullptr);

  /// The same with variables known at the target: value by variable, undefined ones left out, and
  /// those of which the samples have a datum within 1e-3 of the target. Raises "No collocated
  /// variables" for an empty map. False, and the results undefined, when the bordered system is
  /// singular.
  bool krigingResultsPointCollocated(const NgmTarget &target, const NgmVModel &model,
                                     const NbdVariableDouble &x, const NbdVariableDouble &y,
                                     const NbdVariableDouble &z,
                                     const QMap<int, double> &collocated, QVector<double> &out,
                                     const QVector<double> &extDriftValuesAtTarget,
                                     NgmVModelCovaCache *cache);
  bool krigingResultsPointCollocated(const NgmTarget &target, const NgmVModel &model,
                                     const NgmKrigingSamples &samples,
                                     const QMap<int, double> &collocated, QVector<double> &out,
                                     NgmVModelCovaCache *cache,
                                     const double *extDriftValuesAtTarget = nullptr);

  /// Weights of the current target: inverse * right-hand side.
  void computeWeights();

  // Realizations of the data: one list entry per variable.

  /// Estimates from the data of one realization (rank from 0), by the weights of the samples.
  void krigingResultsForRealization(const QList<NbdVariableMulti *> &data, int realization,
                                    QVector<double> &out) const;

  /// Borders the system for the current target of preparRHSPoint(), whose samples are still there,
  /// by the variables of `collocated` as krigingResultsPointCollocated() does. False when the
  /// bordered system is singular.
  bool prepareIntermediateSystem(const NgmVModel &model, const QMap<int, double> &collocated,
                                 NgmCollocatedSystem &system);

  /// Estimates from the data of one realization and the values at the target that belong to it.
  void krigingResultsIntermediateSystem(const QList<NbdVariableMulti *> &data, int realization,
                                        const QMap<int, double> &collocated,
                                        const NgmCollocatedSystem &system,
                                        QVector<double> &out) const;

  /// False when a weight is outside [-1.5, 1.5] or, with `checkMatrix`, when the left-hand side is
  /// not positive definite (it is not with conditions).
  bool checkResults(bool checkMatrix) const;

  // A batch of targets.

  /// Targets that fit into one batch.
  int getBatchCapacity() const;

  /// Right-hand sides of point targets given by their coordinates; not more than the capacity. The
  /// external drifts are one array of values for each external drift variable.
  void prepareBatch(int nTargets, const double *targetX, const double *targetY,
                    const double *targetZ, const NgmVModel &model, const NgmKrigingSamples &samples,
                    NgmVModelCovaCache *cache, const double *const *extDriftsAtTargets = nullptr);

  /// An empty batch, and one more target in it, a point or a block.
  void startBatch();
  void addToBatch(const NgmTarget &target, const NgmVModel &model, const NgmKrigingSamples &samples,
                  NgmVModelCovaCache *cache, const double *extDriftValuesAtTarget = nullptr);

  int getBatchSize() const { return _batchSize; }

  /// out[k * V + t] = estimate of variable t at target k.
  void computeBatchEstimates(double *out) const;

  /// Weights of the whole batch, by one matrix product.
  void computeBatchWeights();

  /// out[k * V + t] = variance of variable t at target k, see computeVariance(). From the weights
  /// when the batch has them; else by one triangular solve where the covariances of the data are
  /// positive definite, which is half the work, and by computeBatchWeights() where they are not.
  void computeBatchVariances(const QVector<double> &c00, double *out);

  /// The same with variances of the targets that differ: c00[k * V + t].
  void computeBatchVariances(const double *c00, double *out);

  /// Makes target k of the batch the current one, with its weights when the batch has them.
  void setCurrentTarget(int k);

  /// The current target has weights.
  bool isReady() const override { return _weightsReady; }

  /// The inverse in use, bordered for a target with collocated variables.
  const NgmMatrix &getLHSMatrix() const override;

  /// Right-hand side and weights of the current target: valid equations, then the border.
  const NgmMatrix &getRHSMatrix() const override { return _rhs; }
  const NgmMatrix &getWeightsMatrix() const override { return _weights; }

protected:
  bool _isCompressed() const override { return true; }

  /// Raises "Method not defined.".
  NgmMatrix &_getLHSMatrix() override;
  NgmMatrix &_getRHSMatrix() override { return _rhs; }
  double _quadraticForm(int t) const override;

private:
  using Block = std::vector<double, NgmAlignedAllocator<double>>;

  void _compress(const NgmMatrix &full, qint64 leadingDimension, double *compressed) const;
  void _prepare(const NgmTarget &target, bool asBlock, const NgmVModel &model,
                const NgmKrigingSamples &samples, NgmVModelCovaCache *cache,
                const double *extDriftValuesAtTarget);
  void _resizeCurrent(int nBorder);
  void _appendToBatch(const NgmTarget &target, bool asBlock, const NgmVModel &model,
                      const NgmKrigingSamples &samples, NgmVModelCovaCache *cache,
                      const double *extDriftValuesAtTarget);

  /// out[c] = dual coefficients * column c.
  void _makeResults(const double *rhs, qint64 leadingDimension, int nColumns, double *out) const;

  // Collocated variables.
  bool _isInformed(int variable) const;
  bool _border(const NgmVModel &model, const QMap<int, double> &collocated);
  void _fillBorder();
  void _fillCorner(const NgmVModel &model);
  void _appendBorderToRHS(const NgmVModel &model);
  bool _solveBorder();
  void _makeResultsCollocated(double *out) const;
  void _borderWeights();
  int _getNBorder() const { return _corner.getNRows(); }

  void _estimateRealization(const QList<NbdVariableMulti *> &data, int realization,
                            const NgmMatrix &weights, QVector<double> &out) const;

  int _countBatchColumns() const { return _batchSize * getNVariables(); }
  double *_batchWork();
  void _padBatch();

  const NgmKrigingSystemDual &_dual;
  NgmMatrix _fullRHS;
  NgmMatrix _rhs;
  NgmMatrix _weights;
  bool _weightsReady;

  /// Current target, for its border.
  NbgVector3D _target;
  NgmKrigingSamples _samples;
  std::vector<double> _targetDrifts;
  std::vector<int> _borderConditions;
  NgmMatrix _fullBorder;
  NgmMatrix _borderColumns;
  NgmMatrix _corner;
  NgmMatrix _inverseTimesBorder;
  NgmLinearSystem _borderSystem;
  bool _borderSolved;
  mutable NgmMatrix _borderedInverse;

  int _batchSize;
  int _leadingDimension;
  bool _batchHasWeights;
  std::vector<double> _batchDrifts;
  std::vector<double> _batchC00;
  std::vector<double> _batchForms;
  Block _batchRHS;
  Block _batchWeights;
};
