#pragma once

#include "basic/base/NbbCloneable.h"
#include "geos/interpol/NgmABlock.h"

#include <array>

/// Cell of an unfolded or corner-point grid: a hexahedron given by its eight corners.
///
/// It is the image of the unit cube under the mapping that is linear in each of its 24 tetrahedra,
/// a tetrahedron being made of the centre, the centre of a face and an edge of that face. The
/// centres are the means of their corners, so the mapping does not depend on the order of the
/// corners, and cells that share a face neither overlap nor leave a gap. The discretization is
/// regular in the cube. In 2D points lie half way between bottom and top.
///
/// Corners are numbered u + 2 v + 4 w with u, v, w = 0 or 1. They are taken in world coordinates
/// and kept relative to their mean, which is the centre of the block. The size along an axis is the
/// mean length of the four edges along it; cuboid and box are those of a block of that size.
/// Source:   [Freudenthal, 1942], for the partition of the cube
class NgmBlockUnfolded : public NbbCloneable<NgmBlockUnfolded, NgmABlock>
{
public:
  static constexpr int N_CORNERS = 8;
  using Corners = std::array<NbgVector3D, N_CORNERS>;

  using NbbCloneable::NbbCloneable;

  void setCorners(const Corners &corners);

  /// Relative to the centre of the block.
  const Corners &getCorners() const { return _corners; }

  NbgIntVector3D getDiscretizationPointsNumber() const override;
  NbgVector3D getDiscretizationStepsSize() const override;
  NbgVector3D getSize() const override;
  int getDiscretizationPoints(QVector<NbgVector3D> &points) const override;
  void getRandomPoints(qint64 seed, QVector<NbgVector3D> &points, bool randomW) const override;

  /// The variables are x, y, z of the first corner, x, y, z of the second, and so on: 24 of them,
  /// else it fails.
  NgmBlockUnfolded *getResizedBlock(
      int index, const QList<NbdAVariableNumeric *> &cornerVariables) const override;

  bool isValid() const override;
  QString debug(int level) const override;

private:
  using Weights = std::array<double, N_CORNERS>;

  void _setCorners(const Corners &corners);

  /// Weights of the corners in the image of a point of the unit cube; their sum is 1.
  static Weights _calcTetrahedraWeights(const NbgVector3D &uvw);

  NbgVector3D _calcDiscretizedPoint(const Weights &weights) const;

  Corners _corners;
};
