#include "geos/base/NgcALoopOnInputPatchOutput.h"

#include "basic/data/NbdDataPoints.h"
#include "basic/error/NbeProgrammingError.h"
#include "geos/data/NgdABufferManager.h"
#include "geos/data/NgdADataSet.h"

#include <QMutexLocker>
#include <QObject>

NgcALoopOnInputPatchOutput::NgcALoopOnInputPatchOutput()
{
  _addVariableRule(Nbd::Dataset::INPUT, Nbd::Role::V, Nbd::ACCESS_READ, Nbd::TYPE_DOUBLE, 1, -1);
  _addVariableRule(Nbd::Dataset::OUTPUT, Nbd::Role::DISTANCE, Nbd::ACCESS_READ_WRITE,
                   Nbd::TYPE_DOUBLE, 1, 1);
  _addVariableRule(Nbd::Dataset::OUTPUT, Nbd::Role::SN, Nbd::ACCESS_READ, Nbd::TYPE_INT64, 1, 1);
  _setNeedCoordinates(true);
}

NgcALoopOnInputPatchOutput::~NgcALoopOnInputPatchOutput()
{
  _finish();
}

void NgcALoopOnInputPatchOutput::setInputDataSet(const NgdADataSet &dataSet)
{
  _setDataset(Nbd::Dataset::INPUT, dataSet);
  _nInputSamples = dataSet.getNSamples();
}

void NgcALoopOnInputPatchOutput::setOutputDataSet(const NgdADataSet &dataSet)
{
  _setDataset(Nbd::Dataset::OUTPUT, dataSet);
}

bool NgcALoopOnInputPatchOutput::isGridOutputDataset() const
{
  const NgdADataSet *output = _getDataset(Nbd::Dataset::OUTPUT);
  return output && output->isGrid();
}

bool NgcALoopOnInputPatchOutput::hasOverlappedStats() const
{
  return getPerformStatsorProps() && _getBufferManager() && _getBufferManager()->getNBuffers() > 1;
}

NbdAData *NgcALoopOnInputPatchOutput::getNextInputBuffer()
{
  QMutexLocker lock(&_getMutex());
  int nSkipped = 0;
  NbdAData *buffer = _takeNextBuffer(nSkipped);
  _incrementCounter(nSkipped + (buffer ? 1 : 0));
  return buffer;
}

NbdDataPoints *NgcALoopOnInputPatchOutput::getOutputBuffer() const
{
  auto buffer = std::make_unique<NbdDataPoints>();
  _getDataset(Nbd::Dataset::OUTPUT)->createAllVariables(*buffer, _getNeedCoordinates(), true);
  return buffer.release();
}

void NgcALoopOnInputPatchOutput::saveBuffer(NbdDataPoints &buffer)
{
  QMutexLocker lock(&_getMutex());
  _getDataset(Nbd::Dataset::OUTPUT)->patchFromBuffer(buffer);
}

void NgcALoopOnInputPatchOutput::_checkDatasets()
{
  if (!_getDataset(Nbd::Dataset::INPUT))
    throw NbeProgrammingError(QObject::tr("No input dataset defined!"));
  if (!_getDataset(Nbd::Dataset::OUTPUT))
    throw NbeProgrammingError(QObject::tr("No output dataset defined!"));
}

void NgcALoopOnInputPatchOutput::_initBufferManager()
{
  _getBufferManager()->tuneBufferSize(getAvailableMemBytes(), getNThread(), 100);
}

const NgdADataSet *NgcALoopOnInputPatchOutput::_bufferDataset() const
{
  return _getDataset(Nbd::Dataset::INPUT);
}
