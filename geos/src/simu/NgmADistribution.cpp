#include "geos/simu/NgmADistribution.h"

#include "basic/base/NbbDebug.h"
#include "basic/base/NbbGlobal.h"
#include "basic/data/NbdAVariableNumeric.h"
#include "basic/error/NbeAssertion.h"
#include "basic/error/NbeProgrammingError.h"
#include "geos/simu/NgmDensityFunctions.h"

#include <algorithm>
#include <cmath>
#include <vector>

namespace {

constexpr qint64 N_TRACED = 10;
constexpr double CHI2_CONFIDENCE = 0.95;

std::vector<double> sortedDefinedValues(const NbdAVariableNumeric &variable)
{
  std::vector<double> values(std::size_t(variable.getNValues()));
  variable.getValuesAsDouble(0, variable.getNValues(), values.data());
  values.erase(std::remove_if(values.begin(), values.end(),
                              [](double value) { return !NbbGlobal::isDefined(value); }),
               values.end());
  std::sort(values.begin(), values.end());
  return values;
}

/// How many of the ascending values fall into each of nClasses classes of the same probability. The
/// distribution function is asked near the limits of classes only: it may be costly.
std::vector<qint64> countByClass(const NgmADistribution &law, const std::vector<double> &values,
                                 int nClasses)
{
  std::vector<qint64> counts;
  counts.reserve(std::size_t(nClasses));
  auto first = values.begin();
  for (int i = 1; i <= nClasses; ++i) {
    const double limit = double(i) / nClasses;
    const auto end =
        i == nClasses ? values.end() : std::partition_point(first, values.end(), [&](double value) {
          return law.getCdf(value) < limit;
        });
    counts.push_back(end - first);
    first = end;
  }
  return counts;
}

/// Joins neighbouring classes, each expecting `expected`, until every one expects minCount; what is
/// left at the end goes to the last one. Returns the chi-2 statistic.
double chi2Statistic(const std::vector<qint64> &counts, double expected, double minCount,
                     int &nJoined)
{
  const int n = int(counts.size());
  const int width = std::max(1, int(std::ceil(std::min(minCount / expected, double(n)))));
  nJoined = n / width;
  double statistic = 0.;
  for (int group = 0; group < nJoined; ++group) {
    const int first = group * width;
    const int end = group + 1 == nJoined ? n : first + width;
    qint64 count = 0;
    for (int i = first; i < end; ++i)
      count += counts[std::size_t(i)];
    const double groupExpected = expected * (end - first);
    statistic += (count - groupExpected) * (count - groupExpected) / groupExpected;
  }
  return statistic;
}

template <class T>
void setIfAsked(T *output, T value)
{
  if (output)
    *output = value;
}

}  // namespace

std::atomic<qint64> NgmADistribution::_distNb{0};

NgmADistribution::NgmADistribution(const QString &name, quint64 seed, tSize size, bool trace)
    : _generator(seed, size), _serialNumber(++_distNb), _trace(trace), _name(name)
{
  if (_trace)
    _traceStart();
}

NgmADistribution::NgmADistribution(const NgmADistribution &other)
    : _generator(other._generator),
      _nDrawn(other._nDrawn),
      _serialNumber(++_distNb),
      _trace(other._trace),
      _name(other._name)
{
}

NgmADistribution &NgmADistribution::operator=(const NgmADistribution &other)
{
  _generator = other._generator;
  _nDrawn = other._nDrawn;
  _trace = other._trace;
  _name = other._name;
  return *this;
}

NgmADistribution::~NgmADistribution() = default;

double NgmADistribution::nextR()
{
  return 0.;
}

qint64 NgmADistribution::nextI()
{
  return 0;
}

double NgmADistribution::getDf(double /*value*/) const
{
  return 0.;
}

double NgmADistribution::getCdf(double /*value*/) const
{
  return 0.;
}

double NgmADistribution::getInvCdf(double p) const
{
  if (!hasCdf())
    throw NbeProgrammingError(
        QStringLiteral("The inverse Cdf cannot be computed as Cdf is undefined!"));

  constexpr int MAX_ITERATIONS = 1000;
  double low = getLowerBound();
  double high = getUpperBound();
  for (int i = 0; i < MAX_ITERATIONS; ++i) {
    const double lowError = std::abs(getCdf(low) - p);
    const double highError = std::abs(getCdf(high) - p);
    if (lowError < 0.001)
      return low;
    if (highError < 0.001 || std::abs(low - high) < 1e-5)
      return high;
    (highError <= lowError ? low : high) = (low + high) / 2.;
  }
  throw NbeProgrammingError(QStringLiteral("Theoretical inverse CDF evaluation failed!"));
}

double NgmADistribution::getLowerBound() const
{
  return NbbGlobal::D_BIG_NEGATIVE;
}

double NgmADistribution::getUpperBound() const
{
  return NbbGlobal::D_BIG_POSITIVE;
}

double NgmADistribution::getTransfo(double value, const NbdVariableDetails & /*details*/) const
{
  return value;
}

double NgmADistribution::getInvTransfo(double value, const NbdVariableDetails & /*details*/) const
{
  return value;
}

QString NgmADistribution::getName(bool withSerialNumber) const
{
  return withSerialNumber ? QStringLiteral("%1 %2").arg(_name).arg(_serialNumber) : _name;
}

void NgmADistribution::trace(const QString &text) const
{
  if (_trace)
    NbbDebug::print(text);
}

bool NgmADistribution::isChi2TestSuccessfulForSample(const NbdAVariableNumeric &sample,
                                                     int nClasses, int minCount, double *chi2,
                                                     double *threshold, int *df) const
{
  if (!hasCdf())
    throw NbeProgrammingError(
        QStringLiteral("The Chi-2 test cannot be done since Cdf is not defined!"));
  if (nClasses < 1)
    NBE_FAIL(QStringLiteral("nClasses >= 1"));

  const std::vector<double> values = sortedDefinedValues(sample);
  int nJoined = 0;
  double statistic = 0.;
  if (!values.empty())
    statistic = chi2Statistic(countByClass(*this, values, nClasses),
                              double(values.size()) / nClasses, minCount, nJoined);
  const int freedom = std::max(nJoined - 1, 0);
  const double limit = 2. * NgmDensityFunctions::invCdfGamma(freedom / 2., CHI2_CONFIDENCE);
  setIfAsked(chi2, statistic);
  setIfAsked(threshold, limit);
  setIfAsked(df, freedom);
  return freedom > 0 && statistic <= limit;
}

void NgmADistribution::_traceStart() const
{
  trace(QStringLiteral("New distribution..."));
  trace(QStringLiteral("  initial seed  = ") + QString::number(_generator.getSeed()));
  trace(QStringLiteral("  initial size  = ") + QString::number(int(_generator.getSize())));
  trace(QStringLiteral("  modulus(m)    = ") + QString::number(_generator.getModulus()));
  trace(QStringLiteral("  multiplier(a) = ") + QString::number(_generator.getMultiplier()));
  trace(QStringLiteral("  offset(b)     = ") + QString::number(_generator.getOffset()));
  trace(QStringLiteral("  quotient(q)   = ") + QString::number(_generator.getQuotient()));
  trace(QStringLiteral("  rest(r)       = ") + QString::number(_generator.getRest()));
  trace(QStringLiteral("  current       = ") + QString::number(_generator.getCurrentNumber()));
}

void NgmADistribution::_traceNumber(quint64 number)
{
  trace(QStringLiteral("rn[%1] = %2").arg(_nDrawn).arg(number));
  if (_nDrawn + 1 >= N_TRACED)
    _trace = false;
}
