#include "basic/provider/NbpMemoryProviderLineW.h"

NbpMemoryProviderLineW::NbpMemoryProviderLineW(const NbgEDimension &dimension,
                                               const std::vector<int> &nSamplesPerLine)
    : NbpAMemoryProviderLine(dimension, nSamplesPerLine)
{
}
