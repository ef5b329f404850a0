#include "app/study/Histogram.h"

#include "SvgParts.h"
#include "app/plot/HistogramPicture.h"
#include "basic/base/NbbGlobal.h"
#include "basic/calc/NbcStatMono.h"
#include "support/Random.h"

#include <gmock/gmock.h>

#include <cmath>

using namespace orvenal;
using apptest::SvgParts;
using testing::ElementsAre;

namespace {

std::vector<double> gaussianValues(int n)
{
  std::vector<double> values;
  for (int i = 0; i < n; ++i)
    values.push_back(10. + 2. * testsupport::normal(20250714, std::uint64_t(i)));
  return values;
}

/// Counted by looking at every class for every value.
void expectCounts(const Histogram &histogram, const std::vector<double> &values)
{
  const int n = int(histogram.counts.size());
  qint64 total = histogram.nBelow + histogram.nAbove;
  for (int i = 0; i < n; ++i) {
    const qint64 count = std::count_if(values.begin(), values.end(), [&](double value) {
      return value >= histogram.getLower(i) && (value < histogram.getLower(i + 1) ||
                                                (i + 1 == n && value == histogram.getLower(i + 1)));
    });
    EXPECT_EQ(histogram.counts[std::size_t(i)], count) << "class " << i;
    total += count;
  }
  EXPECT_EQ(total, qint64(values.size()));
  EXPECT_EQ(histogram.getTotal(), qint64(values.size()));
}

NbcStatMono statisticsOf(const std::vector<double> &values)
{
  NbcStatMono statistics;
  double sum = 0.;
  for (const double value : values)
    sum += value;
  statistics.setNTotal(qint64(values.size()) + 3);
  statistics.setNDefined(qint64(values.size()));
  statistics.setMean(sum / double(values.size()));
  statistics.setMinimum(*std::min_element(values.begin(), values.end()));
  statistics.setMaximum(*std::max_element(values.begin(), values.end()));
  statistics.setVariance(4.25);
  statistics.setSkewness(0.125);
  return statistics;
}

}  // namespace

TEST(Histogram, CountsEveryValueOnce)
{
  for (const int n : {2, 10, 155, 5000}) {
    const std::vector<double> values = gaussianValues(n);
    const Histogram histogram = makeHistogram(values);
    EXPECT_EQ(histogram.nBelow + histogram.nAbove, 0);
    expectCounts(histogram, values);
    EXPECT_GT(histogram.counts.front(), 0);
    EXPECT_GT(histogram.counts.back(), 0);
  }
}

TEST(Histogram, HasTheWidthOfFreedmanAndDiaconis)
{
  // 1000 values from 0 to 999: quartiles 249.75 and 749.25, 2 * 499.5 / 10 = 99.9, rounded up.
  std::vector<double> values;
  for (int i = 0; i < 1000; ++i)
    values.push_back(i);
  const Histogram histogram = makeHistogram(values);
  EXPECT_EQ(histogram.width, 100.);
  EXPECT_EQ(histogram.first, 0.);
  EXPECT_THAT(histogram.counts, testing::Each(100));
  EXPECT_EQ(histogram.counts.size(), 10u);
}

TEST(Histogram, FallsBackToSturgesWhenTheQuartilesAreEqual)
{
  // 57 zeros and 1 .. 7: range 7 over 1 + log2(64) is 1, a step of the values.
  std::vector<double> values(57, 0.);
  for (int i = 1; i <= 7; ++i)
    values.push_back(i);
  EXPECT_THAT(makeHistogram(values).counts, ElementsAre(57, 1, 1, 1, 1, 1, 1, 1));
}

TEST(Histogram, GivesEachStepItsClassWhereTheyAreAsWide)
{
  std::vector<double> grades;
  for (int i = 0; i < 120; ++i)
    grades.push_back(1. + i % 6);
  const Histogram histogram = makeHistogram(grades);
  EXPECT_EQ(histogram.first, 0.5);
  EXPECT_THAT(histogram.counts, ElementsAre(20, 20, 20, 20, 20, 20));
}

