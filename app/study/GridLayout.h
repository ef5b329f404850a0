#pragma once

#include <vector>

namespace orvenal {

struct JobTable;

/// The box around the places of a table: one value per dimension.
struct Extent
{
  std::vector<double> lower;
  std::vector<double> upper;
};

/// Reads the coordinates of a table. Records without a place are left out; a table without one is
/// an NbeUserError.
Extent readExtent(const JobTable &table);

/// A grid that is not turned: one value per dimension.
struct GridLayout
{
  std::vector<double> origin;  ///< centre of the first node
  std::vector<double> cell;
  std::vector<double> nodes;
};

/// The smallest grid around the box whose nodes stand at multiples of the cells' sizes. Cells that
/// are not positive, or give more than 16 million nodes along an axis, are a UsageError.
GridLayout layGrid(const Extent &extent, const std::vector<double> &cell);

/// Sizes of cells, 1, 2 or 5 times a power of ten, for about that many nodes along the longest axis
/// of the plane; vertically, in three dimensions, of its own scale.
std::vector<double> roundCell(const Extent &extent, int nAlongLongest);

}  // namespace orvenal
