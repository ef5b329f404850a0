#include "geos/data/NgdBufferGridIterator.h"

#include "geos/data/NgdBufferManagerGrid.h"
#include "geos/data/NgdDataSetGrid.h"

NgdBufferGridIterator::NgdBufferGridIterator(const NgdDataSetGrid &dataSet,
                                             const NgdBufferManagerGrid &manager,
                                             const NbgIntVector3D &target,
                                             const NbgIntVector3D &origin)
    : NgdABufferGridIterator(manager, target, origin),
      _dataSet(dataSet.clone()),
      _needCoordinates(manager.getNeedCoordinates()),
      _needSampleNumber(manager.getNeedSampleNumber()),
      _isCompressed(manager.isCompressionEnabled())
{
}

NgdBufferGridIterator::~NgdBufferGridIterator() = default;

NbdDataGrid *NgdBufferGridIterator::next()
{
  _advance();
  auto buffer = std::make_unique<NbdDataGrid>();
  buffer->setMacroRanks({_getLoopRank()});
  _dataSet->createAllVariables(*buffer, _needCoordinates, _needSampleNumber);
  _dataSet->loadInBuffer(_getI(), _getJ(), _getK(), *buffer);
  if (_isCompressed)
    _dataSet->deselectUndefinedCells(*buffer);
  return buffer.release();
}
