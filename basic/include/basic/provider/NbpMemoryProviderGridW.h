#pragma once

#include "basic/provider/NbpAMemoryProviderGrid.h"
#include "basic/provider/NbpAMemoryProviderW.h"
#include "basic/provider/NbpIProviderGridW.h"

/// Regular grid in memory.
class NbpMemoryProviderGridW : public NbpAMemoryProviderGrid<NbpAMemoryProviderW<NbpIProviderGridW>>
{
public:
  explicit NbpMemoryProviderGridW(const NbgGeomGrid &geometry);

  bool writeGrid(const QString &id, const NbiIntervalIntSmall &i, const NbiIntervalIntSmall &j,
                 const NbiIntervalIntSmall &k, const NbdAVariable &values) override;
};
