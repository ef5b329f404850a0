#pragma once

#include "basic/provider/NbpAMemoryProviderLine.h"

/// Lines in memory whose samples are points at a known position along their line.
class NbpMemoryProviderLinePointW : public NbpAMemoryProviderLine
{
public:
  NbpMemoryProviderLinePointW(const NbgEDimension &dimension,
                              const std::vector<int> &nSamplesPerLine);

  /// Adds the position along the line, in length units from its start.
  QString addSVariable(std::vector<double> values, const QString &name = QStringLiteral("S"));

  bool isSupportCore() const override { return false; }
};
