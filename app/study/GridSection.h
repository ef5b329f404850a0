#pragma once

#include "basic/geom/NbgGeomGrid.h"

#include <QList>

#include <optional>
#include <utility>
#include <vector>

namespace orvenal {

struct Samples;

/// A section through a grid of three dimensions that somebody wants to see. Coordinates are those
/// of the grid turned back about its first node; they are the samples' own when it is not turned.
struct SectionRequest
{
  int axis = 2;                    ///< 0, 1, 2: the section is at a constant x, y, z
  double coordinate = 0.;          ///< of that axis
  std::optional<double> distance;  ///< samples nearer than this are shown; else half a cell
};

/// A layer of nodes.
struct GridSection
{
  int axis = 2;
  int index = 0;           ///< of the layer's nodes along the axis
  double coordinate = 0.;  ///< of their centres
  double distance = 0.;    ///< samples up to this far are shown
};

/// The layer whose cells hold a coordinate of an axis; -1 outside the grid.
int findLayer(const NbgGeomGrid &grid, int axis, double coordinate);

/// Borders of the grid along an axis.
std::pair<double, double> gridReach(const NbgGeomGrid &grid, int axis);

/// The layers that hold the wanted coordinates, which lie in the grid. Without any wish four
/// horizontal ones, spread evenly over the nodes, and the two vertical ones through the middle,
/// but for those that would be a single row of cells.
QList<GridSection> chooseSections(const NbgGeomGrid &grid, const QList<SectionRequest> &wanted);

/// The plane in which a section is drawn, as a grid of two dimensions: x and y of a horizontal
/// section, the grid's horizontal axis and z of a vertical one.
NbgGeomGrid planeOf(const NbgGeomGrid &grid, const GridSection &section);

/// The values of a section in rank order of its plane.
std::vector<double> sectionValues(const NbgGeomGrid &grid, const std::vector<double> &values,
                                  const GridSection &section);

/// The samples near a section that lie within the grid's other two axes, at their places in its
/// plane; covariates and other columns are left out.
Samples samplesNear(const NbgGeomGrid &grid, const Samples &samples, const GridSection &section);

}  // namespace orvenal
