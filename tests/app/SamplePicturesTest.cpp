#include "app/plot/SampleMapPicture.h"

#include "SvgParts.h"
#include "app/plot/ColorScales.h"
#include "app/study/Compass.h"
#include "app/study/Samples.h"
#include "basic/base/NbbGlobal.h"
#include "basic/geom/NbgGeomGrid.h"
#include "support/Random.h"

#include <gtest/gtest.h>

#include <cmath>
#include <set>

using namespace orvenal;
using apptest::SvgParts;

namespace {

Samples someSamples()
{
  Samples samples;
  samples.x = {-1000., -700., -1000., -850.};
  samples.y = {2000., 2000., 2120., 2050.};
  samples.value = {1., 2., 3., NbbGlobal::D_FFFF};
  samples.nUndefined = 1;
  return samples;
}

/// Circles of one size: each mark has a white ring of another one.
std::vector<SvgParts::Circle> marksOf(const SvgParts &svg)
{
  std::vector<SvgParts::Circle> marks;
  for (const SvgParts::Circle &circle : svg.circles()) {
    if (circle.radius == 4.5)
      marks.push_back(circle);
  }
  return marks;
}

SampleMapStyle someStyle()
{
  SampleMapStyle style;
  style.title = QStringLiteral("Title of it");
  style.valueLabel = QStringLiteral("lead [ppm]");
  style.lengthUnit = QStringLiteral("km");
  return style;
}

}  // namespace

TEST(ColorRange, LeavesExtremeValuesOut)
{
  std::vector<double> values;
  for (int i = 0; i <= 1000; ++i)
    values.push_back(i);
  EXPECT_FALSE(colorRangeOf(values).isCut);
  EXPECT_EQ(colorRangeOf(values).range, QCPRange(0., 1000.));
  values.back() = 1e6;
  const ColorRange cut = colorRangeOf(values);
  EXPECT_TRUE(cut.isCut);
  EXPECT_EQ(cut.range, QCPRange(0., 990.));  // 0 is near the quantile of 1 %
  EXPECT_FALSE(colorRangeOf({1., 2., 3., 1e9}).isCut);
  EXPECT_TRUE(colorRangeOf({7., 7., NbbGlobal::D_FFFF}).range.contains(7.));
  EXPECT_TRUE(colorRangeOf({NbbGlobal::D_FFFF}).isEmpty);
}

TEST(ColorRange, DoesNotColourRounding)
{
  const double next = std::nextafter(3.5, 4.);
  const ColorRange range = colorRangeOf({3.5, next, 3.5, next});
  EXPECT_GT(range.range.size(), 1.);
  EXPECT_LT(range.range.lower, 3.);
  const ColorRange high = colorRangeOf({1e6, 1e6 + 1.});
  EXPECT_EQ(high.range, QCPRange(1e6, 1e6 + 1.));
}

TEST(ColorRange, IsLogarithmicForSkewedValues)
{
  std::vector<double> values;
  for (int i = 0; i <= 100; ++i)
    values.push_back(std::pow(10., 0.04 * i - 1.));
  const ColorRange range = colorRangeOf(values);
  EXPECT_TRUE(range.isLogarithmic);
  EXPECT_NEAR(range.range.lower, 0.1, 1e-12);
  EXPECT_NEAR(range.range.upper, 1000., 1e-9);
  // The median of 10 has the middle colour; a value that has no logarithm that of the end.
  const QCPColorGradient gradient = gradientOf(ColorScale::DIVERGING);
  EXPECT_GT(colorOf(gradient, range, 10.).lightness(), 240);
  EXPECT_EQ(colorOf(gradient, range, -10.), QColor("#2d004b"));
  values.push_back(0.);
  EXPECT_FALSE(colorRangeOf(values).isLogarithmic);
  Samples samples = someSamples();
  samples.x.clear();
  samples.y.clear();
  values.back() = 2.;
  for (std::size_t i = 0; i < values.size(); ++i) {
    samples.x.push_back(double(i));
    samples.y.push_back(double(i % 10) * 8.);
  }
  samples.value = values;
  samples.nUndefined = 0;
  const SvgParts svg(drawSampleMap(samples, someStyle()).toSvg());
  EXPECT_TRUE(svg.hasText("The scale of colours is logarithmic."));
  for (const char *label : {"0.2", "1", "10", "100", "500"})
    EXPECT_TRUE(svg.texts().contains(label)) << label;
}

