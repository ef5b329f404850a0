#include "geos/stats/NgmVariogramCloudDensity.h"

#include "basic/base/NbbGlobal.h"
#include "basic/calc/NbcBoxPlot.h"
#include "basic/data/NbdDataGrid.h"
#include "basic/data/NbdVariableInt64.h"
#include "basic/error/NbeAssertion.h"

#include <QObject>

#include <algorithm>
#include <limits>
#include <numeric>

namespace {

/// The class of a coordinate in units of cells; -1 outside.
int cellOf(double position, int n)
{
  if (!(position >= 0.) || !(position <= n))
    return -1;
  return std::min(int(position), n - 1);
}

}  // namespace

NgmVariogramCloudDensity::NgmVariogramCloudDensity() = default;

void NgmVariogramCloudDensity::initializeCloudDensity(int nx, int ny, double xmin, double xmax,
                                                      double ymin, double ymax)
{
  const qint64 n = qint64(nx) * ny;
  if (nx < 1 || ny < 1 || n == NbbGlobal::I64_FFFF || n > std::numeric_limits<int>::max() ||
      !(xmin < xmax) || !(ymin < ymax))
    NBE_FAIL(QStringLiteral("invalid size"));
  _nx = nx;
  _ny = ny;
  _xmin = xmin;
  _ymin = ymin;
  _dx = (xmax - xmin) / nx;
  _dy = (ymax - ymin) / ny;
  _geometry = NbgGeomGrid();
  _geometry.setNodesNumber2D(nx, ny);
  _geometry.setCellSize(_dx, _dy, 1.);
  _geometry.setOriginCorner(NbgVector3D(xmin, ymin, 0.));
  _counts.assign(std::size_t(n), 0);
}

qint64 NgmVariogramCloudDensity::getNPairs() const
{
  return std::accumulate(_counts.begin(), _counts.end(), qint64(0));
}

void NgmVariogramCloudDensity::addPair(double distance, double value)
{
  const int i = cellOf((distance - _xmin) / _dx, _nx);
  const int j = cellOf((value - _ymin) / _dy, _ny);
  if (i >= 0 && j >= 0 && !_counts.empty())
    ++_counts[std::size_t(i) * _ny + j];
}

void NgmVariogramCloudDensity::sum(const NgmVariogramCloudDensity &other)
{
  if (other._nx != _nx || other._ny != _ny)
    NBE_FAIL(QStringLiteral("invalid size"));
  for (std::size_t cell = 0; cell < _counts.size(); ++cell)
    _counts[cell] += other._counts[cell];
}

QString NgmVariogramCloudDensity::getTitle() const
{
  return QObject::tr("Density image");
}

NbdDataGrid NgmVariogramCloudDensity::toGrid() const
{
  NbdDataGrid grid;
  grid.setGeometry(_geometry);
  grid.getDataTable().createVariableNumeric(Nbd::Role::DENSITY, NbdVariableDetails(getTitle()),
                                            Nbd::TYPE_INT64);
  grid.setResizedTo(int(_counts.size()));
  std::copy(_counts.begin(), _counts.end(),
            grid.getDataTable().getVarInt64Ref(Nbd::Role::DENSITY).getArray());
  return grid;
}

void NgmVariogramCloudDensity::toBoxPlots(int nGroups, QList<NbcBoxPlot> &plots) const
{
  if (nGroups < 1)
    NBE_FAIL(QStringLiteral("invalid size"));
  plots.clear();
  const int n = std::min(nGroups, _nx);
  for (int group = 0; group < n; ++group) {
    const NbcBoxPlot plot =
        _toBoxPlot(int(qint64(group) * _nx / n), int(qint64(group + 1) * _nx / n));
    if (plot.getCount() > 0)
      plots << plot;
  }
}

NbcBoxPlot NgmVariogramCloudDensity::_toBoxPlot(int firstColumn, int lastColumn) const
{
  std::vector<qint64> counts(_ny, 0);
  for (int i = firstColumn; i < lastColumn; ++i) {
    for (int j = 0; j < _ny; ++j)
      counts[j] += getCount(i, j);
  }
  NbcBoxPlot plot;
  const qint64 n = std::accumulate(counts.begin(), counts.end(), qint64(0));
  plot.setCount(n);
  plot.setPosition(_xmin + 0.5 * (firstColumn + lastColumn) * _dx,
                   (lastColumn - firstColumn) * _dx);
  if (n == 0)
    return plot;

  const auto centre = [this](int j) { return _ymin + (j + 0.5) * _dy; };
  // The smallest value that a part of all values does not exceed.
  const auto quantile = [&](double part) {
    double below = 0.;
    int j = 0;
    for (; j < _ny - 1; ++j) {
      below += double(counts[j]);
      if (below >= part * double(n))
        break;
    }
    return centre(j);
  };
  double sum = 0.;
  int first = -1;
  int last = -1;
  for (int j = 0; j < _ny; ++j) {
    sum += double(counts[j]) * centre(j);
    first = first < 0 && counts[j] > 0 ? j : first;
    last = counts[j] > 0 ? j : last;
  }
  plot.setQuartiles(quantile(0.25), quantile(0.5), quantile(0.75));
  plot.setExtremes(centre(first), centre(last));
  plot.setMean(sum / double(n));
  return plot;
}
