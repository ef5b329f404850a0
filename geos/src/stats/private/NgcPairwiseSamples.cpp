#include "stats/private/NgcPairwiseSamples.h"

#include "basic/base/NbbGlobal.h"
#include "basic/data/NbdAData.h"
#include "basic/data/NbdAVariableNumeric.h"
#include "geos/data/NgdDataDoubleBuffer.h"
#include "geos/stats/NgcAPairwiseStat.h"
#include "stats/private/NgcColumns.h"

#include <algorithm>

NgcPairwiseSamples::NgcPairwiseSamples(const NgdDataDoubleBuffer &buffers,
                                       const NgcAPairwiseStat &calculator)
    : _isSame(buffers.areSameData()), _chunkSize(calculator.getChunkSize())
{
  _append(*buffers.getBuffer1());
  _ranks = {buffers.getRank1(), buffers.getRank2()};
  _nFirst = count();
  if (!_isSame)
    _append(*buffers.getBuffer2());
}

void NgcPairwiseSamples::_append(const NbdAData &data)
{
  const int before = count();
  const int n = data.getNSamples();
  for (std::vector<double> &axis : _axes)
    axis.resize(before + n);
  data.getLocations(0, n, &_axes[0][before], &_axes[1][before], &_axes[2][before]);
  for (int position = 0; position < n; ++position)
    _numbers.push_back(data.getSampleNumber(position));
  _buffers.push_back(&data);
}

bool NgcPairwiseSamples::isPlaced(int i) const
{
  return std::all_of(_axes, _axes + 3, [i](const std::vector<double> &axis) {
    return NbbGlobal::isDefined(axis[i]);
  });
}

int NgcPairwiseSamples::getRoleCount(const QString &role) const
{
  return _buffers[0]->getDataTableConst().getRoleCount(role);
}

std::vector<double> NgcPairwiseSamples::read(const QString &role, int index) const
{
  std::vector<double> values;
  values.reserve(count());
  for (const NbdAData *buffer : _buffers) {
    const std::vector<double> part =
        NgcColumns::read(buffer->getDataTableConst().getVarNumericRef(role, index));
    values.insert(values.end(), part.begin(), part.end());
  }
  return values;
}

std::vector<int> NgcPairwiseSamples::makeChunks(const std::vector<unsigned char> &isKept)
{
  std::vector<int> order;
  order.reserve(count());
  _chunks.clear();
  _addChunks(0, _nFirst, _ranks[0], isKept, order);
  _nFirstChunks = int(_chunks.size());
  if (!_isSame)
    _addChunks(_nFirst, count(), _ranks[1], isKept, order);
  return order;
}

void NgcPairwiseSamples::_addChunks(int first, int last, int rank,
                                    const std::vector<unsigned char> &isKept,
                                    std::vector<int> &order)
{
  const auto chunkOf = [&](int i) {
    return _chunkSize > 0 ? (_numbers[i] - 1) / _chunkSize : qint64(rank);
  };
  const int begin = int(order.size());
  for (int i = first; i < last; ++i) {
    if (isKept[i])
      order.push_back(i);
  }
  std::stable_sort(order.begin() + begin, order.end(),
                   [&](int a, int b) { return chunkOf(a) < chunkOf(b); });
  for (int k = begin; k < int(order.size()); ++k) {
    const qint64 chunk = chunkOf(order[k]);
    if (k == begin || _chunks.back().rank != chunk)
      _chunks.push_back({chunk, k, k});
    _chunks.back().last = k + 1;
  }
}
