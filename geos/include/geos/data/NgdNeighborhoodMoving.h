#pragma once

#include "basic/data/NbdDataPoints.h"
#include "geos/data/NgdANeighborhood.h"
#include "geos/data/NgdSortedDataKdTree.h"
#include "geos/interpol/NgmNeighborhoodMoving.h"

/// The samples of a moving neighborhood and their spatial index.
///
/// The index works in the frame of the search ellipsoid, scaled so that the ellipsoid is a sphere:
/// a flat ellipsoid does not visit the sphere around it.
class NgdNeighborhoodMoving : public NgdANeighborhood
{
public:
  explicit NgdNeighborhoodMoving(const QString &roleMain);

  bool isMoving() const override { return true; }

  /// Loaded data are dropped: the index depends on the parameters.
  void setParameters(const NgmNeighborhoodMoving &parameters);
  const NgmNeighborhoodMoving &getParameters() const { return _parameters; }

  /// Loads every selected sample with three coordinate columns and its sample number, and indexes
  /// them.
  void loadData();
  bool isDataLoaded() const { return _loaded; }

  /// The loaded samples in ascending sample number.
  const NbdDataPoints &getAllData() const { return _data; }
  const NgdSortedDataKdTree &getSortedData() const { return _sortedData; }

  /// Largest component R of the ellipsoid's radii, and the scaling of its local axes that makes it
  /// the sphere of radius R; components beyond the dimension of the data are 0.
  double getRadius() const { return _radius; }
  const NbgVector3D &getScaling() const { return _scaling; }

  /// The scaling is the same along every axis: Euclidean and scaled distances have one order.
  bool isScalingUniform() const { return _uniformScaling; }

  /// Upper bound of the number of samples of a search.
  int getMaximumNeighborsCount() const { return _parameters.getMaximumNeighborsCount(); }

  /// Radii of the search ellipsoid.
  NbgVector3D getMaximumSize() const { return _parameters.getEllipseSize(); }

private:
  NgmNeighborhoodMoving _parameters;
  NbdDataPoints _data;
  NgdSortedDataKdTree _sortedData;
  bool _loaded = false;
  double _radius = 0.;
  NbgVector3D _scaling;
  bool _uniformScaling = true;
};
