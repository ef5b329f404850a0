#include "geos/simu/NgmDensityFunctions.h"

#include "basic/base/NbbGlobal.h"
#include "basic/error/NbeProgrammingError.h"

#include <QString>

#include <algorithm>
#include <cmath>

namespace {

constexpr double SQRT_2_PI = 2.5066282746310002;

/// Where a term of a series or a factor of a continued fraction no longer counts.
constexpr double PRECISION = 1e-16;

/// Stands for a zero denominator of a continued fraction.
constexpr double TINY = 1e-300;

/// e ln x, 0 for e = 0 wherever x is.
double logPower(double x, double e)
{
  return e == 0. ? 0. : e * std::log(x);
}

/// Probability that a standard normal value exceeds x >= 0.
double upperTail(double x)
{
  if (x >= 10.)
    return 0.;
  const double t = 1. / (1. + 0.2316419 * x);
  const double polynomial =
      t *
      (0.31938153 + t * (-0.356563782 + t * (1.781477937 + t * (-1.821255978 + t * 1.330274429))));
  return 0.3989422804014327 * std::exp(-x * x / 2.) * polynomial;
}

/// Steps of the modified Lentz evaluation of a continued fraction b0 + a1 / (b1 + a2 / (b2 + ...)).
/// Source: [Thompson and Barnett, 1986]
class ContinuedFraction
{
public:
  explicit ContinuedFraction(double b0) : _value(nonZero(b0)), _c(_value) {}

  /// Takes the next pair; returns by which factor the value changed.
  double add(double a, double b)
  {
    _d = 1. / nonZero(b + a * _d);
    _c = nonZero(b + a / _c);
    const double factor = _c * _d;
    _value *= factor;
    return factor;
  }

  double value() const { return _value; }

private:
  static double nonZero(double x) { return std::abs(x) < TINY ? TINY : x; }

