#pragma once

#include "basic/geom/NbgBox.h"

#include <QVector>

/// A line through vertices. It counts in the horizontal plane only: elevations are kept and play no
/// part in tests.
///
/// Tests are exact: their answer is that of the coordinates without any rounding.
class NbgGeomPolyline
{
public:
  NbgGeomPolyline() = default;

  /// A closed line goes on from the last vertex to the first. One whose last vertex stands where
  /// the first does is closed anyway.
  explicit NbgGeomPolyline(const QVector<NbgVector3D> &vertices, bool closed = false);

  const QVector<NbgVector3D> &getVertices() const { return _vertices; }
  bool isEmpty() const { return _vertices.isEmpty(); }
  bool isClosed() const { return _closed; }

  /// The smallest box around the vertices; invalid without any.
  const NbgBox &getBox() const { return _box; }

  /// The segment from a to b meets the line: touching it or ending on it counts.
  bool isCrossedBy(const NbgVector3D &a, const NbgVector3D &b) const;

private:
  QVector<NbgVector3D> _vertices;
  bool _closed = false;
  NbgBox _box;
};

/// Twice the area of the triangle a, b, c in the horizontal plane: its sign is exact, positive when
/// the triangle turns counter-clockwise, 0 when it is flat.
double nbgOrientation(const NbgVector3D &a, const NbgVector3D &b, const NbgVector3D &c);

/// The closed segments from a to b and from c to d share a point of the horizontal plane.
bool nbgSegmentsMeet(const NbgVector3D &a, const NbgVector3D &b, const NbgVector3D &c,
                     const NbgVector3D &d);
