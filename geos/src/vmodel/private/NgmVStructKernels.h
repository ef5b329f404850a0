#pragma once

#include "geos/vmodel/NgmAVStruct.h"
#include "vmodel/private/NgmBesselKernels.h"
#include "vmodel/private/NgmCovaKernels.h"

#include <cmath>
#include <cstdint>
#include <cstring>

/// Closed forms of the normalized covariances C(u) and the loops over them.
///
/// One form is used for single values and for arrays, and it is built from +, -, *, /, sqrt and
/// selection only (or calls one scalar routine for every element): the compiler's vector body and
/// its remainder give the same bits, so a value does not depend on its place in an array.
namespace NgmVStructKernels {

inline double fromBits(std::uint64_t bits)
{
  double value;
  std::memcpy(&value, &bits, sizeof value);
  return value;
}

inline std::uint64_t toBits(double value)
{
  std::uint64_t bits;
  std::memcpy(&bits, &value, sizeof bits);
  return bits;
}

/// exp(x) for x <= 0, within one unit in the last place; 0 below -708, where the result would soon
/// leave the normal numbers.
///
/// x = n ln 2 + r with |r| <= ln(2) / 2 (ln 2 in two parts, Cody and Waite 1980), then the Taylor
/// series of exp(r) to r^13, whose remainder is below 5e-18.
inline double expOfNegative(double x)
{
  constexpr double log2e = 0x1.71547652b82fep+0;
  constexpr double ln2High = 0x1.62e42fee00000p-1;
  constexpr double ln2Low = 0x1.a39ef35793c76p-33;
  // Adding it leaves the nearest integer in the low bits.
  constexpr double shifter = 0x1.8p52;
  const double shifted = x * log2e + shifter;
  const double n = shifted - shifter;
  const double r = (x - n * ln2High) - n * ln2Low;
  // Coefficients 1/2!, 1/3!, ... in pairs: a short chain of dependent operations.
  const double r2 = r * r;
  const double r4 = r2 * r2;
  const double q0 = (0.5 + r * (1. / 6.)) + r2 * (1. / 24. + r * (1. / 120.));
  const double q4 = (1. / 720. + r * (1. / 5040.)) + r2 * (1. / 40320. + r * (1. / 362880.));
  const double q8 =
      (1. / 3628800. + r * (1. / 39916800.)) + r2 * (1. / 479001600. + r * (1. / 6227020800.));
  const double q = q0 + r4 * (q4 + r4 * q8);
  const double expR = 1. + (r + r2 * q);
  const double powerOf2 = fromBits((toBits(shifted) << 52) + (std::uint64_t(1023) << 52));
  return x < -708. ? 0. : expR * powerOf2;
}

struct Exponential
{
  double operator()(double u) const { return expOfNegative(-u); }
};

struct Spherical
{
  double operator()(double u) const
  {
    const double inside = 1. - 0.5 * u * (3. - u * u);
    return u < 1. ? inside : 0.;
  }
};

struct Cubic
{
  double operator()(double u) const
  {
    const double u2 = u * u;
    const double inside = 1. - u2 * (7. - u * (8.75 - u2 * (3.5 - 0.75 * u2)));
    return u2 < 1. ? inside : 0.;
  }
};

struct Gaussian
{
  double operator()(double u) const { return expOfNegative(-(u * u)); }
};

struct Sincard
{
  double operator()(double u) const { return u > 1e-5 ? std::sin(u) / u : 1.; }
};

struct Stable
{
  double alpha;
  double operator()(double u) const { return expOfNegative(-std::pow(u, alpha)); }
};

struct Gamma
{
  double alpha;
  double operator()(double u) const { return 1. / std::pow(1. + u, alpha); }
};

struct Cauchy
{
  double alpha;
  double operator()(double u) const { return 1. / std::pow(1. + u * u, alpha); }
};

struct Power
{
  double alpha;
  double constant;
  double operator()(double u) const { return constant - std::pow(u, alpha); }
};

struct LinearGc
{
  double constant;
  double operator()(double u) const { return constant - u; }
};

struct SplineGc
{
  double constant;
  double c;
  double field;
  double operator()(double u) const
  {
    const double logarithm = field < 1e-4 || u < 1e-4 * field ? 0. : std::log(u / field);
    return constant - (c - logarithm) * u * u;
  }
};

struct Spline2Gc
{
  double operator()(double u) const
  {
    const double u2 = u * u;
    return u > 1e-10 ? ((std::log(u) - 0.75) * u2 + 1.) * u2 - 0.25 : -0.25;
  }
};

struct Order3Gc
{
  double k;
  double constant;
  double operator()(double u) const { return (u - k) * (u * u) + constant; }
};

struct Order5Gc
{
  double k;
  double quadratic;
  double constant;
  double cubedField;
  double operator()(double u) const
  {
    const double u2 = u * u;
    return (u - k) * (u2 * u2) + (quadratic * u2 - constant) * cubedField;
  }
};

/// Matern of nu = 3/2 (1/2 is the exponential).
struct Matern3Halves
{
  double operator()(double u) const { return (1. + u) * expOfNegative(-u); }
};

/// Matern of nu = 5/2.
struct Matern5Halves
{
  double operator()(double u) const { return (1. + u * (1. + u * (1. / 3.))) * expOfNegative(-u); }
};

/// 2 (u / 2)^nu K_nu(u) / Gamma(nu); 0 where K_nu leaves the range of doubles.
class Matern
{
public:
  /// `factor` is 2 / Gamma(nu).
  constexpr Matern(double nu, double factor) : _nu(nu), _factor(factor) {}

