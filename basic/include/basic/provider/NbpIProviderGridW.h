#pragma once

#include "basic/provider/NbpIProviderGridR.h"
#include "basic/provider/NbpIProviderW.h"

/// Writing side of a regular grid.
class NbpIProviderGridW : public NbpIProviderGridR, public NbpIProviderW
{
public:
  ~NbpIProviderGridW() override;

  /// Writes a block; nodes that are not selected keep their values.
  virtual bool writeGrid(const QString &id, const NbiIntervalIntSmall &i,
                         const NbiIntervalIntSmall &j, const NbiIntervalIntSmall &k,
                         const NbdAVariable &values) = 0;
};
