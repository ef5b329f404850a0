#include "geos/base/NgcAInterpol.h"

#include "basic/base/NbbSysInfo.h"
#include "basic/error/NbeAssertion.h"
#include "basic/error/NbeMemoryError.h"
#include "basic/error/NbeUserError.h"
#include "basic/interval/NbiIntervalIntLarge.h"
#include "basic/provider/NbpIProviderR.h"
#include "geos/data/NgdABufferManager.h"
#include "geos/data/NgdADataSet.h"

#include <QMutexLocker>
#include <QObject>

#include <algorithm>
#include <memory>

namespace {

constexpr int maximumReportedErrors = 10;
constexpr int preferredBuffers = 100;

}  // namespace

NgcAInterpol::NgcAInterpol(const QString &key)
    : _key(key), _unique(Nbd::Role::V), _moving(Nbd::Role::V)
{
  _setNeedCoordinates(true);
  _setNeedSampleNumber(true);
}

NgcAInterpol::~NgcAInterpol() = default;

void NgcAInterpol::setInputDataSet(const NgdADataSet &dataSet)
{
  _setDataset(Nbd::Dataset::INPUT, dataSet);
}

void NgcAInterpol::setOutputDataSet(const NgdADataSet &dataSet)
{
  _setDataset(Nbd::Dataset::OUTPUT, dataSet);
}

const NgdADataSet *NgcAInterpol::getInputDataset() const
{
  return _getDataset(Nbd::Dataset::INPUT);
}

const NgdADataSet *NgcAInterpol::getOutputDataset() const
{
  return _getDataset(Nbd::Dataset::OUTPUT);
}

void NgcAInterpol::setUsingUniqueNeighborhood()
{
  _usingMoving = false;
}

void NgcAInterpol::setUsingMovingNeighborhood(const NgmNeighborhoodMoving &parameters)
{
  _usingMoving = true;
  _hasMovingParameters = true;
  _moving.setParameters(parameters);
}

void NgcAInterpol::setOnErrorBehavior(Ngc::OnErrorBehavior behavior)
{
  _onErrorBehavior = behavior;
}

int NgcAInterpol::getNumberOfInterpolErrors() const
{
  const QMutexLocker locker(&_errorsMutex);
  int count = 0;
  for (const int ofType : _errorCounts)
    count += ofType;
  return count;
}

QString NgcAInterpol::getInterpolErrorsMessage() const
{
  const int count = getNumberOfInterpolErrors();
  const QMutexLocker locker(&_errorsMutex);
  if (!_stopMessage.isEmpty() || count == 0)
    return _stopMessage;

  QString text = QObject::tr("The interpolation process encountered errors:") + QLatin1Char('\n');
  int number = 0;
  for (const _TargetError &error : _firstErrors)
    text += QObject::tr("Error #") + QString::number(++number) + QLatin1String(": ") +
            error.message + QLatin1Char('\n');
  if (count > maximumReportedErrors)
    text += QObject::tr("Only 10 first errors are reported...");
  return text;
}

const NgdANeighborhood &NgcAInterpol::getConstNeighborhood() const
{
  if (_usingMoving)
    return _moving;
  return _unique;
}

int NgcAInterpol::getNDimensions() const
{
  if (getInputDataset())
    return getInputDataset()->getNDimensions();
  return getOutputDataset() ? getOutputDataset()->getNDimensions() : 0;
}

NbgBox NgcAInterpol::getBoundingBox() const
{
  NbgBox box;
  for (const NgdADataSet *dataSet : {getInputDataset(), getOutputDataset()}) {
    if (dataSet)
      dataSet->updateBoundingBox(box);
  }
  return box;
}

bool NgcAInterpol::isGridOutputDataset() const
{
  return getOutputDataset() && getOutputDataset()->isGrid();
}

bool NgcAInterpol::hasInterpolError(Ngc::InterpolError type) const
{
  const QMutexLocker locker(&_errorsMutex);
  return _errorCounts.value(type) > 0;
}

void NgcAInterpol::addInterpolError(const QString &message, Ngc::InterpolError type,
                                    qint64 sampleNumber)
{
  const QMutexLocker locker(&_errorsMutex);
  ++_errorCounts[type];
  if (_onErrorBehavior == Ngc::ON_ERROR_STOP) {
    if (_stopMessage.isEmpty())
      _stopMessage =
          QObject::tr("The interpolation process has been stopped due to the following error:") +
          QLatin1Char('\n') + message;
    throw NbeUserError(_stopMessage);
  }
  _firstErrors.insert(sampleNumber, {message, type});
  if (_firstErrors.size() > maximumReportedErrors)
    _firstErrors.erase(std::prev(_firstErrors.end()));
}

