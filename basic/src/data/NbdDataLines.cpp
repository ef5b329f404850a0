#include "basic/data/NbdDataLines.h"

#include "basic/data/NbdAVariable.h"
#include "basic/error/NbeAssertion.h"
#include "basic/error/NbeMemoryError.h"

#include <QObject>

#include <algorithm>
#include <limits>
#include <numeric>

namespace {

qint64 sumOf(const QVector<int> &counts)
{
  return std::accumulate(counts.begin(), counts.end(), qint64(0));
}

}  // namespace

NbdDataLines::NbdDataLines() = default;
NbdDataLines::~NbdDataLines() = default;

NbdDataLines *NbdDataLines::makeCopy() const
{
  return new NbdDataLines(*this);
}

void NbdDataLines::setLines(const QList<int> &lineRanks, const QVector<int> &nSamplesPerLine)
{
  if (lineRanks.size() != nSamplesPerLine.size())
    NBE_FAIL(QStringLiteral("lineRanks.size() == nSamplesPerLine.size()"));
  const qint64 nSamples = sumOf(nSamplesPerLine);
  if (nSamples > std::numeric_limits<int>::max())
    throw NbeMemoryError(QObject::tr("There are too many samples for one buffer."));
  setResizedTo(int(nSamples));
  _lineRanks = lineRanks;
  _setCounts(nSamplesPerLine);
}

void NbdDataLines::setNSamplesPerLine(const QVector<int> &nSamplesPerLine)
{
  if (nSamplesPerLine.size() != getNLines())
    NBE_FAIL(QStringLiteral("nSamplesPerLine.size() == getNLines()"));
  if (sumOf(nSamplesPerLine) != getNSamples())
    NBE_FAIL(QStringLiteral("sum(nSamplesPerLine) == getNSamples()"));
  _setCounts(nSamplesPerLine);
}

NbdDataLines::Line NbdDataLines::getLineRef(int index) const
{
  if (index < 0 || index >= getNLines())
    NBE_FAIL(QStringLiteral("index >= 0 && index < getNLines()"));
  Line line;
  line.rank = _lineRanks.at(index);
  line.first = _firstOfLine.at(index);
  line.count = _nSamplesPerLine.at(index);
  return line;
}

int NbdDataLines::addSample(int index)
{
  const Line line = getLineRef(index);
  addSamples(index, 1);
  return line.first + line.count;
}

void NbdDataLines::addSamples(int index, int count)
{
  const Line line = getLineRef(index);
  const int position = line.first + line.count;
  _insertIntoSelection(position, count);
  NbdDataTable &table = getDataTable();
  for (NbdAVariable *variable : table.getAllVars())
    variable->insertUndefinedValues(position, count);
  if (table.getNVariables() > 0)
    table.adjustNSamples();
  else
    table.appendSamples(count);
  _samplesChanged();
  QVector<int> counts = _nSamplesPerLine;
  counts[index] += count;
  _setCounts(counts);
}

void NbdDataLines::removeSample(int position)
{
  if (position < 0 || position >= getNSamples())
    NBE_FAIL(QStringLiteral("position >= 0 && position < getNSamples()"));
  // The last line that begins at or before the position; lines without sample come before it.
  const auto next = std::upper_bound(_firstOfLine.begin(), _firstOfLine.end(), position);
  const int index = int(next - _firstOfLine.begin()) - 1;
  _removeFromSelection(position);
  getDataTable().removeSample(position);
  _samplesChanged();
  QVector<int> counts = _nSamplesPerLine;
  --counts[index];
  _setCounts(counts);
}

void NbdDataLines::_setCounts(const QVector<int> &nSamplesPerLine)
{
  _nSamplesPerLine = nSamplesPerLine;
  _firstOfLine.resize(nSamplesPerLine.size());
  int first = 0;
  for (int index = 0; index < nSamplesPerLine.size(); ++index) {
    _firstOfLine[index] = first;
    first += nSamplesPerLine[index];
  }
}
