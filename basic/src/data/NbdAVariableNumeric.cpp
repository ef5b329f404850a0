#include "basic/data/NbdAVariableNumeric.h"

#include "basic/base/NbbGlobal.h"
#include "basic/calc/NbcStatBasic.h"
#include "basic/error/NbeAssertion.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>

namespace {

constexpr int BLOCK = 1024;
using Block = std::array<double, BLOCK>;

/// Sum with a running correction of what rounding lost (Neumaier, 1974).
class ExactSum
{
public:
  void add(double value)
  {
    const double total = _sum + value;
    const bool isSmaller = std::fabs(_sum) < std::fabs(value);
    _correction += isSmaller ? (value - total) + _sum : (_sum - total) + value;
    _sum = total;
  }
  double get() const { return _sum + _correction; }

private:
  double _sum = 0.;
  double _correction = 0.;
};

/// Calls work(position, value) for each defined value.
template <class Work>
void forEachDefined(const NbdAVariableNumeric &variable, Work work)
{
  Block values;
  const int n = variable.getNValues();
  for (int first = 0; first < n; first += std::min(BLOCK, n - first)) {
    const int count = std::min(BLOCK, n - first);
    variable.getValuesAsDouble(first, count, values.data());
    for (int i = 0; i < count; ++i) {
      if (NbbGlobal::isDefined(values[i]))
        work(first + i, values[i]);
    }
  }
}

struct Extremes
{
  double minimum = NbbGlobal::D_FFFF;
  double maximum = NbbGlobal::D_FFFF;
  int minimumRank = -1;
  int maximumRank = -1;

  void add(int position, double value)
  {
    if (minimumRank < 0 || value < minimum) {
      minimum = value;
      minimumRank = position;
    }
    if (maximumRank < 0 || value > maximum) {
      maximum = value;
      maximumRank = position;
    }
  }
};

Extremes findExtremes(const NbdAVariableNumeric &variable)
{
  Extremes extremes;
  forEachDefined(variable, [&extremes](int i, double value) { extremes.add(i, value); });
  return extremes;
}

/// Sums over the defined values, each with its weight.
struct Moments
{
  qint64 nDefined = 0;  ///< with a positive weight
  double weight = 0.;
  double mean = NbbGlobal::D_FFFF;
  double variance = NbbGlobal::D_FFFF;
};

/// `weightOf(position)` gives the weight of a value; those not above 0 do not count. Two passes:
/// the variance is computed about the mean, less the square of what rounding left in the mean
/// (Chan, Golub and LeVeque, 1983).
template <class WeightOf>
Moments computeMoments(const NbdAVariableNumeric &variable, WeightOf weightOf)
{
  Moments moments;
  ExactSum weights, products;
  forEachDefined(variable, [&](int i, double value) {
    const double weight = weightOf(i);
    if (weight > 0.) {
      ++moments.nDefined;
      weights.add(weight);
      products.add(weight * value);
    }
  });
  if (moments.nDefined == 0)
    return moments;
  moments.weight = weights.get();
  moments.mean = products.get() / moments.weight;

  ExactSum deviations, squares;
  forEachDefined(variable, [&](int i, double value) {
    const double weight = weightOf(i);
    if (weight > 0.) {
      const double deviation = value - moments.mean;
      deviations.add(weight * deviation);
      squares.add(weight * deviation * deviation);
    }
  });
  const double shift = deviations.get() / moments.weight;
  moments.variance = std::max(0., squares.get() / moments.weight - shift * shift);
  return moments;
}

Moments computeMoments(const NbdAVariableNumeric &variable)
{
  return computeMoments(variable, [](int) { return 1.; });
}

}  // namespace

NbdAVariableNumeric::~NbdAVariableNumeric() = default;

void NbdAVariableNumeric::setValues(const QVector<double> &values)
{
  resizeAndFill(values.size());
  setValuesFromDouble(0, values.size(), values.constData());
}

void NbdAVariableNumeric::setAllValues(double value)
{
  Block values;
  values.fill(value);
  const int n = getNValues();
  for (int first = 0; first < n; first += std::min(BLOCK, n - first))
    setValuesFromDouble(first, std::min(BLOCK, n - first), values.data());
}

double NbdAVariableNumeric::getRealizationValue(int, int position) const
{
  return getValue(position);
}

