#include "basic/provider/NbpAMemoryProviderPoints.h"

#include "basic/data/NbdEVarRole.h"
#include "basic/data/NbdVariableDouble.h"
#include "basic/geom/NbgBox.h"
#include "basic/interval/NbiIntervalIntLarge.h"
#include "basic/provider/NbpIProviderObjectW.h"
#include "provider/private/NbpMemoryStorage.h"

#include <algorithm>

template <class I>
NbpAMemoryProviderPoints<I>::NbpAMemoryProviderPoints(const NbgEDimension &dimension,
                                                      qint64 nSamples)
    : NbpAMemoryProviderW<I>(nSamples), _dimension(dimension)
{
}

template <class I>
QString NbpAMemoryProviderPoints<I>::addXVariable(std::vector<double> values, const QString &name)
{
  return this->_addStructuralVariable(NbdEVarRole::X, name, std::move(values));
}

template <class I>
QString NbpAMemoryProviderPoints<I>::addYVariable(std::vector<double> values, const QString &name)
{
  return this->_addStructuralVariable(NbdEVarRole::Y, name, std::move(values));
}

template <class I>
QString NbpAMemoryProviderPoints<I>::addZVariable(std::vector<double> values, const QString &name)
{
  return this->_addStructuralVariable(NbdEVarRole::Z, name, std::move(values));
}

template <class I>
bool NbpAMemoryProviderPoints<I>::updateBoundingBox(NbgBox &box) const
{
  constexpr qint64 BLOCK = 65536;
  const NbpMemoryStorage &storage = this->_getStorage();
  return storage.call([&] {
    NbdVariableDouble columns[3];
    for (NbdVariableDouble &column : columns)
      column.resizeAndFill(int(std::min(BLOCK, storage.getSampleCount())));
    NbgBox extended = box;
    for (qint64 first = 0; first < storage.getSampleCount(); first += BLOCK) {
      const qint64 last = std::min(first + BLOCK, storage.getSampleCount()) - 1;
      NbpRuns runs;
      const int n = storage.appendSelectedRuns(first, last, 0, runs);
      storage.readCoordinates(_dimension.getNDim(), runs, n,
                              {&columns[0], &columns[1], &columns[2]});
      for (int position = 0; position < n; ++position)
        extended.extendWith(NbgVector3D(columns[0].getValue(position),
                                        columns[1].getValue(position),
                                        columns[2].getValue(position)));
    }
    box = extended;
    return true;
  });
}

template <class I>
bool NbpAMemoryProviderPoints<I>::readCoordinates(const NbiIntervalIntLarge &ranks,
                                                  NbdVariableDouble *x, NbdVariableDouble *y,
                                                  NbdVariableDouble *z, int first) const
{
  const NbpMemoryStorage &storage = this->_getStorage();
  return storage.call([&] {
    NbpRuns runs;
    const int end = storage.appendSelectedRuns(ranks.getLower(), ranks.getUpper(), first, runs);
    storage.readCoordinates(_dimension.getNDim(), runs, end, {x, y, z});
    return true;
  });
}

template class NbpAMemoryProviderPoints<NbpIProviderW>;
template class NbpAMemoryProviderPoints<NbpIProviderObjectW>;
