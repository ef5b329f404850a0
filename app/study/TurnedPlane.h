#pragma once

#include <array>
#include <optional>
#include <vector>

namespace orvenal {

/// Where the nodes of a turned grid lie on the map.
struct TurnedPlane
{
  std::array<double, 2> origin;  ///< the first node
  std::array<double, 2> cell;
  std::array<double, 2> nodes;  ///< counts, two at least
  double azimuth;               ///< of the second axis, in degrees from -45 to 45
};

/// The rectangular lattice, turned about the vertical, on whose nodes all places lie to a
/// `tolerance` in cells; nothing when there is none.
///
/// The smallest steps between some places and those around them give the axes; these are made
/// precise by least squares over more and more places. Time grows with the number of places.
std::optional<TurnedPlane> findTurnedPlane(const std::vector<std::array<double, 3>> &places,
                                           double tolerance);

}  // namespace orvenal
