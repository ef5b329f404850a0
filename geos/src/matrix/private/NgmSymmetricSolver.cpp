#include "matrix/private/NgmSymmetricSolver.h"

#include "private/NgmLanes.h"

#include <algorithm>
#include <cmath>
#include <utility>

using namespace NgmLanes;
using NgmSymmetricSolver::MOST_ROWS;
using NgmSymmetricSolver::paddedRows;

namespace {

/// (1 + sqrt(17)) / 8: bounds the growth of elements over a block of two rows by that over two
/// blocks of one.
constexpr double ALPHA = 0.64038820320220756;

/// A column of the matrix above its pivot, with zeros up to a whole register.
struct alignas(64) Column
{
  double values[MOST_ROWS];
};

/// Raises the largest magnitudes by those of a register; NaN does not count.
inline void raise(const Lanes &values, Lanes &largest)
{
  constexpr long long m = 0x7fffffffffffffff;
  constexpr Bits magnitude = {m, m, m, m};
  const Lanes magnitudes = Lanes(Bits(values) & magnitude);
  largest = magnitudes > largest ? magnitudes : largest;
}

/// Takes the first k elements of a column; returns the largest magnitude.
inline double take(int k, const double *__restrict column, Column &__restrict out)
{
  constexpr Bits lane = {0, 1, 2, 3};
  Lanes largest = {};
  int i = 0;
  for (; i + LANES <= k; i += LANES) {
    const Lanes values = at(column + i).lanes;
    at(out.values + i).lanes = values;
    raise(values, largest);
  }
  if (i < k) {
    const Lanes rest = Lanes(Bits(at(column + i).lanes) & (lane < (long long)(k - i)));
    at(out.values + i).lanes = rest;
    raise(rest, largest);
  }
  return std::max(std::max(largest[0], largest[1]), std::max(largest[2], largest[3]));
}

/// Puts the first k elements back.
inline void put(int k, const Column &__restrict values, double *__restrict column)
{
  int i = 0;
  for (; i + LANES <= k; i += LANES)
    at(column + i).lanes = at(values.values + i).lanes;
  for (; i < k; ++i)
    column[i] = values.values[i];
}

/// a_ij -= u_i * s_j in some columns that share a register, of `size` rows.
template <int nColumns>
inline void updateColumns(int size, const double *__restrict u, const double *__restrict s,
                          double *__restrict a, std::size_t rows)
{
  for (int i = 0; i < size; i += LANES)
    for (int c = 0; c < nColumns; ++c)
      at(a + i + c * rows).lanes -= at(u + i).lanes * s[c];
}

/// a_ij -= u_i * s_j for the first k rows and columns. From the last columns to the first: the next
/// pivot is searched in the last one.
inline void update(int k, const Column &u, const Column &s, double *a, std::size_t rows)
{
  int j = k / LANES * LANES;
  const double *sj = s.values + j;
  double *columns = a + j * rows;
  if (k - j == 1)
    updateColumns<1>(j + LANES, u.values, sj, columns, rows);
  else if (k - j == 2)
    updateColumns<2>(j + LANES, u.values, sj, columns, rows);
  else if (k - j == 3)
    updateColumns<3>(j + LANES, u.values, sj, columns, rows);
  for (j -= LANES; j >= 0; j -= LANES)
    updateColumns<LANES>(j + LANES, u.values, s.values + j, a + j * rows, rows);
}

/// x_i -= u_i * s for the first k rows.
inline void update(int k, const Column &__restrict u, double s, double *__restrict x)
{
  for (int i = 0; i < k; i += LANES)
    at(x + i).lanes -= at(u.values + i).lanes * s;
}

/// The first element of that magnitude.
int find(double magnitude, const Column &column)
{
  int i = 0;
  while (std::abs(column.values[i]) != magnitude)
    ++i;
  return i;
}

/// The largest magnitude beside the diagonal in a row of the first k + 1 rows and columns.
double largestOfRow(int row, int k, const double *a, std::size_t rows)
{
  double largest = 0.;
  for (int j = row + 1; j <= k; ++j)
    largest = std::max(largest, std::abs(a[row + j * rows]));
  for (int i = 0; i < row; ++i)
    largest = std::max(largest, std::abs(a[i + row * rows]));
  return largest;
}

/// Swaps rows and columns p < k of the first k + 1 ones.
void swapRows(int p, int k, double *a, std::size_t rows)
{
  double *columnP = a + p * rows;
  double *columnK = a + k * rows;
  std::swap_ranges(columnP, columnP + p, columnK);
  for (int i = p + 1; i < k; ++i)
    std::swap(columnK[i], a[p + i * rows]);
  std::swap(columnK[k], columnP[p]);
}

/// Which row becomes row k (with two rows: k - 1) as the next block of D.
struct Pivot
{
  int row;
  int size;
};

/// `column` holds column k above the diagonal and `largest` its largest magnitude, `pivot` the
/// magnitude on the diagonal.
Pivot choose(int k, double pivot, double largest, const Column &column, const double *a,
             std::size_t rows)
{
  if (pivot >= ALPHA * largest)
    return {k, 1};
  const int row = find(largest, column);
  const double largestThere = largestOfRow(row, k, a, rows);
  if (pivot >= ALPHA * largest * (largest / largestThere))
    return {k, 1};
  const bool isLarge = std::abs(a[row + row * rows]) >= ALPHA * largestThere;
  return {row, isLarge ? 1 : 2};
}

/// x_row - the sum of u_i * x_i over the first k rows. What was computed last is added last, value
/// by value: it need not be in memory yet.
inline double restOf(int row, int k, const double *__restrict u, const double *__restrict x)
{
  Lanes sums = {};
  int i = 0;
  for (; i + LANES <= k; i += LANES)
    sums += at(u + i).lanes * at(x + i).lanes;
  double rest = x[row] - ((sums[0] + sums[1]) + (sums[2] + sums[3]));
  for (; i < k; ++i)
    rest -= u[i] * x[i];
  return rest;
}

/// Eliminates the pivots one after the other, from the last one.
class Elimination
{
public:
  Elimination(int n, double *a, int *pivots, int nRhs, double *x)
      : _rows(std::size_t(paddedRows(n))), _a(a), _pivots(pivots), _nRhs(nRhs), _x(x)
  {
  }

