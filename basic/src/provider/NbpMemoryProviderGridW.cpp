#include "basic/provider/NbpMemoryProviderGridW.h"

#include "provider/private/NbpGridRuns.h"

NbpMemoryProviderGridW::NbpMemoryProviderGridW(const NbgGeomGrid &geometry)
    : NbpAMemoryProviderGrid<NbpAMemoryProviderW<NbpIProviderGridW>>(geometry)
{
}

bool NbpMemoryProviderGridW::writeGrid(const QString &id, const NbiIntervalIntSmall &i,
                                       const NbiIntervalIntSmall &j, const NbiIntervalIntSmall &k,
                                       const NbdAVariable &values)
{
  NbpMemoryStorage &storage = _getStorage();
  return storage.call([&] {
    NbpRuns runs;
    const int n = appendBlockRuns(storage, getGridGeometry(), {i, j, k}, true, runs);
    storage.write(id, runs, n, values);
    return true;
  });
}
