#pragma once

#include "basic/data/NbdDataPoints.h"
#include "geos/data/NgdANeighborhood.h"
#include "geos/data/NgdSortedDataKdTree.h"
#include "geos/interpol/NgmLgsNeighborhoodMoving.h"

#include <vector>

struct NgmNeighborhoodNestedParam;

/// The samples of a moving neighborhood, their spatial index and the search levels: the standard
/// one, and those to fall back on when the level before fails.
///
/// The index works in the frame of the standard level's ellipsoid, scaled so that the ellipsoid is
/// a sphere: a flat ellipsoid does not visit the sphere around it.
class NgdNeighborhoodMoving : public NgdANeighborhood
{
public:
  struct Level
  {
    NgmLgsNeighborhoodMoving parameters;
    int code;  ///< a value of NgmENeighborhoodNestedCode
    QString name;
  };

  /// The frame of the index: a point p stands at scale * worldToLocal(p - origin).
  struct Frame
  {
    NbgVector3D origin;
    NbgRotation rotation;
    NbgVector3D scale = NbgVector3D(1., 1., 1.);
  };

  explicit NgdNeighborhoodMoving(const QString &roleMain);

  bool isMoving() const override { return true; }

  /// Sets the standard level and drops the others. Loaded data are dropped: the index depends on
  /// the parameters.
  void setParameters(const NgmNeighborhoodMoving &parameters);

  /// Adds a level that changes the last one. Its radii may not be smaller (in the order X, Y, Z)
  /// and its rotation is the same. Loaded data are dropped.
  void addAlternativeParameters(const NgmNeighborhoodNestedParam &change);

  /// Turns the block rules off on every level.
  void disableBlockParams();

  const std::vector<Level> &getLevels() const { return _levels; }

  /// Loads every selected sample with three coordinate columns and its sample number, and indexes
  /// them.
  void loadData();
  bool isDataLoaded() const { return _loaded; }

  /// The loaded samples in ascending sample number.
  const NbdDataPoints &getAllData() const { return _data; }
  const NgdSortedDataKdTree &getSortedData() const { return _sortedData; }
  const Frame &getFrame() const { return _frame; }

  void selectDataFromBox(const NbgVector3D &center, const NbgVector3D &halfExtents,
                         const NbgRotation &rotation, QVector<int> &ranks) const override;

  /// Upper bound of the number of samples of a search, over the levels.
  int getMaximumNeighborsCount() const;

  /// Radii of the search ellipsoid: component by component the largest of the levels.
  NbgVector3D getMaximumSize() const;

private:
  void _chooseFrame();
  void _dropData();

  std::vector<Level> _levels;
  NbdDataPoints _data;
  Frame _frame;
  NgdSortedDataKdTree _sortedData;
  bool _loaded = false;
};
