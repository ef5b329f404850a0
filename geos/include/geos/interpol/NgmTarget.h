#pragma once

#include "basic/geom/NbgVector3D.h"

#include <QVector>

#include <memory>

class NbgGeomCuboid;
class NgmABlock;

/// What is estimated: a point, or a block around its centre.
class NgmTarget
{
public:
  NgmTarget();
  explicit NgmTarget(const NbgVector3D &center);
  NgmTarget(const NbgVector3D &center, const NgmABlock &block);
  NgmTarget(const NgmTarget &other);
  NgmTarget &operator=(const NgmTarget &other);
  ~NgmTarget();

  const NbgVector3D &getCenter() const { return _center; }
  void setCenter(const NbgVector3D &center) { _center = center; }

  bool isBlock() const { return _isBlock; }

  /// Fails when the target is a point.
  const NgmABlock &getBlock() const;

  /// A new copy of the block, or null; the caller owns it.
  NgmABlock *cloneBlock() const;

  /// Keeps a copy; the target is a block from then on.
  void setBlock(const NgmABlock &block);

  /// The block placed at the centre; a default cuboid when the target is a point. Fails for an
  /// unfolded block, which is in no single box.
  NbgGeomCuboid getBlockAsCuboid() const;

  /// Discretization points of the block in world coordinates; none for a point.
  void getDiscretizationPoints(QVector<NbgVector3D> &points) const;

private:
  NbgVector3D _center;
  std::unique_ptr<NgmABlock> _block;
  bool _isBlock = false;
};
