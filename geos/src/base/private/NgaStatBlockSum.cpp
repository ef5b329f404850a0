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

/// Calls `add` with four values at a time; what the last four lack is undefined.
template <class Add>
void forEachFour(int n, const double *values, Add add)
{
  const int nWhole = n - n % LANES;
  for (int i = 0; i < nWhole; i += LANES)
    add(load(values + i));
  if (nWhole < n)
    add(load(Tail(n - nWhole, values + nWhole, NbbGlobal::D_FFFF).values));
}

/// The same with weights; those that lack are 0.
template <class Add>
void forEachFour(int n, const double *values, const double *weights, Add add)
{
  const int nWhole = n - n % LANES;
  for (int i = 0; i < nWhole; i += LANES)
    add(load(values + i), load(weights + i));
  if (nWhole < n)
    add(load(Tail(n - nWhole, values + nWhole, NbbGlobal::D_FFFF).values),
        load(Tail(n - nWhole, weights + nWhole, 0.).values));
}

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

/// Weighted sum of the products of deviations of pairs: 0 where a value is undefined, or its weight
/// undefined or not positive.
double sumOfProducts(int n, const double *x, double meanX, const double *y, double meanY,
                     const double *weights)
{
  Real lanes = fourOf(0.);
  const auto add = [&](Real vx, Real vy, Real w) {
    const Bits counts = definedMask(vx) & definedMask(w) & (w > fourOf(0.));
    const Real products = (vx - fourOf(meanX)) * (vy - fourOf(meanY)) * w;
    lanes += counts ? products : fourOf(0.);
  };
  const int nWhole = n - n % LANES;
  for (int i = 0; i < nWhole; i += LANES)
    add(load(x + i), load(y + i), weights ? load(weights + i) : fourOf(1.));
  const int rest = n - nWhole;
  if (rest > 0)
    add(load(Tail(rest, x + nWhole, NbbGlobal::D_FFFF).values),
        load(Tail(rest, y + nWhole, NbbGlobal::D_FFFF).values),
        weights ? load(Tail(rest, weights + nWhole, 0.).values) : fourOf(1.));
  return total(lanes);
}

}  // namespace

struct NgaStatBlockSum::Sums
{
  qint64 nDefined;
  qint64 nDefinedNoW;
  double min, max, minNoW, maxNoW;
  double sumLog, sumInverse;
  double weight, sum;
  double m2 = 0., m3 = 0., m4 = 0.;  // about the mean

  double mean() const { return weight > 0. ? sum / weight : 0.; }
};

/// Sums of the powers of deviations from a mean.
struct NgaStatBlockSum::Moments
{
  Real m2 = fourOf(0.);
  Real m3 = fourOf(0.);
  Real m4 = fourOf(0.);

  template <bool FULL>
  void add(Real deviation, Real weight)
  {
    const Real squared = deviation * deviation * weight;
    m2 += squared;
    if (FULL) {
      const Real cubed = squared * deviation;
      m3 += cubed;
      m4 += cubed * deviation;
    }
  }

  void copyTo(Sums &block) const
  {
    block.m2 = total(m2);
    block.m3 = total(m3);
    block.m4 = total(m4);
  }
};

template <bool FULL>
NgaStatBlockSum::Sums NgaStatBlockSum::_sum(int n, const double *values)
{
  const Real zero = fourOf(0.);
  const Real one = fourOf(1.);
  Bits count = {0, 0, 0, 0};
  Range range;
  LogProduct logs;
  Real inverse = zero, sum = zero;

  const auto add = [&](Real v) {
    const Bits defined = definedMask(v);
    count -= defined;
    range.add(v, defined);
    const Real x = defined ? v : zero;
    sum += x;
    const Bits positive = x > zero;
    const Real p = positive ? x : one;
    inverse += positive ? one / p : zero;
    logs.multiply(p);
  };
  forEachFour(n, values, add);

  const qint64 nDefined = total(count);
  const double min = smallest(range.min);
  const double max = largest(range.max);
  Sums block = {nDefined,       nDefined,         min,       max, min, max, logs.log(),
                total(inverse), double(nDefined), total(sum)};
  _addMoments<FULL>(n, values, block);
  return block;
}

