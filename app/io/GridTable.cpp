#include "app/io/GridTable.h"

#include "basic/base/NbbGlobal.h"

#include <algorithm>

namespace orvenal {

double GridTable::getMinimum() const
{
  double minimum = NbbGlobal::D_FFFF;
  for (const Column &column : columns) {
    for (const double value : *column.values) {
      if (NbbGlobal::isDefined(value))
        minimum = std::min(minimum, value);
    }
  }
  return NbbGlobal::isDefined(minimum) ? minimum : 0.;
}

void GridTable::copyRow(const Column &column, int j, int k, std::vector<double> &row) const
{
  for (std::size_t i = 0; i < row.size(); ++i) {
    const qint64 rank = geometry.getRankFromIJK(int(i), j, k);
    row[i] = isSelected(rank) ? (*column.values)[std::size_t(rank)] : NbbGlobal::D_FFFF;
  }
}

}  // namespace orvenal
