#include "app/study/GridLayout.h"

#include "app/base/UsageError.h"
#include "app/io/TableReader.h"
#include "app/study/Job.h"
#include "basic/base/NbbGlobal.h"

#include <QObject>

#include <algorithm>
#include <cmath>

namespace orvenal {

namespace {

/// A multiple of a cell without the noise of its last digits.
double multiple(double count, double cell)
{
  return QString::number(count * cell, 'g', 12).toDouble();
}

/// The greatest of 1, 2 and 5 times a power of ten that is not above the value.
double roundBelow(double value)
{
  const double power = std::pow(10., std::floor(std::log10(value)));
  const double lead = value / power * (1. + 1e-9);
  return (lead >= 5. ? 5. : lead >= 2. ? 2. : 1.) * power;
}

void extend(const std::vector<double> &place, Extent &extent)
{
  if (extent.lower.empty()) {
    extent.lower = place;
    extent.upper = place;
  }
  for (std::size_t axis = 0; axis < place.size(); ++axis) {
    extent.lower[axis] = std::min(extent.lower[axis], place[axis]);
    extent.upper[axis] = std::max(extent.upper[axis], place[axis]);
  }
}

}  // namespace

Extent readExtent(const JobTable &table)
{
  const auto reader = TableReader::open(table.file, table.shown, table.format);
  std::vector<int> columns = {reader->findColumn(table.x, table.path + ".x"),
                              reader->findColumn(table.y, table.path + ".y")};
  if (!table.z.isEmpty())
    columns.push_back(reader->findColumn(table.z, table.path + ".z"));
  Extent extent;
  std::vector<double> place(columns.size());
  while (reader->next()) {
    std::transform(columns.begin(), columns.end(), place.begin(),
                   [&](int column) { return reader->getNumber(column); });
    if (std::all_of(place.begin(), place.end(),
                    [](double value) { return NbbGlobal::isDefined(value); }))
      extend(place, extent);
  }
  if (extent.lower.empty())
    throw NbeUserError(QObject::tr("%1: no rows below the header").arg(table.shown));
  return extent;
}

GridLayout layGrid(const Extent &extent, const std::vector<double> &cell)
{
  constexpr double mostNodes = 1 << 24;
  GridLayout layout;
  layout.cell = cell;
  for (std::size_t axis = 0; axis < cell.size(); ++axis) {
    if (!(cell[axis] > 0.))
      throw UsageError(QObject::tr("the size of a cell must be greater than 0"));
    const double first = std::floor(extent.lower[axis] / cell[axis]);
    const double last = std::ceil(extent.upper[axis] / cell[axis]);
    if (!(last - first < mostNodes))
      throw UsageError(QObject::tr("cells of %1 give too many nodes over samples from %2 to %3")
                           .arg(cell[axis])
                           .arg(extent.lower[axis])
                           .arg(extent.upper[axis]));
    layout.origin.push_back(multiple(first, cell[axis]));
    layout.nodes.push_back(last - first + 1.);
  }
  return layout;
}

std::vector<double> roundCell(const Extent &extent, int nAlongLongest)
{
  const auto length = [&](std::size_t axis) { return extent.upper[axis] - extent.lower[axis]; };
  const double longest = std::max(length(0), length(1));
  const double horizontal = longest > 0. ? roundBelow(longest / nAlongLongest) : 1.;
  std::vector<double> cell = {horizontal, horizontal};
  if (extent.lower.size() > 2)
    cell.push_back(length(2) > 0. ? roundBelow(length(2) / (0.2 * nAlongLongest)) : 1.);
  return cell;
}

}  // namespace orvenal
