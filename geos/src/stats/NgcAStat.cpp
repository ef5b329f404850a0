#include "geos/stats/NgcAStat.h"

#include "basic/data/NbdAData.h"
#include "basic/error/NbeProgrammingError.h"
#include "geos/base/NgaIAdditive.h"
#include "geos/data/NgdABufferManager.h"
#include "geos/data/NgdADataSet.h"

#include <QMutexLocker>
#include <QObject>

NgcAStat::NgcAStat(const QString &roleV, bool registerRule, Nbd::EVariableType type) : _roleV(roleV)
{
  if (registerRule)
    _addVariableRule(Nbd::Dataset::INPUT, roleV, Nbd::ACCESS_READ, type, 1, -1);
}

NgcAStat::~NgcAStat()
{
  _finish();
}

void NgcAStat::setInputDataSet(const NgdADataSet &dataSet)
{
  _setDataset(Nbd::Dataset::INPUT, dataSet);
}

int NgcAStat::getRoleVCount() const
{
  const NgdADataSet *input = _getDataset(Nbd::Dataset::INPUT);
  return input ? input->getRoleCount(_roleV) : 0;
}

NbdAData *NgcAStat::getNextBuffer()
{
  QMutexLocker lock(&_getMutex());
  int nSkipped = 0;
  NbdAData *buffer = _takeNextBuffer(nSkipped);
  _incrementCounter(nSkipped + (buffer && !_countProgressInSave ? 1 : 0));
  return buffer;
}

void NgcAStat::saveStat(const NgaIAdditive &partial)
{
  saveStat(std::unique_ptr<NgaIAdditive>(partial.clone()));
}

void NgcAStat::saveStat(std::unique_ptr<NgaIAdditive> partial)
{
  QMutexLocker lock(&_accumulatorMutex);
  _partials.add(_getCurrentBufferRank(), std::move(partial));
  if (_countProgressInSave)
    _incrementCounter(1);
}

void NgcAStat::_saveStat(qint64 rank, std::unique_ptr<NgaIAdditive> partial)
{
  QMutexLocker lock(&_accumulatorMutex);
  _partials.add(rank, std::move(partial));
}

void NgcAStat::_checkDatasets()
{
  if (!_getDataset(Nbd::Dataset::INPUT))
    throw NbeProgrammingError(QObject::tr("No input dataset defined!"));
}

void NgcAStat::_initBufferManager()
{
  _getBufferManager()->tuneBufferSize(getAvailableMemBytes(), getNThread(), 100);
}

const NgdADataSet *NgcAStat::_bufferDataset() const
{
  return _getDataset(Nbd::Dataset::INPUT);
}

void NgcAStat::_setAccumulator(std::unique_ptr<NgaIAdditive> accumulator)
{
  QMutexLocker lock(&_accumulatorMutex);
  _accumulator = std::move(accumulator);
  _partials.clear();
}

NgaIAdditive &NgcAStat::_getAccumulator()
{
  QMutexLocker lock(&_accumulatorMutex);
  _partials.flushInto(*_accumulator);
  return *_accumulator;
}
