#include "app/study/GridSection.h"

#include "SvgParts.h"
#include "app/plot/MapPicture.h"
#include "app/plot/SectionsPicture.h"
#include "app/study/Compass.h"
#include "app/study/Samples.h"
#include "basic/base/NbbGlobal.h"

#include <gtest/gtest.h>

#include <cmath>

using namespace orvenal;
using apptest::SvgParts;

namespace {

NbgGeomGrid makeGrid(double azimuth)
{
  NbgGeomGrid grid;
  grid.setNodesNumber(6, 4, 9);
  grid.setCellSize(10., 20., 5.);
  grid.setOriginCentered({1000., 5000., -40.});
  grid.setRotation(Compass::gridFrame(azimuth));
  return grid;
}

/// A value that tells its node.
std::vector<double> nodeValues(const NbgGeomGrid &grid)
{
  std::vector<double> values;
  for (qint64 rank = 0; rank < grid.getGridSize(); ++rank) {
    const NbgIntVector3D node = grid.getCellIJKFromRank(rank);
    values.push_back(100. * node.x() + 10. * node.y() + node.z());
  }
  return values;
}

Samples samplesAt(const std::vector<NbgVector3D> &places)
{
  Samples samples;
  for (const NbgVector3D &place : places) {
    samples.x.push_back(place.x());
    samples.y.push_back(place.y());
    samples.z.push_back(place.z());
    samples.value.push_back(double(samples.x.size()));
  }
  return samples;
}

}  // namespace

TEST(GridSection, FindsTheLayerOfACoordinate)
{
  const NbgGeomGrid grid = makeGrid(0.);
  EXPECT_EQ(findLayer(grid, 0, 994.9), -1);
  EXPECT_EQ(findLayer(grid, 0, 995.), 0);
  EXPECT_EQ(findLayer(grid, 0, 1005.), 1);
  EXPECT_EQ(findLayer(grid, 1, 5070.), 3);
  EXPECT_EQ(findLayer(grid, 2, 2.5), 8);
  EXPECT_EQ(findLayer(grid, 2, 2.6), -1);
}

TEST(GridSection, SpreadsTheUsualOnesOverTheGrid)
{
  const QList<GridSection> sections = chooseSections(makeGrid(0.), {});
  ASSERT_EQ(sections.size(), 6);
  // Nodes 0 to 8 in four parts: the middles of 0-2.25, 2.25-4.5 ... are in nodes 1, 3, 5, 7.
  for (int i = 0; i < 4; ++i) {
    EXPECT_EQ(sections[i].axis, 2);
    EXPECT_EQ(sections[i].index, 2 * i + 1);
    EXPECT_EQ(sections[i].coordinate, -40. + 5. * (2 * i + 1));
    EXPECT_EQ(sections[i].distance, 2.5);
  }
  EXPECT_EQ(sections[4].axis, 1);
  EXPECT_EQ(sections[4].index, 2);
  EXPECT_EQ(sections[5].axis, 0);
  EXPECT_EQ(sections[5].coordinate, 1030.);
  NbgGeomGrid thin = makeGrid(0.);
  thin.setNodesNumber(6, 1, 2);
  // Those across a single row of nodes show nothing.
  ASSERT_EQ(chooseSections(thin, {}).size(), 1);
  EXPECT_EQ(chooseSections(thin, {})[0].axis, 1);
  thin.setNodesNumber(1, 1, 9);
  EXPECT_EQ(chooseSections(thin, {}).size(), 1);
  EXPECT_EQ(chooseSections(makeGrid(0.), {{0, 1012., 7.}, {2, -1., {}}})[0].index, 1);
}

TEST(GridSection, CutsTheNodesOfItsLayer)
{
  for (const double azimuth : {0., 30.}) {
    const NbgGeomGrid grid = makeGrid(azimuth);
    for (int axis = 0; axis < 3; ++axis) {
      GridSection section;
      section.axis = axis;
      section.index = 2;
      const NbgGeomGrid plane = planeOf(grid, section);
      const std::vector<double> values = sectionValues(grid, nodeValues(grid), section);
      ASSERT_EQ(qint64(values.size()), plane.getGridSize());
      const int digits[][2] = {{10, 1}, {100, 1}, {100, 10}};
      const int constant[] = {200, 20, 2};
      for (qint64 rank = 0; rank < plane.getGridSize(); ++rank) {
        const NbgIntVector3D node = plane.getCellIJKFromRank(rank);
        EXPECT_EQ(values[std::size_t(rank)],
                  constant[axis] + digits[axis][0] * node.x() + digits[axis][1] * node.y());
      }
      // A horizontal section keeps its place on the map, a vertical one is turned back.
      const NbgVector3D last = plane.getCellCenter(plane.getGridSize() - 1);
      const NbgVector3D corner = axis == 2 ? grid.getCellCenter(5, 3, 2) : NbgVector3D();
      const double x = axis == 0 ? 5060. : axis == 1 ? 1050. : corner.x();
      EXPECT_NEAR(last.x(), x, 1e-9);
      EXPECT_NEAR(last.y(), axis == 2 ? corner.y() : 0., 1e-9);
    }
  }
}

