#include "app/plot/MapLayers.h"

#include "app/plot/MapRaster.h"
#include "app/study/Samples.h"
#include "basic/base/NbbGlobal.h"

namespace orvenal {

void addRaster(QCPAxisRect &area, const MapRaster &raster, const QCPColorGradient &gradient,
               const ColorRange &range)
{
  auto *map = new QCPColorMap(area.axis(QCPAxis::atBottom), area.axis(QCPAxis::atLeft));
  map->data()->setSize(raster.nColumns, raster.nRows);
  map->data()->setRange(
      QCPRange(raster.xFirst, raster.xFirst + (raster.nColumns - 1) * raster.xStep),
      QCPRange(raster.yFirst, raster.yFirst + (raster.nRows - 1) * raster.yStep));
  for (int row = 0; row < raster.nRows; ++row) {
    for (int column = 0; column < raster.nColumns; ++column)
      map->data()->setCell(column, row, raster.at(column, row));
  }
  map->setInterpolate(false);
  map->setTightBoundary(false);
  map->setGradient(gradient);
  map->setDataScaleType(range.isLogarithmic ? QCPAxis::stLogarithmic : QCPAxis::stLinear);
  map->setDataRange(range.range);
}

std::vector<SampleMark> marksOf(const Samples &samples, const QCPColorGradient *gradient,
                                const ColorRange &range)
{
  std::vector<SampleMark> marks(samples.x.size());
  for (std::size_t i = 0; i < marks.size(); ++i) {
    const bool isDefined = NbbGlobal::isDefined(samples.value[i]);
    marks[i].x = samples.x[i];
    marks[i].y = samples.y[i];
    marks[i].shape = isDefined ? SampleMark::CIRCLE : SampleMark::CROSS;
    marks[i].fill =
        gradient && isDefined ? colorOf(*gradient, range, samples.value[i]) : QColor(Qt::white);
  }
  return marks;
}

}  // namespace orvenal
