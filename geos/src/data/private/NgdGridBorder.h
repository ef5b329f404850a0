#pragma once

#include "basic/interval/NbiIntervalIntSmall.h"
#include "geos/data/NgdDataSetGrid.h"

#include <vector>

class NbdAVariableNumeric;
class NbdDataGridExtended;

/// Where the nodes of an extended or sampled buffer take their values from: the smallest block of
/// the grid that holds all their sources, and the place of each source in it.
class NgdGridBorder
{
public:
  NgdGridBorder(const NbdDataGridExtended &buffer, NgdDataSetGrid::BorderOption option);

  /// No node has a source.
  bool isEmpty() const { return getBlockLength() == 0; }
  int getBlockLength() const { return _i.getLength() * _j.getLength() * _k.getLength(); }
  const NbiIntervalIntSmall &getI() const { return _i; }
  const NbiIntervalIntSmall &getJ() const { return _j; }
  const NbiIntervalIntSmall &getK() const { return _k; }

  /// Gives every node of the buffer the value of its source in the block, undefined (0 in a
  /// selection) without source.
  void scatter(const double *block, NbdAVariableNumeric &values) const;

  /// Fills coordinates and sample numbers, which nodes outside the grid do not share with others.
  static void setLocations(NbdDataGridExtended &buffer);

private:
  std::vector<int> _sources[3];  ///< per axis: place in the block, -1 without source
  NbiIntervalIntSmall _i, _j, _k;
};
