#pragma once

#include "basic/geom/NbgVector3D.h"
#include "geos/matrix/NgmAlignedAllocator.h"

#include <QVector>

#include <vector>

/// Scratch memory of the bulk covariance evaluators: arrays that grow when they have to and never
/// shrink. Contents do not survive from one call to the next.
class NgmVModelCovaCache
{
public:
  using Array = std::vector<double, NgmAlignedAllocator<double>>;

  /// An array of `n` values at least.
  static double *atLeast(Array &array, std::size_t n)
  {
    if (array.size() < n)
      array.resize(n);
    return array.data();
  }

  Array correlations;
  Array points;
  QVector<NbgVector3D> blockPoints;
};
