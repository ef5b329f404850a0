#include "geos/algo/NgmAlgorithm.h"

#include <algorithm>
#include <cmath>

namespace {

constexpr double TURN_THIRD = 2.0943951023931953;  // 2 pi / 3
constexpr double SAME_ROOT = 1e-7;                 // roots that rounding has separated

/// Roots of a x^2 + b x + c without cancellation.
QVector<double> rootsP2(double a, double b, double c)
{
  if (a == 0.)
    return b == 0. ? QVector<double>() : QVector<double>{-c / b};
  const double discriminant = b * b - 4. * a * c;
  if (discriminant < 0.)
    return {};
  if (discriminant == 0.)
    return {-0.5 * b / a};
  const double q = -0.5 * (b + std::copysign(std::sqrt(discriminant), b));
  const double first = q / a;
  const double second = c / q;
  return {std::min(first, second), std::max(first, second)};
}

/// Newton steps as long as they bring the value down.
double polished(double b, double c, double d, double x)
{
  double value = ((x + b) * x + c) * x + d;
  for (int step = 0; step < 4 && value != 0.; ++step) {
    const double slope = (3. * x + 2. * b) * x + c;
    if (slope == 0.)
      break;
    const double next = x - value / slope;
    const double nextValue = ((next + b) * next + c) * next + d;
    if (!(std::fabs(nextValue) < std::fabs(value)))
      break;
    x = next;
    value = nextValue;
  }
  return x;
}

}  // namespace

QVector<double> NgmAlgorithm::rootsP3(double a, double b, double c, double d)
{
  if (a == 0.)
    return rootsP2(b, c, d);
  const double p = b / a;
  const double q = c / a;
  const double r = d / a;
  if (!std::isfinite(p) || !std::isfinite(q) || !std::isfinite(r))
    return rootsP2(b, c, d);
  const double shift = p / 3.;
  const double halfLinear = (p * p - 3. * q) / 9.;
  const double halfConstant = ((2. * p * p - 9. * q) * p + 27. * r) / 54.;
  const double cube = halfLinear * halfLinear * halfLinear;

  QVector<double> roots;
  if (halfLinear > 0. && halfConstant * halfConstant <= cube * (1. + 1e-14)) {
    const double cosine = std::max(-1., std::min(1., halfConstant / std::sqrt(cube)));
    const double angle = std::acos(cosine) / 3.;
    for (int k = -1; k <= 1; ++k)
      roots << -2. * std::sqrt(halfLinear) * std::cos(angle + k * TURN_THIRD) - shift;
  } else {
    const double root = std::sqrt(std::max(0., halfConstant * halfConstant - cube));
    const double u = -std::copysign(std::cbrt(std::fabs(halfConstant) + root), halfConstant);
    roots << u + (u != 0. ? halfLinear / u : 0.) - shift;
  }
  for (double &root : roots)
    root = polished(p, q, r, root);
  std::sort(roots.begin(), roots.end());
  const auto isSame = [&](double x, double y) {
    return std::fabs(x - y) <= SAME_ROOT * std::max(std::fabs(x), std::fabs(y));
  };
  roots.erase(std::unique(roots.begin(), roots.end(), isSame), roots.end());
  return roots;
}
