#include "basic/geom/NbgGeomPolygon.h"

bool NbgGeomPolygon::isInside(const NbgVector3D &point) const
{
  if (_border.isCrossedBy(point, point))
    return true;
  const NbgBox &box = _border.getBox();
  if (!box.isInside(NbgVector3D(point.x(), point.y(), box.getLowerLeftCorner().z())))
    return false;

  // Edges that a ray towards +X crosses; each vertex belongs to the edges above it.
  const QVector<NbgVector3D> &vertices = _border.getVertices();
  bool inside = false;
  for (int i = 0, last = vertices.size() - 1; i < vertices.size(); last = i++) {
    const NbgVector3D &a = vertices[last];
    const NbgVector3D &b = vertices[i];
    if ((a.y() > point.y()) == (b.y() > point.y()))
      continue;
    const bool isLeft = nbgOrientation(a, b, point) > 0.;
    inside ^= isLeft == (b.y() > a.y());
  }
  return inside;
}
