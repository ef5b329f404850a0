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

  void getRandomPoints(qint64 seed, QVector<NbgVector3D> &points, bool randomW) const override;

  /// Two variables give the size along U and V (W becomes 0), three along U, V and W; with other
  /// numbers of them it fails.
  NgmBlock *getResizedBlock(int index,
                            const QList<NbdAVariableNumeric *> &sizeVariables) const override;

  bool isValid() const override;

private:
  /// Centre of the first cell and edges of a cell, relative to the centre of the block and turned
  /// with it.
  struct Cells
  {
    NbgIntVector3D numbers;
    NbgVector3D origin;
    NbgVector3D u;
    NbgVector3D v;
    NbgVector3D w;
  };

  Cells _calcCells() const;
};
