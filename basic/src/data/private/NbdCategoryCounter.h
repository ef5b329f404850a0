#pragma once

#include "basic/calc/NbcProportions.h"
#include "basic/data/NbdValueConversion.h"

#include <map>

namespace NbdCategoryCounter {

/// Numbers of values by category, and the shares of the categories among the defined values.
template <class T>
NbcProportions getProportions(const T *values, int n)
{
  std::map<int, qint64> counts;
  for (int i = 0; i < n; ++i)
    ++counts[nbdConvert<int>(values[i])];

  const auto undefined = counts.find(NbbGlobal::I32_FFFF);
  const qint64 nDefined = n - (undefined == counts.end() ? 0 : undefined->second);
  NbcProportions proportions;
  for (const auto &[category, count] : counts) {
    proportions.setNbUnits(category, count);
    proportions.setWeightByCat(category, double(count));
    if (category != NbbGlobal::I32_FFFF)
      proportions.setProportion(category, double(count) / double(nDefined));
  }
  return proportions;
}

}  // namespace NbdCategoryCounter
