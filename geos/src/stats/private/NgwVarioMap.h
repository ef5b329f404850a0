#pragma once

#include "stats/private/NgwAPairwise.h"

class NgcPairwiseSamples;
class NgcVarioMap;

/// Worker of NgcVarioMap.
class NgwVarioMap : public NgwAPairwise
{
public:
  NgwVarioMap(NgwThreadPool *pool, NgcVarioMap &calculator);

protected:
  void _process(const NgdDataDoubleBuffer &buffers) override;

private:
  NgcVarioMap &_calculator;
};
