#include "app/study/GridResult.h"

#include "basic/base/NbbGlobal.h"

#include <algorithm>

namespace orvenal {

qint64 GridResult::getNSelected() const
{
  return std::count_if(selected.begin(), selected.end(),
                       [](unsigned char flag) { return flag != 0; });
}

qint64 GridResult::getNEstimated() const
{
  return std::count_if(estimate.begin(), estimate.end(),
                       [](double value) { return NbbGlobal::isDefined(value); });
}

}  // namespace orvenal
