#include "stats/private/NgcSampledGridIterator.h"

#include "geos/data/NgdDataSetGrid.h"

NgcSampledGridIterator::NgcSampledGridIterator(const NgdDataSetGrid &dataSet,
                                               const NgdBufferManagerGrid &manager,
                                               const NbgIntVector3D &step)
    : NgdABufferGridIterator(manager, dataSet.getGeometry().getNodesNumber(), NbgIntVector3D()),
      _dataSet(dataSet.clone()),
      _step(step)
{
}

NgcSampledGridIterator::~NgcSampledGridIterator() = default;

NbdDataGridSampled *NgcSampledGridIterator::next()
{
  _advance();
  auto buffer = std::make_unique<NbdDataGridSampled>();
  buffer->setMacroRanks({_getLoopRank()});
  _dataSet->createAllVariables(*buffer, false, false);
  buffer->setStep(_step);
  buffer->setBlock(_dataSet->getGeometry(), _getI(), _getJ(), _getK(), NbgIntVector3D());
  _dataSet->loadSampledInBuffer(*buffer, NgdDataSetGrid::BORDER_UNDEFINED);
  return buffer.release();
}
