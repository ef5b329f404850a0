#include "basic/provider/NbpAMemoryProviderLine.h"

#include "basic/data/NbdVariableDouble.h"
#include "basic/error/NbeAssertion.h"
#include "provider/private/NbpMemoryStorage.h"

#include <algorithm>
#include <numeric>

namespace {

qint64 sumOf(const std::vector<int> &counts)
{
  return std::accumulate(counts.begin(), counts.end(), qint64(0));
}

}  // namespace

NbpAMemoryProviderLine::NbpAMemoryProviderLine(const NbgEDimension &dimension,
                                               const std::vector<int> &nSamplesPerLine)
    : NbpAMemoryProviderPoints<NbpIProviderObjectW>(dimension, sumOf(nSamplesPerLine)),
      _firstOfLine(nSamplesPerLine.size() + 1, 0)
{
  for (const int count : nSamplesPerLine)
    if (count < 0)
      NBE_FAIL(QStringLiteral("count >= 0"));
  std::transform(nSamplesPerLine.begin(), nSamplesPerLine.end(), _firstOfLine.begin(),
                 _firstOfLine.begin() + 1, [](int count, qint64 first) { return first + count; });
}

NbdObjectDefinitions NbpAMemoryProviderLine::getObjectDefinitions() const
{
  const NbpMemoryStorage &storage = _getStorage();
  return storage.call([&] {
    NbdObjectDefinitions definitions(int(_firstOfLine.size()) - 1);
    for (int line = 0; line < definitions.size(); ++line) {
      NbdObjectDefinition &definition = definitions[line];
      definition.rank = line;
      definition.firstSample = _firstOfLine[line];
      definition.supportLength = int(_firstOfLine[line + 1] - _firstOfLine[line]);
      definition.selectedSupportLength =
          int(storage.getSelectedCount(_firstOfLine[line], _firstOfLine[line + 1] - 1));
    }
    return definitions;
  });
}

bool NbpAMemoryProviderLine::readObjects(const QString &id, const QList<int> &lineRanks,
                                         NbdAVariable &values) const
{
  const NbpMemoryStorage &storage = _getStorage();
  return storage.call([&] {
    NbpRuns runs;
    const int n = _appendRuns(lineRanks, runs);
    storage.read(id, runs, n, values);
    return true;
  });
}

bool NbpAMemoryProviderLine::readObjectsCoordinates(const QList<int> &lineRanks,
                                                    NbdVariableDouble *x, NbdVariableDouble *y,
                                                    NbdVariableDouble *z) const
{
  const NbpMemoryStorage &storage = _getStorage();
  return storage.call([&] {
    NbpRuns runs;
    const int n = _appendRuns(lineRanks, runs);
    storage.readCoordinates(getDimension().getNDim(), runs, n, {x, y, z});
    return true;
  });
}

bool NbpAMemoryProviderLine::writeObjects(const QString &id, const QList<int> &lineRanks,
                                          const NbdAVariable &values)
{
  NbpMemoryStorage &storage = _getStorage();
  return storage.call([&] {
    NbpRuns runs;
    const int n = _appendRuns(lineRanks, runs);
    storage.write(id, runs, n, values);
    return true;
  });
}

bool NbpAMemoryProviderLine::replaceObjectSamples(int lineRank, int count)
{
  NbpMemoryStorage &storage = _getStorage();
  return storage.call([&] {
    _checkLine(lineRank);
    if (count < 0)
      throw NbeError(NbeError::STORAGE,
                     QObject::tr("The number of samples of a line is negative."));
    const qint64 first = _firstOfLine[lineRank];
    const qint64 nOld = _firstOfLine[lineRank + 1] - first;
    storage.replaceSamples(first, nOld, count);
    for (std::size_t next = lineRank + 1; next < _firstOfLine.size(); ++next)
      _firstOfLine[next] += count - nOld;
    return true;
  });
}

void NbpAMemoryProviderLine::_checkLine(int lineRank) const
{
  const int nLines = int(_firstOfLine.size()) - 1;
  if (lineRank < 0 || lineRank >= nLines)
    throw NbeError(NbeError::STORAGE, QObject::tr("Line %1 is asked for, the file has %2.")
                                          .arg(qint64(lineRank) + 1)
                                          .arg(nLines));
}

int NbpAMemoryProviderLine::_appendRuns(const QList<int> &lineRanks, NbpRuns &runs) const
{
  int position = 0;
  for (const int line : lineRanks) {
    _checkLine(line);
    position = _getStorage().appendSelectedRuns(_firstOfLine[line], _firstOfLine[line + 1] - 1,
                                                position, runs);
  }
  return position;
}
