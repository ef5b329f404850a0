#pragma once

#include "basic/geom/NbgGeomGrid.h"

#include <vector>

namespace orvenal {

/// Values of an estimation on a whole grid, in rank order (third axis fastest): undefined where
/// nothing could be estimated and where the node is masked.
struct GridResult
{
  NbgGeomGrid geometry;
  std::vector<unsigned char> selected;  ///< 0 where masked
  std::vector<double> estimate;
  std::vector<double> deviation;  ///< standard deviation of the estimation error
  std::vector<double> variance;

  qint64 getNSelected() const;
  qint64 getNEstimated() const;
};

}  // namespace orvenal
