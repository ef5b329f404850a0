#include "data/private/NgdGridBorder.h"

#include "basic/base/NbbGlobal.h"
#include "basic/data/NbdAVariableNumeric.h"
#include "basic/data/NbdDataGridExtended.h"
#include "basic/data/NbdVariableInt64.h"

#include <algorithm>
#include <cstdlib>

namespace {

/// The index in 0 .. n - 1 whose values index `index` of an axis receives; -1 for none.
int findSource(int index, int n, NgdDataSetGrid::BorderOption option)
{
  if (index >= 0 && index < n)
    return index;
  if (option == NgdDataSetGrid::BORDER_NEAREST)
    return std::clamp(index, 0, n - 1);
  if (option == NgdDataSetGrid::BORDER_UNDEFINED)
    return -1;
  if (n == 1)
    return 0;
  const int period = 2 * (n - 1);
  const int folded = std::abs(index) % period;
  return std::min(folded, period - folded);
}

/// Makes sources relative to the first of them; the interval that they span.
NbiIntervalIntSmall toBlock(std::vector<int> &sources)
{
  NbiIntervalIntSmall span;
  for (int source : sources) {
    if (source >= 0)
      span = span.isEmpty() ? NbiIntervalIntSmall(source, source)
                            : NbiIntervalIntSmall(std::min(span.getLower(), source),
                                                  std::max(span.getUpper(), source));
  }
  for (int &source : sources)
    source = source < 0 ? -1 : source - span.getLower();
  return span;
}

}  // namespace

NgdGridBorder::NgdGridBorder(const NbdDataGridExtended &buffer, NgdDataSetGrid::BorderOption option)
{
  const NbgIntVector3D grid = buffer.getGeometry().getNodesNumber();
  const NbgIntVector3D nodes = buffer.getNodesNumber();
  if (nodes.product() == 0)
    return;
  const NbgIntVector3D first = buffer.getIJK(0);
  const NbgIntVector3D last = buffer.getIJK(buffer.getNSamples() - 1);
  NbiIntervalIntSmall *spans[] = {&_i, &_j, &_k};
  for (int axis = 0; axis < 3; ++axis) {
    const int step = nodes[axis] > 1 ? (last[axis] - first[axis]) / (nodes[axis] - 1) : 1;
    for (int node = 0; node < nodes[axis]; ++node)
      _sources[axis].push_back(findSource(first[axis] + node * step, grid[axis], option));
    *spans[axis] = toBlock(_sources[axis]);
  }
}

void NgdGridBorder::scatter(const double *block, NbdAVariableNumeric &values) const
{
  const bool isSelection = values.getVariableType() == Nbd::TYPE_BOOLEAN;
  const double missing = isSelection ? 0. : NbbGlobal::D_FFFF;
  std::vector<double> row(_sources[2].size());
  int position = 0;
  for (int i : _sources[0]) {
    for (int j : _sources[1]) {
      const bool hasColumn = i >= 0 && j >= 0;
      const qint64 column = hasColumn ? (qint64(i) * _j.getLength() + j) * _k.getLength() : 0;
      for (std::size_t k = 0; k < row.size(); ++k)
        row[k] = hasColumn && _sources[2][k] >= 0 ? block[column + _sources[2][k]] : missing;
      values.setValuesFromDouble(position, int(row.size()), row.data());
      position += int(row.size());
    }
  }
}

void NgdGridBorder::setLocations(NbdDataGridExtended &buffer)
{
  const int n = buffer.getNSamples();
  std::vector<double> coordinates[3];
  for (std::vector<double> &axis : coordinates)
    axis.resize(n);
  buffer.getLocations(0, n, coordinates[0].data(), coordinates[1].data(), coordinates[2].data());
  const QString roles[] = {Nbd::Role::X, Nbd::Role::Y, Nbd::Role::Z};
  for (int axis = 0; axis < 3; ++axis) {
    if (NbdAVariableNumeric *column = buffer.getVariableNumeric(roles[axis], 0))
      column->setValuesFromDouble(0, n, coordinates[axis].data());
  }
  if (NbdVariableInt64 *numbers = buffer.getVariableSN()) {
    for (int position = 0; position < n; ++position)
      numbers->setValueAsType(position, buffer.getSampleNumber(position));
  }
}
