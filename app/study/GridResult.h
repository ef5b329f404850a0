#pragma once

#include "basic/geom/NbgGeomGrid.h"

#include <QString>

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

  /// Other results: the name of their column, what they are, and their values.
  struct Extra
  {
    QString name;
    QString label;
    std::vector<double> values;
  };
  std::vector<Extra> extras;

  qint64 getNSelected() const;
  qint64 getNEstimated() const;
};

}  // namespace orvenal
