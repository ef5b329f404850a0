#include "geos/base/NgcACalculatorSequential.h"

#include "base/private/NgcCalculatorHelper.h"
#include "basic/data/NbdAData.h"
#include "basic/error/NbeAssertion.h"
#include "basic/error/NbeMemoryError.h"
#include "geos/data/NgdABufferManager.h"
#include "geos/data/NgdADataSet.h"
#include "geos/data/NgdIBufferIterator.h"

#include <QObject>

NgcACalculatorSequential::NgcACalculatorSequential() = default;

NgcACalculatorSequential::~NgcACalculatorSequential()
{
  _finish();
}

void NgcACalculatorSequential::setDataSet(const NgdADataSet &dataSet)
{
  _setDataset(Nbd::Dataset::INOUT, dataSet);
}

void NgcACalculatorSequential::_doRun()
{
  _doFinalChecks();
  _preProcessing();
  _prepareStatistics();
  const std::unique_ptr<NbdAData> buffer(_getWholeBuffer());
  if (buffer) {
    _initCounter(100);
    _processing(*buffer);
    _saveWholeBuffer(*buffer);
  }
  _postProcessing();
  _finalizeStatistics();
}

void NgcACalculatorSequential::_checkDatasets()
{
  if (!_getDataset(Nbd::Dataset::INOUT))
    NBE_FAIL(QStringLiteral("No Input/Output Dataset provided"));
}

void NgcACalculatorSequential::_checkConstraints()
{
  if (!_needCoordinates)
    _getDataset(Nbd::Dataset::INOUT)->setMaxDimension(NgdADataSet::DIM_0);
  NgcACalculatorSimple::_checkConstraints();
}

const NgdADataSet *NgcACalculatorSequential::_statisticsDataset() const
{
  return _dataset();
}

const NgdADataSet *NgcACalculatorSequential::_dataset() const
{
  return _getDataset(Nbd::Dataset::INOUT);
}

void NgcACalculatorSequential::_preProcessing() {}

void NgcACalculatorSequential::_postProcessing() {}

void NgcACalculatorSequential::_initBufferManager(NgdABufferManager *manager) const
{
  manager->tuneBufferSize(getAvailableMemBytes(), 1, 1);
}

NgdIBufferIterator *NgcACalculatorSequential::_createBufferIterator(
    NgdABufferManager *manager) const
{
  return manager->createBufferIterator();
}

NgdABufferManager *NgcACalculatorSequential::_getSequentialBufferManager() const
{
  std::unique_ptr<NgdABufferManager> manager(NgcCalculatorHelper::createManager(
      *_dataset(), _getRules(), _needCoordinates, _needSampleNumber));
  _initBufferManager(manager.get());
  return manager.release();
}

NbdAData *NgcACalculatorSequential::_getWholeBuffer()
{
  const std::unique_ptr<NgdABufferManager> manager(_getSequentialBufferManager());
  if (manager->getNBuffers() > 1)
    throw NbeMemoryError(
        QObject::tr("There is not enough memory to run the sequential algorithm!"));

  const std::unique_ptr<NgdIBufferIterator> iterator(_createBufferIterator(manager.get()));
  while (iterator->hasNext()) {
    std::unique_ptr<NbdAData> buffer(iterator->next());
    if (_hasSelectedSamples(*buffer))
      return buffer.release();
  }
  return nullptr;
}

void NgcACalculatorSequential::_saveWholeBuffer(const NbdAData &buffer)
{
  if (!_saveOutput || !_dataset()->isWriter())
    return;
  _dataset()->saveFromBufferInParent(buffer);
  _performStatistics(buffer);
}

bool NgcACalculatorSequential::_hasSelectedSamples(const NbdAData &buffer)
{
  return NgcCalculatorHelper::hasSelectedSamples(buffer);
}
