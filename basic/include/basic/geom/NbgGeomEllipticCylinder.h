#pragma once

#include "basic/geom/NbgAGeomSolid.h"

/// A rotated cylinder with an elliptic base: the ellipse in the plane of the first two local axes,
/// the height along the third.
class NbgGeomEllipticCylinder final : public NbgAGeomSolid
{
public:
  NbgGeomEllipticCylinder() = default;
  /// `size` holds the full extents: two diameters and the height.
  NbgGeomEllipticCylinder(const NbgVector3D &center, const NbgVector3D &size,
                          const NbgRotation &rotation = NbgRotation());

protected:
  bool _isIncludedLocal(const NbgVector3D &point) const override;
};
