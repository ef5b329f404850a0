#pragma once

#include "basic/provider/NbpAMemoryProviderPoints.h"
#include "basic/provider/NbpIProviderW.h"

/// Scattered points in memory.
class NbpMemoryProviderPointsW : public NbpAMemoryProviderPoints<NbpIProviderW>
{
public:
  NbpMemoryProviderPointsW(const NbgEDimension &dimension, qint64 nSamples);
};
