#include "stats/private/NgcColumns.h"

#include "basic/base/NbbGlobal.h"
#include "basic/data/NbdAVariableNumeric.h"

#include <limits>

std::vector<double> NgcColumns::read(const NbdAVariableNumeric &variable)
{
  std::vector<double> values(variable.getNValues());
  variable.getValuesAsDouble(0, int(values.size()), values.data());
  for (double &value : values) {
    if (!NbbGlobal::isDefined(value))
      value = std::numeric_limits<double>::quiet_NaN();
  }
  return values;
}