  double _value;
  double _c;
  double _d = 0.;
};

bool hasConverged(double factor)
{
  return std::abs(factor - 1.) <= 10. * PRECISION;
}

/// Continued fraction of the incomplete beta function.
double betaFraction(double s, double r, double x, int itMax)
{
  ContinuedFraction fraction(1.);
  fraction.add(-(s + r) * x / (s + 1.), 1.);
  for (int m = 1; m <= itMax; ++m) {
    fraction.add(m * (r - m) * x / ((s + 2. * m - 1.) * (s + 2. * m)), 1.);
    const double factor =
        fraction.add(-(s + m) * (s + r + m) * x / ((s + 2. * m) * (s + 2. * m + 1.)), 1.);
    if (hasConverged(factor))
      return 1. / fraction.value();
  }
  throw NbeProgrammingError(
      QStringLiteral("ERROR : Wrong beta parameters: itMax[%1] is too small").arg(itMax));
}

/// ln(1 / B(s, r)); calls come in long rows with the same parameters.
double logInverseBeta(double s, double r)
{
  struct Last
  {
    double s = 0.;
    double r = 0.;
    double value = 0.;
  };
  thread_local Last last;
  if (last.s != s || last.r != r) {
    using NgmDensityFunctions::dfLogGamma;
    last = {s, r, dfLogGamma(s + r) - dfLogGamma(s) - dfLogGamma(r)};
  }
  return last.value;
}

constexpr int MAX_GAMMA_ITERATIONS = 10000000;

[[noreturn]] void failGamma(double alpha, const char *why)
{
  throw NbeProgrammingError(QStringLiteral("ERROR : Wrong gamma parameters: alpha[%1] %2")
                                .arg(alpha)
                                .arg(QLatin1String(why)));
}

/// Series of the lower incomplete gamma function, without its leading factor.
double gammaSeries(double alpha, double x)
{
  double term = 1. / alpha;
  double sum = term;
  for (int n = 1; n <= MAX_GAMMA_ITERATIONS; ++n) {
    term *= x / (alpha + n);
    sum += term;
    if (term < sum * PRECISION)
      return sum;
  }
  failGamma(alpha, "is too large");
}

/// Continued fraction of the upper incomplete gamma function, without its leading factor.
double gammaFraction(double alpha, double x)
{
  ContinuedFraction fraction(x + 1. - alpha);
  for (int n = 1; n <= MAX_GAMMA_ITERATIONS; ++n) {
    if (hasConverged(fraction.add(-n * (n - alpha), x + 2. * n + 1. - alpha)))
      return 1. / fraction.value();
  }
  failGamma(alpha, "is too large");
}

/// Sums of more terms than this take long and gain nothing over the library's function.
constexpr qint64 MAX_LOG_GAMMA_TERMS = 10000000;

/// ln Gamma on [0.5, 1.5].
double centralLogGamma(double y)
{
  constexpr double P[] = {4.12084318584777,   85.68982062831317,  243.175243524421,
                          -261.7218583856145, -922.2613728801522, -517.6383498023218,
                          -77.41064071332953, -2.20884399721618};
  constexpr double Q[] = {1.,
                          45.64677187585908,
                          377.8372484823942,
                          951.323597679706,
                          846.0755362020782,
                          262.308347026946,
                          24.43519662506312,
                          0.40977929210926};
  double p = P[0];
  double q = Q[0];
  for (int i = 1; i < 8; ++i) {
    p = p * y + P[i];
    q = q * y + Q[i];
  }
  return (y - 1.) * p / q;
}

/// ln(y (y + 1) ... (y + n - 1)).
double logRisingFactorial(double y, qint64 n)
{
  if (n <= 32) {
    double product = y;
    for (qint64 k = 1; k < n; ++k)
      product *= y + double(k);
    return std::log(product);
  }
  double sum = 0.;
  for (qint64 k = 0; k < n; ++k)
    sum += std::log(y + double(k));
  return sum;
}

/// Probability that a standard normal value lies in [a, b], of full relative precision.
double normalProbability(double a, double b)
{
  if (a > 0.)
    return 0.5 * (std::erfc(a * M_SQRT1_2) - std::erfc(b * M_SQRT1_2));
  if (b < 0.)
    return normalProbability(-b, -a);
  return 0.5 * (std::erf(b * M_SQRT1_2) - std::erf(a * M_SQRT1_2));
}

double boundOr(double bound, double fallback)
{
  return NbbGlobal::isDefined(bound) ? bound : fallback;
}

}  // namespace