TEST(Histogram, HasOneClassForAConstant)
{
  for (const double value : {5., 0., -1e6, 1e-9}) {
    const Histogram histogram = makeHistogram({value, value, NbbGlobal::D_FFFF, value});
    EXPECT_THAT(histogram.counts, ElementsAre(3));
    EXPECT_LT(histogram.first, value);
    EXPECT_GT(histogram.getUpper(), value);
  }
  EXPECT_THAT(makeHistogram({1e6, std::nextafter(1e6, 2e6)}).counts, ElementsAre(2));
  EXPECT_TRUE(makeHistogram({NbbGlobal::D_FFFF}).counts.empty());
}

TEST(Histogram, CountsLongTailsBesideItsClasses)
{
  std::vector<double> values = gaussianValues(3000);
  for (double &value : values)
    value = std::exp(value - 10.);
  values.push_back(1e9);
  for (const double sign : {1., -1.}) {
    for (double &value : values)
      value *= sign;
    const Histogram histogram = makeHistogram(values);
    EXPECT_EQ(histogram.counts.size(), 100u);
    expectCounts(histogram, values);
    EXPECT_GT(sign > 0. ? histogram.nAbove : histogram.nBelow, 0);
    EXPECT_EQ(sign > 0. ? histogram.nBelow : histogram.nAbove, 0);
    // The bulk is seen: more than nine tenths, in more than a few classes.
    EXPECT_LT(histogram.nAbove + histogram.nBelow, 300);
    EXPECT_LT(*std::max_element(histogram.counts.begin(), histogram.counts.end()), 1500);
  }
}

TEST(Histogram, PlotsRanksAtTheirProbabilities)
{
  EXPECT_EQ(plottingPosition(1, 1), 0.5);
  EXPECT_EQ(plottingPosition(3, 5), 0.5);
  EXPECT_DOUBLE_EQ(plottingPosition(1, 10), 0.625 / 10.25);
  EXPECT_DOUBLE_EQ(plottingPosition(1, 10) + plottingPosition(10, 10), 1.);
}

TEST(HistogramPicture, DrawsBarsInProportionAndGaussianQuantiles)
{
  // Gaussian quantiles of 11 plotting positions, by the error function: the points lie on a line.
  std::vector<double> values;
  for (int i = 1; i <= 11; ++i) {
    double low = -9., high = 9.;
    for (int step = 0; step < 60; ++step) {
      const double middle = 0.5 * (low + high);
      (0.5 * std::erfc(-middle / std::sqrt(2.)) < (i - 0.375) / 11.25 ? low : high) = middle;
    }
    values.push_back(100. + 7. * low);
  }
  const SvgParts svg(
      drawHistogram(values, statisticsOf(values), "Title of it", "lead [ppm]").toSvg());
  const Histogram histogram = makeHistogram(values);
  std::vector<QRectF> bars = svg.shapes("#56b4e9");
  ASSERT_EQ(bars.size(), histogram.counts.size());
  for (std::size_t i = 0; i < bars.size(); ++i)
    EXPECT_NEAR(bars[i].height() / bars[0].height(),
                double(histogram.counts[i]) / double(histogram.counts[0]), 1e-3);

  std::vector<SvgParts::Circle> points = svg.circles();
  ASSERT_EQ(points.size(), values.size());
  const QPointF first = points.front().center;
  const QPointF last = points.back().center;
  for (std::size_t i = 0; i < points.size(); ++i) {
    const QPointF point = points[i].center;
    const double along = (point.x() - first.x()) / (last.x() - first.x());
    // Six digits of the coordinates are written.
    EXPECT_NEAR(point.y(), first.y() + along * (last.y() - first.y()), 0.01);
    EXPECT_NEAR(along, (values[i] - values.front()) / (values.back() - values.front()), 1e-4);
  }
}

TEST(HistogramPicture, NamesItsAxesAndStatistics)
{
  std::vector<double> values = gaussianValues(155);
  const SvgParts svg(
      drawHistogram(values, statisticsOf(values), "Title of it", "lead [ppm]").toSvg());
  for (const char *text : {"Title of it", "lead [ppm]", "Samples", "Probability [%]", "155",
                           "Undefined: 3", "std. dev.", "lower quartile", "skewness", "0.125"})
    EXPECT_TRUE(svg.hasText(text)) << text;
  values.assign(10, 3.5);
  const SvgParts constant(drawHistogram(values, statisticsOf(values), "t", "v").toSvg());
  EXPECT_EQ(constant.shapes("#56b4e9").size(), 1u);
  EXPECT_FALSE(constant.hasText("0.125"));  // a constant has no skewness
}
