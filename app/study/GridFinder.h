#pragma once

#include "basic/geom/NbgGeomGrid.h"

#include <array>
#include <optional>
#include <vector>

namespace orvenal {

/// Coordinates of a point; 0 for an axis that it does not have.
using Place = std::array<double, 3>;

/// The grid on whose nodes all places lie, to a hundredth of its cells: along the axes, or turned
/// about the vertical by less than a quarter. Two or three dimensions, two nodes at least along
/// each of the first two axes; a tenth of the nodes has to be taken. `nDistinct` of the places
/// differ.
std::optional<NbgGeomGrid> findGrid(const std::vector<Place> &places, qint64 nDistinct);

}  // namespace orvenal
