#include "provider/private/NbpGridRuns.h"

#include <limits>

int appendBlockRuns(const NbpMemoryStorage &storage, const NbgGeomGrid &geometry,
                    const NbiIntervalsIJK &block, bool selectedOnly, NbpRuns &runs)
{
  if (block.isEmpty())
    return 0;
  if (block.intersect(geometry.getIJKIntervals()) != block)
    throw NbeError(NbeError::STORAGE,
                   QObject::tr("Nodes %1 are asked for, the grid has %2.")
                       .arg(block.toString(), geometry.getIJKIntervals().toString()));
  if (block.getLength() > std::numeric_limits<int>::max())
    throw NbeError(NbeError::STORAGE,
                   QObject::tr("Nodes %1 are too many for one buffer.").arg(block.toString()));

  int position = 0;
  for (int i = block.getI().getLower(); i <= block.getI().getUpper(); ++i) {
    for (int j = block.getJ().getLower(); j <= block.getJ().getUpper(); ++j) {
      const qint64 first = geometry.getRankFromIJK(i, j, block.getK().getLower());
      position = storage.appendRuns(first, first + block.getK().getLength() - 1, selectedOnly,
                                    position, runs);
    }
  }
  return position;
}