namespace NgmDensityFunctions {

double dfUniformR(double x, double min, double max)
{
  return x < min || x > max ? 0. : 1. / (max - min);
}

double cdfUniformR(double x, double min, double max)
{
  if (x < min)
    return 0.;
  return x > max ? 1. : (x - min) / (max - min);
}

double invCdfUniformR(double p, double min, double max)
{
  if (p <= 0.)
    return min;
  return p >= 1. ? max : min + p * (max - min);
}

double dfGaussian(double x)
{
  return std::exp(-x * x / 2.) / SQRT_2_PI;
}

double dfGaussian(double x, double mean, double stdev)
{
  return dfGaussian((x - mean) / stdev) / stdev;
}

double cdfGaussian(double x)
{
  const double tail = upperTail(std::abs(x));
  return x >= 0. ? 1. - tail : tail;
}

double cdfGaussian(double x, double mean, double stdev)
{
  return cdfGaussian((x - mean) / stdev);
}

double invCdfGaussian(double p)
{
  if (p >= 1.)
    return NbbGlobal::D_BIG_GAUSSIAN_POSITIVE;
  const double above = 1. - std::max(p, 1. - p);
  if (p <= 0. || above == 0.)
    return NbbGlobal::D_BIG_GAUSSIAN_NEGATIVE;

  const double t = std::sqrt(-2. * std::log(above));
  const double start = t - (2.515517 + 0.802853 * t + 0.010328 * t * t) /
                               (1. + 1.432788 * t + 0.189269 * t * t + 0.001308 * t * t * t);
  double low = start - 0.001;
  double high = start + 0.001;
  while (high - low > 1e-7) {
    const double middle = 0.5 * (low + high);
    (cdfGaussian(-middle) > above ? low : high) = middle;
  }
  const double x = 0.5 * (low + high);
  return p < 0.5 ? -x : x;
}

double invCdfGaussian(double p, double mean, double stdev)
{
  return mean + stdev * invCdfGaussian(p);
}

double dfLognormal(double x)
{
  return dfLognormal(x, 0., 1.);
}

double dfLognormal(double x, double mean, double stdev, double shift)
{
  const double y = x + shift;
  return y > 0. ? dfGaussian(std::log(y), mean, stdev) / y : 0.;
}

double cdfLognormal(double x)
{
  return cdfLognormal(x, 0., 1.);
}

double cdfLognormal(double x, double mean, double stdev, double shift)
{
  const double y = x + shift;
  return y > 0. ? cdfGaussian(std::log(y), mean, stdev) : 0.;
}

double dfPower(double x)
{
  return dfPower(x, 0., 1., 1.);
}

double dfPower(double x, double mean, double stdev, double scale)
{
  if (!(x > 0.))
    return 0.;
  return scale * std::pow(x, scale - 1.) * dfGaussian(std::pow(x, scale), mean, stdev);
}

double cdfPower(double x)
{
  return cdfPower(x, 0., 1., 1.);
}

double cdfPower(double x, double mean, double stdev, double scale)
{
  return cdfGaussian(x > 0. ? std::pow(x, scale) : 0., mean, stdev);
}

double dfBeta(double s, double r, double x)
{
  if (!(s > 0.) || !(r > 0.))
    throw NbeProgrammingError(
        QStringLiteral("ERROR : Wrong beta parameters: s[%1] and r[%2] must be positive")
            .arg(s)
            .arg(r));
  if (!(x >= 0. && x <= 1.))
    return 0.;
  return std::exp(logPower(x, s - 1.) + logPower(1. - x, r - 1.) + logInverseBeta(s, r));
}

double cdfBeta(double s, double r, double x, int itMax)
{
  if (x <= 0.)
    return 0.;
  if (x >= 1.)
    return 1.;
  if (!(s > 0.) || !(r > 0.))
    throw NbeProgrammingError(
        QStringLiteral("ERROR : Wrong beta value or parameters: s[%1] and r[%2] must be positive")
            .arg(s)
            .arg(r));
  const double front = std::exp(s * std::log(x) + r * std::log(1. - x) + logInverseBeta(s, r));
  if (x < (s + 1.) / (s + r + 2.))
    return front * betaFraction(s, r, x, itMax) / s;
  return 1. - front * betaFraction(r, s, 1. - x, itMax) / r;
}

double dfGamma(double alpha, double x)
{
  if (!(alpha > 0.))
    failGamma(alpha, "must be positive");
  return x >= 0. ? std::exp(logPower(x, alpha - 1.) - x - dfLogGamma(alpha)) : 0.;
}

double cdfGamma(double alpha, double x)
{
  if (!(alpha > 0.))
    failGamma(alpha, "must be positive");
  if (x <= 0.)
    return 0.;
  if (std::isinf(x))
    return 1.;
  const double front = std::exp(alpha * std::log(x) - x - dfLogGamma(alpha));
  if (x < alpha + 1.)
    return front * gammaSeries(alpha, x);
  return 1. - front * gammaFraction(alpha, x);
}

double invCdfGamma(double alpha, double p)
{
  if (!(alpha > 0.) || !(p > 0.))
    return 0.;
  const double reachable = std::min(p, 0.999999999999999);
  double low = 0.;
  double high = 0.;
  while (!(cdfGamma(alpha, high) > reachable))
    high += alpha;

  while (std::abs(high - low) > 1e-5 ||
         std::abs(cdfGamma(alpha, high) - cdfGamma(alpha, low)) > 1e-5) {
    const double middle = (high + low) * 0.5;
    if (middle == low || middle == high)
      break;
    (cdfGamma(alpha, middle) > p ? high : low) = middle;
    if (middle < 1e-5)
      break;
  }
  return (high + low) * 0.5;
}

double dfLogGamma(double x)
{
  if (!NbbGlobal::isDefined(x))
    return NbbGlobal::D_FFFF;
  if (x > double(MAX_LOG_GAMMA_TERMS))
    return std::lgamma(x);
  double nearest = std::floor(x);
  if (x - nearest > 0.5)
    nearest += 1.;
  const qint64 n = qint64(nearest) - 1;
  if (n <= -1) {
    const double y = n == -1 ? x + 1. : x;
    return centralLogGamma(y) - std::log(x);
  }
  if (n == 0)
    return centralLogGamma(x);
  const double y = x - double(n);
  return centralLogGamma(y) + logRisingFactorial(y, n);
}

double dfStudent(double n, double t)
{
  const double half = 0.5 * (n + 1.);
  return std::exp(dfLogGamma(half) - dfLogGamma(0.5 * n) - half * std::log1p(t * t / n)) /
         std::sqrt(n * M_PI);
}

double cdfStudent(double n, double t)
{
  const double b = cdfBeta(n / 2., 0.5, n / (n + t * t), 1000);
  if (t == 0.)
    return 0.5;
  return t > 0. ? 1. - b / 2. : b / 2.;
}

double dfExponential(double x, double mean)
{
  return x >= 0. ? std::exp(-x / mean) / mean : 0.;
}

double cdfExponential(double x, double mean)
{
  return x > 0. ? -std::expm1(-x / mean) : 0.;
}

double invCdfExponential(double p, double mean)
{
  if (p <= 0.)
    return 0.;
  return p >= 1. ? NbbGlobal::D_BIG_POSITIVE : -mean * std::log1p(-p);
}

double dfCauchy(double x)
{
  return M_1_PI / (1. + x * x);
}

double cdfCauchy(double x)
{
  return x < -1. ? std::atan(-1. / x) * M_1_PI : 0.5 + std::atan(x) * M_1_PI;
}

double invCdfCauchy(double p)
{
  if (p <= 0.)
    return NbbGlobal::D_BIG_NEGATIVE;
  if (p >= 1.)
    return NbbGlobal::D_BIG_POSITIVE;
  return p < 0.25 ? -1. / std::tan(M_PI * p) : std::tan(M_PI * (p - 0.5));
}

double dfTriangular(double x, double min, double mode, double max)
{
  if (x < min || x > max)
    return 0.;
  const double peak = 2. / (max - min);
  if (x < mode)
    return peak * (x - min) / (mode - min);
  return x > mode ? peak * (max - x) / (max - mode) : peak;
}

double cdfTriangular(double x, double min, double mode, double max)
{
  if (x <= min)
    return 0.;
  if (x >= max)
    return 1.;
  if (x <= mode)
    return (x - min) * (x - min) / ((max - min) * (mode - min));
  return 1. - (max - x) * (max - x) / ((max - min) * (max - mode));
}

double invCdfTriangular(double p, double min, double mode, double max)
{
  if (p <= 0.)
    return min;
  if (p >= 1.)
    return max;
  if (p * (max - min) <= mode - min)
    return min + std::sqrt(p * (max - min) * (mode - min));
  return max - std::sqrt((1. - p) * (max - min) * (max - mode));
}

double dfTruncatedGaussian(double x, double min, double max)
{
  const double a = boundOr(min, NbbGlobal::D_BIG_GAUSSIAN_NEGATIVE);
  const double b = boundOr(max, NbbGlobal::D_BIG_GAUSSIAN_POSITIVE);
  const double total = normalProbability(a, b);
  return x < a || x > b || !(total > 0.) ? 0. : dfGaussian(x) / total;
}

double cdfTruncatedGaussian(double x, double min, double max)
{
  const double a = boundOr(min, NbbGlobal::D_BIG_GAUSSIAN_NEGATIVE);
  const double b = boundOr(max, NbbGlobal::D_BIG_GAUSSIAN_POSITIVE);
  if (x <= a)
    return 0.;
  if (x >= b)
    return 1.;
  const double total = normalProbability(a, b);
  return total > 0. ? normalProbability(a, x) / total : 0.;
}

}  // namespace NgmDensityFunctions
