#include "base/private/NgaStatBlockSum.h"

#include "basic/base/NbbGlobal.h"
#include "geos/base/NgaStatSum.h"

#include <algorithm>
#include <cfloat>
#include <cmath>
#include <cstring>

namespace {

// Four lanes. The compiler maps them to vector registers, whatever their width.
constexpr int LANES = 4;
using Real = double __attribute__((vector_size(LANES * sizeof(double))));
using Bits = long long __attribute__((vector_size(LANES * sizeof(double))));

constexpr double MANTISSA_SCALE = 0x1p54;  // lifts every denormal to a normal number
constexpr long long MANTISSA_SHIFT = 54;
constexpr double LN_2 = 0.693147180559945309417232121458;

inline Real fourOf(double value)
{
  return Real{value, value, value, value};
}

inline Real load(const double *values)
{
  Real four;
  std::memcpy(&four, values, sizeof(four));
  return four;
}

/// -1 where the value is defined.
inline Bits definedMask(Real v)
{
  return (v < fourOf(1e30)) & (v >= fourOf(-DBL_MAX));
}

inline double total(Real v)
{
  return (v[0] + v[1]) + (v[2] + v[3]);
}

inline qint64 total(Bits v)
{
  return (v[0] + v[1]) + (v[2] + v[3]);
}

inline double smallest(Real v)
{
  return std::min(std::min(v[0], v[1]), std::min(v[2], v[3]));
}

inline double largest(Real v)
{
  return std::max(std::max(v[0], v[1]), std::max(v[2], v[3]));
}

/// The last values of a block, filled up to LANES with `filler`.
struct Tail
{
  Tail(int n, const double *from, double filler)
  {
    std::fill_n(values, LANES, filler);
    std::copy_n(from, n, values);
  }

  double values[LANES];
};

/// Extremes over the lanes.
struct Range
{
  Real min = fourOf(NbbGlobal::D_BIG_POSITIVE);
  Real max = fourOf(NbbGlobal::D_BIG_NEGATIVE);

  void add(Real v, Bits counts)
  {
    const Real low = counts ? v : fourOf(NbbGlobal::D_BIG_POSITIVE);
    const Real high = counts ? v : fourOf(NbbGlobal::D_BIG_NEGATIVE);
    min = low < min ? low : min;
    max = high > max ? high : max;
  }
};

/// Sum of logarithms as the logarithm of a product: mantissas are multiplied, exponents added. A
/// lane takes at most BLOCK / LANES = 256 mantissas below 2, so the product cannot overflow.
struct LogProduct
{
  Real product = fourOf(1.);
  Bits exponent = Bits{0, 0, 0, 0};

  void multiply(Real positive)
  {
    const Bits denormal = positive < fourOf(DBL_MIN);
    const Real normal = denormal ? positive * fourOf(MANTISSA_SCALE) : positive;
    Bits bits;
    std::memcpy(&bits, &normal, sizeof(bits));
    exponent += (bits >> 52) - 1023 - (denormal & MANTISSA_SHIFT);
    bits = (bits & 0x000fffffffffffffLL) | 0x3ff0000000000000LL;
    Real mantissa;
    std::memcpy(&mantissa, &bits, sizeof(mantissa));
    product *= mantissa;
  }

  double log() const
  {
    const Real logs = {std::log(product[0]), std::log(product[1]), std::log(product[2]),
                       std::log(product[3])};
    return total(logs) + double(total(exponent)) * LN_2;
  }
};

}  // namespace

struct NgaStatBlockSum::Sums
{
  qint64 nDefined;
  qint64 nDefinedNoW;
  double min, max, minNoW, maxNoW;
  double sumLog, sumInverse;
  double moments[5];
};

template <bool FULL>
NgaStatBlockSum::Sums NgaStatBlockSum::_sum(int n, const double *values)
{
  const Real zero = fourOf(0.);
  const Real one = fourOf(1.);
  Bits count = {0, 0, 0, 0};
  Range range;
  LogProduct logs;
  Real inverse = zero, m1 = zero, m2 = zero, m3 = zero, m4 = zero;

  const auto add = [&](Real v) {
    const Bits defined = definedMask(v);
    count -= defined;
    range.add(v, defined);
    const Real x = defined ? v : zero;
    const Real x2 = x * x;
    m1 += x;
    m2 += x2;
    if (FULL) {
      m3 += x2 * x;
      m4 += x2 * x2;
    }
    const Bits positive = x > zero;
    const Real p = positive ? x : one;
    inverse += positive ? one / p : zero;
    logs.multiply(p);
  };
  const int nWhole = n - n % LANES;
  for (int i = 0; i < nWhole; i += LANES)
    add(load(values + i));
  if (nWhole < n)
    add(load(Tail(n - nWhole, values + nWhole, NbbGlobal::D_FFFF).values));

  const qint64 nDefined = total(count);
  const double min = smallest(range.min);
  const double max = largest(range.max);
  return {nDefined,
          nDefined,
          min,
          max,
          min,
          max,
          logs.log(),
          total(inverse),
          {double(nDefined), total(m1), total(m2), total(m3), total(m4)}};
}

