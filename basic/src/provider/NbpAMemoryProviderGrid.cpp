#include "basic/provider/NbpAMemoryProviderGrid.h"

#include "basic/data/NbdVariableDouble.h"
#include "basic/data/NbdVariableSelection.h"
#include "basic/geom/NbgBox.h"
#include "basic/geom/NbgEDimension.h"
#include "basic/interval/NbiIntervalIntLarge.h"
#include "basic/provider/NbpAMemoryProviderR.h"
#include "basic/provider/NbpAMemoryProviderW.h"
#include "basic/provider/NbpIProviderGridW.h"
#include "provider/private/NbpGridRuns.h"
#include "provider/private/NbpServedColumns.h"

#include <algorithm>

template <class Parent>
NbpAMemoryProviderGrid<Parent>::NbpAMemoryProviderGrid(const NbgGeomGrid &geometry)
    : Parent(geometry), _geometry(geometry)
{
}

template <class Parent>
NbgEDimension NbpAMemoryProviderGrid<Parent>::getDimension() const
{
  return NbgEDimension::fromNDim(_geometry.getNDim());
}

template <class Parent>
bool NbpAMemoryProviderGrid<Parent>::updateBoundingBox(NbgBox &box) const
{
  const NbpMemoryStorage &storage = this->_getStorage();
  return storage.call([&] {
    // The extremes along a column of nodes are its ends.
    NbgBox extended = box;
    const NbgIntVector3D nodes = _geometry.getNodesNumber();
    for (qint64 first = 0; first < storage.getSampleCount(); first += nodes.z()) {
      NbpRuns runs;
      storage.appendSelectedRuns(first, first + nodes.z() - 1, 0, runs);
      if (runs.empty())
        continue;
      const qint64 ends[2] = {runs.front().rank, runs.back().rank + runs.back().length - 1};
      for (const qint64 rank : ends)
        extended.extendWith(locationOfNode(_geometry, rank));
    }
    box = extended;
    return true;
  });
}

template <class Parent>
bool NbpAMemoryProviderGrid<Parent>::readCoordinates(const NbiIntervalIntLarge &ranks,
                                                     NbdVariableDouble *x, NbdVariableDouble *y,
                                                     NbdVariableDouble *z, int first) const
{
  const NbpMemoryStorage &storage = this->_getStorage();
  return storage.call([&] {
    NbpRuns runs;
    const int end = storage.appendSelectedRuns(ranks.getLower(), ranks.getUpper(), first, runs);
    storage.checkBuffers(end, {x, y, z});
    readNodeCoordinates(_geometry, runs, {x, y, z});
    return true;
  });
}

template <class Parent>
bool NbpAMemoryProviderGrid<Parent>::readGrid(const QString &id, const NbiIntervalIntSmall &i,
                                              const NbiIntervalIntSmall &j,
                                              const NbiIntervalIntSmall &k,
                                              NbdAVariable &values) const
{
  const NbpMemoryStorage &storage = this->_getStorage();
  return storage.call([&] {
    NbpRuns runs;
    const int n = appendBlockRuns(storage, _geometry, {i, j, k}, false, runs);
    storage.read(id, runs, n, values);
    return true;
  });
}

template <class Parent>
bool NbpAMemoryProviderGrid<Parent>::readGridCoordinates(const NbiIntervalIntSmall &i,
                                                         const NbiIntervalIntSmall &j,
                                                         const NbiIntervalIntSmall &k,
                                                         NbdVariableDouble *x, NbdVariableDouble *y,
                                                         NbdVariableDouble *z) const
{
  const NbpMemoryStorage &storage = this->_getStorage();
  return storage.call([&] {
    NbpRuns runs;
    const int n = appendBlockRuns(storage, _geometry, {i, j, k}, false, runs);
    storage.checkBuffers(n, {x, y, z});
    readNodeCoordinates(_geometry, runs, {x, y, z});
    return true;
  });
}

template <class Parent>
bool NbpAMemoryProviderGrid<Parent>::readGridSelection(const NbiIntervalIntSmall &i,
                                                       const NbiIntervalIntSmall &j,
                                                       const NbiIntervalIntSmall &k,
                                                       NbdVariableSelection &selection) const
{
  const NbpMemoryStorage &storage = this->_getStorage();
  return storage.call([&] {
    NbpRuns runs;
    const int n = appendBlockRuns(storage, _geometry, {i, j, k}, false, runs);
    storage.readFlags(runs, n, selection);
    return true;
  });
}

template class NbpAMemoryProviderGrid<NbpAMemoryProviderR<NbpIProviderGridR>>;
template class NbpAMemoryProviderGrid<NbpAMemoryProviderW<NbpIProviderGridW>>;