void NbdAVariableNumeric::setRealizationValue(int, int position, double value)
{
  setValue(position, value);
}

double NbdAVariableNumeric::getMinValue() const
{
  return findExtremes(*this).minimum;
}

double NbdAVariableNumeric::getMaxValue() const
{
  return findExtremes(*this).maximum;
}

bool NbdAVariableNumeric::getMinMaxValues(double &minimum, double &maximum) const
{
  const Extremes extremes = findExtremes(*this);
  minimum = extremes.minimum;
  maximum = extremes.maximum;
  return extremes.minimumRank >= 0;
}

int NbdAVariableNumeric::getMinValueRank() const
{
  return findExtremes(*this).minimumRank;
}

int NbdAVariableNumeric::getMaxValueRank() const
{
  return findExtremes(*this).maximumRank;
}

double NbdAVariableNumeric::computeSum() const
{
  ExactSum sum;
  forEachDefined(*this, [&sum](int, double value) { sum.add(value); });
  return sum.get();
}

double NbdAVariableNumeric::getMeanValue() const
{
  int count = 0;
  ExactSum sum;
  forEachDefined(*this, [&](int, double value) {
    ++count;
    sum.add(value);
  });
  return count > 0 ? sum.get() / count : NbbGlobal::D_FFFF;
}

double NbdAVariableNumeric::getVarianceValue() const
{
  return computeMoments(*this).variance;
}

double NbdAVariableNumeric::getStandardDeviationValue() const
{
  const double variance = getVarianceValue();
  return NbbGlobal::isDefined(variance) ? std::sqrt(variance) : variance;
}

NbcStatBasic NbdAVariableNumeric::getStatistics() const
{
  const Extremes extremes = findExtremes(*this);
  const Moments moments = computeMoments(*this);
  NbcStatBasic statistics;
  statistics.setNTotal(getNValues());
  statistics.setNDefined(moments.nDefined);
  statistics.setWeight(moments.weight);
  statistics.setMinimum(extremes.minimum);
  statistics.setMaximum(extremes.maximum);
  statistics.setMean(moments.mean);
  if (moments.nDefined > 0)
    statistics.setVariance(moments.variance);
  return statistics;
}

NbcStatBasic NbdAVariableNumeric::getStatisticsWeighted(const NbdAVariableNumeric &weights) const
{
  if (weights.getNValues() != getNValues())
    NBE_FAIL(
        QStringLiteral("%1 weights for %2 values").arg(weights.getNValues()).arg(getNValues()));

  // Weights that are not used become 0 once, before the two passes.
  std::vector<double> clean(getNValues(), 0.);
  forEachDefined(weights, [&clean](int i, double weight) { clean[i] = std::max(0., weight); });

  qint64 nDefinedNoW = 0;
  Extremes all, weighted;
  forEachDefined(*this, [&](int i, double value) {
    ++nDefinedNoW;
    all.add(i, value);
    if (clean[i] > 0.)
      weighted.add(i, value);
  });
  const Moments moments = computeMoments(*this, [&clean](int i) { return clean[i]; });

  NbcStatBasic statistics;
  statistics.setNTotal(getNValues());
  statistics.setNDefined(nDefinedNoW, moments.nDefined);
  statistics.setWeight(moments.weight);
  statistics.setMinimum(all.minimum, weighted.minimum);
  statistics.setMaximum(all.maximum, weighted.maximum);
  statistics.setMean(moments.mean);
  if (moments.nDefined > 0)
    statistics.setVariance(moments.variance);
  return statistics;
}

QVector<double> NbdAVariableNumeric::getUniqueValues() const
{
  QVector<double> values;
  values.reserve(getNValues());
  forEachDefined(*this, [&values](int, double value) { values.append(value); });
  std::sort(values.begin(), values.end());
  values.erase(std::unique(values.begin(), values.end()), values.end());
  values.squeeze();
  return values;
}

void NbdAVariableNumeric::getLowerUpperIndices(double value, int &lower, int &upper) const
{
  // First position whose value is not below `value`.
  int first = 0;
  int count = getNValues();
  while (count > 0) {
    const int half = count / 2;
    if (getValue(first + half) < value) {
      first += half + 1;
      count -= half + 1;
    } else {
      count = half;
    }
  }
  const bool isInside = first < getNValues();
  upper = isInside ? first : -1;
  lower = isInside && getValue(first) == value ? first : first - 1;
}
