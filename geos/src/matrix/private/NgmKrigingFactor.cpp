#include "matrix/private/NgmKrigingFactor.h"

#include "geos/matrix/NgmNumericLibrary.h"
#include "matrix/private/NgmDotProduct.h"

#include <algorithm>
#include <limits>

#include <mkl.h>

namespace {

/// Rows padded so that every column starts on a cache line.
int padded(int nRows)
{
  return (nRows + 7) / 8 * 8;
}

/// Overwrites the lower triangle by its Cholesky factor. False when a pivot is rounding of the
/// diagonal term that it comes from.
bool cholesky(int n, double *a, int leadingDimension)
{
  std::vector<double> diagonal;
  for (int i = 0; i < n; ++i)
    diagonal.push_back(a[i + qint64(i) * leadingDimension]);
  if (LAPACKE_dpotrf_work(LAPACK_COL_MAJOR, 'L', n, a, leadingDimension) != 0)
    return false;
  const double rounding = n * std::numeric_limits<double>::epsilon();
  for (int i = 0; i < n; ++i) {
    const double pivot = a[i + qint64(i) * leadingDimension];
    if (!(pivot * pivot > rounding * diagonal[std::size_t(i)]))
      return false;
  }
  return true;
}

/// columns = inverse(L) columns, or with the transposed of L.
void solveTriangular(CBLAS_TRANSPOSE transposed, int n, const double *factor, int leadingFactor,
                     int nColumns, double *columns, int leadingColumns)
{
  cblas_dtrsm(CblasColMajor, CblasLeft, CblasLower, transposed, CblasNonUnit, n, nColumns, 1.,
              factor, leadingFactor, columns, leadingColumns);
}

}  // namespace

NgmKrigingFactor::NgmKrigingFactor(const NgmMatrix &matrix, int nData)
    : _nData(nData), _nConditions(matrix.getNRows() - nData)
{
  const qint64 rows = matrix.getNRows();
  const qint64 leading = padded(nData);
  _dataFactor.resize(std::size_t(leading * nData));
  for (int j = 0; j < nData; ++j)
    std::copy_n(matrix.constElements() + j * (rows + 1), nData - j,
                _dataFactor.data() + j * (leading + 1));
  _conditions.resize(std::size_t(leading * _nConditions));
  for (int j = 0; j < _nConditions; ++j)
    std::copy_n(matrix.constElements() + (nData + j) * rows, nData,
                _conditions.data() + j * leading);
}

std::shared_ptr<const NgmKrigingFactor> NgmKrigingFactor::factorize(const NgmMatrix &matrix,
                                                                    int nData)
{
  const NgmNumericLibrary::ThreadCount oneThread(1);
  std::shared_ptr<NgmKrigingFactor> factor(new NgmKrigingFactor(matrix, nData));
  if (!factor->_factorizeData() || !factor->_factorizeConditions())
    return nullptr;
  return factor;
}

bool NgmKrigingFactor::_factorizeData()
{
  return cholesky(_nData, _dataFactor.data(), padded(_nData));
}

bool NgmKrigingFactor::_factorizeConditions()
{
  if (_nConditions == 0)
    return true;
  const int leading = padded(_nData);
  solveTriangular(CblasNoTrans, _nData, _dataFactor.data(), leading, _nConditions,
                  _conditions.data(), leading);
  _conditionFactor.resize(std::size_t(_nConditions) * std::size_t(_nConditions));
  for (int j = 0; j < _nConditions; ++j)
    for (int i = j; i < _nConditions; ++i)
      _conditionFactor[std::size_t(i) + std::size_t(j) * _nConditions] =
          dotProduct(_nData, _conditions.data() + qint64(i) * leading,
                     _conditions.data() + qint64(j) * leading);
  return cholesky(_nConditions, _conditionFactor.data(), _nConditions);
}

void NgmKrigingFactor::solve(double *values) const
{
  const NgmNumericLibrary::ThreadCount oneThread(1);
  const int leading = padded(_nData);
  double *multipliers = values + _nData;

  // w = inverse(L) z, m = inverse(Q) U' w, coefficients = inverse(L') (w - U m)
  solveTriangular(CblasNoTrans, _nData, _dataFactor.data(), leading, 1, values, _nData);
  for (int j = 0; j < _nConditions; ++j)
    multipliers[j] = dotProduct(_nData, _conditions.data() + qint64(j) * leading, values);
  for (CBLAS_TRANSPOSE transposed : {CblasNoTrans, CblasTrans})
    if (_nConditions > 0)
      solveTriangular(transposed, _nConditions, _conditionFactor.data(), _nConditions, 1,
                      multipliers, _nConditions);
  for (int j = 0; j < _nConditions; ++j) {
    const double *condition = _conditions.data() + qint64(j) * leading;
    for (int i = 0; i < _nData; ++i)
      values[i] -= condition[i] * multipliers[j];
  }
  solveTriangular(CblasTrans, _nData, _dataFactor.data(), leading, 1, values, _nData);
}

void NgmKrigingFactor::quadraticForms(const double *columns, int nColumns, int leadingDimension,
                                      double *work, double *out) const
{
  const NgmNumericLibrary::ThreadCount oneThread(1);
  const int leading = padded(_nData);
  std::copy_n(columns, std::size_t(leadingDimension) * std::size_t(nColumns), work);
  solveTriangular(CblasNoTrans, _nData, _dataFactor.data(), leading, nColumns, work,
                  leadingDimension);
  for (int c = 0; c < nColumns; ++c) {
    double *v = work + qint64(c) * leadingDimension;
    out[c] = dotProduct(_nData, v, v);
    // The rows of the conditions hold f; forward substitution with R.
    double *r = v + _nData;
    for (int i = 0; i < _nConditions; ++i) {
      r[i] -= dotProduct(_nData, _conditions.data() + qint64(i) * leading, v);
      for (int j = 0; j < i; ++j)
        r[i] -= _conditionFactor[std::size_t(i) + std::size_t(j) * _nConditions] * r[j];
      r[i] /= _conditionFactor[std::size_t(i) * std::size_t(_nConditions + 1)];
      out[c] -= r[i] * r[i];
    }
  }
}
