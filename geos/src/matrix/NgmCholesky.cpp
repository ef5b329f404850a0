#include "geos/matrix/NgmCholesky.h"

#include "basic/base/NbbGlobal.h"
#include "basic/error/NbeProgrammingError.h"
#include "geos/matrix/NgmNumericLibrary.h"

#include <QElapsedTimer>
#include <QLoggingCategory>
#include <QStringList>

#include <algorithm>
#include <cmath>
#include <limits>

#include <mkl.h>

Q_LOGGING_CATEGORY(choleskyLog, "orvenal.geos.cholesky", QtInfoMsg)

namespace {

/// What is left of an implicit covariance matrix after the pivots taken so far.
class PivotedFactor
{
public:
  PivotedFactor(NgmMatrix &L, int n, int maxPivots, const std::function<double(int)> &diagonal)
      : _L(L), _n(n), _residual(std::size_t(n)), _work(std::size_t(n))
  {
    _L.resize(n, maxPivots, false);
    for (int i = 0; i < n; ++i)
      _residual[i] = diagonal(i);
    // Below this a residual is rounding of the largest variance.
    for (double variance : _residual)
      _negligible = std::max(_negligible, variance);
    _negligible *= n * std::numeric_limits<double>::epsilon();
  }

  double trace() const
  {
    double sum = 0.;
    for (double value : _residual)
      sum += value;
    return sum;
  }

  int largest() const
  {
    return int(std::max_element(_residual.begin(), _residual.end()) - _residual.begin());
  }

  bool explains(int pivot) const { return !(_residual[pivot] > _negligible); }

  void take(int pivot, const std::function<void(int, double *)> &column)
  {
    const int k = _pivots.size();
    column(pivot, _work.data());
    double *L = _L.elements();
    for (int c = 0; c < k; ++c) {
      const double *previous = L + qint64(c) * _n;
      const double factor = previous[pivot];
      for (int i = 0; i < _n; ++i)
        _work[i] -= factor * previous[i];
    }
    const double root = std::sqrt(_residual[pivot]);
    double *added = L + qint64(k) * _n;
    for (int i = 0; i < _n; ++i) {
      added[i] = _work[i] / root;
      _residual[i] -= added[i] * added[i];
    }
    added[pivot] = root;
    for (int earlier : _pivots) {
      added[earlier] = 0.;
      _residual[earlier] = 0.;
    }
    _residual[pivot] = 0.;
    _pivots.append(pivot);
  }

  const QList<int> &pivots() const { return _pivots; }

private:
  NgmMatrix &_L;
  int _n;
  std::vector<double> _residual;
  std::vector<double> _work;
  double _negligible = 0.;
  QList<int> _pivots;
};

}  // namespace

NgmCholesky::NgmCholesky(const NgmMatrix &matrix)
    : _matrix(matrix), _factor(1, 1, false), _inverse(1, 1, false)
{
}

bool NgmCholesky::_computeFactor()
{
  if (!_factor.isNull() || _failed)
    return !_failed;
  const int n = _matrix.getNRows();
  _factor = _matrix;
  _factor.setMustBeSymmetrical(false);
  if (n == 0)
    return true;
  double *L = _factor.elements();
  const NgmNumericLibrary::ThreadCount oneThread(1);
  _failed = !_matrix.isSquared() || LAPACKE_dpotrf_work(LAPACK_COL_MAJOR, 'L', n, L, n) != 0;
  for (int j = 0; j < n && !_failed; ++j)
    std::fill(L + qint64(j) * n, L + qint64(j) * n + j, 0.);
  return !_failed;
}

bool NgmCholesky::getCholeskyFactor(NgmMatrix &out)
{
  if (!_computeFactor())
    return false;
  out = _factor;
  return true;
}

bool NgmCholesky::getCholeskyInvert(NgmMatrix &out)
{
  if (!_computeFactor())
    return false;
  if (_inverse.isNull() && _factor.getNRows() > 0) {
    const int n = _factor.getNRows();
    const NgmNumericLibrary::ThreadCount oneThread(1);
    NgmMatrix inverse(_factor);
    LAPACKE_dtrtri_work(LAPACK_COL_MAJOR, 'L', 'N', n, inverse.elements(), n);
    _inverse = inverse;
  }
  out = _inverse;
  return true;
}

