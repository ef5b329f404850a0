#pragma once

#include "basic/geom/NbgAGeomSolid.h"

/// A rotated cuboid.
class NbgGeomCuboid final : public NbgAGeomSolid
{
public:
  NbgGeomCuboid() = default;
  NbgGeomCuboid(const NbgVector3D &center, const NbgVector3D &size,
                const NbgRotation &rotation = NbgRotation());

protected:
  bool _isIncludedLocal(const NbgVector3D &point) const override;
};