  double operator()(double u) const
  {
    if (!(u > 0.))
      return 1.;
    if (u > NgmBesselKernels::LARGEST_ARGUMENT_K)
      return 0.;
    const double k = NgmBesselKernels::besselK(_nu, u);
    return std::isfinite(k) ? _factor * _power(0.5 * u) * k : 0.;
  }

private:
  double _power(double x) const
  {
    if (_nu == 1.)
      return x;
    return _nu == 2. ? x * x : std::pow(x, _nu);
  }

  double _nu;
  double _factor;
};

/// Gamma(nu + 1) J_nu(u) / (u / 2)^nu; 0 where J_nu leaves the normal numbers on its way to u = 0,
/// and for nu <= 0.
struct BesselJ
{
  double nu;
  double logGamma;  ///< ln Gamma(nu + 1)
  double gamma;
  double operator()(double u) const
  {
    if (!(u > 0.))
      return 1.;
    if (!(nu > 0.) || u > NgmBesselKernels::LARGEST_ARGUMENT_J)
      return 0.;
    const double j = NgmBesselKernels::besselJ(nu, u);
    if (!NgmBesselKernels::isAccurateJ(nu, u, j))
      return 0.;
    const double power = std::pow(0.5 * u, nu);
    if (std::isfinite(gamma) && std::isfinite(power))
      return gamma * j / power;
    return j * std::exp(logGamma - nu * std::log(0.5 * u));
  }
};

/// Of the distance itself: the period is one of length. 0 for u > 100.
struct Cosexp
{
  double period;
  double scale;
  double operator()(double dist) const
  {
    const double u = dist / scale;
    return u > 100. ? 0. : std::cos(2. * M_PI * dist / period) * expOfNegative(-u);
  }
};

/// Forms that call a routine for each value, which the compiler does not vectorise.
template <class Form>
constexpr bool isCostly = false;
template <>
inline constexpr bool isCostly<Sincard> = true;
template <>
inline constexpr bool isCostly<Stable> = true;
template <>
inline constexpr bool isCostly<Gamma> = true;
template <>
inline constexpr bool isCostly<Cauchy> = true;
template <>
inline constexpr bool isCostly<Matern> = true;

/// out[k] = C(dist[k] / scale)
template <class Form>
void covaFromDist(Form form, double scale, int n, const double *dist, double *out)
{
  for (int k = 0; k < n; ++k)
    out[k] = form(dist[k] / scale);
}

/// See NgmAVStruct::calcCovas(). The distance stays in a register on its way to the covariance: the
/// loop is bound by square root and division, behind which everything else hides (a pass of its own
/// for the distances costs a third more).
template <bool ROTATED, bool SCALED, bool ADD, class Form>
void calcCovasOf(Form form, double scale, const NgmAVStruct::Separations &s, double sill,
                 double *covas, qint64 stride)
{
  const NgmCovaKernels::Reducer<ROTATED, SCALED> reducer(s.rotation, s.anisotropy);
  const double *__restrict x = s.x;
  const double *__restrict y = s.y;
  const double *__restrict z = s.z;
  for (int t = 0; t < s.nTargets; ++t) {
    const double targetX = s.targetX[t];
    const double targetY = s.targetY[t];
    const double targetZ = s.targetZ[t];
    double *__restrict out = covas + t * stride;
    // What is not of use is worth more than a shorter loop, unless each value is costly.
    const int n = isCostly<Form> ? s.nSamplesOf(t) : s.nSamples;
    for (int i = 0; i < n; ++i) {
      const double squared = reducer.squaredNorm({targetX - x[i], targetY - y[i], targetZ - z[i]});
      const double cova = sill * form(std::sqrt(squared) / scale);
      out[i] = ADD ? out[i] + cova : cova;
    }
  }
}

template <bool ADD, class Form>
void calcCovasReduced(Form form, double scale, const NgmAVStruct::Separations &s, double sill,
                      double *covas, qint64 stride)
{
  if (s.rotation)
    s.anisotropy ? calcCovasOf<true, true, ADD>(form, scale, s, sill, covas, stride)
                 : calcCovasOf<true, false, ADD>(form, scale, s, sill, covas, stride);
  else
    s.anisotropy ? calcCovasOf<false, true, ADD>(form, scale, s, sill, covas, stride)
                 : calcCovasOf<false, false, ADD>(form, scale, s, sill, covas, stride);
}

template <class Form>
void calcCovas(Form form, double scale, const NgmAVStruct::Separations &s, double sill, bool add,
               double *covas, qint64 stride)
{
  add ? calcCovasReduced<true>(form, scale, s, sill, covas, stride)
      : calcCovasReduced<false>(form, scale, s, sill, covas, stride);
}

}  // namespace NgmVStructKernels
