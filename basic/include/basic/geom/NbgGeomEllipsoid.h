#pragma once

#include "basic/geom/NbgAGeomSolid.h"

/// A rotated ellipsoid.
class NbgGeomEllipsoid final : public NbgAGeomSolid
{
public:
  NbgGeomEllipsoid() = default;
  /// `size` holds the full extents (diameters).
  NbgGeomEllipsoid(const NbgVector3D &center, const NbgVector3D &size,
                   const NbgRotation &rotation = NbgRotation());

protected:
  bool _isIncludedLocal(const NbgVector3D &point) const override;
};
