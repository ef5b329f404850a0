#include "matrix/private/NgmSymmetricEigen.h"

#include <algorithm>
#include <cmath>
#include <cstddef>

namespace {

constexpr double NEGLIGIBLE = 2.3e-16;
constexpr int SWEEPS_PER_ROW = 10;

/// x := (I - beta v v') x
void reflect(int n, const double *v, double beta, double *x)
{
  double dot = 0.;
  for (int i = 0; i < n; ++i)
    dot += v[i] * x[i];
  dot *= beta;
  for (int i = 0; i < n; ++i)
    x[i] -= dot * v[i];
}

/// Makes x a Householder vector v with (I - beta v v') x = (alpha, 0, ...)'; returns beta.
double makeReflector(int n, double *x, double &alpha)
{
  double scale = 0.;
  for (int i = 0; i < n; ++i)
    scale = std::max(scale, std::abs(x[i]));
  double tail = 0.;
  for (int i = 1; i < n; ++i)
    tail += std::abs(x[i]);
  alpha = x[0];
  if (tail == 0.)
    return 0.;

  double norm = 0.;
  for (int i = 0; i < n; ++i) {
    x[i] /= scale;
    norm += x[i] * x[i];
  }
  const double length = x[0] >= 0. ? -std::sqrt(norm) : std::sqrt(norm);
  alpha = length * scale;
  const double beta = 1. / (norm - x[0] * length);
  x[0] -= length;
  return beta;
}

/// Symmetric update of the lower triangle, A := H A H with H = I - beta v v'. `p` holds n values.
void updateTrailing(int n, double *a, std::size_t lda, const double *v, double beta, double *p)
{
  std::fill(p, p + n, 0.);
  for (int j = 0; j < n; ++j) {
    const double *column = a + j * lda;
    double sum = column[j] * v[j];
    for (int i = j + 1; i < n; ++i) {
      p[i] += column[i] * v[j];
      sum += column[i] * v[i];
    }
    p[j] += sum;
  }
  double k = 0.;
  for (int i = 0; i < n; ++i) {
    p[i] *= beta;
    k += p[i] * v[i];
  }
  k *= beta / 2.;
  for (int i = 0; i < n; ++i)
    p[i] -= k * v[i];
  for (int j = 0; j < n; ++j)
    for (int i = j; i < n; ++i)
      a[i + j * lda] -= v[i] * p[j] + p[i] * v[j];
}

/// Leaves the diagonal in d, the subdiagonal in e[0 .. n - 2], and Q of A = Q T Q' in `vectors`.
void reduceToTridiagonal(int n, double *a, double *d, double *e, double *vectors)
{
  const std::size_t lda = std::size_t(n);
  // The factor of reflector k replaces diagonal entry k, which d has by then; the part of d that is
  // still empty is the scratch of the update.
  for (int k = 0; k < n - 1; ++k) {
    const int m = n - 1 - k;
    double *v = a + (k + 1) + k * lda;
    d[k] = a[k + k * lda];
    const double beta = makeReflector(m, v, e[k]);
    if (beta != 0.)
      updateTrailing(m, a + (k + 1) + (k + 1) * lda, lda, v, beta, d + k + 1);
    a[k + k * lda] = beta;
  }
  if (n > 0)
    d[n - 1] = a[(n - 1) + (n - 1) * lda];
  if (!vectors)
    return;

  std::fill(vectors, vectors + lda * lda, 0.);
  for (int i = 0; i < n; ++i)
    vectors[i + i * lda] = 1.;
  for (int k = n - 2; k >= 0; --k) {
    const double beta = a[k + k * lda];
    if (beta == 0.)
      continue;
    for (int j = k + 1; j < n; ++j)
      reflect(n - 1 - k, a + (k + 1) + k * lda, beta, vectors + (k + 1) + j * lda);
  }
}

/// Rotates two columns of the eigenvector matrix.
void rotate(int n, double *x, double *y, double c, double s)
{
  for (int k = 0; k < n; ++k) {
    const double f = y[k];
    y[k] = s * x[k] + c * f;
    x[k] = c * x[k] - s * f;
  }
}

/// One implicit QL sweep on the block l .. m; false when it split early.
void sweep(int n, int l, int m, double *d, double *e, double *vectors)
{
  double g = (d[l + 1] - d[l]) / (2. * e[l]);
  double r = std::hypot(g, 1.);
  g = d[m] - d[l] + e[l] / (g + std::copysign(r, g));
  double s = 1.;
  double c = 1.;
  double p = 0.;
  for (int i = m - 1; i >= l; --i) {
    const double f = s * e[i];
    const double b = c * e[i];
    r = std::hypot(f, g);
    e[i + 1] = r;
    if (r == 0.) {
      d[i + 1] -= p;
      e[m] = 0.;
      return;
    }
    s = f / r;
    c = g / r;
    g = d[i + 1] - p;
    r = (d[i] - g) * s + 2. * c * b;
    p = s * r;
    d[i + 1] = g + p;
    g = c * r - b;
    if (vectors)
      rotate(n, vectors + i * std::size_t(n), vectors + (i + 1) * std::size_t(n), c, s);
  }
  d[l] -= p;
  e[l] = g;
  e[m] = 0.;
}

}  // namespace

bool NgmSymmetricEigen::decompose(int n, double *a, double *diagonal, double *work, double *vectors)
{
  reduceToTridiagonal(n, a, diagonal, work, vectors);
  if (n > 0)
    work[n - 1] = 0.;

  int sweeps = 0;
  for (int l = 0; l < n; ++l) {
    for (;;) {
      int m = l;
      while (m < n - 1 && !(std::abs(work[m]) <=
                            NEGLIGIBLE * n * (std::abs(diagonal[m]) + std::abs(diagonal[m + 1]))))
        ++m;
      if (m == l)
        break;
      if (sweeps++ == SWEEPS_PER_ROW * n)
        return false;
      sweep(n, l, m, diagonal, work, vectors);
    }
  }
  return std::all_of(diagonal, diagonal + n, [](double value) { return std::isfinite(value); });
}
