#include "basic/provider/NbpMemoryProviderPointsW.h"

NbpMemoryProviderPointsW::NbpMemoryProviderPointsW(const NbgEDimension &dimension, qint64 nSamples)
    : NbpAMemoryProviderPoints<NbpIProviderW>(dimension, nSamples)
{
}
