#include "geos/base/NgcACalculatorSequentialBuffer.h"

#include "basic/data/NbdAData.h"
#include "geos/data/NgdABufferManager.h"
#include "geos/data/NgdIBufferIterator.h"

NgcACalculatorSequentialBuffer::NgcACalculatorSequentialBuffer() = default;

NgcACalculatorSequentialBuffer::~NgcACalculatorSequentialBuffer()
{
  _finish();
}

void NgcACalculatorSequentialBuffer::_doRun()
{
  _doFinalChecks();
  _preProcessing();
  _checkForProgressStop();
  _prepareStatistics();
  const std::unique_ptr<NgdABufferManager> manager(_getSequentialBufferManager());
  if (manager->getNBuffers() > 0) {
    _checkForProgressStop();
    _processBuffers(*manager);
  }
  _postProcessing();
  _finalizeStatistics();
}

void NgcACalculatorSequentialBuffer::_processBuffers(NgdABufferManager &manager)
{
  _initCounter(qint64(100) * manager.getNBuffers());
  const std::unique_ptr<NgdIBufferIterator> iterator(_createBufferIterator(&manager));
  qint64 nDone = 0;
  while (iterator->hasNext()) {
    const std::unique_ptr<NbdAData> buffer(iterator->next());
    ++nDone;
    if (!_hasSelectedSamples(*buffer))
      continue;
    _checkForProgressStop();
    _processing(*buffer);
    _checkForProgressStop();
    _saveWholeBuffer(*buffer);
    _setCounter(100 * nDone);
    _checkForProgressStop();
  }
}
