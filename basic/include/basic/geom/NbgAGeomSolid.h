#pragma once

#include "basic/geom/NbgRotation.h"

class NbgBox;
class NbgGeomCuboid;

/// Base of the solids: a shape inscribed in a rotated cuboid, given by its center, its full extents
/// along the local axes and its rotation. The border counts as inside, tested exactly. An extent of
/// 0 leaves only the points of the middle plane.
class NbgAGeomSolid
{
public:
  virtual ~NbgAGeomSolid();

  const NbgVector3D &getCenter() const { return _center; }
  const NbgVector3D &getSize() const { return _size; }  ///< Full extents.
  const NbgRotation &getRotation() const { return _rotation; }

  void setCenter(const NbgVector3D &center) { _center = center; }
  /// Full extents.
  void setSize(const NbgVector3D &size) { _size = size; }
  /// Half of the extents.
  void setRadius(const NbgVector3D &radius) { _size = 2. * radius; }
  void setRotation(const NbgRotation &rotation) { _rotation = rotation; }
  /// All three; `size` holds the full extents.
  void setSolid(const NbgVector3D &center, const NbgVector3D &size, const NbgRotation &rotation);

  /// Moves each side outward by `margin` along its local axis (the extents grow by twice as much).
  void extend(const NbgVector3D &margin) { _size += 2. * margin; }

  /// Center and extents are defined, and no extent is negative.
  bool isValid() const;

  /// False for an undefined point.
  bool isIncluded(const NbgVector3D &point) const
  {
    return _isIncludedLocal(_rotation.worldToLocal(point - _center));
  }

  /// The eight corners of the cuboid are inside (which is enough: the solids are convex).
  bool isIncluded(const NbgGeomCuboid &cuboid) const;

  /// Corner 0 to 7 of the enclosing cuboid, in world coordinates: bit 0 of the rank chooses the
  /// upper end along the first local axis, bit 1 the second, bit 2 the third.
  NbgVector3D getApex(int rank) const;

  /// The smallest box along the world's axes that holds the enclosing cuboid.
  NbgBox getBoundingBox() const;

protected:
  NbgAGeomSolid() = default;
  NbgAGeomSolid(const NbgAGeomSolid &) = default;
  NbgAGeomSolid &operator=(const NbgAGeomSolid &) = default;

  /// `point` is relative to the center, along the local axes.
  virtual bool _isIncludedLocal(const NbgVector3D &point) const = 0;

private:
  NbgVector3D _center;
  NbgVector3D _size;
  NbgRotation _rotation;
};
