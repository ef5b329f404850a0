#pragma once

#include "geos/base/NgwAInterpol.h"
#include "geos/data/NgdNeighborhoodContext.h"
#include "geos/interpol/NgcAKriging.h"
#include "geos/matrix/NgmKrigingSamples.h"
#include "geos/matrix/NgmKrigingSystem.h"
#include "geos/vmodel/NgmVModel.h"

#include <memory>
#include <vector>

class NgmKrigingSystemDualContext;

/// Kriges buffers of targets: one system per target with a moving neighborhood, batches of targets
/// against the shared system with a unique one.
class NgcAKriging::Worker : public NgwAInterpol
{
public:
  Worker(NgwThreadPool *pool, NgcAKriging &calculator);
  ~Worker() override;

protected:
  void _initialize() override;
  void _processBuffer(NbdAData &buffer) override;

private:
  /// Columns of a buffer that results are written to; null where nothing is asked for.
  struct _Outputs
  {
    double *estimate = nullptr;
    double *variance = nullptr;
    double *standardDeviation = nullptr;

    /// Where the kriging variance is written before it is converted.
    double *varianceSlot() const { return variance ? variance : standardDeviation; }
  };

  static _Outputs _findOutputs(const NbdAData &buffer);
  void _krigeMoving(const NbdAData &buffer, const _Outputs &outputs);
  void _krigeTarget(int position, const NbdAData &buffer, const _Outputs &outputs);
  void _krigeUnique(const NbdAData &buffer, const _Outputs &outputs);
  void _reportFailure(int position, const NbdAData &buffer);

  NgcAKriging &_kriging;
  NgmVModelCovaCachePtr _cache;
  QVector<double> _c00;

  NgdNeighborhoodContext _neighborhood;
  NgmKrigingSystem _system;
  QVector<double> _result;

  std::unique_ptr<NgmKrigingSystemDualContext> _dualContext;
  NgmKrigingSamples _samples;
  std::vector<double> _batch;
};
