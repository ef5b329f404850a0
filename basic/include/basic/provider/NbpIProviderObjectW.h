#pragma once

#include "basic/provider/NbpIProviderObjectR.h"
#include "basic/provider/NbpIProviderW.h"

/// Writing side of a file of objects (lines).
class NbpIProviderObjectW : public NbpIProviderObjectR, public NbpIProviderW
{
public:
  ~NbpIProviderObjectW() override;

  /// Writes the selected samples of the given lines; the others keep their values.
  virtual bool writeObjects(const QString &id, const QList<int> &lineRanks,
                            const NbdAVariable &values) = 0;

  /// Gives a line `count` new samples in place of its own, all values undefined; the ranks of the
  /// samples behind it shift.
  virtual bool replaceObjectSamples(int lineRank, int count) = 0;
};
