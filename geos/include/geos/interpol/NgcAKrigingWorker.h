#pragma once

#include "geos/base/NgwAInterpol.h"
#include "geos/interpol/NgcAKriging.h"

#include <memory>

class NgdNeighborhoodContext;
class NgmAKrigingSystem;

/// Kriges buffers of targets: one system per target with a moving neighborhood, batches of targets
/// against the shared system with a unique one. One per thread; its workspace is sized once.
class NgcAKriging::Worker : public NgwAInterpol
{
public:
  Worker(NgwThreadPool *pool, NgcAKriging &calculator);
  ~Worker() override;

protected:
  void _initialize() override;
  void _processBuffer(NbdAData &buffer) override;

  /// A buffer is there, its targets are not yet kriged. Nothing by default.
  virtual void _bufferStarted(NbdAData &buffer);

  /// The target at `position` was estimated from its neighbors, in a run or in a test; what the
  /// functions below give holds until the next target. Nothing by default.
  virtual void _targetKriged(NbdAData &buffer, int position);

  /// Estimate and kriging variance of a variable at the target, before any transformation and
  /// conversion; undefined for an excluded variable, and a variance that nobody asks for.
  double _getEstimate(int variable) const;
  double _getVariance(int variable) const;

  /// Kriging variances are computed though no output holds them; for constructors.
  void _requireVariances();

  const NgdNeighborhoodContext &_getNeighborhood() const;
  const NgcAKriging &_getKriging() const { return _kriging; }

private:
  struct _Parts;

  void _startBuffer(NbdAData &buffer);
  void _finishBuffer(NbdAData &buffer);
  void _transformBack(const NbdAData &buffer);
  void _writeSuperKriging(const NbdAData &buffer);
  void _transformVariance(const NbdAData &buffer);

  /// Selects the neighbors and writes what there is to say of them; false when there are none.
  bool _search(const NbdAData &buffer, int position);
  void _krigeTarget(NbdAData &buffer, int position);
  bool _takeWithoutSystem(int position);
  bool _prepareTarget(const NbdAData &buffer, int position);
  void _writeTarget(NbdAData &buffer, int position);

  void _initializeUnique();
  void _krigeUnique(NbdAData &buffer);
  void _tellUniqueFailure(const NbdAData &buffer);
  void _addToBatch(NbdAData &buffer, int position);
  void _krigeBatch(NbdAData &buffer);
  void _krigeCollocated(NbdAData &buffer, int position, const QMap<int, double> &collocated);
  void _writeUniqueTarget(NbdAData &buffer, int position);

  void _computeVariances(const NgmAKrigingSystem &system);
  void _addMeans(const NgmAKrigingSystem *weights, double *estimates) const;
  void _writeResults(int position, const double *estimates, const double *variances);
  void _writeWeightsOfMean(const NbdAData &buffer, int position, bool solved);

  /// Everything of a target that needs its weights.
  void _writeWithWeights(const NbdAData &buffer, int position, const NgmAKrigingSystem &system);
  void _writeSampout(const NbdAData &buffer, int position, const NgmAKrigingSystem &system);
  void _fillTestResult(const NgmAKrigingSystem &system);
  void _addError(const QString &message, Ngc::InterpolError type, const NbdAData &buffer,
                 int position);

  NgcAKriging &_kriging;
  std::unique_ptr<_Parts> _parts;
};
