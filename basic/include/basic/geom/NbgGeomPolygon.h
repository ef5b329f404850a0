#pragma once

#include "basic/geom/NbgGeomPolyline.h"

/// The inside of a closed polyline in the horizontal plane, by the even-odd rule; the border counts
/// as inside. Exact, as polylines are.
class NbgGeomPolygon
{
public:
  NbgGeomPolygon() = default;

  /// Closes the line.
  explicit NbgGeomPolygon(const QVector<NbgVector3D> &vertices) : _border(vertices, true) {}

  const NbgGeomPolyline &getBorder() const { return _border; }

  /// False for an undefined point.
  bool isInside(const NbgVector3D &point) const;

private:
  NbgGeomPolyline _border;
};
