#pragma once

#include "geos/base/NgwAThread.h"

class NgcPairwiseSamples;
class NgcVarioMap;
class NgdDataDoubleBuffer;

/// Worker of NgcVarioMap.
class NgwVarioMap : public NgwAThread
{
public:
  NgwVarioMap(NgwThreadPool *pool, NgcVarioMap &calculator);

protected:
  void _run() override;

private:
  void _process(const NgdDataDoubleBuffer &buffers);

  NgcVarioMap &_calculator;
};
