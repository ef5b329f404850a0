#include "basic/provider/NbpMemoryProviderLineCoreW.h"

#include "basic/data/NbdEVarRole.h"

NbpMemoryProviderLineCoreW::NbpMemoryProviderLineCoreW(const NbgEDimension &dimension,
                                                       const std::vector<int> &nSamplesPerLine)
    : NbpAMemoryProviderLine(dimension, nSamplesPerLine)
{
}

QString NbpMemoryProviderLineCoreW::addSFromVariable(std::vector<double> values,
                                                     const QString &name)
{
  return _addStructuralVariable(NbdEVarRole::S_FROM, name, std::move(values));
}

QString NbpMemoryProviderLineCoreW::addSToVariable(std::vector<double> values, const QString &name)
{
  return _addStructuralVariable(NbdEVarRole::S_TO, name, std::move(values));
}