NbdAData *NgcAInterpol::getNextBuffer()
{
  const QMutexLocker locker(&_getMutex());
  int nSkipped = 0;
  NbdAData *buffer = _takeNextBuffer(nSkipped);
  if (nSkipped > 0)
    _incrementCounter(nSkipped);
  return buffer;
}

void NgcAInterpol::saveBuffer(const NbdAData &buffer)
{
  {
    const QMutexLocker locker(&_getMutex());
    _checkForProgressStop();
    getOutputDataset()->saveFromBufferInParent(buffer);
  }
  _performStatistics(buffer);
  _incrementCounter(1);
}

const NbdDataPoints &NgcAInterpol::getAllInputData() const
{
  return _usingMoving ? _moving.getAllData() : _unique.getAllData();
}

void NgcAInterpol::_doRun()
{
  _resetRun();
  _clearErrors();
  _prepareRun();
  _createBufferManager();
  _prepareStatistics();
  _initBufferManager();
  _initCalculatorCounter();
  _loadInput();
  _preLaunchThreads();
  _createBufferIterator();
  _runWorkers();
  _postLaunchThreads();
  _finalizeStatistics();
  _postProcessing();
  _setCounter(getCounterMax());
}

void NgcAInterpol::_checkDatasets()
{
  if (!getInputDataset())
    NBE_FAIL(QObject::tr("No input dataset defined!"));
  if (!getOutputDataset())
    NBE_FAIL(QObject::tr("No output dataset defined!"));
}

void NgcAInterpol::_addRuntimeConstraints()
{
  NgcACalculatorBuffer::_addRuntimeConstraints();
  if (_usingMoving && !_hasMovingParameters)
    NBE_FAIL(QObject::tr("No moving neighborhood defined."));
  const int nIn = getInputDataset()->getNDimensions();
  const int nOut = getOutputDataset()->getNDimensions();
  if (_strictDimension && nIn != nOut)
    NBE_FAIL(QObject::tr("In data (ndim=%1) and out data (ndim=%2) do not have the same space "
                         "dimension!")
                 .arg(nIn)
                 .arg(nOut));

  for (const QString &role : {Nbd::Role::X, Nbd::Role::Y, Nbd::Role::Z, Nbd::Role::SN})
    _addVariableRule(Nbd::Dataset::INPUT, role, Nbd::ACCESS_READ,
                     role == Nbd::Role::SN ? Nbd::TYPE_INT64 : Nbd::TYPE_DOUBLE, 0, 1);
}

void NgcAInterpol::_initBufferManager()
{
  const qint64 memory = std::max<qint64>(getAvailableMemBytes() - _neededMemory, 1);
  _getBufferManager()->tuneBufferSize(memory, getNThread(), preferredBuffers);
}

const NgdADataSet *NgcAInterpol::_bufferDataset() const
{
  return getOutputDataset();
}

void NgcAInterpol::_preLaunchThreads() {}

void NgcAInterpol::_postLaunchThreads() {}

void NgcAInterpol::_prepareRun()
{
  _doFinalChecks();
  _preProcessing();
  _estimateNeededMemory();
}

/// Half of the budget may go to the loaded samples.
void NgcAInterpol::_estimateNeededMemory()
{
  _neededMemory = 0;
  if (!_usingMoving)
    return;
  const NgdADataSet &input = *getInputDataset();
  const qint64 nSamples = input.getDataProvider()->getSelectedSampleCount(
      NbiIntervalIntLarge::fromLength(input.getNSamples()));
  _neededMemory = nSamples * input.getSampleSizeBytes();
  const qint64 available = getAvailableMemBytes();
  if (available / 2 >= _neededMemory)
    return;
  throw NbeMemoryError(
      QObject::tr("There is not enough available memory to perform the interpolation.\n") +
      QObject::tr("Available memory : ") + NbbSysInfo::getStringSize(available) +
      QLatin1Char('\n') + QObject::tr("Needed memory : ") +
      NbbSysInfo::getStringSize(_neededMemory) + QLatin1Char('\n') +
      QObject::tr("(Number of samples = ") + QString::number(nSamples) + QLatin1Char(')'));
}

void NgcAInterpol::_loadInput()
{
  if (_usingMoving) {
    _moving.setDataset(getInputDataset());
    _moving.loadData();
  } else {
    _unique.setDataset(getInputDataset());
    _unique.loadAllData();
  }
}

void NgcAInterpol::_clearErrors()
{
  const QMutexLocker locker(&_errorsMutex);
  _errorCounts.clear();
  _firstErrors.clear();
  _stopMessage.clear();
}