bool NgmCholesky::getInvert(NgmMatrix &out) const
{
  if (_inverse.isNull())
    return false;
  const int n = _inverse.getNRows();
  const NgmNumericLibrary::ThreadCount oneThread(1);
  NgmMatrix product(n, n, false);
  NgmMatrix::blasDgemm('T', 'N', n, n, n, 1., _inverse.constElements(), n, _inverse.constElements(),
                       n, 0., product.elements(), n);
  product.makeSymmetrical();
  out = product;
  return true;
}

bool NgmCholesky::getIncompleteCholeskyFactor(NgmMatrix &out)
{
  const int n = _matrix.getNRows();
  if (n == 0 || !_matrix.isSquared())
    return false;
  NgmMatrix L(false);
  computeIncompleteCholesky(
      L, n, {}, 0., n, {}, [this](int i) { return _matrix(i, i); },
      [this](int j, double *column) { _matrix.extractColumn(j, column); }, false, {});

  double largest = 0.;
  for (int i = 0; i < n; ++i)
    largest = std::max(largest, _matrix(i, i));
  const NgmMatrix rest = L * L.transpose() - _matrix;
  if (!rest.isNull(largest * _matrix.getPrecision()))
    return false;
  out = L;
  return true;
}

QList<int> NgmCholesky::computeIncompleteCholesky(NgmMatrix &L, int nech,
                                                  const QList<int> &exactPivots, double eta,
                                                  int maxPivots, const QList<double> &,
                                                  const std::function<double(int)> &diagonal,
                                                  const std::function<void(int, double *)> &column,
                                                  bool, QFlags<Cholesky::Debug> debug)
{
  const int nExact = exactPivots.size();
  if (nech < nExact)
    throw NbeProgrammingError(QStringLiteral("Incorrect number of Exact Pivots (> nech)."));
  const int budget = nExact + std::min(nech - nExact, maxPivots);
  if (budget < 1)
    throw NbeProgrammingError(QStringLiteral("Number max of pivots should not be zero."));

  QElapsedTimer timer;
  timer.start();
  if (eta == NbbGlobal::D_FFFF)
    eta = 0.;
  PivotedFactor factor(L, nech, budget, diagonal);
  const double limit = eta * factor.trace();
  double residual = factor.trace();
  QStringList criterion;
  if (debug & Cholesky::DEBUG_CRITERION) {
    qCInfo(choleskyLog).noquote() << QStringLiteral("Eta: %1 / Initial Residual (normalized): %2")
                                         .arg(eta)
                                         .arg(residual / nech);
    qCInfo(choleskyLog).noquote()
        << QStringLiteral("Stop when residual reaches %1 or maxP2 = %2").arg(limit).arg(budget);
  }

  const auto take = [&](int pivot) {
    factor.take(pivot, column);
    residual = factor.trace();
    criterion << QString::number(residual);
    if (debug & Cholesky::DEBUG_PIVOT)
      qCInfo(choleskyLog).noquote() << QStringLiteral("New Pivot (p%1) #%2 has been selected")
                                           .arg(factor.pivots().size())
                                           .arg(pivot);
  };
  for (int pivot : exactPivots)
    if (!factor.explains(pivot))
      take(pivot);
  while (factor.pivots().size() < budget && residual > limit && !factor.explains(factor.largest()))
    take(factor.largest());

  const QList<int> pivots = factor.pivots();
  L.resize(nech, pivots.size(), true);
  if (debug & Cholesky::DEBUG_CRITERION) {
    qCInfo(choleskyLog).noquote() << QStringLiteral(
                                         "End of Cholesky with residual = %1 vs # pivots p2 = %2")
                                         .arg(residual)
                                         .arg(pivots.size());
    qCInfo(choleskyLog).noquote() << QStringLiteral("Criterion\n") + criterion.join('\n');
  }
  if (debug & Cholesky::DEBUG_RESULT) {
    QStringList permutations;
    for (int pivot : pivots)
      permutations << QString::number(pivot);
    qCInfo(choleskyLog).noquote() << QStringLiteral("Number of pivots: %1").arg(pivots.size());
    qCInfo(choleskyLog).noquote() << QStringLiteral("Cholesky built in %1ms").arg(timer.elapsed());
    qCInfo(choleskyLog).noquote() << QStringLiteral("Permutations\n") + permutations.join('\n');
  }
  return pivots;
}
