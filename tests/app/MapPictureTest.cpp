#include "app/plot/MapPicture.h"

#include "SvgParts.h"
#include "app/io/GeoTiffWriter.h"
#include "app/plot/MapRaster.h"
#include "app/study/Compass.h"
#include "app/study/Samples.h"
#include "basic/base/NbbGlobal.h"
#include "basic/geom/NbgGeomGrid.h"

#include <gtest/gtest.h>

#include <cmath>

using namespace orvenal;
using apptest::SvgParts;

namespace {

NbgGeomGrid makeGrid(int nx, int ny, double dx, double dy, double azimuth)
{
  NbgGeomGrid grid;
  grid.setNodesNumber2D(nx, ny);
  grid.setCellSize(dx, dy, 1.);
  grid.setOriginCentered({1000., 5000., 0.});
  grid.setRotation(Compass::gridFrame(azimuth));
  return grid;
}

/// Columns and rows, as a rectangle, of the pixels that pass.
template <class Predicate>
QRect boundsOf(const QImage &picture, Predicate passes)
{
  QRect bounds;
  for (int y = 0; y < picture.height(); ++y) {
    for (int x = 0; x < picture.width(); ++x) {
      if (passes(picture.pixelColor(x, y)))
        bounds |= QRect(x, y, 1, 1);
    }
  }
  return bounds;
}

}  // namespace

TEST(MapRaster, ShowsTheCellUnderEachOfItsOwn)
{
  for (const double azimuth : {0., 37.}) {
    const NbgGeomGrid grid = makeGrid(7, 5, 10., 20., azimuth);
    std::vector<double> values;
    for (int rank = 0; rank < 35; ++rank)
      values.push_back(rank == 8 ? NbbGlobal::D_FFFF : rank);
    const MapRaster raster = rasterize(grid, values, 1000);
    int nShown = 0;
    for (int row = 0; row < raster.nRows; ++row) {
      for (int column = 0; column < raster.nColumns; ++column) {
        const NbgVector3D local = grid.getUVW(
            {raster.xFirst + column * raster.xStep, raster.yFirst + row * raster.yStep, 0.});
        const double i = std::floor(local.x() / 10. + 0.5);
        const double j = std::floor(local.y() / 20. + 0.5);
        const bool inside = i >= 0 && i < 7 && j >= 0 && j < 5 && 5 * i + j != 8;
        const double shown = raster.at(column, row);
        ASSERT_EQ(inside, !std::isnan(shown));
        if (inside) {
          ASSERT_EQ(shown, 5 * i + j);
        }
        nShown += inside ? 1 : 0;
      }
    }
    EXPECT_GE(nShown, 34);
  }
}

TEST(MapRaster, BoundsItsSize)
{
  const NbgGeomGrid grid = makeGrid(300, 1, 10., 10., 0.);
  const MapRaster raster = rasterize(grid, std::vector<double>(300, 1.), 100);
  EXPECT_LE(raster.nColumns, 100);
  EXPECT_GE(raster.nRows, 2);
}

TEST(MapPicture, DrawsBothAxesAtOneScale)
{
  // A grid without samples, 1000 wide and 300 high, in one colour.
  const NbgGeomGrid grid = makeGrid(50, 30, 20., 10., 0.);
  const QImage picture =
      drawMap(grid, std::vector<double>(1500, 3.), Samples(), MapStyle()).toImage();
  const QColor middle("#22908b");  // of the scale
  const QRect cells = boundsOf(picture, [&](const QColor &color) {
    return std::abs(color.red() - middle.red()) < 6 &&
           std::abs(color.green() - middle.green()) < 6 &&
           std::abs(color.blue() - middle.blue()) < 6;
  });
  // The colour scale beside the map shows the same colour in a few rows of the same height.
  ASSERT_GT(cells.height(), 100);
  int right = cells.left();
  while (boundsOf(picture.copy(right, cells.top(), 1, cells.height()), [&](const QColor &color) {
           return std::abs(color.red() - middle.red()) < 6;
         }).height() > cells.height() / 2)
    ++right;
  EXPECT_NEAR(double(right - cells.left()) / cells.height(), 1000. / 300., 0.03);
}

