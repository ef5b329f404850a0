#include "geos/interpol/NgmSearchPartition.h"

#include "basic/error/NbeAssertion.h"
#include "basic/geom/NbgGeomCuboid.h"
#include "basic/geom/NbgGeomEllipsoid.h"
#include "basic/geom/NbgGeomEllipticCylinder.h"

namespace {

std::unique_ptr<NbgAGeomSolid> makeSolid(const NgcESolidShape &shape)
{
  switch (shape.toEnum()) {
    case NgcESolidShape::EValue::SHAPE_CUBOID:
      return std::make_unique<NbgGeomCuboid>();
    case NgcESolidShape::EValue::SHAPE_ELLIPSOID:
      return std::make_unique<NbgGeomEllipsoid>();
    case NgcESolidShape::EValue::SHAPE_ELLIPTIC_CYLINDER:
      return std::make_unique<NbgGeomEllipticCylinder>();
  }
  return nullptr;
}

}  // namespace

NgmSearchPartition::NgmSearchPartition()
{
  _placeSolid();
}

NgmSearchPartition::NgmSearchPartition(const NgmSearchPartition &other)
    : _target(other._target), _rotation(other._rotation), _size(other._size), _shape(other._shape)
{
  _placeSolid();
}

NgmSearchPartition &NgmSearchPartition::operator=(const NgmSearchPartition &other)
{
  if (this != &other) {
    _target = other._target;
    _rotation = other._rotation;
    _size = other._size;
    _shape = other._shape;
    _solid.reset();
    _placeSolid();
  }
  return *this;
}

NgmSearchPartition::~NgmSearchPartition() = default;

void NgmSearchPartition::setShape(const NgcESolidShape &shape)
{
  _shape = shape;
  _solid.reset();
  _placeSolid();
}

void NgmSearchPartition::setTarget(const NgmTarget &target)
{
  _target = target;
  _placeSolid();
}

void NgmSearchPartition::setCenter(const NbgVector3D &center)
{
  _target.setCenter(center);
  _placeSolid();
}

void NgmSearchPartition::setRotation(const NbgRotation &rotation)
{
  _rotation = rotation;
  _placeSolid();
}

void NgmSearchPartition::setEllipsoidSize(const NbgVector3D &radii)
{
  if (_shape != NgcESolidShape::SHAPE_ELLIPSOID)
    NBE_FAIL(QStringLiteral("Wrong shape"));
  _size = 2. * radii;
  _placeSolid();
}

void NgmSearchPartition::setCuboidSize(const NbgVector3D &extents)
{
  if (_shape != NgcESolidShape::SHAPE_CUBOID)
    NBE_FAIL(QStringLiteral("Wrong shape"));
  _size = extents;
  _placeSolid();
}

void NgmSearchPartition::setEllipticCylinderSize(double halfHeight, double radiusX, double radiusY)
{
  if (_shape != NgcESolidShape::SHAPE_ELLIPTIC_CYLINDER)
    NBE_FAIL(QStringLiteral("Wrong shape"));
  const bool isCircular = radiusY < 0. || !NbbGlobal::isDefined(radiusY);
  _size = 2. * NbgVector3D(radiusX, isCircular ? radiusX : radiusY, halfHeight);
  _placeSolid();
}

bool NgmSearchPartition::isIncluded(const NbgVector3D &point) const
{
  if (!_solid)
    NBE_FAIL(QStringLiteral("Solid not constructed"));
  return _solid->isIncluded(point);
}

QString NgmSearchPartition::debug(int) const
{
  static const char *const names[] = {"Cuboid:", "Ellipsoid:", "Elliptic cylinder:"};
  return QStringLiteral("NgmSearchPartition:\n") +
         (_solid ? QLatin1String(names[_shape.getValue()]) : QLatin1String("Undefined")) +
         QStringLiteral(" center=%1 size=%2 rot=%3\n")
             .arg(_target.getCenter().toString(), _size.toString(), _rotation.toString());
}

void NgmSearchPartition::_placeSolid()
{
  if (!_solid)
    _solid = makeSolid(_shape);
  _solid->setSolid(_target.getCenter(), _size, _rotation);
  if (!_target.isBlock() || _solid->isIncluded(_target.getBlockAsCuboid()))
    return;
  _solid.reset();
  NBE_FAIL(QStringLiteral("Target block cell not included in search partition"));
}
