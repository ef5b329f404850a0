#include "simu/private/NgmStableLaw.h"

#include "geos/simu/NgmDensityFunctions.h"

#include <cmath>

namespace {

constexpr double TOLERANCE = 1e-12;
constexpr int MAX_DEPTH = 25;

/// Gauss-Legendre rule of 10 points, its nodes coming in pairs about the centre.
constexpr double NODES[] = {0.1488743389816312, 0.4333953941292472, 0.6794095682990244,
                            0.8650633666889845, 0.9739065285171717};
constexpr double WEIGHTS[] = {0.2955242247147529, 0.2692667193099963, 0.2190863625159821,
                              0.1494513491505806, 0.0666713443086881};

template <class Function>
double gauss(const Function &f, double a, double b)
{
  const double centre = 0.5 * (a + b);
  const double half = 0.5 * (b - a);
  double sum = 0.;
  for (int i = 0; i < 5; ++i)
    sum += WEIGHTS[i] * (f(centre - half * NODES[i]) + f(centre + half * NODES[i]));
  return half * sum;
}

/// Halves the interval until the halves agree with the whole.
template <class Function>
double integrate(const Function &f, double a, double b, double whole, int depth)
{
  const double centre = 0.5 * (a + b);
  const double left = gauss(f, a, centre);
  const double right = gauss(f, centre, b);
  if (depth == 0 || std::abs(left + right - whole) < TOLERANCE * (1. + std::abs(whole)))
    return left + right;
  return integrate(f, a, centre, left, depth - 1) + integrate(f, centre, b, right, depth - 1);
}

/// ln g of an angle in ]0, pi / 2[, where g = x^(alpha / (alpha - 1)) V(angle) and the distribution
/// function is made of the integral of exp(-g). It is monotonous. Angles are given by their
/// distance from 0 or from pi / 2, the nearer end: g changes by orders of magnitude there.
class LogG
{
public:
  LogG(double alpha, double x)
      : _alpha(alpha),
        _power(alpha / (alpha - 1.)),
        _constant(_power * std::log(x)),
        _gap((2. - alpha) * M_PI_2)
  {
  }

  double fromZero(double angle) const
  {
    const double cosine = std::cos(angle);
    return _constant + _power * std::log(cosine / std::sin(_alpha * angle)) +
           std::log(std::cos((_alpha - 1.) * angle) / cosine);
  }

  /// The sines are those of fromZero(), reflected so that nothing cancels near alpha = 2.
  double fromRightAngle(double angle) const
  {
    const double cosine = std::sin(angle);
    return _constant + _power * std::log(cosine / std::sin(_gap + _alpha * angle)) +
           std::log(std::sin(_gap + (_alpha - 1.) * angle) / cosine);
  }

private:
  double _alpha;
  double _power;
  double _constant;
  double _gap;
};

/// Integral of f(exp(logG)) over ]0, pi / 4[. The interval is cut where g takes given values:
/// between them the integrand is smooth, however narrow the pieces are.
template <class LogOfG, class Function>
double integrateOverHalf(const LogOfG &logG, const Function &f)
{
  constexpr int N_LEVELS = 10;
  constexpr double LEVELS[N_LEVELS] = {-36., -18., -9., -4., -2., 0., 1., 2., 3., 4.5};
  const auto integrand = [&](double angle) { return f(std::exp(logG(angle))); };
  const bool rises = logG(0.1) < logG(0.2);
  const auto angleOf = [&](double level) {
    double low = 0.;
    double high = M_PI_4;
    for (int i = 0; i < 100; ++i) {
      const double middle = 0.5 * (low + high);
      ((logG(middle) < level) == rises ? low : high) = middle;
    }
    return high;
  };

  double sum = 0.;
  double first = 0.;
  for (int i = 0; i <= N_LEVELS; ++i) {
    const double last = i < N_LEVELS ? angleOf(LEVELS[rises ? i : N_LEVELS - 1 - i]) : M_PI_4;
    if (last > first)
      sum += integrate(integrand, first, last, gauss(integrand, first, last), MAX_DEPTH);
    first = last;
  }
  return sum;
}

template <class Function>
double integrateOverAngle(double alpha, double x, const Function &f)
{
  const LogG logG(alpha, x);
  return integrateOverHalf([&](double angle) { return logG.fromZero(angle); }, f) +
         integrateOverHalf([&](double angle) { return logG.fromRightAngle(angle); }, f);
}

}  // namespace

double NgmStableLaw::density(double alpha, double x)
{
  if (std::abs(alpha - 1.) < CAUCHY_TOLERANCE)
    return NgmDensityFunctions::dfCauchy(x);
  if (x == 0.)
    return std::tgamma(1. + 1. / alpha) / M_PI;
  const double integral = integrateOverAngle(
      alpha, std::abs(x), [](double g) { return g > 700. ? 0. : g * std::exp(-g); });
  return alpha / (M_PI * std::abs(alpha - 1.) * std::abs(x)) * integral;
}

double NgmStableLaw::distribution(double alpha, double x)
{
  if (std::abs(alpha - 1.) < CAUCHY_TOLERANCE)
    return NgmDensityFunctions::cdfCauchy(x);
  if (x == 0.)
    return 0.5;
  const double share =
      integrateOverAngle(alpha, std::abs(x), [](double g) { return std::exp(-g); }) / M_PI;
  const double above = alpha < 1. ? 0.5 - share : share;
  return x > 0. ? 1. - above : above;
}
