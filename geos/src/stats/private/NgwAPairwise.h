#pragma once

#include "geos/base/NgwAThread.h"

class NgcAPairwiseStat;
class NgdDataDoubleBuffer;

/// Base of the workers of calculators on pairs of samples: takes pairs of buffers until none is
/// left.
class NgwAPairwise : public NgwAThread
{
public:
  NgwAPairwise(NgwThreadPool *pool, NgcAPairwiseStat &calculator);

protected:
  void _run() override;

  /// Accumulates the pairs of two buffers and hands them in.
  virtual void _process(const NgdDataDoubleBuffer &buffers) = 0;

private:
  NgcAPairwiseStat &_pairs;
};