  /// Takes the pivot that ends in row k; returns its size, 0 when there is none.
  int eliminate(int k)
  {
    double *column = _a + k * _rows;
    const double largest = take(k, column, _u);
    const double magnitude = std::abs(column[k]);
    if (std::isnan(magnitude) || !(std::max(magnitude, largest) > 0.)) {
      _pivots[k] = k + 1;
      return 0;
    }
    const Pivot pivot = choose(k, magnitude, largest, _u, _a, _rows);
    const int first = k - pivot.size + 1;
    if (pivot.row != first) {
      _swap(pivot.row, first);
      if (pivot.size == 2)
        std::swap(column[first], column[pivot.row]);
      take(first, column, _u);
    }
    if (pivot.size == 1) {
      _pivots[k] = pivot.row + 1;
      _eliminateOne(k);
    } else {
      _pivots[k] = _pivots[k - 1] = -(pivot.row + 1);
      _eliminateTwo(k);
    }
    return pivot.size;
  }

private:
  void _swap(int p, int k)
  {
    swapRows(p, k, _a, _rows);
    for (int r = 0; r < _nRhs; ++r)
      std::swap(_x[p + r * _rows], _x[k + r * _rows]);
  }

  void _eliminateOne(int k)
  {
    double *column = _a + k * _rows;
    const double inverse = 1. / column[k];
    for (int i = 0; i < k; i += LANES)
      at(_s.values + i).lanes = at(_u.values + i).lanes * inverse;
    update(k, _u, _s, _a, _rows);
    put(k, _s, column);
    for (int r = 0; r < _nRhs; ++r) {
      double *x = _x + r * _rows;
      const double scaled = x[k] * inverse;
      update(k, _u, scaled, x);
      x[k] = scaled;
    }
  }

  /// Rows k - 1 and k with the block ((e, off), (off, d)), scaled by its element beside the
  /// diagonal.
  void _eliminateTwo(int k)
  {
    double *column = _a + k * _rows;
    double *before = column - _rows;
    take(k - 1, column, _u);
    take(k - 1, before, _v);
    const double off = column[k - 1];
    const double e = before[k - 1] / off;
    const double d = column[k] / off;
    const double scale = 1. / (d * e - 1.) / off;
    for (int i = 0; i < k - 1; i += LANES) {
      const Lanes u = at(_u.values + i).lanes;
      const Lanes v = at(_v.values + i).lanes;
      at(_s.values + i).lanes = scale * (e * u - v);
      at(_t.values + i).lanes = scale * (d * v - u);
    }
    update(k - 1, _u, _s, _a, _rows);
    update(k - 1, _v, _t, _a, _rows);
    put(k - 1, _s, column);
    put(k - 1, _t, before);
    for (int r = 0; r < _nRhs; ++r) {
      double *x = _x + r * _rows;
      const double last = scale * (e * x[k] - x[k - 1]);
      const double first = scale * (d * x[k - 1] - x[k]);
      update(k - 1, _u, last, x);
      update(k - 1, _v, first, x);
      x[k - 1] = first;
      x[k] = last;
    }
  }

  std::size_t _rows;
  double *_a;
  int *_pivots;
  int _nRhs;
  double *_x;
  Column _u;  ///< columns of the pivot as they stand in the matrix
  Column _v;
  Column _s;  ///< the same scaled, as they stand in the factor
  Column _t;
};

/// x = inverse(U') x
void substituteBack(int n, const double *factor, const int *pivots, double *x)
{
  const std::size_t rows = std::size_t(paddedRows(n));
  for (int k = 0; k < n;) {
    const double *column = factor + k * rows;
    const int size = pivots[k] > 0 ? 1 : 2;
    x[k] = restOf(k, k, column, x);
    if (size == 2)
      x[k + 1] = restOf(k + 1, k, column + rows, x);
    const int row = std::abs(pivots[k]) - 1;
    if (row != k)
      std::swap(x[k], x[row]);
    k += size;
  }
}

}  // namespace

int NgmSymmetricSolver::solve(int n, double *a, int *pivots, int nRhs, double *x)
{
  int info = 0;
  Elimination elimination(n, a, pivots, nRhs, x);
  for (int k = n - 1; k >= 0;) {
    const int size = elimination.eliminate(k);
    if (size == 0 && info == 0)
      info = k + 1;
    k -= std::max(1, size);
  }
  if (info != 0)
    return info;
  for (int r = 0; r < nRhs; ++r)
    substituteBack(n, a, pivots, x + r * std::size_t(paddedRows(n)));
  return 0;
}

void NgmSymmetricSolver::copyUpper(int n, const double *from, int fromRows, double *to, int toRows)
{
  for (int j = 0; j < n; ++j)
    std::copy_n(from + std::size_t(j) * fromRows, j + 1, to + std::size_t(j) * toRows);
}

void NgmSymmetricSolver::copyColumns(int n, int nColumns, const double *from, int fromRows,
                                     double *to, int toRows)
{
  for (int j = 0; j < nColumns; ++j)
    std::copy_n(from + std::size_t(j) * fromRows, n, to + std::size_t(j) * toRows);
}
