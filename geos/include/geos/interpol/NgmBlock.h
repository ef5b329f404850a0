#pragma once

#include "basic/base/NbbCloneable.h"
#include "geos/interpol/NgmABlock.h"

/// Rectangular block, possibly rotated, discretized by the centres of equal cells.
///
/// The getters fail (programming error) while what they give is not defined.
class NgmBlock : public NbbCloneable<NgmBlock, NgmABlock>
{
public:
  using NbbCloneable::NbbCloneable;

  /// The numbers that were set, or as many steps as cover the size (rounded up); 1 along W in 2D.
  NbgIntVector3D getDiscretizationPointsNumber() const override;

  /// The steps that were set, or size / number.
  NbgVector3D getDiscretizationStepsSize() const override;

  NbgVector3D getSize() const override;

  /// Whether the size is usable; `why` says what is wrong.
  bool isSizeDefined(QString &why) const;

  /// Centres of the cells, U varying slowest and W fastest.
  int getDiscretizationPoints(QVector<NbgVector3D> &points) const override;

  bool isValid() const override;

protected:
  /// Whether the block is usable; when not, and `raise` is set, the failure is raised.
  bool _check(bool raise) const;
};
