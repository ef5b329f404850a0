#pragma once

#include "basic/base/NbbIDebuggable.h"
#include "basic/geom/NbgIntVector3D.h"
#include "basic/geom/NbgRotation.h"
#include "basic/geom/NbgVector3D.h"

#include <QList>
#include <QVector>

class NbdAVariableNumeric;
class NbgBox;
class NbgGeomCuboid;
class NbgGeomGrid;

/// Support of an estimation: a block with a discretization, without place. Points of the
/// discretization are relative to the centre of the block.
///
/// U, V and W are the axes of the block, its rotation turning X, Y and Z onto them. A 2D block
/// ignores W (one point along it).
class NgmABlock : public NbbIDebuggable
{
public:
  explicit NgmABlock(bool is3D);

  /// A new copy; the caller owns it.
  NgmABlock *clone() const { return _clone(); }

  /// Number of points along U, V and W. Either it or the steps define the discretization.
  virtual NbgIntVector3D getDiscretizationPointsNumber() const = 0;
  void setDiscretizationPointsNumber(const NbgIntVector3D &numbers);

  /// Spacing of the points along U, V and W.
  virtual NbgVector3D getDiscretizationStepsSize() const = 0;
  void setDiscretizationStepsSize(const NbgVector3D &steps);

  /// Full extension along U, V and W.
  virtual NbgVector3D getSize() const = 0;
  void setSize(const NbgVector3D &size);

  /// Fills the points of the discretization relative to the centre; returns their number.
  virtual int getDiscretizationPoints(QVector<NbgVector3D> &points) const = 0;

  /// Fills one random point per cell of the discretization, in the order of
  /// getDiscretizationPoints() and relative to the centre. Without `randomW`, and in 2D, the points
  /// stay at the middle of their cells along W. The same seed gives the same points.
  virtual void getRandomPoints(qint64 seed, QVector<NbgVector3D> &points, bool randomW) const = 0;

  /// A new copy of the block with the size that the variables give at position `index`; as it is
  /// for a negative index and for no variables. The caller owns it.
  virtual NgmABlock *getResizedBlock(int index,
                                     const QList<NbdAVariableNumeric *> &variables) const = 0;

  /// Size and discretization are usable.
  virtual bool isValid() const = 0;

  QString debug(int level) const override;

  const NbgRotation &getRotation() const { return _rotation; }
  void setRotation(const NbgRotation &rotation);

  /// Size and rotation of the cells of a grid.
  void setFromGridCell(const NbgGeomGrid &grid);

  /// The block placed at a centre.
  NbgGeomCuboid getCuboid(const NbgVector3D &centre) const;

  /// The smallest axis-aligned box around the block placed at a centre.
  NbgBox getBox(const NbgVector3D &centre) const;

  bool is3D() const { return _is3D; }

  /// Whether size and rotation are usable; `why` says what is wrong.
  bool isBlockDefined(QString &why) const;

  /// Whether the discretization is usable; `why` says what is wrong.
  bool isDiscretizationDefined(QString &why) const;

protected:
  NgmABlock(const NgmABlock &) = default;
  NgmABlock &operator=(const NgmABlock &) = default;

  virtual NgmABlock *_clone() const = 0;

  bool _isSizeDefined(QString &why) const;

  /// The numbers that were set, or as many steps as cover the size; the steps that were set, or
  /// size / number. They fail when what they need is not usable.
  NbgIntVector3D _calcPointsNumber() const;
  NbgVector3D _calcStepsSize() const;

  /// Whether the block is usable; when not, and `raise` is set, the failure is raised.
  bool _check(bool raise) const;
  bool _hasPointsNumber() const { return _pointsNumber != NbgIntVector3D::Null; }
  bool _hasStepsSize() const { return _stepsSize != NbgVector3D::Null; }

  /// Number of axes that count.
  int _nAxes() const { return _is3D ? 3 : 2; }

  NbgIntVector3D _pointsNumber;
  NbgVector3D _stepsSize;
  NbgVector3D _size;
  NbgRotation _rotation;
  bool _is3D;
};
