#include "geos/simu/NgmDistributionTruncatedGaussian.h"

#include "basic/base/NbbGlobal.h"
#include "geos/simu/NgmDensityFunctions.h"

#include <algorithm>
#include <cmath>

namespace {

/// The pieces, from left to right.
enum Rank { LEFT_TAIL, LEFT_CENTRE, RIGHT_CENTRE, RIGHT_TAIL };

constexpr double CUTS[] = {-2., 0., 2.};

/// Integral of the envelope of a piece [a, b].
double weightOf(int rank, double a, double b)
{
  if (!(a < b))
    return 0.;
  switch (rank) {
    case LEFT_TAIL:
      return (std::exp(-a * a / 2.) - std::exp(-b * b / 2.)) / b;
    case LEFT_CENTRE:
      return (std::exp(b) - std::exp(a)) * std::exp(0.5);
    case RIGHT_CENTRE:
      return (std::exp(-a) - std::exp(-b)) * std::exp(0.5);
    default:
      return (std::exp(-a * a / 2.) - std::exp(-b * b / 2.)) / a;
  }
}

/// The value at share u of the envelope of a piece.
double envelopeQuantile(int rank, double a, double b, double u)
{
  switch (rank) {
    case LEFT_TAIL:
      return -std::sqrt(b * b - 2. * std::log(1. - (1. - std::exp((b * b - a * a) / 2.)) * u));
    case LEFT_CENTRE:
      return std::log(std::exp(a) + u * (std::exp(b) - std::exp(a)));
    case RIGHT_CENTRE:
      return -std::log(std::exp(-a) - u * (std::exp(-a) - std::exp(-b)));
    default:
      return std::sqrt(a * a - 2. * std::log(1. - (1. - std::exp((a * a - b * b) / 2.)) * u));
  }
}

bool isAccepted(int rank, double a, double b, double x, double v)
{
  switch (rank) {
    case LEFT_TAIL:
      return v * x >= b;
    case LEFT_CENTRE:
      return std::log(v) <= -(x + 1.) * (x + 1.) / 2.;
    case RIGHT_CENTRE:
      return std::log(v) <= -(x - 1.) * (x - 1.) / 2.;
    default:
      return v * x <= a;
  }
}

}  // namespace

NgmDistributionTruncatedGaussian::NgmDistributionTruncatedGaussian(quint64 seed, tSize size,
                                                                   bool trace)
    : NgmDistributionTruncatedGaussian(-10., 0., seed, size, trace)
{
}

NgmDistributionTruncatedGaussian::NgmDistributionTruncatedGaussian(double min, double max,
                                                                   quint64 seed, tSize size,
                                                                   bool trace)
    : NbbCloneable(QStringLiteral("GaussianBetween"), seed, size, trace),
      _uniform1(nextNumber(), size, trace),
      _uniform2(nextNumber(), size, trace),
      _uniform3(nextNumber(), size, trace),
      _uniform4(nextNumber(), size, trace)
{
  setBounds(min, max);
}

void NgmDistributionTruncatedGaussian::setBounds(double min, double max)
{
  _min = NbbGlobal::isDefined(min) ? min : NbbGlobal::D_BIG_GAUSSIAN_NEGATIVE;
  _max = NbbGlobal::isDefined(max) ? max : NbbGlobal::D_BIG_GAUSSIAN_POSITIVE;

  double total = 0.;
  for (int rank = LEFT_TAIL; rank <= RIGHT_TAIL; ++rank) {
    Piece &piece = _pieces[std::size_t(rank)];
    piece.a = rank == LEFT_TAIL ? _min : std::max(_min, CUTS[rank - 1]);
    piece.b = rank == RIGHT_TAIL ? _max : std::min(_max, CUTS[rank]);
    total += weightOf(rank, piece.a, piece.b);
    piece.cumulative = total;
  }
  _isEmpty = total == 0.;
  for (Piece &piece : _pieces)
    piece.cumulative = _isEmpty ? 0. : piece.cumulative / total;
}

double NgmDistributionTruncatedGaussian::nextR()
{
  if (_isEmpty)
    return _uniform1.nextR();
  for (;;) {
    const double share = _uniform2.nextR();
    int rank = LEFT_TAIL;
    while (rank < RIGHT_TAIL && _pieces[std::size_t(rank)].cumulative < share)
      ++rank;
    const Piece &piece = _pieces[std::size_t(rank)];
    const double x = envelopeQuantile(rank, piece.a, piece.b, _uniform3.nextR());
    if (isAccepted(rank, piece.a, piece.b, x, _uniform4.nextR()))
      return x;
  }
}

double NgmDistributionTruncatedGaussian::getDf(double value) const
{
  return NgmDensityFunctions::dfTruncatedGaussian(value, _min, _max);
}

double NgmDistributionTruncatedGaussian::getCdf(double value) const
{
  return NgmDensityFunctions::cdfTruncatedGaussian(value, _min, _max);
}

double NgmDistributionTruncatedGaussian::getInvCdf(double p) const
{
  if (p <= 0.)
    return _min;
  if (p >= 1.)
    return _max;
  double low = _min;
  double high = _max;
  for (int i = 0; i < 100; ++i) {
    const double middle = 0.5 * (low + high);
    (getCdf(middle) < p ? low : high) = middle;
  }
  return high;
}

QString NgmDistributionTruncatedGaussian::getParamInfo(const NbdVariableDetails & /*details*/) const
{
  return QStringLiteral("min=%1, max=%2").arg(_min).arg(_max);
}
