#include "basic/provider/NbpMemoryProviderLinePointW.h"

#include "basic/data/NbdEVarRole.h"

NbpMemoryProviderLinePointW::NbpMemoryProviderLinePointW(const NbgEDimension &dimension,
                                                         const std::vector<int> &nSamplesPerLine)
    : NbpAMemoryProviderLine(dimension, nSamplesPerLine)
{
}

QString NbpMemoryProviderLinePointW::addSVariable(std::vector<double> values, const QString &name)
{
  return _addStructuralVariable(NbdEVarRole::S, name, std::move(values));
}
