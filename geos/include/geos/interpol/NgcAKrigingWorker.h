#pragma once

#include "geos/base/NgwAInterpol.h"
#include "geos/interpol/NgcAKriging.h"

#include <memory>

class NgdNeighborhoodContext;

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

  /// A buffer is there, its targets are not yet kriged; nothing here.
  virtual void _bufferStarted(NbdAData &buffer);

  /// The target at `position` of the buffer was estimated from its neighbors; nothing here. The
  /// functions below give what was found; they hold until the next target.
  virtual void _targetKriged(NbdAData &buffer, int position);

  /// Estimate and kriging variance of a variable, before any conversion or transformation; D_FFFF
  /// for an excluded variable.
  double _getEstimate(int variable) const;
  double _getVariance(int variable) const;

  const NgdNeighborhoodContext &_getNeighborhood() const;
  const NgcAKriging &_getKriging() const { return _kriging; }

private:
  struct _Parts;

  NgcAKriging &_kriging;
  std::unique_ptr<_Parts> _parts;
};
