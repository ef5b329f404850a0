#include "app/study/Histogram.h"

#include "basic/base/NbbGlobal.h"
#include "basic/calc/NbcAlgorithm.h"

#include <algorithm>
#include <cmath>
#include <iterator>
#include <numeric>

namespace orvenal {

namespace {

constexpr double mostClasses = 100.;

/// 1, 2, 2.5 or 5 times a power of ten that is not below a positive value.
double roundedUp(double value)
{
  constexpr double tolerance = 1. - 1e-9;
  const double power = std::pow(10., std::floor(std::log10(value)));
  for (const double factor : {1., 2., 2.5, 5.}) {
    if (factor * power >= value * tolerance)
      return factor * power;
  }
  return 10. * power;
}

double widthOf(const std::vector<double> &sorted)
{
  const QVector<double> quartiles =
      NbcAlgorithm::calculateQuantiles(sorted.data(), int(sorted.size()), {0.25, 0.75});
  const double middle = quartiles[1] - quartiles[0];
  const double n = double(sorted.size());
  if (middle > 0.)
    return std::max(2. * middle / std::cbrt(n), middle / 16.);
  return (sorted.back() - sorted.front()) / (1. + std::log2(n));
}

/// The step of which all values are multiples, away from the least one; 0 when it is too fine to
/// matter.
double stepOf(const std::vector<double> &sorted)
{
  constexpr double mostSteps = 60.;
  constexpr double tolerance = 1e-6;
  const double spread = sorted.back() - sorted.front();
  double step = spread;
  for (std::size_t i = 1; i < sorted.size(); ++i) {
    const double gap = sorted[i] - sorted[i - 1];
    if (gap > 0.)
      step = std::min(step, gap);
  }
  if (spread > mostSteps * step)
    return 0.;
  const bool areMultiples = std::all_of(sorted.begin(), sorted.end(), [&](double value) {
    const double multiple = (value - sorted.front()) / step;
    return std::abs(multiple - std::round(multiple)) < tolerance;
  });
  return areMultiples ? step : 0.;
}

Histogram singleClass(double value, qint64 count)
{
  Histogram histogram;
  histogram.width = value == 0. ? 1. : roundedUp(0.05 * std::abs(value));
  histogram.first = value - 0.5 * histogram.width;
  histogram.counts = {count};
  return histogram;
}

void setClasses(const std::vector<double> &sorted, Histogram &histogram)
{
  const double wanted = widthOf(sorted);
  const double step = stepOf(sorted);
  if (wanted < 1.5 * step) {
    histogram.width = step;
    histogram.first = sorted.front() - 0.5 * step;
    return;
  }
  histogram.width = roundedUp(wanted);
  histogram.first = std::floor(sorted.front() / histogram.width) * histogram.width;
}

/// Moves the first class and returns how many there are, such that they lie around the median.
int limitClasses(const std::vector<double> &sorted, Histogram &histogram)
{
  const double width = histogram.width;
  const double n = std::max(1., std::ceil((sorted.back() - histogram.first) / width));
  if (n <= mostClasses)
    return int(n);
  const double left = std::floor((sorted[sorted.size() / 2] - histogram.first) / width);
  const double dropped = std::clamp(left - mostClasses / 2., 0., n - mostClasses);
  histogram.first = histogram.first + dropped * width;
  return int(mostClasses);
}

}  // namespace

qint64 Histogram::getTotal() const
{
  return std::accumulate(counts.begin(), counts.end(), nBelow + nAbove);
}

std::vector<double> sortedValues(const std::vector<double> &values)
{
  std::vector<double> sorted;
  sorted.reserve(values.size());
  std::copy_if(values.begin(), values.end(), std::back_inserter(sorted),
               [](double value) { return NbbGlobal::isDefined(value); });
  std::sort(sorted.begin(), sorted.end());
  return sorted;
}

Histogram makeHistogram(const std::vector<double> &values)
{
  const std::vector<double> sorted = sortedValues(values);
  if (sorted.empty())
    return Histogram();
  // Values that differ by rounding are one.
  constexpr double rounding = 1e-12;
  if (sorted.back() - sorted.front() <=
      rounding * std::max(std::abs(sorted.front()), std::abs(sorted.back())))
    return singleClass(sorted.front(), qint64(sorted.size()));

  Histogram histogram;
  setClasses(sorted, histogram);
  const int n = limitClasses(sorted, histogram);
  histogram.counts.assign(std::size_t(n), 0);
  for (const double value : sorted) {
    const double place = std::floor((value - histogram.first) / histogram.width);
    if (place < 0.)
      ++histogram.nBelow;
    else if (place < n)
      ++histogram.counts[std::size_t(place)];
    else if (value <= histogram.getUpper())
      ++histogram.counts.back();
    else
      ++histogram.nAbove;
  }
  return histogram;
}

double plottingPosition(qint64 rank, qint64 n)
{
  return (double(rank) - 0.375) / (double(n) + 0.25);
}

}  // namespace orvenal
