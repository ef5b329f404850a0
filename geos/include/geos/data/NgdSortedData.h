#pragma once

#include "basic/base/NbbIDebuggable.h"
#include "basic/geom/NbgEDimension.h"
#include "basic/geom/NbgRotation.h"

#include <QVector>

#include <vector>

class NbdDataPoints;
class NbgBox;

/// An octree of samples for box queries, to which samples can be added one by one.
///
/// Cells divide the (rotated) bounding box; samples outside it belong to the cells at its border.
class NgdSortedData : public NbbIDebuggable
{
public:
  NgdSortedData();

  void setDimension(const NbgEDimension &dimension);

  /// Fails before the dimension is set, when data are present, and for a rotation about other axes
  /// than Z below three dimensions.
  void setBoundingBox(const NbgBox &box, const NbgRotation &rotation);

  /// Levels of cells below the whole box; fails when data are present.
  void setMaximumDepth(int depth);

  /// Adds all samples; their ranks go on from the number of data.
  void insertData(const NbdDataPoints &points);

  /// Adds one sample under any rank.
  void insertSample(int rank, const NbgVector3D &location);

  /// Ranks, ascending, of the samples inside a rotated box, border included.
  void selectDataFromBox(const NbgVector3D &center, const NbgVector3D &halfExtents,
                         const NbgRotation &rotation, QVector<int> &ranks) const;

  int getNData() const { return _nData; }

  /// Removes the data; the settings stay.
  void clear();

  QString debug(int level) const override;

private:
  struct _Sample
  {
    NbgVector3D location;
    int rank;
  };

  /// A leaf while it has no children; these stand one behind the other.
  struct _Cell
  {
    NbgVector3D center;
    NbgVector3D halfSize;
    int depth;
    int firstChild = -1;
    std::vector<_Sample> samples;
  };

  struct _Query;

  int _childOf(const NbgVector3D &center, const NbgVector3D &local) const;
  void _split(int cell);
  void _search(int cell, const _Query &query, QVector<int> &ranks) const;

  NbgVector3D _boxCenter;
  NbgVector3D _boxSize;
  NbgRotation _boxRotation;
  int _maximumDepth = 3;
  NbgEDimension _dimension;
  bool _hasDimension = false;
  int _nData = 0;
  std::vector<_Cell> _cells;
};
