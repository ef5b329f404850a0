#include "basic/calc/NbcAlgorithm.h"

#include "basic/base/NbbGlobal.h"
#include "basic/unit/NbuUnitTransfo.h"

#include <algorithm>
#include <cmath>

namespace {

/// Applies `round` to a value scaled so that n + 1 digits stand before the decimal point. The power
/// of ten is a whole number, by which is divided or multiplied, so that the result is the double
/// nearest to the decimal number.
template <class Round>
double roundDigits(double value, int n, Round round)
{
  constexpr int largest = 300;
  const int exponent = int(std::floor(std::log10(std::fabs(value)))) - n;
  const double power = std::pow(10., std::min(std::abs(exponent), largest));
  if (exponent >= 0)
    return round(value / power) * power;
  // Below 1e-300 one power alone would overflow.
  const double rest = std::pow(10., std::max(0, -exponent - largest));
  return round(value * power * rest) / rest / power;
}

template <class Round>
double roundInDisplayUnits(double value, const NbuUnitTransfo &transfo, int n, Round round)
{
  if (!NbbGlobal::isDefined(value) || value == 0.)
    return value;
  const double display = transfo.transform(value);
  if (display == 0.)
    return value;
  const double rounded = transfo.invTransform(roundDigits(display, std::max(0, n), round));
  return rounded == 0. ? value : rounded;
}

}  // namespace

double NbcAlgorithm::roundValue(double value, const NbuUnitTransfo &displayTransfo, int n)
{
  return roundInDisplayUnits(value, displayTransfo, n, [](double v) { return std::round(v); });
}

double NbcAlgorithm::ceilValue(double value, const NbuUnitTransfo &displayTransfo, int n)
{
  // A value that has these digits already may come out of the scaling a rounding above itself.
  const auto ceil = [](double v) {
    const double nearest = std::round(v);
    return std::fabs(v - nearest) <= 4e-16 * std::fabs(v) ? nearest : std::ceil(v);
  };
  return roundInDisplayUnits(value, displayTransfo, n, ceil);
}

double NbcAlgorithm::combination(int n, int k)
{
  if (k < 0 || k > n)
    return 0.;
  k = std::min(k, n - k);
  double result = 1.;
  for (int i = 1; i <= k; ++i)
    result = result * double(n - k + i) / double(i);
  return result;
}

QVector<double> NbcAlgorithm::calculateQuantiles(const double *values, int n,
                                                 const QVector<double> &probabilities)
{
  std::vector<double> sorted;
  sorted.reserve(size_t(std::max(0, n)));
  std::copy_if(values, values + std::max(0, n), std::back_inserter(sorted),
               [](double value) { return NbbGlobal::isDefined(value); });
  std::sort(sorted.begin(), sorted.end());

  QVector<double> quantiles(probabilities.size(), NbbGlobal::D_FFFF);
  if (sorted.empty())
    return quantiles;
  for (int i = 0; i < probabilities.size(); ++i) {
    if (!NbbGlobal::isDefined(probabilities[i]))
      continue;
    const double position = double(sorted.size() - 1) * std::clamp(probabilities[i], 0., 1.);
    const size_t lower = size_t(position);
    const double lowerValue = sorted[lower];
    const double upperValue = sorted[std::min(lower + 1, sorted.size() - 1)];
    quantiles[i] = lowerValue + (position - double(lower)) * (upperValue - lowerValue);
  }
  return quantiles;
}