template <bool FULL>
NgaStatBlockSum::Sums NgaStatBlockSum::_sumWeighted(int n, const double *values,
                                                    const double *weights)
{
  const Real zero = fourOf(0.);
  Bits count = {0, 0, 0, 0};
  Bits countNoW = {0, 0, 0, 0};
  Range range;
  Range rangeNoW;
  Real log = zero, inverse = zero, m0 = zero, m1 = zero, m2 = zero, m3 = zero, m4 = zero;

  const auto add = [&](Real v, Real w) {
    const Bits defined = definedMask(v);
    const Bits weighted = defined & definedMask(w) & (w > zero);
    countNoW -= defined;
    count -= weighted;
    rangeNoW.add(v, defined);
    range.add(v, weighted);
    const Real weight = weighted ? w : zero;
    const Real x = weighted ? v : zero;
    const Real x2 = x * x;
    m0 += weight;
    m1 += x * weight;
    m2 += x2 * weight;
    if (FULL) {
      m3 += x2 * x * weight;
      m4 += x2 * x2 * weight;
    }
    const Bits positive = x > zero;
    const Real p = positive ? x : fourOf(1.);
    inverse += positive ? weight / p : zero;
    log += weight * Real{std::log(p[0]), std::log(p[1]), std::log(p[2]), std::log(p[3])};
  };
  const int nWhole = n - n % LANES;
  for (int i = 0; i < nWhole; i += LANES)
    add(load(values + i), load(weights + i));
  if (nWhole < n)
    add(load(Tail(n - nWhole, values + nWhole, NbbGlobal::D_FFFF).values),
        load(Tail(n - nWhole, weights + nWhole, 0.).values));

  return {total(count),
          total(countNoW),
          smallest(range.min),
          largest(range.max),
          smallest(rangeNoW.min),
          largest(rangeNoW.max),
          total(log),
          total(inverse),
          {total(m0), total(m1), total(m2), total(m3), total(m4)}};
}

void NgaStatBlockSum::_merge(NgaStatSum &sum, int n, const Sums &block)
{
  sum._nTotal += n;
  sum._nDefined += block.nDefined;
  sum._nDefinedNoW += block.nDefinedNoW;
  sum._min = std::min(sum._min, block.min);
  sum._max = std::max(sum._max, block.max);
  sum._minNoW = std::min(sum._minNoW, block.minNoW);
  sum._maxNoW = std::max(sum._maxNoW, block.maxNoW);
  sum._sumLog += block.sumLog;
  sum._sumInverse += block.sumInverse;
  for (int k = 0; k <= sum._degree; ++k)
    sum._moments[k] += block.moments[k];
}

void NgaStatBlockSum::add(NgaStatSum &sum, int n, const double *values)
{
  _merge(sum, n, sum._degree > 2 ? _sum<true>(n, values) : _sum<false>(n, values));
}

void NgaStatBlockSum::addWeighted(NgaStatSum &sum, int n, const double *values,
                                  const double *weights)
{
  _merge(sum, n,
         sum._degree > 2 ? _sumWeighted<true>(n, values, weights)
                         : _sumWeighted<false>(n, values, weights));
}

void NgaStatBlockSum::addPairs(NgaStatSum &xy, NgaStatSum &yx, int n, const double *x,
                               const double *y, const double *weights)
{
  // Where one is undefined, both become so; products of these are 0.
  double bothX[BLOCK];
  double bothY[BLOCK];
  double products[BLOCK];
  for (int i = 0; i < n; ++i) {
    const bool defined = NbbGlobal::isDefined(x[i]) & NbbGlobal::isDefined(y[i]);
    bothX[i] = defined ? x[i] : NbbGlobal::D_FFFF;
    bothY[i] = defined ? y[i] : NbbGlobal::D_FFFF;
    products[i] = defined ? x[i] * y[i] : 0.;
  }
  if (weights) {
    for (int i = 0; i < n; ++i) {
      const double w = weights[i];
      products[i] = NbbGlobal::isDefined(w) & (w > 0.) ? products[i] * w : 0.;
    }
    addWeighted(xy, n, bothX, weights);
    addWeighted(yx, n, bothY, weights);
  } else {
    add(xy, n, bothX);
    add(yx, n, bothY);
  }

  Real lanes = fourOf(0.);
  const int nWhole = n - n % LANES;
  for (int i = 0; i < nWhole; i += LANES)
    lanes += load(products + i);
  double sumXY = total(lanes);
  for (int i = nWhole; i < n; ++i)
    sumXY += products[i];
  xy._sumXY += sumXY;
  yx._sumXY += sumXY;
}
