#include "geos/data/NgdABufferManager.h"

#include "basic/base/NbbSysInfo.h"
#include "basic/error/NbeAssertion.h"
#include "basic/interval/NbiIntervalIntLargeDisjoint.h"
#include "geos/data/NgdADataSet.h"

#include <QLoggingCategory>

#include <limits>

namespace {

Q_LOGGING_CATEGORY(managerLog, "tarnwick.geos.calc.manager", QtCriticalMsg)

bool hasSelectedSamples(const NgdADataSet &dataSet)
{
  const NbiIntervalIntLarge all = NbiIntervalIntLarge::fromLength(dataSet.getNSamples());
  return !all.isEmpty() && dataSet.getSelectedSampleCount(NbiIntervalIntLargeDisjoint(all)) > 0;
}

}  // namespace

NgdABufferManager::NgdABufferManager(const NgdADataSet &dataSet)
    : _sampleSize(dataSet.getSampleSizeBytes()), _hasSelected(hasSelectedSamples(dataSet))
{
}

NgdABufferManager::~NgdABufferManager() = default;

NbiIntervalIntSmall NgdABufferManager::getVisitedLoopRanks() const
{
  return _indicesLoopPolicy == Nbd::LOOP_ON_INDICES ? _loopIndices
                                                    : NbiIntervalIntSmall::fromLength(1);
}

void NgdABufferManager::_setNBuffers(qint64 nCuts)
{
  const qint64 nBuffers = _hasSelected ? nCuts * getVisitedLoopRanks().getLength() : 0;
  if (nBuffers > std::numeric_limits<int>::max())
    NBE_FAIL(QStringLiteral("too many buffers."));
  _nBuffers = int(nBuffers);
}

void NgdABufferManager::tuneBufferSize(qint64 maxMemory, int nThreads, int nPreferred)
{
  _tuneBufferSize(maxMemory, qMax(nThreads, 1), qMax(nPreferred, 1));
  qCDebug(managerLog).noquote() << "Statistics for buffer manager after" << Q_FUNC_INFO
                                << "\nMax memory:" << NbbSysInfo::getStringSize(maxMemory)
                                << "/ N threads:" << nThreads << "/ N Preferred:" << nPreferred
                                << "\nNumber of buffers:" << _nBuffers
                                << "\nNumber of samples per buffer:" << getNSamplesPerBuffer()
                                << "\nSize of a buffer:"
                                << NbbSysInfo::getStringSize(qint64(_sampleSize) *
                                                             getNSamplesPerBuffer())
                                << "\nNumber of indices per buffer:" << 1;
}

void NgdABufferManager::setBufferSize(qint64 bytes)
{
  _setBufferSize(bytes);
  _logSizes(Q_FUNC_INFO);
}

void NgdABufferManager::setNSamplesPerBuffer(int nSamples)
{
  _setNSamplesPerBuffer(nSamples);
  _logSizes(Q_FUNC_INFO);
}

void NgdABufferManager::_logSizes(const char *operation) const
{
  // The labels have no colon here; readers of the log tell the two records apart by it.
  qCDebug(managerLog).noquote().nospace()
      << "Statistics for buffer manager after " << operation << "\nNumber of buffers " << _nBuffers
      << "\nNumber of samples per buffer " << getNSamplesPerBuffer() << "\nSize of a buffer "
      << NbbSysInfo::getStringSize(qint64(_sampleSize) * getNSamplesPerBuffer())
      << "\nNumber of indices per buffer " << 1;
}