TEST(SampleMapPicture, PlacesSamplesAtOneScale)
{
  const Samples samples = someSamples();
  const SvgParts svg(drawSampleMap(samples, someStyle()).toSvg());
  for (const char *text : {"Title of it", "lead [ppm]", "x [km]", "y [km]", "Samples: 4.",
                           "Open circles: 1 without a value."})
    EXPECT_TRUE(svg.hasText(text)) << text;
  const std::vector<SvgParts::Circle> marks = marksOf(svg);
  ASSERT_EQ(marks.size(), 4u);
  // Undefined ones come first, below the others.
  EXPECT_EQ(marks[0].fill, "none");
  EXPECT_EQ(marks[1].fill, "#440154");
  EXPECT_EQ(marks[3].fill, "#fde725");
  const double right = marks[2].center.x() - marks[1].center.x();
  const double up = marks[1].center.y() - marks[3].center.y();
  EXPECT_GT(right, 300.);
  EXPECT_NEAR(up / right, 120. / 300., 1e-5);
  EXPECT_NEAR(marks[0].center.x(), 0.5 * (marks[1].center.x() + marks[2].center.x()), 1e-2);
}

TEST(SampleMapPicture, ShowsThreeViewsOfSpace)
{
  Samples samples = someSamples();
  samples.z = {0., 60., 20., 40.};
  NbgGeomGrid grid;
  grid.setNodesNumber(3, 3, 3);
  grid.setCellSize({100., 40., 20.});
  grid.setOriginCentered({-950., 2020., 10.});
  SampleMapStyle style = someStyle();
  style.grid = &grid;
  const SvgParts svg(drawSampleMap(samples, style).toSvg());
  for (const char *text : {"Seen from above", "Seen from the south", "Seen from the east", "z [km]",
                           "Dashed: the grid."})
    EXPECT_TRUE(svg.hasText(text)) << text;
  const std::vector<SvgParts::Circle> marks = marksOf(svg);
  ASSERT_EQ(marks.size(), 12u);
  const QPointF plan = marks[2].center - marks[1].center;
  const QPointF south = marks[6].center - marks[5].center;
  EXPECT_NEAR(plan.x(), south.x(), 1e-2);
  // Heights of 60 beside lengths of 300 are exaggerated twice.
  EXPECT_TRUE(svg.hasText(QString("Seen from the south, heights ") + QChar(0xD7) + " 2"));
  EXPECT_NEAR(-south.y() / south.x(), 2. * 60. / 300., 1e-4);
  // East of the plan is north of the view from the east.
  EXPECT_NEAR(marks[11].center.x() - marks[9].center.x(), marks[1].center.y() - marks[3].center.y(),
              1e-2);
}

TEST(SampleMapPicture, DrawsAnyNumberOfSamplesAnywhere)
{
  const auto uniform = [](std::uint64_t stream, int i) {
    return testsupport::uniform(20250715 + stream, std::uint64_t(i));
  };
  for (const int n : {1, 2, 20000}) {
    for (const double size : {0., 1e-3, 1e7}) {
      Samples samples;
      for (int i = 0; i < n; ++i) {
        samples.x.push_back(5e6 + size * uniform(1, i));
        samples.y.push_back(-1e6 + 0.01 * size * uniform(2, i));
        samples.value.push_back(n == 2 ? 4. : uniform(3, i));
      }
      const QImage picture = drawSampleMap(samples, someStyle()).toImage();
      EXPECT_GT(picture.width(), 800);
      EXPECT_LT(picture.width(), 2500);
      EXPECT_LT(picture.height(), 2000);
      std::set<QRgb> colors;
      for (int y = 100; y < picture.height(); y += 3) {
        for (int x = 0; x < picture.width() / 2; x += 3)
          colors.insert(picture.pixel(x, y));
      }
      EXPECT_GT(colors.size(), 20u);
    }
  }
}

TEST(ErrorMap, MarksLargeErrorsByTheirSign)
{
  Samples samples = someSamples();
  samples.value[3] = 5.;
  const SvgParts svg(drawErrorMap(samples, {0., 2.6, -7., NbbGlobal::D_FFFF}, someStyle()).toSvg());
  EXPECT_TRUE(svg.hasText("Standardized errors; samples: 3."));
  EXPECT_TRUE(
      SvgParts(
          drawErrorMap(samples, std::vector<double>(4, NbbGlobal::D_FFFF), someStyle()).toSvg())
          .hasText("No sample could be estimated"));
  EXPECT_TRUE(svg.hasText("Triangles: 2 beyond 2.5"));
  const std::vector<SvgParts::Circle> circles = marksOf(svg);
  ASSERT_EQ(circles.size(), 1u);
  const QColor middle(circles[0].fill);  // of the scale: nearly white
  EXPECT_GT(middle.lightness(), 240);
  EXPECT_LT(middle.saturation(), 10);
  EXPECT_EQ(svg.shapes("#7f3b08").size(), 1u);
  const std::vector<QRectF> below = svg.shapes("#2d004b");
  ASSERT_EQ(below.size(), 1u);
  // Sample 3 lies straight above sample 1.
  EXPECT_NEAR(below[0].center().x(), circles[0].center.x(), 0.01);
}
