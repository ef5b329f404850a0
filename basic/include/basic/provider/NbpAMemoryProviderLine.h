#pragma once

#include "basic/provider/NbpAMemoryProviderPoints.h"
#include "basic/provider/NbpIProviderObjectW.h"

struct NbpRun;

/// Lines (boreholes) in memory: samples in line order, consecutive on each line.
class NbpAMemoryProviderLine : public NbpAMemoryProviderPoints<NbpIProviderObjectW>
{
public:
  NbdObjectDefinitions getObjectDefinitions() const override;
  bool readObjects(const QString &id, const QList<int> &lineRanks,
                   NbdAVariable &values) const override;
  bool readObjectsCoordinates(const QList<int> &lineRanks, NbdVariableDouble *x,
                              NbdVariableDouble *y, NbdVariableDouble *z) const override;
  bool writeObjects(const QString &id, const QList<int> &lineRanks,
                    const NbdAVariable &values) override;

  /// The new samples are selected unless the selection is a numeric variable.
  bool replaceObjectSamples(int lineRank, int count) override;

protected:
  NbpAMemoryProviderLine(const NbgEDimension &dimension, const std::vector<int> &nSamplesPerLine);

private:
  void _checkLine(int lineRank) const;
  int _appendRuns(const QList<int> &lineRanks, std::vector<NbpRun> &runs) const;

  std::vector<qint64> _firstOfLine;  ///< rank of each line's first sample, and the total
};
