#include "base/private/NgcSelectedBlocks.h"

#include "basic/data/NbdAData.h"
#include "basic/data/NbdVariableDouble.h"

#include <algorithm>

namespace {

void gather(const double *values, const int *positions, int n, double *out)
{
  for (int i = 0; i < n; ++i)
    out[i] = values[positions[i]];
}

/// Reads run after run of consecutive positions.
void gather(const NbdAVariableNumeric &variable, const int *positions, int n, double *out)
{
  for (int first = 0; first < n;) {
    int last = first + 1;
    while (last < n && positions[last] == positions[last - 1] + 1)
      ++last;
    variable.getValuesAsDouble(positions[first], last - first, out + first);
    first = last;
  }
}

}  // namespace

NgcSelectedBlocks::NgcSelectedBlocks(const NbdAData &buffer) : _nSamples(buffer.getNSamples())
{
  if (!buffer.getSelection())
    return;
  const std::vector<int> &positions = buffer.getSelectedPositions();
  _positions = positions.data();
  _nSamples = int(positions.size());
}

int NgcSelectedBlocks::getLength(int block) const
{
  return std::min(BLOCK, _nSamples - block * BLOCK);
}

const double *NgcSelectedBlocks::read(const NbdAVariableNumeric &variable, int block,
                                      double *work) const
{
  const int first = block * BLOCK;
  const int n = getLength(block);
  const auto *column = dynamic_cast<const NbdVariableDouble *>(&variable);
  if (column && !_positions)
    return column->getArrayConst() + first;
  if (column)
    gather(column->getArrayConst(), _positions + first, n, work);
  else if (_positions)
    gather(variable, _positions + first, n, work);
  else
    variable.getValuesAsDouble(first, n, work);
  return work;
}
