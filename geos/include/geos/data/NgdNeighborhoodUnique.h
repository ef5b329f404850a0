#pragma once

#include "basic/data/NbdDataPoints.h"
#include "geos/data/NgdANeighborhood.h"

/// A unique neighborhood: every target uses all samples.
class NgdNeighborhoodUnique : public NgdANeighborhood
{
public:
  explicit NgdNeighborhoodUnique(const QString &roleMain);

  bool isMoving() const override { return false; }

  /// Never to be called: every sample is a neighbor.
  void selectDataFromBox(const NbgVector3D &center, const NbgVector3D &halfExtents,
                         const NbgRotation &rotation, QVector<int> &ranks) const override;

  /// Loads every selected sample with three coordinate columns and its sample number.
  void loadAllData();

  /// The loaded samples in ascending sample number.
  const NbdDataPoints &getAllData() const;

private:
  NbdDataPoints _data;
  bool _loaded = false;
};
