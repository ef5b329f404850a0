#include "app/plot/PlotStyle.h"

#include <gtest/gtest.h>

using namespace orvenal;

namespace {

/// The labels of the ticks of an axis with this range, 600 long.
QVector<QString> labelsOf(double lower, double upper, bool isLogarithmic = false)
{
  QCustomPlot plot;
  QCPAxis &axis = *plot.yAxis;
  axis.setScaleType(isLogarithmic ? QCPAxis::stLogarithmic : QCPAxis::stLinear);
  axis.setRange(lower, upper);
  if (isLogarithmic)
    setLogarithmicTicks(axis, 600., 45.);
  else
    setTicks(axis, 600., 45.);
  QVector<double> ticks;
  QVector<QString> labels;
  axis.ticker()->generate(axis.range(), QLocale::c(), axis.numberFormat().at(0),
                          axis.numberPrecision(), ticks, nullptr, &labels);
  return labels;
}

bool areDistinct(const QVector<QString> &labels)
{
  QStringList all = labels.toList();
  return all.size() > 1 && all.removeDuplicates() == 0;
}

}  // namespace

TEST(PlotStyle, WritesTicksThatTellPlacesApart)
{
  const double ranges[][2] = {{0., 1.},         {-500., -490.},  {4.49995e6, 4.50005e6},
                              {1e9, 1e9 + 50.}, {0., 4.5e8},     {1e-9, 7e-9},
                              {0.1, 0.1002},    {-1e-12, 2e-12}, {0., 1e7}};
  for (const auto &range : ranges) {
    const QVector<QString> labels = labelsOf(range[0], range[1]);
    EXPECT_TRUE(areDistinct(labels)) << range[0] << " " << range[1];
    for (const QString &label : labels)
      EXPECT_LE(label.size(), 11) << qPrintable(label);
  }
  // Coordinates are plain numbers; values as large are powers of ten.
  EXPECT_TRUE(labelsOf(4.49995e6, 4.50005e6).contains("4500000"));
  EXPECT_TRUE(labelsOf(0., 4.5e8).contains("2e+08"));
}

TEST(PlotStyle, WritesLogarithmicTicks)
{
  EXPECT_EQ(labelsOf(0.5, 70., true), QVector<QString>({"0.5", "1", "2", "5", "10", "20", "50"}));
  const QVector<QString> wide = labelsOf(0.5e-9, 2e9, true);
  EXPECT_TRUE(areDistinct(wide));
  EXPECT_LE(wide.size(), 14);
  EXPECT_TRUE(wide.contains(QString::fromUtf8("10⁻⁸")));
}

TEST(PlotStyle, CountsInWholeNumbers)
{
  for (const double most : {1., 3., 17., 999., 123456.}) {
    QCustomPlot plot;
    plot.yAxis->setRange(0., 1.06 * most);
    setCountTicks(*plot.yAxis);
    QVector<double> ticks;
    plot.yAxis->ticker()->generate(plot.yAxis->range(), QLocale::c(), 'f', 0, ticks, nullptr,
                                   nullptr);
    EXPECT_GE(ticks.size(), 2);
    EXPECT_LE(ticks.size(), 11);
    for (const double tick : ticks)
      EXPECT_EQ(tick, std::round(tick));
  }
}