template <bool FULL>
void NgaStatBlockSum::_addMoments(int n, const double *values, Sums &block)
{
  const Real mean = fourOf(block.mean());
  Moments moments;
  const auto add = [&](Real v) {
    moments.add<FULL>(definedMask(v) ? v - mean : fourOf(0.), fourOf(1.));
  };
  forEachFour(n, values, add);
  moments.copyTo(block);
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
  Real log = zero, inverse = zero, sumOfWeights = zero, sum = zero;

  const auto add = [&](Real v, Real w) {
    const Bits defined = definedMask(v);
    const Bits weighted = defined & definedMask(w) & (w > zero);
    countNoW -= defined;
    count -= weighted;
    rangeNoW.add(v, defined);
    range.add(v, weighted);
    const Real weight = weighted ? w : zero;
    const Real x = weighted ? v : zero;
    sumOfWeights += weight;
    sum += x * weight;
    const Bits positive = x > zero;
    const Real p = positive ? x : fourOf(1.);
    inverse += positive ? weight / p : zero;
    log += weight * Real{std::log(p[0]), std::log(p[1]), std::log(p[2]), std::log(p[3])};
  };
  forEachFour(n, values, weights, add);

  Sums block = {total(count),       total(countNoW),        smallest(range.min),
                largest(range.max), smallest(rangeNoW.min), largest(rangeNoW.max),
                total(log),         total(inverse),         total(sumOfWeights),
                total(sum)};
  _addMomentsWeighted<FULL>(n, values, weights, block);
  return block;
}

template <bool FULL>
void NgaStatBlockSum::_addMomentsWeighted(int n, const double *values, const double *weights,
                                          Sums &block)
{
  const Real mean = fourOf(block.mean());
  Moments moments;
  const auto add = [&](Real v, Real w) {
    const Bits weighted = definedMask(v) & definedMask(w) & (w > fourOf(0.));
    moments.add<FULL>(weighted ? v - mean : fourOf(0.), weighted ? w : fourOf(0.));
  };
  forEachFour(n, values, weights, add);
  moments.copyTo(block);
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
  sum._mergeMoments(block.weight, block.sum, block.m2, block.m3, block.m4);
}

NgaStatBlockSum::Sums NgaStatBlockSum::_sumUpTo(int degree, int n, const double *values,
                                                const double *weights)
{
  if (weights)
    return degree > 2 ? _sumWeighted<true>(n, values, weights)
                      : _sumWeighted<false>(n, values, weights);
  return degree > 2 ? _sum<true>(n, values) : _sum<false>(n, values);
}

void NgaStatBlockSum::add(NgaStatSum &sum, int n, const double *values, const double *weights)
{
  _merge(sum, n, _sumUpTo(sum._degree, n, values, weights));
}

void NgaStatBlockSum::addPairs(NgaStatSum &xy, NgaStatSum &yx, int n, const double *x,
                               const double *y, const double *weights)
{
  // Where one is undefined, both become so.
  double bothX[BLOCK];
  double bothY[BLOCK];
  for (int i = 0; i < n; ++i) {
    const bool defined = NbbGlobal::isDefined(x[i]) & NbbGlobal::isDefined(y[i]);
    bothX[i] = defined ? x[i] : NbbGlobal::D_FFFF;
    bothY[i] = defined ? y[i] : NbbGlobal::D_FFFF;
  }
  const Sums sumsX = _sumUpTo(xy._degree, n, bothX, weights);
  const Sums sumsY = _sumUpTo(yx._degree, n, bothY, weights);
  const double coMoment = sumOfProducts(n, bothX, sumsX.mean(), bothY, sumsY.mean(), weights);
  xy._mergeProducts(sumsX.weight, sumsX.sum, sumsY.sum, coMoment);
  yx._mergeProducts(sumsY.weight, sumsY.sum, sumsX.sum, coMoment);
  _merge(xy, n, sumsX);
  _merge(yx, n, sumsY);
}
