#include "geos/base/NgcAVariableCreator.h"

#include "basic/data/NbdAData.h"
#include "basic/error/NbeProgrammingError.h"
#include "geos/data/NgdABufferManager.h"
#include "geos/data/NgdADataSet.h"

#include <QMutexLocker>
#include <QObject>

NgcAVariableCreator::NgcAVariableCreator(const QString &outputRole) : _outputRole(outputRole)
{
  _addVariableRule(Nbd::Dataset::OUTPUT, outputRole, Nbd::ACCESS_WRITE, Nbd::TYPE_DOUBLE, -1, -1);
  _setNeedCoordinates(true);
}

NgcAVariableCreator::~NgcAVariableCreator()
{
  _finish();
}

void NgcAVariableCreator::setOutputDataSet(const NgdADataSet &dataSet)
{
  _setDataset(Nbd::Dataset::OUTPUT, dataSet);
}

const NgdADataSet &NgcAVariableCreator::getOutputDataset() const
{
  const NgdADataSet *output = _getDataset(Nbd::Dataset::OUTPUT);
  if (!output)
    throw NbeProgrammingError(QObject::tr("No output dataset defined!"));
  return *output;
}

NbdAData *NgcAVariableCreator::getNextBuffer()
{
  QMutexLocker lock(&_getMutex());
  int nSkipped = 0;
  NbdAData *buffer = _takeNextBuffer(nSkipped);
  _incrementCounter(nSkipped);
  return buffer;
}

void NgcAVariableCreator::saveBuffer(const NbdAData &buffer)
{
  {
    QMutexLocker lock(&_getMutex());
    _checkForProgressStop();
    getOutputDataset().saveFromBufferInParent(buffer);
  }
  _performStatistics(buffer);
  _incrementCounter(1);
}

void NgcAVariableCreator::_checkDatasets()
{
  getOutputDataset();
}

void NgcAVariableCreator::_initBufferManager()
{
  _getBufferManager()->tuneBufferSize(getAvailableMemBytes(), getNThread(), 100);
}

const NgdADataSet *NgcAVariableCreator::_bufferDataset() const
{
  return _getDataset(Nbd::Dataset::OUTPUT);
}
