#include "geos/data/NgdBufferManagerLines.h"

#include "basic/error/NbeAssertion.h"
#include "basic/provider/NbpIProviderObjectR.h"
#include "geos/data/NgdBufferLinesIterator.h"
#include "geos/data/NgdDataSetLines.h"

#include <algorithm>
#include <limits>

namespace {

QList<int> findLinesWithSamples(const NgdDataSetLines &dataSet)
{
  QList<int> ranks;
  const auto provider = dataSet.getDataProvider().dynamicCast<NbpIProviderObjectR>();
  const NbdObjectDefinitions lines =
      provider ? provider->getObjectDefinitions() : NbdObjectDefinitions();
  for (const NbdObjectDefinition &line : lines) {
    if (line.supportLength > 0)
      ranks.append(line.rank);
  }
  return ranks;
}

}  // namespace

NgdBufferManagerLines::NgdBufferManagerLines(const NgdDataSetLines &dataSet)
    : NgdABufferManager(dataSet),
      _dataSet(dataSet.clone()),
      _lineRanks(findLinesWithSamples(dataSet))
{
}

NgdBufferManagerLines::~NgdBufferManagerLines() = default;

NgdIBufferIterator *NgdBufferManagerLines::createBufferIterator() const
{
  return new NgdBufferLinesIterator(*_dataSet, *this, _lineRanks);
}

void NgdBufferManagerLines::_tuneBufferSize(qint64 maxMemory, int nThreads, int nPreferred)
{
  const int maxPerLine = _dataSet->getCountMaxPerLine();
  if (nPreferred == 1) {
    _setLines(_lineRanks.size());
  } else {
    qint64 fitting = 1000;
    if (maxPerLine > 0)
      fitting = std::min<qint64>(maxMemory / nThreads / maxPerLine / getSampleSize(),
                                 std::numeric_limits<int>::max());
    if (fitting == 0)
      NBE_FAIL(QStringLiteral("maximum memory too small."));
    _setLines(std::max(std::min(nThreads, 10), int(std::min<qint64>(fitting, 1000))));
  }
  _maxSamplesPerLine = maxPerLine;
}

void NgdBufferManagerLines::_setBufferSize(qint64 bytes)
{
  const qint64 maxPerLine = std::max(_dataSet->getCountMaxPerLine(), 1);
  const qint64 nLines = std::min<qint64>(bytes / (maxPerLine * getSampleSize()), 1000);
  if (nLines < 1 || bytes / getSampleSize() + 1 < maxPerLine * nLines)
    NBE_FAIL(QStringLiteral("bufferSize too small."));
  _setLines(int(nLines));
}

void NgdBufferManagerLines::_setNSamplesPerBuffer(int)
{
  NBE_FAIL(QStringLiteral("Should not be called"));
}

void NgdBufferManagerLines::_setLines(int nLinesPerBuffer)
{
  _nLinesPerBuffer = std::max(nLinesPerBuffer, 1);
  _setNBuffers((_lineRanks.size() - 1) / _nLinesPerBuffer + 1);
}
