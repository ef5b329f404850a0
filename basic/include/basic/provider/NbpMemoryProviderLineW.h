#pragma once

#include "basic/provider/NbpAMemoryProviderLine.h"

/// Lines in memory whose samples are located points, without position along the line.
class NbpMemoryProviderLineW : public NbpAMemoryProviderLine
{
public:
  NbpMemoryProviderLineW(const NbgEDimension &dimension, const std::vector<int> &nSamplesPerLine);

  bool isSupportCore() const override { return false; }
};
