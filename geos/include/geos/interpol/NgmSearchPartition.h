#pragma once

#include "basic/base/NbbIDebuggable.h"
#include "basic/geom/NbgRotation.h"
#include "geos/NgcEnumGlobal.h"
#include "geos/interpol/NgmTarget.h"

#include <memory>

class NbgAGeomSolid;

/// A solid around a target; samples inside it are rejected when the target is cross-validated.
///
/// Every change places the solid anew. A target block must lie inside it, so set the size before
/// the target.
class NgmSearchPartition : public NbbIDebuggable
{
public:
  NgmSearchPartition();
  NgmSearchPartition(const NgmSearchPartition &other);
  NgmSearchPartition &operator=(const NgmSearchPartition &other);
  ~NgmSearchPartition() override;

  void setShape(const NgcESolidShape &shape);
  void setTarget(const NgmTarget &target);

  /// Moves the target, and the solid with it.
  void setCenter(const NbgVector3D &center);

  void setRotation(const NbgRotation &rotation);

  /// Radii; fails unless the shape is the ellipsoid.
  void setEllipsoidSize(const NbgVector3D &radii);

  /// Full extents; fails unless the shape is the cuboid.
  void setCuboidSize(const NbgVector3D &extents);

  /// Fails unless the shape is the elliptic cylinder. A radius along Y that is negative or
  /// undefined is that along X.
  void setEllipticCylinderSize(double halfHeight, double radiusX, double radiusY);

  const NgcESolidShape &getShape() const { return _shape; }
  const NbgVector3D &getSize() const { return _size; }  ///< Full extents.

  /// Border included.
  bool isIncluded(const NbgVector3D &point) const;

  QString debug(int level) const override;

private:
  void _placeSolid();

  NgmTarget _target;
  NbgRotation _rotation;
  NbgVector3D _size;
  NgcESolidShape _shape = NgcESolidShape::SHAPE_CUBOID;
  std::unique_ptr<NbgAGeomSolid> _solid;
};
