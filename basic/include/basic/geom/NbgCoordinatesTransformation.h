#pragma once

#include "basic/geom/NbgRotation.h"

/// From the reference system (the world) to a system that is moved, rotated and scaled:
/// relative = scale * M' (reference - origin), component by component.
class NbgCoordinatesTransformation
{
public:
  void setRotation(const NbgRotation &rotation) { _rotation = rotation; }
  void setRotationOrigin(const NbgVector3D &origin) { _origin = origin; }
  /// No component may be 0 (a programming error).
  void setScale(const NbgVector3D &scale);

  NbgVector3D toRelativeSystem(const NbgVector3D &reference) const;
  NbgVector3D toReferenceSystem(const NbgVector3D &relative) const;

private:
  NbgRotation _rotation;
  NbgVector3D _origin;
  NbgVector3D _scale = NbgVector3D::Unit;
};
