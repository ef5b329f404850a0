#include "geos/simu/NgmDistributionBinomial.h"

#include <array>
#include <cmath>

namespace {

constexpr int N_ROWS = 20;
using Coefficients = std::array<std::array<double, N_ROWS + 1>, N_ROWS>;

/// Row n - 1 holds binom(n, 0 .. n).
constexpr Coefficients pascalTriangle()
{
  Coefficients rows = {};
  rows[0][0] = rows[0][1] = 1.;
  for (std::size_t n = 1; n < N_ROWS; ++n) {
    rows[n][0] = 1.;
    for (std::size_t k = 1; k <= n + 1; ++k)
      rows[n][k] = rows[n - 1][k - 1] + rows[n - 1][k];
  }
  return rows;
}

constexpr Coefficients BINOMIAL = pascalTriangle();

}  // namespace

NgmDistributionBinomial::NgmDistributionBinomial(quint64 seed, tSize size, bool trace)
    : NgmDistributionBinomial(40, 0.5, seed, size, trace)
{
}

NgmDistributionBinomial::NgmDistributionBinomial(qint64 index, double param, quint64 seed,
                                                 tSize size, bool trace)
    : NbbCloneable(QStringLiteral("Binomial"), seed, size, trace),
      _index(index),
      _param(param),
      _uniform(nextNumber(), size, trace),
      _gaussian(nextNumber(), size, trace)
{
}

qint64 NgmDistributionBinomial::nextI()
{
  if (_index <= 0 || _param < 0.0001)
    return 0;
  if (_param > 0.9999)
    return _index;
  return _index <= N_ROWS ? _nextFromTable() : _nextFromGaussian();
}

qint64 NgmDistributionBinomial::_nextFromTable()
{
  const auto &coefficients = BINOMIAL[std::size_t(_index - 1)];
  const double p = _param > 0.5 ? _param : 1. - _param;
  const double factor = p * (1. - p);
  const double u = _uniform.nextR();
  double term = std::pow(p, double(_index));
  double sum = 0.;
  qint64 k = 0;
  do {
    ++k;
    sum += coefficients[std::size_t(k - 1)] * term;
    term *= factor;
  } while (u > sum && k < _index);
  return _param > 0.5 ? _index - k : k;
}

qint64 NgmDistributionBinomial::_nextFromGaussian()
{
  const double n = double(_index);
  const double p = _param > 0.5 ? _param : 1. - _param;
  const double count = std::floor(_gaussian.nextR() * std::sqrt(n * (p * (1. - p))) + n * p);
  const qint64 k = !(count > 0.) ? 0 : count >= n ? _index : qint64(count);
  return _param < 0.5 ? _index - k : k;
}

QString NgmDistributionBinomial::getParamInfo(const NbdVariableDetails & /*details*/) const
{
  return QStringLiteral("index=%1, param=%2").arg(_index).arg(_param);
}