TEST(MapPicture, GivesTheSamePixelsAgain)
{
  const NbgGeomGrid grid = makeGrid(20, 30, 10., 10., 25.);
  std::vector<double> values(600);
  for (std::size_t i = 0; i < values.size(); ++i)
    values[i] = i % 7 == 0 ? NbbGlobal::D_FFFF : std::sin(0.1 * double(i));
  Samples samples;
  samples.x = {1010., 1100., 1150.};
  samples.y = {5010., 5100., 5050.};
  samples.value = {0., 1., NbbGlobal::D_FFFF};
  MapStyle style;
  style.title = QStringLiteral(
      "A title of many words that does not fit on one line of the picture, "
      "so that it has to be broken");
  style.coloredSamples = true;
  const QByteArray first = drawMap(grid, values, samples, style).toPng();
  EXPECT_GT(first.size(), 5000);
  EXPECT_EQ(first, drawMap(grid, values, samples, style).toPng());
}

TEST(MapPicture, DrawsGridsWithoutAnyValue)
{
  const NbgGeomGrid grid = makeGrid(1, 1, 10., 10., 0.);
  MapStyle style;
  style.valueLabel = QStringLiteral("gold");
  const SvgParts empty(drawMap(grid, {NbbGlobal::D_FFFF}, Samples(), style).toSvg());
  EXPECT_TRUE(empty.hasText("No node has a value."));
  EXPECT_FALSE(empty.hasText("gold"));  // a scale of nothing
  // Samples have the scale for themselves then.
  Samples samples;
  samples.x = {1000.};
  samples.y = {5000.};
  samples.value = {40.};
  style.coloredSamples = true;
  const SvgParts svg(drawMap(grid, {NbbGlobal::D_FFFF}, samples, style).toSvg());
  EXPECT_TRUE(svg.hasText("Circles: 1 sample, filled by their value."));
  EXPECT_TRUE(svg.hasText("40"));
}

TEST(MapPicture, CountsSamplesBeyondItsScale)
{
  const NbgGeomGrid grid = makeGrid(2, 1, 10., 10., 0.);
  Samples samples;
  samples.x = {1000., 1010., 1005.};
  samples.y = {5000., 5000., 5000.};
  samples.value = {1., 7., NbbGlobal::D_FFFF};
  samples.nUndefined = 1;
  MapStyle style;
  style.coloredSamples = true;
  const SvgParts svg(drawMap(grid, {1., 6.}, samples, style).toSvg());
  EXPECT_TRUE(svg.hasText("Those beyond the scale (1) have the colour of its end."));
}

TEST(MapPicture, PrintsLettersInTheirSize)
{
  const NbgGeomGrid grid = makeGrid(5, 5, 10., 10., 0.);
  QImage png;
  ASSERT_TRUE(
      png.loadFromData(drawMap(grid, std::vector<double>(25, 1.), Samples(), MapStyle()).toPng()));
  const double inches = png.width() / (png.dotsPerMeterX() * 0.0254);
  EXPECT_GT(inches, 5.);
  EXPECT_LT(inches, 8.3);  // the width of a sheet
}

TEST(MapPicture, GivesLongAreasALongerPicture)
{
  const Picture square =
      drawMap(makeGrid(10, 10, 10., 10., 0.), std::vector<double>(100, 1.), Samples(), MapStyle());
  const Picture flat =
      drawMap(makeGrid(100, 1, 10., 10., 0.), std::vector<double>(100, 1.), Samples(), MapStyle());
  EXPECT_GT(flat.toImage().width(), 1.3 * square.toImage().width());
  EXPECT_LT(flat.toImage().height(), 0.5 * square.toImage().height());
}

TEST(GeoTiff, PlacesEveryPixelOnItsCell)
{
  for (const double azimuth : {0., 30., 250.}) {
    const NbgGeomGrid grid = makeGrid(4, 6, 10., 25., azimuth);
    const std::array<double, 6> t = rasterTransform(grid);
    for (int i = 0; i < 4; ++i) {
      for (int j = 0; j < 6; ++j) {
        const double column = i + 0.5;
        const double row = 6 - 1 - j + 0.5;
        const NbgVector3D center = grid.getCellCenter(i, j, 0);
        // Coordinates of some thousands: a few ulps.
        EXPECT_NEAR(t[0] + t[1] * column + t[2] * row, center.x(), 1e-11);
        EXPECT_NEAR(t[3] + t[4] * column + t[5] * row, center.y(), 1e-11);
      }
    }
  }
  const std::array<double, 6> northUp = rasterTransform(makeGrid(4, 6, 10., 25., 0.));
  EXPECT_EQ(northUp, (std::array<double, 6>{995., 10., 0., 5137.5, 0., -25.}));
}
