#include "geos/interpol/NgmTarget.h"

#include "basic/error/NbeAssertion.h"
#include "basic/geom/NbgGeomCuboid.h"
#include "geos/interpol/NgmBlock.h"

NgmTarget::NgmTarget() = default;

NgmTarget::NgmTarget(const NbgVector3D &center) : _center(center) {}

NgmTarget::NgmTarget(const NbgVector3D &center, const NgmABlock &block)
    : _center(center), _block(block.clone()), _isBlock(true)
{
}

NgmTarget::NgmTarget(const NgmTarget &other)
    : _center(other._center), _block(other.cloneBlock()), _isBlock(other._isBlock)
{
}

NgmTarget &NgmTarget::operator=(const NgmTarget &other)
{
  if (this != &other) {
    _center = other._center;
    _block.reset(other.cloneBlock());
    _isBlock = other._isBlock;
  }
  return *this;
}

NgmTarget::~NgmTarget() = default;

const NgmABlock &NgmTarget::getBlock() const
{
  if (!_block)
    NBE_FAIL(QStringLiteral("target block is not defined"));
  return *_block;
}

NgmABlock *NgmTarget::cloneBlock() const
{
  return _block ? _block->clone() : nullptr;
}

void NgmTarget::setBlock(const NgmABlock &block)
{
  _block.reset(block.clone());
  _isBlock = true;
}

NbgGeomCuboid NgmTarget::getBlockAsCuboid() const
{
  if (!_isBlock)
    return NbgGeomCuboid();
  if (!dynamic_cast<const NgmBlock *>(_block.get()))
    NBE_FAIL(QStringLiteral("The Block is Unfolded"));
  return getBlock().getCuboid(_center);
}

void NgmTarget::getDiscretizationPoints(QVector<NbgVector3D> &points) const
{
  points.clear();
  if (!_isBlock)
    return;
  getBlock().getDiscretizationPoints(points);
  for (NbgVector3D &point : points)
    point += _center;
}
