#pragma once

#include "basic/provider/NbpAMemoryProviderLine.h"

/// Lines in memory whose samples are cores: intervals along their line. Coordinates are those of
/// the cores' middles.
class NbpMemoryProviderLineCoreW : public NbpAMemoryProviderLine
{
public:
  NbpMemoryProviderLineCoreW(const NbgEDimension &dimension,
                             const std::vector<int> &nSamplesPerLine);

  /// Add where cores begin and end along their line, in length units from its start.
  QString addSFromVariable(std::vector<double> values,
                           const QString &name = QStringLiteral("S_FROM"));
  QString addSToVariable(std::vector<double> values, const QString &name = QStringLiteral("S_TO"));

  bool isSupportCore() const override { return true; }
};
