#pragma once

#include "geos/base/NgcAInterpol.h"
#include "geos/base/NgwAThread.h"
#include "geos/data/NgdSampout.h"

#include <QList>
#include <QMap>

#include <memory>
#include <vector>

class NbdAData;
class NbdAVariableNumeric;
class NgdNeighborhoodContext;
class NgmAInterpolTestResult;

/// Worker of an interpolation: takes buffers of targets until there is none left, estimates them
/// and gives them back. One per thread and pass.
class NgwAInterpol : public NgwAThread
{
public:
  NgwAInterpol(NgwThreadPool *pool, NgcAInterpol &calculator);
  ~NgwAInterpol() override;

  /// Estimates the only target of `buffer` on the calling thread and fills `result`.
  void test(NbdAData &buffer, NgmAInterpolTestResult &result);

protected:
  void _run() override;

  /// Once, before the first buffer.
  virtual void _initialize() = 0;

  /// Estimates the selected targets of a buffer. It calls _checkForStop() and _countTargets() as it
  /// goes.
  virtual void _processBuffer(NbdAData &buffer) = 0;

  /// Once, behind the last buffer, to hand in what was gathered. The weights follow by themselves.
  virtual void _finalize();

  /// Throws the interruption when the calculator was asked to stop or has failed, or another worker
  /// has.
  void _checkForStop() const;

  /// Targets are done: advances the progress when it is counted by sample.
  void _countTargets(qint64 n) { _incrementCounter(n); }

  /// What the worker fills during a single-target test; null in a run.
  NgmAInterpolTestResult *_getTestResult() const { return _testResult; }

  /// Initializes a context with the search object of the calculator, its faults and its locally
  /// varying ellipsoid. `targets`: the data of the first buffer; for those that follow there is
  /// NgdNeighborhoodContext::setTargetData().
  void _initializeNeighborhood(NgdNeighborhoodContext &context, const NbdDataTable &targets,
                               const QList<NbdAVariableNumeric *> &mainVariables,
                               const QMap<int, NbdAVariableNumeric *> &collocated = {}) const;

  /// Whether weights are to be added, and adds those of the neighbors of one target. Undefined
  /// weights and sample numbers (a collocated target) are left out. The test of a target adds none.
  bool _hasWeights() const { return _weightsWanted; }
  void _addWeights(int n, const qint64 *sampleNumbers, const double *weights);

  // Rows of the sample output: for each target begin, one row per neighbor and variable, end.

  /// Whether rows are to be written. The test of a target writes none.
  bool _hasSampout() const { return _sampoutContext != nullptr; }
  void _beginSampoutTarget(const NgdNeighborhoodContext &context, const NbdAData &buffer,
                           int position);
  /// `neighbor`: position among the neighbors of the context. `variable`: index of the estimated
  /// variable. `rhs` is undefined where there is none.
  void _addSampoutRow(int neighbor, int variable, double value, double weight, double rhs);
  void _endSampoutTarget();

private:
  void _flushWeights();

  NgcAInterpol &_interpol;
  NgmAInterpolTestResult *_testResult = nullptr;
  bool _weightsWanted = false;
  std::vector<NgcAInterpol::SampleWeight> _weights;

  std::unique_ptr<NgdSampout::ThreadContext> _sampoutContext;
  const NgdNeighborhoodContext *_sampoutNeighbors = nullptr;
  NgdSampout::Auxiliary _targetAuxiliary;
  int _codeCount = 0;
};