TEST(GridSection, KeepsTheSamplesNearIt)
{
  const NbgGeomGrid grid = makeGrid(30.);
  GridSection section = chooseSections(grid, {{0, 1020., {}}}).first();
  // In the frame of the grid: in the section, on its border, beside it, beyond the end.
  std::vector<NbgVector3D> places;
  for (const NbgVector3D &local : {NbgVector3D(20., 30., 7.), NbgVector3D(25., 0., 0.),
                                   NbgVector3D(26., 0., 0.), NbgVector3D(20., 71., 0.)})
    places.push_back(grid.getRotation().localToWorld(local) + grid.getOriginCentered());
  Samples samples = samplesAt(places);
  samples.value[1] = NbbGlobal::D_FFFF;
  Samples near = samplesNear(grid, samples, section);
  ASSERT_EQ(near.getCount(), 2);
  EXPECT_NEAR(near.x[0], 5030., 1e-9);
  EXPECT_NEAR(near.y[0], -33., 1e-9);
  EXPECT_EQ(near.nUndefined, 1);
  section.distance = 6.;
  EXPECT_EQ(samplesNear(grid, samples, section).getCount(), 3);

  section = chooseSections(grid, {{2, -33., {}}}).first();
  near = samplesNear(grid, samples, section);
  ASSERT_EQ(near.getCount(), 1);
  EXPECT_EQ(near.x[0], samples.x[0]);
  EXPECT_EQ(near.y[0], samples.y[0]);
}

TEST(SectionsPicture, SaysWhereEachSectionIs)
{
  const NbgGeomGrid grid = makeGrid(0.);
  MapStyle style;
  style.title = QStringLiteral("Title of it");
  style.subtitle = QStringLiteral("Ordinary kriging");
  style.valueLabel = QStringLiteral("lead [ppm]");
  style.lengthUnit = QStringLiteral("m");
  const Samples samples = samplesAt({{1020., 5000., -40.}, {1020., 5040., -20.}});
  const QList<GridSection> sections =
      chooseSections(grid, {{2, -20., {}}, {1, 5040., {}}, {0, 1020., {}}});
  const SvgParts svg(drawSections(grid, nodeValues(grid), sections, samples, style).toSvg());
  for (const char *text : {"Title of it", "Ordinary kriging.", "lead [ppm]", "z = -20 m",
                           "y = 5040 m", "x = 1020 m", "x [m]", "y [m]", "z [m]", "half a cell"})
    EXPECT_TRUE(svg.hasText(text)) << text;
  EXPECT_FALSE(svg.hasText("heights"));
  // One sample in the first two sections, both in the last one, each with its ring.
  const std::vector<SvgParts::Circle> circles = svg.circles();
  ASSERT_EQ(circles.size(), 8u);
  const QPointF between = circles[6].center - circles[4].center;
  EXPECT_NEAR(-between.y() / between.x(), 20. / 40., 1e-4);
}

TEST(SectionsPicture, ExaggeratesFlatSections)
{
  NbgGeomGrid grid = makeGrid(0.);
  grid.setCellSize(1000., 1000., 1.);
  grid.setRotation(Compass::gridFrame(20.));
  const Samples none = samplesAt({});
  const SvgParts svg(
      drawSections(grid, nodeValues(grid), chooseSections(grid, {{1, 5000., {}}}), none, MapStyle())
          .toSvg());
  const QStringList texts = svg.texts();
  const QString title = *std::find_if(texts.begin(), texts.end(),
                                      [](const QString &text) { return text.contains("heights"); });
  EXPECT_TRUE(title.startsWith("y along the grid = 5000, heights "));
  const double factor = title.section(' ', -1).toDouble();
  // 9 m high and 6000 m wide in 380 units: 110 units of height take at least 193 times.
  EXPECT_GE(factor, 193.);
  EXPECT_LE(factor, 400.);
}
